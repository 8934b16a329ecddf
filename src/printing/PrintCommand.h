#pragma once
// The command lines that print one stored document to a PDF file without a window
// (`nubella --print-invoice CODE --pdf FILE`, `--print-quotation`): reading its values, keeping
// the program's own files from being written over, the PDF written beside its target and
// renamed when whole, and the one-line answers on the standard error stream.

#include "core/CommandLine.h"

#include <QString>
#include <QStringList>
#include <functional>

namespace nb {

// Prints the document named after `option` to the file after "--pdf" through `print`, which
// answers 0 or fills a one-line reason. 0 on success; 1 with the reason on the standard error
// stream (the target then is as it was); 2 with the usage line when a value is missing.
int runPdfPrintCommand(
    const QStringList& arguments, const QString& option, const QString& usage,
    const std::function<int(const QString& code, const QString& pdf, QString* reason)>& print);

// True when the file is a PDF written to its end (its header, and its end mark last).
bool isWholePdf(const QString& path);

} // namespace nb
