#include "core/CommandLine.h"

#include <cstdio>
#include <cstring>

namespace nb {

bool hasCommandOption(int argc, char** argv, const char* option) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], option) == 0) return true;
    return false;
}

QString optionValue(const QStringList& arguments, const QString& option, int n) {
    const qsizetype at = arguments.indexOf(option);
    if (at < 0 || at + 1 + n >= arguments.size()) return QString();
    for (int i = 0; i <= n; ++i)
        if (arguments.at(at + 1 + i).startsWith(QStringLiteral("--"))) return QString();
    return arguments.at(at + 1 + n);
}

QString optionValue(const QStringList& arguments, const QString& option) {
    return optionValue(arguments, option, 0);
}

void sayLine(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

void printLine(const QString& line) {
    std::fprintf(stdout, "%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace nb
