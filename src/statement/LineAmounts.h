#pragma once
// The arithmetic of a statement line: how amount and VAT follow quantity and price, by the
// VAT mode the line already has (read from its stored amount and VAT) or, for a line with no
// amount yet, by the mode chosen on the screen; and the prompt of a change of VAT mode.

#include "invoice/InvoiceAmounts.h"

#include <QString>
#include <optional>

namespace nb {

// The VAT modes of gubun are those of the invoice: VAT on top, VAT included, no VAT.

struct LineAmounts {
    double amount = 0;
    double vat = 0;
};

// Amount and VAT of a line total (quantity × price, rounded to whole won) in a mode: VAT added
// on top (a tenth, cut towards zero), carved out of the total, or none.
LineAmounts amountsInMode(double total, VatMode mode);
// The mode a stored line was written in: none when its amount is 0 (no history); carved out
// (included, or exempt without VAT) when amount + VAT is not above the old total, else added.
std::optional<VatMode> modeOfLine(double amount, double vat, double oldQuant, double oldPrice);

// What LineAmountCalc is given: the quantity and price before the edit and the row as it is now.
struct LineBeforeAfter {
    double oldQuant = 0;
    double oldPrice = 0;
    double newQuant = 0;
    double newPrice = 0;
    double amount = 0; // column 5 as shown
    double vat = 0;    // column 6 as shown
};
// The new amount and VAT of a row; nothing when neither quantity nor price changed.
std::optional<LineAmounts> LineAmountCalc(const LineBeforeAfter& line, VatMode screenMode);

// The box text of a change of VAT mode (yes: all lines, no: the chosen line, cancel: none).
QString vatModeChangeQuestion();
// The box when the chosen row holds no line.
QString noLineToRecalculateText();

} // namespace nb
