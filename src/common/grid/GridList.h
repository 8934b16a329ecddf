#pragma once
// The rows of a grid in list mode: values as the query gave them (numbers as numbers, texts as
// texts), read from their source a page at a time. Rows 1..read() are in memory; when the
// screen told how many rows the query gives, the rows after them exist but are read only when
// something asks for them; rows the program adds after the query's rows (an empty last row)
// follow. A list read from its end (fromEnd, the count told) gets its rows last first: rows
// after the ones read are in memory, the rows above them are read as something asks for them.
// A plain store without signals: GridModel announces what changes.

#include "common/grid/GridRows.h"

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace nb {

class GridList {
public:
    // knownRows: how many rows the source gives, or -1 when only reading tells. fromEnd (with a
    // count): the source gives the rows last first.
    GridList(std::unique_ptr<GridRowSource> source, int width, int knownRows, bool fromEnd = false);

    int width() const { return m_width; }
    int rows() const { return m_read + unread() + m_backRead + m_tailRows; }
    bool reading() const { return m_source != nullptr; }
    bool canReadNow() const { return m_source && m_source->canReadNow(); }
    // Whether rows() already counts the rows not yet read.
    bool countKnown() const { return m_known >= 0 || !m_source; }
    // How many values a source row brings (columns after it stay empty until written).
    int sourceWidth() const { return m_sourceWidth; }

    // Reads up to count more rows; the number read. With a known count reading stops there.
    int readPage(int count);
    // Reads until row is in memory (when it is a row of the source); false outside the list.
    bool readUpTo(int row);
    void readAll();

    // The value of a cell, read first when needed; nullptr outside the list.
    QVariant* at(int col, int row);
    // The value without reading; nullptr outside, or for a row not read yet.
    const QVariant* peek(int col, int row) const;

    // Program changes of the row count; each reads the whole source first, except adding rows
    // after a known count.
    void resize(int rows);
    void eraseRows(int row, int count);
    void insertBlankRows(int row, int count);

    // Column sums as the query gave them, kept as values are written and rows go.
    std::optional<double> sum(int col) const;
    void setSum(int col, double sum) { m_sums[col] = sum; }
    void forgetSums() { m_sums.clear(); }
    void valueChanged(int col, const QVariant& before, const QVariant& after);

    // Formulas and painted colours of single cells, kept beside the values.
    std::map<std::pair<int, int>, QString> formulas; // (row, col)
    std::map<std::pair<int, int>, int> backs;        // (row, col)

private:
    int unread() const { return (m_known >= 0 && m_source) ? m_known - m_read - m_backRead : 0; }
    bool readingBack() const { return m_fromEnd && m_source; }
    bool takeRowsAtHand();
    int readBackPage(int count);
    void endOfBackRows();
    void endOfSource();
    void mergeTail();
    void shiftCellMaps(int fromRow, int by, int dropFrom, int dropTo);

    std::unique_ptr<GridRowSource> m_source;
    int m_width;
    int m_sourceWidth;
    int m_known;                    // rows of the source, -1 when not told
    int m_read = 0;                 // rows in m_values
    std::vector<QVariant> m_values; // m_read rows of m_width values
    bool m_fromEnd = false;
    int m_backRead = 0;           // rows read from the end (while the rows above are not)
    std::vector<QVariant> m_back; // those rows, the last one first
    // Cells after the source's columns written in rows not read yet (a sum's cell in the first
    // row), by row; they join their rows when those are read.
    std::map<int, std::vector<QVariant>> m_early;
    QVariant* earlyCell(int col, int row, bool make);
    std::vector<QVariant> m_tail; // rows after a known count not read through yet
    int m_tailRows = 0;
    std::map<int, double> m_sums;
};

double numberOf(const QVariant& value);

} // namespace nb
