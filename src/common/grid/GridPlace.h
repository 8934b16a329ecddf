#pragma once
// The operator's place in a list grid, kept across a re-read of its rows (another seat's saves
// shown): the chosen row found again by the text of its key column wherever it now stands, and
// the rows in view moved with it, so the chosen row stays where it was on the screen. When the
// chosen row is gone the view stays where it was.

#include <QString>
#include <functional>

namespace nb {

class Grid;

class GridPlace {
public:
    // Remembers the active row's key (the text of keyCol), the active column and the scroll.
    GridPlace(Grid& grid, int keyCol);
    // After the grid's rows were read again: the row with the same key made active (through
    // activate, by default the grid's SetActiveCell on the same column), the view scrolled by as
    // many rows as the chosen one moved. Answers the row, 0 when the key is no longer listed or
    // no row was chosen.
    int restore(const std::function<void(int row)>& activate = {});

    QString key() const { return m_key; }

private:
    Grid& m_grid;
    int m_keyCol;
    int m_col = 0;
    int m_row = 0;
    int m_scroll = 0;
    QString m_key;
};

} // namespace nb
