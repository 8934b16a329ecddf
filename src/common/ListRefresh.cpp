#include "common/ListRefresh.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEvent>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QTimer>

namespace nb {
namespace {

std::function<bool()>& hold() {
    static std::function<bool()> h;
    return h;
}

// Text the operator typed into the box that has the keyboard and the screen has not taken yet
// (a box's text set by the program, or taken by Enter into a cell, is not "modified").
bool typingIn(const QWidget* screen) {
    QWidget* focus = QApplication::focusWidget();
    if (!focus || !screen->isAncestorOf(focus)) return false;
    if (auto* box = qobject_cast<QLineEdit*>(focus)) return box->isModified();
    if (auto* combo = qobject_cast<QComboBox*>(focus))
        return combo->isEditable() && combo->lineEdit() && combo->lineEdit()->isModified();
    return false;
}

// Lives as a child of the screen; watches the screen's child window, the work area and the
// program's coming back from another program.
class ListRefresher : public QObject {
public:
    ListRefresher(QWidget* screen, std::function<void()> reread)
        : QObject(screen), m_screen(screen), m_reread(std::move(reread)) {
        setObjectName(QStringLiteral("nbListRefresher"));
        m_timer.setSingleShot(true);
        connect(&m_timer, &QTimer::timeout, this, &ListRefresher::tryRun);
        screen->installEventFilter(this);
    }

    // Asked by a store's notice: at most once per kListRefreshMillis.
    void request() {
        m_pending = true;
        const qint64 since = m_lastRun.isValid() ? m_lastRun.elapsed() : kListRefreshMillis;
        startTimer(int(qMax<qint64>(0, kListRefreshMillis - since)));
    }
    bool pending() const { return m_pending; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_screen && event->type() == QEvent::Show) attach();
        if (watched == qApp && event->type() == QEvent::ApplicationDeactivate) programLeft();
        if (watched == qApp && event->type() == QEvent::ApplicationActivate) programBack();
        return false;
    }

private:
    void attach() {
        if (m_attached) return;
        m_attached = true;
        m_sub = qobject_cast<QMdiSubWindow*>(m_screen->parentWidget());
        if (!m_sub || !m_sub->mdiArea()) return; // a screen on its own re-reads when asked only
        connect(m_sub->mdiArea(), &QMdiArea::subWindowActivated, this, &ListRefresher::childActivated);
        m_lastInFront = inFront();
        m_everInFront = m_lastInFront;
        // The desktop tells the program it lost and got back the focus by its state; the
        // events are what a program that is handed its activation directly receives.
        qApp->installEventFilter(this);
        connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
                programBack();
            else
                programLeft();
        });
    }

    void programLeft() { m_away = true; }
    // The work area names its child again only after the program is told it is back, so the
    // screen is not known to be in front yet: a screen in view reads its lists.
    void programBack() {
        if (!m_away) return;
        m_away = false;
        if (m_everInFront) comeToFront();
    }

    // The work area names no child while another program has the focus and names the same one
    // again when it comes back: that return is told by the program's own activation above.
    void childActivated(QMdiSubWindow* active) {
        if (!active) return;
        const bool wasInFront = m_lastInFront;
        m_lastInFront = active == m_sub;
        if (!m_lastInFront || wasInFront) return;
        // The first time in front is the opening, which reads by the screen's own activation.
        if (m_everInFront) comeToFront();
        m_everInFront = true;
    }

    void comeToFront() {
        m_pending = true;
        startTimer(0);
    }

    void startTimer(int millis) {
        if (m_timer.isActive() && m_timer.remainingTime() <= millis) return;
        m_timer.start(millis);
    }

    bool inFront() const {
        if (!m_screen->isVisible()) return false;
        if (!m_sub) return true;
        QMdiArea* area = m_sub->mdiArea();
        return area && area->activeSubWindow() == m_sub;
    }

    bool seen() const {
        if (!m_screen->isVisible() || m_screen->window()->isMinimized()) return false;
        return !m_sub || !m_sub->isMinimized();
    }

    bool held() const {
        if (m_running || QApplication::activePopupWidget()) return true;
        // A modal window over the screen; a list that is itself the modal window re-reads.
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal != m_screen->window()) return true;
        if (typingIn(m_screen)) return true;
        return hold() && hold()();
    }

    void tryRun() {
        if (!m_pending) return;
        if (!seen() || held()) {
            startTimer(kListRefreshMillis); // looked at again until its moment comes
            return;
        }
        m_pending = false;
        m_running = true;
        m_reread();
        m_running = false;
        m_lastRun.restart();
    }

    QWidget* m_screen;
    std::function<void()> m_reread;
    QPointer<QMdiSubWindow> m_sub;
    QTimer m_timer;
    QElapsedTimer m_lastRun;
    bool m_attached = false;
    bool m_lastInFront = false;
    bool m_everInFront = false;
    bool m_away = false;
    bool m_pending = false;
    bool m_running = false;
};

ListRefresher* refresherOf(QWidget* screen) {
    return screen ? screen->findChild<ListRefresher*>(QStringLiteral("nbListRefresher"),
                                                      Qt::FindDirectChildrenOnly)
                  : nullptr;
}

} // namespace

void onListRefresh(QWidget* screen, std::function<void()> reread) {
    new ListRefresher(screen, std::move(reread));
}

void requestListRefresh(QWidget* screen) {
    if (ListRefresher* refresher = refresherOf(screen)) refresher->request();
}

bool listRefreshPending(QWidget* screen) {
    ListRefresher* refresher = refresherOf(screen);
    return refresher && refresher->pending();
}

void setListRefreshHold(std::function<bool()> h) {
    hold() = std::move(h);
}

} // namespace nb
