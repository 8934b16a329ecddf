// FrmDealList: its controls, where they stand on the drawn head and around the two grids.
#include "common/FormBuild.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "statement/DealPaper.h"
#include "statement/FrmDealList.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>

namespace nb {

namespace {

using namespace dealpaper;

constexpr int kPaperX = 8;
constexpr int kPaperY = 8;
constexpr int kSideX = kPaperX + kWidth + 8;
constexpr int kSideWidth = 396;
constexpr int kGridTop = kPaperY + kHeight + 8;
constexpr int kGridHeight = 330;
constexpr int kBottomY = kGridTop + kGridHeight + 8;
constexpr int kBoxHeight = 24;
constexpr int kFormWidth = kSideX + kSideWidth + 8;

} // namespace

QLineEdit* FrmDealList::makeBox(const QString& name, const QRect& geometry, QWidget* parent) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setGeometry(geometry);
    box->installEventFilter(this);
    return box;
}

void FrmDealList::buildControls() {
    setObjectName(QStringLiteral("FrmDealList"));
    setWindowTitle(kDealListTitle);
    setFixedSize(kFormWidth, kBottomY + 148);
    buildPaperHead();
    buildRangeControls();
    buildGrids();
    buildTotals();
    buildButtons();
}

void FrmDealList::buildPaperHead() {
    Picture1 = new DealPaper(this);
    Picture1->move(kPaperX, kPaperY);
    txtDate = new DateBox(Picture1, kHanDateMask);
    txtDate->setObjectName(QStringLiteral("txtDate"));
    txtDate->setGeometry(80, 8, 150, 26);
    txtDate->installEventFilter(this);
    btnMonthView[2] =
        makeButton(Picture1, QStringLiteral("btnMonthView_2"), QStringLiteral("▼"), QRect(232, 8, 22, 26));
    struct Place {
        int row, x, width;
    };
    const Place places[6] = {
        {1, kFieldLeft, kMid - kFieldLeft - 4}, {0, kFieldLeft, 200},
        {1, kMid + kMidLabel + 4, 70},          {2, kFieldLeft, kHalf - kFieldLeft - 6},
        {3, kFieldLeft, kMid - kFieldLeft - 4}, {3, kMid + kMidLabel + 4, kHalf - kMid - kMidLabel - 10}};
    QLineEdit** supplier[6] = {&CName1, &Serial1, &UName1, &Addr1, &Up1, &Jong1};
    QLineEdit** receiver[6] = {&CName2, &Serial2, &UName2, &Addr2, &Up2, &Jong2};
    const QStringList names{QStringLiteral("CName"), QStringLiteral("Serial"), QStringLiteral("UName"),
                            QStringLiteral("Addr"),  QStringLiteral("Up"),     QStringLiteral("Jong")};
    for (int k = 0; k < 6; ++k) {
        const int y = kPartyTop + places[k].row * kPartyRow + 5;
        *supplier[k] = makeBox(names[k] + u'1', QRect(places[k].x, y, places[k].width, kBoxHeight), Picture1);
        *receiver[k] =
            makeBox(names[k] + u'2', QRect(kHalf + places[k].x, y, places[k].width, kBoxHeight), Picture1);
    }
    imgPic = makeLabel(Picture1, QString(), QRect(kHalf - 40, kPartyTop + kPartyRow + 2, 34, 30));
    imgPic->setObjectName(QStringLiteral("imgPic"));
    imgPic->setScaledContents(true);
    imgPic->installEventFilter(this);
    picSign = makeLabel(Picture1, QString(), imgPic->geometry());
    picSign->setObjectName(QStringLiteral("picSign"));
    picSign->setScaledContents(true);
    picSign->setToolTip(QStringLiteral("도장삭제: DEL키"));
    picSign->setFocusPolicy(Qt::ClickFocus);
    picSign->setFrameShape(QFrame::Box);
    picSign->hide();
    picSign->installEventFilter(this);
    // The hidden boxes that carry codes between this screen and the lists.
    txtCCode = new QLineEdit(this);
    txtCCode->setObjectName(QStringLiteral("txtCCode"));
    txtCCode->hide();
    txtPCode = new QLineEdit(this);
    txtPCode->setObjectName(QStringLiteral("txtPCode"));
    txtPCode->hide();
}

