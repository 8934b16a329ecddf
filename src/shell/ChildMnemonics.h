#pragma once
// Alt+letter in the main window. The active child screen's own "&" captions (its buttons, its
// check and option boxes, the labels of its boxes) win over the main menu's, as they did on the
// paper-form screens the operators know: Alt+X on a screen is its 닫기(&X), never the program's
// 종료(&X). The main menu answers the letters no control of the active screen holds, and Alt
// pressed and let go alone opens the menu bar.

#include <QWidget>

class QMdiArea;

namespace nb {

// The shown, enabled control of `screen` whose caption underlines the letter of `key`
// (Qt::Key_A..Key_Z, Key_0..Key_9), or null when the screen holds no such letter.
QWidget* childMnemonicTarget(const QWidget* screen, int key);

// Does what the letter does to its control: presses a button, ticks a check box or chooses an
// option (the focus goes with it), or moves the focus to the box a label names.
void fireMnemonic(QWidget* target);

// Puts the rule in force for the child screens of `area` while its window is the active one.
void installChildMnemonics(QMdiArea* area);

} // namespace nb
