#include "quotation/QuotationCommand.h"

#include "quotation/QuotationIssue.h"

#include <cstdio>
#include <cstring>

namespace nb {
namespace {

void sayLine(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

QString optionValue(const QStringList& arguments, const QString& option) {
    const qsizetype at = arguments.indexOf(option);
    if (at < 0 || at + 1 >= arguments.size()) return QString();
    const QString value = arguments.at(at + 1);
    return value.startsWith(QStringLiteral("--")) ? QString() : value;
}

} // namespace

bool isPrintQuotationCommand(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--print-quotation") == 0) return true;
    return false;
}

int PrintQuotationCommand(const QStringList& arguments) {
    const QString code = optionValue(arguments, QStringLiteral("--print-quotation"));
    const QString pdf = optionValue(arguments, QStringLiteral("--pdf"));
    if (code.isEmpty() || pdf.isEmpty()) {
        sayLine(QStringLiteral("사용법: nubella --print-quotation 견적번호 --pdf 파일"));
        return 2;
    }
    QString reason;
    if (PrintStoredQuotationToPdf(code, pdf, &reason) != 0) {
        sayLine(reason);
        return 1;
    }
    return 0;
}

} // namespace nb
