// FrmTax: its controls, where they stand on the drawn paper and beside it, and the tab order.
#include "common/FormBuild.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "common/grid/MduSpread.h"
#include "common/text/NumBox.h"
#include "invoice/FrmTax.h"
#include "invoice/TaxPaper.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

namespace nb {

namespace {

using namespace paper;

constexpr int kPaperX = 8;
constexpr int kPaperY = 8;
constexpr int kSideX = 770;
constexpr int kSideWidth = 360;
constexpr int kBottomY = kPaperY + kHeight + 8;
constexpr int kBoxHeight = 24;

} // namespace

QLineEdit* FrmTax::makeBox(const QString& name, const QRect& geometry, QWidget* parent) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setGeometry(geometry);
    box->setFrame(false);
    box->installEventFilter(this);
    return box;
}

void FrmTax::buildControls() {
    setObjectName(QStringLiteral("FrmTax"));
    setWindowTitle(QStringLiteral("세금계산서 발행"));
    setFixedSize(kSideX + kSideWidth + 8, kBottomY + 144);
    paperArea = new TaxPaper(this);
    paperArea->move(kPaperX, kPaperY);
    buildPaperFields();
    buildPartyFields();
    buildLineFields();
    buildSideControls();
    buildButtons();
    buildTabOrder();
    connectControls();
}

void FrmTax::buildPartyFields() {
    struct Row {
        int row, x, width;
    };
    const Row rows[6] = {{1, 88, 138},        {1, 274, 58}, {0, 88, 200},
                         {2, 88, kHalf - 94}, {3, 88, 138}, {3, 274, 95}};
    QLineEdit** user[6] = {&CName_user, &Name_User, &Serial_user, &Address_User, &Job_User, &Sub_User};
    QLineEdit** mae[6] = {&CName_MAE, &Name_MAE, &Serial_Mae, &Address_MAE, &Job_MAE, &Sub_MAE};
    const QStringList userNames{"CName_user",   "Name_User", "Serial_user",
                                "Address_User", "Job_User",  "Sub_User"};
    const QStringList maeNames{"CName_MAE", "Name_MAE", "Serial_Mae", "Address_MAE", "Job_MAE", "Sub_MAE"};
    for (int k = 0; k < 6; ++k) {
        const int y = kPartyTop + rows[k].row * kPartyRow + 5;
        *user[k] = makeBox(userNames[k], QRect(rows[k].x, y, rows[k].width, kBoxHeight), paperArea);
        *mae[k] = makeBox(maeNames[k], QRect(kHalf + rows[k].x, y, rows[k].width, kBoxHeight), paperArea);
    }
    imgPic = makeLabel(paperArea, QString(), QRect(336, kPartyTop + kPartyRow + 2, 34, 30));
    imgPic->setObjectName(QStringLiteral("imgPic"));
    imgPic->setScaledContents(true);
    imgPic->installEventFilter(this);
    picSign = makeLabel(paperArea, QString(), imgPic->geometry());
    picSign->setObjectName(QStringLiteral("picSign"));
    picSign->setScaledContents(true);
    picSign->setToolTip(QStringLiteral("도장삭제: DEL키"));
    picSign->setFocusPolicy(Qt::ClickFocus);
    picSign->setFrameShape(QFrame::Box);
    picSign->hide();
    picSign->installEventFilter(this);
}

