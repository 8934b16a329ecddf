// A quotation save that another seat's save broke off: on the server it is run again quietly,
// each try starting from the number shown, until it is whole or the tries are spent; on the
// store files it is tried once, as ever. Only a saved number stays in the record.
#include "ForcedConflict.h"
#include "QuotationFixture.h"
#include "quotation/clsEstimate.h"
#include "storage/Database.h"

using namespace nb;

namespace {

Database& estimates() {
    return stores().dbEstimate;
}

bool onServer() {
    return estimates().onServer();
}

clsEstimate headOf(const QString& code) {
    clsEstimate e;
    e.sCode = code;
    e.sEDate = QStringLiteral("2024-05-10");
    e.sCCode = QStringLiteral("000001");
    e.sCName = QStringLiteral("대한상사");
    e.sClass = QStringLiteral("사무용품");
    e.dETotKum = 1000;
    e.sETotHanKum = QStringLiteral("일금 일천 원정");
    return e;
}

clsEstimate lineOf(const QString& code, qint32 seq) {
    clsEstimate e = headOf(code);
    e.lSeq = seq;
    e.sPName = QStringLiteral("볼펜");
    e.siEAmount = 2;
    e.siEUnitCost = 500;
    e.lEstiKum = 1000;
    e.sUnit = QStringLiteral("EA");
    return e;
}

test::ConflictPlan conflictOn(const QString& table, int times) {
    return {table, QStringLiteral("INSERT"), 0, times};
}

} // namespace

class TestEstimateRetry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aNewQuotationBrokenOffOnceIsSavedUnderTheNumberShown() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        auto& msgs = test::script();
        test::ForcedConflict conflict(estimates(), conflictOn(QStringLiteral("EstiBase"), 1));
        QVERIFY(conflict.installed());
        clsEstimate e = headOf(QStringLiteral("202405001"));
        e.SaveInitEstimate();
        QCOMPARE(conflict.raised(), 1);
        QCOMPARE(e.sCode, QStringLiteral("202405001"));
        QVERIFY(!estimates().inTransaction());
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase")), onServer() ? 1 : 0);
        QCOMPARE(msgs.boxes().size(), size_t(onServer() ? 0 : 1));
    }
    void aNumberTakenMeanwhileIsTakenAnewAndOnlyASavedOneShows() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        // Another seat stored the number shown: each try takes the next one, from the number shown.
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("000002"), QStringLiteral("갑"),
                                  QStringLiteral("2024-05-09")));
        auto& msgs = test::script();
        test::ForcedConflict conflict(estimates(), conflictOn(QStringLiteral("EstiBase"), 1));
        QVERIFY(conflict.installed());
        clsEstimate e = headOf(QStringLiteral("202405001"));
        e.SaveInitEstimate();
        QCOMPARE(conflict.raised(), 1);
        if (!onServer()) {
            // Nothing saved: the record keeps the number shown, not the one the failed try took.
            QCOMPARE(e.sCode, QStringLiteral("202405001"));
            QCOMPARE(test::estimateRows(QStringLiteral("EstiBase")), 1);
            QCOMPARE(msgs.boxes().size(), size_t(1));
            return;
        }
        QCOMPARE(e.sCode, QStringLiteral("202405002"));
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase")), 2);
        QCOMPARE(
            test::estimateRows(QStringLiteral("EstiBase"), QStringLiteral("WHERE EstiCode = '202405002'")),
            1);
        QVERIFY(msgs.records().empty());
    }
    void aLineBrokenOffOnceIsSavedOnceUnderItsKey() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("000001"), QStringLiteral("갑"),
                                  QStringLiteral("2024-05-10")));
        QVERIFY(test::addEstiLine(1, QStringLiteral("202405001"), QStringLiteral("연필"), 1, 100));
        auto& msgs = test::script();
        test::ForcedConflict conflict(estimates(), conflictOn(QStringLiteral("Estimate"), 1));
        QVERIFY(conflict.installed());
        // The key shown was taken meanwhile: the line takes the next one.
        clsEstimate e = lineOf(QStringLiteral("202405001"), 1);
        e.SaveEstimate();
        QCOMPARE(conflict.raised(), 1);
        QCOMPARE(e.lSeq, onServer() ? 2 : 1);
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate")), onServer() ? 2 : 1);
        QCOMPARE(msgs.boxes().size(), size_t(onServer() ? 0 : 1));
    }
    void aConflictThatStaysEndsInOneBoxAndNothingSaved() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        auto& msgs = test::script();
        test::ForcedConflict conflict(estimates(), conflictOn(QStringLiteral("EstiBase"), -1));
        QVERIFY(conflict.installed());
        clsEstimate e = headOf(QStringLiteral("202405001"));
        e.SaveInitEstimate();
        QCOMPARE(conflict.raised(), onServer() ? kSaveTries : 1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.contains(QStringLiteral("오류번호 : 3261")));
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase")), 0);
        QVERIFY(!estimates().inTransaction());
    }
};

NB_TEST_MAIN(TestEstimateRetry)
#include "tst_estimate_retry.moc"
