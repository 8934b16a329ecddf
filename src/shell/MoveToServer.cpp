#include "shell/MoveToServer.h"

#include "core/AppState.h"
#include "shell/ServerCheck.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <cmath>

namespace nb {
namespace {

// Values bound in one INSERT of several rows: the server takes many more, but a statement of a
// few thousand characters keeps each round trip short.
constexpr int kValuesPerInsert = 900;

struct StoreToMove {
    QString schema;
    QString path;
    QList<TableDef> tables;
};

// The seat's stores as the server keeps them, each by the schema the cross-store statements
// name it by. The postcode book stays a file of every seat.
QList<StoreToMove> storesOfTheSeat() {
    const AppState& a = app();
    return {{QStringLiteral("basic"), a.DbBasicFile, basicTables()},
            {QStringLiteral("bill"), a.DbBillFile, billTables()},
            {QStringLiteral("tax"), a.DbTaxFile, taxTables()},
            {QStringLiteral("estimate"), a.DbEstimateFile, estimateTables()},
            {QStringLiteral("inout"), a.DbInOutFile, {}}};
}

// A connection of the move's own, let go of when it goes.
class Connection {
public:
    explicit Connection(const QString& driver)
        : m_name(QStringLiteral("move-") + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
        QSqlDatabase::addDatabase(driver, m_name);
    }
    ~Connection() {
        {
            QSqlDatabase connection = db();
            if (connection.isOpen()) connection.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }

private:
    QString m_name;
};

QString engineWords(const QSqlError& error) {
    const QString words = error.databaseText().trimmed();
    return words.isEmpty() ? error.text().trimmed() : words;
}

bool run(QSqlDatabase db, const QString& sql, QString* why, const QVariantList& values = {}) {
    QSqlQuery q(db);
    bool ok = false;
    if (values.isEmpty()) { // statements the server does not prepare (CREATE, SET) run as they are
        ok = q.exec(sql);
    } else {
        ok = q.prepare(sql);
        for (const QVariant& value : values)
            q.addBindValue(value);
        ok = ok && q.exec();
    }
    if (!ok) *why = QStringLiteral("서버가 받지 않았습니다: ") + engineWords(q.lastError());
    return ok;
}

// On the server a statement of the layout is run as the server's stores run it.
bool runOnServer(QSqlDatabase db, const QString& sql, QString* why, const QVariantList& values = {}) {
    return run(db, serverStatement(sql, values), why, values);
}

bool isNumberColumn(const ColumnDef& column) {
    return column.type != dbText && column.type != dbMemo && column.type != dbBoolean;
}

QString columnList(const QList<ColumnDef>& columns) {
    QStringList names;
    for (const ColumnDef& column : columns)
        names << quoteName(column.name);
    return names.join(QStringLiteral(", "));
}

// The layout's columns the file's table has. A column of the file the layout does not know
// would be lost on the server, so it stops the move.
bool columnsToCopy(QSqlDatabase source, const TableDef& table, QList<ColumnDef>* columns, bool* present,
                   QString* why) {
    const QSqlRecord record = source.record(table.name);
    *present = !record.isEmpty();
    for (int i = 0; i < record.count(); ++i) {
        const bool known = std::any_of(table.columns.begin(), table.columns.end(), [&](const ColumnDef& c) {
            return c.name.compare(record.fieldName(i), Qt::CaseInsensitive) == 0;
        });
        if (!known) {
            *why = QStringLiteral("자료 파일의 표 %1에 서버의 표에 없는 칸 %2이(가) 있습니다.")
                       .arg(table.name, record.fieldName(i));
            return false;
        }
    }
    for (const ColumnDef& column : table.columns)
        if (record.contains(column.name)) *columns << column;
    return true;
}

QString insertStatement(const QString& table, const QList<ColumnDef>& columns, int rows) {
    QStringList marks(columns.size() + 1, QStringLiteral("?"));
    const QString row = u'(' + marks.join(QStringLiteral(", ")) + u')';
    return QStringLiteral("INSERT INTO ") + quoteName(table) + QStringLiteral(" (") + columnList(columns) +
           QStringLiteral(", rowid) VALUES ") + QStringList(rows, row).join(QStringLiteral(", "));
}

bool flush(QSqlDatabase target, const QString& table, const QList<ColumnDef>& columns, QVariantList* values,
           int rows, QString* why) {
    if (rows == 0) return true;
    const bool ok = runOnServer(target, insertStatement(table, columns, rows), why, *values);
    values->clear();
    return ok;
}

// The rows of one table in the order they were written, the row numbers kept.
bool copyRows(QSqlDatabase source, QSqlDatabase target, const TableDef& table,
              const QList<ColumnDef>& columns, qint64* copied, QString* why) {
    QSqlQuery read(source);
    read.setForwardOnly(true);
    if (!read.exec(QStringLiteral("SELECT ") + columnList(columns) + QStringLiteral(", rowid FROM ") +
                   quoteName(table.name) + QStringLiteral(" ORDER BY rowid"))) {
        *why = QStringLiteral("자료 파일의 표 %1을(를) 읽지 못했습니다: %2")
                   .arg(table.name, engineWords(read.lastError()));
        return false;
    }
    const int width = int(columns.size()) + 1;
    const int rowsPerInsert = std::max(1, kValuesPerInsert / width);
    QVariantList values;
    int pending = 0;
    while (read.next()) {
        for (int i = 0; i < width; ++i)
            values << read.value(i);
        ++*copied;
        if (++pending == rowsPerInsert) {
            if (!flush(target, table.name, columns, &values, pending, why)) return false;
            pending = 0;
        }
    }
    if (read.lastError().isValid()) {
        *why = QStringLiteral("자료 파일의 표 %1을(를) 읽지 못했습니다: %2")
                   .arg(table.name, engineWords(read.lastError()));
        return false;
    }
    if (!flush(target, table.name, columns, &values, pending, why)) return false;
    // Rows written on the server later take numbers after the ones brought along.
    if (*copied > 0)
        return runOnServer(target,
                           QStringLiteral("SELECT setval(pg_get_serial_sequence(?, 'rowid'), "
                                          "(SELECT max(rowid) FROM ") +
                               quoteName(table.name) + QStringLiteral("))"),
                           why, {QString(table.name).toLower()});
    return true;
}

// The rows and the sum of every number column, as one side holds them.
QList<double> figures(QSqlDatabase db, const QString& table, const QList<ColumnDef>& columns, bool server,
                      QString* why) {
    QStringList parts{QStringLiteral("count(*)")};
    for (const ColumnDef& column : columns)
        if (isNumberColumn(column))
            parts << (server ? QStringLiteral("coalesce(sum(%1), 0)::double precision")
                             : QStringLiteral("total(%1)"))
                         .arg(quoteName(column.name));
    QString sql = QStringLiteral("SELECT ") + parts.join(QStringLiteral(", ")) + QStringLiteral(" FROM ") +
                  quoteName(table);
    if (server) sql = serverStatement(sql, {});
    QSqlQuery q(db);
    QList<double> out;
    if (!q.exec(sql) || !q.next()) {
        *why =
            QStringLiteral("표 %1의 행과 합계를 읽지 못했습니다: %2").arg(table, engineWords(q.lastError()));
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
bool checkTable(QSqlDatabase source, QSqlDatabase target, const TableDef& table,
                const QList<ColumnDef>& columns, QString* why) {
    const QList<double> before = figures(source, table.name, columns, false, why);
    const QList<double> after = figures(target, table.name, columns, true, why);
    if (before.isEmpty() || after.isEmpty()) return false;
    if (qint64(before[0]) != qint64(after[0])) {
        *why = QStringLiteral("표 %1의 행 수가 맞지 않습니다: 자료 파일 %2행, 서버 %3행.")
                   .arg(table.name)
                   .arg(qint64(before[0]))
                   .arg(qint64(after[0]));
        return false;
    }
    int at = 1;
    for (const ColumnDef& column : columns) {
        if (!isNumberColumn(column)) continue;
        if (!sameFigure(before[at], after[at])) {
            *why = QStringLiteral("표 %1의 칸 %2 합계가 맞지 않습니다: 자료 파일 %3, 서버 %4.")
                       .arg(table.name, column.name)
                       .arg(before[at], 0, 'f', 4)
                       .arg(after[at], 0, 'f', 4);
            return false;
        }
        ++at;
    }
    return true;
}

// One store: its schema with the layout's tables, its rows, their check, in one transaction.
bool moveStore(const StoreToMove& store, QSqlDatabase target, const MoveOptions& options,
               QList<MovedTable>* moved, QString* why) {
    Connection sourceConnection(QStringLiteral("QSQLITE"));
    QSqlDatabase source = sourceConnection.db();
    source.setDatabaseName(store.path);
    source.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!store.tables.isEmpty() && !source.open()) {
        *why = QStringLiteral("자료 파일을 열지 못했습니다: %1").arg(store.path);
        return false;
    }
    // One moment of the file is read for all its tables.
    if (source.isOpen() && !run(source, QStringLiteral("BEGIN"), why)) return false;
    if (!target.transaction()) {
        *why = QStringLiteral("서버에서 트랜잭션을 시작하지 못했습니다: ") + engineWords(target.lastError());
        return false;
    }
    bool ok =
        run(target, QStringLiteral("CREATE SCHEMA ") + store.schema, why) &&
        run(target, QStringLiteral("SET LOCAL search_path TO ") + store.schema + QStringLiteral(", public"),
            why);
    QList<MovedTable> tables;
    for (const TableDef& table : store.tables) {
        if (!ok) break;
        for (const QString& sql : createStatements(table, true))
            ok = ok && runOnServer(target, sql, why);
        QList<ColumnDef> columns;
        bool present = false;
        ok = ok && columnsToCopy(source, table, &columns, &present, why);
        if (!ok || !present) continue;
        MovedTable done{store.schema, table.name, 0};
        ok = copyRows(source, target, table, columns, &done.rows, why) &&
             checkTable(source, target, table, columns, why);
        if (ok) tables << done;
    }
    if (ok && options.afterCopy && !options.afterCopy(store.schema)) {
        *why = QStringLiteral("%1 장부를 옮기는 중에 멈추었습니다.").arg(store.schema);
        ok = false;
    }
    if (source.isOpen()) run(source, QStringLiteral("ROLLBACK"), why);
    if (!ok) {
        target.rollback();
        return false;
    }
    if (!target.commit()) {
        *why = QStringLiteral("서버가 %1 장부를 확정하지 못했습니다: %2")
                   .arg(store.schema, engineWords(target.lastError()));
        target.rollback();
        return false;
    }
    *moved << tables;
    return true;
}

// What a failed move made on the server goes again; the database is left as it was found.
QString removeMoved(QSqlDatabase target, const QStringList& schemas) {
    if (schemas.isEmpty()) return QString();
    QString why;
    bool ok = target.transaction();
    for (const QString& schema : schemas)
        ok = ok && run(target, QStringLiteral("DROP SCHEMA ") + schema + QStringLiteral(" CASCADE"), &why);
    ok = ok && target.commit();
    if (ok) return QString();
    target.rollback();
    return QStringLiteral("\r\n서버에 옮기다 만 장부(%1)가 남았습니다. 서버 관리자에게 지워 달라고 하십시오.")
        .arg(schemas.join(QStringLiteral(", ")));
}

MoveReport refused(const QString& why) {
    MoveReport report;
    report.failure =
        QStringLiteral(
            "데이터 서버로 옮기지 않았습니다. 장부는 이 컴퓨터의 자료 파일에 그대로 있습니다.\r\n") +
        why;
    return report;
}

} // namespace

qint64 MoveReport::rows() const {
    qint64 total = 0;
    for (const MovedTable& table : tables)
        total += table.rows;
    return total;
}

MoveReport moveToServer(const ServerSettings& target, const MoveOptions& options) {
    if (onServer()) return refused(QStringLiteral("이 자리는 이미 데이터 서버의 장부를 쓰고 있습니다."));
    if (target.database.isEmpty())
        return refused(QStringLiteral("옮길 데이터베이스가 정해지지 않았습니다. 데이터 서버 설정에서 주소와 "
                                      "데이터베이스를 저장하십시오."));
    const ServerCheck check = checkServer(target);
    if (!check.connected()) return refused(serverCheckText(target, check));
    if (check.holdsBooks())
        return refused(
            QStringLiteral("데이터베이스 %1에는 이미 장부가 있습니다 (%2). 장부가 없는 빈 데이터베이스로만 "
                           "옮길 수 있습니다.")
                .arg(target.database, check.storeSchemas.join(QStringLiteral(", "))));
    Connection targetConnection(QStringLiteral("QPSQL"));
    QSqlDatabase db = targetConnection.db();
    if (!target.host.isEmpty()) db.setHostName(target.host);
    db.setPort(target.port);
    db.setDatabaseName(target.database);
    if (!target.user.isEmpty()) db.setUserName(target.user);
    db.setNumericalPrecisionPolicy(QSql::LowPrecisionDouble);
    if (!db.open())
        return refused(QStringLiteral("서버에 연결하지 못했습니다: ") + engineWords(db.lastError()));
    QString why;
    // The server's notices (a schema dropped with its tables) are not the operator's business.
    if (!run(db, QStringLiteral("SET client_min_messages TO warning"), &why) ||
        !run(db, serverTrigramExtension(), &why))
        return refused(why);

    const QList<StoreToMove> stores = storesOfTheSeat();
    QStringList made;
    MoveReport report;
    for (int i = 0; i < stores.size(); ++i) {
        if (options.storeBegun) options.storeBegun(stores[i].schema, i, int(stores.size()));
        if (!moveStore(stores[i], db, options, &report.tables, &why))
            return refused(why + removeMoved(db, made));
        made << stores[i].schema;
    }
    ServerSettings seat = target;
    seat.use = true;
    if (!writeServerSettings(seat))
        return refused(QStringLiteral("설정 파일(settings.ini)에 서버를 적지 못했습니다.") +
                       removeMoved(db, made));
    report.ok = true;
    return report;
}

QStringList moveReportLines(const MoveReport& report) {
    QStringList lines;
    for (const MovedTable& table : report.tables)
        lines << QStringLiteral("%1.%2: %3행").arg(table.store, table.table).arg(table.rows);
    lines
        << QStringLiteral("모두 %1행, 행 수와 금액 칸의 합계를 원본과 맞추어 보았습니다.").arg(report.rows());
    return lines;
}

} // namespace nb
