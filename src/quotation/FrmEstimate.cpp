// FrmEstimate: load and unload, the head of a quotation, its keys, the trader entry, the date
// boxes, the head save when the grid takes the focus, and the delete of a whole quotation.
#include "quotation/FrmEstimate.h"

#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateText.h"
#include "common/grid/MduSpread.h"
#include "common/input/ImeMode.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"
#include "common/text/MoneyWords.h"
#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "invoice/InvoiceAmounts.h"
#include "invoice/InvoiceLookups.h"
#include "master/EntryForm.h"
#include "master/clsTrader.h"
#include "quotation/EstimateRules.h"
#include "quotation/FrmEstiList.h"
#include "storage/Stores.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>

namespace nb {

namespace {

const QString kSaveTitle = QStringLiteral("견적내역 저장");
const QString kDeleteTitle = QStringLiteral("견적내역 삭제");

QString inputHint(int index) {
    switch (index) {
    case 0:
        return QStringLiteral("상호, 주소, 전화번호 뒤 4자리로 검색하세요.  [검색:Enter]");
    case 1:
        return QStringLiteral("견적내용을 입력하세요.");
    case 2:
        return QStringLiteral("참조인을 입력하세요.");
    case 4:
        return QStringLiteral("유효기간을 입력하세요. [예] 4개월");
    case 5:
        return QStringLiteral("지불조건을 입력하세요. [예]어음(또는 현금, 추후협상 등)");
    default:
        return QString();
    }
}

// A focus change to another window (a box, a list, another program) is no move of the operator
// inside this screen.
bool movedWithin(const QWidget* to, const QWidget* form) {
    return to && to->window() == form->window();
}

} // namespace

FrmEstimate::FrmEstimate(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("FrmEstimate"));
    setWindowTitle(QStringLiteral("상품 견적서관리"));
    m_estimate = std::make_unique<clsEstimate>();
    buildControls();
    connectControls();
    loadForm();
    resize(sizeHint());
}

FrmEstimate::~FrmEstimate() {
    if (m_storeOpen) stores().dbEstimate.close();
}

bool FrmEstimate::HangulOn() const {
    return m_hangul->hangulOn();
}

void FrmEstimate::loadForm() {
    m_isLoading = true;
    m_hangul->setHangulOn(true);
    m_storeOpen = OpenDb(stores().dbEstimate, app().DbEstimateFile);
    if (!m_storeOpen) return; // the form stays as it is
    txtDate[0]->setDateText(DateText(today()));
    CmbFind->setCurrentIndex(0);
    OptVat[1]->setChecked(true);
    showNextCode();
    m_isNewDoc = true;
    m_isLoading = false;
    SetFloatCell(*grdEstimate, ColAmount, app().DecimalQty, true);
    SetFloatCell(*grdEstimate, ColPrice, app().DecimalQty, true);
}

// However the screen is closed (종료, Esc, the title bar), it is unloaded: the next showing
// loads it afresh, with its store opened again.
void FrmEstimate::closeEvent(QCloseEvent* event) {
    unload();
    QWidget::closeEvent(event);
}

// The store closes and the screen lets go of all it held, the terms of the last quotation too.
void FrmEstimate::unload() {
    if (m_storeOpen) stores().dbEstimate.close();
    m_storeOpen = false;
    ClearForm();
    for (QLineEdit* box : txtinput)
        box->clear();
    txtFind->clear();
    txtPCode->clear();
    pnlFunction->clear();
    clearGrid();
    m_lineCount = 0;
    m_gridHasFocus = false;
    m_unloaded = true;
}

void FrmEstimate::showNextCode() {
    m_estimate->sEDate = txtDate[0]->dateText();
    QString code;
    m_estimate->NextCode(code);
    pnlCode->setText(code);
}

// ---- buttons ---------------------------------------------------------------------------------

void FrmEstimate::btnExit_Click() {
    openScreen(QStringLiteral("mnu_거래명세표"));
    auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget());
    if (frame)
        frame->close();
    else
        close();
}

void FrmEstimate::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!m_unloaded) return;
    m_unloaded = false;
    loadForm();
}

void FrmEstimate::btnNew_Click() {
    ClearForm();
    m_isNewDoc = true;
    clearGrid();
    showNextCode();
    OptVat[1]->setChecked(true);
    grdEstimate->SetActiveCell(1, 1);
    m_lineCount = 0;
    txtinput[0]->setFocus();
}

