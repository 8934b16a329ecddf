// The import of the old Jet files beside the bare route: mdb-export of every table of the same
// files piped into the sqlite3 program's .import, without any check. Both shared sets (median of
// five rounds each, the import and the bare route one after the other) and a decade of a busy
// shop made from the current set, the same way:
// its statement and invoice tables copied 31 and 20 times over with their keys renumbered, so
// 62,000 statements, 508,710 lines and 20,000 invoices. Before the decade is timed, its files
// are shown to be read whole: the rows and sums mdb-export hands to sqlite3 and those the
// program's import read and wrote, beside the figures the copies must give.
#include "BenchSupport.h"
#include "DecadeJetSet.h"
#include "TestSupport.h"
#include "storage/jet/JetImport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <sys/resource.h>

using namespace nb;

namespace {

// One line of sqlite3's answer for a statement on a file.
QString cliAnswer(const QString& file, const QString& sql) {
    QProcess p;
    p.start(QStringLiteral("sqlite3"), {file, sql});
    p.waitForFinished(120000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

// The bare route once over a folder, each file into <out>/<file>.db.
void bareRoute(const QString& folder, const QString& out) {
    const QString script = QStringLiteral(
        "set -e; cd \"$1\"; for f in *.mdb; do db=\"$2/${f%.mdb}.db\"; rm -f \"$db\"; "
        "for t in $(mdb-tables -1 \"$f\"); do mdb-export \"$f\" \"$t\" | sqlite3 \"$db\" \".import --csv "
        "/dev/stdin $t\"; "
        "done; done");
    QProcess bash;
    bash.start(QStringLiteral("bash"), {QStringLiteral("-c"), script, QStringLiteral("bare"), folder, out});
    bash.waitForFinished(1800000);
    if (bash.exitStatus() != QProcess::NormalExit || bash.exitCode() != 0)
        std::printf("the bare route failed: %s\n", bash.readAllStandardError().constData());
}

// Processor time (user and system) of this process or of its ended children, in ms.
double cpuMs(int who) {
    rusage usage{};
    getrusage(who, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

double bareMs(const QString& folder, int repeats) {
    test::TestHome home;
    return bench::medianMs([&] { bareRoute(folder, home.path()); }, repeats);
}

double importMs(const QString& folder, int repeats, JetImportReport* last = nullptr) {
    test::TestHome home;
    bench::openFreshStore();
    closeStores();
    JetImportOptions options;
    options.readerProgram = QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella");
    QElapsedTimer phase;
    phase.start();
    if (qEnvironmentVariableIsSet("NB_BENCH_PHASES"))
        options.progress = [&](const QString& what, qint64 rows) {
            std::printf("    %8.1f ms  %s %lld\n", double(phase.nsecsElapsed()) / 1e6, qPrintable(what),
                        rows);
        };
    bool ok = true;
    const double ms = bench::medianMs(
        [&] {
            JetImportReport report = importJetFolder(folder, options);
            ok = report.ok && ok;
            if (!report.ok) std::printf("import failed: %s\n", qPrintable(report.failure));
            if (last) *last = report;
        },
        repeats);
    if (!ok) std::printf("import of %s failed\n", qPrintable(folder));
    return ms;
}

void showFigures(const JetImportReport& report, const QString& table) {
    for (const JetTableFigures& t : report.tables) {
        if (t.table != table) continue;
        std::printf("  import    %-10s rows read %lld, written %lld", qPrintable(table), t.rowsRead,
                    t.rowsWritten);
        for (const JetColumnSum& s : t.sums)
            if (QStringList{"Amount", "VAT", "TotAmount", "TradeKum", "VatKum"}.contains(s.column))
                std::printf("; %s %s / %s", qPrintable(s.column), qPrintable(jetFigure(s.read)),
                            qPrintable(jetFigure(s.written)));
        std::printf("\n");
    }
}

// The decade's files read whole: counts from mdb-count, rows and sums through the bare route
// and through the import, beside what the copies must give.
void proveDecade(const QString& folder) {
    std::printf(
        "decade set: expected Master %d, Detail %d (Amount %.0f, VAT %.0f), NewAcount %d (TradeKum %.0f)\n",
        2000 * bench::kStatementCopies, 16410 * bench::kStatementCopies,
        26727932982.0 * bench::kStatementCopies, 1783862549.0 * bench::kStatementCopies,
        2454 * bench::kInvoiceCopies, 2825538327.0 * bench::kInvoiceCopies);
    for (const auto& [file, table] : std::initializer_list<std::pair<const char*, const char*>>{
             {"dbBill.mdb", "Master"}, {"dbBill.mdb", "Detail"}, {"dbTax.mdb", "NewAcount"}}) {
        QProcess count;
        count.start(QStringLiteral("mdb-count"), {folder + u'/' + QLatin1String(file), QLatin1String(table)});
        count.waitForFinished(600000);
        std::printf("  mdb-count %-10s %s\n", table, count.readAllStandardOutput().trimmed().constData());
    }
    test::TestHome home;
    bareRoute(folder, home.path());
    const QString bill = home.path() + QStringLiteral("/dbBill.db");
    const QString tax = home.path() + QStringLiteral("/dbTax.db");
    std::printf("  bare      Master    rows|TotAmount %s\n",
                qPrintable(cliAnswer(bill, QStringLiteral("SELECT COUNT(*), SUM(TotAmount) FROM Master"))));
    std::printf(
        "  bare      Detail    rows|Amount|VAT (lines under a head) %s | %s\n",
        qPrintable(cliAnswer(bill, QStringLiteral("SELECT COUNT(*), SUM(Amount), SUM(VAT) FROM Detail"))),
        qPrintable(cliAnswer(bill, QStringLiteral("SELECT SUM(Amount), SUM(VAT) FROM Detail WHERE BillNo "
                                                  "IN (SELECT BillNo FROM Master)"))));
    std::printf(
        "  bare      NewAcount rows|invoices|TradeKum %s\n",
        qPrintable(cliAnswer(tax, QStringLiteral("SELECT COUNT(*), COUNT(DISTINCT TaxCode), SUM(TradeKum) "
                                                 "FROM NewAcount"))));
    JetImportReport report;
    importMs(folder, 1, &report);
    for (const char* table : {"Master", "Detail", "NewAcount"})
        showFigures(report, QLatin1String(table));
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication application(argc, argv);
    test::prepareApplication(application);
    test::script();
    // `bench_jet_import FOLDER` only makes the decade set in FOLDER, for a look of one's own.
    QTemporaryDir decade;
    const QString decadeFolder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : decade.path();
    try {
        bench::makeDecadeJetSet(decadeFolder);
        if (argc > 1) return 0;
    } catch (const std::exception& e) {
        std::printf("the decade set could not be made: %s\n", e.what());
        return 1;
    }
    proveDecade(decadeFolder);
    if (qEnvironmentVariableIsSet("NB_BENCH_PROVE_ONLY")) return 0;
    // Rounds of the two, one after the other, so that both meet the same load of the machine.
    std::printf("%-10s %14s %14s %8s\n", "set", "import (ms)", "bare (ms)", "ratio");
    for (const QString& set :
         {QStringLiteral("current"), QStringLiteral("older"), QStringLiteral("decade")}) {
        const QString folder = set == QStringLiteral("decade") ? decadeFolder : bench::sharedJetSet(set);
        std::vector<double> ours, bare, oursCpu, bareCpu;
        for (int round = 0; round < 5; ++round) {
            const double cpuBefore = cpuMs(RUSAGE_SELF) + cpuMs(RUSAGE_CHILDREN);
            ours.push_back(importMs(folder, 1));
            const double cpuBetween = cpuMs(RUSAGE_SELF) + cpuMs(RUSAGE_CHILDREN);
            bare.push_back(bareMs(folder, 1));
            oursCpu.push_back(cpuBetween - cpuBefore);
            bareCpu.push_back(cpuMs(RUSAGE_CHILDREN) + cpuMs(RUSAGE_SELF) - cpuBetween);
        }
        for (auto* v : {&ours, &bare, &oursCpu, &bareCpu})
            std::sort(v->begin(), v->end());
        std::printf(
            "%-10s %14.0f %14.0f %8.2f   (import %.0f-%.0f, bare %.0f-%.0f; processor time %.0f against "
            "%.0f, ratio %.2f)\n",
            qPrintable(set), ours[2], bare[2], ours[2] / bare[2], ours.front(), ours.back(), bare.front(),
            bare.back(), oursCpu[2], bareCpu[2], oursCpu[2] / bareCpu[2]);
    }
    return 0;
}
