#include "quotation/EstimateRules.h"

#include "common/text/MoneyWords.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"

#include <cmath>
#include <limits>

namespace nb {

QString showNumber(double value) {
    if (value == 0) return QStringLiteral("0");
    if (value != std::trunc(value)) return FormatNumber(value, kMaskQtyPrice);
    return FormatNumber(value, kMaskAmount);
}

double plainNumber(const QString& text) {
    return NumberFromText(QString(text).remove(u',').trimmed());
}

LineAmount lineAmount(const QString& quantityText, const QString& priceText) {
    LineAmount line;
    line.price = qint32(CLng(float(plainNumber(priceText))));
    line.quantity = float(plainNumber(quantityText));
    line.amount = double(line.quantity) * double(line.price);
    line.storedAmount = qint32(CLng(line.amount));
    return line;
}

std::optional<qint32> linesTotal(const QList<TotalRow>& rows) {
    qint64 total = 0;
    for (const TotalRow& row : rows) {
        if (row.name.isEmpty()) break;
        const qint64 price = CLng(plainNumber(row.price));
        const qint64 quantity = CLng(plainNumber(row.quantity));
        total += price * quantity;
        if (total > std::numeric_limits<qint32>::max() || total < std::numeric_limits<qint32>::min())
            return std::nullopt;
    }
    return qint32(total);
}

QString totalBoxText(double total) {
    return (total == 0 ? QStringLiteral("0") : FormatNumber(total, kMaskAmount)) + u' ';
}

QString hanKumPanelText(const QString& totalBoxText) {
    return u' ' + GetHanKum(QString(totalBoxText).remove(u',').trimmed());
}

} // namespace nb
