#include "common/ScreenActivation.h"

#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
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

    void run() {
        if (m_running) return;  // an activation that opens a box must not start another
        m_running = true;
        m_activate();
        m_running = false;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_screen && event->type() == QEvent::Show) attach();
        if (watched == m_topWindow && event->type() == QEvent::WindowActivate && inFront()) run();
        return false;
    }

private:
    // On first show the screen knows where it lives: in a work area or on its own.
    void attach() {
        if (m_attached) return;
        m_attached = true;
        m_sub = qobject_cast<QMdiSubWindow*>(m_screen->parentWidget());
        if (m_sub && m_sub->mdiArea())
            connect(m_sub->mdiArea(), &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* active) {
                if (active && active == m_sub) run();
            });
        m_topWindow = m_screen->window();
        if (m_topWindow) m_topWindow->installEventFilter(this);
        if (!m_sub) run();
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
    bool m_running = false;
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
