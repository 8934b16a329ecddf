// FrmDealList: load and first activation, supplier and trader, the statement list with its
// sums, the lines of the chosen statement, the period total, the balance boxes and the settings
// the screen keeps.
#include "statement/FrmDealList.h"

#include "common/ListRefresh.h"
#include "common/Messages.h"
#include "common/ScreenActivation.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateCells.h"
#include "common/dates/DateText.h"
#include "common/grid/GridPlace.h"
#include "common/grid/MduSpread.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"
#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "invoice/InvoiceAmounts.h"
#include "invoice/InvoiceLookups.h"
#include "invoice/InvoiceStore.h"
#include "statement/DealPaper.h"
#include "statement/StatementIssue.h"
#include "statement/StatementSeal.h"
#include "storage/ChangeNotices.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>

namespace nb {

namespace {

const QString kPhoneKey = QStringLiteral("명세서전화번호");
const QString kBalanceKey = QStringLiteral("명세서미수금");
const QString kVatModeKey = QStringLiteral("명세서부가세구분");
const QString kReceiverPhoneEmpty = QStringLiteral("[공급받는자T:]");
const QString kSupplierPhoneEmpty = QStringLiteral("[공급자T:]");

// "[공급자T:02-123 F:02-124]": the telephone note of a party, the fax only when there is one.
QString phoneNote(const QString& head, const QString& phone, const QString& fax) {
    QString note = head + phone;
    if (!fax.isEmpty()) note += QStringLiteral(" F:") + fax;
    return note + u']';
}

// A box's text as a number, the way the screen reads its own boxes.
double boxValue(const QLineEdit* box) {
    return NumberFromText(FormatText(box->text(), QStringLiteral("0")));
}

} // namespace

FrmDealList::FrmDealList(QWidget* parent) : QWidget(parent), m_model(stores().dbBill) {
    buildControls();
    connectControls();
    loadForm();
    onActivation(this, [this] { firstActivate(); });
    // The statements another seat saves join the list; the lines being typed stay as they are.
    onListRefresh(this, [this] { refreshMasterList(); });
    refreshListsOnChanges(this, {&stores().dbBill});
}

VatMode FrmDealList::vatMode() const {
    if (gubun[0]->isChecked()) return VatMode::Separate;
    if (gubun[2]->isChecked()) return VatMode::Exempt;
    return VatMode::Included;
}

// ---- load and activation ---------------------------------------------------------------------

void FrmDealList::loadForm() {
    m_firstActivate = true;
    m_lastSavedCCode.clear();
    chk_Phone->setChecked(GetSetting(kAppSection, kEnvSection, kPhoneKey, QStringLiteral("0")) != u"0");
    ChkNonKum->setChecked(GetSetting(kAppSection, kEnvSection, kBalanceKey, QStringLiteral("1")) != u"0");
    cmbTelNo->setVisible(chk_Phone->isChecked());
    PreMisu->setVisible(ChkNonKum->isChecked());
    Misu->setVisible(ChkNonKum->isChecked());
    chkPrintFrame->setChecked(printFrameSetting());
    const int mode = GetSetting(kAppSection, kEnvSection, kVatModeKey, QStringLiteral("1")).toInt();
    gubun[size_t(qBound(0, mode, 2))]->setChecked(true);
    cmbTelNo->clear();
    cmbTelNo->addItems({kReceiverPhoneEmpty, kSupplierPhoneEmpty});
    cmbTelNo->setCurrentIndex(0);
    txtYear->setText(today().toString(QStringLiteral("yyyy")));
    gubun2[0]->setChecked(true);
    fillTerms(0);
    pnlHelp->setText(kDealListHelp);
    setupDetailGrid();
    setupMasterGrid();
    InitDateCell(spDate[0], true, today());
    InitDateCell(spDate[1], false, today());
    SetDateCellText(spDate[0], today().toString(QStringLiteral("yyyy-MM-01")));
    DetailClear();
    SealShow();
    // The user's own picture of the head when there is one; the drawn head otherwise.
    const QString background = userImage(QStringLiteral("bill_back.jpg"));
    if (!background.isEmpty()) Picture1->setBackgroundPicture(QPixmap(background));
}

void FrmDealList::setupDetailGrid() {
    spDetail->setMaxCols(ColBillSeq);
    spDetail->setMaxRows(15);
    const QStringList heads{QStringLiteral("품목"),     QStringLiteral("단위"),    QStringLiteral("수량"),
                            QStringLiteral("단가"),     QStringLiteral("금액"),    QStringLiteral("세액"),
                            QStringLiteral("거래번호"), QStringLiteral("거래순번")};
    const QStringList ids{QStringLiteral("PName"), QStringLiteral("Unit"),   QStringLiteral("Quant"),
                          QStringLiteral("Price"), QStringLiteral("Amount"), QStringLiteral("VAT")};
    const double widths[] = {23, 6, 8, 10, 11, 9, 7, 6};
    for (int c = 1; c <= ColBillSeq; ++c) {
        spDetail->SetText(c, 0, heads[c - 1]);
        spDetail->setColWidth(c, widths[c - 1]);
        if (c <= ColVat) spDetail->setColID(c, ids[c - 1]);
    }
    spDetail->SetLock(-1, -1, true);
    spDetail->SetOddEvenRowColor(0xFFFFFF, 0, 0xE0E0FF, 0);
    spDetail->setSelBackColor(12254974);
    spDetail->setEditModePermanent(true);
    // A cell entered by keys has its text selected, so what is typed replaces it.
    spDetail->setEditModeReplace(true);
    spDetail->setEnterAction(EnterAction::Next);
    spDetail->setProcessTab(true);
    SetFloatCell(*spDetail, ColQuant, app().DecimalQty, false);
    SetFloatCell(*spDetail, ColPrice, app().DecimalPrice, false);
    SetFloatCell(*spDetail, ColAmount, 0, false);
    SetFloatCell(*spDetail, ColVat, 0, false);
}

void FrmDealList::setupMasterGrid() {
    CommonSpreadDesign(*spMaster, true, true, true, true);
    spMaster->setMaxCols(ColSumTotal);
    const QStringList heads{QStringLiteral("발행일자"),   QStringLiteral("거래처명"),
                            QStringLiteral("건수"),       QStringLiteral("합계액"),
                            QStringLiteral("거래번호"),   QStringLiteral("거래처코드"),
                            QStringLiteral("총합계수량"), QStringLiteral("총합계금액")};
    const double widths[] = {10, 14, 5, 11, 7, 7, 8, 10};
    for (int c = 1; c <= ColSumTotal; ++c) {
        spMaster->SetText(c, 0, heads[c - 1]);
        spMaster->setColWidth(c, widths[c - 1]);
    }
    SetFloatCell(*spMaster, ColNumBill, 0, false);
    SetFloatCell(*spMaster, ColTotal, 0, false);
    spMaster->setColHidden(ColSumCount, true);
    spMaster->setColHidden(ColSumTotal, true);
    spMaster->setMaxRows(1);
    MakeTotalGrid(*spTotal, *spMaster, ColBillDate);
    spTotal->SetText(ColBillDate, 1, QStringLiteral("합계"));
    SetFloatCell(*spTotal, ColNumBill, 0, false);
    SetFloatCell(*spTotal, ColTotal, 0, false);
    LinkTotalGrid(*spTotal, *spMaster, {{ColSumCount, ColNumBill}, {ColSumTotal, ColTotal}});
    spTotal->move(spMaster->x(), spMaster->y() + spMaster->height() + 2);
    m_model.showListIn(&spMaster->cells());
}

void FrmDealList::firstActivate() {
    if (!m_firstActivate) return;
    m_firstActivate = false;
    QApplication::processEvents(); // let the screen paint before the store is read
    SupplierShow(app().DefaultSerial);
    if (!m_serialFound) return;
    if (!txtCCode->text().isEmpty()) TraderShow(txtCCode->text());
    MasterList(txtCCode->text());
}

// ---- supplier and trader ---------------------------------------------------------------------

void FrmDealList::SupplierShow(const QString& serial) {
    Recordset rs;
    const bool read = serial.isEmpty()
                          ? OpenSnapshot(stores().dbBasic, rs, QStringLiteral("SELECT * FROM User"))
                          : OpenSnapshot(stores().dbBasic, rs,
                                         QStringLiteral("SELECT * FROM User WHERE Serial = ?"), {serial});
    if (!read) return;
    m_serial = serial;
    for (QLineEdit* box : {CName1, UName1, Serial1, Addr1, Up1, Jong1})
        box->clear();
    m_serialFound = !rs.EOF_();
    if (!m_serialFound) {
        CloseRs(rs);
        cmbTelNo->setItemText(1, kSupplierPhoneEmpty);
        cmbTelNo->setCurrentIndex(0);
        ShowInfo(QStringLiteral("사용자등록을 먼저하셔야 합니다"));
        unloadScreen();
        if (invoiceLookups().userEntry) invoiceLookups().userEntry(nullptr);
        return;
    }
    CName1->setText(rs.text(QStringLiteral("Company")));
    UName1->setText(rs.text(QStringLiteral("Delegate")));
    Serial1->setText(rs.text(QStringLiteral("Serial")));
    Addr1->setText(rs.text(QStringLiteral("Addr")));
    Up1->setText(rs.text(QStringLiteral("Status")));
    Jong1->setText(rs.text(QStringLiteral("Item")));
    txtDate->setText(today().toString(QStringLiteral("yyyy년MM월dd일")));
    cmbTelNo->setItemText(1, phoneNote(QStringLiteral("[공급자T:"), rs.text(QStringLiteral("Phone")),
                                       rs.text(QStringLiteral("Fax"))));
    cmbTelNo->setCurrentIndex(0);
    CloseRs(rs);
}

// The screen goes with all it holds; the next opening loads it afresh.
void FrmDealList::unloadScreen() {
    if (auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget())) {
        frame->hide();
        frame->deleteLater();
    } else {
        hide();
        deleteLater();
    }
}

