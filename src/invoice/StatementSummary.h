#pragma once
// One invoice line made from the transaction statements of a customer in a period: the name of
// one statement line, how many lines there were and their gross sum (supply plus VAT). Nothing
// is stored or marked: the same period can be summed again.

#include "invoice/InvoiceAmounts.h"

#include <QString>
#include <optional>

namespace nb {

class Database;

struct StatementSummary {
    QString name;   // PName of whichever line of the group the store gives first
    int count = 0;  // statement lines in the period
    double sum = 0; // Sum(Amount + VAT)
};

// The customer's statement lines with BillDate between the two dates; nothing when there are
// none (or the read failed).
std::optional<StatementSummary> SummarizeStatements(Database& dbBill, const QString& cCode,
                                                    const QString& from, const QString& to);
// pummok(0): the name, with " 외 ", count - 1 and "건" when there were several lines.
QString summaryItemText(const StatementSummary& summary);
// The summary onto line 0 after clear_input: trade date, item, the amounts of the VAT mode,
// LastSupply = sum, quantity and price "0" (a typed amount), SumLines, CurLine 1.
void ApplyStatementSummary(InvoiceSheet& sheet, const StatementSummary& summary, const QString& writeMmDd);

} // namespace nb
