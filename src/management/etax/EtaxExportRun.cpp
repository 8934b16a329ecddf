#include "management/etax/EtaxExportRun.h"

#include "common/Messages.h"
#include "management/etax/FrmEtaxHandOver.h"
#include "management/etax/FrmEtaxPeriod.h"
#include "management/etax/FrmEtaxReport.h"
#include "storage/Stores.h"

#include <QFileInfo>

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

QList<HandOverMark> alreadyHandedOver(const QList<EtaxInvoice>& invoices,
                                      const QHash<QString, HandOverMark>& marks, const QString& folder,
                                      const QString& from, const QString& to) {
    QList<HandOverMark> found;
    for (const EtaxInvoice& invoice : invoices) {
        if (!marks.contains(invoice.taxCode) || !etaxProblems(invoice).isEmpty()) continue;
        HandOverMark mark{invoice.taxCode, {}};
        for (const HandOverFile& file : marks.value(invoice.taxCode).files)
            if (file.uploaded() || !isEtaxFileOf(file.path, folder, from, to)) mark.files << file;
        if (!mark.files.isEmpty()) found << mark;
    }
    return found;
}

QString handedOverReason(const HandOverMark& mark) {
    const HandOverFile& file = mark.files.first();
    return QStringLiteral("이미 전자세금계산서 파일에 넣었습니다: %1 (%2)")
        .arg(QFileInfo(file.path).fileName(), file.stateText());
}

QString handedOverQuestion(const QList<EtaxInvoice>& invoices, const QList<HandOverMark>& marks) {
    constexpr int kNamed = 10;
    QHash<QString, const EtaxInvoice*> byCode;
    for (const EtaxInvoice& invoice : invoices)
        byCode.insert(invoice.taxCode, &invoice);
    QString text = QStringLiteral("이미 전자세금계산서 파일에 넣은 세금계산서가 %1건 있습니다.\r\n\r\n")
                       .arg(marks.size());
    for (int i = 0; i < marks.size() && i < kNamed; ++i) {
        const HandOverMark& mark = marks.at(i);
        const EtaxInvoice* invoice = byCode.value(mark.taxCode);
        const HandOverFile& file = mark.files.first();
        text += QStringLiteral("%1 %2 %3 - %4 (%5)\r\n")
                    .arg(mark.taxCode, invoice ? invoice->dealDate : QString(),
                         invoice ? invoice->receiver.company.trimmed() : QString(),
                         QFileInfo(file.path).fileName(), file.stateText());
    }
    if (marks.size() > kNamed) text += QStringLiteral("외 %1건\r\n").arg(marks.size() - kNamed);
    return text + QStringLiteral("\r\n예: 다시 넣습니다. (업로드한 것은 홈택스에서 두 번 발급됩니다)\r\n"
                                 "아니요: 빼고 작성합니다.\r\n취소: 작성하지 않습니다.");
}

QHash<QString, QString> leaveOutReasons(const QList<HandOverMark>& marks) {
    QHash<QString, QString> reasons;
    for (const HandOverMark& mark : marks)
        reasons.insert(mark.taxCode, handedOverReason(mark));
    return reasons;
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
    EtaxExportPlan plan;
    plan.assumed = assumed;
    plan.record = &stores().dbTax;
    const auto marks = HandedOverInvoices(stores().dbTax, from, to);
    if (!marks) return std::nullopt;
    if (const auto handed = alreadyHandedOver(*invoices, *marks, folder, from, to); !handed.isEmpty()) {
        // No is the default: a second upload issues the invoice twice.
        const int answer =
            AskYesNoCancel(handedOverQuestion(*invoices, handed), kEtaxTitle, MbDefaultButton2);
        if (answer == AnsCancel) return std::nullopt;
        if (answer == AnsNo) plan.leaveOut = leaveOutReasons(handed);
    }
    const EtaxExport result = exportEtax(*invoices, folder, from, to, plan);
    if (hooks.showResult) {
        FrmEtaxReport report(result, folder, parent);
        report.onPrint(hooks.printList);
        report.onExport(hooks.exportList);
        report.exec();
    }
    return result;
}

std::optional<EtaxPeriod> ChooseEtaxPeriod(QWidget* parent, const EtaxPeriod& screenPeriod) {
    FrmEtaxPeriod form(screenPeriod, parent);
    form.onRecord([&form] {
        FrmEtaxHandOver record(&form);
        record.exec();
    });
    if (form.exec() != QDialog::Accepted) return std::nullopt;
    return form.chosen();
}

std::optional<EtaxExport> RunEtaxButton(QWidget* parent, const EtaxPeriod& screenPeriod,
                                        const EtaxRunHooks& hooks) {
    const auto period = hooks.choosePeriod ? hooks.choosePeriod(parent, screenPeriod)
                                           : ChooseEtaxPeriod(parent, screenPeriod);
    if (!period) return std::nullopt;
    return RunEtaxExport(parent, period->from, period->to, hooks);
}

} // namespace nb
