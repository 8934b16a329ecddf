#include "management/FrmTaxManage.h"

#include "common/FileChooser.h"
#include "common/FormBuild.h"
#include "common/ListRefresh.h"
#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateCells.h"
#include "common/grid/Grid.h"
#include "common/grid/GridPlace.h"
#include "common/grid/MduSpread.h"
#include "core/Clock.h"
#include "management/ExportGrid.h"
#include "management/TaxTotalsReport.h"
#include "management/etax/EtaxExportRun.h"
#include "printing/FrmMargin.h"
#include "printing/FrmSetPrinter.h"
#include "printing/GridPrint.h"
#include "storage/ChangeNotices.h"
#include "storage/Stores.h"

#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSqlQuery>
#include <QStackedWidget>
#include <QStandardPaths>

namespace nb {

namespace {

constexpr int kListRows = 18;
constexpr int kTotalsDocumentIndex = 6; // "세금계산서 합계표" of the printer and margin screens

} // namespace

FrmTaxManage::FrmTaxManage(QWidget* parent) : QWidget(parent) {
    buildControls();
    buildGrid();
    connectControls();
    InitForm();
    // The invoices issued or bought meanwhile (here, or at another seat) counted in again.
    onListRefresh(this, [this] { refreshTotals(); });
    refreshListsOnChanges(this, {&stores().dbTax});
}

void FrmTaxManage::buildControls() {
    setObjectName(QStringLiteral("FrmTaxManage"));
    setWindowTitle(kTaxManageTitle);
    setFixedSize(1010, 620);
    auto* label = new QLabel(QStringLiteral("검색구분"), this);
    label->setGeometry(10, 12, 60, 24);
    CmbGubun = makeList(this, QStringLiteral("CmbGubun"), QRect(72, 12, 230, 24));
    CmbGubun->addItems({QStringLiteral("1. 월별 검색"), QStringLiteral("2. 분기별 검색(4/4분기)"),
                        QStringLiteral("3. 분기별 검색(2/2분기)!")});
    pnlDisp = new QStackedWidget(this);
    pnlDisp->setObjectName(QStringLiteral("pnlDisp"));
    pnlDisp->setGeometry(312, 10, 300, 28);
    auto* dates = new QWidget(pnlDisp);
    for (int k = 0; k < 2; ++k) {
        txtDate[size_t(k)] = new DateBox(dates);
        txtDate[size_t(k)]->setObjectName(QStringLiteral("txtDate_%1").arg(k));
        txtDate[size_t(k)]->setGeometry(k * 150, 2, 120, 24);
        txtDate[size_t(k)]->installEventFilter(this);
    }
    (new QLabel(QStringLiteral("~"), dates))->setGeometry(128, 2, 14, 24);
    auto* yearAndPeriod = new QWidget(pnlDisp);
    CmbYY = makeList(yearAndPeriod, QStringLiteral("CmbYY"), QRect(0, 2, 90, 24));
    CmbPeriod = makeList(yearAndPeriod, QStringLiteral("CmbPeriod"), QRect(96, 2, 150, 24));
    pnlDisp->addWidget(dates);
    pnlDisp->addWidget(yearAndPeriod);
    btnSearch =
        makeButton(this, QStringLiteral("btnSearch"), QStringLiteral("검색(&S)"), QRect(620, 10, 90, 28));
    (new QLabel(QStringLiteral("합계표 양식"), this))->setGeometry(740, 12, 70, 24);
    CmbLayout = makeList(this, QStringLiteral("CmbLayout"), QRect(812, 12, 188, 24));
    CmbLayout->addItems(totalsLayoutNames());
    CmbLayout->setCurrentIndex(int(savedTotalsLayout()));
    const QStringList heads{QStringLiteral("매출액"),     QStringLiteral("매출부가세"),
                            QStringLiteral("매출합계"),   QStringLiteral("매입액"),
                            QStringLiteral("매입부가세"), QStringLiteral("매입합계")};
    auto* sums = new QGroupBox(QStringLiteral("합계"), this);
    sums->setGeometry(10, 492, 990, 68);
    for (int k = 0; k < 6; ++k) {
        (new QLabel(heads[k], sums))->setGeometry(10 + k * 163, 18, 150, 18);
        pnlSum[size_t(k)] = new QLabel(sums);
        pnlSum[size_t(k)]->setObjectName(QStringLiteral("pnlSum_%1").arg(k));
        pnlSum[size_t(k)]->setGeometry(10 + k * 163, 38, 150, 24);
        pnlSum[size_t(k)]->setFrameShape(QFrame::Panel);
        pnlSum[size_t(k)]->setFrameShadow(QFrame::Sunken);
        pnlSum[size_t(k)]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    btnPrint =
        makeButton(this, QStringLiteral("btnPrint"), QStringLiteral("인쇄(&P)"), QRect(10, 574, 110, 32));
    btnExcel = makeButton(this, QStringLiteral("btnExcel"), QStringLiteral("Excel변환(&E)"),
                          QRect(126, 574, 120, 32));
    btnEtax = makeButton(this, QStringLiteral("btnEtax"), QStringLiteral("전자세금계산서 엑셀(&H)"),
                         QRect(252, 574, 200, 32));
    btnEtax->setToolTip(
        QStringLiteral("이 기간에 발행한 세금계산서를 국세청 일괄발급 엑셀 양식으로 만듭니다."));
    btnPreview = makeButton(this, QStringLiteral("btnPreview"), QStringLiteral("미리보기(&V)"),
                            QRect(458, 574, 110, 32));
    btnPrinter = makeButton(this, QStringLiteral("btnPrinter"), QStringLiteral("프린터설정(&T)"),
                            QRect(574, 574, 120, 32));
    btnSetMargin = makeButton(this, QStringLiteral("btnSetMargin"), QStringLiteral("여백설정(&Y)"),
                              QRect(700, 574, 110, 32));
    btnExit =
        makeButton(this, QStringLiteral("btnExit"), QStringLiteral("닫기(&X)"), QRect(890, 574, 110, 32));
}

void FrmTaxManage::buildGrid() {
    grdList = new Grid(this);
    grdList->setObjectName(QStringLiteral("grdList"));
    grdList->setGeometry(10, 46, 990, 440);
    CommonSpreadDesign(*grdList, true, true, true, true);
    grdList->setMaxCols(ColGubun);
    const QStringList heads{
        QStringLiteral("일 자"),      QStringLiteral("거래처명"), QStringLiteral("매출액"),
        QStringLiteral("매출부가세"), QStringLiteral("매출합계"), QStringLiteral("매입액"),
        QStringLiteral("매입부가세"), QStringLiteral("매입합계"), QStringLiteral("코드"),
        QStringLiteral("거래처코드"), QStringLiteral("구분")};
    const double widths[] = {8, 20, 12, 11, 12, 11, 10, 11, 7, 10, 4};
    for (int c = 1; c <= ColGubun; ++c) {
        grdList->SetText(c, 0, heads[c - 1]);
        grdList->setColWidth(c, widths[c - 1]);
    }
    for (int c = ColSale; c <= ColBuySum; ++c)
        SetFloatCell(*grdList, c, 0, false);
    grdList->setMaxRows(kListRows);
}

void FrmTaxManage::connectControls() {
    connect(CmbGubun, &QComboBox::currentIndexChanged, this, &FrmTaxManage::onGubunChanged);
    connect(btnSearch, &QPushButton::clicked, this, &FrmTaxManage::btnSearch_Click);
    connect(btnPrint, &QPushButton::clicked, this, &FrmTaxManage::btnPrint_Click);
    connect(btnExcel, &QPushButton::clicked, this, &FrmTaxManage::btnExcel_Click);
    connect(btnEtax, &QPushButton::clicked, this, &FrmTaxManage::btnEtax_Click);
    connect(btnPreview, &QPushButton::clicked, this,
            [this] { PreviewTotalsReport(this, searchToPrint(), TotalsLayout(CmbLayout->currentIndex())); });
    connect(CmbLayout, &QComboBox::currentIndexChanged, this,
            [](int index) { saveTotalsLayout(TotalsLayout(index)); });
    connect(btnPrinter, &QPushButton::clicked, this, [this] {
        FrmSetPrinter form(this);
        form.InitForm(kTotalsDocumentIndex);
        form.exec();
    });
    connect(btnSetMargin, &QPushButton::clicked, this, [this] {
        FrmMargin form(this);
        form.InitForm(kTotalsDocumentIndex);
        form.exec();
    });
    connect(btnExit, &QPushButton::clicked, this, [this] {
        if (auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget()))
            frame->close();
        else
            close();
    });
}

// A date box left without a date says so, takes today and keeps the focus.
bool FrmTaxManage::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<DateBox*>(watched);
    if (box && event->type() == QEvent::FocusOut && !m_checkingDate) {
        m_checkingDate = true;
        if (!CheckDateOnLeave(box->dateText(), kBadDateMessage)) {
            box->setDateText(today().toString(QStringLiteral("yyyy-MM-dd")));
            box->setFocus();
        }
        m_checkingDate = false;
    }
    return QWidget::eventFilter(watched, event);
}

