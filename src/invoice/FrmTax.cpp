// FrmTax: load, activation, the parties, the issued list, the period totals, the buttons.
#include "invoice/FrmTax.h"

#include "common/ListRefresh.h"
#include "common/Messages.h"
#include "common/ScreenActivation.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateText.h"
#include "common/dates/FrmCalendar.h"
#include "common/grid/Grid.h"
#include "common/grid/GridPlace.h"
#include "common/input/SelectText.h"
#include "common/text/Identity.h"
#include "common/text/NumberFormat.h"
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "core/Settings.h"
#include "invoice/FrmPic.h"
#include "invoice/InvoiceIssue.h"
#include "invoice/InvoiceLookups.h"
#include "invoice/InvoiceSeal.h"
#include "invoice/InvoiceStore.h"
#include "invoice/StatementSummary.h"
#include "invoice/TaxPaper.h"
#include "printing/FrmMargin.h"
#include "printing/FrmSetPrinter.h"
#include "printing/PrinterSetup.h"
#include "storage/ChangeNotices.h"
#include "storage/Stores.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <utility>

namespace nb {

namespace {

const QString kPhoneKey = QStringLiteral("계산서전화번호");
const QString kManualSeqKey = QStringLiteral("일련번호직접입력");
const QString kModule = QStringLiteral("FrmTax");

// The column of grdList holding the invoice's number (TaxCode).
constexpr int kIssuedCodeCol = 5;

void setIfChanged(QLineEdit* box, const QString& text) {
    if (box->text() != text) box->setText(text);
}

} // namespace

FrmTax::FrmTax(QWidget* parent) : QWidget(parent) {
    buildControls();
    loadForm();
    onActivation(this, [this] { init_form(); });
    // The invoices another seat issues to the receiver on the screen join its list.
    onListRefresh(this, [this] {
        if (!txtCCode->text().isEmpty()) reloadIssuedList();
    });
    refreshListsOnChanges(this, {&stores().dbTax});
}

// ---- sheet <-> controls ------------------------------------------------------------------

void FrmTax::readLines() {
    for (int i = 0; i < kInvoiceLines; ++i) {
        InvoiceLine& l = m_sheet.line(i);
        l.ddyy = ddyy(i)->text();
        l.pummok = pummok(i)->text();
        l.dan_num = dan_num(i)->text();
        l.su_num = su_num(i)->text();
        l.gibon_num = gibon_num(i)->text();
        l.gonggum = gonggum(i)->text();
        l.tax_num = tax_num(i)->text();
    }
    m_sheet.sumNum = Sum_num->text();
    m_sheet.gongCaption = gong_num->text();
}

void FrmTax::writeLines() {
    for (int i = 0; i < kInvoiceLines; ++i) {
        const InvoiceLine& l = m_sheet.line(i);
        setIfChanged(ddyy(i), l.ddyy);
        setIfChanged(pummok(i), l.pummok);
        setIfChanged(dan_num(i), l.dan_num);
        setIfChanged(su_num(i), l.su_num);
        setIfChanged(gibon_num(i), l.gibon_num);
        setIfChanged(gonggum(i), l.gonggum);
        setIfChanged(tax_num(i), l.tax_num);
    }
    setIfChanged(Sum_num, m_sheet.sumNum);
    gong_num->setText(m_sheet.gongCaption);
}

// Runs an arithmetic rule on the lines; a run-time error of the rule is reported as the
// failure report of the procedure, and the lines keep what the rule wrote before it.
bool FrmTax::runRule(const char* procedure, const std::function<void(InvoiceSheet&)>& rule) {
    readLines();
    bool ok = true;
    try {
        rule(m_sheet);
    } catch (const InvoiceArithmeticError& e) {
        ShowFailureReport(e.number(), e.description(), QString::fromLatin1(procedure), kModule);
        ok = false;
    }
    writeLines();
    return ok;
}

InvoiceForm FrmTax::formFromControls() const {
    InvoiceForm form;
    form.sheet = m_sheet;
    for (int i = 0; i < kInvoiceLines; ++i)
        form.sheet.line(i) = {ddyy(i)->text(),      pummok(i)->text(),  dan_num(i)->text(), su_num(i)->text(),
                              gibon_num(i)->text(), gonggum(i)->text(), tax_num(i)->text()};
    form.txtCCode = txtCCode->text();
    form.TaxCode = TaxCode->text();
    form.txtSeq = txtSeq->text();
    form.manualSeq = txtSeq->isEnabled();
    form.writeYY = write_yy->text();
    form.writeMM = write_mm->text();
    form.writeDD = write_dd->text();
    form.bigo = bigo->toPlainText();
    form.youngsu = youngsu->text();
    form.serialUser = Serial_user->text();
    form.userSerial = UserSerial;
    form.printDate = chkPrnDate->isChecked();
    form.printPhone = chk_Phone->isChecked();
    return form;
}

void FrmTax::applyFocus(FormFocus focus) {
    switch (focus) {
    case FormFocus::CName_MAE:
        CName_MAE->setFocus();
        break;
    case FormFocus::Pummok0:
        pummok(0)->setFocus();
        break;
    case FormFocus::Grid:
        grdList->setFocus();
        break;
    case FormFocus::Unchanged:
        break;
    }
}

void FrmTax::clear_input() {
    m_sheet.clearLines();
    writeLines();
    gong_num->setText(QString());
    Sum_num->clear();
    bigo->clear();
    CName_MAE->setFocus();
}

// ---- load and activation -----------------------------------------------------------------

void FrmTax::loadForm() {
    const QDate now = today();
    write_yy->setText(now.toString(QStringLiteral("yyyy")));
    write_mm->setText(now.toString(QStringLiteral("MM")));
    write_dd->setText(now.toString(QStringLiteral("dd")));
    youngsu->setText(QStringLiteral("영수"));
    txtDate[0]->setDateText(FirstOfMonthText(now));
    txtDate[1]->setDateText(DateText(now));
    const std::optional<TaxSums> sums = ReadAllTaxSums(stores().dbTax);
    if (!sums) return;
    txtSeq->setText(QStringLiteral("000-000"));
    setAllCustomerSums(sums->supply, sums->tax);
    chk_Phone->setChecked(GetEnv(kPhoneKey, QStringLiteral("0")) == u"1");
    chkManualSeq->setChecked(GetEnv(kManualSeqKey, QStringLiteral("0")) == u"1");
    txtSeq->setEnabled(chkManualSeq->isChecked());
    LoadSeal();
    // The user's own picture of the form, when there is one; the drawn form otherwise.
    const QString background = userImage(QStringLiteral("tax_back.jpg"));
    if (!background.isEmpty()) paperArea->setBackgroundPicture(QPixmap(background));
    m_loaded = true;
}

void FrmTax::init_form() {
    if (auto* sub = qobject_cast<QMdiSubWindow*>(parentWidget())) sub->move(sub->x(), 47);
    ShowSupplier(UserSerial.isEmpty() ? app().DefaultSerial : UserSerial);
    // The statement screen hands a trader over by loading this screen afresh: its statements
    // are summed once, on that first activation, never again over what was typed since.
    const bool handOver = !std::exchange(m_activatedOnce, true);
    if (!txtCCode->text().isEmpty()) {
        ShowTrader(txtCCode->text());
        reloadIssuedList();
        if (handOver) vaBtn5_Click();
    }
    fillPeriodChoices();
    const QString year = today().toString(QStringLiteral("yyyy"));
    if (const auto sums =
            ReadTaxSums(stores().dbTax, year + QStringLiteral("-01-01"), year + QStringLiteral("-03-31")))
        setAllCustomerSums(sums->supply, sums->tax);
}

void FrmTax::fillPeriodChoices() {
    const QSignalBlocker block(CmbTerm);
    CmbTerm->clear();
    CmbTerm->addItems(periodChoices(PeriodKind::Quarter));
    CmbTerm->setCurrentIndex(0);
}

void FrmTax::setAllCustomerSums(double supply, double tax) {
    pnlSum[2]->setText(sumPanelText(supply, kMaskSum));
    pnlSum[3]->setText(sumPanelText(tax, kMaskSum));
}

void FrmTax::showAllTimeSums() {
    if (const auto sums = ReadAllTaxSums(stores().dbTax)) setAllCustomerSums(sums->supply, sums->tax);
}

void FrmTax::ShowPeriodTotal() {
    PeriodKind kind = PeriodKind::Quarter;
    if (gubun2[1]->isChecked()) kind = PeriodKind::Half;
    if (gubun2[2]->isChecked()) kind = PeriodKind::Year;
    const DateRange range = periodRange(kind, CmbTerm->currentText(), today().year());
    if (const auto sums = m_issuedReads.periodSums(stores().dbTax, range.from, range.to))
        setAllCustomerSums(sums->supply, sums->tax);
}

// ---- parties -------------------------------------------------------------------------------

void FrmTax::ShowSupplier(const QString& serial) {
    Recordset rs;
    const bool read = serial.isEmpty()
                          ? OpenSnapshot(stores().dbBasic, rs, QStringLiteral("SELECT * FROM User"))
                          : OpenSnapshot(stores().dbBasic, rs,
                                         QStringLiteral("SELECT * FROM User WHERE Serial = ?"), {serial});
    if (!read) return;
    if (rs.EOF_()) {
        CloseRs(rs);
        ShowInfo(QStringLiteral("사용자등록을 먼저하셔야 합니다"));
        if (invoiceLookups().userEntry) invoiceLookups().userEntry(this);
        return;
    }
    CName_user->setText(rs.text(QStringLiteral("Company")));
    Name_User->setText(rs.text(QStringLiteral("Delegate")));
    Serial_user->setText(rs.text(QStringLiteral("Serial")));
    Address_User->setText(rs.text(QStringLiteral("Addr")));
    Job_User->setText(rs.text(QStringLiteral("Status")));
    Sub_User->setText(rs.text(QStringLiteral("Item")));
    CloseRs(rs);
}

void FrmTax::ShowTrader(const QString& code) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("SELECT * FROM Trader where Code = ?"), {code}))
        return;
    if (!rs.EOF_()) {
        CName_MAE->setText(rs.text(QStringLiteral("C_Name")));
        Name_MAE->setText(rs.text(QStringLiteral("U_Name")));
        Serial_Mae->setText(rs.text(QStringLiteral("Serial")));
        Address_MAE->setText(rs.text(QStringLiteral("Addr1")));
        Job_MAE->setText(rs.text(QStringLiteral("Status")));
        Sub_MAE->setText(rs.text(QStringLiteral("Item")));
    }
    CloseRs(rs);
}

