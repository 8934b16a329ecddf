#include "common/input/ImeMode.h"

#include <QApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QWidget>

namespace nb {

void SetImeMode(bool hangul, QWidget* control) {
    if (!control) control = QApplication::focusWidget();
    if (!control) return;
    Qt::InputMethodHints hints = control->inputMethodHints();
    hints.setFlag(Qt::ImhPreferLatin, !hangul);
    control->setInputMethodHints(hints);
    // Tell the input method at once if the box is the one being typed into.
    if (control->hasFocus()) QGuiApplication::inputMethod()->update(Qt::ImHints);
}

bool imeModeIsHangul(const QWidget* control) {
    return control && !control->inputMethodHints().testFlag(Qt::ImhPreferLatin);
}

HangulModeKeeper::HangulModeKeeper(QObject* parent, bool hangulOn) : QObject(parent), m_hangulOn(hangulOn) {}

void HangulModeKeeper::watch(QWidget* box) {
    box->removeEventFilter(this);
    box->installEventFilter(this);
}

bool HangulModeKeeper::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QWidget*>(watched);
    if (!box) return false;
    if (event->type() == QEvent::FocusIn) {
        SetImeMode(m_hangulOn, box);
    } else if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Hangul) {
        m_hangulOn = !m_hangulOn;
        SetImeMode(m_hangulOn, box);
    }
    return false;
}

} // namespace nb
