#pragma once
// The 합계표 of a period (매출처별 세금계산서 합계표), drawn by the program on A4: title, the
// period and the issue date, the supplier, the totals block (receivers, invoices, supply value,
// VAT) and one row per receiver of the last search, over as many pages as needed, each with its
// number, the running total carried from page to page. It is run with the six values of
// TotalsReportValues and selects the invoices by NewAcount.DealDate.

#include "management/TaxTotals.h"

#include <functional>
#include <memory>

class QWidget;

namespace nb {

class PagedPreview;
class PrintJob;

inline const QString kTotalsDocument = QStringLiteral("세금계산서 합계표");
inline const QString kTotalsReportTitle = QStringLiteral("매출처별 세금계산서 합계표");

struct TotalsReportRow {
    QString serial; // the receiver's registration number
    QString company;
    int invoices = 0;
    double supply = 0;
    double tax = 0;
};

// What the receivers before a row carry to it.
struct TotalsCarried {
    int invoices = 0;
    double supply = 0;
    double tax = 0;
    TotalsCarried& operator+=(const TotalsReportRow& row);
};

struct TotalsReport {
    TotalsReportValues values;
    QString supplierSerial, supplierCompany, supplierDelegate, supplierAddr;
    // The receivers of SaleTotal with invoices in the selection: every one, or a stretch of
    // them from the one numbered first + 1, with what the receivers before it carry and the
    // whole list's count of receivers and invoices.
    QList<TotalsReportRow> rows;
    int first = 0;
    TotalsCarried before;
    int receiverCount = -1; // -1: rows holds every receiver
    int invoiceCount = -1;
    int receivers() const;
    int invoices() const;
    // The receiver numbered index + 1, or null when it is not among those read.
    const TotalsReportRow* rowAt(int index) const;
};

// The report's data: the rows from SaleTotal and the selected NewAcount rows, the default
// supplier (the first one when none is set). Nothing when a read failed (its box shown).
std::optional<TotalsReport> ReadTotalsReport(const TotalsReportValues& values);
// The same with the rows from the one numbered first + 1, at most `count`: the store counts and
// sums the whole list, so only the stretch's rows are read.
std::optional<TotalsReport> ReadTotalsReportStretch(const TotalsReportValues& values, int first, int count);

// Where the report stands: rows of the page, tabs of the base font.
namespace totalslayout {
inline constexpr int kTableTop = 15;     // the table's headings on the first page
inline constexpr int kLaterTableTop = 7; // on the later pages
inline constexpr int kLastRowOfTable = 60;
inline constexpr int kTotalRow = 61; // carried to the next page, or the total on the last
inline constexpr int kPageNumberRow = 66;
struct Column {
    int tab;
    int width;  // columns the text is padded or cut to
    bool right; // right aligned
};
inline constexpr Column kNumber{2, 4, true};
inline constexpr Column kSerial{8, 14, false};
inline constexpr Column kCompany{24, 30, false};
inline constexpr Column kInvoices{56, 6, true};
inline constexpr Column kSupply{63, 16, true};
inline constexpr Column kTax{81, 14, true};
// Receivers on the first page and on each later one.
int rowsOnPage(int page);
int pagesFor(int rows);
} // namespace totalslayout

// Every page of the report on the job; `pageDone` is told after each page.
void printTotalsReport(PrintJob& job, const TotalsReport& report,
                       const std::function<void(int page, int pages)>& pageDone = {});

// The two layouts of the 합계표: the official form ((갑) and (을) sheets), or the ruled list.
enum class TotalsLayout { Official = 0, List = 1 };
// The names the screen offers, in the order of TotalsLayout.
QStringList totalsLayoutNames();
// The layout chosen last (the setting "합계표양식"; the official form when never chosen).
TotalsLayout savedTotalsLayout();
void saveTotalsLayout(TotalsLayout layout);

// What a search of the totals screen was made of.
struct TotalsSearch {
    TotalsKind kind = TotalsKind::Dates;
    int period = 0;
    QString year, date0, date1;
    TotalsPeriod span() const { return totalsPeriod(kind, period, year, date0, date1); }
};

// btnPrint of FrmTaxManage: the data of the search, the document's printer and margins, the
// pages under a progress form; a failure shows its number and description.
void PrintTotalsReport(const TotalsSearch& search, TotalsLayout layout);
// The preview of the search, not yet shown; null when a read failed (its box shown).
std::unique_ptr<PagedPreview> makeTotalsPreview(QWidget* parent, const TotalsSearch& search,
                                                TotalsLayout layout);
// How many times the previews of this run read the store, for tests.
int totalsPreviewReads();
// The same in the print preview, which draws only the page it shows.
void PreviewTotalsReport(QWidget* parent, const TotalsSearch& search, TotalsLayout layout);

} // namespace nb
