#pragma once
// The pieces the program's command-line jobs share (a print to PDF, an export): options read
// from the argument list and one line said on the error stream.

#include <QString>
#include <QStringList>

namespace nb {

// True when the option stands among the program's arguments.
bool hasCommandOption(int argc, char** argv, const char* option);
// The value behind an option, or empty text when the option or its value is missing.
QString optionValue(const QStringList& arguments, const QString& option);
// The n-th value behind an option (0 is the first), or empty text.
QString optionValue(const QStringList& arguments, const QString& option, int n);
// One line on the standard error stream, in UTF-8.
void sayLine(const QString& line);
// One line on the standard output stream, in UTF-8.
void printLine(const QString& line);

} // namespace nb
