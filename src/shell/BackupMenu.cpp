#include "shell/BackupMenu.h"

#include "common/FileChooser.h"
#include "common/Messages.h"
#include "core/Clock.h"
#include "core/CommandLine.h"
#include "core/ScreenRegistry.h"
#include "storage/Backup.h"
#include "storage/ServerSettings.h"

#include <QApplication>
#include <QDir>

namespace nb {
namespace {

const QString kFilter = QStringLiteral("백업 파일 (*.zip)|*.zip");
const QString kBackupTitle = QStringLiteral("백업");
const QString kRestoreTitle = QStringLiteral("복원");

// A name the automatic backups' keeping never takes for one of its own.
QString suggestedBackup() {
    return backupFolder() + QStringLiteral("/누벨라수동백업-") +
           now().toString(QStringLiteral("yyyyMMdd-HHmmss")) + QStringLiteral(".zip");
}

} // namespace

void registerBackupMenu() {
    registerMenuAction(QStringLiteral("mnu_backup"), RunBackupMenu);
    registerMenuAction(QStringLiteral("mnu_restore"), RunRestoreMenu);
}

void RunBackupMenu(QWidget* mainWindow) {
    QDir().mkpath(backupFolder());
    QString path =
        fileChooser().saveFile(mainWindow, QStringLiteral("백업 파일 저장"), suggestedBackup(), kFilter);
    if (path.isEmpty()) return;
    if (!path.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive)) path += QStringLiteral(".zip");
    if (const QString refused = ownFileRefusal(path); !refused.isEmpty())
        return ShowWarning(refused, kBackupTitle);
    QString why;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool written = WriteBackup(path, &why);
    QApplication::restoreOverrideCursor();
    if (written)
        ShowInfo(QStringLiteral("백업했습니다.\r\n") + path, kBackupTitle);
    else
        ShowWarning(QStringLiteral("백업하지 못했습니다.\r\n") + why, kBackupTitle);
}

void RunRestoreMenu(QWidget* mainWindow) {
    const QString path = fileChooser().openFile(mainWindow, QStringLiteral("복원할 백업 파일"), kFilter);
    if (path.isEmpty()) return;
    // On the server the books of every seat change: the others are to be ended first.
    const QString server =
        onServer() ? QStringLiteral("이 자리는 데이터 서버의 장부를 씁니다. 서버의 장부가 모두 바뀌므로 다른 "
                                    "자리의 누벨라를 모두 끝낸 뒤 복원하십시오.\r\n")
                   : QString();
    const QString question =
        QStringLiteral(
            "지금의 자료를 모두 이 백업 파일의 자료로 바꿉니다.\r\n%1\r\n\r\n%3지금의 자료는 먼저 백업 "
            "폴더(%2)에 백업해 둡니다. 복원한 뒤에는 프로그램을 끝내므로 다시 시작하십시오.\r\n\r\n"
            "복원하시겠습니까?")
            .arg(path, backupFolder(), server);
    if (AskYesNo(question, kRestoreTitle, false) != AnsYes) return;
    QString why;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool restored = RestoreBackup(path, &why);
    QApplication::restoreOverrideCursor();
    if (!restored)
        return ShowWarning(QStringLiteral("복원하지 않았습니다. 지금의 자료는 그대로입니다.\r\n") + why,
                           kRestoreTitle);
    ShowInfo(QStringLiteral("복원했습니다. 프로그램을 끝냅니다. 다시 시작하십시오."), kRestoreTitle);
    QCoreApplication::quit();
}

} // namespace nb
