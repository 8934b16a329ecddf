#include "printing/PrintJob.h"

#include <QFont>
#include <QFontMetricsF>

namespace nb {
namespace {

// Line height of a bare Print: the font's size plus a fifth, as the printer object leaves
// between lines.
constexpr double kLineSpacing = 1.2;

} // namespace

// A proportional font is measured at a large pixel size so that hinting does not round it,
// then scaled to the size in points.
double printTextWidth(const QString& text, const PrintFont& font) {
    // A document measures thousands of texts in a font or two: the last answer is kept.
    static thread_local QString lastName;
    static thread_local bool lastFixed = false;
    if (font.name != lastName) {
        lastFixed = isFixedPitchPrintFont(font.name);
        lastName = font.name;
    }
    if (lastFixed) return printColumns(text) * printColumnWidth(font.size);
    constexpr int kMeasurePixels = 1000;
    QFont qfont(printFontFamily(font.name));
    qfont.setPixelSize(kMeasurePixels);
    qfont.setBold(font.bold);
    const double ems = QFontMetricsF(qfont).horizontalAdvance(text) / kMeasurePixels;
    return ems * font.size / kPointsPerInch;
}

std::vector<TextPiece> textPieces(const PrintedText& text) {
    static const QChar kWonSign(0x20A9);
    std::vector<TextPiece> pieces;
    const QString& source = text.text;
    qsizetype start = -1;
    auto close = [&](qsizetype end) {
        if (start < 0) return;
        const double x = text.x + printTextWidth(source.first(start), text.font);
        pieces.push_back(TextPiece{source.mid(start, end - start), x});
        start = -1;
    };
    for (qsizetype i = 0; i < source.size(); ++i) {
        const QChar ch = source.at(i);
        if (ch == u' ') {
            close(i);
        } else if (ch == u'\\') {
            close(i);
            start = i;
            close(i + 1);
            pieces.back().text = QString(kWonSign);
            pieces.back().condensed = true;
        } else if (start < 0) {
            start = i;
        }
    }
    close(source.size());
    return pieces;
}

PrintJob::PrintJob(std::unique_ptr<PrintSurface> surface, QString printerName, QString documentName)
    : m_surface(std::move(surface)), m_printerName(std::move(printerName)),
      m_documentName(std::move(documentName)) {}

PrintJob::~PrintJob() {
    endDoc();
}

void PrintJob::setMargins(int leftColumns, double topRows) {
    m_leftMargin = leftColumns;
    m_topMargin = topRows;
}

double PrintJob::rowY(double row) const {
    return printRowY(m_topMargin, row);
}

double PrintJob::tabX(double tab) const {
    return printTabX(m_leftMargin, tab, m_font.size);
}

void PrintJob::setRow(double row) {
    m_y = rowY(row);
}

void PrintJob::setTab(double tab) {
    m_x = tabX(tab);
}

double PrintJob::lineHeight() const {
    return m_font.size * kLineSpacing / kPointsPerInch;
}

double PrintJob::textWidth(const QString& text) const {
    return printTextWidth(text, m_font);
}

void PrintJob::print(const QString& text, bool newLine) {
    if (m_ended) return;
    if (!text.isEmpty()) m_surface->drawText(PrintedText{text, m_font, m_x, m_y, m_page});
    if (newLine) {
        m_x = 0;
        m_y += lineHeight();
    } else {
        m_x += textWidth(text);
    }
}

void PrintJob::printAt(double x, double y, const QString& text) {
    m_x = x;
    m_y = y;
    print(text, false);
}

void PrintJob::printAtTab(double row, double tab, const QString& text) {
    setRow(row);
    printTab(tab, text);
}

void PrintJob::printTab(double tab, const QString& text) {
    setTab(tab);
    print(text, false);
}

void PrintJob::paintPicture(const QImage& image, double x, double y, double width, double height) {
    if (m_ended || image.isNull()) return;
    m_surface->drawPicture(PrintedPicture{image, QRectF(x, y, width, height), m_page});
}

void PrintJob::line(double x1, double y1, double x2, double y2, const QColor& color) {
    if (m_ended) return;
    const QColor ink = color.isValid() ? color : QColor(Qt::black);
    m_surface->drawLine(PrintedLine{x1, y1, x2, y2, ink, m_drawWidth, m_page});
    m_x = x2;
    m_y = y2;
}

void PrintJob::box(double x1, double y1, double x2, double y2, const QColor& color) {
    line(x1, y1, x2, y1, color);
    line(x2, y1, x2, y2, color);
    line(x2, y2, x1, y2, color);
    line(x1, y2, x1, y1, color);
}

void PrintJob::newPage() {
    if (m_ended) return;
    m_surface->newPage();
    ++m_page;
    m_x = 0;
    m_y = 0;
}

bool PrintJob::endDoc() {
    if (m_ended) return m_ok;
    m_ended = true;
    m_ok = m_surface->finish();
    return m_ok;
}

} // namespace nb
