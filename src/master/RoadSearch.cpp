#include "master/RoadSearch.h"

#include "master/RoadImport.h"
#include "master/SearchRules.h"

#include <QAtomicInt>
#include <QHash>
#include <QRegularExpression>
#include <QSqlError>

namespace nb {
namespace {

const QString kColumns = QStringLiteral(
    "SELECT a.ZIPCODE, a.SIDO, a.SIGUNGU, a.EUPMYEON, a.ROADNAME, a.UNDERGROUND, a.BLDG_MAIN, a.BLDG_SUB, "
    "a.BLDG_NAME, a.DONG, a.RI, a.SAN, a.JIBUN_MAIN, a.JIBUN_SUB ");

const QString kLike = QStringLiteral(" LIKE ?") + kLikeEscape;

// "209", "12-3", "산4", "산4-1": a building or lot number.
bool readNumberWord(const QString& word, RoadSearchWords& out) {
    static const QRegularExpression number(QStringLiteral("^(산)?([0-9]{1,5})(?:-([0-9]{1,5}))?$"));
    const QRegularExpressionMatch m = number.match(word);
    if (!m.hasMatch()) return false;
    out.hasNumber = true;
    out.mountain = out.mountain || !m.captured(1).isEmpty();
    out.main = m.captured(2).toInt();
    out.sub = m.captured(3).isEmpty() ? -1 : m.captured(3).toInt();
    return true;
}

// One kind of name: the walk over the names that hold the text, each joined to its addresses.
struct Branch {
    QString sql;
    QVariantList values;
    void add(const QString& condition, const QVariant& value) {
        sql += QStringLiteral(" AND ") + condition;
        values << value;
    }
};

// The index of the addresses by each kind's name, walked whatever the statistics say.
QString addressIndexOf(const QString& rowColumn) {
    static const QHash<QString, QString> indexes = {
        {QStringLiteral("ROAD_T"), QStringLiteral("RoadAddr_road")},
        {QStringLiteral("BLDG_T"), QStringLiteral("RoadAddr_building")},
        {QStringLiteral("PLACE_T"), QStringLiteral("RoadAddr_place")},
        {QStringLiteral("HDONG_T"), QStringLiteral("RoadAddr_adminDong")}};
    return indexes.value(rowColumn);
}

Branch nameBranch(const SearchIndexDef& def, const QString& rowColumn, const RoadSearchWords& w) {
    const IndexWalk walk = SearchIndexWalk(def, w.text);
    Branch b;
    b.sql =
        kColumns +
        QStringLiteral("FROM %1 CROSS JOIN %2 t CROSS JOIN RoadAddr a INDEXED BY %6 WHERE %3 AND "
                       "t.id = %4 AND a.%5 = t.id")
            .arg(walk.source, def.table, walk.condition, walk.rowid, rowColumn, addressIndexOf(rowColumn));
    b.values << walk.value;
    b.add(QStringLiteral("t.NAME") + kLike, LikeContains(w.text));
    for (const QString& region : w.regions)
        b.add(QStringLiteral("(a.SIDO || ' ' || a.SIGUNGU || ' ' || a.EUPMYEON)") + kLike,
              LikeContains(region));
    return b;
}

void addBuildingNumber(Branch& b, const RoadSearchWords& w) {
    if (!w.hasNumber) return;
    b.add(QStringLiteral("a.BLDG_MAIN = ?"), w.main);
    if (w.sub >= 0) b.add(QStringLiteral("a.BLDG_SUB = ?"), w.sub);
}

void addLotNumber(Branch& b, const RoadSearchWords& w) {
    if (!w.hasNumber) return;
    b.add(QStringLiteral("a.SAN = ?"), w.mountain ? 1 : 0);
    b.add(QStringLiteral("a.JIBUN_MAIN = ?"), w.main);
    if (w.sub >= 0) b.add(QStringLiteral("a.JIBUN_SUB = ?"), w.sub);
}

// An address found as a road is not listed again as a building or a town, nor a building
// as a town.
void notAlready(Branch& b, const QStringList& columns, const RoadSearchWords& w) {
    for (const QString& column : columns)
        b.add(QStringLiteral("a.") + column + QStringLiteral(" NOT") + kLike, LikeContains(w.text));
}

// A kind's name of an address read from the small table of names by the number the address
// index carries, so an address that does not hold the text is never read itself.
QString nameOf(const QString& table, const QString& rowColumn) {
    return QStringLiteral("(SELECT n.NAME FROM %1 n WHERE n.id = a.%2)").arg(table, rowColumn);
}

// A kind walked number first: the addresses of the building or lot number in the book's order,
// each checked for the name, and for the names of the kinds listed before it.
Branch numberFirst(bool lot, const QString& name, const QStringList& listedBefore, const RoadSearchWords& w) {
    Branch b;
    if (lot) {
        b.sql = kColumns + QStringLiteral("FROM RoadAddr a INDEXED BY RoadAddr_lot WHERE a.JIBUN_MAIN = ?");
        b.values << w.main;
        b.add(QStringLiteral("a.SAN = ?"), w.mountain ? 1 : 0);
        if (w.sub >= 0) b.add(QStringLiteral("a.JIBUN_SUB = ?"), w.sub);
    } else {
        b.sql = kColumns + QStringLiteral("FROM RoadAddr a INDEXED BY RoadAddr_number WHERE a.BLDG_MAIN = ?");
        b.values << w.main;
        if (w.sub >= 0) b.add(QStringLiteral("a.BLDG_SUB = ?"), w.sub);
    }
    b.add(name + kLike, LikeContains(w.text));
    for (const QString& before : listedBefore)
        b.add(QStringLiteral("IFNULL(%1, '') NOT").arg(before) + kLike, LikeContains(w.text));
    for (const QString& region : w.regions)
        b.add(QStringLiteral("(a.SIDO || ' ' || a.SIGUNGU || ' ' || a.EUPMYEON)") + kLike,
              LikeContains(region));
    return b;
}

// How many names of the kind hold the text, counted up to kManyNames.
int namesHolding(const QSqlDatabase& book, const SearchIndexDef& def, const QString& text) {
    const IndexWalk walk = SearchIndexWalk(def, text);
    QSqlQuery q(book);
    q.prepare(
        QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM %1 CROSS JOIN %2 t WHERE %3 AND t.id = %4 AND "
                       "t.NAME")
            .arg(walk.source, def.table, walk.condition, walk.rowid) +
        kLike + QStringLiteral(" LIMIT ?)"));
    q.addBindValue(walk.value);
    q.addBindValue(LikeContains(text));
    q.addBindValue(kManyNames);
    return q.exec() && q.next() ? q.value(0).toInt() : 0;
}

SqlPart nameSearch(const QSqlDatabase& book, const RoadSearchWords& w) {
    auto many = [&](const SearchIndexDef& def) {
        return w.hasNumber && namesHolding(book, def, w.text) >= kManyNames;
    };
    const QString road = nameOf(QStringLiteral("RoadName"), QStringLiteral("ROAD_T"));
    const QString building = nameOf(QStringLiteral("BuildingName"), QStringLiteral("BLDG_T"));
    const QString place = nameOf(QStringLiteral("PlaceName"), QStringLiteral("PLACE_T"));
    const QString adminDong = nameOf(QStringLiteral("PlaceName"), QStringLiteral("HDONG_T"));
    QList<Branch> branches;
    if (!w.mountain) {
        Branch byRoad = nameBranch(RoadNameIndex(), QStringLiteral("ROAD_T"), w);
        addBuildingNumber(byRoad, w);
        if (many(RoadNameIndex())) byRoad = numberFirst(false, road, {}, w);
        Branch byBuilding = nameBranch(BuildingNameIndex(), QStringLiteral("BLDG_T"), w);
        addBuildingNumber(byBuilding, w);
        notAlready(byBuilding, {QStringLiteral("ROADNAME")}, w);
        if (many(BuildingNameIndex())) byBuilding = numberFirst(false, building, {road}, w);
        branches << byRoad << byBuilding;
    }
    Branch byPlace = nameBranch(PlaceNameIndex(), QStringLiteral("PLACE_T"), w);
    addLotNumber(byPlace, w);
    notAlready(byPlace, {QStringLiteral("ROADNAME"), QStringLiteral("BLDG_NAME")}, w);
    Branch byAdminDong = nameBranch(PlaceNameIndex(), QStringLiteral("HDONG_T"), w);
    addLotNumber(byAdminDong, w);
    notAlready(byAdminDong,
               {QStringLiteral("ROADNAME"), QStringLiteral("BLDG_NAME"), QStringLiteral("PLACE")}, w);
    if (many(PlaceNameIndex())) {
        byPlace = numberFirst(true, place, {road, building}, w);
        byAdminDong = numberFirst(true, adminDong, {road, building, place}, w);
    }
    branches << byPlace << byAdminDong;
    SqlPart part;
    for (const Branch& b : branches) {
        part.sql += (part.sql.isEmpty() ? QString() : QStringLiteral(" UNION ALL ")) + b.sql;
        part.values << b.values;
    }
    return part;
}

QString connectionName() {
    static QAtomicInt next;
    return QStringLiteral("roadBook%1").arg(next.fetchAndAddRelaxed(1));
}

} // namespace

