#pragma once
// The menu entries of the main window open screens that live in libraries above this one.
// Each of those libraries registers its screens here under the menu control's name; an entry
// with nothing registered stays disabled.

#include <QString>
#include <functional>

class QWidget;

namespace nb {

struct ScreenEntry {
    // A child screen: created on first use inside the main window and kept loaded after.
    std::function<QWidget*()> createChild;
    // Anything else (a modal screen, a question, a program start): run with the main window.
    std::function<void(QWidget* mainWindow)> run;
};

void registerChildScreen(const QString& menuControl, std::function<QWidget*()> create);
void registerMenuAction(const QString& menuControl, std::function<void(QWidget*)> run);
// The entry for a menu control, or null when nothing registered it.
const ScreenEntry* screenFor(const QString& menuControl);
void clearScreenRegistry();

// Opens the screen of a menu entry as the menu does, so that a screen can lead to one that lives
// in a library above it (the invoice to its statements, a quotation back to the statements).
// Answers the child screen when the entry opens one, else null. Without a main window (nothing
// installed the opener) nothing opens and the answer is null.
QWidget* openScreen(const QString& menuControl);
// The main window installs how entries open; tests may install their own.
void setScreenOpener(std::function<QWidget*(const QString& menuControl)> opener);

// Loads the child screen of an entry without showing it, so that a caller can hand it values
// before its activation runs; afresh, a loaded one goes first with all it held and the screen
// loads anew. openScreen then shows it. Null without a main window or for an entry that opens
// no child screen.
QWidget* loadScreen(const QString& menuControl, bool afresh);
void setScreenLoader(std::function<QWidget*(const QString& menuControl, bool afresh)> loader);

} // namespace nb
