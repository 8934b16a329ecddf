// Input edge cases beside the main input tests: selection on the program's own date boxes, a form
// whose focus is on no control, and the right arrow in a masked date box.
#include "TestSupport.h"
#include "common/dates/DateBox.h"
#include "common/input/ImeMode.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"

#include <QApplication>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace nb;

class TestInputEdgeCases : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void statementDateBoxSelectsTheHangulMaskWhole() {
        test::TestHome home;
        DateBox box(nullptr, kHanDateMask);
        test::showActive(&box);
        box.setFocus();
        box.setDateText(QStringLiteral("2024-03-05"));
        QCOMPARE(box.displayText(), QStringLiteral("2024년03월05일"));
        box.setCursorPosition(3);
        SelectAllText();
        QCOMPARE(box.selectionStart(), 0);
        QCOMPARE(box.selectionLength(), 11);
    }
    void emptyDateBoxSelectsItsMaskCharacters() {
        test::TestHome home;
        DateBox box;
        test::showActive(&box);
        box.setFocus();
        SelectAllText();
        QCOMPARE(box.selectionStart(), 0);
        QCOMPARE(box.selectionLength(), 10);
    }
    void selectAllTextInAnActiveFormWithNoFocusedControlChangesNothing() {
        test::TestHome home;
        QWidget window;
        auto* box = new QLineEdit(QStringLiteral("한빛상사"), &window);
        test::showActive(&window);
        box->setFocus();
        box->setCursorPosition(2);
        box->clearFocus();
        QVERIFY(!QApplication::focusWidget());
        SelectAllText();
        QVERIFY(!box->hasSelectedText());
        QCOMPARE(box->cursorPosition(), 2);
    }
    void setImeModeInAnActiveFormWithNoFocusedControlChangesNothing() {
        test::TestHome home;
        QWidget window;
        auto* box = new QLineEdit(&window);
        box->setInputMethodHints(Qt::ImhPreferLatin);
        test::showActive(&window);
        box->clearFocus();
        QVERIFY(!QApplication::focusWidget());
        SetImeMode(true);
        QCOMPARE(box->inputMethodHints(), Qt::InputMethodHints(Qt::ImhPreferLatin));
        QCOMPARE(window.inputMethodHints(), Qt::InputMethodHints());
    }
    void rightArrowInADateBoxMovesTheCaretNotTheFocus() {
        test::TestHome home;
        QWidget window;
        auto* layout = new QVBoxLayout(&window);
        auto* date = new DateBox(&window);
        auto* next = new QLineEdit(&window);
        layout->addWidget(date);
        layout->addWidget(next);
        installEnterAsTab(&window);
        test::showActive(&window);
        date->setFocus();
        date->setDateText(QStringLiteral("2024-03-05"));
        date->setCursorPosition(0);
        test::pressKey(date, Qt::Key_Right);
        QVERIFY(date->hasFocus());
        QCOMPARE(date->cursorPosition(), 1);
        test::pressKey(date, Qt::Key_Return);
        QVERIFY(next->hasFocus());
    }
};

NB_TEST_MAIN(TestInputEdgeCases)
#include "tst_input_edge_cases.moc"
