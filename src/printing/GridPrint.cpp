#include "printing/GridPrint.h"

#include "common/grid/Grid.h"
#include "common/text/ByteText.h"
#include "printing/PrinterSetup.h"

namespace nb {

namespace {

constexpr double kListSize = 9;
constexpr int kFirstRow = 5;
constexpr int kLastRow = 64;
constexpr int kPageNumberRow = 66;
constexpr int kMaxTextColumns = 150;

// The tab of each visible column: its width in characters, at least its heading's.
QList<int> columnTabs(const Grid& grid, QList<int>& columns) {
    QList<int> tabs;
    int tab = 1;
    for (int c = 1; c <= grid.MaxCols() && tab < kMaxTextColumns; ++c) {
        if (grid.ColHidden(c)) continue;
        columns << c;
        tabs << tab;
        tab += qMax(int(grid.ColWidth(c)), ByteLen(grid.Text(c, 0))) + 2;
    }
    return tabs;
}

void printHead(PrintJob& job, const Grid& grid, const QString& title, const QList<int>& columns,
               const QList<int>& tabs, int page) {
    job.setFontSize(14);
    job.setFontBold(true);
    job.printAtTab(1, 1, title);
    job.setFontSize(kListSize);
    for (int k = 0; k < columns.size(); ++k)
        job.printAtTab(kFirstRow - 1, tabs.at(k), grid.Text(columns.at(k), 0));
    job.setFontBold(false);
    job.printAtTab(kPageNumberRow, 1, QStringLiteral("- %1 -").arg(page));
}

} // namespace

void printGridList(PrintJob& job, const Grid& grid, const QString& title) {
    QList<int> columns;
    const QList<int> tabs = columnTabs(grid, columns);
    int page = 1;
    int row = kFirstRow;
    printHead(job, grid, title, columns, tabs, page);
    for (int r = 1; r <= grid.DataRowCnt(); ++r) {
        if (row > kLastRow) {
            job.newPage();
            printHead(job, grid, title, columns, tabs, ++page);
            row = kFirstRow;
        }
        for (int k = 0; k < columns.size(); ++k)
            job.printAtTab(row, tabs.at(k), grid.Text(columns.at(k), r));
        ++row;
    }
}

void PrintGridList(const Grid& grid, const QString& title) {
    const QString document = QStringLiteral("목록");
    std::unique_ptr<PrintJob> job = startPrintJob(document);
    if (!job) return;
    PrinterPrepare(*job);
    printGridList(*job, grid, title);
    job->endDoc();
}

} // namespace nb
