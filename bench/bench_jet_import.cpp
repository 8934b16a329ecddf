// The import of the old Jet files beside the bare route: mdb-export of every table of the same
// files piped into the sqlite3 program's .import, without any check. Both shared sets; the
// median of five runs each, in milliseconds.
#include "BenchSupport.h"
#include "TestSupport.h"
#include "storage/jet/JetImport.h"

#include <QApplication>
#include <QFile>
#include <cstdio>

using namespace nb;

namespace {

QString setFolder(const QString& set) {
    return test::sharedDataDir() + QStringLiteral("/legacy-jet/") + set;
}

double importMs(const QString& set) {
    test::TestHome home;
    bench::openFreshStore();
    closeStores();
    JetImportOptions options;
    options.readerProgram = QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella");
    bool ok = true;
    const double ms = bench::medianMs([&] { ok = importJetFolder(setFolder(set), options).ok && ok; }, 5);
    if (!ok) std::printf("import of %s failed\n", qPrintable(set));
    return ms;
}

double bareMs(const QString& set) {
    test::TestHome home;
    const QString script = QStringLiteral(
        "set -e; cd \"$1\"; n=0; for f in *.mdb; do n=$((n+1)); out=\"$2/bare$n.db\"; rm -f \"$out\"; "
        "for t in $(mdb-tables -1 \"$f\"); do mdb-export \"$f\" \"$t\" | sqlite3 \"$out\" \".import --csv "
        "/dev/stdin $t\"; "
        "done; done");
    return bench::medianMs(
        [&] {
            QProcess bash;
            bash.start(QStringLiteral("bash"),
                       {QStringLiteral("-c"), script, QStringLiteral("bare"), setFolder(set), home.path()});
            bash.waitForFinished(600000);
        },
        5);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication application(argc, argv);
    test::prepareApplication(application);
    test::script();
    std::printf("%-10s %14s %14s %8s\n", "set", "import (ms)", "bare (ms)", "ratio");
    for (const QString& set : {QStringLiteral("current"), QStringLiteral("older")}) {
        const double ours = importMs(set);
        const double bare = bareMs(set);
        std::printf("%-10s %14.0f %14.0f %8.2f\n", qPrintable(set), ours, bare, ours / bare);
    }
    return 0;
}