void FrmTaxManage::InitForm() {
    const QString year = today().toString(QStringLiteral("yyyy"));
    CmbYY->clear();
    FillYearList(CmbYY, year);
    CmbYY->setCurrentText(year);
    CmbGubun->setCurrentIndex(0);
    onGubunChanged(0);
    for (DateBox* box : txtDate)
        box->setDateText(today().toString(QStringLiteral("yyyy-MM-dd")));
}

void FrmTaxManage::onGubunChanged(int index) {
    CmbPeriod->clear();
    CmbPeriod->addItems(periodRows(TotalsKind(index)));
    if (CmbPeriod->count() > 0) CmbPeriod->setCurrentIndex(0);
    pnlDisp->setCurrentIndex(index == 0 ? 0 : 1);
    if (index == 0) txtDate[0]->setFocus();
}

TotalsKind FrmTaxManage::kind() const {
    return TotalsKind(qBound(0, CmbGubun->currentIndex(), 2));
}

TotalsPeriod FrmTaxManage::period() const {
    return totalsPeriod(kind(), CmbPeriod->currentIndex(), CmbYY->currentText(), txtDate[0]->dateText(),
                        txtDate[1]->dateText());
}

QString FrmTaxManage::periodName() const {
    const TotalsPeriod p = period();
    return QString(p.from).remove(u'-') + u'-' + QString(p.to).remove(u'-');
}

