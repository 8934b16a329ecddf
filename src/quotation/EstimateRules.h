#pragma once
// The arithmetic and number texts of the quotation screen, without a window: how a stored
// quantity or price is shown, a line's amount, the running total of the lines and the texts of
// the total and its words.

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <optional>

namespace nb {

// show-number: a value with a fraction through "#,###,###.##", a zero as "0", any other value
// through "#,###,###".
QString showNumber(double value);

// A line rewritten from its quantity and price texts (commas allowed): the price is read as a
// 32-bit float and rounded half to even to a whole number; the amount is quantity times that
// price in 64-bit floats, and is stored rounded half to even to a 32-bit integer. A price or an
// amount that a 32-bit integer cannot hold is the overflow: `fits` is false and the line is
// not to be stored.
struct LineAmount {
    float quantity = 0;
    qint32 price = 0;
    double amount = 0;
    qint32 storedAmount = 0;
    bool fits = true;
};
LineAmount lineAmount(const QString& quantityText, const QString& priceText);

// One grid row as the total reads it: the product name (column 1), quantity (4), price (5).
struct TotalRow {
    QString name;
    QString quantity;
    QString price;
};
// The total of the lines: rows from the first while the name is not empty, each adding the
// price rounded to a whole number times the quantity rounded to a whole number, in 32-bit
// integers (so 1.5 at 1,000 adds 2,000, not the line's 1,500). Nothing when a rounded value, a
// product or the running sum passes the 32-bit range: each step is 32 bits wide, so a product
// past it is the overflow even when later lines would bring the sum back.
std::optional<qint32> linesTotal(const QList<TotalRow>& rows);
// The same for lines held as numbers (a stored quotation's lines).
struct TotalLine {
    QString name;
    double quantity = 0;
    double price = 0;
};
std::optional<qint32> linesTotal(const QList<TotalLine>& lines);

// txtinput(3) after a recalculation or a deleted line: "#,###,###" or "0", and one blank.
QString totalBoxText(double total);
// pnlHanKum: one blank and the total in words ("" words for 0).
QString hanKumPanelText(const QString& totalBoxText);
// A box or cell text as a number: blanks and commas removed; 0 when it is no number.
double plainNumber(const QString& text);

} // namespace nb
