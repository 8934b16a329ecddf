#include "core/shell/Program.h"

#include "common/UiSetup.h"

#include <QApplication>

namespace nb {

int runProgram(int argc, char** argv) {
    QApplication application(argc, argv);
    setupApplicationUi(application);
    return 0;
}

} // namespace nb
