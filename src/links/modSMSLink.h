#pragma once
// The hand-over to the separate sending program (HMFlyNote.exe): finding it, writing the
// chosen numbers into ExternTelNo.txt in its folder (CP949, one "name,number" line a number,
// CRLF) and starting it with that file, or "0" when no row was chosen.

#include <QString>

namespace nb {

class Grid;

inline const QString kSendProgramFile = QStringLiteral("HMFlyNote.exe");
inline const QString kTelListFile = QStringLiteral("ExternTelNo.txt");

// The folder of the sending program: the program's own folder when the file lies there, else
// the sending program's own "AppPath" setting; empty (after saying why) when not found.
QString GetSendProgramPath();
// Starts the sending program with the rows ticked ("1" in colCheck); true when it was started.
bool TransFromSpread(Grid& grid, int colCheck, int colName, int colTel);
// Writes the numbers of the ticked rows to filePath anew; false after a failure report.
bool CreateTelListFile(Grid& grid, const QString& filePath, int colCheck, int colName, int colTel);

// The lines of one row: the name without ";" and ":", one line per number in the text.
QStringList telListLines(const QString& name, const QString& numbers);

} // namespace nb
