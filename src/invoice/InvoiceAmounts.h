#pragma once
// The arithmetic of a tax invoice: five lines of text as the screen holds them, the VAT mode,
// and the state the keys leave behind (CurLine, LastSupply, LastTax). Every rule works on an
// InvoiceSheet, so the screen copies its boxes in, calls a rule and copies the texts back.
//
// Three number rules hold throughout and are kept as they are:
//  - quantity and unit price are parsed to single-precision floats before they are multiplied
//    (123,456,789 counts as 123,456,792);
//  - the product of the two singles is carried at full double width;
//  - every amount is rounded to the nearest whole number, a tie to the even neighbour, into a
//    32-bit signed integer; a result outside that range is an overflow.

#include "core/RuntimeError.h"
#include <QString>
#include <array>
#include <optional>
#include <utility>

namespace nb {

// The option group vat_gubun: index 0 "VAT별도", 1 "VAT포함" (on at start), 2 "면세".
enum class VatMode { Separate = 0, Included = 1, Exempt = 2 };
QString vatModeCaption(VatMode mode);

inline constexpr int kInvoiceLines = 5;
inline constexpr int kLastInvoiceLine = kInvoiceLines - 1;

// One item line: the texts of ddyy, pummok, dan_num, su_num, gibon_num, gonggum, tax_num.
struct InvoiceLine {
    QString ddyy;
    QString pummok;
    QString dan_num;
    QString su_num;
    QString gibon_num;
    QString gonggum;
    QString tax_num;

    void clear() { *this = InvoiceLine(); }
    // Printed, and stored by a save: both the trade date and the tax are there.
    bool isComplete() const { return !ddyy.isEmpty() && !tax_num.isEmpty(); }
    // A typed amount: quantity and unit price both read "0".
    bool isTypedAmount() const { return su_num.trimmed() == u"0" && gibon_num.trimmed() == u"0"; }
};

struct InvoiceSheet {
    std::array<InvoiceLine, kInvoiceLines> lines;
    VatMode vat = VatMode::Included;
    int curLine = 0;       // CurLine: the highest line that may be entered
    double lastSupply = 0; // LastSupply
    double lastTax = 0;    // LastTax
    QString sumNum;        // Sum_num, plain digits (its box formats them)
    QString gongCaption;   // caption of gong_num: the digit cells of supply and tax

    InvoiceLine& line(int i) { return lines.at(size_t(i)); }
    const InvoiceLine& line(int i) const { return lines.at(size_t(i)); }
    void raiseCurLine() { curLine = qMin(curLine + 1, kLastInvoiceLine); }
    // clear_input's share of the arithmetic: the lines, Sum_num and the caption.
    void clearLines();
};

// A run-time error of the arithmetic: 13 "Type mismatch" for text that is no number, 6
// "Overflow" for a result beyond 32 bits.
class InvoiceArithmeticError : public RuntimeError {
public:
    using RuntimeError::RuntimeError;
};

// ---- the number rules -------------------------------------------------------------------
// The number in a box text (blanks and commas allowed); throws 13 for empty or foreign text.
double parseAmountText(const QString& text);
// The text as a single-precision float (throws 13).
float parseSingle(const QString& text);
// Half to even into 32 bits (throws 6 beyond the range).
qint32 roundToLong(double value);
// integer(text): the text's number through roundToLong.
qint32 textToLong(const QString& text);
// A value written as plain digits: no grouping, no exponent, no trailing zeros.
QString plainNumberText(double value);

// ---- the rules of a line ----------------------------------------------------------------
// Line i from quantity and unit price; nothing at all (no SumLines) unless both are filled.
void CalcLineAmount(InvoiceSheet& sheet, int i);
// Line i from LastSupply; with taxOnly only SumLines runs.
void CalcLineFromSupply(InvoiceSheet& sheet, int i, bool taxOnly);
// The totals of all five lines into Sum_num and the digit cells.
void SumLines(InvoiceSheet& sheet);
// The cells of a sum: `cells` minus the digit count times " *", then " " and each character.
QString digitCellsText(qint32 sum, int cells);

// Enter (or an arrow) in su_num(i): the line is computed when the unit price is filled.
void QuantityEntered(InvoiceSheet& sheet, int i);
// Enter (or an arrow) in gibon_num(i): the line is computed, and LastSupply takes gonggum(i).
void PriceEntered(InvoiceSheet& sheet, int i);
// Enter, Left, Up, Right or Down in gonggum(i). False when the text is empty: the key then
// does nothing. Otherwise a figure that differs from LastSupply splits the line again, and
// CurLine goes up by one (not above 4).
bool SupplyTyped(InvoiceSheet& sheet, int i);
// Enter or an arrow in tax_num(i). False when empty; otherwise a figure that differs from
// LastTax runs SumLines, and CurLine goes up by one (not above 4). The typed tax stays.
bool TaxTyped(InvoiceSheet& sheet, int i);
// A click on an option of vat_gubun: lines 0 to CurLine computed again in the new mode.
void ChangeVatMode(InvoiceSheet& sheet, VatMode mode);
// A product picked for line i at its stored sale price: the split of the price, then quantity
// "1", the price as unit price, and CalcLineAmount.
void ApplyPickedProduct(InvoiceSheet& sheet, int i, double salePrice);
// The amounts the pick writes first, before CalcLineAmount replaces them (done in double).
std::pair<QString, QString> pickedProductSplit(VatMode mode, double salePrice);

// DeleteLine(i): lines below move up, line 4 is emptied; CurLine goes down by one, or when it
// is 0 ddyy(0) takes `writeMmDd` again; then SumLines.
void DeleteLine(InvoiceSheet& sheet, int i, const QString& writeMmDd);

// The trade date left in ddyy: four characters get a "-" in the middle; the result must make
// a date behind the writing year. Nothing when it does not ("날짜가 올바르지 않습니다.").
std::optional<QString> checkedTradeDate(const QString& writeYear, const QString& text);

} // namespace nb
