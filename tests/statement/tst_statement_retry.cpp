// A statement save that another seat's save broke off: on the server it is run again quietly,
// each try taking its numbers and old values anew, until it is whole or the tries are spent; on
// the store files it is tried once, as ever. The head always agrees with its lines.
#include "ForcedConflict.h"
#include "StoreFixture.h"
#include "statement/StatementStore.h"
#include "storage/Database.h"

using namespace nb;

namespace {

Database& bill() {
    return stores().dbBill;
}

bool onServer() {
    return bill().onServer();
}

NewLine newStatementLine(const QString& pName) {
    return {QString(), QStringLiteral("2024-05-10"), QStringLiteral("000001"), pName};
}

int rows(const QString& table) {
    return test::scalar(bill(), QStringLiteral("SELECT count(*) FROM ") + table).toInt();
}

double headTotal() {
    return test::scalar(bill(), QStringLiteral("SELECT COALESCE(SUM(TotAmount), 0) FROM Master")).toDouble();
}

// Every head's totals and count as its lines sum them, and no head without lines.
bool headsAgreeWithLines() {
    return test::scalar(bill(), QStringLiteral(
                                    "SELECT count(*) FROM Master m WHERE m.NumBill <> "
                                    "(SELECT count(*) FROM Detail d WHERE d.BillNo = m.BillNo) "
                                    "OR m.TotAmount <> (SELECT coalesce(sum(Amount), 0) FROM Detail d "
                                    "WHERE d.BillNo = m.BillNo) OR m.TotVat <> (SELECT coalesce(sum(VAT), 0) "
                                    "FROM Detail d WHERE d.BillNo = m.BillNo) OR m.NumBill = 0"))
               .toInt() == 0;
}

// A statement of two lines, 1000 + 100 and 2000 + 200; its number.
QString twoLineStatement() {
    const InsertedLine first = DetailInsert(bill(), newStatementLine(QStringLiteral("볼트")));
    const InsertedLine second = DetailInsert(bill(), {first.billNo, QStringLiteral("2024-05-10"),
                                                      QStringLiteral("000001"), QStringLiteral("너트")});
    if (!first.ok || !second.ok) return QString();
    DetailUpdate(bill(), first.billNo, 1, QStringLiteral("Amount"), 1000.0);
    DetailUpdate(bill(), first.billNo, 1, QStringLiteral("VAT"), 100.0);
    DetailUpdate(bill(), first.billNo, 2, QStringLiteral("Amount"), 2000.0);
    DetailUpdate(bill(), first.billNo, 2, QStringLiteral("VAT"), 200.0);
    return first.billNo;
}

// How many times the operator was asked `title`.
int asked(const ScriptedMessages& msgs, const QString& title) {
    int count = 0;
    for (const MessageRecord& box : msgs.boxes())
        count += box.title == title ? 1 : 0;
    return count;
}

QString busySentence() {
    return storeFaultText(5, QString());
}

} // namespace

