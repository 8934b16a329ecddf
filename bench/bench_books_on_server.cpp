// A decade of books on a PostgreSQL server: a shop's store files (50,000 traders, 100,000
// statements with 1,000,000 lines, 100,000 quotations with 1,000,000 lines, 1,000,000 invoice
// lines) moved onto a throwaway cluster of the run's own by the program's move, timed beside the
// same rows through the bare tools (sqlite3 writing each table as CSV into psql's \copy, into
// tables made like the moved ones, indexes and all). Then the seat works on the server, and the
// statement list, the quotation list, a new quotation's next number and the invoice totals of a
// quarter and a year are timed as the operator waits for them (the search to the list's first
// page painted and the window free again, median of 9), beside the same statements through psql
// on the same database in the same run (psql's own timer, median of 5).
//
//   bench_books_on_server                 the whole run on a cluster of its own
//   bench_books_on_server --move          the move and its bare road only
//   bench_books_on_server --on CONNINFO   the lists only, on a database a run left moved (with
//                                         NB_BENCH_KEEP_CLUSTER set), e.g. when the machine is quiet
#include "BenchBooks.h"
#include "BenchServer.h"
#include "BenchSupport.h"
#include "BenchWindow.h"
#include "NextNumberPlans.h"
#include "StoreFixture.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateCells.h"
#include "common/grid/Grid.h"
#include "management/FrmTaxManage.h"
#include "management/TaxTotals.h"
#include "quotation/FrmEstiList.h"
#include "quotation/clsEstimate.h"
#include "shell/MoveToServer.h"
#include "statement/FrmDealList.h"
#include "storage/CrossFileQueries.h"
#include "storage/StoreEngine.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <cstdio>
#include <ctime>

using namespace nb;

