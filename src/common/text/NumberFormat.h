#pragma once
// The one number formatter of the program, driven by masks of "#" (a digit if there is one),
// "0" (always a digit), "," (groups of three) and "." (the decimal point); any other mask
// character is printed where it stands ("###-##-#####"). With an all-"#" mask a zero prints
// as nothing. A value with more decimals than the mask is rounded half away from zero on its
// decimal digits (15 significant digits for a float), never half to even.

#include <QString>

namespace nb {

// Masks used across the program.
inline const QString kMaskNumBox = QStringLiteral("###,##0");
inline const QString kMaskNumBoxNarrow = QStringLiteral("######");
inline const QString kMaskSum = QStringLiteral("#,##0");
inline const QString kMaskStatementPrint = QStringLiteral("#,###");
inline const QString kMaskAmount = QStringLiteral("#,###,###");
inline const QString kMaskAmount1 = QStringLiteral("#,###,###.0");
inline const QString kMaskAmount2 = QStringLiteral("#,###,###.00");
inline const QString kMaskQtyPrice = QStringLiteral("#,###,###.##");
inline const QString kMaskRecalc = QStringLiteral("#,###,##0");
inline const QString kMaskPlain = QStringLiteral("#####0");

QString FormatNumber(double value, const QString& mask);
QString FormatNumber(qint64 value, const QString& mask);
inline QString FormatNumber(int value, const QString& mask) {
    return FormatNumber(qint64(value), mask);
}
// A text through a mask the way the platform formats a text: numeric text (blanks, commas and
// a sign allowed) is formatted as its number, digit for digit, so long digit texts stay
// exact; any other text comes back unchanged.
QString FormatText(const QString& text, const QString& mask);

// The platform's test for numeric text: blanks around, a sign in front, digits with commas,
// one decimal point, an exponent. A lone "-" and a lone "." count as numeric too, so that a
// number box can be typed from its first key.
bool IsNumericText(const QString& text);
// The number in a numeric text (commas and blanks ignored); 0 and *ok false otherwise.
double NumberFromText(const QString& text, bool* ok = nullptr);

// The mask that follows a decimal setting: "0" or "#", with "#,##" in front when commas are
// wanted, and "." plus `decPlaces` zeros when above 0. (2, true, false) -> "#,###.00".
// A place count outside 16 bits is reported as the failure report of GetDecFormat and gives
// empty text.
QString GetDecFormat(int decPlaces, bool useComma, bool zeroFill);

} // namespace nb