void FrmTax::buildPaperFields() {
    txtSeq = makeBox(QStringLiteral("txtSeq"), QRect(kHalf + 190, 28, 90, 22), paperArea);
    txtSeq->setInputMask(QStringLiteral("000-000"));
    txtSeq->setText(QStringLiteral("000-000"));
    txtSeq->setFrame(true);
    txtSeq->setEnabled(false);
    const int y = kDateTop + kDateHead + 8;
    write_yy = makeBox(QStringLiteral("write_yy"), QRect(4, y, 46, kBoxHeight), paperArea);
    write_mm = makeBox(QStringLiteral("write_mm"), QRect(58, y, 26, kBoxHeight), paperArea);
    write_dd = makeBox(QStringLiteral("write_dd"), QRect(90, y, 26, kBoxHeight), paperArea);
    for (QLineEdit* box : {write_yy, write_mm, write_dd})
        box->setAlignment(Qt::AlignCenter);
    btnMonthView[2] = makeButton(paperArea, QStringLiteral("btnMonthView_2"), QStringLiteral("▼"),
                                 QRect(121, y, 26, kBoxHeight));
    gong_num = new DigitCells(paperArea);
    gong_num->setObjectName(QStringLiteral("gong_num"));
    gong_num->setGeometry(kCellsLeft, kDateTop + kDateHead + 1, 21 * kCellWidth, kDateRow - 2);
    bigo = new QPlainTextEdit(paperArea);
    bigo->setObjectName(QStringLiteral("bigo"));
    bigo->setGeometry(kRemarkLeft + 3, kDateTop + kDateHead + 2, kWidth - kRemarkLeft - 6, kDateRow - 4);
    bigo->setTabChangesFocus(true);
    bigo->setFrameShape(QFrame::NoFrame);
    bigo->installEventFilter(this);
    Sum_num = makeBox(QStringLiteral("Sum_num"), QRect(154, kTotalTop + 9, 300, 28), paperArea);
    Sum_num->setReadOnly(true);
    AttachNumBox(Sum_num);
    Opt영수 = new QRadioButton(QStringLiteral("영수"), paperArea);
    Opt영수->setObjectName(QStringLiteral("Opt영수"));
    Opt영수->setGeometry(556, kTotalTop + 2, 60, 20);
    Opt영수->setChecked(true);
    Opt청구 = new QRadioButton(QStringLiteral("청구"), paperArea);
    Opt청구->setObjectName(QStringLiteral("Opt청구"));
    Opt청구->setGeometry(556, kTotalTop + 22, 60, 20);
    youngsu = makeBox(QStringLiteral("youngsu"), QRect(622, kTotalTop + 10, 70, kBoxHeight), paperArea);
    youngsu->setAlignment(Qt::AlignCenter);
    txtCCode = makeBox(QStringLiteral("txtCCode"), QRect(), this);
    txtPCode = makeBox(QStringLiteral("txtPCode"), QRect(), this);
    TaxCode = makeBox(QStringLiteral("TaxCode"), QRect(), this);
    for (QLineEdit* hidden : {txtCCode, txtPCode, TaxCode})
        hidden->hide();
}

void FrmTax::buildLineFields() {
    const QStringList names{"ddyy", "pummok", "dan_num", "su_num", "gibon_num", "gonggum", "tax_num"};
    for (int column = 0; column < kLineFieldCount; ++column) {
        for (int i = 0; i < kInvoiceLines; ++i) {
            const QRect geometry(kLineCols[column], kLinesTop + kLineHead + i * kLineRow + 3,
                                 kLineCols[column + 1] - kLineCols[column] - 6, kBoxHeight);
            QLineEdit* box = makeBox(names[column] + u'_' + QString::number(i), geometry, paperArea);
            m_lines[size_t(column)][size_t(i)] = box;
            if (column >= int(LineField::su_num)) AttachNumBox(box);
            if (column == int(LineField::ddyy)) box->setAlignment(Qt::AlignCenter);
        }
    }
}

