// Opening the three stores at start, and finding the default supplier into rsUser.
#include "StoreTestKit.h"
#include "core/Settings.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QFile>

using namespace nb;

namespace {

const QString kGoneText =
    QStringLiteral("기본으로 설정된 유저를 찾을 수 없습니다.\r\n유저등록에서 재설정 하세요.");

// A current basic store with the given suppliers (serial, company; a null company as QString()).
void storesWithSuppliers(const test::TestHome& home, const QList<QPair<QString, QString>>& suppliers) {
    test::useStoreFolder(home);
    CreateMissingStoreFiles();
    QVERIFY(OpenDatabases());
    for (const auto& [serial, company] : suppliers)
        QVERIFY(stores().dbBasic.Execute(QStringLiteral("INSERT INTO User (Serial, Company) VALUES (?, ?)"),
                                         {serial, company.isNull() ? QVariant() : QVariant(company)}));
}

void setDefaultSupplier(const QString& serial) {
    SaveEnv(QStringLiteral("기본사업자"), serial);
    app().DefaultSerial = serial;
}

} // namespace

class TestDefaultUser : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void openDatabasesOpensBasicTaxAndBill() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        auto& msgs = test::script();
        QVERIFY(OpenDatabases());
        QCOMPARE(stores().dbBasic.path(), app().DbBasicFile);
        QCOMPARE(stores().dbTax.path(), app().DbTaxFile);
        QCOMPARE(stores().dbBill.path(), app().DbBillFile);
        QVERIFY(!stores().dbEstimate.isOpen());
        QVERIFY(msgs.records().empty());
    }
    void firstFailureEndsOpeningAndLeavesTheRestUnopened() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        QVERIFY(test::removeStore(app().DbTaxFile));
        auto& msgs = test::script();
        QVERIFY(!OpenDatabases());
        QVERIFY(stores().dbBasic.isOpen());
        QVERIFY(!stores().dbTax.isOpen());
        QVERIFY(!stores().dbBill.isOpen()); // the file is there, but behind the failure
        QVERIFY(msgs.records().empty());
        QVERIFY(!test::storeExists(app().DbTaxFile));
    }
    void missingBasicStoreOpensNothing() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        QVERIFY(test::removeStore(app().DbBasicFile));
        QVERIFY(!OpenDatabases());
        QVERIFY(!stores().dbBasic.isOpen());
        QVERIFY(!stores().dbTax.isOpen());
        QVERIFY(!stores().dbBill.isOpen());
    }
    void defaultSerialFindsItsSupplier() {
        test::TestHome home;
        storesWithSuppliers(home, {{QStringLiteral("111-11-11111"), QStringLiteral("하나")},
                                   {QStringLiteral("222-22-22222"), QStringLiteral("둘'상사")}});
        setDefaultSupplier(QStringLiteral("222-22-22222"));
        auto& msgs = test::script();
        QVERIFY(LoadDefaultUser());
        QCOMPARE(rsUser().RecordCount(), 1);
        QCOMPARE(rsUser().text(QStringLiteral("Serial")), QStringLiteral("222-22-22222"));
        QCOMPARE(app().DefaultCompany, QStringLiteral("둘'상사"));
        QCOMPARE(app().DefaultSerial, QStringLiteral("222-22-22222"));
        QVERIFY(msgs.records().empty());
    }
    void serialWithAQuoteIsFound() {
        test::TestHome home;
        storesWithSuppliers(home, {{QStringLiteral("12'3"), QStringLiteral("따옴표")}});
        setDefaultSupplier(QStringLiteral("12'3"));
        QVERIFY(LoadDefaultUser());
        QCOMPARE(app().DefaultCompany, QStringLiteral("따옴표"));
    }
    void noDefaultSerialListsEverySupplier() {
        test::TestHome home;
        storesWithSuppliers(home, {{QStringLiteral("111-11-11111"), QStringLiteral("하나")},
                                   {QStringLiteral("222-22-22222"), QStringLiteral("둘")}});
        auto& msgs = test::script();
        QVERIFY(LoadDefaultUser());
        QCOMPARE(rsUser().RecordCount(), 2);
        QCOMPARE(app().DefaultCompany, QStringLiteral("하나"));
        QVERIFY(msgs.records().empty());
    }
    void deletedDefaultSupplierIsForgottenAndEverySupplierListed() {
        test::TestHome home;
        storesWithSuppliers(home, {{QStringLiteral("111-11-11111"), QStringLiteral("하나")},
                                   {QStringLiteral("222-22-22222"), QStringLiteral("둘")}});
        setDefaultSupplier(QStringLiteral("999-99-99999"));
        auto& msgs = test::script();
        QVERIFY(LoadDefaultUser());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, kGoneText);
        QCOMPARE(msgs.last().title, applicationTitle());
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        QCOMPARE(app().DefaultSerial, QString());
        QVERIFY(settings().contains(kAppSection, kEnvSection, QStringLiteral("기본사업자")));
        QCOMPARE(GetEnv(QStringLiteral("기본사업자"), QStringLiteral("x")), QString());
        QCOMPARE(rsUser().RecordCount(), 2);
        QCOMPARE(app().DefaultCompany, QStringLiteral("하나"));
    }
    void supplierWithoutCompanyGivesThePlaceholder() {
        test::TestHome home;
        storesWithSuppliers(home, {{QStringLiteral("111-11-11111"), QString()}});
        QVERIFY(LoadDefaultUser());
        QCOMPARE(app().DefaultCompany, QStringLiteral("하르문"));
    }
    void emptySupplierTableGivesFalseAndThePlaceholder() {
        test::TestHome home;
        storesWithSuppliers(home, {});
        app().DefaultCompany = QStringLiteral("이전");
        auto& msgs = test::script();
        QVERIFY(!LoadDefaultUser());
        QCOMPARE(app().DefaultCompany, QStringLiteral("하르문"));
        QVERIFY(rsUser().isOpen());
        QCOMPARE(rsUser().RecordCount(), 0);
        QVERIFY(msgs.records().empty());
    }
    void emptySupplierTableWithADefaultSerialSaysSoOnce() {
        test::TestHome home;
        storesWithSuppliers(home, {});
        setDefaultSupplier(QStringLiteral("111-11-11111"));
        auto& msgs = test::script();
        QVERIFY(!LoadDefaultUser());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, kGoneText);
        QCOMPARE(app().DefaultSerial, QString());
        QCOMPARE(GetEnv(QStringLiteral("기본사업자")), QString());
        QCOMPARE(app().DefaultCompany, QStringLiteral("하르문"));
    }
    void unopenedBasicStoreGivesFalseWithTheDeclarationBox() {
        test::TestHome home;
        setDefaultSupplier(QStringLiteral("111-11-11111"));
        app().DefaultCompany = QStringLiteral("이전");
        auto& msgs = test::script();
        QVERIFY(!LoadDefaultUser());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, QStringLiteral("Data Base MDB가 선언되지 않았습니다.\r"
                                                  "SELECT * FROM User WHERE Serial = '111-11-11111'"));
        QCOMPARE(msgs.last().title, QStringLiteral("MDB 오류"));
        QCOMPARE(app().DefaultSerial, QStringLiteral("111-11-11111")); // nothing else happens
        QCOMPARE(app().DefaultCompany, QStringLiteral("이전"));
        QVERIFY(!rsUser().isOpen());
    }
    void nextLoadReplacesTheSupplierRows() {
        test::TestHome home;
        storesWithSuppliers(home, {{QStringLiteral("111-11-11111"), QStringLiteral("하나")},
                                   {QStringLiteral("222-22-22222"), QStringLiteral("둘")}});
        QVERIFY(LoadDefaultUser());
        QCOMPARE(rsUser().RecordCount(), 2);
        app().DefaultSerial = QStringLiteral("222-22-22222");
        QVERIFY(LoadDefaultUser());
        QCOMPARE(rsUser().RecordCount(), 1);
        QCOMPARE(app().DefaultCompany, QStringLiteral("둘"));
    }
};

NB_TEST_MAIN(TestDefaultUser)
#include "tst_default_user.moc"
