#include "common/ScreenActivation.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QPointer>

namespace nb {
namespace {

// Lives as a child of the screen; watches the screen, its child window and the top window.
class ActivationWatcher : public QObject {
public:
    ActivationWatcher(QWidget* screen, std::function<void()> activate)
        : QObject(screen), m_screen(screen), m_activate(std::move(activate)) {
        setObjectName(QStringLiteral("nbActivationWatcher"));
        screen->installEventFilter(this);
    }

    // The second run does not start a third, so a registration left undone does not bring a
    // round of boxes.
    void run() {
        if (m_running) return;
        m_running = true;
        m_requestedWhileRunning = false;
        m_activate();
        if (m_requestedWhileRunning) m_activate();
        m_requestedWhileRunning = false;
        m_running = false;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_screen && event->type() == QEvent::Show) attach();
        if (event->type() == QEvent::Hide && isModalScreenOverTopWindow(watched))
            m_requestedWhileRunning = true;
        return false;
    }

private:
    // On first show the screen knows where it lives: in a work area or on its own.
    void attach() {
        if (m_attached) return;
        m_attached = true;
        m_sub = qobject_cast<QMdiSubWindow*>(m_screen->parentWidget());
        if (m_sub && m_sub->mdiArea())
            connect(m_sub->mdiArea(), &QMdiArea::subWindowActivated, this,
                    &ActivationWatcher::childActivated);
        m_topWindow = m_screen->window();
        qApp->installEventFilter(this); // modal screens closing over the window
        // A child window the work area made active as it was shown gives no signal later.
        if (!m_sub || inFront()) {
            m_lastInFront = true;
            run();
        }
    }

    // The work area names its active child again each time the whole program gets the focus
    // back from the desktop (and names none while another program has it). Only a change of
    // child inside the program is an activation: coming back from a calculator, or from a
    // message box that took the focus, leaves what the operator typed alone.
    void childActivated(QMdiSubWindow* active) {
        if (!active) return;
        const bool wasInFront = m_lastInFront;
        m_lastInFront = active == m_sub;
        if (m_lastInFront && !wasInFront) run();
    }

    // A modal screen shown over this screen's window while the activation runs: the supplier
    // registration the activation asks for. When it closes the activation runs once more, so
    // what was registered shows at once. Lists and dialogs the operator opens by keys are part
    // of the work on the screen and bring no activation, and a message box is no screen.
    // Window managers hand the window its activation back when a modal screen closes, but not
    // every platform does, so the screen's closing is what counts.
    bool isModalScreenOverTopWindow(QObject* watched) const {
        if (!m_running) return false;
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (!dialog || !dialog->isModal() || qobject_cast<QMessageBox*>(dialog)) return false;
        QWidget* owner = dialog->parentWidget();
        return owner && m_topWindow && owner->window() == m_topWindow;
    }

    bool inFront() const {
        if (!m_screen->isVisible()) return false;
        if (!m_sub) return true;
        QMdiArea* area = m_sub->mdiArea();
        return area && area->activeSubWindow() == m_sub;
    }

    QWidget* m_screen;
    std::function<void()> m_activate;
    QPointer<QMdiSubWindow> m_sub;
    QPointer<QWidget> m_topWindow;
    bool m_attached = false;
    bool m_lastInFront = false; // the last child the work area named active was this screen's
    bool m_running = false;
    bool m_requestedWhileRunning = false;
};

ActivationWatcher* watcherOf(QWidget* screen) {
    return screen ? screen->findChild<ActivationWatcher*>(QStringLiteral("nbActivationWatcher"),
                                                          Qt::FindDirectChildrenOnly)
                  : nullptr;
}

} // namespace

void onActivation(QWidget* screen, std::function<void()> activate) {
    new ActivationWatcher(screen, std::move(activate));
}

void activateScreen(QWidget* screen) {
    if (ActivationWatcher* watcher = watcherOf(screen)) watcher->run();
}

} // namespace nb
