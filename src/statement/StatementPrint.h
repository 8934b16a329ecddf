#pragma once
// The statement on paper: the values of the screen printed into the boxes of the pre-printed
// form, two copies to a sheet (35 rows apart), 15 lines a sheet at rows 15 to 29 of each copy,
// as many sheets as the lines need, the total on the first sheet only. The names and numbers
// of the head are read again from the store; everything else comes as the screen shows it.

#include "invoice/InvoicePrint.h"
#include "statement/StatementStore.h"

#include <QImage>
#include <QString>
#include <optional>

namespace nb {

class Database;
class PrintJob;

inline const QString kStatementDocument = QStringLiteral("거래명세표");

// What the print takes from the screen.
struct StatementPrintData {
    QString cCode;            // txtCCode: the receiver read again for the head
    QString supplierSerial;   // the screen's supplier; empty for the first one
    QString dateText;         // txtDate as shown, "YYYY년MM월DD일"
    QString memo;             // txtMemo
    bool printPhone = false;  // chk_Phone
    bool printBalance = true; // ChkNonKum
    QString gong, se, sum;    // the three totals as shown ("#,##0")
    QString preMisu, misu;    // the balance boxes as shown
    QList<StatementLine> lines;
    QImage seal; // picSign; null for no seal
    int decimalQty = 0;
    int decimalPrice = 0;
};

// The head's parties as read for the print.
struct StatementParties {
    PrintParty supplier;
    PrintParty trader;
};
// The receiver by its code and the supplier by its number (the first when empty); nothing when
// either read fails or finds no row (its report shown).
std::optional<StatementParties> ReadStatementParties(Database& dbBasic, const QString& cCode,
                                                     const QString& supplierSerial);

// Where each value lands: rows of a copy (the lower copy 35 rows further), tab columns from
// the left margin.
namespace deallayout {
inline constexpr int kCopyRows = 35;
inline constexpr int kLinesPerSheet = 15;
inline constexpr int kFirstLineRow = 15; // RowOnPage + 14
inline constexpr int kTotalRow = 30;
inline constexpr int kMoreSheetsTab = 70;
inline constexpr double kHeadSize = 10;
inline constexpr double kSerialSize = 11;
inline constexpr double kTotalSize = 11;
inline constexpr double kSealSize = 0.7; // inches, square
inline constexpr double kSealX = 3.5;    // inches right of the left margin's edge
inline constexpr double kSealRows[2] = {5.5, 40.6};
// The columns of one line: tab, and the columns its text is cut or padded to. The product name
// (with its 규격) is cut one column short of the unit's column, so a long one never overprints it.
struct LineColumn {
    int tab;
    int width;
};
inline constexpr LineColumn kPName{9, 44};
inline constexpr LineColumn kUnit{54, 6};
inline constexpr LineColumn kQuant{60, 10};
inline constexpr LineColumn kPrice{71, 11};
inline constexpr LineColumn kAmount{85, 12};
inline constexpr LineColumn kVat{99, 12};
} // namespace deallayout

// One printed field of the head or a line: row within the copy, tab, text, font size, bold.
struct StatementField {
    double row;
    int tab;
    QString text;
    double size;
    bool bold;
};
// The head of one copy (0 upper, 1 lower); longMemo turns true when the memo is long.
QList<StatementField> headFields(const StatementPrintData& data, const StatementParties& parties, int copy,
                                 bool& longMemo);
// One line of the statement at its row.
QList<StatementField> lineFields(const StatementPrintData& data, const StatementLine& line, double row);
// The five texts of the total row and their X in inches from the left edge of the form.
struct TotalField {
    double x;
    QString text;
};
QList<TotalField> totalFields(const StatementPrintData& data, int leftMargin);

// Print_Data_Ink1B: every sheet of the statement, with the frame when printFrame. False when
// the head could not be read (its run-time report shown); the job is left to the caller.
bool Print_Data_Ink1B(PrintJob& job, const StatementPrintData& data, bool printFrame);

} // namespace nb
