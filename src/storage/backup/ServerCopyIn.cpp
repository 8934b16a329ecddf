#include "storage/backup/ServerCopyIn.h"

#include "storage/StoreEngine.h"
#include "storage/backup/ServerCopyHandles.h"

#include <QStringList>
#include <charconv>
#include <cmath>
#include <memory>

namespace nb {
namespace {

// Rows gathered before they are handed to the connection: large enough that a call costs
// nothing beside its bytes, small enough to stay in the processor's cache.
constexpr qsizetype kCopyChunk = 256 * 1024;

void appendInteger(QByteArray* line, qint64 value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    line->append(digits, end - digits);
}

// One value of the file's row as the field of its column.
void appendField(QByteArray* line, sqlite3_stmt* row, int at, CopyColumn column) {
    switch (sqlite3_column_type(row, at)) {
    case SQLITE_NULL:
        line->append("\\N", 2);
        return;
    case SQLITE_INTEGER:
        appendInteger(line, sqlite3_column_int64(row, at));
        return;
    case SQLITE_FLOAT:
        if (column == CopyColumn::Whole)
            appendCopyWhole(line, sqlite3_column_double(row, at));
        else
            appendCopyFraction(line, sqlite3_column_double(row, at));
        return;
    default: {
        // Text as it lies (the server reads it as its column's type, as a bound text is read).
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row, at));
        appendCopyText(line, bytes, sqlite3_column_bytes(row, at));
        return;
    }
    }
}

struct StatementFree {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
struct ResultFree {
    void operator()(PGresult* result) const { PQclear(result); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementFree>;
using Result = std::unique_ptr<PGresult, ResultFree>;

// The results of the finished (or broken off) copy; false with the server's words of a failure.
bool copyFinished(PGconn* conn, QString* words) {
    bool ok = true;
    while (Result result{PQgetResult(conn)}) {
        if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
            if (ok) *words = serverEngineWords(conn, result.get());
            ok = false;
        }
    }
    return ok;
}

class CopyIn {
public:
    CopyIn(const QSqlDatabase& file, const QSqlDatabase& server, const TableDef& table, const QString& schema,
           const QList<ColumnDef>& columns)
        : m_file(fileEngineHandle(file)), m_server(serverEngineHandle(server)), m_table(table),
          m_schema(schema), m_columns(columns) {
        for (const ColumnDef& column : columns)
            m_kinds << copyColumnOf(column.type);
    }

    bool run(qint64* rows, QString* why) {
        if (!m_file || !m_server) return fail(why, QStringLiteral("연결의 손잡이를 얻지 못했습니다."));
        Statement read;
        if (!prepareRead(&read, why) || !begin(why)) return false;
        QByteArray chunk;
        chunk.reserve(kCopyChunk + 4096);
        int stepped = SQLITE_ROW;
        while ((stepped = sqlite3_step(read.get())) == SQLITE_ROW) {
            appendRow(&chunk, read.get());
            ++*rows;
            if (chunk.size() >= kCopyChunk && !send(&chunk, why)) return breakOff();
        }
        if (stepped != SQLITE_DONE) {
            *why = QStringLiteral("자료 파일의 표 %1을(를) 읽지 못했습니다: %2")
                       .arg(m_table.name, QString::fromUtf8(sqlite3_errmsg(m_file)));
            return breakOff();
        }
        if (!send(&chunk, why)) return breakOff();
        QString words;
        const bool ended = PQputCopyEnd(m_server, nullptr) == 1;
        if (copyFinished(m_server, &words) && ended) return true;
        return fail(why, words.isEmpty() ? serverEngineWords(m_server, nullptr) : words);
    }

private:
    bool prepareRead(Statement* read, QString* why) {
        QStringList names;
        for (const ColumnDef& column : m_columns)
            names << quoteName(column.name);
        const QByteArray sql =
            (QStringLiteral("SELECT ") + names.join(QStringLiteral(", ")) + QStringLiteral(", rowid FROM ") +
             quoteName(m_table.name) + QStringLiteral(" ORDER BY rowid"))
                .toUtf8();
        sqlite3_stmt* statement = nullptr;
        const int rc = sqlite3_prepare_v2(m_file, sql.constData(), int(sql.size()), &statement, nullptr);
        read->reset(statement);
        if (rc == SQLITE_OK) return true;
        *why = QStringLiteral("자료 파일의 표 %1을(를) 읽지 못했습니다: %2")
                   .arg(m_table.name, QString::fromUtf8(sqlite3_errmsg(m_file)));
        return false;
    }

