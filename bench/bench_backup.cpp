// Time of a backup of a decade of books (50,000 traders, 100,000 statements, 1,000,000 lines):
// the program's backup (each store through the engine's online backup, row counts, checksums,
// the zip) beside the bare route of the sqlite3 program's .backup of each store and the zip
// program at its fastest level. Also the time of a restore of the same backup. Run with
// NUBELLA_TEST_PG naming a PostgreSQL cluster (as the server twins of the tests are), the seat
// works on a fresh database there: the program's backup (every store's rows read in one snapshot
// into store files) is timed beside psql's \copy of the same rows in one transaction and zip -1,
// and its restore beside psql making the tables anew and \copy-ing the rows back in one
// transaction.
#include "BackupKit.h"
#include "BenchBooks.h"
#include "BenchSupport.h"
#include "core/AppFolder.h"
#include "storage/Backup.h"
#include "storage/ServerSettings.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/backup/ServerCopy.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

using namespace nb;

namespace {

bool run(const QString& program, const QStringList& arguments, const QString& folder = QString()) {
    QProcess p;
    if (!folder.isEmpty()) p.setWorkingDirectory(folder);
    p.start(program, arguments);
    return p.waitForFinished(300000) && p.exitCode() == 0;
}

// The sqlite3 program's .backup of each store, then zip -1 of the copies and settings.ini.
void bareRoute(const QString& zip) {
    QTemporaryDir work;
    QStringList names;
    for (const StoreRole& store : storeRoles()) {
        run(QStringLiteral("sqlite3"),
            {store.path, QStringLiteral(".backup '%1/%2'").arg(work.path(), store.entry)});
        names << store.entry;
    }
    QFile::copy(appFolderFile(QStringLiteral("settings.ini")), work.path() + QStringLiteral("/settings.ini"));
    names << QStringLiteral("settings.ini");
    QFile::remove(zip);
    run(QStringLiteral("zip"), QStringList{QStringLiteral("-q"), QStringLiteral("-1"), zip} + names,
        work.path());
}

bool runPsql(const QString& script) {
    QProcess p;
    p.start(QStringLiteral("psql"), {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-v"),
                                     QStringLiteral("ON_ERROR_STOP=1"), serverConnInfo()});
    p.write(script.toUtf8());
    p.closeWriteChannel();
    return p.waitForFinished(600000) && p.exitCode() == 0;
}

// Every store table's rows through psql's \copy into `folder` (schema.table.csv), in one snapshot
// as the program reads them; the files' names.
QStringList exportTables(const QString& folder) {
    QStringList names;
    QString script = QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY;\n");
    for (const QString& schema : storeSchemaNames())
        for (const TableDef& table : schemaTables(schema)) {
            const QString name = schema + u'.' + table.name.toLower();
            script += QStringLiteral("\\copy (SELECT * FROM %1 ORDER BY rowid) TO '%2/%1.csv' CSV\n")
                          .arg(name, folder);
            names << name + QStringLiteral(".csv");
        }
    script += QStringLiteral("COMMIT;\n");
    runPsql(script);
    return names;
}

// On the server: every store table's rows through psql's \copy, then zip -1 of the files (with
// the postcode file and settings.ini).
void bareServerRoute(const QString& zip) {
    QTemporaryDir work;
    QStringList names = exportTables(work.path());
    for (const StoreRole& store : storeRoles())
        if (store.schema.isEmpty() && QFileInfo(store.path).size() > 0) {
            QFile::copy(store.path, work.path() + u'/' + store.entry);
            names << store.entry;
        }
    QFile::copy(appFolderFile(QStringLiteral("settings.ini")), work.path() + QStringLiteral("/settings.ini"));
    names << QStringLiteral("settings.ini");
    QFile::remove(zip);
    run(QStringLiteral("zip"), QStringList{QStringLiteral("-q"), QStringLiteral("-1"), zip} + names,
        work.path());
}

// The bare road of a restore on the server: in one transaction, every store's tables made anew
// (in schemas of their own, with their indexes and triggers) and filled by psql's \copy from the
// rows exported before. Milliseconds of that transaction alone.
double bareServerRestoreMs() {
    QTemporaryDir work;
    exportTables(work.path());
    QString script = QStringLiteral("BEGIN;\n");
    for (const QString& schema : storeSchemaNames()) {
        const QString bare = QStringLiteral("bare_") + schema;
        script += QStringLiteral("CREATE SCHEMA %1;\nSET LOCAL search_path TO %1, public;\n").arg(bare);
        for (const TableDef& table : schemaTables(schema)) {
            for (const QString& sql : createStatements(table, true))
                script += serverStatement(sql, {}) + QStringLiteral(";\n");
            script += QStringLiteral("\\copy %1.%2 FROM '%3/%4.%2.csv' CSV\n")
                          .arg(bare, table.name.toLower(), work.path(), schema);
        }
    }
    script += QStringLiteral("COMMIT;\n");
    QElapsedTimer clock;
    clock.start();
    const bool ok = runPsql(script);
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    QString drop;
    for (const QString& schema : storeSchemaNames())
        drop += QStringLiteral("DROP SCHEMA IF EXISTS bare_%1 CASCADE;\n").arg(schema);
    runPsql(drop);
    return ok ? ms : -1;
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    test::script();
    if (!test::openStores()) return 1;
    // A fraction of the decade when given (bench_backup 0.1), for a quicker look.
    const double scale = argc > 1 ? std::clamp(QString::fromLocal8Bit(argv[1]).toDouble(), 0.001, 1.0) : 1.0;
    const int traders = int(50000 * scale);
    const int statements = int(100000 * scale);
    const int lines = statements * 10;
    bench::fillTraders(traders);
    bench::fillStatements(statements, lines);
    closeStores();
    OpenDatabases(); // the journal folded into the store, as after a start
    const bool server = onServer();
    qint64 storeBytes = 0;
    for (const StoreRole& store : storeRoles())
        storeBytes += QFileInfo(store.path).size();
    if (server)
        std::printf("books on the server: %d traders, %d statements, %d lines\n", traders, statements, lines);
    else
        std::printf("books: %d traders, %d statements, %d lines; %.1f MB of store files\n", traders,
                    statements, lines, double(storeBytes) / 1e6);
    const QString zip = home.file(QStringLiteral("books.zip"));
    const QString bareZip = home.file(QStringLiteral("bare.zip"));
    QString why;
    const int repeats = server ? 3 : 5;
    const double ms = bench::medianMs([&] { WriteBackup(zip, &why); }, repeats);
    if (!why.isEmpty()) std::printf("backup failed: %s\n", qPrintable(why));
    const double bare =
        bench::medianMs([&] { server ? bareServerRoute(bareZip) : bareRoute(bareZip); }, repeats);
    std::printf("backup (program)            %8.0f ms  zip %.1f MB\n", ms,
                double(QFileInfo(zip).size()) / 1e6);
    std::printf("backup (%s)   %8.0f ms  zip %.1f MB  ratio %.2f\n",
                server ? "psql \\copy + zip -1" : "sqlite3 + zip -1", bare,
                double(QFileInfo(bareZip).size()) / 1e6, bare > 0 ? ms / bare : 0.0);
    const double restoreMs = bench::medianMs([&] { RestoreBackup(zip, &why); }, server ? 1 : 3);
    if (!why.isEmpty()) std::printf("restore failed: %s\n", qPrintable(why));
    std::printf("restore (program, with the backup before it) %8.0f ms\n", restoreMs);
    if (server) {
        const double bareRestore = bareServerRestoreMs();
        std::printf("restore (psql: tables made anew and \\copy in one transaction) %8.0f ms  ratio %.2f\n",
                    bareRestore, bareRestore > 0 ? restoreMs / bareRestore : 0.0);
    }
    return 0;
}
