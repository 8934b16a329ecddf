// The settings store: keys without regard to case, Korean round trips, defaults.
#include "TestSupport.h"

#include "core/Settings.h"

#include <QFile>

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
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TopMargin"), QStringLiteral("3"));
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("topmargin")),
                 QStringLiteral("3"));
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TOPMARGIN"), QStringLiteral("4"));
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TopMargin")),
                 QStringLiteral("4"));
    }
    void koreanKeysAndValuesRoundTripThroughTheFile() {
        test::TestHome home;
        SaveEnv(QStringLiteral("계산서전화번호"), QStringLiteral("02-123-4567 (대표)\n둘째 줄 \\ 끝"));
        resetSettings();
        QCOMPARE(GetEnv(QStringLiteral("계산서전화번호")), QStringLiteral("02-123-4567 (대표)\n둘째 줄 \\ 끝"));
        QVERIFY(QFile::exists(home.file(QStringLiteral("settings.ini"))));
    }
    void sectionsAreKeptApart() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("LeftMargin"), QStringLiteral("1"));
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("LeftMargin"), QStringLiteral("2"));
        resetSettings();
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("leftmargin")), QStringLiteral("1"));
        QCOMPARE(GetSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("leftmargin")), QStringLiteral("2"));
    }
};

NB_TEST_MAIN(TestSettings)
#include "tst_settings.moc"