void FrmTax::searchSupplier() {
    if (!invoiceLookups().userList) return;
    const QString text = CName_user->text();
    std::unique_ptr<SearchList> list = invoiceLookups().userList(this);
    const int result = list->InitForm(Serial_user, text, QString(), 0);
    if (result == 0) {
        ShowInfo(QStringLiteral("등록된 공급자가 없습니다."));
        CName_user->clear();
        CName_user->setFocus();
        return;
    }
    if (result == 2 || text.isEmpty()) list->showBelow(CName_user);
    list.reset();
    if (!Serial_user->text().isEmpty()) {
        ShowSupplier(Serial_user->text());
        moveFocus(true);
    }
}

void FrmTax::searchReceiver() {
    txtCCode->clear();
    m_sheet.curLine = 0;
    clear_input();
    if (!invoiceLookups().traderList) return;
    const QString text = CName_MAE->text();
    std::unique_ptr<SearchList> list = invoiceLookups().traderList(this);
    const int result = list->InitForm(txtCCode, text, QString(), 0);
    if (result == 2 || (result == 1 && text.isEmpty())) list->showBelow(pnlGubun);
    list.reset();
    if (result == 0) {
        const QString question =
            text.isEmpty()
                ? QStringLiteral("등록된 매출처가 없습니다.\n신규 등록하겠습니까?")
                : QStringLiteral("검색한 매출처가 등록되어 있지 않습니다.\n매출처를 등록하겠습니까?");
        if (MsgBox(question, MbYesNo | MbQuestion, QStringLiteral("매출처 검색")) == AnsYes) {
            if (invoiceLookups().newTrader)
                invoiceLookups().newTrader(this, txtCCode, text, today().toString(QStringLiteral("yyyy-MM")),
                                           CName_MAE);
        } else {
            CName_MAE->clear();
            CName_MAE->setFocus();
        }
    }
    if (!txtCCode->text().isEmpty()) afterReceiverChosen();
}

