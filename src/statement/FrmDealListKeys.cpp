// FrmDealList: what its controls do — the keys of each box, the two grids' keys, the seal,
// and the buttons that lead elsewhere (the invoice, the quotation, printer and margins).
#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateCells.h"
#include "common/dates/DateText.h"
#include "common/dates/FrmCalendar.h"
#include "common/grid/Grid.h"
#include "common/grid/MduSpread.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"
#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "core/ScreenRegistry.h"
#include "invoice/FrmTax.h"
#include "invoice/InvoicePrint.h"
#include "links/ZoomForms.h"
#include "printing/FrmMargin.h"
#include "printing/FrmSetPrinter.h"
#include "printing/PrinterSetup.h"
#include "statement/FrmDealList.h"
#include "statement/StatementIssue.h"
#include "statement/StatementSeal.h"
#include "storage/Stores.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>

namespace nb {

namespace {

const QString kPhoneKey = QStringLiteral("명세서전화번호");
const QString kBalanceKey = QStringLiteral("명세서미수금");

bool isEnter(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

void FrmDealList::connectControls() {
    auto* selectOnEntry = new SelectAllOnFocus(this);
    for (QWidget* box :
         {static_cast<QWidget*>(PreMisu), static_cast<QWidget*>(Misu), static_cast<QWidget*>(txtYear)})
        selectOnEntry->watch(box);
    const DateRangeCells range{chkChain, spDate};
    for (int k = 0; k < 2; ++k) {
        connect(udDateUp[size_t(k)], &QToolButton::clicked, this, [range, k] { SpinDate(range, k, 1); });
        connect(udDateDown[size_t(k)], &QToolButton::clicked, this, [range, k] { SpinDate(range, k, -1); });
        connect(btnMonthView[size_t(k)], &QPushButton::clicked, this, [this, range, k] {
            const QString chosen = ShowCalendar(DateCellText(spDate[size_t(k)]), spDate[size_t(k)]);
            if (IsDate(chosen)) SetDateCellText(spDate[size_t(k)], chosen);
            ChainDate(range, k);
        });
    }
    connect(btnMonthView[2], &QPushButton::clicked, this, [this] {
        const QString chosen = ShowCalendar(txtDate->dateText(), txtDate);
        if (IsDate(chosen)) txtDate->setDateText(chosen);
    });
    connect(cmdMaster, &QPushButton::clicked, this, &FrmDealList::cmdMaster_Click);
    connect(btnNewMaster, &QPushButton::clicked, this, &FrmDealList::btnNewMaster_Click);
    connect(cmdMemo, &QPushButton::clicked, this, &FrmDealList::cmdMemo_Click);
    connect(cmdSeal, &QPushButton::clicked, this, &FrmDealList::cmdSeal_Click);
    connect(btnGoTax, &QPushButton::clicked, this, &FrmDealList::btnGoTax_Click);
    connect(vaBtnEstimate, &QPushButton::clicked, this, &FrmDealList::vaBtnEstimate_Click);
    connect(btnPrinter, &QPushButton::clicked, this, &FrmDealList::btnPrinter_Click);
    connect(btnSetMargin, &QPushButton::clicked, this, &FrmDealList::btnSetMargin_Click);
    connect(btnSample, &QPushButton::clicked, this, &FrmDealList::btnSample_Click);
    connect(btnPrint, &QPushButton::clicked, this, &FrmDealList::btnPrint_Click);
    connect(btnPreview, &QPushButton::clicked, this, &FrmDealList::btnPreview_Click);
    connect(chkPrintFrame, &QCheckBox::clicked, this,
            [this] { savePrintFrameSetting(chkPrintFrame->isChecked()); });
    connect(chk_Phone, &QCheckBox::clicked, this, [this] { onCheckClicked(chk_Phone, kPhoneKey); });
    connect(ChkNonKum, &QCheckBox::clicked, this, [this] { onCheckClicked(ChkNonKum, kBalanceKey); });
    connect(sum, &QLineEdit::textChanged, this, [this] { showMisu(); });
    for (int k = 0; k < 3; ++k) {
        connect(gubun[size_t(k)], &QRadioButton::clicked, this, [this, k] { onVatClicked(k); });
        connect(gubun2[size_t(k)], &QRadioButton::clicked, this, [this, k] { fillTerms(k); });
    }
    connect(CmbTerm, &QComboBox::currentIndexChanged, this, [this] { PeriodTotalShow(); });
    connect(spDetail, &Grid::editModeChanged, this, &FrmDealList::onDetailEditMode);
    connect(spDetail, &Grid::leaveCell, this, &FrmDealList::onDetailLeaveCell);
    connect(spDetail, &Grid::keyDown, this, [this](int& key, Qt::KeyboardModifiers) { detailKey(key); });
    connect(spMaster, &Grid::keyDown, this, [this](int& key, Qt::KeyboardModifiers) { masterKey(key); });
    connect(spMaster, &Grid::leaveCell, this, [this](int, int row, int, int newRow, bool&) {
        if (!m_listing && newRow > 0 && newRow != row) chooseMasterRow(newRow);
    });
}

// ---- keys of the boxes -----------------------------------------------------------------------------

bool FrmDealList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == imgPic || watched == picSign) {
        if (event->type() == QEvent::MouseButtonPress && watched == imgPic && !imgPic->pixmap().isNull()) {
            picSign->setGeometry(imgPic->geometry());
            picSign->show();
            picSign->raise();
            picSign->setFocus();
            return true;
        }
        if (watched == picSign && event->type() == QEvent::FocusOut) picSign->hide();
        if (watched == picSign && event->type() == QEvent::KeyPress)
            return sealKey(static_cast<QKeyEvent*>(event)->key());
        return false;
    }
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F3) {
            CName2->setFocus();
            return true;
        }
        return boxKey(watched, key->key());
    }
    if (event->type() == QEvent::FocusOut) {
        if (watched == PreMisu) {
            PreMisu->setText(FormatText(PreMisu->text(), kMaskSum));
            showMisu();
        } else if (watched == Misu) {
            Misu->setText(FormatText(Misu->text(), kMaskSum));
        } else if (watched == txtDate && !m_checkingDate && leftWithinScreen(event) &&
                   !IsDate(txtDate->dateText())) {
            m_checkingDate = true;
            CheckDateOnLeave(txtDate->dateText(), kBadStatementDateMessage);
            txtDate->setFocus();
            m_checkingDate = false;
        }
    }
    return false;
}

