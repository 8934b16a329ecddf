#include "storage/backup/ServerCopy.h"

#include "storage/DatabaseServerWatch.h"
#include "storage/StoreEngine.h"
#include "storage/backup/ServerCopyIn.h"
#include "storage/backup/ServerCopyOut.h"
#include "storage/backup/StoreCopy.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <algorithm>
#include <cmath>

namespace nb {
namespace {

// One side of a copy: a store file, or a store's schema on the server. A statement is written
// once in the files' words; the server's side takes it as its stores take theirs.
struct Side {
    QSqlDatabase db;
    bool server = false;
    QString schema;

    QString table(const QString& name) const {
        return server ? schema + u'.' + quoteName(name) : quoteName(name);
    }
    QString statement(const QString& sql, const QVariantList& values = {}) const {
        return server ? serverStatement(sql, values) : sql;
    }
    QString words() const { return server ? QStringLiteral("서버") : QStringLiteral("자료 파일"); }
};

bool runOn(const Side& side, const QString& sql, QString* why, const QVariantList& values = {}) {
    return runSql(side.db, side.statement(sql, values), why, values);
}

QString quotedIdentifier(const QString& name) {
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

bool isNumberColumn(const ColumnDef& column) {
    return column.type != dbText && column.type != dbMemo && column.type != dbBoolean;
}

// The columns of a table as one side holds it, without the server's own (the row number, a work
// row's seat); none when the table is not there.
bool columnsOf(const Side& side, const QString& table, QStringList* names, QString* why) {
    if (!side.server) {
        const QSqlRecord record = side.db.record(table);
        for (int i = 0; i < record.count(); ++i)
            names->append(record.fieldName(i));
        return true;
    }
    QSqlQuery q(side.db);
    q.prepare(QStringLiteral(
        "SELECT a.attname FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_class c ON c.oid = a.attrelid "
        "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace WHERE n.nspname = ? AND c.relname = ? "
        "AND c.relkind = 'r' AND a.attnum > 0 AND NOT a.attisdropped AND a.attname NOT IN ('rowid', 'seat') "
        "ORDER BY a.attnum"));
    q.addBindValue(side.schema);
    q.addBindValue(table.toLower());
    if (!q.exec()) {
        *why =
            QStringLiteral("서버의 표 %1의 칸을 읽지 못했습니다: %2").arg(table, engineWords(q.lastError()));
        return false;
    }
    while (q.next())
        names->append(q.value(0).toString());
    return true;
}

// The layout's columns the source's table has. A column of the source the layout does not
// know would be lost on the other side, so it stops the copy.
bool columnsToCopy(const Side& source, const Side& target, const TableDef& table, QList<ColumnDef>* columns,
                   bool* present, QString* why) {
    QStringList names;
    if (!columnsOf(source, table.name, &names, why)) return false;
    *present = !names.isEmpty();
    for (const QString& name : names) {
        const bool known = std::any_of(table.columns.begin(), table.columns.end(), [&](const ColumnDef& c) {
            return c.name.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (!known) {
            *why = QStringLiteral("%1의 표 %2에 %3의 표에 없는 칸 %4이(가) 있습니다.")
                       .arg(source.words(), table.name, target.words(), name);
            return false;
        }
    }
    for (const ColumnDef& column : table.columns)
        if (names.contains(column.name, Qt::CaseInsensitive)) *columns << column;
    return true;
}

// The rows of one table in the order they were written, their row numbers kept, streamed through
// the server's COPY either way.
bool copyRows(const Side& source, const Side& target, const TableDef& table, const QList<ColumnDef>& columns,
              qint64* copied, QString* why) {
    const bool ok =
        target.server ? copyFileTableIn(source.db, target.db, target.schema, table, columns, copied, why)
                      : copyServerTableOut(source.db, source.schema, target.db, table, columns, copied, why);
    if (!ok) return false;
    // Rows written on the server later take numbers after the ones brought along.
    if (target.server && *copied > 0)
        return runSql(
            target.db,
            QStringLiteral("SELECT setval(pg_get_serial_sequence(?, 'rowid'), (SELECT max(rowid) FROM ") +
                target.schema + u'.' + table.name.toLower() + QStringLiteral("))"),
            why, {target.schema + u'.' + table.name.toLower()});
    return true;
}

// The rows and the sum of every number column, as one side holds them.
QList<double> figures(const Side& side, const QString& table, const QList<ColumnDef>& columns, QString* why) {
    QStringList parts{QStringLiteral("count(*)")};
    for (const ColumnDef& column : columns)
        if (isNumberColumn(column))
            parts << (side.server ? QStringLiteral("coalesce(sum(%1), 0)::double precision")
                                  : QStringLiteral("total(%1)"))
                         .arg(quoteName(column.name));
    const QString sql = QStringLiteral("SELECT ") + parts.join(QStringLiteral(", ")) +
                        QStringLiteral(" FROM ") + side.table(table);
    QSqlQuery q(side.db);
    QList<double> out;
    if (!q.exec(side.statement(sql)) || !q.next()) {
        *why = QStringLiteral("%1의 표 %2의 행과 합계를 읽지 못했습니다: %3")
                   .arg(side.words(), table, engineWords(q.lastError()));
        return out;
    }
    for (int i = 0; i < parts.size(); ++i)
        out << q.value(i).toDouble();
    return out;
}

bool sameFigure(double a, double b) {
    return std::fabs(a - b) <= 1e-9 * std::max({1.0, std::fabs(a), std::fabs(b)});
}

// Source beside result: the rows, then each number column's sum.
bool checkTable(const Side& source, const Side& target, const TableDef& table,
                const QList<ColumnDef>& columns, QString* why) {
    const QList<double> before = figures(source, table.name, columns, why);
    const QList<double> after = figures(target, table.name, columns, why);
    if (before.isEmpty() || after.isEmpty()) return false;
    if (qint64(before[0]) != qint64(after[0])) {
        *why = QStringLiteral("표 %1의 행 수가 맞지 않습니다: %2 %3행, %4 %5행.")
                   .arg(table.name, source.words())
                   .arg(qint64(before[0]))
                   .arg(target.words())
                   .arg(qint64(after[0]));
        return false;
    }
    int at = 1;
    for (const ColumnDef& column : columns) {
        if (!isNumberColumn(column)) continue;
        if (!sameFigure(before[at], after[at])) {
            *why = QStringLiteral("표 %1의 칸 %2 합계가 맞지 않습니다: %3 %4, %5 %6.")
                       .arg(table.name, column.name, source.words())
                       .arg(before[at], 0, 'f', 4)
                       .arg(target.words())
                       .arg(after[at], 0, 'f', 4);
            return false;
        }
        ++at;
    }
    return true;
}

// Every table of the layout made on the target and, where the source has it, filled and checked.
bool copyTables(const Side& source, const Side& target, const QList<TableDef>& tables, bool sourcePresent,
                QList<CopiedTable>* copied, QString* why) {
    for (const TableDef& table : tables) {
        for (const QString& sql : createStatements(table, target.server))
            if (!runOn(target, sql, why)) return false;
        QList<ColumnDef> columns;
        bool present = false;
        if (!sourcePresent) continue;
        if (!columnsToCopy(source, target, table, &columns, &present, why)) return false;
        // The work rows on the server are the scratch of the seats connected (a file holds one
        // seat's): they stay behind, and a seat of the copy remakes its own at its next search.
        if (!present || (source.server && isWorkTable(table.name))) continue;
        CopiedTable done{source.server ? source.schema : target.schema, table.name, 0};
        if (!copyRows(source, target, table, columns, &done.rows, why) ||
            !checkTable(source, target, table, columns, why))
            return false;
        if (copied) copied->append(done);
    }
    return true;
}

} // namespace

OwnConnection::OwnConnection(const QString& driver)
    : m_name(QStringLiteral("own-") + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    QSqlDatabase::addDatabase(driver, m_name);
}

OwnConnection::~OwnConnection() {
    {
        QSqlDatabase connection = db();
        if (connection.isOpen()) connection.close();
    }
    QSqlDatabase::removeDatabase(m_name);
}

QSqlDatabase OwnConnection::db() const {
    return QSqlDatabase::database(m_name, false);
}

bool openServerConnection(const OwnConnection& server, const QString& connInfo, QString* why) {
    QSqlDatabase db = server.db();
    // Keepalives as the stores' connections ask them: a copy never waits on a dead network.
    db.setConnectOptions(serverConnectionOptions() + u' ' + connInfo);
    db.setNumericalPrecisionPolicy(QSql::LowPrecisionDouble);
    if (!db.open()) {
        *why = QStringLiteral("데이터 서버에 연결하지 못했습니다: ") + engineWords(db.lastError());
        return false;
    }
    // The server's notices (a schema dropped with its tables) are not the operator's business.
    return runSql(db, QStringLiteral("SET client_min_messages TO warning"), why);
}

QString engineWords(const QSqlError& error) {
    const QString words = error.databaseText().trimmed();
    return words.isEmpty() ? error.text().trimmed() : words;
}

bool runSql(QSqlDatabase db, const QString& sql, QString* why, const QVariantList& values) {
    QSqlQuery q(db);
    bool ok = false;
    if (values.isEmpty()) {
        ok = q.exec(sql);
    } else {
        ok = q.prepare(sql);
        for (const QVariant& value : values)
            q.addBindValue(value);
        ok = ok && q.exec();
    }
    if (!ok) *why = QStringLiteral("받아들여지지 않았습니다: ") + engineWords(q.lastError());
    return ok;
}

QList<TableDef> schemaTables(const QString& schema) {
    if (schema == u"basic") return basicTables();
    if (schema == u"bill") return billTables();
    if (schema == u"tax") return taxTables();
    if (schema == u"estimate") return estimateTables();
    return {};
}

bool schemaContent(QSqlDatabase server, const QString& schema, SchemaContent* content, QString* why) {
    *content = {};
    QSqlQuery tables(server);
    tables.prepare(QStringLiteral(
        "SELECT n.nspname, c.relname FROM pg_catalog.pg_namespace n LEFT JOIN pg_catalog.pg_class c ON "
        "c.relnamespace = n.oid AND c.relkind IN ('r', 'p') WHERE n.nspname = ? ORDER BY c.relname"));
    tables.addBindValue(schema);
    if (!tables.exec()) {
        *why = QStringLiteral("서버의 %1 장부를 살펴보지 못했습니다: %2")
                   .arg(schema, engineWords(tables.lastError()));
        return false;
    }
    QStringList names;
    while (tables.next()) {
        content->exists = true;
        if (!tables.value(1).isNull()) names << tables.value(1).toString();
    }
    for (const QString& table : names) {
        QSqlQuery row(server);
        if (!row.exec(QStringLiteral("SELECT 1 FROM ") + quotedIdentifier(schema) + u'.' +
                      quotedIdentifier(table) + QStringLiteral(" LIMIT 1"))) {
            *why = QStringLiteral("서버의 표 %1.%2을(를) 읽지 못했습니다: %3")
                       .arg(schema, table, engineWords(row.lastError()));
            return false;
        }
        if (row.next()) {
            content->holdsRows = true;
            return true;
        }
    }
    return true;
}

bool copyFileToSchema(const QString& file, const QString& schema, QSqlDatabase server,
                      QList<CopiedTable>* copied, QString* why) {
    const QList<TableDef> tables = schemaTables(schema);
    OwnConnection fileConnection(QStringLiteral("QSQLITE"));
    QSqlDatabase source = fileConnection.db();
    source.setDatabaseName(file);
    source.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!tables.isEmpty() && !source.open()) {
        *why = QStringLiteral("자료 파일을 열지 못했습니다: %1").arg(file);
        return false;
    }
    // One moment of the file is read for all its tables.
    if (source.isOpen() && !runSql(source, QStringLiteral("BEGIN"), why)) return false;
    const Side from{source, false, QString()};
    const Side to{server, true, schema};
    const bool ok =
        runSql(server, QStringLiteral("CREATE SCHEMA ") + schema, why) &&
        runSql(server, QStringLiteral("SET LOCAL search_path TO ") + schema + QStringLiteral(", public"),
               why) &&
        copyTables(from, to, tables, source.isOpen(), copied, why);
    QString ignored;
    if (source.isOpen()) runSql(source, QStringLiteral("ROLLBACK"), &ignored);
    return ok;
}

bool copySchemaToFile(QSqlDatabase server, const QString& schema, const QString& file, QString* why) {
    SchemaContent content;
    if (!schemaContent(server, schema, &content, why)) return false;
    if (QFileInfo::exists(file)) {
        *why = QStringLiteral("복사할 자리에 파일이 이미 있습니다: %1").arg(file);
        return false;
    }
    bool ok = false;
    {
        OwnConnection fileConnection(QStringLiteral("QSQLITE"));
        QSqlDatabase target = fileConnection.db();
        target.setDatabaseName(file);
        if (!target.open()) {
            *why = QStringLiteral("자료 파일을 만들지 못했습니다: %1 (%2)")
                       .arg(file, engineWords(target.lastError()));
            return false;
        }
        // The file is flushed once, whole, below.
        ok = runSql(target, QStringLiteral("PRAGMA synchronous=OFF"), why) &&
             runSql(target, QStringLiteral("BEGIN"), why) &&
             copyTables(Side{server, true, schema}, Side{target, false, QString()}, schemaTables(schema),
                        content.exists, nullptr, why) &&
             runSql(target, QStringLiteral("COMMIT"), why);
        if (!ok) {
            QString ignored;
            runSql(target, QStringLiteral("ROLLBACK"), &ignored);
        }
    }
    if (ok && !syncPath(file)) {
        *why = QStringLiteral("자료 파일을 디스크에 쓰지 못했습니다: %1").arg(file);
        ok = false;
    }
    return ok;
}

} // namespace nb
