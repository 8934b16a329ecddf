#pragma once
// The rows of a search list as the list screens hand them over and read them. They stand in the
// list's grid (its list mode), held once: a query's rows are read a page at a time as the
// operator scrolls or between events, rows made by the screen are handed over whole. Rows and
// columns count from 0 here, as the list screens count them; the grid counts from 1.

#include "common/grid/GridRows.h"
#include "common/grid/SqliteRows.h"
#include "storage/Database.h"

#include <QObject>
#include <QSqlQuery>
#include <QStringList>
#include <QVector>
#include <memory>

namespace nb {

class Grid;

class ListModel : public QObject {
    Q_OBJECT
public:
    // Sets the grid up as a read-only list with these headings, one column each.
    ListModel(Grid* grid, const QStringList& headings, QObject* parent = nullptr);

    // The rows there are now (a list still being read: those read so far).
    int rowCount() const;
    int columnCount() const { return int(m_headings.size()); }
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const;

    void setHeading(int column, const QString& heading); // column from 0
    // New headings, one column each; the list is emptied.
    void setHeadings(const QStringList& headings);
    void setRows(QVector<QStringList> rows);
    void clear();
    // The text of a cell as the list shows it; empty outside.
    QString text(int row, int column) const;
    // The first row whose column holds the value, or -1 (every row read first).
    int findRow(int column, const QString& value);

    // Rows read from an open forward-only query: the first page at once, the rest between
    // events, so a list of every trader opens at once and the window stays free.
    void fillFrom(std::unique_ptr<QSqlQuery> query);
    // The same from any source of rows (a search that shapes its rows as the list shows them).
    void fillFrom(std::unique_ptr<GridRowSource> rows);
    bool isFilling() const;
    // Reads what is left now (before anything that needs every row).
    void finishFilling();
    static constexpr int kFirstPage = 200;

private:
    Grid* m_grid;
    QStringList m_headings;
};

// The rows of a search on a store for a list: on a SQLite store stepped straight from the engine
// by the statement kept for it in kept (prepared by the first search); on the server from its
// answer past Qt's driver (Database::openRowsOnServer), with the values and types the driver
// would give; elsewhere read forward through Qt. Null, its failure box shown, when the
// statement cannot run.
std::unique_ptr<GridRowSource> OpenListRows(Database& db, const QString& sql, const QVariantList& values,
                                            KeptStatements& kept);

// Every row of an open recordset as texts (null as the empty text), in its column order.
QVector<QStringList> RowsOf(Recordset& rs);

} // namespace nb
