// A screen's lists read afresh: not at the first opening (the screen's activation reads them),
// again when the operator comes back from another child window or from another program, and
// when asked (a store told of another seat's save) - then at most once per moment however often
// asked, never while the screen is hidden or minimised, while a modal window is open, while the
// operator has typed text the screen has not taken, or while a save holds; waiting re-reads run
// when their moment comes.
#include "TestSupport.h"
#include "common/ListRefresh.h"

#include <QDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTimer>
#include <QVBoxLayout>

using namespace nb;

namespace {

struct WorkArea {
    QMainWindow main;
    QMdiArea* area = new QMdiArea;
    QWidget* screen = new QWidget;
    QLineEdit* box = new QLineEdit(screen);
    QMdiSubWindow* sub = nullptr;
    int rereads = 0;
    WorkArea() {
        auto* layout = new QVBoxLayout(screen);
        layout->addWidget(box);
        main.setCentralWidget(area);
        main.resize(800, 600);
        onListRefresh(screen, [this] { ++rereads; });
        test::showActive(&main);
        sub = area->addSubWindow(screen);
        sub->show();
        area->setActiveSubWindow(sub);
        QTest::qWait(20);
    }
    ~WorkArea() { setListRefreshHold({}); }
    QMdiSubWindow* openOther() {
        QMdiSubWindow* other = area->addSubWindow(new QWidget);
        other->show();
        area->setActiveSubWindow(other);
        QTest::qWait(20);
        return other;
    }
    // Waits long enough for any re-read asked for to have run.
    void settle() { QTest::qWait(kListRefreshMillis + 150); }
};

} // namespace

class TestListRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theFirstOpeningIsNoReread() {
        WorkArea w;
        w.settle();
        QCOMPARE(w.rereads, 0);
    }
    void backFromAnotherChildWindowRereads() {
        WorkArea w;
        w.openOther();
        w.settle();
        QCOMPARE(w.rereads, 0);
        w.area->setActiveSubWindow(w.sub);
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 1000));
        w.settle();
        QCOMPARE(w.rereads, 1);
    }
    void backFromAnotherProgramRereads() {
        WorkArea w;
        QVERIFY(test::roundTripThroughAnotherProgram(&w.main));
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 1000));
    }
    void aModalWindowClosingIsNoReread() {
        WorkArea w;
        QDialog dialog(&w.main);
        QTimer::singleShot(30, &dialog, &QDialog::accept);
        dialog.exec();
        w.settle();
        QCOMPARE(w.rereads, 0);
    }
    void manyRequestsAtOnceRereadOnce() {
        WorkArea w;
        for (int i = 0; i < 10; ++i)
            requestListRefresh(w.screen);
        QCOMPARE(w.rereads, 0); // never inside the work that asked
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 1000));
        w.settle();
        QCOMPARE(w.rereads, 1);
    }
    void requestsInQuickSuccessionAreSpacedOut() {
        WorkArea w;
        QElapsedTimer clock;
        clock.start();
        requestListRefresh(w.screen);
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 1000));
        const qint64 first = clock.elapsed();
        requestListRefresh(w.screen);
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 2; }, 1000));
        QVERIFY2(clock.elapsed() - first >= kListRefreshMillis - 20,
                 qPrintable(QString::number(clock.elapsed() - first)));
    }
    void typedTextHoldsTheRereadUntilTaken() {
        WorkArea w;
        w.box->setFocus();
        test::typeText(w.box, QStringLiteral("대한"));
        QVERIFY(w.box->isModified());
        requestListRefresh(w.screen);
        w.settle();
        w.settle();
        QCOMPARE(w.rereads, 0);
        QVERIFY(listRefreshPending(w.screen));
        QCOMPARE(w.box->text(), QStringLiteral("대한"));
        w.box->setModified(false); // the screen took it (Enter)
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 1000));
        QCOMPARE(w.box->text(), QStringLiteral("대한"));
    }
    void aMinimisedScreenRereadsWhenShownAgain() {
        WorkArea w;
        w.openOther();
        w.sub->showMinimized();
        QTest::qWait(20);
        requestListRefresh(w.screen);
        w.settle();
        QCOMPARE(w.rereads, 0);
        w.sub->showNormal();
        QVERIFY(QTest::qWaitFor([&] { return w.rereads >= 1; }, 2000));
    }
    void aHiddenScreenWaits() {
        WorkArea w;
        w.sub->hide();
        requestListRefresh(w.screen);
        w.settle();
        QCOMPARE(w.rereads, 0);
        w.sub->show();
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 2000));
    }
    void aModalWindowOpenHoldsTheReread() {
        WorkArea w;
        QDialog dialog(&w.main);
        int whileOpen = -1;
        QTimer::singleShot(0, &dialog, [&] { requestListRefresh(w.screen); });
        QTimer::singleShot(kListRefreshMillis * 2, &dialog, [&] {
            whileOpen = w.rereads;
            dialog.accept();
        });
        dialog.exec();
        QCOMPARE(whileOpen, 0);
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 2000));
    }
    void aSaveInProgressHoldsTheReread() {
        WorkArea w;
        bool saving = true;
        setListRefreshHold([&saving] { return saving; });
        requestListRefresh(w.screen);
        w.settle();
        QCOMPARE(w.rereads, 0);
        saving = false;
        QVERIFY(QTest::qWaitFor([&] { return w.rereads == 1; }, 2000));
    }
    void aScreenWithoutRereadIsLeftAlone() {
        QWidget plain;
        requestListRefresh(&plain);
        QVERIFY(!listRefreshPending(&plain));
    }
};

NB_TEST_MAIN(TestListRefresh)
#include "tst_list_refresh.moc"
