// The quotation screen driven by keys as an operator works: a new quotation with a trader found
// by Enter, lines by product search and free text, edits, deletes, the list, and its edge cases.
#include "EstimateScreenKit.h"
#include "common/dates/DateBox.h"
#include "common/input/ImeMode.h"
#include "core/ScreenRegistry.h"
#include "master/FrmProductList.h"
#include "quotation/FrmEstiList.h"
#include "quotation/QuotationScreens.h"

#include <QComboBox>
#include <QRadioButton>
#include <QTableView>

using namespace nb;
using test::enterHere;
using test::keyHere;
using test::pressKey;

namespace {

int lines(const QString& where = QString(), const QVariantList& values = {}) {
    return test::estimateRows(QStringLiteral("Estimate"), where, values);
}
int heads(const QString& where = QString(), const QVariantList& values = {}) {
    return test::estimateRows(QStringLiteral("EstiBase"), where, values);
}
QVariant lineValue(const QString& column, int seq = 1) {
    return test::scalar(stores().dbEstimate,
                        QStringLiteral("SELECT ") + column + QStringLiteral(" FROM Estimate WHERE Seq = ?"),
                        {seq});
}
QVariant headValue(const QString& column, const QString& code = QStringLiteral("202405001")) {
    return test::scalar(
        stores().dbEstimate,
        QStringLiteral("SELECT ") + column + QStringLiteral(" FROM EstiBase WHERE EstiCode = ?"), {code});
}

// The trader chosen, the head saved on entering the grid (its first save asks).
void startQuotation(FrmEstimate& f, ScriptedMessages& s) {
    test::chooseTrader(f, QStringLiteral("가나"));
    s.answer(AnsYes); // 입력하신 내용을 저장하시겠습니까?
    f.grdEstimate->setFocus();
}

// Enter on the empty product cell of the row; the list delivers the product.
void pickProduct(FrmEstimate& f, const QString& code) {
    test::lookupLog().chooseOnShow = code;
    QVERIFY(f.grdEstimate->ActiveCol() == ColPName);
    enterHere();
}

// The screen open with the trader chosen and the head stored; with a line of 볼트 when asked.
struct StartedQuotation {
    test::EstimateScreen screen;
    FrmEstimate& f;
    ScriptedMessages& s;
    explicit StartedQuotation(bool withLine = false) : f(screen.open()), s(test::script()) {
        startQuotation(f, s);
        if (withLine) pickProduct(f, QStringLiteral("000001"));
    }
};

// Modal list on show: the keys go to it once the event loop runs.
void whenListShows(std::function<void(FrmEstiList&)> act) {
    QTimer::singleShot(0, [act] {
        auto* list = qobject_cast<FrmEstiList*>(QApplication::activeModalWidget());
        if (!list) return;
        act(*list);
    });
}

} // namespace

