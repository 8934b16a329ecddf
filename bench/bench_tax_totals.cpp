// The invoice totals at a decade of data (1,000,000 invoice lines over ten years, 50,000 traders):
// the search of a quarter and of a year as the screen runs it (the work table refilled, the first
// page of the list painted, the sums), beside the same statements through the sqlite3 command
// line on the same file (the work tables emptied, the grouped insert and the rows read back, in
// one transaction), with the longest time the window did not paint during the search and the
// memory the year's list takes; the 합계표 of a year to PDF; and a 10,000-row grid written to a
// spreadsheet file.
#include "BenchBooks.h"
#include "BenchSupport.h"
#include "BenchWindow.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "management/ExportGrid.h"
#include "management/FrmTaxManage.h"
#include "management/OfficialTotalsForm.h"
#include "management/TaxTotalsReport.h"
#include "printing/PagedPreview.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

#include <QApplication>
#include <QComboBox>
#include <QDate>
#include <QSqlQuery>
#include <cstdio>
#include <ctime>

using namespace nb;

namespace {

QString code(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
}

void fill(int traders, int lines) {
    Database& basic = stores().dbBasic;
    basic.beginTransaction();
    QSqlQuery t(basic.connection());
    t.prepare(QStringLiteral("INSERT INTO Trader (Code, C_Name, Serial) VALUES (?, ?, ?)"));
    for (int i = 1; i <= traders; ++i) {
        t.addBindValue(code(i));
        t.addBindValue(QStringLiteral("가나상사%1").arg(i));
        t.addBindValue(QStringLiteral("101-01-%1").arg(i, 5, 10, QChar(u'0')));
        t.exec();
    }
    QSqlQuery(basic.connection())
        .exec(QStringLiteral("INSERT INTO User (Company, Serial) VALUES ('하르문상사', '123-45-67891')"));
    basic.commit();
    // The invoice lines in one statement, spread evenly over 2015-2024.
    bench::fillInvoiceLines(traders, lines);
}

void report(const char* what, int rows, double ms, double cli) {
    std::printf("%-40s %7d rows  program %9.2f ms  sqlite3 %8.2f ms  ratio %5.2f\n", what, rows, ms, cli,
                cli > 0 ? ms / cli : 0.0);
    std::fflush(stdout);
}

double groupedCli(const QString& from, const QString& to) {
    return bench::cliMs(
        stores().dbTax.path(),
        QStringLiteral("SELECT CCode, SUM(TradeKum), SUM(VatKum) FROM NewAcount WHERE DealDate BETWEEN "
                       "'%1' AND '%2' GROUP BY CCode")
            .arg(from, to));
}

// The refill's statements through the sqlite3 program, in one transaction as the screen runs them.
double refillCli(const QString& from, const QString& to) {
    const QString script =
        QStringLiteral(
            "ATTACH '%1' AS basic;\nBEGIN IMMEDIATE;\ndelete from buytotal;\ndelete from saletotal;\n"
            "INSERT INTO SaleTotal (Serial, CCode, TradeKum, VatKum, Blank, CName, UserCode) "
            "SELECT f.TaxCode, g.CCode, "
            "CASE WHEN g.TradeKum = CAST(g.TradeKum AS INTEGER) THEN CAST(g.TradeKum AS INTEGER) "
            "ELSE g.TradeKum END, "
            "CASE WHEN g.VatKum = CAST(g.VatKum AS INTEGER) THEN CAST(g.VatKum AS INTEGER) "
            "ELSE g.VatKum END, "
            "11 - length(CAST(CAST(g.TradeKum AS INTEGER) AS TEXT)), t.C_Name, f.UserCode FROM "
            "(SELECT CCode, MIN(rowid) AS FirstRow, SUM(TradeKum) AS TradeKum, SUM(VatKum) AS "
            "VatKum FROM NewAcount WHERE DealDate BETWEEN '%2' AND '%3' GROUP BY CCode) g "
            "JOIN NewAcount f ON f.rowid = g.FirstRow LEFT JOIN basic.Trader t ON t.Code = g.CCode "
            "ORDER BY g.CCode;\n"
            "SELECT COUNT(*), TOTAL(TradeKum), TOTAL(VatKum) FROM SaleTotal;\nCOMMIT;\n"
            "SELECT * FROM SaleTotal ORDER BY rowid;")
            .arg(stores().dbBasic.path(), from, to);
    return bench::cliScriptMs(stores().dbTax.path(), script);
}

void timeSearch(FrmTaxManage& screen, const char* what, int kind, int period, const QString& from,
                const QString& to) {
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
        &screen, [&] { screen.btnSearch_Click(); }, &still);
    report(what, screen.grdList->DataRowCnt(), ms, refillCli(from, to));
    std::printf("%-40s the window stood still at most %.1f ms (median of the searches); the grouped query "
                "alone %.1f ms\n",
                "", still, groupedCli(from, to));
    std::fflush(stdout);
}

// The processor time of this process: on a machine shared with other work the wall time of a
// long print waits for the processor, and this shows what the print itself costs.
double processCpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

int saleTotalRows() {
    QSqlQuery q(stores().dbTax.connection());
    return q.exec(QStringLiteral("SELECT COUNT(*) FROM SaleTotal")) && q.next() ? q.value(0).toInt() : 0;
}

