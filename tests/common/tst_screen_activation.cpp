// A document screen's activation: once on its first opening in the work area, again when the
// operator comes back from another child window, when its menu entry is chosen while it is in
// front, and one more run, not a round, when the activation itself opened a modal screen; a
// list the operator opens, or a message box, brings none.
#include "TestSupport.h"
#include "common/ScreenActivation.h"

#include <QDialog>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>

using namespace nb;

namespace {

struct WorkArea {
    QMainWindow main;
    QMdiArea* area = new QMdiArea;
    int activations = 0;
    QWidget* screen = new QWidget;
    QMdiSubWindow* sub = nullptr;
    WorkArea() {
        main.setCentralWidget(area);
        main.resize(800, 600);
        onActivation(screen, [this] { ++activations; });
        test::showActive(&main);
    }
    void open() {
        sub = area->addSubWindow(screen);
        sub->show();
        area->setActiveSubWindow(sub);
        QTest::qWait(20);
    }
    QMdiSubWindow* openOther() {
        QMdiSubWindow* other = area->addSubWindow(new QWidget);
        other->show();
        area->setActiveSubWindow(other);
        QTest::qWait(20);
        return other;
    }
};

// Runs a modal dialog over `parent` that closes itself, as a registration screen closed by
// the operator.
void runModalThatCloses(QWidget* parent) {
    QDialog dialog(parent);
    QTimer::singleShot(30, &dialog, &QDialog::accept);
    dialog.exec();
    QTest::qWait(30);
}

// How often the work area named its active child while the operator went to another program
// and came back.
int roundTripThroughAnotherProgram(WorkArea& w) {
    QSignalSpy named(w.area, &QMdiArea::subWindowActivated);
    return test::roundTripThroughAnotherProgram(&w.main) ? int(named.count()) : -1;
}

} // namespace

class TestScreenActivation : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void firstOpeningActivatesOnce() {
        WorkArea w;
        w.open();
        QCOMPARE(w.activations, 1);
    }
    void aListTheOperatorOpensBringsNoActivation() {
        WorkArea w;
        w.open();
        runModalThatCloses(w.screen);
        QCOMPARE(w.activations, 1);
    }
    void comingBackFromAnotherProgramIsNoActivation() {
        WorkArea w;
        w.open();
        QVERIFY(roundTripThroughAnotherProgram(w) > 0); // the work area named its child again
        QVERIFY(roundTripThroughAnotherProgram(w) > 0);
        QCOMPARE(w.activations, 1);
    }
    void afterARoundTripAnotherChildWindowAndBackStillActivates() {
        WorkArea w;
        w.open();
        roundTripThroughAnotherProgram(w);
        w.openOther();
        w.area->setActiveSubWindow(w.sub);
        QCOMPARE(w.activations, 2);
    }
    void backFromAnotherChildWindowActivatesAgain() {
        WorkArea w;
        w.open();
        w.openOther();
        QCOMPARE(w.activations, 1);
        w.area->setActiveSubWindow(w.sub);
        QCOMPARE(w.activations, 2);
    }
    void theMenuEntryOfTheScreenInFrontActivatesIt() {
        WorkArea w;
        w.open();
        activateScreen(w.screen);
        QCOMPARE(w.activations, 2);
    }
    void aModalOpenedByTheActivationBringsOneMoreRunNotARound() {
        QMainWindow main;
        auto* area = new QMdiArea;
        main.setCentralWidget(area);
        test::showActive(&main);
        auto* screen = new QWidget;
        int activations = 0, modals = 0;
        onActivation(screen, [&] {
            ++activations;
            ++modals;
            runModalThatCloses(&main); // the registration the activation asked for
        });
        QMdiSubWindow* sub = area->addSubWindow(screen);
        sub->show();
        area->setActiveSubWindow(sub);
        QTest::qWait(50);
        QCOMPARE(activations, 2);
        QCOMPARE(modals, 2);
    }
    void answeringAMessageBoxIsNoReturn() {
        WorkArea w;
        w.open();
        QMessageBox box(&w.main);
        QTimer::singleShot(30, &box, &QDialog::accept);
        box.exec();
        QTest::qWait(30);
        QCOMPARE(w.activations, 1);
    }
    void aScreenOnItsOwnActivatesWhenShown() {
        QWidget screen;
        int activations = 0;
        onActivation(&screen, [&] { ++activations; });
        test::showActive(&screen);
        QCOMPARE(activations, 1);
    }
};

NB_TEST_MAIN(TestScreenActivation)
#include "tst_screen_activation.moc"