class TestFrmEstimate : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void loadShowsTodayNextNumberAndDefaults() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        QCOMPARE(f.windowTitle(), QStringLiteral("상품 견적서관리"));
        QCOMPARE(f.txtDate[0]->text(), QStringLiteral("2024-05-10"));
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202405001"));
        QCOMPARE(f.CmbFind->currentText(), QStringLiteral("거래처명"));
        QCOMPARE(f.CmbFind->count(), 4);
        QVERIFY(f.OptVat[1]->isChecked());
        QVERIFY(f.IsNewDoc());
        QVERIFY(stores().dbEstimate.isOpen());
        QCOMPARE(f.grdEstimate->Text(ColPName, 0), QStringLiteral("상  품  명"));
        QCOMPARE(f.grdEstimate->Text(ColKum, 0), QStringLiteral("금    액"));
        QCOMPARE(f.grdEstimate->cellFormat(ColAmount, 1).decimals, 1);
    }

    void newQuotationByKeysWithTraderLinesEditsAndDeletes() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        // The trader found by Enter; the number and both dates follow.
        test::chooseTrader(f, QStringLiteral("가나"));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000001"));
        QCOMPARE(f.txtinput[0]->text(), QStringLiteral("가나철강"));
        QCOMPARE(f.txtDate[1]->text(), QStringLiteral("2024-05-10"));
        QCOMPARE(test::focused(), f.txtinput[1]);
        test::typeText(f.txtinput[1], QStringLiteral("사무용품"));
        enterHere();
        test::typeText(f.txtinput[2], QStringLiteral("김과장"));
        enterHere();
        QCOMPARE(f.pnlFunction->text(), QString()); // txtinput(3) has no hint
        enterHere();
        test::typeText(f.txtinput[4], QStringLiteral("4개월"));
        QCOMPARE(f.pnlFunction->text(), QStringLiteral("유효기간을 입력하세요. [예] 4개월"));
        enterHere();
        test::typeText(f.txtinput[5], QStringLiteral("현금"));
        enterHere();
        QCOMPARE(test::focused(), f.txtDate[0]);
        enterHere();
        QCOMPARE(test::focused(), f.txtDate[1]);
        QCOMPARE(f.pnlFunction->text(), QStringLiteral("납품예정일자를 입력하세요."));
        // Leaving the delivery date writes it at once: no head yet, so its message shows; then
        // the grid takes the focus and the first head save asks.
        s.answer(AnsOk);
        s.answer(AnsYes);
        enterHere();
        QCOMPARE(s.boxes().at(0).text,
                 QStringLiteral("견적서의 납품예정일을 변경하는 중 오류가 발생했습니다."));
        QCOMPARE(s.boxes().at(1).text, QStringLiteral("입력하신 내용을 저장하시겠습니까?"));
        QCOMPARE(s.boxes().at(1).title, QStringLiteral("견적내역 저장"));
        QCOMPARE(heads(), 1);
        QCOMPARE(headValue(QStringLiteral("Refer")).toString(), QStringLiteral("김과장"));
        QCOMPARE(headValue(QStringLiteral("EstiKum")).toDouble(), 0.0);
        QCOMPARE(f.pnlFunction->text(), kGridHint);
        QCOMPARE(f.grdEstimate->ActiveRow(), 1);

        // Line 1 and 2 by product search, line 3 free text.
        pickProduct(f, QStringLiteral("000001"));
        QCOMPARE(f.grdEstimate->Text(ColPName, 1), QStringLiteral("볼트"));
        QCOMPARE(f.grdEstimate->Text(ColPrice, 1), QStringLiteral("1,000.0"));
        QCOMPARE(f.grdEstimate->Text(ColSeq, 1), QStringLiteral("1"));
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColUnit));
        QCOMPARE(f.LineCount(), 1);
        QCOMPARE(lines(), 1);
        enterHere(); // unit -> quantity
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColAmount));
        test::typeCell(f.grdEstimate, QStringLiteral("1.5"));
        // 1.5 x 1,000: the line holds 1,500, the total adds 2,000.
        QCOMPARE(f.grdEstimate->Text(ColKum, 1), QStringLiteral("1,500"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("2,000 "));
        QCOMPARE(f.pnlHanKum->text(), QStringLiteral(" 일금 이천 원정"));
        QCOMPARE(
            test::scalar(stores().dbEstimate, QStringLiteral("SELECT EstiKum FROM Estimate WHERE Seq = 1"))
                .toInt(),
            1500);
        QCOMPARE(
            test::scalar(stores().dbEstimate, QStringLiteral("SELECT EAmount FROM Estimate WHERE Seq = 1"))
                .toDouble(),
            1.5);
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPrice));
        enterHere(); // price -> next row
        QCOMPARE(f.grdEstimate->ActiveRow(), 2);
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPName));
        pickProduct(f, QStringLiteral("000002"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("2,550 "));
        QCOMPARE(f.grdEstimate->Text(ColSeq, 2), QStringLiteral("2"));
        enterHere();
        enterHere();
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPrice));
        test::typeCell(f.grdEstimate, QStringLiteral("600"));
        QCOMPARE(f.grdEstimate->Text(ColKum, 2), QStringLiteral("600"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("2,600 "));
        QCOMPARE(
            test::scalar(stores().dbEstimate, QStringLiteral("SELECT EUnitPrice FROM Estimate WHERE Seq = 2"))
                .toDouble(),
            600.0);
        QCOMPARE(f.grdEstimate->ActiveRow(), 3);
        test::typeCell(f.grdEstimate, QStringLiteral("설치비"));
        QCOMPARE(f.grdEstimate->Text(ColAmount, 3), QStringLiteral("0.0"));
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPNorm));
        QCOMPARE(lines(), 2); // a free-text line is not stored
        test::saveScreenshot(&f, QStringLiteral("frm_estimate"));

        // F4 on line 2: painted, asked, deleted; the row below moves up.
        f.grdEstimate->SetActiveCell(ColPName, 2);
        s.clear();
        s.answer(AnsYes);
        keyHere(Qt::Key_F4);
        QCOMPARE(s.boxes().at(0).text, QStringLiteral("선택하신 견적내역을 삭제하시겠습니까?"));
        QCOMPARE(s.boxes().at(0).title, QStringLiteral("견적내역 삭제"));
        QCOMPARE(s.records().back().kind, QStringLiteral("notice"));
        QCOMPARE(s.records().back().text, QStringLiteral("자료를 삭제하였습니다."));
        QCOMPARE(s.records().back().color, 16761024);
        QCOMPARE(lines(), 1);
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("2,000 "));
        QCOMPARE(headValue(QStringLiteral("EstiKum")).toDouble(), 2000.0);
        QCOMPARE(f.grdEstimate->Text(ColPName, 2), QStringLiteral("설치비"));
        QCOMPARE(f.grdEstimate->BackColor(ColPName, 2), kWhiteColor);
        QCOMPARE(f.LineCount(), 1);

        // F5: the whole quotation goes.
        s.clear();
        s.answer(AnsYes);
        keyHere(Qt::Key_F5);
        QCOMPARE(s.boxes().at(0).text, QStringLiteral("전체 견적내역을 삭제하시겠습니까?"));
        QCOMPARE(s.records().back().text, QStringLiteral("견적내역 삭제 완료!!"));
        QCOMPARE(heads(), 0);
        QCOMPARE(lines(), 0);
        QCOMPARE(f.txtCCode->text(), QString());
        QCOMPARE(test::focused(), f.txtFind);
    }

    // A quotation of more lines than the grid's hundred rows: every line loaded, the grid grown to
    // hold them and the view told of every row, the total of them all.
    void aQuotationLongerThanTheGridLoadsEveryLine() {
        test::EstimateScreen screen;
        QVERIFY(test::openQuotationStores());
        QList<std::tuple<QString, double, double>> many;
        for (int i = 1; i <= 130; ++i)
            many.append({QStringLiteral("품목%1").arg(i), 1.0, 100.0 * i});
        test::addQuotation(QStringLiteral("202404001"), QStringLiteral("2024-04-02"),
                           QStringLiteral("가나철강"), many);
        FrmEstimate& f = screen.open();
        f.pnlCode->setText(QStringLiteral("202404001"));
        f.LoadLines();
        QCOMPARE(f.LineCount(), 130);
        QCOMPARE(f.grdEstimate->MaxRows(), 130);
        QCOMPARE(f.grdEstimate->model()->rowCount(), 130);
        QCOMPARE(f.grdEstimate->Text(ColPName, 130), QStringLiteral("품목130"));
        QCOMPARE(f.grdEstimate->Text(ColPrice, 130), QStringLiteral("13,000.0"));
        QCOMPARE(f.grdEstimate->model()->index(129, ColPName - 1).data().toString(),
                 QStringLiteral("품목130"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("851,500"));
    }

    // The lines are read by each field's place: every column of the grid shows its own field.
    void everyColumnOfALoadedLineShowsItsOwnField() {
        test::EstimateScreen screen;
        QVERIFY(test::openQuotationStores());
        test::addEstiHead(QStringLiteral("202404002"), QStringLiteral("000001"), QStringLiteral("가나철강"),
                          QStringLiteral("2024-04-02"), 7500);
        QVERIFY(test::exec(stores().dbEstimate,
                           QStringLiteral("INSERT INTO Estimate (Seq, Code, PCode, PName, PNorm, EAmount, "
                                          "EUnitPrice, EstiKum, EUnit) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                           {41, QStringLiteral("202404002"), QStringLiteral("P0077"), QStringLiteral("앵글"),
                            QStringLiteral("50x50"), 2.5, 3000, 7500, QStringLiteral("KG")}));
        FrmEstimate& f = screen.open();
        f.pnlCode->setText(QStringLiteral("202404002"));
        f.LoadLines();
        QCOMPARE(f.LineCount(), 1);
        QCOMPARE(f.grdEstimate->Text(ColPName, 1), QStringLiteral("앵글"));
        QCOMPARE(f.grdEstimate->Text(ColPNorm, 1), QStringLiteral("50x50"));
        QCOMPARE(f.grdEstimate->Text(ColUnit, 1), QStringLiteral("KG"));
        QCOMPARE(f.grdEstimate->Text(ColAmount, 1), QStringLiteral("2.5"));
        QCOMPARE(f.grdEstimate->Text(ColPrice, 1), QStringLiteral("3,000.0"));
        QCOMPARE(f.grdEstimate->Text(ColKum, 1), QStringLiteral("7,500"));
        QCOMPARE(f.grdEstimate->Text(ColCode, 1), QStringLiteral("202404002"));
        QCOMPARE(f.grdEstimate->Text(ColPCode, 1), QStringLiteral("P0077"));
        QCOMPARE(f.grdEstimate->Text(ColSeq, 1), QStringLiteral("41"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("7,500"));
    }

    void searchThroughTheListFetchesHeadAndLines() {
        test::EstimateScreen screen;
        QVERIFY(test::openQuotationStores());
        test::addQuotation(QStringLiteral("202404001"), QStringLiteral("2024-04-02"),
                           QStringLiteral("가나철강"),
                           {{QStringLiteral("앵글"), 2, 5000}, {QStringLiteral("파이프"), 1.5, 1000}});
        test::addQuotation(QStringLiteral("202405001"), QStringLiteral("2024-05-01"),
                           QStringLiteral("다라상회"), {{QStringLiteral("엘보"), 1, 800}}, 10);
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        f.txtFind->setFocus();
        test::typeText(f.txtFind, QStringLiteral("가나"));
        QString shownTitle;
        int shownRows = -1;
        whenListShows([&](FrmEstiList& list) {
            shownTitle = list.windowTitle();
            shownRows = list.rowCount();
            test::saveScreenshot(&list, QStringLiteral("frm_esti_list"));
            pressKey(list.grdList, Qt::Key_Return);
        });
        enterHere();
        QCOMPARE(shownTitle, QStringLiteral("견적 내역 조회"));
        QCOMPARE(shownRows, 1);
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202404001"));
        QCOMPARE(f.txtinput[0]->text(), QStringLiteral("가나철강"));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000001"));
        QCOMPARE(f.txtDate[0]->text(), QStringLiteral("2024-04-02"));
        QCOMPARE(f.LineCount(), 2);
        QCOMPARE(f.grdEstimate->Text(ColPName, 2), QStringLiteral("파이프"));
        QCOMPARE(f.grdEstimate->Text(ColAmount, 2), QStringLiteral("1.5"));
        QCOMPARE(f.grdEstimate->Text(ColAmount, 1), QStringLiteral("2.0"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("11,500"));
        QCOMPARE(f.pnlHanKum->text(), QStringLiteral(" 일금 일만일천오백 원정"));
        QVERIFY(!f.IsNewDoc());
        QCOMPARE(int(s.boxes().size()), 0);
    }

    void productChosenInTheRealProductListByKeys() {
        test::EstimateScreen screen;
        setInvoiceLookups(masterLookups());
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        startQuotation(f, s);
        QString shown;
        QTimer::singleShot(0, [&shown] {
            auto* list = qobject_cast<FrmProductList*>(QApplication::activeModalWidget());
            if (!list) return;
            shown = list->objectName();
            test::typeText(list->txtinput(), QStringLiteral("와셔"));
            pressKey(list->txtinput(), Qt::Key_Return); // the first match becomes the active row
            pressKey(list->txtinput(), Qt::Key_Down);   // to the list
            pressKey(list->grdList(), Qt::Key_Return);  // chosen
        });
        enterHere();
        QVERIFY(!shown.isEmpty());
        QCOMPARE(f.grdEstimate->Text(ColPName, 1), QStringLiteral("와셔"));
        QCOMPARE(f.grdEstimate->Text(ColPNorm, 1), QStringLiteral("8mm"));
        QCOMPARE(f.grdEstimate->Text(ColUnit, 1), QStringLiteral("BOX"));
        QCOMPARE(f.grdEstimate->Text(ColPCode, 1), QStringLiteral("000003"));
        QCOMPARE(f.txtPCode->text(), QString());
        QCOMPARE(lines(QStringLiteral("WHERE PCode = '000003'")), 1);
    }

    void escInTheListLeavesTheNumberAsItWas() {
        test::EstimateScreen screen;
        QVERIFY(test::openQuotationStores());
        test::addQuotation(QStringLiteral("202404001"), QStringLiteral("2024-04-02"),
                           QStringLiteral("가나철강"), {{QStringLiteral("앵글"), 2, 5000}});
        FrmEstimate& f = screen.open();
        f.txtinput[0]->setText(QStringLiteral("지울것"));
        whenListShows([](FrmEstiList& list) { pressKey(list.grdList, Qt::Key_Escape); });
        f.btnFind_Click();
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202405001"));
        // The number is still there, so the head it names is looked for; it has none.
        QCOMPARE(f.focusWidget(), f.txtFind);
        QCOMPARE(f.txtinput[0]->text(), QStringLiteral("지울것"));
    }

    void enteringTheGridWithNoTraderNeitherSavesNorAsks() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        f.txtinput[1]->setFocus();
        f.grdEstimate->setFocus();
        QCOMPARE(int(s.boxes().size()), 0);
        QCOMPARE(heads(), 0);
    }

    void headSaveAnsweredNoThenYesClearsForNewTrader() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        test::chooseTrader(f, QStringLiteral("가나"));
        s.answer(AnsNo);
        s.answer(AnsYes);
        f.grdEstimate->setFocus();
        QCOMPARE(s.boxes().at(1).text, QStringLiteral("새로운 거래처로 등록하시겠습니까?"));
        QCOMPARE(s.boxes().at(1).title, QStringLiteral("견적내역 저장"));
        QCOMPARE(heads(), 0);
        QCOMPARE(f.txtinput[0]->text(), QString());
        QCOMPARE(test::focused(), f.txtinput[0]);
    }

    void storedHeadIsRewrittenWhenTheGridTakesTheFocusAgain() {
        StartedQuotation q;
        FrmEstimate& f = q.f;
        auto& s = q.s;
        QCOMPARE(heads(), 1);
        f.txtinput[1]->setFocus();
        test::typeText(f.txtinput[1], QStringLiteral("공구"));
        f.grdEstimate->setFocus();
        QCOMPARE(int(s.boxes().size()), 1); // only the first save asked
        QCOMPARE(headValue(QStringLiteral("ClassName")).toString(), QStringLiteral("공구"));
    }

    void rowWithoutProductKeepsSeqEmptyAndItsEditsChangeNothing() {
        StartedQuotation q;
        FrmEstimate& f = q.f;
        auto& s = q.s;
        test::typeCell(f.grdEstimate, QStringLiteral("자유품목"));
        QCOMPARE(f.grdEstimate->Text(ColSeq, 1), QString());
        enterHere();
        enterHere();
        test::typeCell(f.grdEstimate, QStringLiteral("3"));
        test::typeCell(f.grdEstimate, QStringLiteral("500"));
        QCOMPARE(lines(), 0);
        QCOMPARE(f.grdEstimate->Text(ColKum, 1), QStringLiteral("0"));
        QCOMPARE(int(s.boxes().size()), 1);
    }

    void productNotFoundLeavesTheCursorWithTheHint() {
        StartedQuotation q;
        FrmEstimate& f = q.f;
        test::lookupLog().chooseOnShow.clear();
        enterHere();
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPName));
        QCOMPARE(f.grdEstimate->ActiveRow(), 1);
        QCOMPARE(f.pnlFunction->text(), kGridHint);
        QCOMPARE(lines(), 0);
        QCOMPARE(test::lookupLog().shownBelow.last(), QStringLiteral("SSPanel7"));
    }

    void closingTheListOfTheOneProductWithoutAChoiceStoresNoLine() {
        StartedQuotation q;
        FrmEstimate& f = q.f;
        QVERIFY(test::exec(stores().dbBasic, QStringLiteral("DELETE FROM Product WHERE Code <> '000001'")));
        test::lookupLog().chooseOnShow.clear(); // the list closed with 닫기
        enterHere();
        QCOMPARE(test::lookupLog().shownBelow.size(), 1);
        QCOMPARE(lines(), 0);
        QCOMPARE(f.grdEstimate->Text(ColPName, 1), QString());
        QCOMPARE(f.LineCount(), 0);
    }

    void deletingTheLastLineLeavesTotalZeroAndWordsUnchanged() {
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        auto& s = q.s;
        enterHere();
        test::typeCell(f.grdEstimate, QStringLiteral("2"));
        QCOMPARE(f.pnlHanKum->text(), QStringLiteral(" 일금 이천 원정"));
        f.grdEstimate->SetActiveCell(ColPName, 1);
        s.answer(AnsYes);
        keyHere(Qt::Key_F4);
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("0 "));
        QCOMPARE(f.pnlHanKum->text(), QStringLiteral(" 일금 이천 원정"));
        QCOMPARE(headValue(QStringLiteral("EstiKum")).toDouble(), 0.0);
        QCOMPARE(headValue(QStringLiteral("EstiHanKum")).toString(), QStringLiteral("일금 이천 원정"));
        QCOMPARE(f.LineCount(), 0);
    }

    void deleteAnsweredNoPaintsTheRowWhiteAgain() {
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        auto& s = q.s;
        f.grdEstimate->SetActiveCell(ColPName, 1);
        int askedColour = 0;
        s.answer(AnsNo);
        connect(f.grdEstimate, &Grid::textChanged, this, [] {});
        keyHere(Qt::Key_F4);
        askedColour = f.grdEstimate->BackColor(ColPName, 1);
        QCOMPARE(askedColour, kWhiteColor);
        QCOMPARE(lines(), 1);
        QCOMPARE(s.boxes().at(1).text, QStringLiteral("선택하신 견적내역을 삭제하시겠습니까?"));
    }

    void vatOptionThenClosingDoesNotSaveTheFlagUnlessTheGridTookTheFocus() {
        StartedQuotation q;
        FrmEstimate& f = q.f;
        QVERIFY(!headValue(QStringLiteral("Vat")).toBool());
        f.txtinput[2]->setFocus();
        f.OptVat[0]->setChecked(true); // chosen without the click that sends the focus to the grid
        q.screen.form.reset();
        QCOMPARE(headValue(QStringLiteral("Vat")).toInt(), 0);
    }

    void vatOptionClickSendsTheFocusToTheGridWhichSavesTheFlag() {
        StartedQuotation q;
        FrmEstimate& f = q.f;
        f.txtinput[2]->setFocus();
        f.OptVat[0]->click();
        QCOMPARE(headValue(QStringLiteral("Vat")).toInt(), -1);
        QCOMPARE(f.grdEstimate->ActiveRow(), 1);
    }

    void traderNotFoundAsksWithItsOwnWordsAndNoStops() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        s.answer(AnsNo);
        test::chooseTrader(f, QStringLiteral("없는회사"));
        QCOMPARE(s.last().text, QStringLiteral("검색한 거래처가 업습니다.\n거래처를 등록하시겠습니까?"));
        QCOMPARE(s.last().title, QStringLiteral("거래처 검색"));
        QCOMPARE(test::focused(), f.txtinput[0]);
        QCOMPARE(f.txtinput[0]->text(), QStringLiteral("없는회사"));
    }

    void traderNotFoundYesOpensTheEntryFormWithNameAndDate() {
        test::EstimateScreen screen;
        test::exec(stores().dbBasic, QStringLiteral("DELETE FROM Trader"));
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        // The entry form registers the trader and hands its code back.
        invoiceLookups().newTrader = [](QWidget*, QLineEdit* target, const QString& seed, const QString& date,
                                        QWidget*) {
            test::lookupLog().calls << QStringLiteral("newTrader:") + seed + u':' + date;
            test::addTraderRow(QStringLiteral("000009"),
                               {QString(), QStringLiteral("새거래처"), QString(), QString(), QString(),
                                QString(), QString(), QString()});
            target->setText(QStringLiteral("000009"));
        };
        s.answer(AnsYes);
        f.txtinput[0]->setFocus();
        pressKey(f.txtinput[0], Qt::Key_Return);
        QCOMPARE(s.boxes().at(0).text,
                 QStringLiteral("등록된 거래처가 업습니다.\n거래처를 등록하시겠습니까?"));
        QCOMPARE(s.boxes().at(0).title, QStringLiteral("거래처 검색"));
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("newTrader::2024-05-10")));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000009"));
        QCOMPARE(f.txtinput[0]->text(), QStringLiteral("새거래처"));
        QCOMPARE(test::focused(), f.txtinput[1]);
    }

    void badQuotationDateIsRefusedAndTheOldDateComesBack() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        f.txtDate[0]->setFocus();
        f.txtDate[0]->setText(QStringLiteral("2024-13-45"));
        f.txtinput[1]->setFocus();
        QCOMPARE(s.last().text, QStringLiteral("잘못된 날짜 형식입니다.\n정확한 날짜 형식을 입력하세요."));
        QCOMPARE(f.txtDate[0]->text(), QStringLiteral("2024-05-10"));
    }

    void aChangedQuotationDateGivesThatMonthsNextNumber() {
        test::EstimateScreen screen;
        QVERIFY(test::openQuotationStores());
        test::addQuotation(QStringLiteral("202403001"), QStringLiteral("2024-03-02"),
                           QStringLiteral("가나철강"), {});
        FrmEstimate& f = screen.open();
        f.txtDate[0]->setFocus();
        f.txtDate[0]->setText(QStringLiteral("2024-03-20"));
        f.txtinput[1]->setFocus();
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202403002"));
    }

    void insertStartsANewQuotation() {
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        f.txtinput[4]->setText(QStringLiteral("4개월"));
        keyHere(Qt::Key_Insert);
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202405002"));
        QCOMPARE(f.txtinput[0]->text(), QString());
        QCOMPARE(f.txtinput[4]->text(), QStringLiteral("4개월")); // validity and terms are kept
        QCOMPARE(f.grdEstimate->Text(ColPName, 1), QString());
        QCOMPARE(f.LineCount(), 0);
        QCOMPARE(test::focused(), f.txtinput[0]);
    }

    void unitChangeOfAStoredLineIsWritten() {
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        test::typeCell(f.grdEstimate, QStringLiteral("BOX"));
        QCOMPARE(test::scalar(stores().dbEstimate, QStringLiteral("SELECT EUnit FROM Estimate")).toString(),
                 QStringLiteral("BOX"));
    }

    void movingToAnEmptyRowGoesToItsFirstColumnWithTheHint() {
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        f.grdEstimate->SetActiveCell(ColUnit, 4);
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPName));
        QCOMPARE(f.grdEstimate->ActiveRow(), 4);
        QCOMPARE(f.pnlFunction->text(), QStringLiteral("상품명 검색.  [검색:Enter]"));
        f.grdEstimate->SetActiveCell(ColAmount, 4);
        QCOMPARE(f.pnlFunction->text(), QStringLiteral("수량을 입력하세요."));
    }

    void enterOnThePriceOfTheLastRowMakesRoomForAnotherLine() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        const int rows = f.grdEstimate->MaxRows();
        f.grdEstimate->SetText(ColSeq, rows, QStringLiteral("5")); // a stored line on the last row
        f.grdEstimate->setFocus();
        f.grdEstimate->SetActiveCell(ColPrice, rows);
        enterHere();
        QCOMPARE(f.grdEstimate->MaxRows(), rows + 1);
        QCOMPARE(f.grdEstimate->ActiveRow(), rows + 1);
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPName));
    }

    void f5WithoutTraderDoesNothing() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        f.txtinput[1]->setFocus();
        keyHere(Qt::Key_F5);
        QCOMPARE(int(s.records().size()), 0);
    }

    void totalBeyondFourteenDigitsCannotComeFromRecalcLine() {
        // The total is 32 bits wide: past it the recalculation stops with the overflow report.
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        auto& s = q.s;
        enterHere();
        test::typeCell(f.grdEstimate, QStringLiteral("9999999"));
        QCOMPARE(s.last().text,
                 QStringLiteral("Error 6 (Overflow) in procedure RecalcLine of Form FrmEstimate"));
        QVERIFY(f.txtinput[3]->text().remove(u',').trimmed().size() < 14);
    }

    void aLineAmountPastThirtyTwoBitsIsTheOverflowAndNothingIsStored() {
        // 3 x 1,034,379,072 would wrap to -1,191,830,080 in a 32-bit column.
        StartedQuotation q(true);
        FrmEstimate& f = q.f;
        auto& s = q.s;
        enterHere(); // unit -> quantity
        enterHere(); // quantity -> price
        test::typeCell(f.grdEstimate, QStringLiteral("1034379072"));
        QCOMPARE(lineValue(QStringLiteral("EstiKum")).toLongLong(), 1034379072LL);
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("1,034,379,072 "));
        f.grdEstimate->SetActiveCell(ColAmount, 1);
        const int before = int(s.boxes().size());
        test::typeCell(f.grdEstimate, QStringLiteral("3"));
        QCOMPARE(int(s.boxes().size()), before + 1);
        QCOMPARE(s.last().text,
                 QStringLiteral("Error 6 (Overflow) in procedure RecalcLine of Form FrmEstimate"));
        // Nothing stored: the line keeps its quantity and amount, the screen its figures.
        QCOMPARE(lineValue(QStringLiteral("EAmount")).toDouble(), 1.0);
        QCOMPARE(lineValue(QStringLiteral("EstiKum")).toLongLong(), 1034379072LL);
        QCOMPARE(plainNumber(f.grdEstimate->Text(ColAmount, 1)), 1.0);
        QCOMPARE(f.grdEstimate->Text(ColKum, 1), QStringLiteral("1,034,379,072"));
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("1,034,379,072 "));
    }

    void escGoesBackToTheStatementScreen() {
        test::EstimateScreen screen;
        QStringList opened;
        setScreenOpener([&](const QString& control) {
            opened << control;
            return nullptr;
        });
        FrmEstimate& f = screen.open();
        f.txtinput[1]->setFocus();
        keyHere(Qt::Key_Escape);
        QCOMPARE(opened, QStringList{QStringLiteral("mnu_거래명세표")});
        QVERIFY(!f.isVisible());
        QVERIFY(!stores().dbEstimate.isOpen()); // let go of with the screen
        test::showActive(&f);
        QVERIFY(stores().dbEstimate.isOpen()); // loaded afresh when shown again
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202405001"));
        setScreenOpener({});
    }

    void screenRegistersUnderItsMenuEntry() {
        test::EstimateScreen screen;
        clearScreenRegistry();
        registerQuotationScreens();
        const ScreenEntry* entry = screenFor(QStringLiteral("mnu_Estimate"));
        QVERIFY(entry && entry->createChild);
        std::unique_ptr<QWidget> child(entry->createChild());
        QVERIFY(qobject_cast<FrmEstimate*>(child.get()));
        clearScreenRegistry();
    }

    void hangulKeyFlipsTheNameEntryModeForTheForm() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        QVERIFY(f.HangulOn());
        f.txtinput[0]->setFocus();
        QTest::sendKeyEvent(QTest::Press, f.txtinput[0], Qt::Key_Hangul, QString(), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, f.txtinput[0], Qt::Key_Hangul, QString(), Qt::NoModifier);
        QVERIFY(!f.HangulOn());
        f.txtFind->setFocus();
        QVERIFY(!imeModeIsHangul(f.txtFind));
    }
};

NB_TEST_MAIN(TestFrmEstimate)
#include "tst_frm_estimate.moc"
