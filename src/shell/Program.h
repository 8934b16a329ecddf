#pragma once
// The program's entry: builds the application, registers the screens it was built with,
// shows the main window and runs the message loop.

#include <QStringList>
#include <functional>

namespace nb {

class Nubella;

// The load (title, date panel, decimals, the store, the splash) runs before the window is
// shown, so no unfinished caption shows and no box stands over an empty window. False when the
// load stopped; the window then never shows.
bool loadAndShow(Nubella& window, bool showSplash = true);

// The screens of the common library (the decimal settings).
void registerShellScreens();
int runProgram(int argc, char** argv);

// Runs a job without a window (a print from the command line): the store is opened as at a
// start, every message goes to the standard error stream, and the job's answer is the exit code.
int runHeadless(int argc, char** argv, const std::function<int(const QStringList& arguments)>& job);

// The program as started from the command line: the job its arguments name (see
// core/CommandLine.h), the window when they name none, or the usage lines and 2 when they are
// wrong. The screens and jobs are registered before.
int runNubella(int argc, char** argv);

} // namespace nb
