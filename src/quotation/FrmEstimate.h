#pragma once
// "상품 견적서관리": one quotation written, looked up, changed, printed and deleted. The head
// (trader, dates, terms, total) stands above the lines of grdEstimate. There is no save button:
// a line is stored when it is complete, and the head each time the grid takes the focus. The VAT
// choice is a flag and a printed remark only. Numbers and texts of the lines live in
// EstimateRules, the writes in clsEstimate.

#include "quotation/EstimateRules.h"
#include "quotation/QuotationPrint.h"
#include "quotation/clsEstimate.h"

#include <QWidget>
#include <array>
#include <memory>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace nb {

class DateBox;
class Grid;
class HangulModeKeeper;

// The columns of grdEstimate.
enum EstimateCol : int {
    ColPName = 1,
    ColPNorm,
    ColUnit,
    ColAmount,
    ColPrice,
    ColKum,
    ColCode,
    ColPCode,
    ColSeq,
    kEstimateCols = ColSeq,
};

// The colour a line is painted while its delete is asked.
inline constexpr int kDeleteAskColor = 12632319;
inline const QString kGridHint = QStringLiteral("[대분류 검색:Enter] Or [상품명으로 검색]");

class FrmEstimate : public QWidget {
    Q_OBJECT
public:
    explicit FrmEstimate(QWidget* parent = nullptr);
    ~FrmEstimate() override;

    // ---- controls ---------------------------------------------------------------------------
    QLabel* pnlCode;
    std::array<DateBox*, 2> txtDate{};
    std::array<QLineEdit*, 6> txtinput{};
    QLabel* pnlHanKum;
    std::array<QRadioButton*, 2> OptVat{};
    QComboBox* CmbFind;
    QLineEdit* txtFind;
    QPushButton *btnFind, *btnNew, *btnPreview, *btnPrint, *btnExit;
    QLabel* pnlFunction;
    QLineEdit *txtCCode, *txtPCode;
    Grid* grdEstimate;
    QWidget* SSPanel7; // the frame of the lines, under which the product list opens

    // ---- state ------------------------------------------------------------------------------
    clsEstimate& Estimate() { return *m_estimate; }
    int LineCount() const { return m_lineCount; }
    bool IsNewDoc() const { return m_isNewDoc; }
    bool HangulOn() const;

    // ---- operations -------------------------------------------------------------------------
    void LoadLines();
    void DeleteLine();
    void ClearForm();
    void SearchProduct(int Row, bool& Found);
    void SaveHead(bool IsNew);
    void SaveLine(int Row);
    // False when the overflow refused the line: nothing was stored.
    bool RecalcLine(const QString& SeqText, int Row);
    // F5: the whole quotation with its lines, in one transaction.
    void DeleteWhole();
    // Enter in txtinput(0): the trader list, or a new trader.
    void searchTrader();

public Q_SLOTS:
    void btnNew_Click();
    void btnFind_Click();
    void btnPrint_Click();
    void btnPreview_Click();
    void btnExit_Click();

    // Wide enough for every shown column of the lines, the amount included: a work area opens
    // its child screens at this size.
    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // FrmEstimateBuild.cpp
    void buildControls();
    void buildGrid();
    void connectControls();
    // FrmEstimate.cpp
    void loadForm();
    void unload();
    void showNextCode();
    bool formKey(int key);
    bool inputKey(int index, int key);
    void inputFocus(int index, bool in);
    bool dateEvent(int index, QEvent* event);
    void gridFocusIn();
    void gridFocusOut();
    void onFocusChanged(QWidget* old, QWidget* now);
    void onVatClicked();
    void fillHead(const Recordset& rs);
    // FrmEstimatePrint.cpp
    std::optional<QuotationPrintData> printData();
    // FrmEstimateGrid.cpp
    void gridKey(int& key);
    void gridEnter();
    void onEditMode(int col, int row, int mode, bool changeMade);
    void onLeaveCell(int col, int row, int newCol, int newRow, bool& cancel);
    bool storedRow(int row) const;
    QString cell(int col, int row) const;
    void setCell(int col, int row, const QString& text);
    void clearGrid();
    QList<TotalRow> totalRows() const;

    std::unique_ptr<clsEstimate> m_estimate;
    HangulModeKeeper* m_hangul = nullptr;
    int m_lineCount = 0;
    QString m_oldDate;
    QString m_oldCell;
    bool m_isLoading = false;
    bool m_isBusy = false;
    bool m_isNewDoc = false;
    bool m_isDeleting = false;
    bool m_skipEdit = false;
    bool m_storeOpen = false;
    bool m_gridHasFocus = false; // the grid holds the screen's focus (a box may borrow it)
    bool m_unloaded = false;     // the screen was closed: the next showing loads it afresh
};

} // namespace nb
