#include "common/grid/GridDelegate.h"

#include "common/Colors.h"
#include "common/grid/Grid.h"

#include <QApplication>
#include <QPaintEngine>
#include <QPainter>
#include <QPointer>
#include <QStyleFactory>
#include <QTextLine>
#include <cmath>

namespace nb {

namespace {
constexpr int kTextMargin = 3;

// Characters drawText lays out as they stand, written left to right: printable ASCII but '&'
// (a mnemonic mark there), Latin letters, Hangul, CJK, and the general punctuation and symbols
// that carry no direction or line break.
bool plainChar(char16_t c) {
    if (c < 0x80) return c >= 0x20 && c != u'&' && c != 0x7F;
    if (c >= 0xA0 && c < 0x0590) return true;
    if (c >= 0x1100 && c < 0x1200) return true;
    if (c >= 0x2010 && c < 0x2028) return true;
    if (c >= 0x2030 && c < 0x205F) return true;
    if (c >= 0x2100 && c < 0x2C00) return true;
    if (c >= 0x2E80 && c < 0xD800) return true;
    if (c >= 0xF900 && c < 0xFB00) return true;
    return c >= 0xFF00 && c < 0xFFF0;
}

} // namespace

bool CellTextCache::keepsLayoutOf(const QString& text) {
    if (text.isEmpty() || text.back() == u' ') return false;
    for (const QChar ch : text)
        if (!plainChar(ch.unicode())) return false;
    return true;
}

// One line, laid out as drawText lays out a line it does not wrap.
const QTextLayout& CellTextCache::layoutOf(const QString& text, const QFont& font) {
    if (!(font == m_font)) {
        m_lines.clear();
        m_font = font;
    }
    auto& kept = m_lines[text];
    if (kept) return *kept;
    if (m_lines.size() > kMaxTexts) {
        m_lines.clear();
        return layoutOf(text, font);
    }
    kept = std::make_shared<QTextLayout>(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::ManualWrap);
    option.setTextDirection(Qt::LeftToRight);
    kept->setTextOption(option);
    kept->setCacheEnabled(true);
    kept->beginLayout();
    QTextLine line = kept->createLine();
    line.setLineWidth(0x01000000);
    line.setPosition(QPointF(0, 0));
    kept->endLayout();
    return *kept;
}

void CellTextCache::draw(QPainter* painter, const QRect& rect, int flags, const QString& text) {
    constexpr int kPlainFlags = Qt::AlignLeft | Qt::AlignRight | Qt::AlignHCenter | Qt::AlignTop |
                                Qt::AlignBottom | Qt::AlignVCenter | Qt::TextSingleLine;
    if ((flags & ~kPlainFlags) != 0 || !keepsLayoutOf(text) || painter->pen().style() == Qt::NoPen ||
        painter->layoutDirection() == Qt::RightToLeft) {
        painter->drawText(rect, flags, text);
        return;
    }
    const QTextLine line = layoutOf(text, painter->font()).lineAt(0);
    const QRectF r(rect);
    const qreal height = line.ascent() + line.descent();
    const qreal width = line.naturalTextWidth();
    qreal yoff = 0, xoff = 0;
    if (flags & Qt::AlignBottom)
        yoff = r.height() - height;
    else if (flags & Qt::AlignVCenter)
        yoff = (r.height() - height) / 2;
    if (flags & Qt::AlignRight)
        xoff = r.width() - width;
    else if (flags & Qt::AlignHCenter)
        xoff = (r.width() - width) / 2;
    const bool clip = !r.contains(QRectF(r.x() + xoff, r.y() + yoff, width, height));
    if (clip) {
        painter->save();
        painter->setClipRect(r, Qt::IntersectClip);
    }
    const qreal advance = line.horizontalAdvance();
    xoff = 0;
    if (flags & Qt::AlignRight)
        xoff = r.width() - advance;
    else if (flags & Qt::AlignHCenter)
        xoff = (r.width() - advance) / 2;
    line.draw(painter, QPointF(r.x() + xoff, r.y() + yoff));
    if (clip) painter->restore();
}

size_t qHash(const CellPixelCache::Cell& cell, size_t seed) {
    return qHashMulti(seed, cell.text, cell.back, cell.fore, cell.flags, cell.size.width(),
                      cell.size.height());
}

// The backing store of a window: the raster engine drawing on an image, moved by whole pixels
// only, nothing see-through about the drawing.
bool CellPixelCache::keepsPixelsOn(const QPainter* painter) {
    const QPaintEngine* engine = painter->paintEngine();
    if (!engine || engine->type() != QPaintEngine::Raster || !engine->paintDevice() ||
        engine->paintDevice()->devType() != QInternal::Image)
        return false;
    const auto* image = static_cast<const QImage*>(engine->paintDevice());
    const QTransform t = painter->deviceTransform();
    return image->devicePixelRatio() == 1.0 && t.type() <= QTransform::TxTranslate &&
           t.dx() == std::floor(t.dx()) && t.dy() == std::floor(t.dy()) && painter->opacity() == 1.0 &&
           painter->compositionMode() == QPainter::CompositionMode_SourceOver &&
           painter->layoutDirection() != Qt::RightToLeft;
}

void CellPixelCache::draw(QPainter* painter, const QRect& rect, const Cell& cell, const QFont& font,
                          const Paint& paint) {
    if (!keepsPixelsOn(painter)) {
        paint(painter, rect);
        return;
    }
    const auto* target = static_cast<const QImage*>(painter->paintEngine()->paintDevice());
    if (!(font == m_font) || painter->renderHints() != m_hints || target->format() != m_format) {
        m_cells.clear();
        m_bytes = 0;
        m_font = font;
        m_hints = painter->renderHints();
        m_format = target->format();
    }
    auto kept = m_cells.constFind(cell);
    if (kept == m_cells.constEnd()) {
        QImage pixels(rect.size(), m_format);
        pixels.setDotsPerMeterX(target->dotsPerMeterX());
        pixels.setDotsPerMeterY(target->dotsPerMeterY());
        {
            QPainter p(&pixels);
            p.setRenderHints(m_hints);
            paint(&p, QRect(QPoint(0, 0), rect.size()));
        }
        if (m_bytes + pixels.sizeInBytes() > kMaxBytes) {
            m_cells.clear();
            m_bytes = 0;
        }
        m_bytes += pixels.sizeInBytes();
        kept = m_cells.insert(cell, std::move(pixels));
    }
    painter->drawImage(rect.topLeft(), *kept);
}

GridDelegate::GridDelegate(Grid* grid) : QStyledItemDelegate(grid), m_grid(grid) {}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const int col = index.column() + 1, row = index.row() + 1;
    // The grid draws its lines itself: the cell stops short of its right and bottom line.
    const QRect cell = m_grid->showGrid() ? option.rect : option.rect.adjusted(0, 0, -1, -1);
    painter->save();
    const QColor back = m_grid->isHighlighted(col, row) ? colorFromBgr(m_grid->SelBackColor())
                                                        : index.data(Qt::BackgroundRole).value<QColor>();
    const QColor fore = index.data(Qt::ForegroundRole).value<QColor>();
    const int flags = int(index.data(Qt::TextAlignmentRole).value<Qt::Alignment>()) | Qt::TextSingleLine;
    const QString text = index.data(Qt::DisplayRole).toString();
    const auto paintCell = [&](QPainter* p, const QRect& at) {
        p->fillRect(at, back);
        p->setPen(fore);
        p->setFont(option.font);
        p->setClipRect(at);
        m_texts.draw(p, at.adjusted(kTextMargin, 1, -kTextMargin, -1), flags, text);
    };
    if (text.isEmpty() || !back.isValid() || back.alpha() != 255) {
        paintCell(painter, cell);
    } else {
        m_pixels.draw(painter, cell, {text, back.rgba(), fore.rgba(), flags, cell.size()}, option.font,
                      paintCell);
        painter->setClipRect(cell); // as for a cell drawn here, for the cursor's frame
    }
    const bool active = col == m_grid->ActiveCol() && row == m_grid->ActiveRow();
    if (active && m_grid->operationMode() == OperationMode::Normal && !m_grid->EditMode()) {
        painter->setPen(QPen(Qt::black, 2));
        painter->drawRect(cell.adjusted(1, 1, -1, -1));
    }
    painter->restore();
}

GridHeaderStyle* GridHeaderStyle::shared() {
    static QPointer<GridHeaderStyle> style;
    if (!style) {
        // Its own instance of the application's style, by name (a proxy owns its base).
        style = new GridHeaderStyle(QStyleFactory::create(QApplication::style()->name()));
        style->setParent(qApp);
    }
    return style;
}

// As the Fusion style draws an enabled label: the text in the role's colour, the pen given back.
// Any other style, or a disabled label, is drawn by the style itself.
void GridHeaderStyle::drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette,
                                   bool enabled, const QString& text, QPalette::ColorRole textRole) const {
    if (!enabled || baseStyle()->name() != QLatin1String("fusion")) {
        QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, textRole);
        return;
    }
    if (text.isEmpty()) return;
    const QPen saved = painter->pen();
    if (textRole != QPalette::NoRole) painter->setPen(QPen(palette.brush(textRole), saved.widthF()));
    m_texts.draw(painter, rect, flags, text);
    painter->setPen(saved);
}

} // namespace nb
