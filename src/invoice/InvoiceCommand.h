#pragma once
// `nubella --print-invoice TAXCODE --pdf FILE`: the print of a stored invoice to a PDF file,
// for archiving and for checking prints from outside, without a window.

#include <QStringList>

namespace nb {

// Puts the command in the command line's table.
void registerInvoiceCommand();
// Runs the command on an open store; 0 on success, else a one-line reason on the standard
// error stream and 1 (2 when the command itself is malformed).
int PrintInvoiceCommand(const QStringList& arguments);

} // namespace nb
