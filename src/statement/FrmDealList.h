#pragma once
// "거래명세표 발행": the statement screen. A paper-like head with supplier and receiver, the lines
// of the open statement in spDetail on the left (typed straight in, each finished cell stored at
// once), the statements of a date range in spMaster on the right with their sums under them,
// and the total of all traders for a period. There is no save button: DealListModel does the
// storing and keeps the totals; this class holds the controls, their keys and the look-ups.

#include "statement/DealListModel.h"
#include "statement/LineAmounts.h"
#include "statement/StatementPrint.h"

#include <QWidget>
#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;
class QToolButton;

namespace nb {

class DateBox;
class Grid;
class DealPaper;

// The columns of spDetail; their identifiers are the field names of Detail.
enum DetailCol : int { ColPName = 1, ColUnit, ColQuant, ColPrice, ColAmount, ColVat, ColBillNo, ColBillSeq };
inline const QString kDealListTitle = QStringLiteral("거래명세표 발행");
inline const QString kDealListHelp =
    QStringLiteral("*삭제:[F4] *신규등록.검색:[상호]에서 [엔터] *검색이동:[F3]");

class FrmDealList : public QWidget {
    Q_OBJECT
public:
    explicit FrmDealList(QWidget* parent = nullptr);

    // ---- controls, named as the form names them ---------------------------------------------
    QLineEdit *CName1, *Serial1, *UName1, *Addr1, *Up1, *Jong1;
    QLineEdit *CName2, *Serial2, *UName2, *Addr2, *Up2, *Jong2;
    QLineEdit *txtCCode, *txtPCode;
    DateBox* txtDate;
    std::array<QPushButton*, 3> btnMonthView{};
    std::array<QTableWidget*, 2> spDate{};
    std::array<QToolButton*, 2> udDateUp{};
    std::array<QToolButton*, 2> udDateDown{};
    QCheckBox* chkChain;
    QPushButton* cmdMaster;
    Grid *spMaster, *spTotal, *spDetail;
    QLineEdit *gong, *se, *sum, *PreMisu, *Misu;
    QLineEdit* txtMemo;
    QPushButton* cmdMemo;
    QCheckBox *chk_Phone, *ChkNonKum;
    QCheckBox* chkPrintFrame; // "양식 포함 인쇄": the form printed under the values
    QComboBox* cmbTelNo;
    std::array<QRadioButton*, 3> gubun{};
    std::array<QRadioButton*, 3> gubun2{};
    QLineEdit* txtYear;
    QComboBox* CmbTerm;
    QLabel* pnlSum;
    QLabel *imgPic, *picSign;
    QPushButton *cmdSeal, *btnNewMaster, *btnPrint, *btnPreview, *btnPrinter, *btnSetMargin, *btnSample,
        *btnGoTax, *vaBtnEstimate;
    QLabel* pnlHelp;
    DealPaper* Picture1;

    // ---- state ------------------------------------------------------------------------------
    const DealListModel& model() const { return m_model; }
    QString LastSavedCCode() const { return m_lastSavedCCode; }
    QString supplierSerial() const { return m_serial; }
    VatMode vatMode() const;
    // What the print takes from the screen as it stands.
    StatementPrintData printData() const;

    // ---- procedures of the screen ----------------------------------------------------------
    void SupplierShow(const QString& serial);
    void TraderClear();
    void TraderShow(const QString& cCode);
    void MasterList(const QString& cCode);
    // The statement list read afresh in place (another seat's saves), see the definition.
    void refreshMasterList();
    void DetailList();
    void DetailClear();
    void MasterTotalShow();
    void PeriodTotalShow();
    void SealShow();
    QString SelectedBillNo() const { return m_model.selectedBillNo(); }
    int SelectedBillSeq(int row) const;
    void searchSupplier(); // Enter in CName1
    void searchTrader();   // Enter in CName2

public Q_SLOTS:
    void btnNewMaster_Click();
    void cmdMaster_Click();
    void cmdMemo_Click();
    void cmdSeal_Click();
    void btnGoTax_Click();
    void vaBtnEstimate_Click();
    void btnPrinter_Click();
    void btnSetMargin_Click();
    void btnSample_Click();
    void btnPrint_Click();
    void btnPreview_Click();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // FrmDealListBuild.cpp
    void buildControls();
    void buildPaperHead();
    void buildRangeControls();
    void buildGrids();
    void buildTotals();
    void buildButtons();
    QLineEdit* makeBox(const QString& name, const QRect& geometry, QWidget* parent);
    // FrmDealList.cpp
    void loadForm();
    void firstActivate();
    void unloadScreen();
    void setupDetailGrid();
    void setupMasterGrid();
    void chooseMasterRow(int row);
    void followTrader(const QString& cCode);
    void showTotals();
    void showMisu();
    void fillTerms(int kind);
    void onCheckClicked(QCheckBox* box, const QString& key);
    // FrmDealListKeys.cpp
    void connectControls();
    bool boxKey(QObject* watched, int key);
    bool leftWithinScreen(QEvent* focusOut) const;
    bool sealKey(int key);
    void deleteSeal();
    void detailKey(int& key);
    void masterKey(int& key);
    void deleteLine();
    void deleteStatement();
    void afterStatementGone();
    // FrmDealListLines.cpp
    void onDetailEditMode(int col, int row, int mode, bool changeMade);
    void onDetailLeaveCell(int col, int row, int newCol, int newRow, bool& cancel);
    bool productSearch(int row, QString& text);
    bool insertLine(int row, const QString& text);
    bool updateCell(int col, int row, const QString& field, const QVariant& value);
    void chainAfterProduct(int row);
    void recalcAfterEdit(int col, int row);
    void applyLineAmounts(int row, double oldQuant, double oldPrice);
    void DetailRowAppend();
    void DetailRowUnlock(int row);
    QString cell(int col, int row) const;
    double cellValue(int col, int row) const;
    void setCell(int col, int row, const QString& text);
    void setLineCell(int col, int row, double value);
    void onVatClicked(int index);

    DealListModel m_model;
    QString m_serial;
    QString m_lastSavedCCode;
    QString m_oldCellText;
    bool m_enterInEdit = false;
    bool m_listing = false; // the program moves the cursor of spMaster: no choice is made
    bool m_firstActivate = true;
    bool m_serialFound = false;
    bool m_checkingDate = false;
};

} // namespace nb
