#include "management/OfficialTotals.h"

#include "common/Messages.h"
#include "common/text/BusinessNumber.h"
#include "core/AppState.h"
#include "management/OfficialTotalsSums.h"
#include "management/etax/HandOverRecord.h"
#include "storage/CrossFileQueries.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QSet>
#include <QSqlQuery>
#include <limits>

namespace nb {

namespace {

// One row an invoice and receiver (an invoice is one receiver's): its lines summed, its receiver's number and
// name from the basic file. The trader's columns are grouped by too (one trader a code), as the
// server wants every column it shows either grouped or summed.
const QString kInvoicesRead = QStringLiteral(
    "SELECT n.TaxCode, n.CCode, SUM(n.TradeKum) AS Supply, SUM(n.VatKum) AS Tax, "
    "t.Serial AS Serial, t.C_Name AS Company FROM NewAcount n LEFT JOIN basic.Trader t ON t.Code = n.CCode "
    "WHERE n.DealDate BETWEEN ? AND ? GROUP BY n.CCode, n.TaxCode, t.Serial, t.C_Name ORDER BY n.CCode, "
    "n.TaxCode");

QString receiverKey(const InvoiceOfPeriod& invoice) {
    const QString digits = businessNumberDigits(invoice.serial);
    return digits.size() >= 10 ? QStringLiteral("#") + digits : QStringLiteral("@") + invoice.cCode;
}

// The form in one statement, its parts named by what they hold:
// - Sent: the invoices of the period marked uploaded, not withdrawn, on a day up to the deadline.
// - Traders: per trader, its invoices sent in time (Part 0) and the others (Part 2), counted and
//   summed.
// - Receivers: each trader's rows under its receiver (the number's digits, or "@" and the trader
//   code without a number of at least ten digits), a resident number's one part further (1, 3).
// Then the four parts' lines (Kind 0-3, their receivers counted) and the listed receivers of
// part 2 (Kind 4) from a given one, in the order of their first trader codes, with that trader's
// number and name.
const QString kFormRead = QStringLiteral(
    "WITH Sent AS (SELECT u.TaxCode FROM (%1) u WHERE TRIM(u.UploadedDate) LIKE '____-__-__' "
    "AND TRIM(u.UploadedDate) <= ?), "
    "Traders AS (SELECT n.CCode, CASE WHEN n.TaxCode IN (SELECT TaxCode FROM Sent) THEN 0 ELSE 2 END AS "
    "Part, "
    "COUNT(DISTINCT n.TaxCode) AS Invoices, SUM(n.TradeKum) AS Supply, SUM(n.VatKum) AS Tax "
    "FROM NewAcount n WHERE n.DealDate BETWEEN ? AND ? GROUP BY n.CCode, Part), "
    "Numbers AS (SELECT g.CCode, g.Part, g.Invoices, g.Supply, g.Tax, "
    "REPLACE(REPLACE(REPLACE(REPLACE(REPLACE(TRIM(COALESCE(t.Serial, '')), '-', ''), ' ', ''), '\t', ''), "
    "'\u3000', ''), '\u00a0', '') AS Digits FROM Traders g LEFT JOIN basic.Trader t ON t.Code = g.CCode), "
    "Receivers AS (SELECT Part + CASE WHEN length(Digits) = 13 THEN 1 ELSE 0 END AS Part, "
    "CASE WHEN length(Digits) >= 10 THEN '#' || Digits ELSE '@' || CCode END AS Receiver, "
    "MIN(CCode) AS FirstCode, SUM(Invoices) AS Invoices, SUM(Supply) AS Supply, SUM(Tax) AS Tax "
    "FROM Numbers GROUP BY 1, 2) "
    "SELECT Part AS Kind, '' AS Serial, '' AS Company, COUNT(*) AS Receivers, SUM(Invoices) AS Invoices, "
    "SUM(Supply) AS Supply, SUM(Tax) AS Tax FROM Receivers GROUP BY Part "
    "UNION ALL SELECT * FROM (SELECT 4 AS Kind, t.Serial, t.C_Name, 1, r.Invoices, r.Supply, r.Tax "
    "FROM Receivers r LEFT JOIN basic.Trader t ON t.Code = r.FirstCode WHERE r.Part = 2 "
    "ORDER BY r.FirstCode NULLS FIRST LIMIT ? OFFSET ?) Listed");

// The same rules read as the lines of the period and the traders' numbers, for a store whose
// lines are summed in memory: the period's lines each with the part its invoice belongs to, and
// every trader's number (worked down to its digits in memory, as above).
const QString kFormLinesRead = QStringLiteral(
    "WITH Sent AS (SELECT u.TaxCode FROM (%1) u WHERE TRIM(u.UploadedDate) LIKE '____-__-__' "
    "AND TRIM(u.UploadedDate) <= ?) "
    "SELECT n.CCode, n.TaxCode, CASE WHEN n.TaxCode IN (SELECT TaxCode FROM Sent) THEN 0 ELSE 2 END AS Part, "
    "n.TradeKum, n.VatKum FROM NewAcount n WHERE n.DealDate BETWEEN ? AND ?");
const QString kFormTradersRead = QStringLiteral("SELECT Code, Serial FROM basic.Trader");
const QString kFormRecordRead = QStringLiteral("SELECT Serial, C_Name FROM basic.Trader WHERE Code = ?");

} // namespace

IssueLine& IssueLine::operator+=(const IssueLine& other) {
    receivers += other.receivers;
    invoices += other.invoices;
    supply += other.supply;
    tax += other.tax;
    return *this;
}

const ReceiverLine* OfficialTotals::receiverAt(int index) const {
    const qsizetype at = qsizetype(index) - firstReceiver;
    return at >= 0 && at < receivers.size() ? &receivers.at(at) : nullptr;
}

IssueLine OfficialTotals::electronic() const {
    IssueLine sum = electronicBusiness;
    return sum += electronicResident;
}

IssueLine OfficialTotals::paper() const {
    IssueLine sum = paperBusiness;
    return sum += paperResident;
}

IssueLine OfficialTotals::total() const {
    IssueLine sum = electronic();
    return sum += paper();
}

bool isResidentNumber(const QString& serial) {
    return businessNumberDigits(serial).size() == 13;
}

QDate electronicDeadline(const QString& periodTo) {
    const QDate end = QDate::fromString(periodTo, QStringLiteral("yyyy-MM-dd"));
    if (!end.isValid()) return {};
    const QDate next = end.addMonths(1);
    return QDate(next.year(), next.month(), 11);
}

QString officialTerm(const TotalsPeriod& period) {
    const QDate from = QDate::fromString(period.from, QStringLiteral("yyyy-MM-dd"));
    const QDate to = QDate::fromString(period.to, QStringLiteral("yyyy-MM-dd"));
    if (!from.isValid() || !to.isValid()) return QString();
    const auto day = [](const QDate& d) { return QStringLiteral("%1월 %2일").arg(d.month()).arg(d.day()); };
    return QStringLiteral("%1년 제%2기 (%3 ~ %4)")
        .arg(from.year())
        .arg(from.month() <= 6 ? 1 : 2)
        .arg(day(from), day(to));
}

OfficialTotals sumOfficialTotals(const QList<InvoiceOfPeriod>& invoices, const UploadedDates& uploaded,
                                 const QDate& deadline) {
    OfficialTotals form;
    form.deadline = deadline;
    QHash<QString, qsizetype> listed; // receiver -> its line in form.receivers
    QSet<QString> seen[4];
    IssueLine* lines[4] = {&form.electronicBusiness, &form.electronicResident, &form.paperBusiness,
                           &form.paperResident};
    for (const InvoiceOfPeriod& invoice : invoices) {
        const auto upload = uploaded.constFind(invoice.taxCode);
        const bool electronic =
            upload != uploaded.constEnd() && deadline.isValid() && upload->isValid() && *upload <= deadline;
        const bool resident = isResidentNumber(invoice.serial);
        const int bucket = (electronic ? 0 : 2) + (resident ? 1 : 0);
        const QString key = receiverKey(invoice);
        IssueLine& line = *lines[bucket];
        if (!seen[bucket].contains(key)) {
            seen[bucket].insert(key);
            ++line.receivers;
        }
        ++line.invoices;
        line.supply += invoice.supply;
        line.tax += invoice.tax;
        if (bucket != 2) continue;
        auto at = listed.constFind(key);
        if (at == listed.constEnd()) {
            at = listed.insert(key, form.receivers.size());
            form.receivers.append(ReceiverLine{invoice.serial, invoice.company, 0, 0, 0});
        }
        ReceiverLine& receiver = form.receivers[*at];
        ++receiver.invoices;
        receiver.supply += invoice.supply;
        receiver.tax += invoice.tax;
    }
    return form;
}

std::optional<QList<InvoiceOfPeriod>> ReadInvoicesOfPeriod(const TotalsPeriod& period) {
    Database& tax = stores().dbTax;
    if (!tax.attach(stores().dbBasic.path(), kBasicAlias)) {
        ReportQueryFailure(-1, QStringLiteral("unable to open database: ") + stores().dbBasic.path(),
                           kInvoicesRead);
        return std::nullopt;
    }
    QList<InvoiceOfPeriod> invoices;
    QSqlQuery rs(tax.connection());
    rs.setForwardOnly(true);
    const bool read = OpenForwardOnly(tax, rs, kInvoicesRead, {period.from, period.to});
    for (; read && rs.next();) {
        InvoiceOfPeriod invoice;
        invoice.taxCode = rs.value(0).toString();
        invoice.cCode = rs.value(1).toString();
        invoice.supply = rs.value(2).toDouble();
        invoice.tax = rs.value(3).toDouble();
        invoice.serial = rs.value(4).toString().trimmed();
        invoice.company = rs.value(5).toString();
        invoices.append(invoice);
    }
    rs.finish();
    tax.detach(kBasicAlias);
    if (!read) return std::nullopt;
    return invoices;
}

std::optional<UploadedDates> uploadedDatesOf(const TotalsPeriod& period) {
    return UploadedInvoiceDates(stores().dbTax, period.from, period.to);
}

namespace {

// The totals block and the stretch of receivers from the store, into `form`.
bool readForm(OfficialTotals& form, const TotalsPeriod& period, int first, int count) {
    Database& tax = stores().dbTax;
    const QString sql = kFormRead.arg(standingInvoicesSql(true));
    if (!tax.attach(stores().dbBasic.path(), kBasicAlias)) {
        ReportQueryFailure(-1, QStringLiteral("unable to open database: ") + stores().dbBasic.path(), sql);
        return false;
    }
    const QString deadline =
        form.deadline.isValid() ? form.deadline.toString(QStringLiteral("yyyy-MM-dd")) : QString();
    form.firstReceiver = qMax(0, first);
    if (canSumFormFromLines(tax)) {
        const FormLineReads reads{kFormLinesRead.arg(standingInvoicesSql(true)),
                                  {period.from, period.to, deadline, period.from, period.to},
                                  kFormTradersRead,
                                  kFormRecordRead};
        const bool summed = sumFormFromLines(tax, reads, form, first, count);
        tax.detach(kBasicAlias);
        return summed;
    }
    QSqlQuery rs(tax.connection());
    rs.setForwardOnly(true);
    const bool read = OpenForwardOnly(tax, rs, sql,
                                      {period.from, period.to, deadline, period.from, period.to,
                                       count < 0 ? std::numeric_limits<int>::max() : count, qMax(0, first)});
    IssueLine* parts[4] = {&form.electronicBusiness, &form.electronicResident, &form.paperBusiness,
                           &form.paperResident};
    form.firstReceiver = qMax(0, first);
    for (; read && rs.next();) {
        const int kind = rs.value(0).toInt();
        if (kind < 0 || kind > 4) continue;
        if (kind < 4) {
            *parts[kind] = IssueLine{rs.value(3).toInt(), rs.value(4).toInt(), rs.value(5).toDouble(),
                                     rs.value(6).toDouble()};
            continue;
        }
        form.receivers.append(ReceiverLine{rs.value(1).toString().trimmed(), rs.value(2).toString(),
                                           rs.value(4).toInt(), rs.value(5).toDouble(),
                                           rs.value(6).toDouble()});
    }
    rs.finish();
    tax.detach(kBasicAlias);
    return read;
}

} // namespace

std::optional<OfficialTotals> ReadOfficialTotals(const TotalsPeriod& period, const QDate& today, int first,
                                                 int count) {
    Recordset user;
    const QString serial = app().DefaultSerial;
    if (!(serial.isEmpty() ? OpenSnapshot(stores().dbBasic, user, QStringLiteral("SELECT * FROM User"))
                           : OpenSnapshot(stores().dbBasic, user,
                                          QStringLiteral("SELECT * FROM User WHERE Serial = ?"), {serial})))
        return std::nullopt;
    OfficialTotals form;
    if (!user.EOF_()) {
        form.serial = user.text(QStringLiteral("Serial"));
        form.company = user.text(QStringLiteral("Company"));
        form.delegate = user.text(QStringLiteral("Delegate"));
        form.address = user.text(QStringLiteral("Addr"));
    }
    CloseRs(user);
    form.period = period;
    form.term = officialTerm(period);
    form.issueDate = today.toString(QStringLiteral("yyyy년 M월 d일"));
    form.deadline = electronicDeadline(period.to);
    if (!readForm(form, period, first, count)) return std::nullopt;
    return form;
}

} // namespace nb
