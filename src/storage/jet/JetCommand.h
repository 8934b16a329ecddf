#pragma once
// `nubella --import-mdb FOLDER`: the import of a folder of the original's Jet files as the
// stores, without a window; per table the rows and sums read and written on the standard output.

#include <QStringList>

namespace nb {

// Puts the command in the command line's table.
void registerJetImportCommand();
// 0 when the stores were replaced; 1 (with the reason on the error stream) when nothing changed.
int ImportMdbCommand(const QStringList& arguments);

} // namespace nb