// A box is left by the operator only when the focus goes to another control of this screen: a
// box or another program taking the focus, or the screen going away, is no leaving.
bool FrmDealList::leftWithinScreen(QEvent* focusOut) const {
    const auto reason = static_cast<QFocusEvent*>(focusOut)->reason();
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason && m_serialFound &&
           isVisible();
}

bool FrmDealList::boxKey(QObject* watched, int key) {
    if (watched == CName1 && isEnter(key)) {
        searchSupplier();
        return true;
    }
    if (watched == CName2) {
        if (isEnter(key)) {
            searchTrader();
            return true;
        }
        // The arrows leave the receiver only when one has been chosen.
        if (key == Qt::Key_Up || key == Qt::Key_Down)
            return CName2->text().isEmpty() || txtCCode->text().isEmpty() ? true : EnterAsTab(key, CName2);
        return false;
    }
    if (watched == txtDate && (isEnter(key) || key == Qt::Key_Down)) {
        CName2->setFocus();
        return true;
    }
    if ((watched == spDate[0] || watched == spDate[1]) && isEnter(key)) {
        focusNextChild();
        return true;
    }
    if (watched == PreMisu || watched == Misu) return EnterAsTab(key, static_cast<QWidget*>(watched));
    if (watched == txtYear && isEnter(key)) {
        PeriodTotalShow();
        return true;
    }
    return false;
}

void FrmDealList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F3) {
        CName2->setFocus();
        return;
    }
    QWidget::keyPressEvent(event);
}

// ---- the seal ----------------------------------------------------------------------------------------

bool FrmDealList::sealKey(int key) {
    if (key != Qt::Key_Delete) return false;
    deleteSeal();
    return true;
}

void FrmDealList::deleteSeal() {
    const QString question =
        QStringLiteral("공급자도장을 삭제하시겠습니까?\r\n삭제시 도장인쇄를 하지 않게 됩니다.\r\n"
                       "※도장파일이 삭제되지는 않습니다. 언제든지 재지정 가능합니다.");
    if (MsgBox(question, MbYesNo | MbQuestion, QStringLiteral("공급자도장 삭제")) != AnsYes) return;
    saveStatementSealSetting(QString());
    SealShow();
    picSign->hide();
}

// ---- the grids' keys ---------------------------------------------------------------------------------

void FrmDealList::detailKey(int& key) {
    if (isEnter(key)) m_enterInEdit = true;
    if (key == Qt::Key_F3) {
        key = 0;
        CName2->setFocus();
    } else if (key == Qt::Key_F4) {
        key = 0;
        deleteLine();
    }
}

