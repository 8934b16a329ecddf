#pragma once
// The program's entry: builds the application, registers the screens it was built with,
// shows the main window and runs the message loop.

namespace nb {

// The screens of the common library (the decimal settings).
void registerShellScreens();
int runProgram(int argc, char** argv);

} // namespace nb
