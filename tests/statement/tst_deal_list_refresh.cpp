// The statement list of FrmDealList shows what another seat saved: read afresh when the operator
// comes back to the screen from another child window (both engines), and on the server as soon
// as the other seat's save is told, without coming back. The operator keeps the place: the same
// statement chosen (by its number, wherever it now stands), its lines, the rows in view, the
// text being typed; only a statement deleted meanwhile gives way to the empty row.
#include "DealListKit.h"
#include "common/ListRefresh.h"

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScrollBar>

using namespace nb;

namespace {

// The statement screen in a work area beside another child window, as in the program.
struct HostedScreen {
    test::DealScreen s;
    QMainWindow main;
    QMdiArea* area = new QMdiArea;
    FrmDealList* f = nullptr;
    QMdiSubWindow* sub = nullptr;
    QMdiSubWindow* other = nullptr;
    HostedScreen() {
        test::script();
        main.setCentralWidget(area);
        main.resize(1280, 900);
        test::showActive(&main);
    }
    FrmDealList& open() {
        f = new FrmDealList;
        sub = area->addSubWindow(f);
        sub->resize(1100, 760);
        sub->show();
        area->setActiveSubWindow(sub);
        QTest::qWait(50);
        other = area->addSubWindow(new QWidget);
        return *f;
    }
    void toTheOtherWindow() {
        other->show();
        area->setActiveSubWindow(other);
        QTest::qWait(30);
    }
    void backToTheScreen() {
        area->setActiveSubWindow(sub);
        QTest::qWait(30);
    }
    // The re-read runs from the event loop; waits until it has had its moment.
    void settle() {
        QTest::qWait(kListRefreshMillis + 150);
        QVERIFY2(QTest::qWaitFor([this] { return !listRefreshPending(f); }, 2000), "the re-read never ran");
    }
};

// Another seat (another computer, or another running copy) saves a statement of one line on a
// connection of its own.
void anotherSeatSaves(const QString& billNo, const QString& date, const QString& cCode) {
    Database seat;
    QVERIFY(seat.open(app().DbBillFile));
    QVERIFY(seat.beginTransaction());
    QVERIFY(seat.tryExecute(QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, "
                                           "NumBill) VALUES (?, ?, ?, 10000, 1000, 1)"),
                            {billNo, date, cCode}));
    QVERIFY(seat.tryExecute(QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, "
                                           "DC, Amount, VAT) VALUES (?, 1, '너트', 'EA', 1, 11000, 0, 10000, "
                                           "1000)"),
                            {billNo}));
    QVERIFY(seat.commit());
}

void anotherSeatDeletes(const QString& billNo) {
    Database seat;
    QVERIFY(seat.open(app().DbBillFile));
    QVERIFY(seat.beginTransaction());
    QVERIFY(seat.tryExecute(QStringLiteral("DELETE FROM Detail WHERE BillNo = ?"), {billNo}));
    QVERIFY(seat.tryExecute(QStringLiteral("DELETE FROM Master WHERE BillNo = ?"), {billNo}));
    QVERIFY(seat.commit());
}

// The operator chooses a statement in the list with the keyboard in it.
void chooseStatement(FrmDealList& f, int row) {
    f.spMaster->setFocus();
    f.spMaster->SetActiveCell(ColBillDate, row);
}

QStringList listedNumbers(const FrmDealList& f) {
    QStringList out;
    for (int row = 1; row <= f.model().masterCount(); ++row)
        out << f.model().listed(row).billNo;
    return out;
}

void addTwoStatements() {
    QVERIFY(test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"),
                                   QStringLiteral("000001"), {{QStringLiteral("볼트"), 2, 1100, 2000, 200}}));
    QVERIFY(test::addDealStatement(
        QStringLiteral("000002"), QStringLiteral("2024-05-06"), QStringLiteral("000002"),
        {{QStringLiteral("앵글"), 1, 11000, 10000, 1000}, {QStringLiteral("볼트"), 1, 1100, 1000, 100}}));
}

} // namespace

class TestDealListRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aStatementAnotherSeatSavedShowsWhenTheScreenComesBack() {
        HostedScreen h;
        addTwoStatements();
        FrmDealList& f = h.open();
        chooseStatement(f, 2);
        QCOMPARE(f.SelectedBillNo(), QStringLiteral("000002"));
        h.toTheOtherWindow();
        anotherSeatSaves(QStringLiteral("000003"), QStringLiteral("2024-05-02"), QStringLiteral("000001"));
        h.backToTheScreen();
        h.settle();
        QCOMPARE(listedNumbers(f),
                 (QStringList{QStringLiteral("000003"), QStringLiteral("000001"), QStringLiteral("000002")}));
        // The same statement stays chosen where it now stands, with its lines and its trader.
        QCOMPARE(f.SelectedBillNo(), QStringLiteral("000002"));
        QCOMPARE(f.spMaster->ActiveRow(), 3);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("앵글"));
        QCOMPARE(f.spDetail->Text(ColPName, 2), QStringLiteral("볼트"));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000002"));
        // The list's sums count the new statement.
        QCOMPARE(f.model().periodCount(), 4);
        QCOMPARE(f.model().periodTotal(), 2200.0 + 11000 + 1100 + 11000);
        test::saveScreenshot(&h.main, QStringLiteral("deal_list_refresh_back"));
    }
    void theEmptyRowStaysChosenWhenTheScreenStoodOnIt() {
        HostedScreen h;
        addTwoStatements();
        FrmDealList& f = h.open();
        QCOMPARE(f.spMaster->ActiveRow(), 3); // a new statement: the empty row
        h.toTheOtherWindow();
        anotherSeatSaves(QStringLiteral("000003"), QStringLiteral("2024-05-07"), QStringLiteral("000001"));
        h.backToTheScreen();
        h.settle();
        QCOMPARE(f.model().masterCount(), 3);
        QCOMPARE(f.spMaster->ActiveRow(), 4);
        QVERIFY(f.SelectedBillNo().isEmpty());
    }
    void theListIsNotReadAgainWhileTheScreenStaysInFrontOnFiles() {
        HostedScreen h;
        addTwoStatements();
        FrmDealList& f = h.open();
        anotherSeatSaves(QStringLiteral("000003"), QStringLiteral("2024-05-07"), QStringLiteral("000001"));
        if (stores().dbBill.onServer()) {
            // The server tells the open list of the other seat's save: it shows without coming back.
            QVERIFY(QTest::qWaitFor([&f] { return f.model().masterCount() == 3; }, 5000));
        } else {
            h.settle();
            QCOMPARE(f.model().masterCount(), 2); // files tell nothing: the next activation reads
            h.toTheOtherWindow();
            h.backToTheScreen();
            h.settle();
            QCOMPARE(f.model().masterCount(), 3);
        }
    }
    void aStatementDeletedElsewhereLeavesTheScreenOnTheEmptyRow() {
        HostedScreen h;
        addTwoStatements();
        FrmDealList& f = h.open();
        chooseStatement(f, 1);
        QCOMPARE(f.SelectedBillNo(), QStringLiteral("000001"));
        h.toTheOtherWindow();
        anotherSeatDeletes(QStringLiteral("000001"));
        h.backToTheScreen();
        h.settle();
        QCOMPARE(listedNumbers(f), QStringList{QStringLiteral("000002")});
        QVERIFY(f.SelectedBillNo().isEmpty());
        QCOMPARE(f.spMaster->ActiveRow(), 2);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QString()); // the lines of the gone statement went
        QCOMPARE(f.model().lines().size(), 0);
    }
    void theRowsInViewStayWhenTheListIsReadAfresh() {
        HostedScreen h;
        for (int i = 1; i <= 60; ++i)
            QVERIFY(test::addDealStatement(QStringLiteral("%1").arg(i, 6, 10, QChar(u'0')),
                                           QStringLiteral("2024-05-0%1").arg(1 + (i - 1) / 10),
                                           QStringLiteral("000001"),
                                           {{QStringLiteral("볼트"), 1, 1100, 1000, 100}}));
        FrmDealList& f = h.open();
        chooseStatement(f, 30);
        QScrollBar* scroll = f.spMaster->verticalScrollBar();
        scroll->setValue(25);
        QTest::qWait(20);
        const int top = scroll->value();
        QVERIFY(top > 0);
        h.toTheOtherWindow();
        anotherSeatSaves(QStringLiteral("000061"), QStringLiteral("2024-05-08"), QStringLiteral("000001"));
        h.backToTheScreen();
        h.settle();
        QCOMPARE(f.model().masterCount(), 61);
        QCOMPARE(f.SelectedBillNo(), QStringLiteral("000030"));
        QCOMPARE(scroll->value(), top);
        // A statement joining above the chosen one moves the view with it: the chosen row keeps
        // its place on the screen.
        h.toTheOtherWindow();
        anotherSeatSaves(QStringLiteral("000062"), QStringLiteral("2024-05-01"), QStringLiteral("000001"));
        h.backToTheScreen();
        h.settle();
        QCOMPARE(f.SelectedBillNo(), QStringLiteral("000030"));
        QCOMPARE(f.spMaster->ActiveRow(), 31);
        QCOMPARE(scroll->value(), top + 1);
    }
    void theTextBeingTypedIntoALineStaysAndHoldsTheReread() {
        HostedScreen h;
        addTwoStatements();
        FrmDealList& f = h.open();
        chooseStatement(f, 2);
        test::goToCell(f, ColPName, 3); // the pending row after the two lines
        QWidget* editor = test::focused();
        test::typeText(editor, QStringLiteral("와셔"));
        anotherSeatSaves(QStringLiteral("000003"), QStringLiteral("2024-05-07"), QStringLiteral("000001"));
        requestListRefresh(&f);
        QTest::qWait(kListRefreshMillis * 3);
        QVERIFY(listRefreshPending(&f)); // not while the operator types
        QCOMPARE(f.model().masterCount(), 2);
        QCOMPARE(test::focused(), editor);
        auto* box = qobject_cast<QLineEdit*>(editor);
        QVERIFY(box);
        QCOMPARE(box->text(), QStringLiteral("와셔"));
        QCOMPARE(test::masterRows(), 3); // and nothing of it stored meanwhile
        QCOMPARE(test::detailRows(QStringLiteral("000002")), 2);
    }
    void theScreensOwnSaveKeepsItsRowAfterARereadOnTheWay() {
        HostedScreen h;
        addTwoStatements();
        FrmDealList& f = h.open();
        chooseStatement(f, 1);
        test::goToCell(f, ColPName, 2);
        test::typeProductAndChoose(QStringLiteral("와셔"), QStringLiteral("000003"));
        requestListRefresh(&f);
        h.settle();
        QCOMPARE(f.SelectedBillNo(), QStringLiteral("000001"));
        QCOMPARE(f.spMaster->ActiveRow(), 1);
        QCOMPARE(test::detailRows(QStringLiteral("000001")), 2);
        QCOMPARE(f.model().listed(1).numBill, 2);
        QCOMPARE(f.model().lines().size(), 2);
    }
};

NB_TEST_MAIN(TestDealListRefresh)
#include "tst_deal_list_refresh.moc"
