#pragma once
// "매입ㆍ매출 계산서 관리": the issued invoices totalled per trader for a period (by dates, a
// quarter or a half of a year), kept in the work table SaleTotal, with the 합계표 report, the
// spreadsheet export and the electronic invoice sheet of the same period. The arithmetic and
// the store work live in TaxTotals, the report in TaxTotalsReport, the export in ExportGrid.

#include "management/TaxTotalsReport.h"

#include <QWidget>
#include <array>
#include <optional>

class QComboBox;
class QLabel;
class QPushButton;
class QStackedWidget;

namespace nb {

class DateBox;
class Grid;

inline const QString kTaxManageTitle = QStringLiteral("매입ㆍ매출 계산서 관리");

// The columns of grdList.
enum TotalsCol : int {
    ColDay = 1,
    ColTraderName,
    ColSale,
    ColSaleVat,
    ColSaleSum,
    ColBuy,
    ColBuyVat,
    ColBuySum,
    ColCode,
    ColTraderCode,
    ColGubun,
};

class FrmTaxManage : public QWidget {
    Q_OBJECT
public:
    explicit FrmTaxManage(QWidget* parent = nullptr);

    QComboBox *CmbGubun, *CmbYY, *CmbPeriod;
    QComboBox* CmbLayout; // the 합계표's layout: the official form or the list
    std::array<DateBox*, 2> txtDate{};
    QStackedWidget* pnlDisp; // the date pair, or the year and period
    Grid* grdList;
    std::array<QLabel*, 6> pnlSum{};
    QPushButton *btnSearch, *btnPrint, *btnExcel, *btnEtax, *btnPreview, *btnPrinter, *btnSetMargin, *btnExit;

    void InitForm();
    TotalsKind kind() const;
    TotalsPeriod period() const;
    // What the 합계표 prints: the last search, or the choice on the screen before any search.
    TotalsSearch searchToPrint() const;

public Q_SLOTS:
    void btnSearch_Click(); // SearchTotals
    void btnPrint_Click();
    void btnExcel_Click();
    void btnEtax_Click();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void buildGrid();
    void connectControls();
    void onGubunChanged(int index);
    void clearRows();
    void refreshTotals();
    void showRows(const TotalsRefill& refill);
    QString periodName() const;

    TotalsSearch currentSearch() const;

    std::optional<TotalsSearch> m_lastSearch;
    bool m_checkingDate = false;
    bool m_searching = false;
};

} // namespace nb
