// The day's first backup taken while the splash shows: the backup is there when the main window
// is, the splash is drawn before the backup begins, the main window waits for a backup that
// outlasts the splash under a progress form, a failure is said once, and a start killed in the
// middle of it leaves no half archive.
#include "BackupKit.h"
#include "ProgramRun.h"
#include "core/Clock.h"
#include "core/Lifecycle.h"
#include "core/Settings.h"
#include "shell/DayBackupAside.h"
#include "shell/FrmLogin.h"
#include "shell/Nubella.h"
#include "shell/Startup.h"
#include "storage/Backup.h"
#include "storage/backup/BackupArchive.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QTimer>
#include <csignal>

using namespace nb;

namespace {

// The steps of one start as they were told, from whichever thread told them.
class StepLog {
public:
    StepLog() {
        setStartObserver([this](StartStep step) {
            if (onStep) onStep(step);
            QMutexLocker lock(&m_lock);
            m_steps << step;
        });
    }
    ~StepLog() { setStartObserver({}); }
    QList<StartStep> steps() {
        QMutexLocker lock(&m_lock);
        return m_steps;
    }
    int indexOf(StartStep step) { return steps().indexOf(step); }
    std::function<void(StartStep)> onStep;

private:
    QMutex m_lock;
    QList<StartStep> m_steps;
};

// The books of a shop that has started this version before: any backup a start takes now is
// the day's.
void seedBooks() {
    QVERIFY(test::openStores());
    QVERIFY(test::changeEveryStore(QStringLiteral("S00001")));
    SaveEnv(kStartedVersionKey, programVersion());
    resetProgramState();
}

// Closes the splash as soon as it is drawn, so a test does not wait its two seconds.
void closeSplashWhenPainted(StepLog& log) {
    log.onStep = [](StartStep step) {
        if (step != StartStep::SplashPainted) return;
        QTimer::singleShot(0, qApp, [] {
            for (QWidget* w : QApplication::topLevelWidgets())
                if (auto* splash = qobject_cast<FrmLogin*>(w)) splash->accept();
        });
    };
}

QList<AutomaticBackup> dayBackups() {
    QList<AutomaticBackup> daily;
    for (const AutomaticBackup& b : automaticBackups(backupFolder()))
        if (b.daily) daily << b;
    return daily;
}

} // namespace

