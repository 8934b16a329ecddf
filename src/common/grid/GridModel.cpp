#include "common/grid/GridModel.h"

#include "common/Colors.h"
#include "common/grid/GridNumbers.h"

#include <QRegularExpression>

namespace nb {

GridModel::GridModel(QObject* parent) : QAbstractTableModel(parent), m_pager(new QTimer(this)) {
    m_pager->setInterval(0);
    connect(m_pager, &QTimer::timeout, this, [this] { readListPage(kPage); });
}

GridModel::~GridModel() = default;

// ---- size ---------------------------------------------------------------------------------

void GridModel::setMaxRows(int rows) {
    if (rows < 0) throw invalidPropertyValue();
    if (m_list) return listSetMaxRows(rows);
    const int old = maxRows();
    if (rows < old) {
        beginRemoveRows({}, rows, old - 1);
        m_rows.resize(size_t(rows));
        endRemoveRows();
    } else if (rows > old) {
        beginInsertRows({}, old, rows - 1);
        for (int r = old; r < rows; ++r)
            m_rows.push_back(blankRow());
        endInsertRows();
    }
    recalcFormulas();
}

void GridModel::setMaxCols(int cols) {
    if (cols < 0) throw invalidPropertyValue();
    if (m_list) return listSetMaxCols(cols);
    const int old = maxCols();
    if (cols < old) {
        beginRemoveColumns({}, cols, old - 1);
        m_cols.resize(size_t(cols));
        for (auto& row : m_rows)
            row.cells.resize(size_t(cols));
        endRemoveColumns();
    } else if (cols > old) {
        beginInsertColumns({}, old, cols - 1);
        m_cols.resize(size_t(cols));
        for (int c = old; c < cols; ++c)
            m_cols[size_t(c)].locked = m_lockAll;
        for (auto& row : m_rows)
            for (int c = old; c < cols; ++c)
                row.cells.push_back(blankCell(c + 1));
        endInsertColumns();
    }
    recalcFormulas();
}

bool GridModel::contains(int col, int row) const {
    return col >= 1 && row >= 1 && col <= maxCols() && row <= maxRows();
}

int GridModel::dataRowCnt() const {
    if (m_list) return listDataRowCnt();
    for (int r = maxRows(); r >= 1; --r)
        for (const Cell& c : m_rows[size_t(r - 1)].cells)
            if (!c.text.isEmpty() || !c.formula.isEmpty()) return r;
    return 0;
}

GridModel::Row GridModel::blankRow() const {
    Row row;
    row.cells.reserve(m_cols.size());
    for (int c = 1; c <= maxCols(); ++c)
        row.cells.push_back(blankCell(c));
    return row;
}

GridModel::Cell GridModel::blankCell(int col) const {
    Cell c;
    c.locked = (col >= 1 && col <= maxCols()) ? m_cols[size_t(col - 1)].locked : m_lockAll;
    return c;
}

GridModel::Cell* GridModel::cell(int col, int row) {
    return contains(col, row) ? &m_rows[size_t(row - 1)].cells[size_t(col - 1)] : nullptr;
}

const GridModel::Cell* GridModel::cell(int col, int row) const {
    return contains(col, row) ? &m_rows[size_t(row - 1)].cells[size_t(col - 1)] : nullptr;
}

// ---- text ---------------------------------------------------------------------------------

QString GridModel::text(int col, int row) const {
    if (m_list) return listText(col, row);
    const Cell* c = cell(col, row);
    if (!c || c->text.isEmpty()) return c ? c->text : QString();
    const CellFormat f = format(col, row);
    if (!f.isNumber()) return c->text;
    const auto v = gridnum::parse(c->text);
    return v ? gridnum::format(*v, f.decimals, f.separator) : c->text;
}

QString GridModel::editText(int col, int row) const {
    if (m_list) return listEditText(col, row);
    const Cell* c = cell(col, row);
    return c ? c->text : QString();
}

double GridModel::value(int col, int row) const {
    if (m_list) {
        const QVariant* v = m_list->at(col, row);
        return v ? numberOf(*v) : 0.0;
    }
    const Cell* c = cell(col, row);
    if (!c) return 0;
    return gridnum::parse(c->text).value_or(0.0);
}

QString GridModel::storedText(const Cell&, const CellFormat& f, const QString& text, bool* ok) const {
    *ok = true;
    if (!f.isNumber() || text.trimmed().isEmpty()) return f.isNumber() ? QString() : text;
    const auto v = gridnum::parse(text);
    if (!v || *v > f.max || *v < f.min) {
        *ok = false;
        return {};
    }
    return gridnum::plain(*v, f.decimals);
}

bool GridModel::setText(int col, int row, const QString& text) {
    if (m_list) return listSetText(col, row, text);
    Cell* c = cell(col, row);
    if (!c) return false;
    bool ok = false;
    const QString stored = storedText(*c, format(col, row), text, &ok);
    if (!ok) return false;
    c->formula.clear();
    if (c->text == stored) return true;
    c->text = stored;
    changed(col, row);
    recalcFormulas(false);
    return true;
}

void GridModel::changed(int col, int row) {
    m_touched |= QRect(col, row, 1, 1);
    const QModelIndex i = index(row - 1, col - 1);
    Q_EMIT dataChanged(i, i);
    Q_EMIT cellTextChanged(col, row);
}

void GridModel::changedBlock(const QRect& block) {
    if (block.isEmpty()) return;
    m_touched |= block;
    Q_EMIT dataChanged(index(block.top() - 1, block.left() - 1),
                       index(block.bottom() - 1, block.right() - 1));
}

// ---- formulas -----------------------------------------------------------------------------

QString GridModel::formula(int col, int row) const {
    if (m_list) {
        const auto it = m_list->formulas.find({row, col});
        return it == m_list->formulas.end() ? QString() : it->second;
    }
    const Cell* c = cell(col, row);
    return c ? c->formula : QString();
}

void GridModel::setFormula(int col, int row, const QString& formula) {
    if (m_list) return listSetFormula(col, row, formula);
    Cell* c = cell(col, row);
    if (!c) return;
    c->formula = formula;
    if (formula.isEmpty() && !c->text.isEmpty()) {
        c->text.clear();
        changed(col, row);
    }
    recalcFormulas();
}

// R1C1 references only: "SUM(R1C3:R20C3)", the one form the screens write.
std::optional<double> GridModel::evaluate(const QString& formula) const {
    static const QRegularExpression sum(QStringLiteral("^=?\\s*SUM\\(R(\\d+)C(\\d+):R(\\d+)C(\\d+)\\)\\s*$"),
                                        QRegularExpression::CaseInsensitiveOption);
    const auto m = sum.match(formula);
    if (!m.hasMatch()) return std::nullopt;
    const QRect block = resolveBlock(m.captured(2).toInt(), m.captured(1).toInt(), m.captured(4).toInt(),
                                     m.captured(3).toInt());
    if (m_list) return listSum(block);
    double total = 0;
    for (int r = block.top(); r <= block.bottom(); ++r)
        for (int c = block.left(); c <= block.right(); ++c)
            if (cell(c, r)->formula.isEmpty()) total += value(c, r);
    return total;
}

// Formulas are few (a sum in row 1); their places are found again only when cells moved or
// formulas were written, so that filling a long list stays cheap.
void GridModel::recalcFormulas(bool placesChanged) {
    if (m_recalculating) return;
    if (m_list) return listRecalc();
    if (placesChanged) {
        m_formulaCells.clear();
        for (int r = 1; r <= maxRows(); ++r)
            for (int c = 1; c <= maxCols(); ++c)
                if (!cell(c, r)->formula.isEmpty()) m_formulaCells.emplace_back(c, r);
    }
    m_recalculating = true;
    for (const QPoint& at : m_formulaCells) {
        Cell* target = cell(at.x(), at.y());
        if (!target || target->formula.isEmpty()) continue;
        const auto result = evaluate(target->formula);
        const CellFormat f = format(at.x(), at.y());
        const QString text = result ? gridnum::plain(*result, f.isNumber() ? f.decimals : 6) : QString();
        if (target->text == text) continue;
        target->text = text;
        changed(at.x(), at.y());
    }
    m_recalculating = false;
}

// ---- locks, types, colours ----------------------------------------------------------------

bool GridModel::isLocked(int col, int row) const {
    if (m_list) return true; // a list is read-only
    const Cell* c = cell(col, row);
    return c ? c->locked : true;
}

void GridModel::setLock(int col, int row, bool locked) {
    if (col == kAllCells && row == kAllCells) m_lockAll = locked;
    if (row == kAllCells && col >= 1 && col <= maxCols()) m_cols[size_t(col - 1)].locked = locked;
    if (col == kAllCells && row == kAllCells)
        for (auto& column : m_cols)
            column.locked = locked;
    if (m_list) return;
    const QRect block = resolveBlock(col, row, col, row);
    for (int r = block.top(); r <= block.bottom(); ++r)
        for (int c = block.left(); c <= block.right(); ++c)
            cell(c, r)->locked = locked;
}

CellFormat GridModel::columnFormat(int col) const {
    return (col >= 1 && col <= maxCols()) ? m_cols[size_t(col - 1)].format : CellFormat{};
}

CellFormat GridModel::format(int col, int row) const {
    if (m_list) return columnFormat(col);
    const Cell* c = cell(col, row);
    return (c && c->format) ? *c->format : columnFormat(col);
}

void GridModel::setFormat(int col, int row, const CellFormat& format) {
    const bool wholeColumns = row == kAllCells;
    // A column keeps its type also while it has no rows: the rows added later take it.
    if (wholeColumns)
        for (int c = (col == kAllCells ? 1 : col); c <= (col == kAllCells ? maxCols() : col); ++c)
            if (c >= 1 && c <= maxCols()) m_cols[size_t(c - 1)].format = format;
    const QRect block = resolveBlock(col, row, col, row);
    if (block.isEmpty()) return;
    if (m_list) { // list values keep their column's type; a cell of its own has none
        changedBlock(block);
        return;
    }
    for (int r = block.top(); r <= block.bottom(); ++r) {
        for (int c = block.left(); c <= block.right(); ++c) {
            Cell* target = cell(c, r);
            target->format = wholeColumns ? std::nullopt : std::optional<CellFormat>(format);
            bool ok = false;
            const QString kept = storedText(*target, format, target->text, &ok);
            if (kept != target->text) {
                target->text = kept;
                Q_EMIT cellTextChanged(c, r);
            }
        }
    }
    changedBlock(block);
}

std::optional<int> GridModel::backColor(int col, int row) const {
    if (m_list) {
        const auto it = m_list->backs.find({row, col});
        return it == m_list->backs.end() ? std::nullopt : std::optional<int>(it->second);
    }
    const Cell* c = cell(col, row);
    return c ? c->back : std::nullopt;
}

void GridModel::setBackColor(int col, int row, int bgr) {
    if (bgr < 0 || bgr > 0xFFFFFF) throw invalidPropertyValue();
    const QRect block = resolveBlock(col, row, col, row);
    for (int r = block.top(); r <= block.bottom(); ++r)
        for (int c = block.left(); c <= block.right(); ++c)
            if (m_list)
                m_list->backs[{r, c}] = bgr;
            else
                cell(c, r)->back = bgr;
    changedBlock(block);
}

void GridModel::setOddEvenRowColor(int oddBack, int oddFore, int evenBack, int evenFore) {
    m_oddBack = oddBack;
    m_oddFore = oddFore;
    m_evenBack = evenBack;
    m_evenFore = evenFore;
    changedBlock(resolveBlock(kAllCells, kAllCells, kAllCells, kAllCells));
}

int GridModel::rowBackColor(int row) const {
    return row % 2 == 1 ? m_oddBack : m_evenBack;
}
int GridModel::rowForeColor(int row) const {
    return row % 2 == 1 ? m_oddFore : m_evenFore;
}

// ---- columns and headers ------------------------------------------------------------------

bool GridModel::isColHidden(int col) const {
    return col >= 1 && col <= maxCols() && m_cols[size_t(col - 1)].hidden;
}

void GridModel::setColHidden(int col, bool hidden) {
    if (col >= 1 && col <= maxCols()) m_cols[size_t(col - 1)].hidden = hidden;
}

QString GridModel::colId(int col) const {
    return (col >= 1 && col <= maxCols()) ? m_cols[size_t(col - 1)].id : QString();
}

void GridModel::setColId(int col, const QString& id) {
    if (col >= 1 && col <= maxCols()) m_cols[size_t(col - 1)].id = id;
}

int GridModel::colById(const QString& id) const {
    for (int c = 1; c <= maxCols(); ++c)
        if (m_cols[size_t(c - 1)].id.compare(id, Qt::CaseInsensitive) == 0) return c;
    return 0;
}

// Unnamed columns read A, B, ... Z, AA like the original's headers.
static QString columnLetters(int col) {
    QString name;
    for (int n = col; n > 0; n = (n - 1) / 26)
        name.prepend(QChar(u'A' + (n - 1) % 26));
    return name;
}

QString GridModel::colHeaderText(int col) const {
    if (col < 1 || col > maxCols()) return {};
    const auto& header = m_cols[size_t(col - 1)].header;
    return header ? *header : columnLetters(col);
}

void GridModel::setColHeaderText(int col, const QString& text) {
    if (col < 1 || col > maxCols()) return;
    m_cols[size_t(col - 1)].header = text;
    Q_EMIT headerDataChanged(Qt::Horizontal, col - 1, col - 1);
}

QString GridModel::rowHeaderText(int row) const {
    if (row < 1 || row > maxRows()) return {};
    if (m_list) return QString::number(row);
    const auto& header = m_rows[size_t(row - 1)].header;
    return header ? *header : QString::number(row);
}

void GridModel::setRowHeaderText(int row, const QString& text) {
    if (row < 1 || row > maxRows() || m_list) return;
    m_rows[size_t(row - 1)].header = text;
    Q_EMIT headerDataChanged(Qt::Vertical, row - 1, row - 1);
}

// ---- blocks -------------------------------------------------------------------------------

QRect GridModel::resolveBlock(int col, int row, int col2, int row2) const {
    if (col == kAllCells || col2 == kAllCells) col = 1, col2 = maxCols();
    if (row == kAllCells || row2 == kAllCells) row = 1, row2 = maxRows();
    QRect block = QRect(QPoint(col, row), QPoint(col2, row2)).normalized();
    return block.intersected(QRect(1, 1, maxCols(), maxRows()));
}

void GridModel::refreshAll() {
    recalcFormulas();
    if (maxRows() > 0 && maxCols() > 0) changedBlock(QRect(1, 1, maxCols(), maxRows()));
}

void GridModel::refreshTouched() {
    recalcFormulas();
    const QRect block = m_touched.intersected(QRect(1, 1, maxCols(), maxRows()));
    if (!block.isEmpty()) changedBlock(block);
}

void GridModel::clearBlock(int col, int row, int col2, int row2) {
    const QRect block = resolveBlock(col, row, col2, row2);
    if (m_list) return listClearBlock(block);
    // Only the cells that held a text or a formula are told to the view: clearing an empty grid
    // repaints nothing.
    QRect emptied;
    for (int r = block.top(); r <= block.bottom(); ++r) {
        for (int c = block.left(); c <= block.right(); ++c) {
            Cell* target = cell(c, r);
            const bool had = !target->text.isEmpty();
            if (had || !target->formula.isEmpty()) emptied |= QRect(c, r, 1, 1);
            target->text.clear();
            target->formula.clear();
            if (had) Q_EMIT cellTextChanged(c, r);
        }
    }
    changedBlock(emptied);
    recalcFormulas();
}

void GridModel::moveBlock(int col, int row, int col2, int row2, int destCol, int destRow) {
    const QRect source = resolveBlock(col, row, col2, row2);
    if (source.isEmpty()) return;
    if (m_list) return listMoveBlock(source, destCol, destRow);
    std::vector<std::vector<Cell>> taken;
    for (int r = source.top(); r <= source.bottom(); ++r) {
        std::vector<Cell> line;
        for (int c = source.left(); c <= source.right(); ++c)
            line.push_back(*cell(c, r));
        taken.push_back(std::move(line));
    }
    clearBlock(source.left(), source.top(), source.right(), source.bottom());
    for (int dr = 0; dr < int(taken.size()); ++dr) {
        for (int dc = 0; dc < int(taken[size_t(dr)].size()); ++dc) {
            Cell* target = cell(destCol + dc, destRow + dr);
            if (!target) continue;
            const Cell& moved = taken[size_t(dr)][size_t(dc)];
            const bool textChanged = target->text != moved.text;
            target->text = moved.text;
            target->formula = moved.formula;
            if (textChanged) Q_EMIT cellTextChanged(destCol + dc, destRow + dr);
        }
    }
    changedBlock(resolveBlock(kAllCells, kAllCells, kAllCells, kAllCells));
    recalcFormulas();
}

void GridModel::deleteRows(int row, int count) {
    if (row < 1 || row > maxRows() || count < 1) return;
    if (m_list) return listDeleteRows(row, count);
    const int last = std::min(maxRows(), row + count - 1);
    std::vector<QString> before;
    for (int r = row; r <= maxRows(); ++r)
        for (int c = 1; c <= maxCols(); ++c)
            before.push_back(text(c, r));
    const int rowsBefore = maxRows();
    m_rows.erase(m_rows.begin() + (row - 1), m_rows.begin() + last);
    while (maxRows() < rowsBefore)
        m_rows.push_back(blankRow());
    changedBlock(resolveBlock(kAllCells, row, kAllCells, maxRows()));
    Q_EMIT headerDataChanged(Qt::Vertical, row - 1, maxRows() - 1);
    size_t i = 0;
    for (int r = row; r <= maxRows(); ++r)
        for (int c = 1; c <= maxCols(); ++c, ++i)
            if (text(c, r) != before[i]) Q_EMIT cellTextChanged(c, r);
    recalcFormulas();
}

void GridModel::insertRows(int row, int count) {
    if (row < 1 || row > maxRows() || count < 1) return;
    if (m_list) return listInsertRows(row, count);
    for (int i = 0; i < count; ++i)
        m_rows.insert(m_rows.begin() + (row - 1), blankRow());
    m_rows.resize(m_rows.size() - size_t(count));
    changedBlock(resolveBlock(kAllCells, row, kAllCells, maxRows()));
    Q_EMIT headerDataChanged(Qt::Vertical, row - 1, maxRows() - 1);
    recalcFormulas();
}

// ---- Qt model side ------------------------------------------------------------------------

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : (m_list ? m_viewRows : maxRows());
}
int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : maxCols();
}

static Qt::Alignment alignmentOf(const CellFormat& f) {
    const Qt::Alignment across = f.isNumber() ? Qt::AlignRight : Qt::AlignLeft;
    switch (f.vAlign) {
    case VAlign::Top:
        return across | Qt::AlignTop;
    case VAlign::Bottom:
        return across | Qt::AlignBottom;
    case VAlign::Center:
        break;
    }
    return across | Qt::AlignVCenter;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const int col = index.column() + 1, row = index.row() + 1;
    if (!contains(col, row)) return {};
    switch (role) {
    case Qt::DisplayRole:
        return text(col, row);
    case Qt::EditRole:
        return editText(col, row);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(alignmentOf(format(col, row)));
    case Qt::BackgroundRole:
        return colorFromBgr(backColor(col, row).value_or(rowBackColor(row)));
    case Qt::ForegroundRole:
        return colorFromBgr(rowForeColor(row));
    default:
        return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    if (role != Qt::DisplayRole) return {};
    return orientation == Qt::Horizontal ? colHeaderText(section + 1) : rowHeaderText(section + 1);
}

} // namespace nb
