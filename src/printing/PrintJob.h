#pragma once
// One print job in inches, as the printer object of the program: a font in force (name, size,
// bold, colour, transparency), a current position (CurrentX, CurrentY), text at a position or at
// a row and tab column, pictures, lines, pages. The job turns every call into a fixed position
// and hands it to a PrintSurface: a printer, a PDF file, a screen, or a recorder for tests.

#include "printing/PrintGrid.h"

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QString>
#include <memory>
#include <vector>

namespace nb {

// The font in force for a piece of text.
struct PrintFont {
    QString name = kBasePrintFont;
    double size = kBasePrintSize;
    bool bold = false;
    QColor color = Qt::black;
    bool transparent = true; // false: the text cell is painted white first
};

// One text as it lands on the page, (x, y) its top-left corner in inches.
struct PrintedText {
    QString text;
    PrintFont font;
    double x = 0;
    double y = 0;
    int page = 1;
};

struct PrintedLine {
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0; // inches
    QColor color = Qt::black;
    int width = 1; // DrawWidth: 1 is the thinnest line, 1/96 inch
    int page = 1;
};

struct PrintedPicture {
    QImage image;
    QRectF rect; // inches
    int page = 1;
};

// Where a job's output goes. Positions arrive in inches from the page origin.
class PrintSurface {
public:
    virtual ~PrintSurface() = default;
    virtual void drawText(const PrintedText& text) = 0;
    virtual void drawLine(const PrintedLine& line) = 0;
    virtual void drawPicture(const PrintedPicture& picture) = 0;
    virtual void newPage() = 0;
    // Ends the document; false when the output could not be completed.
    virtual bool finish() = 0;
};

// Width of a text in inches in the given font: by the column rule for the fixed-pitch print
// font, measured for a proportional one.
double printTextWidth(const QString& text, const PrintFont& font);

// One piece of a text as a surface draws it: its own text and its own x in inches. A text is
// cut at its spaces (no space glyph is ever drawn, and no width adds up across them) and around
// each backslash, which prints as the won sign of the Korean code page. The font's won sign is a
// full em wide; it is drawn condensed to the one column the code page gives it.
struct TextPiece {
    QString text;
    double x = 0;
    bool condensed = false; // drawn at half its width
};
std::vector<TextPiece> textPieces(const PrintedText& text);

class PrintJob {
public:
    explicit PrintJob(std::unique_ptr<PrintSurface> surface, QString printerName = QString(),
                      QString documentName = QString());
    ~PrintJob(); // ends the document when EndDoc was not called
    PrintJob(const PrintJob&) = delete;
    PrintJob& operator=(const PrintJob&) = delete;

    QString printerName() const { return m_printerName; }
    QString documentName() const { return m_documentName; }

    // Margins of the document in force: whole columns and (fractional) rows.
    void setMargins(int leftColumns, double topRows);
    void setMargins(const DocumentMargins& margins) { setMargins(margins.left, margins.top); }
    int leftMargin() const { return m_leftMargin; }
    double topMargin() const { return m_topMargin; }

    // The font in force.
    void setFontName(const QString& name) { m_font.name = name; }
    void setFontSize(double points) { m_font.size = points; }
    void setFontBold(bool bold) { m_font.bold = bold; }
    void setForeColor(const QColor& color) { m_font.color = color; }
    void setFontTransparent(bool transparent) { m_font.transparent = transparent; }
    void setFont(const PrintFont& font) { m_font = font; }
    const PrintFont& font() const { return m_font; }
    void setDrawWidth(int width) { m_drawWidth = width; }

    // CurrentX / CurrentY, in inches.
    double currentX() const { return m_x; }
    double currentY() const { return m_y; }
    void setCurrentX(double inches) { m_x = inches; }
    void setCurrentY(double inches) { m_y = inches; }
    // CurrentY of print row `row` under the top margin: (top + row) / 6.
    void setRow(double row);
    // CurrentX of "Tab n" of the font in force, the left margin included.
    void setTab(double tab);
    double tabX(double tab) const;
    double rowY(double row) const;

    // Print: the text at (CurrentX, CurrentY). With newLine, CurrentX goes back to 0 and CurrentY
    // down one line of the font; without, CurrentX moves past the text ("Print text;").
    void print(const QString& text, bool newLine = true);
    // The text at (x, y) inches; CurrentX/CurrentY end up past it, on the same line.
    void printAt(double x, double y, const QString& text);
    // The text at print row `row`, Tab `tab` (left and top margins applied).
    void printAtTab(double row, double tab, const QString& text);
    // The text at Tab `tab` on the current row (CurrentY).
    void printTab(double tab, const QString& text);

    // PaintPicture into a rectangle given in inches.
    void paintPicture(const QImage& image, double x, double y, double width, double height);
    // Line from (x1, y1) to (x2, y2), inches, in the given colour (black when invalid).
    void line(double x1, double y1, double x2, double y2, const QColor& color = QColor());
    // Box outline through four lines.
    void box(double x1, double y1, double x2, double y2, const QColor& color = QColor());

    void newPage();
    // EndDoc: ends the document; false when the output failed. Later calls do nothing.
    bool endDoc();
    int page() const { return m_page; }
    bool ended() const { return m_ended; }

    // Height of one printed line of the font in force, inches (what a bare Print moves down).
    double lineHeight() const;
    // Width of a text in the font in force, inches, by the column rule.
    double textWidth(const QString& text) const;

private:
    std::unique_ptr<PrintSurface> m_surface;
    QString m_printerName;
    QString m_documentName;
    PrintFont m_font;
    int m_leftMargin = 0;
    double m_topMargin = 0;
    int m_drawWidth = 1;
    double m_x = 0;
    double m_y = 0;
    int m_page = 1;
    bool m_ended = false;
    bool m_ok = true;
};

} // namespace nb
