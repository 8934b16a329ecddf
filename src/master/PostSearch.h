#pragma once
// The postcode book (table Post of the postcode store file): the search FrmPost runs, and the
// shapes in which a postcode and an address prefix are handed to the calling screen.

#include "common/grid/SqliteRows.h"
#include "master/SearchIndex.h"

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVector>
#include <memory>

namespace nb {

// The postcode limits of the old environment row; a supplier save empties them, so the
// search never holds them today, but its branches stay.
struct PostLimits {
    QString sPost;
    QString ePost;
};
PostLimits& postLimits();

// The search of the book for a trimmed text: digits (any non-negative first code) find
// postcodes containing them, Hangul finds towns (DONG) containing it, an empty text lists
// all within the limits. Ordered by postcode, then by the order of the book.
SqlPart PostSearchQuery(Database& db, const QString& text, const PostLimits& limits);
// The search run forward-only on the postcode store file, for a list that reads its rows as they
// are seen; null when the engine refused it.
std::unique_ptr<QSqlQuery> OpenPostSearch(Database& postDb, const QString& text);
// The same search's rows for the list: on a SQLite file stepped straight from the engine by the
// statement kept for its text (prepared by the first search of that kind); null when refused.
std::unique_ptr<GridRowSource> OpenPostRows(Database& postDb, const QString& text, KeptStatements& kept);
// The rows (ZIPCODE, SIDO, GUGUN, DONG, BUNJI) from the postcode store file, opened for this
// search; none when the file is missing.
QVector<QStringList> SearchPostBook(const QString& text);
QVector<QStringList> SearchPostBook(Database& postDb, const QString& text);

// A single hit's postcode: "###-###".
QString SingleHitZip(const QString& zip);
// A postcode chosen in the list: six characters take the form "000-000", others stay.
QString ChosenZip(const QString& zip);
// SIDO + " " + GUGUN + " " + DONG; the street number is left to the operator.
QString AddressPrefix(const QStringList& row);

} // namespace nb
