// FrmDealList beyond typing lines: moving through the statement list, F4 on a line and on a
// statement, the VAT mode changed with each of its three answers, the balance boxes, the memo
// and the seal — with the store's rows checked after each step.
#include "DealListKit.h"
#include "common/MessageDialogs.h"
#include "common/dates/DateBox.h"
#include "core/AppFolder.h"
#include "core/Settings.h"
#include "invoice/InvoiceSeal.h"
#include "statement/FrmPic2.h"
#include "statement/StatementSeal.h"

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

using namespace nb;

namespace {

using Screen = test::DealScreen;

using test::focused;
using test::goToCell;
using test::pressKey;
using test::typeIntoCell;

// Three statements of two traders in the range, the first with three lines.
void addThreeStatements() {
    test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-02"), QStringLiteral("000001"),
                           {{QStringLiteral("볼트"), 3, 1100, 3000, 300},
                            {QStringLiteral("너트"), 2, 1000, 2000, 200},
                            {QStringLiteral("와셔"), 1, 550, 500, 50}});
    test::addDealStatement(QStringLiteral("000002"), QStringLiteral("2024-05-03"), QStringLiteral("000002"),
                           {{QStringLiteral("앵글"), 1, 11000, 10000, 1000}});
    test::addDealStatement(QStringLiteral("000003"), QStringLiteral("2024-05-04"), QStringLiteral("000001"),
                           {{QStringLiteral("파이프"), 1, 2200, 2000, 200}});
}

void chooseListRow(FrmDealList& f, int row) {
    f.spMaster->setFocus();
    f.spMaster->SetActiveCell(ColBillDate, row);
}

} // namespace

