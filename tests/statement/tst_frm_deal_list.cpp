// The screen FrmDealList driven by keys as an operator works: the receiver by Enter, lines typed
// into the grid (a product from the list, a free-text line, a product registered on the spot),
// quantities and amounts changed, the store's rows checked after each step.
#include "DealListKit.h"
#include "FailureInjection.h"
#include "common/MessageDialogs.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateCells.h"
#include "core/Settings.h"
#include "statement/DealPaper.h"
#include "storage/Stores.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>

using namespace nb;

namespace {

using Screen = test::DealScreen;

using test::focused;
using test::goToCell;
using test::pressKey;
using test::typeIntoCell;

} // namespace

class TestFrmDealList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void emptyScreenShowsTheSupplierTheRangeAndTheCaptions() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        QCOMPARE(f.windowTitle(), QStringLiteral("거래명세표 발행"));
        QCOMPARE(f.CName1->text(), QStringLiteral("하르문상사"));
        QCOMPARE(f.Serial1->text(), QStringLiteral("123-45-67890"));
        QCOMPARE(f.txtDate->text(), QStringLiteral("2024년05월10일"));
        QCOMPARE(DateCellText(f.spDate[0]), QStringLiteral("2024-05-01"));
        QCOMPARE(DateCellText(f.spDate[1]), QStringLiteral("2024-05-10"));
        QCOMPARE(f.pnlHelp->text(),
                 QStringLiteral("*삭제:[F4] *신규등록.검색:[상호]에서 [엔터] *검색이동:[F3]"));
        QCOMPARE(f.cmbTelNo->itemText(0), QStringLiteral("[공급받는자T:]"));
        QCOMPARE(f.cmbTelNo->itemText(1), QStringLiteral("[공급자T:02-123-4567 F:02-123-4568]"));
        QCOMPARE(f.CmbTerm->currentText(), QStringLiteral("2/4분기"));
        QCOMPARE(f.txtYear->text(), QStringLiteral("2024"));
        QVERIFY(f.gubun[1]->isChecked()); // VAT포함 by default
        QVERIFY(f.ChkNonKum->isChecked());
        QVERIFY(!f.chk_Phone->isChecked());
        QVERIFY(f.cmbTelNo->isHidden());
        QCOMPARE(f.btnPrint->toolTip(), QStringLiteral("발행시 자동으로 저장됩니다."));
        QCOMPARE(f.txtMemo->toolTip(), QStringLiteral("오른쪽의 [비고]버튼을 사용하여 입력해 주세요."));
        QCOMPARE(f.spMaster->MaxRows(), 1);
        QCOMPARE(f.spDetail->MaxRows(), 15);
        QCOMPARE(f.spDetail->ColID(ColVat), QStringLiteral("VAT"));
        QCOMPARE(f.spDetail->BackColor(1, 2), 0xE0E0FF);
        QVERIFY(f.spDetail->Lock(ColPName, 1)); // no trader: nothing to type into
        QCOMPARE(focused(), f.CName2);
        QVERIFY(!f.Picture1->hasBackgroundPicture());
        QCOMPARE(msgs.boxes().size(), size_t(0)); // no picture shipped, no box
        test::saveScreenshot(&f, QStringLiteral("frm_deal_list_empty"));
    }

    void aPeriodWithoutStatementsShowsZeroAndABlankInTheAllTraderTotal() {
        Screen s;
        test::script();
        FrmDealList& f = s.open();
        QCOMPARE(f.pnlSum->text(), QStringLiteral("0 "));
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-04-03"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 11000, 10000, 1000}});
        test::addDealStatement(QStringLiteral("000002"), QStringLiteral("2024-07-03"),
                               QStringLiteral("000002"), {{QStringLiteral("너트"), 1, 550, 500, 50}});
        f.txtYear->setFocus();
        test::enter(f.txtYear);
        QCOMPARE(f.pnlSum->text(), QStringLiteral("11,000 "));
        f.gubun2[2]->click();
        QCOMPARE(f.CmbTerm->count(), 1);
        QCOMPARE(f.CmbTerm->currentText(), QStringLiteral("한해집계"));
        QCOMPARE(f.pnlSum->text(), QStringLiteral("11,550 "));
        f.gubun2[1]->click();
        QCOMPARE(f.CmbTerm->currentText(), QStringLiteral("1/2분기"));
        QCOMPARE(f.pnlSum->text(), QStringLiteral("11,000 "));
    }

    void openingOnTheFirstDayOfAMonthShowsTheSameDateInBothRangeCells() {
        Screen s;
        test::script();
        setClock([] { return QDateTime(QDate(2024, 6, 1), QTime(8, 0)); });
        FrmDealList& f = s.open();
        QCOMPARE(DateCellText(f.spDate[0]), QStringLiteral("2024-06-01"));
        QCOMPARE(DateCellText(f.spDate[1]), QStringLiteral("2024-06-01"));
    }

    void withNoSupplierSerialInTheSharedStateTheFirstSupplierIsShown() {
        Screen s;
        test::script();
        test::addSupplier({QStringLiteral("999-99-99999"), QStringLiteral("둘째상사"), QString(), QString(),
                           QString(), QString(), QString(), QString()});
        app().DefaultSerial.clear();
        FrmDealList& f = s.open();
        QCOMPARE(f.Serial1->text(), QStringLiteral("123-45-67890"));
        QCOMPARE(f.CName1->text(), QStringLiteral("하르문상사"));
    }

    void withNoSupplierTheScreenAsksForOneAndGoes() {
        test::TestHome home;
        test::fixClock();
        test::openStores();
        test::installStoreLookups();
        auto& msgs = test::script();
        QPointer<FrmDealList> f = new FrmDealList();
        test::showActive(f.data());
        QCOMPARE(msgs.boxes().at(0).text, QStringLiteral("사용자등록을 먼저하셔야 합니다"));
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("userEntry")));
        QTRY_VERIFY(f.isNull());
        setClock({});
    }

    void aTraderChosenByEnterShowsTheReceiverAndOpensTheFirstLine() {
        Screen s;
        test::script();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000001"));
        QCOMPARE(f.CName2->text(), QStringLiteral("가나철강"));
        QCOMPARE(f.Serial2->text(), QStringLiteral("234-56-78901"));
        QCOMPARE(f.Addr2->text(), QStringLiteral("부산시 동구 중앙대로 1"));
        QCOMPARE(f.cmbTelNo->itemText(0), QStringLiteral("[공급받는자T:051-234-5678]"));
        QCOMPARE(f.spDetail->Text(ColBillSeq, 1), QStringLiteral("0")); // the pending row
        QVERIFY(!f.spDetail->Lock(ColPName, 1));
        QVERIFY(f.spDetail->Lock(ColPName, 2));
        QCOMPARE(f.spDetail->ActiveRow(), 1);
        QCOMPARE(focused()->parentWidget(), f.spDetail->viewport());
    }

    void anUnknownTraderMayBeRegisteredOrDeclined() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        msgs.answer(AnsNo);
        test::chooseTrader(f, QStringLiteral("없는상사"));
        QCOMPARE(msgs.last().title, QStringLiteral("매출처 검색"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("검색한 매출처가 등록되어 있지 않습니다.\r\n매출처를 등록하겠습니까?"));
        QVERIFY(f.CName2->text().isEmpty());
        QVERIFY(f.txtCCode->text().isEmpty());
        test::lookupLog().newCode = QStringLiteral("000002");
        msgs.answer(AnsYes);
        test::chooseTrader(f, QStringLiteral("새상사"));
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("newTrader:새상사:2024-05")));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000002"));
        QCOMPARE(f.CName2->text(), QStringLiteral("다라상회"));
    }

    void anOperatorTypesThreeLinesChangesAQuantityAndOvertypesAnAmount() {
        Screen s;
        auto& msgs = test::script();
        test::registerProductsOnTheSpot(QStringLiteral("000009"), 5500);
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        // A product from the list: quantity 1, its unit and price, amount and VAT carved out.
        test::typeProductAndChoose(QStringLiteral("볼트"), QStringLiteral("000001"));
        QCOMPARE(test::masterRows(), 1);
        const QString no = QStringLiteral("000001");
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("볼트(M8)"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("PName")).toString(), QStringLiteral("볼트(M8)"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Unit")).toString(), QStringLiteral("EA"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Quant")).toDouble(), 1.0);
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Price")).toDouble(), 1000.0);
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Amount")).toDouble(), 909.0);
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("VAT")).toDouble(), 91.0);
        QCOMPARE(test::headValue(no, QStringLiteral("TotAmount")), 909.0);
        QCOMPARE(f.spMaster->Text(ColMasterBillNo, 1), no);
        QCOMPARE(f.spMaster->MaxRows(), 2);
        QCOMPARE(f.LastSavedCCode(), QStringLiteral("000001"));
        QCOMPARE(f.spDetail->ActiveCol(), int(ColQuant));
        QCOMPARE(f.spDetail->ActiveRow(), 1);
        // The quantity: amount and VAT follow; Enter goes on to the next line.
        typeIntoCell(QStringLiteral("3"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Amount")).toDouble(), 2727.0);
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("VAT")).toDouble(), 273.0);
        QCOMPARE(f.gong->text(), QStringLiteral("2,727"));
        QCOMPARE(f.sum->text(), QStringLiteral("3,000"));
        QCOMPARE(f.spDetail->ActiveCol(), int(ColPName));
        QCOMPARE(f.spDetail->ActiveRow(), 2);
        // A free-text line: nothing found, the registration declined.
        msgs.answer(AnsCancel);
        typeIntoCell(QStringLiteral("수리비"));
        QCOMPARE(msgs.last().title, QStringLiteral("상품 검색"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("검색된 상품이 없습니다. \r\n\r\n상품을 등록하시겠습니까?    "));
        QCOMPARE(test::lineValue(no, 2, QStringLiteral("PName")).toString(), QStringLiteral("수리비"));
        QCOMPARE(test::lineValue(no, 2, QStringLiteral("Quant")).toDouble(), 1.0);
        QCOMPARE(test::lineValue(no, 2, QStringLiteral("Amount")).toDouble(), 0.0);
        QCOMPARE(f.spDetail->ActiveCol(), int(ColQuant));
        QCOMPARE(f.spDetail->ActiveRow(), 2);
        // A product registered on the spot fills its line like one from the list.
        goToCell(f, ColPName, 3);
        msgs.answer(AnsOk);
        typeIntoCell(QStringLiteral("신제품"));
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("newProduct:신제품:2024년05월10일")));
        QCOMPARE(test::lineValue(no, 3, QStringLiteral("Unit")).toString(), QStringLiteral("SET"));
        QCOMPARE(test::lineValue(no, 3, QStringLiteral("Amount")).toDouble(), 5000.0);
        QCOMPARE(test::lineValue(no, 3, QStringLiteral("VAT")).toDouble(), 500.0);
        // An amount overtyped changes that cell and the totals only.
        goToCell(f, ColAmount, 1);
        typeIntoCell(QStringLiteral("3000"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Amount")).toDouble(), 3000.0);
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("VAT")).toDouble(), 273.0);
        QCOMPARE(test::headValue(no, QStringLiteral("TotAmount")), 8000.0);
        QCOMPARE(test::headValue(no, QStringLiteral("TotVat")), 773.0);
        QCOMPARE(test::headValue(no, QStringLiteral("NumBill")), 3.0);
        QCOMPARE(f.gong->text(), QStringLiteral("8,000"));
        QCOMPARE(f.se->text(), QStringLiteral("773"));
        QCOMPARE(f.spMaster->Value(ColTotal, 1), 8773.0);
        QCOMPARE(f.spTotal->Value(ColTotal, 1), 8773.0);
        QCOMPARE(f.spTotal->Value(ColNumBill, 1), 3.0);
        QCOMPARE(f.pnlSum->text(), QStringLiteral("8,773 "));
        QCOMPARE(msgs.unscripted(), 0);
        test::saveScreenshot(&f, QStringLiteral("frm_deal_list_typed"));
    }

    void aValueTypedOnThePendingRowOutsideTheProductAsksForTheProductFirst() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        goToCell(f, ColUnit, 1);
        typeIntoCell(QStringLiteral("EA"));
        QCOMPARE(msgs.last().text, QStringLiteral("품목을 먼저 입력하세요."));
        QCOMPARE(f.spDetail->Text(ColUnit, 1), QStringLiteral("EA"));
        QCOMPARE(f.spDetail->ActiveCol(), int(ColPName));
        QCOMPARE(test::masterRows(), 0);
    }

    void enterInAnEmptyProductCellListsAllProductsOrOffersTheFirst() {
        Screen s;
        auto& msgs = test::script();
        test::exec(stores().dbBasic, QStringLiteral("DELETE FROM Product"));
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        msgs.answer(AnsCancel);
        goToCell(f, ColPName, 1);
        pressKey(focused(), Qt::Key_Return);
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("product:")));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("등록된 상품이 없습니다. \r\n\r\n상품을 등록하시겠습니까?    "));
    }

    void tabbingOutOfAnEmptyProductCellDoesNothing() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        goToCell(f, ColPName, 1);
        pressKey(focused(), Qt::Key_Tab);
        QCOMPARE(msgs.records().size(), size_t(0));
        QVERIFY(!test::lookupLog().calls.contains(QStringLiteral("product:")));
        QCOMPARE(test::masterRows(), 0);
    }

    void aNewLineInModeVatIncludedOfElevenThousandGivesTenThousandAndOneThousand() {
        Screen s;
        test::script();
        test::addProductRow(QStringLiteral("000010"), QStringLiteral("공구세트"), QString(), 11000,
                            QStringLiteral("SET"));
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        test::typeProductAndChoose(QStringLiteral("공구"), QStringLiteral("000010"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), 10000.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), 1000.0);
    }

    void aLineSavedWithVatKeepsItsOwnModeUnderExemptWhenItsQuantityChanges() {
        Screen s;
        test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-09"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 1000, 1000, 100}});
        SaveSetting(kAppSection, kEnvSection, QStringLiteral("명세서부가세구분"), QStringLiteral("2"));
        FrmDealList& f = s.open();
        QVERIFY(f.gubun[2]->isChecked());
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, 1);
        goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("2"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), 2000.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), 200.0);
    }

    void aQuantityOfZeroGivesZeroAndTheNextChangeTakesTheScreensMode() {
        Screen s;
        test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-09"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 1000, 1000, 100}});
        FrmDealList& f = s.open();
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, 1);
        goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("0"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), 0.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), 0.0);
        goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("2"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), 1818.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), 182.0);
    }

    void aNegativeQuantityRoundsAwayFromZeroAndCutsItsVatTowardsZero() {
        Screen s;
        test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-09"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 1255, 1255, 125}});
        FrmDealList& f = s.open();
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, 1);
        goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("-3"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), -3765.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("VAT")).toDouble(), -376.0);
        QCOMPARE(test::headValue(QStringLiteral("000001"), QStringLiteral("TotAmount")), -3765.0);
    }
    void aFailedSaveOfAQuantityPutsTheOldTextBackAndLeavesTheStoreAsItWas() {
        Screen s;
        auto& msgs = test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-09"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 1100, 1000, 100}});
        FrmDealList& f = s.open();
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, 1);
        QVERIFY(test::refuseWrites(stores().dbBill, {QStringLiteral("Detail"), test::Change::Update}));
        goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("5"));
        QVERIFY(
            msgs.boxes().back().text.startsWith(QStringLiteral("자료를 수정하는 중 오류가 발생했습니다.")));
        QCOMPARE(f.spDetail->Text(ColQuant, 1), QStringLiteral("1"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Quant")).toDouble(), 1.0);
        QCOMPARE(test::headValue(QStringLiteral("000001"), QStringLiteral("TotAmount")), 1000.0);
        QCOMPARE(f.gong->text(), QStringLiteral("1,000"));
        QVERIFY(test::allowWrites(stores().dbBill));
    }

    void aFailedFirstLineLeavesNoStatementBehind() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        QVERIFY(test::refuseWrites(stores().dbBill, {QStringLiteral("Detail"), test::Change::Insert}));
        test::typeProductAndChoose(QStringLiteral("볼트"), QStringLiteral("000001"));
        QVERIFY(
            msgs.boxes().back().text.startsWith(QStringLiteral("자료를 저장하는 중 오류가 발생했습니다.")));
        QCOMPARE(test::masterRows(), 0);
        QCOMPARE(f.spMaster->MaxRows(), 1);
        QVERIFY(f.spDetail->Text(ColPName, 1).isEmpty());
        QVERIFY(f.LastSavedCCode().isEmpty());
        QVERIFY(test::allowWrites(stores().dbBill));
    }

    void theKeysOfTheHeadMoveToTheReceiverAndTheRangeSpinsByADay() {
        Screen s;
        test::script();
        FrmDealList& f = s.open();
        f.txtDate->setFocus();
        pressKey(f.txtDate, Qt::Key_Return);
        QCOMPARE(focused(), f.CName2);
        f.PreMisu->setFocus();
        pressKey(f.PreMisu, Qt::Key_F3);
        QCOMPARE(focused(), f.CName2);
        pressKey(f.CName2, Qt::Key_Down); // no receiver chosen: the arrow stays
        QCOMPARE(focused(), f.CName2);
        f.udDateUp[1]->click();
        QCOMPARE(DateCellText(f.spDate[1]), QStringLiteral("2024-05-11"));
        f.chkChain->setChecked(true);
        f.udDateDown[0]->click();
        QCOMPARE(DateCellText(f.spDate[0]), QStringLiteral("2024-04-30"));
        QCOMPARE(DateCellText(f.spDate[1]), QStringLiteral("2024-04-30"));
    }
};

NB_TEST_MAIN(TestFrmDealList)
#include "tst_frm_deal_list.moc"
