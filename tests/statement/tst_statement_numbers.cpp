// A statement's number and totals under the store's rules: a number is never given while lines
// of it remain (a trader deleted with its business takes its lines along), and an amount the
// store cannot hold is refused with the overflow report, the head's totals left equal to its
// lines.
#include "StoreFixture.h"
#include "master/TraderRecords.h"
#include "statement/StatementStore.h"

#include <limits>

using namespace nb;

namespace {

Database& bill() {
    return stores().dbBill;
}

NewLine lineOf(const QString& billNo, const QString& pName) {
    return {billNo, QStringLiteral("2024-05-10"), QStringLiteral("000001"), pName};
}

bool headsAgreeWithLines() {
    return test::scalar(bill(), QStringLiteral(
                                    "SELECT count(*) FROM Master m WHERE m.NumBill <> "
                                    "(SELECT count(*) FROM Detail d WHERE d.BillNo = m.BillNo) "
                                    "OR m.TotAmount <> (SELECT coalesce(sum(Amount), 0) FROM Detail d "
                                    "WHERE d.BillNo = m.BillNo) OR m.TotVat <> (SELECT coalesce(sum(VAT), 0) "
                                    "FROM Detail d WHERE d.BillNo = m.BillNo)"))
               .toInt() == 0;
}

int linesOf(const QString& billNo) {
    return test::scalar(bill(), QStringLiteral("SELECT count(*) FROM Detail WHERE BillNo = ?"), {billNo})
        .toInt();
}

// One line of the given amount on a new statement; its number and sequence.
InsertedLine lineWithAmount(double amount) {
    const InsertedLine line = DetailInsert(bill(), lineOf(QString(), QStringLiteral("볼트")));
    if (line.ok) DetailUpdate(bill(), line.billNo, line.billSeq, QStringLiteral("Amount"), amount);
    return line;
}

} // namespace

class TestStatementNumbers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aNumberIsNeverGivenWhileLinesOfItRemain() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::script();
        // A line left behind by an older version, its head gone.
        QVERIFY(test::exec(bill(), QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Amount, VAT) "
                                                  "VALUES ('000005', 1, '남은줄', 300, 30)")));
        QCOMPARE(NextBillNo(bill()), QStringLiteral("000006"));
        const InsertedLine line = DetailInsert(bill(), lineOf(QString(), QStringLiteral("새줄")));
        QVERIFY(line.ok);
        QCOMPARE(line.billNo, QStringLiteral("000006"));
        QCOMPARE(linesOf(QStringLiteral("000006")), 1);
    }
    void deletingATraderNeverHandsItsLinesToANewStatement() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        QVERIFY(
            test::exec(stores().dbBasic,
                       QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('000001', '가나상사')")));
        const InsertedLine first = lineWithAmount(5000);
        QVERIFY(first.ok);
        QVERIFY(DetailInsert(bill(), lineOf(first.billNo, QStringLiteral("너트"))).ok);
        QVERIFY(DeleteTraderWithBusiness(QStringLiteral("000001")));
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT count(*) FROM Detail")).toInt(), 0);
        const InsertedLine next = lineWithAmount(5000);
        QVERIFY(next.ok);
        QCOMPARE(linesOf(next.billNo), 1);
        QVERIFY(headsAgreeWithLines());
        QVERIFY(msgs.boxes().empty());
    }
    void anAmountBeyondTheColumnIsRefusedWithTheOverflowReport_data() {
        QTest::addColumn<double>("value");
        QTest::newRow("1e15 x 1000") << 1e18;
        QTest::newRow("1e200 x 1e200") << std::numeric_limits<double>::infinity();
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("below") << -1e16;
    }
    void anAmountBeyondTheColumnIsRefusedWithTheOverflowReport() {
        QFETCH(double, value);
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        const InsertedLine line = lineWithAmount(1);
        QVERIFY(line.ok);
        for (const char* field : {"Amount", "VAT", "Quant", "Price"}) {
            const UpdatedLine saved =
                DetailUpdate(bill(), line.billNo, line.billSeq, QLatin1String(field), value);
            QVERIFY(!saved.ok);
            QVERIFY2(
                msgs.last().text.startsWith(QStringLiteral("Error 6 (Overflow) in procedure DetailUpdate")),
                qPrintable(msgs.last().text));
        }
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotAmount FROM Master")).toDouble(), 1.0);
        QVERIFY(headsAgreeWithLines());
        // Corrected, the line and its head move together again.
        QVERIFY(DetailUpdate(bill(), line.billNo, line.billSeq, QStringLiteral("Amount"), 1000.0).ok);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotAmount FROM Master")).toDouble(), 1000.0);
        QVERIFY(headsAgreeWithLines());
    }
    void aHeadTotalBeyondTheColumnIsRefusedToo() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        const InsertedLine first = lineWithAmount(900'000'000'000'000.0);
        QVERIFY(first.ok);
        const InsertedLine second = DetailInsert(bill(), lineOf(first.billNo, QStringLiteral("너트")));
        QVERIFY(second.ok);
        QVERIFY(!DetailUpdate(bill(), first.billNo, second.billSeq, QStringLiteral("Amount"),
                              200'000'000'000'000.0)
                     .ok);
        QVERIFY(msgs.last().text.contains(QStringLiteral("Overflow")));
        QVERIFY(headsAgreeWithLines());
    }
};

NB_TEST_MAIN(TestStatementNumbers)
#include "tst_statement_numbers.moc"
