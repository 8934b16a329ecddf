// A seat whose server goes away and comes back: on a cluster of the test's own (so that the other
// tests of the run never see it stop), the seat's next action after a restart reads and saves
// again without a box; while the server is away every action says so in the unreachable box and
// saves nothing; a save the server's going cut short is not reported saved, and is not there.
#include "StoreFixture.h"
#include "TestSupport.h"
#include "core/Lifecycle.h"
#include "core/Settings.h"
#include "storage/Backup.h"
#include "storage/ChangeNotices.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"
#include "storage/StoreEngine.h"
#include "storage/Stores.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTimer>
#include <QUuid>
#include <unistd.h>

using namespace nb;

namespace {

// A cluster of the test's own through the run's script, removed when it goes.
class OwnCluster {
public:
    OwnCluster()
        : m_dir(QStringLiteral("/tmp/nbrc-%1-%2")
                    .arg(::getpid())
                    .arg(QRandomGenerator::global()->generate() & 0xffff, 4, 16, QChar(u'0'))) {
        QString out;
        if (script({QStringLiteral("start"), m_dir}, &out)) m_connInfo = out.trimmed();
        // A commit confirmed is in the server's journal before the server goes, even when it
        // goes at once (the run's clusters leave that to later for speed).
        if (!m_connInfo.isEmpty() && !admin({QStringLiteral("ALTER SYSTEM SET synchronous_commit TO on"),
                                             QStringLiteral("SELECT pg_reload_conf()")}))
            m_connInfo.clear();
    }
    ~OwnCluster() { script({QStringLiteral("stop"), m_dir}); }
    OwnCluster(const OwnCluster&) = delete;
    OwnCluster& operator=(const OwnCluster&) = delete;

    QString connInfo() const { return m_connInfo; }
    bool pause(const QString& mode = QStringLiteral("fast")) {
        return script({QStringLiteral("pause"), m_dir, mode});
    }
    bool resume() { return script({QStringLiteral("resume"), m_dir}); }

    // A fresh database on the cluster; its connection string.
    QString freshDatabase() {
        const QString name = QStringLiteral("seat_") + QUuid::createUuid().toString(QUuid::Id128).left(10);
        return admin({QStringLiteral("CREATE DATABASE ") + name})
                   ? m_connInfo + QStringLiteral(" dbname=") + name
                   : QString();
    }

private:
    // Statements on the cluster's maintenance database, through a connection of their own.
    bool admin(const QStringList& statements) const {
        const QString connection = QStringLiteral("reconnect-admin");
        bool ok = false;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
            db.setDatabaseName(QStringLiteral("postgres"));
            db.setConnectOptions(m_connInfo);
            ok = db.open();
            for (const QString& sql : statements)
                ok = ok && QSqlQuery(db).exec(sql);
            db.close();
        }
        QSqlDatabase::removeDatabase(connection);
        return ok;
    }

    static bool script(const QStringList& arguments, QString* out = nullptr) {
        QProcess p;
        p.start(QStringLiteral("bash"),
                QStringList{QStringLiteral(NB_SOURCE_DIR) + QStringLiteral("/scripts/pg-test-cluster.sh")} +
                    arguments);
        if (!p.waitForFinished(120000) || p.exitCode() != 0) {
            qWarning("%s", p.readAllStandardError().constData());
            return false;
        }
        if (out) *out = QString::fromUtf8(p.readAllStandardOutput());
        return true;
    }

    QString m_dir;
    QString m_connInfo;
};

// The seat on a fresh database of the cluster, its stores laid down and open.
bool seatOn(OwnCluster& cluster) {
    const QString connInfo = cluster.freshDatabase();
    if (connInfo.isEmpty()) return false;
    qputenv("NUBELLA_PG", connInfo.toUtf8());
    return test::openStores() && stores().dbBasic.onServer();
}

// One trader saved as the program's saves are: a failure says so in the save's box.
bool saveTrader(const QString& code) {
    Database& db = stores().dbBasic;
    const QString headline = QStringLiteral("거래처를 저장하지 못했습니다.");
    if (!db.beginTransaction()) {
        ReportSaveFailure(db, headline);
        return false;
    }
    if (!db.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                    {code, QStringLiteral("거래처 ") + code})) {
        db.rollback();
        return false;
    }
    if (db.commit()) return true;
    ReportSaveFailure(db, headline);
    return false;
}

