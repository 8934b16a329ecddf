#include "core/shell/Program.h"

#include "common/Messages.h"
#include "common/UiSetup.h"
#include "core/AppState.h"
#include "core/shell/Nubella.h"

#include <QApplication>

namespace nb {

int runProgram(int argc, char** argv) {
    QApplication application(argc, argv);
    setupApplicationUi(application);
    setApplicationTitle(kAppTitle);
    Nubella window;
    window.show();
    if (!window.load()) return 1;
    return application.exec();
}

} // namespace nb