void FrmDealList::masterKey(int& key) {
    if (key == Qt::Key_F3) {
        key = 0;
        CName2->setFocus();
    } else if (key == Qt::Key_F4) {
        key = 0;
        deleteStatement();
    }
}

void FrmDealList::deleteLine() {
    spDetail->setEditMode(false);
    const int row = spDetail->ActiveRow();
    m_model.setActiveDetailRow(row);
    spDetail->setOperationMode(OperationMode::Row); // the whole line shows while it is asked
    const LineDeleteOutcome outcome = m_model.deleteLine();
    spDetail->setOperationMode(OperationMode::Normal);
    if (outcome == LineDeleteOutcome::WholeStatement) {
        afterStatementGone();
        return;
    }
    if (outcome == LineDeleteOutcome::Deleted) {
        m_listing = true;
        DeleteGridRow(*spDetail, row, true, false);
        m_listing = false;
        showTotals();
        PeriodTotalShow();
    }
    spDetail->setFocus();
}

void FrmDealList::deleteStatement() {
    const StatementDeleteOutcome outcome = m_model.deleteStatement();
    if (outcome == StatementDeleteOutcome::Deleted) {
        afterStatementGone();
        return;
    }
    spMaster->setFocus();
}

// The list loses the statement's row and stands on the one that took its place; that row's
// trader and lines show.
void FrmDealList::afterStatementGone() {
    const QString before = txtCCode->text();
    // The model took the row out of the list (the rows below moved up, the empty row stands).
    m_listing = true;
    spMaster->Refresh();
    ShowFloatMsg(QString::fromUtf8(kRowDeletedText), 500, true, kDeletedFloatColor);
    spMaster->SetActiveCell(ColBillDate, m_model.activeMasterRow());
    m_listing = false;
    MasterTotalShow();
    followTrader(before);
    DetailList();
    PeriodTotalShow();
}

// ---- buttons that lead elsewhere --------------------------------------------------------------------

void FrmDealList::btnGoTax_Click() {
    QString code;
    QString date;
    if (!m_lastSavedCCode.isEmpty()) {
        code = m_lastSavedCCode;
        date = txtDate->dateText();
    }
    // The invoice screen loads anew: whatever was typed there goes without a question.
    auto* tax = qobject_cast<FrmTax*>(loadScreen(QStringLiteral("mnu_InvoiceForm"), true));
    if (!tax) return;
    if (!code.isEmpty()) {
        tax->txtCCode->setText(code);
        tax->txtDate[0]->setDateText(date);
        tax->txtDate[1]->setDateText(date);
        tax->write_yy->setText(date.left(4));
        tax->write_mm->setText(date.mid(5, 2));
        tax->write_dd->setText(date.mid(8, 2));
    }
    ReadPrintParties(stores().dbBasic, code, tax->UserSerial); // 검색Snp거래처: the print's parties
    openScreen(QStringLiteral("mnu_InvoiceForm"));
}

void FrmDealList::vaBtnEstimate_Click() {
    openScreen(QStringLiteral("mnu_Estimate"));
}

void FrmDealList::btnPrinter_Click() {
    FrmSetPrinter form(this);
    form.InitForm(1);
    form.exec();
    if (savedDocPrinter(1).isEmpty()) GetDefaultPrinter();
}

void FrmDealList::btnSetMargin_Click() {
    FrmMargin form(this);
    form.InitForm(1);
    form.exec();
}

void FrmDealList::btnSample_Click() {
    showZoomDealList(this);
}

void FrmDealList::btnPrint_Click() {
    IssueStatement(printData(), m_model.dataRowCount(), chkPrintFrame->isChecked());
}

void FrmDealList::btnPreview_Click() {
    PreviewStatement(this, printData(), chkPrintFrame->isChecked());
}

StatementPrintData FrmDealList::printData() const {
    StatementPrintData data;
    data.cCode = txtCCode->text();
    data.supplierSerial = m_serial;
    data.dateText = txtDate->text();
    data.memo = txtMemo->text();
    data.printPhone = chk_Phone->isChecked();
    data.printBalance = ChkNonKum->isChecked();
    data.gong = gong->text();
    data.se = se->text();
    data.sum = sum->text();
    data.preMisu = PreMisu->text();
    data.misu = Misu->text();
    data.lines = m_model.lines();
    data.seal = picSign->pixmap().isNull() ? QImage() : picSign->pixmap().toImage();
    data.decimalQty = app().DecimalQty;
    data.decimalPrice = app().DecimalPrice;
    return data;
}

} // namespace nb