// The traders' codes in order; "(failed)" when the read failed.
QString traderCodes() {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("SELECT Code FROM Trader ORDER BY Code")))
        return QStringLiteral("(failed)");
    QStringList codes;
    for (; !rs.EOF_(); rs.MoveNext())
        codes << rs.text(QStringLiteral("Code"));
    return codes.join(u',');
}

int unreachableBoxes(const ScriptedMessages& said) {
    int n = 0;
    for (const auto& box : said.boxes())
        n += box.text.contains(serverUnreachableText()) ? 1 : 0;
    return n;
}

} // namespace

class TestServerReconnect : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { resetProgramState(); }

    void aRestartedServerIsReachedAgainByTheNextAction() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(!cluster.connInfo().isEmpty());
        QVERIFY(seatOn(cluster));
        ScriptedMessages& said = test::script();
        QVERIFY(saveTrader(QStringLiteral("000001")));
        // A restart while the seat stands idle; its next read goes through without a box.
        QVERIFY(cluster.pause());
        QVERIFY(cluster.resume());
        QCOMPARE(traderCodes(), QStringLiteral("000001"));
        // Again, and the next action is a save.
        QVERIFY(cluster.pause());
        QVERIFY(cluster.resume());
        QVERIFY(saveTrader(QStringLiteral("000002")));
        QCOMPARE(traderCodes(), QStringLiteral("000001,000002"));
        QCOMPARE(int(said.boxes().size()), 0);
    }

    void whileTheServerIsAwayEveryActionSaysSoAndSavesNothing() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        QVERIFY(saveTrader(QStringLiteral("000001")));
        ScriptedMessages& said = test::script();
        QVERIFY(cluster.pause());
        QVERIFY(!saveTrader(QStringLiteral("000002")));
        QCOMPARE(unreachableBoxes(said), 1);
        QCOMPARE(traderCodes(), QStringLiteral("(failed)"));
        QCOMPARE(unreachableBoxes(said), 2);
        QVERIFY(!saveTrader(QStringLiteral("000003")));
        QCOMPARE(unreachableBoxes(said), 3);
        QCOMPARE(int(said.boxes().size()), 3); // no other box (never "not opened")
        QVERIFY(cluster.resume());
        QVERIFY(saveTrader(QStringLiteral("000004")));
        QCOMPARE(traderCodes(), QStringLiteral("000001,000004"));
    }

    void aSaveCutShortByTheServersGoingIsNotReportedSaved() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        QVERIFY(saveTrader(QStringLiteral("000001")));
        test::script();
        Database& db = stores().dbBasic;
        QVERIFY(db.beginTransaction());
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('000002', '반쯤')")));
        // The server's computer goes off before the save's commit.
        QVERIFY(cluster.pause(QStringLiteral("immediate")));
        QVERIFY(!db.commit());
        QCOMPARE(db.lastEngineCode(), kServerUnreachableCode);
        QVERIFY(!db.inTransaction());
        QVERIFY(cluster.resume());
        QCOMPARE(traderCodes(), QStringLiteral("000001"));
        QVERIFY(saveTrader(QStringLiteral("000003")));
        QCOMPARE(traderCodes(), QStringLiteral("000001,000003"));
    }

    void aSeatWaitingForTheWriterLockWhenTheServerGoesIsToldSoAtOnce() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        QVERIFY(saveTrader(QStringLiteral("000001")));
        ScriptedMessages& said = test::script();
        // Another seat holds the store's writer lock; the server's computer goes off while this
        // seat stands in the queue for it.
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction());
        QTimer::singleShot(300, [&cluster] { cluster.pause(QStringLiteral("immediate")); });
        QElapsedTimer waited;
        waited.start();
        QVERIFY(!saveTrader(QStringLiteral("000002")));
        QVERIFY2(waited.elapsed() < stores().dbBasic.busyTimeout(),
                 qPrintable(QString::number(waited.elapsed())));
        QCOMPARE(unreachableBoxes(said), 1);
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY(!stores().dbBasic.inTransaction());
        QVERIFY(cluster.resume());
        QVERIFY(saveTrader(QStringLiteral("000003")));
        QCOMPARE(traderCodes(), QStringLiteral("000001,000003"));
    }

    void aListListeningBeforeARestartIsToldOfAnotherSeatsSavesAfterTheReconnect() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        ScriptedMessages& said = test::script();
        QObject list;
        int told = 0;
        QVERIFY(watchStoreChanges(stores().dbBasic, &list, [&] { ++told; }));
        QVERIFY(cluster.pause());
        QVERIFY(cluster.resume());
        // The seat's next action makes its connection anew, under the same seat's name; the list
        // is told once of the time away.
        QCOMPARE(traderCodes(), QString());
        QCOMPARE(test::scalar(stores().dbBasic, QStringLiteral("SELECT current_setting('application_name')"))
                     .toString(),
                 stores().dbBasic.seatKey());
        QVERIFY(QTest::qWaitFor([&] { return told > 0; }, 5000));
        QTest::qWait(100);
        QCOMPARE(told, 1);
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction());
        QVERIFY(other.Execute(
            QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('000009', '다른 자리')")));
        QVERIFY(other.commit());
        QVERIFY(QTest::qWaitFor([&] { return told > 1; }, 5000));
        QCOMPARE(told, 2);
        // Again after a second restart: it listens on every new connection, once.
        QVERIFY(cluster.pause());
        QVERIFY(cluster.resume());
        QCOMPARE(traderCodes(), QStringLiteral("000009"));
        QVERIFY(QTest::qWaitFor([&] { return told > 2; }, 5000));
        QVERIFY(other.beginTransaction() || (other.open(app().DbBasicFile) && other.beginTransaction()));
        QVERIFY(
            other.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('000010', '또 다른')")));
        QVERIFY(other.commit());
        QVERIFY(QTest::qWaitFor([&] { return told > 3; }, 5000));
        QTest::qWait(300);
        QCOMPARE(told, 4);
        QCOMPARE(int(said.boxes().size()), 0);
    }

    // A save another seat made while this seat's connection was away sent its notice to no one:
    // the list is still told, once the connection is back.
    void aSaveMadeWhileTheSeatWasAwayReachesItsListsOnceItIsBack() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        QObject list;
        int told = 0;
        QVERIFY(watchStoreChanges(stores().dbBasic, &list, [&] { ++told; }));
        QVERIFY(cluster.pause());
        QVERIFY(cluster.resume());
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction());
        QVERIFY(
            other.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('000011', '멀리서')")));
        QVERIFY(other.commit());
        QTest::qWait(200);
        QCOMPARE(told, 0); // this seat has not acted since the restart: nobody heard the notice
        QCOMPARE(traderCodes(), QStringLiteral("000011"));
        QVERIFY(QTest::qWaitFor([&] { return told > 0; }, 5000));
    }

    void aStartWhileTheServerIsAwayTakesNoBackupAndSaysNothingOfIt() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        QVERIFY(saveTrader(QStringLiteral("000001")));
        closeStores();
        QVERIFY(cluster.pause());
        ScriptedMessages& said = test::script();
        SaveEnv(kStartedVersionKey, QStringLiteral("0.9.0")); // a new version's first start
        RunStartupSafeguards();
        QCOMPARE(int(said.boxes().size()), 0); // the start says the server is away, once
        QCOMPARE(automaticBackups(backupFolder()).size(), 0);
        QCOMPARE(GetEnv(kStartedVersionKey), QStringLiteral("0.9.0")); // taken when it is back
        QVERIFY(cluster.resume());
        RunStartupSafeguards();
        QCOMPARE(int(said.boxes().size()), 0);
        QCOMPARE(automaticBackups(backupFolder()).size(), 2); // before the upgrade, the day's
        QCOMPARE(GetEnv(kStartedVersionKey), programVersion());
    }
};

NB_TEST_MAIN(TestServerReconnect)
#include "server_reconnect.moc"
