// The search list of quotations: its statement by search field, all quotations for an empty
// text ordered by date and name, and the VAT column.
#include "QuotationFixture.h"
#include "master/ListModel.h"
#include "quotation/FrmEstiList.h"

using namespace nb;

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
};

NB_TEST_MAIN(TestEstiList)
#include "tst_esti_list.moc"