void FrmDealList::TraderClear() {
    for (QLineEdit* box : {CName2, UName2, Serial2, Addr2, Up2, Jong2})
        box->clear();
}

void FrmDealList::TraderShow(const QString& cCode) {
    TraderClear();
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("Select * From Trader where Code = ?"), {cCode}))
        return;
    if (rs.EOF_()) {
        cmbTelNo->setItemText(0, kReceiverPhoneEmpty);
    } else {
        CName2->setText(rs.text(QStringLiteral("C_Name")));
        UName2->setText(rs.text(QStringLiteral("U_Name")));
        Serial2->setText(rs.text(QStringLiteral("Serial")));
        Addr2->setText(rs.text(QStringLiteral("addr1")));
        Up2->setText(rs.text(QStringLiteral("status")));
        Jong2->setText(rs.text(QStringLiteral("item")));
        cmbTelNo->setItemText(0, phoneNote(QStringLiteral("[공급받는자T:"), rs.text(QStringLiteral("Phone")),
                                           rs.text(QStringLiteral("Fax"))));
    }
    cmbTelNo->setCurrentIndex(0);
    CloseRs(rs);
    m_model.setTrader(cCode, CName2->text());
}

void FrmDealList::searchSupplier() {
    if (!invoiceLookups().userList) return;
    std::unique_ptr<SearchList> list = invoiceLookups().userList(this);
    const int result = list->InitForm(Serial1, CName1->text(), QString(), 0);
    if (result == 0) {
        ShowInfo(QStringLiteral("등록된 공급자가 없습니다."));
        list.reset();
        CName1->clear();
        CName1->setFocus();
        return;
    }
    if (result == 2 || CName1->text().isEmpty()) list->showBelow(CName1);
    list.reset();
    if (!Serial1->text().isEmpty()) SupplierShow(Serial1->text());
    CName2->setFocus();
}

