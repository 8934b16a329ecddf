#include "invoice/TaxPaper.h"

#include "common/UiSetup.h"

#include <QPainter>

namespace nb {

namespace {

using namespace paper;

const QColor kInk(200, 40, 40);
const QColor kPaper(255, 252, 246);

void label(QPainter& p, const QRect& r, const QString& text, int flags = Qt::AlignCenter) {
    p.drawText(r, flags, text);
}

void drawVerticalLabel(QPainter& p, const QRect& r, const QString& text) {
    QString stacked;
    for (QChar c : text)
        stacked += QString(c) + u'\n';
    stacked.chop(1);
    label(p, r, stacked);
}

// One half of the parties block: side strip, four rows of captions and their boxes.
void drawParty(QPainter& p, int left, const QString& side) {
    const int top = kPartyTop;
    const int height = 4 * kPartyRow;
    p.drawRect(left, top, qMin(kHalf, kWidth - 1 - left), height);  // the right half's edge stays on the sheet
    p.drawLine(left + kSideLabel, top, left + kSideLabel, top + height);
    drawVerticalLabel(p, QRect(left, top, kSideLabel, height), side);
    const int captionRight = left + kSideLabel + kLabelWidth;
    p.drawLine(captionRight, top, captionRight, top + height);
    const QStringList captions{QStringLiteral("등록번호"), QStringLiteral("상  호\n(법인명)"),
                               QStringLiteral("사업장\n주  소"), QStringLiteral("업  태")};
    for (int row = 0; row < 4; ++row) {
        const int y = top + row * kPartyRow;
        if (row > 0) p.drawLine(left + kSideLabel, y, left + kHalf, y);
        label(p, QRect(left + kSideLabel, y, kLabelWidth, kPartyRow), captions[row]);
    }
    // 성명 and 종목 share their rows with 상호 and 업태.
    const int mid = left + 230;
    for (int row : {1, 3}) {
        const int y = top + row * kPartyRow;
        p.drawLine(mid, y, mid, y + kPartyRow);
        p.drawLine(mid + 40, y, mid + 40, y + kPartyRow);
        label(p, QRect(mid, y, 40, kPartyRow), row == 1 ? QStringLiteral("성명") : QStringLiteral("종목"));
    }
}

void drawDateRow(QPainter& p) {
    const int top = kDateTop;
    const int height = kDateHead + kDateRow;
    p.drawRect(0, top, kWidth - 1, height);
    p.drawLine(0, top + kDateHead, kWidth - 1, top + kDateHead);
    const int dateCols[] = {0, 54, 86, 118, kCellsLeft};
    const QStringList dateHeads{QStringLiteral("작성 년"), QStringLiteral("월"), QStringLiteral("일"),
                                QStringLiteral("공란")};
    for (int k = 1; k < 5; ++k)
        p.drawLine(dateCols[k], top, dateCols[k], top + height);
    for (int k = 0; k < 4; ++k)
        label(p, QRect(dateCols[k], top, dateCols[k + 1] - dateCols[k], kDateHead), dateHeads[k]);
    for (int cell = 1; cell < 21; ++cell) {
        const int x = kCellsLeft + cell * kCellWidth;
        p.setPen(QPen(kInk, cell == 11 ? 2 : 1));
        p.drawLine(x, top + kDateHead, x, top + height);
    }
    p.setPen(kInk);
    p.drawLine(kRemarkLeft, top, kRemarkLeft, top + height);
    label(p, QRect(kCellsLeft, top, 11 * kCellWidth, kDateHead), QStringLiteral("공   급   가   액"));
    label(p, QRect(kCellsLeft + 11 * kCellWidth, top, 10 * kCellWidth, kDateHead),
          QStringLiteral("세      액"));
    label(p, QRect(kRemarkLeft, top, kWidth - kRemarkLeft, kDateHead), QStringLiteral("비      고"));
}

void drawLines(QPainter& p) {
    const int top = kLinesTop;
    const int height = kLineHead + 5 * kLineRow;
    p.drawRect(0, top, kWidth - 1, height);
    const QStringList heads{QStringLiteral("월 일"), QStringLiteral("품 목 / 규 격"),
                            QStringLiteral("단위"),  QStringLiteral("수 량"),
                            QStringLiteral("단 가"), QStringLiteral("공 급 가 액"),
                            QStringLiteral("세 액")};
    for (int k = 0; k < 7; ++k) {
        if (k > 0) p.drawLine(kLineCols[k] - 2, top, kLineCols[k] - 2, top + height);
        label(p, QRect(kLineCols[k], top, kLineCols[k + 1] - kLineCols[k], kLineHead), heads[k]);
    }
    for (int row = 0; row <= 5; ++row)
        p.drawLine(0, top + kLineHead + row * kLineRow, kWidth - 1, top + kLineHead + row * kLineRow);
}

void drawTotal(QPainter& p) {
    const int top = kTotalTop;
    p.drawRect(0, top, kWidth - 1, kTotalRow);
    p.drawLine(150, top, 150, top + kTotalRow);
    label(p, QRect(0, top, 150, kTotalRow), QStringLiteral("합 계 금 액"));
    label(p, QRect(470, top, 80, kTotalRow), QStringLiteral("이 금액을"));
    label(p, QRect(kWidth - 50, top, 46, kTotalRow), QStringLiteral("함"));
}

} // namespace

void drawTaxPaper(QPainter& p, const QRect& area) {
    p.save();
    p.translate(area.topLeft());
    p.scale(double(area.width()) / kWidth, double(area.height()) / kHeight);
    p.fillRect(QRect(0, 0, kWidth, kHeight), kPaper);
    p.setPen(kInk);
    QFont font(QString::fromLatin1(kKoreanFont));
    font.setPixelSize(12);
    p.setFont(font);
    QFont title = font;
    title.setPixelSize(26);
    title.setBold(true);
    p.setFont(title);
    p.drawText(QRect(0, 4, kHalf + 60, 46), Qt::AlignCenter, QStringLiteral("세 금 계 산 서"));
    p.setFont(font);
    p.drawText(QRect(kHalf + 60, 4, 120, 22), Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("책 번 호"));
    p.drawText(QRect(kHalf + 60, 28, 120, 22), Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("일련번호"));
    drawParty(p, 0, QStringLiteral("공급자"));
    drawParty(p, kHalf, QStringLiteral("공급받는자"));
    drawDateRow(p);
    drawLines(p);
    drawTotal(p);
    p.restore();
}

TaxPaper::TaxPaper(QWidget* parent) : QWidget(parent) {
    setFixedSize(paper::kWidth, paper::kHeight);
}

void TaxPaper::setBackgroundPicture(const QPixmap& picture) {
    m_picture = picture;
    update();
}

void TaxPaper::paintEvent(QPaintEvent*) {
    QPainter p(this);
    if (!m_picture.isNull())
        p.drawPixmap(rect(), m_picture);
    else
        drawTaxPaper(p, rect());
}

DigitCells::DigitCells(QWidget* parent) : QLabel(parent) {}

void DigitCells::paintEvent(QPaintEvent*) {
    QPainter p(this);
    QFont f(QString::fromLatin1(kFixedKoreanFont));
    f.setPixelSize(15);
    f.setBold(true);
    p.setFont(f);
    p.setPen(Qt::black);
    const QString caption = text();
    const int cells = int(caption.size() / 2);
    const double width = double(this->width()) / 21;
    for (int k = 0; k < cells && k < 21; ++k) {
        const QString ch = caption.mid(2 * k + 1, 1);
        p.drawText(QRectF(k * width, 0, width, height()), Qt::AlignCenter, ch);
    }
}

} // namespace nb
