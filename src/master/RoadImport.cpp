#include "master/RoadImport.h"

#include "common/Messages.h"
#include "master/PostImport.h"
#include "master/RoadBook.h"
#include "master/SearchIndex.h"
#include "storage/Database.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>
#include <cerrno>
#include <cstdio>
#include <iconv.h>
#include <memory>
#include <sqlite3.h>
#include <unistd.h>

namespace nb {
namespace {

const QString kBookKept = QStringLiteral("기존 우편번호는 그대로 남아 있습니다.");

// The book's own connection: it is built by one writer that nobody else sees, so its
// statements go straight to the engine.
class BookFile {
public:
    explicit BookFile(const QString& path) {
        if (sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db,
                            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) != SQLITE_OK)
            note();
    }
    ~BookFile() { close(); }
    BookFile(const BookFile&) = delete;
    BookFile& operator=(const BookFile&) = delete;

    sqlite3* handle() const { return m_db; }
    bool ok() const { return m_code == SQLITE_OK; }
    int code() const { return m_code; }
    QString text() const { return m_text; }
    bool exec(const QString& sql) {
        if (!ok()) return false;
        if (sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK) note();
        return ok();
    }
    void note() {
        m_code = m_db ? sqlite3_extended_errcode(m_db) : SQLITE_NOMEM;
        m_text = m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QStringLiteral("out of memory");
    }
    void close() {
        if (m_db) sqlite3_close_v2(m_db);
        m_db = nullptr;
    }

private:
    sqlite3* m_db = nullptr;
    int m_code = SQLITE_OK;
    QString m_text;
};

// A prepared statement run once per row.
class RowStatement {
public:
    RowStatement(BookFile& book, const QString& sql) : m_book(book) {
        if (book.ok() &&
            sqlite3_prepare_v2(book.handle(), sql.toUtf8().constData(), -1, &m_st, nullptr) != SQLITE_OK)
            book.note();
    }
    ~RowStatement() { sqlite3_finalize(m_st); }
    RowStatement(const RowStatement&) = delete;
    RowStatement& operator=(const RowStatement&) = delete;

