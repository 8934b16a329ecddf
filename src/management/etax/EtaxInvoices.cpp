#include "management/etax/EtaxInvoices.h"

#include "common/text/BusinessNumber.h"
#include "common/text/EmailAddress.h"
#include "common/text/NumberFormat.h"
#include "storage/Database.h"

#include <QDate>
#include <QHash>
#include <cmath>

namespace nb {
namespace {

std::optional<double> optionalNumber(const QVariant& value) {
    if (value.isNull() || !value.isValid()) return std::nullopt;
    return value.toDouble();
}

EtaxItem itemFromRow(const Recordset& rs) {
    EtaxItem item;
    item.tradeDate = rs.text(QStringLiteral("TradeDate")).trimmed();
    item.name = rs.text(QStringLiteral("PName"));
    item.norm = rs.text(QStringLiteral("PNorm"));
    item.quantity = optionalNumber(rs.field(QStringLiteral("Quantity")));
    item.unitPrice = optionalNumber(rs.field(QStringLiteral("UnitCost")));
    item.supply = rs.number(QStringLiteral("TradeKum"));
    item.tax = rs.number(QStringLiteral("VatKum"));
    return item;
}

// The suppliers or traders a period names, read once each.
class PartyCache {
public:
    PartyCache(Database& db, QString sql) : m_db(db), m_sql(std::move(sql)) {}
    // Nothing when the read failed; an empty party when the key is not on file.
    std::optional<EtaxParty> find(const QString& key, bool trader) {
        if (auto it = m_parties.constFind(key); it != m_parties.constEnd()) return it.value();
        Recordset rs;
        if (!OpenSnapshot(m_db, rs, m_sql, {key})) return std::nullopt;
        EtaxParty party;
        if (!rs.EOF_()) party = trader ? traderFromRow(rs) : supplierFromRow(rs);
        CloseRs(rs);
        m_parties.insert(key, party);
        return party;
    }

private:
    static EtaxParty supplierFromRow(const Recordset& rs) {
        return {rs.text(QStringLiteral("Serial")),         rs.text(QStringLiteral("Company")),
                rs.text(QStringLiteral("Delegate")),       rs.text(QStringLiteral("Addr")),
                rs.text(QStringLiteral("Status")),         rs.text(QStringLiteral("Item")),
                rs.text(QStringLiteral("Email")).trimmed()};
    }
    static EtaxParty traderFromRow(const Recordset& rs) {
        const QString address =
            (rs.text(QStringLiteral("Addr1")).trimmed() + u' ' + rs.text(QStringLiteral("Addr2")).trimmed())
                .trimmed();
        return {rs.text(QStringLiteral("Serial")),         rs.text(QStringLiteral("C_Name")),
                rs.text(QStringLiteral("U_Name")),         address,
                rs.text(QStringLiteral("Status")),         rs.text(QStringLiteral("Item")),
                rs.text(QStringLiteral("Email")).trimmed()};
    }

