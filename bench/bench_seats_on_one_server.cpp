// Several seats saving into one PostgreSQL database at once, each a running copy of this
// benchmark with an application folder of its own (a computer of the shop), each making the
// program's own saves (invoices of one to three lines, statements of two lines saved and priced
// cell by cell, quotations of two lines) in turn for a bounded time, 5 ms apart. Every step the
// operator waits for (one call into the store, one transaction) is timed by the seat itself;
// afterwards the saved lines a second of all seats together and the steps' times (median, 99th
// percentile, longest). It runs on a throwaway cluster of its own, first as the test cluster is
// set (no fsync), then with every commit flushed to disk as a real server keeps it.
//
//   bench_seats_on_one_server [SEATS [SECONDS]]        8 seats, 20 seconds by default
#include "BenchServer.h"
#include "SeatSaves.h"
#include "StoreFixture.h"
#include "TestSupport.h"
#include "common/Messages.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <vector>

using namespace nb;

namespace {

constexpr int kPauseMillis = 5;

// One seat: its saves for the given time; a line per step ("t STEP MS LINES"), per refusal
// ("fail ...") and at the end the time it saved for ("span MS").
int runSeat(int seconds, const QString& tag) {
    ScriptedMessages& messages = scriptMessages();
    ReadSettings();
    QDir().mkpath(nb::app().DbPath);
    CreateMissingStoreFiles();
    if (!OpenDatabases() || !OpenDb(stores().dbEstimate, nb::app().DbEstimateFile)) return 3;
    test::SeatSaves saves(messages, [](const QString& line) {
        if (line.startsWith(QStringLiteral("fail"))) std::printf("%s\n", line.toUtf8().constData());
    });
    // The wall clock at the step's end, to find a slow step again in the server's log.
    saves.timed = [](const char* step, double ms, int lines) {
        std::printf("t %s %.3f %d %lld\n", step, ms, lines, QDateTime::currentMSecsSinceEpoch());
    };
    QElapsedTimer span;
    span.start();
    const int refused = saves.mixed(seconds, tag, kPauseMillis);
    std::printf("span %.1f\n", double(span.nsecsElapsed()) / 1e6);
    closeStores();
    return refused == 0 ? 0 : 1;
}

// One step as a seat timed it: which seat, which kind, how long, and when it ended.
struct Step {
    double ms = 0;
    QString kind;
    int seat = 0;
    qint64 endedMs = 0;
};

struct Outcome {
    std::vector<double> all;
    std::vector<Step> slowest; // the longest steps, longest first
    QHash<QString, std::vector<double>> byStep;
    qint64 lines = 0;
    double longestSpanMs = 0;
    int refused = 0;
    int failedSeats = 0;
};

constexpr size_t kSlowestKept = 8;

void keepIfSlow(Outcome& into, Step step) {
    into.slowest.push_back(std::move(step));
    std::sort(into.slowest.begin(), into.slowest.end(),
              [](const Step& a, const Step& b) { return a.ms > b.ms; });
    if (into.slowest.size() > kSlowestKept) into.slowest.pop_back();
}

// A seat's lines go to files in its folder: a pipe nobody reads while the first seat is waited
// for would fill and hold the others up in the middle of their run.
QString outputOf(const QString& home) {
    return home + QStringLiteral("/steps.txt");
}
QString errorsOf(const QString& home) {
    return home + QStringLiteral("/errors.txt");
}

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void readSeat(QProcess& seat, const QString& home, int number, Outcome& into) {
    seat.waitForFinished(-1);
    if (seat.exitStatus() != QProcess::NormalExit || seat.exitCode() != 0) ++into.failedSeats;
    const QStringList lines = QString::fromUtf8(contentsOf(outputOf(home))).split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const QStringList f = line.split(u' ');
        if (f.value(0) == u"t" && f.size() == 5) {
            const double ms = f.at(2).toDouble();
            keepIfSlow(into, {ms, f.at(1), number, f.at(4).toLongLong()});
            into.all.push_back(ms);
            into.byStep[f.at(1)].push_back(ms);
            into.lines += f.at(3).toInt();
        } else if (f.value(0) == u"span") {
            into.longestSpanMs = std::max(into.longestSpanMs, f.value(1).toDouble());
        } else if (f.value(0) == u"fail") {
            ++into.refused;
            std::printf("  refused: %s\n", qPrintable(line));
        }
    }
    const QByteArray errors = contentsOf(errorsOf(home)).trimmed();
    if (!errors.isEmpty()) std::printf("  a seat said: %s\n", errors.left(400).constData());
}

