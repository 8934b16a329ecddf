#pragma once
// Issued tax invoices in dbTax: one invoice is every row of NewAcount with one TaxCode (six
// digits from "100000"), one row per printed line, the head repeated in each row. Here are the
// next number, the rows of a save, an issued invoice read back, the list of a customer's
// invoices folded one row per invoice, the delete, and the sums of a period.

#include "invoice/InvoiceAmounts.h"

#include <QList>
#include <QString>
#include <optional>

namespace nb {

class Database;

inline const QString kFirstTaxCode = QStringLiteral("100000");

// The number after the highest stored one, read in text order; "100000" for an empty table.
// Past 999999 the text order no longer follows the numbers and the number stops growing.
// Nothing when the read fails (the query box has been shown).
std::optional<QString> NextTaxCode(Database& dbTax);
// The statement NextTaxCode reads the highest number by.
const QString& nextTaxCodeStatement();
// txtSeq of a TaxCode: the first three and the last three characters through "000" with "-"
// between; "000-000" for an empty code.
QString serialFromTaxCode(const QString& taxCode);
// The six digits of txtSeq (its book and number joined): "123-456" -> "123456".
QString serialDigits(const QString& txtSeq);

// The head columns every row of an invoice repeats.
struct InvoiceHead {
    QString cCode;    // txtCCode
    QString dealDate; // write_yy-write_mm-write_dd
    QString remark;   // bigo, the whole remark (stored in the column IssueDate)
    QString userCode; // Serial_user
    QString receipt;  // youngsu: "영수" or "청구" (stored in the column Receipt)
};

// The lines SaveInvoice stores: 0 to CurLine while both the trade date and the tax are
// there; the first line lacking either ends the walk.
QList<InvoiceLine> linesToSave(const InvoiceSheet& sheet);
// The lines the print shows: 0 to CurLine, each with a trade date and a tax; gaps skipped.
QList<InvoiceLine> printableLines(const InvoiceSheet& sheet);

// One row per line under the number, in one transaction; false (nothing stored, the query box
// shown) when a row fails. An amount the store cannot hold is refused with the overflow report.
bool InsertInvoiceRows(Database& dbTax, const QString& taxCode, const InvoiceHead& head,
                       const QList<InvoiceLine>& lines);
// A new invoice: its number (the highest stored plus one) is taken inside the transaction that
// stores its rows, begun as a write, so two running copies never confirm one number twice.
// The number stored; nothing when the save failed (its box shown, nothing stored).
std::optional<QString> StoreNewInvoice(Database& dbTax, const InvoiceHead& head,
                                       const QList<InvoiceLine>& lines);

// An issued invoice as its rows hold it.
struct IssuedInvoice {
    QString taxCode;
    QString cCode;
    QString dealDate;
    QString remark;
    QString userCode;
    QString receipt;          // "영수", "청구", or empty for invoices issued before the column existed
    QList<InvoiceLine> lines; // in the order the rows were written
};
// Nothing when no row has the number (or the read failed).
std::optional<IssuedInvoice> ReadIssuedInvoice(Database& dbTax, const QString& taxCode);
// The lines of an issued invoice onto the sheet (at most five), then SumLines; CurLine
// becomes the row count minus 1.
void ShowIssuedInvoice(InvoiceSheet& sheet, const IssuedInvoice& invoice);
// write_yy, write_mm, write_dd from DealDate: characters 1-4, 6-7, 9-10.
struct WritingDate {
    QString yy, mm, dd;
};
WritingDate writingDateOf(const QString& dealDate);

// One row of grdList: an invoice folded from its rows.
struct IssuedListRow {
    QString dealDate;
    QString item; // PName of the last row read, with " 외 " and the further rows' count
    double supply = 0;
    double tax = 0;
    QString taxCode;
};
struct IssuedList {
    QList<IssuedListRow> rows;
    double supply = 0; // the customer's sums
    double tax = 0;
};
// The customer's invoices in number order; nothing when the read failed.
std::optional<IssuedList> ReadIssuedList(Database& dbTax, const QString& cCode);
// The same rows as the store gives them, grdList's five columns, for the list to read as it is
// seen (bound value: the customer's code); and the customer's count and sums (ReadIssuedSums).
extern const QString kIssuedListQuery;
extern const QString kIssuedSumsQuery;

// All rows of the number go; false when the statement failed.
bool DeleteInvoice(Database& dbTax, const QString& taxCode);

struct TaxSums {
    double supply = 0;
    double tax = 0;
};
// Sum(TradeKum), Sum(VatKum) of all invoices (null as 0); nothing when the read failed.
std::optional<TaxSums> ReadAllTaxSums(Database& dbTax);
// One customer's invoices: how many (the rows of its issued list) and their sums.
struct IssuedSums {
    int invoices = 0;
    double supply = 0;
    double tax = 0;
};
std::optional<IssuedSums> ReadIssuedSums(Database& dbTax, const QString& cCode);
// The same for DealDate between two dates (kPeriodSumsQuery, bound values: from, to).
std::optional<TaxSums> ReadTaxSums(Database& dbTax, const QString& from, const QString& to);
extern const QString kPeriodSumsQuery;
// A sum panel's text: the value through the mask with one blank behind.
QString sumPanelText(double value, const QString& mask);

// The period kinds of gubun2 and the choices each puts in CmbTerm.
enum class PeriodKind { Quarter = 0, Half = 1, Year = 2 };
QStringList periodChoices(PeriodKind kind);
struct DateRange {
    QString from;
    QString to;
};
// The dates of a choice in the given year.
DateRange periodRange(PeriodKind kind, const QString& choice, int year);

} // namespace nb
