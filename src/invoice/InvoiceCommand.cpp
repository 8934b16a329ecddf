#include "invoice/InvoiceCommand.h"

#include "invoice/InvoiceIssue.h"
#include "printing/PrintCommand.h"

namespace nb {

bool isPrintInvoiceCommand(int argc, char** argv) { return hasCommandOption(argc, argv, "--print-invoice"); }

int PrintInvoiceCommand(const QStringList& arguments) {
    return runPdfPrintCommand(arguments, QStringLiteral("--print-invoice"),
                              QStringLiteral("사용법: nubella --print-invoice 계산서번호 --pdf 파일"),
                              PrintStoredInvoiceToPdf);
}

} // namespace nb
