#include "FocusTakingBoxes.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

namespace nb::test {

void takeFocusAway() {
    QPointer<QWidget> before = QApplication::activeWindow();
    {
        QDialog box;
        box.setWindowTitle(QStringLiteral("box"));
        auto* button = new QPushButton(QStringLiteral("확인"), &box);
        (new QVBoxLayout(&box))->addWidget(button);
        box.setModal(true);
        box.show();
        box.activateWindow();
        QApplication::setActiveWindow(&box);
        button->setFocus(Qt::ActiveWindowFocusReason);
        QCoreApplication::processEvents();
        box.hide();
        // The box is gone and no window is active until the window manager says otherwise.
        QApplication::setActiveWindow(nullptr);
    }
    QTimer::singleShot(0, qApp, [before] {
        if (before) QApplication::setActiveWindow(before);
    });
}

int FocusTakingMessages::box(const QString& text, int buttons, const QString& title) {
    const int answer = ScriptedMessages::box(text, buttons, title);
    takeFocusAway();
    ++m_focusTaken;
    return answer;
}

FocusTakingMessages& scriptFocusTakingBoxes() {
    auto backend = std::make_unique<FocusTakingMessages>();
    FocusTakingMessages& ref = *backend;
    setMessageBackend(std::move(backend));
    return ref;
}

void settleFocus() {
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
        QTest::qWait(5);
    }
}

} // namespace nb::test
