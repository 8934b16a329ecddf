#include "statement/StatementCommand.h"

#include "printing/PrintCommand.h"
#include "statement/StatementIssue.h"

namespace nb {

bool isPrintStatementCommand(int argc, char** argv) {
    return hasCommandOption(argc, argv, "--print-statement");
}

int PrintStatementCommand(const QStringList& arguments) {
    const bool frame = arguments.contains(QStringLiteral("--frame"));
    return runPdfPrintCommand(
        arguments, QStringLiteral("--print-statement"),
        QStringLiteral("사용법: nubella --print-statement 거래번호 --pdf 파일 [--frame]"),
        [frame](const QString& billNo, const QString& pdf, QString* reason) {
            return PrintStoredStatementToPdf(billNo, pdf, frame, reason);
        });
}

} // namespace nb
