#include "invoice/InvoiceStore.h"

#include "common/text/NumberFormat.h"
#include "common/text/StoredNumber.h"
#include "storage/Database.h"

#include <QVariant>

namespace nb {

namespace {

// A number column's value from a box text: commas and blanks removed; null when empty.
QVariant numberValue(const QString& text) {
    const QString plain = QString(text.trimmed()).remove(u',');
    if (plain.isEmpty()) return QVariant();
    bool ok = false;
    const double value = NumberFromText(plain, &ok);
    return ok ? QVariant(value) : QVariant(plain);
}

QString storedNumberText(const QVariant& value) {
    if (value.isNull()) return QString();
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok ? plainNumberText(number) : value.toString();
}

InvoiceLine lineFromRow(const Recordset& rs) {
    InvoiceLine line;
    line.ddyy = rs.text(QStringLiteral("TradeDate"));
    line.pummok = rs.text(QStringLiteral("PName"));
    line.dan_num = rs.text(QStringLiteral("PNorm"));
    line.su_num = storedNumberText(rs.field(QStringLiteral("Quantity")));
    line.gibon_num = storedNumberText(rs.field(QStringLiteral("UnitCost")));
    line.gonggum = storedNumberText(rs.field(QStringLiteral("TradeKum")));
    line.tax_num = storedNumberText(rs.field(QStringLiteral("VatKum")));
    return line;
}

std::optional<TaxSums> readSums(Database& dbTax, const QString& sql, const QVariantList& values) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs, sql, values)) return std::nullopt;
    TaxSums sums;
    if (!rs.EOF_()) {
        sums.supply = rs.number(QStringLiteral("supply"));
        sums.tax = rs.number(QStringLiteral("tax"));
    }
    CloseRs(rs);
    return sums;
}

} // namespace

// The last number in the numbers' text order, read from the end of the TaxCode index on both
// engines (an order asking for the rows without a number last would make the server sort every
// row).
const QString& nextTaxCodeStatement() {
    static const QString sql = QStringLiteral("SELECT Max(TaxCode) AS TaxCode FROM NewAcount");
    return sql;
}

std::optional<QString> NextTaxCode(Database& dbTax) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs, nextTaxCodeStatement())) return std::nullopt;
    const bool numbered = !rs.isNull(QStringLiteral("TaxCode"));
    const double last = NumberFromText(rs.text(QStringLiteral("TaxCode")));
    CloseRs(rs);
    if (numbered) return QString::number(qint64(last) + 1);
    // No row has a number: rows without one still count, and the number after none is 1.
    if (!OpenSnapshot(dbTax, rs, QStringLiteral("SELECT TaxCode FROM NewAcount LIMIT 1")))
        return std::nullopt;
    const QString next = rs.RecordCount() > 0 ? QStringLiteral("1") : kFirstTaxCode;
    CloseRs(rs);
    return next;
}

QString serialFromTaxCode(const QString& taxCode) {
    if (taxCode.isEmpty()) return QStringLiteral("000-000");
    const QString mask = QStringLiteral("000");
    return FormatText(taxCode.left(3), mask) + u'-' + FormatText(taxCode.right(3), mask);
}

QString serialDigits(const QString& txtSeq) {
    return txtSeq.left(3) + txtSeq.right(3);
}

QList<InvoiceLine> linesToSave(const InvoiceSheet& sheet) {
    QList<InvoiceLine> lines;
    for (int i = 0; i <= sheet.curLine; ++i) {
        if (!sheet.line(i).isComplete()) break;
        lines.append(sheet.line(i));
    }
    return lines;
}

QList<InvoiceLine> printableLines(const InvoiceSheet& sheet) {
    QList<InvoiceLine> lines;
    for (int i = 0; i <= sheet.curLine; ++i)
        if (sheet.line(i).isComplete()) lines.append(sheet.line(i));
    return lines;
}

