#include "master/ListModel.h"

#include "common/grid/MduSpread.h"

#include <QSqlRecord>

namespace nb {

static_assert(ListModel::kFirstPage == GridModel::kFirstPage);

ListModel::ListModel(Grid* grid, const QStringList& headings, QObject* parent)
    : QObject(parent), m_grid(grid), m_headings(headings) {
    CommonSpreadDesign(*m_grid, true, true, true, true);
    m_grid->setMaxCols(int(headings.size()));
    for (int c = 0; c < headings.size(); ++c)
        m_grid->SetText(c + 1, 0, headings.at(c));
    m_grid->showList(nullptr, 0);
}

int ListModel::rowCount() const {
    return m_grid->MaxRows();
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    return m_headings.value(section);
}

void ListModel::setHeading(int column, const QString& heading) {
    if (column < 0 || column >= m_headings.size()) return;
    m_headings[column] = heading;
    m_grid->SetText(column + 1, 0, heading);
}

void ListModel::setHeadings(const QStringList& headings) {
    m_grid->showList(nullptr, 0);
    m_headings = headings;
    m_grid->setMaxCols(int(headings.size()));
    for (int c = 0; c < headings.size(); ++c)
        m_grid->SetText(c + 1, 0, headings.at(c));
}

void ListModel::setRows(QVector<QStringList> rows) {
    QVector<QVariantList> values;
    values.reserve(rows.size());
    for (const QStringList& row : rows) {
        QVariantList line;
        line.reserve(row.size());
        for (const QString& text : row)
            line << (text.isEmpty() ? QVariant() : QVariant(text));
        values << line;
    }
    const int count = int(values.size());
    m_grid->showList(std::make_unique<RowsInMemory>(std::move(values), columnCount()), count);
}

void ListModel::clear() {
    m_grid->showList(nullptr, 0);
}

QString ListModel::text(int row, int column) const {
    if (row < 0 || column < 0 || row >= rowCount() || column >= columnCount()) return QString();
    return m_grid->Text(column + 1, row + 1);
}

int ListModel::findRow(int column, const QString& value) {
    finishFilling();
    for (int r = 0; r < rowCount(); ++r)
        if (text(r, column) == value) return r;
    return -1;
}

void ListModel::fillFrom(std::unique_ptr<QSqlQuery> query) {
    m_grid->showList(std::make_unique<QueryRows>(std::move(query)), -1);
}

void ListModel::fillFrom(std::unique_ptr<GridRowSource> rows) {
    m_grid->showList(std::move(rows), -1);
}

bool ListModel::isFilling() const {
    return m_grid->isReading();
}

void ListModel::finishFilling() {
    m_grid->finishReading();
}

std::unique_ptr<GridRowSource> OpenListRows(Database& db, const QString& sql, const QVariantList& values,
                                            KeptStatements& kept) {
    if (db.onServer()) {
        // Read past Qt's driver, in one round trip, the values made straight from the answer.
        std::unique_ptr<GridRowSource> rows = db.openRowsOnServer(sql, values);
        if (!rows)
            ReportQueryFailure(db.lastErrorNumber(), db.lastErrorDescription(), sqlForDisplay(sql, values),
                               db.lastEngineCode());
        return rows;
    }
    if (!SqliteRows::canStep(db.connection())) {
        auto rows = std::make_unique<QSqlQuery>(db.connection());
        if (!OpenForwardOnly(db, *rows, sql, values)) return nullptr;
        return std::make_unique<QueryRows>(std::move(rows));
    }
    std::shared_ptr<SqliteStatement> statement = kept.run(db.connection(), sql, values);
    if (!statement) return nullptr;
    if (!statement->ok()) {
        ReportQueryFailure(errorNumberFor(statement->engineText(), statement->engineCode()),
                           statement->engineText(), sqlForDisplay(sql, values), statement->engineCode());
        return nullptr;
    }
    return std::make_unique<SqliteRows>(std::move(statement));
}

QVector<QStringList> RowsOf(Recordset& rs) {
    QVector<QStringList> rows;
    rows.reserve(rs.RecordCount());
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        QStringList row;
        row.reserve(rs.fieldCount());
        for (int c = 0; c < rs.fieldCount(); ++c) {
            const QVariant v = rs.field(c);
            row << (v.isNull() ? QString() : v.toString());
        }
        rows << row;
    }
    rs.MoveFirst();
    return rows;
}

} // namespace nb
