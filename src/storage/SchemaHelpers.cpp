// The schema helpers: column types as the store declares them, index names, the primary index
// rule, and DAO_AddField, the one live helper that adds a column.
#include "common/Messages.h"
#include "storage/Database.h"
#include "storage/StoreEngine.h"

namespace nb {
namespace {

const QString kAddFieldProcedure = QStringLiteral("DAO_AddField");
const QString kAddFieldModule = QStringLiteral("mdlCommonHM");

void reportAddFieldFailure(const Database& db, const QString& table, const QString& field) {
    ShowFailureReport(db.lastErrorNumber(), db.lastErrorDescription(), kAddFieldProcedure, kAddFieldModule,
                      QStringLiteral("[TABLE]: ") + table + QStringLiteral(",    [FIELD]: ") + field);
}

QString addColumnSql(const Database& db, const QString& table, const QString& field, int type, int size,
                     bool allowZero) {
    QString sql = QStringLiteral("ALTER TABLE ") + quoteName(table) + QStringLiteral(" ADD COLUMN ") +
                  quoteName(field) + u' ' + declaredType(type, size, db.onServer());
    // A text column refuses the empty text unless told otherwise, as the original's fields do.
    if ((type == dbText || type == dbMemo) && !allowZero)
        sql += QStringLiteral(" CHECK (") + quoteName(field) + QStringLiteral(" <> '')");
    // A yes/no column is never null: it starts as false.
    if (type == dbBoolean) sql += QStringLiteral(" NOT NULL DEFAULT 0");
    return sql;
}

} // namespace

QString declaredType(int type, int size, bool server) {
    if (server) return serverColumnType(type);
    switch (type) {
    case dbBoolean:
        return QStringLiteral("BOOLEAN");
    case dbByte:
        return QStringLiteral("TINYINT");
    case dbInteger:
        return QStringLiteral("SMALLINT");
    case dbLong:
        return QStringLiteral("INTEGER");
    case dbSingle:
    case dbDouble:
        return QStringLiteral("REAL");
    case dbText:
        return size > 0 ? QStringLiteral("TEXT(") + QString::number(size) + u')' : QStringLiteral("TEXT");
    case dbMemo:
        return QStringLiteral("TEXT");
    default:
        return QStringLiteral("NUMERIC");
    }
}

QString storeIndexName(const QString& table, const QString& originalName) {
    return table + u'_' + originalName;
}

bool isPrimaryIndexName(const QString& table, const QString& storeName) {
    return storeName.compare(storeIndexName(table, QStringLiteral("PK")), Qt::CaseInsensitive) == 0 ||
           storeName.compare(storeIndexName(table, QStringLiteral("PrimaryKey")), Qt::CaseInsensitive) == 0;
}

bool isPrimaryIndex(const QString& table, const IndexInfo& index) {
    if (index.origin == QStringLiteral("pk")) return true;
    return index.unique && index.origin == QStringLiteral("c") && isPrimaryIndexName(table, index.name);
}

bool DAO_AddField(Database& db, const QString& table, const QString& field, int type, int size,
                  bool allowZero, const QString& sql) {
    if (db.hasColumn(table, field)) return false;
    // The column and its statement are one step: a failure leaves neither behind, so the next
    // start tries both again.
    const bool began = db.beginTransaction();
    const bool added = began && db.tryExecute(addColumnSql(db, table, field, type, size, allowZero)) &&
                       (sql.isEmpty() || db.tryExecute(sql));
    if (added && db.commit()) return true;
    // A failed commit has rolled back already and noted its cause.
    reportAddFieldFailure(db, table, field);
    db.rollback();
    return true; // the original carried on after its report and still answered true
}

} // namespace nb
