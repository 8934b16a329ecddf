#include "core/shell/Program.h"

int main(int argc, char** argv) { return nb::runProgram(argc, argv); }
