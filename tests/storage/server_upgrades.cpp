// A server database laid down by an older build: tables without the unique index of their row
// numbers, work tables shared by every seat without a seat column, an estimate store whose tables
// tell nobody of their saves. The start gives every store what it lacks, each store in one
// transaction; a store that has it all runs nothing; a step that fails leaves its store as it was
// and says so. Runs on the test run's PostgreSQL cluster only.
#include "StoreTestKit.h"
#include "common/Messages.h"
#include "storage/ChangeNotices.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QObject>
#include <QRegularExpression>
#include <QSqlQuery>

using namespace nb;

namespace {

struct StoreOf {
    QString path;
    QList<TableDef> tables;
};

QList<StoreOf> layouts() {
    const AppState& a = app();
    return {{a.DbBasicFile, basicTables()},
            {a.DbBillFile, billTables()},
            {a.DbTaxFile, taxTables()},
            {a.DbEstimateFile, estimateTables()}};
}

bool hasUniqueRowidIndex(const Database& db, const QString& table) {
    for (const IndexInfo& index : db.indexes(table))
        if (index.unique && index.columns == QStringList{QStringLiteral("rowid")}) return true;
    return false;
}

// The tables of every store whose row numbers have no unique index.
QStringList withoutRowidIndex() {
    QStringList out;
    for (const StoreOf& store : layouts()) {
        Database db;
        if (!db.open(store.path)) return {QStringLiteral("(not opened) ") + store.path};
        for (const TableDef& table : store.tables)
            if (!hasUniqueRowidIndex(db, table.name)) out << table.name;
    }
    return out;
}

bool runAll(Database& db, const QStringList& statements) {
    for (const QString& sql : statements)
        if (!db.tryExecute(sql)) {
            qWarning("%s: %s", qPrintable(sql), qPrintable(db.lastErrorDescription()));
            return false;
        }
    return true;
}

// Every store as an older build laid it down: no row number indexes, the work tables without
// their seat (their key the files' own), the estimate store without its notices.
bool layDownAsOlder() {
    for (const StoreOf& store : layouts()) {
        Database db;
        if (!db.open(store.path)) return false;
        for (const TableDef& table : store.tables) {
            if (!runAll(db, {QStringLiteral("DROP INDEX %1_rowid").arg(table.name.toLower())})) return false;
            if (isWorkTable(table.name) &&
                !runAll(db, {QStringLiteral("ALTER TABLE %1 DROP COLUMN seat").arg(table.name),
                             QStringLiteral("CREATE UNIQUE INDEX %1_primarykey ON %1 (serial, ccode)")
                                 .arg(table.name),
                             QStringLiteral("CREATE INDEX %1_pk ON %1 (serial, ccode)").arg(table.name)}))
                return false;
        }
    }
    Database estimate;
    return estimate.open(app().DbEstimateFile) &&
           runAll(estimate, {QStringLiteral("DROP TRIGGER estibase_changed ON estibase"),
                             QStringLiteral("DROP TRIGGER estimate_changed ON estimate")});
}

bool hasSeatColumn(Database& db, const QString& table) {
    QSqlQuery q(db.connection());
    q.prepare(
        QStringLiteral("SELECT 1 FROM pg_attribute WHERE attrelid = to_regclass(?) AND attname = 'seat'"));
    q.addBindValue(db.serverSchema() + u'.' + table.toLower());
    return q.exec() && q.next();
}

QString indexDefinition(Database& db, const QString& index) {
    QSqlQuery q(db.connection());
    q.prepare(QStringLiteral("SELECT indexdef FROM pg_indexes WHERE schemaname = ? AND indexname = ?"));
    q.addBindValue(db.serverSchema());
    q.addBindValue(index.toLower());
    return q.exec() && q.next() ? q.value(0).toString() : QString();
}

int statementsOfTheStores() {
    return stores().dbBasic.statementsRun() + stores().dbBill.statementsRun() +
           stores().dbTax.statementsRun();
}

} // namespace

