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
constexpr int kHalfWidthStretch = 50; // percent of the normal width

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

// The painter's font of a print font, with its condensed twin and its ascent on this device:
// the last one is kept, as a document prints run after run of texts in one font.
const PainterSurface::DeviceFont& PainterSurface::deviceFont(const PrintFont& font) {
    if (m_font && m_font->name == font.name && m_font->size == font.size && m_font->bold == font.bold)
        return *m_font;
    DeviceFont made;
    made.name = font.name;
    made.size = font.size;
    made.bold = font.bold;
    made.font = painterFont(font);
    made.condensed = made.font;
    made.condensed.setStretch(kHalfWidthStretch);
    made.ascent = QFontMetricsF(made.font, m_painter.device()).ascent();
    made.condensedAscent = QFontMetricsF(made.condensed, m_painter.device()).ascent();
    made.raw = QRawFont::fromFont(QFont(made.font, m_painter.device()));
    m_font = std::make_shared<DeviceFont>(std::move(made));
    return *m_font;
}

// A print is made of a few hundred different characters drawn again and again: each is looked
// up in the font once, and a piece goes to the device as its glyphs, not as text shaped anew.
bool PainterSurface::drawGlyphs(DeviceFont& font, const QString& text, const QPointF& baseline) {
    if (!font.raw.isValid()) return false;
    QList<quint32> indexes;
    QList<QPointF> positions;
    indexes.reserve(text.size());
    positions.reserve(text.size());
    double x = 0;
    for (const QChar ch : text) {
        auto found = font.glyphs.constFind(ch.unicode());
        if (found == font.glyphs.constEnd()) {
            if (ch.isSurrogate()) return false;
            const QList<quint32> index = font.raw.glyphIndexesForString(QString(ch));
            if (index.size() != 1 || index.first() == 0) return false;
            const QList<QPointF> advance = font.raw.advancesForGlyphIndexes(index);
            found = font.glyphs.insert(ch.unicode(), Glyph{index.first(), advance.value(0).x()});
        }
        indexes.append(found->index);
        positions.append(QPointF(x, 0));
        x += found->advance;
    }
    QGlyphRun run;
    run.setRawFont(font.raw);
    run.setGlyphIndexes(indexes);
    run.setPositions(positions);
    m_painter.drawGlyphRun(baseline, run);
    return true;
}

// Each piece is drawn on its baseline, the font's ascent under the text's top: what a
// top-aligned text in a rectangle gives, without laying the text out in one.
void PainterSurface::drawText(const PrintedText& text) {
    DeviceFont& font = const_cast<DeviceFont&>(deviceFont(text.font));
    if (!text.font.transparent) {
        const double height = text.font.size * 1.2 / kPointsPerInch;
        m_painter.fillRect(QRectF(toDevice(text.x), toDevice(text.y),
                                  toDevice(printTextWidth(text.text, text.font)), toDevice(height)),
                           Qt::white);
    }
    if (m_painter.pen().color() != text.font.color || m_painter.pen().style() != Qt::SolidLine)
        m_painter.setPen(text.font.color);
    for (const TextPiece& piece : textPieces(text)) {
        const QFont& qfont = piece.condensed ? font.condensed : font.font;
        if (m_painter.font() != qfont) m_painter.setFont(qfont);
        const double ascent = piece.condensed ? font.condensedAscent : font.ascent;
        const QPointF baseline(toDevice(piece.x), toDevice(text.y) + ascent);
        if (piece.condensed || !drawGlyphs(font, piece.text, baseline))
            m_painter.drawText(baseline, piece.text);
    }
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

void PagedDeviceSurface::newPage() {
    if (m_painter->isActive()) m_device->newPage();
}

bool PagedDeviceSurface::finish() {
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
