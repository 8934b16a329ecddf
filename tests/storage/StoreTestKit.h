#pragma once
// What the store tests share: store paths in the test's application folder, files laid down
// by raw statements (old layouts), and reading a file without the program's helpers.

#include "TestSupport.h"
#include "core/AppState.h"
#include "storage/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QVariant>

namespace nb::test {

// Points every store path of the application state into <home>/Dbs.
inline void useStoreFolder(const TestHome& home) {
    AppState& a = app();
    a.DbPath = home.file(QStringLiteral("Dbs"));
    a.DbBasicFile = a.DbPath + QStringLiteral("/dbBasic.db");
    a.DbBillFile = a.DbPath + QStringLiteral("/dbBill.db");
    a.DbTaxFile = a.DbPath + QStringLiteral("/dbTax.db");
    a.DbInOutFile = a.DbPath + QStringLiteral("/InOutCash.db");
    a.DbEstimateFile = a.DbPath + QStringLiteral("/dbEstimate.db");
    a.DbPostFile = a.DbPath + QStringLiteral("/dbPost.db");
}

// Runs statements on a file, creating it when missing; false at the first failure.
inline bool runRaw(const QString& path, const QStringList& statements) {
    Database db;
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!db.open(path) && !db.create(path)) return false;
    for (const QString& sql : statements)
        if (!db.tryExecute(sql)) {
            qWarning("raw statement failed: %s (%s)", qPrintable(sql), qPrintable(db.lastErrorDescription()));
            return false;
        }
    return true;
}

// The first column of every row of a query on a file.
inline QVariantList rawColumn(const QString& path, const QString& sql) {
    Database db;
    QVariantList out;
    if (!db.open(path)) return out;
    QSqlQuery q(db.connection());
    if (!q.exec(sql)) return out;
    while (q.next())
        out << q.value(0);
    return out;
}

inline QVariant rawValue(const QString& path, const QString& sql) {
    return rawColumn(path, sql).value(0);
}

inline QStringList texts(const QVariantList& values) {
    QStringList out;
    for (const QVariant& v : values)
        out << (v.isNull() ? QStringLiteral("<null>") : v.toString());
    return out;
}

} // namespace nb::test
