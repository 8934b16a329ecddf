#pragma once
// The road of the electronic invoice button: the period (the month just ended offered first),
// the invoices of the period, one question about 영수/청구 when older invoices do not say, the
// folder, one question naming the invoices already handed over, the files with their record,
// and the result window.

#include "management/etax/EtaxPeriod.h"
#include "management/etax/EtaxWorkbook.h"
#include "management/etax/HandOverRecord.h"

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

// The invoices that would go on the sheet and were handed over already, each with the files
// that hold it, leaving aside the files this export replaces (not uploaded, of the same name in
// the same folder: they are overwritten or removed).
QList<HandOverMark> alreadyHandedOver(const QList<EtaxInvoice>& invoices,
                                      const QHash<QString, HandOverMark>& marks, const QString& folder,
                                      const QString& from, const QString& to);
// The reason an invoice handed over already stays off the sheet: its first file and state.
QString handedOverReason(const HandOverMark& mark);
// The question naming them (ten at most, then how many more).
QString handedOverQuestion(const QList<EtaxInvoice>& invoices, const QList<HandOverMark>& marks);
// The reasons of the marks, for a plan that leaves them out.
QHash<QString, QString> leaveOutReasons(const QList<HandOverMark>& marks);

struct EtaxRunHooks {
    std::function<QString(QWidget* parent)> chooseFolder; // empty text: the operator cancelled
    std::function<void(Grid*)> printList;                 // the result window's print button
    std::function<void(Grid*)> exportList;                // its export button
    // The period window; nothing when the operator cancelled (tests answer it themselves).
    std::function<std::optional<EtaxPeriod>(QWidget* parent, const EtaxPeriod& screenPeriod)> choosePeriod;
    bool showResult = true; // tests read the result instead
};

// The whole road for a period; the result when files were attempted, nothing when it stopped
// before.
std::optional<EtaxExport> RunEtaxExport(QWidget* parent, const QString& from, const QString& to,
                                        const EtaxRunHooks& hooks);
// The button: the period window first, then the road for the period chosen.
std::optional<EtaxExport> RunEtaxButton(QWidget* parent, const EtaxPeriod& screenPeriod,
                                        const EtaxRunHooks& hooks);
// The period window with its record button, run modally.
std::optional<EtaxPeriod> ChooseEtaxPeriod(QWidget* parent, const EtaxPeriod& screenPeriod);

} // namespace nb
