// FrmEstimate: the lines. Enter by column, the product search, storing a complete line, the
// edits of a stored line with their recalculation, the hints when moving, and F4.
#include "common/Messages.h"
#include "common/grid/MduSpread.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "common/text/StoredNumber.h"
#include "invoice/InvoiceAmounts.h"
#include "invoice/InvoiceLookups.h"
#include "master/EntryForm.h"
#include "master/ProductRecords.h"
#include "quotation/EstimateRules.h"
#include "quotation/FrmEstimate.h"
#include "storage/Database.h"

#include <QLabel>
#include <QLineEdit>

namespace nb {

namespace {

QString moveHint(int col) {
    switch (col) {
    case ColPName:
        return QStringLiteral("[대분류검색:Enter] Or [상품명으로 검색]");
    case ColPNorm:
        return QStringLiteral("규격을 변경할 수 있습니다.");
    case ColUnit:
        return QStringLiteral("단위를 입력하세요.");
    case ColAmount:
        return QStringLiteral("수량을 입력하세요.");
    default:
        return QString();
    }
}

} // namespace

QString FrmEstimate::cell(int col, int row) const {
    return grdEstimate->Text(col, row);
}

void FrmEstimate::setCell(int col, int row, const QString& text) {
    grdEstimate->SetText(col, row, text);
}

bool FrmEstimate::storedRow(int row) const {
    return !txtCCode->text().isEmpty() && !cell(ColSeq, row).isEmpty();
}

QList<TotalRow> FrmEstimate::totalRows() const {
    QList<TotalRow> rows;
    for (int r = 1; r <= grdEstimate->MaxRows(); ++r)
        rows.append({cell(ColPName, r), cell(ColAmount, r), cell(ColPrice, r)});
    return rows;
}

void FrmEstimate::clearGrid() {
    ClearGrid(*grdEstimate);
}

void FrmEstimate::gridKey(int& key) {
    if (formKey(key)) {
        key = 0;
        return;
    }
    if (!isEnterKey(key)) return;
    key = 0;
    gridEnter();
}

void FrmEstimate::gridEnter() {
    const int col = grdEstimate->ActiveCol();
    const int row = grdEstimate->ActiveRow();
    if (row < 1 || col < 1) return;
    grdEstimate->setEditMode(false); // what was typed reaches the cell first
    if (col == ColAmount) {
        grdEstimate->SetActiveCell(ColPrice, row);
    } else if (col == ColPrice) {
        if (row == grdEstimate->MaxRows()) grdEstimate->setMaxRows(row + 1); // room for one more line
        grdEstimate->SetActiveCell(ColPName, row + 1);
    } else if (col != ColPName) {
        grdEstimate->SetActiveCell(col + 1, row);
    } else if (cell(ColPName, row).isEmpty()) {
        bool found = false;
        SearchProduct(row, found);
        if (found) {
            SaveLine(row);
            ++m_lineCount;
            grdEstimate->setFocus();
            grdEstimate->SetActiveCell(ColUnit, row);
        } else {
            pnlFunction->setText(kGridHint);
            grdEstimate->setFocus();
            grdEstimate->SetActiveCell(ColPName, row);
        }
        txtPCode->clear();
    } else {
        for (int c : {ColAmount, ColPrice, ColKum})
            setCell(c, row, QStringLiteral("0"));
        grdEstimate->SetActiveCell(ColPNorm, row);
        txtPCode->clear();
    }
    if (grdEstimate->EditModePermanent()) grdEstimate->setEditMode(true);
}

void FrmEstimate::SearchProduct(int Row, bool& Found) {
    m_isBusy = true;
    Found = false;
    const QString text = cell(ColPName, Row);
    if (invoiceLookups().productList) {
        std::unique_ptr<SearchList> list = invoiceLookups().productList(this);
        const int result = list->InitForm(txtPCode, text, txtPCode->text(), 3);
        if (result == 2 || (result == 1 && text.isEmpty())) {
            // Only a choice in the list counts: closing it with 닫기 or Esc chooses nothing, also
            // when the one product registered was handed over already.
            txtPCode->clear();
            list->showBelow(SSPanel7);
        }
    }
    Recordset rs;
    if (!txtPCode->text().isEmpty() && FindProduct(rs, txtPCode->text(), QString(), false)) {
        const double price = rs.number(QStringLiteral("SalePrice"));
        setCell(ColPName, Row, rs.text(QStringLiteral("PName")));
        setCell(ColPNorm, Row, rs.text(QStringLiteral("PNorm")));
        setCell(ColUnit, Row, rs.text(QStringLiteral("Unit")));
        setCell(ColAmount, Row, QStringLiteral("1"));
        setCell(ColPrice, Row, showNumber(price));
        setCell(ColKum, Row, QString::number(qint32(CLng(price))));
        setCell(ColCode, Row, pnlCode->text());
        setCell(ColPCode, Row, txtPCode->text());
        qint32 seq = 0;
        m_estimate->NextSeq(seq);
        setCell(ColSeq, Row, QString::number(seq));
        Found = true;
    }
    CloseRs(rs);
    if (const std::optional<qint32> total = linesTotal(totalRows()))
        txtinput[3]->setText(totalBoxText(*total));
    m_isBusy = false;
}

void FrmEstimate::SaveLine(int Row) {
    clsEstimate& e = *m_estimate;
    e.lSeq = qint32(cell(ColSeq, Row).toInt());
    e.sCode = pnlCode->text();
    e.sPCode = cell(ColPCode, Row);
    e.sPName = cell(ColPName, Row);
    e.sPNorm = cell(ColPNorm, Row);
    e.sUnit = cell(ColUnit, Row);
    e.siEAmount = float(plainNumber(cell(ColAmount, Row)));
    e.siEUnitCost = float(plainNumber(cell(ColPrice, Row)));
    e.lEstiKum = qint32(CLng(plainNumber(cell(ColKum, Row))));
    e.SaveEstimate();
    setCell(ColSeq, Row, QString::number(e.lSeq)); // taken anew when another copy had it
}

void FrmEstimate::onEditMode(int col, int row, int mode, bool) {
    if (!storedRow(row)) return;
    if (mode == 1) {
        m_oldCell = cell(col, row);
        return;
    }
    if (m_skipEdit) {
        m_skipEdit = false;
        return;
    }
    if (col == ColUnit) {
        m_estimate->lSeq = qint32(cell(ColSeq, row).toInt());
        m_estimate->sUnit = cell(ColUnit, row);
        m_estimate->UpdateUnit();
    } else if (col == ColAmount || col == ColPrice) {
        if (col == ColPrice && !cell(ColPrice, row).isEmpty())
            setCell(ColPrice, row, showNumber(plainNumber(cell(ColPrice, row))));
        if (!RecalcLine(cell(ColSeq, row), row)) setCell(col, row, m_oldCell); // refused: as it was
    }
}

// The line and the total are worked out before anything is written: an amount or a total that
// 32 bits cannot hold is the overflow, and then nothing is stored and the screen keeps its
// figures, so the line, its amount and the total never disagree.
bool FrmEstimate::RecalcLine(const QString& SeqText, int Row) {
    const LineAmount line = lineAmount(cell(ColAmount, Row), cell(ColPrice, Row));
    const std::optional<qint32> total = line.fits ? linesTotal(totalRows()) : std::nullopt;
    if (!total) {
        ShowOverflow(QStringLiteral("RecalcLine"), QStringLiteral("FrmEstimate"), ReportOwner::Form);
        return false;
    }
    setCell(ColKum, Row, plainNumberText(line.amount));
    clsEstimate& e = *m_estimate;
    e.lSeq = qint32(SeqText.toInt());
    e.siEUnitCost = float(line.price);
    e.siEAmount = line.quantity;
    e.lEstiKum = line.storedAmount;
    e.UpdateEstimate();
    txtinput[3]->setText(totalBoxText(*total));
    pnlHanKum->setText(hanKumPanelText(txtinput[3]->text()));
    e.dETotKum = plainNumber(txtinput[3]->text());
    e.sETotHanKum = pnlHanKum->text().trimmed();
    return true;
}

void FrmEstimate::onLeaveCell(int, int row, int newCol, int newRow, bool& cancel) {
    if (newRow < 1 || !cell(ColSeq, newRow).isEmpty()) return;
    if (newRow != row) {
        pnlFunction->setText(QStringLiteral("상품명 검색.  [검색:Enter]"));
        if (newCol != ColPName) {
            cancel = true;
            grdEstimate->SetActiveCell(ColPName, newRow);
        }
        return;
    }
    pnlFunction->setText(moveHint(newCol));
}

void FrmEstimate::DeleteLine() {
    const int row = grdEstimate->ActiveRow();
    if (row < 1) return;
    const QString seq = cell(ColSeq, row);
    if (seq.isEmpty()) return;
    grdEstimate->setEditMode(false);
    PaintBlock(*grdEstimate, 1, row, kEstimateCols, row, kDeleteAskColor);
    if (MsgBox(QStringLiteral("선택하신 견적내역을 삭제하시겠습니까?"), MbYesNo | MbQuestion,
               QStringLiteral("견적내역 삭제")) != AnsYes) {
        PaintBlock(*grdEstimate, 1, row, kEstimateCols, row, kWhiteColor);
        return;
    }
    const double amount = plainNumber(cell(ColKum, row));
    const double total = plainNumber(txtinput[3]->text());
    m_estimate->lSeq = qint32(seq.toInt());
    m_estimate->DeleteDetail();
    txtinput[3]->setText(totalBoxText(total - amount));
    m_estimate->sCode = pnlCode->text();
    m_estimate->dETotKum = plainNumber(txtinput[3]->text());
    m_estimate->sETotHanKum = pnlHanKum->text().trimmed();
    m_estimate->UpdateTotKum();
    ClearBlock(*grdEstimate, 1, row, kEstimateCols, row);
    if (row < grdEstimate->MaxRows())
        MoveBlock(*grdEstimate, 1, row + 1, kEstimateCols, grdEstimate->MaxRows(), 1, row);
    ClearBlock(*grdEstimate, 1, grdEstimate->MaxRows(), kEstimateCols, grdEstimate->MaxRows());
    PaintBlock(*grdEstimate, 1, row, kEstimateCols, row, kWhiteColor);
    ShowNotice(QStringLiteral("자료를 삭제하였습니다."), 500, kNoticeColor);
    --m_lineCount;
}

} // namespace nb
