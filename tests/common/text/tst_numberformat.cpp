// The number masks, the two roundings kept apart, and the decimal-setting mask.
#include "TestSupport.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"

using namespace nb;

class TestNumberFormat : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // One row per mask the program uses, with the values each one must print.
    void masksInUse_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QString>("expected");
        auto row = [](const char* tag, double v, const char* mask, const char* out) {
            QTest::newRow(tag) << v << QString::fromUtf8(mask) << QString::fromUtf8(out);
        };
        row("###,##0 groups", 1234567, "###,##0", "1,234,567");
        row("###,##0 zero", 0, "###,##0", "0");
        row("###,##0 negative", -1234, "###,##0", "-1,234");
        row("###### plain", 1234567, "######", "1234567");
        row("###### zero is nothing", 0, "######", "");
        row("#,##0 sum", 1234567, "#,##0", "1,234,567");
        row("#,##0 zero", 0, "#,##0", "0");
        row("#,### statement print", 1234, "#,###", "1,234");
        row("#,### zero is nothing", 0, "#,###", "");
        row("#,###,### amount", 1234567, "#,###,###", "1,234,567");
        row("#,###,### more digits than places", 1234567890, "#,###,###", "1,234,567,890");
        row("#,###,### zero is nothing", 0, "#,###,###", "");
        row("#,###,###.0 one place", 1234.56, "#,###,###.0", "1,234.6");
        row("#,###,###.0 zero keeps its fraction", 0, "#,###,###.0", ".0");
        row("#,###,###.00 two places", 1234.5, "#,###,###.00", "1,234.50");
        row("#,###,###.## fraction", 1234.5, "#,###,###.##", "1,234.5");
        row("#,###,###.## rounds", 0.125, "#,###,###.##", ".13");
        row("#,###,###.## whole keeps its point", 3, "#,###,###.##", "3.");
        row("#,###,##0 recalculation", 1234567, "#,###,##0", "1,234,567");
        row("#,###,##0 zero", 0, "#,###,##0", "0");
        row("#####0 plain", 1234567, "#####0", "1234567");
        row("#####0 zero", 0, "#####0", "0");
        row("###-##-##### business number", 1234567890, "###-##-#####", "123-45-67890");
        row("000-000 fills zeros", 12345, "000-000", "012-345");
        row("###-### post code", 123456, "###-###", "123-456");
    }
    void masksInUse() {
        QFETCH(double, value);
        QFETCH(QString, mask);
        QFETCH(QString, expected);
        QCOMPARE(FormatNumber(value, mask), expected);
    }

    void allHashMaskPrintsZeroAsNothing() {
        QCOMPARE(FormatNumber(0.0, QStringLiteral("#")), QString());
        QCOMPARE(FormatNumber(0.4, QStringLiteral("#,###")), QString());
        QCOMPARE(FormatNumber(qint64(0), QStringLiteral("#,###,###")), QString());
    }
    void masksRoundHalfAwayFromZero() {
        QCOMPARE(FormatNumber(2.5, kMaskSum), QStringLiteral("3"));
        QCOMPARE(FormatNumber(3.5, kMaskSum), QStringLiteral("4"));
        QCOMPARE(FormatNumber(-2.5, kMaskSum), QStringLiteral("-3"));
        QCOMPARE(FormatNumber(0.5, QStringLiteral("#")), QStringLiteral("1"));
        QCOMPARE(FormatNumber(999.995, kMaskAmount2), QStringLiteral("1,000.00"));
    }
    void masksRoundTheDecimalDigitsNotTheBinaryValue() {
        // 1.005 is 1.00499999999999989... in binary; its 15 digits say 1.005.
        QCOMPARE(FormatNumber(1.005, kMaskAmount2), QStringLiteral("1.01"));
    }
    void negativeValueRoundingToZeroHasNoSign() {
        QCOMPARE(FormatNumber(-0.4, kMaskSum), QStringLiteral("0"));
        QCOMPARE(FormatNumber(-0.4, QStringLiteral("#")), QString());
    }
    void extraDigitsGoToTheLeftmostPlace() {
        QCOMPARE(FormatNumber(12345678901.0, kMaskPlain), QStringLiteral("12345678901"));
        QCOMPARE(FormatText(QStringLiteral("12345678901"), QStringLiteral("###-##-#####")),
                 QStringLiteral("1234-56-78901"));
    }
    void literalsPrintEvenWithoutDigits() {
        QCOMPARE(FormatNumber(12345.0, QStringLiteral("###-##-#####")), QStringLiteral("--12345"));
    }
    void formatTextFormatsNumericTextAndLeavesOtherText() {
        QCOMPARE(FormatText(QStringLiteral("1234567890"), QStringLiteral("###-##-#####")),
                 QStringLiteral("123-45-67890"));
        QCOMPARE(FormatText(QStringLiteral("  1,2345"), kMaskNumBox), QStringLiteral("12,345"));
        QCOMPARE(FormatText(QStringLiteral("-1234.567"), kMaskQtyPrice), QStringLiteral("-1,234.57"));
        QCOMPARE(FormatText(QStringLiteral("1e5"), kMaskNumBox), QStringLiteral("100,000"));
        QCOMPARE(FormatText(QStringLiteral("12가34"), kMaskNumBox), QStringLiteral("12가34"));
        QCOMPARE(FormatText(QString(), kMaskNumBox), QString());
    }
    void longDigitTextStaysExact() {
        QCOMPARE(FormatText(QStringLiteral("12345678901234567"), kMaskSum),
                 QStringLiteral("12,345,678,901,234,567"));
    }
    void integerOverloadFormatsLikeTheFloat() {
        QCOMPARE(FormatNumber(qint64(-9876543), kMaskAmount), QStringLiteral("-9,876,543"));
        QCOMPARE(FormatNumber(42, kMaskAmount2), QStringLiteral("42.00"));
    }

    // Whole numbers print through every kind of mask as they always did, up to the largest whole
    // number a float holds to the unit, and beyond it: one row a mask, the texts of kWholeValues.
    void wholeNumbersPrintAsBefore_data() {
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QStringList>("expected");
        const QList<QPair<QString, QStringList>> rows = {
            {kMaskAmount,
             {QString(), QString(), QStringLiteral("1"), QStringLiteral("-1"), QStringLiteral("999"),
              QStringLiteral("1,000"), QStringLiteral("-1,234,567"), QStringLiteral("100,000"),
              QStringLiteral("999,999,999,999,999"), QStringLiteral("1,000,000,000,000,000"),
              QStringLiteral("-1,000,000,000,000,000"), QStringLiteral("123,456,789,012,346,000")}},
            {kMaskAmount2,
             {QStringLiteral(".00"), QStringLiteral(".00"), QStringLiteral("1.00"), QStringLiteral("-1.00"),
              QStringLiteral("999.00"), QStringLiteral("1,000.00"), QStringLiteral("-1,234,567.00"),
              QStringLiteral("100,000.00"), QStringLiteral("999,999,999,999,999.00"),
              QStringLiteral("1,000,000,000,000,000.00"), QStringLiteral("-1,000,000,000,000,000.00"),
              QStringLiteral("123,456,789,012,346,000.00")}},
            {kMaskQtyPrice,
             {QStringLiteral("."), QStringLiteral("."), QStringLiteral("1."), QStringLiteral("-1."),
              QStringLiteral("999."), QStringLiteral("1,000."), QStringLiteral("-1,234,567."),
              QStringLiteral("100,000."), QStringLiteral("999,999,999,999,999."),
              QStringLiteral("1,000,000,000,000,000."), QStringLiteral("-1,000,000,000,000,000."),
              QStringLiteral("123,456,789,012,346,000.")}},
            {QStringLiteral("0000"),
             {QStringLiteral("0000"), QStringLiteral("0000"), QStringLiteral("0001"), QStringLiteral("-0001"),
              QStringLiteral("0999"), QStringLiteral("1000"), QStringLiteral("-1234567"),
              QStringLiteral("100000"), QStringLiteral("999999999999999"), QStringLiteral("1000000000000000"),
              QStringLiteral("-1000000000000000"), QStringLiteral("123456789012346000")}},
            {QStringLiteral("#.##"),
             {QStringLiteral("."), QStringLiteral("."), QStringLiteral("1."), QStringLiteral("-1."),
              QStringLiteral("999."), QStringLiteral("1000."), QStringLiteral("-1234567."),
              QStringLiteral("100000."), QStringLiteral("999999999999999."),
              QStringLiteral("1000000000000000."), QStringLiteral("-1000000000000000."),
              QStringLiteral("123456789012346000.")}},
            {QStringLiteral("#,##0.00원"),
             {QStringLiteral("0.00원"), QStringLiteral("0.00원"), QStringLiteral("1.00원"),
              QStringLiteral("-1.00원"), QStringLiteral("999.00원"), QStringLiteral("1,000.00원"),
              QStringLiteral("-1,234,567.00원"), QStringLiteral("100,000.00원"),
              QStringLiteral("999,999,999,999,999.00원"), QStringLiteral("1,000,000,000,000,000.00원"),
              QStringLiteral("-1,000,000,000,000,000.00원"), QStringLiteral("123,456,789,012,346,000.00원")}},
            {QStringLiteral("#"),
             {QString(), QString(), QStringLiteral("1"), QStringLiteral("-1"), QStringLiteral("999"),
              QStringLiteral("1000"), QStringLiteral("-1234567"), QStringLiteral("100000"),
              QStringLiteral("999999999999999"), QStringLiteral("1000000000000000"),
              QStringLiteral("-1000000000000000"), QStringLiteral("123456789012346000")}},
        };
        for (const auto& [mask, texts] : rows)
            QTest::addRow("%s", qPrintable(mask)) << mask << texts;
    }
    void wholeNumbersPrintAsBefore() {
        QFETCH(QString, mask);
        QFETCH(QStringList, expected);
        const QList<double> values = {0.0,        -0.0,     1.0,
                                      -1.0,       999.0,    1000.0,
                                      -1234567.0, 100000.0, 999999999999999.0,
                                      1e15,       -1e15,    123456789012345678.0};
        for (qsizetype i = 0; i < values.size(); ++i)
            QCOMPARE(FormatNumber(values[i], mask), expected[i]);
    }

    void numericTextFollowsThePlatformTest() {
        QVERIFY(IsNumericText(QStringLiteral("1,234")));
        QVERIFY(IsNumericText(QStringLiteral(" 12 ")));
        QVERIFY(IsNumericText(QStringLiteral("-12.5")));
        QVERIFY(IsNumericText(QStringLiteral("1e5")));
        QVERIFY(IsNumericText(QStringLiteral("-")));
        QVERIFY(IsNumericText(QStringLiteral(".")));
        QVERIFY(!IsNumericText(QString()));
        QVERIFY(!IsNumericText(QStringLiteral("abc")));
        QVERIFY(!IsNumericText(QStringLiteral("1-2")));
        QVERIFY(!IsNumericText(QStringLiteral("02-123-4567")));
        QVERIFY(!IsNumericText(QStringLiteral("1.2.3")));
    }
    void numberFromTextIgnoresCommasAndBlanks() {
        bool ok = false;
        QCOMPARE(NumberFromText(QStringLiteral("  1,234.5 "), &ok), 1234.5);
        QVERIFY(ok);
        QCOMPARE(NumberFromText(QStringLiteral("abc"), &ok), 0.0);
        QVERIFY(!ok);
        QCOMPARE(NumberFromText(QStringLiteral("-"), &ok), 0.0);
        QVERIFY(!ok);
    }

    void roundAtTwoAndAHalfGivesThree() { QCOMPARE(RoundAt(2.5, 0), 3.0); }
    void roundAtMinusTwoAndAHalfGivesMinusThree() { QCOMPARE(RoundAt(-2.5, 0), -3.0); }
    void roundAtOnePointOhOhFiveTakesTheFloatProduct() {
        // 1.005 * 100 is 100.49999999999999 in 64-bit floats, so it rounds down.
        QCOMPARE(1.005 * 100 + 0.5 < 101.0, true);
        QCOMPARE(RoundAt(1.005, 2), 1.0);
        QCOMPARE(RoundAt(1.125, 2), 1.13);
    }
    void roundAtOtherPlaces() {
        QCOMPARE(RoundAt(1234.4, 0), 1234.0);
        QCOMPARE(RoundAt(-1234.6, 0), -1235.0);
        QCOMPARE(RoundAt(0.45, 1), 0.5);
        QCOMPARE(RoundAt(-0.25, 1), -0.3);
    }
    void integerConversionRoundsHalfToEven() {
        QCOMPARE(RoundHalfEven(2.5), 2.0);
        QCOMPARE(RoundHalfEven(3.5), 4.0);
        QCOMPARE(RoundHalfEven(-2.5), -2.0);
        QCOMPARE(RoundHalfEven(-3.5), -4.0);
        QCOMPARE(RoundHalfEven(2.4999), 2.0);
        QCOMPARE(CLng(0.5), qint64(0));
        QCOMPARE(CLng(1.5), qint64(2));
        QCOMPARE(CLng(12345678901.5), qint64(12345678902));
        QCOMPARE(CInt(-1.5), -2);
        QCOMPARE(CInt(-0.5), 0);
    }
    void theTwoRoundingsDifferOnHalves() {
        QCOMPARE(RoundAt(2.5, 0), 3.0);
        QCOMPARE(CLng(2.5), qint64(2));
    }

    void decFormatExamples_data() {
        QTest::addColumn<int>("places");
        QTest::addColumn<bool>("comma");
        QTest::addColumn<bool>("zeroFill");
        QTest::addColumn<QString>("expected");
        QTest::newRow("2 comma") << 2 << true << false << QStringLiteral("#,###.00");
        QTest::newRow("0 comma") << 0 << true << false << QStringLiteral("#,###");
        QTest::newRow("1 comma zero") << 1 << true << true << QStringLiteral("#,##0.0");
        QTest::newRow("0 plain zero") << 0 << false << true << QStringLiteral("0");
        QTest::newRow("2 plain") << 2 << false << false << QStringLiteral("#.00");
        QTest::newRow("negative places") << -1 << true << false << QStringLiteral("#,###");
    }
    void decFormatExamples() {
        test::TestHome home;
        auto& msgs = test::script();
        QFETCH(int, places);
        QFETCH(bool, comma);
        QFETCH(bool, zeroFill);
        QFETCH(QString, expected);
        QCOMPARE(GetDecFormat(places, comma, zeroFill), expected);
        QCOMPARE(msgs.records().size(), size_t(0));
    }
    void decFormatZeroWithoutCommaOrFillIsHash() {
        QCOMPARE(GetDecFormat(0, false, false), QStringLiteral("#"));
    }
    void decFormatFailureIsReportedWithItsProcedure() {
        test::TestHome home;
        auto& msgs = test::script();
        QCOMPARE(GetDecFormat(40000, true, false), QString());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("Error 6 (Overflow) in procedure GetDecFormat of Module mdlCommonHM"));
        QCOMPARE(msgs.last().buttons, int(MbOk));
        QCOMPARE(msgs.last().title, applicationTitle());
    }
    void decFormatMasksPrintTheSettingsPlaces() {
        QCOMPARE(FormatNumber(1234.5, GetDecFormat(2, true, false)), QStringLiteral("1,234.50"));
        QCOMPARE(FormatNumber(1234.5, GetDecFormat(0, true, false)), QStringLiteral("1,235"));
        QCOMPARE(FormatNumber(0.0, GetDecFormat(0, true, false)), QString());
    }
};

NB_TEST_MAIN(TestNumberFormat)
#include "tst_numberformat.moc"
