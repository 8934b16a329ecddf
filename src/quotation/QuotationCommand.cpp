#include "quotation/QuotationCommand.h"

#include "printing/PrintCommand.h"
#include "quotation/QuotationIssue.h"

namespace nb {
namespace {
const QString kUsage = QStringLiteral("사용법: nubella --print-quotation 견적번호 --pdf 파일");
}

void registerQuotationCommand() {
    registerCommandJob({QStringLiteral("--print-quotation"),
                        1,
                        {QStringLiteral("--pdf")},
                        {},
                        kUsage,
                        PrintQuotationCommand});
}

int PrintQuotationCommand(const QStringList& arguments) {
    return runPdfPrintCommand(arguments, QStringLiteral("--print-quotation"), kUsage,
                              PrintStoredQuotationToPdf);
}

} // namespace nb
