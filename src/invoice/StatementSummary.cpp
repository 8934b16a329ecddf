#include "invoice/StatementSummary.h"

#include "storage/Database.h"

namespace nb {

std::optional<StatementSummary> SummarizeStatements(Database& dbBill, const QString& cCode,
                                                    const QString& from, const QString& to) {
    // The item of the period's first line (the earliest statement's first line), the count of
    // the lines and their sum, in one row: the counts are taken over the whole period.
    static const QString sql = QStringLiteral(
        "Select detail.PName AS name, Count(*) Over () AS lines, Sum(detail.Amount + detail.VAT) Over () AS "
        "total from detail Inner Join master On detail.billno = master.billno "
        "Where master.CCode = ? and master.BillDate Between ? and ? "
        "Order by master.BillDate, detail.BillNo, detail.BillSEQ Limit 1");
    Recordset rs;
    if (!OpenSnapshot(dbBill, rs, sql, {cCode, from, to})) return std::nullopt;
    std::optional<StatementSummary> summary;
    if (!rs.EOF_())
        summary = StatementSummary{rs.text(QStringLiteral("name")), int(rs.number(QStringLiteral("lines"))),
                                   rs.number(QStringLiteral("total"))};
    CloseRs(rs);
    return summary;
}

QString summaryItemText(const StatementSummary& summary) {
    if (summary.count > 1)
        return summary.name + QStringLiteral(" 외 ") + QString::number(summary.count - 1) +
               QStringLiteral("건");
    return summary.name;
}

void ApplyStatementSummary(InvoiceSheet& sheet, const StatementSummary& summary, const QString& writeMmDd) {
    sheet.clearLines();
    InvoiceLine& line = sheet.line(0);
    line.ddyy = writeMmDd;
    line.pummok = summaryItemText(summary);
    const double sum = summary.sum;
    switch (sheet.vat) {
    case VatMode::Separate:
        line.gonggum = plainNumberText(sum);
        line.tax_num = QString::number(roundToLong(sum * 0.1));
        break;
    case VatMode::Included:
        line.gonggum = QString::number(roundToLong(sum / 1.1));
        line.tax_num = QString::number(roundToLong(sum - double(textToLong(line.gonggum))));
        break;
    case VatMode::Exempt:
        line.gonggum = plainNumberText(sum);
        line.tax_num = QStringLiteral("0");
        break;
    }
    sheet.lastSupply = sum;
    line.su_num = QStringLiteral("0");
    line.gibon_num = QStringLiteral("0");
    SumLines(sheet);
    sheet.curLine = 1;
}

} // namespace nb
