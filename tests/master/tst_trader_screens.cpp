// The trader entry form and the trader list, driven by keys: fields and hints, the telephone
// shaping, the last address word, modes 0 and 1, the duplicate question, the list contract,
// F3, F4 with the trader's business, and new.
#include "FailureInjection.h"
#include "MasterFixture.h"
#include "core/Clock.h"
#include "master/FrmNewTrader.h"
#include "master/FrmTraderList.h"
#include "master/ListModel.h"
#include "master/TraderRecords.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

using namespace nb;
using namespace nb::test;

namespace {

QVariant traderField(const QString& code, const QString& column) {
    return scalar(stores().dbBasic, "SELECT " + column + " FROM Trader WHERE Code = ?", {code});
}

QStringList listCodes(FrmTraderList& list) {
    QStringList out;
    for (int r = 0; r < list.model()->rowCount(); ++r)
        out << list.model()->text(r, 4);
    return out;
}

} // namespace

class TestTraderScreens : public QObject {
    Q_OBJECT
private Q_SLOTS:

    void enterGoesThroughTheFieldsWithTheirHintsAndShapesTelephones() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addPostRows({{"135080", "서울", "강남구", "역삼동", "1~100"}});
        QLineEdit target;
        FrmNewTrader form;
        form.SetObject(&target);
        form.InitForm(0, "", "2004-05", "");
        showActive(&form);
        QCOMPARE(focused(), form.txtinput(0));
        QCOMPARE(form.pnlCaption()->text(), QStringLiteral("상호명을 입력하세요."));
        const QList<std::pair<int, QString>> steps = {
            {0, "가나상사"},     {1, "홍길동"}, {2, "0212345678"}, {3, "021234567"},
            {15, "01012345678"}, {4, "2"},      {5, ""},           {6, "123-45-67890"},
            {7, "도소매"},       {8, "문구"},   {9, "역삼"}};
        for (const auto& [index, text] : steps) {
            QCOMPARE(focused(), form.txtinput(index));
            QCOMPARE(form.pnlCaption()->text(), form.hintFor(index));
            typeHere(text);
            keyHere(Qt::Key_Return);
        }
        // Enter on the postcode with text searched the book: one hit, no window.
        QCOMPARE(form.txtinput(9)->text(), QStringLiteral("135-080"));
        QCOMPARE(focused(), form.txtinput(10));
        QCOMPARE(form.pnlCaption()->text(), QStringLiteral("번지를 입력하세요."));
        typeHere("123-4");
        keyHere(Qt::Key_Return);
        typeHere("비고");
        keyHere(Qt::Key_Return);
        QCOMPARE(form.pnlCaption()->text(), QStringLiteral("초기 미불금을 입력하세요."));
        typeHere("15000");
        QCOMPARE(form.txtinput(12)->text().trimmed(), QStringLiteral("15,000"));
        keyHere(Qt::Key_Return);
        typeHere("2003-01-02");
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("02-1234-5678"));
        QCOMPARE(form.txtinput(3)->text(), QStringLiteral("02-123-4567"));
        QCOMPARE(form.txtinput(15)->text(), QStringLiteral("010-1234-5678"));
        QCOMPARE(form.pnlInfo()->text(), QStringLiteral("부가세별도"));
        saveScreenshot(&form, "frm_new_trader");
        form.btnSave()->click();
        QCOMPARE(target.text(), QStringLiteral("000001"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 저장되었습니다."));
        QCOMPARE(traderField("000001", "C_Name").toString(), QStringLiteral("가나상사"));
        QCOMPARE(traderField("000001", "Addr1").toString(), QStringLiteral("서울 강남구 역삼동 123-4"));
        QCOMPARE(traderField("000001", "Addr2").toString(), QStringLiteral("123-4"));
        QCOMPARE(traderField("000001", "Post").toString(), QStringLiteral("135-080"));
        QCOMPARE(traderField("000001", "VAT").toInt(), 2);
        QCOMPARE(traderField("000001", "TotNoPay").toDouble(), 15000.0);
        QCOMPARE(traderField("000001", "OpenDate").toString(), QStringLiteral("2003-01-02"));
        QCOMPARE(traderField("000001", "Section").toInt(), 0);
        QVERIFY(!form.isVisible());
    }
    void aBusinessNumberFailingItsCheckIsWarnedWhileAResidentNumberPasses() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmNewTrader form;
        form.InitForm(0, "", "2004-05", "");
        showActive(&form);
        form.txtinput(6)->setFocus();
        typeHere("800101-1234567");
        keyHere(Qt::Key_Return);
        QCOMPARE(focused(), form.txtinput(7));
        QVERIFY(msgs.records().empty());
        form.txtinput(6)->setFocus();
        form.txtinput(6)->clear();
        typeHere("123-45-67890");
        keyHere(Qt::Key_Return);
        QCOMPARE(focused(), form.txtinput(7));
        QCOMPARE(msgs.records().size(), size_t(1));
        QCOMPARE(msgs.last().kind, QStringLiteral("float"));
        QVERIFY(msgs.last().text.startsWith(
            QStringLiteral("사업자등록번호 123-45-67890의 검증번호가 맞지 않습니다.")));
    }
    void theMonthIsKeptWithDashZeroZero() {
        TestHome home;
        QVERIFY(openStores());
        FrmNewTrader form;
        form.InitForm(0, "가'나\\]", "2004-05", "");
        QCOMPARE(form.monthText(), QStringLiteral("2004-05-00"));
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("가나"));
    }
    void theBalanceHintFollowsTheMode() {
        TestHome home;
        QVERIFY(openStores());
        FrmNewTrader form;
        form.InitForm(1, "", "2004-05", "");
        QCOMPARE(form.hintFor(12), QStringLiteral("초기 미수금을 입력하세요"));
        QCOMPARE(form.hintFor(4), QStringLiteral("부가세 계산방법. 0:계산안함  1:단가/1.1  2:단가*0.1"));
        QCOMPARE(form.hintFor(9), QStringLiteral("읍/면/동 입력 후 Enter로 검색. [전체검색 : PageDown]"));
    }
    void nameTelephoneAndAddressAllEmptyAreRefused() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmNewTrader form;
        form.InitForm(0, "", "2004-05", "");
        showActive(&form);
        form.txtinput(1)->setText("홍길동");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("상호명, 전화번호, 주소 중 하나는 필수입력입니다."));
        QCOMPARE(focused(), form.txtinput(0));
        QCOMPARE(count(stores().dbBasic, "Trader"), 0);
    }
    void aTraderWithOnlyATelephoneIsAccepted() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmNewTrader form;
        form.InitForm(0, "", "2004-05", "");
        form.txtinput(2)->setText("02-123-4567");
        form.btnSave()->click();
        QCOMPARE(traderField("000001", "C_Name").toString(), QString());
        QCOMPARE(traderField("000001", "Phone").toString(), QStringLiteral("02-123-4567"));
        QCOMPARE(traderField("000001", "VAT").toInt(), 0);
    }
    void aDuplicateNameAnsweredNoEmptiesTheFormAndLeavesItOpen() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addTrader("000001", "가나상사");
        FrmNewTrader form;
        form.InitForm(0, "가나상사", "2004-05", "");
        form.txtinput(2)->setText("02-1");
        showActive(&form);
        msgs.answer(AnsNo);
        form.btnSave()->click();
        QCOMPARE(msgs.last().title, QStringLiteral("상호명 중복"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("가나상사는 이미 등록된 거래처입니다.\r\n등록하시겠습니까?\r\n"
                                "[예] - 등록함.\r\n[아니오] - 등록하지 않고 종료"));
        QCOMPARE(msgs.last().buttons, int(MbYesNo | MbQuestion));
        QVERIFY(form.isVisible());
        QCOMPARE(form.txtinput(0)->text(), QString());
        QCOMPARE(form.txtinput(2)->text(), QString());
        QCOMPARE(count(stores().dbBasic, "Trader"), 1);
    }
    void aDuplicateNameAnsweredYesStoresASecondRowWithItsOwnCode() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addTrader("000001", "가나상사");
        QLineEdit target;
        FrmNewTrader form;
        form.SetObject(&target);
        form.InitForm(0, "가나상사", "2004-05", "");
        msgs.answer(AnsYes);
        form.btnSave()->click();
        QCOMPARE(count(stores().dbBasic, "Trader"), 2);
        QCOMPARE(target.text(), QStringLiteral("000002"));
        QCOMPARE(traderField("000002", "C_Name").toString(), QStringLiteral("가나상사"));
    }
    void vatTextThatIsNoNumberFailsInTheByteConversionAtSave() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmNewTrader form;
        form.InitForm(0, "가나상사", "2004-05", "");
        showActive(&form);
        form.txtinput(4)->setText("별도");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("실행 시간 오류 '13':\r\n\r\n형식이 일치하지 않습니다."));
        QCOMPARE(count(stores().dbBasic, "Trader"), 0);
        QVERIFY(form.isVisible());
        form.txtinput(4)->setText("300");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("실행 시간 오류 '6':\r\n\r\n오버플로"));
        QCOMPARE(count(stores().dbBasic, "Trader"), 0);
    }
    void anAddressWithNoBlankGoesWholeIntoBothColumns() {
        QCOMPARE(LastAddressWord("역삼동"), QStringLiteral("역삼동"));
        QCOMPARE(LastAddressWord("서울 강남구 역삼동 123-4"), QStringLiteral("123-4"));
        QCOMPARE(LastAddressWord("서울 강남구 "), QString());
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmNewTrader form;
        form.InitForm(0, "가나", "2004-05", "");
        form.txtinput(10)->setText("역삼동");
        form.btnSave()->click();
        QCOMPARE(traderField("000001", "Addr1").toString(), QStringLiteral("역삼동"));
        QCOMPARE(traderField("000001", "Addr2").toString(), QStringLiteral("역삼동"));
    }
    void aChangeInMode1DoesNotStoreTheVatKindOrThePersonInCharge() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addTrader("000001", "가나상사", "02-111-1111", "서울 중구 1");
        exec(stores().dbBasic,
             "UPDATE Trader SET VAT = 1, Charge = '김', TotNoPay = 500 WHERE Code = '000001'");
        FrmNewTrader form;
        form.InitForm(1, "가나상사", "2004-05", "000001");
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("02-111-1111"));
        QCOMPARE(form.txtinput(10)->text(), QStringLiteral("서울 중구 1"));
        form.txtinput(1)->setText("새대표");
        form.txtinput(4)->setText("2");
        form.txtCharge()->setText("이");
        form.txtinput(12)->setText("9,000");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 갱신되었습니다."));
        QCOMPARE(traderField("000001", "U_Name").toString(), QStringLiteral("새대표"));
        QCOMPARE(traderField("000001", "VAT").toInt(), 1);
        QCOMPARE(traderField("000001", "Charge").toString(), QStringLiteral("김"));
    }
    void theInitialBalanceEnteredAtAChangeIsNotStored() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTrader("000001", "가나상사");
        exec(stores().dbBasic, "UPDATE Trader SET TotNoPay = 500 WHERE Code = '000001'");
        FrmNewTrader form;
        form.InitForm(1, "가나상사", "2004-05", "000001");
        form.txtinput(12)->setText("9000");
        form.btnSave()->click();
        QCOMPARE(traderField("000001", "TotNoPay").toDouble(), 500.0);
    }
    void escClosesWithoutSavingAndUpOnTheNameGoesToExit() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmNewTrader form;
        form.InitForm(0, "가나", "2004-05", "");
        showActive(&form);
        keyHere(Qt::Key_Up);
        QCOMPARE(focused(), form.btnExit());
        form.txtinput(0)->setFocus();
        keyHere(Qt::Key_Escape);
        QVERIFY(!form.isVisible());
        QCOMPARE(count(stores().dbBasic, "Trader"), 0);
    }
    void pageDownOnAnEmptyPostcodeOpensTheWholeBook() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""}, {"100011", "서울", "중구", "명동1가", ""}});
        FrmNewTrader form;
        form.InitForm(0, "가나", "2004-05", "");
        showActive(&form);
        form.txtinput(9)->setFocus();
        int rows = -1;
        whenModalShows([&](QWidget* modal) {
            auto* post = qobject_cast<MasterListForm*>(modal);
            QVERIFY(post);
            rows = post->model()->rowCount();
            pressKey(post->grdList(), Qt::Key_Down);
            pressKey(post->grdList(), Qt::Key_Return);
        });
        keyHere(Qt::Key_PageDown);
        QCOMPARE(rows, 2);
        QCOMPARE(form.txtinput(9)->text(), QStringLiteral("135-080"));
        QCOMPARE(form.txtinput(10)->text(), QStringLiteral("서울 강남구 역삼동 "));
    }

    // ---- the list ----
    void listAnswersZeroOneOrTwoAndWritesTheTargetOnlyForOne() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나상사", "02-111-1111");
        addTrader("000002", "가나물산", "02-222-2222");
        addTrader("000003", "다라상사", "031-333-3333");
        QLineEdit target;
        FrmTraderList list;
        list.SetObject(&target);
        int result = -1;
        list.InitForm("없는", 0, result);
        QCOMPARE(result, 0);
        list.InitForm("다라", 0, result);
        QCOMPARE(result, 1);
        QCOMPARE(target.text(), QStringLiteral("000003"));
        target.clear();
        list.InitForm("가나", 0, result);
        QCOMPARE(result, 2);
        QCOMPARE(target.text(), QString());
        QCOMPARE(listCodes(list), (QStringList{"000002", "000001"}));
    }
    void listSearchesTheNameOrTheTelephoneAndTheLastAddressWordAnywhere() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나상사", "02-111-1111", "서울 중구 명동");
        addTrader("000002", "명동상회", "02-222-2222", "부산 동래구 온천동");
        addTrader("000003", "다라", "031-333-1111", "서울 마포구 1111");
        FrmTraderList list;
        int result = 0;
        list.InitForm("명동", 0, result);
        QCOMPARE(listCodes(list), (QStringList{"000001", "000002"})); // last word or name
        list.InitForm("1111", 0, result);
        QCOMPARE(listCodes(list), (QStringList{"000001", "000003"})); // telephone or last word
        list.InitForm("상", 0, result);
        QCOMPARE(listCodes(list), (QStringList{"000001", "000002"}));
        list.InitForm("중구", 0, result); // a middle word of the address is not searched
        QCOMPARE(result, 0);
    }
    void listKeepsToTheSectionBelowTwoAndShowsEveryKindAbove() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나", "", "", 0);
        addTrader("000002", "가나다", "", "", 1);
        FrmTraderList list;
        int result = 0;
        list.InitForm("가나", 0, result);
        QCOMPARE(listCodes(list), (QStringList{"000001"}));
        list.InitForm("가나", 2, result);
        QCOMPARE(listCodes(list), (QStringList{"000001", "000002"}));
        list.InitForm("", 1, result);
        QCOMPARE(listCodes(list), (QStringList{"000002"}));
        list.InitForm("", 5, result);
        QCOMPARE(listCodes(list), (QStringList{"000001", "000002"}));
    }
    void listTextsWithWildcardsAndQuotesAreLiteral() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "50%할인", "", "");
        addTrader("000002", "500할인", "", "");
        addTrader("000003", "A_B", "", "");
        addTrader("000004", "AxB", "", "");
        addTrader("000005", "O'Neil", "", "");
        FrmTraderList list;
        int result = 0;
        list.InitForm("%할", 0, result);
        QCOMPARE(listCodes(list), (QStringList{"000001"}));
        list.InitForm("A_B", 0, result);
        QCOMPARE(listCodes(list), (QStringList{"000003"}));
        list.InitForm("O'Neil", 0, result); // the quote is removed before the search
        QCOMPARE(result, 0);
        list.InitForm("Neil", 0, result);
        QCOMPARE(result, 1);
    }
    void enterInTheListBoxFindsTheFirstByTheStartOfTheName() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addTrader("000001", "가나상사");
        addTrader("000002", "다라상사");
        addTrader("000003", "마바상사");
        FrmTraderList list;
        int result = 0;
        list.InitForm("상사", 0, result);
        showActive(&list);
        list.txtinput()->setFocus();
        list.txtinput()->clear();
        typeText(list.txtinput(), "다라");
        pressKey(list.txtinput(), Qt::Key_Return);
        QCOMPARE(list.activeText(5), QStringLiteral("000002"));
        list.txtinput()->clear();
        typeText(list.txtinput(), "상사");
        pressKey(list.txtinput(), Qt::Key_Return);
        QCOMPARE(msgs.last().text, QStringLiteral("검색된 거래처가 없습니다."));
        pressKey(list.txtinput(), Qt::Key_Down);
        QCOMPARE(focused(), list.grdList());
        QCOMPARE(list.hintPanel()->text(),
                 QStringLiteral("거래처를 선택하세요.[Click or Enter]   [F3:거래처수정][F4:삭제]"));
        saveScreenshot(&list, "frm_trader_list");
        QLineEdit target;
        list.SetObject(&target);
        pressKey(list.grdList(), Qt::Key_Return);
        QCOMPARE(target.text(), QStringLiteral("000002"));
        QVERIFY(!list.isVisible());
    }
    void aListOfEveryTraderOpensWithItsFirstPageAndFillsTheRestBetweenEvents() {
        TestHome home;
        QVERIFY(openStores());
        script();
        stores().dbBasic.beginTransaction();
        for (int i = 1; i <= 700; ++i)
            addTrader(QString("%1").arg(i, 6, 10, QChar('0')), QString("상사%1").arg(i, 4, 10, QChar('0')));
        stores().dbBasic.commit();
        FrmTraderList list;
        int result = 0;
        list.InitForm("상사", 0, result);
        QCOMPARE(result, 2);
        QCOMPARE(list.model()->rowCount(), ListModel::kFirstPage); // shown at once
        QVERIFY(list.model()->isFilling());
        QTRY_COMPARE(list.model()->rowCount(), 700); // the rest between events
        QVERIFY(!list.model()->isFilling());
        QCOMPARE(list.model()->text(699, 0), QStringLiteral("상사0700"));
        list.InitForm("상사", 0, result);
        QCOMPARE(list.model()->findRow(4, "000650"), 649); // a search reads every row first
    }
    void aClickOnARowChoosesIt() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTrader("000001", "가나상사");
        addTrader("000002", "다라상사");
        FrmTraderList list;
        QLineEdit target;
        list.SetObject(&target);
        int result = 0;
        list.InitForm("상사", 0, result);
        showActive(&list);
        QTableView* grid = list.grdList();
        const QModelIndex second = grid->model()->index(1, 1);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(second).center());
        QCOMPARE(target.text(), QStringLiteral("000002"));
        QVERIFY(!list.isVisible());
    }
    void f3OpensTheChangeFormAndRefillsTheList() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTrader("000001", "가나상사", "02-111-1111");
        addTrader("000002", "가나물산", "02-222-2222");
        setClock([] { return QDateTime(QDate(2004, 5, 6), QTime(9, 0)); });
        FrmTraderList list;
        int result = 0;
        list.InitForm("가나", 0, result);
        showActive(&list);
        list.grdList()->setFocus();
        int mode = -1;
        whenModalShows([&](QWidget* modal) {
            auto* form = qobject_cast<FrmNewTrader*>(modal);
            QVERIFY(form);
            mode = form->mode();
            QCOMPARE(form->txtinput(0)->text(), QStringLiteral("가나물산"));
            QCOMPARE(form->traderCode(), QStringLiteral("000002"));
            QCOMPARE(form->monthText(), QStringLiteral("2004-05-00"));
            form->txtinput(0)->setText("가나물산2");
            form->btnSave()->click();
        });
        pressKey(list.grdList(), Qt::Key_F3);
        QCOMPARE(mode, 1);
        QCOMPARE(list.model()->text(0, 0), QStringLiteral("가나물산2"));
    }
    void deletingATraderRemovesItsStatementHeadsAndInvoicesForGood() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addTrader("000001", "가나상사");
        addTrader("000002", "가나물산");
        exec(stores().dbBill,
             "INSERT INTO Master (BillNo, BillDate, CCode) VALUES ('000001', '2004-05-01', '000001')");
        exec(stores().dbBill,
             "INSERT INTO Master (BillNo, BillDate, CCode) VALUES ('000002', '2004-05-01', '000002')");
        exec(stores().dbBill, "INSERT INTO Detail (BillNo, BillSEQ, PName) VALUES ('000001', 1, '볼트')");
        exec(stores().dbTax,
             "INSERT INTO NewAcount (TaxCode, CCode, PName) VALUES ('100000', '000001', '볼트')");
        exec(stores().dbTax,
             "INSERT INTO NewAcount (TaxCode, CCode, PName) VALUES ('100001', '000002', '너트')");
        FrmTraderList list;
        int result = 0;
        list.InitForm("가나", 0, result);
        showActive(&list);
        list.grdList()->setFocus();
        list.selectRow(1); // 가나상사
        msgs.answer(AnsNo);
        pressKey(list.grdList(), Qt::Key_F4);
        QCOMPARE(msgs.last().title, QStringLiteral("거래처 삭제"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral(
                     "거래처에 대한 모든 거래내역도 삭제됩니다\r\n\r\n선택하신 거래처를 삭제하시겠습니까?"));
        QCOMPARE(count(stores().dbBasic, "Trader"), 2);
        msgs.answer(AnsYes);
        pressKey(list.grdList(), Qt::Key_F4);
        QCOMPARE(count(stores().dbBasic, "Trader"), 1);
        QCOMPARE(scalar(stores().dbBill, "SELECT count(*) FROM Master WHERE CCode = '000001'").toInt(), 0);
        QCOMPARE(scalar(stores().dbTax, "SELECT count(*) FROM NewAcount WHERE CCode = '000001'").toInt(), 0);
        QCOMPARE(scalar(stores().dbTax, "SELECT count(*) FROM NewAcount").toInt(), 1);
        // The lines of its statements go with their head.
        QCOMPARE(scalar(stores().dbBill, "SELECT count(*) FROM Detail WHERE BillNo = '000001'").toInt(), 0);
        QCOMPARE(listCodes(list), (QStringList{"000002"}));
    }
    void aFailedDeleteStepUndoesTheOthers() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTrader("000001", "가나상사");
        exec(stores().dbTax, "INSERT INTO NewAcount (TaxCode, CCode) VALUES ('100000', '000001')");
        QVERIFY(refuseWrites(stores().dbTax, {QStringLiteral("NewAcount"), Change::Delete}));
        QVERIFY(!DeleteTraderWithBusiness("000001"));
        QCOMPARE(count(stores().dbBasic, "Trader"), 1);
    }
    void newFromTheListRegistersAndRefills() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTrader("000001", "가나상사");
        FrmTraderList list;
        int result = 0;
        list.InitForm("가나", 0, result);
        showActive(&list);
        list.txtinput()->setText("가나물산");
        whenModalShows([&](QWidget* modal) {
            auto* form = qobject_cast<FrmNewTrader*>(modal);
            QVERIFY(form);
            QCOMPARE(form->mode(), 0);
            QCOMPARE(form->txtinput(0)->text(), QStringLiteral("가나물산"));
            form->btnSave()->click();
        });
        list.btnNew()->click();
        QCOMPARE(list.txtCCode()->text(), QStringLiteral("000002"));
        QCOMPARE(listCodes(list), (QStringList{"000002", "000001"}));
    }
};

NB_TEST_MAIN(TestTraderScreens)
#include "tst_trader_screens.moc"
