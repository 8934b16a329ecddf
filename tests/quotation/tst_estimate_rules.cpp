// The numbers of the quotation lines: show-number, a line's amount with its half-to-even
// rounding, the 32-bit total that rounds quantity and price, and the total's texts.
#include "TestSupport.h"
#include "quotation/EstimateRules.h"

using namespace nb;

class TestEstimateRules : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void showNumberFormatsFractionsZeroAndWholeNumbers() {
        QCOMPARE(showNumber(1.5), QStringLiteral("1.5"));
        QCOMPARE(showNumber(1234.25), QStringLiteral("1,234.25"));
        QCOMPARE(showNumber(0), QStringLiteral("0"));
        QCOMPARE(showNumber(1000000), QStringLiteral("1,000,000"));
    }
    void linePriceRoundsHalfToEvenAndTheAmountKeepsTheFraction() {
        LineAmount a = lineAmount(QStringLiteral("1.5"), QStringLiteral("1,000"));
        QCOMPARE(a.price, 1000);
        QCOMPARE(a.amount, 1500.0);
        QCOMPARE(a.storedAmount, 1500);
        a = lineAmount(QStringLiteral("1"), QStringLiteral("2.5"));
        QCOMPARE(a.price, 2); // half to even
        a = lineAmount(QStringLiteral("1"), QStringLiteral("3.5"));
        QCOMPARE(a.price, 4);
        a = lineAmount(QStringLiteral("0.5"), QStringLiteral("5"));
        QCOMPARE(a.amount, 2.5);
        QCOMPARE(a.storedAmount, 2); // the stored amount rounds half to even too
    }
    void totalRoundsQuantityAndPriceBeforeMultiplying() {
        // 1.5 at 1,000 makes a line of 1,500 but adds 2,000 to the total.
        QCOMPARE(*linesTotal({{QStringLiteral("볼트"), QStringLiteral("1.5"), QStringLiteral("1,000")}}),
                 2000);
        QCOMPARE(*linesTotal({{QStringLiteral("볼트"), QStringLiteral("2.5"), QStringLiteral("1,000")}}),
                 2000);
    }
    void totalStopsAtTheFirstRowWithoutName() {
        QCOMPARE(*linesTotal({{QStringLiteral("a"), QStringLiteral("1"), QStringLiteral("100")},
                              {QString(), QStringLiteral("9"), QStringLiteral("999")},
                              {QStringLiteral("c"), QStringLiteral("1"), QStringLiteral("100")}}),
                 100);
    }
    void totalPastThirtyTwoBitsIsAnOverflow() {
        QVERIFY(!linesTotal({{QStringLiteral("a"), QStringLiteral("3"), QStringLiteral("1,000,000,000")}}));
        QCOMPARE(*linesTotal({{QStringLiteral("a"), QStringLiteral("2"), QStringLiteral("1,000,000,000")}}),
                 2000000000);
    }
    void aLineAmountOrPricePastThirtyTwoBitsDoesNotFit() {
        LineAmount a = lineAmount(QStringLiteral("3"), QStringLiteral("1,034,379,072"));
        QVERIFY(!a.fits); // 3,103,137,216: never wrapped into a negative amount
        QCOMPARE(a.storedAmount, 0);
        a = lineAmount(QStringLiteral("2"), QStringLiteral("1,034,379,072"));
        QVERIFY(a.fits);
        QCOMPARE(a.storedAmount, 2068758144);
        QVERIFY(!lineAmount(QStringLiteral("1"), QStringLiteral("3,000,000,000")).fits);
        QVERIFY(!lineAmount(QStringLiteral("-3"), QStringLiteral("1,000,000,000")).fits);
    }
    void aProductPastThirtyTwoBitsIsAnOverflowEvenWhenLaterLinesBringTheSumBack() {
        // -2,000,000,000 then 3,000,000,000: the sum would be 1,000,000,000, but the second
        // product alone does not fit in 32 bits.
        QVERIFY(!linesTotal({{QStringLiteral("a"), QStringLiteral("-2"), QStringLiteral("1,000,000,000")},
                             {QStringLiteral("b"), QStringLiteral("3"), QStringLiteral("1,000,000,000")}}));
        QVERIFY(!linesTotal({{QStringLiteral("a"), QStringLiteral("3"), QStringLiteral("1,000,000,000")},
                             {QStringLiteral("b"), QStringLiteral("-2"), QStringLiteral("1,000,000,000")}}));
        QCOMPARE(*linesTotal({{QStringLiteral("a"), QStringLiteral("-2"), QStringLiteral("1,000,000,000")},
                              {QStringLiteral("b"), QStringLiteral("2"), QStringLiteral("1,000,000,000")}}),
                 0);
        QVERIFY(!linesTotal({{QStringLiteral("a"), QStringLiteral("1"), QStringLiteral("3,000,000,000")}}));
    }
    void totalBoxAndWordsTexts() {
        QCOMPARE(totalBoxText(0), QStringLiteral("0 "));
        QCOMPARE(totalBoxText(1000000), QStringLiteral("1,000,000 "));
        QCOMPARE(hanKumPanelText(QStringLiteral("1,000,000 ")), QStringLiteral(" 일금 일백만 원정"));
        QCOMPARE(plainNumber(QStringLiteral(" 1,234 ")), 1234.0);
        QCOMPARE(plainNumber(QStringLiteral("abc")), 0.0);
    }
};

NB_TEST_MAIN(TestEstimateRules)
#include "tst_estimate_rules.moc"
