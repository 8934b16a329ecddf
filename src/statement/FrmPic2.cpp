#include "statement/FrmPic2.h"

#include <QEvent>
#include <QLabel>

namespace nb {

namespace {

QImage smallStatementSample() {
    const QImage sample = drawnStatementSample();
    return sample.scaled(sample.size() / 2, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

FrmPic2::FrmPic2(QWidget* parent)
    : ZoomForm(QStringLiteral("FrmPic2"), QStringLiteral("거래명세표 견본"),
               QStringLiteral("sample_bill.jpg"), smallStatementSample(), parent) {
    picture()->installEventFilter(this);
    picture()->setCursor(Qt::PointingHandCursor);
}

bool FrmPic2::eventFilter(QObject* watched, QEvent* event) {
    if (watched == picture() && event->type() == QEvent::MouseButtonRelease) {
        showZoomDealList(this);
        return true;
    }
    return ZoomForm::eventFilter(watched, event);
}

} // namespace nb
