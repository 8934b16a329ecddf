// The store files made when missing: every table with its columns in order, declared types
// and widths, the indexes, the journal, and existing files left alone.
#include "StoreTestKit.h"
#include "storage/StoreLayout.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>
#include <memory>
#include <optional>

using namespace nb;

namespace {

// The files of one CreateMissingStoreFiles, made once for the checks that only read them.
QString madeFolder() {
    static QTemporaryDir dir;
    return dir.path();
}

QString pathOf(const QString& file) {
    static const QHash<QString, QString> names{{QStringLiteral("basic"), QStringLiteral("dbBasic.db")},
                                               {QStringLiteral("bill"), QStringLiteral("dbBill.db")},
                                               {QStringLiteral("tax"), QStringLiteral("dbTax.db")},
                                               {QStringLiteral("estimate"), QStringLiteral("dbEstimate.db")},
                                               {QStringLiteral("post"), QStringLiteral("dbPost.db")}};
    return madeFolder() + QStringLiteral("/Dbs/") + names.value(file);
}

QByteArray digestOf(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

// The tables of a store in the order they were made, in the case they were written in.
QStringList tableNames(const QString& path) {
    Database db;
    if (!db.open(path)) return {};
    if (!db.onServer())
        return test::texts(test::rawColumn(
            path, QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid")));
    QSqlQuery q(db.connection());
    q.prepare(
        QStringLiteral("SELECT c.relname FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n "
                       "ON n.oid = c.relnamespace WHERE n.nspname = ? AND c.relkind = 'r' ORDER BY c.oid"));
    q.addBindValue(db.serverSchema());
    QStringList out;
    if (q.exec())
        while (q.next())
            out << q.value(0).toString();
    return out;
}

// The server makes its names in lower case.
QStringList namesOf(const char* spaced) {
    const QString names = QString::fromUtf8(spaced);
    return (test::onServerEngine() ? names.toLower() : names).split(u' ');
}

// On the server the stores of initTestCase live in the database of a home kept for the whole
// run (every home brings a fresh database); the files' stay in madeFolder.
std::unique_ptr<test::TestHome>& madeHome() {
    static std::unique_ptr<test::TestHome> home;
    return home;
}

void pointAtMadeStores() {
    AppState& a = app();
    a.DbBasicFile = pathOf(QStringLiteral("basic"));
    a.DbBillFile = pathOf(QStringLiteral("bill"));
    a.DbTaxFile = pathOf(QStringLiteral("tax"));
    a.DbEstimateFile = pathOf(QStringLiteral("estimate"));
    a.DbPostFile = pathOf(QStringLiteral("post"));
}

// The home a check that only reads the made stores runs in: a fresh one on files; on the
// server none of its own (it would bring an empty database), the made stores pointed at.
void readMadeStores(std::optional<test::TestHome>& home) {
    if (!test::onServerEngine()) home.emplace();
    pointAtMadeStores();
}

QStringList list(const char* spaced) {
    return QString::fromUtf8(spaced).split(u' ');
}

// The names of a store's table in the case the engine made them (the postcode book is a file).
QString onServerIfStore(const QString& file, const QString& names) {
    return test::onServerEngine() && file != QStringLiteral("post") ? names.toLower() : names;
}

} // namespace

class TestStoreLayout : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        std::optional<test::TestHome> home;
        if (test::onServerEngine())
            madeHome() = std::make_unique<test::TestHome>();
        else
            home.emplace();
        pointAtMadeStores();
        CreateMissingStoreFiles();
        QVERIFY(QFile::exists(pathOf(QStringLiteral("post")))); // the postcode book stays a file
    }
    void cleanupTestCase() { madeHome().reset(); }
    void createsEveryMissingStoreFileWithItsTables() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        QCOMPARE(tableNames(app().DbBasicFile), namesOf("User Environment Trader Product"));
        QCOMPARE(tableNames(app().DbBillFile), namesOf("Master Detail"));
        QCOMPARE(tableNames(app().DbTaxFile),
                 namesOf("NewAcount BuyTax BuyTotal SaleTotal EtaxFile EtaxHandOver"));
        QCOMPARE(tableNames(app().DbEstimateFile), namesOf("EstiBase Estimate"));
        QCOMPARE(tableNames(app().DbPostFile), list("Post")); // a file of the seat on both engines
        QVERIFY(test::storeExists(app().DbInOutFile));
        QVERIFY(!QFile::exists(app().DbBasicFile + QStringLiteral(".building")));
    }
    void inOutFileIsCreatedWithoutTables() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        Database db;
        QVERIFY(db.open(app().DbInOutFile));
        QVERIFY(tableNames(app().DbInOutFile).isEmpty());
    }
    void columnsAreInTheirOrder_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("columns");
        QTest::newRow("User") << "basic"
                              << "User"
                              << list("Company Delegate Serial Post Addr Phone Fax Status Item Email");
        QTest::newRow("Environment") << "basic"
                                     << "Environment"
                                     << list("StockProc Standard Special StockManage Password sPost ePost");
        QTest::newRow("Trader")
            << "basic"
            << "Trader"
            << list("Code C_Name U_Name Serial Phone Fax HPhone DDD Charge VAT Addr1 Addr2 Post "
                    "Status Item OpenDate CloseDate EnterDate Section TotNoPay Bigo bDeled Email");
        QTest::newRow("Product") << "basic"
                                 << "Product" << list("Code PName PNorm BuyPrice SalePrice Unit Bigo PTax");
        QTest::newRow("Post") << "post"
                              << "Post" << list("ZIPCODE SIDO GUGUN DONG BUNJI");
        QTest::newRow("Master") << "bill"
                                << "Master" << list("BillNo BillDate CCode TotAmount TotVat NumBill");
        QTest::newRow("Detail") << "bill"
                                << "Detail" << list("BillNo BillSEQ PName Unit Quant Price DC Amount VAT");
        QTest::newRow("NewAcount")
            << "tax"
            << "NewAcount"
            << list("TaxCode CCode PName PNorm Quantity UnitCost TradeKum VatKum DealDate "
                    "IssueDate TradeDate UserCode Receipt");
        QTest::newRow("BuyTax")
            << "tax"
            << "BuyTax"
            << list("Serial CCode PCode CName DealDate IssueDate TradeKum VatKum Blank List "
                    "Section UserCode");
        QTest::newRow("SaleTotal") << "tax"
                                   << "SaleTotal"
                                   << list("Serial CCode TradeKum VatKum Blank CName UserCode");
        QTest::newRow("BuyTotal") << "tax"
                                  << "BuyTotal" << list("Serial CCode TradeKum VatKum Blank CName UserCode");
        QTest::newRow("EtaxFile") << "tax"
                                  << "EtaxFile"
                                  << list("FileNo FilePath FromDate ToDate WrittenAt Invoices UploadedDate "
                                          "WithdrawnDate Note");
        QTest::newRow("EtaxHandOver")
            << "tax"
            << "EtaxHandOver" << list("FileNo TaxCode DealDate CCode CName TradeKum VatKum");
        QTest::newRow("EstiBase")
            << "estimate"
            << "EstiBase"
            << list("EstiCode CCode CName EstiDate DeriveDate ClassName EstiKum EstiHanKum Vat "
                    "Refer Validate Section");
        QTest::newRow("Estimate") << "estimate"
                                  << "Estimate"
                                  << list("Seq Code PCode PName PNorm EAmount EUnitPrice EstiKum EUnit");
    }
    void columnsAreInTheirOrder() {
        QFETCH(QString, file);
        QFETCH(QString, table);
        QFETCH(QStringList, columns);
        std::optional<test::TestHome> home;
        readMadeStores(home); // the stores read were made once, in initTestCase
        Database db;
        QVERIFY(db.open(pathOf(file)));
        QCOMPARE(db.columns(table).join(u' '), onServerIfStore(file, columns.join(u' ')));
    }
    void declaredTypesAndWidths_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("type");
        const auto row = [](const char* file, const char* table, const char* column, const char* type) {
            QTest::addRow("%s.%s", table, column) << QString::fromUtf8(file) << QString::fromUtf8(table)
                                                  << QString::fromUtf8(column) << QString::fromUtf8(type);
        };
        row("basic", "Trader", "Code", "TEXT(6)");
        row("basic", "Trader", "HPhone", "TEXT(14)");
        row("basic", "Trader", "VAT", "TINYINT");
        row("basic", "Trader", "Section", "TINYINT");
        row("basic", "Trader", "TotNoPay", "REAL");
        row("basic", "Trader", "bDeled", "BOOLEAN");
        row("basic", "Product", "Unit", "TEXT(10)");
        row("basic", "Product", "BuyPrice", "REAL");
        row("basic", "Product", "SalePrice", "REAL");
        row("basic", "Product", "PTax", "REAL");
        row("basic", "Environment", "StockProc", "SMALLINT");
        row("basic", "Environment", "Standard", "TINYINT");
        row("post", "Post", "ZIPCODE", "TEXT(6)");
        row("bill", "Master", "BillNo", "TEXT(6)");
        row("bill", "Master", "BillDate", "TEXT(10)");
        row("bill", "Master", "CCode", "TEXT(6)");
        row("bill", "Master", "TotAmount", "REAL");
        row("bill", "Master", "NumBill", "INTEGER");
        row("bill", "Detail", "BillNo", "TEXT(6)");
        row("bill", "Detail", "BillSEQ", "INTEGER");
        row("bill", "Detail", "Quant", "REAL");
        row("bill", "Detail", "VAT", "REAL");
        row("tax", "NewAcount", "CCode", "TEXT(6)");
        row("tax", "NewAcount", "DealDate", "TEXT(10)");
        row("tax", "NewAcount", "IssueDate", "TEXT"); // the remark, as long as it is
        row("tax", "NewAcount", "UserCode", "TEXT(15)");
        row("tax", "NewAcount", "Receipt", "TEXT(4)"); // 영수 or 청구
        row("tax", "NewAcount", "TradeKum", "REAL");
        row("tax", "BuyTax", "Serial", "TEXT(8)");
        row("tax", "BuyTax", "PCode", "TEXT(9)");
        row("tax", "BuyTax", "CName", "TEXT(40)");
        row("tax", "BuyTax", "IssueDate", "TEXT(10)");
        row("tax", "BuyTax", "TradeKum", "INTEGER");
        row("tax", "BuyTax", "List", "TEXT(30)");
        row("tax", "BuyTax", "Section", "TEXT(1)");
        row("tax", "BuyTax", "UserCode", "TEXT(15)");
        row("tax", "SaleTotal", "CName", "TEXT(30)");
        row("tax", "SaleTotal", "Blank", "INTEGER");
        row("tax", "BuyTotal", "UserCode", "TEXT(15)");
        row("estimate", "EstiBase", "CCode", "TEXT(6)");
        row("estimate", "EstiBase", "EstiDate", "TEXT(10)");
        row("estimate", "EstiBase", "DeriveDate", "TEXT(10)");
        row("estimate", "EstiBase", "EstiKum", "REAL");
        row("estimate", "EstiBase", "Vat", "BOOLEAN");
        row("estimate", "Estimate", "Seq", "INTEGER");
        row("estimate", "Estimate", "EAmount", "REAL");
        row("estimate", "Estimate", "EstiKum", "INTEGER");
    }
    void declaredTypesAndWidths() {
        QFETCH(QString, file);
        QFETCH(QString, table);
        QFETCH(QString, column);
        QFETCH(QString, type);
        std::optional<test::TestHome> home;
        readMadeStores(home); // the stores read were made once, in initTestCase
        Database db;
        QVERIFY(db.open(pathOf(file)));
        QCOMPARE(db.columnType(table, column), file == QStringLiteral("post") ? type : test::declared(type));
    }
    void indexesOfTheLayout_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("index");
        QTest::addColumn<QStringList>("columns");
        QTest::addColumn<bool>("unique");
        const auto row = [](const char* file, const char* table, const char* index, const char* columns,
                            bool unique) {
            QTest::newRow(index) << QString::fromUtf8(file) << QString::fromUtf8(table)
                                 << QString::fromUtf8(index) << list(columns) << unique;
        };
        row("basic", "User", "User_PK", "Serial", true);
        row("basic", "Trader", "Trader_Code", "Code", false);
        row("basic", "Product", "Product_Code", "Code", false);
        row("bill", "Master", "Master_BillNo", "BillNo", false);
        row("bill", "Master", "Master_BillDate", "BillDate", false);
        row("bill", "Master", "Master_CCode", "CCode", false);
        row("bill", "Detail", "Detail_BillNo", "BillNo BillSEQ", false);
        row("tax", "NewAcount", "NewAcount_TaxCode", "TaxCode", false);
        row("tax", "NewAcount", "NewAcount_CCode", "CCode", false);
        row("tax", "NewAcount", "NewAcount_DealDate", "DealDate", false);
        row("tax", "BuyTax", "BuyTax_PrimaryKey", "Serial CCode DealDate", true);
        row("tax", "BuyTax", "BuyTax_PK", "Serial CCode DealDate", false);
        row("tax", "BuyTotal", "BuyTotal_PrimaryKey", "Serial CCode", true);
        row("tax", "BuyTotal", "BuyTotal_PK", "Serial CCode", false);
        row("tax", "SaleTotal", "SaleTotal_PrimaryKey", "Serial CCode", true);
        row("tax", "SaleTotal", "SaleTotal_PK", "Serial CCode", false);
        row("estimate", "EstiBase", "EstiBase_EstiCode", "EstiCode", false);
        row("estimate", "Estimate", "Estimate_Code", "Code", false);
        row("estimate", "Estimate", "Estimate_Seq", "Seq", false);
    }
    void indexesOfTheLayout() {
        QFETCH(QString, file);
        QFETCH(QString, table);
        QFETCH(QString, index);
        QFETCH(QStringList, columns);
        QFETCH(bool, unique);
        std::optional<test::TestHome> home;
        readMadeStores(home); // the stores read were made once, in initTestCase
        Database db;
        QVERIFY(db.open(pathOf(file)));
        bool found = false;
        for (const IndexInfo& info : db.indexes(table)) {
            if (info.name != onServerIfStore(file, index)) continue;
            found = true;
            QCOMPARE(info.columns.join(u' '), onServerIfStore(file, columns.join(u' ')));
            QCOMPARE(info.unique, unique);
        }
        QVERIFY2(found, qPrintable(index));
    }
    void userHasItsPrimaryIndexFromTheStart() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        Database db;
        QVERIFY(db.open(app().DbBasicFile));
        QVERIFY(db.hasPrimaryIndex(QStringLiteral("User")));
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO User (Serial, Company) VALUES (?, ?)"),
                           {QStringLiteral("123-45-67890"), QStringLiteral("가")}));
        auto& msgs = test::script();
        QVERIFY(!db.Execute(QStringLiteral("INSERT INTO User (Serial, Company) VALUES (?, ?)"),
                            {QStringLiteral("123-45-67890"), QStringLiteral("나")}));
        QCOMPARE(msgs.last().title, QStringLiteral("ERROR"));
    }
    void totalsTablesHaveAPrimaryIndexAndBuyTaxToo() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        Database db;
        QVERIFY(db.open(app().DbTaxFile));
        QVERIFY(db.hasPrimaryIndex(QStringLiteral("BuyTax")));
        QVERIFY(db.hasPrimaryIndex(QStringLiteral("SaleTotal")));
        QVERIFY(!db.hasPrimaryIndex(QStringLiteral("NewAcount")));
    }
    void journalIsWalAndForeignKeysAreOff() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        if (test::onServerEngine()) {
            // The stores are schemas of the server (no journal of their own) and none of their
            // tables refers to another; the postcode book is a file with its journal.
            QCOMPARE(test::rawValue(app().DbPostFile, QStringLiteral("PRAGMA journal_mode")).toString(),
                     QStringLiteral("wal"));
            Database db;
            QVERIFY(db.open(app().DbBillFile));
            QCOMPARE(test::rawValue(app().DbBillFile,
                                    QStringLiteral("SELECT count(*) FROM pg_catalog.pg_constraint WHERE "
                                                   "contype = 'f'"))
                         .toInt(),
                     0);
            return;
        }
        for (const QString& path : {app().DbBasicFile, app().DbBillFile, app().DbTaxFile,
                                    app().DbEstimateFile, app().DbPostFile, app().DbInOutFile})
            QCOMPARE(test::rawValue(path, QStringLiteral("PRAGMA journal_mode")).toString(),
                     QStringLiteral("wal"));
        Database db;
        QVERIFY(db.open(app().DbBillFile));
        QSqlQuery q(db.connection());
        QVERIFY(q.exec(QStringLiteral("PRAGMA foreign_keys")) && q.next());
        QCOMPARE(q.value(0).toInt(), 0);
    }
    void existingFileIsNeverTouched() {
        test::TestHome home;
        test::useStoreFolder(home);
        QVERIFY(test::runRaw(app().DbBasicFile, {QStringLiteral("CREATE TABLE Other (x TEXT)"),
                                                 QStringLiteral("INSERT INTO Other VALUES ('그대로')")}));
        const QByteArray before = test::onServerEngine() ? QByteArray() : digestOf(app().DbBasicFile);
        CreateMissingStoreFiles();
        if (!test::onServerEngine()) QCOMPARE(digestOf(app().DbBasicFile), before);
        QCOMPARE(tableNames(app().DbBasicFile), namesOf("Other"));
        QCOMPARE(test::rawValue(app().DbBasicFile, QStringLiteral("SELECT x FROM Other")).toString(),
                 QStringLiteral("그대로"));
        QCOMPARE(tableNames(app().DbBillFile), namesOf("Master Detail"));
    }
    void unsetPathsCreateNothing() {
        test::TestHome home;
        resetAppState();
        CreateMissingStoreFiles();
        QVERIFY(!QFile::exists(home.file(QStringLiteral("Dbs"))));
        QVERIFY(!QFile::exists(QStringLiteral("dbBasic.db")));
    }
    void createStoreFileRefusesAnExistingFile() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("x.db"));
        QVERIFY(createStoreFile(path, billTables()));
        QVERIFY(!createStoreFile(path, taxTables()));
        QCOMPARE(tableNames(path), list("Master Detail"));
    }
};

NB_TEST_MAIN(TestStoreLayout)
#include "tst_store_layout.moc"
