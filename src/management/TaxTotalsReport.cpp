#include "management/TaxTotalsReport.h"

#include "common/Messages.h"
#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "management/OfficialTotalsForm.h"
#include "printing/PagedPreview.h"
#include "printing/PrintGrid.h"
#include "printing/PrinterSetup.h"
#include "storage/CrossFileQueries.h"
#include "storage/Database.h"
#include "storage/StoreEngine.h"
#include "storage/Stores.h"

#include <QElapsedTimer>
#include <limits>

namespace nb {

namespace {

using namespace totalslayout;

const QString kTotalsLayoutKey = QStringLiteral("합계표양식");

// The receivers of the last search with their invoices in the selection, and their numbers
// from the basic file. The selection is summed per trader first, through the index on the
// day, and then met with the work table: a year of a decade's books is read once, not once a
// trader.
// On the server the work table holds every seat's rows: the seat's own are read (%1).
const QString kRowsRead = QStringLiteral(
    "SELECT s.CCode, s.CName, t.Serial AS Serial, g.Invoices, g.Supply, g.Tax FROM %1 "
    "JOIN (SELECT CCode, COUNT(DISTINCT TaxCode) AS Invoices, SUM(TradeKum) AS Supply, SUM(VatKum) AS Tax "
    "FROM NewAcount WHERE DealDate >= ? AND DealDate <= ? GROUP BY CCode) g ON g.CCode = s.CCode "
    "LEFT JOIN basic.Trader t ON t.Code = s.CCode ORDER BY s.rowid");

// The same rows from a given one, in one statement that sums each trader once: the list's count
// and invoices (Kind 0), what the rows before the first carry (Kind 1), then the rows (Kind 2),
// so a page of a long list reads only its own rows.
const QString kStretchRead = QStringLiteral(
    "WITH Listed AS (SELECT s.rowid AS Seq, s.CCode, s.CName, g.Invoices, g.Supply, g.Tax FROM %1 "
    "JOIN (SELECT CCode, COUNT(DISTINCT TaxCode) AS Invoices, SUM(TradeKum) AS Supply, SUM(VatKum) AS Tax "
    "FROM NewAcount WHERE DealDate >= ? AND DealDate <= ? GROUP BY CCode) g ON g.CCode = s.CCode) "
    "SELECT 0 AS Kind, '' AS CName, '' AS Serial, COUNT(*) AS Invoices, "
    "COALESCE(SUM(Invoices), 0) AS Supply, 0 AS Tax FROM Listed "
    "UNION ALL SELECT 1, '', '', COALESCE(SUM(Invoices), 0), COALESCE(SUM(Supply), 0), COALESCE(SUM(Tax), 0) "
    "FROM (SELECT Invoices, Supply, Tax FROM Listed ORDER BY Seq LIMIT ?) b "
    "UNION ALL SELECT * FROM (SELECT 2, l.CName, t.Serial, l.Invoices, l.Supply, l.Tax FROM Listed l "
    "LEFT JOIN basic.Trader t ON t.Code = l.CCode ORDER BY l.Seq LIMIT ? OFFSET ?) r");

// A read of the work table as the store of the seat takes it.
QString ofSeatRows(const QString& sql, const Database& tax) {
    return sql.arg(seatRows(tax.onServer(), QStringLiteral("SaleTotal"), QStringLiteral("s")));
}

QString cell(const QString& text, const Column& column) {
    return column.right ? PadBytes(text, column.width) : CutBytes(text, column.width);
}

QString amount(double value) {
    return FormatNumber(value, kMaskSum);
}

void setFont(PrintJob& job, double size, bool bold) {
    job.setFontSize(size);
    job.setFontBold(bold);
}

void printHead(PrintJob& job, const TotalsReport& report, int page, int pages) {
    const TotalsReportValues& v = report.values;
    setFont(job, 16, true);
    job.printAtTab(1.5, 16, kTotalsReportTitle);
    setFont(job, 10, false);
    job.printAtTab(4, 38, v.sDate);
    job.printAtTab(5, 2, QStringLiteral("기    간 : ") + v.sPeriod);
    job.printAtTab(5, 66, QStringLiteral("작성일자 : ") + v.sIssueDate);
    setFont(job, kBasePrintSize, false);
    job.printAtTab(kPageNumberRow, 44, QStringLiteral("- %1 / %2 -").arg(page).arg(pages));
}

// The supplier and the totals block of the first page.
void printSummary(PrintJob& job, const TotalsReport& report) {
    setFont(job, 10, false);
    job.printAtTab(7, 2, QStringLiteral("공급자 등록번호 : ") + report.supplierSerial);
    job.printAtTab(8, 2, QStringLiteral("상호(법인명) : ") + report.supplierCompany);
    job.printAtTab(8, 50, QStringLiteral("성명(대표자) : ") + report.supplierDelegate);
    job.printAtTab(9, 2, QStringLiteral("사업장 주소 : ") + report.supplierAddr);
    setFont(job, 10, true);
    const int heads[] = {2, 20, 38, 62};
    const QStringList captions{QStringLiteral("매출처수"), QStringLiteral("매    수"),
                               QStringLiteral("공급가액"), QStringLiteral("세    액")};
    for (int k = 0; k < 4; ++k)
        job.printAtTab(11, heads[k], captions[k]);
    setFont(job, 10, false);
    job.printAtTab(12, heads[0], PadBytes(QString::number(report.receivers()), 8));
    job.printAtTab(12, heads[1], PadBytes(QString::number(report.invoices()), 8));
    job.printAtTab(12, heads[2], PadBytes(report.values.dSumKum, 18));
    job.printAtTab(12, heads[3], PadBytes(report.values.dSumVat, 16));
    job.line(job.tabX(1), job.rowY(13.2), job.tabX(96), job.rowY(13.2));
}

void printTableHeads(PrintJob& job, int row) {
    setFont(job, kBasePrintSize, true);
    job.printAtTab(row, kNumber.tab, cell(QStringLiteral("번호"), kNumber));
    job.printAtTab(row, kSerial.tab, QStringLiteral("사업자등록번호"));
    job.printAtTab(row, kCompany.tab, QStringLiteral("상호(법인명)"));
    job.printAtTab(row, kInvoices.tab, cell(QStringLiteral("매수"), kInvoices));
    job.printAtTab(row, kSupply.tab, cell(QStringLiteral("공급가액"), kSupply));
    job.printAtTab(row, kTax.tab, cell(QStringLiteral("세액"), kTax));
    job.line(job.tabX(1), job.rowY(row + 1), job.tabX(96), job.rowY(row + 1));
    setFont(job, kBasePrintSize, false);
}

void printCarried(PrintJob& job, int row, const QString& caption, const TotalsCarried& carried) {
    setFont(job, kBasePrintSize, true);
    job.printAtTab(row, kCompany.tab, caption);
    job.printAtTab(row, kInvoices.tab, cell(QString::number(carried.invoices), kInvoices));
    job.printAtTab(row, kSupply.tab, cell(amount(carried.supply), kSupply));
    job.printAtTab(row, kTax.tab, cell(amount(carried.tax), kTax));
    setFont(job, kBasePrintSize, false);
}

} // namespace

TotalsCarried& TotalsCarried::operator+=(const TotalsReportRow& row) {
    invoices += row.invoices;
    supply += row.supply;
    tax += row.tax;
    return *this;
}

int TotalsReport::receivers() const {
    return receiverCount >= 0 ? receiverCount : int(rows.size());
}

int TotalsReport::invoices() const {
    if (invoiceCount >= 0) return invoiceCount;
    int n = 0;
    for (const TotalsReportRow& row : rows)
        n += row.invoices;
    return n;
}

const TotalsReportRow* TotalsReport::rowAt(int index) const {
    const qsizetype at = qsizetype(index) - first;
    return at >= 0 && at < rows.size() ? &rows.at(at) : nullptr;
}

int totalslayout::rowsOnPage(int page) {
    return page == 1 ? kLastRowOfTable - kTableTop : kLastRowOfTable - kLaterTableTop - 1;
}

int totalslayout::pagesFor(int rows) {
    int pages = 1;
    for (int left = rows - rowsOnPage(1); left > 0; left -= rowsOnPage(++pages)) {
    }
    return pages;
}

namespace {

// The default supplier (the first one when none is set) into the report.
bool readSupplier(TotalsReport& report) {
    Recordset user;
    const QString serial = app().DefaultSerial;
    if (!(serial.isEmpty() ? OpenSnapshot(stores().dbBasic, user, QStringLiteral("SELECT * FROM User"))
                           : OpenSnapshot(stores().dbBasic, user,
                                          QStringLiteral("SELECT * FROM User WHERE Serial = ?"), {serial})))
        return false;
    if (!user.EOF_()) {
        report.supplierSerial = user.text(QStringLiteral("Serial"));
        report.supplierCompany = user.text(QStringLiteral("Company"));
        report.supplierDelegate = user.text(QStringLiteral("Delegate"));
        report.supplierAddr = user.text(QStringLiteral("Addr"));
    }
    CloseRs(user);
    return true;
}

bool attachBasic(const QString& sql) {
    if (stores().dbTax.attach(stores().dbBasic.path(), kBasicAlias)) return true;
    ReportQueryFailure(-1, QStringLiteral("unable to open database: ") + stores().dbBasic.path(), sql);
    return false;
}

} // namespace

std::optional<TotalsReport> ReadTotalsReport(const TotalsReportValues& values) {
    TotalsReport report;
    report.values = values;
    if (!readSupplier(report)) return std::nullopt;
    Recordset rs;
    Database& tax = stores().dbTax;
    const QString sql = ofSeatRows(kRowsRead, tax);
    if (!attachBasic(sql)) return std::nullopt;
    const bool read = OpenSnapshot(tax, rs, sql, {values.selectFrom, values.selectTo});
    tax.detach(kBasicAlias);
    if (!read) return std::nullopt;
    report.rows.reserve(rs.RecordCount());
    for (; !rs.EOF_(); rs.MoveNext()) {
        TotalsReportRow row;
        row.serial = rs.text(QStringLiteral("Serial"));
        row.company = rs.text(QStringLiteral("CName"));
        row.invoices = int(rs.number(QStringLiteral("Invoices")));
        row.supply = rs.number(QStringLiteral("Supply"));
        row.tax = rs.number(QStringLiteral("Tax"));
        report.rows.append(row);
    }
    CloseRs(rs);
    return report;
}

std::optional<TotalsReport> ReadTotalsReportStretch(const TotalsReportValues& values, int first, int count) {
    TotalsReport report;
    report.values = values;
    report.first = qMax(0, first);
    Database& tax = stores().dbTax;
    const QString sql = ofSeatRows(kStretchRead, tax);
    if (!readSupplier(report) || !attachBasic(sql)) return std::nullopt;
    QSqlQuery rs(tax.connection());
    rs.setForwardOnly(true);
    const bool read = OpenForwardOnly(
        tax, rs, sql, {values.selectFrom, values.selectTo, report.first, qMax(0, count), report.first});
    for (; read && rs.next();) {
        const int kind = rs.value(0).toInt();
        if (kind == 0) {
            report.receiverCount = rs.value(3).toInt();
            report.invoiceCount = rs.value(4).toInt();
        } else if (kind == 1) {
            report.before =
                TotalsCarried{rs.value(3).toInt(), rs.value(4).toDouble(), rs.value(5).toDouble()};
        } else {
            report.rows.append(TotalsReportRow{rs.value(2).toString(), rs.value(1).toString(),
                                               rs.value(3).toInt(), rs.value(4).toDouble(),
                                               rs.value(5).toDouble()});
        }
    }
    rs.finish();
    tax.detach(kBasicAlias);
    if (!read) return std::nullopt;
    return report;
}

namespace {

// One page of the list, with what the pages before it carried.
void printListPage(PrintJob& job, const TotalsReport& report, int page, int pages, TotalsCarried& carried) {
    printHead(job, report, page, pages);
    int row = page == 1 ? kTableTop : kLaterTableTop;
    if (page == 1) printSummary(job, report);
    printTableHeads(job, row++);
    if (page > 1) printCarried(job, row++, QStringLiteral("앞 면에서 이월"), carried);
    int index = 0;
    for (int p = 1; p < page; ++p)
        index += rowsOnPage(p);
    for (int n = 0; n < rowsOnPage(page) && index < report.receivers(); ++n, ++index, ++row) {
        const TotalsReportRow* read = report.rowAt(index);
        if (!read) break;
        const TotalsReportRow& r = *read;
        job.printAtTab(row, kNumber.tab, cell(QString::number(index + 1), kNumber));
        job.printAtTab(row, kSerial.tab, cell(r.serial, kSerial));
        job.printAtTab(row, kCompany.tab, cell(r.company, kCompany));
        job.printAtTab(row, kInvoices.tab, cell(QString::number(r.invoices), kInvoices));
        job.printAtTab(row, kSupply.tab, cell(amount(r.supply), kSupply));
        job.printAtTab(row, kTax.tab, cell(amount(r.tax), kTax));
        carried += r;
    }
    job.line(job.tabX(1), job.rowY(kTotalRow), job.tabX(96), job.rowY(kTotalRow));
    printCarried(job, kTotalRow,
                 page < pages ? QStringLiteral("다음 면으로 이월") : QStringLiteral("합      계"), carried);
}

// The receiver (0-based) that opens `page`.
int firstRowOf(int page) {
    int rows = 0;
    for (int p = 1; p < page; ++p)
        rows += rowsOnPage(p);
    return rows;
}

// What the pages before `page` carry to it: what the rows before the report's first carry, and
// the report's rows up to the page.
TotalsCarried carriedBefore(const TotalsReport& report, int page) {
    TotalsCarried carried = report.before;
    const int rows = firstRowOf(page);
    for (int i = report.first; i < rows; ++i)
        if (const TotalsReportRow* row = report.rowAt(i)) carried += *row;
    return carried;
}

} // namespace

void printTotalsReport(PrintJob& job, const TotalsReport& report,
                       const std::function<void(int page, int pages)>& pageDone) {
    const int pages = pagesFor(report.receivers());
    TotalsCarried carried = report.before;
    for (int page = 1; page <= pages; ++page) {
        if (page > 1) job.newPage();
        printListPage(job, report, page, pages, carried);
        if (pageDone) pageDone(page, pages);
    }
}

QStringList totalsLayoutNames() {
    return {QStringLiteral("공식 서식(갑·을)"), QStringLiteral("목록")};
}

TotalsLayout savedTotalsLayout() {
    return GetEnv(kTotalsLayoutKey) == u"1" ? TotalsLayout::List : TotalsLayout::Official;
}

void saveTotalsLayout(TotalsLayout layout) {
    SaveEnv(kTotalsLayoutKey, layout == TotalsLayout::List ? QStringLiteral("1") : QStringLiteral("0"));
}

namespace {

// The six values of a search as the button makes them: nothing when a read failed.
std::optional<TotalsReportValues> valuesOf(const TotalsSearch& search) {
    const TotalsPeriod p = search.span();
    const std::optional<double> sumKum = GetSumKum(stores().dbTax, true, p);
    const std::optional<double> sumVat = GetSumVat(stores().dbTax, true, p);
    if (!sumKum || !sumVat) return std::nullopt;
    return totalsReportValues(search.kind, search.period, search.year, search.date0, search.date1, *sumKum,
                              *sumVat, today());
}

std::optional<TotalsReport> listOf(const TotalsSearch& search) {
    const std::optional<TotalsReportValues> values = valuesOf(search);
    if (!values) return std::nullopt;
    return ReadTotalsReport(*values);
}

// The list stands in the middle of an A4 sheet: its own indent and top under the document's
// margins. The official form places itself on the sheet; the margins only shift it.
void prepareJob(PrintJob& job, TotalsLayout layout) {
    PrinterPrepare(job);
    const DocumentMargins margins = readDocumentMargins(kTotalsDocument);
    if (layout == TotalsLayout::List)
        job.setMargins(margins.left + 12, margins.top + 3);
    else
        job.setMargins(margins);
}

// The progress form over the pages. It lets the window's events run at every 200th step, so a
// page is 200 steps; it is told of the first and the last page and otherwise at most every
// 50 ms: it moves without slowing the print.
class PageProgress {
public:
    explicit PageProgress(int pages) : m_pages(pages) {
        messages().progressShow(QStringLiteral("합계표를 인쇄하는 중입니다..."), pages * kStepsPerPage);
        m_clock.start();
    }
    ~PageProgress() { messages().progressClose(); }
    void pageDone(int page) {
        if (page > 1 && page < m_pages && m_clock.elapsed() < kTellEveryMs) return;
        m_clock.restart();
        messages().progressSet(page * kStepsPerPage);
    }

private:
    static constexpr int kStepsPerPage = 200;
    static constexpr qint64 kTellEveryMs = 50;
    int m_pages;
    QElapsedTimer m_clock;
};

template <typename Data, typename PrintAll>
void printWithProgress(const Data& data, int pages, TotalsLayout layout, PrintAll printAll) {
    SelectDocPrinter(kTotalsDocument);
    std::unique_ptr<PrintJob> job = startPrintJob(kTotalsDocument);
    if (job) {
        prepareJob(*job, layout);
        {
            PageProgress progress(pages);
            printAll(*job, data, [&progress](int page, int) { progress.pageDone(page); });
        }
        if (!job->endDoc())
            MsgBox(QStringLiteral("오류번호 : 1\r\n오류내용 : 인쇄를 끝내지 못했습니다."),
                   MbOk | MbExclamation);
    }
    RestorePrinter();
}

} // namespace

void PrintTotalsReport(const TotalsSearch& search, TotalsLayout layout) {
    if (layout == TotalsLayout::Official) {
        const std::optional<OfficialTotals> form = ReadOfficialTotals(search.span(), today());
        if (!form) return;
        printWithProgress(*form, officialform::pagesFor(form->listedReceivers()), layout,
                          [](PrintJob& job, const OfficialTotals& f, const auto& done) {
                              printOfficialTotals(job, f, done);
                          });
        return;
    }
    const std::optional<TotalsReport> report = listOf(search);
    if (!report) return;
    printWithProgress(
        *report, pagesFor(report->receivers()), layout,
        [](PrintJob& job, const TotalsReport& r, const auto& done) { printTotalsReport(job, r, done); });
}

namespace {

struct PreviewPages {
    int pages = 1;
    PageRoutine print;
};

// A preview shows its first page from a first stretch of receivers: that page and the sheets
// after it, up to this many. A page beyond what was read reads every receiver from its own to the
// end: a read costs the store the grouping of the whole period whatever it returns, so paging on
// reads nothing more, and a jump to the end reads only the end.
constexpr int kStretchSheets = 25;
// Every receiver from the first asked for.
constexpr int kToTheEnd = std::numeric_limits<int>::max();
int previewReads = 0;

// The official form's sheets: the totals block and the receivers read so far.
class OfficialPages {
public:
    OfficialPages(const TotalsPeriod& period, const QDate& day, OfficialTotals first)
        : m_period(period), m_day(day), m_form(std::move(first)) {}

