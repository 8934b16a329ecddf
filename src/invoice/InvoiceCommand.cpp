#include "invoice/InvoiceCommand.h"

#include "core/CommandLine.h"
#include "invoice/InvoiceIssue.h"

namespace nb {

bool isPrintInvoiceCommand(int argc, char** argv) { return hasCommandOption(argc, argv, "--print-invoice"); }

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
