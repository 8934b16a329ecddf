#pragma once
// What the backup tests share: the books as text (every store's .dump through the sqlite3
// program), a change made in every store, and the automatic backups of a folder.

#include "StoreFixture.h"
#include "storage/backup/BackupParts.h"

#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace nb::test {

// The .dump of one store file by the sqlite3 program: schema and rows.
inline QString dumpOf(const QString& file) {
    if (!QFile::exists(file)) return QStringLiteral("(missing)");
    QProcess p;
    p.start(QStringLiteral("sqlite3"), {QStringLiteral("-readonly"), file, QStringLiteral(".dump")});
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The books: the .dump of every store, in the order of the application state.
inline QStringList booksDump() {
    QStringList dumps;
    for (const StoreRole& store : storeRoles())
        dumps << store.role + u'\n' + dumpOf(store.path);
    return dumps;
}

// Runs statements on a store file through a connection of its own; false at the first failure.
inline bool runOn(const QString& file, const QStringList& statements) {
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("backup-kit"));
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
        ok = db.open();
        for (const QString& sql : statements) {
            QSqlQuery q(db);
            if (ok && !q.exec(sql)) {
                qWarning("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
                ok = false;
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("backup-kit"));
    return ok;
}

// One change in every store the program writes: a trader, a statement, an invoice line, a
// quotation, a postcode; `tag` makes each change its own.
inline bool changeEveryStore(const QString& tag) {
    const AppState& a = app();
    return runOn(a.DbBasicFile,
                 {QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('%1', '거래처 %1')").arg(tag),
                  QStringLiteral("UPDATE Product SET PName = PName || '%1'").arg(tag)}) &&
           runOn(a.DbBillFile,
                 {QStringLiteral("INSERT INTO Master VALUES ('%1', '2024-05-10', '000001', 10000, 1000, 1)")
                      .arg(tag),
                  QStringLiteral(
                      "INSERT INTO Detail VALUES ('%1', 1, '품목 %1', 'EA', 2, 5000, 0, 10000, 1000)")
                      .arg(tag)}) &&
           runOn(a.DbTaxFile, {QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName) VALUES ('%1', "
                                              "'000001', '품목 %1')")
                                   .arg(tag)}) &&
           runOn(a.DbEstimateFile,
                 {QStringLiteral("INSERT INTO EstiBase (EstiCode, CName) VALUES ('%1', '견적 %1')")
                      .arg(tag)}) &&
           runOn(a.DbPostFile,
                 {QStringLiteral("INSERT INTO Post VALUES ('%1', '서울', '중구', '%1동', '1')").arg(tag)});
}

} // namespace nb::test
