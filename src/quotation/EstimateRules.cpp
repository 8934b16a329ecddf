#include "quotation/EstimateRules.h"

#include "common/text/MoneyWords.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "common/text/StoredNumber.h"

#include <cmath>

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
    const double price = RoundHalfEven(double(float(plainNumber(priceText))));
    line.quantity = float(plainNumber(quantityText));
    line.amount = double(line.quantity) * price;
    const double stored = RoundHalfEven(line.amount);
    line.fits = fitsColumn(price, NumberColumn::Long) && fitsColumn(stored, NumberColumn::Long);
    if (!line.fits) return line;
    line.price = qint32(price);
    line.storedAmount = qint32(stored);
    return line;
}

std::optional<qint32> linesTotal(const QList<TotalLine>& lines) {
    const auto long32 = [](double value) { return fitsColumn(value, NumberColumn::Long); };
    double total = 0; // every step is a whole number well inside a double's exact range
    for (const TotalLine& line : lines) {
        if (line.name.isEmpty()) break;
        const double price = RoundHalfEven(line.price);
        const double quantity = RoundHalfEven(line.quantity);
        if (!long32(price) || !long32(quantity)) return std::nullopt;
        const double product = price * quantity;
        if (!long32(product)) return std::nullopt;
        total += product;
        if (!long32(total)) return std::nullopt;
    }
    return qint32(total);
}

std::optional<qint32> linesTotal(const QList<TotalRow>& rows) {
    QList<TotalLine> lines;
    for (const TotalRow& row : rows)
        lines.append({row.name, plainNumber(row.quantity), plainNumber(row.price)});
    return linesTotal(lines);
}

QString totalBoxText(double total) {
    return (total == 0 ? QStringLiteral("0") : FormatNumber(total, kMaskAmount)) + u' ';
}

QString hanKumPanelText(const QString& totalBoxText) {
    return u' ' + GetHanKum(QString(totalBoxText).remove(u',').trimmed());
}

} // namespace nb
