#include "statement/StatementPrint.h"

#include "common/Messages.h"
#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "printing/PrintJob.h"
#include "statement/StatementFrame.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <cmath>

namespace nb {

namespace {

using namespace deallayout;

const QString kForm = QStringLiteral("FrmDealList");

// "[공급받는자T:051-234 F:051-235]": a party's telephone note, the fax only when there is one.
QString phoneNote(const QString& head, const PrintParty& party) {
    QString note = head + party.phone;
    if (!party.fax.isEmpty()) note += QStringLiteral(" F:") + party.fax;
    return note + u']';
}

void printField(PrintJob& job, const StatementField& field) {
    job.setFontSize(field.size);
    job.setFontBold(field.bold);
    job.printAtTab(field.row, field.tab, field.text);
}

void printSeal(PrintJob& job, const QImage& seal) {
    if (seal.isNull()) return;
    const double x = job.leftMargin() / 12.0 + kSealX;
    for (double row : kSealRows)
        job.paintPicture(seal, x, (std::floor(job.topMargin()) + row) / 6, kSealSize, kSealSize);
}

// Print_Data_Ink1B_Head: the seal, then both copies of the head.
void printHead(PrintJob& job, const StatementPrintData& data, const StatementParties& parties,
               bool& longMemo) {
    job.setFontTransparent(true);
    printSeal(job, data.seal);
    for (int copy = 0; copy < 2; ++copy)
        for (const StatementField& field : headFields(data, parties, copy, longMemo))
            printField(job, field);
}

// Print_Data_Ink1B_Total: the five sums of both copies on row 30.
void printTotal(PrintJob& job, const StatementPrintData& data) {
    job.setFontSize(kTotalSize);
    job.setFontBold(true);
    for (int copy = 0; copy < 2; ++copy)
        for (const TotalField& field : totalFields(data, job.leftMargin()))
            job.printAt(field.x, job.rowY(kTotalRow + kCopyRows * copy), field.text);
    job.setFontBold(false);
}

void printMoreSheets(PrintJob& job, int page) {
    job.setFontSize(kHeadSize);
    job.setFontBold(false);
    const QString text = QStringLiteral("- 뒷장있음(") + QString::number(page) + QStringLiteral(")-");
    job.printAtTab(1, kMoreSheetsTab, text);
    job.printAtTab(1 + kCopyRows, kMoreSheetsTab, text);
}

QString quantityText(double value, int places) {
    return FormatNumber(value, GetDecFormat(places, true, false));
}

} // namespace

std::optional<StatementParties> ReadStatementParties(Database& dbBasic, const QString& cCode,
                                                     const QString& supplierSerial) {
    Recordset trader;
    Recordset user;
    if (!OpenSnapshot(dbBasic, trader, QStringLiteral("Select * from Trader where Code = ?"), {cCode}))
        return std::nullopt;
    const bool userRead =
        supplierSerial.isEmpty()
            ? OpenSnapshot(dbBasic, user, QStringLiteral("Select * from User"))
            : OpenSnapshot(dbBasic, user, QStringLiteral("Select * from User where serial = ?"),
                           {supplierSerial});
    if (!userRead) return std::nullopt;
    if (trader.EOF_() || user.EOF_()) {
        ShowFormFailureReport(3021, QStringLiteral("No current record."),
                              QStringLiteral("Print_Data_Ink1B_Head"), kForm);
        return std::nullopt;
    }
    StatementParties parties{printPartyOf(user, false), printPartyOf(trader, true)};
    CloseRs(trader);
    CloseRs(user);
    return parties;
}

QList<StatementField> headFields(const StatementPrintData& data, const StatementParties& parties, int copy,
                                 bool& longMemo) {
    const double base = kCopyRows * copy;
    const PrintParty& user = parties.supplier;
    const PrintParty& trader = parties.trader;
    QList<StatementField> fields;
    fields.append({base + 3, 16, data.dateText, kHeadSize, false});
    if (data.printPhone)
        fields.append({base + 1, 9,
                       copy == 0 ? phoneNote(QStringLiteral("[공급받는자T:"), trader)
                                 : phoneNote(QStringLiteral("[공급자T:"), user),
                       kHeadSize, false});
    if (!data.memo.trimmed().isEmpty()) {
        fields.append({base + 1, 51, data.memo, kHeadSize, false});
        if (ByteLen(data.memo) > 28) longMemo = true;
    }
    fields.append({base + 5, 20, user.serial, kSerialSize, true});
    fields.append({base + 5, 65, trader.serial, kSerialSize, true});
    fields.append({base + 7, 15, user.company, ByteLen(user.company) > 28 ? 9.0 : kHeadSize, false});
    fields.append({base + 7, 45, user.delegate, kHeadSize, false});
    fields.append({base + 7, 63, trader.company, ByteLen(trader.company) > 30 ? 9.0 : kHeadSize, false});
    fields.append({base + 7, 95, trader.delegate, kHeadSize, false});
    fields.append({base + 9, 15, user.addr, kHeadSize, false});
    fields.append({base + 9, 63, trader.addr, kHeadSize, false});
    fields.append({base + 11, 15, user.status, kHeadSize, false});
    fields.append({base + 11, 39, user.item, kHeadSize, false});
    fields.append({base + 11, 63, trader.status, kHeadSize, false});
    fields.append({base + 11, 87, trader.item, kHeadSize, false});
    return fields;
}

QList<StatementField> lineFields(const StatementPrintData& data, const StatementLine& line, double row) {
    return {
        {row, kPName.tab, CutBytes(line.pName, kPName.width), kHeadSize, false},
        {row, kUnit.tab, CutBytes(line.unit, kUnit.width), kHeadSize, false},
        {row, kQuant.tab, PadBytes(quantityText(line.quant, data.decimalQty), kQuant.width), kHeadSize,
         false},
        {row, kPrice.tab, PadBytes(quantityText(line.price, data.decimalPrice), kPrice.width), kHeadSize,
         false},
        {row, kAmount.tab, PadBytes(FormatNumber(line.amount, kMaskStatementPrint), kAmount.width), kHeadSize,
         false},
        {row, kVat.tab, PadBytes(FormatNumber(line.vat, kMaskStatementPrint), kVat.width), kHeadSize, false},
    };
}

QList<TotalField> totalFields(const StatementPrintData& data, int leftMargin) {
    const QString won = QStringLiteral("\\");
    const QString preText = data.printBalance ? PadBytes(won + data.preMisu, 15) : QString();
    const QString misuText = data.printBalance ? PadBytes(won + data.misu, 15) : QString();
    const QString vatText = data.se == u"0" ? QString() : won + data.se;
    const double x0 = leftMargin / 12.0 + 0.5;
    return {
        {x0 + 0.6, PadBytes(won + data.gong, 13)},
        {x0 + 2.0, PadBytes(vatText, 14)},
        {x0 + 3.3, PadBytes(won + data.sum, 14)},
        {x0 + 4.6, preText},
        {x0 + 6.0, misuText},
    };
}

bool Print_Data_Ink1B(PrintJob& job, const StatementPrintData& data, bool printFrame) {
    const std::optional<StatementParties> parties =
        ReadStatementParties(stores().dbBasic, data.cCode, data.supplierSerial);
    if (!parties) return false;
    int page = 1;
    int rowOnPage = 0;
    bool longMemo = false;
    // The frame and the head are drawn once for every line, each time over themselves.
    auto frameAndHead = [&] {
        if (printFrame) Print_Form_DealList_A4Half(job, job.leftMargin(), job.topMargin());
        printHead(job, data, *parties, longMemo);
    };
    for (const StatementLine& line : data.lines) {
        frameAndHead();
        if (++rowOnPage == kLinesPerSheet + 1) {
            if (page == 1) printTotal(job, data);
            if (!longMemo) printMoreSheets(job, page);
            job.newPage();
            ++page;
            frameAndHead();
            rowOnPage = 1;
        }
        for (int copy = 0; copy < 2; ++copy)
            for (const StatementField& field : lineFields(data, line, rowOnPage + 14 + kCopyRows * copy))
                printField(job, field);
    }
    if (page == 1) printTotal(job, data);
    job.setFontTransparent(false);
    return true;
}

} // namespace nb
