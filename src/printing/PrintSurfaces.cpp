#include "printing/PrintSurfaces.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <cmath>

namespace nb {
namespace {

constexpr int kPdfResolution = 1200;
constexpr double kRowTolerance = 1e-6;
constexpr int kHalfWidthStretch = 50;  // percent of the normal width
constexpr double kWholeDotsFrom = 600; // dots per inch

QFont painterFont(const PrintFont& font) {
    QFont qfont(printFontFamily(font.name));
    qfont.setPointSizeF(font.size);
    qfont.setBold(font.bold);
    qfont.setHintingPreference(QFont::PreferNoHinting);
    return qfont;
}

} // namespace

PainterSurface::PainterSurface(QPainter& painter, double dotsPerInch)
    : m_painter(painter), m_dpi(dotsPerInch) {}

// The painter's font of a print font, with its condensed twin and its ascent on this device: each
// is made once, as a form goes back and forth between a few fonts on every page.
PainterSurface::DeviceFont& PainterSurface::deviceFont(const PrintFont& font) {
    const auto same = [&font](const DeviceFont& f) {
        return f.size == font.size && f.bold == font.bold && f.name == font.name;
    };
    if (m_font && same(*m_font)) return *m_font;
    for (const std::unique_ptr<DeviceFont>& f : m_fonts)
        if (same(*f)) return *(m_font = f.get());
    auto made = std::make_unique<DeviceFont>();
    made->name = font.name;
    made->size = font.size;
    made->bold = font.bold;
    made->font = painterFont(font);
    made->condensed = made->font;
    made->condensed.setStretch(kHalfWidthStretch);
    made->ascent = QFontMetricsF(made->font, m_painter.device()).ascent();
    made->condensedAscent = QFontMetricsF(made->condensed, m_painter.device()).ascent();
    made->raw = QRawFont::fromFont(QFont(made->font, m_painter.device()));
    m_fonts.push_back(std::move(made));
    return *(m_font = m_fonts.back().get());
}

// A print is made of a few hundred different characters drawn again and again: each is looked
// up in the font once, and a piece goes to the device as its glyphs, not as text shaped anew.
bool PainterSurface::addGlyphs(DeviceFont& font, const QString& text, const QPointF& baseline) {
    if (!font.raw.isValid()) return false;
    const qsizetype start = m_runGlyphs.size();
    double x = baseline.x();
    for (const QChar ch : text) {
        auto found = font.glyphs.constFind(ch.unicode());
        if (found == font.glyphs.constEnd()) {
            const QList<quint32> index =
                ch.isSurrogate() ? QList<quint32>() : font.raw.glyphIndexesForString(QString(ch));
            if (index.size() != 1 || index.first() == 0) {
                m_runGlyphs.resize(start);
                m_runPositions.resize(start);
                return false;
            }
            const QList<QPointF> advance = font.raw.advancesForGlyphIndexes(index);
            found = font.glyphs.insert(ch.unicode(), Glyph{index.first(), advance.value(0).x()});
        }
        m_runGlyphs.append(found->index);
        m_runPositions.append(onDevice(QPointF(x, baseline.y())));
        x += found->advance;
    }
    return true;
}

// On paper a glyph goes to the nearest dot of the device (1/1200 inch on a PDF page): the file then
// says each glyph's place in whole dots, shorter to write and to pack; on a screen, where a dot is
// a visible step, it stays where its advances put it.
QPointF PainterSurface::onDevice(const QPointF& point) const {
    if (m_dpi < kWholeDotsFrom) return point;
    return QPointF(std::round(point.x()), std::round(point.y()));
}

void PainterSurface::flushText() {
    if (m_runGlyphs.isEmpty()) return;
    if (m_painter.pen().color() != m_runColor || m_painter.pen().style() != Qt::SolidLine)
        m_painter.setPen(m_runColor);
    QGlyphRun run;
    run.setRawFont(m_runFont->raw);
    run.setGlyphIndexes(m_runGlyphs);
    run.setPositions(m_runPositions);
    m_painter.drawGlyphRun(QPointF(0, 0), run);
    m_runGlyphs.clear();
    m_runPositions.clear();
}

void PainterSurface::drawShaped(const QFont& font, const QString& text, const QPointF& baseline) {
    flushText();
    if (m_painter.pen().color() != m_runColor || m_painter.pen().style() != Qt::SolidLine)
        m_painter.setPen(m_runColor);
    if (m_painter.font() != font) m_painter.setFont(font);
    m_painter.drawText(baseline, text);
}

// Each piece is drawn on its baseline, the font's ascent under the text's top: what a
// top-aligned text in a rectangle gives, without laying the text out in one.
void PainterSurface::drawText(const PrintedText& text) {
    DeviceFont& font = deviceFont(text.font);
    if (!text.font.transparent) {
        flushText();
        const double height = text.font.size * 1.2 / kPointsPerInch;
        m_painter.fillRect(QRectF(toDevice(text.x), toDevice(text.y),
                                  toDevice(printTextWidth(text.text, text.font)), toDevice(height)),
                           Qt::white);
    }
    if (m_runFont != &font || m_runColor != text.font.color) {
        flushText();
        m_runFont = &font;
        m_runColor = text.font.color;
    }
    for (const TextPiece& piece : textPieces(text)) {
        const double ascent = piece.condensed ? font.condensedAscent : font.ascent;
        const QPointF baseline(toDevice(piece.x), toDevice(text.y) + ascent);
        if (piece.condensed)
            drawShaped(font.condensed, piece.text, baseline);
        else if (!addGlyphs(font, piece.text, baseline))
            drawShaped(font.font, piece.text, baseline);
    }
}

void PainterSurface::newPage() {
    flushText();
    startNextPage();
}

bool PainterSurface::finish() {
    if (!m_painter.isActive()) return endDocument();
    flushText();
    return endDocument();
}

// A ruled form draws its lines by the thousand in one pen: the pen is set when it changes, and
// the text after a line sets its own colour again.
void PainterSurface::drawLine(const PrintedLine& line) {
    const double width = toDevice(line.width / 96.0);
    const QPen& current = m_painter.pen();
    if (current.color() != line.color || current.widthF() != width || current.style() != Qt::SolidLine) {
        QPen pen(line.color);
        pen.setWidthF(width);
        m_painter.setPen(pen);
    }
    m_painter.drawLine(QPointF(toDevice(line.x1), toDevice(line.y1)),
                       QPointF(toDevice(line.x2), toDevice(line.y2)));
}

void PainterSurface::drawPicture(const PrintedPicture& picture) {
    flushText();
    const QRectF& r = picture.rect;
    m_painter.drawImage(QRectF(toDevice(r.x()), toDevice(r.y()), toDevice(r.width()), toDevice(r.height())),
                        picture.image);
}

PagedDeviceSurface::PagedDeviceSurface(std::unique_ptr<QPagedPaintDevice> device,
                                       std::unique_ptr<QPainter> painter)
    : PainterSurface(*painter, device->logicalDpiX()), m_device(std::move(device)),
      m_painter(std::move(painter)) {}

PagedDeviceSurface::~PagedDeviceSurface() {
    finish();
}

void PagedDeviceSurface::startNextPage() {
    if (m_painter->isActive()) m_device->newPage();
}

bool PagedDeviceSurface::endDocument() {
    if (!m_painter->isActive()) return true;
    return m_painter->end();
}

std::unique_ptr<PrintSurface> makePdfSurface(const QString& path) {
    auto writer = std::make_unique<QPdfWriter>(path);
    writer->setResolution(kPdfResolution);
    writer->setPageLayout(
        QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    writer->setCreator(QStringLiteral("누벨라"));
    auto painter = std::make_unique<QPainter>();
    if (!painter->begin(writer.get())) return nullptr;
    return std::make_unique<PagedDeviceSurface>(std::move(writer), std::move(painter));
}

std::unique_ptr<PrintSurface> makeSystemPrinterSurface(const QString& printerName) {
    const QPrinterInfo info = QPrinterInfo::printerInfo(printerName);
    if (info.isNull()) return nullptr;
    auto printer = std::make_unique<QPrinter>(info, QPrinter::HighResolution);
    auto painter = std::make_unique<QPainter>();
    if (!painter->begin(printer.get())) return nullptr;
    return std::make_unique<PagedDeviceSurface>(std::move(printer), std::move(painter));
}

std::vector<PrintedText> PrintRecord::textsOnRow(double topMargin, double row, int page) const {
    std::vector<PrintedText> found;
    const double y = printRowY(topMargin, row);
    for (const PrintedText& t : texts)
        if (t.page == page && std::abs(t.y - y) < kRowTolerance) found.push_back(t);
    return found;
}

const PrintedText* PrintRecord::find(const QString& text) const {
    for (const PrintedText& t : texts)
        if (t.text == text) return &t;
    return nullptr;
}

QStringList PrintRecord::allTexts() const {
    QStringList list;
    for (const PrintedText& t : texts)
        list << t.text;
    return list;
}

RecordingSurface::RecordingSurface(std::shared_ptr<PrintRecord> record) : m_record(std::move(record)) {}

bool RecordingSurface::finish() {
    m_record->finished = true;
    return true;
}

} // namespace nb