void FrmDealList::searchTrader() {
    txtCCode->clear();
    if (!invoiceLookups().traderList) return;
    std::unique_ptr<SearchList> list = invoiceLookups().traderList(this);
    const int result = list->InitForm(txtCCode, CName2->text(), QString(), 0);
    if (result == 2 || (result == 1 && CName2->text().isEmpty())) list->showBelow(CName2);
    list.reset();
    if (result == 0) {
        const QString question =
            CName2->text().isEmpty()
                ? QStringLiteral("등록된 매출처가 없습니다.\r\n신규 등록하겠습니까?")
                : QStringLiteral("검색한 매출처가 등록되어 있지 않습니다.\r\n매출처를 등록하겠습니까?");
        if (MsgBox(question, MbYesNo | MbQuestion, QStringLiteral("매출처 검색")) == AnsNo) {
            CName2->clear();
            CName2->setFocus();
            return;
        }
        if (invoiceLookups().newTrader)
            invoiceLookups().newTrader(this, txtCCode, CName2->text(),
                                       today().toString(QStringLiteral("yyyy-MM")), CName2);
    }
    if (txtCCode->text().isEmpty()) return;
    TraderShow(txtCCode->text());
    MasterList(txtCCode->text());
}

// ---- the statement list and the lines -----------------------------------------------------------

