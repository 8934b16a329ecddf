#include "statement/DealPaper.h"

#include <QPainter>

namespace nb {

namespace {

using namespace dealpaper;

const QColor kInk(40, 70, 170);
const QColor kPaper(250, 252, 255);

void drawVerticalLabel(QPainter& p, const QRect& r, const QString& text) {
    QString stacked;
    for (QChar c : text)
        stacked += QString(c) + u'\n';
    stacked.chop(1);
    p.drawText(r, Qt::AlignCenter, stacked);
}

// One half: side strip, four rows of captions, 성명 and 종목 beside 상호 and 업태.
void drawParty(QPainter& p, int left, const QString& side) {
    const int height = 4 * kPartyRow;
    const int width = qMin(kHalf, kWidth - 1 - left);
    p.drawRect(left, kPartyTop, width, height);
    p.drawLine(left + kSideLabel, kPartyTop, left + kSideLabel, kPartyTop + height);
    drawVerticalLabel(p, QRect(left, kPartyTop, kSideLabel, height), side);
    const int captionRight = left + kSideLabel + kLabelWidth;
    p.drawLine(captionRight, kPartyTop, captionRight, kPartyTop + height);
    const QStringList captions{QStringLiteral("등록번호"), QStringLiteral("상  호"), QStringLiteral("주  소"),
                               QStringLiteral("업  태")};
    for (int row = 0; row < 4; ++row) {
        const int y = kPartyTop + row * kPartyRow;
        if (row > 0) p.drawLine(left + kSideLabel, y, left + width, y);
        p.drawText(QRect(left + kSideLabel, y, kLabelWidth, kPartyRow), Qt::AlignCenter, captions[row]);
    }
    for (int row : {1, 3}) {
        const int y = kPartyTop + row * kPartyRow;
        p.drawLine(left + kMid, y, left + kMid, y + kPartyRow);
        p.drawLine(left + kMid + kMidLabel, y, left + kMid + kMidLabel, y + kPartyRow);
        p.drawText(QRect(left + kMid, y, kMidLabel, kPartyRow), Qt::AlignCenter,
                   row == 1 ? QStringLiteral("성명") : QStringLiteral("종목"));
    }
}

} // namespace

DealPaper::DealPaper(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Picture1"));
    setFixedSize(kWidth, kHeight);
}

void DealPaper::setBackgroundPicture(const QPixmap& picture) {
    m_picture = picture;
    update();
}

void DealPaper::paintEvent(QPaintEvent*) {
    QPainter p(this);
    if (!m_picture.isNull()) {
        p.drawPixmap(rect(), m_picture);
        return;
    }
    p.fillRect(rect(), kPaper);
    p.setPen(kInk);
    QFont title = font();
    title.setPointSizeF(title.pointSizeF() * 1.8);
    title.setBold(true);
    p.setFont(title);
    p.drawText(QRect(0, 2, kWidth, 38), Qt::AlignCenter, QStringLiteral("거 래 명 세 표"));
    p.setFont(font());
    p.drawText(QRect(8, 8, 70, 26), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("거래일자"));
    drawParty(p, 0, QStringLiteral("공급자"));
    drawParty(p, kHalf, QStringLiteral("공급받는자"));
}

} // namespace nb
