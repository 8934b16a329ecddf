// The test run's PostgreSQL cluster and the databases each test gets on it: the bed every server
// run of a store test lies on.

#include "ProgramRun.h"
#include "ServerDatabase.h"
#include "ServerTemplate.h"
#include "TestSupport.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUuid>

using namespace nb::test;

namespace {

int databasesNamed(const QString& name) {
    return clusterScalar(QStringLiteral("SELECT count(*) FROM pg_database WHERE datname = '%1'").arg(name))
        .toInt();
}

// What a database holds of the stores, a line each: the schemas, every table's columns with their
// types, null rules, defaults and collations, the indexes, triggers and functions, the extensions.
QStringList storesLaidDown(const QString& database) {
    const QString stores = QStringLiteral("('basic', 'bill', 'tax', 'estimate', 'inout')");
    const QString sql =
        QStringLiteral(
            "SELECT string_agg(line, E'\\n' ORDER BY line) FROM ("
            "SELECT 'schema ' || nspname AS line FROM pg_namespace WHERE nspname IN %1 "
            "UNION ALL SELECT 'column ' || n.nspname || '.' || c.relname || '.' || a.attname || ' ' || "
            "format_type(a.atttypid, a.atttypmod) || CASE WHEN a.attnotnull THEN ' not null' ELSE '' END || "
            "coalesce(' default ' || pg_get_expr(d.adbin, d.adrelid), '') || coalesce(' collate ' || "
            "co.collname, "
            "'') || ' identity ' || a.attidentity::text FROM pg_class c JOIN pg_namespace n ON n.oid = "
            "c.relnamespace "
            "JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped LEFT JOIN "
            "pg_attrdef d ON d.adrelid = c.oid AND d.adnum = a.attnum LEFT JOIN pg_collation co ON co.oid = "
            "a.attcollation WHERE n.nspname IN %1 AND c.relkind = 'r' "
            "UNION ALL SELECT 'index ' || schemaname || '.' || indexname || ' ' || indexdef FROM pg_indexes "
            "WHERE schemaname IN %1 "
            "UNION ALL SELECT 'trigger ' || n.nspname || '.' || c.relname || '.' || t.tgname FROM pg_trigger "
            "t "
            "JOIN pg_class c ON c.oid = t.tgrelid JOIN pg_namespace n ON n.oid = c.relnamespace WHERE NOT "
            "t.tgisinternal AND n.nspname IN %1 "
            "UNION ALL SELECT 'function ' || n.nspname || '.' || p.proname FROM pg_proc p JOIN pg_namespace "
            "n ON "
            "n.oid = p.pronamespace WHERE n.nspname IN %1 "
            "UNION ALL SELECT 'extension ' || extname FROM pg_extension) lines")
            .arg(stores);
    return clusterScalar(sql, database).toString().split(u'\n');
}

// The program started once on a database (a command that finds nothing to print): it lays down
// what is missing and opens every store.
void startProgramOn(const QString& home, const QString& database) {
    QProcessEnvironment env;
    env.insert(QStringLiteral("NUBELLA_PG"), testClusterConnInfo() + QStringLiteral(" dbname=") + database);
    const ProgramRun run = runProgram(
        home,
        {QStringLiteral("--print-invoice"), QStringLiteral("1"), QStringLiteral("--pdf"), home + "/x.pdf"},
        env);
    QCOMPARE(run.exitCode, 1); // no such invoice; the stores are open by then
}

} // namespace

