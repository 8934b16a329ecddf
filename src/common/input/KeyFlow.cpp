#include "common/input/KeyFlow.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace nb {
namespace {

bool takesTabFocus(const QWidget* w, const QWidget* window) {
    return w->window() == window && w->isEnabled() && w->isVisible() && !w->focusProxy() &&
           (w->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
}

QWidget* stepInChain(QWidget* w, FocusMove move) {
    return move == FocusMove::Next ? w->nextInFocusChain() : w->previousInFocusChain();
}

bool liesInGrid(const QWidget* w, const QWidget* form) {
    for (const QWidget* p = w; p && p != form; p = p->parentWidget()) {
        if (qobject_cast<const QAbstractItemView*>(p)) return true;
    }
    return false;
}

} // namespace

FocusMove focusMoveForKey(int key) {
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        return FocusMove::Next;
    case Qt::Key_Up:
        return FocusMove::Previous;
    default:
        return FocusMove::None;
    }
}

QWidget* nextFocusTarget(QWidget* from, FocusMove move) {
    if (!from || move == FocusMove::None) return nullptr;
    const QWidget* window = from->window();
    for (QWidget* w = stepInChain(from, move); w && w != from; w = stepInChain(w, move)) {
        if (takesTabFocus(w, window)) return w;
    }
    return nullptr;
}

bool EnterAsTab(int key, QWidget* from) {
    const FocusMove move = focusMoveForKey(key);
    if (move == FocusMove::None) return false;
    if (!from) from = QApplication::focusWidget();
    if (QWidget* target = nextFocusTarget(from, move))
        target->setFocus(move == FocusMove::Next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

EnterAsTabFilter::EnterAsTabFilter(QObject* parent) : QObject(parent) {}

void EnterAsTabFilter::watch(QWidget* box) {
    box->removeEventFilter(this);
    box->installEventFilter(this);
}

void EnterAsTabFilter::watchChildren(QWidget* form) {
    for (QWidget* child : form->findChildren<QWidget*>()) {
        if ((child->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !liesInGrid(child, form)) watch(child);
    }
}

bool EnterAsTabFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    auto* box = qobject_cast<QWidget*>(watched);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (!box || key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier)) return false;
    if (m_exception && m_exception(box, key->key())) return false;
    return EnterAsTab(key->key(), box);
}

EnterAsTabFilter* installEnterAsTab(QWidget* form) {
    auto* filter = new EnterAsTabFilter(form);
    filter->watchChildren(form);
    return filter;
}

} // namespace nb
