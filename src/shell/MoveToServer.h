#pragma once
// A shop's books moved from this seat's store files onto a PostgreSQL database, so that other
// seats can work on them: each store becomes a schema of that database, laid down by the same
// layout the server's stores are made by, its rows copied in one transaction per store and
// checked, source beside result (the rows of every table and the sum of every number column),
// before the transaction is committed. Only a database that holds no books is taken: no row in
// any table of the stores' schemas (schemas without rows are no books). When all
// stores are there the seat is pointed at the server (its "서버" settings); a failure on the way
// removes what was made and leaves the seat on its files, as it was.

#include "storage/ServerSettings.h"
#include "storage/backup/ServerCopy.h"

#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

namespace nb {

// One table moved, with its rows.
using MovedTable = CopiedTable;

struct MoveReport {
    bool ok = false;
    QString failure;          // in Korean, when not ok
    QList<MovedTable> tables; // what was moved, when ok
    qint64 rows() const;
};

struct MoveOptions {
    // Told before each store is moved: its schema, its place among the stores, their count.
    std::function<void(const QString& store, int index, int count)> storeBegun;
    // For the tests of a failure midway: called after each store's rows are copied, inside its
    // transaction; false makes that store fail there.
    std::function<bool(const QString& store)> afterCopy;
};

// Moves every store of this seat (the state's store paths) to the server the settings name and
// points the seat at it. The seat must work on its files; the database must hold no books (a row
// in a table of a store's schema; empty schemas are replaced).
MoveReport moveToServer(const ServerSettings& target, const MoveOptions& options = {});

// The lines that tell the operator what was moved.
QStringList moveReportLines(const MoveReport& report);

// The command line's --move-to-server (to the database of the seat's "서버" settings) and the
// menu entry "mnu_moveToServer".
void registerMoveToServer();
void RunMoveToServerMenu(QWidget* mainWindow);

} // namespace nb
