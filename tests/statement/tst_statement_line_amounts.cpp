// How amount and VAT of a statement line follow quantity and price: the three modes, the mode
// a stored line keeps, and the text of the VAT mode prompt.
#include "TestSupport.h"
#include "statement/LineAmounts.h"

using namespace nb;

namespace {

LineAmounts calc(const LineBeforeAfter& line, VatMode screenMode) {
    return LineAmountCalc(line, screenMode).value_or(LineAmounts{-1, -1});
}

} // namespace

class TestStatementLineAmounts : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void workedValuesOfTheThreeModes() {
        const LineBeforeAfter newLine{0, 0, 3, 1255, 0, 0};
        QCOMPARE(calc(newLine, VatMode::Separate).amount, 3765.0);
        QCOMPARE(calc(newLine, VatMode::Separate).vat, 376.0);
        QCOMPARE(calc(newLine, VatMode::Included).amount, 3423.0);
        QCOMPARE(calc(newLine, VatMode::Included).vat, 342.0);
        QCOMPARE(calc(newLine, VatMode::Exempt).amount, 3765.0);
        QCOMPARE(calc(newLine, VatMode::Exempt).vat, 0.0);
    }
    void vatIncludedQuantityOneAt11000GivesTenThousandAndOneThousand() {
        const LineAmounts a = calc({1, 0, 1, 11000, 0, 0}, VatMode::Included);
        QCOMPARE(a.amount, 10000.0);
        QCOMPARE(a.vat, 1000.0);
    }
    void lineSavedWithVatKeepsItsModeUnderExempt() {
        // 2 × 1,000 stored as 2,000 + 200; the quantity becomes 3 while gubun says exempt.
        const LineAmounts a = calc({2, 1000, 3, 1000, 2000, 200}, VatMode::Exempt);
        QCOMPARE(a.amount, 3000.0);
        QCOMPARE(a.vat, 300.0);
        // A carved-out line stays carved out under "added".
        const LineAmounts b = calc({1, 11000, 2, 11000, 10000, 1000}, VatMode::Separate);
        QCOMPARE(b.amount, 20000.0);
        QCOMPARE(b.vat, 2000.0);
    }
    void quantityZeroGivesZeroAndNextChangeTakesScreenMode() {
        const LineAmounts zero = calc({3, 1255, 0, 1255, 3765, 376}, VatMode::Exempt);
        QCOMPARE(zero.amount, 0.0);
        QCOMPARE(zero.vat, 0.0);
        const LineAmounts next = calc({0, 1255, 3, 1255, 0, 0}, VatMode::Exempt);
        QCOMPARE(next.amount, 3765.0);
        QCOMPARE(next.vat, 0.0);
    }
    void negativeQuantityRoundsAwayFromZeroAndCutsVatTowardsZero() {
        const LineAmounts a = calc({0, 1255, -3, 1255, 0, 0}, VatMode::Separate);
        QCOMPARE(a.amount, -3765.0);
        QCOMPARE(a.vat, -376.0);
    }
    void unchangedQuantityAndPriceChangeNothing() {
        QVERIFY(!LineAmountCalc({3, 1255, 3, 1255, 3765, 376}, VatMode::Separate));
    }
    void overtypedLowerAmountReadsAsCarvedOut() {
        // 3,765 + 376 overtyped to 3,000 + 376: not above the old total, so carved out.
        QCOMPARE(modeOfLine(3000, 376, 3, 1255), VatMode::Included);
        QCOMPARE(modeOfLine(3000, 0, 3, 1255), VatMode::Exempt);
        QCOMPARE(modeOfLine(3765, 376, 3, 1255), VatMode::Separate);
        QCOMPARE(modeOfLine(0, 376, 3, 1255), std::nullopt);
    }
    void decimalQuantitiesGiveWholeAmounts() {
        const LineAmounts a = calc({0, 0, 1.5, 333.3, 0, 0}, VatMode::Separate);
        QCOMPARE(a.amount, 500.0);
        QCOMPARE(a.vat, 50.0);
    }
    void vatModePromptTextIsExact() {
        const QString text = vatModeChangeQuestion();
        QVERIFY(text.startsWith(
            QStringLiteral("현재 선택된 전표의 부가세를 어떻게 처리할지를 선택하세요.\r\n\r\n전표내")));
        QVERIFY(text.contains(QStringLiteral("새로 계산할까요?\r\n\r\n\r\n----")));
        QVERIFY(text.endsWith(
            QStringLiteral("(새로 계산안함)\r\n\r\n----------------------------------------------")));
        QCOMPARE(noLineToRecalculateText(),
                 QStringLiteral("현재 선택된 순번은 자료가 입력되어\r\n있지 않아 계산을 할 수 없습니다."));
    }
};

NB_TEST_MAIN(TestStatementLineAmounts)
#include "tst_statement_line_amounts.moc"
