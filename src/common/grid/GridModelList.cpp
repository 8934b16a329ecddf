// The list mode of GridModel: the rows are a query's values, read as they are needed.
#include "common/grid/GridModel.h"
#include "common/grid/GridNumbers.h"

#include <QRegularExpression>

namespace nb {

void GridModel::showList(std::unique_ptr<GridRowSource> source, int knownRows, bool fromEnd,
                         int blankRowsAfter) {
    m_pager->stop();
    beginResetModel();
    const int atHand = source ? source->rowsAtHand() : 0;
    m_list = std::make_unique<GridList>(std::move(source), maxCols(), knownRows, fromEnd);
    m_rows.clear();
    m_formulaCells.clear();
    m_list->readPage(std::max(kFirstPage, atHand));
    // The blank rows join the list before the view hears of it: one count told once, and a list
    // as long as the one before changes no row of the view's headers.
    if (blankRowsAfter > 0 && m_list->countKnown()) m_list->resize(m_list->rows() + blankRowsAfter);
    m_viewRows = m_list->rows();
    endResetModel();
    if (m_list->reading() && m_readsAhead) m_pager->start();
}

// Tells the view how many rows there are now, by the book: it is told before it asks again.
void GridModel::syncListRows() {
    const int now = m_list->rows();
    if (now > m_viewRows) {
        beginInsertRows({}, m_viewRows, now - 1);
        m_viewRows = now;
        endInsertRows();
    } else if (now < m_viewRows) {
        beginRemoveRows({}, now, m_viewRows - 1);
        m_viewRows = now;
        endRemoveRows();
    }
    if (!m_list->reading()) m_pager->stop();
}

void GridModel::readListPage(int count) {
    if (!m_list || !m_list->reading()) {
        m_pager->stop();
        return;
    }
    if (!m_list->canReadNow()) return; // the next tick
    m_list->readPage(count);
    syncListRows();
}

void GridModel::finishReading() {
    if (!isReading()) return;
    m_list->readAll();
    syncListRows();
}

bool GridModel::readUpTo(int row) {
    if (!m_list) return row >= 1 && row <= maxRows();
    const bool there = m_list->readUpTo(row);
    syncListRows();
    return there;
}

void GridModel::setListSum(int col, double sum) {
    if (!m_list) return;
    m_list->setSum(col, sum);
    listRecalc();
}

QVariant GridModel::listValue(int col, int row) const {
    if (!m_list) return {};
    const QVariant* v = m_list->at(col, row);
    return v ? *v : QVariant();
}

bool GridModel::setListValue(int col, int row, const QVariant& value) {
    if (!m_list) return false;
    QVariant* v = m_list->at(col, row);
    syncListRows();
    if (!v) return false;
    m_list->formulas.erase({row, col});
    if (*v == value && v->typeId() == value.typeId()) return true;
    m_list->valueChanged(col, *v, value);
    *v = value;
    changed(col, row);
    listRecalc();
    return true;
}

double GridModel::columnTotal(int col) {
    if (m_list) {
        if (const auto known = m_list->sum(col)) return *known;
        finishReading();
    }
    double total = 0;
    for (int r = 1; r <= maxRows(); ++r)
        if (formula(col, r).isEmpty()) total += value(col, r);
    return total;
}

bool GridModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && m_list && m_list->reading() && !m_list->countKnown();
}

void GridModel::fetchMore(const QModelIndex& parent) {
    if (!parent.isValid()) readListPage(kPage);
}

// ---- size ---------------------------------------------------------------------------------

void GridModel::listSetMaxRows(int rows) {
    if (rows == 0) m_pager->stop();
    // Rows added after the query's counted rows leave the rest unread; anything else needs every
    // row first (the view hears of them before the change).
    if (rows != 0 && !(rows >= maxRows() && m_list->countKnown())) finishReading();
    const int old = maxRows();
    m_list->resize(rows);
    if (rows < old) listRecalc();
    syncListRows();
}