    // The form holding the sheet's lines; null when their read failed (its box shown).
    const OfficialTotals* sheet(int page) {
        const officialform::SheetLines lines = officialform::linesOfSheet(page);
        const int end = qMin(lines.first + lines.count, m_form.listedReceivers());
        const int readEnd = m_form.firstReceiver + int(m_form.receivers.size());
        if (lines.first >= m_form.firstReceiver && end <= readEnd) return &m_form;
        ++previewReads;
        std::optional<OfficialTotals> read = ReadOfficialTotals(m_period, m_day, lines.first, -1);
        if (!read) return nullptr;
        m_form = std::move(*read);
        return &m_form;
    }
    static int stretchOf(int page) {
        return officialform::linesOfSheet(page + kStretchSheets).first -
               officialform::linesOfSheet(page).first;
    }

private:
    TotalsPeriod m_period;
    QDate m_day;
    OfficialTotals m_form;
};

// The list's pages: the rows read so far with what the rows before them carry.
class ListPages {
public:
    explicit ListPages(TotalsReport first) : m_report(std::move(first)) {}

    const TotalsReport* page(int page) {
        const int first = firstRowOf(page);
        const int end = qMin(firstRowOf(page + 1), m_report.receivers());
        if (first >= m_report.first && end <= m_report.first + int(m_report.rows.size())) return &m_report;
        ++previewReads;
        std::optional<TotalsReport> read = ReadTotalsReportStretch(m_report.values, first, kToTheEnd);
        if (!read) return nullptr;
        m_report = std::move(*read);
        return &m_report;
    }
    static int stretchOf(int page) { return firstRowOf(page + kStretchSheets) - firstRowOf(page); }

private:
    TotalsReport m_report;
};

// The first stretch of the search read, and the routine that draws one page, reading the rest
// when a page beyond what was read is asked for.
std::optional<PreviewPages> previewOf(const TotalsSearch& search, TotalsLayout layout) {
    if (layout == TotalsLayout::Official) {
        const TotalsPeriod period = search.span();
        const QDate day = today();
        ++previewReads;
        std::optional<OfficialTotals> form = ReadOfficialTotals(period, day, 0, OfficialPages::stretchOf(1));
        if (!form) return std::nullopt;
        const int pages = officialform::pagesFor(form->listedReceivers());
        auto sheets = std::make_shared<OfficialPages>(period, day, std::move(*form));
        return PreviewPages{pages, [sheets, pages](PrintJob& job, int page) {
                                prepareJob(job, TotalsLayout::Official);
                                if (const OfficialTotals* f = sheets->sheet(page))
                                    printOfficialTotalsPage(job, *f, page, pages);
                            }};
    }
    const std::optional<TotalsReportValues> values = valuesOf(search);
    if (!values) return std::nullopt;
    ++previewReads;
    std::optional<TotalsReport> report = ReadTotalsReportStretch(*values, 0, ListPages::stretchOf(1));
    if (!report) return std::nullopt;
    const int pages = pagesFor(report->receivers());
    auto list = std::make_shared<ListPages>(std::move(*report));
    return PreviewPages{pages, [list, pages](PrintJob& job, int page) {
                            prepareJob(job, TotalsLayout::List);
                            const TotalsReport* r = list->page(page);
                            if (!r) return;
                            TotalsCarried carried = carriedBefore(*r, page);
                            printListPage(job, *r, page, pages, carried);
                        }};
}

} // namespace

std::unique_ptr<PagedPreview> makeTotalsPreview(QWidget* parent, const TotalsSearch& search,
                                                TotalsLayout layout) {
    const std::optional<PreviewPages> preview = previewOf(search, layout);
    if (!preview) return nullptr;
    return std::make_unique<PagedPreview>(parent, kTotalsDocument, preview->pages, preview->print);
}

int totalsPreviewReads() {
    return previewReads;
}

void PreviewTotalsReport(QWidget* parent, const TotalsSearch& search, TotalsLayout layout) {
    const std::optional<PreviewPages> preview = previewOf(search, layout);
    if (preview) showPagedPreview(parent, kTotalsDocument, preview->pages, preview->print);
}

} // namespace nb
