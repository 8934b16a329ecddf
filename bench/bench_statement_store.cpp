// Times of the statement store at a decade of data (100,000 statements, 1,000,000 lines,
// 50,000 traders): the list of one month and of one year, the lines of a 200-line statement,
// one new line and one changed line; beside each, the same query through the sqlite3 command
// line on the same file. With NB_BENCH_PROFILE set only the month's list on the screen is run, a
// hundred times, counted by callgrind when run under it with --instr-atstart=no.
#include "BenchBooks.h"
#include "BenchSupport.h"
#include "StoreFixture.h"
#include "common/dates/DateCells.h"
#include "common/grid/Grid.h"
#include "statement/FrmDealList.h"
#include "statement/StatementStore.h"
#include "storage/CrossFileQueries.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QDate>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <functional>

using namespace nb;
using bench::code;

namespace {

constexpr int kRepeats = 15;

double medianMs(const std::function<void()>& run) {
    return bench::medianMs(run, kRepeats);
}

// The run time the command line reports for sql run kRepeats times, in one process: for one
// statement the mean of the runs after the first (its timer counts whole milliseconds of a clock
// that runs on between statements, so the mean of many is the time to a fraction of one), for
// several statements (a save) the sum of all divided by the repeats.
double cliMs(const QString& file, const QString& prelude, const QString& sql) {
    QString script = prelude + QStringLiteral("\n.output /dev/null\n.timer on\n");
    for (int i = 0; i < kRepeats; ++i)
        script += sql + QStringLiteral(";\n");
    QProcess p;
    p.start(QStringLiteral("sqlite3"), {file});
    p.write(script.toUtf8());
    p.closeWriteChannel();
    p.waitForFinished(-1);
    std::vector<double> times;
    const QRegularExpression real(QStringLiteral("Run Time: real ([0-9.]+)"));
    auto it = real.globalMatch(QString::fromUtf8(p.readAllStandardOutput()));
    while (it.hasNext())
        times.push_back(it.next().captured(1).toDouble() * 1000.0);
    if (times.empty()) return -1;
    if (int(times.size()) == kRepeats) {
        double sum = 0;
        for (size_t i = 1; i < times.size(); ++i)
            sum += times[i];
        return sum / double(times.size() - 1);
    }
    double sum = 0;
    for (double t : times)
        sum += t;
    return sum / kRepeats;
}

QString scalarText(const QString& sql) {
    QSqlQuery q(stores().dbBill.connection());
    q.exec(sql);
    return q.next() ? q.value(0).toString() : QString();
}

QString quoted(const QString& text) {
    return u'\'' + text + u'\'';
}

void report(const char* what, int rows, double screenMs, double cli) {
    std::printf("%-34s %7d rows  program %8.2f ms  sqlite3 %8.2f ms  ratio %5.2f\n", what, rows, screenMs,
                cli, cli > 0 ? screenMs / cli : 0.0);
}

QString withDates(QString sql, const QString& from, const QString& to) {
    sql.replace(sql.indexOf(u'?'), 1, quoted(from));
    sql.replace(sql.indexOf(u'?'), 1, quoted(to));
    return sql;
}

// The list read by the store, and the list as the screen shows it (its search button: the
// query, spMaster filled, the empty row's lines, the sums, the first page painted and the
// window free again), each beside its bare query.
void timeList(FrmDealList& screen, const char* what, const QString& from, const QString& to) {
    const QString basic = stores().dbBasic.path();
    const QString attach = QStringLiteral("ATTACH '%1' AS %2;").arg(basic, kBasicAlias);
    int rows = 0;
    const double ms = medianMs([&] {
        rows =
            int(ReadStatementList(stores().dbBill, basic, from, to).value_or(QList<StatementHead>()).size());
    });
    report(what, rows, ms,
           cliMs(stores().dbBill.path(), attach, withDates(statementListSql(false), from, to)));
    SetDateCellText(screen.spDate[0], from);
    SetDateCellText(screen.spDate[1], to);
    const double screenMs = bench::medianFirstPaintFreeMs(
        &screen, [&] { screen.cmdMaster_Click(); }, kRepeats);
    {
        bench::PaintCount paints(screen.spMaster->viewport());
        bench::firstPaintFreeMs(&screen, [&] { screen.cmdMaster_Click(); });
        std::printf(
            "   parts: the list painted %d time(s); the search alone %.2f ms, the whole window %.2f ms\n",
            paints.paints, medianMs([&] { screen.cmdMaster_Click(); }), medianMs([&] { screen.repaint(); }));
    }
    report("  the same on the screen", screen.spMaster->MaxRows() - 1, screenMs,
           cliMs(stores().dbBill.path(), attach, withDates(statementListRowsSql(false), from, to)));
    const double cpu = bench::medianCpuMs(
        [&] { bench::firstPaintFreeMs(&screen, [&] { screen.cmdMaster_Click(); }); }, kRepeats);
    const double cliCpu = bench::cliCpuMs(
        stores().dbBill.path(), attach + withDates(statementListRowsSql(false), from, to), kRepeats);
    std::printf("   processor time: program %.2f ms, sqlite3 %.2f ms (user + system), ratio %.2f\n", cpu,
                cliCpu, cliCpu > 0 ? cpu / cliCpu : 0.0);
}

// Choosing the 200-line statement in the list (its lines into spDetail, the totals) and going
// back to the empty row.
void timeChoice(FrmDealList& screen, const QString& billNo, double cli) {
    const QString date =
        scalarText(QStringLiteral("SELECT BillDate FROM Master WHERE BillNo = '%1'").arg(billNo));
    SetDateCellText(screen.spDate[0], date);
    SetDateCellText(screen.spDate[1], date);
    screen.cmdMaster_Click();
    int row = 1;
    while (screen.spMaster->Text(ColMasterBillNo, row) != billNo)
        ++row;
    const int empty = screen.spMaster->MaxRows();
    const double ms = medianMs([&] {
        screen.spMaster->SetActiveCell(ColBillDate, row);
        screen.spMaster->SetActiveCell(ColBillDate, empty);
    });
    report("  choosing it on the screen (and back)", screen.spDetail->MaxRows(), ms, cli);
}

// The searches a profiler counts (valgrind --tool=callgrind --instr-atstart=no): the month's
// list on the screen, run again and again.
void profiledSearches(FrmDealList& screen, int times) {
    bench::profileRuns(
        &screen, [&] { screen.cmdMaster_Click(); }, times);
}

// NB_BENCH_PROFILE: only the month's list, a hundred times, on the statements without their
// lines (the list reads none of them).
int profileMonth() {
    bench::fillTraders(50000);
    bench::fillStatements(100000, 100000);
    QSqlQuery(stores().dbBasic.connection())
        .exec(QStringLiteral("INSERT INTO User (Company, Serial) VALUES ('하르문상사', '123-45-67890')"));
    FrmDealList screen;
    screen.show();
    QApplication::processEvents();
    SetDateCellText(screen.spDate[0], QStringLiteral("2020-05-01"));
    SetDateCellText(screen.spDate[1], QStringLiteral("2020-05-31"));
    for (int i = 0; i < 5; ++i)
        bench::firstPaintFreeMs(&screen, [&] { screen.cmdMaster_Click(); });
    QElapsedTimer t;
    t.start();
    profiledSearches(screen, 100);
    std::printf("the month's list: %d statements, %.3f ms a search\n", screen.spMaster->MaxRows() - 1,
                double(t.nsecsElapsed()) / 1e6 / 100);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    test::script();
    if (!test::openStores()) return 1;
    if (qEnvironmentVariableIsSet("NB_BENCH_PROFILE")) return profileMonth();

    bench::fillTraders(50000);
    bench::fillStatements(100000, 1000000, 200);
    std::printf("store: 50000 traders, 100000 statements, 1000000 lines over 2015-2024\n");

    QSqlQuery(stores().dbBasic.connection())
        .exec(QStringLiteral("INSERT INTO User (Company, Serial) VALUES ('하르문상사', '123-45-67890')"));
    FrmDealList screen;
    screen.show();
    QApplication::processEvents(); // the first activation: the supplier and the list of this month

    timeList(screen, "statement list, one month", QStringLiteral("2020-05-01"), QStringLiteral("2020-05-31"));
    timeList(screen, "statement list, one year", QStringLiteral("2020-01-01"), QStringLiteral("2020-12-31"));
    timeList(screen, "statement list, ten years", QStringLiteral("2015-01-01"), QStringLiteral("2024-12-31"));

    // Memory: the window with an empty list, then with every statement of the ten years.
    SetDateCellText(screen.spDate[0], QStringLiteral("1990-01-01"));
    SetDateCellText(screen.spDate[1], QStringLiteral("1990-01-31"));
    screen.cmdMaster_Click();
    const double emptyMB = bench::residentMB();
    SetDateCellText(screen.spDate[0], QStringLiteral("2015-01-01"));
    SetDateCellText(screen.spDate[1], QStringLiteral("2024-12-31"));
    screen.cmdMaster_Click();
    screen.spMaster->finishReading(); // every row in memory, as after the operator went to the top
    screen.repaint();
    const double fullMB = bench::residentMB();
    std::printf("resident size: empty list %.1f MB, %d statements listed %.1f MB (%.1f MB more)\n", emptyMB,
                screen.spMaster->MaxRows() - 1, fullMB, fullMB - emptyMB);

    const QString big = code(100000);
    int rows = 0;
    double ms = medianMs([&] {
        rows = int(ReadStatementLines(stores().dbBill, big).value_or(QList<StatementLine>()).size());
    });
    const double linesCli =
        cliMs(stores().dbBill.path(), QString(),
              QStringLiteral("SELECT * FROM Detail WHERE BillNo = '%1' ORDER BY BillSEQ").arg(big));
    report("lines of a 200-line statement", rows, ms, linesCli);
    timeChoice(screen, big, linesCli);

    ms = medianMs([&] {
        DetailInsert(stores().dbBill, {big, QString(), code(1), QStringLiteral("새 품목")});
    });
    report("one new line", 1, ms,
           cliMs(stores().dbBill.path(), QString(),
                 QStringLiteral(
                     "BEGIN; SELECT MAX(BillSEQ) FROM Detail WHERE BillNo = '%1'; INSERT INTO Detail "
                     "VALUES ('%1', 9999, 'x', '', 0, 0, 0, 0, 0); UPDATE Master SET NumBill = NumBill "
                     "+ 1 WHERE BillNo = '%1'; ROLLBACK")
                     .arg(big)));

    double amount = 10000;
    ms = medianMs([&] { DetailUpdate(stores().dbBill, big, 100, QStringLiteral("Amount"), amount += 10); });
    report("one changed amount", 1, ms,
           cliMs(stores().dbBill.path(), QString(),
                 QStringLiteral(
                     "BEGIN; SELECT * FROM Detail WHERE BillNo = '%1' AND BillSEQ = 100; UPDATE Master "
                     "SET TotAmount = TotAmount - 10 WHERE BillNo = '%1'; UPDATE Detail SET Amount = 1 "
                     "WHERE BillNo = '%1' AND BillSEQ = 100; ROLLBACK")
                     .arg(big)));
    return 0;
}
