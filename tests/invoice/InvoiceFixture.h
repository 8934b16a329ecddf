#pragma once
// What the invoice tests share: a test home with every store file created and opened, and
// quick ways to put suppliers, traders, products, invoices and statements in place.

#include "StoreFixture.h"
#include "storage/StoreLayout.h"

namespace nb::test {

inline int invoiceRows(const QString& where = QString(), const QVariantList& values = {}) {
    return scalar(stores().dbTax, QStringLiteral("SELECT count(*) FROM NewAcount ") + where, values)
        .toInt();
}

// One stored invoice row.
inline bool addInvoiceRow(const QString& taxCode, const QString& cCode, const QString& name, double supply,
                          double tax, const QString& dealDate = QStringLiteral("2024-05-10"),
                          const QString& remark = QString()) {
    return exec(stores().dbTax,
               QStringLiteral(
                   "INSERT INTO NewAcount (TaxCode, CCode, PName, PNorm, Quantity, UnitCost, TradeKum, "
                   "VatKum, DealDate, IssueDate, TradeDate, UserCode) VALUES (?,?,?,'EA',1,?,?,?,?,?,?,'')"),
               {taxCode, cCode, name, supply, supply, tax, dealDate, remark, dealDate.mid(5)});
}

struct PartyRow {
    QString serial, company, delegate, addr, phone, fax, status, item;
};

inline bool addSupplier(const PartyRow& p) {
    return exec(
        stores().dbBasic,
        QStringLiteral("INSERT INTO User (Company, Delegate, Serial, Post, Addr, Phone, Fax, Status, Item) "
                       "VALUES (?, ?, ?, '', ?, ?, ?, ?, ?)"),
        {p.company, p.delegate, p.serial, p.addr, p.phone, p.fax, p.status, p.item});
}

inline bool addTraderRow(const QString& code, const PartyRow& p) {
    return exec(
        stores().dbBasic,
        QStringLiteral(
            "INSERT INTO Trader (Code, C_Name, U_Name, Serial, Phone, Fax, Addr1, Addr2, Status, "
            "Item, Section, VAT, TotNoPay, bDeled) VALUES (?, ?, ?, ?, ?, ?, ?, '', ?, ?, 0, 0, 0, 0)"),
        {code, p.company, p.delegate, p.serial, p.phone, p.fax, p.addr, p.status, p.item});
}

inline bool addProductRow(const QString& code, const QString& name, const QString& norm, double sale,
                          const QString& unit) {
    return exec(
        stores().dbBasic,
        QStringLiteral("INSERT INTO Product (Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo, PTax) "
                       "VALUES (?, ?, ?, 0, ?, ?, '', 0)"),
        {code, name, norm, sale, unit});
}

// A statement head and its lines (Amount, VAT per line).
inline bool addStatement(const QString& billNo, const QString& date, const QString& cCode,
                         const QList<std::tuple<QString, double, double>>& lines) {
    if (!exec(stores().dbBill,
             QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                            "VALUES (?, ?, ?, 0, 0, 0)"),
             {billNo, date, cCode}))
        return false;
    int seq = 0;
    for (const auto& [name, amount, vat] : lines)
        if (!exec(stores().dbBill,
                 QStringLiteral(
                     "INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
                     "VALUES (?, ?, ?, '', 1, ?, 0, ?, ?)"),
                 {billNo, ++seq, name, amount, amount, vat}))
            return false;
    return true;
}

} // namespace nb::test
