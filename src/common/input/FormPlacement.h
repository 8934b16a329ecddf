#pragma once
// Opening a pop-up form right at the control that called it.

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace nb {

// Horizontal: the form's left edge at the anchor's left edge, right edges together, or centred.
enum HAlign : int { AlignLeftEdges = 0, AlignRightEdges = 1, AlignCentred = 2 };
// Vertical: 4 puts the form above the anchor; any other value below it.
enum VPlacement : int { PlaceAbove = 4, PlaceBelow = 3 };

// The top left of a form of the given size placed at an anchor (both in screen coordinates).
QPoint placedFormPosition(const QRect& anchorOnScreen, const QSize& form, int hAlign, int vAlign);
// The anchor's rectangle in screen coordinates.
QRect screenRectOf(const QWidget* anchor);

// Moves the form (a top-level window) to the anchor.
void PlaceFormAt(QWidget* form, const QWidget* anchor, int hAlign, int vAlign);
// Left edges together, just below the anchor.
void MoveFormUnder(QWidget* form, const QWidget* anchor);

} // namespace nb
