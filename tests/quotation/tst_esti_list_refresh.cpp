// The search list of quotations shows a quotation another seat saves while it is open, on the
// server without a key pressed, its search and its chosen quotation kept; asked to read again
// on either engine, it keeps the chosen quotation wherever it now stands.
#include "QuotationFixture.h"
#include "common/ListRefresh.h"
#include "common/grid/Grid.h"
#include "quotation/FrmEstiList.h"

using namespace nb;

namespace {

void anotherSeatSaves(const QString& code, const QString& name, const QString& date) {
    Database seat;
    QVERIFY(seat.open(app().DbEstimateFile));
    QVERIFY(seat.tryExecute(
        QStringLiteral("INSERT INTO EstiBase (EstiCode, CCode, CName, EstiDate, DeriveDate, "
                       "ClassName, EstiKum, EstiHanKum, Vat, Refer, Validate, Section) VALUES "
                       "(?, '1', ?, ?, '', '', 0, '', 0, '', '', '')"),
        {code, name, date}));
}

struct OpenList {
    test::TestHome home;
    std::unique_ptr<FrmEstiList> list;
    OpenList() {
        QVERIFY(test::openQuotationStores());
        test::script();
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("1"), QStringLiteral("가상사"),
                                  QStringLiteral("2024-05-02")));
        QVERIFY(test::addEstiHead(QStringLiteral("202405002"), QStringLiteral("1"), QStringLiteral("나상사"),
                                  QStringLiteral("2024-05-03")));
        list = std::make_unique<FrmEstiList>();
        list->InitForm(2, QStringLiteral("2024")); // by number
        test::showActive(list.get());
        list->grdList->SetActiveCell(1, 2);
    }
    QStringList codes() const {
        QStringList out;
        for (int row = 1; row <= list->grdList->DataRowCnt(); ++row)
            out << list->grdList->Text(1, row);
        return out;
    }
};

} // namespace

class TestEstiListRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aQuotationSavedElsewhereJoinsTheOpenList() {
        OpenList l;
        anotherSeatSaves(QStringLiteral("202405003"), QStringLiteral("다상사"), QStringLiteral("2024-05-01"));
        if (stores().dbEstimate.onServer()) {
            QVERIFY(QTest::qWaitFor([&l] { return l.codes().size() == 3; }, 5000));
        } else {
            QTest::qWait(kListRefreshMillis + 150);
            QCOMPARE(l.codes().size(), 2); // files tell nothing: asked, it reads
            requestListRefresh(l.list.get());
            QVERIFY(QTest::qWaitFor([&l] { return l.codes().size() == 3; }, 2000));
        }
        QCOMPARE(l.codes(), (QStringList{QStringLiteral("202405003"), QStringLiteral("202405001"),
                                         QStringLiteral("202405002")}));
        QCOMPARE(l.list->grdList->ActiveRow(), 3);
        QCOMPARE(l.list->grdList->Text(1, 3), QStringLiteral("202405002"));
    }
    void theSearchStaysTheSearchWhenReadAgain() {
        OpenList l;
        anotherSeatSaves(QStringLiteral("202305009"), QStringLiteral("라상사"), QStringLiteral("2023-05-01"));
        requestListRefresh(l.list.get());
        QTest::qWait(kListRefreshMillis + 150);
        QVERIFY(QTest::qWaitFor([&l] { return !listRefreshPending(l.list.get()); }, 2000));
        QCOMPARE(l.codes(), (QStringList{QStringLiteral("202405001"), QStringLiteral("202405002")}));
    }
};

NB_TEST_MAIN(TestEstiListRefresh)
#include "tst_esti_list_refresh.moc"
