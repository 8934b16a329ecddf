// The trader record class: every operation of its interface, the two look-ups beside it, and
// text that must be stored as typed.
#include "FailureInjection.h"
#include "MasterFixture.h"
#include "core/Clock.h"
#include "master/clsTrader.h"

using namespace nb;
using namespace nb::test;

namespace {

clsTrader filledTrader(const QString& code, const QString& name) {
    clsTrader t;
    t.sCode = code;
    t.sComp = name;
    t.sName = QStringLiteral("홍길동");
    t.sSerial = QStringLiteral("123-45-67890");
    t.sPhone = QStringLiteral("02-123-4567");
    t.sFax = QStringLiteral("02-123-4568");
    t.sHP = QStringLiteral("010-1234-5678");
    t.sCharge = QStringLiteral("김담당");
    t.byVAT = 2;
    t.sAddr1 = QStringLiteral("서울 강남구 역삼동 123-4");
    t.sAddr2 = QStringLiteral("123-4");
    t.sPost = QStringLiteral("135-080");
    t.sStatus = QStringLiteral("도소매");
    t.sItem = QStringLiteral("문구");
    t.sOpenDate = QStringLiteral("2003-01-02");
    t.sCloseDate = QString();
    t.bySection = 0;
    t.dTotNoPay = 15000;
    t.sBigo = QStringLiteral("비고");
    return t;
}

QVariant traderField(const QString& code, const QString& column) {
    return scalar(stores().dbBasic,
                  QStringLiteral("SELECT ") + column + QStringLiteral(" FROM Trader WHERE Code = ?"), {code});
}

} // namespace

