#pragma once
// `nubella --print-statement BILLNO --pdf FILE [--frame]`: a stored statement to a PDF file,
// without a window, as the issue button prints it (with the form under it when --frame).

#include <QStringList>

namespace nb {

// Puts the command in the command line's table.
void registerStatementCommand();
// 0 on success, else a one-line reason on the standard error stream and 1 (2 when the command
// itself is malformed).
int PrintStatementCommand(const QStringList& arguments);

} // namespace nb
