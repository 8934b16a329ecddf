#include "storage/jet/JetReader.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QVariant>
#include <QtEndian>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mdbtools.h>
#include <memory>
#include <sqlite3.h>
#include <vector>

namespace nb {
namespace {

void complain(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

QString quoted(const QString& name) {
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

// Fixed-width values are taken from the row's own bytes (little-endian), not from the
// library's text of them, so that doubles and money come across to the last bit.
template <typename T> T rawAt(const MdbHandle* mdb, int start) {
    T value;
    std::memcpy(&value, mdb->pg_buf + start, sizeof value);
    return value;
}

bool isNumeric(int type) {
    switch (type) {
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT:
    case MDB_MONEY:
    case MDB_FLOAT:
    case MDB_DOUBLE:
    case MDB_NUMERIC:
        return true;
    default:
        return false;
    }
}

bool isCarried(int type) {
    return isNumeric(type) || type == MDB_BOOL || type == MDB_TEXT || type == MDB_MEMO ||
           type == MDB_DATETIME;
}

// One bound column: the library's text of the value and its length.
struct Bound {
    MdbColumn* column = nullptr;
    std::vector<char> text;
    int length = 0;
};

// A number as read: null, an integer or a double.
struct Number {
    enum Kind { Null, Integer, Real } kind = Null;
    qint64 integer = 0;
    double real = 0;
    double asDouble() const { return kind == Integer ? double(integer) : real; }
};

Number integerNumber(qint64 v) {
    return {Number::Integer, v, 0};
}
Number realNumber(double v) {
    return {Number::Real, 0, v};
}

Number numericValue(const MdbHandle* mdb, const Bound& b) {
    const MdbColumn* c = b.column;
    if (c->cur_value_len == 0) return {};
    const int at = c->cur_value_start;
    switch (c->col_type) {
    case MDB_BYTE:
        return integerNumber(rawAt<quint8>(mdb, at));
    case MDB_INT:
        return integerNumber(qFromLittleEndian(rawAt<qint16>(mdb, at)));
    case MDB_LONGINT:
        return integerNumber(qFromLittleEndian(rawAt<qint32>(mdb, at)));
    case MDB_MONEY: // an integer scaled by 10^4
        return realNumber(double(qFromLittleEndian(rawAt<qint64>(mdb, at))) / 10000.0);
    case MDB_FLOAT:
        return realNumber(double(rawAt<float>(mdb, at)));
    case MDB_DOUBLE:
        return realNumber(rawAt<double>(mdb, at));
    default: // decimal: the library's text of it
        return realNumber(QByteArray(b.text.data(), b.length).toDouble());
    }
}

// The raw file through the engine's own interface: one prepared insert per table, the texts
// bound as the library gave their bytes.
class RawWriter {
public:
    explicit RawWriter(const QString& path) : m_path(path) {}
    ~RawWriter() {
        if (m_db) sqlite3_close(m_db);
    }

    bool open() {
        QFile::remove(m_path);
        if (sqlite3_open(QFile::encodeName(m_path).constData(), &m_db) != SQLITE_OK) return failed();
        return run(QStringLiteral("PRAGMA synchronous=OFF")) &&
               run(QStringLiteral("PRAGMA journal_mode=OFF")) && run(QStringLiteral("BEGIN")) &&
               run(QStringLiteral("CREATE TABLE _columns (tbl TEXT, ord INTEGER, col TEXT, jettype INTEGER, "
                                  "size INTEGER)")) &&
               run(QStringLiteral("CREATE TABLE _figures (tbl TEXT, col TEXT, rows INTEGER, total REAL)"));
    }
    bool run(const QString& sql) {
        return sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK ||
               failed();
    }
    // A statement with its values bound in order (texts, integers, doubles).
    bool run(const QString& sql, const QVariantList& values) {
        sqlite3_stmt* statement = prepare(sql);
        if (!statement) return false;
        for (int i = 0; i < values.size(); ++i) {
            const QVariant& v = values[i];
            if (v.typeId() == QMetaType::Double)
                sqlite3_bind_double(statement, i + 1, v.toDouble());
            else if (v.typeId() == QMetaType::QString)
                sqlite3_bind_text(statement, i + 1, v.toString().toUtf8().constData(), -1, SQLITE_TRANSIENT);
            else
                sqlite3_bind_int64(statement, i + 1, v.toLongLong());
        }
        const bool ok = sqlite3_step(statement) == SQLITE_DONE;
        sqlite3_finalize(statement);
        return ok || failed();
    }
    sqlite3_stmt* prepare(const QString& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK) {
            failed();
            return nullptr;
        }
        return statement;
    }
    bool failed() {
        complain(QStringLiteral("임시 자료 파일에 쓰지 못했습니다: ") +
                 QString::fromUtf8(m_db ? sqlite3_errmsg(m_db) : "out of memory"));
        return false;
    }
    bool commit() { return run(QStringLiteral("COMMIT")); }

private:
    QString m_path;
    sqlite3* m_db = nullptr;
};

class TableReader {
public:
    TableReader(MdbHandle* mdb, MdbTableDef* table, RawWriter& raw)
        : m_mdb(mdb), m_table(table), m_raw(raw), m_name(QString::fromUtf8(table->name)) {}
    ~TableReader() { sqlite3_finalize(m_insert); }
    TableReader(const TableReader&) = delete;
    TableReader& operator=(const TableReader&) = delete;

    bool read() {
        // The column list is read once: reading it again after a fetch spoils it.
        mdb_read_columns(m_table);
        mdb_rewind_table(m_table);
        return declare() && copyRows();
    }

private:
    bool declare() {
        QStringList names;
        m_bound.resize(m_table->num_cols);
        for (unsigned i = 0; i < m_table->num_cols; ++i) {
            auto* c = static_cast<MdbColumn*>(g_ptr_array_index(m_table->columns, i));
            Bound& b = m_bound[i];
            b.column = c;
            // Fixed-width numbers are read from the row's bytes, so the library is spared
            // writing their text (most of its time for tables of amounts).
            if (!isNumeric(c->col_type) || c->col_type == MDB_NUMERIC) {
                b.text.assign(kJetBindSize, 0);
                mdb_bind_column(m_table, int(i) + 1, b.text.data(), &b.length);
            }
            const QString name = QString::fromUtf8(c->name);
            if (!m_raw.run(QStringLiteral("INSERT INTO _columns VALUES (?, ?, ?, ?, ?)"),
                           {m_name, int(i), name, c->col_type, c->col_size}))
                return false;
            if (isCarried(c->col_type)) names << quoted(name);
        }
        m_sums.assign(m_bound.size(), 0.0);
        QStringList marks;
        for (qsizetype i = 0; i < names.size(); ++i)
            marks << QStringLiteral("?");
        const QString columns = names.isEmpty() ? QStringLiteral("\"_none\"") : names.join(u',');
        if (!m_raw.run(QStringLiteral("CREATE TABLE %1 (%2)").arg(quoted(m_name), columns))) return false;
        m_insert = m_raw.prepare(
            QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                .arg(quoted(m_name), columns, marks.isEmpty() ? QStringLiteral("NULL") : marks.join(u',')));
        return m_insert != nullptr;
    }

    bool copyRows() {
        qint64 rows = 0;
        while (mdb_fetch_row(m_table)) {
            if (!copyRow()) return false;
            ++rows;
        }
        // The library passes over pages it cannot read; the table's own count of its rows
        // tells a table read short.
        if (rows != qint64(m_table->num_rows)) {
            complain(QStringLiteral("%1 표의 행 %2개 가운데 %3개만 읽혔습니다. 파일이 손상되었습니다.")
                         .arg(m_name)
                         .arg(m_table->num_rows)
                         .arg(rows));
            return false;
        }
        bool ok = m_raw.run(QStringLiteral("INSERT INTO _figures VALUES (?, '', ?, NULL)"), {m_name, rows});
        for (size_t i = 0; ok && i < m_bound.size(); ++i)
            if (isNumeric(m_bound[i].column->col_type))
                ok = m_raw.run(QStringLiteral("INSERT INTO _figures VALUES (?, ?, ?, ?)"),
                               {m_name, QString::fromUtf8(m_bound[i].column->name), rows, m_sums[i]});
        return ok;
    }

    bool copyRow() {
        sqlite3_reset(m_insert);
        int slot = 0;
        for (size_t i = 0; i < m_bound.size(); ++i) {
            const Bound& b = m_bound[i];
            const int type = b.column->col_type;
            if (!isCarried(type)) continue;
            ++slot;
            if (isNumeric(type)) {
                const Number n = numericValue(m_mdb, b);
                m_sums[i] += n.kind == Number::Null ? 0.0 : n.asDouble();
                if (n.kind == Number::Null)
                    sqlite3_bind_null(m_insert, slot);
                else if (n.kind == Number::Integer)
                    sqlite3_bind_int64(m_insert, slot, n.integer);
                else
                    sqlite3_bind_double(m_insert, slot, n.real);
            } else if (type == MDB_BOOL) {
                sqlite3_bind_int(m_insert, slot, b.length > 0 && b.text[0] == '1' ? 1 : 0);
            } else {
                if (b.length >= kJetBindSize - 1) return tooLong(b);
                sqlite3_bind_text(m_insert, slot, b.text.data(), b.length, SQLITE_TRANSIENT);
            }
        }
        return sqlite3_step(m_insert) == SQLITE_DONE || m_raw.failed();
    }

    bool tooLong(const Bound& b) {
        complain(QStringLiteral("%1 표의 %2 열에 너무 긴 글이 있어 읽지 않았습니다.")
                     .arg(m_name, QString::fromUtf8(b.column->name)));
        return false;
    }

    MdbHandle* m_mdb;
    MdbTableDef* m_table;
    RawWriter& m_raw;
    QString m_name;
    std::vector<Bound> m_bound;
    std::vector<double> m_sums;
    sqlite3_stmt* m_insert = nullptr;
};

bool readTables(MdbHandle* mdb, RawWriter& raw) {
    if (!mdb_read_catalog(mdb, MDB_TABLE)) return false;
    for (unsigned i = 0; i < mdb->num_catalog; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
        if (entry->object_type != MDB_TABLE || mdb_is_system_table(entry)) continue;
        MdbTableDef* table = mdb_read_table(entry);
        if (!table) return false;
        const bool ok = TableReader(mdb, table, raw).read();
        mdb_free_tabledef(table);
        if (!ok) return false;
    }
    return true;
}

} // namespace

int readJetFile(const QString& mdbPath, const QString& rawPath) {
    // Every Jet file is made of whole pages (2 KB for Jet 3, 4 KB after); one that is not was
    // cut short.
    const qint64 size = QFileInfo(mdbPath).size();
    if (size <= 0 || size % 2048 != 0) {
        complain(
            QStringLiteral("%1 파일의 크기가 맞지 않습니다. 파일이 잘렸거나 손상되었습니다.").arg(mdbPath));
        return 1;
    }
    // Jet 3 files keep Korean in the Windows code page; Jet 4 files keep UCS-2.
    qputenv("MDB_JET3_CHARSET", "CP949");
    MdbHandle* mdb = mdb_open(QFile::encodeName(mdbPath).constData(), MDB_NOFLAGS);
    if (!mdb) {
        complain(QStringLiteral("%1 파일을 Jet 자료 파일로 열 수 없습니다.").arg(mdbPath));
        return 1;
    }
    if (mdb->f->jet_version != MDB_VER_JET3 && size % 4096 != 0) {
        mdb_close(mdb);
        complain(
            QStringLiteral("%1 파일의 크기가 맞지 않습니다. 파일이 잘렸거나 손상되었습니다.").arg(mdbPath));
        return 1;
    }
    mdb_set_bind_size(mdb, kJetBindSize);
    mdb_set_date_fmt(mdb, "%Y-%m-%d");
    mdb_set_shortdate_fmt(mdb, "%Y-%m-%d");
    const QString building = rawPath + QStringLiteral(".part");
    bool ok = false;
    {
        RawWriter raw(building);
        ok = raw.open() && readTables(mdb, raw) && raw.commit();
    }
    mdb_close(mdb);
    if (ok && QFile::exists(rawPath)) QFile::remove(rawPath);
    if (ok && QFile::rename(building, rawPath)) return 0;
    QFile::remove(building);
    complain(QStringLiteral("%1 파일을 읽지 못했습니다.").arg(mdbPath));
    return 1;
}

int runJetReaderIfAsked(int argc, char** argv) {
    if (argc != 5 || QString::fromLocal8Bit(argv[1]) != kReadMdbOption ||
        QString::fromLocal8Bit(argv[3]) != kReadMdbIntoOption)
        return -1;
    QCoreApplication application(argc, argv);
    return readJetFile(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[4]));
}

} // namespace nb
