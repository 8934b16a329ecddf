#pragma once
// The program's entry: builds the application, registers the screens it was built with,
// shows the main window and runs the message loop.

#include <QStringList>
#include <functional>

namespace nb {

// The screens of the common library (the decimal settings).
void registerShellScreens();
int runProgram(int argc, char** argv);

// Runs a job without a window (a print from the command line): the store is opened as at a
// start, every message goes to the standard error stream, and the job's answer is the exit code.
int runHeadless(int argc, char** argv, const std::function<int(const QStringList& arguments)>& job);

} // namespace nb
