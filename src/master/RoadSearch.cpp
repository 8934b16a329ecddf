#include "master/RoadSearch.h"

#include "master/RoadImport.h"
#include "master/SearchRules.h"

#include <QAtomicInt>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <cstring>
#include <sqlite3.h>
#include <sys/stat.h>

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

// With a number, each kind has two walks, and the statement itself decides between them: a
// one-row table "<kind>Many" says whether kManyNames names of the kind hold the text, the walk by
// name runs only when it says no and the walk by number only when it says yes. The table is made
// when the statement first reaches its kind, once, so a page filled by an earlier kind never
// counts the later kinds' names. The count reads the index alone (its entries are the names
// that hold the text, bar the case of letters beyond Latin, which only chooses a walk).
struct Choice {
    QString table;
    QString sql;
    QVariant value;
};

Choice manyNames(const QString& table, const SearchIndexDef& def, const RoadSearchWords& w) {
    const IndexWalk walk = SearchIndexWalk(def, w.text);
    return {table,
            QStringLiteral("%1(many) AS MATERIALIZED (SELECT count(*) >= %2 FROM (SELECT 1 FROM %3 WHERE %4 "
                           "LIMIT %2))")
                .arg(table)
                .arg(kManyNames)
                .arg(walk.source, walk.condition),
            walk.value};
}

// The branch run only when the choice's table says `many` (or says not): it walks from a table of
// one row or none, which the engine reads before anything else of the branch.
Branch chosen(const Choice& choice, bool many, Branch b) {
    const QString from = QStringLiteral("FROM ");
    b.sql.insert(b.sql.indexOf(from) + from.size(),
                 QStringLiteral("(SELECT 1 FROM %1 WHERE %2many LIMIT 1) k CROSS JOIN ")
                     .arg(choice.table, many ? QString() : QStringLiteral("NOT ")));
    return b;
}

SqlPart nameSearch(const RoadSearchWords& w) {
    const QString road = nameOf(QStringLiteral("RoadName"), QStringLiteral("ROAD_T"));
    const QString building = nameOf(QStringLiteral("BuildingName"), QStringLiteral("BLDG_T"));
    const QString place = nameOf(QStringLiteral("PlaceName"), QStringLiteral("PLACE_T"));
    const QString adminDong = nameOf(QStringLiteral("PlaceName"), QStringLiteral("HDONG_T"));
    QList<Choice> choices;
    QList<Branch> branches;
    // Both walks of a kind when a number is given, each behind its choice; the walk by name alone
    // otherwise.
    auto both = [&](const Choice& choice, const Branch& byName, const Branch& byNumber) {
        if (!w.hasNumber) {
            branches << byName;
            return;
        }
        if (choices.isEmpty() || choices.last().table != choice.table) choices << choice;
        branches << chosen(choice, false, byName) << chosen(choice, true, byNumber);
    };
    if (!w.mountain) {
        Branch byRoad = nameBranch(RoadNameIndex(), QStringLiteral("ROAD_T"), w);
        addBuildingNumber(byRoad, w);
        both(manyNames(QStringLiteral("roadMany"), RoadNameIndex(), w), byRoad,
             numberFirst(false, road, {}, w));
        Branch byBuilding = nameBranch(BuildingNameIndex(), QStringLiteral("BLDG_T"), w);
        addBuildingNumber(byBuilding, w);
        notAlready(byBuilding, {QStringLiteral("ROADNAME")}, w);
        both(manyNames(QStringLiteral("buildingMany"), BuildingNameIndex(), w), byBuilding,
             numberFirst(false, building, {road}, w));
    }
    const Choice places = manyNames(QStringLiteral("placeMany"), PlaceNameIndex(), w);
    Branch byPlace = nameBranch(PlaceNameIndex(), QStringLiteral("PLACE_T"), w);
    addLotNumber(byPlace, w);
    notAlready(byPlace, {QStringLiteral("ROADNAME"), QStringLiteral("BLDG_NAME")}, w);
    both(places, byPlace, numberFirst(true, place, {road, building}, w));
    Branch byAdminDong = nameBranch(PlaceNameIndex(), QStringLiteral("HDONG_T"), w);
    addLotNumber(byAdminDong, w);
    notAlready(byAdminDong,
               {QStringLiteral("ROADNAME"), QStringLiteral("BLDG_NAME"), QStringLiteral("PLACE")}, w);
    both(places, byAdminDong, numberFirst(true, adminDong, {road, building, place}, w));
    SqlPart part;
    for (const Choice& c : choices) {
        part.sql += (part.sql.isEmpty() ? QStringLiteral("WITH ") : QStringLiteral(", ")) + c.sql;
        part.values << c.value;
    }
    if (!part.sql.isEmpty()) part.sql += u' ';
    for (qsizetype i = 0; i < branches.size(); ++i) {
        part.sql += (i == 0 ? QString() : QStringLiteral(" UNION ALL ")) + branches[i].sql;
        part.values << branches[i].values;
    }
    return part;
}

// The file's device and inode: a book renamed over the one open is another file, though its name
// is the same (the open one's inode cannot be taken by another file while it is open).
bool fileIdentity(const QString& path, quint64& device, quint64& inode) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0) return false;
    device = quint64(st.st_dev);
    inode = quint64(st.st_ino);
    return true;
}

