#pragma once
// The road of the electronic invoice button: the invoices of the period, one question about
// 영수/청구 when older invoices do not say, the folder, the files, and the result window.

#include "management/etax/EtaxWorkbook.h"

#include <functional>
#include <optional>

class QWidget;

namespace nb {

class Grid;

inline const QString kEtaxTitle = QStringLiteral("전자세금계산서 엑셀");

// How many of the invoices do not say whether they are 영수 or 청구.
int unknownReceipts(const QList<EtaxInvoice>& invoices);

// Asks once which kind the invoices without one take: 예 영수(01), 아니요 청구(02); nothing
// when the operator cancels.
std::optional<EtaxReceipt> AskAssumedReceipt(int unknownCount);

struct EtaxRunHooks {
    std::function<QString(QWidget* parent)> chooseFolder; // empty text: the operator cancelled
    std::function<void(Grid*)> printList;                 // the result window's print button
    std::function<void(Grid*)> exportList;                // its export button
    bool showResult = true;                               // tests read the result instead
};

// The whole road; the result when files were attempted, nothing when it stopped before.
std::optional<EtaxExport> RunEtaxExport(QWidget* parent, const QString& from, const QString& to,
                                        const EtaxRunHooks& hooks);

} // namespace nb
