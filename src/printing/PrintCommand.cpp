#include "printing/PrintCommand.h"

#include "core/CommandLine.h"
#include "core/WholeFile.h"

#include <QFile>

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
    if (const QString refused = ownFileRefusal(pdf); !refused.isEmpty()) {
        sayLine(refused);
        return 1;
    }
    WholeOutput output(pdf);
    WriteFailure why;
    if (!output.begin(&why)) {
        sayLine(QStringLiteral("PDF 파일을 만들 수 없습니다: %1 - %2").arg(pdf, why.sentence()));
        return 1;
    }
    QString reason;
    if (print(code, output.tempPath(), &reason) != 0) {
        sayLine(reason.replace(output.tempPath(), pdf));
        return 1;
    }
    if (!output.commit(isWholePdf, &why)) {
        sayLine(QStringLiteral("PDF 파일을 쓰지 못했습니다: %1 - %2").arg(pdf, why.sentence()));
        return 1;
    }
    return 0;
}

bool isWholePdf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < 16) return false;
    if (!file.read(5).startsWith("%PDF-")) return false;
    file.seek(qMax<qint64>(0, file.size() - 64));
    return file.readAll().trimmed().endsWith("%%EOF");
}

} // namespace nb
