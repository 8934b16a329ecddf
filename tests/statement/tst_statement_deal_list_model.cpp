// What the statement screen shows as lines are typed, changed and deleted: the list with its
// empty row, the pending row, the totals, and the statement handed to the print.
#include "StoreFixture.h"
#include "statement/DealListModel.h"

#include <QSignalSpy>

using namespace nb;

namespace {

Database& bill() {
    return stores().dbBill;
}

void prepareTrader(DealListModel& model) {
    model.setTrader(QStringLiteral("000001"), QStringLiteral("가나상사"));
    model.setDateBox(QStringLiteral("2024년05월10일"));
}

bool listMay(DealListModel& model) {
    return model.masterList(stores().dbBasic.path(), QStringLiteral("2024-05-01"),
                            QStringLiteral("2024-05-31"), false);
}

} // namespace

class TestDealListModel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void emptyListStandsOnNewStatementWithPendingRow() {
        test::TestHome home;
        QVERIFY(test::openStores());
        DealListModel model(bill());
        QVERIFY(listMay(model));
        QCOMPARE(model.masterRowCount(), 1);
        QCOMPARE(model.dataRowCount(), 0);
        prepareTrader(model);
        QVERIFY(listMay(model));
        QCOMPARE(model.dataRowCount(), 1);
        QCOMPARE(model.detailRowCount(), 15);
        QCOMPARE(model.selectedBillNo(), QString());
        QCOMPARE(model.selectedBillSeq(), 0);
    }
    // The empty row after the last statement stands for a statement not made yet: a line kept
    // without a number (left by an old file) is not its line, and nothing is read for it.
    void theEmptyRowShowsNoLinesAndReadsNone() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(
            bill().Execute(QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Amount, VAT) VALUES "
                                          "('', 1, '번호 없는 줄', 1000, 100)")));
        DealListModel model(bill());
        QVERIFY(listMay(model));
        QCOMPARE(model.selectedBillNo(), QString());
        QVERIFY(model.lines().isEmpty());
        QCOMPARE(model.detailRowCount(), 15);
        QCOMPARE(model.gong(), 0.0);
    }
    // The month's list reaches the view with its empty row in one change: no row is added or
    // taken away after it, and a list read again of as many statements changes no row count.
    void theListAndItsEmptyRowReachTheViewInOneChange() {
        test::TestHome home;
        QVERIFY(test::openStores());
        for (int i = 1; i <= 3; ++i)
            QVERIFY(bill().Execute(
                QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                               "VALUES (?, '2024-05-0' || ?, '000001', 1000, 100, 1)"),
                {QStringLiteral("00000%1").arg(i), i}));
        DealListModel model(bill());
        QVERIFY(listMay(model));
        QSignalSpy resets(&model.masterRows(), &QAbstractItemModel::modelReset);
        QSignalSpy inserted(&model.masterRows(), &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(&model.masterRows(), &QAbstractItemModel::rowsRemoved);
        QVERIFY(listMay(model));
        QCOMPARE(resets.count(), 1);
        QCOMPARE(inserted.count() + removed.count(), 0);
        QCOMPARE(model.masterRowCount(), 4);
        QCOMPARE(model.masterRows().rowCount(), 4);
        QCOMPARE(model.activeMasterRow(), 4);
        QCOMPARE(model.listed(3).billNo, QStringLiteral("000003"));
        QCOMPARE(model.periodTotal(), 3300.0);
    }

    void firstLineMakesHeadInListAndTotalsFollowEdits() {
        test::TestHome home;
        QVERIFY(test::openStores());
        DealListModel model(bill());
        prepareTrader(model);
        QVERIFY(listMay(model));
        QVERIFY(model.insertLine(QStringLiteral("볼트")));
        QCOMPARE(model.masterCount(), 1);
        QCOMPARE(model.listed(1).billDate, QStringLiteral("2024-05-10"));
        QCOMPARE(model.listed(1).cName, QStringLiteral("가나상사"));
        QCOMPARE(model.listed(1).numBill, 1);
        QVERIFY(model.updateField(QStringLiteral("Amount"), 3765.0));
        QVERIFY(model.updateField(QStringLiteral("VAT"), 376.0));
        QCOMPARE(model.sum(), 4141.0);
        QCOMPARE(model.periodTotal(), 4141.0);
        model.setActiveDetailRow(model.dataRowCount());
        QVERIFY(model.insertLine(QStringLiteral("너트")));
        QCOMPARE(model.dataRowCount(), 3);
        QCOMPARE(model.periodCount(), 2);
        const ShownStatement shown = model.shown();
        QCOMPARE(shown.head.billNo, QStringLiteral("000001"));
        QCOMPARE(shown.head.totAmount, 3765.0); // the head's totals are its lines'
        QCOMPARE(shown.head.totVat, 376.0);
        QCOMPARE(shown.head.numBill, 2);
        QCOMPARE(shown.lines.size(), 2);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotAmount FROM Master")).toDouble(), 3765.0);
        // Listed anew: the screen stands on the empty row again; choosing the row shows its lines.
        QVERIFY(listMay(model));
        QCOMPARE(model.activeMasterRow(), 2);
        QCOMPARE(model.lines().size(), 0);
        model.chooseMaster(1);
        QCOMPARE(model.lines().size(), 2);
        QCOMPARE(model.gong(), 3765.0);
        QCOMPARE(model.se(), 376.0);
        QCOMPARE(model.activeDetailRow(), 3);
    }
    void deletingLastLineMovesToNeighbourAndItsTrader() {
        test::TestHome home;
        QVERIFY(test::openStores());
        DealListModel model(bill());
        prepareTrader(model);
        QVERIFY(listMay(model));
        QVERIFY(model.insertLine(QStringLiteral("a")));
        model.chooseMaster(2);
        model.setTrader(QStringLiteral("000002"), QStringLiteral("다라"));
        QVERIFY(model.insertLine(QStringLiteral("b")));
        QVERIFY(listMay(model));
        model.chooseMaster(1);
        model.setActiveDetailRow(1);
        test::script().answer(AnsYes);
        QCOMPARE(model.deleteLine(), LineDeleteOutcome::WholeStatement);
        QCOMPARE(model.masterCount(), 1);
        QCOMPARE(model.traderCode(), QStringLiteral("000002"));
        QCOMPARE(model.lines()[0].pName, QStringLiteral("b"));
        QCOMPARE(model.deleteStatement(true), StatementDeleteOutcome::Deleted);
        QCOMPARE(model.traderCode(), QString());
        QCOMPARE(model.masterRowCount(), 1);
    }
    void choosingStatementOfAllTradersSetsTraderAndNextListShowsOnlyIt() {
        test::TestHome home;
        QVERIFY(test::openStores());
        DealListModel model(bill());
        prepareTrader(model);
        QVERIFY(model.insertLine(QStringLiteral("a")));
        model.newMaster();
        QCOMPARE(model.traderCode(), QString());
        QCOMPARE(model.dataRowCount(), 0);
        model.setTrader(QStringLiteral("000002"), QStringLiteral("다라"));
        QVERIFY(model.insertLine(QStringLiteral("b")));
        model.newMaster();
        QVERIFY(listMay(model));
        QCOMPARE(model.masterCount(), 2);
        model.chooseMaster(2);
        QCOMPARE(model.traderCode(), QStringLiteral("000002"));
        QVERIFY(model.masterList(stores().dbBasic.path(), QStringLiteral("2024-05-01"),
                                 QStringLiteral("2024-05-31"), true));
        QCOMPARE(model.masterCount(), 1);
        QCOMPARE(model.listed(1).cCode, QStringLiteral("000002"));
    }
    void choosingStatementSetsPreviousBalanceToZero() {
        test::TestHome home;
        QVERIFY(test::openStores());
        DealListModel model(bill());
        prepareTrader(model);
        QVERIFY(model.insertLine(QStringLiteral("a")));
        QVERIFY(model.updateField(QStringLiteral("Amount"), 1000.0));
        model.setPreMisu(5000);
        QCOMPARE(model.misu(), 6000.0);
        model.chooseMaster(1);
        QCOMPARE(model.preMisu(), 0.0);
        QCOMPARE(model.misu(), 1000.0);
    }
    void lineDeleteMovesShownTotals() {
        test::TestHome home;
        QVERIFY(test::openStores());
        DealListModel model(bill());
        prepareTrader(model);
        QVERIFY(listMay(model));
        for (const QString& name : {QStringLiteral("a"), QStringLiteral("b")}) {
            model.setActiveDetailRow(model.dataRowCount());
            QVERIFY(model.insertLine(name));
            QVERIFY(model.updateField(QStringLiteral("Amount"), 1000.0));
        }
        model.setActiveDetailRow(1);
        test::script().answer(AnsYes);
        QCOMPARE(model.deleteLine(), LineDeleteOutcome::Deleted);
        QCOMPARE(model.gong(), 1000.0);
        QCOMPARE(model.listed(1).numBill, 1);
        QCOMPARE(model.listed(1).total, 1000.0);
        QCOMPARE(model.lines()[0].billSeq, 2);
    }
};

NB_TEST_MAIN(TestDealListModel)
#include "tst_statement_deal_list_model.moc"
