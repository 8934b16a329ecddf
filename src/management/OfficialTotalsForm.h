#pragma once
// The official 매출처별 세금계산서합계표 drawn on A4 by the program: the (갑) sheet with the
// submitter, the totals block and the first receivers, then as many (을) sheets as the other
// receivers need. Every position is in inches from the sheet's corner, shifted by the
// document's margins.

#include "management/OfficialTotals.h"

#include <functional>

namespace nb {

class PrintJob;

namespace officialform {
inline constexpr double kLeft = 0.55;
inline constexpr double kRight = 7.72;
inline constexpr double kFooterY = 11.0;
// Receivers on the (갑) sheet and on each (을) sheet.
inline constexpr int kFirstSheetRows = 5;
inline constexpr int kLaterSheetRows = 41;
// The totals block: where its seven lines begin and how tall each is.
inline constexpr double kTotalsBodyTop = 3.49;
inline constexpr double kTotalsRowHeight = 0.34;
// The receivers' table on the (갑) sheet and on an (을) sheet.
inline constexpr double kFirstBodyTop = 6.84;
inline constexpr double kFirstRowHeight = 0.34;
inline constexpr double kLaterBodyTop = 2.49;
inline constexpr double kLaterRowHeight = 0.20;
inline constexpr double kDetailFontSize = 8.0;

struct Column {
    double x;
    double width;
};
// The receivers' table.
inline constexpr Column kNumber{0.55, 0.45};
inline constexpr Column kSerial{1.00, 1.15};
inline constexpr Column kCompany{2.15, 1.75};
inline constexpr Column kInvoices{3.90, 0.50};
inline constexpr Column kSupply{4.40, 1.25};
inline constexpr Column kTax{5.65, 1.25};
inline constexpr Column kRemark{6.90, 0.82};
// The totals block.
inline constexpr Column kKind{0.55, 1.45};
inline constexpr Column kSubKind{2.00, 1.45};
inline constexpr Column kReceiversCount{3.45, 0.70};
inline constexpr Column kInvoicesCount{4.15, 0.60};
inline constexpr Column kTotalSupply{4.75, 1.50};
inline constexpr Column kTotalTax{6.25, 1.47};

// The sheets a form of that many receivers takes.
int pagesFor(int receivers);
// The top of the receiver line `index` (0-based over the whole form) and its sheet.
struct LinePlace {
    int page;
    double y;
};
LinePlace placeOfLine(int index);
// The receiver lines a sheet holds: the first (0-based over the whole form) and how many.
struct SheetLines {
    int first;
    int count;
};
SheetLines linesOfSheet(int page);

// An amount in the form's digit groups, highest first: 조, 십억, 백만, 천, 일. Leading empty
// groups are empty texts, inner groups keep their zeros ("1", "234", "005"); a negative
// amount carries its sign on its first group; nought is "0" in the last.
QStringList digitGroups(double amount);
} // namespace officialform

// One sheet of the form (1 the (갑) sheet).
void printOfficialTotalsPage(PrintJob& job, const OfficialTotals& form, int page, int pages);
// Every sheet, a new page between them; `pageDone` is told after each sheet.
void printOfficialTotals(PrintJob& job, const OfficialTotals& form,
                         const std::function<void(int page, int pages)>& pageDone = {});

} // namespace nb
