// Suppliers: the save with its replace and duplicate check, the default supplier, the reset of
// the legacy settings and the hand-over stamp, delete, previous/next, and the list's search.
#include "FailureInjection.h"
#include "MasterFixture.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "master/FrmUserList.h"
#include "master/PostSearch.h"
#include "master/SupplierRecords.h"

#include <QLineEdit>

using namespace nb;
using namespace nb::test;

namespace {

SupplierFields supplier(const QString& serial, const QString& company = QStringLiteral("가나상사")) {
    return {company,       "홍길동",      serial,   "135-080", "서울 강남구",
            "02-123-4567", "02-123-4568", "도소매", "문구"};
}

int userRows() {
    return count(stores().dbBasic, "User");
}

} // namespace

class TestSupplierRecords : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void firstRunOnAnEmptyTableAddsARowWithoutCheckOrDeleteAndSaysSaved() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        SupplierFormState state;
        state.HasUser = LoadDefaultUser();
        QVERIFY(!state.HasUser);
        QCOMPARE(SaveSupplier(state, supplier("123-45-67890"), false), SupplierSave::Saved);
        QCOMPARE(userRows(), 1);
        QCOMPARE(msgs.last().kind, QStringLiteral("notice"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 저장하였습니다."));
        QCOMPARE(msgs.last().buttons, 500);
        QCOMPARE(msgs.last().color, 0xFFC0C0);
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void aSecondSaveInTheSameVisitFailsOnThePrimaryKey() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        SupplierFormState state; // HasUser stays false until a new visit or the check box
        QCOMPARE(SaveSupplier(state, supplier("123-45-67890"), false), SupplierSave::Saved);
        msgs.clear();
        QCOMPARE(SaveSupplier(state, supplier("123-45-67890", "바뀐상사"), false), SupplierSave::Failed);
        QCOMPARE(userRows(), 1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().title, QStringLiteral("ERROR"));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral(
            "같은 번호(코드)의 자료가 이미 있어 저장하지 못했습니다. 번호를 확인하고 다시 입력하십시오.\r")));
    }
    void changingTheSerialOfAShownRowReplacesItAndLeavesTheDefaultBehind() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        SetDefaultSupplier("111-11-11111");
        SupplierFormState state{true, false, "111-11-11111"};
        QCOMPARE(SaveSupplier(state, supplier("222-22-22222"), false), SupplierSave::Saved);
        QCOMPARE(userRows(), 1);
        QCOMPARE(scalar(stores().dbBasic, "SELECT Serial FROM User").toString(),
                 QStringLiteral("222-22-22222"));
        QCOMPARE(app().DefaultSerial, QStringLiteral("111-11-11111"));
        QCOMPARE(GetEnv(kDefaultSupplierKey), QStringLiteral("111-11-11111"));
        QCOMPARE(state.OldSerial, QStringLiteral("222-22-22222"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 수정하였습니다."));
    }
    void aCheckedDefaultBoxCarriesTheDefaultAlong() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나상사");
        SupplierFormState state{true, false, "111-11-11111"};
        SaveSupplier(state, supplier("222-22-22222"), true);
        QCOMPARE(app().DefaultSerial, QStringLiteral("222-22-22222"));
        QCOMPARE(GetEnv(kDefaultSupplierKey), QStringLiteral("222-22-22222"));
    }
    void anUncheckedBoxDoesNotClearTheDefault() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111");
        SetDefaultSupplier("111-11-11111");
        SupplierFormState state{true, false, "111-11-11111"};
        SaveSupplier(state, supplier("111-11-11111", "새이름"), false);
        QCOMPARE(GetEnv(kDefaultSupplierKey), QStringLiteral("111-11-11111"));
    }
    void replacingARowThatIsGoneSaysSoAndAddsNothing() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        SupplierFormState state{true, false, "999-99-99999"};
        QCOMPARE(SaveSupplier(state, supplier("123-45-67890"), false), SupplierSave::Failed);
        QCOMPARE(userRows(), 0);
        QCOMPARE(msgs.last().text, QStringLiteral("사업자 데이터를 갱신하는 중 오류가 발생했습니다."));
        QCOMPARE(msgs.last().buttons, int(MbOk));
    }
    void aRefusedReplacementKeepsTheOldRow() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나");
        QVERIFY(refuseWrites(stores().dbBasic, {QStringLiteral("User"), Change::Insert}));
        SupplierFormState state{true, false, "111-11-11111"};
        QCOMPARE(SaveSupplier(state, supplier("222-22-22222"), false), SupplierSave::Failed);
        QCOMPARE(scalar(stores().dbBasic, "SELECT Serial FROM User").toString(),
                 QStringLiteral("111-11-11111"));
    }
    void anEmptySerialIsRefused() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        SupplierFormState state;
        QCOMPARE(SaveSupplier(state, supplier(""), false), SupplierSave::SerialMissing);
        QCOMPARE(msgs.last().text, QStringLiteral("사업자 번호는 필수입력사항 입니다."));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
    }
    void aNewSupplierWithAKnownSerialIsADuplicate() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("123-45-67890");
        SupplierFormState state{true, true, "123-45-67890"};
        QCOMPARE(SaveSupplier(state, supplier("123-45-67890"), false), SupplierSave::Duplicate);
        QCOMPARE(
            msgs.last().text,
            QStringLiteral("이미 같은 사업자번호가 등록되어 있습니다.\r\n사업자번호는 중복될 수 없습니다."));
        QCOMPARE(userRows(), 1);
        QVERIFY(state.IsNew);
    }
    void aNewSupplierIsAddedBesideTheShownOne() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111");
        SupplierFormState state{true, true, "111-11-11111"};
        QCOMPARE(SaveSupplier(state, supplier("222-22-22222"), false), SupplierSave::Saved);
        QCOMPARE(userRows(), 2);
        QVERIFY(!state.IsNew);
    }
    void quotesAndBackslashesInFieldsAreStoredAsTyped() {
        TestHome home;
        QVERIFY(openStores());
        script();
        SupplierFormState state;
        SupplierFields f = supplier("1'2\\3]%_");
        f[0] = QStringLiteral("O'Neil \\ 50% [가]");
        SaveSupplier(state, f, false);
        SupplierFields back;
        QVERIFY(ReadSupplier("1'2\\3]%_", back));
        QCOMPARE(back[0], QStringLiteral("O'Neil \\ 50% [가]"));
    }
    void aSaveResetsTheEnvironmentRowAndTheLegacySettings() {
        TestHome home;
        QVERIFY(openStores());
        script();
        exec(stores().dbBasic, "INSERT INTO Environment VALUES (5, 5, 5, 5, 'pw', '100-000', '200-000')");
        exec(stores().dbBasic, "INSERT INTO Environment VALUES (6, 6, 6, 6, 'pw', '100-000', '200-000')");
        postLimits() = {"100-000", "200-000"};
        SaveEnv("암호번호", "1234");
        SaveEnv("암호사용여부", "1");
        SaveEnv("chk소수점", "2");
        SaveEnv("chk소수점1", "2");
        app().PasswordInUse = true;
        app().DecimalQty = 2;
        SupplierFormState state;
        SaveSupplier(state, supplier("123-45-67890"), false);
        QCOMPARE(count(stores().dbBasic, "Environment"), 1);
        QCOMPARE(
            scalar(stores().dbBasic, "SELECT StockProc + Standard + Special + StockManage FROM Environment")
                .toInt(),
            0);
        QCOMPARE(scalar(stores().dbBasic, "SELECT Password || sPost || ePost FROM Environment").toString(),
                 QString());
        QVERIFY(postLimits().sPost.isEmpty() && postLimits().ePost.isEmpty());
        QCOMPARE(GetEnv("암호번호"), QString());
        QCOMPARE(GetEnv("암호사용여부"), QStringLiteral("0"));
        QCOMPARE(GetEnv("chk소수점"), QString());
        QVERIFY(!app().PasswordInUse);
        QCOMPARE(app().DecimalQty, 0);
        QCOMPARE(GetEnv("chk소수점1"), QStringLiteral("2")); // on disk untouched
    }
    void theHandOverStampIsWrittenOnceAsYearAndMonth() {
        TestHome home;
        QVERIFY(openStores());
        script();
        setClock([] { return QDateTime(QDate(2004, 7, 9), QTime(9, 0)); });
        SupplierFormState state;
        SaveSupplier(state, supplier("123-45-67890"), false);
        QCOMPARE(GetSetting("브란토2", "환경설정", "StartYear"), QStringLiteral("2004-07"));
        setClock([] { return QDateTime(QDate(2005, 1, 1), QTime(9, 0)); });
        StampHandOver();
        QCOMPARE(GetSetting("브란토2", "환경설정", "StartYear"), QStringLiteral("2004-07"));
        setClock({});
    }
    void deletingTheDefaultSupplierEmptiesTheSetting() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("123-45-67890");
        SetDefaultSupplier("123-45-67890");
        QVERIFY(DeleteSupplier("123-45-67890", true));
        QCOMPARE(app().DefaultSerial, QString());
        QCOMPARE(GetEnv(kDefaultSupplierKey), QString());
        QCOMPARE(userRows(), 0);
    }
    void deletingNothingSaysSo() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QVERIFY(!DeleteSupplier("123-45-67890", false));
        QCOMPARE(msgs.last().text, QStringLiteral("사업자 삭제하는 중 오류가 발생했습니다."));
    }
    void previousAndNextFollowTheTextOrderOfTheNumbers() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("200-00-00000");
        addUser("100-00-00000");
        addUser("30-000-0000");
        QCOMPARE(NeighbourSupplier("100-00-00000", true), QStringLiteral("200-00-00000"));
        QCOMPARE(NeighbourSupplier("200-00-00000", true), QStringLiteral("30-000-0000"));
        QCOMPARE(NeighbourSupplier("30-000-0000", true), QString());
        QCOMPARE(msgs.last().text, QStringLiteral("자료의 마지막입니다."));
        QCOMPARE(NeighbourSupplier("100-00-00000", false), QString());
        QCOMPARE(msgs.last().text, QStringLiteral("자료의 처음입니다."));
    }
    void listSearchByFirstCharacterCode_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("companies");
        QTest::newRow("Hangul searches by the start") << "가나상사 " << QStringList{"가나상사 A"};
        QTest::newRow("Hangul inside a name is not found") << "상사" << QStringList{};
        QTest::newRow("B searches by the start") << "B" << QStringList{"Beta"};
        QTest::newRow("y searches by the start") << "y" << QStringList{"yoyo"};
        QTest::newRow("e inside a name is not found") << "e" << QStringList{};
        QTest::newRow("A searches anywhere") << "A" << QStringList{"Alpha", "Beta", "zeta A", "가나상사 A"};
        QTest::newRow("a searches anywhere") << "a" << QStringList{"Alpha", "Beta", "zeta A", "가나상사 A"};
        QTest::newRow("Z searches anywhere") << "Z" << QStringList{"zeta A"};
        QTest::newRow("z searches anywhere") << "z" << QStringList{"zeta A"};
        QTest::newRow("a sign searches anywhere") << "%" << QStringList{"50% 할인"};
        QTest::newRow("a digit searches the telephone") << "555" << QStringList{"Beta"};
        QTest::newRow("an empty text lists all")
            << "" << QStringList{"50% 할인", "Alpha", "Beta", "yoyo", "zeta A", "가나상사", "가나상사 A"};
    }
    void listSearchByFirstCharacterCode() {
        QFETCH(QString, text);
        QFETCH(QStringList, companies);
        TestHome home;
        QVERIFY(openStores());
        addUser("1", "가나상사", "02-111-1111");
        addUser("2", "가나상사 A", "02-222-2222");
        addUser("3", "Alpha", "031-000-0000");
        addUser("4", "Beta", "02-555-5555");
        addUser("5", "zeta A");
        addUser("6", "yoyo");
        addUser("7", "50% 할인");
        const SqlPart q = UserListQuery(text);
        Recordset rs;
        QVERIFY(OpenSnapshot(stores().dbBasic, rs, q.sql, q.values));
        QStringList got;
        for (; !rs.EOF_(); rs.MoveNext())
            got << rs.text("Company");
        QCOMPARE(got, companies);
    }
    void listInitFormAnswersZeroOneOrTwo() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "가나물산");
        addUser("333-33-33333", "다라상사");
        QLineEdit target;
        FrmUserList list;
        list.SetObject(&target);
        int result = -1;
        list.InitForm("마바", result);
        QCOMPARE(result, 0);
        QCOMPARE(target.text(), QString());
        list.InitForm("다라", result);
        QCOMPARE(result, 1);
        QCOMPARE(target.text(), QStringLiteral("333-33-33333"));
        target.clear();
        list.InitForm("가나", result);
        QCOMPARE(result, 2);
        QCOMPARE(target.text(), QString());
        QCOMPARE(list.model()->rowCount(), 2);
        QVERIFY(!list.isVisible());
    }
    void listStripsQuotesBackslashesAndBrackets() {
        TestHome home;
        QVERIFY(openStores());
        addUser("111-11-11111", "가나상사");
        QLineEdit target;
        FrmUserList list;
        list.SetObject(&target);
        int result = -1;
        list.InitForm("가'나\\]", result);
        QCOMPARE(result, 1);
        QCOMPARE(target.text(), QStringLiteral("111-11-11111"));
    }
    void listKeepsTheFirstTargetItWasGiven() {
        TestHome home;
        QVERIFY(openStores());
        addUser("111-11-11111", "가나상사");
        QLineEdit first, second;
        FrmUserList list;
        list.SetObject(&first);
        list.SetObject(&second);
        int result = -1;
        list.InitForm("가나", result);
        QCOMPARE(first.text(), QStringLiteral("111-11-11111"));
        QCOMPARE(second.text(), QString());
    }
};

NB_TEST_MAIN(TestSupplierRecords)
#include "tst_supplier_records.moc"
