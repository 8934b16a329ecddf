#include "printing/PrintCommand.h"

#include "core/CommandLine.h"

namespace nb {

int runPdfPrintCommand(
    const QStringList& arguments, const QString& option, const QString& usage,
    const std::function<int(const QString& code, const QString& pdf, QString* reason)>& print) {
    const QString code = optionValue(arguments, option);
    const QString pdf = optionValue(arguments, QStringLiteral("--pdf"));
    if (code.isEmpty() || pdf.isEmpty()) {
        sayLine(usage);
        return 2;
    }
    QString reason;
    if (print(code, pdf, &reason) != 0) {
        sayLine(reason);
        return 1;
    }
    return 0;
}

} // namespace nb