RoadSearchWords ReadRoadSearchText(const QString& text) {
    RoadSearchWords w;
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return w;
    if (trimmed.front().isDigit()) {
        w.byZip = true;
        w.text = trimmed;
        return w;
    }
    QStringList names;
    for (const QString& word :
         trimmed.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts)) {
        if (word == u"산") {
            w.mountain = true;
        } else if (!readNumberWord(word, w)) {
            names << word;
        }
    }
    if (!names.isEmpty()) w.text = names.takeLast();
    w.regions = names;
    return w;
}

SqlPart RoadSearchQuery(const QSqlDatabase& book, const QString& text) {
    const RoadSearchWords w = ReadRoadSearchText(text);
    if (w.byZip)
        return {kColumns + QStringLiteral("FROM RoadZip z CROSS JOIN RoadAddr a WHERE z.ZIPCODE") + kLike +
                    QStringLiteral(" AND a.ZIPCODE = z.ZIPCODE"),
                {LikeContains(w.text)}};
    if (!w.text.isEmpty()) return nameSearch(book, w);
    if (w.hasNumber) return {kColumns + QStringLiteral("FROM RoadAddr a WHERE 0"), {}}; // a number alone
    return {kColumns + QStringLiteral("FROM RoadAddr a"), {}};
}

