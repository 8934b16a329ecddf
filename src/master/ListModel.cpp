#include "master/ListModel.h"

namespace nb {

ListModel::ListModel(const QStringList& headings, QObject* parent)
    : QAbstractTableModel(parent), m_headings(headings) {}

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

int ListModel::findRow(int column, const QString& value) const {
    for (int r = 0; r < m_rows.size(); ++r)
        if (m_rows[r].value(column) == value) return r;
    return -1;
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
