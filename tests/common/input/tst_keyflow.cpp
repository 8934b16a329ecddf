// Keyboard flow: Enter and the down arrow move on, the up arrow moves back, other keys stay.
#include "TestSupport.h"
#include "common/input/KeyFlow.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTableWidget>
#include <QVBoxLayout>

using namespace nb;

namespace {

// A form of three boxes and a list, in that tab order, with the key flow installed.
struct Form {
    QWidget window;
    QLineEdit* name = new QLineEdit(&window);
    QLineEdit* phone = new QLineEdit(&window);
    QComboBox* kind = new QComboBox(&window);
    QLineEdit* memo = new QLineEdit(&window);
    EnterAsTabFilter* filter = nullptr;

    Form() {
        auto* layout = new QVBoxLayout(&window);
        for (QWidget* w : std::initializer_list<QWidget*>{name, phone, kind, memo})
            layout->addWidget(w);
        kind->addItems({QStringLiteral("매출"), QStringLiteral("매입")});
        filter = installEnterAsTab(&window);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        name->setFocus();
    }
};

} // namespace

class TestKeyFlow : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void keysAndTheirFocusMoves_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("move");
        QTest::newRow("Enter (13)") << int(Qt::Key_Return) << int(FocusMove::Next);
        QTest::newRow("keypad Enter") << int(Qt::Key_Enter) << int(FocusMove::Next);
        QTest::newRow("down arrow (40)") << int(Qt::Key_Down) << int(FocusMove::Next);
        QTest::newRow("up arrow (38)") << int(Qt::Key_Up) << int(FocusMove::Previous);
        QTest::newRow("right arrow") << int(Qt::Key_Right) << int(FocusMove::None);
        QTest::newRow("left arrow") << int(Qt::Key_Left) << int(FocusMove::None);
        QTest::newRow("Tab") << int(Qt::Key_Tab) << int(FocusMove::None);
        QTest::newRow("a letter") << int(Qt::Key_A) << int(FocusMove::None);
    }
    void keysAndTheirFocusMoves() {
        test::TestHome home;
        QFETCH(int, key);
        QFETCH(int, move);
        QCOMPARE(int(focusMoveForKey(key)), move);
    }
    void enterMovesToTheNextBox() {
        test::TestHome home;
        Form form;
        test::typeText(form.name, QStringLiteral("한빛상사"));
        test::pressKey(form.name, Qt::Key_Return);
        QVERIFY(form.phone->hasFocus());
        QCOMPARE(form.name->text(), QStringLiteral("한빛상사"));
    }
    void downArrowMovesToTheNextBox() {
        test::TestHome home;
        Form form;
        test::pressKey(form.name, Qt::Key_Down);
        QVERIFY(form.phone->hasFocus());
    }
    void upArrowMovesBack() {
        test::TestHome home;
        Form form;
        form.memo->setFocus();
        test::pressKey(form.memo, Qt::Key_Up);
        QVERIFY(form.kind->hasFocus());
    }
    void downArrowInAListMovesOnInsteadOfChangingTheItem() {
        test::TestHome home;
        Form form;
        form.kind->setFocus();
        test::pressKey(form.kind, Qt::Key_Down);
        QVERIFY(form.memo->hasFocus());
        QCOMPARE(form.kind->currentIndex(), 0);
    }
    void rightArrowInABoxMovesTheCaretNotTheFocus() {
        test::TestHome home;
        Form form;
        test::typeText(form.name, QStringLiteral("abc"));
        form.name->setCursorPosition(0);
        test::pressKey(form.name, Qt::Key_Right);
        QVERIFY(form.name->hasFocus());
        QCOMPARE(form.name->cursorPosition(), 1);
    }
    void leftArrowInABoxMovesTheCaretNotTheFocus() {
        test::TestHome home;
        Form form;
        test::typeText(form.name, QStringLiteral("abc"));
        test::pressKey(form.name, Qt::Key_Left);
        QVERIFY(form.name->hasFocus());
        QCOMPARE(form.name->cursorPosition(), 2);
    }
    void enterWalksTheWholeFormInTabOrder() {
        test::TestHome home;
        Form form;
        QList<QWidget*> visited;
        for (int i = 0; i < 4; ++i) {
            visited << QApplication::focusWidget();
            test::pressKey(QApplication::focusWidget(), Qt::Key_Return);
        }
        QCOMPARE(visited, (QList<QWidget*>{form.name, form.phone, form.kind, form.memo}));
        QVERIFY(form.name->hasFocus());
    }
    void hiddenAndDisabledBoxesArePassedOver() {
        test::TestHome home;
        Form form;
        form.phone->hide();
        form.kind->setEnabled(false);
        test::pressKey(form.name, Qt::Key_Return);
        QVERIFY(form.memo->hasFocus());
    }
    void anExceptionOfTheFormComesFirst() {
        test::TestHome home;
        Form form;
        int searches = 0;
        form.filter->setException([&](QWidget* box, int key) {
            const bool search = box == form.name && key == Qt::Key_Return;
            searches += search;
            return search;
        });
        test::pressKey(form.name, Qt::Key_Return);
        QVERIFY(form.name->hasFocus());
        QCOMPARE(searches, 1);
        test::pressKey(form.name, Qt::Key_Down);
        QVERIFY(form.phone->hasFocus());
    }
    void aGridKeepsItsOwnEnterAndArrows() {
        test::TestHome home;
        QWidget window;
        auto* box = new QLineEdit(&window);
        auto* grid = new QTableWidget(3, 2, &window);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(box);
        layout->addWidget(grid);
        installEnterAsTab(&window);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        grid->setFocus();
        grid->setCurrentCell(0, 0);
        test::pressKey(grid, Qt::Key_Down);
        QVERIFY(grid->hasFocus());
        QCOMPARE(grid->currentRow(), 1);
    }
    void helperMovesFromTheFocusWidgetWhenNoneIsGiven() {
        test::TestHome home;
        Form form;
        QVERIFY(EnterAsTab(Qt::Key_Return));
        QVERIFY(form.phone->hasFocus());
        QVERIFY(!EnterAsTab(Qt::Key_Right));
        QVERIFY(form.phone->hasFocus());
    }
};

NB_TEST_MAIN(TestKeyFlow)
#include "tst_keyflow.moc"