    bool begin(QString* why) {
        QStringList names;
        for (const ColumnDef& column : m_columns)
            names << quoteName(column.name);
        // Named as the server's stores name them (folded to lower case, "user" quoted).
        const QString sql = serverStatement(
            QStringLiteral("COPY ") + m_schema + u'.' + quoteName(m_table.name) + QStringLiteral(" (") +
                names.join(QStringLiteral(", ")) + QStringLiteral(", rowid) FROM STDIN"),
            {});
        Result started{PQexec(m_server, sql.toUtf8().constData())};
        if (PQresultStatus(started.get()) == PGRES_COPY_IN) return true;
        const QString words = serverEngineWords(m_server, started.get());
        started.reset();
        QString ignored;
        copyFinished(m_server, &ignored);
        return fail(why, words);
    }

    void appendRow(QByteArray* chunk, sqlite3_stmt* row) const {
        const int width = int(m_kinds.size());
        for (int i = 0; i < width; ++i) {
            appendField(chunk, row, i, m_kinds[i]);
            chunk->append('\t');
        }
        appendInteger(chunk, sqlite3_column_int64(row, width));
        chunk->append('\n');
    }

    bool send(QByteArray* chunk, QString* why) {
        if (chunk->isEmpty()) return true;
        const bool ok = PQputCopyData(m_server, chunk->constData(), int(chunk->size())) == 1;
        chunk->clear();
        return ok || fail(why, serverEngineWords(m_server, nullptr));
    }

    // The copy ended with a failure: the server throws its rows away and the transaction with
    // them.
    bool breakOff() {
        PQputCopyEnd(m_server, "누벨라가 복사를 멈추었습니다");
        QString ignored;
        copyFinished(m_server, &ignored);
        return false;
    }

    bool fail(QString* why, const QString& words) const {
        *why = QStringLiteral("서버에 표 %1을(를) 쓰지 못했습니다: %2").arg(m_table.name, words);
        return false;
    }

    sqlite3* m_file;
    PGconn* m_server;
    const TableDef& m_table;
    QString m_schema;
    QList<ColumnDef> m_columns;
    QList<CopyColumn> m_kinds;
};

} // namespace

CopyColumn copyColumnOf(int daoType) {
    switch (daoType) {
    case dbText:
    case dbMemo:
        return CopyColumn::Text;
    case dbBoolean:
    case dbByte:
    case dbInteger:
    case dbLong:
        return CopyColumn::Whole;
    default:
        return CopyColumn::Fraction;
    }
}

void appendCopyText(QByteArray* line, const char* bytes, qsizetype size) {
    const char* run = bytes;
    const char* end = bytes + size;
    for (const char* at = bytes; at < end; ++at) {
        char escaped = 0;
        switch (*at) {
        case '\\':
            escaped = '\\';
            break;
        case '\t':
            escaped = 't';
            break;
        case '\n':
            escaped = 'n';
            break;
        case '\r':
            escaped = 'r';
            break;
        default:
            continue;
        }
        line->append(run, at - run);
        line->append('\\');
        line->append(escaped);
        run = at + 1;
    }
    line->append(run, end - run);
}

void appendCopyFraction(QByteArray* line, double value) {
    if (std::isnan(value)) {
        line->append("NaN");
        return;
    }
    if (std::isinf(value)) {
        line->append(value > 0 ? "Infinity" : "-Infinity");
        return;
    }
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    line->append(digits, end - digits);
}

void appendCopyWhole(QByteArray* line, double value) {
    if (!std::isfinite(value)) {
        appendCopyFraction(line, value); // refused by the column, as the bound value would be
        return;
    }
    char digits[400];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, std::nearbyint(value), std::chars_format::fixed).ptr;
    line->append(digits, end - digits);
}

bool copyFileTableIn(QSqlDatabase file, QSqlDatabase server, const QString& schema, const TableDef& table,
                     const QList<ColumnDef>& columns, qint64* rows, QString* why) {
    return CopyIn(file, server, table, schema, columns).run(rows, why);
}

} // namespace nb