void FrmTax::searchReceiverByInsert() {
    if (!invoiceLookups().traderList) return;
    std::unique_ptr<SearchList> list = invoiceLookups().traderList(this);
    const int result = list->InitForm(txtCCode, QString(), QString(), 0);
    if (result != 0) {
        list->showBelow(pnlGubun);
        list.reset();
    } else {
        list.reset();
        if (MsgBox(QStringLiteral("등록된 매출처가 없습니다.\n신규 등록하겠습니까?"), MbYesNo | MbQuestion,
                   QStringLiteral("매출처 검색")) == AnsYes) {
            if (invoiceLookups().newTrader)
                invoiceLookups().newTrader(this, txtCCode, QString(),
                                           today().toString(QStringLiteral("yyyy-MM")), CName_MAE);
        } else {
            CName_MAE->setFocus();
            return;
        }
    }
    if (!txtCCode->text().isEmpty()) afterReceiverChosen();
}

void FrmTax::afterReceiverChosen() {
    ShowTrader(txtCCode->text());
    m_sheet.curLine = 0;
    pummok(0)->setFocus();
    ddyy(0)->setText(write_mm->text() + u'-' + write_dd->text());
    LoadIssuedList(txtCCode->text());
}

// ---- products --------------------------------------------------------------------------------

