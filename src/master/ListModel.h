#pragma once
// The rows a list screen shows: texts read once from a query, with the headings of the grid.

#include "storage/Database.h"

#include <QAbstractTableModel>
#include <QSqlQuery>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <memory>

namespace nb {

class ListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit ListModel(const QStringList& headings, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setHeading(int column, const QString& heading); // column from 0
    void setRows(QVector<QStringList> rows);
    void appendRows(const QVector<QStringList>& rows);
    void clear();
    // The text of a cell, columns from 0; empty outside.
    QString text(int row, int column) const;
    // The first row whose column holds the value, or -1 (every row read first).
    int findRow(int column, const QString& value);

    // Rows read from an open forward-only query a page at a time: the first page at once, the
    // rest between events, so a list of every trader opens at once and the window stays free.
    void fillFrom(std::unique_ptr<QSqlQuery> query, int firstRows = kFirstPage);
    bool isFilling() const { return m_query != nullptr; }
    // Reads what is left now (before anything that needs every row).
    void finishFilling();
    static constexpr int kFirstPage = 200;
    static constexpr int kPage = 2000;

private:
    void readRows(int count);
    void stopFilling();

    QStringList m_headings;
    QVector<QStringList> m_rows;
    std::unique_ptr<QSqlQuery> m_query;
    QTimer* m_pager = nullptr;
};

// Every row of an open recordset as texts (null as the empty text), in its column order.
QVector<QStringList> RowsOf(Recordset& rs);

} // namespace nb
