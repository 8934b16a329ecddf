#pragma once
// For tests that work on the store: every store file created under <home>/Dbs and the three
// shared ones opened, and quick statements that bypass the screens. Header only: the tests that
// use it link the storage and shell libraries.

#include "TestSupport.h"
#include "core/AppState.h"
#include "shell/Startup.h"
#include "storage/Stores.h"

#include <QDir>
#include <QSqlQuery>
#include <QVariantList>

namespace nb::test {

// Paths under <home>/Dbs, every store file created and dbBasic, dbTax, dbBill opened.
inline bool openStores() {
    ReadSettings();
    QDir().mkpath(app().DbPath);
    CreateMissingStoreFiles();
    return OpenDatabases();
}

// Runs a statement with bound values on a store, in the words of the store's engine; false on
// failure.
inline bool exec(Database& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery q(db.connection());
    q.prepare(db.statementFor(sql, values));
    db.bindValues(q, values);
    return q.exec();
}

// The first column of the first row of a query, invalid when there is none.
inline QVariant scalar(Database& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery q(db.connection());
    q.prepare(db.statementFor(sql, values));
    db.bindValues(q, values);
    if (!q.exec() || !q.next()) return {};
    return q.value(0);
}

// An SQL expression for the day `days` (an SQL expression) after `first` ("YYYY-MM-DD"), as a
// "YYYY-MM-DD" text, in the words of the store's engine: for test rows made by a statement.
inline QString dayAfterSql(const Database& db, const QString& first, const QString& days) {
    return db.onServer() ? QStringLiteral("to_char(DATE '%1' + (%2), 'YYYY-MM-DD')").arg(first, days)
                         : QStringLiteral("date('%1', '+' || (%2) || ' days')").arg(first, days);
}

// An SQL expression for the whole number `number` (an SQL expression, 0 or more and below
// 10^width) as a text of `width` digits with leading zeros, in words both engines read.
inline QString digitsSql(const QString& number, int width) {
    QString power = QStringLiteral("1") + QString(width, u'0');
    return QStringLiteral("substr(CAST(%1 + (%2) AS TEXT), 2)").arg(power, number);
}

} // namespace nb::test
