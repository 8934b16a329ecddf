#pragma once
// Where the engine choice lives. A seat keeps its books either in store files (SQLite, the
// default) or in one PostgreSQL database shared by several seats (ServerSettings.h). On the
// server each store the program opens by its file path is a schema of that one database, named
// as the cross-store queries call it ("basic", "bill", "tax", "estimate", "inout"), so that
// basic.Trader reads the same on both engines. Everything else stays a file of the seat: the
// postcode books, the old per-month and old-format files, the files an import builds aside.
//
// The differences the two engines cannot share in one statement text are settled here, in one
// small function each: the server's statement text, its column types, the key its writers are
// serialised by, and its failures in the words of the files' failure boxes.

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

class QSqlError;

namespace nb {

// The seat's stores a server keeps, each by its schema and its path in the application state,
// in the order they are moved, backed up and restored. The postcode book is not among them.
struct ServerStore {
    QString schema;
    QString path;
};
QList<ServerStore> serverStores();
// Their schemas alone, in the same order.
QStringList storeSchemaNames();

// The schema of the seat's store at path when the seat works on the server; empty when the
// path stays a file (the seat works on files, or the path is none of its stores).
QString serverSchemaOf(const QString& path);

// The writers of one store take an advisory lock of this class with the hash of the store's
// schema, held to their transaction's end; it marks the program's locks among any others.
inline constexpr int kServerWriterLockClass = 0x4E42; // "NB"

// The statement as the server takes it: LIKE compares without regard to ASCII case as on the
// files (ILIKE); INSERT OR IGNORE becomes ON CONFLICT DO NOTHING; the table User (a reserved
// word there) is quoted; quoted names are folded to lower case as the server's tables are; a
// fractional value is bound as double precision, so that a whole-number column it is written
// into rounds it half to even. Quoted texts are left alone.
QString serverStatement(const QString& sql, const QVariantList& values);

// The server's type of a column of the given DAO type (texts in code point order, which is the
// byte order the files sort by).
QString serverColumnType(int daoType);

// The index of a server table's row numbers. On the files a row is found by its rowid through
// the table's own tree, and the stores lean on that: a trader's first invoice is joined back to
// its row by number, a work table is listed in the order it was written. Without the index the
// server would read the whole table for each.
QString serverRowidIndex(const QString& table);

// The work tables the program refills for itself (SaleTotal, BuyTotal). On the files each seat
// has its own; on the server every seat shares one, so there each row carries the seat it was
// written by (the column `seat`, the server's own as rowid is: left out of columns(), of a "*"
// recordset and of the index columns a table reports), every one of the table's indexes leads
// with it, and the program reads and clears only its own seat's rows. A seat is a connection of
// the program together with those working aside for it: it names itself in the server's
// application_name (Database::seatKey), which the column takes by default, so the program's
// inserts read alike on both engines and the rows of a seat that has gone can be told by its
// name missing from the server's list of connections.
bool isWorkTable(const QString& table);
inline const QString kServerSeatColumn = QStringLiteral("seat");
// The seat column as the server's work tables declare it.
QString serverSeatColumn();
// The seat's own rows of a work table, for a FROM clause, under the given alias: the table
// itself on the files.
QString seatRows(bool server, const QString& table, const QString& alias);
// The statement that empties the seat's own rows of a work table (the whole table on the
// files); on the server it clears the rows of seats no longer connected too.
QString clearSeatRows(bool server, const QString& table);

// The trigram indexes (pg_trgm, GIN) that let the server's ILIKE '%text%' on the columns the
// lists search inside (traders by name, telephone, last address word) read an index instead of
// the whole table for texts of three characters and more; none for other tables. Shorter texts
// are narrowed by the table of pieces beside the traders (ServerSearchPieces.h). The files keep
// their own search tables instead.
// A trader's trigrams go into the index as the trader is saved (fastupdate off): kept aside in
// the index's list of pending entries instead, every search would read that list whole, and the
// server, counting its pages, would guess the index dearer than reading all the traders once
// some thousands were added since its last vacuum, and read the table for a text eleven hold.
QStringList serverTrigramIndexes(const QString& table);
// Their names ("trader_c_name_trgm", ...); none for other tables.
QStringList serverTrigramIndexNames(const QString& table);
// What brings a trigram index made by an older build to that: its entries written straight in
// from now on, and those pending taken into it now.
QStringList serverTrigramIndexSettling(const QString& index);
// The statement that makes pg_trgm available to the stores (in public, on their search path).
QString serverTrigramExtension();

// Engine codes the server's failures are told by, as the files' failure boxes know them
// (the file engine's own numbers), plus one the files never meet.
inline constexpr int kServerUnreachableCode = 1008;
struct ServerFault {
    int engineCode = 0;     // a file engine code (busy, full, read-only, constraint ...) or the above
    int errorNumber = 0;    // the original's error number (ErrSyntax, ErrEngine) or engineCode
    bool retryable = false; // a deadlock or a conflict of two seats: the whole save may run again
};
ServerFault serverFaultOf(const QSqlError& error);

// What the operator reads when the server cannot be reached, and the title of its box at start.
QString serverUnreachableText();
inline const QString kServerUnreachableTitle = QStringLiteral("자료 서버 연결");

} // namespace nb