bool FrmTax::PickProduct(int i) {
    const QString text = pummok(i)->text().trimmed();
    if (invoiceLookups().productList) {
        std::unique_ptr<SearchList> list = invoiceLookups().productList(this);
        const int result = list->InitForm(txtPCode, text, txtCCode->text(), 1);
        if (result != 0) {
            list->showBelow(pummok(i));
        } else {
            list.reset();
            const QString question = (text.isEmpty() ? QStringLiteral("등록된 상품이 없습니다. ")
                                                     : QStringLiteral("검색된 상품이 없습니다. ")) +
                                     QStringLiteral("\n\n상품을 등록하시겠습니까?    ");
            if (MsgBox(question, 1 | MbQuestion, QStringLiteral("상품 검색")) != AnsOk) {
                pummok(i)->clear();
                pummok(i)->setFocus();
                return false;
            }
            if (invoiceLookups().newProduct)
                invoiceLookups().newProduct(this, txtPCode, QString(), DateText(today()), pummok(i));
        }
    }
    if (txtPCode->text().isEmpty()) return false;
    Recordset rs;
    if (OpenSnapshot(stores().dbBasic, rs, QStringLiteral("Select * from Product where Code = ?"),
                     {txtPCode->text()}) &&
        !rs.EOF_()) {
        const double price = rs.number(QStringLiteral("SalePrice"));
        pummok(i)->setText(NameWithNorm(rs.text(QStringLiteral("PName")), rs.field(QStringLiteral("PNorm"))));
        dan_num(i)->setText(rs.text(QStringLiteral("Unit")));
        runRule("PickProduct", [&](InvoiceSheet& s) { ApplyPickedProduct(s, i, price); });
    }
    CloseRs(rs);
    su_num(i)->setFocus();
    SelectAllText(su_num(i)); // the "1" put there is replaced by the quantity typed, not added to
    return true;
}

void FrmTax::DeleteLine(int i) {
    runRule("DeleteLine",
            [&](InvoiceSheet& s) { nb::DeleteLine(s, i, write_mm->text() + u'-' + write_dd->text()); });
    pummok(m_sheet.curLine)->setFocus();
}

