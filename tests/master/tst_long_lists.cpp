// The trader and product lists longer than a page: the last row reached by the keys and by the
// scroll bar while the rows are still being read, and chosen by Enter and by the mouse.
#include "MasterFixture.h"
#include "master/FrmProductList.h"
#include "master/FrmTraderList.h"

#include <QLineEdit>
#include <QScrollBar>

using namespace nb;
using namespace nb::test;

namespace {

constexpr int kTraders = 1500;

QString code(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
}

void addTraders() {
    stores().dbBasic.beginTransaction();
    for (int i = 1; i <= kTraders; ++i)
        addTrader(code(i), QStringLiteral("상사%1").arg(i, 4, 10, QChar(u'0')));
    stores().dbBasic.commit();
}

// The view scrolled to its end, again and again while more rows come.
void scrollToTheEnd(Grid* grid) {
    QScrollBar* bar = grid->verticalScrollBar();
    for (int i = 0; i < 200 && (grid->isReading() || bar->value() < bar->maximum()); ++i) {
        bar->setValue(bar->maximum());
        QApplication::processEvents();
    }
}

} // namespace

class TestLongLists : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void ctrlEndReachesTheLastTraderWhileTheListIsReadAndEnterChoosesIt() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTraders();
        FrmTraderList list;
        QLineEdit target;
        list.SetObject(&target);
        int result = 0;
        list.InitForm(QStringLiteral("상사"), 0, result);
        QCOMPARE(result, 2);
        list.show(); // not yet the rest of the rows: no events have run
        list.grdList()->setFocus();
        QVERIFY(list.model()->isFilling());
        QTest::keyClick(list.grdList(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(list.activeRow(), kTraders - 1);
        QCOMPARE(list.activeText(1), QStringLiteral("상사1500"));
        QTest::keyClick(list.grdList(), Qt::Key_Return);
        QCOMPARE(target.text(), code(kTraders));
        QVERIFY(!list.isVisible());
    }

    // The same search again with another text while the list before still reads its rows: the
    // list holds the new search's rows, every one and in order, none of the search before.
    void aSearchRunAgainWhileTheListIsReadHoldsOnlyItsOwnRows() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTraders();
        FrmTraderList list;
        int result = 0;
        list.InitForm(QStringLiteral("상사1"), 0, result);
        QVERIFY(list.model()->isFilling());
        QCOMPARE(list.model()->text(0, 0), QStringLiteral("상사1000"));
        list.InitForm(QStringLiteral("상사0"), 0, result);
        QCOMPARE(result, 2);
        QCOMPARE(list.model()->text(0, 0), QStringLiteral("상사0001"));
        list.model()->finishFilling();
        QCOMPARE(list.model()->rowCount(), 999);
        for (int r = 0; r < 999; ++r)
            QCOMPARE(list.model()->text(r, 0), QStringLiteral("상사%1").arg(r + 1, 4, 10, QChar(u'0')));
        list.InitForm(QStringLiteral("상사1"), 0, result);
        list.model()->finishFilling();
        QCOMPARE(list.model()->rowCount(), 501);
        QCOMPARE(list.model()->text(500, 0), QStringLiteral("상사1500"));
    }

    void theLastTraderScrolledToAndClickedIsChosen() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addTraders();
        FrmTraderList list;
        QLineEdit target;
        list.SetObject(&target);
        int result = 0;
        list.InitForm(QString(), 0, result);
        showActive(&list);
        Grid* grid = list.grdList();
        scrollToTheEnd(grid);
        QCOMPARE(list.model()->rowCount(), kTraders);
        const QRect last = grid->visualRect(grid->model()->index(kTraders - 1, 0));
        QVERIFY(grid->viewport()->rect().contains(last.center()));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, last.center());
        QCOMPARE(target.text(), code(kTraders));
    }

    void pageDownThroughTheProductsReachesTheLastOneAndEnterChoosesIt() {
        TestHome home;
        QVERIFY(openStores());
        script();
        stores().dbBasic.beginTransaction();
        for (int i = 1; i <= 400; ++i)
            addProduct(code(i), QStringLiteral("볼트%1").arg(i, 3, 10, QChar(u'0')), QString(), 100, 120 + i);
        stores().dbBasic.commit();
        FrmProductList list;
        QLineEdit target;
        list.SetObject(&target, QString());
        int result = 0;
        list.InitForm(1, QStringLiteral("볼트"), result);
        QCOMPARE(result, 2);
        showActive(&list);
        list.grdList()->setFocus();
        for (int i = 0; i < 400 && list.activeRow() < 399; ++i)
            QTest::keyClick(list.grdList(), Qt::Key_PageDown);
        QCOMPARE(list.activeRow(), 399);
        QCOMPARE(list.activeText(1), QStringLiteral("볼트400"));
        QCOMPARE(list.activeText(4), QStringLiteral("520"));
        QTest::keyClick(list.grdList(), Qt::Key_Return);
        QCOMPARE(target.text(), code(400));
    }
};

NB_TEST_MAIN(TestLongLists)
#include "tst_long_lists.moc"
