#pragma once
// Money and quantity boxes: the text is kept right aligned by blanks in front of it and shows
// thousands commas, so whoever reads such a box trims it and removes the commas first
// (NumBoxValue / StripNumText).

#include <QString>

class QLineEdit;

namespace nb {

// Rewrites the box in place: non-numeric text becomes "0"; otherwise the number is grouped
// ("###,##0", unless it holds a "." or is a lone "-") and blanks are put in front so that it
// ends near the right edge; when the commas don't fit, the plain digits ("######") are tried.
// The caret goes to the end. Widths are measured in the box's own font.
void SetNumBoxText(QLineEdit* box);
// Runs SetNumBoxText on every change of the box, typed or set by the program.
void AttachNumBox(QLineEdit* box);

// The number of blanks SetNumBoxText puts before `text` in a box `boxWidth` wide, given the
// width of the text and of one blank in the same unit: Int((boxWidth - textWidth) / blank) - 1.
int NumBoxPadCount(int boxWidth, int textWidth, int blankWidth);
// The width available to text inside the box, in pixels.
int NumBoxTextRoom(const QLineEdit* box);

// The box text trimmed and without commas ("  1,234" -> "1234").
QString StripNumText(const QString& text);
// The number in a box text; 0 for empty or non-numeric text.
double NumBoxValue(const QString& text);

} // namespace nb
