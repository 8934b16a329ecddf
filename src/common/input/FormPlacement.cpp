#include "common/input/FormPlacement.h"

#include <QWidget>

namespace nb {

QPoint placedFormPosition(const QRect& anchor, const QSize& form, int hAlign, int vAlign) {
    int left = anchor.left();
    if (hAlign == AlignRightEdges) left = anchor.left() + anchor.width() - form.width();
    if (hAlign == AlignCentred) left = anchor.left() + (anchor.width() - form.width()) / 2;
    const int top = vAlign == PlaceAbove ? anchor.top() - form.height() : anchor.top() + anchor.height();
    return {left, top};
}

QRect screenRectOf(const QWidget* anchor) {
    return {anchor->mapToGlobal(QPoint(0, 0)), anchor->size()};
}

void PlaceFormAt(QWidget* form, const QWidget* anchor, int hAlign, int vAlign) {
    if (!form || !anchor) return;
    // A form that has not been shown yet takes its natural size first, so that right edges
    // and "above" are measured with the size it will open in.
    if (!form->testAttribute(Qt::WA_Resized)) form->adjustSize();
    form->move(placedFormPosition(screenRectOf(anchor), form->frameGeometry().size(), hAlign, vAlign));
}

void MoveFormUnder(QWidget* form, const QWidget* anchor) {
    PlaceFormAt(form, anchor, AlignLeftEdges, PlaceBelow);
}

} // namespace nb
