// Selecting the text of a box on entry.
#include "TestSupport.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace nb;

class TestSelectText : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void maskedDateBoxSelectsAllCharactersTheMasksIncluded() {
        test::TestHome home;
        QLineEdit box;
        box.setInputMask(QStringLiteral("9999-99-99;_"));
        test::showActive(&box);
        box.setFocus();
        box.setText(QStringLiteral("2024"));
        SelectAllText();
        QCOMPARE(box.selectionStart(), 0);
        QCOMPARE(box.selectionLength(), 10);
        QCOMPARE(box.selectionLength(), box.displayText().size());
    }
    void emptyMaskedBoxStillSelectsTheWholeMask() {
        test::TestHome home;
        QLineEdit box;
        box.setInputMask(QStringLiteral("9999-99-99;_"));
        test::showActive(&box);
        box.setFocus();
        SelectAllText();
        QCOMPARE(box.selectionStart(), 0);
        QCOMPARE(box.selectionLength(), 10);
        // Typing replaces the whole selection from the start.
        test::typeText(&box, QStringLiteral("20240305"));
        QCOMPARE(box.text(), QStringLiteral("2024-03-05"));
    }
    void boxWithoutTextOnlyPutsTheCaretAtTheStart() {
        test::TestHome home;
        QLineEdit box;
        test::showActive(&box);
        box.setFocus();
        SelectAllText();
        QVERIFY(!box.hasSelectedText());
        QCOMPARE(box.cursorPosition(), 0);
        QCOMPARE(box.text(), QString());
    }
    void plainBoxSelectsAllItsTextReachingPastTheEndHarmlessly() {
        test::TestHome home;
        QLineEdit box(QStringLiteral("한빛상사"));
        test::showActive(&box);
        box.setFocus();
        box.setCursorPosition(2);
        SelectAllText();
        QCOMPARE(box.selectionStart(), 0);
        QCOMPARE(box.selectedText(), QStringLiteral("한빛상사"));
    }
    void noActiveControlDoesNothing() {
        test::TestHome home;
        QLineEdit box(QStringLiteral("그대로"));
        QVERIFY(!QApplication::focusWidget());
        SelectAllText();
        QVERIFY(!box.hasSelectedText());
    }
    void controlWithoutTextIsPassedOver() {
        test::TestHome home;
        QPushButton button(QStringLiteral("저장"));
        test::showActive(&button);
        button.setFocus();
        SelectAllText();
        QCOMPARE(button.text(), QStringLiteral("저장"));
    }
    void editableListSelectsItsText() {
        test::TestHome home;
        QComboBox list;
        list.setEditable(true);
        list.setEditText(QStringLiteral("상호"));
        test::showActive(&list);
        list.setFocus();
        SelectAllText();
        QCOMPARE(list.lineEdit()->selectedText(), QStringLiteral("상호"));
    }
    void boxEnteredByEnterHasItsTextSelected() {
        test::TestHome home;
        QWidget window;
        auto* first = new QLineEdit(&window);
        auto* second = new QLineEdit(QStringLiteral("02-123-4567"), &window);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(first);
        layout->addWidget(second);
        installEnterAsTab(&window);
        auto* selector = new SelectAllOnFocus(&window);
        selector->watch(second);
        test::showActive(&window);
        first->setFocus();
        test::pressKey(first, Qt::Key_Return);
        QTRY_COMPARE(second->selectedText(), QStringLiteral("02-123-4567"));
        test::typeText(second, QStringLiteral("031"));
        QCOMPARE(second->text(), QStringLiteral("031"));
    }
};

NB_TEST_MAIN(TestSelectText)
#include "tst_selecttext.moc"
