#pragma once
// The engines' own handles under Qt's connections, for the rows the copies stream past the
// driver: the store file's sqlite3 and the server's libpq connection. Null when the connection
// is not of that engine.

#include <QSqlDatabase>
#include <QSqlDriver>
#include <libpq-fe.h>
#include <sqlite3.h>

namespace nb {

inline sqlite3* fileEngineHandle(const QSqlDatabase& db) {
    if (!db.driver()) return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

inline PGconn* serverEngineHandle(const QSqlDatabase& db) {
    if (!db.driver()) return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() ||
        (qstrcmp(handle.typeName(), "PGconn*") != 0 && qstrcmp(handle.typeName(), "pg_conn*") != 0))
        return nullptr;
    return *static_cast<PGconn* const*>(handle.constData());
}

// The server's words of a failed result, else of the connection.
inline QString serverEngineWords(PGconn* conn, const PGresult* result) {
    const char* words = result ? PQresultErrorMessage(result) : nullptr;
    if (!words || !*words) words = conn ? PQerrorMessage(conn) : "";
    return QString::fromUtf8(words).trimmed();
}

} // namespace nb
