#pragma once
// The search of the road-name postcode book. A text beginning with a digit finds the postcodes
// that contain it; any other text is read as words: the last word that is no number is the name
// searched (a road, a building, a town, whichever holds it), a number after it ("209",
// "12-3", "산 4") the building number of a road or the lot number of a town, and the words
// before it narrow to the provinces and districts that hold them. An empty text lists the book.
//
// The rows come as one statement read as they are seen: the roads whose name holds the text,
// then the buildings, then the towns (legal, then administrative), each kind once, each name in
// the book's order with its addresses by number. Every part walks an index in the order it
// lists, so the first rows come without reading the rest. With a number, a kind of which many
// names hold the text ("아파트 12") is walked number first instead: the addresses of that
// number in the book's order, each checked for the name.

#include "common/grid/GridRows.h"
#include "common/grid/SqliteRows.h"
#include "master/RoadBook.h"
#include "master/SearchIndex.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVector>
#include <memory>
#include <string>

namespace nb {

struct RoadSearchWords {
    bool byZip = false;
    QString text;        // the postcode digits, or the name searched
    QStringList regions; // words before the name
    bool hasNumber = false;
    bool mountain = false;
    int main = 0;
    int sub = -1; // -1: any
};
RoadSearchWords ReadRoadSearchText(const QString& text);

// The statement for a trimmed text, with its values. With a number it holds both walks of each
// kind and chooses between them itself, by how many names of the kind hold the text.
SqlPart RoadSearchQuery(const QString& text);
// From this many names on, a search with a number walks the number first.
inline constexpr int kManyNames = 5000;

// A row of the statement as an address.
RoadAddress RoadAddressOfRow(const QSqlQuery& q);

// A connection to the road-name book that only reads (the book is replaced whole by the next
// import, never changed in place), opened on first use and closed with this object. Its plans do
// not hang on the values bound, so a statement kept prepared is run again with new values without
// being prepared anew.
class RoadBookConnection {
public:
    RoadBookConnection();
    ~RoadBookConnection();
    RoadBookConnection(const RoadBookConnection&) = delete;
    RoadBookConnection& operator=(const RoadBookConnection&) = delete;
    // The open connection; a closed one when the book cannot be read.
    QSqlDatabase database();
    // True when the connection is open on a book that an import has since replaced (or removed).
    // Whoever keeps statements or rows on it lets them go, then closes it; the next database()
    // opens the book there now.
    bool replaced() const;
    void close();

private:
    QString m_name;
    quint64 m_device = 0; // the file opened, told apart from a later file of the same name
    quint64 m_inode = 0;
};

// The rows of a search as the postcode list shows them (its list mode reads them forward as they
// are seen): the postcode, the road-name address, the lot address and the building name. The
// connection must outlive the rows. With `kept`, each shape of statement is prepared once and run
// again by later searches (the rows of an earlier search on the same statement must be let go
// before the next search runs it).
class RoadRows : public GridRowSource {
public:
    explicit RoadRows(const QSqlDatabase& book, KeptStatements* kept = nullptr)
        : m_book(book), m_kept(kept) {}

    // Runs the search; false (and no rows) when the book cannot be read.
    bool search(const QString& text);
    // The next address of the search; false when there are no more.
    bool nextAddress(RoadAddress& out);

    int width() const override { return kRoadColumns; }
    bool next(QVariant* out, int count) override;
    static constexpr int kRoadColumns = 4;

private:
    QSqlDatabase m_book;
    KeptStatements* m_kept = nullptr;
    std::shared_ptr<SqliteStatement> m_rows;
    std::string m_text; // the address text being made, in UTF-8
};
// The list's headings, one a column of RoadRows.
const QStringList& RoadHeadings();

// The first `most` addresses a search finds, in the list's order; none when the book cannot be
// read.
QVector<RoadAddress> SearchRoadBook(const QString& text, int most);

} // namespace nb
