#pragma once
// What the store tests share: store paths in the test's application folder, files laid down
// by raw statements (old layouts), and reading a file without the program's helpers.

#include "TestSupport.h"
#include "core/AppState.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>
#include <QVariant>

namespace nb::test {

// True when this run keeps the stores on a server database (NUBELLA_PG) instead of files. The
// engines' own words differ; what the program shows above them does not.
inline bool onServerEngine() {
    return nb::onServer();
}
// The engine's words for the same failure, as the files' engine and the server say them.
inline QString engineWords(const char* files, const char* server) {
    return QString::fromUtf8(onServerEngine() ? server : files);
}

// A table's, column's or index's name as the engine made it: the server's are in lower case.
inline QString named(const QString& name) {
    return onServerEngine() ? name.toLower() : name;
}
inline QStringList named(const QStringList& names) {
    QStringList out;
    for (const QString& name : names)
        out << named(name);
    return out;
}

// A file's declared type of a column as the server declares the same column.
inline QString declared(const QString& fileType) {
    if (!onServerEngine()) return fileType;
    if (fileType.startsWith(QStringLiteral("TEXT"))) return QStringLiteral("text COLLATE ucs_basic");
    if (fileType == QStringLiteral("BOOLEAN") || fileType == QStringLiteral("TINYINT"))
        return QStringLiteral("smallint");
    if (fileType == QStringLiteral("SMALLINT")) return QStringLiteral("integer");
    if (fileType == QStringLiteral("INTEGER")) return QStringLiteral("bigint");
    if (fileType == QStringLiteral("REAL")) return QStringLiteral("double precision");
    return fileType;
}

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

// An older installation's statement as the server takes it: its text widths ("TEXT(6)") are
// the files' own way of writing a text column.
inline QString forThisEngine(const QString& sql) {
    if (!onServerEngine()) return sql;
    static const QRegularExpression width(QStringLiteral("\\b(TEXT|VARCHAR)\\s*\\(\\s*\\d+\\s*\\)"),
                                          QRegularExpression::CaseInsensitiveOption);
    return QString(sql).replace(width, QStringLiteral("TEXT"));
}

// Runs statements on a file, creating it when missing; false at the first failure.
inline bool runRaw(const QString& path, const QStringList& statements) {
    Database db;
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!db.open(path) && !db.create(path)) return false;
    for (const QString& sql : statements)
        if (!db.tryExecute(forThisEngine(sql))) {
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
    if (!q.exec(db.statementFor(sql))) return out;
    while (q.next())
        out << q.value(0);
    return out;
}

// Takes a store away as if its file had been deleted: the file, or on the server its schema.
inline bool removeStore(const QString& path) {
    Database db;
    if (!db.open(path)) return false;
    if (!db.onServer()) {
        db.close();
        return QFile::remove(path);
    }
    return db.tryExecute(QStringLiteral("DROP SCHEMA ") + db.serverSchema() + QStringLiteral(" CASCADE"));
}

// Whether the store is there: its file, or on the server its schema.
inline bool storeExists(const QString& path) {
    if (!onServerEngine()) return QFileInfo::exists(path);
    Database db;
    return db.open(path);
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
