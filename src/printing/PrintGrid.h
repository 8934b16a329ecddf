#pragma once
// The print surface is a grid of text: six rows to the inch, and columns as wide as half the
// size of the fixed-pitch Korean print font (a Latin character is half an em, a Hangul one a
// full em). Margins are counted in those rows and columns, per document.

#include <QString>
#include <QtGlobal>

namespace nb {

// The base font of every printed document and its size in points.
inline const QString kBasePrintFont = QStringLiteral("굴림체");
inline constexpr double kBasePrintSize = 9.75;
inline constexpr double kRowsPerInch = 6.0;
inline constexpr double kPointsPerInch = 72.0;

// Width of one text column, in inches, of the print font at the given size in points.
double printColumnWidth(double fontSizePt);
// Y of print row `row` (may be fractional), in inches: (topMargin + row) / 6.
double printRowY(double topMargin, double row);
// X of "Tab n", in inches: the leftmost text column is 1 at x = 0, and the left margin adds
// whole columns: (leftMargin + tab - 1) columns of the font size in force.
double printTabX(int leftMargin, double tab, double fontSizePt);

// Columns a text takes on paper: 1 for an ASCII character, 2 for any other (Hangul, Hanja,
// full-width signs), as the Korean code page counts bytes.
int printColumns(QStringView text);
int printColumns(QChar ch);

// The installed family that prints a requested font name. The Korean fixed-pitch names
// ("굴림체", "돋움체", ...) fall back to NanumGothicCoding, the proportional ones to NanumGothic.
QString printFontFamily(const QString& requestedName);
// True when the font keeps the column rule (every character one or two columns wide).
bool isFixedPitchPrintFont(const QString& requestedName);

// The margins of one document, as the print reads them: the left margin is a 16-bit whole
// number of columns, the top margin a floating number of rows.
struct DocumentMargins {
    qint16 left = 0;
    double top = 0;
};
// The settings "LeftMargin" / "TopMargin" under application "세금계산서", section `document`.
DocumentMargins readDocumentMargins(const QString& document);
// Text to 16-bit integer the way the print converts it: rounds half to even, clamps to range;
// text that is not a number counts as 0.
qint16 marginColumnsFromText(const QString& text);
// Text to a floating number of rows; text that is not a number counts as 0.
double marginRowsFromText(const QString& text);

} // namespace nb