// ---- the issued list -------------------------------------------------------------------------

// The list reads the customer's invoices as it is seen; the count and the sums come from their
// own query, so a long list is neither walked nor written cell by cell. The new list takes the
// place of the one before in one change of the grid, with the blank rows that keep the grid's
// length (or one to spare after a long list): the view and its row header are laid out once,
// and a list as long as the one before leaves the row header as it is.
void FrmTax::LoadIssuedList(const QString& code) {
    m_listRow = 1;
    const int shownRows = grdList->MaxRows(); // blanked, the grid keeps its rows
    m_issuedReads.endInvoices(); // the list before, still reading, would hold the store's state of then
    const std::optional<IssuedSums> sums = m_issuedReads.customerSums(stores().dbTax, code);
    std::unique_ptr<GridRowSource> rows;
    if (sums && sums->invoices > 0) rows = m_issuedReads.invoices(stores().dbTax, code);
    if (!rows) {
        grdList->setMaxRows(0);
        grdList->setMaxRows(shownRows);
        pnlSum[0]->clear();
        pnlSum[1]->clear();
        return;
    }
    const int blankRows = sums->invoices > shownRows ? 1 : shownRows - sums->invoices;
    grdList->cells().showList(std::move(rows), sums->invoices, false, blankRows);
    m_listRow = sums->invoices + 1;
    pnlSum[0]->setText(sumPanelText(sums->supply, QStringLiteral("#,###,##0")));
    pnlSum[1]->setText(sumPanelText(sums->tax, QStringLiteral("#,###,##0")));
    ShowPeriodTotal();
}

// The list of the receiver on the screen read again where the operator left it: the same
// invoice chosen, the same rows in view; the form's lines are not touched.
void FrmTax::reloadIssuedList() {
    GridPlace place(*grdList, kIssuedCodeCol);
    LoadIssuedList(txtCCode->text());
    place.restore();
}

void FrmTax::showIssuedInvoice(int row) {
    pnlHelp->setText(QStringLiteral("출력하고자하는 내역을 선택하세요. [ 내역삭제 : F4 ]"));
    const QString code = grdList->Text(kIssuedCodeCol, row);
    if (code.isEmpty()) return;
    m_sheet.curLine = 0;
    clear_input();
    const std::optional<IssuedInvoice> invoice = ReadIssuedInvoice(stores().dbTax, code);
    if (!invoice) return;
    TaxCode->setText(invoice->taxCode);
    const WritingDate date = writingDateOf(invoice->dealDate);
    write_yy->setText(date.yy);
    write_mm->setText(date.mm);
    write_dd->setText(date.dd);
    bigo->setPlainText(invoice->remark);
    showReceipt(invoice->receipt);
    runRule("grdList_Click", [&](InvoiceSheet& s) { ShowIssuedInvoice(s, *invoice); });
    grdList->setFocus();
    // clear_input's focus on CName_MAE has put its own help in the panel meanwhile.
    pnlHelp->setText(QStringLiteral("출력하고자하는 내역을 선택하세요. [ 내역삭제 : F4 ]"));
}

// The stored 영수/청구 of an issued invoice; older invoices do not say and leave the choice as it is.
void FrmTax::showReceipt(const QString& receipt) {
    QRadioButton* option = receipt == u"청구" ? Opt청구 : receipt == u"영수" ? Opt영수 : nullptr;
    if (!option) return;
    option->setChecked(true);
    youngsu->setText(option->text());
}

void FrmTax::deleteIssuedInvoice() {
    const int row = grdList->ActiveRow();
    const QString code = grdList->Text(kIssuedCodeCol, row);
    if (code.isEmpty()) return;
    grdList->selectRow(row - 1);
    if (MsgBox(QStringLiteral("선택하신 기존발행내역을 삭제하시겠습니까?"), MbYesNo | MbQuestion,
               QStringLiteral("기존발행내역 삭제")) != AnsYes)
        return;
    DeleteInvoice(stores().dbTax, code);
    LoadIssuedList(txtCCode->text());
    grdList->SetActiveCell(1, qMax(1, row));
    clear_input();
    TaxCode->clear();
}

