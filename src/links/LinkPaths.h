#pragma once
// Where the program itself lies: the folder the other programs it starts are looked for in
// first, and under which the sample pictures are kept.

#include <QString>

namespace nb {

// The program's own folder (its executable's), unless set otherwise (tests).
QString programFolder();
void setProgramFolder(const QString& folder);

// A folder text with one trailing separator ("\" or "/") cut off.
QString withoutTrailingSeparator(const QString& folder);

} // namespace nb
