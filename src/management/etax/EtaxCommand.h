#pragma once
// `nubella --export-etax FROM TO --out FOLDER [--receipt 01|02]`: the invoices of a period into
// the national tax service's bulk-issue sheets, without a window. One line per file written and
// one per invoice left out; non-zero only when nothing could be written (2 for a malformed
// command).

#include <QStringList>

namespace nb {

bool isExportEtaxCommand(int argc, char** argv);
int ExportEtaxCommand(const QStringList& arguments);

} // namespace nb
