#pragma once
// "세금계산서 발행": one tax invoice to one customer, written on a screen that looks like the
// paper form. The supplier half and the receiver half, five item lines, the writing date, the
// digit cells, the remark and 영수/청구 lie on the drawn paper; beside it the customer's earlier
// invoices with their totals and the totals of all customers for a period. The arithmetic,
// numbering, storage and print live in plain functions (InvoiceAmounts, InvoiceStore,
// InvoiceIssue); this class holds the controls, their keys and the look-ups.

#include "invoice/InvoiceAmounts.h"
#include "invoice/InvoiceForm.h"
#include "invoice/IssuedListReads.h"

#include <QWidget>
#include <array>
#include <functional>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

namespace nb {

class DateBox;
class DigitCells;
class Grid;
class TaxPaper;

// The columns of an item line, in the order of the line.
enum class LineField { ddyy, pummok, dan_num, su_num, gibon_num, gonggum, tax_num };
inline constexpr int kLineFieldCount = 7;

class FrmTax : public QWidget {
    Q_OBJECT
public:
    explicit FrmTax(QWidget* parent = nullptr);

    // Set by another screen before FrmTax opens; empty means the default supplier.
    QString UserSerial;

    // ---- controls, named as the form names them ---------------------------------------
    QLineEdit *CName_user, *Name_User, *Serial_user, *Address_User, *Job_User, *Sub_User;
    QLineEdit *CName_MAE, *Name_MAE, *Serial_Mae, *Address_MAE, *Job_MAE, *Sub_MAE;
    QLineEdit *txtCCode, *txtPCode, *TaxCode, *txtSeq;
    QLineEdit *write_yy, *write_mm, *write_dd;
    QLineEdit* field(LineField column, int i) const { return m_lines.at(size_t(column)).at(size_t(i)); }
    QLineEdit* ddyy(int i) const { return field(LineField::ddyy, i); }
    QLineEdit* pummok(int i) const { return field(LineField::pummok, i); }
    QLineEdit* dan_num(int i) const { return field(LineField::dan_num, i); }
    QLineEdit* su_num(int i) const { return field(LineField::su_num, i); }
    QLineEdit* gibon_num(int i) const { return field(LineField::gibon_num, i); }
    QLineEdit* gonggum(int i) const { return field(LineField::gonggum, i); }
    QLineEdit* tax_num(int i) const { return field(LineField::tax_num, i); }
    QPlainTextEdit* bigo;
    QLineEdit* youngsu;
    QRadioButton *Opt영수, *Opt청구;
    QGroupBox* pnlGubun;
    std::array<QRadioButton*, 3> vat_gubun{};
    std::array<QRadioButton*, 3> gubun2{};
    QComboBox* CmbTerm;
    QCheckBox *chk_Phone, *chkManualSeq, *chkPrnDate;
    QLineEdit* Sum_num;
    DigitCells* gong_num;
    std::array<QLabel*, 4> pnlSum{};
    QLabel* pnlHelp;
    std::array<DateBox*, 2> txtDate{};
    Grid* grdList;
    QLabel *imgPic, *picSign;
    QPushButton *vaBtn1, *vaBtn2, *vaBtn3, *vaBtn4, *vaBtn5, *vaBtn6, *btnSave, *btnTotal, *btnPrinter,
        *btnPreview, *cmdSeal;
    std::array<QPushButton*, 3> btnMonthView{};
    TaxPaper* paperArea;

    // ---- state --------------------------------------------------------------------------
    int CurLine() const { return m_sheet.curLine; }
    int FocusLine() const { return m_focusLine; }
    double LastSupply() const { return m_sheet.lastSupply; }
    double LastTax() const { return m_sheet.lastTax; }
    int ListRow() const { return m_listRow; }
    // The form's values as the plain rules see them.
    InvoiceForm formFromControls() const;

    // ---- public procedures --------------------------------------------------------------
    // Activation: the supplier, a receiver sent here, the period list and its totals.
    void init_form();
    void clear_input();
    // 검색Snp거래처 is ReadPrintParties (InvoicePrint.h), run by the issue.

    // ---- procedures used by the issue, the list and the summary -------------------------
    void ShowSupplier(const QString& serial);
    void ShowTrader(const QString& code);
    void LoadIssuedList(const QString& code);
    void reloadIssuedList(); // the same receiver's, keeping the operator's place
    bool PickProduct(int i);
    void DeleteLine(int i);
    void ShowPeriodTotal();
    void LoadSeal();
    void ChooseSealFile();
    void searchReceiver();           // Enter in CName_MAE
    void searchReceiverByInsert();   // Insert anywhere on the form
    void searchSupplier();           // Enter in CName_user
    void showIssuedInvoice(int row); // a click on a row of grdList
    void deleteIssuedInvoice();      // F4 on grdList
    void showReceipt(const QString& receipt);

public Q_SLOTS:
    void vaBtn2_Click();     // 발행
    void btnSave_Click();    // 저장
    void vaBtn3_Click();     // 다시입력
    void vaBtn5_Click();     // 집계
    void vaBtn4_Click();     // 견본보기
    void vaBtn6_Click();     // 거래명세표 발행창
    void btnPreview_Click(); // 미리보기: what 발행 would print now
    void btnPrinter_Click();
    void vaBtn1_Click();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // FrmTaxBuild.cpp
    void buildControls();
    void buildPaperFields();
    void buildPartyFields();
    void buildLineFields();
    void buildSideControls();
    void buildButtons();
    void buildTabOrder();
    void connectControls();
    QLineEdit* makeBox(const QString& name, const QRect& geometry, QWidget* parent);
    // FrmTax.cpp
    void loadForm();
    void readLines();
    void writeLines();
    bool runRule(const char* procedure, const std::function<void(InvoiceSheet&)>& rule);
    void applyFocus(FormFocus focus);
    void afterReceiverChosen();
    void setAllCustomerSums(double supply, double tax);
    void showAllTimeSums();
    void fillPeriodChoices();
    void onVatClicked(int index);
    void onTaxCodeChanged();
    void showSampleMissingOrPicture();
    // FrmTaxKeys.cpp
    bool lineFieldEvent(LineField column, int i, QEvent* event);
    bool lineFieldKey(LineField column, int i, int key);
    void lineFieldFocusIn(LineField column, int i);
    void lineFieldFocusOut(LineField column, int i);
    bool locateLineField(QObject* watched, LineField& column, int& i) const;
    void moveFocus(bool next);
    bool askDeleteLine(int i);
    bool otherFieldEvent(QObject* watched, QEvent* event);
    bool sealEvent(QObject* watched, QEvent* event);
    bool dateBoxLeft(int index);
    void markFocus(QWidget* box, bool focused);

    InvoiceSheet m_sheet;
    IssuedListReads m_issuedReads; // kept prepared while the screen lives
    std::array<std::array<QLineEdit*, kInvoiceLines>, kLineFieldCount> m_lines{};
    int m_focusLine = 0;
    int m_listRow = 1;
    QString m_savedTradeDate;
    bool m_redirecting = false;
    bool m_activatedOnce = false; // the first activation sums what the statement screen handed over
    bool m_checkingDate = false;
    bool m_loaded = false;
};

} // namespace nb
