#pragma once
// A document screen does its "activation" work (the default supplier, the receiver sent to it,
// its lists) each time it becomes the operator's screen again:
//  - when its child window becomes the active one in the main window's work area (its first
//    opening, the operator coming back to it from another child window),
//  - when the modal screen its activation opened closes (the supplier registration it asks for;
//    lists the operator opens by keys, and message boxes, bring none),
//  - when its menu entry is chosen while it is in front (the main window calls activateScreen).
// Outside a work area (a screen shown on its own, as in tests) it activates when first shown.

#include <QWidget>
#include <functional>

namespace nb {

// Registers what `screen` does on activation. Call once, from the screen's constructor.
void onActivation(QWidget* screen, std::function<void()> activate);

// Runs the activation of `screen` now (when it registered one). Used by the main window when a
// menu entry brings an open screen forward that is already the active one.
void activateScreen(QWidget* screen);

} // namespace nb