class TestFrmDealListList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theListShowsEveryTraderAndStandsOnANewStatement() {
        Screen s;
        test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        QCOMPARE(f.spMaster->MaxRows(), 4);
        QCOMPARE(f.spMaster->Text(ColCName, 2), QStringLiteral("다라상회"));
        QCOMPARE(f.spMaster->ActiveRow(), 4);
        QVERIFY(f.SelectedBillNo().isEmpty());
        QCOMPARE(f.spTotal->Value(ColNumBill, 1), 5.0);
        QCOMPARE(f.spTotal->Value(ColTotal, 1), 19250.0);
        QCOMPARE(f.spTotal->Text(ColBillDate, 1), QStringLiteral("합계"));
    }

    void choosingAStatementOfAllTradersSetsTheTraderAndTheNextListShowsOnlyIt() {
        Screen s;
        test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 2);
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000002"));
        QCOMPARE(f.CName2->text(), QStringLiteral("다라상회"));
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("앵글"));
        QCOMPARE(f.gong->text(), QStringLiteral("10,000"));
        f.cmdMaster->click();
        QCOMPARE(f.spMaster->MaxRows(), 2);
        QCOMPARE(f.spMaster->Text(ColMasterBillNo, 1), QStringLiteral("000002"));
    }

    void afterAStatementIsChosenThePreviousBalanceIsZeroAgain() {
        Screen s;
        test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 1);
        f.PreMisu->setFocus();
        f.PreMisu->selectAll();
        test::typeText(f.PreMisu, QStringLiteral("15000"));
        pressKey(f.PreMisu, Qt::Key_Return);
        QCOMPARE(f.PreMisu->text(), QStringLiteral("15,000"));
        QCOMPARE(f.Misu->text(), QStringLiteral("21,050"));
        chooseListRow(f, 3);
        QCOMPARE(f.PreMisu->text(), QStringLiteral("0"));
        QCOMPARE(f.Misu->text(), QStringLiteral("2,200"));
    }

    void aStatementOfSeventeenLinesShowsEighteenRowsWithItsListAndTotals() {
        Screen s;
        test::script();
        QList<std::tuple<QString, double, double, double, double>> lines;
        for (int k = 1; k <= 17; ++k)
            lines.append({QStringLiteral("품목 %1호").arg(k), double(k), 1100, 1000.0 * k, 100.0 * k});
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-08"),
                               QStringLiteral("000001"), lines);
        test::addDealStatement(QStringLiteral("000002"), QStringLiteral("2024-05-09"),
                               QStringLiteral("000002"), {{QStringLiteral("앵글"), 1, 11000, 10000, 1000}});
        FrmDealList& f = s.open();
        chooseListRow(f, 1);
        QCOMPARE(f.spDetail->MaxRows(), 18);
        QCOMPARE(f.spDetail->Text(ColBillSeq, 18), QStringLiteral("0"));
        QCOMPARE(f.gong->text(), QStringLiteral("153,000"));
        QCOMPARE(f.se->text(), QStringLiteral("15,300"));
        QCOMPARE(f.sum->text(), QStringLiteral("168,300"));
        f.txtMemo->setText(QStringLiteral("5월분 납품"));
        test::saveScreenshot(&f, QStringLiteral("frm_deal_list_filled"));
    }

    void f4OnTheFirstLineAsksAndTakesItAwayWithItsTotals() {
        Screen s;
        auto& msgs = test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 1);
        goToCell(f, ColPName, 1);
        msgs.answer(AnsYes);
        pressKey(focused(), Qt::Key_F4);
        QCOMPARE(msgs.boxes().back().title, QStringLiteral("거래내역 삭제"));
        QCOMPARE(msgs.boxes().back().text, QStringLiteral("선택된 거래내역을 삭제하시겠습니까?"));
        QCOMPARE(test::detailRows(QStringLiteral("000001")), 2);
        QCOMPARE(test::headValue(QStringLiteral("000001"), QStringLiteral("TotAmount")), 2500.0);
        QCOMPARE(test::headValue(QStringLiteral("000001"), QStringLiteral("NumBill")), 2.0);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("너트"));
        QCOMPARE(f.gong->text(), QStringLiteral("2,500"));
        QCOMPARE(f.spMaster->Value(ColNumBill, 1), 2.0);
        QCOMPARE(f.spMaster->Value(ColTotal, 1), 2750.0);
    }

    void f4OnThePendingRowSaysToChooseARowFirst() {
        Screen s;
        auto& msgs = test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 2);
        goToCell(f, ColPName, 2);
        pressKey(focused(), Qt::Key_F4);
        QCOMPARE(msgs.last().text, QStringLiteral("삭제할 행을 먼저 선택하세요."));
        QCOMPARE(test::detailRows(QStringLiteral("000002")), 1);
    }

    void f4OnTheOnlyLineRemovesTheStatementWithoutItsSecondPrompt() {
        Screen s;
        auto& msgs = test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 2);
        goToCell(f, ColPName, 1);
        msgs.answer(AnsYes);
        pressKey(focused(), Qt::Key_F4);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(test::masterRows(), 2);
        QCOMPARE(test::detailRows(QStringLiteral("000002")), 0);
        QCOMPARE(f.spMaster->MaxRows(), 3);
        QCOMPARE(f.spMaster->Text(ColMasterBillNo, 2), QStringLiteral("000003"));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000001"));
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("파이프"));
    }

    void f4OnTheListAsksAndRemovesTheStatementWithItsLines() {
        Screen s;
        auto& msgs = test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 1);
        msgs.answer(AnsNo);
        pressKey(focused(), Qt::Key_F4);
        QCOMPARE(msgs.last().title, QStringLiteral("기존발행전표 삭제"));
        QCOMPARE(test::masterRows(), 3);
        msgs.answer(AnsYes);
        pressKey(focused(), Qt::Key_F4);
        QCOMPARE(test::masterRows(), 2);
        QCOMPARE(test::detailRows(QStringLiteral("000001")), 0);
        QCOMPARE(f.spMaster->Text(ColMasterBillNo, 1), QStringLiteral("000002"));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000002"));
        QCOMPARE(f.spTotal->Value(ColNumBill, 1), 2.0);
    }

    void aChangeOfVatModeAsksAndRecalculatesByEachAnswer() {
        Screen s;
        auto& msgs = test::script();
        addThreeStatements();
        FrmDealList& f = s.open();
        chooseListRow(f, 1);
        goToCell(f, ColPName, 2);
        // Cancel: the option stays changed, nothing is recalculated.
        msgs.answer(AnsCancel);
        f.gubun[2]->click();
        QCOMPARE(msgs.last().text, vatModeChangeQuestion());
        QCOMPARE(msgs.last().buttons, MbYesNoCancel | MbDefaultButton2);
        QCOMPARE(GetSetting(kAppSection, kEnvSection, QStringLiteral("명세서부가세구분")),
                 QStringLiteral("2"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 2, QStringLiteral("VAT")).toDouble(), 200.0);
        // No: the chosen line only, in the mode chosen.
        msgs.answer(AnsNo);
        f.gubun[2]->click();
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 2, QStringLiteral("Amount")).toDouble(), 2000.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 2, QStringLiteral("VAT")).toDouble(), 0.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), 300.0);
        // Yes: every line, VAT on top.
        msgs.answer(AnsYes);
        f.gubun[0]->click();
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), 3300.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), 330.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 3, QStringLiteral("VAT")).toDouble(), 55.0);
        QCOMPARE(test::headValue(QStringLiteral("000001"), QStringLiteral("TotAmount")), 3300.0 + 2000 + 550);
        QCOMPARE(test::headValue(QStringLiteral("000001"), QStringLiteral("TotVat")), 330.0 + 200 + 55);
        QCOMPARE(f.gong->text(), QStringLiteral("5,850"));
        // No on the pending row: nothing to recalculate.
        goToCell(f, ColPName, 4);
        msgs.answer(AnsNo);
        msgs.answer(AnsOk);
        f.gubun[1]->click();
        QCOMPARE(msgs.last().text,
                 QStringLiteral("현재 선택된 순번은 자료가 입력되어\r\n있지 않아 계산을 할 수 없습니다."));
        QCOMPARE(msgs.unscripted(), 0);
        // The box as the operator sees it, over the screen with the statement's lines.
        std::unique_ptr<QMessageBox> box(buildMessageBox(
            vatModeChangeQuestion(), MbYesNoCancel | MbDefaultButton2, QStringLiteral("누벨라"), &f));
        box->show();
        box->move(f.mapToGlobal(QPoint(200, 150)));
        QApplication::processEvents();
        QImage shot = f.grab().toImage();
        QPainter painter(&shot);
        painter.drawPixmap(QPoint(200, 150), box->grab());
        painter.end();
        shot.save(test::screenshotDir() + QStringLiteral("/frm_deal_list_vat_prompt.png"));
    }

    void aNewStatementNeedsNoRecalculation() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        f.gubun[0]->click();
        QCOMPARE(msgs.records().size(), size_t(0));
        QCOMPARE(GetSetting(kAppSection, kEnvSection, QStringLiteral("명세서부가세구분")),
                 QStringLiteral("0"));
    }

    void theMemoIsAskedForAndCutToSixtyBytes() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        msgs.answerInput(QString(40, QChar(u'가')));
        f.cmdMemo->click();
        QCOMPARE(msgs.last().kind, QStringLiteral("input"));
        QCOMPARE(msgs.last().title, QStringLiteral("비고입력"));
        QCOMPARE(
            msgs.last().text,
            QStringLiteral("거래명세표 발행시 인쇄될 비고를 입력하세요.\r\n최대입력 길이는 한글60자입니다."));
        QCOMPARE(f.txtMemo->text(), QString(30, QChar(u'가')));
        msgs.answerInput(QString());
        f.cmdMemo->click();
        QCOMPARE(f.txtMemo->text(), QString(30, QChar(u'가')));
    }

    void theBalanceAndTelephoneChecksAreKeptAndHideTheirBoxes() {
        Screen s;
        test::script();
        FrmDealList& f = s.open();
        f.ChkNonKum->click();
        QVERIFY(f.PreMisu->isHidden());
        QCOMPARE(GetSetting(kAppSection, kEnvSection, QStringLiteral("명세서미수금")), QStringLiteral("0"));
        f.chk_Phone->click();
        QVERIFY(!f.cmbTelNo->isHidden());
        QCOMPARE(GetSetting(kAppSection, kEnvSection, QStringLiteral("명세서전화번호")), QStringLiteral("1"));
    }

    void clearingTheSealAndRestartingShowsNoSeal() {
        Screen s;
        auto& msgs = test::script();
        QImage seal(40, 40, QImage::Format_RGB32);
        seal.fill(Qt::red);
        QVERIFY(seal.save(appFolderFile(QStringLiteral("공급자도장.gif")), "PNG") ||
                seal.save(appFolderFile(QStringLiteral("공급자도장.gif"))));
        FrmDealList& f = s.open();
        QVERIFY(!f.imgPic->pixmap().isNull()); // no setting: the default file
        QTest::mouseClick(f.imgPic, Qt::LeftButton);
        QVERIFY(f.picSign->isVisible());
        msgs.answer(AnsYes);
        pressKey(f.picSign, Qt::Key_Delete);
        QCOMPARE(msgs.last().title, QStringLiteral("공급자도장 삭제"));
        QCOMPARE(GetSetting(kAppTitle, kEnvSection, kStatementSealKey, QStringLiteral("x")), QString());
        QVERIFY(f.imgPic->pixmap().isNull());
        s.form.reset();
        FrmDealList& again = s.open();
        QVERIFY(again.imgPic->pixmap().isNull());
        // A seal chosen through the dialog shows again.
        scriptFileChooser().answers << appFolderFile(QStringLiteral("공급자도장.gif"));
        again.cmdSeal->click();
        QVERIFY(!again.imgPic->pixmap().isNull());
    }

    void theDateBoxRefusesATextThatIsNoDate() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        f.txtDate->setFocus();
        f.txtDate->setText(QStringLiteral("2024년13월40일"));
        f.CName1->setFocus();
        QCOMPARE(msgs.last().text, QStringLiteral("올바른 날짜형식이 아닙니다"));
        QCOMPARE(focused(), f.txtDate);
    }
    void theSampleButtonShowsTheEnlargedSampleDrawnByTheProgram() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        QString shown;
        QTimer::singleShot(50, [&shown] {
            if (auto* zoom = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                shown = zoom->objectName();
                zoom->findChild<QPushButton*>(QStringLiteral("cmdClose"))->click();
            }
        });
        f.btnSample->click();
        QCOMPARE(shown, QStringLiteral("frmZoomDealList"));
        QCOMPARE(msgs.boxes().size(), size_t(0)); // no picture file, no box
    }

    void theSmallSampleOpensTheEnlargedOneOnAClick() {
        Screen s;
        test::script();
        FrmPic2 pic;
        QVERIFY(!pic.picture()->pixmap().isNull());
        QString shown;
        QTimer::singleShot(50, [&shown] {
            if (auto* zoom = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                shown = zoom->objectName();
                zoom->reject();
            }
        });
        pic.show();
        QTest::mouseClick(pic.picture(), Qt::LeftButton);
        QCOMPARE(shown, QStringLiteral("frmZoomDealList"));
        test::saveScreenshot(&pic, QStringLiteral("frm_pic2"));
    }
};

NB_TEST_MAIN(TestFrmDealListList)
#include "tst_frm_deal_list_list.moc"