void FrmTax::onTaxCodeChanged() {
    if (txtSeq->isEnabled()) return;
    txtSeq->setText(serialFromTaxCode(TaxCode->text()));
}

// ---- seal ------------------------------------------------------------------------------------

void FrmTax::LoadSeal() {
    const QImage seal = loadSealImage();
    const QPixmap pixmap = seal.isNull() ? QPixmap() : QPixmap::fromImage(seal);
    imgPic->setPixmap(pixmap);
    picSign->setPixmap(pixmap);
}

void FrmTax::ChooseSealFile() {
    const QString path = fileChooser().openFile(this, kSealDialogTitle, kSealDialogFilter, appFolder());
    if (path.isEmpty()) return;
    saveSealSetting(path);
    LoadSeal();
}

// ---- buttons ---------------------------------------------------------------------------------

void FrmTax::vaBtn2_Click() {
    InvoiceForm form = formFromControls();
    const QImage seal = imgPic->pixmap().isNull() ? QImage() : imgPic->pixmap().toImage();
    const IssueResult result = IssueInvoice(form, seal);
    applyFocus(result.focus);
    // An invoice stored whose paper failed is on the list: its lines must not be issued twice.
    if (!result.printed && result.storedTaxCode.isEmpty()) return;
    txtSeq->setText(form.txtSeq);
    clear_input();
    LoadIssuedList(txtCCode->text());
}

void FrmTax::btnSave_Click() {
    InvoiceForm form = formFromControls();
    const SaveResult result = SaveInvoice(form, stores().dbTax);
    if (!result.saved) {
        applyFocus(result.focus);
        return;
    }
    LoadIssuedList(txtCCode->text());
    pummok(0)->setFocus();
    showAllTimeSums();
    ShowNotice(QStringLiteral("자료가 저장되었습니다."));
    clear_input();
}

void FrmTax::vaBtn3_Click() {
    clear_input();
    for (QLineEdit* box : {CName_MAE, Serial_Mae, Name_MAE, Address_MAE, Job_MAE, Sub_MAE, txtCCode, TaxCode})
        box->clear();
}

void FrmTax::vaBtn5_Click() {
    const QString code = txtCCode->text();
    if (code.isEmpty()) {
        ShowInfo(QStringLiteral("거래처를 선택하여주세요"));
        CName_MAE->setFocus();
        return;
    }
    const auto summary =
        SummarizeStatements(stores().dbBill, code, txtDate[0]->dateText(), txtDate[1]->dateText());
    if (!summary) {
        ShowInfo(QStringLiteral("집계내역이 존재하지 않습니다."));
        return;
    }
    clear_input();
    TaxCode->clear();
    const QString mmdd = write_mm->text() + u'-' + write_dd->text();
    runRule("vaBtn5_Click", [&](InvoiceSheet& s) { ApplyStatementSummary(s, *summary, mmdd); });
}

void FrmTax::vaBtn4_Click() {
    FrmPic pic(this);
    pic.exec();
}

void FrmTax::btnPreview_Click() {
    const QImage seal = imgPic->pixmap().isNull() ? QImage() : imgPic->pixmap().toImage();
    applyFocus(PreviewInvoice(this, formFromControls(), seal));
}

// The statement screen, handed the trader of this screen.
void FrmTax::vaBtn6_Click() {
    const QString statements = QStringLiteral("mnu_거래명세표");
    if (QWidget* screen = loadScreen(statements, false))
        if (auto* code = screen->findChild<QLineEdit*>(QStringLiteral("txtCCode")))
            code->setText(txtCCode->text());
    openScreen(statements);
}

void FrmTax::btnPrinter_Click() {
    FrmSetPrinter form(this);
    form.InitForm(0);
    form.exec();
    if (savedDocPrinter(0).isEmpty()) GetDefaultPrinter();
}

void FrmTax::vaBtn1_Click() {
    FrmMargin form(this);
    form.InitForm(0);
    form.exec();
}

