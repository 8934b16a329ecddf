#include "statement/StatementCommand.h"

#include "printing/PrintCommand.h"
#include "statement/StatementIssue.h"

namespace nb {
namespace {
const QString kUsage = QStringLiteral("사용법: nubella --print-statement 거래번호 --pdf 파일 [--frame]");
}

void registerStatementCommand() {
    registerCommandJob({QStringLiteral("--print-statement"),
                        1,
                        {QStringLiteral("--pdf")},
                        {QStringLiteral("--frame")},
                        kUsage,
                        PrintStatementCommand});
}

int PrintStatementCommand(const QStringList& arguments) {
    const bool frame = arguments.contains(QStringLiteral("--frame"));
    return runPdfPrintCommand(arguments, QStringLiteral("--print-statement"), kUsage,
                              [frame](const QString& billNo, const QString& pdf, QString* reason) {
                                  return PrintStoredStatementToPdf(billNo, pdf, frame, reason);
                              });
}

} // namespace nb
