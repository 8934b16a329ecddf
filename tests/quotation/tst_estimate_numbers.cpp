// A quotation's numbers under two running copies and the store's rules: a head or line number
// another copy stored meanwhile is taken anew inside the save, a number is never given while
// lines of it remain, and a quantity the store cannot hold is refused with the overflow report.
#include "QuotationFixture.h"
#include "quotation/clsEstimate.h"

#include <limits>

using namespace nb;

namespace {

clsEstimate headOf(const QString& code) {
    clsEstimate e;
    e.sCode = code;
    e.sEDate = QStringLiteral("2024-05-10");
    e.sCCode = QStringLiteral("000001");
    e.sCName = QStringLiteral("대한상사");
    e.dETotKum = 1000;
    return e;
}

} // namespace

class TestEstimateNumbers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aQuotationNumberStoredMeanwhileIsTakenAnew() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        auto& msgs = test::script();
        // The screen showed 202405001; another copy stored it first.
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("000002"),
                                  QStringLiteral("다른"), QStringLiteral("2024-05-10")));
        clsEstimate e = headOf(QStringLiteral("202405001"));
        e.SaveInitEstimate();
        QCOMPARE(e.sCode, QStringLiteral("202405002"));
        QCOMPARE(
            test::estimateRows(QStringLiteral("EstiBase"), QStringLiteral("WHERE EstiCode = '202405001'")),
            1);
        QCOMPARE(
            test::estimateRows(QStringLiteral("EstiBase"), QStringLiteral("WHERE EstiCode = '202405002'")),
            1);
        QVERIFY(msgs.boxes().empty());
    }
    void aNumberIsNeverGivenWhileLinesOfItRemain() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiLine(1, QStringLiteral("202405003"), QStringLiteral("남은줄"), 1, 100));
        clsEstimate e = headOf(QString());
        QString code;
        e.NextCode(code);
        QCOMPARE(code, QStringLiteral("202405004"));
    }
    void aLineKeyStoredMeanwhileIsTakenAnew() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        test::script();
        QVERIFY(test::addEstiLine(1, QStringLiteral("202405009"), QStringLiteral("다른"), 1, 100));
        clsEstimate e = headOf(QStringLiteral("202405001"));
        e.lSeq = 1;
        e.sPName = QStringLiteral("볼트");
        e.siEAmount = 2;
        e.siEUnitCost = 50;
        e.lEstiKum = 100;
        e.SaveEstimate();
        QCOMPARE(e.lSeq, 2);
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate"), QStringLiteral("WHERE Seq = 1")), 1);
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate"), QStringLiteral("WHERE Code = '202405001'")),
                 1);
    }
    void aQuantityTheStoreCannotHoldIsRefused() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        auto& msgs = test::script();
        clsEstimate e = headOf(QStringLiteral("202405001"));
        e.lSeq = 1;
        e.siEAmount = std::numeric_limits<float>::infinity();
        e.SaveEstimate();
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("Error 6 (Overflow)")));
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate")), 0);
    }
};

NB_TEST_MAIN(TestEstimateNumbers)
#include "tst_estimate_numbers.moc"
