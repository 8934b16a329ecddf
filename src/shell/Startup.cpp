#include "shell/Startup.h"

#include "common/Messages.h"
#include "common/dates/DateText.h"
#include "common/dates/ShortDate.h"
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "storage/Backup.h"
#include "storage/StoreCheck.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"
#include "storage/UpdateBill.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace nb {
namespace {

QString folderOrDefault(const QString& stored, const QString& fallbackName) {
    return !stored.isEmpty() && QFileInfo(stored).isDir() ? stored : appFolderFile(fallbackName);
}

// A stored path that names an existing file is kept, wherever it lies; else the default name.
QString fileOrDefault(const QString& stored, const QString& dbPath, const QString& fileName) {
    return !stored.isEmpty() && QFileInfo(stored).isFile() ? stored : dbPath + u'/' + fileName;
}

} // namespace

void ReadSettings() {
    AppState& s = app();
    const QString inUse = GetEnv(QStringLiteral("암호사용여부"));
    s.DefaultSerial = GetEnv(QStringLiteral("기본사업자"));
    s.PasswordInUse = inUse == QStringLiteral("1");
    s.PasswordNo = GetEnv(QStringLiteral("암호번호"));
    s.StartAppMonth = GetEnv(QStringLiteral("StartApp"));
    const QString dbFolder = GetEnv(QStringLiteral("db경로"));
    const QString basic = GetEnv(QStringLiteral("db기초"));
    const QString bill = GetEnv(QStringLiteral("db명세서"));
    const QString tax = GetEnv(QStringLiteral("db계산서"));
    const QString inOut = GetEnv(QStringLiteral("dbInOut"));
    const QString estimate = GetEnv(QStringLiteral("dbEstimate"));
    const QString post = GetEnv(QStringLiteral("dbPost"));
    const QString rpt = GetEnv(QStringLiteral("Rpt경로"));

    if (s.StartAppMonth.isEmpty()) SaveEnv(QStringLiteral("StartApp"), today().toString(u"yyyy-MM"));

    if (!dbFolder.isEmpty() && !QFileInfo(dbFolder).isDir())
        ShowWarning(QStringLiteral("데이터베이스 파일 경로가 없어졌거나 옮겨졌습니다.\r\n"
                                   "데이터베이스 파일 경로를 확인하십시요."),
                    QStringLiteral("파일 경로 오류"));
    s.DbPath = folderOrDefault(dbFolder, QStringLiteral("Dbs"));

    s.DbBasicFile = fileOrDefault(basic, s.DbPath, QStringLiteral("dbBasic.db"));
    s.DbBillFile = fileOrDefault(bill, s.DbPath, QStringLiteral("dbBill.db"));
    s.DbTaxFile = fileOrDefault(tax, s.DbPath, QStringLiteral("dbTax.db"));
    s.DbInOutFile = fileOrDefault(inOut, s.DbPath, QStringLiteral("InOutCash.db"));
    s.DbEstimateFile = fileOrDefault(estimate, s.DbPath, QStringLiteral("dbEstimate.db"));
    s.DbPostFile = fileOrDefault(post, s.DbPath, QStringLiteral("dbPost.db"));

    s.RptPath = folderOrDefault(rpt, QStringLiteral("Rpt"));
    if (!QFileInfo(s.RptPath).isDir()) QDir().mkdir(s.RptPath);

    SaveEnv(QStringLiteral("db경로"), s.DbPath);
    SaveSetting(QStringLiteral("Backup"), QStringLiteral("DB경로"), QStringLiteral("경로"), s.DbPath);
    SaveEnv(QStringLiteral("db기초"), s.DbBasicFile);
    SaveEnv(QStringLiteral("db명세서"), s.DbBillFile);
    SaveEnv(QStringLiteral("db계산서"), s.DbTaxFile);
    SaveEnv(QStringLiteral("dbInOut"), s.DbInOutFile);
    SaveEnv(QStringLiteral("dbEstimate"), s.DbEstimateFile);
    SaveEnv(QStringLiteral("dbPost"), s.DbPostFile);
    SaveEnv(QStringLiteral("Rpt경로"), s.RptPath);
}

QString mainWindowTitle() {
    return QStringLiteral("하르문 거래명세표 & 세금계산서발행 Ver.") + QString::number(versionMajor()) +
           u'.' + QString::number(versionMinor()) + u'.' + QString::number(versionRevision()) +
           QStringLiteral(" - ") + kMakerAddress;
}

QString datePanelText(const QDate& date) {
    return date.toString(u"yyyy") + u'/' + date.toString(u"MM") + u'/' + date.toString(u"dd") + u' ' +
           GetHanWeekday(date);
}

std::optional<int> toInteger16(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) return std::nullopt;
    const double rounded = std::nearbyint(value); // the default rounding mode is half to even
    if (rounded < -32768 || rounded > 32767) return std::nullopt;
    return int(rounded);
}

bool LoadDecimalSettings() {
    const auto qty = toInteger16(GetEnv(QStringLiteral("chk소수점1"), QStringLiteral("0")));
    if (!qty) return false;
    app().DecimalQty = *qty;
    const auto price = toInteger16(GetEnv(QStringLiteral("chk소수점2"), QStringLiteral("0")));
    if (!price) return false;
    app().DecimalPrice = *price;
    return true;
}

void StartProgram(DayBackup* dayBackup) {
    PrepareStart(dayBackup);
    OpenStoresAtStart();
}

void PrepareStart(DayBackup* dayBackup) {
    ForceDateFormat(0);
    ReadSettings();
    // Backups: a restore cut short is finished, and the backup before an upgrade taken, before
    // any store is laid down or opened; the day's first too, unless the caller takes it aside.
    RunStartupSafeguards(dayBackup);
}

void OpenStoresAtStart() {
    // The store files are laid down before anything reads them, so the old statement store's
    // move always finds the store it moves into.
    CreateMissingStoreFiles();
    const QList<DamagedStore> damaged = CheckStoreFiles();
    if (!isDamaged(damaged, app().DbBillFile)) {
        // Under the busy cursor; a damaged statement store waits for its backup, and the old
        // file stays until a start can move it.
        QApplication::setOverrideCursor(Qt::WaitCursor);
        UpdateBill();
        QApplication::restoreOverrideCursor();
    }
    OpenWholeStores(damaged);
    ReportDamagedStores(damaged);
    UpgradeOpenStores(damagedPaths(damaged));
}

} // namespace nb
