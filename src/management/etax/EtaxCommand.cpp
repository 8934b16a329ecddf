#include "management/etax/EtaxCommand.h"

#include "common/dates/DateText.h"
#include "core/CommandLine.h"
#include "management/etax/EtaxExportRun.h"
#include "storage/Stores.h"

#include <QDir>
#include <algorithm>

namespace nb {
namespace {

const QString kUsage = QStringLiteral(
    "사용법: nubella --export-etax 시작일 종료일 --out 폴더 [--receipt 01|02] [--again] (날짜는 YYYY-MM-DD; "
    "--again: 이미 파일에 넣은 세금계산서도 다시 넣음)");

bool isDayText(const QString& text) {
    return text.size() == 10 && IsDate(text);
}

void reportLeftOut(const EtaxLeftOut& left) {
    printLine(QStringLiteral("제외: %1 %2 %3 - %4")
                  .arg(left.taxCode, left.dealDate, left.receiver.trimmed(),
                       left.reasons.join(QStringLiteral("; "))));
}

} // namespace

void registerEtaxCommand() {
    registerCommandJob({QStringLiteral("--export-etax"),
                        2,
                        {QStringLiteral("--out"), QStringLiteral("--receipt")},
                        {QStringLiteral("--again")},
                        kUsage,
                        ExportEtaxCommand});
}

int ExportEtaxCommand(const QStringList& arguments) {
    const QString option = QStringLiteral("--export-etax");
    const QString from = optionValue(arguments, option, 0);
    const QString to = optionValue(arguments, option, 1);
    const QString folder = optionValue(arguments, QStringLiteral("--out"));
    const QString receipt = optionValue(arguments, QStringLiteral("--receipt"));
    const bool receiptGiven = arguments.contains(QStringLiteral("--receipt"));
    if (!isDayText(from) || !isDayText(to) || folder.isEmpty() ||
        (receiptGiven && receipt != u"01" && receipt != u"02")) {
        sayLine(kUsage);
        return 2;
    }
    const auto invoices = ReadEtaxInvoices(stores().dbTax, stores().dbBasic, from, to);
    if (!invoices) return 1; // the query box has said why
    if (invoices->isEmpty()) {
        sayLine(QStringLiteral("%1 ~ %2 기간에 발행한 세금계산서가 없습니다.").arg(from, to));
        return 1;
    }
    const auto marks = HandedOverInvoices(stores().dbTax, from, to);
    if (!marks) return 1;
    EtaxExportPlan plan;
    plan.assumed = receipt == u"01" ? EtaxReceipt::Paid : EtaxReceipt::Charged;
    plan.record = &stores().dbTax;
    // Invoices handed over already stay off the sheet unless asked for again.
    const QList<HandOverMark> handed = alreadyHandedOver(*invoices, *marks, folder, from, to);
    if (arguments.contains(QStringLiteral("--again")))
        for (const HandOverMark& mark : handed)
            printLine(QStringLiteral("다시 넣음: %1 - %2").arg(mark.taxCode, handedOverReason(mark)));
    else
        plan.leaveOut = leaveOutReasons(handed);
    // The folder is made only when a file is to go into it.
    const bool anyGoes =
        std::any_of(invoices->cbegin(), invoices->cend(), [&plan](const EtaxInvoice& invoice) {
            return etaxProblems(invoice).isEmpty() && !plan.leaveOut.contains(invoice.taxCode);
        });
    if (anyGoes && !QDir().mkpath(folder)) {
        sayLine(QStringLiteral("폴더를 만들 수 없습니다: ") + folder);
        return 1;
    }
    const EtaxReceipt assumed = plan.assumed;
    const EtaxExport result = exportEtax(*invoices, folder, from, to, plan);
    for (int i = 0; i < result.files.size(); ++i)
        printLine(
            QStringLiteral("작성: %1 (%2건)").arg(result.files.at(i)).arg(result.invoicesPerFile.at(i)));
    for (const EtaxLeftOut& left : result.leftOut)
        reportLeftOut(left);
    for (const QString& removed : result.removed)
        printLine(QStringLiteral("지움: %1 (지난번에 만든 같은 이름의 파일)").arg(removed));
    for (const QString& failure : result.failures)
        sayLine(failure);
    if (result.assumedReceipts > 0)
        printLine(QStringLiteral("영수/청구가 기록되지 않은 계산서 %1건은 %2(%3)로 작성했습니다.")
                      .arg(result.assumedReceipts)
                      .arg(assumed == EtaxReceipt::Paid ? QStringLiteral("영수") : QStringLiteral("청구"),
                           receiptCode(assumed, assumed)));
    if (result.files.isEmpty() && result.failures.isEmpty())
        sayLine(QStringLiteral("파일로 보낼 수 있는 세금계산서가 없습니다."));
    // A file that could not be written fails the command, even when others were written.
    return result.files.isEmpty() || !result.failures.isEmpty() ? 1 : 0;
}

} // namespace nb
