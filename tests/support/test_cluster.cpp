// The test run's PostgreSQL cluster and the databases each test gets on it: the bed every server
// run of a store test lies on.

#include "ServerDatabase.h"
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
