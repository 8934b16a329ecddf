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

#include "master/RoadBook.h"
#include "master/SearchIndex.h"

#include <QAbstractTableModel>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVector>
#include <memory>

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

// The statement for a trimmed text, with its values; `book` is asked how many names of each
// kind hold the text when a number is given.
SqlPart RoadSearchQuery(const QSqlDatabase& book, const QString& text);
// From this many names on, a search with a number walks the number first.
inline constexpr int kManyNames = 5000;

// A row of the statement as an address.
RoadAddress RoadAddressOfRow(const QSqlQuery& q);

// The rows of a search in the list, read a page at a time as the list is scrolled to them.
class RoadListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit RoadListModel(QObject* parent = nullptr);
    ~RoadListModel() override;

    // Runs the search; false (and no rows) when the book cannot be read.
    bool search(const QString& text);
    // The rows read so far reach at least `count` (fewer when the search has no more).
    void readAtLeast(int count);
    const RoadAddress& address(int row) const { return m_rows.at(row); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

    static constexpr int kPage = 100;

private:
    bool openBook();
    void closeQuery();
    QString m_connection;
    std::unique_ptr<QSqlQuery> m_query;
    QVector<RoadAddress> m_rows;
};

} // namespace nb
