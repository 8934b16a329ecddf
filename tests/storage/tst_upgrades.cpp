// The schema steps at start on files of older installations: what each step adds, the data
// moves, what stops a step, and that a current store passes with no statement run.
#include "StoreTestKit.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

using namespace nb;

namespace {

const QString kOldUser = QStringLiteral(
    "CREATE TABLE User (Company TEXT(50), Delegate TEXT(30), Serial TEXT(12), Post TEXT(7), Addr TEXT(100), "
    "Phone TEXT(20), Fax TEXT(20), Status TEXT(50), Item TEXT(50))");
const QString kOldTrader =
    QStringLiteral("CREATE TABLE Trader (Code TEXT(6), C_Name TEXT(50), Phone TEXT(20))");
const QString kOldProduct =
    QStringLiteral("CREATE TABLE Product (Code TEXT(6), PName TEXT(50), PNorm TEXT(50), SalePrice REAL)");
const QString kOldNewAcount = QStringLiteral("CREATE TABLE NewAcount (TaxCode TEXT(10), CCode TEXT(6), PName "
                                             "TEXT(50), TradeKum REAL, DealDate TEXT(10), "
                                             "IssueDate TEXT)");

// An older installation: no BuyTax / BuyTotal / SaleTotal, no NewAcount.UserCode, no
// Trader.HPhone, the unit kept in Product.PNorm, User without a primary index.
void layDownOldFiles(const test::TestHome& home, const QStringList& basicExtra = {},
                     const QStringList& taxExtra = {}) {
    test::useStoreFolder(home);
    QVERIFY(
        test::runRaw(app().DbBasicFile,
                     QStringList{kOldUser, kOldTrader, kOldProduct,
                                 QStringLiteral("INSERT INTO Trader VALUES ('000001', '가나상사', '02-1')"),
                                 QStringLiteral("INSERT INTO Product VALUES ('000001', '볼트', 'EA', 100)"),
                                 QStringLiteral("INSERT INTO Product VALUES ('000002', '너트', NULL, 50)")} +
                         basicExtra));
    QVERIFY(test::runRaw(
        app().DbTaxFile,
        QStringList{kOldNewAcount,
                    QStringLiteral("INSERT INTO NewAcount VALUES ('100000', '000001', '볼트', 1000, "
                                   "'2024-01-05', '')"),
                    QStringLiteral("INSERT INTO NewAcount VALUES ('100001', '000002', '너트', 500, "
                                   "'2024-01-06', '')")} +
            taxExtra));
    QVERIFY(test::runRaw(app().DbBillFile, {QStringLiteral("CREATE TABLE Master (BillNo TEXT(6))")}));
}

// A trigger that refuses every change of the table's rows with the words "blocked".
QStringList stopUpdatesOf(const QString& table) {
    if (!test::onServerEngine())
        return {QStringLiteral("CREATE TRIGGER stop BEFORE UPDATE ON ") + table +
                QStringLiteral(" BEGIN SELECT RAISE(ABORT, 'blocked'); END")};
    return {QStringLiteral("CREATE FUNCTION stop() RETURNS trigger LANGUAGE plpgsql AS "
                           "$$BEGIN RAISE EXCEPTION 'blocked'; END$$"),
            QStringLiteral("CREATE TRIGGER stop BEFORE UPDATE ON ") + table +
                QStringLiteral(" FOR EACH ROW EXECUTE FUNCTION stop()")};
}

void startUpSteps() {
    QVERIFY(OpenDatabases());
    UpgradeTables();
    UpgradeColumns();
}

QStringList column(const QString& path, const QString& sql) {
    return test::texts(test::rawColumn(path, sql));
}

bool hasIndexNamed(Database& db, const QString& table, const QString& name) {
    for (const IndexInfo& info : db.indexes(table))
        if (info.name == name) return true;
    return false;
}

} // namespace

