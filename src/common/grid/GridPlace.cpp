#include "common/grid/GridPlace.h"

#include "common/grid/Grid.h"

#include <QHeaderView>
#include <QScrollBar>

namespace nb {

GridPlace::GridPlace(Grid& grid, int keyCol)
    : m_grid(grid), m_keyCol(keyCol), m_col(grid.ActiveCol()), m_row(grid.ActiveRow()),
      m_scroll(grid.verticalScrollBar()->value()) {
    if (m_row >= 1) m_key = grid.Text(keyCol, m_row);
}

int GridPlace::restore(const std::function<void(int row)>& activate) {
    int found = 0;
    if (!m_key.isEmpty())
        for (int row = 1; row <= m_grid.MaxRows() && !found; ++row)
            if (m_grid.Text(m_keyCol, row) == m_key) found = row;
    if (found) {
        if (activate)
            activate(found);
        else
            m_grid.SetActiveCell(qMax(1, m_col), found);
    }
    const int moved = found ? found - m_row : 0;
    const bool perRow = m_grid.verticalScrollMode() == QAbstractItemView::ScrollPerItem;
    m_grid.verticalScrollBar()->setValue(
        m_scroll + (perRow ? moved : moved * m_grid.verticalHeader()->defaultSectionSize()));
    return found;
}

} // namespace nb