class TestCluster : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRunNamesACluster() {
        QVERIFY2(testOnServer(), "NUBELLA_TEST_PG is not set: this test runs only on the cluster");
        QVERIFY(testClusterConnInfo().contains(QStringLiteral("host=")));
        QVERIFY(!testClusterConnInfo().contains(QStringLiteral("dbname=")));
    }

    void theClusterAnswers() {
        QCOMPARE(clusterScalar(QStringLiteral("SELECT 6 * 7")).toInt(), 42);
        QVERIFY(clusterScalar(QStringLiteral("SHOW server_version_num")).toInt() >= 150000);
        // Enough connections for eight seats with their stores and two tests at once.
        QVERIFY(clusterScalar(QStringLiteral("SHOW max_connections")).toInt() >= 200);
        QCOMPARE(clusterScalar(QStringLiteral("SHOW server_encoding")).toString(), QStringLiteral("UTF8"));
    }

    void aHomeNamesItsOwnDatabase() {
        TestHome home;
        QVERIFY(home.server().active());
        QCOMPARE(qEnvironmentVariable("NUBELLA_PG"), home.server().connInfo());
        QCOMPARE(databasesNamed(home.server().name()), 1);
    }

    void twoHomesGetDifferentDatabases() {
        QString first, second;
        {
            TestHome a;
            first = a.server().name();
            {
                TestHome b;
                second = b.server().name();
                QVERIFY(first != second);
                QCOMPARE(qEnvironmentVariable("NUBELLA_PG"), b.server().connInfo());
                // A table in one is not seen in the other.
                QVERIFY(clusterScalar(QStringLiteral("CREATE TABLE only_here (x int)"), second).isNull());
                QCOMPARE(
                    clusterScalar(
                        QStringLiteral("SELECT count(*) FROM pg_tables WHERE tablename = 'only_here'"), first)
                        .toInt(),
                    0);
                QCOMPARE(clusterScalar(
                             QStringLiteral("SELECT count(*) FROM pg_tables WHERE tablename = 'only_here'"),
                             second)
                             .toInt(),
                         1);
            }
            // The inner home's database is gone and the outer one is named again.
            QCOMPARE(databasesNamed(second), 0);
            QCOMPARE(qEnvironmentVariable("NUBELLA_PG"), a.server().connInfo());
        }
        QCOMPARE(databasesNamed(first), 0);
        // Between homes the program's own database stays named: never the store files.
        QVERIFY(qEnvironmentVariable("NUBELLA_PG").contains(QStringLiteral("dbname=")));
    }

    // Every home's database is a copy of one template of the layout, made once for the run.
    void everyHomeIsMadeFromOneTemplateOfTheLayout() {
        TestHome first;
        TestHome second;
        const QString made = layoutTemplateName();
        QVERIFY(made.startsWith(QStringLiteral("nb_layout_")));
        QCOMPARE(databasesNamed(made), 1);
        QCOMPARE(clusterScalar(QStringLiteral("SELECT count(*) FROM pg_database WHERE datname LIKE "
                                              "'nb\\_layout\\_%' AND datname <> '%1'")
                                   .arg(made))
                     .toInt(),
                 0); // none half made, none of another layout
        for (const TestHome* home : {&first, &second})
            QCOMPARE(clusterScalar(QStringLiteral("SELECT count(*) FROM pg_namespace WHERE nspname IN "
                                                  "('basic', 'bill', 'tax', 'estimate', 'inout')"),
                                   home->server().name())
                         .toInt(),
                     5);
        // The copies are the home's own: a row in one is not in the template or the other.
        QVERIFY(clusterScalar(QStringLiteral("INSERT INTO basic.trader (code) VALUES ('000001')"),
                              first.server().name())
                    .isNull());
        for (const QString& database : {made, second.server().name()})
            QCOMPARE(clusterScalar(QStringLiteral("SELECT count(*) FROM basic.trader"), database).toInt(), 0);
    }

    // A test about laying the stores down itself gets an empty database.
    void aTestThatLaysTheStoresDownGetsAnEmptyDatabase() {
        qputenv("NUBELLA_TEST_PG_EMPTY", "1");
        {
            TestHome home;
            QCOMPARE(clusterScalar(QStringLiteral("SELECT count(*) FROM pg_namespace WHERE nspname IN "
                                                  "('basic', 'bill', 'tax', 'estimate', 'inout')"),
                                   home.server().name())
                         .toInt(),
                     0);
        }
        qunsetenv("NUBELLA_TEST_PG_EMPTY");
    }

    // A home's stores, once the program has opened them, are what the program lays down on an
    // empty database at its first start.
    void aHomeHoldsTheStoresAsTheProgramLaysThemDown() {
        TestHome home;
        const QString plain =
            QStringLiteral("nb_plain_") + QUuid::createUuid().toString(QUuid::Id128).left(12);
        QVERIFY(clusterScalar(QStringLiteral("CREATE DATABASE ") + plain).isNull());
        QCOMPARE(
            clusterScalar(QStringLiteral("SELECT count(*) FROM pg_namespace WHERE nspname = 'basic'"), plain)
                .toInt(),
            0);
        startProgramOn(home.path(), plain);
        startProgramOn(home.path(), home.server().name());
        const QStringList laidDown = storesLaidDown(plain);
        QVERIFY(laidDown.size() > 100);
        QVERIFY(laidDown.contains(QStringLiteral("schema inout")));
        QCOMPARE(storesLaidDown(home.server().name()), laidDown);
        clusterScalar(QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(plain));
    }

    void aProgramCopyInheritsTheDatabase() {
        TestHome home;
        QProcess shell;
        shell.start(QStringLiteral("sh"),
                    {QStringLiteral("-c"), QStringLiteral("printf %s \"$NUBELLA_PG\"")});
        QVERIFY(shell.waitForFinished(10000));
        QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), home.server().connInfo());
    }

    void aDatabaseStillInUseIsDropped() {
        // A program copy the test killed, or a store left open, must not keep a database alive.
        QString name;
        const QString connection = QUuid::createUuid().toString(QUuid::Id128);
        {
            ServerDatabase database;
            name = database.name();
            QSqlDatabase held = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
            held.setDatabaseName(name);
            held.setConnectOptions(testClusterConnInfo());
            QVERIFY(held.open());
            QSqlQuery q(held);
            QVERIFY(q.exec(QStringLiteral("SELECT 1")));
        }
        QCOMPARE(databasesNamed(name), 0);
        QSqlDatabase::removeDatabase(connection);
    }

    void trigramsCanBeCreatedAndSearchHangul() {
        TestHome home;
        const QString db = home.server().name();
        QVERIFY(clusterScalar(QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm"), db).isNull());
        QCOMPARE(
            clusterScalar(QStringLiteral("SELECT extname FROM pg_extension WHERE extname = 'pg_trgm'"), db)
                .toString(),
            QStringLiteral("pg_trgm"));
        // Hangul makes trigrams only in a database whose character classes know it.
        QVERIFY(clusterScalar(QStringLiteral("SELECT array_length(show_trgm('세금계산서'), 1)"), db).toInt() >
                0);
        QVERIFY(clusterScalar(QStringLiteral("CREATE TABLE t (name text); "
                                             "CREATE INDEX t_name ON t USING gin (name gin_trgm_ops); "
                                             "INSERT INTO t VALUES ('주식회사 누리상사'), ('한빛전자')"),
                              db)
                    .isNull());
        QCOMPARE(
            clusterScalar(QStringLiteral("SELECT name FROM t WHERE name ILIKE '%누리상%'"), db).toString(),
            QStringLiteral("주식회사 누리상사"));
    }
};

NB_TEST_MAIN(TestCluster)
#include "test_cluster.moc"
