#pragma once
// What FrmTax holds besides its boxes' looks: the lines, the receiver's code, the number of an
// invoice on show, the writing date, the remark and the print choices. The screen copies its
// controls into an InvoiceForm, runs a rule on it and copies the result back, so every rule
// here is checked without a window.

#include "invoice/InvoiceAmounts.h"

#include <QString>

namespace nb {

class Database;

// Where a rule sends the focus afterwards.
enum class FormFocus { Unchanged, CName_MAE, Pummok0, Grid };

struct InvoiceForm {
    InvoiceSheet sheet;
    QString txtCCode; // the receiver's Trader.Code
    QString TaxCode;  // the number of the invoice on show; empty while a new one is written
    QString txtSeq = QStringLiteral("000-000");
    bool manualSeq = false; // chkManualSeq: txtSeq is typed, not taken from the number
    QString writeYY, writeMM, writeDD;
    QString bigo;
    QString youngsu = QStringLiteral("영수");
    QString serialUser;      // Serial_user: the supplier on the screen, stored as UserCode
    QString userSerial;      // UserSerial: the supplier another screen asked for; the print follows it
    bool printDate = true;   // chkPrnDate
    bool printPhone = false; // chk_Phone

    QString writeMmDd() const { return writeMM + u'-' + writeDD; }
    QString dealDate() const { return writeYY + u'-' + writeMM + u'-' + writeDD; }
    // clear_input: the lines, bigo, Sum_num and the digit cells; CurLine, the receiver and
    // TaxCode stay.
    void clearInput() {
        sheet.clearLines();
        bigo.clear();
    }
    // TaxCode changes; txtSeq follows unless it is typed by hand.
    void setTaxCode(const QString& code);
};

// The result of SaveInvoice.
struct SaveResult {
    bool saved = false;
    QString taxCode;
    FormFocus focus = FormFocus::Unchanged;
};

// btnSave's store without print: refuses an invoice on show, a missing receiver or an empty
// first tax with their messages; otherwise stores lines 0 to CurLine up to the first line
// lacking its trade date or tax, under the next number.
SaveResult SaveInvoice(InvoiceForm& form, Database& dbTax);

// The remark as the paper shows it: cut at its first line break into at most two lines.
QStringList remarkPrintLines(const QString& remark);

} // namespace nb
