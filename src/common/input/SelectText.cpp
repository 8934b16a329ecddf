#include "common/input/SelectText.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>
#include <QTimer>

namespace nb {
namespace {

// Reaching past the end is harmless: the selection stops at the last character.
constexpr int kPastTheEnd = 2;

void selectLineEdit(QLineEdit* box) {
    if (!box->inputMask().isEmpty()) {
        box->setSelection(0, box->displayText().size());
    } else if (box->text().isEmpty()) {
        box->setCursorPosition(0);
    } else {
        box->setSelection(0, box->text().size() + kPastTheEnd);
    }
}

} // namespace

void SelectAllText(QWidget* control) {
    if (!control) control = QApplication::focusWidget();
    if (!control) return;
    if (auto* box = qobject_cast<QLineEdit*>(control)) {
        selectLineEdit(box);
    } else if (auto* combo = qobject_cast<QComboBox*>(control); combo && combo->lineEdit()) {
        selectLineEdit(combo->lineEdit());
    } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(control)) {
        spin->selectAll();
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(control)) {
        plain->selectAll();
    } else if (auto* rich = qobject_cast<QTextEdit*>(control)) {
        rich->selectAll();
    }
}

void SelectAllOnFocus::watch(QWidget* box) {
    box->removeEventFilter(this);
    box->installEventFilter(this);
}

bool SelectAllOnFocus::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        QPointer<QWidget> box = qobject_cast<QWidget*>(watched);
        QTimer::singleShot(0, this, [box] {
            if (box && box->hasFocus()) SelectAllText(box);
        });
    }
    return false;
}

} // namespace nb
