#include "shell/ModalReturn.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <vector>

namespace nb {
namespace {

// How long the opener is asked to take the activation back, in tries a short while apart: a
// window manager may still be busy with the closed dialog at the first try.
constexpr int kTries = 20;
constexpr int kTryMillis = 100;

struct Opened {
    QPointer<QDialog> dialog;
    QPointer<QWidget> window; // the window active when the dialog opened
    QPointer<QWidget> focus;  // the box that had the focus in it
};

// Only a window left without the activation is touched: where it has it, the screen's own code
// after the dialog already put the focus where the work goes on. On activation the window's
// focus goes back to the box that had it, unless that box is gone.
void giveBack(QPointer<QWidget> window, QPointer<QWidget> focus, int triesLeft) {
    if (!window || !window->isVisible() || QApplication::activeModalWidget()) return;
    if (QApplication::activeWindow() == window) return;
    window->raise();
    window->activateWindow();
    if (!window->focusWidget() && focus && focus->isVisible() && focus->window() == window)
        focus->setFocus(Qt::ActiveWindowFocusReason);
    if (triesLeft > 0)
        QTimer::singleShot(kTryMillis, window,
                           [window, focus, triesLeft] { giveBack(window, focus, triesLeft - 1); });
}

class ModalWatcher : public QObject {
public:
    explicit ModalWatcher(QObject* owner) : QObject(owner) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show && event->type() != QEvent::Hide) return false;
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (!dialog || !dialog->isModal()) return false;
        if (event->type() == QEvent::Show)
            opened(dialog);
        else
            closed(dialog);
        return false;
    }

private:
    void opened(QDialog* dialog) {
        QWidget* active = QApplication::activeWindow();
        if (!active || active == dialog)
            active = dialog->parentWidget() ? dialog->parentWidget()->window() : nullptr;
        m_open.push_back({dialog, active, QApplication::focusWidget()});
    }

    void closed(QDialog* dialog) {
        for (auto it = m_open.rbegin(); it != m_open.rend(); ++it) {
            if (it->dialog != dialog) continue;
            const Opened was = *it;
            m_open.erase(std::next(it).base());
            if (was.window)
                QTimer::singleShot(0, was.window,
                                   [w = was.window, f = was.focus] { giveBack(w, f, kTries); });
            return;
        }
    }

    std::vector<Opened> m_open;
};

} // namespace

void installModalReturn(QObject* owner) {
    qApp->installEventFilter(new ModalWatcher(owner));
}

} // namespace nb
