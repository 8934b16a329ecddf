// FrmDealList: the lines typed into spDetail. Each finished cell is stored at once: a product
// text on the pending row makes a new line (and with the first line its statement), any other
// cell changes one field of its line. After a product the line fills itself (quantity 1, unit
// and price of the product, amount and VAT); a change of quantity or price works amount and
// VAT out anew, by the VAT mode the line already has.
#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "common/text/StoredNumber.h"
#include "core/Settings.h"
#include "invoice/InvoiceAmounts.h"
#include "invoice/InvoiceLookups.h"
#include "master/ProductRecords.h"
#include "statement/FrmDealList.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QLineEdit>
#include <QRadioButton>

namespace nb {

namespace {

const QString kFreeTextCode = QStringLiteral("000000");

bool isNumberColumn(int col) {
    return col >= ColQuant && col <= ColVat;
}

} // namespace

QString FrmDealList::cell(int col, int row) const {
    return spDetail->Text(col, row);
}

double FrmDealList::cellValue(int col, int row) const {
    return spDetail->Value(col, row);
}

void FrmDealList::setCell(int col, int row, const QString& text) {
    spDetail->SetText(col, row, text);
}

void FrmDealList::setLineCell(int col, int row, double value) {
    setCell(col, row, plainNumberText(value));
}

void FrmDealList::DetailRowUnlock(int row) {
    for (int col = ColPName; col <= ColVat; ++col)
        spDetail->SetLock(col, row, false);
}

// The row after the last line becomes the one where a new line is typed.
void FrmDealList::DetailRowAppend() {
    const int pending = int(m_model.lines().size()) + 1;
    if (pending > spDetail->MaxRows()) spDetail->setMaxRows(pending);
    DetailRowUnlock(pending);
    setCell(ColBillSeq, pending, QStringLiteral("0"));
}

// ---- a cell is left --------------------------------------------------------------------------------

void FrmDealList::onDetailEditMode(int col, int row, int mode, bool changeMade) {
    if (m_listing) return;
    if (mode == 1) {
        m_oldCellText = cell(col, row);
        m_enterInEdit = false;
        return;
    }
    QString text = cell(col, row);
    const bool search = text.isEmpty() && col == ColPName && m_enterInEdit;
    if (!changeMade && !search) return;
    if (col == ColPName && !productSearch(row, text)) {
        setCell(col, row, m_oldCellText);
        return;
    }
    if (row == m_model.dataRowCount() && m_model.hasPendingRow()) {
        if (col != ColPName) {
            // The typed text stays where it is; the cursor goes to where a line begins.
            ShowInfo(QStringLiteral("품목을 먼저 입력하세요."));
            spDetail->SetActiveCell(ColPName, row);
            spDetail->setFocus();
            return;
        }
        if (!insertLine(row, text)) {
            setCell(col, row, m_oldCellText);
            return;
        }
    } else {
        const QVariant value = isNumberColumn(col) ? QVariant(NumberFromText(text)) : QVariant(text);
        // A quantity or price whose line amount the store cannot hold is refused before it is
        // stored, so the line never keeps a quantity its amount does not follow.
        const double other = col == ColQuant   ? cellValue(ColPrice, row)
                             : col == ColPrice ? cellValue(ColQuant, row)
                                               : 0;
        if (!checkStoredNumber(value.toDouble() * other, NumberColumn::Amount, QStringLiteral("DetailUpdate"),
                               QStringLiteral("FrmDealList"), ReportOwner::Form) ||
            !updateCell(col, row, spDetail->ColID(col), value)) {
            setCell(col, row, m_oldCellText);
            return;
        }
    }
    if (SelectedBillSeq(row) < 1) return;
    if (col == ColPName)
        chainAfterProduct(row);
    else if (col == ColQuant || col == ColPrice)
        recalcAfterEdit(col, row);
}

void FrmDealList::onDetailLeaveCell(int col, int row, int newCol, int newRow, bool& cancel) {
    if (m_listing) return;
    const int count = m_model.dataRowCount();
    if (row != newRow && newRow > 0) {
        // A new line can only be begun in its first column.
        if (newRow == count && newCol != ColPName && cell(ColPName, newRow).isEmpty()) {
            cancel = true;
            spDetail->SetActiveCell(ColPName, newRow);
        }
        return;
    }
    // Enter on a filled quantity or on the price goes on to the next line.
    if (row == newRow && row == count - 1 && m_enterInEdit &&
        ((col == ColQuant && cellValue(ColPrice, row) != 0) || col == ColPrice)) {
        cancel = true;
        spDetail->SetActiveCell(ColPName, row + 1);
    }
}

// ---- the product of a line -----------------------------------------------------------------------

// The list of products for the typed text, or the offer to register one. False when the choice
// was cancelled; otherwise text is what the line stores (the product's name, or the typed text
// for a free-text line).
bool FrmDealList::productSearch(int row, QString& text) {
    txtPCode->clear();
    if (invoiceLookups().productList) {
        std::unique_ptr<SearchList> list = invoiceLookups().productList(this);
        const int result = list->InitForm(txtPCode, text, txtCCode->text(), 1);
        if (result == 0) {
            const QString question = (text.isEmpty() ? QStringLiteral("등록된 상품이 없습니다. ")
                                                     : QStringLiteral("검색된 상품이 없습니다. ")) +
                                     QStringLiteral("\r\n\r\n상품을 등록하시겠습니까?    ");
            if (MsgBox(question, MbOkCancel | MbQuestion, QStringLiteral("상품 검색")) == AnsCancel)
                txtPCode->setText(kFreeTextCode);
            else if (invoiceLookups().newProduct)
                invoiceLookups().newProduct(this, txtPCode, text, txtDate->text(), spDetail);
        } else {
            // Only a choice in the list counts: the one product it found on its own is taken
            // back, so closing the list with 닫기 or Esc chooses nothing.
            txtPCode->clear();
            list->showBelow(spDetail);
        }
    }
    spDetail->setFocus();
    if (txtPCode->text().isEmpty()) return false;
    if (txtPCode->text() != kFreeTextCode) {
        text = GetProductName(txtPCode->text());
        setCell(ColPName, row, text);
    }
    return true;
}

bool FrmDealList::insertLine(int row, const QString& text) {
    m_model.setDateBox(txtDate->text());
    const int before = m_model.masterCount();
    if (!m_model.insertLine(text)) return false;
    if (m_model.masterCount() > before) { // the first line brought its statement into the list
        m_listing = true;
        spMaster->SetActiveCell(ColBillDate, m_model.activeMasterRow());
        m_listing = false;
        MasterTotalShow();
    }
    const StatementLine& line = m_model.lines().last();
    setCell(ColBillNo, row, line.billNo);
    setCell(ColBillSeq, row, QString::number(line.billSeq));
    m_lastSavedCCode = txtCCode->text();
    DetailRowAppend();
    return true;
}

bool FrmDealList::updateCell(int col, int row, const QString& field, const QVariant& value) {
    Q_UNUSED(col);
    m_model.setActiveDetailRow(row);
    if (!m_model.updateField(field, value)) return false;
    const QString upper = field.toUpper();
    if (upper == u"AMOUNT" || upper == u"VAT") {
        showTotals();
        PeriodTotalShow();
    }
    return true;
}

// Quantity 1 when there is none, the product's unit and price, then amount and VAT.
void FrmDealList::chainAfterProduct(int row) {
    if (txtPCode->text().isEmpty()) return;
    const double oldQuant = cellValue(ColQuant, row);
    const double oldPrice = cellValue(ColPrice, row);
    if (cellValue(ColQuant, row) == 0 && updateCell(ColQuant, row, QStringLiteral("Quant"), 1.0))
        setCell(ColQuant, row, QStringLiteral("1"));
    Recordset rs;
    if (OpenSnapshot(stores().dbBasic, rs,
                     QStringLiteral("SELECT SalePrice, Unit From Product WHERE Code = ?"),
                     {txtPCode->text()}) &&
        !rs.EOF_()) {
        const QString unit = rs.text(QStringLiteral("Unit"));
        if (!unit.isEmpty() && updateCell(ColUnit, row, QStringLiteral("unit"), unit))
            setCell(ColUnit, row, unit);
        if (!rs.isNull(QStringLiteral("SalePrice"))) {
            const double price = rs.number(QStringLiteral("SalePrice"));
            if (updateCell(ColPrice, row, QStringLiteral("Price"), price)) setLineCell(ColPrice, row, price);
        }
    }
    CloseRs(rs);
    applyLineAmounts(row, oldQuant, oldPrice);
    txtPCode->clear();
    if (row == m_model.dataRowCount() - 1) spDetail->SetActiveCell(ColQuant, row);
}

void FrmDealList::recalcAfterEdit(int col, int row) {
    const double old = NumberFromText(m_oldCellText);
    const double oldQuant = col == ColQuant ? old : cellValue(ColQuant, row);
    const double oldPrice = col == ColQuant ? cellValue(ColPrice, row) : old;
    applyLineAmounts(row, oldQuant, oldPrice);
}

// LineAmountCalc on the row; the two saves are independent of each other.
void FrmDealList::applyLineAmounts(int row, double oldQuant, double oldPrice) {
    const LineBeforeAfter line{oldQuant,
                               oldPrice,
                               cellValue(ColQuant, row),
                               cellValue(ColPrice, row),
                               cellValue(ColAmount, row),
                               cellValue(ColVat, row)};
    const std::optional<LineAmounts> amounts = LineAmountCalc(line, vatMode());
    if (!amounts) return;
    if (updateCell(ColAmount, row, QStringLiteral("amount"), amounts->amount))
        setLineCell(ColAmount, row, amounts->amount);
    if (updateCell(ColVat, row, QStringLiteral("vat"), amounts->vat)) setLineCell(ColVat, row, amounts->vat);
}

// ---- a change of VAT mode -------------------------------------------------------------------------

void FrmDealList::onVatClicked(int index) {
    if (!isVisible()) return;
    SaveSetting(kAppSection, kEnvSection, QStringLiteral("명세서부가세구분"), QString::number(index));
    if (SelectedBillNo().isEmpty()) return;
    spDetail->setEditMode(false);
    spDetail->setOperationMode(OperationMode::Row);
    const int answer = MsgBox(vatModeChangeQuestion(), MbYesNoCancel | MbDefaultButton2, QString());
    spDetail->setOperationMode(OperationMode::Normal);
    if (answer == AnsCancel) return;
    QList<int> rows;
    if (answer == AnsYes) {
        for (int row = 1; row <= m_model.dataRowCount(); ++row)
            rows << row;
    } else {
        const int row = spDetail->ActiveRow();
        if (SelectedBillSeq(row) == 0) {
            // The row stays highlighted, but the grid stays editable: row highlighting as an
            // operation mode would refuse every key until the next search.
            spDetail->markRow(row);
            ShowInfo(noLineToRecalculateText());
            return;
        }
        rows << row;
    }
    for (int row : rows) {
        const LineAmounts wanted =
            amountsInMode(RoundAt(cellValue(ColQuant, row) * cellValue(ColPrice, row), 0), VatMode(index));
        if (wanted.amount == cellValue(ColAmount, row) && wanted.vat == cellValue(ColVat, row)) continue;
        if (updateCell(ColAmount, row, QStringLiteral("amount"), wanted.amount))
            setLineCell(ColAmount, row, wanted.amount);
        if (updateCell(ColVat, row, QStringLiteral("vat"), wanted.vat)) setLineCell(ColVat, row, wanted.vat);
    }
}

} // namespace nb
