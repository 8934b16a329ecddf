#include "common/grid/GridDelegate.h"

#include "common/Colors.h"
#include "common/grid/Grid.h"

#include <QPainter>

namespace nb {

namespace {
constexpr int kTextMargin = 3;
}

GridDelegate::GridDelegate(Grid* grid) : QStyledItemDelegate(grid), m_grid(grid) {}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const int col = index.column() + 1, row = index.row() + 1;
    painter->save();
    const QColor back = m_grid->isHighlighted(col, row) ? colorFromBgr(m_grid->SelBackColor())
                                                        : index.data(Qt::BackgroundRole).value<QColor>();
    painter->fillRect(option.rect, back);
    painter->setPen(index.data(Qt::ForegroundRole).value<QColor>());
    painter->setFont(option.font);
    const auto align = index.data(Qt::TextAlignmentRole).value<Qt::Alignment>();
    const QRect textRect = option.rect.adjusted(kTextMargin, 1, -kTextMargin, -1);
    painter->setClipRect(option.rect);
    painter->drawText(textRect, int(align) | Qt::TextSingleLine, index.data(Qt::DisplayRole).toString());
    const bool active = col == m_grid->ActiveCol() && row == m_grid->ActiveRow();
    if (active && m_grid->operationMode() == OperationMode::Normal && !m_grid->EditMode()) {
        painter->setPen(QPen(Qt::black, 2));
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }
    painter->restore();
}

} // namespace nb