class TestStatementRetry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aNewStatementBrokenOffOnceMakesOneHeadWithItsLine() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        // The head is written, then its line meets the conflict: the try's head must go with it.
        test::ForcedConflict conflict(bill(), {QStringLiteral("Detail"), QStringLiteral("INSERT"), 0, 1});
        QVERIFY(conflict.installed());
        const InsertedLine line = DetailInsert(bill(), newStatementLine(QStringLiteral("볼트")));
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(!bill().inTransaction());
        QVERIFY(headsAgreeWithLines());
        if (!onServer()) {
            QVERIFY(!line.ok);
            QCOMPARE(msgs.boxes().size(), size_t(1));
            QVERIFY(msgs.last().text.contains(busySentence()));
            QCOMPARE(rows(QStringLiteral("Master")), 0);
            QCOMPARE(rows(QStringLiteral("Detail")), 0);
            return;
        }
        QVERIFY(line.ok && line.newHead);
        QCOMPARE(line.billNo, kFirstBillNo);
        QCOMPARE(line.billSeq, 1);
        QVERIFY(msgs.records().empty());
        QCOMPARE(rows(QStringLiteral("Master")), 1);
        QCOMPARE(rows(QStringLiteral("Detail")), 1);
        QCOMPARE(NextBillNo(bill()), QStringLiteral("000002"));
    }
    void aConflictThatStaysEndsInOneBoxAndNothingSaved() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        test::ForcedConflict conflict(bill(), {QStringLiteral("Detail"), QStringLiteral("INSERT"), 0, -1});
        QVERIFY(conflict.installed());
        const InsertedLine line = DetailInsert(bill(), newStatementLine(QStringLiteral("볼트")));
        QVERIFY(!line.ok);
        QCOMPARE(conflict.raised(), onServer() ? kSaveTries : 1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.contains(busySentence()));
        QCOMPARE(rows(QStringLiteral("Master")), 0);
        QCOMPARE(rows(QStringLiteral("Detail")), 0);
        QVERIFY(!bill().inTransaction());
    }
    void aChangedAmountBrokenOffOnceMovesTheHeadOnce() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString billNo = twoLineStatement();
        QVERIFY(!billNo.isEmpty());
        auto& msgs = test::script();
        // The head's total moves first, then the line meets the conflict.
        test::ForcedConflict conflict(bill(), {QStringLiteral("Detail"), QStringLiteral("UPDATE"), 0, 1});
        QVERIFY(conflict.installed());
        const UpdatedLine changed = DetailUpdate(bill(), billNo, 2, QStringLiteral("Amount"), 2500.0);
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(headsAgreeWithLines());
        QCOMPARE(changed.ok, onServer());
        QCOMPARE(headTotal(), onServer() ? 3500.0 : 3000.0);
        QCOMPARE(msgs.boxes().size(), size_t(onServer() ? 0 : 1));
        if (onServer()) QCOMPARE(changed.diff, -500.0);
    }
    void aDeletedLineBrokenOffOnceIsAskedAboutOnceAndGoesOnce() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString billNo = twoLineStatement();
        QVERIFY(!billNo.isEmpty());
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        test::ForcedConflict conflict(bill(), {QStringLiteral("Master"), QStringLiteral("UPDATE"), 0, 1});
        QVERIFY(conflict.installed());
        const DeletedLine deleted = DeleteLine(bill(), billNo, 1);
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(headsAgreeWithLines());
        QCOMPARE(asked(msgs, QStringLiteral("거래내역 삭제")), 1);
        if (!onServer()) {
            QCOMPARE(deleted.outcome, LineDeleteOutcome::Failed);
            QCOMPARE(msgs.boxes().size(), size_t(2)); // the question and the failure
            QCOMPARE(rows(QStringLiteral("Detail")), 2);
            return;
        }
        QCOMPARE(deleted.outcome, LineDeleteOutcome::Deleted);
        QCOMPARE(deleted.amount, 1000.0);
        QCOMPARE(msgs.boxes().size(), size_t(1)); // the question only
        QCOMPARE(rows(QStringLiteral("Detail")), 1);
        QCOMPARE(headTotal(), 2000.0);
    }
    void aDeletedStatementBrokenOffOnceGoesWithItsLines() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString billNo = twoLineStatement();
        QVERIFY(!billNo.isEmpty());
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        // The head is gone, then its lines meet the conflict.
        test::ForcedConflict conflict(bill(), {QStringLiteral("Detail"), QStringLiteral("DELETE"), 0, 1});
        QVERIFY(conflict.installed());
        const StatementDeleteOutcome outcome = DeleteStatement(bill(), billNo, false);
        QCOMPARE(conflict.raised(), 1);
        QCOMPARE(asked(msgs, QStringLiteral("기존발행전표 삭제")), 1);
        QCOMPARE(outcome, onServer() ? StatementDeleteOutcome::Deleted : StatementDeleteOutcome::Failed);
        QCOMPARE(rows(QStringLiteral("Master")), onServer() ? 0 : 1);
        QCOMPARE(rows(QStringLiteral("Detail")), onServer() ? 0 : 2);
        QCOMPARE(msgs.boxes().size(), size_t(onServer() ? 1 : 2));
        QVERIFY(headsAgreeWithLines());
    }
};

NB_TEST_MAIN(TestStatementRetry)
#include "tst_statement_retry.moc"