void GridModel::listSetMaxCols(int cols) {
    finishReading();
    const int oldCols = maxCols(), rows = maxRows();
    QVector<QVariantList> kept;
    kept.reserve(rows);
    for (int r = 1; r <= rows; ++r) {
        QVariantList row;
        for (int c = 1; c <= std::min(cols, oldCols); ++c)
            row << *m_list->at(c, r);
        kept << row;
    }
    auto formulas = m_list->formulas;
    auto backs = m_list->backs;
    beginResetModel();
    m_cols.resize(size_t(cols));
    m_list = std::make_unique<GridList>(std::make_unique<RowsInMemory>(std::move(kept), cols), cols, rows);
    m_list->readAll();
    for (const auto& [at, formula] : formulas)
        if (at.second <= cols) m_list->formulas[at] = formula;
    for (const auto& [at, back] : backs)
        if (at.second <= cols) m_list->backs[at] = back;
    m_viewRows = m_list->rows();
    endResetModel();
    listRecalc();
}

// Rows of the query count as data without being read; rows after them as their values say.
int GridModel::listDataRowCnt() const {
    for (int r = maxRows(); r >= 1; --r) {
        if (!m_list->peek(1, r)) return r; // a query row not read yet
        for (int c = 1; c <= maxCols(); ++c)
            if (!m_list->peek(c, r)->isNull() && !m_list->peek(c, r)->toString().isEmpty()) return r;
    }
    return 0;
}

// ---- cells --------------------------------------------------------------------------------

QString GridModel::listText(int col, int row) const {
    const QVariant* v = m_list->at(col, row);
    if (!v || v->isNull()) return {};
    const CellFormat f = columnFormat(col);
    if (!f.isNumber() && v->typeId() == QMetaType::Double) return gridnum::plain(v->toDouble(), 9);
    if (!f.isNumber() || v->typeId() == QMetaType::QString) {
        const QString text = v->toString();
        if (!f.isNumber() || text.isEmpty()) return text;
        const auto number = gridnum::parse(text);
        return number ? gridnum::format(*number, f.decimals, f.separator) : text;
    }
    return gridnum::format(v->toDouble(), f.decimals, f.separator);
}

QString GridModel::listEditText(int col, int row) const {
    const QVariant* v = m_list->at(col, row);
    if (!v || v->isNull()) return {};
    const CellFormat f = columnFormat(col);
    if (!f.isNumber() || v->typeId() == QMetaType::QString) return v->toString();
    return gridnum::plain(v->toDouble(), f.decimals);
}

// The program writes a list cell as it writes any cell: a number column takes a number within
// its limits (kept as a number), another column the text.
bool GridModel::listSetText(int col, int row, const QString& text) {
    QVariant* v = m_list->at(col, row);
    syncListRows();
    if (!v) return false;
    const CellFormat f = columnFormat(col);
    QVariant stored;
    if (f.isNumber()) {
        if (!text.trimmed().isEmpty()) {
            const auto number = gridnum::parse(text);
            if (!number || *number > f.max || *number < f.min) return false;
            stored = gridnum::parse(gridnum::plain(*number, f.decimals)).value_or(*number);
        }
    } else if (!text.isEmpty()) {
        stored = text;
    }
    m_list->formulas.erase({row, col});
    if (*v == stored && v->typeId() == stored.typeId()) return true;
    m_list->valueChanged(col, *v, stored);
    *v = stored;
    changed(col, row);
    listRecalc();
    return true;
}

void GridModel::listSetFormula(int col, int row, const QString& formula) {
    QVariant* v = m_list->at(col, row);
    syncListRows();
    if (!v) return;
    if (formula.isEmpty()) {
        m_list->formulas.erase({row, col});
        if (!v->isNull()) {
            m_list->valueChanged(col, *v, QVariant());
            *v = QVariant();
            changed(col, row);
        }
    } else {
        m_list->formulas[{row, col}] = formula;
    }
    listRecalc();
}