void FrmTax::buildSideControls() {
    QLabel* title =
        makeLabel(this, QStringLiteral("기 존 발 행 내 역"), QRect(kSideX, 8, kSideWidth, 22), true);
    title->setAlignment(Qt::AlignCenter);
    grdList = new Grid(this);
    grdList->setObjectName(QStringLiteral("grdList"));
    grdList->setGeometry(kSideX, 32, kSideWidth, 222);
    grdList->setMaxCols(5);
    grdList->setMaxRows(10);
    const QStringList heads{"발행일자", "품목 / 규격", "공급가액", "세   액", "코드"};
    const double widths[] = {10, 9.5, 7.5, 6.5, 6.5};
    for (int c = 1; c <= 5; ++c) {
        grdList->SetText(c, 0, heads[c - 1]);
        grdList->setColWidth(c, widths[c - 1]);
        grdList->SetLock(c, -1, true);
    }
    // The sums are numbers, shown with their thousands commas.
    SetFloatCell(*grdList, 3, 0, false);
    SetFloatCell(*grdList, 4, 0, false);
    grdList->setColWidth(0, 2);
    grdList->setOperationMode(OperationMode::Row);
    makeLabel(this, QStringLiteral("[ 거래처합계 ]"), QRect(kSideX, 258, kSideWidth, 20));
    pnlSum[0] = makeSumPanel(this, QStringLiteral("pnlSum_0"), QRect(kSideX, 280, 148, 24));
    pnlSum[1] = makeSumPanel(this, QStringLiteral("pnlSum_1"), QRect(kSideX + 152, 280, 148, 24));
    makeLabel(this, QStringLiteral("[ 전체거래처 합계 ]"), QRect(kSideX, 310, kSideWidth, 20));
    const QStringList kinds{"4분기별", "2분기별", "년별"};
    for (int k = 0; k < 3; ++k) {
        gubun2[size_t(k)] = new QRadioButton(kinds[k], this);
        gubun2[size_t(k)]->setObjectName(QStringLiteral("gubun2_%1").arg(k));
        gubun2[size_t(k)]->setGeometry(kSideX + k * 100, 332, 98, 20);
    }
    gubun2[0]->setChecked(true);
    CmbTerm = new QComboBox(this);
    CmbTerm->setObjectName(QStringLiteral("CmbTerm"));
    CmbTerm->setGeometry(kSideX, 356, 120, 24);
    pnlSum[2] = makeSumPanel(this, QStringLiteral("pnlSum_2"), QRect(kSideX, 386, 148, 24));
    pnlSum[3] = makeSumPanel(this, QStringLiteral("pnlSum_3"), QRect(kSideX + 152, 386, 148, 24));
    makeLabel(this, QStringLiteral("집계기간"), QRect(kSideX, 418, kSideWidth, 20));
    for (int k = 0; k < 2; ++k) {
        txtDate[size_t(k)] = new DateBox(this);
        txtDate[size_t(k)]->setObjectName(QStringLiteral("txtDate_%1").arg(k));
        txtDate[size_t(k)]->setGeometry(kSideX + k * 152, 440, 120, kBoxHeight);
        txtDate[size_t(k)]->installEventFilter(this);
        btnMonthView[size_t(k)] =
            makeButton(this, QStringLiteral("btnMonthView_%1").arg(k), QStringLiteral("▼"),
                       QRect(kSideX + k * 152 + 122, 440, 24, kBoxHeight));
    }
}

