// The automatic backups: the day's first at start, one before each change of the books, and
// the keeping of the last days and weeks in the backup folder.
#include "common/Messages.h"
#include "core/AppFolder.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "storage/Backup.h"
#include "storage/ServerSettings.h"
#include "storage/backup/BackupArchive.h"
#include "storage/backup/BackupParts.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

namespace nb {
namespace {

const QString kPrefix = QStringLiteral("누벨라백업-");
const QString kAutoTitle = QStringLiteral("자동 백업");

// On a seat that works on the server its books are there, whatever this computer holds.
bool anyStoreHasContent() {
    for (const StoreRole& store : storeRoles())
        if (!store.schema.isEmpty() || QFileInfo(store.path).size() > 0) return true;
    return false;
}

// Before a change every store is kept, a damaged one as its bytes lie.
BackupRun keepingDamaged() {
    BackupRun run;
    run.keepDamaged = true;
    return run;
}

void removeUnkept(const QString& folder) {
    const QList<AutomaticBackup> backups = automaticBackups(folder);
    const QStringList keep = backupsToKeep(backups);
    for (const AutomaticBackup& backup : backups)
        if (!keep.contains(backup.name)) QFile::remove(folder + u'/' + backup.name);
}

bool takeAutomaticBackup(const QString& reason, const BackupRun& run, QString* why) {
    const QString folder = backupFolder();
    if (!QDir().mkpath(folder)) {
        *why = QStringLiteral("백업 폴더를 만들 수 없습니다: %1").arg(folder);
        return false;
    }
    if (!writeBackupFile(folder + u'/' + automaticBackupName(now(), reason), run, why)) return false;
    removeUnkept(folder);
    return true;
}

// What a backup cut short by a kill leaves beside its target; a day old, no copy is still
// writing it.
void removeLeftOvers(const QString& folder) {
    const QDateTime dayAgo = QDateTime::currentDateTime().addDays(-1);
    const QFileInfoList hidden =
        QDir(folder).entryInfoList({u'.' + kPrefix + u'*'}, QDir::Files | QDir::Hidden);
    for (const QFileInfo& file : hidden)
        if (file.lastModified() < dayAgo) QFile::remove(file.absoluteFilePath());
}

void sayAutomaticFailure(const QString& why) {
    ShowWarning(QStringLiteral("자동 백업을 하지 못했습니다.\r\n%1\r\n\r\n백업 폴더(%2)와 디스크의 빈 공간을 "
                               "확인하십시오. 프로그램은 평소대로 쓸 수 있습니다.")
                    .arg(why, backupFolder()),
                kAutoTitle);
}

} // namespace

QString backupFolder() {
    const QString chosen = GetEnv(kBackupFolderKey);
    return chosen.isEmpty() ? appFolderFile(QStringLiteral("Backup")) : QDir::cleanPath(chosen);
}

QString automaticBackupName(const QDateTime& taken, const QString& reason) {
    const QString stamp = taken.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    return kPrefix + stamp + (reason.isEmpty() ? QString() : u'-' + reason) + QStringLiteral(".zip");
}

QList<AutomaticBackup> automaticBackups(const QString& folder) {
    static const QRegularExpression pattern(QStringLiteral("^누벨라백업-(\\d{8}-\\d{6})(-[^/]+)?\\.zip$"));
    QList<AutomaticBackup> found;
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        const QRegularExpressionMatch m = pattern.match(name);
        if (!m.hasMatch()) continue;
        const QDateTime taken = QDateTime::fromString(m.captured(1), QStringLiteral("yyyyMMdd-HHmmss"));
        if (taken.isValid()) found.append({name, taken, m.captured(2).isEmpty()});
    }
    std::sort(found.begin(), found.end(), [](const AutomaticBackup& a, const AutomaticBackup& b) {
        return a.taken != b.taken ? a.taken > b.taken : a.name > b.name;
    });
    return found;
}

