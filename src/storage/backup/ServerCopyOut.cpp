#include "storage/backup/ServerCopyOut.h"

#include "storage/StoreEngine.h"
#include "storage/backup/ServerCopyHandles.h"
#include "storage/backup/ServerCopyIn.h"

#include <QStringList>
#include <charconv>
#include <cstdlib>
#include <memory>

namespace nb {
namespace {

struct StatementFree {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
struct ResultFree {
    void operator()(PGresult* result) const { PQclear(result); }
};
struct BufferFree {
    void operator()(char* buffer) const { PQfreemem(buffer); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementFree>;
using Result = std::unique_ptr<PGresult, ResultFree>;
using Buffer = std::unique_ptr<char, BufferFree>;

// An amount as the server wrote it (its shortest exact decimal, or the names of the values that
// are none): the double it stands for.
double amountOf(const QByteArray& text) {
    if (text == "NaN") return std::numeric_limits<double>::quiet_NaN();
    if (text == "Infinity") return std::numeric_limits<double>::infinity();
    if (text == "-Infinity") return -std::numeric_limits<double>::infinity();
    return std::strtod(text.constData(), nullptr);
}

// One field bound as its column's value.
int bindField(sqlite3_stmt* insert, int at, const char* field, qsizetype size, CopyColumn column) {
    if (size == 2 && field[0] == '\\' && field[1] == 'N') return sqlite3_bind_null(insert, at);
    const QByteArray text = copyFieldText(field, size);
    if (column == CopyColumn::Whole) {
        qint64 whole = 0;
        const auto [end, error] = std::from_chars(text.constData(), text.constData() + text.size(), whole);
        if (error == std::errc() && end == text.constData() + text.size())
            return sqlite3_bind_int64(insert, at, whole);
    } else if (column == CopyColumn::Fraction) {
        return sqlite3_bind_double(insert, at, amountOf(text));
    }
    return sqlite3_bind_text(insert, at, text.constData(), int(text.size()), SQLITE_TRANSIENT);
}

class CopyOut {
public:
    CopyOut(const QSqlDatabase& server, const QString& schema, const QSqlDatabase& file,
            const TableDef& table, const QList<ColumnDef>& columns)
        : m_server(serverEngineHandle(server)), m_file(fileEngineHandle(file)), m_schema(schema),
          m_table(table), m_columns(columns) {
        for (const ColumnDef& column : columns)
            m_kinds << copyColumnOf(column.type);
    }

    bool run(qint64* rows, QString* why) {
        if (!m_file || !m_server) return readFailed(why, QStringLiteral("연결의 손잡이를 얻지 못했습니다."));
        Statement insert;
        if (!prepareInsert(&insert, why) || !begin(why)) return false;
        bool written = true;
        for (;;) {
            char* line = nullptr;
            const int size = PQgetCopyData(m_server, &line, 0);
            if (size < 0) break; // -1: all rows are here; -2: the result below says why
            const Buffer held(line);
            if (written && !writeRow(insert.get(), line, size, why)) written = false;
            if (written) ++*rows;
        }
        QString words;
        bool read = true;
        while (Result result{PQgetResult(m_server)})
            if (PQresultStatus(result.get()) != PGRES_COMMAND_OK && read) {
                words = serverEngineWords(m_server, result.get());
                read = false;
            }
        if (!read) return readFailed(why, words);
        return written;
    }

private:
    QStringList names() const {
        QStringList out;
        for (const ColumnDef& column : m_columns)
            out << quoteName(column.name);
        return out << QStringLiteral("rowid");
    }

    bool prepareInsert(Statement* insert, QString* why) {
        QStringList marks(m_columns.size() + 1, QStringLiteral("?"));
        const QByteArray sql = (QStringLiteral("INSERT INTO ") + quoteName(m_table.name) +
                                QStringLiteral(" (") + names().join(QStringLiteral(", ")) +
                                QStringLiteral(") VALUES (") + marks.join(QStringLiteral(", ")) + u')')
                                   .toUtf8();
        sqlite3_stmt* statement = nullptr;
        const int rc = sqlite3_prepare_v2(m_file, sql.constData(), int(sql.size()), &statement, nullptr);
        insert->reset(statement);
        return rc == SQLITE_OK || writeFailed(why);
    }

    bool begin(QString* why) {
        const QString sql = serverStatement(
            QStringLiteral("COPY (SELECT ") + names().join(QStringLiteral(", ")) + QStringLiteral(" FROM ") +
                m_schema + u'.' + quoteName(m_table.name) + QStringLiteral(" ORDER BY rowid) TO STDOUT"),
            {});
        Result started{PQexec(m_server, sql.toUtf8().constData())};
        if (PQresultStatus(started.get()) == PGRES_COPY_OUT) return true;
        const QString words = serverEngineWords(m_server, started.get());
        started.reset();
        while (Result rest{PQgetResult(m_server)}) {
        }
        return readFailed(why, words);
    }

    // One line of the copy (its fields split at tabs, the newline at its end) into the file.
    bool writeRow(sqlite3_stmt* insert, const char* line, int size, QString* why) {
        const char* end = line + size;
        if (end > line && end[-1] == '\n') --end;
        const char* field = line;
        const int width = int(m_kinds.size()) + 1;
        for (int i = 0; i < width; ++i) {
            const char* stop = field;
            while (stop < end && *stop != '\t')
                ++stop;
            const CopyColumn kind = i < m_kinds.size() ? m_kinds[i] : CopyColumn::Whole;
            if (bindField(insert, i + 1, field, stop - field, kind) != SQLITE_OK) return writeFailed(why);
            field = stop + 1;
        }
        const bool ok = sqlite3_step(insert) == SQLITE_DONE;
        sqlite3_reset(insert);
        return ok || writeFailed(why);
    }

    bool readFailed(QString* why, const QString& words) const {
        *why = QStringLiteral("서버의 표 %1을(를) 읽지 못했습니다: %2").arg(m_table.name, words);
        return false;
    }
    bool writeFailed(QString* why) const {
        *why = QStringLiteral("자료 파일에 표 %1을(를) 쓰지 못했습니다: %2")
                   .arg(m_table.name, QString::fromUtf8(sqlite3_errmsg(m_file)));
        return false;
    }

    PGconn* m_server;
    sqlite3* m_file;
    QString m_schema;
    const TableDef& m_table;
    QList<ColumnDef> m_columns;
    QList<CopyColumn> m_kinds;
};

} // namespace

QByteArray copyFieldText(const char* field, qsizetype size) {
    QByteArray text;
    text.reserve(size);
    for (qsizetype i = 0; i < size; ++i) {
        if (field[i] != '\\' || i + 1 == size) {
            text.append(field[i]);
            continue;
        }
        const char next = field[++i];
        switch (next) {
        case 'b':
            text.append('\b');
            break;
        case 'f':
            text.append('\f');
            break;
        case 'n':
            text.append('\n');
            break;
        case 'r':
            text.append('\r');
            break;
        case 't':
            text.append('\t');
            break;
        case 'v':
            text.append('\v');
            break;
        default:
            text.append(next);
        }
    }
    return text;
}

bool copyServerTableOut(QSqlDatabase server, const QString& schema, QSqlDatabase file, const TableDef& table,
                        const QList<ColumnDef>& columns, qint64* rows, QString* why) {
    return CopyOut(server, schema, file, table, columns).run(rows, why);
}

} // namespace nb