namespace {

constexpr int kRepeats = 9;
const QString kDatabase = QStringLiteral("books");

void report(const char* what, int rows, double program, double bare) {
    std::printf("%-44s %7d rows  program %9.2f ms  psql %9.2f ms  ratio %5.2f\n", what, rows, program, bare,
                bare > 0 ? program / bare : 0.0);
    std::fflush(stdout);
}

void fillOnFiles() {
    bench::fillTraders(50000);
    QSqlQuery(stores().dbBasic.connection())
        .exec(QStringLiteral("INSERT INTO User (Company, Serial) VALUES ('하르문상사', '123-45-67891')"));
    bench::fillStatements(100000, 1000000, 200);
    bench::fillQuotations(100000, 1000000, QStringLiteral("202406500"));
    bench::fillInvoiceLines(50000, 1000000);
}

// The tables a decade fills, by store file and schema.
struct BigTable {
    QString file, schema, table;
};
QList<BigTable> bigTables() {
    const AppState& a = app();
    return {{a.DbBasicFile, QStringLiteral("basic"), QStringLiteral("trader")},
            {a.DbBillFile, QStringLiteral("bill"), QStringLiteral("master")},
            {a.DbBillFile, QStringLiteral("bill"), QStringLiteral("detail")},
            {a.DbEstimateFile, QStringLiteral("estimate"), QStringLiteral("estibase")},
            {a.DbEstimateFile, QStringLiteral("estimate"), QStringLiteral("estimate")},
            {a.DbTaxFile, QStringLiteral("tax"), QStringLiteral("newacount")}};
}

QVariant serverValue(const QString& sql) {
    QSqlQuery q(stores().dbBasic.connection());
    return q.exec(sql) && q.next() ? q.value(0) : QVariant();
}

// The bare road of one table: sqlite3 writes its rows as CSV (whole numbers for the server's
// whole-number columns), psql copies them into a table made like the moved one. Milliseconds,
// or -1 when the rows that arrived differ.
double bareCopyMs(const bench::BenchCluster& cluster, const BigTable& t) {
    const QString bare = QStringLiteral("bare.%1_%2").arg(t.schema, t.table);
    QSqlQuery q(stores().dbBasic.connection());
    q.exec(QStringLiteral("CREATE TABLE %1 (LIKE %2.%3 INCLUDING ALL)").arg(bare, t.schema, t.table));
    q.exec(
        QStringLiteral("SELECT column_name, data_type FROM information_schema.columns WHERE table_schema = "
                       "'%1' AND table_name = '%2' ORDER BY ordinal_position")
            .arg(t.schema, t.table));
    QStringList names, reads;
    while (q.next()) {
        const QString name = q.value(0).toString();
        const QString type = q.value(1).toString();
        names << name;
        reads << (type == u"integer" || type == u"bigint" || type == u"smallint"
                      ? QStringLiteral("CAST(%1 AS INTEGER)").arg(name)
                      : name);
    }
    const QString command =
        QStringLiteral(
            "set -o pipefail; sqlite3 -csv '%1' 'SELECT %2 FROM %3 ORDER BY rowid' | psql -X -q -d '%4' "
            "-c '\\copy %5 (%6) FROM STDIN (FORMAT csv)'")
            .arg(t.file, reads.join(u','), t.table, cluster.connInfo(kDatabase), bare, names.join(u','));
    QElapsedTimer clock;
    clock.start();
    QProcess p;
    p.start(QStringLiteral("bash"), {QStringLiteral("-c"), command});
    p.waitForFinished(-1);
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    const qint64 moved =
        serverValue(QStringLiteral("SELECT count(*) FROM %1.%2").arg(t.schema, t.table)).toLongLong();
    const qint64 copied = serverValue(QStringLiteral("SELECT count(*) FROM %1").arg(bare)).toLongLong();
    if (p.exitCode() != 0 || moved != copied) {
        std::printf("  bare copy of %s: exit %d, %lld rows beside %lld moved: %s\n", qPrintable(bare),
                    p.exitCode(), qlonglong(copied), qlonglong(moved),
                    p.readAllStandardError().left(300).constData());
        return -1;
    }
    std::printf("  %-22s %8lld rows  bare copy %8.0f ms\n", qPrintable(t.schema + u'.' + t.table),
                qlonglong(copied), ms);
    return ms;
}

// A statement of the program in the server's words with its values written in, for psql.
QString forPsql(const QString& sql, const QStringList& values) {
    QVariantList bound;
    for (const QString& v : values)
        bound << v;
    return bench::withLiterals(serverStatement(sql, bound), values);
}

void timeStatementLists(const QString& conn) {
    FrmDealList screen;
    screen.show();
    QApplication::processEvents();
    const std::tuple<const char*, QString, QString> periods[] = {
        {"statement list, one month (screen)", QStringLiteral("2020-05-01"), QStringLiteral("2020-05-31")},
        {"statement list, one year (screen)", QStringLiteral("2020-01-01"), QStringLiteral("2020-12-31")},
        {"statement list, ten years (screen)", QStringLiteral("2015-01-01"), QStringLiteral("2024-12-31")}};
    for (const auto& [what, from, to] : periods) {
        SetDateCellText(screen.spDate[0], from);
        SetDateCellText(screen.spDate[1], to);
        const double ms = bench::medianFirstPaintFreeMs(
            &screen, [&] { screen.cmdMaster_Click(); }, kRepeats);
        report(what, screen.spMaster->MaxRows() - 1, ms,
               bench::psqlGroupMs(conn, QStringLiteral("bill"),
                                  {forPsql(statementListRowsSql(false), {from, to})}));
    }
}

void timeQuotationLists(const QString& conn) {
    FrmEstiList list;
    list.show();
    QApplication::processEvents();
    for (const auto& [field, text, label] :
         {std::tuple{0, QString(), "quotation list, empty search (screen)"},
          std::tuple{0, QStringLiteral("다라상회12"), "quotation list, name \"다라상회12\""},
          std::tuple{0, QStringLiteral("상회"), "quotation list, name \"상회\""},
          std::tuple{1, QStringLiteral("2020-05"), "quotation list, date \"2020-05\""},
          std::tuple{2, QStringLiteral("2019"), "quotation list, number \"2019\""},
          std::tuple{3, QStringLiteral("-06-1"), "quotation list, delivery \"-06-1\""}}) {
        const double ms = bench::medianFirstPaintFreeMs(
            &list, [&] { list.InitForm(field, text); }, kRepeats);
        const EstiListQuery q = estiListQuery(field, text);
        QStringList values;
        for (const QVariant& v : q.values)
            values << v.toString();
        report(label, list.rowCount(), ms,
               bench::psqlGroupMs(conn, QStringLiteral("estimate"), {forPsql(q.sql, values)}));
    }
}

// A new quotation's number as its save reads it (a month of 833 quotations and 8,330 lines),
// beside the same statement through psql; then the month's codes read whole as before the index
// of running codes, and the plan of every next number's read.
void timeNextCode(const QString& conn) {
    clsEstimate e(stores().dbEstimate);
    e.sEDate = QStringLiteral("2020-05-15");
    QString code;
    const double ms = bench::medianMs([&] { e.NextCode(code); }, 51);
    const QString month = QStringLiteral("202005");
    report(qPrintable(QStringLiteral("NextCode -> ") + code), 1, ms,
           bench::psqlGroupMs(conn, QStringLiteral("estimate"),
                              {forPsql(lastRunningCodeStatement(), {month, month})}));
    std::printf("   the month's codes read whole, as before the index: psql %.3f ms\n",
                bench::psqlGroupMs(
                    conn, QStringLiteral("estimate"),
                    {QStringLiteral(
                        "SELECT c FROM (SELECT esticode AS c FROM estibase WHERE esticode >= '202005' AND "
                        "esticode < '202006' UNION ALL SELECT code FROM estimate WHERE code >= '202005' "
                        "AND code < '202006') AS codes WHERE ltrim(substr(c, 7), '0123456789') = '' "
                        "ORDER BY length(c) DESC, c DESC LIMIT 8")}));
    bench::printNextNumberPlans(month);
}

// The refill as the screen runs it, in one transaction under the store's writer lock, and the
// rows read back.
QStringList refillStatements(const QString& from, const QString& to) {
    return {QStringLiteral("BEGIN"),
            QStringLiteral("SELECT pg_try_advisory_xact_lock(20034, hashtext('tax'))"),
            serverStatement(clearTotalsStatements(true)[0], {}),
            serverStatement(clearTotalsStatements(true)[1], {}),
            forPsql(kFillSaleTotal, {from, to}),
            serverStatement(totalsCountQuery(true), {}),
            QStringLiteral("COMMIT"),
            serverStatement(totalsListQuery(true), {})};
}

void timeTotals(const QString& conn) {
    FrmTaxManage screen;
    screen.show();
    QApplication::processEvents();
    const std::tuple<const char*, int, int, QString, QString> searches[] = {
        {"invoice totals, a quarter (screen)", 1, 1, QStringLiteral("2024-04-01"),
         QStringLiteral("2024-06-30")},
        {"invoice totals, a year (screen)", 0, 0, QStringLiteral("2024-01-01"),
         QStringLiteral("2024-12-31")}};
    for (const auto& [what, kind, period, from, to] : searches) {
        screen.CmbGubun->setCurrentIndex(kind);
        screen.CmbYY->setCurrentText(QStringLiteral("2024"));
        if (kind == 0) {
            screen.txtDate[0]->setDateText(from);
            screen.txtDate[1]->setDateText(to);
        } else {
            screen.CmbPeriod->setCurrentIndex(period);
        }
        double still = 0;
        const double ms = bench::medianPaintedWatchingStill(
            &screen, [&] { screen.btnSearch_Click(); }, &still, kRepeats);
        report(what, screen.grdList->DataRowCnt(), ms,
               bench::psqlGroupMs(conn, QStringLiteral("tax"), refillStatements(from, to)));
        std::printf("%-44s the window stood still at most %.1f ms (median)\n", "", still);
    }
}

// The lists timed on a database moved before.
int listsOn(const QString& conn) {
    qputenv("NUBELLA_PG", conn.toUtf8());
    test::TestHome home;
    test::script();
    if (!test::openStores() || !OpenDb(stores().dbEstimate, nb::app().DbEstimateFile)) return 1;
    std::printf("load average before the lists: %.2f\n", bench::loadAverage());
    timeStatementLists(conn);
    timeQuotationLists(conn);
    timeNextCode(conn);
    timeTotals(conn);
    std::printf("load average at the end: %.2f\n", bench::loadAverage());
    closeStores();
    return 0;
}

double processCpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    if (argc == 3 && QByteArray(argv[1]) == "--on") return listsOn(QString::fromLocal8Bit(argv[2]));
    const bool moveOnly = argc == 2 && QByteArray(argv[1]) == "--move";
    bench::BenchCluster cluster;
    if (!cluster.ok() || !cluster.createDatabase(kDatabase)) return 1;
    std::printf("load average at the start: %.2f\n", bench::loadAverage());

