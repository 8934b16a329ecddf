#include "common/grid/GridList.h"

#include "common/grid/GridNumbers.h"

#include <QSqlRecord>
#include <algorithm>

namespace nb {

// ---- sources ------------------------------------------------------------------------------

QueryRows::QueryRows(std::unique_ptr<QSqlQuery> query) : m_owned(std::move(query)), m_query(m_owned.get()) {
    if (m_query) m_width = m_query->record().count();
}

QueryRows::QueryRows(QSqlQuery& query) : m_query(&query), m_width(query.record().count()) {}

bool QueryRows::next(QVariant* out, int count) {
    if (!m_query || !m_query->next()) {
        if (m_query) m_query->finish(); // the statement is through: let go of it at once
        m_query = nullptr;
        m_owned.reset();
        return false;
    }
    for (int c = 0; c < count; ++c)
        out[c] = m_query->value(c);
    return true;
}

RowsInMemory::RowsInMemory(QVector<QVariantList> rows, int width) : m_rows(std::move(rows)), m_width(width) {
    if (m_width < 0)
        for (const QVariantList& row : m_rows)
            m_width = std::max(m_width, int(row.size()));
    m_width = std::max(m_width, 0);
}

bool RowsInMemory::next(QVariant* out, int count) {
    if (m_next >= m_rows.size()) return false;
    const QVariantList& row = m_rows[m_next++];
    for (int c = 0; c < count; ++c)
        out[c] = c < row.size() ? row[c] : QVariant();
    return true;
}

double numberOf(const QVariant& value) {
    // The engine's own kinds read in place: the list's sums read every row's numbers.
    switch (value.typeId()) {
    case QMetaType::Double:
        return *static_cast<const double*>(value.constData());
    case QMetaType::LongLong:
        return double(*static_cast<const qlonglong*>(value.constData()));
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Float:
        return value.toDouble();
    case QMetaType::QString:
        return gridnum::parse(value.toString()).value_or(0.0);
    default:
        return value.isNull() ? 0.0 : gridnum::parse(value.toString()).value_or(0.0);
    }
}

// ---- the list -----------------------------------------------------------------------------

GridList::GridList(std::unique_ptr<GridRowSource> source, int width, int knownRows, bool fromEnd)
    : m_source(std::move(source)), m_width(std::max(width, 0)), m_sourceWidth(0), m_known(knownRows),
      m_fromEnd(fromEnd && knownRows >= 0) {
    if (m_source) m_sourceWidth = std::min(m_source->width(), m_width);
    // Room for one row more than the source's: the row a screen adds after the list (the empty
    // last row) then moves no value.
    const int expected = m_known >= 0 ? m_known : (m_source ? m_source->expectedRows() : -1);
    if (m_width == 0 || m_known == 0) {
        endOfSource();
        return;
    }
    if (takeRowsAtHand()) return;
    if (expected > 0 && !m_fromEnd) m_values.reserve(size_t(expected + 1) * size_t(m_width));
}

// A source that holds every row already laid out as the list's rows gives them over whole.
bool GridList::takeRowsAtHand() {
    const int atHand = m_source->rowsAtHand();
    if (m_fromEnd || atHand <= 0 || (m_known >= 0 && m_known != atHand)) return false;
    if (!m_source->takeRowsAtHand(m_values, m_width)) return false;
    m_read = int(m_values.size() / size_t(m_width));
    endOfSource();
    return true;
}

// Rows last first into m_back; once all of them are there they become the list's rows in order.
int GridList::readBackPage(int count) {
    int got = 0;
    while (readingBack() && got < count) {
        if (m_backRead >= m_known) {
            endOfBackRows();
            break;
        }
        const size_t base = m_back.size();
        m_back.resize(base + size_t(m_width));
        if (!m_source->next(&m_back[base], m_sourceWidth)) {
            m_back.resize(base);
            got += m_known - m_backRead; // the rows that did not come stay empty, at the top
            endOfBackRows();
            break;
        }
        ++m_backRead;
        ++got;
        if (m_backRead >= m_known) endOfBackRows();
    }
    return got;
}

// A cell after the source's columns in a row above the ones read from the end; nullptr when
// there is none (and make is false) or the cell is not such a one.
QVariant* GridList::earlyCell(int col, int row, bool make) {
    if (!readingBack() || col <= m_sourceWidth || row > m_known - m_backRead) return nullptr;
    auto it = m_early.find(row);
    if (it == m_early.end()) {
        if (!make) return nullptr;
        it = m_early.emplace(row, std::vector<QVariant>(size_t(m_width - m_sourceWidth))).first;
    }
    return &it->second[size_t(col - m_sourceWidth - 1)];
}

void GridList::endOfBackRows() {
    m_values.assign(size_t(m_known) * size_t(m_width), QVariant());
    for (int i = 0; i < m_backRead; ++i) {
        const size_t to = size_t(m_known - 1 - i) * size_t(m_width), from = size_t(i) * size_t(m_width);
        for (int c = 0; c < m_width; ++c)
            m_values[to + size_t(c)] = std::move(m_back[from + size_t(c)]);
    }
    for (auto& [row, cells] : m_early)
        for (size_t i = 0; i < cells.size(); ++i)
            m_values[size_t(row - 1) * size_t(m_width) + size_t(m_sourceWidth) + i] = std::move(cells[i]);
    m_early.clear();
    m_read = m_known;
    m_backRead = 0;
    m_back.clear();
    m_back.shrink_to_fit();
    m_fromEnd = false;
    endOfSource();
}

int GridList::readPage(int count) {
    if (readingBack()) return readBackPage(count);
    int got = 0;
    while (m_source && got < count) {
        if (m_known >= 0 && m_read >= m_known) {
            endOfSource();
            break;
        }
        const size_t base = m_values.size();
        m_values.resize(base + size_t(m_width));
        if (!m_source->next(&m_values[base], m_sourceWidth)) {
            m_values.resize(base);
            // A count that promised more rows than came: the rest stay as empty rows, so the
            // rows the operator sees never move under him.
            if (m_known > m_read) {
                m_values.resize(size_t(m_known) * size_t(m_width));
                got += m_known - m_read;
                m_read = m_known;
            }
            endOfSource();
            break;
        }
        ++m_read;
        ++got;
        if (m_known >= 0 && m_read >= m_known) endOfSource();
    }
    return got;
}

void GridList::endOfSource() {
    m_source.reset();
    m_known = -1;
    mergeTail();
}

// Once every row of the source is in memory the rows the program added join them.
void GridList::mergeTail() {
    if (m_source || m_tailRows == 0) return;
    m_values.insert(m_values.end(), m_tail.begin(), m_tail.end());
    m_read += m_tailRows;
    m_tail.clear();
    m_tailRows = 0;
}

bool GridList::readUpTo(int row) {
    if (row < 1) return false;
    if (readingBack()) {
        const int above = m_known - m_backRead; // rows above the ones read
        if (row <= above) readBackPage(above - row + 1);
        return row <= rows();
    }
    if (row > m_read && m_source) {
        const int sourceRows = m_known >= 0 ? m_known : -1;
        if (sourceRows < 0 || row <= sourceRows) readPage(row - m_read);
    }
    return row <= rows();
}

void GridList::readAll() {
    while (m_source)
        readPage(1 << 16);
}

const QVariant* GridList::peek(int col, int row) const {
    if (col < 1 || col > m_width || row < 1) return nullptr;
    if (readingBack() && row <= m_known) {
        if (row <= m_known - m_backRead) return const_cast<GridList*>(this)->earlyCell(col, row, false);
        return &m_back[size_t(m_known - row) * size_t(m_width) + size_t(col - 1)];
    }
    if (readingBack()) {
        const int tailRow = row - m_known;
        return tailRow <= m_tailRows ? &m_tail[size_t(tailRow - 1) * size_t(m_width) + size_t(col - 1)]
                                     : nullptr;
    }
    if (row <= m_read) return &m_values[size_t(row - 1) * size_t(m_width) + size_t(col - 1)];
    const int tailRow = row - m_read - unread();
    if (row > m_read + unread() && tailRow <= m_tailRows)
        return &m_tail[size_t(tailRow - 1) * size_t(m_width) + size_t(col - 1)];
    return nullptr;
}

QVariant* GridList::at(int col, int row) {
    if (col < 1 || col > m_width || row < 1 || row > rows()) return nullptr;
    if (QVariant* early = earlyCell(col, row, true)) return early; // no need to read the row
    if (row > m_read && row <= m_read + unread()) readUpTo(row);
    return const_cast<QVariant*>(peek(col, row));
}

void GridList::resize(int rows) {
    rows = std::max(rows, 0);
    if (rows == 0) {
        m_source.reset();
        m_known = -1;
        m_fromEnd = false;
        m_backRead = 0;
        m_back.clear();
        m_early.clear();
        m_values.clear();
        m_tail.clear();
        m_read = m_tailRows = 0;
        formulas.clear();
        backs.clear();
        for (auto& [col, sum] : m_sums)
            sum = 0;
        return;
    }
    if (rows > this->rows() && countKnown() && m_source) { // blank rows after the query's
        m_tail.resize(m_tail.size() + size_t(rows - this->rows()) * size_t(m_width));
        m_tailRows = int(m_tail.size() / size_t(std::max(m_width, 1)));
        return;
    }
    readAll();
    if (rows < m_read) {
        for (int r = rows + 1; r <= m_read; ++r)
            for (int c = 1; c <= m_width; ++c)
                valueChanged(c, *peek(c, r), QVariant());
        shiftCellMaps(rows + 1, 0, rows + 1, m_read);
    }
    m_values.resize(size_t(rows) * size_t(m_width));
    m_read = rows;
}

void GridList::eraseRows(int row, int count) {
    readAll();
    const int last = std::min(m_read, row + count - 1);
    if (row < 1 || last < row) return;
    for (int r = row; r <= last; ++r)
        for (int c = 1; c <= m_width; ++c)
            valueChanged(c, *peek(c, r), QVariant());
    const auto from = m_values.begin() + ptrdiff_t(row - 1) * m_width;
    m_values.erase(from, from + ptrdiff_t(last - row + 1) * m_width);
    m_values.resize(size_t(m_read) * size_t(m_width)); // blank rows at the bottom: the count stays
    shiftCellMaps(last + 1, -(last - row + 1), row, last);
}

void GridList::insertBlankRows(int row, int count) {
    readAll();
    if (row < 1 || row > m_read || count < 1) return;
    count = std::min(count, m_read - row + 1);
    for (int r = m_read - count + 1; r <= m_read; ++r) // the rows pushed out at the bottom
        for (int c = 1; c <= m_width; ++c)
            valueChanged(c, *peek(c, r), QVariant());
    m_values.resize(size_t(m_read - count) * size_t(m_width));
    m_values.insert(m_values.begin() + ptrdiff_t(row - 1) * m_width, size_t(count) * size_t(m_width),
                    QVariant());
    shiftCellMaps(row, count, m_read - count + 1, m_read);
}

namespace {
template <typename T>
void shiftRows(std::map<std::pair<int, int>, T>& cells, int fromRow, int by, int dropFrom, int dropTo) {
    std::map<std::pair<int, int>, T> moved;
    for (const auto& [at, value] : cells) {
        if (at.first >= dropFrom && at.first <= dropTo) continue;
        moved[{at.first >= fromRow ? at.first + by : at.first, at.second}] = value;
    }
    cells.swap(moved);
}
} // namespace

// Formulas and colours of rows dropFrom..dropTo go; those from fromRow on move by `by` rows.
void GridList::shiftCellMaps(int fromRow, int by, int dropFrom, int dropTo) {
    shiftRows(formulas, fromRow, by, dropFrom, dropTo);
    shiftRows(backs, fromRow, by, dropFrom, dropTo);
}

std::optional<double> GridList::sum(int col) const {
    const auto it = m_sums.find(col);
    if (it == m_sums.end()) return std::nullopt;
    return it->second;
}

void GridList::valueChanged(int col, const QVariant& before, const QVariant& after) {
    const auto it = m_sums.find(col);
    if (it != m_sums.end()) it->second += numberOf(after) - numberOf(before);
}

} // namespace nb
