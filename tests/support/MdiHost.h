// A screen hosted as the main window hosts it: in an MDI area beside one other window, so that a
// test can leave the screen for another window and come back as the operator does.
#pragma once

#include "TestSupport.h"
#include "common/ListRefresh.h"

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

namespace nb::test {

struct MdiHost {
    QMainWindow main;
    QMdiArea* area = new QMdiArea;
    QMdiSubWindow* sub = nullptr;
    QMdiSubWindow* other = nullptr;

    // Shows the main window active, then the screen in it, chosen.
    void host(QWidget* screen, QSize size) {
        main.setCentralWidget(area);
        main.resize(size);
        showActive(&main);
        sub = area->addSubWindow(screen);
        sub->show();
        area->setActiveSubWindow(sub);
        QTest::qWait(50);
        other = area->addSubWindow(new QWidget);
    }

    // To the other window and back; the list the return asks to read again has been read, unless
    // the screen may hold the read back (while the operator has typed into its form).
    void awayAndBack(bool waitForTheRead = true) {
        other->show();
        area->setActiveSubWindow(other);
        QTest::qWait(30);
        area->setActiveSubWindow(sub);
        QTest::qWait(kListRefreshMillis + 150);
        if (waitForTheRead)
            QVERIFY(QTest::qWaitFor([this] { return !listRefreshPending(sub->widget()); }, 5000));
    }
};

} // namespace nb::test