    Database& m_db;
    QString m_sql;
    QHash<QString, EtaxParty> m_parties;
};

// The rows of a period folded into invoices, parties still empty.
std::optional<QList<EtaxInvoice>> readInvoiceRows(Database& dbTax, const QString& from, const QString& to,
                                                  QHash<QString, QString>& traderOf,
                                                  QHash<QString, QString>& supplierOf) {
    Recordset rs;
    if (!OpenSnapshot(
            dbTax, rs,
            QStringLiteral(
                "select * from NewAcount where DealDate between ? and ? order by TaxCode NULLS FIRST, rowid"),
            {from, to}))
        return std::nullopt;
    QList<EtaxInvoice> invoices;
    for (; !rs.EOF_(); rs.MoveNext()) {
        const QString taxCode = rs.text(QStringLiteral("TaxCode"));
        if (invoices.isEmpty() || invoices.last().taxCode != taxCode) {
            EtaxInvoice invoice;
            invoice.taxCode = taxCode;
            invoice.traderCode = rs.text(QStringLiteral("CCode"));
            invoice.dealDate = rs.text(QStringLiteral("DealDate"));
            invoice.remark = rs.text(QStringLiteral("IssueDate")).trimmed();
            invoice.receipt = receiptFromStored(rs.text(QStringLiteral("Receipt")));
            traderOf.insert(taxCode, rs.text(QStringLiteral("CCode")));
            supplierOf.insert(taxCode, rs.text(QStringLiteral("UserCode")));
            invoices.append(invoice);
        }
        invoices.last().items.append(itemFromRow(rs));
    }
    CloseRs(rs);
    return invoices;
}

bool sameMonth(const QString& dealDate, const QString& tradeDate) {
    // An item date "MM-DD"; an empty one takes the writing date.
    return tradeDate.isEmpty() || tradeDate.left(2) == dealDate.mid(5, 2);
}

// The item's day is a day of the invoice's month ("05-32" and "02-30" are not).
bool isDayOfMonth(const QString& dealDate, const QString& tradeDate) {
    if (tradeDate.isEmpty()) return true;
    bool ok = false;
    const int day = tradeDate.mid(3).toInt(&ok);
    return tradeDate.size() == 5 && tradeDate.at(2) == u'-' && ok &&
           QDate(dealDate.left(4).toInt(), dealDate.mid(5, 2).toInt(), day).isValid();
}

bool hasFraction(double amount) {
    return amount != std::floor(amount);
}

bool isDigits(const QString& text) {
    for (const QChar c : text)
        if (c < u'0' || c > u'9') return false;
    return !text.isEmpty();
}

// A receiver may be a person without a business, named on the sheet by the 13 digits of the
// resident number (no check digit: numbers given since late 2020 carry none).
bool isResidentNumber(const QString& serial) {
    const QString digits = businessNumberDigits(serial);
    return digits.size() == 13 && isDigits(digits);
}

void checkParty(const EtaxParty& party, const QString& who, bool personAllowed, QStringList& problems) {
    if (!IsValidBusinessNumber(party.serial) && !(personAllowed && isResidentNumber(party.serial)))
        problems << who + QStringLiteral(" 등록번호가 올바르지 않습니다 (") + party.serial.trimmed() +
                        QStringLiteral(")");
    if (party.company.trimmed().isEmpty()) problems << who + QStringLiteral(" 상호가 비어 있습니다");
    if (party.representative.trimmed().isEmpty()) problems << who + QStringLiteral(" 성명이 비어 있습니다");
    if (!party.email.isEmpty() && !IsValidEmail(party.email))
        problems << who + QStringLiteral(" 이메일 주소가 올바르지 않습니다 (") + party.email + u')';
}

void checkItems(const EtaxInvoice& invoice, QStringList& problems) {
    for (const EtaxItem& item : invoice.items)
        if (!sameMonth(invoice.dealDate, item.tradeDate)) {
            problems << QStringLiteral("품목 일자 %1이(가) 작성월과 다릅니다").arg(item.tradeDate);
            break;
        }
    for (const EtaxItem& item : invoice.items)
        if (sameMonth(invoice.dealDate, item.tradeDate) && !isDayOfMonth(invoice.dealDate, item.tradeDate)) {
            problems << QStringLiteral("품목 일자 %1은(는) %2월에 없는 날입니다")
                            .arg(item.tradeDate)
                            .arg(invoice.dealDate.mid(5, 2).toInt());
            break;
        }
    // The sheet takes whole won; a fraction would be rounded by the site to another total.
    for (const EtaxItem& item : invoice.items)
        if (hasFraction(item.supply) || hasFraction(item.tax)) {
            problems << QStringLiteral("금액에 원 미만이 있습니다 (%1: 공급가액 %2, 세액 %3)")
                            .arg(item.name.trimmed(), QString::number(item.supply, 'f', 2),
                                 QString::number(item.tax, 'f', 2));
            break;
        }
}

} // namespace

double EtaxInvoice::supplyTotal() const {
    double sum = 0;
    for (const EtaxItem& item : items)
        sum += item.supply;
    return sum;
}

double EtaxInvoice::taxTotal() const {
    double sum = 0;
    for (const EtaxItem& item : items)
        sum += item.tax;
    return sum;
}

std::optional<QList<EtaxInvoice>> ReadEtaxInvoices(Database& dbTax, Database& dbBasic, const QString& from,
                                                   const QString& to) {
    QHash<QString, QString> traderOf, supplierOf;
    auto invoices = readInvoiceRows(dbTax, from, to, traderOf, supplierOf);
    if (!invoices) return std::nullopt;
    PartyCache suppliers(dbBasic, QStringLiteral("select * from User where Serial = ?"));
    PartyCache traders(dbBasic, QStringLiteral("select * from Trader where Code = ?"));
    for (EtaxInvoice& invoice : *invoices) {
        const auto supplier = suppliers.find(supplierOf.value(invoice.taxCode), false);
        const auto receiver = traders.find(traderOf.value(invoice.taxCode), true);
        if (!supplier || !receiver) return std::nullopt;
        invoice.supplier = *supplier;
        invoice.receiver = *receiver;
    }
    return invoices;
}

QStringList etaxProblems(const EtaxInvoice& invoice) {
    QStringList problems;
    if (invoice.items.size() > kEtaxItemsPerInvoice)
        problems << QStringLiteral("품목이 %1개입니다 (한 장에 4개까지): 홈택스에서 직접 발급하십시오")
                        .arg(invoice.items.size());
    checkParty(invoice.supplier, QStringLiteral("공급자"), false, problems);
    checkParty(invoice.receiver, QStringLiteral("공급받는자"), true, problems);
    checkItems(invoice, problems);
    if (invoice.taxTotal() == 0 && invoice.supplyTotal() != 0) {
        problems << kTaxExemptReason;
        return problems;
    }
    // Each line's tax is rounded on its own, so the total may differ from a tenth of the supply
    // by at most one won a line; more means a tax typed over.
    if (std::abs(invoice.taxTotal() - invoice.supplyTotal() / 10.0) > invoice.items.size())
        problems << QStringLiteral("세액 합계 %1이(가) 공급가액 합계 %2의 10%와 맞지 않습니다")
                        .arg(FormatNumber(invoice.taxTotal(), kMaskSum),
                             FormatNumber(invoice.supplyTotal(), kMaskSum));
    return problems;
}

EtaxReceipt receiptFromStored(const QString& stored) {
    if (stored.trimmed() == u"영수") return EtaxReceipt::Paid;
    if (stored.trimmed() == u"청구") return EtaxReceipt::Charged;
    return EtaxReceipt::Unknown;
}

QString receiptCode(EtaxReceipt receipt, EtaxReceipt assumed) {
    if (receipt == EtaxReceipt::Unknown) receipt = assumed;
    return receipt == EtaxReceipt::Paid ? QStringLiteral("01") : QStringLiteral("02");
}

} // namespace nb