class TestServerUpgrades : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY2(test::testOnServer(), "this test runs on the test run's cluster only"); }
    void cleanup() { closeStores(); }

    void anOlderServerDatabaseGainsItsUpgradeStepsAtStart() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        QVERIFY(layDownAsOlder());
        int tables = 0;
        for (const StoreOf& store : layouts())
            tables += int(store.tables.size());
        QCOMPARE(withoutRowidIndex().size(), tables);
        {
            Database tax;
            QVERIFY(tax.open(app().DbTaxFile));
            QVERIFY(tax.tryExecute(
                QStringLiteral("INSERT INTO SaleTotal (Serial, CCode, CName) VALUES ('1', '1', '가')")));
        }
        ScriptedMessages& said = test::script();
        // The start.
        QVERIFY(OpenDatabases());
        UpgradeOpenStores();
        QCOMPARE(int(said.boxes().size()), 0);
        QCOMPARE(withoutRowidIndex(), QStringList());
        for (const QString& table : {QStringLiteral("SaleTotal"), QStringLiteral("BuyTotal")}) {
            QVERIFY(hasSeatColumn(stores().dbTax, table));
            QVERIFY2(indexDefinition(stores().dbTax, table + QStringLiteral("_primarykey"))
                             .contains(QStringLiteral("UNIQUE INDEX")) &&
                         indexDefinition(stores().dbTax, table + QStringLiteral("_primarykey"))
                             .endsWith(QStringLiteral("(seat, serial, ccode)")),
                     qPrintable(indexDefinition(stores().dbTax, table + QStringLiteral("_primarykey"))));
        }
        QSqlQuery kept(stores().dbTax.connection());
        QVERIFY(kept.exec(QStringLiteral("SELECT count(*) FROM saletotal")) && kept.next());
        QCOMPARE(kept.value(0).toInt(), 1);
        // The estimate store tells its saves again.
        Database listening, saving;
        QVERIFY(listening.open(app().DbEstimateFile) && saving.open(app().DbEstimateFile));
        QVERIFY(listening.hasTrigger(changeTriggerName(QStringLiteral("EstiBase"))));
        QVERIFY(listening.hasTrigger(changeTriggerName(QStringLiteral("Estimate"))));
        QObject list;
        int told = 0;
        QVERIFY(watchStoreChanges(listening, &list, [&] { ++told; }));
        QVERIFY(saving.beginTransaction());
        QVERIFY(saving.Execute(
            QStringLiteral("INSERT INTO EstiBase (EstiCode, CName) VALUES ('2024-0001', '가나')")));
        QVERIFY(saving.commit());
        QVERIFY(QTest::qWaitFor([&] { return told > 0; }, 5000));
        // The next start finds nothing to do.
        const int statements = statementsOfTheStores();
        QVERIFY(UpgradeServerStores());
        QCOMPARE(statementsOfTheStores(), statements);
        QCOMPARE(int(said.boxes().size()), 0);
    }

    void aStoreThatHasItAllRunsNothing() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        QVERIFY(OpenDatabases());
        ScriptedMessages& said = test::script();
        const int statements = statementsOfTheStores();
        QVERIFY(UpgradeServerStores());
        QCOMPARE(statementsOfTheStores(), statements);
        QCOMPARE(int(said.boxes().size()), 0);
    }

    void aStepThatFailsLeavesItsStoreAsItWasAndSaysSo() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        {
            Database basic;
            QVERIFY(basic.open(app().DbBasicFile));
            // Two products with one row number: the unique index cannot be made.
            QVERIFY(runAll(
                basic, {QStringLiteral("DROP INDEX user_rowid"), QStringLiteral("DROP INDEX product_rowid"),
                        QStringLiteral("INSERT INTO Product (Code, PName, rowid) VALUES ('1', '가', 7)"),
                        QStringLiteral("INSERT INTO Product (Code, PName, rowid) VALUES ('2', '나', 7)")}));
        }
        QVERIFY(OpenDatabases());
        ScriptedMessages& said = test::script();
        QVERIFY(!UpgradeServerStores());
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY2(said.boxes().front().text.contains(QRegularExpression(QStringLiteral("[가-힣]"))),
                 qPrintable(said.boxes().front().text));
        QVERIFY(!stores().dbBasic.inTransaction());
        // Nothing of the store's steps stayed: the supplier's index made before the failure went too.
        QCOMPARE(withoutRowidIndex(), (QStringList{QStringLiteral("User"), QStringLiteral("Product")}));
        QVERIFY(stores().dbBasic.tryExecute(QStringLiteral("DELETE FROM Product WHERE Code = '2'")));
        QVERIFY(UpgradeServerStores());
        QCOMPARE(withoutRowidIndex(), QStringList());
        QCOMPARE(int(said.boxes().size()), 1);
    }
};

NB_TEST_MAIN(TestServerUpgrades)
#include "server_upgrades.moc"
