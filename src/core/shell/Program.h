#pragma once
// The program's entry: builds the application, registers the screens it was built with,
// shows the main window and runs the message loop.

namespace nb {

int runProgram(int argc, char** argv);

} // namespace nb
