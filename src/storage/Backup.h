#pragma once
// Backups of the books: every store file and settings.ini in one zip with a manifest, taken
// while the program (or a second copy) runs; the automatic ones in the backup folder; and a
// restore that puts a checked backup in place of the stores as a whole.

#include "storage/backup/BackupParts.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <functional>

namespace nb {

// The setting that names the backup folder (under "세금계산서" / "환경설정"); by default the
// folder Backup in the application folder.
inline const QString kBackupFolderKey = QStringLiteral("백업경로");
QString backupFolder();

// Writes a backup of the current stores and settings to `zipPath`, beside it first and renamed
// when whole. On a seat that works on the server its stores are read from there, in one
// snapshot, into the same store files a seat on files backs up. False with the reason in Korean; the target
// is then as it was.
bool WriteBackup(const QString& zipPath, QString* why);

// An automatic backup into the backup folder before a change of the books (an import, a
// restore, an upgrade); `reason` is a short word in the file name ("복원전", "가져오기전").
// A failure is said once, in a box, and answers false: the caller decides whether to go on.
bool backupBeforeChange(const QString& reason);

// Puts the backup `zipPath` in place of the stores: checked first (manifest, checksums, the
// engine's integrity check), the current stores backed up, then swapped in whole and reopened.
// On a seat that works on the server the stores' schemas are made anew from the backup's files
// in one transaction, each table checked by its rows and sums before it commits; refused while
// another seat is connected to the database. False with the reason; then nothing changed.
bool RestoreBackup(const QString& zipPath, QString* why);

// The day's first backup when it is taken beside the window: prepared at start on the window's
// thread (whether one is due, the stores, the folder, the name), taken on a worker thread of its
// own connections, which reads nothing of the program's state and says nothing, and its failure
// said afterwards on the window's thread. A store the engine finds damaged, or a server that
// does not answer, fails it silently: the start names that store, or the server, in its own box.
class DayBackup {
public:
    bool due() const { return m_due; }
    int storeCount() const { return int(m_stores.size()); }
    // Takes the backup (on any thread); `storeTaken` is called after each store copied.
    void take(const std::function<void()>& storeTaken = {});
    // True once take() has written the backup.
    bool taken() const { return m_taken; }
    // Says a failure of take(), once; nothing when it succeeded, was not due, or met damage.
    void sayFailure() const;

private:
    friend void RunStartupSafeguards(DayBackup* aside);
    bool m_due = false;
    bool m_taken = false;
    bool m_sawDamage = false;
    QString m_folder;
    QString m_zipPath;
    QString m_settingsPath;
    QDateTime m_moment;
    QList<StoreRole> m_stores;
    QString m_serverConnInfo;
    QString m_why;
};

// At start, before any store is opened: finishes a restore that was cut short, clears what a
// killed backup left, backs the books up before a new version's upgrade, then takes the day's
// first backup, or, given `aside`, prepares it there to be taken while the splash shows. Never
// stops the program; a failure is said once.
void RunStartupSafeguards(DayBackup* aside = nullptr);

// The command line's --backup FILE and --restore FILE.
void registerBackupCommand();

} // namespace nb