// The seats started at once on the database, each in a folder of its own; their figures.
Outcome runSeats(const QString& program, const QString& connInfo, int seats, int seconds) {
    std::vector<std::unique_ptr<QTemporaryDir>> homes;
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < seats; ++i) {
        homes.push_back(std::make_unique<QTemporaryDir>());
        auto p = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("NUBELLA_HOME"), homes.back()->path());
        env.insert(QStringLiteral("NUBELLA_PG"), connInfo);
        p->setProcessEnvironment(env);
        p->setStandardOutputFile(outputOf(homes.back()->path()));
        p->setStandardErrorFile(errorsOf(homes.back()->path()));
        p->start(program, {QStringLiteral("--seat"), QString::number(seconds),
                           QStringLiteral("%1").arg(i + 1, 6, 10, QChar(u'0'))});
        processes.push_back(std::move(p));
    }
    Outcome outcome;
    for (size_t i = 0; i < processes.size(); ++i)
        readSeat(*processes[i], homes[i]->path(), int(i + 1), outcome);
    return outcome;
}

void report(const char* setting, int seats, const Outcome& o) {
    const double seconds = o.longestSpanMs / 1000.0;
    std::printf(
        "%s, %d seat(s): %lld lines in %.1f s = %.1f lines/s; %zu steps, median %.2f ms, p99 %.2f ms, "
        "longest %.1f ms; %d refused, %d seat(s) failed\n",
        setting, seats, qlonglong(o.lines), seconds, seconds > 0 ? double(o.lines) / seconds : 0.0,
        o.all.size(), bench::percentile(o.all, 0.5), bench::percentile(o.all, 0.99),
        bench::percentile(o.all, 1.0), o.refused, o.failedSeats);
    for (auto it = o.byStep.cbegin(); it != o.byStep.cend(); ++it)
        std::printf("   %-8s %6zu steps  median %7.2f ms  p99 %7.2f ms  longest %7.1f ms\n",
                    qPrintable(it.key()), it.value().size(), bench::percentile(it.value(), 0.5),
                    bench::percentile(it.value(), 0.99), bench::percentile(it.value(), 1.0));
    std::printf("   the longest steps (seat, kind, ended at):\n");
    for (const Step& step : o.slowest)
        std::printf(
            "   %9.1f ms  seat %d  %-8s %s\n", step.ms, step.seat, qPrintable(step.kind),
            qPrintable(
                QDateTime::fromMSecsSinceEpoch(step.endedMs).toString(QStringLiteral("HH:mm:ss.zzz"))));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    if (argc >= 4 && QByteArray(argv[1]) == "--seat") {
        QCoreApplication app(argc, argv);
        return runSeat(QString::fromLocal8Bit(argv[2]).toInt(), QString::fromLocal8Bit(argv[3]));
    }
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    const int seats = argc > 1 ? std::max(1, atoi(argv[1])) : 8;
    const int seconds = argc > 2 ? std::max(1, atoi(argv[2])) : 20;

    bench::BenchCluster cluster;
    if (!cluster.ok()) return 1;
    const QString program = QCoreApplication::applicationFilePath();
    // What the server saw of a slow step goes to its log (the cluster's folder, kept with
    // NB_BENCH_KEEP_CLUSTER): waits for a lock past the deadlock check, statements over 100 ms,
    // checkpoints and the autovacuum's work, each line with its time and seat.
    const QString watched = QStringLiteral(
        "ALTER SYSTEM SET log_lock_waits = on; ALTER SYSTEM SET log_min_duration_statement = 100; "
        "ALTER SYSTEM SET log_checkpoints = on; ALTER SYSTEM SET log_autovacuum_min_duration = 0; "
        "ALTER SYSTEM SET log_line_prefix = '%m [%p] %a '; SELECT pg_reload_conf();");
    if (!bench::BenchCluster::psql(cluster.connInfo(QStringLiteral("postgres")), watched)) return 1;
    std::printf("the server's log: %s/server.log\n", qPrintable(cluster.dir()));
    // The settings a real server keeps: every commit flushed to disk before it is confirmed.
    const QString flushed = QStringLiteral(
        "ALTER SYSTEM SET fsync = on; ALTER SYSTEM SET full_page_writes = on; ALTER SYSTEM SET "
        "synchronous_commit = on; SELECT pg_reload_conf();");
    for (const bool durable : {false, true}) {
        const QString database = durable ? QStringLiteral("seats_flushed") : QStringLiteral("seats");
        if (!cluster.createDatabase(database)) return 1;
        if (durable && !bench::BenchCluster::psql(cluster.connInfo(QStringLiteral("postgres")), flushed))
            return 1;
        // The stores laid down once, as the first seat's start does.
        qputenv("NUBELLA_PG", cluster.connInfo(database).toUtf8());
        {
            test::TestHome home;
            test::script();
            if (!test::openStores() || !OpenDb(stores().dbEstimate, nb::app().DbEstimateFile)) return 1;
            closeStores();
        }
        const char* setting = durable ? "commits flushed (fsync on)" : "as the test cluster (no fsync)";
        std::printf("load average before: %.2f\n", bench::loadAverage());
        report(setting, 1, runSeats(program, cluster.connInfo(database), 1, std::max(2, seconds / 4)));
        report(setting, seats, runSeats(program, cluster.connInfo(database), seats, seconds));
        std::printf("load average after: %.2f\n", bench::loadAverage());
    }
    qunsetenv("NUBELLA_PG");
    return 0;
}
