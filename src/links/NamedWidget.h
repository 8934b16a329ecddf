#pragma once
// A control with its caption and the object name tests and the screen code find it by.

#include <QString>

class QWidget;

namespace nb {

template <typename Control>
Control* namedControl(const QString& name, const QString& caption, QWidget* parent) {
    auto* control = new Control(caption, parent);
    control->setObjectName(name);
    return control;
}

} // namespace nb
