#pragma once
// A document screen does its "activation" work (the default supplier, the receiver sent to it,
// its lists) each time it becomes the operator's screen again:
//  - when its child window becomes the active one in the main window's work area,
//  - when the main window becomes active again with this screen in front (a modal screen it
//    opened has closed, the operator comes back from another program),
//  - when its menu entry is chosen while it is open (the main window calls activateScreen).
// Outside a work area (a screen shown on its own, as in tests) it activates when shown and
// whenever its own window becomes active again.

#include <QWidget>
#include <functional>

namespace nb {

// Registers what `screen` does on activation. Call once, from the screen's constructor.
void onActivation(QWidget* screen, std::function<void()> activate);

// Runs the activation of `screen` now (when it registered one). Used by the main window when a
// menu entry brings an open screen forward that is already the active one.
void activateScreen(QWidget* screen);

} // namespace nb
