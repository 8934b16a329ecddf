// Korean or Latin input per box, and the per-form choice flipped by the Hangul key.
#include "TestSupport.h"
#include "common/input/ImeMode.h"
#include "common/input/KeyFlow.h"

#include <QApplication>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace nb;

namespace {

// A quotation-like form: two name boxes that follow the form's mode, and a number box.
struct Form {
    QWidget window;
    QLineEdit* customer = new QLineEdit(&window);
    QLineEdit* title = new QLineEdit(&window);
    QLineEdit* phone = new QLineEdit(&window);
    HangulModeKeeper* mode = new HangulModeKeeper(&window);

    Form() {
        auto* layout = new QVBoxLayout(&window);
        for (QWidget* w : std::initializer_list<QWidget*>{customer, title, phone})
            layout->addWidget(w);
        mode->watch(customer);
        mode->watch(title);
        installEnterAsTab(&window);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
    }
};

// The Hangul key (virtual key 21) carries no text, which the plain key click cannot send.
void pressHangulKey(QWidget* box) {
    QTest::sendKeyEvent(QTest::Press, box, Qt::Key_Hangul, QString(), Qt::NoModifier);
    QTest::sendKeyEvent(QTest::Release, box, Qt::Key_Hangul, QString(), Qt::NoModifier);
}

} // namespace

class TestImeMode : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void hangulModeLeavesTheBoxToHangul() {
        test::TestHome home;
        QLineEdit box;
        box.setInputMethodHints(Qt::ImhPreferLatin);
        box.show();
        box.activateWindow();
        QApplication::setActiveWindow(&box);
        box.setFocus();
        SetImeMode(true);
        QVERIFY(!box.inputMethodHints().testFlag(Qt::ImhPreferLatin));
        QVERIFY(imeModeIsHangul(&box));
    }
    void latinModeMakesTheBoxPreferLatin() {
        test::TestHome home;
        QLineEdit box;
        box.show();
        box.activateWindow();
        QApplication::setActiveWindow(&box);
        box.setFocus();
        SetImeMode(false);
        QVERIFY(box.inputMethodHints().testFlag(Qt::ImhPreferLatin));
        QVERIFY(!imeModeIsHangul(&box));
    }
    void otherHintsOfTheBoxAreKept() {
        test::TestHome home;
        QLineEdit box;
        box.setInputMethodHints(Qt::ImhNoPredictiveText);
        SetImeMode(false, &box);
        QCOMPARE(box.inputMethodHints(), Qt::ImhNoPredictiveText | Qt::ImhPreferLatin);
        SetImeMode(true, &box);
        QCOMPARE(box.inputMethodHints(), Qt::InputMethodHints(Qt::ImhNoPredictiveText));
    }
    void noActiveControlDoesNothing() {
        test::TestHome home;
        QLineEdit box;
        box.setInputMethodHints(Qt::ImhPreferLatin);
        QVERIFY(!QApplication::focusWidget());
        SetImeMode(true);
        QCOMPARE(box.inputMethodHints(), Qt::InputMethodHints(Qt::ImhPreferLatin));
    }
    void nameBoxesOpenInHangulByDefault() {
        test::TestHome home;
        Form form;
        form.phone->setFocus();
        form.customer->setInputMethodHints(Qt::ImhPreferLatin);
        form.title->setInputMethodHints(Qt::ImhPreferLatin);
        test::pressKey(form.phone, Qt::Key_Up);
        QVERIFY(form.title->hasFocus());
        QVERIFY(form.mode->hangulOn());
        QVERIFY(imeModeIsHangul(form.title));
        test::pressKey(form.title, Qt::Key_Up);
        QVERIFY(imeModeIsHangul(form.customer));
    }
    void hangulKeyFlipsTheFormsModeForTheNextBox() {
        test::TestHome home;
        Form form;
        form.customer->setFocus();
        pressHangulKey(form.customer);
        QVERIFY(!form.mode->hangulOn());
        QVERIFY(!imeModeIsHangul(form.customer));
        test::pressKey(form.customer, Qt::Key_Return);
        QVERIFY(form.title->hasFocus());
        QVERIFY(!imeModeIsHangul(form.title));
        pressHangulKey(form.title);
        QVERIFY(form.mode->hangulOn());
        QVERIFY(imeModeIsHangul(form.title));
    }
    void theHangulKeyInAnUnwatchedBoxLeavesTheModeAlone() {
        test::TestHome home;
        Form form;
        form.phone->setFocus();
        pressHangulKey(form.phone);
        QVERIFY(form.mode->hangulOn());
    }
    void eachFormKeepsItsOwnChoice() {
        test::TestHome home;
        Form first;
        Form second;
        first.window.activateWindow();
        QApplication::setActiveWindow(&first.window);
        first.customer->setFocus();
        pressHangulKey(first.customer);
        QVERIFY(!first.mode->hangulOn());
        QVERIFY(second.mode->hangulOn());
    }
};

NB_TEST_MAIN(TestImeMode)
#include "tst_imemode.moc"
