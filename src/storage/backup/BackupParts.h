#pragma once
// The pieces of the backups that their tests reach: the stores by role, the names and the
// keeping of the automatic backups, and the restore's swap plan.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace nb {

// One store of the application state: its settings key, its name in a backup, its path now and,
// on a seat that works on the server, the schema that keeps it there (empty for a file).
struct StoreRole {
    QString role;
    QString entry;
    QString path;
    QString schema;
};
QList<StoreRole> storeRoles();

// The program's version as "1.0.0"; the setting that holds the version last started, so that
// the first start of a new one backs the books up before its upgrade steps.
QString programVersion();
inline const QString kStartedVersionKey = QStringLiteral("최근실행판");

// How one backup meets a damaged store: refused (the backup fails, `sawDamage` is set), or, for
// a backup before a change, kept as its bytes lie. A backup taken on a worker thread is handed
// what it would otherwise read from the program's state (the stores, settings.ini, the moment),
// and is told after each store it copied.
struct BackupRun {
    bool keepDamaged = false;
    bool* sawDamage = nullptr;
    std::optional<QList<StoreRole>> stores;
    QString settingsPath;
    QDateTime taken;
    std::function<void()> storeTaken;
    // With `stores`: the server the schemas among them are read from (a libpq connection string).
    QString serverConnInfo;
    // Set when the server did not answer.
    bool* serverAway = nullptr;
};
bool writeBackupFile(const QString& zipPath, const BackupRun& run, QString* why);

// Automatic backups are named "누벨라백업-YYYYMMDD-HHMMSS.zip" (the day's) and
// "누벨라백업-YYYYMMDD-HHMMSS-REASON.zip" (before a change).
QString automaticBackupName(const QDateTime& taken, const QString& reason);
struct AutomaticBackup {
    QString name;
    QDateTime taken;
    bool daily = false;
};
// The automatic backups in a folder, newest first; other files are not looked at.
QList<AutomaticBackup> automaticBackups(const QString& folder);

// Which of the backups stay: of the day's backups the newest of each of the 7 latest days and
// the newest of each of the 4 latest weeks before those days; of those before a change, the
// latest kBeforeChangeKept. Names, in no particular order.
inline constexpr int kDailyKept = 7;
inline constexpr int kWeeklyKept = 4;
inline constexpr int kBeforeChangeKept = 10;
QStringList backupsToKeep(const QList<AutomaticBackup>& backups);

// True when the folder holds no backup of the day `day`.
bool dailyBackupDue(const QString& folder, const QDate& day);

// The restore's swap: each store staged beside its target, then the plan written, then each
// staged file renamed onto its target. A start that finds the plan finishes the swap.
struct SwapStep {
    QString staged;
    QString target;
};
QString swapPlanPath();
QString stagedPathFor(const QString& target);
// Carries the steps out (again, where a kill cut them short) and removes the plan.
void applySwap(const QList<SwapStep>& steps);
// At start: a plan found is finished; staged files without a plan (a restore cut short before
// its plan) are removed. True when a restore was finished.
bool finishPendingRestore();

// For the tests of a restore that fails midway: called with each store's schema (on the
// server, after its rows are in the restore's transaction) or entry (on files, after it is
// staged); answering false fails the restore there. Empty: none.
void setRestoreInterruption(std::function<bool(const QString& store)> interruption);

} // namespace nb
