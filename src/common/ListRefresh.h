#pragma once
// The lists of a screen read afresh, so that what another seat (or another running copy) saved
// shows without the operator asking:
//  - when the screen's child window becomes the active one again after another child window
//    had it, or when the program gets the desktop's focus back from another program while the
//    screen is in view (the operator may have been at the other copy);
//  - when asked by requestListRefresh (a store told of another seat's save).
// The re-read is the screen's own function, which keeps the operator's place: the same row by
// its key where it still exists, the same scroll position, the same search text and filters,
// no box. It re-reads lists only, never what the operator is typing into a document.
//
// A re-read never runs inside the work that asked for it, but from the event loop, and waits
// while the screen is hidden or minimised, while a modal window (a question, a search list) is
// open over it (a search list that is itself the modal window re-reads), while the operator has typed text
// the screen has not taken yet (a changed box with the keyboard), and while the hold says so (a save in
// progress). Asked for many times, it runs at most once per kListRefreshMillis.

#include <QWidget>
#include <functional>

namespace nb {

inline constexpr int kListRefreshMillis = 300;

// Registers the re-read of `screen`'s lists. Call once, from the screen's constructor; the
// first opening reads the lists by the screen's own activation, not by this.
void onListRefresh(QWidget* screen, std::function<void()> reread);

// Asks for a re-read of `screen`'s lists (one that registered); runs as said above.
void requestListRefresh(QWidget* screen);

// True while `screen` has a re-read waiting for its moment.
bool listRefreshPending(QWidget* screen);

// A condition under which no list is re-read (a store in the middle of a save). One for the
// program; an empty function clears it.
void setListRefreshHold(std::function<bool()> hold);

} // namespace nb
