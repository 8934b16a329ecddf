#pragma once
// The grid's own number text: parsing what the operator typed and showing a value with its
// decimal places and thousands separator. Kept small and private to the grid.

#include "common/grid/GridTypes.h"

#include <QString>
#include <optional>

namespace nb::gridnum {

// The number in a text with blanks and commas allowed; nothing for empty or foreign text.
std::optional<double> parse(const QString& text);
// Half away from zero at the given places.
double roundAt(double value, int decimals);
// "-1,234.50" for -1234.5 with two places and the separator.
QString format(double value, int decimals, bool separator);
// The value as the operator edits it: no separator, no trailing zeros ("1234.5").
QString plain(double value, int decimals);
// Whether a partly typed text can still become a number within the format.
bool acceptableWhileTyping(const QString& text, const CellFormat& format);

} // namespace nb::gridnum
