// Line amounts and VAT of the tax invoice: the three number rules, the three modes, typed
// amounts and taxes, the mode change, the product pick, the totals and their digit cells.
#include "TestSupport.h"
#include "invoice/InvoiceAmounts.h"

using namespace nb;

namespace {

InvoiceSheet sheetIn(VatMode mode) {
    InvoiceSheet sheet;
    sheet.vat = mode;
    return sheet;
}

void fillQtyPrice(InvoiceSheet& sheet, int i, const QString& qty, const QString& price) {
    sheet.line(i).ddyy = QStringLiteral("05-01");
    sheet.line(i).su_num = qty;
    sheet.line(i).gibon_num = price;
}

int errorNumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const InvoiceArithmeticError& e) {
        return e.number();
    }
    return 0;
}

} // namespace

class TestInvoiceAmounts : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void quantityThreePriceThousandInEachMode_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("supply");
        QTest::addColumn<QString>("tax");
        QTest::newRow("VAT별도") << int(VatMode::Separate) << "3000"
                                 << "300";
        QTest::newRow("VAT포함") << int(VatMode::Included) << "2727"
                                 << "273";
        QTest::newRow("면세") << int(VatMode::Exempt) << "3000"
                              << "0";
    }
    void quantityThreePriceThousandInEachMode() {
        QFETCH(int, mode);
        QFETCH(QString, supply);
        QFETCH(QString, tax);
        InvoiceSheet sheet = sheetIn(VatMode(mode));
        fillQtyPrice(sheet, 0, "3", "1,000");
        CalcLineAmount(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, supply);
        QCOMPARE(sheet.line(0).tax_num, tax);
        QCOMPARE(sheet.sumNum, QString::number(3000 + (mode == 1 ? 0 : tax.toInt())));
    }
    void taxOfHalfAWonRoundsToEvenZero() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        fillQtyPrice(sheet, 0, "5", "1");
        CalcLineAmount(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("5"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("0"));
    }
    void quantityIsParsedAsSinglePrecision() {
        InvoiceSheet sheet = sheetIn(VatMode::Exempt);
        fillQtyPrice(sheet, 0, "123,456,789", "1");
        CalcLineAmount(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("123456792"));
        QCOMPARE(parseSingle(QStringLiteral("123456789")), 123456792.0f);
    }
    void productOfSinglesIsNotRoundedBackToSingle() {
        // 16777217 is no single; 4097 * 4097 = 16785409 is exact only at double width.
        InvoiceSheet sheet = sheetIn(VatMode::Exempt);
        fillQtyPrice(sheet, 0, "4097", "4097");
        CalcLineAmount(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("16785409"));
    }
    void roundingGoesHalfToEven() {
        QCOMPARE(roundToLong(2.5), 2);
        QCOMPARE(roundToLong(3.5), 4);
        QCOMPARE(roundToLong(-2.5), -2);
        QCOMPARE(roundToLong(2147483647.0), 2147483647);
    }
    void resultBeyondThirtyTwoBitsIsAnOverflow() {
        QCOMPARE(errorNumberOf([] { roundToLong(2147483647.5); }), 6);
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        fillQtyPrice(sheet, 0, "100000", "100000");
        QCOMPARE(errorNumberOf([&] { CalcLineAmount(sheet, 0); }), 6);
        QVERIFY(sheet.line(0).gonggum.isEmpty());
    }
    void sumBeyondThirtyTwoBitsIsAnOverflow() {
        InvoiceSheet sheet;
        for (int i = 0; i < 2; ++i) {
            sheet.line(i).gonggum = QStringLiteral("2000000000");
            sheet.line(i).tax_num = QStringLiteral("0");
        }
        QCOMPARE(errorNumberOf([&] { SumLines(sheet); }), 6);
    }
    void unparsableTextIsAConversionError() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        fillQtyPrice(sheet, 0, "3", "abc");
        QCOMPARE(errorNumberOf([&] { CalcLineAmount(sheet, 0); }), 13);
    }
    void quantityWithoutPriceComputesNothing() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.sumNum = QStringLiteral("untouched");
        sheet.line(0).su_num = QStringLiteral("3");
        QuantityEntered(sheet, 0);
        QVERIFY(sheet.line(0).gonggum.isEmpty());
        QVERIFY(sheet.line(0).tax_num.isEmpty());
        QCOMPARE(sheet.sumNum, QStringLiteral("untouched"));
    }
    void fractionalQuantityTwoAndAHalf() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        fillQtyPrice(sheet, 0, "2.5", "1,000");
        QuantityEntered(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("2500"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("250"));
    }
    void priceEnteredSetsLastSupplyToTheComputedAmount() {
        InvoiceSheet sheet = sheetIn(VatMode::Included);
        fillQtyPrice(sheet, 0, "2", "5,500");
        PriceEntered(sheet, 0);
        QCOMPARE(sheet.lastSupply, 10000.0);
        // Enter in gonggum then changes nothing there.
        QVERIFY(SupplyTyped(sheet, 0));
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("10000"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("1000"));
        QCOMPARE(sheet.line(0).su_num, QStringLiteral("2"));
    }
    void priceEnteredOnEmptySupplyTakesZero() {
        InvoiceSheet sheet = sheetIn(VatMode::Included);
        sheet.lastSupply = 77;
        sheet.line(0).gibon_num = QStringLiteral("100");
        PriceEntered(sheet, 0);
        QCOMPARE(sheet.lastSupply, 0.0);
    }
    void typedFiveUnderVatSeparateGivesTaxZero() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.line(0).gonggum = QStringLiteral("5");
        QVERIFY(SupplyTyped(sheet, 0));
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("5"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("0"));
        QCOMPARE(sheet.line(0).su_num, QStringLiteral("0"));
        QCOMPARE(sheet.line(0).gibon_num, QStringLiteral("0"));
        QCOMPARE(sheet.lastSupply, 5.0);
        QCOMPARE(sheet.curLine, 1);
    }
    void typedFifteenUnderVatSeparateRoundsTaxToTwo() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.line(0).gonggum = QStringLiteral("15");
        SupplyTyped(sheet, 0);
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("2"));
        QCOMPARE(sheet.sumNum, QStringLiteral("17"));
    }
    void typedGrossIsSplitAgainOnEachReturn() {
        InvoiceSheet sheet = sheetIn(VatMode::Included);
        sheet.line(0).gonggum = QStringLiteral("11,000");
        SupplyTyped(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("10000"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("1000"));
        QCOMPARE(sheet.lastSupply, 11000.0);
        // Back in the field: 10,000 differs from 11,000, so it is split once more.
        sheet.line(0).gonggum = QStringLiteral("    10,000");
        SupplyTyped(sheet, 0);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("9091"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("909"));
        QCOMPARE(sheet.lastSupply, 10000.0);
    }
    void typedSameAmountAsLastSupplyComputesNothingAndTheNextSumFails() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.line(0).gonggum = QStringLiteral("1000");
        SupplyTyped(sheet, 0);
        sheet.line(1).gonggum = QStringLiteral("1,000");
        QVERIFY(SupplyTyped(sheet, 1));
        QVERIFY(sheet.line(1).tax_num.isEmpty());
        QCOMPARE(sheet.curLine, 2);
        QCOMPARE(errorNumberOf([&] { SumLines(sheet); }), 13);
    }
    void emptySupplyTextMakesTheKeysDoNothing() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        QVERIFY(!SupplyTyped(sheet, 0));
        QCOMPARE(sheet.curLine, 0);
        QVERIFY(!TaxTyped(sheet, 0));
        QCOMPARE(sheet.curLine, 0);
    }
    void finishingTheLastLineKeepsCurLineAtFour() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.curLine = 4;
        sheet.line(4).gonggum = QStringLiteral("100");
        SupplyTyped(sheet, 4);
        QCOMPARE(sheet.curLine, 4);
    }
    void typedTaxStaysAndSumsOnlyWhenItDiffersFromTheLastTyped() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.line(0).gonggum = QStringLiteral("1000");
        sheet.line(0).tax_num = QStringLiteral("90");
        QVERIFY(TaxTyped(sheet, 0));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("90"));
        QCOMPARE(sheet.sumNum, QStringLiteral("1090"));
        QCOMPARE(sheet.lastTax, 90.0);
        QCOMPARE(sheet.curLine, 1);
        // The same figure on another line does not start SumLines.
        sheet.line(1).gonggum = QStringLiteral("500");
        sheet.line(1).tax_num = QStringLiteral("90");
        TaxTyped(sheet, 1);
        QCOMPARE(sheet.sumNum, QStringLiteral("1090"));
        QCOMPARE(sheet.curLine, 2);
    }
    void modeChangeRecomputesLinesUpToCurLine() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        fillQtyPrice(sheet, 0, "3", "1000");
        CalcLineAmount(sheet, 0);
        sheet.curLine = 1;
        ChangeVatMode(sheet, VatMode::Included);
        QCOMPARE(sheet.vat, VatMode::Included);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("2727"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("273"));
        ChangeVatMode(sheet, VatMode::Exempt);
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("0"));
        QCOMPARE(sheet.sumNum, QStringLiteral("3000"));
    }
    void modeChangeGivesEveryTypedLineTheLastTypedAmount() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.line(0).gonggum = QStringLiteral("1000");
        SupplyTyped(sheet, 0);
        sheet.line(1).gonggum = QStringLiteral("2000");
        SupplyTyped(sheet, 1);
        ChangeVatMode(sheet, VatMode::Exempt);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("2000"));
        QCOMPARE(sheet.line(1).gonggum, QStringLiteral("2000"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("0"));
        QCOMPARE(sheet.sumNum, QStringLiteral("4000"));
    }
    void pickedProductSplitsThePriceThenQuantityOneDecides_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<double>("price");
        QTest::addColumn<QString>("firstSupply");
        QTest::addColumn<QString>("firstTax");
        QTest::addColumn<QString>("supply");
        QTest::addColumn<QString>("tax");
        QTest::newRow("VAT별도") << 0 << 11000.0 << "11000"
                                 << "1100"
                                 << "11000"
                                 << "1100";
        QTest::newRow("VAT별도 half") << 0 << 25.0 << "25"
                                      << "2"
                                      << "25"
                                      << "2";
        QTest::newRow("VAT포함") << 1 << 1000.0 << "909"
                                 << "91"
                                 << "909"
                                 << "91";
        QTest::newRow("면세") << 2 << 5000.0 << "5000"
                              << "0"
                              << "5000"
                              << "0";
        QTest::newRow("면세 single") << 2 << 123456789.0 << "123456789"
                                     << "0"
                                     << "123456792"
                                     << "0";
    }
    void pickedProductSplitsThePriceThenQuantityOneDecides() {
        QFETCH(int, mode);
        QFETCH(double, price);
        QFETCH(QString, firstSupply);
        QFETCH(QString, firstTax);
        QFETCH(QString, supply);
        QFETCH(QString, tax);
        const auto split = pickedProductSplit(VatMode(mode), price);
        QCOMPARE(split.first, firstSupply);
        QCOMPARE(split.second, firstTax);
        InvoiceSheet sheet = sheetIn(VatMode(mode));
        ApplyPickedProduct(sheet, 0, price);
        QCOMPARE(sheet.line(0).su_num, QStringLiteral("1"));
        QCOMPARE(sheet.line(0).gonggum, supply);
        QCOMPARE(sheet.line(0).tax_num, tax);
    }
    void digitCellsForSupplyAndTax() {
        QCOMPARE(digitCellsText(1234567, 11), QStringLiteral(" * * * * 1 2 3 4 5 6 7"));
        QCOMPARE(digitCellsText(123456, 10), QStringLiteral(" * * * * 1 2 3 4 5 6"));
        QCOMPARE(digitCellsText(0, 11), QStringLiteral(" *").repeated(10) + QStringLiteral(" 0"));
        QCOMPARE(digitCellsText(-5, 10), QStringLiteral(" *").repeated(8) + QStringLiteral(" - 5"));
        InvoiceSheet sheet;
        sheet.line(0).gonggum = QStringLiteral("1,234,567");
        sheet.line(0).tax_num = QStringLiteral("123,456");
        SumLines(sheet);
        QCOMPARE(sheet.gongCaption, QStringLiteral(" * * * * 1 2 3 4 5 6 7 * * * * 1 2 3 4 5 6"));
        QCOMPARE(sheet.sumNum, QStringLiteral("1358023"));
    }
    void sumLinesCountsAllFiveLinesWhateverCurLine() {
        InvoiceSheet sheet;
        sheet.curLine = 0;
        sheet.line(3).gonggum = QStringLiteral("100");
        sheet.line(3).tax_num = QStringLiteral("10");
        SumLines(sheet);
        QCOMPARE(sheet.sumNum, QStringLiteral("110"));
    }
    void emptyLinesAddNothingAndZeroShowsOnlyAfterSumLines() {
        InvoiceSheet sheet = sheetIn(VatMode::Separate);
        sheet.line(0).ddyy = QStringLiteral("05-01");
        sheet.line(0).gonggum = QStringLiteral("1000");
        SupplyTyped(sheet, 0);
        QCOMPARE(sheet.sumNum, QStringLiteral("1100"));
        DeleteLine(sheet, 0, QStringLiteral("05-02"));
        QCOMPARE(sheet.sumNum, QStringLiteral("0"));
        QCOMPARE(sheet.gongCaption, QStringLiteral(" *").repeated(10) + QStringLiteral(" 0") +
                                        QStringLiteral(" *").repeated(9) + QStringLiteral(" 0"));
    }
    void deleteLineMovesLowerLinesUpAndLowersCurLine() {
        InvoiceSheet sheet;
        for (int i = 0; i < 5; ++i) {
            sheet.line(i).pummok = QString::number(i);
            sheet.line(i).gonggum = QString::number((i + 1) * 100);
            sheet.line(i).tax_num = QString::number((i + 1) * 10);
        }
        sheet.curLine = 4;
        DeleteLine(sheet, 1, QStringLiteral("05-02"));
        QCOMPARE(sheet.line(1).pummok, QStringLiteral("2"));
        QCOMPARE(sheet.line(3).pummok, QStringLiteral("4"));
        QVERIFY(sheet.line(4).pummok.isEmpty());
        QCOMPARE(sheet.curLine, 3);
        QCOMPARE(sheet.sumNum, QStringLiteral("1430"));
        DeleteLine(sheet, 4, QStringLiteral("05-02"));
        QCOMPARE(sheet.line(3).pummok, QStringLiteral("4"));
    }
    void deleteLineAtCurLineZeroPutsTheWritingDateBack() {
        InvoiceSheet sheet;
        sheet.line(0).ddyy = QStringLiteral("01-01");
        sheet.line(0).pummok = QStringLiteral("볼트");
        DeleteLine(sheet, 0, QStringLiteral("05-02"));
        QCOMPARE(sheet.curLine, 0);
        QCOMPARE(sheet.line(0).ddyy, QStringLiteral("05-02"));
        QVERIFY(sheet.line(0).pummok.isEmpty());
    }
    void tradeDateOfFebruaryTwentyNinthNeedsALeapWritingYear() {
        QCOMPARE(checkedTradeDate(QStringLiteral("2024"), QStringLiteral("0229")), QStringLiteral("02-29"));
        QVERIFY(!checkedTradeDate(QStringLiteral("2023"), QStringLiteral("0229")));
        QCOMPARE(checkedTradeDate(QStringLiteral("2023"), QStringLiteral("03-15")), QStringLiteral("03-15"));
        QVERIFY(!checkedTradeDate(QStringLiteral("2023"), QStringLiteral("1332")));
    }
};

NB_TEST_MAIN(TestInvoiceAmounts)
#include "tst_invoice_amounts.moc"
