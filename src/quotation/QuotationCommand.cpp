#include "quotation/QuotationCommand.h"

#include "printing/PrintCommand.h"
#include "quotation/QuotationIssue.h"

namespace nb {

bool isPrintQuotationCommand(int argc, char** argv) {
    return hasCommandOption(argc, argv, "--print-quotation");
}

int PrintQuotationCommand(const QStringList& arguments) {
    return runPdfPrintCommand(arguments, QStringLiteral("--print-quotation"),
                              QStringLiteral("사용법: nubella --print-quotation 견적번호 --pdf 파일"),
                              PrintStoredQuotationToPdf);
}

} // namespace nb