class TestDayBackup : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() {
        setClock({});
        resetProgramState();
    }

    void theDayBackupIsThereWhenTheMainWindowIs() {
        test::TestHome home;
        seedBooks();
        ScriptedMessages& said = test::script();
        StepLog log;
        closeSplashWhenPainted(log);
        Nubella window;
        QVERIFY(window.load());
        QCOMPARE(dayBackups().size(), 1);
        QVERIFY(isWholeArchive(backupFolder() + u'/' + dayBackups().first().name));
        QVERIFY(log.indexOf(StartStep::DayBackupDone) >= 0);
        QVERIFY(log.indexOf(StartStep::DayBackupDone) < log.indexOf(StartStep::Loaded));
        QVERIFY(said.boxes().empty());
        QVERIFY(stores().dbBasic.isOpen());
    }

    // The first window comes before the stores' checks; the main window, where the operator
    // types, after them.
    void theStoresAreCheckedAndOpenedOnceTheSplashIsDrawn() {
        test::TestHome home;
        seedBooks();
        test::script();
        StepLog log;
        bool openWhenDrawn = true;
        log.onStep = [&openWhenDrawn](StartStep step) {
            if (step != StartStep::SplashPainted) return;
            openWhenDrawn = stores().dbBasic.isOpen() || stores().dbBill.isOpen();
            QTimer::singleShot(0, qApp, [] {
                for (QWidget* w : QApplication::topLevelWidgets())
                    if (auto* splash = qobject_cast<FrmLogin*>(w)) splash->accept();
            });
        };
        Nubella window;
        QVERIFY(window.load());
        QVERIFY2(!openWhenDrawn, "the stores were opened before the splash showed");
        QVERIFY(stores().dbBasic.isOpen());
        QVERIFY(stores().dbBill.isOpen());
        QVERIFY(log.indexOf(StartStep::SplashPainted) < log.indexOf(StartStep::DayBackupBegun));
    }

    void theSplashIsDrawnBeforeTheBackupBegins() {
        test::TestHome home;
        seedBooks();
        test::script();
        StepLog log;
        Nubella window;
        QVERIFY(window.load()); // the whole two seconds of the splash
        const int painted = log.indexOf(StartStep::SplashPainted);
        QVERIFY(painted >= 0);
        QVERIFY2(painted < log.indexOf(StartStep::DayBackupBegun),
                 "the backup began before the splash showed");
        QVERIFY(log.indexOf(StartStep::DayBackupDone) < log.indexOf(StartStep::SplashClosed));
        QCOMPARE(log.indexOf(StartStep::DayBackupWaited), -1); // done within the splash: no waiting
        QCOMPARE(dayBackups().size(), 1);
    }

    void aBackupThatOutlastsTheSplashIsWaitedForUnderAProgressForm() {
        test::TestHome home;
        seedBooks();
        ScriptedMessages& said = test::script();
        StepLog log;
        QSemaphore held;
        // The backup is held at its start until the main window is seen waiting for it.
        log.onStep = [&held](StartStep step) {
            if (step == StartStep::SplashPainted)
                QTimer::singleShot(0, qApp, [] {
                    for (QWidget* w : QApplication::topLevelWidgets())
                        if (auto* splash = qobject_cast<FrmLogin*>(w)) splash->accept();
                });
            if (step == StartStep::DayBackupBegun) held.acquire();
            if (step == StartStep::DayBackupWaited) held.release();
        };
        Nubella window;
        QVERIFY(window.load());
        const int closed = log.indexOf(StartStep::SplashClosed);
        const int waited = log.indexOf(StartStep::DayBackupWaited);
        QVERIFY(closed >= 0 && waited > closed);
        QVERIFY(log.indexOf(StartStep::DayBackupDone) > waited);
        QVERIFY(log.indexOf(StartStep::Loaded) > log.indexOf(StartStep::DayBackupDone));
        bool progressShown = false;
        for (const MessageRecord& r : said.records())
            progressShown |=
                r.kind == QStringLiteral("progress") && r.text.contains(QStringLiteral("자동 백업"));
        QVERIFY(progressShown);
        QCOMPARE(dayBackups().size(), 1);
    }

    void aLaterStartOfTheDayTakesNoBackup() {
        test::TestHome home;
        seedBooks();
        test::script();
        setClock([] { return QDateTime(QDate(2026, 3, 2), QTime(9, 0)); });
        {
            StepLog log;
            closeSplashWhenPainted(log);
            Nubella window;
            QVERIFY(window.load());
            QVERIFY(log.indexOf(StartStep::DayBackupDone) >= 0);
        }
        resetProgramState();
        setClock([] { return QDateTime(QDate(2026, 3, 2), QTime(15, 0)); });
        StepLog log;
        closeSplashWhenPainted(log);
        Nubella window;
        QVERIFY(window.load());
        QCOMPARE(log.indexOf(StartStep::DayBackupBegun), -1);
        QCOMPARE(log.indexOf(StartStep::DayBackupWaited), -1);
        QCOMPARE(dayBackups().size(), 1);
    }

    void aFailedDayBackupIsSaidOnceAfterTheSplash() {
        test::TestHome home;
        seedBooks();
        QFile blocker(home.file(QStringLiteral("blocker")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        SaveEnv(kBackupFolderKey, blocker.fileName() + QStringLiteral("/backups"));
        ScriptedMessages& said = test::script();
        int boxesAtSplashEnd = -1;
        StepLog log;
        closeSplashWhenPainted(log);
        auto closer = log.onStep;
        log.onStep = [&](StartStep step) {
            closer(step);
            if (step == StartStep::SplashClosed) boxesAtSplashEnd = int(said.boxes().size());
        };
        Nubella window;
        QVERIFY(window.load());
        QCOMPARE(boxesAtSplashEnd, 0); // nothing said over the splash
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY(said.boxes().front().text.contains(QStringLiteral("자동 백업을 하지 못했습니다")));
        QVERIFY(stores().dbBasic.isOpen());
    }

    void aDamagedStoreIsNamedByTheStartAloneNotByTheBackup() {
        test::TestHome home;
        seedBooks();
        ReadSettings();
        QFile tax(app().DbTaxFile);
        QVERIFY(tax.open(QIODevice::ReadWrite));
        QVERIFY(tax.size() > 3 * 4096);
        tax.seek(2 * 4096);
        tax.write(QByteArray(4096, '\xff'));
        tax.close();
        ScriptedMessages& said = test::script();
        StepLog log;
        closeSplashWhenPainted(log);
        Nubella window;
        QVERIFY(window.load());
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY(!said.boxes().front().text.contains(QStringLiteral("자동 백업")));
        QCOMPARE(dayBackups().size(), 0);
    }

    void aStartKilledDuringTheBackupLeavesNoHalfArchive() {
        test::TestHome home;
        seedBooks();
        // Enough rows that the backup takes a while to copy and pack.
        QStringList rows{QStringLiteral("BEGIN")};
        rows << QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) "
            "INSERT INTO Detail SELECT printf('B%06d', i), 1, hex(randomblob(24)), 'EA', i, "
            "i * 7, 0, i * 7 * i, i * 70 FROM n");
        rows << QStringLiteral("COMMIT");
        ReadSettings();
        QVERIFY(test::runOn(app().DbBillFile, rows));
        const QString folder = home.file(QStringLiteral("Backup"));
        QProcess program;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("NUBELLA_HOME"), home.path());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("TMPDIR"),
                   home.path()); // the killed backup's work folder goes with the test
        program.setProcessEnvironment(env);
        program.start(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella"), QStringList());
        QVERIFY(program.waitForStarted(10000));
        // Killed as soon as the archive is being written beside its target.
        QElapsedTimer waited;
        waited.start();
        bool writing = false;
        while (!writing && waited.elapsed() < 60000 && program.state() == QProcess::Running) {
            writing = !QDir(folder)
                           .entryList({QStringLiteral(".누벨라백업-*")}, QDir::Files | QDir::Hidden)
                           .isEmpty();
            if (!writing) QThread::msleep(2);
        }
        ::kill(pid_t(program.processId()), SIGKILL);
        program.waitForFinished(10000);
        QVERIFY2(writing, "the backup was never seen being written");
        QCOMPARE(automaticBackups(folder).size(), 0);
        // The next start of the day takes the day's backup whole.
        test::script();
        StepLog log;
        closeSplashWhenPainted(log);
        Nubella window;
        QVERIFY(window.load());
        QCOMPARE(dayBackups().size(), 1);
        QVERIFY(isWholeArchive(folder + u'/' + dayBackups().first().name));
    }
};

NB_TEST_MAIN(TestDayBackup)
#include "tst_day_backup.moc"
