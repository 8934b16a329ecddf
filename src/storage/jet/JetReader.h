#pragma once
// The reading half of the import of the original's Jet (.mdb) files. The program runs itself
// in a hidden reader mode, one child process per file, so that a damaged file that brings the
// Jet library down ends only the reader: `nubella --read-mdb FILE --into RAWFILE`.
//
// The raw file is an SQLite file holding every user table of the Jet file as it was read
// (same table and column names, the values in their own kind: texts as UTF-8 text, numbers as
// integers or doubles, yes/no as 1 / 0, dates as "YYYY-MM-DD" text), and two tables of its own:
//   _columns (tbl, ord, col, jettype, size)  the columns as the Jet file declares them
//   _figures (tbl, col, rows, total)          per table its rows (col empty) and, per numeric
//                                             column, the sum of its values in reading order
// The figures are taken while reading, so the import checks its result against the source
// rather than against itself. The raw file is written beside its name and renamed when whole.

#include <QString>

namespace nb {

inline const QString kReadMdbOption = QStringLiteral("--read-mdb");
inline const QString kReadMdbIntoOption = QStringLiteral("--into");

// The longest text the reader takes whole. A text that fills the buffer may have been cut by
// the library, so such a file is refused instead of read short.
inline constexpr int kJetBindSize = 1 << 20;

// Reads the Jet file into the raw file. 0 when done; otherwise a Korean reason on the error
// stream and 1. A crash inside the library ends the process, which its parent reports.
int readJetFile(const QString& mdbPath, const QString& rawPath);

// The reader mode, when the arguments ask for it (`--read-mdb FILE --into RAWFILE`): runs it
// and answers its exit code; -1 when the arguments are another's.
int runJetReaderIfAsked(int argc, char** argv);

} // namespace nb
