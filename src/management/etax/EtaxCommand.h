#pragma once
// `nubella --export-etax FROM TO --out FOLDER [--receipt 01|02]`: the invoices of a period into
// the national tax service's bulk-issue sheets, without a window. One line per file written and
// one per invoice left out; 1 when a file could not be written or none was to be (2 for a
// malformed command). The folder is made only when a file goes into it.

#include <QStringList>

namespace nb {

// Puts the command in the command line's table.
void registerEtaxCommand();
int ExportEtaxCommand(const QStringList& arguments);

} // namespace nb
