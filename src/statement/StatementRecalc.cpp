#include "statement/StatementRecalc.h"

#include "common/text/Rounding.h"

namespace nb {

QList<StatementLine> RecalculateLines(Database& dbBill, const QList<StatementLine>& lines, VatMode mode) {
    QList<StatementLine> result = lines;
    for (StatementLine& line : result) {
        const LineAmounts wanted = amountsInMode(RoundAt(line.quant * line.price, 0), mode);
        if (wanted.amount == line.amount && wanted.vat == line.vat) continue;
        if (DetailUpdate(dbBill, line.billNo, line.billSeq, QStringLiteral("amount"), wanted.amount).ok)
            line.amount = wanted.amount;
        if (DetailUpdate(dbBill, line.billNo, line.billSeq, QStringLiteral("vat"), wanted.vat).ok)
            line.vat = wanted.vat;
    }
    return result;
}

} // namespace nb