    test::TestHome home;
    test::script();
    if (!test::openStores() || !OpenDb(stores().dbEstimate, nb::app().DbEstimateFile)) return 1;
    fillOnFiles();
    closeStores();
    std::printf("files: 50000 traders, 100000 statements (1000000 lines), 100000 quotations (1000000 lines), "
                "1000000 invoice lines\n");

    const ServerSettings target{false, cluster.dir(), cluster.port(), kDatabase, cluster.user()};
    QElapsedTimer clock;
    clock.start();
    const double cpu0 = processCpuMs();
    const MoveReport moved = moveToServer(target);
    const double moveMs = double(clock.nsecsElapsed()) / 1e6;
    const double moveCpuMs = processCpuMs() - cpu0;
    if (!moved.ok) {
        std::printf("the move failed: %s\n", qPrintable(moved.failure));
        return 1;
    }
    std::printf(
        "the move (--move-to-server): %lld rows in %.0f ms, of which the program's own processor time "
        "%.0f ms (load average %.2f)\n",
        qlonglong(moved.rows()), moveMs, moveCpuMs, bench::loadAverage());
    std::fflush(stdout);

    // The seat now works on the server, as its next start would.
    ReadSettings();
    if (!OpenDatabases() || !OpenDb(stores().dbEstimate, nb::app().DbEstimateFile) || !onServer()) return 1;
    QSqlQuery(stores().dbBasic.connection()).exec(QStringLiteral("CREATE SCHEMA bare"));
    double bareMs = 0;
    qint64 bareRows = 0;
    for (const BigTable& t : bigTables()) {
        const double ms = bareCopyMs(cluster, t);
        if (ms < 0) return 1;
        bareMs += ms;
        bareRows +=
            serverValue(QStringLiteral("SELECT count(*) FROM %1.%2").arg(t.schema, t.table)).toLongLong();
    }
    std::printf("the same big tables (%lld rows) by sqlite3 | psql \\copy: %.0f ms\n", qlonglong(bareRows),
                bareMs);
    std::printf("the move beside the bare road: ratio %.2f\n", bareMs > 0 ? moveMs / bareMs : 0.0);
    if (moveOnly) {
        closeStores();
        return 0;
    }
    QSqlQuery(stores().dbBasic.connection()).exec(QStringLiteral("DROP SCHEMA bare CASCADE"));
    // The planner's figures, as the server's autovacuum would gather them after a move.
    QSqlQuery(stores().dbBasic.connection()).exec(QStringLiteral("VACUUM ANALYZE"));

    const QString conn = cluster.connInfo(kDatabase);
    std::printf("load average before the lists: %.2f\n", bench::loadAverage());
    timeStatementLists(conn);
    timeQuotationLists(conn);
    timeNextCode(conn);
    timeTotals(conn);
    std::printf("load average at the end: %.2f\n", bench::loadAverage());
    closeStores();
    return 0;
}
