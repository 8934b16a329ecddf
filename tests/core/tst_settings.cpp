// The settings store: keys without regard to case, Korean round trips, defaults.
#include "TestSupport.h"
#include "core/Settings.h"

#include <QFile>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace nb;

class TestSettings : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void missingKeyReadsAsDefault() {
        test::TestHome home;
        QCOMPARE(GetSetting(kAppSection, kEnvSection, QStringLiteral("없는키"), QStringLiteral("기본")),
                 QStringLiteral("기본"));
        QCOMPARE(GetEnv(QStringLiteral("없는키")), QString());
    }
    void keysCompareWithoutRegardToCase() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TopMargin"),
                    QStringLiteral("3"));
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("topmargin")),
                 QStringLiteral("3"));
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TOPMARGIN"),
                    QStringLiteral("4"));
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TopMargin")),
                 QStringLiteral("4"));
    }
    void koreanKeysAndValuesRoundTripThroughTheFile() {
        test::TestHome home;
        SaveEnv(QStringLiteral("계산서전화번호"), QStringLiteral("02-123-4567 (대표)\n둘째 줄 \\ 끝"));
        resetSettings();
        QCOMPARE(GetEnv(QStringLiteral("계산서전화번호")),
                 QStringLiteral("02-123-4567 (대표)\n둘째 줄 \\ 끝"));
        QVERIFY(QFile::exists(home.file(QStringLiteral("settings.ini"))));
    }
    void sectionsAreKeptApart() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("LeftMargin"),
                    QStringLiteral("1"));
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("LeftMargin"),
                    QStringLiteral("2"));
        resetSettings();
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("leftmargin")),
                 QStringLiteral("1"));
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("leftmargin")),
                 QStringLiteral("2"));
    }
    void aSaveInOneCopyIsNotUndoneByAnotherCopyStartedBefore() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("settings.ini"));
        SettingsStore mine(path); // this copy has read the file at its start
        mine.save(kAppSection, kEnvSection, QStringLiteral("chk소수점2"), QStringLiteral("1"));
        const pid_t other = fork();
        if (other == 0) { // the other copy of the program saves its decimal setting
            SettingsStore theirs(path);
            theirs.save(kAppSection, kEnvSection, QStringLiteral("chk소수점1"), QStringLiteral("2"));
            std::_Exit(0);
        }
        int status = 0;
        waitpid(other, &status, 0);
        QCOMPARE(WEXITSTATUS(status), 0);
        QCOMPARE(mine.get(kAppSection, kEnvSection, QStringLiteral("CHK소수점1")), QStringLiteral("2"));
        mine.save(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TopMargin"),
                  QStringLiteral("3"));
        const SettingsStore fresh(path);
        QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("chk소수점1")), QStringLiteral("2"));
        QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("chk소수점2")), QStringLiteral("1"));
        QCOMPARE(fresh.get(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("topmargin")),
                 QStringLiteral("3"));
    }
    void twoCopiesSavingAtOnceLoseNothing() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("settings.ini"));
        auto saveMany = [&path](const QString& prefix) {
            SettingsStore store(path);
            for (int i = 0; i < 60; ++i)
                store.save(kAppSection, kEnvSection, prefix + QString::number(i), QString::number(i));
        };
        const pid_t other = fork();
        if (other == 0) {
            saveMany(QStringLiteral("b"));
            std::_Exit(0);
        }
        saveMany(QStringLiteral("a"));
        int status = 0;
        waitpid(other, &status, 0);
        const SettingsStore fresh(path);
        for (int i = 0; i < 60; ++i) {
            QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("a%1").arg(i)), QString::number(i));
            QCOMPARE(fresh.get(kAppSection, kEnvSection, QStringLiteral("b%1").arg(i)), QString::number(i));
        }
    }
};

NB_TEST_MAIN(TestSettings)
#include "tst_settings.moc"