void FrmEstimate::ClearForm() {
    txtDate[0]->setDateText(DateText(today()));
    txtDate[1]->clearDate();
    for (int i = 0; i <= 3; ++i)
        txtinput[size_t(i)]->clear();
    pnlHanKum->clear();
    txtCCode->clear();
}

void FrmEstimate::btnFind_Click() {
    if (m_isBusy) return;
    m_isBusy = true;
    {
        FrmEstiList list(this);
        list.SetObject(pnlCode);
        list.InitForm(CmbFind->currentIndex(), txtFind->text());
        list.showBelow(txtFind);
    }
    if (pnlCode->text().isEmpty()) {
        ClearForm();
        txtFind->setFocus();
        m_isBusy = false;
        return;
    }
    m_estimate->sCode = pnlCode->text();
    Recordset rs;
    bool found = false;
    m_estimate->FindEstiHead(rs, found);
    if (!found) {
        txtFind->setFocus();
    } else {
        fillHead(rs);
        LoadLines();
        grdEstimate->setFocus();
        m_isNewDoc = false;
    }
    CloseRs(rs);
    m_isBusy = false;
}

void FrmEstimate::fillHead(const Recordset& rs) {
    txtCCode->setText(rs.text(QStringLiteral("CCode")));
    txtinput[0]->setText(rs.text(QStringLiteral("CName")));
    txtinput[1]->setText(rs.text(QStringLiteral("ClassName")));
    txtinput[2]->setText(rs.text(QStringLiteral("Refer")));
    txtinput[3]->setText(rs.text(QStringLiteral("EstiKum")));
    pnlHanKum->setText(u' ' + rs.text(QStringLiteral("EstiHanKum")));
    OptVat[rs.flag(QStringLiteral("Vat")) ? 0 : 1]->setChecked(true);
    txtDate[0]->setDateText(rs.text(QStringLiteral("EstiDate")));
    txtDate[1]->setDateText(rs.text(QStringLiteral("DeriveDate")));
}

void FrmEstimate::LoadLines() {
    clearGrid();
    Recordset rs;
    if (!OpenSnapshot(
            stores().dbEstimate, rs,
            QStringLiteral("SELECT PName, PNorm, EUnit, EAmount, EUnitPrice, EstiKum, Code, PCode, Seq "
                           "FROM Estimate WHERE Code = ? ORDER BY Seq"),
            {pnlCode->text()}))
        return;
    double sum = 0;
    int row = 0;
    if (rs.RecordCount() > grdEstimate->MaxRows()) grdEstimate->setMaxRows(rs.RecordCount());
    // Written quietly, the view told once, rather than cell by cell. Column c is the statement's
    // field c, read by its place; EstiKum is the sixth.
    constexpr int kEstiKumField = 5;
    grdEstimate->fillQuietly([&] {
        for (; !rs.EOF_(); rs.MoveNext()) {
            ++row;
            for (int c = 1; c <= kEstimateCols; ++c) {
                const bool shown = c == ColAmount || c == ColPrice;
                setCell(c, row, shown ? showNumber(rs.number(c - 1)) : rs.text(c - 1));
            }
            sum += rs.number(kEstiKumField);
        }
    });
    m_lineCount = rs.RecordCount();
    CloseRs(rs);
    txtinput[3]->setText(sum == 0 ? QStringLiteral("0") : FormatNumber(sum, kMaskAmount));
    pnlHanKum->setText(u' ' + GetHanKum(plainNumberText(sum)));
}

void FrmEstimate::SaveHead(bool IsNew) {
    clsEstimate& e = *m_estimate;
    e.sCode = pnlCode->text();
    e.sCCode = txtCCode->text();
    e.sCName = txtinput[0]->text();
    e.sEDate = txtDate[0]->dateText();
    e.sDeriveDate = txtDate[1]->dateText();
    e.sClass = txtinput[1]->text();
    e.dETotKum = plainNumber(txtinput[3]->text());
    e.sETotHanKum = pnlHanKum->text().trimmed();
    e.bVAT = OptVat[0]->isChecked();
    e.sRefer = txtinput[2]->text();
    e.sValidate = txtinput[4]->text();
    e.sSection = txtinput[5]->text();
    if (IsNew) {
        e.SaveInitEstimate();
        pnlCode->setText(e.sCode); // another running copy may have taken the number shown
    } else
        e.UpdateEstiBase();
}

// ---- the grid takes and loses the focus ------------------------------------------------------

