// FrmEstimate: its controls, the grid of the lines and the wiring of their events.
#include "common/dates/DateBox.h"
#include "common/grid/MduSpread.h"
#include "common/input/ImeMode.h"
#include "core/AppState.h"
#include "master/EntryForm.h"
#include "quotation/FrmEstimate.h"

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

namespace nb {

namespace {

QLabel* sunkenPanel(QWidget* parent, const QString& name) {
    QLabel* panel = hintPanel(parent, name);
    panel->setMinimumHeight(24);
    return panel;
}

QLineEdit* namedBox(QWidget* parent, const QString& name) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    return box;
}

} // namespace

void FrmEstimate::buildControls() {
    pnlCode = sunkenPanel(this, QStringLiteral("pnlCode"));
    pnlCode->setMinimumWidth(120);
    for (int i = 0; i < 2; ++i) {
        txtDate[size_t(i)] = new DateBox(this);
        txtDate[size_t(i)]->setObjectName(QStringLiteral("txtDate%1").arg(i));
    }
    for (int i = 0; i < 6; ++i)
        txtinput[size_t(i)] = namedBox(this, QStringLiteral("txtinput%1").arg(i));
    txtinput[3]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    pnlHanKum = sunkenPanel(this, QStringLiteral("pnlHanKum"));
    OptVat[0] = new QRadioButton(QStringLiteral("부가세포함"), this);
    OptVat[1] = new QRadioButton(QStringLiteral("부가세별도"), this);
    auto* vatGroup = new QButtonGroup(this);
    for (int i = 0; i < 2; ++i) {
        OptVat[size_t(i)]->setObjectName(QStringLiteral("OptVat%1").arg(i));
        vatGroup->addButton(OptVat[size_t(i)], i);
    }
    CmbFind = new QComboBox(this);
    CmbFind->setObjectName(QStringLiteral("CmbFind"));
    CmbFind->addItems({QStringLiteral("거래처명"), QStringLiteral("견적일자"), QStringLiteral("견적번호"),
                       QStringLiteral("납품예정일")});
    txtFind = namedBox(this, QStringLiteral("txtFind"));
    btnFind = formButton(this, QStringLiteral("조회(&F)"), QStringLiteral("btnFind"));
    btnNew = formButton(this, QStringLiteral("신규(&N)"), QStringLiteral("btnNew"));
    btnPreview = formButton(this, QStringLiteral("미리보기(&V)"), QStringLiteral("btnPreview"));
    btnPreview->setToolTip(QStringLiteral("인쇄될 견적서를 화면으로 봅니다. 인쇄하거나 저장하지 않습니다."));
    btnPrint = formButton(this, QStringLiteral("인쇄(&P)"), QStringLiteral("btnPrint"));
    btnExit = formButton(this, QStringLiteral("종료(&X)"), QStringLiteral("btnExit"));
    pnlFunction = sunkenPanel(this, QStringLiteral("pnlFunction"));
    txtCCode = namedBox(this, QStringLiteral("txtCCode"));
    txtPCode = namedBox(this, QStringLiteral("txtPCode"));
    txtCCode->hide();
    txtPCode->hide();

    auto* head = new QGridLayout;
    auto caption = [this](const QString& text) { return fieldCaption(this, text, 80); };
    head->addWidget(caption(QStringLiteral("견적번호")), 0, 0);
    head->addWidget(pnlCode, 0, 1);
    head->addWidget(caption(QStringLiteral("견적일자")), 0, 2);
    head->addWidget(txtDate[0], 0, 3);
    head->addWidget(caption(QStringLiteral("납품예정일")), 0, 4);
    head->addWidget(txtDate[1], 0, 5);
    head->addWidget(caption(QStringLiteral("거래처명")), 1, 0);
    head->addWidget(txtinput[0], 1, 1, 1, 3);
    head->addWidget(caption(QStringLiteral("참조인")), 1, 4);
    head->addWidget(txtinput[2], 1, 5);
    head->addWidget(caption(QStringLiteral("견적내용")), 2, 0);
    head->addWidget(txtinput[1], 2, 1, 1, 5);
    head->addWidget(caption(QStringLiteral("견적금액")), 3, 0);
    head->addWidget(txtinput[3], 3, 1);
    head->addWidget(pnlHanKum, 3, 2, 1, 4);
    head->addWidget(caption(QStringLiteral("유효기간")), 4, 0);
    head->addWidget(txtinput[4], 4, 1);
    head->addWidget(caption(QStringLiteral("지불조건")), 4, 2);
    head->addWidget(txtinput[5], 4, 3);
    auto* vatRow = new QHBoxLayout;
    vatRow->addWidget(OptVat[0]);
    vatRow->addWidget(OptVat[1]);
    head->addLayout(vatRow, 4, 4, 1, 2);
    head->setColumnStretch(1, 1);
    head->setColumnStretch(3, 1);
    head->setColumnStretch(5, 1);

    auto* search = new QHBoxLayout;
    search->addWidget(CmbFind);
    search->addWidget(txtFind, 1);
    search->addWidget(btnFind);

    buildGrid();

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(pnlFunction, 1);
    bottom->addWidget(btnNew);
    bottom->addWidget(btnPreview);
    bottom->addWidget(btnPrint);
    bottom->addWidget(btnExit);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addLayout(search);
    layout->addWidget(SSPanel7, 1);
    layout->addLayout(bottom);

    setTabOrder(txtinput[0], txtinput[1]);
    setTabOrder(txtinput[1], txtinput[2]);
    setTabOrder(txtinput[2], txtinput[3]);
    setTabOrder(txtinput[3], txtinput[4]);
    setTabOrder(txtinput[4], txtinput[5]);
    setTabOrder(txtinput[5], txtDate[0]);
    setTabOrder(txtDate[0], txtDate[1]);
    setTabOrder(txtDate[1], grdEstimate);
    setTabOrder(grdEstimate, CmbFind);
    setTabOrder(CmbFind, txtFind);
    setTabOrder(txtFind, btnFind);
}