QStringList backupsToKeep(const QList<AutomaticBackup>& backups) {
    auto weekOf = [](const QDate& d) {
        int year = 0;
        const int week = d.weekNumber(&year);
        return year * 100 + week;
    };
    QStringList keep;
    QSet<QDate> days;
    QSet<int> weeks; // the weeks already kept, by a day's backup or a week's
    int weekly = 0;
    int beforeChange = 0;
    for (const AutomaticBackup& b : backups) { // newest first
        const QDate day = b.taken.date();
        if (!b.daily) {
            if (beforeChange++ < kBeforeChangeKept) keep << b.name;
        } else if (days.size() < kDailyKept) {
            if (days.contains(day)) continue;
            days.insert(day);
            weeks.insert(weekOf(day));
            keep << b.name;
        } else if (weekly < kWeeklyKept && !weeks.contains(weekOf(day))) {
            weeks.insert(weekOf(day));
            ++weekly;
            keep << b.name;
        }
    }
    return keep;
}

bool dailyBackupDue(const QString& folder, const QDate& day) {
    for (const AutomaticBackup& backup : automaticBackups(folder))
        if (backup.daily && backup.taken.date() == day) return false;
    return true;
}

bool backupBeforeChange(const QString& reason) {
    QString why;
    if (!anyStoreHasContent()) return true; // no books yet: nothing to keep
    // Before a change every store is kept, a damaged one as its bytes lie: a restore is what
    // repairs a damaged store, and must not be barred by it.
    if (takeAutomaticBackup(reason, keepingDamaged(), &why)) return true;
    sayAutomaticFailure(why);
    return false;
}

// The first start of a new version of the program, whose upgrade steps may change the stores'
// layout, backs the books up first. The version is remembered once the backup is taken.
// A server that does not answer is said by the start in its own box; the backup is then taken
// at the next start that reaches it (`serverAway`).
bool backupBeforeUpgrade(QString* why, bool* serverAway) {
    const QString mine = programVersion();
    if (GetEnv(kStartedVersionKey) == mine) return true;
    BackupRun run = keepingDamaged();
    run.serverAway = serverAway;
    if (!takeAutomaticBackup(QStringLiteral("판올림전"), run, why)) return false;
    SaveEnv(kStartedVersionKey, mine);
    return true;
}

void DayBackup::take(const std::function<void()>& storeTaken) {
    if (!m_due || m_taken) return;
    if (!QDir().mkpath(m_folder)) {
        m_why = QStringLiteral("백업 폴더를 만들 수 없습니다: %1").arg(m_folder);
        return;
    }
    BackupRun run;
    run.sawDamage = &m_sawDamage;
    run.stores = m_stores;
    run.settingsPath = m_settingsPath;
    run.taken = m_moment;
    run.storeTaken = storeTaken;
    run.serverConnInfo = m_serverConnInfo;
    m_taken = writeBackupFile(m_zipPath, run, &m_why);
    if (m_taken) removeUnkept(m_folder);
}

// A damaged store is named by the start's own box, with what to do; the day's backup waits for
// the whole books.
void DayBackup::sayFailure() const {
    if (m_due && !m_taken && !m_sawDamage) sayAutomaticFailure(m_why);
}

void RunStartupSafeguards(DayBackup* aside) {
    finishPendingRestore();
    removeLeftOvers(backupFolder());
    if (!anyStoreHasContent()) {
        if (GetEnv(kStartedVersionKey) != programVersion()) SaveEnv(kStartedVersionKey, programVersion());
        return;
    }
    QString why;
    // At most one box: the first failure is the one said.
    bool serverAway = false;
    if (!backupBeforeUpgrade(&why, &serverAway)) return serverAway ? void() : sayAutomaticFailure(why);
    if (!dailyBackupDue(backupFolder(), today())) return;
    DayBackup here;
    DayBackup& day = aside ? *aside : here;
    day.m_due = true;
    day.m_folder = backupFolder();
    day.m_moment = nb::now();
    day.m_zipPath = day.m_folder + u'/' + automaticBackupName(day.m_moment, QString());
    day.m_settingsPath = appFolderFile(kSettingsEntry);
    day.m_stores = storeRoles();
    day.m_serverConnInfo = serverConnInfo();
    if (aside) return;
    day.take();
    day.sayFailure();
}

} // namespace nb