namespace {

// The rows of one invoice, inside the caller's transaction.
bool insertRows(Database& dbTax, const QString& taxCode, const InvoiceHead& head,
                const QList<InvoiceLine>& lines) {
    static const QString sql = QStringLiteral(
        "insert into NewAcount(TaxCode, CCode, PName, PNorm, Quantity, UnitCost, TradeKum, VatKum, DealDate, "
        "issuedate, TradeDate, UserCode, Receipt) values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const InvoiceLine& line : lines) {
        const QVariantList numbers{numberValue(line.su_num), numberValue(line.gibon_num),
                                   numberValue(line.gonggum),
                                   numberValue(FormatText(line.tax_num, kMaskPlain))};
        for (const QVariant& n : numbers)
            if (n.typeId() == QMetaType::Double &&
                !checkStoredNumber(n.toDouble(), NumberColumn::Amount, QStringLiteral("SaveInvoice"),
                                   QStringLiteral("FrmTax"), ReportOwner::Form))
                return false;
        const QVariantList values{taxCode,
                                  head.cCode.trimmed(),
                                  line.pummok.trimmed(),
                                  line.dan_num,
                                  numbers[0],
                                  numbers[1],
                                  numbers[2],
                                  numbers[3],
                                  head.dealDate,
                                  head.remark.trimmed(),
                                  line.ddyy.trimmed(),
                                  head.userCode,
                                  head.receipt.trimmed()};
        if (!dbTax.Execute(sql, values)) return false;
    }
    return true;
}

const QString kInvoiceSaveFailed = QStringLiteral("세금계산서를 저장하지 못했습니다.");

} // namespace

bool InsertInvoiceRows(Database& dbTax, const QString& taxCode, const InvoiceHead& head,
                       const QList<InvoiceLine>& lines) {
    return RetryingSave([&] {
        if (!dbTax.beginTransaction()) {
            ReportSaveFailure(dbTax, kInvoiceSaveFailed);
            return false;
        }
        if (!insertRows(dbTax, taxCode, head, lines)) {
            dbTax.rollback();
            return false;
        }
        if (dbTax.commit()) return true;
        ReportSaveFailure(dbTax, kInvoiceSaveFailed);
        return false;
    });
}

std::optional<QString> StoreNewInvoice(Database& dbTax, const InvoiceHead& head,
                                       const QList<InvoiceLine>& lines) {
    // Each try reads the number anew inside its own transaction: a try the server broke off
    // leaves nothing behind, its number included.
    std::optional<QString> stored;
    RetryingSave([&] {
        stored.reset();
        if (!dbTax.beginTransaction()) {
            ReportSaveFailure(dbTax, kInvoiceSaveFailed);
            return false;
        }
        const std::optional<QString> code = NextTaxCode(dbTax);
        if (!code || !insertRows(dbTax, *code, head, lines)) {
            dbTax.rollback();
            return false;
        }
        if (!dbTax.commit()) {
            ReportSaveFailure(dbTax, kInvoiceSaveFailed);
            return false;
        }
        stored = code;
        return true;
    });
    return stored;
}

std::optional<IssuedInvoice> ReadIssuedInvoice(Database& dbTax, const QString& taxCode) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs, QStringLiteral("select * from newacount where TaxCode = ? order by rowid"),
                      {taxCode}))
        return std::nullopt;
    if (rs.RecordCount() == 0) return std::nullopt;
    IssuedInvoice invoice;
    invoice.taxCode = rs.text(QStringLiteral("TaxCode"));
    invoice.cCode = rs.text(QStringLiteral("CCode"));
    invoice.dealDate = rs.text(QStringLiteral("DealDate"));
    invoice.remark = rs.text(QStringLiteral("IssueDate"));
    invoice.userCode = rs.text(QStringLiteral("UserCode"));
    invoice.receipt = rs.text(QStringLiteral("Receipt"));
    for (; !rs.EOF_(); rs.MoveNext())
        invoice.lines.append(lineFromRow(rs));
    CloseRs(rs);
    return invoice;
}

void ShowIssuedInvoice(InvoiceSheet& sheet, const IssuedInvoice& invoice) {
    sheet.curLine = 0;
    sheet.clearLines();
    const int count = qMin(int(invoice.lines.size()), kInvoiceLines);
    for (int i = 0; i < count; ++i)
        sheet.line(i) = invoice.lines.at(i);
    SumLines(sheet);
    sheet.curLine = qMax(0, count - 1);
}

WritingDate writingDateOf(const QString& dealDate) {
    return {dealDate.mid(0, 4), dealDate.mid(5, 2), dealDate.mid(8, 2)};
}

