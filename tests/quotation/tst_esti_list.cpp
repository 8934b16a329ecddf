// The search list of quotations: its statement by search field, all quotations for an empty
// text ordered by date and name, the VAT column, and a list longer than a page reached to its
// end and chosen there.
#include "QuotationFixture.h"
#include "common/grid/Grid.h"
#include "master/ListModel.h"
#include "quotation/FrmEstiList.h"

#include <QLabel>
#include <QScrollBar>

using namespace nb;

namespace {

constexpr int kQuotations = 1200;

// kQuotations quotations of 2024, one a day in turn; the last by date and name is 202412100.
void addManyQuotations() {
    stores().dbEstimate.beginTransaction();
    for (int i = 0; i < kQuotations; ++i) {
        const QDate day = QDate(2024, 1, 1).addDays(i * 365 / kQuotations);
        test::addEstiHead(day.toString(QStringLiteral("yyyyMM")) +
                              QStringLiteral("%1").arg(i % 100 + 1, 3, 10, QChar(u'0')),
                          QStringLiteral("1"), QStringLiteral("상사%1").arg(i, 4, 10, QChar(u'0')),
                          day.toString(Qt::ISODate));
    }
    stores().dbEstimate.commit();
}

} // namespace

class TestEstiList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void titleAndColumns() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        FrmEstiList list;
        QCOMPARE(list.windowTitle(), QStringLiteral("견적 내역 조회"));
        QCOMPARE(list.model()->columnCount(), 5);
    }
    void emptySearchListsAllQuotationsByDateAndName() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        test::addEstiHead(QStringLiteral("202405002"), QStringLiteral("1"), QStringLiteral("나상사"),
                          QStringLiteral("2024-05-02"));
        test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("1"), QStringLiteral("다상사"),
                          QStringLiteral("2024-05-02"));
        test::addEstiHead(QStringLiteral("202404001"), QStringLiteral("1"), QStringLiteral("가상사"),
                          QStringLiteral("2024-04-30"), 0, true);
        FrmEstiList list;
        list.InitForm(0, QString());
        QCOMPARE(list.rowCount(), 3);
        QCOMPARE(list.model()->text(0, 0), QStringLiteral("202404001"));
        QCOMPARE(list.model()->text(0, 4), QStringLiteral("1"));
        QCOMPARE(list.model()->text(1, 2), QStringLiteral("나상사"));
        QCOMPARE(list.model()->text(2, 2), QStringLiteral("다상사"));
        QCOMPARE(list.model()->text(2, 4), QStringLiteral("0"));
        list.InitForm(2, QStringLiteral("2024050"));
        QCOMPARE(list.rowCount(), 2);
        list.InitForm(1, QStringLiteral("04-30"));
        QCOMPARE(list.rowCount(), 1);
        QCOMPARE(list.model()->text(0, 2), QStringLiteral("가상사"));
        test::exec(stores().dbEstimate,
                   QStringLiteral("UPDATE EstiBase SET DeriveDate = '2024-06-01' WHERE CName = '다상사'"));
        list.InitForm(3, QStringLiteral("06-01"));
        QCOMPARE(list.rowCount(), 1);
        QCOMPARE(list.model()->text(0, 3), QStringLiteral("2024-06-01"));
        list.InitForm(0, QStringLiteral("상사"));
        QCOMPARE(list.rowCount(), 3);
        list.InitForm(0, QStringLiteral("'"));
        QCOMPARE(list.rowCount(), 0);
    }
    void aLongListOpensWithItsFirstPageAndCtrlEndChoosesTheLastQuotation() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        addManyQuotations();
        FrmEstiList list;
        QLabel target;
        list.SetObject(&target);
        list.InitForm(0, QString());
        QCOMPARE(list.model()->rowCount(), ListModel::kFirstPage);
        QVERIFY(list.model()->isFilling());
        test::showActive(&list);
        list.grdList->setFocus();
        QTest::keyClick(list.grdList, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(list.grdList->ActiveRow(), kQuotations);
        QCOMPARE(list.grdList->Text(3, kQuotations), QStringLiteral("상사1199"));
        const QString last = list.grdList->Text(1, kQuotations);
        QTest::keyClick(list.grdList, Qt::Key_Return);
        QCOMPARE(target.text(), last);
        QVERIFY(!list.isVisible());
        QCOMPARE(list.rowCount(), kQuotations);
    }

    void theLastQuotationScrolledToAndDoubleClickedIsChosen() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        addManyQuotations();
        FrmEstiList list;
        QLabel target;
        list.SetObject(&target);
        list.InitForm(0, QString());
        test::showActive(&list);
        QScrollBar* bar = list.grdList->verticalScrollBar();
        for (int i = 0; i < 200 && (list.grdList->isReading() || bar->value() < bar->maximum()); ++i) {
            bar->setValue(bar->maximum());
            QApplication::processEvents();
        }
        QCOMPARE(list.model()->rowCount(), kQuotations);
        const QRect lastRow = list.grdList->visualRect(list.grdList->model()->index(kQuotations - 1, 0));
        QVERIFY(list.grdList->viewport()->rect().contains(lastRow.center()));
        QTest::mouseDClick(list.grdList->viewport(), Qt::LeftButton, {}, lastRow.center());
        QCOMPARE(target.text(), list.grdList->Text(1, kQuotations));
        QVERIFY(!target.text().isEmpty());
        QVERIFY(!list.isVisible());
    }
};

NB_TEST_MAIN(TestEstiList)
#include "tst_esti_list.moc"
