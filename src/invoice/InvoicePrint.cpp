#include "invoice/InvoicePrint.h"

#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "invoice/InvoiceForm.h"
#include "invoice/InvoiceStore.h"
#include "printing/PrintJob.h"
#include "storage/Database.h"

namespace nb {

namespace {

using namespace invoicelayout;

PrintParty readParty(Database& db, const QString& sql, const QVariantList& values, bool trader) {
    Recordset rs;
    PrintParty party;
    if (OpenSnapshot(db, rs, sql, values) && !rs.EOF_()) party = printPartyOf(rs, trader);
    CloseRs(rs);
    return party;
}

void setFont(PrintJob& job, double size, bool bold) {
    job.setFontSize(size);
    job.setFontBold(bold);
    job.setForeColor(Qt::black);
}

// A name of the head: smaller when it is wider than 22 columns.
void printName(PrintJob& job, double row, int tab, const QString& name) {
    setFont(job, ByteLen(name) > kNameWidthLimit ? kNameSmallSize : kBaseSize, false);
    job.printAtTab(row, tab, name);
    setFont(job, kBaseSize, false);
}

void printAddress(PrintJob& job, double row, const QString& addr, bool receiver) {
    const AddressPlace place = addressPlace(addr, receiver, kBaseSize);
    setFont(job, place.size, false);
    job.printAtTab(row, place.tab, addr);
    setFont(job, kBaseSize, false);
}

void printHead(PrintJob& job, const InvoicePrintData& data, const PaperSums& sums, int copy) {
    const double base = kCopyBaseRows[copy];
    const PrintParty& user = data.parties.user;
    const PrintParty& trader = data.parties.trader;
    setFont(job, kBaseSize, false);
    if (data.printPhone) job.printAtTab(base + kPhoneRow, kPhoneTab, phoneNote(data, copy));
    setFont(job, kBigSize, true);
    job.printAtTab(base + kSerialRow, kSerialTab,
                   FormatText(serialDigits(data.txtSeq), QStringLiteral("# # # # # #")));
    setFont(job, kBaseSize, false);
    job.printAtTab(base + kNumberRow, kUserSerialTab,
                   FormatText(user.serial, QStringLiteral("###-##-#####")));
    job.printAtTab(base + kNumberRow, kTraderSerialTab, trader.serial);
    printName(job, base + kNameRow, kUserCompanyTab, user.company);
    job.printAtTab(base + kNameRow, kUserDelegateTab, user.delegate);
    printName(job, base + kNameRow, kTraderCompanyTab, trader.company);
    job.printAtTab(base + kNameRow, kTraderDelegateTab, trader.delegate);
    printAddress(job, base + kAddressRow, user.addr, false);
    printAddress(job, base + kAddressRow, trader.addr, true);
    job.printAtTab(base + kBusinessRow, kUserStatusTab, user.status);
    job.printAtTab(base + kBusinessRow, kUserItemTab, user.item);
    job.printAtTab(base + kBusinessRow, kTraderStatusTab, trader.status);
    job.printAtTab(base + kBusinessRow, kTraderItemTab, trader.item);
    setFont(job, kBigSize, true);
    if (data.printDate) {
        job.printAtTab(base + kDateRow, kYearTab, data.writeYY);
        job.printAtTab(base + kDateRow, kMonthTab, data.writeMM);
        job.printAtTab(base + kDateRow, kDayTab, data.writeDD);
    }
    job.printAtTab(base + kDateRow, kBlankTab, QString::number(sums.blank()));
}

void printDigitCells(PrintJob& job, const PaperSums& sums, int copy) {
    setFont(job, kBigSize, true);
    const double y = digitCellsY(job.topMargin(), copy);
    const double x0 = digitCellsX(job.leftMargin());
    const QString supply = QString::number(sums.supply);
    const QString tax = QString::number(sums.tax);
    for (int j = 0; j < supply.size(); ++j)
        job.printAt(x0 + (sums.blank() + j) * kCellPitch, y, supply.mid(j, 1));
    for (int j = 0; j < tax.size(); ++j)
        job.printAt(x0 + (sums.taxBlank() + kSupplyCells + j) * kCellPitch, y, tax.mid(j, 1));
}

void printRemark(PrintJob& job, const InvoicePrintData& data, int copy) {
    if (data.bigo.isEmpty()) return;
    setFont(job, kBaseSize, false);
    const QStringList lines = remarkPrintLines(data.bigo);
    const double base = kCopyBaseRows[copy];
    for (int k = 0; k < lines.size(); ++k)
        job.printAtTab(base + kRemarkRow + k, kRemarkTab, lines.at(k));
}

// A quantity or price cell: empty when the text is "0", else through the mask.
QString decimalCell(const QString& text, const QString& mask) {
    if (text.trimmed() == u"0" || text.trimmed().isEmpty()) return QString();
    return FormatNumber(parseAmountText(text), mask);
}

QString amountCell(const QString& text) {
    const qint32 value = text.trimmed().isEmpty() ? 0 : textToLong(text);
    return FormatNumber(value, kMaskAmount);
}

void printLine(PrintJob& job, const InvoicePrintData& data, const InvoiceLine& line, double row) {
    const QString qtyMask = decimalPrintMask(data.decimalQty);
    const QString priceMask = decimalPrintMask(data.decimalPrice);
    if (qtyMask.isEmpty() || priceMask.isEmpty()) return; // no such pair of masks: no line
    job.printAtTab(row, kLineDate.tab, data.printDate ? line.ddyy : QString());
    job.printAtTab(row, kLineItem.tab, CutBytes(line.pummok, kLineItem.width));
    job.printAtTab(row, kLineUnit.tab, PadBytes(line.dan_num, kLineUnit.width));
    job.printAtTab(row, kLineQty.tab, PadBytes(decimalCell(line.su_num, qtyMask), kLineQty.width));
    job.printAtTab(row, kLinePrice.tab, PadBytes(decimalCell(line.gibon_num, priceMask), kLinePrice.width));
    job.printAtTab(row, kLineSupply.tab, PadBytes(amountCell(line.gonggum), kLineSupply.width));
    if (data.sheet.vat != VatMode::Exempt)
        job.printAtTab(row, kLineTax.tab, PadBytes(amountCell(line.tax_num), kLineTax.width));
}

int printLines(PrintJob& job, const InvoicePrintData& data, int copy) {
    setFont(job, kBaseSize, false);
    const double base = kCopyBaseRows[copy];
    int printed = 0;
    for (int i = 0; i <= data.sheet.curLine; ++i) {
        const InvoiceLine& line = data.sheet.line(i);
        if (!line.isComplete()) continue;
        printLine(job, data, line, base + invoiceLineRow(i));
        ++printed;
    }
    if (data.sheet.curLine != kLastInvoiceLine)
        job.printAtTab(base + blankRuleRow(data.sheet.curLine), kBlankRuleTab,
                       QStringLiteral("=== 이하 여백 ==="));
    return printed;
}

void printTotal(PrintJob& job, const InvoicePrintData& data, const PaperSums& sums, int copy) {
    setFont(job, kBaseSize, false);
    const double row = kCopyBaseRows[copy] + kTotalRow;
    job.printAtTab(row, kTotalTab + sums.blank(), u'\\' + FormatNumber(sums.total, kMaskSum));
    job.printAtTab(row, kYoungsuTab, data.youngsu);
}

} // namespace

PrintParty printPartyOf(const Recordset& rs, bool trader) {
    PrintParty p;
    p.serial = rs.text(QStringLiteral("Serial"));
    p.company = rs.text(trader ? QStringLiteral("C_Name") : QStringLiteral("Company"));
    p.delegate = rs.text(trader ? QStringLiteral("U_Name") : QStringLiteral("Delegate"));
    p.addr = rs.text(trader ? QStringLiteral("Addr1") : QStringLiteral("Addr"));
    p.status = rs.text(QStringLiteral("Status"));
    p.item = rs.text(QStringLiteral("Item"));
    p.phone = rs.text(QStringLiteral("Phone"));
    p.fax = rs.text(QStringLiteral("Fax"));
    return p;
}

PrintParties ReadPrintParties(Database& dbBasic, const QString& traderCode, const QString& userSerial) {
    PrintParties parties;
    parties.trader =
        traderCode.isEmpty()
            ? readParty(dbBasic, QStringLiteral("SELECT * FROM Trader ORDER BY Code"), {}, true)
            : readParty(dbBasic, QStringLiteral("SELECT * FROM Trader WHERE Code = ? ORDER BY Code"),
                        {traderCode}, true);
    parties.user =
        userSerial.isEmpty()
            ? readParty(dbBasic, QStringLiteral("Select * from User"), {}, false)
            : readParty(dbBasic, QStringLiteral("Select * from User where serial = ?"), {userSerial}, false);
    return parties;
}

PaperSums paperSums(const InvoiceSheet& sheet) {
    PaperSums sums;
    double supply = 0;
    double tax = 0;
    for (int i = 0; i <= sheet.curLine; ++i) {
        const InvoiceLine& line = sheet.line(i);
        supply += line.gonggum.trimmed().isEmpty() ? 0.0 : parseAmountText(line.gonggum);
        tax += line.tax_num.trimmed().isEmpty() ? 0.0 : parseAmountText(line.tax_num);
    }
    sums.supply = roundToLong(supply);
    sums.tax = roundToLong(tax);
    sums.total = roundToLong(supply + tax);
    return sums;
}

void PrintInvoiceSeal(PrintJob& job, const QImage& seal) {
    if (seal.isNull()) return;
    const double x = job.leftMargin() / 12.0 + 3.8;
    job.paintPicture(seal, x, (job.topMargin() + 6.5) / 6, 0.7, 0.7);
    job.paintPicture(seal, x, (job.topMargin() + 41.4) / 6, 0.7, 0.7);
}

int PrintInvoiceCopy(PrintJob& job, const InvoicePrintData& data, const PaperSums& sums, int copy) {
    printHead(job, data, sums, copy);
    printDigitCells(job, sums, copy);
    printRemark(job, data, copy);
    const int printed = printLines(job, data, copy);
    printTotal(job, data, sums, copy);
    return printed;
}

int PrintInvoiceCopies(PrintJob& job, const InvoicePrintData& data) {
    const PaperSums sums = paperSums(data.sheet);
    job.setFontTransparent(true);
    int printed = 0;
    for (int copy = 0; copy < 2; ++copy)
        printed += PrintInvoiceCopy(job, data, sums, copy);
    return printed;
}

namespace invoicelayout {

double digitCellsX(int leftMargin) {
    return (leftMargin + 1) / 12.0 + 0.75 + 1.52;
}

double digitCellsY(double topMargin, int copy) {
    return topMargin / 6 + 0.33 + 5.813 * copy + 2.34;
}

} // namespace invoicelayout

int invoiceLineRow(int i) {
    return i < 2 ? 18 + i : 19 + i;
}

int blankRuleRow(int curLine) {
    return 19 + 2 * curLine;
}

QString phoneNote(const InvoicePrintData& data, int copy) {
    const PrintParty& other = copy == 0 ? data.parties.trader : data.parties.user;
    QString note = copy == 0 ? QStringLiteral("[공급받는자T:") : QStringLiteral("[공급자T:");
    note += other.phone;
    if (!other.fax.isEmpty()) note += QStringLiteral(" F:") + other.fax;
    return note + u']';
}

AddressPlace addressPlace(const QString& addr, bool receiver, double baseSize) {
    const int n = 2 * int(addr.size()); // two bytes per character, as the text is held
    if (n <= 36) return {baseSize, receiver ? 73 : 25};
    if (n > 46) return {baseSize - 3, receiver ? 102 : 35};
    return {baseSize - 2, receiver ? 90 : 30};
}

QString decimalPrintMask(int places) {
    switch (places) {
    case 0:
        return kMaskAmount;
    case 1:
        return kMaskAmount1;
    case 2:
        return kMaskAmount2;
    default:
        return QString();
    }
}

} // namespace nb
