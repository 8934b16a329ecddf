#include "printing/PrintSurfaces.h"

#include <QFont>
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

void PainterSurface::drawText(const PrintedText& text) {
    m_painter.save();
    const QFont font = painterFont(text.font);
    m_painter.setFont(font);
    if (!text.font.transparent) {
        const double height = text.font.size * 1.2 / kPointsPerInch;
        m_painter.fillRect(QRectF(toDevice(text.x), toDevice(text.y),
                                  toDevice(printTextWidth(text.text, text.font)), toDevice(height)),
                           Qt::white);
    }
    m_painter.setPen(text.font.color);
    constexpr int flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip | Qt::TextSingleLine;
    const double far = toDevice(100.0);
    QFont condensed = font;
    condensed.setStretch(kHalfWidthStretch);
    for (const TextPiece& piece : textPieces(text)) {
        m_painter.setFont(piece.condensed ? condensed : font);
        m_painter.drawText(QRectF(toDevice(piece.x), toDevice(text.y), far, far), flags, piece.text);
    }
    m_painter.restore();
}

void PainterSurface::drawLine(const PrintedLine& line) {
    m_painter.save();
    QPen pen(line.color);
    pen.setWidthF(toDevice(line.width / 96.0));
    m_painter.setPen(pen);
    m_painter.drawLine(QPointF(toDevice(line.x1), toDevice(line.y1)),
                       QPointF(toDevice(line.x2), toDevice(line.y2)));
    m_painter.restore();
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
