#include "shell/MoveToServer.h"

#include "shell/ServerCheck.h"
#include "storage/StoreEngine.h"

#include <QSqlDatabase>
#include <QSqlError>

namespace nb {
namespace {

// One store: its schema laid down by the layout, its rows copied and checked, in one
// transaction. An empty schema of the store (made when the seat's server settings were saved
// before the move) is replaced; one that holds a row stops the move. It is looked at under the
// store's writer lock, so a seat that saves into it meanwhile is seen.
bool moveStore(const ServerStore& store, QSqlDatabase target, const MoveOptions& options,
               QList<MovedTable>* moved, QString* why) {
    if (!target.transaction()) {
        *why = QStringLiteral("서버에서 트랜잭션을 시작하지 못했습니다: ") + engineWords(target.lastError());
        return false;
    }
    SchemaContent content;
    bool ok = runSql(target, QStringLiteral("SELECT pg_advisory_xact_lock(?, hashtext(?))"), why,
                     {kServerWriterLockClass, store.schema}) &&
              schemaContent(target, store.schema, &content, why);
    if (ok && content.holdsRows) {
        *why = QStringLiteral("데이터베이스에 이미 장부가 있습니다 (%1).").arg(store.schema);
        ok = false;
    }
    if (ok && content.exists)
        ok = runSql(target, QStringLiteral("DROP SCHEMA ") + store.schema + QStringLiteral(" CASCADE"), why);
    QList<MovedTable> tables;
    ok = ok && copyFileToSchema(store.path, store.schema, target, &tables, why);
    if (ok && options.afterCopy && !options.afterCopy(store.schema)) {
        *why = QStringLiteral("%1 장부를 옮기는 중에 멈추었습니다.").arg(store.schema);
        ok = false;
    }
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

// What a failed move made on the server goes again; the database is left as it was found (an
// empty schema it replaced is not made again: a seat's start lays a missing store down).
QString removeMoved(QSqlDatabase target, const QStringList& schemas) {
    if (schemas.isEmpty()) return QString();
    QString why;
    bool ok = target.transaction();
    for (const QString& schema : schemas)
        ok = ok && runSql(target, QStringLiteral("DROP SCHEMA ") + schema + QStringLiteral(" CASCADE"), &why);
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
                .arg(target.database, check.schemasWithBooks.join(QStringLiteral(", "))));
    OwnConnection targetConnection(QStringLiteral("QPSQL"));
    QSqlDatabase db = targetConnection.db();
    QString why;
    // A seat saving into a store waits at most this long for its writer lock.
    if (!openServerConnection(targetConnection, connInfoOf(target), &why) ||
        !runSql(db, QStringLiteral("SET lock_timeout = 10000"), &why) ||
        !runSql(db, serverTrigramExtension(), &why))
        return refused(why);

    const QList<ServerStore> stores = serverStores();
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
