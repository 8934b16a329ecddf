#pragma once
// What the benchmarks share: a fresh store in a temporary application folder, the median of
// several runs, and the same statement timed by the sqlite3 program on the same file.

#include "TestSupport.h"
#include "core/AppState.h"
#include "shell/Startup.h"
#include "storage/Stores.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <algorithm>
#include <functional>
#include <vector>

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

// The statement through the sqlite3 program, its own timer (whole milliseconds), rows to
// /dev/null: the median "real" time in ms.
inline double cliMs(const QString& file, const QString& sql, int repeats = 5) {
    std::vector<double> times;
    const QRegularExpression real(QStringLiteral("Run Time: real ([0-9.]+)"));
    for (int i = 0; i < repeats; ++i) {
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {file});
        p.write((".timer on\n.output /dev/null\n" + sql + ";\n").toUtf8());
        p.closeWriteChannel();
        p.waitForFinished(120000);
        double last = -1;
        for (auto it = real.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();)
            last = it.next().captured(1).toDouble() * 1000;
        times.push_back(last);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace nb::bench