void FrmTax::onVatClicked(int index) {
    runRule("vat_gubun_Click", [&](InvoiceSheet& s) { ChangeVatMode(s, VatMode(index)); });
}

void FrmTax::connectControls() {
    connect(vaBtn2, &QPushButton::clicked, this, &FrmTax::vaBtn2_Click);
    connect(btnSave, &QPushButton::clicked, this, &FrmTax::btnSave_Click);
    connect(vaBtn3, &QPushButton::clicked, this, &FrmTax::vaBtn3_Click);
    connect(vaBtn5, &QPushButton::clicked, this, &FrmTax::vaBtn5_Click);
    connect(vaBtn6, &QPushButton::clicked, this, &FrmTax::vaBtn6_Click);
    connect(btnPreview, &QPushButton::clicked, this, &FrmTax::btnPreview_Click);
    connect(btnTotal, &QPushButton::clicked, this, [] { openScreen(QStringLiteral("mnu_InvoiceTotal")); });
    connect(vaBtn4, &QPushButton::clicked, this, &FrmTax::vaBtn4_Click);
    connect(btnPrinter, &QPushButton::clicked, this, &FrmTax::btnPrinter_Click);
    connect(vaBtn1, &QPushButton::clicked, this, &FrmTax::vaBtn1_Click);
    connect(cmdSeal, &QPushButton::clicked, this, &FrmTax::ChooseSealFile);
    connect(TaxCode, &QLineEdit::textChanged, this, &FrmTax::onTaxCodeChanged);
    for (int k = 0; k < 3; ++k) {
        connect(vat_gubun[size_t(k)], &QRadioButton::clicked, this, [this, k] { onVatClicked(k); });
        connect(gubun2[size_t(k)], &QRadioButton::clicked, this, [this, k] {
            const QSignalBlocker block(CmbTerm);
            CmbTerm->clear();
            CmbTerm->addItems(periodChoices(PeriodKind(k)));
            CmbTerm->setCurrentIndex(0);
            ShowPeriodTotal();
        });
    }
    connect(CmbTerm, &QComboBox::currentIndexChanged, this, [this] { ShowPeriodTotal(); });
    connect(Opt영수, &QRadioButton::clicked, this, [this] { youngsu->setText(Opt영수->text()); });
    connect(Opt청구, &QRadioButton::clicked, this, [this] { youngsu->setText(Opt청구->text()); });
    connect(chk_Phone, &QCheckBox::clicked, this,
            [](bool on) { SaveEnv(kPhoneKey, on ? QStringLiteral("1") : QStringLiteral("0")); });
    connect(chkManualSeq, &QCheckBox::clicked, this, [this](bool on) {
        SaveEnv(kManualSeqKey, on ? QStringLiteral("1") : QStringLiteral("0"));
        txtSeq->setEnabled(on);
    });
    connect(grdList, &Grid::click, this, [this](int, int row) { showIssuedInvoice(row); });
    connect(grdList, &Grid::keyDown, this, [this](int& key, Qt::KeyboardModifiers) {
        if (key == Qt::Key_F4) {
            deleteIssuedInvoice();
            key = 0;
        }
    });
    for (int k = 0; k < 2; ++k)
        connect(btnMonthView[size_t(k)], &QPushButton::clicked, this, [this, k] {
            DateBox* box = txtDate[size_t(k)];
            box->setDateText(ShowCalendar(box->dateText(), box));
            box->setFocus();
        });
    connect(btnMonthView[2], &QPushButton::clicked, this, [this] {
        // Three boxes that make no date open the calendar on today (and Escape writes today).
        QString written = write_yy->text() + u'-' + write_mm->text() + u'-' + write_dd->text();
        if (!IsDate(written)) written = DateText(today());
        const QString chosen = ShowCalendar(written, write_yy);
        if (!IsDate(chosen)) return;
        const WritingDate date = writingDateOf(chosen);
        write_yy->setText(date.yy);
        write_mm->setText(date.mm);
        write_dd->setText(date.dd);
    });
}

} // namespace nb
