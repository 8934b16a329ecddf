#pragma once
// On the server, the one- and two-character pieces of the trader columns the lists search
// inside (name, telephone, last address word), in a table beside the traders kept by a trigger.
// A text under three characters cannot use the trigram indexes (StoreEngine.h); the list asks
// this table for the rows that hold the text as a piece instead of reading every trader, then
// tests those rows with its own ILIKE conditions, so the rows and their order are those of the
// plain query. The files keep the same pieces in their own search tables (master/SearchIndex.h);
// as theirs, the pieces are made and filled at the store's first short search, so the store's
// layout stays the tables of the books.
//
// A piece is the column's text cut at each character, lower-cased as the lists' comparison
// folds letters (ASCII only); a row's pieces are numbered by the column they come from, 0, 1, 2
// in the order above.

#include <QString>
#include <QStringList>

namespace nb {

// The table of pieces beside `table` ("trader_search_grams" for Trader), empty for a table
// the lists do not search inside.
QString serverPiecesTable(const QString& table);
// The trigger that keeps them, and its function, by one name.
QString serverPiecesTrigger(const QString& table);
// The searched columns of the table in their numbering.
QStringList serverPiecesColumns(const QString& table);

// What makes the pieces table, the index of the table's row numbers the search looks rows up
// by, and the trigger that keeps the pieces in step with every insert, change and delete;
// nothing for other tables. Each may run again: an existing piece is kept or replaced.
QStringList serverPiecesStatements(const QString& table);
// The pieces of every row the table holds now: run after the statements above, in the same
// transaction.
QStringList serverPiecesFillStatements(const QString& table);

// The search text as its pieces are stored: ASCII letters in lower case, everything else as it is.
QString piecesKey(const QString& text);

} // namespace nb
