#pragma once
// The one rule for a number that enters the store: it is finite and its column can hold it.
// Amounts are kept to whole-number precision of a double (below 10^15), so that sums and
// differences of stored amounts stay exact and a head's totals always equal its lines. A value
// that does not fit is refused with the overflow report, and the cell keeps its old text.

#include <QString>

namespace nb {

// The kinds of number column the stores hold.
enum class NumberColumn {
    Amount, // money and quantities in a double column (REAL)
    Single, // a single-precision column (the quotation's quantity and price)
    Long,   // a 32-bit whole-number column
};

// The largest magnitude an amount column takes: fifteen digits.
inline constexpr double kMaxStoredAmount = 999'999'999'999'999.0;

// True when value is finite and inside the column's range.
bool fitsColumn(double value, NumberColumn column = NumberColumn::Amount);
// Where the procedure of an overflow report lives: a module or a form.
enum class ReportOwner { Module, Form };
// The same, and on a refusal the overflow report naming the procedure and its owner.
bool checkStoredNumber(double value, NumberColumn column, const QString& procedure, const QString& owner,
                       ReportOwner kind = ReportOwner::Module);
// The overflow report alone ("Error 6 (Overflow) in procedure ... of Module ...").
void ShowOverflow(const QString& procedure, const QString& owner, ReportOwner kind = ReportOwner::Module);

} // namespace nb