class TestUpgrades : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void olderSupplierAndTraderTablesGainAnEmailColumn() {
        test::TestHome home;
        layDownOldFiles(home);
        startUpSteps();
        QVERIFY(stores().dbBasic.hasColumn("User", "Email"));
        QVERIFY(stores().dbBasic.hasColumn("Trader", "Email"));
        QCOMPARE(stores().dbBasic.columnType("Trader", "Email"), test::declared(QStringLiteral("TEXT(100)")));
        // The trader on file is still there, its address empty.
        QCOMPARE(column(app().DbBasicFile, "SELECT C_Name FROM Trader WHERE Email IS NULL"),
                 QStringList{QStringLiteral("가나상사")});
    }
    void olderTaxStoreGainsTheHandOverRecordAtStart() {
        test::TestHome home;
        layDownOldFiles(home);
        QVERIFY(OpenDatabases());
        UpgradeTables();
        QVERIFY(stores().dbTax.hasTable("EtaxFile"));
        QVERIFY(stores().dbTax.hasTable("EtaxHandOver"));
        QCOMPARE(stores().dbTax.columns("EtaxHandOver"),
                 test::named({"FileNo", "TaxCode", "DealDate", "CCode", "CName", "TradeKum", "VatKum"}));
        // A second start runs nothing more.
        const int before = stores().dbTax.statementsRun();
        UpgradeTables();
        QCOMPARE(stores().dbTax.statementsRun(), before);
    }
    void aHandOverTableThatCannotBeMadeLeavesNeither() {
        test::TestHome home;
        // A view of the second table's name: its index cannot be made, so the step fails half way.
        layDownOldFiles(home, {}, {QStringLiteral("CREATE VIEW EtaxHandOver AS SELECT 1 AS FileNo")});
        auto& msgs = test::script();
        QVERIFY(OpenDatabases());
        UpgradeTables();
        QVERIFY(!stores().dbTax.hasTable("EtaxFile"));
        QVERIFY(!stores().dbTax.inTransaction());
        QVERIFY(!msgs.records().empty());
    }
    void currentStorePassesWithNoStatementRunAndNoChange() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        QVERIFY(test::runRaw(
            app().DbBasicFile,
            {QStringLiteral("INSERT INTO User (Serial, Company) VALUES ('123-45-67890', '하나')"),
             QStringLiteral("INSERT INTO Product (Code, PNorm, Unit) VALUES ('000001', '규격', 'EA')")}));
        QVERIFY(test::runRaw(app().DbTaxFile,
                             {QStringLiteral("INSERT INTO NewAcount (TaxCode) VALUES ('100000')")}));
        auto& msgs = test::script();
        startUpSteps();
        QCOMPARE(stores().dbBasic.statementsRun(), 0);
        QCOMPARE(stores().dbTax.statementsRun(), 0);
        QVERIFY(msgs.records().empty());
        QCOMPARE(column(app().DbBasicFile, QStringLiteral("SELECT PNorm || '/' || Unit FROM Product")),
                 QStringList{QStringLiteral("규격/EA")});
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT UserCode FROM NewAcount")),
                 QStringList{QStringLiteral("<null>")});
    }
    void olderStoreGainsEveryMissingObject() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')")});
        auto& msgs = test::script();
        startUpSteps();
        QVERIFY(msgs.records().empty());
        Database& tax = stores().dbTax;
        for (const QString& table :
             {QStringLiteral("BuyTax"), QStringLiteral("BuyTotal"), QStringLiteral("SaleTotal")}) {
            QVERIFY(tax.hasTable(table));
            QCOMPARE(tax.columns(table).count(), tableDef(table).columns.count());
            QVERIFY(hasIndexNamed(tax, table, test::named(table + QStringLiteral("_PrimaryKey"))));
            QVERIFY(hasIndexNamed(tax, table, test::named(table + QStringLiteral("_PK"))));
            QVERIFY(tax.hasPrimaryIndex(table));
        }
        QCOMPARE(tax.columns(QStringLiteral("NewAcount")).mid(6),
                 test::named({QStringLiteral("UserCode"), QStringLiteral("Receipt")}));
        QCOMPARE(tax.columnType(QStringLiteral("NewAcount"), QStringLiteral("UserCode")),
                 test::declared(QStringLiteral("TEXT(15)")));
        Database& basic = stores().dbBasic;
        QVERIFY(hasIndexNamed(basic, QStringLiteral("User"), test::named(QStringLiteral("User_PK"))));
        QVERIFY(basic.hasPrimaryIndex(QStringLiteral("User")));
        QCOMPARE(basic.columnType(QStringLiteral("Trader"), QStringLiteral("HPhone")),
                 test::declared(QStringLiteral("TEXT(14)")));
        QCOMPARE(basic.columnType(QStringLiteral("Product"), QStringLiteral("Unit")),
                 test::declared(QStringLiteral("TEXT(10)")));
    }
    void secondStartRunsNoStatement() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')")});
        startUpSteps();
        closeStores();
        auto& msgs = test::script();
        startUpSteps();
        QCOMPARE(stores().dbBasic.statementsRun(), 0);
        QCOMPARE(stores().dbTax.statementsRun(), 0);
        QVERIFY(msgs.records().empty());
    }
    void invoiceRowsGetTheSerialOfTheFirstSupplier() {
        test::TestHome home;
        layDownOldFiles(
            home, {QStringLiteral("INSERT INTO User (Serial, Company) VALUES ('222-22-22222', '둘')"),
                   QStringLiteral("INSERT INTO User (Serial, Company) VALUES ('111-11-11111', '하나')")});
        startUpSteps();
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT UserCode FROM NewAcount ORDER BY TaxCode")),
                 (QStringList{QStringLiteral("222-22-22222"), QStringLiteral("222-22-22222")}));
    }
    void firstSupplierWithoutSerialGivesEmptyText() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("INSERT INTO User (Company) VALUES ('번호없음')")});
        startUpSteps();
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT UserCode FROM NewAcount ORDER BY TaxCode")),
                 (QStringList{QString(), QString()}));
    }
    void emptyUserLeavesInvoiceRowsEmptyForGood() {
        test::TestHome home;
        layDownOldFiles(home);
        startUpSteps();
        QVERIFY(stores().dbTax.hasColumn(QStringLiteral("NewAcount"), QStringLiteral("UserCode")));
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT UserCode FROM NewAcount")),
                 (QStringList{QStringLiteral("<null>"), QStringLiteral("<null>")}));
        // A supplier registered later does not fill them: the move ran with the column only.
        QVERIFY(stores().dbBasic.Execute(QStringLiteral("INSERT INTO User (Serial) VALUES (?)"),
                                         {QStringLiteral("333-33-33333")}));
        closeStores();
        startUpSteps();
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT UserCode FROM NewAcount")),
                 (QStringList{QStringLiteral("<null>"), QStringLiteral("<null>")}));
    }
    void invoicesIssuedBeforeGainAReceiptColumnLeftUnknown() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')")});
        startUpSteps();
        QCOMPARE(stores().dbTax.columnType(QStringLiteral("NewAcount"), QStringLiteral("Receipt")),
                 test::declared(QStringLiteral("TEXT(4)")));
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT Receipt FROM NewAcount ORDER BY TaxCode")),
                 (QStringList{QStringLiteral("<null>"), QStringLiteral("<null>")}));
    }
    void wholeNumberColumnsRoundFractionsHalfToEvenOnWriting() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        // The amounts are bound, as the program writes them (on the server a fraction bound as
        // double precision goes into a whole-number column rounded half to even).
        Database tax;
        QVERIFY(tax.open(app().DbTaxFile));
        QVERIFY(
            tax.tryExecute(QStringLiteral("INSERT INTO SaleTotal (Serial, CCode, TradeKum, VatKum, Blank) "
                                          "VALUES ('1', 'a', ?, ?, ?)"),
                           {2.5, 3.5, -3.5}));
        QVERIFY(tax.tryExecute(QStringLiteral("INSERT INTO BuyTotal (Serial, CCode, TradeKum, VatKum, Blank) "
                                              "VALUES ('1', 'a', ?, ?, NULL)"),
                               {10.4, -2.5}));
        QVERIFY(tax.tryExecute(QStringLiteral("UPDATE BuyTotal SET TradeKum = ?"), {10.6}));
        QCOMPARE(column(app().DbTaxFile,
                        QStringLiteral("SELECT TradeKum || '/' || VatKum || '/' || Blank FROM SaleTotal")),
                 QStringList{QStringLiteral("2/4/-4")});
        QCOMPARE(
            column(app().DbTaxFile, QStringLiteral("SELECT TradeKum || '/' || VatKum || '/' || "
                                                   "COALESCE(CAST(Blank AS TEXT), 'null') FROM BuyTotal")),
            QStringList{QStringLiteral("11/-2/null")});
        Database estimate;
        QVERIFY(estimate.open(app().DbEstimateFile));
        for (const auto& [seq, amount] : {std::pair{1, 1500.5}, {2, 1501.5}, {3, 2000.0}})
            QVERIFY(estimate.tryExecute(QStringLiteral("INSERT INTO Estimate (Seq, EstiKum) VALUES (?, ?)"),
                                        {seq, amount}));
        QCOMPARE(column(app().DbEstimateFile, QStringLiteral("SELECT EstiKum FROM Estimate ORDER BY Seq")),
                 (QStringList{QStringLiteral("1500"), QStringLiteral("1502"), QStringLiteral("2000")}));
    }
    void totalsOfAnOlderFileGainTheRoundingOnce() {
        test::TestHome home;
        layDownOldFiles(
            home, {QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')")},
            {QStringLiteral("CREATE TABLE SaleTotal (Serial TEXT(8), CCode TEXT(6), TradeKum INTEGER, "
                            "VatKum INTEGER, Blank INTEGER, CName TEXT(30), UserCode TEXT(15))")});
        startUpSteps();
        // The server's whole-number columns round by themselves: no trigger there.
        QCOMPARE(stores().dbTax.hasTrigger(QStringLiteral("SaleTotal_whole_ai")), !test::onServerEngine());
        QVERIFY(stores().dbTax.Execute(
            QStringLiteral("INSERT INTO SaleTotal (Serial, CCode, TradeKum) VALUES ('1', 'a', ?)"), {0.5}));
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT TradeKum FROM SaleTotal")),
                 QStringList{QStringLiteral("0")});
        closeStores();
        startUpSteps();
        QCOMPARE(stores().dbTax.statementsRun(), 0);
    }
    void productUnitTakesPNormAndPNormStartsEmpty() {
        test::TestHome home;
        layDownOldFiles(home);
        startUpSteps();
        QCOMPARE(column(app().DbBasicFile, QStringLiteral("SELECT Unit FROM Product ORDER BY Code")),
                 (QStringList{QStringLiteral("EA"), QStringLiteral("<null>")}));
        QCOMPARE(column(app().DbBasicFile, QStringLiteral("SELECT PNorm FROM Product ORDER BY Code")),
                 (QStringList{QString(), QString()}));
    }
    void traderGainsAnEmptyMobileNumber() {
        test::TestHome home;
        layDownOldFiles(home);
        startUpSteps();
        QCOMPARE(column(app().DbBasicFile, QStringLiteral("SELECT HPhone FROM Trader")),
                 QStringList{QString()});
    }
    void productWithUnitInOtherCaseKeepsPNorm() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("ALTER TABLE Product ADD COLUMN unit TEXT(10)")});
        startUpSteps();
        QCOMPARE(column(app().DbBasicFile, QStringLiteral("SELECT PNorm FROM Product ORDER BY Code")),
                 (QStringList{QStringLiteral("EA"), QStringLiteral("<null>")}));
        QCOMPARE(stores().dbBasic.columns(QStringLiteral("Product")).last(), QStringLiteral("unit"));
    }
    void userWithoutPrimaryIndexGainsPK() {
        test::TestHome home;
        layDownOldFiles(home);
        startUpSteps();
        const QList<IndexInfo> indexes = stores().dbBasic.indexes(QStringLiteral("User"));
        QCOMPARE(indexes.size(), 1);
        QCOMPARE(indexes.first().name, test::named(QStringLiteral("User_PK")));
        QVERIFY(indexes.first().unique);
        QCOMPARE(indexes.first().columns, test::named(QStringList{QStringLiteral("Serial")}));
    }
    void userWithPrimaryIndexOfAnotherNameGainsNoPK_data() {
        QTest::addColumn<QStringList>("layout");
        QTest::newRow("primary key of the table") << QStringList{
            QStringLiteral("CREATE TABLE User (Company TEXT(50), Serial TEXT(12) PRIMARY KEY)")};
        QTest::newRow("unique index made as primary")
            << QStringList{QStringLiteral("CREATE TABLE User (Company TEXT(50), Serial TEXT(12))"),
                           QStringLiteral("CREATE UNIQUE INDEX User_PrimaryKey ON User (Serial)")};
    }
    void userWithPrimaryIndexOfAnotherNameGainsNoPK() {
        QFETCH(QStringList, layout);
        test::TestHome home;
        test::useStoreFolder(home);
        QVERIFY(test::runRaw(app().DbBasicFile, layout));
        QVERIFY(test::runRaw(app().DbTaxFile, {kOldNewAcount}));
        QVERIFY(test::runRaw(app().DbBillFile, {QStringLiteral("CREATE TABLE Master (BillNo TEXT(6))")}));
        QVERIFY(OpenDatabases());
        UpgradeTables();
        QVERIFY(
            !hasIndexNamed(stores().dbBasic, QStringLiteral("User"), test::named(QStringLiteral("User_PK"))));
        QVERIFY(stores().dbBasic.hasPrimaryIndex(QStringLiteral("User")));
    }
    void uniqueIndexNotMadeAsPrimaryDoesNotCount() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("CREATE UNIQUE INDEX User_Serial ON User (Serial)")});
        QVERIFY(OpenDatabases());
        QVERIFY(!stores().dbBasic.hasPrimaryIndex(QStringLiteral("User")));
        UpgradeTables();
        QVERIFY(
            hasIndexNamed(stores().dbBasic, QStringLiteral("User"), test::named(QStringLiteral("User_PK"))));
    }
    void duplicateSerialsStopThePrimaryIndexWithABox() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')"),
                               QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')")});
        auto& msgs = test::script();
        startUpSteps();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text,
                 storeFaultText(19, QStringLiteral("UNIQUE")) + u'\r' +
                     test::engineWords("UNIQUE constraint failed: User.Serial",
                                       "could not create unique index \"user_pk\"") +
                     QStringLiteral("\rCREATE UNIQUE INDEX \"User_PK\" ON \"User\" (\"Serial\")"));
        QCOMPARE(msgs.last().title, QStringLiteral("ERROR"));
        QVERIFY(!stores().dbBasic.hasPrimaryIndex(QStringLiteral("User")));
        // The other steps went on.
        QVERIFY(stores().dbBasic.hasColumn(QStringLiteral("Product"), QStringLiteral("Unit")));
    }
    void buyTaxWithFewerColumnsIsLeftAsItIs() {
        test::TestHome home;
        layDownOldFiles(home, {}, {QStringLiteral("CREATE TABLE BuyTax (Serial TEXT(8), CCode TEXT(6))")});
        auto& msgs = test::script();
        startUpSteps();
        QVERIFY(msgs.records().empty());
        QCOMPARE(stores().dbTax.columns(QStringLiteral("BuyTax")),
                 test::named({QStringLiteral("Serial"), QStringLiteral("CCode")}));
        QVERIFY(stores().dbTax.indexes(QStringLiteral("BuyTax")).isEmpty());
        QVERIFY(stores().dbTax.hasTable(QStringLiteral("SaleTotal")));
    }
    void missingNewAcountSkipsItsStepOnly() {
        test::TestHome home;
        layDownOldFiles(home, {}, {QStringLiteral("DROP TABLE NewAcount")});
        auto& msgs = test::script();
        startUpSteps();
        QVERIFY(msgs.records().empty());
        QVERIFY(!stores().dbTax.hasTable(QStringLiteral("NewAcount")));
        QVERIFY(stores().dbBasic.hasPrimaryIndex(QStringLiteral("User")));
    }
    void missingUserTableStopsTheInvoiceMoveWithTheQueryBox() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("DROP TABLE User")});
        auto& msgs = test::script();
        startUpSteps();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\rselect Serial from User"));
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
        QVERIFY(!stores().dbTax.hasColumn(QStringLiteral("NewAcount"), QStringLiteral("UserCode")));
        QVERIFY(!stores().dbBasic.hasTable(QStringLiteral("User")));
        QVERIFY(stores().dbBasic.hasColumn(QStringLiteral("Product"), QStringLiteral("Unit")));
    }
    void missingUserTableWithCurrentInvoicesEndsQuietly() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("DROP TABLE User")},
                        {QStringLiteral("ALTER TABLE NewAcount ADD COLUMN UserCode TEXT(15)")});
        auto& msgs = test::script();
        startUpSteps();
        QVERIFY(msgs.records().empty());
    }
    void failedInvoiceMoveTakesTheColumnBackAndIsTriedAgain() {
        test::TestHome home;
        layDownOldFiles(home, {QStringLiteral("INSERT INTO User (Serial) VALUES ('111-11-11111')")},
                        stopUpdatesOf(QStringLiteral("NewAcount")));
        auto& msgs = test::script();
        startUpSteps();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text,
                 storeFaultText(19, QStringLiteral("blocked")) +
                     QStringLiteral("\rblocked\rUpdate NewAcount Set UserCode = '111-11-11111'"));
        QCOMPARE(msgs.last().title, QStringLiteral("ERROR"));
        QVERIFY(!stores().dbTax.hasColumn(QStringLiteral("NewAcount"), QStringLiteral("UserCode")));
        QVERIFY(stores().dbTax.Execute(test::onServerEngine()
                                           ? QStringLiteral("DROP TRIGGER stop ON NewAcount")
                                           : QStringLiteral("DROP TRIGGER stop")));
        closeStores();
        startUpSteps();
        QCOMPARE(column(app().DbTaxFile, QStringLiteral("SELECT UserCode FROM NewAcount")),
                 (QStringList{QStringLiteral("111-11-11111"), QStringLiteral("111-11-11111")}));
    }
    void failedProductMoveKeepsPNormAndNoUnit() {
        test::TestHome home;
        layDownOldFiles(home, stopUpdatesOf(QStringLiteral("Product")));
        auto& msgs = test::script();
        startUpSteps();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, QStringLiteral("Error 1811 (blocked) in procedure DAO_AddField of Module "
                                                  "mdlCommonHM\r\n[TABLE]: Product,    [FIELD]: Unit"));
        QVERIFY(!stores().dbBasic.hasColumn(QStringLiteral("Product"), QStringLiteral("Unit")));
        QCOMPARE(column(app().DbBasicFile, QStringLiteral("SELECT PNorm FROM Product ORDER BY Code")),
                 (QStringList{QStringLiteral("EA"), QStringLiteral("<null>")}));
    }
    void unopenedBasicStoreKeepsNoSupplierColumn() {
        test::TestHome home;
        layDownOldFiles(home);
        Stores& s = stores();
        QVERIFY(s.dbTax.open(app().DbTaxFile));
        auto& msgs = test::script();
        UpgradeTables();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("Data Base MDB가 선언되지 않았습니다.\rselect Serial from User"));
        QCOMPARE(msgs.last().title, QStringLiteral("MDB 오류"));
        QVERIFY(!s.dbTax.hasColumn(QStringLiteral("NewAcount"), QStringLiteral("UserCode")));
        QVERIFY(s.dbTax.hasTable(QStringLiteral("BuyTax")));
        UpgradeColumns();
        QCOMPARE(msgs.boxes().size(), size_t(3));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("Error 91 (Object variable or With block variable not set) in "
                                "procedure DAO_AddField of Module mdlCommonHM\r\n"
                                "[TABLE]: Product,    [FIELD]: Unit"));
    }
    void unopenedTaxStoreIsReportedOnce() {
        test::TestHome home;
        layDownOldFiles(home);
        QVERIFY(stores().dbBasic.open(app().DbBasicFile));
        auto& msgs = test::script();
        UpgradeTables();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.startsWith(
            QStringLiteral("Data Base MDB가 선언되지 않았습니다.\rCREATE TABLE")));
        QVERIFY(stores().dbBasic.hasPrimaryIndex(QStringLiteral("User")));
    }
};

NB_TEST_MAIN(TestUpgrades)
#include "tst_upgrades.moc"
