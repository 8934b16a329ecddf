#pragma once
// `nubella --print-quotation ESTICODE --pdf FILE`: a stored quotation to a PDF file, without a
// window.

#include <QStringList>

namespace nb {

// Puts the command in the command line's table.
void registerQuotationCommand();
// 0 on success, else a one-line reason on the standard error stream and 1 (2 when the command
// itself is malformed).
int PrintQuotationCommand(const QStringList& arguments);

} // namespace nb