void FrmDealList::MasterList(const QString& cCode) {
    m_model.setTrader(txtCCode->text(), CName2->text());
    m_listing = true;
    m_model.masterList(stores().dbBasic.path(), DateCellText(spDate[0]), DateCellText(spDate[1]),
                       !cCode.isEmpty());
    spMaster->SetActiveCell(ColBillDate, m_model.activeMasterRow());
    m_listing = false;
    DetailList();
    if (isVisible()) (txtCCode->text().isEmpty() ? static_cast<QWidget*>(CName2) : spDetail)->setFocus();
    MasterTotalShow();
}

// The list as it was last read, afresh: the same statement chosen, the same rows in view (the
// chosen one where it was on the screen), the lines and the boxes untouched. Only when the
// chosen statement was deleted meanwhile does the screen go to the empty row, without lines.
void FrmDealList::refreshMasterList() {
    if (m_firstActivate || !m_serialFound) return;
    GridPlace place(*spMaster, ColMasterBillNo);
    const DealListModel::Relisted relisted = m_model.relist();
    if (relisted == DealListModel::Relisted::NotRead) return;
    m_listing = true;
    if (!place.restore([this](int row) { spMaster->SetActiveCell(ColBillDate, row); }))
        spMaster->SetActiveCell(ColBillDate, m_model.activeMasterRow());
    m_listing = false;
    if (relisted == DealListModel::Relisted::Gone) DetailList();
    MasterTotalShow();
}

void FrmDealList::DetailClear() {
    spDetail->setOperationMode(OperationMode::Normal);
    txtMemo->clear();
    for (QLineEdit* box : {gong, se, sum, PreMisu, Misu})
        box->setText(QStringLiteral("0"));
    ClearGrid(*spDetail);
    spDetail->SetLock(-1, -1, true);
}

void FrmDealList::DetailList() {
    DetailClear();
    const QList<StatementLine>& lines = m_model.lines();
    spDetail->setMaxRows(m_model.detailRowCount());
    // Written quietly, the view told once: a long statement's lines are not announced cell by cell.
    spDetail->fillQuietly([&] {
        for (int row = 1; row <= lines.size(); ++row) {
            const StatementLine& line = lines.at(row - 1);
            setCell(ColPName, row, line.pName);
            setCell(ColUnit, row, line.unit);
            setLineCell(ColQuant, row, line.quant);
            setLineCell(ColPrice, row, line.price);
            setLineCell(ColAmount, row, line.amount);
            setLineCell(ColVat, row, line.vat);
            setCell(ColBillNo, row, line.billNo);
            setCell(ColBillSeq, row, QString::number(line.billSeq));
            DetailRowUnlock(row);
        }
    });
    showTotals();
    if (!txtCCode->text().isEmpty()) DetailRowAppend();
    m_listing = true;
    spDetail->SetActiveCell(ColPName, int(lines.size()) + 1);
    m_listing = false;
    if (isVisible() && lines.isEmpty() && !txtCCode->text().isEmpty()) spDetail->setFocus();
}

void FrmDealList::showTotals() {
    gong->setText(FormatNumber(m_model.gong(), kMaskSum));
    se->setText(FormatNumber(m_model.se(), kMaskSum));
    sum->setText(FormatNumber(m_model.sum(), kMaskSum));
}

void FrmDealList::MasterTotalShow() {
    if (m_model.masterCount() == 0) {
        spTotal->SetText(ColNumBill, 1, QString());
        spTotal->SetText(ColTotal, 1, QString());
        return;
    }
    SetSumFormula(*spMaster, ColNumBill, ColSumCount);
    SetSumFormula(*spMaster, ColTotal, ColSumTotal);
}

