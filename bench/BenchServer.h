#pragma once
// What the benchmarks on a PostgreSQL server share: a throwaway cluster of the run's own
// (scripts/pg-test-cluster.sh in a temporary folder, stopped and removed when the benchmark
// ends), an empty database on it, and statements timed through psql on the same database.

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <unistd.h>
#include <vector>

namespace nb::bench {

class BenchCluster {
public:
    BenchCluster() : m_dir(QStringLiteral("/tmp/nb-bench-pg-%1").arg(::getpid())) {
        QProcess p;
        p.start(QStringLiteral("bash"), {script(), QStringLiteral("start"), m_dir});
        p.waitForFinished(180000);
        const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
        if (p.exitCode() != 0 || out.isEmpty()) {
            std::fprintf(stderr, "the cluster did not start: %s\n", p.readAllStandardError().constData());
            return;
        }
        m_connInfo = out.split(u'\n').last();
        const QRegularExpression port(QStringLiteral("port=([0-9]+)"));
        m_port = port.match(m_connInfo).captured(1).toInt();
    }
    // NB_BENCH_KEEP_CLUSTER set: the cluster stays, for a look at what the benchmark left.
    ~BenchCluster() {
        if (qEnvironmentVariableIsSet("NB_BENCH_KEEP_CLUSTER")) {
            std::printf("the cluster stays: %s\n", qPrintable(m_connInfo));
            return;
        }
        QProcess p;
        p.start(QStringLiteral("bash"), {script(), QStringLiteral("stop"), m_dir});
        p.waitForFinished(120000);
    }
    BenchCluster(const BenchCluster&) = delete;
    BenchCluster& operator=(const BenchCluster&) = delete;

    bool ok() const { return !m_connInfo.isEmpty(); }
    QString dir() const { return m_dir; }
    int port() const { return m_port; }
    QString user() const { return QStringLiteral("postgres"); }
    // The cluster's connection string with a database.
    QString connInfo(const QString& database) const {
        return m_connInfo + QStringLiteral(" dbname=") + database;
    }
    // A new empty database; false when the server refused it.
    bool createDatabase(const QString& name) const {
        return psql(connInfo(QStringLiteral("postgres")), QStringLiteral("CREATE DATABASE ") + name + u';')
            .has_value();
    }

    // A script through psql; its output, nothing when psql failed.
    static std::optional<QString> psql(const QString& connInfo, const QString& script) {
        QProcess p;
        p.start(QStringLiteral("psql"), {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-v"),
                                         QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-d"), connInfo});
        p.write(script.toUtf8());
        p.closeWriteChannel();
        p.waitForFinished(-1);
        if (p.exitCode() != 0) {
            std::fprintf(stderr, "psql: %s\n", p.readAllStandardError().constData());
            return std::nullopt;
        }
        return QString::fromUtf8(p.readAllStandardOutput());
    }

private:
    static QString script() { return QStringLiteral(NB_SOURCE_DIR "/scripts/pg-test-cluster.sh"); }

    QString m_dir;
    QString m_connInfo;
    int m_port = 0;
};

// A group of statements run `repeats` times through psql in one session on the database, rows
// to /dev/null, psql's own timer (\timing: from the statement sent to its whole result received):
// the median of the groups' sums, in ms. The search path is the store's schema, as the
// program's connection has it.
inline double psqlGroupMs(const QString& connInfo, const QString& schema, const QStringList& statements,
                          int repeats = 5) {
    QString script = QStringLiteral("SET search_path TO %1, public;\n\\timing on\n").arg(schema);
    for (int i = 0; i < repeats; ++i)
        script += statements.join(QStringLiteral(";\n")) + QStringLiteral(";\n");
    QProcess p;
    p.start(QStringLiteral("psql"), {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-o"),
                                     QStringLiteral("/dev/null"), QStringLiteral("-d"), connInfo});
    p.write(script.toUtf8());
    p.closeWriteChannel();
    p.waitForFinished(-1);
    const QRegularExpression time(QStringLiteral("Time: ([0-9.]+) ms"));
    std::vector<double> all;
    for (auto it = time.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();)
        all.push_back(it.next().captured(1).toDouble());
    const size_t perGroup = size_t(statements.size());
    std::vector<double> groups;
    for (size_t i = 0; i + perGroup <= all.size(); i += perGroup) {
        double sum = 0;
        for (size_t k = 0; k < perGroup; ++k)
            sum += all[i + k];
        groups.push_back(sum);
    }
    if (groups.empty() || all.size() != perGroup * size_t(repeats)) {
        std::fprintf(stderr, "psql timed %zu of %zu statements: %s\n", all.size(), perGroup * size_t(repeats),
                     p.readAllStandardError().constData());
        return -1;
    }
    std::sort(groups.begin(), groups.end());
    return groups[groups.size() / 2];
}

// The statement with its values written in as literals, for psql.
inline QString withLiterals(QString sql, const QStringList& values) {
    for (const QString& value : values) {
        const qsizetype at = sql.indexOf(u'?');
        if (at < 0) break;
        sql.replace(at, 1, u'\'' + QString(value).replace(u'\'', QStringLiteral("''")) + u'\'');
    }
    return sql;
}

// p of the sorted times (0 to 1), nearest rank.
inline double percentile(std::vector<double> times, double p) {
    if (times.empty()) return 0;
    std::sort(times.begin(), times.end());
    const size_t rank = size_t(std::max(1.0, std::ceil(p * double(times.size()))));
    return times[std::min(times.size(), rank) - 1];
}

// The load average of the last minute, as uptime shows it.
inline double loadAverage() {
    double load[1] = {0};
    return ::getloadavg(load, 1) == 1 ? load[0] : -1;
}

} // namespace nb::bench