// A sum over every row of a column the query summed is that sum, less the rows after the
// block (rows the program added, always in memory); anything else reads the rows it covers.
std::optional<double> GridModel::listSum(const QRect& block) const {
    if (block.isEmpty()) return 0.0;
    if (block.left() == block.right() && block.top() == 1) {
        const auto known = m_list->sum(block.left());
        if (known) {
            bool allRead = true;
            double after = 0;
            for (int r = block.bottom() + 1; r <= maxRows() && allRead; ++r) {
                const QVariant* v = m_list->peek(block.left(), r);
                if (!v)
                    allRead = false;
                else
                    after += numberOf(*v);
            }
            if (allRead) return *known - after;
        }
    }
    double total = 0;
    for (int r = block.top(); r <= block.bottom(); ++r)
        for (int c = block.left(); c <= block.right(); ++c)
            if (!m_list->formulas.count({r, c})) {
                const QVariant* v = m_list->at(c, r);
                if (v) total += numberOf(*v);
            }
    return total;
}

void GridModel::listRecalc() {
    if (m_recalculating || !m_list) return;
    m_recalculating = true;
    const auto formulas = m_list->formulas; // a copy: working one out may read rows
    for (const auto& [at, formula] : formulas) {
        const int row = at.first, col = at.second;
        const auto result = evaluate(formula);
        const CellFormat f = columnFormat(col);
        QVariant value;
        if (result)
            value = f.isNumber() ? QVariant(gridnum::roundAt(*result, f.decimals))
                                 : QVariant(gridnum::plain(*result, 6));
        QVariant* target = m_list->at(col, row);
        if (!target || (*target == value && target->typeId() == value.typeId())) continue;
        *target = value;
        changed(col, row);
    }
    m_recalculating = false;
}

// ---- blocks -------------------------------------------------------------------------------

// Columns after the query's own stay empty until written, so clearing them reads nothing.
void GridModel::listClearBlock(const QRect& block) {
    if (block.isEmpty()) return;
    const bool touchesQueryColumns = block.left() <= m_list->sourceWidth();
    // The formulas are few: they are looked through once, not for every cell of the block.
    std::erase_if(m_list->formulas, [&block](const auto& formula) {
        return block.contains(formula.first.second, formula.first.first);
    });
    for (int r = block.top(); r <= block.bottom(); ++r) {
        for (int c = block.left(); c <= block.right(); ++c) {
            QVariant* v = touchesQueryColumns ? m_list->at(c, r) : const_cast<QVariant*>(m_list->peek(c, r));
            if (!v || v->isNull()) continue;
            m_list->valueChanged(c, *v, QVariant());
            *v = QVariant();
            Q_EMIT cellTextChanged(c, r);
        }
    }
    syncListRows();
    changedBlock(block);
    listRecalc();
}

void GridModel::listMoveBlock(const QRect& source, int destCol, int destRow) {
    finishReading();
    std::vector<std::vector<QVariant>> taken;
    for (int r = source.top(); r <= source.bottom(); ++r) {
        std::vector<QVariant> line;
        for (int c = source.left(); c <= source.right(); ++c)
            line.push_back(*m_list->at(c, r));
        taken.push_back(std::move(line));
    }
    listClearBlock(source);
    for (int dr = 0; dr < int(taken.size()); ++dr) {
        for (int dc = 0; dc < int(taken[size_t(dr)].size()); ++dc) {
            QVariant* target = m_list->at(destCol + dc, destRow + dr);
            if (!target) continue;
            const QVariant& moved = taken[size_t(dr)][size_t(dc)];
            m_list->valueChanged(destCol + dc, *target, moved);
            *target = moved;
            Q_EMIT cellTextChanged(destCol + dc, destRow + dr);
        }
    }
    changedBlock(resolveBlock(kAllCells, kAllCells, kAllCells, kAllCells));
    listRecalc();
}

// Rows of a list move up in memory; the view repaints them, and the formulas are worked out
// again (their cells are announced), without announcing every moved cell one by one.
void GridModel::listDeleteRows(int row, int count) {
    finishReading();
    m_list->eraseRows(row, count);
    changedBlock(resolveBlock(kAllCells, row, kAllCells, maxRows()));
    Q_EMIT headerDataChanged(Qt::Vertical, row - 1, maxRows() - 1);
    listRecalc();
}

void GridModel::listInsertRows(int row, int count) {
    finishReading();
    m_list->insertBlankRows(row, count);
    changedBlock(resolveBlock(kAllCells, row, kAllCells, maxRows()));
    Q_EMIT headerDataChanged(Qt::Vertical, row - 1, maxRows() - 1);
    listRecalc();
}

} // namespace nb
