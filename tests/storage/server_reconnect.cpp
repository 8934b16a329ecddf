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
#include "storage/CrossFileQueries.h"
#include "storage/Database.h"
#include "storage/DatabaseServerWatch.h"
#include "storage/ServerSettings.h"
#include "storage/StatementListFromEnd.h"
#include "storage/StoreEngine.h"
#include "storage/Stores.h"
#include "storage/backup/ServerCopyHandles.h"

#include <QElapsedTimer>
#include <QFile>
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
    // The server stops answering for the time given and then goes on, whatever the test does
    // meanwhile; true once its processes stand still.
    bool freeze(int seconds) {
        if (!QProcess::startDetached(
                QStringLiteral("bash"),
                {QStringLiteral(NB_SOURCE_DIR) + QStringLiteral("/scripts/pg-test-cluster.sh"),
                 QStringLiteral("freeze"), m_dir, QString::number(seconds)}))
            return false;
        return QTest::qWaitFor([this] { return frozen(); }, 5000);
    }
    bool frozen() const {
        QFile pidFile(m_dir + QStringLiteral("/data/postmaster.pid"));
        if (!pidFile.open(QIODevice::ReadOnly)) return false;
        const QByteArray pid = pidFile.readLine().trimmed();
        QFile status(QStringLiteral("/proc/") + QString::fromLatin1(pid) + QStringLiteral("/status"));
        return status.open(QIODevice::ReadOnly) && status.readAll().contains("State:\tT");
    }

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

// The statement list of May 2024 as the statement screen reads it: its rows, or -1 when the read
// failed (its box shown).
int statementListRows() {
    StatementListFromEnd list(stores().dbBill, stores().dbBasic.path(), QStringLiteral("2024-05-01"),
                              QStringLiteral("2024-05-31"), QString());
    return list.open() ? list.rows() : -1;
}

bool saveStatementHead(const QString& billNo) {
    Database& db = stores().dbBill;
    return db.beginTransaction() &&
           db.Execute(
               QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                              "VALUES (?, '2024-05-02', '000001', 1000, 100, 1)"),
               {billNo}) &&
           db.commit();
}

// The watch's times made short for one test, and given back after it.
struct QuickWatch {
    ServerWatchTimes before = serverWatchTimes();
    QuickWatch() {
        ServerWatchTimes quick = before;
        quick.answerWaitMillis = 300;
        quick.connectSeconds = 2;
        setServerWatchTimes(quick);
    }
    ~QuickWatch() { setServerWatchTimes(before); }
};

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

    void theStatementListWhileTheServerIsAwaySaysSoAndIsReadAgainOnceItIsBack() {
        test::TestHome home;
        OwnCluster cluster;
        QVERIFY(seatOn(cluster));
        QVERIFY(saveStatementHead(QStringLiteral("000001")));
        ScriptedMessages& said = test::script();
        QCOMPARE(statementListRows(), 1);
        // A restart while the seat stands idle: the list is read again without a box.
        QVERIFY(cluster.pause());
        QVERIFY(cluster.resume());
        QCOMPARE(statementListRows(), 1);
        QCOMPARE(int(said.boxes().size()), 0);
        QVERIFY(cluster.pause());
        QCOMPARE(statementListRows(), -1);
        QCOMPARE(unreachableBoxes(said), 1);
        QCOMPARE(statementListRows(), -1);
        QCOMPARE(unreachableBoxes(said), 2);
        QCOMPARE(int(said.boxes().size()), 2);
        QVERIFY(cluster.resume());
        QVERIFY(saveStatementHead(QStringLiteral("000002")));
        QCOMPARE(statementListRows(), 2);
        QCOMPARE(int(said.boxes().size()), 2);
    }

    void theConnectionAsksForKeepalivesAndTheSeatsOwnOptionsWin() {
        test::TestHome home;
        OwnCluster cluster;
        const QString connInfo = cluster.freshDatabase();
        QVERIFY(!connInfo.isEmpty());
        // The seat's own connection string names its own idle time; the rest are the watch's.
        qputenv("NUBELLA_PG", (connInfo + QStringLiteral(" keepalives_idle=42")).toUtf8());
        QVERIFY(test::openStores());
        PGconn* conn = serverEngineHandle(stores().dbBasic.connection());
        QVERIFY(conn);
        QHash<QString, QString> options;
        PQconninfoOption* all = PQconninfo(conn);
        for (PQconninfoOption* o = all; o && o->keyword; ++o)
            if (o->val) options.insert(QString::fromLatin1(o->keyword), QString::fromUtf8(o->val));
        PQconninfoFree(all);
        const ServerWatchTimes times = serverWatchTimes();
        QCOMPARE(options.value(QStringLiteral("keepalives")), QStringLiteral("1"));
        QCOMPARE(options.value(QStringLiteral("keepalives_idle")), QStringLiteral("42"));
        QCOMPARE(options.value(QStringLiteral("keepalives_interval")),
                 QString::number(times.keepaliveIntervalSeconds));
        QCOMPARE(options.value(QStringLiteral("keepalives_count")), QString::number(times.keepaliveCount));
        QCOMPARE(options.value(QStringLiteral("tcp_user_timeout")),
                 QString::number(times.unacknowledgedMillis));
        QCOMPARE(options.value(QStringLiteral("connect_timeout")), QString::number(times.connectSeconds));
        // The server was asked to watch its side too (on a socket file it has no TCP to watch,
        // but the settings are the session's own).
        for (const char* name :
             {"tcp_keepalives_idle", "tcp_keepalives_interval", "tcp_keepalives_count", "tcp_user_timeout"})
            QCOMPARE(test::scalar(stores().dbBasic,
                                  QStringLiteral("SELECT source FROM pg_settings WHERE name = ?"),
                                  {QString::fromLatin1(name)})
                         .toString(),
                     QStringLiteral("session"));
    }

    void aSeatWhoseServerStopsAnsweringIsToldSoAndNeverHangs() {
        test::TestHome home;
        OwnCluster cluster;
        const QuickWatch quick;
        QVERIFY(seatOn(cluster));
        QVERIFY(saveTrader(QStringLiteral("000001")));
        QVERIFY(saveStatementHead(QStringLiteral("000001")));
        ScriptedMessages& said = test::script();
        // The server's processes stand still (a hung server on a machine that still answers the
        // network) for longer than the seat would wait without the watch.
        QVERIFY(cluster.freeze(12));
        QElapsedTimer waited;
        waited.start();
        QVERIFY(!saveTrader(QStringLiteral("000002")));
        QVERIFY2(waited.elapsed() < 9000, qPrintable(QString::number(waited.elapsed())));
        QCOMPARE(unreachableBoxes(said), 1);
        QVERIFY(!stores().dbBasic.inTransaction());
        // A list read meanwhile on another store says so too, without hanging.
        waited.restart();
        QCOMPARE(statementListRows(), -1);
        QVERIFY2(waited.elapsed() < 9000, qPrintable(QString::number(waited.elapsed())));
        QCOMPARE(unreachableBoxes(said), 2);
        QVERIFY(cluster.frozen());
        QCOMPARE(int(said.boxes().size()), 2);
        // Once the server goes on, the seat saves and reads again.
        QVERIFY(QTest::qWaitFor([&] { return !cluster.frozen(); }, 20000));
        QVERIFY(saveTrader(QStringLiteral("000003")));
        QCOMPARE(traderCodes(), QStringLiteral("000001,000003"));
        QCOMPARE(statementListRows(), 1);
        QCOMPARE(int(said.boxes().size()), 2);
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
