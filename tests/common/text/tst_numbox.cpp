// Money and quantity boxes formatted as they are typed.
#include "TestSupport.h"
#include "common/text/NumBox.h"

#include <QFontMetricsF>
#include <QLineEdit>
#include <cmath>

using namespace nb;

namespace {

double blankWidth(const QLineEdit& box) {
    const QFontMetricsF m(box.font());
    return m.horizontalAdvance(QStringLiteral("  ")) - m.horizontalAdvance(QStringLiteral(" "));
}

double textWidth(const QLineEdit& box, const QString& text) {
    return QFontMetricsF(box.font()).horizontalAdvance(text);
}

// Int((room - text) / blank) - 1, worked out here in fractional pixels.
int expectedPad(const QLineEdit& box, const QString& text) {
    return int(std::floor((NumBoxTextRoom(&box) - textWidth(box, text)) / blankWidth(box))) - 1;
}

int leadingBlanks(const QString& text) {
    int n = 0;
    while (n < text.size() && text.at(n) == u' ')
        ++n;
    return n;
}

// A box just wide enough for `fits` with one blank in front, `spare` pixels more.
void sizeFor(QLineEdit& box, const QString& fits, int spare) {
    box.resize(200, 24);
    const int frame = box.width() - NumBoxTextRoom(&box);
    box.resize(frame + int(std::ceil(textWidth(box, fits) + 2 * blankWidth(box))) + spare, 24);
}

} // namespace

class TestNumBox : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nonNumericTextBecomesZero() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        box.setText(QStringLiteral("abc"));
        SetNumBoxText(&box);
        QCOMPARE(box.text(), QStringLiteral("0"));
    }
    void emptyTextIsLeftAlone() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        SetNumBoxText(&box);
        QCOMPARE(box.text(), QString());
    }
    void wideBoxGetsBlanksAndCommasWithTheCaretAtTheEnd() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        box.setText(QStringLiteral("1234"));
        box.setCursorPosition(0);
        SetNumBoxText(&box);
        QCOMPARE(box.text().trimmed(), QStringLiteral("1,234"));
        const int pad = leadingBlanks(box.text());
        QVERIFY(pad >= 1);
        QCOMPARE(box.text(), QString(pad, u' ') + QStringLiteral("1,234"));
        // The blank's width is kept in whole twentieths of a point, so over ~45 blanks the count
        // may differ by one from the fractional-pixel reckoning.
        QVERIFY(qAbs(pad - expectedPad(box, QStringLiteral("1,234"))) <= 1);
        QVERIFY(NumBoxTextRoom(&box) - textWidth(box, box.text()) < 3 * blankWidth(box));
        QCOMPARE(box.cursorPosition(), int(box.text().size()));
    }
    void paddedTextEndsInsideTheBox() {
        test::TestHome home;
        QLineEdit box;
        box.resize(160, 24);
        box.setText(QStringLiteral("9876543"));
        SetNumBoxText(&box);
        QCOMPARE(box.text().trimmed(), QStringLiteral("9,876,543"));
        QVERIFY(textWidth(box, box.text()) <= NumBoxTextRoom(&box));
        // The text ends within three blanks of the right edge.
        const double spare = NumBoxTextRoom(&box) - textWidth(box, box.text());
        QVERIFY(spare >= 0);
        QVERIFY(spare < 3 * blankWidth(box));
    }
    void fractionGetsNoCommas() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        box.setText(QStringLiteral("1234.5"));
        SetNumBoxText(&box);
        QCOMPARE(box.text().trimmed(), QStringLiteral("1234.5"));
        QVERIFY(box.text().startsWith(u' '));
    }
    void loneMinusIsKeptForANegativeNumber() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        box.setText(QStringLiteral("-"));
        SetNumBoxText(&box);
        QCOMPARE(box.text().trimmed(), QStringLiteral("-"));
    }
    void commasThatDoNotFitFallBackToPlainDigits() {
        test::TestHome home;
        QLineEdit box;
        sizeFor(box, QStringLiteral("1234567"), 0);
        QVERIFY(expectedPad(box, QStringLiteral("1,234,567")) < 1);
        QCOMPARE(expectedPad(box, QStringLiteral("1234567")), 1);
        box.setText(QStringLiteral("1234567"));
        SetNumBoxText(&box);
        QCOMPARE(box.text(), QStringLiteral(" 1234567"));
        QCOMPARE(box.cursorPosition(), 8);
    }
    void textThatDoesNotFitAtAllIsNotRewritten() {
        test::TestHome home;
        QLineEdit box;
        box.resize(20, 24);
        box.setText(QStringLiteral("1234567"));
        SetNumBoxText(&box);
        QCOMPARE(box.text(), QStringLiteral("1234567"));
        QCOMPARE(box.cursorPosition(), 7);
    }
    void typingKeepsTheBoxFormatted() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        AttachNumBox(&box);
        box.show();
        box.setFocus();
        QTest::keyClicks(&box, QStringLiteral("12345"));
        QCOMPARE(box.text().trimmed(), QStringLiteral("12,345"));
        QCOMPARE(box.cursorPosition(), int(box.text().size()));
        test::pressKey(&box, Qt::Key_Backspace);
        QCOMPARE(box.text().trimmed(), QStringLiteral("1,234"));
        // The "0" that replaces the text is itself a change, and is padded like any number.
        QTest::keyClicks(&box, QStringLiteral("x"));
        QCOMPARE(box.text().trimmed(), QStringLiteral("0"));
        QVERIFY(box.text().startsWith(u' '));
    }
    void programSetTextIsFormattedToo() {
        test::TestHome home;
        QLineEdit box;
        box.resize(200, 24);
        AttachNumBox(&box);
        box.setText(QStringLiteral("1000000"));
        QCOMPARE(box.text().trimmed(), QStringLiteral("1,000,000"));
        QCOMPARE(NumBoxValue(box.text()), 1000000.0);
    }
    void readersTrimAndRemoveCommas() {
        QCOMPARE(StripNumText(QStringLiteral("    1,234,567")), QStringLiteral("1234567"));
        QCOMPARE(StripNumText(QStringLiteral(" -1,234.5 ")), QStringLiteral("-1234.5"));
        QCOMPARE(NumBoxValue(QStringLiteral("    1,234.5")), 1234.5);
        QCOMPARE(NumBoxValue(QString()), 0.0);
        QCOMPARE(NumBoxValue(QStringLiteral("  -")), 0.0);
    }
    void padCountFollowsTheWidths() {
        QCOMPARE(NumBoxPadCount(100, 40, 3), 19);
        QCOMPARE(NumBoxPadCount(40, 40, 3), -1);
        QCOMPARE(NumBoxPadCount(38, 40, 3), -2);
    }
};

NB_TEST_MAIN(TestNumBox)
#include "tst_numbox.moc"
