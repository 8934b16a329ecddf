#pragma once
// The ends a print job can have: a painter on a printer, a PDF file or a screen, and the
// recorder that tests read.

#include "printing/PrintJob.h"

#include <QFont>
#include <QHash>
#include <QList>
#include <QRawFont>
#include <memory>
#include <vector>

class QPainter;
class QPagedPaintDevice;

namespace nb {

// Draws in inches on a painter of the given resolution. Text is drawn piece by piece, each at its
// own computed position, top-aligned at the text's y. The glyphs of texts that follow one another
// in one font and colour go to the painter together, as one run, when the font or the colour
// changes, a picture or a filled text comes, the page ends or the document does: a page of a long
// form is then a few runs of glyphs instead of hundreds of text objects. Rules are drawn as they
// come, so a text may land over a rule drawn after it.
class PainterSurface : public PrintSurface {
public:
    PainterSurface(QPainter& painter, double dotsPerInch);
    void drawText(const PrintedText& text) override;
    void drawLine(const PrintedLine& line) override;
    void drawPicture(const PrintedPicture& picture) override;
    void newPage() final;
    bool finish() final;

protected:
    double toDevice(double inches) const { return inches * m_dpi; }
    QPainter& painter() { return m_painter; }
    // What a page's end and the document's end do on the device, after the page's glyphs are drawn.
    virtual void startNextPage() {}
    virtual bool endDocument() { return true; }
    // Draws the glyphs waiting for the painter.
    void flushText();

private:
    struct Glyph {
        quint32 index = 0;
        double advance = 0; // device units
    };
    struct DeviceFont {
        QString name;
        double size = 0;
        bool bold = false;
        QFont font, condensed;
        double ascent = 0, condensedAscent = 0; // device units
        QRawFont raw;                           // the font at the device's size, for glyph runs
        QHash<char16_t, Glyph> glyphs;          // the characters met so far
    };
    DeviceFont& deviceFont(const PrintFont& font);
    QPointF onDevice(const QPointF& point) const;
    // The piece's glyphs added to the waiting run, or false when a character needs another font.
    bool addGlyphs(DeviceFont& font, const QString& text, const QPointF& baseline);
    // The piece through the painter's own text drawing, after whatever waits.
    void drawShaped(const QFont& font, const QString& text, const QPointF& baseline);

    QPainter& m_painter;
    double m_dpi;
    // The fonts of the document, few, each made once.
    std::vector<std::unique_ptr<DeviceFont>> m_fonts;
    DeviceFont* m_font = nullptr;
    // The run of glyphs waiting: its font and colour, glyphs and their baseline points.
    DeviceFont* m_runFont = nullptr;
    QColor m_runColor;
    QList<quint32> m_runGlyphs;
    QList<QPointF> m_runPositions;
};

// A printer or a PDF writer: pages and the end of the document.
class PagedDeviceSurface : public PainterSurface {
public:
    // Takes the device, which must be ready to paint on; `painter` has begun on it.
    PagedDeviceSurface(std::unique_ptr<QPagedPaintDevice> device, std::unique_ptr<QPainter> painter);
    ~PagedDeviceSurface() override;

protected:
    void startNextPage() override;
    bool endDocument() override;

private:
    std::unique_ptr<QPagedPaintDevice> m_device;
    std::unique_ptr<QPainter> m_painter;
};

// An A4 PDF file at `path` whose origin is the corner of the sheet; null when it cannot be written.
std::unique_ptr<PrintSurface> makePdfSurface(const QString& path);
// The system printer of that name, origin at its printable area; null when it cannot be opened.
std::unique_ptr<PrintSurface> makeSystemPrinterSurface(const QString& printerName);

// Everything one job printed, in order.
struct PrintRecord {
    QString printerName;
    QString documentName;
    std::vector<PrintedText> texts;
    std::vector<PrintedLine> lines;
    std::vector<PrintedPicture> pictures;
    int pages = 1;
    bool finished = false;

    // The texts on a page whose top lies at print row `row` under the given top margin.
    std::vector<PrintedText> textsOnRow(double topMargin, double row, int page = 1) const;
    // The first text equal to `text`, or null.
    const PrintedText* find(const QString& text) const;
    QStringList allTexts() const;
};

// Keeps what a job draws in a PrintRecord that outlives the job.
class RecordingSurface : public PrintSurface {
public:
    explicit RecordingSurface(std::shared_ptr<PrintRecord> record);
    void drawText(const PrintedText& text) override { m_record->texts.push_back(text); }
    void drawLine(const PrintedLine& line) override { m_record->lines.push_back(line); }
    void drawPicture(const PrintedPicture& picture) override { m_record->pictures.push_back(picture); }
    void newPage() override { ++m_record->pages; }
    bool finish() override;

private:
    std::shared_ptr<PrintRecord> m_record;
};

} // namespace nb
