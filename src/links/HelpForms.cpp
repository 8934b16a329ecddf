#include "links/HelpForms.h"

#include "links/ExternalLinks.h"
#include "links/NamedWidget.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {
namespace {

QPlainTextEdit* memoBox(QWidget* parent, const QString& text) {
    auto* memo = new QPlainTextEdit(parent);
    memo->setObjectName(QStringLiteral("txtMemo"));
    memo->setReadOnly(true);
    memo->setPlainText(text);
    return memo;
}

} // namespace

QString paperOrderText() {
    return QStringList{QStringLiteral(" 아래계좌로 용지대금을 송금후 [주문]단추를 누르세요!"),
                       QString(),
                       QStringLiteral("  [용지가격]"),
                       QStringLiteral("  -세금계산서:25,000원(1BOX-1,000매기준)"),
                       QStringLiteral("  -거래명세서:25,000원(1BOX-1,000매기준)"),
                       QStringLiteral(" ※계산서 발행시 VAT별도"),
                       QString(),
                       QStringLiteral("  [계좌번호]"),
                       kPaperOrderAccount,
                       QString(),
                       QStringLiteral(" ※용지주문 신청 후 전화를 주시지 않아도 발송됩니다.")}
        .join(QStringLiteral("\r\n"));
}

QString signInfoText() {
    return QStringList{QStringLiteral(" 누벨라는 공급자도장 인쇄기능을 지원합니다."),
                       QString(),
                       QStringLiteral("  [도장인쇄방법]"),
                       QStringLiteral("  1. 도장을 깨끗한 A4용지에 선명하게 찍습니다. "),
                       QStringLiteral("  2. 도장찍은 용지를 스캔합니다."),
                       QStringLiteral("  3. 스캔한 도장파일을 저장합니다."),
                       QStringLiteral("  4. 이미지 크기를 115x115픽셀로 편집합니다."),
                       QStringLiteral("  5. [도장선택]버튼으로 최종편집된 도장파일을 선택합니다."),
                       QStringLiteral("  6. 거래명세표와 세금계산서의 도장을 따로 지정가능합니다."),
                       QStringLiteral("  7. 이상과 같이 하면 도장이 함께 인쇄됩니다."),
                       QStringLiteral("     위 작업이 어려우신 분은 당사로 연락주세요."),
                       QString(),
                       QStringLiteral("                             문의:") + QStringLiteral("1500-0000")}
        .join(QStringLiteral("\r\n"));
}

FrmPaperOrder::FrmPaperOrder(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmPaperOrder"));
    setWindowTitle(QStringLiteral("용지 주문"));
    auto* layout = new QVBoxLayout(this);
    txtMemo = memoBox(this, paperOrderText());
    layout->addWidget(txtMemo);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    cmdOrder = namedControl<QPushButton>(QStringLiteral("cmdOrder"), QStringLiteral("주문"), this);
    cmdClose = namedControl<QPushButton>(QStringLiteral("cmdClose"), QStringLiteral("닫기"), this);
    buttons->addWidget(cmdOrder);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);
    connect(cmdOrder, &QPushButton::clicked, this, [this] { OpenDocument(this, paperOrderAddress()); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    resize(440, 330);
}

FrmSignInfo::FrmSignInfo(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmSignInfo"));
    setWindowTitle(QStringLiteral("도장인쇄안내"));
    auto* layout = new QVBoxLayout(this);
    txtMemo = memoBox(this, signInfoText());
    layout->addWidget(txtMemo);
    cmdClose = namedControl<QPushButton>(QStringLiteral("cmdClose"), QStringLiteral("닫기"), this);
    layout->addWidget(cmdClose, 0, Qt::AlignRight);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    resize(460, 340);
}

} // namespace nb
