#include "common/grid/SqliteRows.h"

#include <QSqlDriver>
#include <cstring>
#include <mutex>
#include <sqlite3.h>
#include <unordered_map>

namespace nb {
namespace {

sqlite3* engineHandle(const QSqlDatabase& db) {
    if (db.driverName() != QLatin1String("QSQLITE") || !db.driver()) return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

// Every statement prepared here, by its connection's handle, so that a connection about to close
// can let go of them (the lists beside the window step theirs on connections of their own).
struct Prepared {
    std::mutex lock;
    std::unordered_multimap<sqlite3*, SqliteStatement*> statements;
};
Prepared& prepared() {
    static Prepared all;
    return all;
}

void forget(sqlite3* handle, SqliteStatement* statement) {
    Prepared& all = prepared();
    const std::lock_guard<std::mutex> hold(all.lock);
    auto [from, to] = all.statements.equal_range(handle);
    for (auto it = from; it != to; ++it)
        if (it->second == statement) {
            all.statements.erase(it);
            return;
        }
}

} // namespace

void SqliteStatement::letGoOf(const QSqlDatabase& db) {
    sqlite3* handle = engineHandle(db);
    if (!handle) return;
    std::vector<SqliteStatement*> statements;
    {
        Prepared& all = prepared();
        const std::lock_guard<std::mutex> hold(all.lock);
        auto [from, to] = all.statements.equal_range(handle);
        for (auto it = from; it != to; ++it)
            statements.push_back(it->second);
        all.statements.erase(handle);
    }
    for (SqliteStatement* statement : statements)
        statement->release();
}

void SqliteStatement::release() {
    if (m_stmt) sqlite3_finalize(m_stmt);
    m_stmt = nullptr;
    m_db = nullptr;
    m_released = true;
    m_through = true;
    m_code = SQLITE_MISUSE;
    m_text = QStringLiteral("the store was closed");
}

bool SqliteRows::canStep(const QSqlDatabase& db) {
    return db.isOpen() && engineHandle(db) != nullptr;
}

SqliteRows::SqliteRows(const QSqlDatabase& db, const QString& sql, const QVariantList& values)
    : m_statement(std::make_shared<SqliteStatement>(db, sql, values)), m_run(m_statement->runs()) {}

SqliteRows::~SqliteRows() {
    if (m_statement && m_statement->runs() == m_run) m_statement->finish();
}

SqliteStatement::SqliteStatement(const QSqlDatabase& db, const QString& sql, const QVariantList& values)
    : m_db(engineHandle(db)) {
    if (prepare(sql) && m_stmt) bind(values);
}

SqliteStatement::SqliteStatement(const QSqlDatabase& db, const QString& sql)
    : m_db(engineHandle(db)), m_kept(true), m_through(true) {
    if (prepare(sql) && !m_stmt) {
        m_code = SQLITE_MISUSE;
        m_text = QStringLiteral("an empty statement");
    }
}

// False when there is no SQLite connection or the engine refused the text; a text of blanks or
// a comment alone is prepared as no statement at all.
bool SqliteStatement::prepare(const QString& sql) {
    if (!m_db) {
        m_code = SQLITE_MISUSE;
        m_text = QStringLiteral("no SQLite connection");
        return false;
    }
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &m_stmt, nullptr) != SQLITE_OK) {
        fail(sqlite3_errcode(m_db));
        return false;
    }
    if (!m_stmt) return true;
    m_width = sqlite3_column_count(m_stmt);
    Prepared& all = prepared();
    const std::lock_guard<std::mutex> hold(all.lock);
    all.statements.emplace(m_db, this);
    return true;
}

SqliteStatement::~SqliteStatement() {
    m_kept = false;
    finish();
}

void SqliteStatement::finish() {
    if (m_kept && m_stmt) {
        // Reset: the read it held ends here, as a finalized one's would.
        sqlite3_reset(m_stmt);
        sqlite3_clear_bindings(m_stmt);
        m_through = true;
        return;
    }
    if (m_stmt) {
        forget(m_db, this);
        sqlite3_finalize(m_stmt);
    }
    m_stmt = nullptr;
}

bool SqliteStatement::rerun(const QVariantList& values) {
    if (!m_kept || !m_stmt) return false;
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
    m_code = 0;
    m_text.clear();
    m_lastTexts.clear();
    m_through = false;
    ++m_runs;
    return bind(values);
}

