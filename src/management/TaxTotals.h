#pragma once
// The period totals of issued invoices per trader: the period a search covers, the grouped
// read of NewAcount, the work table SaleTotal refilled with it, the sums of the panels, and the
// six values of the 합계표 report. Only sales are ever issued here, so the purchase side stays
// empty, as do BuyTax and BuyTotal.

#include <QList>
#include <QString>
#include <array>
#include <optional>

class QDate;

namespace nb {

class Database;

// CmbGubun: by dates, by quarters of the year, by halves.
enum class TotalsKind { Dates = 0, Quarter = 1, Half = 2 };

struct TotalsPeriod {
    QString from; // YYYY-MM-DD
    QString to;
};
// The period of a search: the two dates, or the quarter / half `period` (0-based) of `year`.
TotalsPeriod totalsPeriod(TotalsKind kind, int period, const QString& year, const QString& date0,
                          const QString& date1);
// The rows of CmbPeriod for a kind (none for the dates).
QStringList periodRows(TotalsKind kind);

// One trader's totals of the period, as grdList shows it.
struct TraderTotal {
    QString cCode;
    QString cName;
    QString taxCode;  // the first invoice of the trader in the period
    QString userCode; // its supplier
    double tradeKum = 0;
    double vatKum = 0;
    QString gubun = QStringLiteral("1"); // "1" sales (the only kind issued), "0" purchases
    double sumKum() const { return tradeKum + vatKum; }
};

// On the server every seat shares the work tables: a seat reads and clears only its own rows
// (those its store connection wrote, or a connection working aside for it), so two seats
// totalling at once never see each other's receivers.
//
// SearchTotals without the grid: the work tables emptied, the grouped read, one SaleTotal row a
// trader (Blank = 11 minus the digits of the supply sum, the name from the basic file at
// basicFile), all in one transaction. Nothing when a step failed (its box shown; the work
// tables are as before).
std::optional<QList<TraderTotal>> SearchTotals(Database& dbTax, const QString& basicFile,
                                               const TotalsPeriod& period);

// What a refill of the work table left: its rows and their sums, as the store counted them.
struct TotalsRefill {
    int rows = 0;
    double tradeKum = 0;
    double vatKum = 0;
};
// The same refill as the screen runs it: on a connection of its own beside the window
// (runAside), the rows counted and summed inside the refill's transaction. Nothing when a step
// failed (its box shown on return; the work tables are as before).
std::optional<TotalsRefill> RefillTotalsAside(Database& dbTax, const QString& basicFile,
                                              const TotalsPeriod& period);
// The grouped insert of the period's totals into SaleTotal (the period's two dates bound).
extern const QString kFillSaleTotal;
// The work tables emptied before a refill: BuyTotal, then SaleTotal. On the server (server
// true) only the seat's own rows, and those of seats no longer connected.
QStringList clearTotalsStatements(bool server);
// The seat's SaleTotal counted and summed: rows, supply, VAT.
QString totalsCountQuery(bool server);
// The seat's SaleTotal as grdList shows it, column for column (1 to 11), in the order it was
// filled.
QString totalsListQuery(bool server);

// The six sums of pnlSum: sales supply, VAT, total, then the purchase three.
std::array<double, 6> panelSums(const QList<TraderTotal>& rows);
std::array<double, 6> panelSums(const TotalsRefill& refill);
// A panel's text: "#,###,###" and one blank behind; a blank alone for 0.
QString panelText(double sum);

// GetSumKum / GetSumVat: the period's supply and VAT of sales (NewAcount) or purchases (BuyTax);
// 0 for a period without invoices; nothing when the read failed.
std::optional<double> GetSumKum(Database& dbTax, bool sales, const TotalsPeriod& period);
std::optional<double> GetSumVat(Database& dbTax, bool sales, const TotalsPeriod& period);

// The six values the 합계표 is run with, and its selection on NewAcount.DealDate.
struct TotalsReportValues {
    QString sDate;   // "(   2024년 1/4 기   )"
    QString sPeriod; // "2024년 01월 01일 - 2024년 03월 31일"
    QString dSumKum; // the period's sums, without blanks
    QString dSumVat;
    QString sIssueDate; // today, "YYYY년 MM월 DD일"
    QString selectFrom; // the selection on DealDate: the period
    QString selectTo;
};
TotalsReportValues totalsReportValues(TotalsKind kind, int period, const QString& year, const QString& date0,
                                      const QString& date1, double sumKum, double sumVat, const QDate& today);

} // namespace nb
