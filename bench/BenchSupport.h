#pragma once
// What the benchmarks share: a fresh store in a temporary application folder, the median of
// several runs, and the same statement timed by the sqlite3 program on the same file.

#include "TestSupport.h"
#include "core/AppState.h"
#include "shell/Startup.h"
#include "storage/Stores.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <ctime>
#include <functional>
#include <malloc.h>
#include <unistd.h>
#include <vector>
#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#endif

namespace nb::bench {

// The store files of a fresh application folder, laid down and opened.
inline void openFreshStore() {
    test::script();
    ReadSettings();
    QDir().mkpath(nb::app().DbPath);
    CreateMissingStoreFiles();
    OpenDatabases();
}

// The median of several runs, in milliseconds.
inline double medianMs(const std::function<void()>& run, int repeats = 9) {
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        QElapsedTimer t;
        t.start();
        run();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// The processor time this thread spends on a run, median of several, in milliseconds: on a
// loaded machine it shows the work itself where the clock also shows the waiting for a core.
inline double medianCpuMs(const std::function<void()>& run, int repeats = 9) {
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        timespec from{}, to{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &from);
        run();
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &to);
        times.push_back(double(to.tv_sec - from.tv_sec) * 1e3 + double(to.tv_nsec - from.tv_nsec) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// The same through the sqlite3 program: its timer's user and system time of the statement
// (the last one of the script), median of several, in milliseconds.
inline double cliCpuMs(const QString& file, const QString& script, int repeats = 9) {
    std::vector<double> times;
    const QRegularExpression cpu(QStringLiteral("Run Time: real [0-9.]+ user ([0-9.]+) sys ([0-9.]+)"));
    for (int i = 0; i < repeats; ++i) {
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {file});
        p.write((".timer on\n.output /dev/null\n" + script + ";\n").toUtf8());
        p.closeWriteChannel();
        p.waitForFinished(120000);
        double last = 0;
        for (auto it = cpu.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();) {
            const QRegularExpressionMatch m = it.next();
            last = (m.captured(1).toDouble() + m.captured(2).toDouble()) * 1000;
        }
        times.push_back(last);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// The statement through the sqlite3 program on the same file, rows to /dev/null, timed by the
// program's own timer, in milliseconds. That timer reads a clock of whole milliseconds that runs on
// between statements, so one statement of a fraction of a millisecond reads 0 or 1; the mean of
// many reads is its time. The statement runs once to warm the file up (as the screen's figure is
// the median of repeated searches), then again in the same process as many times as fill about
// 300 ms (at least `repeats`, at most 100), and the mean of those is answered.
inline double cliMs(const QString& file, const QString& sql, int repeats = 5) {
    const QByteArray statement = (sql + QStringLiteral(";\n")).toUtf8();
    // Each run of the program: the statement that many times, the timer's reads in order.
    const auto run = [&](int times) {
        static const QRegularExpression real(QStringLiteral("Run Time: real ([0-9.]+)"));
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {file});
        p.write(".timer on\n.output /dev/null\n");
        for (int i = 0; i < times; ++i)
            p.write(statement);
        p.closeWriteChannel();
        p.waitForFinished(600000);
        std::vector<double> ms;
        for (auto it = real.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();)
            ms.push_back(it.next().captured(1).toDouble() * 1000);
        return ms;
    };
    const std::vector<double> probe = run(2);
    if (probe.size() < 2) return -1;
    const int runs = std::clamp(int(300 / std::max(probe.back(), 1.0)), repeats, 100);
    const std::vector<double> all = run(runs + 1);
    if (all.size() < 2) return -1;
    double sum = 0;
    for (size_t i = 1; i < all.size(); ++i)
        sum += all[i];
    return sum / double(all.size() - 1);
}

// What the operator waits for when a search fills a list: from the start of action (on a shown
// window) until the window has painted what the action changed and its event loop answers
// again. The paint the action asked for is done at once (the update requests it posted, as the
// event loop would handle them next; set NB_BENCH_FULL_PAINT to repaint the whole window
// instead); then a zero timer is posted and the time is taken when it fires, so work the list
// left for between events (the next page of rows) counts as far as it holds the window.
// Milliseconds.
inline double firstPaintFreeMs(QWidget* window, const std::function<void()>& action) {
    QElapsedTimer t;
    t.start();
    action();
    if (qEnvironmentVariableIsSet("NB_BENCH_FULL_PAINT"))
        window->repaint();
    else
        QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
    bool answered = false;
    QTimer::singleShot(0, window, [&answered] { answered = true; });
    while (!answered)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    return double(t.nsecsElapsed()) / 1e6;
}

// The action run 500 times to its first page painted, under the processor-instruction counter
// only (valgrind --tool=callgrind --instr-atstart=no), for comparing builds by instructions.
inline void profileRuns(QWidget* window, const std::function<void()>& action, int times = 500) {
#if __has_include(<valgrind/callgrind.h>)
    CALLGRIND_START_INSTRUMENTATION;
#endif
    for (int i = 0; i < times; ++i)
        firstPaintFreeMs(window, action);
#if __has_include(<valgrind/callgrind.h>)
    CALLGRIND_STOP_INSTRUMENTATION;
#endif
}

// Counts the paints of a widget, so that a figure is known to include the painting it stands for.
class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget* widget) { widget->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
};

// The median of several firstPaintFreeMs; between runs the lists left reading are read
// through (outside the time), so each run starts from a quiet window.
inline double medianFirstPaintFreeMs(QWidget* window, const std::function<void()>& action, int repeats = 9) {
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        times.push_back(firstPaintFreeMs(window, action));
        for (int settle = 0; settle < 200; ++settle)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// The resident size of this process now, in MB (from /proc/self/statm), after handing the
// memory freed so far back to the system, so that what an earlier list left does not count.
inline double residentMB() {
    malloc_trim(0);
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly)) return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    if (fields.size() < 2) return -1;
    return fields.at(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

} // namespace nb::bench