class TestTraderRecords : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void saveTraderStoresEveryMemberAndSaysSo() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        clsTrader t = filledTrader(QStringLiteral("000001"), QStringLiteral("가나상사"));
        t.SaveTrader();
        QCOMPARE(traderField("000001", "C_Name").toString(), QStringLiteral("가나상사"));
        QCOMPARE(traderField("000001", "HPhone").toString(), QStringLiteral("010-1234-5678"));
        QCOMPARE(traderField("000001", "Charge").toString(), QStringLiteral("김담당"));
        QCOMPARE(traderField("000001", "VAT").toInt(), 2);
        QCOMPARE(traderField("000001", "Addr2").toString(), QStringLiteral("123-4"));
        QCOMPARE(traderField("000001", "TotNoPay").toDouble(), 15000.0);
        QCOMPARE(traderField("000001", "DDD").toString(), QString());
        QCOMPARE(traderField("000001", "bDeled").toInt(), 0);
        QCOMPARE(msgs.last().kind, QStringLiteral("notice"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 저장되었습니다."));
        QCOMPARE(msgs.last().buttons, 700);
        QCOMPARE(msgs.last().color, 0xFFC0C0);
    }
    void saveTraderFailureShowsTheHandlersBox() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(refuseWrites(stores().dbBasic, {QStringLiteral("Trader"), Change::Insert}));
        auto& msgs = script();
        filledTrader("000001", "가나").SaveTrader();
        QCOMPARE(msgs.records().size(), size_t(1));
        QVERIFY(msgs.last().text.startsWith(
            QStringLiteral("자료를 저장하는 중 오류가 발생했습니다.\r\n\r\n오류번호 : ")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("\r\n오류내용 : ")));
        QVERIFY(msgs.last().text.endsWith(
            QStringLiteral("\r\n\r\n입력하신 내용을 다시 한번 확인하여 주십시요.")));
        QCOMPARE(msgs.last().buttons, int(MbOk));
    }
    void quotesBackslashesAndWildcardsAreStoredAsTyped() {
        TestHome home;
        QVERIFY(openStores());
        script();
        const QString odd = QStringLiteral("O'Neil \\ [A]_50% \"상사\"");
        filledTrader("000001", odd).SaveTrader();
        QCOMPARE(GetTraderName("000001"), odd);
        bool found = false;
        clsTrader().CheckField(0, odd, found);
        QVERIFY(found);
    }
    void a300CharacterNameIsStoredWhole() {
        TestHome home;
        QVERIFY(openStores());
        script();
        const QString longName(300, QChar(u'가'));
        filledTrader("000001", longName).SaveTrader();
        QCOMPARE(GetTraderName("000001"), longName);
    }
    void updateTraderChangesElevenColumnsOnly() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        filledTrader("000001", "가나").SaveTrader();
        clsTrader t = filledTrader("000001", "다라");
        t.sName = "새대표";
        t.sHP = "010-9999-0000";
        t.byVAT = 0;
        t.sCharge = "이담당";
        t.sAddr1 = "부산 해운대구 우동 9";
        t.sAddr2 = "9";
        t.dTotNoPay = 1;
        t.sOpenDate = "2009-09-09";
        t.UpdateTrader();
        QCOMPARE(traderField("000001", "C_Name").toString(), QStringLiteral("다라"));
        QCOMPARE(traderField("000001", "U_Name").toString(), QStringLiteral("새대표"));
        QCOMPARE(traderField("000001", "HPhone").toString(), QStringLiteral("010-9999-0000"));
        QCOMPARE(traderField("000001", "Addr1").toString(), QStringLiteral("부산 해운대구 우동 9"));
        QCOMPARE(traderField("000001", "VAT").toInt(), 2);
        QCOMPARE(traderField("000001", "Charge").toString(), QStringLiteral("김담당"));
        QCOMPARE(traderField("000001", "Addr2").toString(), QStringLiteral("123-4"));
        QCOMPARE(traderField("000001", "TotNoPay").toDouble(), 15000.0);
        QCOMPARE(traderField("000001", "OpenDate").toString(), QStringLiteral("2003-01-02"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 갱신되었습니다."));
    }
    void updateTraderOnAGoneCodeShowsTheNoticeThenTheErrorBox() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        filledTrader("000077", "없음").UpdateTrader();
        QCOMPARE(msgs.records().size(), size_t(2));
        QCOMPARE(msgs.records()[0].kind, QStringLiteral("notice"));
        QCOMPARE(msgs.records()[0].text, QStringLiteral("자료가 갱신되었습니다."));
        QCOMPARE(msgs.records()[1].kind, QStringLiteral("box"));
        QCOMPARE(msgs.records()[1].text, QStringLiteral("데이터를 갱신하는 중 오류가 발생했습니다."));
    }
    void updateChargeWritesThePersonInCharge() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        filledTrader("000001", "가나").SaveTrader();
        clsTrader t;
        t.sCode = "000001";
        t.sCharge = "박담당";
        t.Update_Charge();
        QCOMPARE(traderField("000001", "Charge").toString(), QStringLiteral("박담당"));
        t.sCode = "000009";
        t.Update_Charge();
        QCOMPARE(msgs.last().text, QStringLiteral("거래처 담당자를 변경하는 중 오류가 발생했습니다."));
    }
    void traderListLeavesOutDeletedRowsAndSortsByName() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "다");
        addTrader("000002", "가");
        addTrader("000003", "나");
        exec(stores().dbBasic, "UPDATE Trader SET bDeled = -1 WHERE Code = '000003'");
        Recordset rs;
        bool found = false;
        clsTrader().TraderList(rs, found);
        QVERIFY(found);
        QCOMPARE(rs.RecordCount(), 2);
        QCOMPARE(rs.text("C_Name"), QStringLiteral("가"));
    }
    void traderListOnAnEmptyTableFindsNothing() {
        TestHome home;
        QVERIFY(openStores());
        Recordset rs;
        bool found = true;
        clsTrader().TraderList(rs, found);
        QVERIFY(!found);
    }
    void findTraderByCode() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가");
        addTrader("000002", "나");
        Recordset rs;
        bool found = false;
        clsTrader().FindTrader(rs, "000002", "", "", "", "", found);
        QVERIFY(found);
        QCOMPARE(rs.text("C_Name"), QStringLiteral("나"));
    }
    void findTraderWithoutACodeFailsOnTheMisspeltOrderAndSaysSo() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가");
        auto& msgs = script();
        Recordset rs;
        bool found = true;
        clsTrader().FindTrader(rs, "", "가", "", "", "", found);
        QVERIFY(!found);
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("ORDERY BY Code;")));
    }
    void deleteTraderRemovesTheRowOrSaysItCouldNot() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가");
        auto& msgs = script();
        clsTrader().DeleteTrader("000001");
        QCOMPARE(count(stores().dbBasic, "Trader"), 0);
        QCOMPARE(msgs.records().size(), size_t(0));
        clsTrader().DeleteTrader("000001");
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 삭제하는 중 오류가 발생했습니다."));
    }
    void traderTaxReadsTheVatKind() {
        TestHome home;
        QVERIFY(openStores());
        script();
        filledTrader("000001", "가").SaveTrader();
        clsTrader t;
        t.sCode = "000001";
        quint8 kind = 9;
        t.TraderTax(kind);
        QCOMPARE(int(kind), 2);
    }
    void traderTaxOfAnUnknownCodeYields3Not0() {
        TestHome home;
        QVERIFY(openStores());
        clsTrader t;
        t.sCode = "000404";
        quint8 kind = 0;
        t.TraderTax(kind);
        QCOMPARE(int(kind), 3);
    }
    void nextCodeOnAnEmptyTableGives000001() {
        TestHome home;
        QVERIFY(openStores());
        QString code;
        QVERIFY(clsTrader().NextCode(code));
        QCOMPARE(code, QStringLiteral("000001"));
    }
    void nextCodeAfterTheHighestWasDeletedReusesIt() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTrader("000122", "가");
        addTrader("000123", "나");
        QString code;
        clsTrader().NextCode(code);
        QCOMPARE(code, QStringLiteral("000124"));
        clsTrader().DeleteTrader("000123");
        clsTrader().NextCode(code);
        QCOMPARE(code, QStringLiteral("000123"));
    }
    void nextCodeCountsDeletedMarksAndOtherSections() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000005", "가", "", "", 3);
        exec(stores().dbBasic, "UPDATE Trader SET bDeled = -1");
        QString code;
        clsTrader().NextCode(code);
        QCOMPARE(code, QStringLiteral("000006"));
    }
    void nextCodeOverANonNumericCodeIsAConversionFailure() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addTrader("ABC", "가");
        QString code = "keep";
        QVERIFY(!clsTrader().NextCode(code));
        QCOMPARE(code, QStringLiteral("keep"));
        QCOMPARE(
            msgs.last().text,
            QStringLiteral("Error 13 (형식이 일치하지 않습니다.) in procedure NextCode of Module clsTrader"));
    }
    void updateNoPayMovesTheBalanceByTheDifference() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        filledTrader("000001", "가").SaveTrader(); // balance 15000
        clsTrader t;
        t.sCode = "000001";
        t.UpdateNoPay(5000, 8000);
        QCOMPARE(traderField("000001", "TotNoPay").toDouble(), 18000.0);
        double amount = 0;
        t.CurTotNoPay("000001", amount);
        QCOMPARE(amount, 18000.0);
        t.sCode = "000002";
        t.UpdateNoPay(0, 1);
        QCOMPARE(msgs.last().text, QStringLiteral("현재미수금 데이터를 갱신하는 중 오류가 발생했습니다."));
    }
    void curTotNoPayOfAnUnknownCodeIsZero() {
        TestHome home;
        QVERIFY(openStores());
        double amount = 7;
        clsTrader().CurTotNoPay("000404", amount);
        QCOMPARE(amount, 0.0);
    }
    void initNonKumReadsTheBalanceOrZero() {
        TestHome home;
        QVERIFY(openStores());
        script();
        filledTrader("000001", "가").SaveTrader();
        exec(stores().dbBasic, "UPDATE Trader SET TotNoPay = NULL WHERE Code = '000001'");
        clsTrader t;
        t.sCode = "000001";
        double amount = 5;
        t.initNonKum(amount);
        QCOMPARE(amount, 0.0);
        exec(stores().dbBasic, "UPDATE Trader SET TotNoPay = 250.5 WHERE Code = '000001'");
        t.initNonKum(amount);
        QCOMPARE(amount, 250.5);
    }
    void checkFieldFindsTheExactNameWithinTheSectionOnly() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나상사", "", "", 1);
        bool found = true;
        clsTrader().CheckField(0, "가나상사", found);
        QVERIFY(!found);
        clsTrader().CheckField(1, "가나상사", found);
        QVERIFY(found);
        clsTrader().CheckField(1, "가나상", found);
        QVERIFY(!found);
    }
    void checkHPFieldAddsTheMobileColumnWhenMissing() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(dropColumn(stores().dbBasic, QStringLiteral("Trader"), QStringLiteral("HPhone")));
        QVERIFY(!stores().dbBasic.hasColumn("Trader", "HPhone"));
        clsTrader().CheckHPField();
        QVERIFY(stores().dbBasic.hasColumn("Trader", "HPhone"));
        const int before = stores().dbBasic.statementsRun();
        clsTrader().CheckHPField();
        QCOMPARE(stores().dbBasic.statementsRun(), before);
    }
    void chargeTradeWalksBackThroughTheMonthlyFilesUntilOneIsMissing() {
        TestHome home;
        QVERIFY(openStores());
        setClock([] { return QDateTime(QDate(2004, 3, 15), QTime(9, 0)); });
        for (const char* month : {"200403", "200402"}) {
            Database monthDb;
            QVERIFY(monthDb.create(app().DbPath + "db" + month + ".mdb"));
            exec(monthDb, "CREATE TABLE sale (CCode TEXT, charge TEXT)");
            exec(monthDb, "CREATE TABLE purchase (CCode TEXT, charge TEXT)");
            exec(monthDb, "INSERT INTO sale VALUES ('000001', '')");
            exec(monthDb, "INSERT INTO purchase VALUES ('000001', '')");
        }
        clsTrader t;
        t.bySection = 1;
        t.charge_trade("김담당", "000001");
        for (const char* month : {"200403", "200402"}) {
            Database monthDb;
            QVERIFY(monthDb.open(app().DbPath + "db" + month + ".mdb"));
            QCOMPARE(scalar(monthDb, "SELECT charge FROM sale").toString(), QStringLiteral("김담당"));
            QCOMPARE(scalar(monthDb, "SELECT charge FROM purchase").toString(), QString());
        }
        setClock({});
    }
    void vatKindTextNamesTheThreeKinds() {
        QCOMPARE(VatKindText(0), QStringLiteral("계산안함"));
        QCOMPARE(VatKindText(1), QStringLiteral("부가세포함"));
        QCOMPARE(VatKindText(2), QStringLiteral("부가세별도"));
    }
    void vatKindTextOf3IsEmpty() {
        QCOMPARE(VatKindText(3), QString());
        QCOMPARE(VatKindText(-1), QString());
    }
    void getTraderNameGivesTheNameOrEmptyText() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나상사");
        exec(stores().dbBasic, "INSERT INTO Trader (Code, C_Name) VALUES ('000002', NULL)");
        QCOMPARE(GetTraderName("000001"), QStringLiteral("가나상사"));
        QCOMPARE(GetTraderName("000002"), QString());
        QCOMPARE(GetTraderName("000404"), QString());
    }
};

NB_TEST_MAIN(TestTraderRecords)
#include "tst_trader_records.moc"
