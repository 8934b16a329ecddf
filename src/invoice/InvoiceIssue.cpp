#include "invoice/InvoiceIssue.h"

#include "common/Messages.h"
#include "common/text/DecimalSettings.h"
#include "core/AppState.h"
#include "core/Settings.h"
#include "invoice/InvoiceSeal.h"
#include "invoice/InvoiceStore.h"
#include "printing/PrintGrid.h"
#include "printing/PrintPreview.h"
#include "printing/PrinterSetup.h"
#include "storage/Stores.h"

namespace nb {

namespace {

const QString kInvoiceDocument = QStringLiteral("세금계산서");

bool confirmIssue() {
    return MsgBox(QStringLiteral("발행하시겠습니까?"), MbYesNo | MbQuestion,
                  QStringLiteral("세금계산서 발행")) == AnsYes;
}

void prepareJob(PrintJob& job, const QImage& seal) {
    PrinterPrepare(job, true);
    job.setMargins(readDocumentMargins(kInvoiceDocument));
    job.setFontTransparent(true);
    PrintInvoiceSeal(job, seal);
}

// Prints both copies; a text that is no number stops the print with the run-time's report.
std::optional<int> printCopies(PrintJob& job, const InvoicePrintData& data) {
    try {
        return PrintInvoiceCopies(job, data);
    } catch (const InvoiceArithmeticError& e) {
        ShowFailureReport(e.number(), e.description(), QStringLiteral("vaBtn2_Click"),
                          QStringLiteral("FrmTax"));
        return std::nullopt;
    }
}

} // namespace

InvoicePrintData printDataOf(const InvoiceForm& form) {
    InvoicePrintData data;
    data.sheet = form.sheet;
    data.txtSeq = form.txtSeq;
    data.parties = ReadPrintParties(stores().dbBasic, form.txtCCode, form.userSerial);
    data.writeYY = form.writeYY;
    data.writeMM = form.writeMM;
    data.writeDD = form.writeDD;
    data.printDate = form.printDate;
    data.printPhone = form.printPhone;
    data.bigo = form.bigo;
    data.youngsu = form.youngsu;
    data.decimalQty = app().DecimalQty;
    data.decimalPrice = app().DecimalPrice;
    return data;
}

namespace {

// The checks before a print: a receiver and a first line; where the focus goes when one fails.
std::optional<FormFocus> refuseToPrint(const InvoiceForm& form) {
    if (form.txtCCode.isEmpty()) {
        ShowWarning(QStringLiteral("매출처를 입력하여 주세요"));
        return FormFocus::CName_MAE;
    }
    if (form.sheet.line(0).tax_num.isEmpty()) {
        ShowWarning(QStringLiteral("출력할 자료를 확인해 주세요"));
        return FormFocus::Pummok0;
    }
    return std::nullopt;
}

} // namespace

FormFocus PreviewInvoice(QWidget* parent, InvoiceForm form, const QImage& seal) {
    if (const std::optional<FormFocus> focus = refuseToPrint(form)) return *focus;
    const std::optional<QString> code = NextTaxCode(stores().dbTax); // read only: nothing is taken
    if (!code) return FormFocus::Unchanged;
    if (!form.manualSeq) form.txtSeq = code->left(3) + u'-' + code->right(3);
    const InvoicePrintData data = printDataOf(form);
    showPrintPreview(parent, kInvoiceDocument, [data, seal](PrintJob& job) {
        prepareJob(job, seal);
        printCopies(job, data);
    });
    return FormFocus::Unchanged;
}

IssueResult IssueInvoice(InvoiceForm& form, const QImage& seal) {
    if (const std::optional<FormFocus> focus = refuseToPrint(form)) return {false, 0, QString(), *focus};
    if (!confirmIssue()) return {};
    // The number is read before the job starts, so that a failed read leaves no sheet behind.
    std::optional<QString> code = NextTaxCode(stores().dbTax);
    if (!code) return {};
    SelectDocPrinter(kInvoiceDocument);
    std::unique_ptr<PrintJob> job = startPrintJob(kInvoiceDocument);
    if (!job) {
        RestorePrinter();
        return {};
    }
    prepareJob(*job, seal);
    // A new invoice is stored before its paper is drawn: its number is taken inside the save,
    // so another running copy cannot print the same number, and no paper has no rows behind it.
    QString stored;
    if (form.TaxCode.isEmpty()) {
        const InvoiceHead head{form.txtCCode, form.dealDate(), form.bigo, form.serialUser, form.youngsu};
        code = StoreNewInvoice(stores().dbTax, head, printableLines(form.sheet));
        if (!code) {
            RestorePrinter();
            return {};
        }
        stored = *code;
    }
    if (!form.manualSeq) form.txtSeq = code->left(3) + u'-' + code->right(3);
    const InvoicePrintData data = printDataOf(form);
    const std::optional<int> printed = printCopies(*job, data);
    if (!printed) {
        RestorePrinter();
        return {false, 0, stored, FormFocus::Unchanged};
    }
    IssueResult result{true, *printed, stored, FormFocus::Unchanged};
    form.clearInput();
    job->setFontTransparent(false);
    job->endDoc();
    RestorePrinter();
    return result;
}

int PrintStoredInvoiceToPdf(const QString& taxCode, const QString& pdfPath, QString* reason) {
    auto fail = [&](const QString& why) {
        if (reason) *reason = why;
        return 1;
    };
    const std::optional<IssuedInvoice> invoice = ReadIssuedInvoice(stores().dbTax, taxCode);
    if (!invoice) return fail(QStringLiteral("세금계산서 %1 이(가) 없습니다.").arg(taxCode));
    ApplyDecimalSettings(ReadDecimalSettings());
    InvoiceForm form;
    form.txtCCode = invoice->cCode;
    const WritingDate date = writingDateOf(invoice->dealDate);
    form.writeYY = date.yy;
    form.writeMM = date.mm;
    form.writeDD = date.dd;
    form.bigo = invoice->remark;
    if (!invoice->receipt.isEmpty()) form.youngsu = invoice->receipt; // older invoices print 영수
    form.printDate = true;
    form.printPhone = GetEnv(QStringLiteral("계산서전화번호"), QStringLiteral("0")) == u"1";
    form.txtSeq = serialFromTaxCode(invoice->taxCode);
    try {
        ShowIssuedInvoice(form.sheet, *invoice);
        std::unique_ptr<PrintSurface> surface = makePdfSurface(pdfPath);
        if (!surface) return fail(QStringLiteral("PDF 파일을 만들 수 없습니다: ") + pdfPath);
        PrintJob job(std::move(surface), kPdfPrinterName, kInvoiceDocument);
        prepareJob(job, loadSealImage());
        PrintInvoiceCopies(job, printDataOf(form));
        if (!job.endDoc()) return fail(QStringLiteral("PDF 파일을 끝까지 쓰지 못했습니다: ") + pdfPath);
    } catch (const InvoiceArithmeticError& e) {
        return fail(QStringLiteral("세금계산서 %1: %2").arg(taxCode, e.description()));
    }
    return 0;
}

} // namespace nb