void FrmDealList::buildRangeControls() {
    for (int k = 0; k < 2; ++k) {
        const int x = kSideX + k * 168;
        spDate[size_t(k)] = new QTableWidget(1, 1, this);
        spDate[size_t(k)]->setObjectName(QStringLiteral("spDate_%1").arg(k));
        spDate[size_t(k)]->setGeometry(x, 8, 112, 26);
        spDate[size_t(k)]->installEventFilter(this);
        udDateUp[size_t(k)] = new QToolButton(this);
        udDateUp[size_t(k)]->setObjectName(QStringLiteral("udDateCng_%1_up").arg(k));
        udDateUp[size_t(k)]->setArrowType(Qt::UpArrow);
        udDateUp[size_t(k)]->setGeometry(x + 113, 8, 16, 13);
        udDateDown[size_t(k)] = new QToolButton(this);
        udDateDown[size_t(k)]->setObjectName(QStringLiteral("udDateCng_%1_down").arg(k));
        udDateDown[size_t(k)]->setArrowType(Qt::DownArrow);
        udDateDown[size_t(k)]->setGeometry(x + 113, 21, 16, 13);
        btnMonthView[size_t(k)] = makeButton(this, QStringLiteral("btnMonthView_%1").arg(k),
                                             QStringLiteral("▼"), QRect(x + 130, 8, 22, 26));
    }
    makeLabel(this, QStringLiteral("~"), QRect(kSideX + 154, 8, 12, 26));
    cmdMaster = makeButton(this, QStringLiteral("cmdMaster"), QStringLiteral("검색(&L)"),
                           QRect(kSideX + 332, 8, 64, 26));
    chkChain = makeCheck(this, QStringLiteral("chkChain"), QStringLiteral("양쪽 날짜 동시에 변경"),
                         QRect(kSideX, 38, 220, 22));

    auto* vatPanel = new QGroupBox(QStringLiteral("VAT구분"), this);
    vatPanel->setGeometry(kSideX, 62, kSideWidth, 48);
    const QStringList vatCaptions{QStringLiteral("VAT별도"), QStringLiteral("VAT포함"),
                                  QStringLiteral("면세")};
    for (int k = 0; k < 3; ++k)
        gubun[size_t(k)] = makeOption(vatPanel, QStringLiteral("gubun_%1").arg(k), vatCaptions[k],
                                      QRect(12 + k * 120, 20, 110, 22));

    auto* sumPanel = new QGroupBox(QStringLiteral("[ 전체거래처합계 ]"), this);
    sumPanel->setObjectName(QStringLiteral("fraSum"));
    sumPanel->setGeometry(kSideX, 114, kSideWidth, 74);
    const QStringList termCaptions{QStringLiteral("4분기별"), QStringLiteral("2분기별"),
                                   QStringLiteral("년별")};
    for (int k = 0; k < 3; ++k)
        gubun2[size_t(k)] = makeOption(sumPanel, QStringLiteral("gubun2_%1").arg(k), termCaptions[k],
                                       QRect(12 + k * 100, 20, 92, 22));
    txtYear = makeBox(QStringLiteral("txtYear"), QRect(12, 44, 56, kBoxHeight), sumPanel);
    CmbTerm = new QComboBox(sumPanel);
    CmbTerm->setObjectName(QStringLiteral("CmbTerm"));
    CmbTerm->setGeometry(72, 44, 100, kBoxHeight);
    pnlSum = makeLabel(sumPanel, QString(), QRect(178, 44, kSideWidth - 190, kBoxHeight));
    pnlSum->setObjectName(QStringLiteral("pnlSum"));
    pnlSum->setFrameShape(QFrame::Panel);
    pnlSum->setFrameShadow(QFrame::Sunken);
    pnlSum->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void FrmDealList::buildGrids() {
    spDetail = new Grid(this);
    spDetail->setObjectName(QStringLiteral("spDetail"));
    spDetail->setGeometry(kPaperX, kGridTop, kWidth, kGridHeight);
    spMaster = new Grid(this);
    spMaster->setObjectName(QStringLiteral("spMaster"));
    spMaster->setGeometry(kSideX, kGridTop, kSideWidth, kGridHeight - 30);
    spTotal = new Grid(this);
    spTotal->setObjectName(QStringLiteral("spTotal"));
    spTotal->setGeometry(kSideX, kGridTop + kGridHeight - 28, kSideWidth, 28);
}

void FrmDealList::buildTotals() {
    int y = kBottomY;
    const QStringList sumCaptions{QStringLiteral("공급가액"), QStringLiteral("세  액"),
                                  QStringLiteral("합  계")};
    QLineEdit** sums[3] = {&gong, &se, &sum};
    const QStringList sumNames{QStringLiteral("gong"), QStringLiteral("se"), QStringLiteral("sum")};
    for (int k = 0; k < 3; ++k) {
        makeLabel(this, sumCaptions[k], QRect(kPaperX + k * 200, y, 60, kBoxHeight));
        *sums[k] = makeBox(sumNames[k], QRect(kPaperX + 60 + k * 200, y, 130, kBoxHeight), this);
        (*sums[k])->setReadOnly(true);
        (*sums[k])->setAlignment(Qt::AlignRight);
        (*sums[k])->setFocusPolicy(Qt::NoFocus);
    }
    y += 30;
    ChkNonKum = makeCheck(this, QStringLiteral("ChkNonKum"), QStringLiteral("미수금 인쇄"),
                          QRect(kPaperX, y, 110, kBoxHeight));
    makeLabel(this, QStringLiteral("전미수"), QRect(kPaperX + 112, y, 48, kBoxHeight));
    PreMisu = makeBox(QStringLiteral("PreMisu"), QRect(kPaperX + 160, y, 110, kBoxHeight), this);
    makeLabel(this, QStringLiteral("총미수"), QRect(kPaperX + 280, y, 48, kBoxHeight));
    Misu = makeBox(QStringLiteral("Misu"), QRect(kPaperX + 328, y, 110, kBoxHeight), this);
    PreMisu->setAlignment(Qt::AlignRight);
    Misu->setAlignment(Qt::AlignRight);
    chk_Phone = makeCheck(this, QStringLiteral("chk_Phone"), QStringLiteral("전화번호인쇄"),
                          QRect(kPaperX + 452, y, 116, kBoxHeight));
    cmbTelNo = new QComboBox(this);
    cmbTelNo->setObjectName(QStringLiteral("cmbTelNo"));
    cmbTelNo->setGeometry(kPaperX + 570, y, 300, kBoxHeight);
    y += 30;
    makeLabel(this, QStringLiteral("비  고"), QRect(kPaperX, y, 60, kBoxHeight));
    txtMemo = makeBox(QStringLiteral("txtMemo"), QRect(kPaperX + 60, y, 620, kBoxHeight), this);
    txtMemo->setReadOnly(true);
    txtMemo->setToolTip(QStringLiteral("오른쪽의 [비고]버튼을 사용하여 입력해 주세요."));
    cmdMemo = makeButton(this, QStringLiteral("cmdMemo"), QStringLiteral("비고입력"),
                         QRect(kPaperX + 684, y, 90, kBoxHeight));
    cmdSeal = makeButton(this, QStringLiteral("cmdSeal"), QStringLiteral("도장선택"),
                         QRect(kPaperX + 780, y, 90, kBoxHeight));
    chkPrintFrame = makeCheck(this, QStringLiteral("chkPrintFrame"), QStringLiteral("양식 포함 인쇄"),
                              QRect(kPaperX + 884, y, 170, kBoxHeight));
    chkPrintFrame->setToolTip(QStringLiteral("양식이 인쇄되지 않은 백지에 양식과 함께 인쇄합니다."));
}

void FrmDealList::buildButtons() {
    const int y = kBottomY + 90;
    btnNewMaster =
        makeButton(this, QStringLiteral("btnNewMaster"), QStringLiteral("새전표(&N)"), QRect(8, y, 100, 30));
    btnPrint =
        makeButton(this, QStringLiteral("btnPrint"), QStringLiteral("발 행(&P)"), QRect(112, y, 100, 30));
    btnPrint->setToolTip(QStringLiteral("발행시 자동으로 저장됩니다."));
    btnPreview = makeButton(this, QStringLiteral("btnPreview"), QStringLiteral("미리보기(&V)"),
                            QRect(216, y, 100, 30));
    btnPreview->setToolTip(
        QStringLiteral("발행하면 인쇄될 모양을 미리 봅니다. 저장하거나 인쇄하지 않습니다."));
    btnPrinter = makeButton(this, QStringLiteral("btnPrinter"), QStringLiteral("프린터설정(&T)"),
                            QRect(320, y, 110, 30));
    btnSetMargin = makeButton(this, QStringLiteral("btnSetMargin"), QStringLiteral("여백설정(&Y)"),
                              QRect(434, y, 100, 30));
    btnSample =
        makeButton(this, QStringLiteral("btnSample"), QStringLiteral("출력견본"), QRect(538, y, 90, 30));
    btnGoTax = makeButton(this, QStringLiteral("btnGoTax"),
                          QStringLiteral("  세금계산서                   발행창"), QRect(kSideX, y, 250, 30));
    vaBtnEstimate = makeButton(this, QStringLiteral("vaBtnEstimate"), QStringLiteral("견적서"),
                               QRect(kSideX + 256, y, 140, 30));
    pnlHelp = makeLabel(this, QString(), QRect(8, y + 36, kFormWidth - 16, 20));
    pnlHelp->setObjectName(QStringLiteral("pnlHelp"));
    pnlHelp->setFrameShape(QFrame::Panel);
    pnlHelp->setFrameShadow(QFrame::Sunken);
}

} // namespace nb