// The work table is refilled beside the window (it stays painted meanwhile); the list then reads
// SaleTotal as it is seen, a page at a time, and the sums are the ones the refill counted.
void FrmTaxManage::btnSearch_Click() {
    if (m_searching) return;
    m_searching = true;
    clearRows();
    const std::optional<TotalsRefill> refill =
        RefillTotalsAside(stores().dbTax, stores().dbBasic.path(), period());
    m_searching = false;
    if (refill) m_lastSearch = currentSearch();
    showRows(refill.value_or(TotalsRefill()));
}

// The last search run again as it was searched (whatever the boxes say since), the list
// standing on the same trader with the same rows in view. The old rows stay painted while the
// work table is refilled; nothing is re-read before a first search.
void FrmTaxManage::refreshTotals() {
    if (!m_lastSearch || m_searching) return;
    GridPlace place(*grdList, ColCode);
    m_searching = true;
    const std::optional<TotalsRefill> refill =
        RefillTotalsAside(stores().dbTax, stores().dbBasic.path(), m_lastSearch->span());
    m_searching = false;
    if (!refill) return; // its box was shown; the list stays as it was
    clearRows();
    showRows(*refill);
    place.restore();
}

// The list emptied down to its blank rows, without reading what was left of the last one.
void FrmTaxManage::clearRows() {
    grdList->setMaxRows(0);
    grdList->setMaxRows(kListRows);
}

void FrmTaxManage::showRows(const TotalsRefill& refill) {
    if (refill.rows > 0) {
        auto rows = std::make_unique<QSqlQuery>(stores().dbTax.connection());
        if (OpenForwardOnly(stores().dbTax, *rows, totalsListQuery(stores().dbTax.onServer()))) {
            grdList->showList(std::make_unique<QueryRows>(std::move(rows)), refill.rows);
            if (grdList->MaxRows() < kListRows) grdList->setMaxRows(kListRows);
        }
    }
    const std::array<double, 6> sums = panelSums(refill);
    for (int k = 0; k < 6; ++k)
        pnlSum[size_t(k)]->setText(panelText(sums[size_t(k)]));
}

// The 합계표 is of the last search, whatever the boxes say since: a period changed without a new
// search would otherwise head one period's sheet over another's receivers.
TotalsSearch FrmTaxManage::searchToPrint() const {
    return m_lastSearch.value_or(currentSearch());
}

TotalsSearch FrmTaxManage::currentSearch() const {
    return TotalsSearch{kind(), CmbPeriod->currentIndex(), CmbYY->currentText(), txtDate[0]->dateText(),
                        txtDate[1]->dateText()};
}

void FrmTaxManage::btnPrint_Click() {
    PrintTotalsReport(searchToPrint(), TotalsLayout(CmbLayout->currentIndex()));
}

void FrmTaxManage::btnExcel_Click() {
    QStringList totals{QStringLiteral("< 합 계 >")};
    for (QLabel* panel : pnlSum)
        totals << panel->text();
    QList<int> columns;
    for (int c = ColTraderName; c <= ColGubun; ++c)
        columns << c;
    // The total row stands under the columns it sums: the label under the trader's name.
    ExportGrid(this, *grdList, columns, totals, kTaxManageTitle,
               kTaxManageTitle + u'_' + periodName() + QStringLiteral(".xlsx"));
}

void FrmTaxManage::btnEtax_Click() {
    const TotalsPeriod p = period();
    EtaxRunHooks hooks;
    hooks.chooseFolder = [](QWidget* parent) {
        return fileChooser().chooseFolder(
            parent, QStringLiteral("전자세금계산서 엑셀 저장 폴더"),
            QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    };
    hooks.exportList = [this](Grid* list) {
        QList<int> columns;
        for (int c = 1; c <= list->MaxCols(); ++c)
            columns << c;
        ExportGrid(this, *list, columns, {}, QStringLiteral("발행되지 않은 세금계산서"),
                   QStringLiteral("전자세금계산서_제외_%1.xlsx").arg(periodName()));
    };
    hooks.printList = [](Grid* list) {
        PrintGridList(*list, QStringLiteral("전자세금계산서에서 빠진 세금계산서"));
    };
    RunEtaxButton(this, {p.from, p.to}, hooks);
}

} // namespace nb