// The grid takes the focus when it gets it from anywhere while it did not hold the screen's
// focus: from a box of this screen, from the delivery date box whose failure message had the
// focus, or from another window. It gives it up only to another control of this window; a box
// or another program borrowing the focus does not, so coming back is no new entry.
void FrmEstimate::onFocusChanged(QWidget*, QWidget* now) {
    const auto inGrid = [this](const QWidget* w) {
        return w && (w == grdEstimate || grdEstimate->isAncestorOf(w));
    };
    if (inGrid(now)) {
        if (m_gridHasFocus) return;
        m_gridHasFocus = true;
        gridFocusIn();
    } else if (m_gridHasFocus && movedWithin(now, this)) {
        m_gridHasFocus = false;
        gridFocusOut();
    }
}

void FrmEstimate::gridFocusIn() {
    if (txtCCode->text().isEmpty() || m_isBusy || m_isDeleting) return;
    m_estimate->sCode = pnlCode->text();
    Recordset rs;
    bool found = false;
    m_estimate->FindEstiHead(rs, found);
    if (found) {
        SaveHead(false);
    } else if (MsgBox(QStringLiteral("입력하신 내용을 저장하시겠습니까?"), MbYesNo | MbQuestion,
                      kSaveTitle) == AnsYes) {
        if (txtinput[3]->text().isEmpty()) txtinput[3]->setText(QStringLiteral("0"));
        SaveHead(true);
    } else if (MsgBox(QStringLiteral("새로운 거래처로 등록하시겠습니까?"), MbYesNo | MbQuestion,
                      kSaveTitle) == AnsYes) {
        CloseRs(rs);
        ClearForm();
        txtinput[0]->setFocus();
        return;
    }
    grdEstimate->SetActiveCell(1, m_lineCount + 1);
    grdEstimate->setEditModePermanent(true);
    pnlFunction->setText(kGridHint);
    CloseRs(rs);
}

void FrmEstimate::gridFocusOut() {
    pnlFunction->clear();
    if (!m_isBusy) grdEstimate->setEditModePermanent(false);
}

void FrmEstimate::onVatClicked() {
    if (m_isLoading || txtCCode->text().isEmpty()) return;
    grdEstimate->setFocus();
    grdEstimate->SetActiveCell(1, m_lineCount + 1);
}

// ---- keys ------------------------------------------------------------------------------------

bool FrmEstimate::formKey(int key) {
    switch (key) {
    case Qt::Key_Escape:
        btnExit_Click();
        return true;
    case Qt::Key_Insert:
        btnNew_Click();
        return true;
    case Qt::Key_F4:
        DeleteLine();
        return true;
    case Qt::Key_F5:
        DeleteWhole();
        return true;
    case Qt::Key_F10:
        btnPrint_Click();
        return true;
    default:
        return false;
    }
}

void FrmEstimate::DeleteWhole() {
    if (txtCCode->text().isEmpty()) return;
    if (MsgBox(QStringLiteral("전체 견적내역을 삭제하시겠습니까?"), MbYesNo | MbQuestion, kDeleteTitle) !=
        AnsYes)
        return;
    m_isDeleting = true;
    Database& db = stores().dbEstimate;
    const QString code = pnlCode->text().trimmed();
    // Asked once; a try the server broke off is run again without asking.
    const bool deleted = RetryingSave([&] {
        const bool began = db.beginTransaction();
        if (!began || !db.tryExecute(QStringLiteral("DELETE FROM EstiBase WHERE EstiCode = ?"), {code}) ||
            db.RecordsAffected() == 0) {
            if (began) db.rollback();
            if (!quietRetryWanted())
                ShowWarning(QStringLiteral("견적내역을 삭제하는 중 오류가 발생했습니다."),
                            QStringLiteral("견적내역 삭제 오류"));
            return false;
        }
        if (!db.Execute(QStringLiteral("DELETE FROM Estimate WHERE Code = ?"), {code})) {
            db.rollback();
            return false;
        }
        if (db.commit()) return true;
        ReportSaveFailure(db, QStringLiteral("견적내역을 삭제하지 못했습니다."));
        return false;
    });
    if (!deleted) {
        m_isDeleting = false;
        return;
    }
    ClearForm();
    clearGrid();
    m_lineCount = 0;
    ShowNotice(QStringLiteral("견적내역 삭제 완료!!"));
    txtFind->setFocus();
    m_isDeleting = false;
}

