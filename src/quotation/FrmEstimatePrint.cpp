// FrmEstimate: btnPrint and btnPreview, the quotation on show with the total of its lines.
#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "common/text/StoredNumber.h"
#include "core/AppState.h"
#include "quotation/FrmEstimate.h"
#include "quotation/QuotationIssue.h"
#include "storage/Stores.h"

#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

namespace nb {

// What 인쇄 prints now; nothing when there is nothing to print (its message shown).
std::optional<QuotationPrintData> FrmEstimate::printData() {
    if (txtCCode->text().isEmpty()) return std::nullopt;
    // A failed read of the trader has shown the query's box; the print stops there.
    const std::optional<TraderNumbers> numbers = ReadTraderNumbers(txtCCode->text());
    if (!numbers) return std::nullopt;
    if (m_lineCount == 0) {
        MsgBox(QStringLiteral("등록된 견적 내역이 없습니다. 견적 내역을 등록하신 후 인쇄를 하십시요."));
        return std::nullopt;
    }
    std::optional<QuotationPrintData> data = ReadQuotationPrintData(pnlCode->text().trimmed());
    if (!data) { // lines whose head was never stored: the head as the screen shows it
        data.emplace();
        data->code = pnlCode->text().trimmed();
        data->date = txtDate[0]->dateText();
        data->deriveDate = txtDate[1]->dateText();
        data->receiver = txtinput[0]->text();
        data->className = txtinput[1]->text();
        data->refer = txtinput[2]->text();
        data->validate = txtinput[4]->text();
        data->section = txtinput[5]->text();
        data->supplier = ReadPrintParties(stores().dbBasic, txtCCode->text(), app().DefaultSerial).user;
        ReadQuotationLines(data->code, data->lines);
    }
    // The total is worked out from the lines, as the screen works it out, whatever the total box
    // was typed over with.
    setLinesTotal(*data, OptVat[0]->isChecked());
    if (data->totalOverflow) {
        ShowOverflow(QStringLiteral("btnPrint_Click"), QStringLiteral("FrmEstimate"), ReportOwner::Form);
        return std::nullopt;
    }
    data->Phone = numbers->phone;
    data->ClientFax = numbers->fax;
    data->decimals = app().DecimalQty;
    return data;
}

void FrmEstimate::btnPrint_Click() {
    const std::optional<QuotationPrintData> data = printData();
    if (!data) return;
    PrintQuotationJob(*data);
    grdEstimate->SetActiveCell(1, 1);
    grdEstimate->setEditModePermanent(true);
}

// 미리보기: exactly what 인쇄 would print now, on the screen; nothing is printed or stored.
void FrmEstimate::btnPreview_Click() {
    if (const std::optional<QuotationPrintData> data = printData()) PreviewQuotation(this, *data);
}

} // namespace nb
