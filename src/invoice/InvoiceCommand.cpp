#include "invoice/InvoiceCommand.h"

#include "invoice/InvoiceIssue.h"

#include <cstdio>
#include <cstring>

namespace nb {
namespace {

void sayLine(const QString& line) { std::fprintf(stderr, "%s\n", line.toUtf8().constData()); }

// The value behind an option, or empty text when the option or its value is missing.
QString optionValue(const QStringList& arguments, const QString& option) {
    const qsizetype at = arguments.indexOf(option);
    if (at < 0 || at + 1 >= arguments.size()) return QString();
    const QString value = arguments.at(at + 1);
    return value.startsWith(QStringLiteral("--")) ? QString() : value;
}

} // namespace

bool isPrintInvoiceCommand(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--print-invoice") == 0) return true;
    return false;
}

int PrintInvoiceCommand(const QStringList& arguments) {
    const QString taxCode = optionValue(arguments, QStringLiteral("--print-invoice"));
    const QString pdf = optionValue(arguments, QStringLiteral("--pdf"));
    if (taxCode.isEmpty() || pdf.isEmpty()) {
        sayLine(QStringLiteral("사용법: nubella --print-invoice 계산서번호 --pdf 파일"));
        return 2;
    }
    QString reason;
    if (PrintStoredInvoiceToPdf(taxCode, pdf, &reason) != 0) {
        sayLine(reason);
        return 1;
    }
    return 0;
}

} // namespace nb