namespace {

// The statement's columns in order, from a query or a row of values alike.
template <typename Value> RoadAddress addressOf(const Value& value) {
    RoadAddress a;
    a.zip = value(0).toString();
    a.sido = value(1).toString();
    a.sigungu = value(2).toString();
    a.eupmyeon = value(3).toString();
    a.roadName = value(4).toString();
    a.underground = value(5).toInt() != 0;
    a.buildingMain = value(6).toInt();
    a.buildingSub = value(7).toInt();
    a.buildingName = value(8).toString();
    a.dong = value(9).toString();
    a.ri = value(10).toString();
    a.mountain = value(11).toInt() != 0;
    a.lotMain = value(12).toInt();
    a.lotSub = value(13).toInt();
    return a;
}
constexpr int kStatementColumns = 14;

QString numberWords(int main, int sub) {
    return sub > 0 ? QString::number(main) + u'-' + QString::number(sub) : QString::number(main);
}

} // namespace

RoadAddress RoadAddressOfRow(const QSqlQuery& q) {
    return addressOf([&q](int column) { return q.value(column); });
}

RoadBookConnection::RoadBookConnection() : m_name(connectionName()) {}

RoadBookConnection::~RoadBookConnection() {
    if (!QSqlDatabase::contains(m_name)) return;
    QSqlDatabase::database(m_name, false).close();
    QSqlDatabase::removeDatabase(m_name);
}

