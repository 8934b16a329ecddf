// A modal screen that closes gives the activation back to the window that opened it, and the
// box that had the focus has it again, even when another window took the activation meanwhile
// (as a window manager may do on its own).
#include "TestSupport.h"
#include "core/ScreenRegistry.h"
#include "shell/Nubella.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTimer>

using namespace nb;

namespace {

struct Screen : QWidget {
    QLineEdit* first = new QLineEdit(this);
    QLineEdit* second = new QLineEdit(this);
    Screen() {
        first->setGeometry(10, 10, 150, 24);
        second->setGeometry(10, 40, 150, 24);
        resize(300, 120);
    }
};

struct Desk {
    test::TestHome home;
    Nubella window;
    QPointer<Screen> screen;
    Desk() {
        clearScreenRegistry();
        registerChildScreen(QStringLiteral("mnu_InvoiceTotal"), [this] { return screen = new Screen; });
        window.refreshMenuState();
        test::showActive(&window);
        window.menuAction(QStringLiteral("mnu_InvoiceTotal"))->trigger();
        QTest::qWait(30);
    }
    ~Desk() { clearScreenRegistry(); }
};

// Runs a modal registration over `opener`; while it is open another window takes the
// activation, then the registration closes by `close`.
void runRegistration(QWidget* opener, QWidget* other, const std::function<void(QDialog&)>& close) {
    QDialog registration(opener);
    registration.setModal(true);
    registration.resize(200, 100);
    QTimer::singleShot(100, &registration, [&] {
        other->show();
        other->activateWindow();
        QTimer::singleShot(100, &registration, [&] { close(registration); });
    });
    registration.exec();
}

} // namespace

class TestModalReturn : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aRegistrationSavedGivesTheActivationAndFocusBack() {
        Desk d;
        d.screen->second->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), d.screen->second);
        QWidget other;
        other.resize(100, 80);
        runRegistration(d.screen, &other, [](QDialog& dialog) { dialog.accept(); });
        QTRY_COMPARE(QApplication::activeWindow(), &d.window);
        QTRY_COMPARE(QApplication::focusWidget(), d.screen->second);
    }
    void aListClosedByEscapeGivesTheActivationBackToo() {
        Desk d;
        d.screen->first->setFocus();
        QWidget other;
        other.resize(100, 80);
        runRegistration(d.screen, &other, [](QDialog& dialog) { dialog.reject(); });
        QTRY_COMPARE(QApplication::activeWindow(), &d.window);
        QTRY_COMPARE(QApplication::focusWidget(), d.screen->first);
    }
    void whereTheScreenMovedTheFocusAfterTheDialogItStays() {
        Desk d;
        d.screen->first->setFocus();
        {
            QDialog list(d.screen);
            list.setModal(true);
            QTimer::singleShot(50, &list, [&] { list.accept(); });
            list.exec();
        }
        d.screen->second->setFocus(); // the screen goes on to the next box after a choice
        QTest::qWait(300);
        QCOMPARE(QApplication::activeWindow(), &d.window);
        QCOMPARE(QApplication::focusWidget(), d.screen->second);
    }
};

NB_TEST_MAIN(TestModalReturn)
#include "tst_modal_return.moc"
