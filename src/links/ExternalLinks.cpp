#include "links/ExternalLinks.h"

#include "common/External.h"
#include "common/Messages.h"
#include "core/AppState.h"
#include "core/Settings.h"
#include "links/LinkPaths.h"

#include <QDir>
#include <QFileInfo>

namespace nb {
namespace {

const QString kScheduleApp = QStringLiteral("루미달");
const QString kScheduleSection = QStringLiteral("General");
const QString kAppPathKey = QStringLiteral("AppPath");
const QString kScheduleNotFound = QStringLiteral("루미달 실행파일을 찾을 수 없습니다.");

// The scheduler's folder, or empty after saying so.
QString scheduleFolder() {
    if (QFileInfo::exists(programFolder() + u'/' + kScheduleProgramFile)) return programFolder();
    QString folder = GetSetting(kScheduleApp, kScheduleSection, kAppPathKey, QString());
    if (folder.isEmpty()) {
        ShowInfo(kScheduleNotFound);
        return QString();
    }
    // A folder that has gone away (the program was moved) is mended to the program's own.
    if (!QFileInfo(folder).isDir() && QDir(folder) != QDir(programFolder())) {
        folder = programFolder();
        SaveSetting(kScheduleApp, kScheduleSection, kAppPathKey, folder);
    }
    return withoutTrailingSeparator(folder);
}

} // namespace

QString paperOrderAddress() {
    return kMakerAddress + QStringLiteral("/order_buy.php");
}

bool RunSchedule(const QString& dataPath) {
    const QString folder = scheduleFolder();
    if (folder.isEmpty()) return false;
    const QString program = folder + u'/' + kScheduleProgramFile;
    if (!QFileInfo::exists(program)) {
        ShowInfo(program + QStringLiteral("\r\n") + kScheduleNotFound);
        return false;
    }
    return launcher().startProgram(program, {withoutTrailingSeparator(dataPath)});
}

bool OpenDocument(QWidget*, const QString& target) {
    return launcher().openUrl(target);
}

void GoHomePage() {
    if (AskYesNo(QStringLiteral("고객지원센터 홈페이지로 이동하시겠습니까?")) == AnsYes)
        launcher().openUrl(kMakerAddress);
}

} // namespace nb
