#include "shell/ChildMnemonics.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPointer>
#include <utility>

namespace nb {
namespace {

bool isLetterOrDigit(int key) {
    return (key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9);
}

bool captionUnderlines(const QString& caption, int key) {
    return !caption.isEmpty() && QKeySequence::mnemonic(caption) == QKeySequence(Qt::ALT | Qt::Key(key));
}

QString captionOf(const QWidget* widget) {
    if (auto* button = qobject_cast<const QAbstractButton*>(widget)) return button->text();
    if (auto* label = qobject_cast<const QLabel*>(widget)) return label->buddy() ? label->text() : QString();
    if (auto* group = qobject_cast<const QGroupBox*>(widget)) return group->title();
    return {};
}

bool reachable(const QWidget* widget) {
    return widget->isVisible() && widget->isEnabled();
}

// Alt+letter reaches the active child screen's controls first. A ShortcutOverride accepted for
// such a letter keeps it from the menu bar's shortcuts; the key press that follows fires it.
class MnemonicFilter : public QObject {
public:
    explicit MnemonicFilter(QMdiArea* area) : QObject(area), m_area(area) {}

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        watchAltAlone(event);
        if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress) return false;
        auto* key = static_cast<QKeyEvent*>(event);
        QWidget* target = targetFor(key);
        if (!target) return false;
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept();
            return true;
        }
        fireMnemonic(target);
        return true;
    }

private:
    // Alt pressed and let go with nothing between opens the menu bar, so that its entries stay
    // reachable by keys when the screen in front holds their letters.
    void watchAltAlone(QEvent* event) {
        const auto type = event->type();
        if (type == QEvent::MouseButtonPress) m_altAlone = false;
        if (type != QEvent::KeyPress && type != QEvent::KeyRelease) return;
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->isAutoRepeat()) return;
        const bool alt = key->key() == Qt::Key_Alt &&
                         !(key->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier | Qt::MetaModifier));
        if (type == QEvent::KeyPress) {
            m_altAlone = alt && mainWindowInFront();
            return;
        }
        if (alt && std::exchange(m_altAlone, false)) openMenuBar();
    }

    bool mainWindowInFront() const {
        return m_area && !QApplication::activeModalWidget() && !QApplication::activePopupWidget() &&
               QApplication::activeWindow() == m_area->window();
    }

    void openMenuBar() const {
        if (!mainWindowInFront()) return;
        auto* bar = m_area->window()->findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly);
        if (!bar || bar->actions().isEmpty()) return;
        for (QAction* action : bar->actions())
            if (action->isEnabled() && action->isVisible()) {
                bar->setActiveAction(action);
                return;
            }
    }

    QWidget* targetFor(const QKeyEvent* key) const {
        const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
        if (mods != Qt::AltModifier || !isLetterOrDigit(key->key()) || !m_area) return nullptr;
        if (QApplication::activeModalWidget() || QApplication::activeWindow() != m_area->window())
            return nullptr;
        QMdiSubWindow* active = m_area->activeSubWindow();
        return active && active->widget() ? childMnemonicTarget(active->widget(), key->key()) : nullptr;
    }

    QPointer<QMdiArea> m_area;
    bool m_altAlone = false;
};

} // namespace

QWidget* childMnemonicTarget(const QWidget* screen, int key) {
    if (!screen || !isLetterOrDigit(key)) return nullptr;
    for (QWidget* widget : screen->findChildren<QWidget*>())
        if (reachable(widget) && captionUnderlines(captionOf(widget), key)) return widget;
    return nullptr;
}

void fireMnemonic(QWidget* target) {
    if (auto* label = qobject_cast<QLabel*>(target)) {
        if (QWidget* buddy = label->buddy()) buddy->setFocus(Qt::ShortcutFocusReason);
        return;
    }
    if (auto* group = qobject_cast<QGroupBox*>(target)) {
        group->setFocus(Qt::ShortcutFocusReason);
        if (group->isCheckable()) group->setChecked(!group->isChecked());
        return;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(target)) {
        button->setFocus(Qt::ShortcutFocusReason);
        button->click();
    }
}

void installChildMnemonics(QMdiArea* area) {
    qApp->installEventFilter(new MnemonicFilter(area));
}

} // namespace nb
