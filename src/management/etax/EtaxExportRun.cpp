#include "management/etax/EtaxExportRun.h"

#include "common/Messages.h"
#include "management/etax/FrmEtaxReport.h"
#include "storage/Stores.h"

namespace nb {

int unknownReceipts(const QList<EtaxInvoice>& invoices) {
    int count = 0;
    for (const EtaxInvoice& invoice : invoices)
        if (invoice.receipt == EtaxReceipt::Unknown) ++count;
    return count;
}

std::optional<EtaxReceipt> AskAssumedReceipt(int unknownCount) {
    const int answer =
        AskYesNoCancel(QStringLiteral("영수/청구가 기록되지 않은 세금계산서가 %1건 있습니다.\r\n\r\n"
                                      "예: 영수(01)로 작성합니다.\r\n아니요: 청구(02)로 작성합니다.")
                           .arg(unknownCount),
                       kEtaxTitle);
    if (answer == AnsYes) return EtaxReceipt::Paid;
    if (answer == AnsNo) return EtaxReceipt::Charged;
    return std::nullopt;
}

std::optional<EtaxExport> RunEtaxExport(QWidget* parent, const QString& from, const QString& to,
                                        const EtaxRunHooks& hooks) {
    const auto invoices = ReadEtaxInvoices(stores().dbTax, stores().dbBasic, from, to);
    if (!invoices) return std::nullopt;
    if (invoices->isEmpty()) {
        ShowInfo(QStringLiteral("%1 ~ %2 기간에 발행한 세금계산서가 없습니다.").arg(from, to), kEtaxTitle);
        return std::nullopt;
    }
    EtaxReceipt assumed = EtaxReceipt::Charged;
    if (const int unknown = unknownReceipts(*invoices); unknown > 0) {
        const auto answer = AskAssumedReceipt(unknown);
        if (!answer) return std::nullopt;
        assumed = *answer;
    }
    const QString folder = hooks.chooseFolder ? hooks.chooseFolder(parent) : QString();
    if (folder.isEmpty()) return std::nullopt;
    const EtaxExport result = exportEtax(*invoices, folder, from, to, assumed);
    if (hooks.showResult) {
        FrmEtaxReport report(result, folder, parent);
        report.onPrint(hooks.printList);
        report.onExport(hooks.exportList);
        report.exec();
    }
    return result;
}

} // namespace nb