    void text(int column, const QString& value) {
        const QByteArray bytes = value.toUtf8();
        sqlite3_bind_text(m_st, column, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
    }
    void number(int column, qint64 value) { sqlite3_bind_int64(m_st, column, value); }
    void nullValue(int column) { sqlite3_bind_null(m_st, column); }
    bool run() {
        if (!m_book.ok()) return false;
        const int rc = sqlite3_step(m_st);
        sqlite3_reset(m_st);
        if (rc != SQLITE_DONE) m_book.note();
        return rc == SQLITE_DONE;
    }

private:
    BookFile& m_book;
    sqlite3_stmt* m_st = nullptr;
};

// The names of one kind (roads, buildings, towns), numbered as first met. A road or a town is
// one name per district (its key), so a search lists each district's road on its own, in the
// book's order; a building name is one over the country.
class NameTable {
public:
    NameTable(BookFile& book, const QString& table)
        : m_insert(book, QStringLiteral("INSERT INTO %1 (id, NAME) VALUES (?, ?)").arg(table)) {}
    // The name's number; 0 for an empty name, -1 when the write failed.
    qint64 idOf(const QString& name, const QString& district = QString()) {
        if (name.isEmpty()) return 0;
        const QString key = district.isEmpty() ? name : district + u'|' + name;
        const auto found = m_ids.constFind(key);
        if (found != m_ids.constEnd()) return *found;
        const qint64 id = m_ids.size() + 1;
        m_insert.number(1, id);
        m_insert.text(2, name);
        if (!m_insert.run()) return -1;
        m_ids.insert(key, id);
        return id;
    }

private:
    RowStatement m_insert;
    QHash<QString, qint64> m_ids;
};

// One line's bytes as text in the encoding the file's first line decided.
class LineReader {
public:
    bool decide(const QByteArray& firstLine) {
        if (firstLine.startsWith("\xEF\xBB\xBF") || utf8Readable(firstLine)) {
            m_cp949 = false;
            return true;
        }
        m_iconv = iconv_open("UTF-8", "CP949");
        m_cp949 = true;
        QString probe;
        return read(firstLine, probe);
    }
    ~LineReader() {
        if (m_iconv != iconv_t(-1)) iconv_close(m_iconv);
    }
    QString encoding() const { return m_cp949 ? QStringLiteral("CP949") : QStringLiteral("UTF-8"); }
    bool read(QByteArray bytes, QString& out) {
        if (bytes.startsWith("\xEF\xBB\xBF")) bytes.remove(0, 3);
        if (!m_cp949) {
            QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
            out = utf8.decode(bytes);
            return !utf8.hasError();
        }
        if (m_iconv == iconv_t(-1)) return false;
        QByteArray converted(bytes.size() * 2 + 4, Qt::Uninitialized);
        char* in = bytes.data();
        size_t inLeft = size_t(bytes.size());
        char* outPtr = converted.data();
        size_t outLeft = size_t(converted.size());
        iconv(m_iconv, nullptr, nullptr, nullptr, nullptr);
        if (iconv(m_iconv, &in, &inLeft, &outPtr, &outLeft) == size_t(-1)) return false;
        out = QString::fromUtf8(converted.constData(), converted.size() - qsizetype(outLeft));
        return true;
    }

private:
    static bool utf8Readable(const QByteArray& bytes) {
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString text = utf8.decode(bytes); // decoded only when taken as text
        return !text.isNull() && !utf8.hasError();
    }
    bool m_cp949 = false;
    iconv_t m_iconv = iconv_t(-1);
};

QByteArray chomp(QByteArray line) {
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return line;
}

const QStringList& bookTables() {
    static const QStringList statements = {
        QStringLiteral(
            "CREATE TABLE RoadAddr (ZIPCODE TEXT NOT NULL, SIDO TEXT, SIGUNGU TEXT, EUPMYEON TEXT, "
            "ROADNAME TEXT, UNDERGROUND INTEGER, BLDG_MAIN INTEGER, BLDG_SUB INTEGER, BLDG_NAME TEXT, "
            "DONG TEXT, RI TEXT, PLACE TEXT, SAN INTEGER, JIBUN_MAIN INTEGER, JIBUN_SUB INTEGER, "
            "ROAD_T INTEGER, BLDG_T INTEGER, PLACE_T INTEGER, HDONG_T INTEGER)"),
        QStringLiteral("CREATE TABLE RoadName (id INTEGER PRIMARY KEY, NAME TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE BuildingName (id INTEGER PRIMARY KEY, NAME TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE PlaceName (id INTEGER PRIMARY KEY, NAME TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE RoadBookInfo (Name TEXT PRIMARY KEY, Value TEXT) WITHOUT ROWID")};
    return statements;
}

// After the rows: the look-ups of the search, each a walk in the order it lists.
QStringList indexStatements() {
    QStringList statements = {
        QStringLiteral("CREATE INDEX RoadAddr_road ON RoadAddr (ROAD_T, BLDG_MAIN, BLDG_SUB)"),
        QStringLiteral("CREATE INDEX RoadAddr_building ON RoadAddr (BLDG_T)"),
        QStringLiteral("CREATE INDEX RoadAddr_place ON RoadAddr (PLACE_T, SAN, JIBUN_MAIN, JIBUN_SUB)"),
        QStringLiteral("CREATE INDEX RoadAddr_adminDong ON RoadAddr (HDONG_T, SAN, JIBUN_MAIN, JIBUN_SUB)"),
        QStringLiteral("CREATE INDEX RoadAddr_zip ON RoadAddr (ZIPCODE)"),
        QStringLiteral("CREATE INDEX RoadAddr_number ON RoadAddr (BLDG_MAIN, BLDG_SUB, ROAD_T, BLDG_T)"),
        QStringLiteral(
            "CREATE INDEX RoadAddr_lot ON RoadAddr (JIBUN_MAIN, SAN, JIBUN_SUB, PLACE_T, HDONG_T)"),
        QStringLiteral("CREATE TABLE RoadZip (ZIPCODE TEXT PRIMARY KEY) WITHOUT ROWID"),
        QStringLiteral("INSERT INTO RoadZip SELECT DISTINCT ZIPCODE FROM RoadAddr ORDER BY ZIPCODE")};
    for (const SearchIndexDef* def : {&RoadNameIndex(), &BuildingNameIndex(), &PlaceNameIndex()})
        statements << SearchIndexBuildStatements(*def);
    statements << QStringLiteral("ANALYZE");
    return statements;
}

// Why the import stopped: a file that is refused, or the engine's failure.
struct Stop {
    QString refusal;
    int engineCode = 0;
    QString engineText;
    bool stopped() const { return !refusal.isEmpty() || engineCode != 0; }
};

Stop refuse(const QString& why) {
    return {why, 0, QString()};
}

Stop engineStop(const BookFile& book) {
    return {QString(), book.code() ? book.code() : SQLITE_ERROR, book.text()};
}

QString refusedLine(const QString& path, qint64 line, const QString& reason) {
    return QStringLiteral("도로명 우편번호 파일 %1의 %2번째 줄을 읽을 수 없어 가져오지 않았습니다: %3.\r\n")
               .arg(QFileInfo(path).fileName())
               .arg(line)
               .arg(reason) +
           kBookKept + QStringLiteral("\r\n") + path;
}

// Progress over every file's bytes; the rows take the first 90 steps, the look-ups the rest.
class ByteProgress {
public:
    ByteProgress(qint64 totalBytes)
        : m_progress(kPostImportTitle, 100), m_total(std::max<qint64>(1, totalBytes)) {}
    void readTo(qint64 bytes) { advanceTo(int(90 * bytes / m_total)); }
    void advanceTo(int step) {
        bool moved = false;
        while (m_progress.value() < std::min(step, 100)) {
            m_progress.step();
            moved = true;
        }
        if (moved) QApplication::processEvents();
    }

private:
    Progress m_progress;
    qint64 m_total;
};

class BookBuilder {
public:
    explicit BookBuilder(BookFile& book)
        : m_book(book), m_roads(book, QStringLiteral("RoadName")),
          m_buildings(book, QStringLiteral("BuildingName")), m_places(book, QStringLiteral("PlaceName")),
          m_insert(book,
                   QStringLiteral("INSERT INTO RoadAddr VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
                                  "?, ?, ?, ?)")) {}

