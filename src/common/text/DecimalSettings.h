#pragma once
// The two decimal settings: places of quantities ("chk소수점1") and of unit prices
// ("chk소수점2"), 0, 1 or 2, stored as decimal text. The rules of the screen frmsosu that
// sets them live here, so they can be checked without the window.

#include <QString>
#include <array>

namespace nb {

inline const QString kDecimalQtyKey = QStringLiteral("chk소수점1");
inline const QString kDecimalPriceKey = QStringLiteral("chk소수점2");

struct DecimalSettings {
    int qty = 0;
    int price = 0;
};

// The stored text as a number of places: an integer (a fraction rounds half to even, as the
// platform's integer conversion does); text that is no number counts as 2.
int DecimalPlacesFromText(const QString& text);
// Both keys read afresh, 0 when a key is absent.
DecimalSettings ReadDecimalSettings();
// Into the shared state (app().DecimalQty, app().DecimalPrice).
void ApplyDecimalSettings(const DecimalSettings& values);
// Into the shared state and both keys.
void SaveDecimalSettings(const DecimalSettings& values);

// The six options of frmsosu, indexes of the control array gubun: quantity 0 (none), 1 (one
// place), 2 (two places); unit price 4 (none), 3 (one place), 5 (two places).
using DecimalOptions = std::array<bool, 6>;
// The option a value switches on; any value other than 0 or 1 names the two-places option.
int QtyOptionIndex(int places);
int PriceOptionIndex(int places);
// The options that a pair of settings switches on.
DecimalOptions OptionsFor(const DecimalSettings& values);
// The values the switched-on options stand for: 0 if the none option is on, else 1 if the
// one-place option is on, else 2.
DecimalSettings SettingsFromOptions(const DecimalOptions& on);

} // namespace nb
