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

// Runs a statement with bound values on a store; false on failure.
inline bool exec(Database& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery q(db.connection());
    q.prepare(sql);
    for (const QVariant& v : values) q.addBindValue(v);
    return q.exec();
}

// The first column of the first row of a query, invalid when there is none.
inline QVariant scalar(Database& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery q(db.connection());
    q.prepare(sql);
    for (const QVariant& v : values) q.addBindValue(v);
    if (!q.exec() || !q.next()) return {};
    return q.value(0);
}

} // namespace nb::test
