#pragma once
// The tax invoice on its pre-printed paper: only the values, twice on one sheet (the upper copy
// from row 1, the lower one from row 36), in inches on the print job, rows six to the inch and
// columns by tab stop of the font in force. No text of the form itself is drawn.

#include "invoice/InvoiceAmounts.h"

#include <QImage>
#include <QString>
#include <QStringList>

namespace nb {

class Recordset;

class Database;
class PrintJob;

// A party as the print reads it (rsPrintUser from User, rsPrintTrader from Trader).
struct PrintParty {
    QString serial;
    QString company;  // User.Company / Trader.C_Name
    QString delegate; // User.Delegate / Trader.U_Name
    QString addr;     // User.Addr / Trader.addr1
    QString status;
    QString item;
    QString phone;
    QString fax;
};

// A party from its row of User (trader false) or Trader.
PrintParty printPartyOf(const Recordset& rs, bool trader);

// 검색Snp거래처(code): the trader of the code (the first by Code when code is empty) and the
// supplier of userSerial (the first row of User when it is empty, whatever the screen shows).
struct PrintParties {
    PrintParty trader;
    PrintParty user;
};
PrintParties ReadPrintParties(Database& dbBasic, const QString& traderCode, const QString& userSerial);

struct InvoicePrintData {
    InvoiceSheet sheet; // the lines, CurLine and the VAT mode
    QString txtSeq;     // "000-000"
    PrintParties parties;
    QString writeYY, writeMM, writeDD;
    bool printDate = true;   // chkPrnDate
    bool printPhone = false; // chk_Phone
    QString bigo;            // the whole remark; the paper shows its first two lines
    QString youngsu;         // "영수" or "청구"
    int decimalQty = 0;
    int decimalPrice = 0;
};

// The sums for the paper: lines 0 to CurLine, an empty field counting as 0.
struct PaperSums {
    qint32 supply = 0;
    qint32 tax = 0;
    qint32 total = 0;
    // 공란수: the empty cells before the supply digits (11 minus its digits), and the same for
    // the tax in its 10 cells.
    int blank() const { return 11 - int(QString::number(supply).size()); }
    int taxBlank() const { return 10 - int(QString::number(tax).size()); }
};
PaperSums paperSums(const InvoiceSheet& sheet);

// The seal, 0.7 by 0.7 inches, on both copies; nothing for an empty picture.
void PrintInvoiceSeal(PrintJob& job, const QImage& seal);
// Both copies; answers the lines printed over the two.
int PrintInvoiceCopies(PrintJob& job, const InvoicePrintData& data);
// One copy (0 upper, 1 lower); answers its lines printed.
int PrintInvoiceCopy(PrintJob& job, const InvoicePrintData& data, const PaperSums& sums, int copy);

// Where each value of one copy lands: rows under the copy's base row, tab columns of the font
// size in force. The sample picture draws its form boxes from the same numbers.
namespace invoicelayout {
inline constexpr int kCopyBaseRows[2] = {1, 36};
inline constexpr double kBaseSize = 10;
inline constexpr double kNameSmallSize = 8;
inline constexpr int kNameWidthLimit = 22; // columns of a name before it prints smaller
inline constexpr double kBigSize = 11;     // serial, writing date, 공란수 and the digit cells
inline constexpr double kCellPitch = 0.167;
inline constexpr int kSupplyCells = 11;
inline constexpr int kTaxCells = 10;

inline constexpr int kPhoneRow = -1;
inline constexpr int kSerialRow = 3;
inline constexpr int kNumberRow = 5;
inline constexpr int kNameRow = 7;
inline constexpr int kAddressRow = 9;
inline constexpr int kBusinessRow = 11;
inline constexpr int kRemarkRow = 14; // and the row under it
inline constexpr int kDateRow = 15;
inline constexpr int kTotalRow = 28;

inline constexpr int kPhoneTab = 60;
inline constexpr int kSerialTab = 84;
inline constexpr int kUserSerialTab = 30;
inline constexpr int kTraderSerialTab = 80;
inline constexpr int kUserCompanyTab = 25;
inline constexpr int kUserDelegateTab = 48;
inline constexpr int kTraderCompanyTab = 73;
inline constexpr int kTraderDelegateTab = 97;
inline constexpr int kUserStatusTab = 25;
inline constexpr int kUserItemTab = 42;
inline constexpr int kTraderStatusTab = 73;
inline constexpr int kTraderItemTab = 90;
inline constexpr int kYearTab = 11;
inline constexpr int kMonthTab = 16;
inline constexpr int kDayTab = 20;
inline constexpr int kBlankTab = 26;
inline constexpr int kRemarkTab = 85;
inline constexpr int kBlankRuleTab = 22;
inline constexpr int kTotalTab = 12; // plus 공란수
inline constexpr int kYoungsuTab = 100;

// A column of an item line: its tab and the columns its text is padded (numbers) or cut (texts)
// to. The item is cut one column short of the next column, so that a long name never runs into
// the 규격 printed there.
struct LineColumn {
    int tab;
    int width;
};
inline constexpr LineColumn kLineDate{12, 5};
inline constexpr LineColumn kLineItem{20, 26};
inline constexpr LineColumn kLineUnit{47, 4};
inline constexpr LineColumn kLineQty{52, 9};
inline constexpr LineColumn kLinePrice{61, 13};
inline constexpr LineColumn kLineSupply{77, 13};
inline constexpr LineColumn kLineTax{95, 12};

// Top-left of the first supply digit cell, inches, under the job's margins.
double digitCellsX(int leftMargin);
double digitCellsY(double topMargin, int copy);
} // namespace invoicelayout

// Pieces of the layout, for the checks of the paper.
int invoiceLineRow(int i);     // 18, 19, 21, 22, 23
int blankRuleRow(int curLine); // 19 + 2 * CurLine
QString phoneNote(const InvoicePrintData& data, int copy);
// The address rule: font size and Tab for an address (supplier or receiver side).
struct AddressPlace {
    double size;
    int tab;
};
AddressPlace addressPlace(const QString& addr, bool receiver, double baseSize = 10);
// The mask of a quantity or price by its decimal setting; empty for a setting outside 0..2.
QString decimalPrintMask(int places);

} // namespace nb
