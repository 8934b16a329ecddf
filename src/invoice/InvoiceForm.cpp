#include "invoice/InvoiceForm.h"

#include "common/Messages.h"
#include "invoice/InvoiceStore.h"

#include <QRegularExpression>

namespace nb {

void InvoiceForm::setTaxCode(const QString& code) {
    TaxCode = code;
    if (!manualSeq) txtSeq = serialFromTaxCode(code);
}

SaveResult SaveInvoice(InvoiceForm& form, Database& dbTax) {
    const QString nothingToSave = QStringLiteral("저장할 내역이 없습니다.");
    if (!form.TaxCode.isEmpty()) {
        ShowWarning(nothingToSave);
        return {};
    }
    if (form.txtCCode.isEmpty()) {
        ShowWarning(QStringLiteral("매출처를 입력하여 주세요"));
        return {false, QString(), FormFocus::CName_MAE};
    }
    if (form.sheet.line(0).tax_num.isEmpty()) {
        ShowWarning(nothingToSave);
        return {false, QString(), FormFocus::Pummok0};
    }
    const InvoiceHead head{form.txtCCode, form.dealDate(), form.bigo, form.serialUser, form.youngsu};
    const std::optional<QString> code = StoreNewInvoice(dbTax, head, linesToSave(form.sheet));
    if (!code) return {};
    return {true, *code, FormFocus::Pummok0};
}

QStringList remarkPrintLines(const QString& remark) {
    if (remark.isEmpty()) return {};
    const QStringList lines = remark.split(QRegularExpression(QStringLiteral("\r\n|\n|\r")));
    return lines.mid(0, 2);
}

} // namespace nb
