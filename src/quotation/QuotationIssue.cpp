#include "quotation/QuotationIssue.h"

#include "common/text/DecimalSettings.h"
#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "invoice/InvoiceSeal.h"
#include "printing/PrintGrid.h"
#include "printing/PrintPreview.h"
#include "printing/PrinterSetup.h"
#include "quotation/EstimateRules.h"
#include "storage/Stores.h"

namespace nb {

void ReadQuotationLines(const QString& code, QList<QuotationLine>& lines) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbEstimate, rs,
                      QStringLiteral("SELECT PName, PNorm, EUnit, EAmount, EUnitPrice, EstiKum FROM Estimate "
                                     "WHERE Code = ? ORDER BY Seq"),
                      {code}))
        return;
    for (; !rs.EOF_(); rs.MoveNext())
        lines.append({rs.text(QStringLiteral("PName")), rs.text(QStringLiteral("PNorm")),
                      rs.text(QStringLiteral("EUnit")), rs.number(QStringLiteral("EAmount")),
                      rs.number(QStringLiteral("EUnitPrice")), rs.number(QStringLiteral("EstiKum"))});
    CloseRs(rs);
}

namespace {

void prepareJob(PrintJob& job) {
    PrinterPrepare(job, true);
    job.setMargins(readDocumentMargins(kQuotationDocument));
    job.setFontTransparent(true);
}

} // namespace

void setLinesTotal(QuotationPrintData& data, bool vatIncluded) {
    const std::optional<QString> total = linesTotEstiKum(data.lines, vatIncluded);
    data.totalOverflow = !total;
    data.TotEstiKum = total.value_or(QString());
}

std::optional<TraderNumbers> ReadTraderNumbers(const QString& code) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("select phone,fax from trader where code = ?"),
                      {code}))
        return std::nullopt;
    TraderNumbers numbers;
    if (!rs.EOF_()) numbers = {rs.text(QStringLiteral("phone")), rs.text(QStringLiteral("fax"))};
    CloseRs(rs);
    return numbers;
}

std::optional<QuotationPrintData> ReadQuotationPrintData(const QString& code) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbEstimate, rs, QStringLiteral("SELECT * FROM EstiBase WHERE EstiCode = ?"),
                      {code}))
        return std::nullopt;
    if (rs.EOF_()) return std::nullopt;
    QuotationPrintData d;
    d.code = code;
    d.date = rs.text(QStringLiteral("EstiDate"));
    d.deriveDate = rs.text(QStringLiteral("DeriveDate"));
    d.className = rs.text(QStringLiteral("ClassName"));
    d.receiver = rs.text(QStringLiteral("CName"));
    d.refer = rs.text(QStringLiteral("Refer"));
    d.validate = rs.text(QStringLiteral("Validate"));
    d.section = rs.text(QStringLiteral("Section"));
    const bool vat = rs.flag(QStringLiteral("Vat"));
    const QString traderCode = rs.text(QStringLiteral("CCode"));
    CloseRs(rs);
    if (const auto numbers = ReadTraderNumbers(traderCode)) {
        d.Phone = numbers->phone;
        d.ClientFax = numbers->fax;
    }
    d.supplier = ReadPrintParties(stores().dbBasic, traderCode, app().DefaultSerial).user;
    ReadQuotationLines(code, d.lines);
    setLinesTotal(d, vat);
    d.decimals = app().DecimalQty;
    return d;
}

bool PrintQuotationJob(const QuotationPrintData& data) {
    SelectDocPrinter(kQuotationDocument);
    std::unique_ptr<PrintJob> job = startPrintJob(kQuotationDocument);
    if (!job) {
        RestorePrinter();
        return false;
    }
    prepareJob(*job);
    PrintQuotation(*job, data, loadSealImage());
    job->endDoc();
    RestorePrinter();
    return true;
}

void PreviewQuotation(QWidget* parent, const QuotationPrintData& data) {
    showPrintPreview(parent, kQuotationDocument, [data](PrintJob& job) {
        prepareJob(job);
        PrintQuotation(job, data, loadSealImage());
    });
}

int PrintStoredQuotationToPdf(const QString& code, const QString& pdfPath, QString* reason) {
    auto fail = [&](const QString& why) {
        if (reason) *reason = why;
        return 1;
    };
    if (!OpenDb(stores().dbEstimate, app().DbEstimateFile))
        return fail(QStringLiteral("견적서 자료 파일을 열 수 없습니다: ") + app().DbEstimateFile);
    ApplyDecimalSettings(ReadDecimalSettings());
    const std::optional<QuotationPrintData> data = ReadQuotationPrintData(code);
    if (!data) return fail(QStringLiteral("견적서 %1 이(가) 없습니다.").arg(code));
    if (data->totalOverflow)
        return fail(QStringLiteral("견적서 %1 의 합계가 너무 커서(32비트 정수 범위 초과) 인쇄할 수 없습니다.")
                        .arg(code));
    std::unique_ptr<PrintSurface> surface = makePdfSurface(pdfPath);
    if (!surface) return fail(QStringLiteral("PDF 파일을 만들 수 없습니다: ") + pdfPath);
    PrintJob job(std::move(surface), kPdfPrinterName, kQuotationDocument);
    prepareJob(job);
    PrintQuotation(job, *data, loadSealImage());
    if (!job.endDoc()) return fail(QStringLiteral("PDF 파일을 끝까지 쓰지 못했습니다: ") + pdfPath);
    return 0;
}

} // namespace nb
