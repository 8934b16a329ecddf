#pragma once
// Message boxes that take the focus as real ones do. A scripted box answers at once and never
// leaves the window it was asked from; a real box is a window of its own: it is shown and made
// the active window with the focus on its button, and when it closes, the window that had the
// focus gets it back only later, when the window manager hands it back (the next turn of the
// event loop). Screens that react to focus moves are tested against this.

#include "common/Messages.h"

namespace nb::test {

class FocusTakingMessages : public ScriptedMessages {
public:
    int box(const QString& text, int buttons, const QString& title) override;
    // How many boxes really took the focus.
    int focusTaken() const { return m_focusTaken; }

private:
    int m_focusTaken = 0;
};

// Installs a fresh FocusTakingMessages and returns it (owned by the service).
FocusTakingMessages& scriptFocusTakingBoxes();

// Lets the window manager hand back the focus after boxes closed: runs the event loop a moment.
void settleFocus();

// A window of its own (a dialog) shown, made active with the focus on its button, and closed
// again; the window that had the focus gets it back on the next turn of the event loop.
void takeFocusAway();

} // namespace nb::test
