#include "core/shell/Program.h"

#include "common/Messages.h"
#include "common/UiSetup.h"
#include "core/AppState.h"
#include "core/shell/Nubella.h"
#include "core/shell/ScreenRegistry.h"
#include "common/text/frmsosu.h"

#include <QApplication>

namespace nb {

void registerShellScreens() {
    registerMenuAction(QStringLiteral("mnu_sosu"), [](QWidget* mainWindow) { (new frmsosu(mainWindow))->show(); });
}

int runProgram(int argc, char** argv) {
    QApplication application(argc, argv);
    setupApplicationUi(application);
    setApplicationTitle(kAppTitle);
    registerShellScreens();
    Nubella window;
    window.show();
    if (!window.load()) return 1;
    return application.exec();
}

} // namespace nb