// One row an invoice: the date of its first row, the item of its last with the count of the
// others, its sums and its number, in number order (the invoice without a number first). Its
// lines are told apart by the order they were written in, the table's row number: NewAcount has
// no key of its own.
const QString kIssuedListQuery = QStringLiteral(
    "SELECT COALESCE(f.DealDate, ''), COALESCE(l.PName, '') || CASE WHEN g.Rows > 1 THEN ' 외 ' || "
    "(g.Rows - 1) ELSE '' END, g.Supply, g.Tax, COALESCE(g.TaxCode, '') FROM "
    "(SELECT TaxCode, MIN(rowid) AS FirstRow, MAX(rowid) AS LastRow, COUNT(*) AS Rows, "
    "COALESCE(SUM(TradeKum), 0.0) AS Supply, COALESCE(SUM(VatKum), 0.0) AS Tax FROM NewAcount "
    "WHERE CCode = ? GROUP BY TaxCode) g "
    "JOIN NewAcount f ON f.rowid = g.FirstRow JOIN NewAcount l ON l.rowid = g.LastRow "
    "ORDER BY g.TaxCode NULLS FIRST");
// The invoices (a null number is one invoice as well) and the sums of a customer.
const QString kIssuedSumsQuery = QStringLiteral(
    "SELECT COUNT(DISTINCT TaxCode) + COALESCE(MAX(CASE WHEN TaxCode IS NULL THEN 1 ELSE 0 END), 0) AS "
    "invoices, COALESCE(SUM(TradeKum), 0.0) AS supply, COALESCE(SUM(VatKum), 0.0) AS tax FROM NewAcount "
    "WHERE CCode = ?");

std::optional<IssuedSums> ReadIssuedSums(Database& dbTax, const QString& cCode) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs, kIssuedSumsQuery, {cCode})) return std::nullopt;
    IssuedSums sums;
    if (!rs.EOF_())
        sums = {int(rs.number(QStringLiteral("invoices"))), rs.number(QStringLiteral("supply")),
                rs.number(QStringLiteral("tax"))};
    CloseRs(rs);
    return sums;
}

std::optional<IssuedList> ReadIssuedList(Database& dbTax, const QString& cCode) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs, kIssuedListQuery, {cCode})) return std::nullopt;
    IssuedList list;
    for (; !rs.EOF_(); rs.MoveNext())
        list.rows.append({rs.field(0).toString(), rs.field(1).toString(), rs.field(2).toDouble(),
                          rs.field(3).toDouble(), rs.field(4).toString()});
    CloseRs(rs);
    const std::optional<IssuedSums> sums = ReadIssuedSums(dbTax, cCode);
    if (!sums) return std::nullopt;
    list.supply = sums->supply;
    list.tax = sums->tax;
    return list;
}

bool DeleteInvoice(Database& dbTax, const QString& taxCode) {
    return RetryingSave(
        [&] { return dbTax.Execute(QStringLiteral("delete from newacount where taxCode = ?"), {taxCode}); });
}

std::optional<TaxSums> ReadAllTaxSums(Database& dbTax) {
    return readSums(dbTax,
                    QStringLiteral("Select Sum(TradeKum) AS supply, Sum(VatKum) AS tax from NewAcount"), {});
}

const QString kPeriodSumsQuery = QStringLiteral(
    "Select Sum(TradeKum) AS supply, Sum(VatKum) AS tax from NewAcount Where DealDate Between ? and ?");

std::optional<TaxSums> ReadTaxSums(Database& dbTax, const QString& from, const QString& to) {
    return readSums(dbTax, kPeriodSumsQuery, {from, to});
}

QString sumPanelText(double value, const QString& mask) {
    return FormatNumber(value, mask) + u' ';
}

QStringList periodChoices(PeriodKind kind) {
    switch (kind) {
    case PeriodKind::Quarter:
        return {QStringLiteral("1/4분기"), QStringLiteral("2/4분기"), QStringLiteral("3/4분기"),
                QStringLiteral("4/4분기")};
    case PeriodKind::Half:
        return {QStringLiteral("1/2분기"), QStringLiteral("2/2분기")};
    case PeriodKind::Year:
        return {QStringLiteral("한해집계")};
    }
    return {};
}

DateRange periodRange(PeriodKind kind, const QString& choice, int year) {
    const QString y = QString::number(year);
    auto range = [&](const char* from, const char* to) {
        return DateRange{y + QLatin1String(from), y + QLatin1String(to)};
    };
    switch (kind) {
    case PeriodKind::Quarter:
        if (choice == u"1/4분기") return range("-01-01", "-03-31");
        if (choice == u"2/4분기") return range("-04-01", "-06-30");
        if (choice == u"3/4분기") return range("-07-01", "-09-30");
        return range("-10-01", "-12-31");
    case PeriodKind::Half:
        if (choice == u"1/2분기") return range("-01-01", "-06-30");
        return range("-07-01", "-12-31");
    case PeriodKind::Year:
        break;
    }
    return range("-01-01", "-12-31");
}

} // namespace nb
