#include "statement/StatementIssue.h"

#include "common/Messages.h"
#include "common/text/DecimalSettings.h"
#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "core/Settings.h"
#include "printing/PrintGrid.h"
#include "printing/PrintPreview.h"
#include "printing/PrinterSetup.h"
#include "statement/StatementSeal.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QDate>

namespace nb {

namespace {

// What the issue does on the job before the sheets: the base font, the document's margins.
void prepareJob(PrintJob& job) {
    PrinterPrepare(job, false);
    job.setMargins(readDocumentMargins(kStatementDocument));
}

bool settingOn(const QString& key, const QString& defaultValue) {
    return GetSetting(kAppSection, kEnvSection, key, defaultValue) != u"0";
}

} // namespace

bool printFrameSetting() {
    return settingOn(kPrintFrameKey, QStringLiteral("0"));
}

void savePrintFrameSetting(bool on) {
    SaveSetting(kAppSection, kEnvSection, kPrintFrameKey, on ? QStringLiteral("1") : QStringLiteral("0"));
}

bool IssueStatement(const StatementPrintData& data, int dataRowCount, bool printFrame) {
    if (dataRowCount <= 1) {
        ShowWarning(QStringLiteral("발행할 내역이 없습니다."));
        return false;
    }
    if (AskYesNo(QStringLiteral("발행하시겠습니까?"), QStringLiteral("거래명세표 발행")) != AnsYes)
        return false;
    SelectDocPrinter(kStatementDocument);
    std::unique_ptr<PrintJob> job = startPrintJob(kStatementDocument);
    if (!job) {
        RestorePrinter();
        return false;
    }
    prepareJob(*job);
    const bool printed = Print_Data_Ink1B(*job, data, printFrame);
    job->setFontTransparent(false);
    job->endDoc();
    RestorePrinter();
    return printed;
}

void PreviewStatement(QWidget* parent, const StatementPrintData& data, bool printFrame) {
    showPrintPreview(parent, kStatementDocument, [data, printFrame](PrintJob& job) {
        prepareJob(job);
        Print_Data_Ink1B(job, data, printFrame);
    });
}

std::optional<StatementPrintData> storedStatementPrintData(const QString& billNo, QString* reason) {
    auto fail = [&](const QString& why) {
        if (reason) *reason = why;
        return std::nullopt;
    };
    if (!stores().dbBill.isOpen())
        return fail(QStringLiteral("거래명세표 자료 파일을 열지 못해 인쇄하지 않았습니다: ") +
                    app().DbBillFile);
    Recordset rs;
    if (!OpenSnapshot(stores().dbBill, rs,
                      QStringLiteral("SELECT BillDate, CCode FROM Master WHERE BillNo = ?"), {billNo}) ||
        rs.EOF_())
        return fail(QStringLiteral("거래명세표 %1 이(가) 없습니다.").arg(billNo));
    StatementPrintData data;
    data.cCode = rs.text(QStringLiteral("CCode"));
    const QDate date = QDate::fromString(rs.text(QStringLiteral("BillDate")), Qt::ISODate);
    data.dateText = date.toString(QStringLiteral("yyyy년MM월dd일"));
    CloseRs(rs);
    // A statement whose lines cannot be read is not printed as an empty one.
    std::optional<QList<StatementLine>> lines = ReadStatementLines(stores().dbBill, billNo);
    if (!lines)
        return fail(QStringLiteral("거래명세표 %1 의 품목을 읽지 못해 인쇄하지 않았습니다.").arg(billNo));
    data.lines = std::move(*lines);
    double gong = 0, se = 0;
    for (const StatementLine& line : data.lines) {
        gong += line.amount;
        se += line.vat;
    }
    data.gong = FormatNumber(gong, kMaskSum);
    data.se = FormatNumber(se, kMaskSum);
    data.sum = FormatNumber(gong + se, kMaskSum);
    data.preMisu = QStringLiteral("0");
    data.misu = data.sum;
    data.supplierSerial = app().DefaultSerial;
    data.printPhone = settingOn(QStringLiteral("명세서전화번호"), QStringLiteral("0"));
    data.printBalance = settingOn(QStringLiteral("명세서미수금"), QStringLiteral("1"));
    const StatementSeal seal = readStatementSeal();
    data.seal = seal.image;
    const DecimalSettings places = ReadDecimalSettings();
    data.decimalQty = places.qty;
    data.decimalPrice = places.price;
    return data;
}

int PrintStoredStatementToPdf(const QString& billNo, const QString& pdfPath, bool printFrame,
                              QString* reason) {
    auto fail = [&](const QString& why) {
        if (reason) *reason = why;
        return 1;
    };
    QString unread;
    const std::optional<StatementPrintData> data = storedStatementPrintData(billNo, &unread);
    if (!data) return fail(unread);
    std::unique_ptr<PrintSurface> surface = makePdfSurface(pdfPath);
    if (!surface) return fail(QStringLiteral("PDF 파일을 만들 수 없습니다: ") + pdfPath);
    PrintJob job(std::move(surface), kPdfPrinterName, kStatementDocument);
    prepareJob(job);
    if (!Print_Data_Ink1B(job, *data, printFrame))
        return fail(QStringLiteral("거래명세표 %1 의 거래처나 공급자를 읽지 못했습니다.").arg(billNo));
    if (!job.endDoc()) return fail(QStringLiteral("PDF 파일을 끝까지 쓰지 못했습니다: ") + pdfPath);
    return 0;
}

} // namespace nb
