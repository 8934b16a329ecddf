// The trader list's search on a PostgreSQL server (NUBELLA_PG names an empty database), 50,000
// traders as the files' search benchmark lays them down, the tables vacuumed and their statistics
// taken as the server's upkeep leaves them in a running shop: each text as the operator waits for
// it (the list's InitForm to the first page painted and the window free; one and two characters
// through the table of pieces, three and more through the trigram indexes) beside the same
// statement through psql in the same run (psql's own timer), with the ratio; beside every row of
// the list made into values and held, past Qt's driver and through it; the steps the server ran
// (its plan, every step that ran); and the statement without the pieces (every trader read)
// through psql.
#include "BenchSupport.h"
#include "BenchWindow.h"
#include "StoreFixture.h"
#include "TestSupport.h"
#include "common/grid/SqliteRows.h"
#include "master/FrmTraderList.h"
#include "master/ListModel.h"
#include "master/SearchIndex.h"
#include "master/SearchRules.h"
#include "master/TraderRecords.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <cstdio>
#include <cstdlib>

using namespace nb;

namespace {

constexpr int kTraders = 50000;

// One statement run `repeats` times through psql in one session, its own timer: the median, ms.
double psqlMs(const QString& statement, int repeats = 9) {
    QString script = QStringLiteral("SET search_path TO basic, public;\n\\timing on\n");
    for (int i = 0; i < repeats; ++i)
        script += statement + QStringLiteral(";\n");
    QProcess p;
    p.start(QStringLiteral("psql"), {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-o"),
                                     QStringLiteral("/dev/null"), serverConnInfo()});
    p.write(script.toUtf8());
    p.closeWriteChannel();
    p.waitForFinished(300000);
    const QRegularExpression time(QStringLiteral("Time: ([0-9.]+) ms"));
    std::vector<double> all;
    for (auto it = time.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();)
        all.push_back(it.next().captured(1).toDouble());
    if (all.empty()) return -1;
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

// The statement as the server runs it, its values written in (psql takes no bound values).
QString asText(const SqlPart& query) {
    QString sql = sqlForDisplay(stores().dbBasic.statementFor(query.sql, query.values), query.values);
    while (sql.endsWith(u';'))
        sql.chop(1);
    return sql;
}

void fillTraders() {
    Database& db = stores().dbBasic;
    const QStringList towns = {"역삼동", "명동", "우동", "서면", "상계동", "신림동", "부평동", "둔산동"};
    const QStringList kinds = {"상사", "물산", "유통", "산업", "전자", "기계", "상회", "무역"};
    db.beginTransaction();
    for (int i = 1; i <= kTraders; ++i) {
        const QString town = towns[i % towns.size()];
        const QString word = QString::number(i % 997) + "-" + QString::number(i % 13);
        db.tryExecute(
            QStringLiteral(
                "INSERT INTO Trader (Code, C_Name, U_Name, Phone, Addr1, Addr2, Section, VAT, TotNoPay, "
                "bDeled) VALUES (?, ?, ?, ?, ?, ?, 0, 0, 0, 0)"),
            {QString("%1").arg(i, 6, 10, QChar('0')), QString("가나%1%2").arg(i).arg(kinds[i % kinds.size()]),
             "대표" + QString::number(i), QString("02-%1-%2").arg(100 + i % 900).arg(1000 + i % 9000),
             "서울 " + town + " " + word, word});
    }
    db.commit();
}

// The load average of the last minute, as uptime shows it.
double loadAverage() {
    double load[1] = {0};
    return ::getloadavg(load, 1) == 1 ? load[0] : -1;
}

// The first value of a statement on the program's connection, as text.
QString serverValue(const QString& sql) {
    QSqlQuery q(stores().dbBasic.connection());
    return q.exec(sql) && q.next() ? q.value(0).toString() : QStringLiteral("?");
}

// How many of the pieces' pages the server knows every row of visible to all (its last vacuum
// marked them): an index-only count reads only those pages' index entries, the rest from the
// table too.
QString piecesAllVisible() {
    return serverValue(QStringLiteral("SELECT relallvisible || ' of ' || relpages || ' pages' FROM "
                                      "pg_catalog.pg_class WHERE relname = 'trader_search_grams'"));
}

// The count a short text's statement opens with, alone through psql.
double countMs(const QString& gram) {
    return psqlMs(
        QStringLiteral("SELECT count(*) FROM (SELECT rid FROM trader_search_grams WHERE gram = '%1' "
                       "AND col IN (1, 2) LIMIT 5001) s")
            .arg(gram));
}

// One step's times over several rounds: the clock and this thread's processor time, in ms.
struct Step {
    std::vector<double> clock, cpu;
    static double median(std::vector<double> v) {
        std::sort(v.begin(), v.end());
        return v.empty() ? 0 : v[v.size() / 2];
    }
    double medianClock() const { return median(clock); }
    double medianCpu() const { return median(cpu); }
    // Times from its making to stop() or its end, whichever comes first.
    class Clock {
    public:
        explicit Clock(Step& step) : m_step(step) {
            m_wall.start();
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &m_from);
        }
        ~Clock() { stop(); }
        void stop() {
            if (m_stopped) return;
            m_stopped = true;
            timespec to{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &to);
            m_step.clock.push_back(double(m_wall.nsecsElapsed()) / 1e6);
            m_step.cpu.push_back(double(to.tv_sec - m_from.tv_sec) * 1e3 +
                                 double(to.tv_nsec - m_from.tv_nsec) / 1e6);
        }

    private:
        Step& m_step;
        QElapsedTimer m_wall;
        timespec m_from{};
        bool m_stopped = false;
    };
};

// Every row taken into memory and held, as the list's grid holds them; the count.
int keepEveryRow(GridRowSource& rows) {
    const int width = rows.width();
    std::vector<QVariant> kept;
    if (rows.expectedRows() > 0) kept.reserve(size_t(rows.expectedRows()) * size_t(width));
    int count = 0;
    for (;; ++count) {
        kept.resize(kept.size() + size_t(width));
        if (!rows.next(&kept[kept.size() - size_t(width)], width)) break;
    }
    return count;
}

// The list's own road: the statement read as the trader list reads it, every row handed over
// and held.
int listRows(const SqlPart& query) {
    KeptStatements kept;
    std::unique_ptr<GridRowSource> rows = OpenListRows(stores().dbBasic, query.sql, query.values, kept);
    if (!rows) return -1;
    return keepEveryRow(*rows);
}

// The same statement through Qt's driver, as the list read it before: the answer taken whole by
// the driver, then every value copied out of it and held.
int driverRows(const SqlPart& query) {
    auto q = std::make_unique<QSqlQuery>(stores().dbBasic.connection());
    if (!OpenForwardOnly(stores().dbBasic, *q, query.sql, query.values)) return -1;
    QueryRows rows(std::move(q));
    return keepEveryRow(rows);
}

// The scans the server ran for the statement, in short: "table" where it read every trader,
// "trigram index", "pieces".
QString stepsRun(const SqlPart& query) {
    QSqlQuery plan(stores().dbBasic.connection());
    if (!plan.exec(QStringLiteral("EXPLAIN ANALYZE ") + asText(query))) return QStringLiteral("?");
    QStringList steps;
    while (plan.next()) {
        const QString line = plan.value(0).toString();
        if (!line.contains(QStringLiteral("Scan")) || line.contains(QStringLiteral("never executed")))
            continue;
        const QString step = line.contains(QStringLiteral("Seq Scan on trader")) ? QStringLiteral("table")
                             : line.contains(QStringLiteral("_trgm")) ? QStringLiteral("trigram index")
                             : line.contains(QStringLiteral("trader_search_grams")) ? QStringLiteral("pieces")
                                                                                    : QString();
        if (!step.isEmpty() && !steps.contains(step)) steps << step;
    }
    return steps.join(u'+');
}

// The list's statement for a text without the pieces: what one and two characters cost before
// them, through psql.
QString everyTraderReadMs(const QString& text) {
    if (UsesTrigramIndex(text)) return QStringLiteral("(the same statement)");
    const QString column = TraderSearchByPhone(text) ? QStringLiteral("Phone") : QStringLiteral("C_Name");
    const SqlPart whole{
        QStringLiteral("SELECT C_Name, U_Name, Phone, Addr1, Code FROM Trader WHERE Section = ? "
                       "AND (%1 LIKE ? ESCAPE '\\' OR Addr2 LIKE ? ESCAPE '\\') ORDER BY "
                       "C_Name NULLS FIRST, Trader.rowid")
            .arg(column),
        {0, LikeContains(text), LikeContains(text)}};
    return QString::asprintf("%7.2f ms", psqlMs(asText(whole)));
}

// Each text as the operator waits for it and as the list reads it through, in one table.
void timeTexts() {
    std::printf("%-10s %6s  %10s  %10s  %5s  %10s  %10s  %-16s %s\n", "text", "rows", "screen", "psql",
                "ratio", "every row", "driver", "steps run", "psql, every trader read");
    FrmTraderList form;
    form.show();
    for (const QString& text :
         {QStringLiteral("물"), QStringLiteral("없"), QStringLiteral("9물"), QStringLiteral("물산"),
          QStringLiteral("7"), QStringLiteral("12"), QStringLiteral("가나4999"), QStringLiteral("물산상"),
          QStringLiteral("가나1")}) {
        const SqlPart query = TraderListQuery(stores().dbBasic, text, 0);
        const int rows = listRows(query);
        int result = 0;
        const double screen = bench::medianFirstPaintFreeMs(&form, [&] { form.InitForm(text, 0, result); });
        form.model()->clear();
        const double program = bench::medianMs([&] { listRows(TraderListQuery(stores().dbBasic, text, 0)); });
        const double driver =
            bench::medianMs([&] { driverRows(TraderListQuery(stores().dbBasic, text, 0)); });
        const double bare = psqlMs(asText(query));
        std::printf("%-10s %6d  %7.2f ms  %7.2f ms  %5.2f  %7.2f ms  %7.2f ms  %-16s %s\n", qPrintable(text),
                    rows, screen, bare, bare > 0 ? screen / bare : 0.0, program, driver,
                    qPrintable(stepsRun(query)), qPrintable(everyTraderReadMs(text)));
    }
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    if (!onServer()) {
        std::printf("bench_server_short_search: NUBELLA_PG names no server database\n");
        return 1;
    }
    test::TestHome home;
    test::script();
    if (!test::openStores()) return 1;
    QElapsedTimer filling;
    filling.start();
    fillTraders();
    std::printf("store on the server: %d traders laid down in %.1f s\n", kTraders,
                double(filling.elapsed()) / 1000);
    // The pieces made and filled as at the store's first short search.
    filling.restart();
    if (!EnsureSearchIndex(stores().dbBasic, TraderSearchIndex())) return 1;
    std::printf(
        "their pieces laid down in %.1f s: %s of the pieces marked visible to all; the count of \"7\" "
        "alone %.2f ms (psql)\n",
        double(filling.elapsed()) / 1000, qPrintable(piecesAllVisible()), countMs(QStringLiteral("7")));
    // The traders as the server's upkeep leaves them in a running shop: vacuumed and their
    // statistics taken. The log is written out first: the throwaway cluster commits without
    // waiting for it (synchronous_commit off), and a vacuum marks no row visible to all whose
    // commit is not yet written.
    QElapsedTimer vacuum;
    vacuum.start();
    psqlMs(QStringLiteral("CHECKPOINT"), 1);
    psqlMs(QStringLiteral("VACUUM (ANALYZE) trader"), 1);
    std::printf("traders vacuumed in %.1f s\n", double(vacuum.elapsed()) / 1000);
    std::printf("load average before the texts: %.2f\n", loadAverage());
    timeTexts();
    // Where the time of a long list goes, each step's clock and the program's own processor time
    // (the rest of the clock is the server's work and the wait for it): the statement until its
    // answer is in, then its rows made into values and held as the list holds them; past the
    // driver (the list's road) and through it (the road before). Medians of 9.
    std::printf(
        "\nwhere the time goes (clock / the program's processor time):\n%-6s  %22s  %22s  %22s  %22s\n",
        "text", "answer in", "rows made and held", "driver: answer in", "rows made and held");
    for (const QString& text : {QStringLiteral("물"), QStringLiteral("7")}) {
        const SqlPart query = TraderListQuery(stores().dbBasic, text, 0);
        std::vector<Step> steps(4);
        for (int round = 0; round < 9; ++round) {
            {
                Step::Clock answer(steps[0]);
                std::unique_ptr<GridRowSource> rows =
                    stores().dbBasic.openRowsOnServer(query.sql, query.values);
                answer.stop();
                Step::Clock held(steps[1]);
                keepEveryRow(*rows);
            }
            {
                Step::Clock answer(steps[2]);
                auto q = std::make_unique<QSqlQuery>(stores().dbBasic.connection());
                OpenForwardOnly(stores().dbBasic, *q, query.sql, query.values);
                QueryRows rows(std::move(q));
                answer.stop();
                Step::Clock held(steps[3]);
                keepEveryRow(rows);
            }
        }
        std::printf("%-6s", qPrintable(text));
        for (Step& step : steps)
            std::printf("  %9.2f / %6.2f ms", step.medianClock(), step.medianCpu());
        std::printf("\n");
    }
    std::printf("load average at the end: %.2f\n", loadAverage());
    return 0;
}
