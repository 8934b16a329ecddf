#pragma once
// Issuing a tax invoice (vaBtn2): the checks, the question, the invoice's printer and margins,
// the seal, the number, both copies on one sheet, and for a new invoice one row per printed
// line. An invoice on show (TaxCode filled) is printed again and nothing is stored. The print
// of a stored invoice to a PDF file, without a window, goes the same way.

#include "invoice/InvoiceForm.h"
#include "invoice/InvoicePrint.h"

#include <QImage>
#include <QString>

class QWidget;

namespace nb {

class PrintJob;

struct IssueResult {
    bool printed = false;
    int linesPrinted = 0;  // over both copies
    QString storedTaxCode; // empty when nothing was stored
    FormFocus focus = FormFocus::Unchanged;
};

// The print data of the form: the parties of 검색Snp거래처(txtCCode), the decimal settings in
// force, and everything else from the form.
InvoicePrintData printDataOf(const InvoiceForm& form);

// vaBtn2. On success the form's lines and remark are cleared (clear_input) and txtSeq shows the
// number taken (unless typed by hand); the caller reloads the issued list.
IssueResult IssueInvoice(InvoiceForm& form, const QImage& seal);

// The preview of what vaBtn2 would print now, with the number it would take; nothing is asked,
// numbered, stored or cleared. The same checks as the issue first; their focus comes back.
FormFocus PreviewInvoice(QWidget* parent, InvoiceForm form, const QImage& seal);

// The print of an issued invoice as the screen gives it right after showing it from the list,
// with "날짜 인쇄" on and the stored number as its serial, written to a PDF file. 0 on success;
// otherwise non-zero with a one-line reason.
int PrintStoredInvoiceToPdf(const QString& taxCode, const QString& pdfPath, QString* reason);

} // namespace nb