    bool add(const RoadAddress& a) {
        const QString place = PlaceText(a);
        const QString district = a.sido + u'|' + a.sigungu;
        const qint64 road = m_roads.idOf(a.roadName, district);
        const qint64 building = m_buildings.idOf(a.buildingName);
        const qint64 placeId = m_places.idOf(place, district);
        const qint64 adminDong = m_places.idOf(a.adminDong, district);
        if (road < 0 || building < 0 || placeId < 0 || adminDong < 0) return false;
        int c = 1;
        for (const QString& text : {a.zip, a.sido, a.sigungu, a.eupmyeon, a.roadName})
            m_insert.text(c++, text);
        m_insert.number(c++, a.underground ? 1 : 0);
        m_insert.number(c++, a.buildingMain);
        m_insert.number(c++, a.buildingSub);
        for (const QString& text : {a.buildingName, a.dong, a.ri, place})
            m_insert.text(c++, text);
        m_insert.number(c++, a.mountain ? 1 : 0);
        m_insert.number(c++, a.lotMain);
        m_insert.number(c++, a.lotSub);
        for (qint64 id : {road, building, placeId, adminDong})
            id > 0 ? m_insert.number(c++, id) : m_insert.nullValue(c++);
        if (!m_insert.run()) return false;
        ++m_rows;
        return true;
    }
    qint64 rows() const { return m_rows; }

private:
    BookFile& m_book;
    NameTable m_roads;
    NameTable m_buildings;
    NameTable m_places;
    RowStatement m_insert;
    qint64 m_rows = 0;
};

Stop readFile(const QString& path, BookBuilder& builder, BookFile& book, ByteProgress& progress,
              qint64 bytesBefore) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse(QStringLiteral("도로명 우편번호 파일을 열 수 없습니다.\r\n") + path);
    LineReader reader;
    const QByteArray first = chomp(file.readLine());
    QString headerText;
    if (!reader.decide(first) || !reader.read(first, headerText))
        return refuse(
            refusedLine(path, 1, QStringLiteral("UTF-8로도 CP949로도 읽을 수 없는 바이트가 있습니다")));
    const RoadHeader header = ParseRoadHeader(headerText);
    if (!header.error.isEmpty()) return refuse(refusedLine(path, 1, header.error));
    qint64 lineNo = 1;
    const qint64 rowsBefore = builder.rows();
    RoadAddress address;
    QString text;
    QString reason;
    while (!file.atEnd()) {
        const QByteArray bytes = chomp(file.readLine());
        ++lineNo;
        if (bytes.trimmed().isEmpty()) continue;
        if (!reader.read(bytes, text))
            return refuse(refusedLine(
                path, lineNo,
                QStringLiteral("%1 글자로 읽을 수 없는 바이트가 있습니다").arg(reader.encoding())));
        if (!ParseRoadLine(text, header, address, reason)) return refuse(refusedLine(path, lineNo, reason));
        if (!builder.add(address)) return engineStop(book);
        if ((lineNo & 0x3FFF) == 0) progress.readTo(bytesBefore + file.pos());
    }
    if (file.error() != QFileDevice::NoError)
        return refuse(QStringLiteral("도로명 우편번호 파일을 끝까지 읽지 못했습니다 (%1).\r\n")
                          .arg(file.errorString()) +
                      kBookKept + QStringLiteral("\r\n") + path);
    if (builder.rows() == rowsBefore)
        return refuse(
            QStringLiteral("도로명 우편번호 파일에 가져올 주소가 한 줄도 없어 가져오지 않았습니다. ") +
            kBookKept + QStringLiteral("\r\n") + path);
    return {QString(), 0, QString()};
}

bool flushFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && ::fsync(file.handle()) == 0;
}

