#include "common/FormBuild.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace nb {

namespace {

template <class Control> Control* placed(Control* control, const QString& name, const QRect& geometry) {
    if (!name.isEmpty()) control->setObjectName(name);
    control->setGeometry(geometry);
    return control;
}

} // namespace

QLabel* makeLabel(QWidget* parent, const QString& text, const QRect& geometry, bool framed) {
    auto* l = placed(new QLabel(text, parent), QString(), geometry);
    if (framed) {
        l->setFrameShape(QFrame::Panel);
        l->setFrameShadow(QFrame::Sunken);
    }
    return l;
}

QLabel* makeSumPanel(QWidget* parent, const QString& name, const QRect& geometry) {
    QLabel* panel = makeLabel(parent, QString(), geometry, true);
    panel->setObjectName(name);
    panel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return panel;
}

QPushButton* makeButton(QWidget* parent, const QString& name, const QString& caption, const QRect& geometry) {
    auto* b = placed(new QPushButton(caption, parent), name, geometry);
    b->setFocusPolicy(Qt::TabFocus);
    return b;
}

QCheckBox* makeCheck(QWidget* parent, const QString& name, const QString& caption, const QRect& geometry) {
    return placed(new QCheckBox(caption, parent), name, geometry);
}

QRadioButton* makeOption(QWidget* parent, const QString& name, const QString& caption,
                         const QRect& geometry) {
    return placed(new QRadioButton(caption, parent), name, geometry);
}

QComboBox* makeList(QWidget* parent, const QString& name, const QRect& geometry) {
    return placed(new QComboBox(parent), name, geometry);
}

} // namespace nb
