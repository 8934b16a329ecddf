#pragma once
// Paints one cell of a Grid: its colour (or the selection colour), its text with a small
// margin, and the cursor frame around the active cell.

#include <QStyledItemDelegate>

namespace nb {

class Grid;

class GridDelegate : public QStyledItemDelegate {
public:
    explicit GridDelegate(Grid* grid);
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    Grid* m_grid;
};

} // namespace nb