void FrmTax::buildButtons() {
    vaBtn5 = makeButton(this, QStringLiteral("vaBtn5"), QStringLiteral("집 계(&Z)"),
                        QRect(kSideX, 470, kSideWidth, 30));
    vaBtn6 = makeButton(this, QStringLiteral("vaBtn6"),
                        QStringLiteral("   거래명세표                      발행창"),
                        QRect(kSideX, 506, kSideWidth, 36));
    btnTotal = makeButton(this, QStringLiteral("btnTotal"), QStringLiteral("세금계산서 관리"),
                          QRect(kSideX, 548, kSideWidth, 30));
    btnPreview = makeButton(this, QStringLiteral("btnPreview"), QStringLiteral("미리보기(&V)"),
                            QRect(kSideX, 584, kSideWidth, 30));
    btnPreview->setToolTip(
        QStringLiteral("발행하면 인쇄될 모양을 미리 봅니다. 번호를 받거나 저장하지 않습니다."));
    pnlGubun = new QGroupBox(QStringLiteral("VAT구분"), this);
    pnlGubun->setObjectName(QStringLiteral("pnlGubun"));
    pnlGubun->setGeometry(kPaperX, kBottomY, 262, 48);
    const QStringList modes{"VAT별도", "VAT포함", "면세"};
    for (int k = 0; k < 3; ++k) {
        vat_gubun[size_t(k)] = new QRadioButton(modes[k], pnlGubun);
        vat_gubun[size_t(k)]->setObjectName(QStringLiteral("vat_gubun_%1").arg(k));
        vat_gubun[size_t(k)]->setGeometry(8 + k * 84, 20, 82, 22);
    }
    vat_gubun[1]->setChecked(true);
    chk_Phone = new QCheckBox(QStringLiteral("전화,팩스번호 인쇄"), this);
    chk_Phone->setObjectName(QStringLiteral("chk_Phone"));
    chk_Phone->setGeometry(282, kBottomY + 2, 160, 22);
    chkManualSeq = new QCheckBox(QStringLiteral("일련번호 직접입력"), this);
    chkManualSeq->setObjectName(QStringLiteral("chkManualSeq"));
    chkManualSeq->setGeometry(282, kBottomY + 26, 160, 22);
    chkPrnDate = new QCheckBox(QStringLiteral("날짜 인쇄"), this);
    chkPrnDate->setObjectName(QStringLiteral("chkPrnDate"));
    chkPrnDate->setGeometry(450, kBottomY + 2, 120, 22);
    chkPrnDate->setChecked(true);
    makeLabel(this, QStringLiteral("[거래처검색 : Insert]"), QRect(450, kBottomY + 26, 160, 22));
    pnlHelp = makeLabel(this, QString(), QRect(kPaperX, kBottomY + 54, kWidth, 24), true);
    pnlHelp->setObjectName(QStringLiteral("pnlHelp"));
    const int y = kBottomY + 84;
    vaBtn2 =
        makeButton(this, QStringLiteral("vaBtn2"), QStringLiteral("발 행(&P)"), QRect(kPaperX, y, 110, 34));
    makeLabel(this, QStringLiteral("발행시 자동으로 저장됩니다."), QRect(kPaperX, y + 36, 200, 18));
    btnSave = makeButton(this, QStringLiteral("btnSave"), QStringLiteral("저장(S)"), QRect(124, y, 92, 34));
    vaBtn3 =
        makeButton(this, QStringLiteral("vaBtn3"), QStringLiteral("다시입력(&R)"), QRect(222, y, 104, 34));
    vaBtn4 = makeButton(this, QStringLiteral("vaBtn4"), QStringLiteral("견본보기"), QRect(332, y, 92, 34));
    btnPrinter = makeButton(this, QStringLiteral("btnPrinter"), QStringLiteral("프린터설정(&T)"),
                            QRect(430, y, 118, 34));
    vaBtn1 =
        makeButton(this, QStringLiteral("vaBtn1"), QStringLiteral("여백설정(&Y)"), QRect(554, y, 104, 34));
    cmdSeal = makeButton(this, QStringLiteral("cmdSeal"), QStringLiteral("도장선택"), QRect(664, y, 94, 34));
}

void FrmTax::buildTabOrder() {
    QList<QWidget*> chain{CName_MAE};
    for (int i = 0; i < kInvoiceLines; ++i)
        for (LineField f : {LineField::pummok, LineField::dan_num, LineField::su_num, LineField::gibon_num,
                            LineField::gonggum})
            chain << field(f, i);
    chain << write_yy << write_mm << write_dd << bigo;
    for (int i = 0; i < kInvoiceLines; ++i)
        chain << ddyy(i);
    for (int i = 0; i < kInvoiceLines; ++i)
        chain << tax_num(i);
    chain << CName_user << Name_User << Serial_user << Address_User << Job_User << Sub_User << Name_MAE
          << Serial_Mae << Address_MAE << Job_MAE << Sub_MAE << youngsu << txtSeq << txtDate[0] << txtDate[1];
    for (int k = 1; k < chain.size(); ++k)
        setTabOrder(chain[k - 1], chain[k]);
}

} // namespace nb
