#include "master/ListModel.h"

#include <QSqlRecord>

namespace nb {

ListModel::ListModel(const QStringList& headings, QObject* parent)
    : QAbstractTableModel(parent), m_headings(headings), m_pager(new QTimer(this)) {
    m_pager->setInterval(0);
    connect(m_pager, &QTimer::timeout, this, [this] { readRows(kPage); });
}

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_headings.size());
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
    return text(index.row(), index.column());
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    return m_headings.value(section);
}

void ListModel::setHeading(int column, const QString& heading) {
    if (column < 0 || column >= m_headings.size()) return;
    m_headings[column] = heading;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

void ListModel::setRows(QVector<QStringList> rows) {
    stopFilling();
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

void ListModel::appendRows(const QVector<QStringList>& rows) {
    if (rows.isEmpty()) return;
    beginInsertRows(QModelIndex(), int(m_rows.size()), int(m_rows.size() + rows.size()) - 1);
    m_rows += rows;
    endInsertRows();
}

void ListModel::clear() {
    setRows({});
}

QString ListModel::text(int row, int column) const {
    if (row < 0 || row >= m_rows.size()) return QString();
    return m_rows[row].value(column);
}

int ListModel::findRow(int column, const QString& value) {
    finishFilling();
    for (int r = 0; r < m_rows.size(); ++r)
        if (m_rows[r].value(column) == value) return r;
    return -1;
}

void ListModel::fillFrom(std::unique_ptr<QSqlQuery> query, int firstRows) {
    setRows({});
    m_query = std::move(query);
    readRows(firstRows);
    if (m_query) m_pager->start();
}

void ListModel::finishFilling() {
    while (m_query)
        readRows(kPage);
}

void ListModel::stopFilling() {
    m_pager->stop();
    m_query.reset();
}

void ListModel::readRows(int count) {
    if (!m_query) return;
    QVector<QStringList> page;
    const int columns = m_query->record().count();
    while (page.size() < count && m_query->next()) {
        QStringList row;
        row.reserve(columns);
        for (int c = 0; c < columns; ++c) {
            const QVariant v = m_query->value(c);
            row << (v.isNull() ? QString() : v.toString());
        }
        page << row;
    }
    if (page.size() < count) stopFilling(); // the query is through
    appendRows(page);
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
