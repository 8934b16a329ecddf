#pragma once
// Trigram indexes beside the tables that the lists search with a leading wildcard (traders
// by name, telephone or last address word; the postcode book by postcode or town). Each index
// is an FTS5 table kept in step with its table by triggers; it only narrows the rows that the
// exact LIKE conditions then test, so results and order are those of the plain queries.
// A text shorter than three characters cannot use a trigram index: a table of every one- and
// two-character piece of the columns, kept by the same triggers, narrows the rows instead.
// A store on a server keeps no FTS5 tables: its ILIKE conditions use the server's own trigram
// indexes (storage/StoreEngine.h) for three characters and more, and the traders' pieces table
// kept by a trigger on the server (storage/ServerSearchPieces.h) for one and two.

#include "storage/Database.h"

#include <QString>
#include <QStringList>
#include <QVariantList>

namespace nb {

struct SearchIndexDef {
    QString table; // the indexed table
    QString index; // the FTS5 table beside it
    QStringList columns;
};
const SearchIndexDef& TraderSearchIndex(); // Trader: C_Name, Phone, Addr2
const SearchIndexDef& PostSearchIndex();   // Post: ZIPCODE, DONG

inline constexpr int kTrigramMinChars = 3;
// True when the text is long enough for a trigram index.
bool UsesTrigramIndex(const QString& text);

// Creates the indexes that fit the tables this file holds, fills them, and checks an existing
// one against its table (rebuilding it when they differ). Safe to call at every open.
void EnsureSearchIndexes(Database& db);
// One index; false when the table is absent or the engine refused.
bool EnsureSearchIndex(Database& db, const SearchIndexDef& def);
// Removes the index and its triggers (a bulk load rebuilds it afterwards).
void DropSearchIndex(Database& db, const SearchIndexDef& def);
// True when the index table exists in the file (on the server: the pieces table).
bool HasSearchIndex(Database& db, const SearchIndexDef& def);

// A piece of a WHERE clause with its bound values.
struct SqlPart {
    QString sql;
    QVariantList values;
    bool isEmpty() const { return sql.isEmpty(); }
};
// "<table>.rowid IN (SELECT rowid FROM <index> WHERE <index> MATCH ?) AND " narrowing the
// table to rows where one of the columns may contain the text, or for one or two characters
// "<table>.rowid IN (SELECT rid FROM <pieces> WHERE gram = ? AND col IN (...)) AND "; empty when
// the index cannot be had, and always on the server (see SearchSource). The index is made ready
// on first use.
SqlPart SearchCandidates(Database& db, const SearchIndexDef& def, const QString& text,
                         const QStringList& columns);
// What a list reads its rows from, for "FROM <source> WHERE ...": the table itself, except on the
// server for a text of one or two characters, where it is the table's rows that hold the text as
// a piece of one of the columns, looked up by their row numbers, or the whole table when more
// than 5,000 pieces hold it; one statement either way, named as the table. The list's own
// conditions then test those rows, so its rows and their order stay the plain query's.
SqlPart SearchSource(Database& db, const SearchIndexDef& def, const QString& text,
                     const QStringList& columns);

// For a book built once and only read (no triggers): the statements that make and fill the
// index beside a table already loaded.
QStringList SearchIndexBuildStatements(const SearchIndexDef& def);
// The rows of an index that may hold the text in its first column, as the first table of a
// join walked in row order: "FROM <source> WHERE <condition>" pieces, the row's id in `rowid`.
struct IndexWalk {
    QString source;    // the index table (with its alias), to stand first in a CROSS JOIN
    QString rowid;     // the expression of the indexed row's id
    QString condition; // with one bound value, the text
    QVariant value;
};
IndexWalk SearchIndexWalk(const SearchIndexDef& def, const QString& text);

} // namespace nb