void SqliteStatement::fail(int code) {
    m_code = code == SQLITE_OK ? SQLITE_ERROR : code;
    m_text = QString::fromUtf8(sqlite3_errmsg(m_db));
    finish();
}

bool SqliteStatement::bind(const QVariantList& values) {
    if (values.size() != sqlite3_bind_parameter_count(m_stmt)) {
        m_code = SQLITE_RANGE;
        m_text = QStringLiteral("parameter count mismatch");
        finish();
        return false;
    }
    for (int i = 0; i < values.size(); ++i) {
        const QVariant& v = values.at(i);
        const int at = i + 1;
        int rc = SQLITE_OK;
        if (v.isNull()) {
            rc = sqlite3_bind_null(m_stmt, at);
        } else {
            switch (v.typeId()) {
            case QMetaType::Bool:
            case QMetaType::Int:
            case QMetaType::UInt:
            case QMetaType::LongLong:
                rc = sqlite3_bind_int64(m_stmt, at, v.toLongLong());
                break;
            case QMetaType::Double:
            case QMetaType::Float:
                rc = sqlite3_bind_double(m_stmt, at, v.toDouble());
                break;
            case QMetaType::QByteArray: {
                const QByteArray bytes = v.toByteArray();
                rc = sqlite3_bind_blob(m_stmt, at, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
                break;
            }
            default: {
                const QByteArray utf8 = v.toString().toUtf8();
                rc = sqlite3_bind_text(m_stmt, at, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
            }
            }
        }
        if (rc != SQLITE_OK) {
            fail(rc);
            return false;
        }
    }
    return true;
}

// A text the column held on the row before (a date down a list in date order) is shared with
// that row instead of made again. A column whose texts seldom repeat (numbers, names) soon
// stops being compared.
QVariant SqliteStatement::text(int column, sqlite3_value* value) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
    const int size = sqlite3_value_bytes(value);
    if (size_t(column) >= m_lastTexts.size()) m_lastTexts.resize(size_t(m_width));
    LastText& last = m_lastTexts[size_t(column)];
    if (last.tries >= LastText::kTrial && last.repeats * 4 < last.tries)
        return QString::fromUtf8(bytes, size);
    ++last.tries;
    if (last.value.isValid() && last.bytes.size() == size_t(size) &&
        std::memcmp(last.bytes.data(), bytes, size_t(size)) == 0) {
        ++last.repeats;
        return last.value;
    }
    last.bytes.assign(bytes, size_t(size));
    last.value = QString::fromUtf8(bytes, size);
    return last.value;
}

bool SqliteStatement::next(QVariant* out, int count) {
    if (!m_stmt || m_through) return false;
    const int rc = sqlite3_step(m_stmt);
    if (rc != SQLITE_ROW) {
        if (rc == SQLITE_DONE)
            finish(); // through: let go of it at once
        else
            fail(rc);
        return false;
    }
    // Each value is read from the engine's value of its column, one call a column instead of one
    // for its kind and more for its contents, each of which would take the connection's lock:
    // the lock is held for the row instead, so the values cannot change under the reading.
    sqlite3_mutex* lock = sqlite3_db_mutex(m_db);
    sqlite3_mutex_enter(lock);
    for (int c = 0; c < count && c < m_width; ++c) {
        sqlite3_value* value = sqlite3_column_value(m_stmt, c);
        switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            out[c] = QVariant(qlonglong(sqlite3_value_int64(value)));
            break;
        case SQLITE_FLOAT:
            out[c] = QVariant(sqlite3_value_double(value));
            break;
        case SQLITE_NULL:
            out[c] = QVariant(QMetaType::fromType<QString>());
            break;
        case SQLITE_BLOB:
            out[c] =
                QByteArray(static_cast<const char*>(sqlite3_value_blob(value)), sqlite3_value_bytes(value));
            break;
        default:
            out[c] = text(c, value);
        }
    }
    sqlite3_mutex_leave(lock);
    return true;
}

std::shared_ptr<SqliteStatement> KeptStatements::run(const QSqlDatabase& db, const QString& sql,
                                                     const QVariantList& values) {
    sqlite3* handle = engineHandle(db);
    if (!handle) return nullptr;
    auto& kept = m_kept[{handle, sql}];
    if (!kept || kept->released()) kept = std::make_shared<SqliteStatement>(db, sql);
    const std::shared_ptr<SqliteStatement> statement = kept;
    if (!statement->ok() || !statement->rerun(values)) m_kept.erase({handle, sql});
    return statement;
}

} // namespace nb
