#pragma once
// Backups of the books: every store file and settings.ini in one zip with a manifest, taken
// while the program (or a second copy) runs; the automatic ones in the backup folder; and a
// restore that puts a checked backup in place of the stores as a whole.

#include <QString>

namespace nb {

// The setting that names the backup folder (under "세금계산서" / "환경설정"); by default the
// folder Backup in the application folder.
inline const QString kBackupFolderKey = QStringLiteral("백업경로");
QString backupFolder();

// Writes a backup of the current stores and settings to `zipPath`, beside it first and renamed
// when whole. False with the reason in Korean; the target is then as it was.
bool WriteBackup(const QString& zipPath, QString* why);

// An automatic backup into the backup folder before a change of the books (an import, a
// restore, an upgrade); `reason` is a short word in the file name ("복원전", "가져오기전").
// A failure is said once, in a box, and answers false: the caller decides whether to go on.
bool backupBeforeChange(const QString& reason);

// Puts the backup `zipPath` in place of the stores: checked first (manifest, checksums, the
// engine's integrity check), the current stores backed up, then swapped in whole and reopened.
// False with the reason; then nothing changed.
bool RestoreBackup(const QString& zipPath, QString* why);

// At start, before any store is opened: finishes a restore that was cut short, then takes the
// day's first backup. Never stops the program; a failure is said once.
void RunStartupSafeguards();

// The command line's --backup FILE and --restore FILE.
void registerBackupCommand();

} // namespace nb
