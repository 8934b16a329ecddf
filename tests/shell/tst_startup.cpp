// The start-up road: reading and repairing the settings, the decimals, the title and the
// date panel, and the move of an old statement file on the way.
#include "TestSupport.h"

#include "core/AppState.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "shell/Startup.h"
#include "common/dates/ShortDate.h"
#include "storage/Stores.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>

using namespace nb;

namespace {
// Stands for the machine's short date format and records what the start-up writes to it.
struct RecordingShortDate : ShortDateStore {
    QString format;
    QStringList written;
    QString read() const override { return format; }
    bool write(const QString& f) override {
        written << f;
        format = f;
        return true;
    }
};

RecordingShortDate* installShortDate(const QString& format) {
    auto store = std::make_unique<RecordingShortDate>();
    store->format = format;
    RecordingShortDate* seen = store.get();
    setShortDateStore(std::move(store));
    return seen;
}

void touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
}
} // namespace

class TestStartup : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void firstStartFallsBackToTheApplicationFolderSilently() {
        test::TestHome home;
        auto& msgs = test::script();
        ReadSettings();
        QCOMPARE(app().DbPath, home.file("Dbs"));
        QCOMPARE(app().DbBasicFile, home.file("Dbs/dbBasic.db"));
        QCOMPARE(app().DbBillFile, home.file("Dbs/dbBill.db"));
        QCOMPARE(app().DbTaxFile, home.file("Dbs/dbTax.db"));
        QCOMPARE(app().DbInOutFile, home.file("Dbs/InOutCash.db"));
        QCOMPARE(app().DbEstimateFile, home.file("Dbs/dbEstimate.db"));
        QCOMPARE(app().DbPostFile, home.file("Dbs/dbPost.db"));
        QCOMPARE(app().RptPath, home.file("Rpt"));
        QVERIFY(msgs.records().empty());
    }
    void repairedPathsAreSavedBackWithTheBackupCopy() {
        test::TestHome home;
        test::script();
        ReadSettings();
        QCOMPARE(GetEnv("db경로"), home.file("Dbs"));
        QCOMPARE(GetSetting("Backup", "DB경로", "경로"), home.file("Dbs"));
        QCOMPARE(GetEnv("db기초"), home.file("Dbs/dbBasic.db"));
        QCOMPARE(GetEnv("db명세서"), home.file("Dbs/dbBill.db"));
        QCOMPARE(GetEnv("db계산서"), home.file("Dbs/dbTax.db"));
        QCOMPARE(GetEnv("dbInOut"), home.file("Dbs/InOutCash.db"));
        QCOMPARE(GetEnv("dbEstimate"), home.file("Dbs/dbEstimate.db"));
        QCOMPARE(GetEnv("dbPost"), home.file("Dbs/dbPost.db"));
        QCOMPARE(GetEnv("Rpt경로"), home.file("Rpt"));
    }
    void storedBasicOutsideDbPathIsKeptWhileMissingTaxFallsBack() {
        test::TestHome home;
        test::script();
        touch(home.file("elsewhere/myBasic.db"));
        QDir().mkpath(home.file("Dbs"));
        SaveEnv("db기초", home.file("elsewhere/myBasic.db"));
        SaveEnv("db계산서", home.file("gone/dbTax.db"));
        ReadSettings();
        QCOMPARE(app().DbBasicFile, home.file("elsewhere/myBasic.db"));
        QCOMPARE(app().DbTaxFile, home.file("Dbs/dbTax.db"));
        QCOMPARE(GetEnv("db계산서"), home.file("Dbs/dbTax.db"));
    }
    void missingDbFolderWarnsAndFallsBack() {
        test::TestHome home;
        auto& msgs = test::script();
        SaveEnv("db경로", home.file("moved-away"));
        ReadSettings();
        QCOMPARE(int(msgs.boxes().size()), 1);
        QCOMPARE(msgs.last().text, QStringLiteral("데이터베이스 파일 경로가 없어졌거나 옮겨졌습니다.\r\n"
                                                  "데이터베이스 파일 경로를 확인하십시요."));
        QCOMPARE(msgs.last().title, QStringLiteral("파일 경로 오류"));
        QCOMPARE(msgs.last().buttons, 48);
        QCOMPARE(app().DbPath, home.file("Dbs"));
        QCOMPARE(GetEnv("db경로"), home.file("Dbs"));
    }
    void passwordFlagMeansYesOnlyForExactlyOne() {
        test::TestHome home;
        test::script();
        for (const char* value : {"01", " 1", "1 ", "", "예"}) {
            SaveEnv("암호사용여부", QString::fromUtf8(value));
            ReadSettings();
            QVERIFY2(!app().PasswordInUse, value);
        }
        SaveEnv("암호사용여부", "1");
        ReadSettings();
        QVERIFY(app().PasswordInUse);
    }
    void missingRptFolderIsSilentAndTheDefaultIsCreated() {
        test::TestHome home;
        auto& msgs = test::script();
        SaveEnv("Rpt경로", home.file("no-such-reports"));
        ReadSettings();
        QVERIFY(msgs.records().empty());
        QCOMPARE(app().RptPath, home.file("Rpt"));
        QVERIFY(QFileInfo(home.file("Rpt")).isDir());
        QCOMPARE(GetEnv("Rpt경로"), home.file("Rpt"));
    }
    void startAppIsStampedOnceAndKeptWhenTheMonthChanges() {
        test::TestHome home;
        test::script();
        setClock([] { return QDateTime(QDate(2026, 11, 30), QTime(23, 59)); });
        ReadSettings();
        QCOMPARE(GetEnv("StartApp"), QStringLiteral("2026-11"));
        QCOMPARE(app().StartAppMonth, QString());  // not refreshed for this run
        setClock([] { return QDateTime(QDate(2026, 12, 1), QTime(0, 1)); });
        ReadSettings();
        QCOMPARE(GetEnv("StartApp"), QStringLiteral("2026-11"));
        QCOMPARE(app().StartAppMonth, QStringLiteral("2026-11"));
    }
    void defaultSupplierAndPasswordAreRead() {
        test::TestHome home;
        test::script();
        SaveEnv("기본사업자", "123-45-67890");
        SaveEnv("암호번호", "4321");
        ReadSettings();
        QCOMPARE(app().DefaultSerial, QStringLiteral("123-45-67890"));
        QCOMPARE(app().PasswordNo, QStringLiteral("4321"));
    }
    void missingDecimalKeysGiveZero() {
        test::TestHome home;
        app().DecimalQty = 5;
        app().DecimalPrice = 5;
        QVERIFY(LoadDecimalSettings());
        QCOMPARE(app().DecimalQty, 0);
        QCOMPARE(app().DecimalPrice, 0);
    }
    void decimalKeysAreReadAsIntegers() {
        test::TestHome home;
        SaveEnv("chk소수점1", "2");
        SaveEnv("chk소수점2", " 1 ");
        QVERIFY(LoadDecimalSettings());
        QCOMPARE(app().DecimalQty, 2);
        QCOMPARE(app().DecimalPrice, 1);
    }
    void decimalSettingThatIsNoNumberStopsTheLoad() {
        test::TestHome home;
        SaveEnv("chk소수점1", "두자리");
        QVERIFY(!LoadDecimalSettings());
        auto& msgs = test::script();
        ShowTypeMismatch();
        QCOMPARE(msgs.last().text, QStringLiteral("실행 시간 오류 '13':\r\n\r\n형식이 일치하지 않습니다."));
    }
    void integerConversionRoundsHalfToEven() {
        QCOMPARE(toInteger16("2.5").value(), 2);
        QCOMPARE(toInteger16("3.5").value(), 4);
        QVERIFY(!toInteger16("").has_value());
        QVERIFY(!toInteger16("40000").has_value());
    }
    void titleCarriesVersionAndAddress() {
        QCOMPARE(mainWindowTitle(),
                 QStringLiteral("하르문 거래명세표 & 세금계산서발행 Ver.1.0.0 - ") + kMakerAddress);
    }
    void datePanelShowsSlashesAndKoreanWeekday() {
        QCOMPARE(datePanelText(QDate(2004, 1, 1)), QStringLiteral("2004/01/01 목요일"));
        QCOMPARE(datePanelText(QDate(2026, 11, 22)), QStringLiteral("2026/11/22 일요일"));
    }
    void shortDateFormatAlreadyRightIsNotWritten() {
        test::TestHome home;
        test::script();
        RecordingShortDate* seen = installShortDate(QStringLiteral("yyyy-MM-dd"));
        StartProgram();
        QVERIFY(seen->written.isEmpty());
    }
    void otherShortDateFormatIsForcedToIsoOnce() {
        test::TestHome home;
        test::script();
        RecordingShortDate* seen = installShortDate(QStringLiteral("M/d/yyyy"));
        StartProgram();
        QCOMPARE(seen->written, QStringList{"yyyy-MM-dd"});
    }
    void anOldStatementFileIsMovedOnTheRoadBeforeTheStoresOpen() {
        test::TestHome home;
        test::script();
        installShortDate(QStringLiteral("yyyy-MM-dd"));
        StartProgram();  // lays down the store files
        closeStores();
        const QString folder = home.file(QStringLiteral("Dbs"));
        {
            Database old;
            QVERIFY(old.create(folder + QStringLiteral("/dbdetail.db")));
            QVERIFY(old.tryExecute(QStringLiteral("CREATE TABLE DealTitle (DealCode TEXT(6), DealDate TEXT(10), "
                                                  "TraderCode TEXT(6))")));
            QVERIFY(old.tryExecute(QStringLiteral("CREATE TABLE DealList (DealCode TEXT(6), PName TEXT(50), PNorm "
                                                  "TEXT(50), Quant REAL, UnitCost REAL, SaleKum REAL, DC REAL)")));
            QVERIFY(old.tryExecute(QStringLiteral("INSERT INTO DealTitle VALUES ('000001', '2019-01-02', '000001')")));
        }
        auto& msgs = test::script();
        StartProgram();
        QCOMPARE(msgs.boxes().front().title, QStringLiteral("거래명세표DB 업그레이드"));
        QCOMPARE(msgs.boxes().back().text, QStringLiteral("거래명세표 DB 업그레이드가 완료 되었습니다."));
        QVERIFY(QFile::exists(folder + QStringLiteral("/dbDetail_bak.db")));
        QVERIFY(!QFile::exists(folder + QStringLiteral("/dbdetail.db")));
        QSqlQuery q(stores().dbBill.connection());
        QVERIFY(q.exec(QStringLiteral("SELECT BillNo FROM Master")) && q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("000001"));
    }
    void aFirstStartWithOnlyAnOldStatementFileMovesItWithoutAskingToReinstall() {
        test::TestHome home;
        installShortDate(QStringLiteral("yyyy-MM-dd"));
        const QString folder = home.file(QStringLiteral("Dbs"));
        QDir().mkpath(folder);
        {
            Database old;
            QVERIFY(old.create(folder + QStringLiteral("/dbdetail.db")));
            QVERIFY(
                old.tryExecute(QStringLiteral("CREATE TABLE DealTitle (DealCode TEXT(6), DealDate TEXT(10), "
                                              "TraderCode TEXT(6))")));
            QVERIFY(old.tryExecute(
                QStringLiteral("CREATE TABLE DealList (DealCode TEXT(6), PName TEXT(50), PNorm "
                               "TEXT(50), Quant REAL, UnitCost REAL, SaleKum REAL, DC REAL)")));
            QVERIFY(old.tryExecute(
                QStringLiteral("INSERT INTO DealTitle VALUES ('000007', '2019-01-02', '000001')")));
            QVERIFY(old.tryExecute(
                QStringLiteral("INSERT INTO DealList VALUES ('000007', '볼트', 'EA', 2, 500, 1100, 0)")));
        }
        auto& msgs = test::script();
        StartProgram();
        for (const MessageRecord& box : msgs.boxes())
            QVERIFY2(!box.text.contains(QStringLiteral("재설치")), qPrintable(box.text));
        QCOMPARE(msgs.boxes().back().text, QStringLiteral("거래명세표 DB 업그레이드가 완료 되었습니다."));
        QVERIFY(QFile::exists(folder + QStringLiteral("/dbDetail_bak.db")));
        QSqlQuery q(stores().dbBill.connection());
        QVERIFY(q.exec(QStringLiteral("SELECT m.BillNo, m.TotAmount, m.TotVat, d.PName FROM Master m "
                                      "JOIN Detail d ON d.BillNo = m.BillNo")) &&
                q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("000007"));
        QCOMPARE(q.value(1).toDouble(), 1000.0);
        QCOMPARE(q.value(2).toDouble(), 100.0);
        QCOMPARE(q.value(3).toString(), QStringLiteral("볼트"));
        QVERIFY(stores().dbBasic.isOpen() && stores().dbTax.isOpen());
    }
};

NB_TEST_MAIN(TestStartup)
#include "tst_startup.moc"
