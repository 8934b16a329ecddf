#pragma once
// The invoices of a period as the national tax service's bulk-issue sheet wants them: each
// invoice with its supplier, its receiver and its items, and the reasons that keep an invoice
// off the sheet (it is then issued on the web by hand).

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace nb {

class Database;

// At most this many items fit one row of the sheet.
inline constexpr int kEtaxItemsPerInvoice = 4;

struct EtaxParty {
    QString serial; // as stored, with its hyphens (a receiver may be a person: 13 digits)
    QString company;
    QString representative;
    QString address;
    QString status; // 업태
    QString item;   // 종목
    QString email;  // where the tax service sends the issued invoice
};

struct EtaxItem {
    QString tradeDate; // "MM-DD" as the invoice line holds it
    QString name;
    QString norm; // 규격
    std::optional<double> quantity;
    std::optional<double> unitPrice;
    double supply = 0;
    double tax = 0;
};

// 영수 "01", 청구 "02"; Unknown for invoices issued before the program kept it.
enum class EtaxReceipt { Unknown, Paid, Charged };

struct EtaxInvoice {
    QString taxCode;
    QString traderCode; // CCode
    QString dealDate;   // "YYYY-MM-DD"
    QString remark;
    EtaxReceipt receipt = EtaxReceipt::Unknown;
    EtaxParty supplier;
    EtaxParty receiver;
    QList<EtaxItem> items;

    double supplyTotal() const;
    double taxTotal() const;
};

// The invoices whose DealDate lies between the two dates, by number; nothing when a read
// failed (the query box has been shown).
std::optional<QList<EtaxInvoice>> ReadEtaxInvoices(Database& dbTax, Database& dbBasic, const QString& from,
                                                   const QString& to);

// Why the invoice cannot go on the sheet; empty when it can. A tax-exempt invoice (no tax at all
// on a supply) is left out with the one reason kTaxExemptReason: it is not a tax invoice of this
// sheet, and its missing tenth is no typing slip.
QStringList etaxProblems(const EtaxInvoice& invoice);
inline const QString kTaxExemptReason = QStringLiteral("면세");

// The stored word of the invoice screen ("영수"/"청구") as a receipt kind.
EtaxReceipt receiptFromStored(const QString& stored);
// The sheet's code: "01" or "02"; Unknown takes `assumed`.
QString receiptCode(EtaxReceipt receipt, EtaxReceipt assumed);

} // namespace nb
