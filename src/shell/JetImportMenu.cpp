#include "shell/JetImportMenu.h"

#include "common/FileChooser.h"
#include "common/Messages.h"
#include "core/AppState.h"
#include "core/ScreenRegistry.h"
#include "shell/Startup.h"
#include "storage/Stores.h"
#include "storage/jet/JetImport.h"

#include <QDir>
#include <QMdiArea>
#include <memory>

namespace nb {
namespace {

// The screens hold the stores' rows; the stores are closed and exchanged under them.
bool screensOpen(QWidget* mainWindow) {
    const QMdiArea* area = mainWindow->findChild<QMdiArea*>();
    return area && !area->subWindowList().isEmpty();
}

QString confirmText(const QString& folder) {
    return QStringLiteral("%1 폴더의 옛 자료(.mdb)로 지금의 자료를 모두 바꿉니다.\r\n"
                          "지금의 자료는 자료 폴더 옆에 날짜를 붙인 폴더로 그대로 남겨 둡니다.\r\n"
                          "다른 컴퓨터나 창에서 누벨라를 쓰고 있다면 먼저 닫으십시오.\r\n\r\n"
                          "계속할까요?")
        .arg(QDir::toNativeSeparators(folder));
}

JetImportReport importWithProgress(const QString& folder) {
    std::unique_ptr<Progress> progress;
    JetImportOptions options;
    options.progress = [&progress](const QString& what, qint64 rows) {
        progress.reset();
        const QString caption = rows > 0
                                    ? QStringLiteral("옛 자료 가져오는 중: %1 (%2행)").arg(what).arg(rows)
                                    : QStringLiteral("옛 자료 가져오는 중: %1").arg(what);
        progress = std::make_unique<Progress>(caption, 1);
    };
    const JetImportReport report = importJetFolder(folder, options);
    progress.reset();
    return report;
}

} // namespace

void registerJetImportMenu() {
    registerMenuAction(QStringLiteral("mnu_jetImport"),
                       [](QWidget* mainWindow) { RunJetImport(mainWindow); });
}

void RunJetImport(QWidget* mainWindow) {
    if (screensOpen(mainWindow)) {
        ShowInfo(QStringLiteral("열려 있는 화면을 모두 닫은 뒤 옛 자료를 가져오십시오."), kJetImportTitle);
        return;
    }
    const QString folder = fileChooser().chooseFolder(mainWindow, QStringLiteral("옛 자료(.mdb) 폴더 선택"),
                                                      QFileInfo(app().DbPath).absolutePath());
    if (folder.isEmpty() || AskYesNo(confirmText(folder), kJetImportTitle, false) != AnsYes) return;
    const JetImportReport report = importWithProgress(folder);
    // The stores were closed for the exchange (or by a failure right at it): open them again
    // as at a start.
    if (!stores().dbBasic.isOpen()) {
        StartProgram();
        LoadDefaultUser();
    }
    if (!report.ok) {
        QStringList lines{report.failure};
        lines << report.notes;
        ShowWarning(lines.join(QStringLiteral("\r\n")), kJetImportTitle);
        return;
    }
    ShowInfo(QStringLiteral("옛 자료를 가져왔습니다.\r\n\r\n") +
                 jetReportLines(report).join(QStringLiteral("\r\n")),
             kJetImportTitle);
}

} // namespace nb
