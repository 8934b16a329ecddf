#include "storage/jet/JetCommand.h"

#include "core/CommandLine.h"
#include "storage/jet/JetImport.h"

namespace nb {
namespace {
const QString kOption = QStringLiteral("--import-mdb");
const QString kUsage = QStringLiteral("사용법: nubella --import-mdb 옛자료폴더");
} // namespace

void registerJetImportCommand() {
    registerCommandJob({kOption, 1, {}, {}, kUsage, ImportMdbCommand});
}

int ImportMdbCommand(const QStringList& arguments) {
    const QString folder = optionValue(arguments, kOption);
    if (folder.isEmpty()) {
        sayLine(kUsage);
        return 2;
    }
    const JetImportReport report = importJetFolder(folder);
    if (!report.ok) {
        for (const QString& line : report.failure.split(u'\n'))
            sayLine(line);
        for (const QString& note : report.notes)
            sayLine(note);
        return 1;
    }
    for (const QString& line : jetReportLines(report))
        printLine(line);
    printLine(QStringLiteral("옛 자료를 가져왔습니다."));
    return 0;
}

} // namespace nb
