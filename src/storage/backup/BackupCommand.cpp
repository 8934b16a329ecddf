// The command line's backup and restore: `nubella --backup FILE`, `nubella --restore FILE`.
#include "core/CommandLine.h"
#include "storage/Backup.h"

namespace nb {
namespace {

const QString kBackupUsage = QStringLiteral("사용법: nubella --backup 백업파일.zip");
const QString kRestoreUsage = QStringLiteral("사용법: nubella --restore 백업파일.zip");

int backupCommand(const QStringList& arguments) {
    const QString target = optionValue(arguments, QStringLiteral("--backup"));
    if (target.isEmpty()) return sayLine(kBackupUsage), 2;
    if (const QString refused = ownFileRefusal(target); !refused.isEmpty()) return sayLine(refused), 1;
    QString why;
    if (!WriteBackup(target, &why)) return sayLine(why), 1;
    printLine(QStringLiteral("백업했습니다: ") + target);
    return 0;
}

int restoreCommand(const QStringList& arguments) {
    const QString source = optionValue(arguments, QStringLiteral("--restore"));
    if (source.isEmpty()) return sayLine(kRestoreUsage), 2;
    QString why;
    if (!RestoreBackup(source, &why)) {
        sayLine(QStringLiteral("복원하지 않았습니다. 자료는 그대로입니다: ") + why);
        return 1;
    }
    printLine(QStringLiteral("복원했습니다: ") + source);
    return 0;
}

} // namespace

void registerBackupCommand() {
    registerCommandJob({QStringLiteral("--backup"), 1, {}, {}, kBackupUsage, backupCommand});
    registerCommandJob({QStringLiteral("--restore"), 1, {}, {}, kRestoreUsage, restoreCommand});
}

} // namespace nb
