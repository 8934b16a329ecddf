// The settings file under faults: two running copies saving at once, a full disk, the other
// copy's lock never let go of, a read-only folder, and a very large file read at start.
#include "TestSupport.h"
#include "core/Settings.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace nb;

namespace {

struct Run {
    int exitCode = -1;
    QStringList lines;
    QStringList boxes() const { return lines.filter(QRegularExpression(QStringLiteral("^box "))); }
};

void startWorker(QProcess& p, const QStringList& args) {
    p.start(QStringLiteral(NB_SETTINGS_WORKER), args);
    QVERIFY(p.waitForStarted());
}

Run finish(QProcess& p) {
    p.waitForFinished(120000);
    const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            out.isEmpty() ? QStringList() : out.split(u'\n')};
}

Run runWorker(const QStringList& args) {
    QProcess p;
    startWorker(p, args);
    return finish(p);
}

QByteArray bytesOf(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(unreadable)");
}

// A settings file as a shop has it after a while: the default supplier, the store paths.
QString writeUsualFile(const test::TestHome& home) {
    const QString path = home.file(QStringLiteral("settings.ini"));
    SettingsStore store(path);
    for (const char* key : {"db경로", "db기초", "db명세서", "db계산서", "dbInOut", "dbEstimate", "dbPost"})
        store.save(kAppSection, kEnvSection, QString::fromUtf8(key),
                   home.file(QStringLiteral("Dbs/") + QString::fromUtf8(key) + QStringLiteral(".db")));
    store.save(kAppSection, kEnvSection, QStringLiteral("기본공급자"), QStringLiteral("123-45-67890"));
    return path;
}

// Temporary files left beside the settings file.
QStringList leftovers(const test::TestHome& home) {
    return QDir(home.path()).entryList({QStringLiteral(".settings.ini.*")}, QDir::Files | QDir::Hidden);
}

} // namespace

class TestSettingsFaults : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void twoCopiesSavingAThousandKeysEachLoseNone() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("settings.ini"));
        QProcess first, second;
        startWorker(first, {QStringLiteral("save"), path, QStringLiteral("a"), QStringLiteral("1000")});
        startWorker(second, {QStringLiteral("save"), path, QStringLiteral("b"), QStringLiteral("1000")});
        const Run a = finish(first);
        const Run b = finish(second);
        QCOMPARE(a.exitCode, 0);
        QCOMPARE(b.exitCode, 0);
        QCOMPARE(a.lines.filter(QRegularExpression(QStringLiteral("^saved "))).size(), 1000);
        const SettingsStore fresh(path);
        for (int i = 0; i < 1000; ++i) {
            QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("a%1").arg(i)),
                     QStringLiteral("값 a%1").arg(i));
            QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("b%1").arg(i)),
                     QStringLiteral("값 b%1").arg(i));
        }
    }
    void aSaveOnAFullDiskKeepsTheOldFileWholeAndSaysSo() {
        test::TestHome home;
        const QString path = writeUsualFile(home);
        const QByteArray before = bytesOf(path);
        // No file may grow to half of the old one: the new one cannot be written at all.
        const Run run = runWorker({QStringLiteral("full"), path, QString::number(before.size() / 2)});
        QCOMPARE(run.exitCode, 0); // the save answered that it was refused
        QCOMPARE(bytesOf(path), before);
        QCOMPARE(run.boxes().size(), 1);
        QVERIFY2(run.boxes().first().contains(QStringLiteral("디스크 공간이 부족합니다")),
                 qPrintable(run.boxes().first()));
        QVERIFY2(leftovers(home).isEmpty(), qPrintable(leftovers(home).join(u' ')));
    }
    void aSaveThatCannotGetTheLockNeverWrites() {
        test::TestHome home;
        const QString path = writeUsualFile(home);
        const QByteArray before = bytesOf(path);
        auto& messages = test::script();
        const int other = ::open(QFile::encodeName(path + QStringLiteral(".lock")).constData(),
                                 O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        QVERIFY(other >= 0);
        QCOMPARE(::flock(other, LOCK_EX), 0); // another copy holds the lock and keeps it
        SettingsStore store(path);
        store.setLockWait(200);
        QVERIFY(!store.save(kAppSection, kEnvSection, QStringLiteral("TopMargin"), QStringLiteral("3")));
        QVERIFY(!store.save(kAppSection, kEnvSection, QStringLiteral("LeftMargin"), QStringLiteral("2")));
        QCOMPARE(bytesOf(path), before);
        QCOMPARE(messages.boxes().size(), size_t(1)); // said once, not once per save
        QVERIFY(messages.boxes().front().text.contains(QStringLiteral("설정을 저장하지 못했습니다")));
        // The values hold for this run, and go into the file with the next save that gets in.
        QCOMPARE(store.get(kAppSection, kEnvSection, QStringLiteral("topmargin")), QStringLiteral("3"));
        ::close(other);
        QVERIFY(store.save(kAppSection, kEnvSection, QStringLiteral("RightMargin"), QStringLiteral("1")));
        const SettingsStore fresh(path);
        QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("TopMargin")), QStringLiteral("3"));
        QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("LeftMargin")), QStringLiteral("2"));
        QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("기본공급자")),
                 QStringLiteral("123-45-67890"));
    }
    void aReadOnlyFolderIsSaidOnceInKorean() {
        test::TestHome home;
        const QString path = writeUsualFile(home);
        QFile::remove(path + QStringLiteral(".lock"));
        const QByteArray before = bytesOf(path);
        // Readable by all, writable by none but root (the worker leaves root behind).
        QVERIFY(QFile::setPermissions(home.path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                       QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        const Run run = runWorker({QStringLiteral("readonly"), path, QStringLiteral("3")});
        QFile::setPermissions(home.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(run.exitCode, 0); // every save answered that it was refused
        QCOMPARE(run.lines.filter(QRegularExpression(QStringLiteral("^refused "))).size(), 3);
        QCOMPARE(run.boxes().size(), 1);
        QVERIFY2(run.boxes().first().contains(QStringLiteral("읽기 전용")), qPrintable(run.boxes().first()));
        QCOMPARE(bytesOf(path), before);
    }
    // Start-up reads the whole file; a file of 20,000 keys is read in one pass. Reading it key by
    // key against every key before took seconds; the bound only tells the two apart (times are
    // in bench_settings).
    void twentyThousandKeysAreReadInOnePass() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("settings.ini"));
        QByteArray text = "[세금계산서\\환경설정]\n";
        for (int i = 0; i < 20000; ++i)
            text += "키" + QByteArray::number(i) + "=값" + QByteArray::number(i) + '\n';
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text);
        f.close();
        QElapsedTimer clock;
        clock.start();
        const SettingsStore store(path);
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(store.get(kAppSection, kEnvSection, QStringLiteral("키19999")), QStringLiteral("값19999"));
        QCOMPARE(store.get(kAppSection, kEnvSection, QStringLiteral("키0")), QStringLiteral("값0"));
    }
};

NB_TEST_MAIN(TestSettingsFaults)
#include "tst_settings_faults.moc"
