#pragma once
// What the list benchmarks measure beside the time to the first page painted: how long the window
// stood still while an action ran, and a script of several statements through the sqlite3
// program timed by its own timer.

#include "BenchSupport.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <vector>

namespace nb::bench {

// Runs action with a 2 ms timer ticking; answers the action's time in ms and sets still to the
// longest time between two ticks (or since the last one at the end): how long the window's
// events waited at most.
inline double timeWatchingStill(const std::function<void()>& action, double* still) {
    QElapsedTimer clock;
    double lastTick = 0, longest = 0;
    QTimer ticks;
    ticks.setInterval(2);
    QObject::connect(&ticks, &QTimer::timeout, [&] {
        const double now = double(clock.nsecsElapsed()) / 1e6;
        longest = std::max(longest, now - lastTick);
        lastTick = now;
    });
    clock.start();
    ticks.start();
    action();
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    *still = std::max(longest, ms - lastTick);
    return ms;
}

// firstPaintFreeMs of the action, median of several runs, each followed by the lists left reading
// read through; still gets the median of the runs' longest stand-stills.
inline double medianPaintedWatchingStill(QWidget* window, const std::function<void()>& action, double* still,
                                         int repeats = 5) {
    std::vector<double> times, stills;
    for (int i = 0; i < repeats; ++i) {
        double s = 0, ms = 0;
        timeWatchingStill([&] { ms = firstPaintFreeMs(window, action); }, &s);
        times.push_back(ms);
        stills.push_back(s);
        for (int settle = 0; settle < 200; ++settle)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    std::sort(times.begin(), times.end());
    std::sort(stills.begin(), stills.end());
    *still = stills[stills.size() / 2];
    return times[times.size() / 2];
}

// The statements of script through the sqlite3 program on file: the sum of its timer's figures
// (whole milliseconds each), the median of several runs. A script that only reads may be run
// `timesEach` times more in each process after a first run that warms the file up: a run's figure
// is then the sum of those runs' figures divided by timesEach, to a fraction of a millisecond, as
// the timer's clock runs on between statements.
inline double cliScriptMs(const QString& file, const QString& script, int repeats = 5, int timesEach = 0) {
    std::vector<double> times;
    const QRegularExpression real(QStringLiteral("Run Time: real ([0-9.]+)"));
    for (int i = 0; i < repeats; ++i) {
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {file});
        p.write(".timer on\n.output /dev/null\n");
        for (int k = 0; k <= timesEach; ++k)
            p.write((script + "\n").toUtf8());
        p.closeWriteChannel();
        p.waitForFinished(600000);
        std::vector<double> figures;
        for (auto it = real.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();)
            figures.push_back(it.next().captured(1).toDouble() * 1000);
        const size_t perRun = figures.size() / size_t(timesEach + 1);
        double sum = 0;
        for (size_t k = timesEach > 0 ? perRun : 0; k < figures.size(); ++k)
            sum += figures[k];
        times.push_back(timesEach > 0 ? sum / timesEach : sum);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace nb::bench