// A statement's plan is made without looking at the values bound (the engine otherwise prepares a
// statement with a LIKE of a bound text anew whenever the text is bound again). The book's
// statements fix their walks themselves, so nothing is lost.
void plansIgnoreValues(const QSqlDatabase& db) {
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return;
    sqlite3* engine = *static_cast<sqlite3* const*>(handle.constData());
    if (engine) sqlite3_db_config(engine, SQLITE_DBCONFIG_ENABLE_QPSG, 1, nullptr);
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
    static const QRegularExpression blanks(QStringLiteral("\\s+")); // made once, not at every search
    for (const QString& word : trimmed.split(blanks, Qt::SkipEmptyParts)) {
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

SqlPart RoadSearchQuery(const QString& text) {
    const RoadSearchWords w = ReadRoadSearchText(text);
    if (w.byZip)
        return {kColumns + QStringLiteral("FROM RoadZip z CROSS JOIN RoadAddr a WHERE z.ZIPCODE") + kLike +
                    QStringLiteral(" AND a.ZIPCODE = z.ZIPCODE"),
                {LikeContains(w.text)}};
    if (!w.text.isEmpty()) return nameSearch(w);
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
        if (db.open()) {
            fileIdentity(RoadBookFile(), m_device, m_inode);
            plansIgnoreValues(db);
        }
    }
    return db;
}

bool RoadBookConnection::replaced() const {
    if (!QSqlDatabase::contains(m_name) || !QSqlDatabase::database(m_name, false).isOpen()) return false;
    quint64 device = 0;
    quint64 inode = 0;
    return !fileIdentity(RoadBookFile(), device, inode) || device != m_device || inode != m_inode;
}

void RoadBookConnection::close() {
    if (QSqlDatabase::contains(m_name)) QSqlDatabase::database(m_name, false).close();
}

bool RoadRows::search(const QString& text) {
    m_rows.reset();
    if (!SqliteRows::canStep(m_book)) return false;
    const SqlPart part = RoadSearchQuery(text);
    // Stepped through the engine's own interface; with `kept`, prepared by the first search of its
    // shape and only bound and stepped by the next.
    std::shared_ptr<SqliteStatement> rows =
        m_kept ? m_kept->run(m_book, part.sql, part.values)
               : std::make_shared<SqliteStatement>(m_book, part.sql, part.values);
    if (!rows || !rows->ok()) return false;
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

namespace {

// The statement's columns as the list's texts are made of them.
enum Column : int {
    kZip,
    kSido,
    kSigungu,
    kEupmyeon,
    kRoad,
    kUnderground,
    kBuildingMain,
    kBuildingSub,
    kBuildingName,
    kDong,
    kRi,
    kMountain,
    kLotMain,
    kLotSub
};

struct Bytes {
    const char* data = nullptr;
    size_t size = 0;
    bool operator==(const Bytes& o) const { return size == o.size && std::memcmp(data, o.data, size) == 0; }
};

Bytes bytesOf(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return {text ? text : "", size_t(sqlite3_column_bytes(row, column))};
}

// A word after those before it, a blank between.
void addWord(std::string& text, const Bytes& word) {
    if (word.size == 0) return;
    if (!text.empty()) text += ' ';
    text.append(word.data, word.size);
}

// "12" or "12-3".
void addNumber(std::string& text, int main, int sub) {
    text += std::to_string(main);
    if (sub > 0) {
        text += '-';
        text += std::to_string(sub);
    }
}

QVariant textOrNull(const std::string& text) {
    return text.empty() ? QVariant() : QVariant(QString::fromUtf8(text.data(), qsizetype(text.size())));
}

} // namespace

// The texts are made straight from the engine's row in UTF-8, each turned into a QString once:
// "서울특별시 종로구 새문안로 지하 5-1" and "서울특별시 종로구 신문로1가 산 12-3" as
// RoadAddressText and LotAddressText make them.
bool RoadRows::next(QVariant* out, int count) {
    if (!m_rows || !m_rows->next(nullptr, 0) || !m_rows->row()) {
        m_rows.reset(); // through: the statement lets go of the book
        return false;
    }
    sqlite3_stmt* row = m_rows->row();
    QVariant texts[kRoadColumns];
    m_text.clear();
    addWord(m_text, bytesOf(row, kZip));
    texts[0] = textOrNull(m_text);

    m_text.clear();
    for (int column : {kSido, kSigungu, kEupmyeon, kRoad})
        addWord(m_text, bytesOf(row, column));
    if (sqlite3_column_int(row, kUnderground) != 0) addWord(m_text, {"지하", std::strlen("지하")});
    if (!m_text.empty()) m_text += ' ';
    addNumber(m_text, sqlite3_column_int(row, kBuildingMain), sqlite3_column_int(row, kBuildingSub));
    texts[1] = textOrNull(m_text);

    m_text.clear();
    addWord(m_text, bytesOf(row, kSido));
    addWord(m_text, bytesOf(row, kSigungu));
    // The towns once each, as PlaceText names them.
    const Bytes eupmyeon = bytesOf(row, kEupmyeon);
    const Bytes dong = bytesOf(row, kDong);
    const Bytes ri = bytesOf(row, kRi);
    addWord(m_text, eupmyeon);
    if (!(dong == eupmyeon)) addWord(m_text, dong);
    if (!(ri == eupmyeon) && !(ri == dong)) addWord(m_text, ri);
    if (const int lotMain = sqlite3_column_int(row, kLotMain); lotMain > 0) {
        if (!m_text.empty()) m_text += ' ';
        if (sqlite3_column_int(row, kMountain) != 0) m_text += "산 ";
        addNumber(m_text, lotMain, sqlite3_column_int(row, kLotSub));
    }
    texts[2] = textOrNull(m_text);

    m_text.clear();
    addWord(m_text, bytesOf(row, kBuildingName));
    texts[3] = textOrNull(m_text);
    for (int c = 0; c < count && c < kRoadColumns; ++c)
        out[c] = texts[c];
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
