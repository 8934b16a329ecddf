#pragma once
// Paints one cell of a Grid: its colour (or the selection colour), its text with a small
// margin, and the cursor frame around the active cell.
//
// A list shows the same few texts again and again (a town, a unit, a date) and is painted anew
// at every search, so the laid-out line of each text is kept (CellTextCache) and drawn again
// without shaping it once more, at the place QPainter::drawText would put it.

#include <QFont>
#include <QHash>
#include <QProxyStyle>
#include <QStyledItemDelegate>
#include <QTextLayout>
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

class GridDelegate : public QStyledItemDelegate {
public:
    explicit GridDelegate(Grid* grid);
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    Grid* m_grid;
    mutable CellTextCache m_texts;
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
