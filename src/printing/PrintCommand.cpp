#include "printing/PrintCommand.h"

#include <cstdio>
#include <cstring>

namespace nb {
namespace {

void sayLine(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

// The value behind an option, or empty text when the option or its value is missing.
QString optionValue(const QStringList& arguments, const QString& option) {
    const qsizetype at = arguments.indexOf(option);
    if (at < 0 || at + 1 >= arguments.size()) return QString();
    const QString value = arguments.at(at + 1);
    return value.startsWith(QStringLiteral("--")) ? QString() : value;
}

} // namespace

bool hasCommandOption(int argc, char** argv, const char* option) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], option) == 0) return true;
    return false;
}

int runPdfPrintCommand(
    const QStringList& arguments, const QString& option, const QString& usage,
    const std::function<int(const QString& code, const QString& pdf, QString* reason)>& print) {
    const QString code = optionValue(arguments, option);
    const QString pdf = optionValue(arguments, QStringLiteral("--pdf"));
    if (code.isEmpty() || pdf.isEmpty()) {
        sayLine(usage);
        return 2;
    }
    QString reason;
    if (print(code, pdf, &reason) != 0) {
        sayLine(reason);
        return 1;
    }
    return 0;
}

} // namespace nb