void FrmEstimate::searchTrader() {
    const QString text = txtinput[0]->text();
    if (invoiceLookups().traderList) {
        std::unique_ptr<SearchList> list = invoiceLookups().traderList(this);
        const int result = list->InitForm(txtCCode, text, QString(), 0);
        if (result == 2) list->showBelow(txtinput[0]);
        list.reset();
        if (result == 0) {
            const QString question = (text.isEmpty() ? QStringLiteral("등록된 거래처가 업습니다.")
                                                     : QStringLiteral("검색한 거래처가 업습니다.")) +
                                     QStringLiteral("\n거래처를 등록하시겠습니까?");
            if (MsgBox(question, MbYesNo | MbQuestion, QStringLiteral("거래처 검색")) != AnsYes) return;
            if (invoiceLookups().newTrader)
                invoiceLookups().newTrader(this, txtCCode, text, txtDate[0]->text(), txtinput[0]);
        }
    }
    if (txtCCode->text().isEmpty()) {
        txtinput[0]->clear();
        txtinput[0]->setFocus();
        return;
    }
    txtinput[0]->setText(GetTraderName(txtCCode->text()));
    showNextCode();
    txtDate[0]->setDateText(DateText(today()));
    txtDate[1]->setDateText(DateText(today()));
    EnterAsTab(Qt::Key_Return, txtinput[0]);
}

bool FrmEstimate::inputKey(int index, int key) {
    if (index == 0 && isEnterKey(key)) {
        searchTrader();
        return true;
    }
    return EnterAsTab(key, txtinput[size_t(index)]);
}

void FrmEstimate::inputFocus(int index, bool in) {
    QLineEdit* box = txtinput[size_t(index)];
    if (in) {
        pnlFunction->setText(inputHint(index));
        SetImeMode(HangulOn(), box);
        SelectAllText(box);
        return;
    }
    pnlFunction->clear();
    if (index == 0 && box->text().isEmpty()) txtCCode->clear();
    if (index == 3 && box->text().isEmpty()) {
        box->setText(QStringLiteral("0"));
        pnlHanKum->clear();
    }
}

bool FrmEstimate::dateEvent(int index, QEvent* event) {
    DateBox* box = txtDate[size_t(index)];
    if (event->type() == QEvent::FocusIn) {
        pnlFunction->setText(index == 0 ? QStringLiteral("견적일자를 변경할 수 있습니다.")
                                        : QStringLiteral("납품예정일자를 입력하세요."));
        m_oldDate = box->text();
        SelectAllText(box);
        return false;
    }
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) return false;
        if (m_unloaded) return false; // the screen is closing: nothing is checked or written
        pnlFunction->clear();
        if (index == 0) {
            if (!IsDate(box->dateText())) {
                MsgBox(kBadDateMessage);
                box->setText(m_oldDate);
                box->setFocus();
                return false;
            }
            showNextCode();
        } else {
            m_estimate->sCode = pnlCode->text();
            m_estimate->sDeriveDate = box->dateText();
            m_estimate->UpdateDeriveDate();
        }
        return false;
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (index == 1 && isEnterKey(key)) {
            grdEstimate->setFocus();
            return true;
        }
        return EnterAsTab(key, box);
    }
    return false;
}

bool FrmEstimate::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::KeyPress && watched != grdEstimate && formKey(static_cast<QKeyEvent*>(event)->key()))
        return true;
    if (watched == txtDate[0] || watched == txtDate[1])
        return dateEvent(watched == txtDate[0] ? 0 : 1, event);
    for (int i = 0; i < 6; ++i) {
        if (watched != txtinput[size_t(i)]) continue;
        if (type == QEvent::KeyPress) return inputKey(i, static_cast<QKeyEvent*>(event)->key());
        if (type == QEvent::FocusIn) inputFocus(i, true);
        if (type == QEvent::FocusOut) inputFocus(i, false);
        return false;
    }
    if (watched == CmbFind) {
        if (type == QEvent::FocusIn) pnlFunction->setText(QStringLiteral("검색어를 지정하여 주십시요."));
        if (type == QEvent::FocusOut) pnlFunction->clear();
        if (type == QEvent::KeyPress && isEnterKey(static_cast<QKeyEvent*>(event)->key()))
            return EnterAsTab(Qt::Key_Return, CmbFind);
        return false;
    }
    if (watched == txtFind) {
        if (type == QEvent::FocusIn) {
            SetImeMode(HangulOn(), txtFind);
            SelectAllText(txtFind);
            btnFind->setDefault(true);
            pnlFunction->setText(QStringLiteral("검색어를 입력하여 주십시요."));
        } else if (type == QEvent::FocusOut) {
            btnFind->setDefault(false);
            pnlFunction->clear();
        } else if (type == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            // The default button takes Enter.
            if (isEnterKey(key)) {
                btnFind_Click();
                return true;
            }
            return EnterAsTab(key, txtFind);
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace nb
