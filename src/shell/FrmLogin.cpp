#include "shell/FrmLogin.h"

#include "core/AppFolder.h"
#include "core/AppState.h"

#include <QPainter>
#include <QTimer>

namespace nb {

FrmLogin::FrmLogin(QWidget* parent) : QDialog(parent, Qt::Dialog) {
    setObjectName(QStringLiteral("FrmLogin"));
    setWindowTitle(QStringLiteral("사용자 로그인"));
    setFixedSize(420, 240);
    SetLoginBackground();
    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setSingleShot(true);
    Timer1->setInterval(kShowMillis);
    connect(Timer1, &QTimer::timeout, this, [this] {
        Timer1->stop();
        accept();
    });
    connect(this, &QDialog::finished, Timer1, &QTimer::stop);
    Timer1->start();
}

void FrmLogin::SetLoginBackground() {
    const QString picture = userImage(QStringLiteral("loginbg.jpg"));
    if (!picture.isEmpty()) m_picture.load(picture);
}

void FrmLogin::paintEvent(QPaintEvent*) {
    paintSplash();
    if (m_painted) return;
    m_painted = true;
    Q_EMIT painted();
}

// Without a picture of the user's the splash draws the program's name on its own colours.
void FrmLogin::paintSplash() {
    QPainter p(this);
    if (!m_picture.isNull()) {
        p.drawPixmap(rect(), m_picture);
        return;
    }
    QLinearGradient g(0, 0, 0, height());
    g.setColorAt(0, QColor(5, 126, 128));
    g.setColorAt(1, QColor(3, 70, 72));
    p.fillRect(rect(), g);
    p.setPen(Qt::white);
    QFont big(QStringLiteral("굴림"));
    big.setPointSize(30);
    big.setBold(true);
    p.setFont(big);
    p.drawText(QRect(0, 40, width(), 80), Qt::AlignCenter, kAppTitle);
    QFont small(QStringLiteral("굴림"));
    small.setPointSize(11);
    p.setFont(small);
    p.drawText(QRect(0, 120, width(), 40), Qt::AlignCenter, QStringLiteral("거래명세표 & 세금계산서발행"));
    small.setPointSize(9);
    p.setFont(small);
    p.drawText(QRect(0, 190, width(), 30), Qt::AlignCenter,
               QStringLiteral("Ver.%1.%2.%3").arg(versionMajor()).arg(versionMinor()).arg(versionRevision()));
}

} // namespace nb
