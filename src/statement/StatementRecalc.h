#pragma once
// A change of VAT mode applied to stored lines: each line's amount and VAT made anew from its
// quantity and price in the chosen mode (not by the line's own history), saved one field at a
// time so that the head's totals follow.

#include "statement/LineAmounts.h"
#include "statement/StatementStore.h"

namespace nb {

// The lines as they stand afterwards: a value changes only where its save succeeded; lines
// whose amount and VAT already agree are not touched.
QList<StatementLine> RecalculateLines(Database& dbBill, const QList<StatementLine>& lines, VatMode mode);

} // namespace nb
