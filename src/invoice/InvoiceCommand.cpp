#include "invoice/InvoiceCommand.h"

#include "invoice/InvoiceIssue.h"
#include "printing/PrintCommand.h"

namespace nb {
namespace {
const QString kUsage = QStringLiteral("사용법: nubella --print-invoice 계산서번호 --pdf 파일");
}

void registerInvoiceCommand() {
    registerCommandJob(
        {QStringLiteral("--print-invoice"), 1, {QStringLiteral("--pdf")}, {}, kUsage, PrintInvoiceCommand});
}

int PrintInvoiceCommand(const QStringList& arguments) {
    return runPdfPrintCommand(arguments, QStringLiteral("--print-invoice"), kUsage, PrintStoredInvoiceToPdf);
}

} // namespace nb