void FrmEstimate::buildGrid() {
    SSPanel7 = new QFrame(this);
    SSPanel7->setObjectName(QStringLiteral("SSPanel7"));
    grdEstimate = new Grid(SSPanel7);
    grdEstimate->setObjectName(QStringLiteral("grdEstimate"));
    auto* frame = new QVBoxLayout(SSPanel7);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->addWidget(grdEstimate);
    CommonSpreadDesign(*grdEstimate, false, false, true, false);
    grdEstimate->setEditModePermanent(false);
    grdEstimate->setMaxCols(kEstimateCols);
    grdEstimate->setMaxRows(100);
    grdEstimate->setProcessTab(true);
    const QStringList headers{
        QStringLiteral("상  품  명"), QStringLiteral("규  격"),   QStringLiteral("단  위"),
        QStringLiteral("수  량"),     QStringLiteral("단  가"),   QStringLiteral("금    액"),
        QStringLiteral("코드"),       QStringLiteral("상품코드"), QStringLiteral("순번")};
    const double widths[] = {30, 16, 7, 10, 12, 14, 10, 8, 6};
    for (int c = 1; c <= kEstimateCols; ++c) {
        grdEstimate->SetText(c, 0, headers.at(c - 1));
        grdEstimate->setColWidth(c, widths[c - 1]);
    }
    for (int c = ColCode; c <= ColSeq; ++c)
        grdEstimate->setColHidden(c, true);
    SetFloatCell(*grdEstimate, ColAmount, app().DecimalQty, true);
    SetFloatCell(*grdEstimate, ColPrice, app().DecimalQty, true);
    SetFloatCell(*grdEstimate, ColKum, 0, true);
    grdEstimate->SetLock(ColKum, kAllCells, true);
}

QSize FrmEstimate::sizeHint() const {
    int columns = grdEstimate->verticalHeader()->width();
    for (int c = 1; c <= kEstimateCols; ++c)
        if (!grdEstimate->ColHidden(c)) columns += grdEstimate->charsToPixels(grdEstimate->ColWidth(c));
    const int scrollBar = grdEstimate->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const QMargins margins = layout() ? layout()->contentsMargins() : QMargins();
    const int gridWidth = columns + 2 * grdEstimate->frameWidth() + scrollBar + 4;
    const QSize hint = QWidget::sizeHint();
    return {std::max(hint.width(), gridWidth + margins.left() + margins.right()),
            std::max(hint.height(), 600)};
}

void FrmEstimate::connectControls() {
    connect(btnNew, &QPushButton::clicked, this, &FrmEstimate::btnNew_Click);
    connect(btnFind, &QPushButton::clicked, this, &FrmEstimate::btnFind_Click);
    connect(btnPrint, &QPushButton::clicked, this, &FrmEstimate::btnPrint_Click);
    connect(btnPreview, &QPushButton::clicked, this, &FrmEstimate::btnPreview_Click);
    connect(btnExit, &QPushButton::clicked, this, &FrmEstimate::btnExit_Click);
    for (QRadioButton* option : OptVat)
        connect(option, &QRadioButton::clicked, this, [this] { onVatClicked(); });
    connect(grdEstimate, &Grid::keyDown, this, [this](int& key, Qt::KeyboardModifiers) { gridKey(key); });
    connect(grdEstimate, &Grid::editModeChanged, this, &FrmEstimate::onEditMode);
    connect(grdEstimate, &Grid::leaveCell, this, &FrmEstimate::onLeaveCell);
    connect(qApp, &QApplication::focusChanged, this, &FrmEstimate::onFocusChanged);

    m_hangul = new HangulModeKeeper(this, true);
    for (QLineEdit* box : txtinput) {
        m_hangul->watch(box);
        box->installEventFilter(this);
    }
    m_hangul->watch(txtFind);
    for (QWidget* w :
         std::initializer_list<QWidget*>{txtDate[0], txtDate[1], txtFind, CmbFind, btnFind, btnNew,
                                         btnPreview, btnPrint, btnExit, OptVat[0], OptVat[1], grdEstimate})
        w->installEventFilter(this);
}

} // namespace nb