// The median wall time of several runs, and the median processor time of this process in them.
struct Timed {
    double wallMs = 0;
    double cpuMs = 0;
};
Timed timeRuns(const std::function<void()>& run, int repeats) {
    std::vector<double> walls, cpus;
    for (int i = 0; i < repeats; ++i) {
        QElapsedTimer t;
        t.start();
        const double cpu0 = processCpuMs();
        run();
        cpus.push_back(processCpuMs() - cpu0);
        walls.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(walls.begin(), walls.end());
    std::sort(cpus.begin(), cpus.end());
    return {walls[walls.size() / 2], cpus[cpus.size() / 2]};
}

// The year's 합계표 in both layouts: the data read and every page to a PDF, as 인쇄 does it
// (the progress form told as it goes), and the preview's first page on the screen, as
// 미리보기 shows it; beside the grouped query through sqlite3.
void timeYearReport() {
    const TotalsSearch year{TotalsKind::Dates, 0, QStringLiteral("2024"), QStringLiteral("2024-01-01"),
                            QStringLiteral("2024-12-31")};
    const double cli = groupedCli(year.date0, year.date1);
    for (const TotalsLayout layout : {TotalsLayout::Official, TotalsLayout::List}) {
        const bool official = layout == TotalsLayout::Official;
        const QString name = official ? QStringLiteral("official") : QStringLiteral("list");
        const int pages = official
                              ? officialform::pagesFor(
                                    ReadOfficialTotals(year.span(), QDate::currentDate())->listedReceivers())
                              : totalslayout::pagesFor(saleTotalRows());
        const Timed print = timeRuns([&] { PrintTotalsReport(year, layout); }, 5);
        report(qPrintable(QStringLiteral("the year's 합계표 (%1) to PDF, %2 pages").arg(name).arg(pages)),
               50000, print.wallMs, cli);
        std::printf("%-40s processor time %9.2f ms (median of 5)\n", "", print.cpuMs);
        const Timed preview = timeRuns(
            [&] {
                std::unique_ptr<PagedPreview> shown = makeTotalsPreview(nullptr, year, layout);
                shown->show();
                QApplication::processEvents();
            },
            9);
        report(qPrintable(QStringLiteral("its preview's first page (%1)").arg(name)), 50000, preview.wallMs,
               cli);
        std::printf("%-40s processor time %9.2f ms (median of 9)\n", "", preview.cpuMs);
    }
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();
    fill(50000, 1000000);
    std::printf("store: 50000 traders, 1000000 invoice lines over 2015-2024\n");
    std::fflush(stdout);

    FrmTaxManage screen;
    screen.show();
    QApplication::processEvents();
    const double emptyMb = bench::residentMB();
    timeSearch(screen, "search of a quarter (screen)", 1, 1, QStringLiteral("2024-04-01"),
               QStringLiteral("2024-06-30"));
    timeSearch(screen, "search of a year (screen)", 0, 0, QStringLiteral("2024-01-01"),
               QStringLiteral("2024-12-31"));
    std::printf("memory: the year's list on the screen %.1f MB more than the empty window\n",
                bench::residentMB() - emptyMb);
    std::fflush(stdout);
    // The year's list as 엑셀변환 writes it: every row read from the list, then the workbook.
    QList<int> listColumns;
    for (int c = ColTraderName; c <= ColGubun; ++c)
        listColumns << c;
    const QString yearXlsx = home.file(QStringLiteral("year.xlsx"));
    std::vector<double> exports;
    for (int run = 0; run < 3; ++run) {
        screen.btnSearch_Click(); // a fresh list, its rows after the first page not read yet
        QElapsedTimer t;
        t.start();
        QString error;
        int number = 0;
        writeSheet(
            yearXlsx,
            sheetContentOf(*screen.grdList, listColumns, {QStringLiteral("< 합 계 >")}, kTaxManageTitle),
            &error, &number, [](int row) {
                if (row % 200 == 0) QApplication::processEvents(); // as the progress form lets it
            });
        exports.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(exports.begin(), exports.end());
    report("the year's list (50,000 rows) to .xlsx", screen.grdList->DataRowCnt(), exports[1], 0);

    setSystemPrintersForTesting({}, QString()); // the PDF printer only: <home>/Print
    timeYearReport();

    Grid grid;
    grid.setMaxCols(10);
    grid.setMaxRows(10000);
    for (int r = 1; r <= 10000; ++r)
        for (int c = 1; c <= 10; ++c)
            grid.SetText(c, r, c == 1 ? QStringLiteral("가나상사%1").arg(r) : QString::number(r * c));
    QList<int> columns{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const QString xlsx = home.file(QStringLiteral("grid.xlsx"));
    const double exportMs = bench::medianMs(
        [&] {
            QString error;
            int number = 0;
            writeSheet(xlsx,
                       sheetContentOf(grid, columns, {QStringLiteral("< 합 계 >")}, QStringLiteral("목록")),
                       &error, &number, [](int row) {
                           if (row % 200 == 0) QApplication::processEvents(); // as the progress form lets it
                       });
        },
        3);
    report("a 10,000-row grid to .xlsx", 10000, exportMs, 0);
    return 0;
}
