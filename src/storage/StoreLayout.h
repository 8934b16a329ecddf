#pragma once
// The layout of every store file: tables, their columns in order with declared types and
// widths, and their indexes. The same definitions create a missing file and the tables the
// start-up upgrade adds to an older one, so both come out alike.
//
// Choices where the original files fixed things by themselves:
// - text columns without a stated width get the widths below; the engine keeps longer text
//   all the same, so a width documents the entry field rather than limiting it;
// - every text column accepts the empty text;
// - numbers the program treats as doubles are REAL, integers and longs INTEGER, yes/no
//   columns BOOLEAN holding -1 / 0, never null (0 when not set);
// - an index of the original is named table + "_" + its name (storeIndexName); a primary
//   index is a unique index and its columns are NOT NULL; indexes added only for speed are
//   named table + "_" + their first column.

#include "storage/Database.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace nb {

struct ColumnDef {
    QString name;
    int type = dbText; // DaoType
    int size = 0;      // text width; 0 for the engine's default
    bool required = false;
};

struct IndexDef {
    QString name; // the original's name on the table; the store's is storeIndexName(table, name)
    QStringList columns;
    bool primary = false;
};

struct TableDef {
    QString name;
    QList<ColumnDef> columns;
    QList<IndexDef> indexes;
};

// The tables of each file, in the order they are created.
QList<TableDef> basicTables();    // User, Environment, Trader, Product
QList<TableDef> billTables();     // Master, Detail
QList<TableDef> taxTables();      // NewAcount, BuyTax, BuyTotal, SaleTotal, EtaxFile, EtaxHandOver
QList<TableDef> estimateTables(); // EstiBase, Estimate
QList<TableDef> postTables();     // Post
// One table by name (exact), from any file; an empty definition when unknown.
TableDef tableDef(const QString& name);

// "CREATE TABLE ..." then one "CREATE [UNIQUE] INDEX ..." per index; nothing is created that
// exists already. On the server (server true) the names are in lower case, the types the
// server's, and every table ends with a row number, rowid, as the files' tables have one
// unseen: the order rows were written in (kept out of Database::columns).
QStringList createStatements(const TableDef& table, bool server = false);
// A server's work table (SaleTotal, BuyTotal) laid down before its rows were kept per seat: the
// seat column added, and the table's indexes made anew leading with it (StoreEngine.h). None
// for other tables.
QStringList serverSeatUpgrade(const TableDef& table);
// Creates the table with its indexes in one transaction; a failure shows the query box and
// leaves the file as it was.
bool createTable(Database& db, const TableDef& table);
// The triggers that round fractions written into a table's whole-number columns half to even
// (SaleTotal, BuyTotal, Estimate); none for other tables. The files need them; the server's
// whole-number columns round a fraction written into them half to even by themselves (the
// fraction is bound as double precision, see serverStatement).
QStringList wholeNumberTriggers(const QString& table);

// The index that orders a month's quotation codes by their running number: the month (the
// code's first six characters), then the code's length, then the code, so that "2024051000"
// comes after "202405999". A new quotation's number reads a few entries from the month's end
// instead of the whole month. One for EstiBase (EstiCode) and one for Estimate (Code), the
// same on both engines; the name is empty and the statement none for other tables.
QString runningCodeIndexName(const QString& table);
QString runningCodeIndex(const QString& table);

// Creates, for each store path of the application state that is set and names no existing
// file or an empty one, that file with its complete layout; InOutCash.db is created without
// tables. The file appears whole or not at all. A file with any content is never touched.
void CreateMissingStoreFiles();
// Creates one store file with the given tables; false when a file with content is there or it
// cannot be written. An empty file in its place is replaced. A store of the seat on the server
// is its schema, made with its tables in one transaction.
bool createStoreFile(const QString& path, const QList<TableDef>& tables);
// A file of zero bytes with no journal content beside it: nothing was ever stored in it (a copy
// or an installation cut short), so it is laid down like a missing one.
bool isEmptyStoreFile(const QString& path);

} // namespace nb