void removeAside(const QString& aside) {
    for (const char* tail : {"", "-journal", "-wal", "-shm"})
        QFile::remove(aside + QLatin1String(tail));
}

// The whole build in the file beside the book; the book itself is not touched.
Stop buildAside(const QString& aside, const QStringList& paths, qint64& rows) {
    qint64 totalBytes = 0;
    for (const QString& p : paths)
        totalBytes += QFileInfo(p).size();
    ByteProgress progress(totalBytes);
    BookFile book(aside);
    for (const char* pragma : {"PRAGMA journal_mode=OFF", "PRAGMA synchronous=OFF",
                               "PRAGMA cache_size=-65536", "PRAGMA temp_store=FILE"})
        book.exec(QLatin1String(pragma));
    for (const QString& sql : bookTables())
        book.exec(sql);
    if (!book.exec(QStringLiteral("BEGIN"))) return engineStop(book);
    {
        BookBuilder builder(book);
        if (!book.ok()) return engineStop(book);
        qint64 bytesBefore = 0;
        for (const QString& path : paths) {
            const Stop stop = readFile(path, builder, book, progress, bytesBefore);
            if (stop.stopped()) return stop;
            bytesBefore += QFileInfo(path).size();
        }
        rows = builder.rows();
    }
    RowStatement info(book, QStringLiteral("INSERT INTO RoadBookInfo VALUES (?, ?)"));
    for (const auto& [name, value] : {std::pair{QStringLiteral("rows"), QString::number(rows)},
                                      std::pair{QStringLiteral("files"), paths.join(u'\n')}}) {
        info.text(1, name);
        info.text(2, value);
        if (!info.run()) return engineStop(book);
    }
    if (!book.exec(QStringLiteral("COMMIT"))) return engineStop(book);
    const QStringList indexes = indexStatements();
    for (int i = 0; i < indexes.size(); ++i) {
        if (!book.exec(indexes[i])) return engineStop(book);
        progress.advanceTo(90 + 10 * (i + 1) / int(indexes.size()));
    }
    if (!book.exec(QStringLiteral("PRAGMA journal_mode=DELETE"))) return engineStop(book);
    book.close();
    if (!flushFile(aside)) return {QString(), SQLITE_IOERR, QString::fromLocal8Bit(strerror(errno))};
    return {QString(), 0, QString()};
}

} // namespace

const SearchIndexDef& RoadNameIndex() {
    static const SearchIndexDef def{
        QStringLiteral("RoadName"), QStringLiteral("RoadName_search"), {QStringLiteral("NAME")}};
    return def;
}

const SearchIndexDef& BuildingNameIndex() {
    static const SearchIndexDef def{
        QStringLiteral("BuildingName"), QStringLiteral("BuildingName_search"), {QStringLiteral("NAME")}};
    return def;
}

const SearchIndexDef& PlaceNameIndex() {
    static const SearchIndexDef def{
        QStringLiteral("PlaceName"), QStringLiteral("PlaceName_search"), {QStringLiteral("NAME")}};
    return def;
}

bool IsRoadBookFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    LineReader reader;
    const QByteArray first = chomp(file.readLine());
    QString text;
    return reader.decide(first) && reader.read(first, text) && LooksLikeRoadHeader(text);
}

qint64 ImportRoadBook(const QStringList& paths) {
    const QString target = RoadBookFile();
    const QString aside = target + QStringLiteral(".building");
    removeAside(aside); // what a killed import left
    qint64 rows = 0;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Stop stop = buildAside(aside, paths, rows);
    if (!stop.stopped() &&
        std::rename(QFile::encodeName(aside).constData(), QFile::encodeName(target).constData()) != 0)
        stop = {QString(), SQLITE_IOERR, QString::fromLocal8Bit(strerror(errno))};
    QApplication::restoreOverrideCursor();
    if (stop.stopped()) {
        removeAside(aside);
        if (!stop.refusal.isEmpty())
            ShowWarning(stop.refusal, kPostImportTitle);
        else
            ReportSaveFailure(stop.engineCode, stop.engineText,
                              QStringLiteral("도로명 우편번호를 가져오지 못했습니다. ") + kBookKept);
        return -1;
    }
    SetUsesRoadBook(true);
    ShowInfo(QStringLiteral("도로명 우편번호 %1건을 가져왔습니다. 우편번호 검색은 도로명 주소로 합니다.")
                 .arg(rows),
             kPostImportTitle);
    return rows;
}

} // namespace nb
