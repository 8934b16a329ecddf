#pragma once
// Paints one cell of a Grid: its colour (or the selection colour), its text with a small
// margin, and the cursor frame around the active cell.
//
// A list shows the same few texts again and again (a town, a unit, a date) and is painted anew
// at every search, so the laid-out line of each text is kept (CellTextCache) and drawn again
// without shaping it once more, at the place QPainter::drawText would put it; and the pixels of
// a whole cell once drawn are kept (CellPixelCache) and copied when it is painted again.

#include <QFont>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QProxyStyle>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <functional>
#include <memory>

namespace nb {

class Grid;

class CellTextCache {
public:
    // Draws text in rect as painter->drawText(rect, flags, text) does. Flags other than the
    // alignment and Qt::TextSingleLine, and texts drawText treats specially (line breaks, tabs,
    // '&', right-to-left writing), go to drawText itself.
    void draw(QPainter* painter, const QRect& rect, int flags, const QString& text);
    // Whether a text is drawn from a kept line (else by drawText).
    static bool keepsLayoutOf(const QString& text);
    int size() const { return int(m_lines.size()); }

private:
    const QTextLayout& layoutOf(const QString& text, const QFont& font);

    static constexpr int kMaxTexts = 4096;
    QFont m_font;
    QHash<QString, std::shared_ptr<QTextLayout>> m_lines;
};

// The pixels of painted cells, by everything that decides them (text, font, colours, alignment,
// size): a list paints the same cells again at every search and as it scrolls back, and blending
// each glyph of a text anew costs more than the rest of the cell together. A cell drawn once is
// copied afterwards, pixel for pixel what drawing it again would give. Only on the raster
// engine's own images (a window's backing store) at one device pixel a pixel, on whole pixels;
// anything else is drawn as it comes.
class CellPixelCache {
public:
    struct Cell {
        QString text;
        QRgb back = 0, fore = 0;
        int flags = 0;
        QSize size;
        bool operator==(const Cell&) const = default;
    };
    using Paint = std::function<void(QPainter*, const QRect&)>;
    // Draws the cell at rect in font: from its kept pixels, or through paint (kept when it can be).
    void draw(QPainter* painter, const QRect& rect, const Cell& cell, const QFont& font, const Paint& paint);
    // Whether a cell drawn on this painter is kept and copied.
    static bool keepsPixelsOn(const QPainter* painter);
    int size() const { return int(m_cells.size()); }

private:
    static constexpr qsizetype kMaxBytes = 4 << 20; // a few screens of cells
    QFont m_font;
    QPainter::RenderHints m_hints;
    QImage::Format m_format = QImage::Format_Invalid;
    QHash<Cell, QImage> m_cells;
    qsizetype m_bytes = 0;
};
size_t qHash(const CellPixelCache::Cell& cell, size_t seed = 0);

class GridDelegate : public QStyledItemDelegate {
public:
    explicit GridDelegate(Grid* grid);
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    Grid* m_grid;
    mutable CellTextCache m_texts;
    mutable CellPixelCache m_pixels;
};

// The style of the grids' headers: the application's own, but a label text is drawn through a
// CellTextCache (the row numbers and headings are the same at every search).
class GridHeaderStyle : public QProxyStyle {
public:
    // The one the headers of every grid share.
    static GridHeaderStyle* shared();
    void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                      const QString& text, QPalette::ColorRole textRole = QPalette::NoRole) const override;

private:
    explicit GridHeaderStyle(QStyle* base) : QProxyStyle(base) {}
    mutable CellTextCache m_texts;
};

} // namespace nb
