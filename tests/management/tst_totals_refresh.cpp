// The totals screen counts in what was issued since its search: the last search is run again as
// it was searched (not as the boxes were changed since) when the operator comes back to the
// screen, and on the server as soon as another seat's invoice is told. The trader the list stood
// on stays chosen; before a first search nothing is read.
#include "../invoice/InvoiceFixture.h"
#include "MdiHost.h"
#include "common/grid/Grid.h"
#include "core/Clock.h"
#include "management/FrmTaxManage.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

using namespace nb;

namespace {

struct HostedTotals {
    test::TestHome home;
    test::MdiHost host;
    FrmTaxManage* f = nullptr;
    HostedTotals() {
        setClock([] { return QDateTime(QDate(2024, 8, 14), QTime(10, 0)); });
        QVERIFY(test::openStores());
        addTraders();
        QVERIFY(test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"),
                                    QStringLiteral("앵글"), 50000, 5000, QStringLiteral("2024-04-02")));
        QVERIFY(test::addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000002"),
                                    QStringLiteral("볼트"), 8000, 800, QStringLiteral("2024-05-20")));
        test::script();
        f = new FrmTaxManage;
        host.host(f, QSize(1280, 900));
    }
    ~HostedTotals() { setClock({}); }
    static void addTraders() {
        for (const auto& [code, serial, name] : {std::tuple{"000001", "234-56-78904", "가나철강"},
                                                 std::tuple{"000002", "345-67-89013", "다라상회"}})
            QVERIFY(test::addTraderRow(
                QString::fromUtf8(code),
                {QString::fromUtf8(serial), QString::fromUtf8(name), {}, {}, {}, {}, {}, {}}));
    }
    void searchSecondQuarter() {
        f->CmbGubun->setCurrentIndex(1);
        f->CmbYY->setCurrentText(QStringLiteral("2024"));
        f->CmbPeriod->setCurrentIndex(1);
        f->btnSearch->click();
    }
    void awayAndBack() { host.awayAndBack(); }
    int rowOf(const QString& code) const {
        for (int row = 1; row <= f->grdList->MaxRows(); ++row)
            if (f->grdList->Text(ColCode, row) == code) return row;
        return 0;
    }
};

void anotherSeatIssues(const QString& taxCode, const QString& cCode, double supply) {
    Database seat;
    QVERIFY(seat.open(app().DbTaxFile));
    QVERIFY(seat.tryExecute(
        QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, "
                       "DealDate, IssueDate, TradeDate, UserCode) VALUES (?, ?, '와셔', ?, ?, "
                       "'2024-06-03', '', '06-03', '')"),
        {taxCode, cCode, supply, supply / 10}));
}

} // namespace

class TestTotalsRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theLastSearchCountsInAnInvoiceIssuedSince() {
        HostedTotals h;
        h.searchSecondQuarter();
        QCOMPARE(h.f->pnlSum[0]->text(), QStringLiteral("58,000 "));
        const int kana = h.rowOf(QStringLiteral("000001"));
        QVERIFY(kana > 0);
        h.f->grdList->SetActiveCell(ColTraderName, kana);
        // The boxes changed without a search: the list stays the search's.
        h.f->CmbPeriod->setCurrentIndex(0);
        anotherSeatIssues(QStringLiteral("100002"), QStringLiteral("000001"), 20000);
        if (stores().dbTax.onServer()) {
            QVERIFY(
                QTest::qWaitFor([&h] { return h.f->pnlSum[0]->text() == QStringLiteral("78,000 "); }, 5000));
        } else {
            QTest::qWait(kListRefreshMillis + 150);
            QCOMPARE(h.f->pnlSum[0]->text(), QStringLiteral("58,000 ")); // files tell nothing
            h.awayAndBack();
            QCOMPARE(h.f->pnlSum[0]->text(), QStringLiteral("78,000 "));
        }
        QCOMPARE(h.f->grdList->Value(ColSale, h.rowOf(QStringLiteral("000001"))), 70000.0);
        QCOMPARE(h.f->grdList->Text(ColCode, h.f->grdList->ActiveRow()), QStringLiteral("000001"));
        QCOMPARE(h.f->CmbPeriod->currentIndex(), 0); // what the operator chose is left as it is
    }
    void nothingIsReadBeforeAFirstSearch() {
        HostedTotals h;
        anotherSeatIssues(QStringLiteral("100002"), QStringLiteral("000001"), 20000);
        h.awayAndBack();
        QCOMPARE(h.f->grdList->Text(ColCode, 1), QString());
        QCOMPARE(test::scalar(stores().dbTax, QStringLiteral("SELECT count(*) FROM SaleTotal")).toInt(), 0);
    }
};

NB_TEST_MAIN(TestTotalsRefresh)
#include "tst_totals_refresh.moc"