void FrmDealList::PeriodTotalShow() {
    PeriodKind kind = PeriodKind::Quarter;
    if (gubun2[1]->isChecked()) kind = PeriodKind::Half;
    if (gubun2[2]->isChecked()) kind = PeriodKind::Year;
    // The year is the box's text as typed, put before the term's month and day.
    const DateRange range = periodRange(kind, CmbTerm->currentText(), 2000);
    const QString from = txtYear->text() + range.from.mid(4);
    const QString to = txtYear->text() + range.to.mid(4);
    if (const auto text = PeriodTotalText(stores().dbBill, from, to)) pnlSum->setText(*text);
}

void FrmDealList::fillTerms(int kind) {
    CmbTerm->clear();
    const QString month = today().toString(QStringLiteral("MM"));
    if (kind == 0) {
        CmbTerm->addItems(periodChoices(PeriodKind::Quarter));
        CmbTerm->setCurrentIndex((today().month() - 1) / 3);
    } else if (kind == 1) {
        CmbTerm->addItems(periodChoices(PeriodKind::Half));
        CmbTerm->setCurrentIndex(month < QStringLiteral("07") ? 0 : 1);
    } else {
        CmbTerm->addItems(periodChoices(PeriodKind::Year));
        CmbTerm->setCurrentIndex(0);
    }
}

// ---- choosing a statement ------------------------------------------------------------------------

void FrmDealList::chooseMasterRow(int row) {
    const QString before = txtCCode->text();
    m_model.chooseMaster(row);
    followTrader(before);
    DetailList();
}

// The trader of the statement now chosen becomes the screen's (none for the empty row).
void FrmDealList::followTrader(const QString& before) {
    const QString cCode = m_model.traderCode();
    if (cCode == before) return;
    txtCCode->setText(cCode);
    if (!cCode.isEmpty()) {
        TraderShow(cCode);
    } else {
        TraderClear();
        CName2->setFocus();
    }
}

void FrmDealList::btnNewMaster_Click() {
    txtCCode->clear();
    TraderClear();
    m_model.newMaster();
    m_listing = true;
    spMaster->SetActiveCell(ColBillDate, spMaster->MaxRows());
    m_listing = false;
    DetailList();
    CName2->setFocus();
}

void FrmDealList::cmdMaster_Click() {
    MasterList(txtCCode->text());
}

// ---- balance, memo, seal, settings --------------------------------------------------------------

void FrmDealList::showMisu() {
    Misu->setText(FormatNumber(boxValue(sum) + boxValue(PreMisu), kMaskSum));
}

void FrmDealList::cmdMemo_Click() {
    const QString answer = InputBox(
        QStringLiteral("거래명세표 발행시 인쇄될 비고를 입력하세요.\r\n최대입력 길이는 한글60자입니다."),
        QStringLiteral("비고입력"), QStringLiteral(" "));
    if (!answer.isEmpty()) txtMemo->setText(CutBytes(answer, 60));
}

void FrmDealList::SealShow() {
    const StatementSeal seal = readStatementSeal();
    if (seal.keep) return;
    const QPixmap pixmap = seal.image.isNull() ? QPixmap() : QPixmap::fromImage(seal.image);
    picSign->setPixmap(pixmap);
    imgPic->setPixmap(pixmap);
}

void FrmDealList::cmdSeal_Click() {
    const QString path = chooseStatementSeal(this);
    if (path.isEmpty()) return;
    saveStatementSealSetting(path);
    SealShow();
}

void FrmDealList::onCheckClicked(QCheckBox* box, const QString& key) {
    if (isVisible())
        SaveSetting(kAppSection, kEnvSection, key,
                    box->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    if (box == chk_Phone) cmbTelNo->setVisible(box->isChecked());
    if (box == ChkNonKum) {
        PreMisu->setVisible(box->isChecked());
        Misu->setVisible(box->isChecked());
    }
}

int FrmDealList::SelectedBillSeq(int row) const {
    return int(NumberFromText(cell(ColBillSeq, row == -2 ? spDetail->ActiveRow() : row)));
}

} // namespace nb
