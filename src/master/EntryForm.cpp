#include "master/EntryForm.h"

#include "common/input/ImeMode.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {

bool isEnterKey(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

QLabel* fieldCaption(QWidget* parent, const QString& text, int minWidth) {
    auto* label = new QLabel(text, parent);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Raised);
    label->setMinimumWidth(minWidth);
    return label;
}

QLabel* hintPanel(QWidget* parent, const QString& objectName) {
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    return label;
}

QPushButton* formButton(QWidget* parent, const QString& caption, const QString& objectName) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(objectName);
    button->setAutoDefault(false);
    return button;
}

SaveExitRow addSaveExitRow(QDialog* form, QLayout* fields, const QString& hintName) {
    SaveExitRow row;
    row.hint = hintPanel(form, hintName);
    row.save = formButton(form, QStringLiteral("저장(&S)"), QStringLiteral("btnSave"));
    row.exit = formButton(form, QStringLiteral("종료(&X)"), QStringLiteral("btnExit"));
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(row.hint, 1);
    bottom->addWidget(row.save);
    bottom->addWidget(row.exit);
    auto* layout = new QVBoxLayout(form);
    layout->addLayout(fields);
    layout->addLayout(bottom);
    QObject::connect(row.exit, &QPushButton::clicked, form, &QDialog::reject);
    return row;
}

void watchEntryBoxes(QWidget* form, std::span<QLineEdit* const> boxes, HangulModeKeeper* hangul) {
    auto* enterAsTab = new EnterAsTabFilter(form);
    auto* select = new SelectAllOnFocus(form);
    for (QLineEdit* box : boxes) {
        enterAsTab->watch(box);
        select->watch(box);
        if (hangul) hangul->watch(box);
        box->installEventFilter(form);
    }
}

void chainTabOrder(std::span<QWidget* const> order) {
    for (std::size_t i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

void chainTabOrder(std::initializer_list<QWidget*> order) {
    chainTabOrder(std::span<QWidget* const>(order.begin(), order.size()));
}

} // namespace nb