QSqlDatabase RoadBookConnection::database() {
    QSqlDatabase db = QSqlDatabase::contains(m_name)
                          ? QSqlDatabase::database(m_name, false)
                          : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
    if (!db.isOpen()) {
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        db.setDatabaseName(RoadBookFile());
        db.open();
    }
    return db;
}

bool RoadRows::search(const QString& text) {
    m_rows.reset();
    m_hasLast = false;
    if (!SqliteRows::canStep(m_book)) return false;
    const SqlPart part = RoadSearchQuery(m_book, text);
    // Stepped through the engine's own interface: each value made once, a text the row before
    // held (the province, the district, the road) shared with it.
    auto rows = std::make_unique<SqliteStatement>(m_book, part.sql, part.values);
    if (!rows->ok()) return false;
    m_rows = std::move(rows);
    return true;
}

bool RoadRows::nextAddress(RoadAddress& out) {
    if (!m_rows) return false;
    QVariant values[kStatementColumns];
    if (!m_rows->next(values, kStatementColumns)) {
        m_rows.reset(); // through: the statement lets go of the book
        return false;
    }
    out = addressOf([&values](int column) { return values[column]; });
    return true;
}

QString RoadRows::roadText(const RoadAddress& a) {
    if (!m_hasLast || a.sido != m_last.sido || a.sigungu != m_last.sigungu || a.eupmyeon != m_last.eupmyeon ||
        a.roadName != m_last.roadName || a.underground != m_last.underground) {
        QStringList words;
        for (const QString& w : {a.sido, a.sigungu, a.eupmyeon, a.roadName})
            if (!w.isEmpty()) words << w;
        if (a.underground) words << QStringLiteral("지하");
        m_roadWords = words.isEmpty() ? QString() : words.join(u' ') + u' ';
    }
    return m_roadWords + numberWords(a.buildingMain, a.buildingSub);
}

QString RoadRows::lotText(const RoadAddress& a) {
    if (!m_hasLast || a.sido != m_last.sido || a.sigungu != m_last.sigungu || a.eupmyeon != m_last.eupmyeon ||
        a.dong != m_last.dong || a.ri != m_last.ri) {
        QStringList words;
        for (const QString& w : {a.sido, a.sigungu, PlaceText(a)})
            if (!w.isEmpty()) words << w;
        m_lotWords = words.join(u' ');
    }
    if (a.lotMain <= 0) return m_lotWords;
    const QString number =
        (a.mountain ? QStringLiteral("산 ") : QString()) + numberWords(a.lotMain, a.lotSub);
    return m_lotWords.isEmpty() ? number : m_lotWords + u' ' + number;
}

bool RoadRows::next(QVariant* out, int count) {
    RoadAddress a;
    if (!nextAddress(a)) return false;
    const QString texts[kRoadColumns] = {a.zip, roadText(a), lotText(a), a.buildingName};
    m_last = a;
    m_hasLast = true;
    for (int c = 0; c < count && c < kRoadColumns; ++c)
        out[c] = texts[c].isEmpty() ? QVariant() : QVariant(texts[c]);
    return true;
}

const QStringList& RoadHeadings() {
    static const QStringList headings = {QStringLiteral("우편번호"), QStringLiteral("도로명 주소"),
                                         QStringLiteral("지번 주소"), QStringLiteral("건물명")};
    return headings;
}

QVector<RoadAddress> SearchRoadBook(const QString& text, int most) {
    RoadBookConnection book;
    QVector<RoadAddress> found;
    {
        RoadRows rows(book.database());
        RoadAddress a;
        for (bool more = rows.search(text); more && found.size() < most && rows.nextAddress(a);)
            found << a;
    }
    return found;
}

} // namespace nb
