// Time of a backup of a decade of books (50,000 traders, 100,000 statements, 1,000,000 lines):
// the program's backup (each store through the engine's online backup, row counts, checksums,
// the zip) beside the bare route of the sqlite3 program's .backup of each store and the zip
// program at its fastest level. Also the time of a restore of the same backup.
#include "BackupKit.h"
#include "BenchBooks.h"
#include "BenchSupport.h"
#include "core/AppFolder.h"
#include "storage/Backup.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
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

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    test::script();
    if (!test::openStores()) return 1;
    bench::fillTraders(50000);
    bench::fillStatements(100000, 1000000);
    closeStores();
    OpenDatabases(); // the journal folded into the store, as after a start
    qint64 storeBytes = 0;
    for (const StoreRole& store : storeRoles())
        storeBytes += QFileInfo(store.path).size();
    std::printf("books: 50000 traders, 100000 statements, 1000000 lines; %.1f MB of store files\n",
                double(storeBytes) / 1e6);
    const QString zip = home.file(QStringLiteral("books.zip"));
    QString why;
    const double ms = bench::medianMs([&] { WriteBackup(zip, &why); }, 5);
    if (!why.isEmpty()) std::printf("backup failed: %s\n", qPrintable(why));
    const double bare = bench::medianMs([&] { bareRoute(home.file(QStringLiteral("bare.zip"))); }, 5);
    std::printf("backup (program)            %8.0f ms  zip %.1f MB\n", ms,
                double(QFileInfo(zip).size()) / 1e6);
    std::printf("backup (sqlite3 + zip -1)   %8.0f ms  zip %.1f MB\n", bare,
                double(QFileInfo(home.file(QStringLiteral("bare.zip"))).size()) / 1e6);
    const double restoreMs = bench::medianMs([&] { RestoreBackup(zip, &why); }, 3);
    std::printf("restore (program, with the backup before it) %8.0f ms\n", restoreMs);
    return 0;
}
