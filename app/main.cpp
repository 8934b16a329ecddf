#include "core/shell/Program.h"
#include "printing/PrintingScreens.h"

int main(int argc, char** argv) {
    nb::registerPrintingScreens();
    return nb::runProgram(argc, argv);
}
