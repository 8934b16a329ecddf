// The invoice screen's list of the receiver's issued invoices shows what another seat issued:
// read again when the operator comes back to the screen (both engines), and on the server as soon
// as the other seat's save is told. The invoice chosen in the list stays chosen, and the lines
// typed into the form stay as they are.
#include "MdiHost.h"
#include "TaxScreenKit.h"
#include "common/grid/Grid.h"

using namespace nb;

namespace {

struct HostedInvoice {
    test::TestHome home;
    test::MdiHost host;
    FrmTax* f = nullptr;
    HostedInvoice() {
        test::fixClock();
        test::openStores();
        test::addScreenData();
        test::installStoreLookups();
        test::script();
        f = new FrmTax;
        host.host(f, QSize(1280, 900));
    }
    ~HostedInvoice() { setClock({}); }
    // Typed lines keep the screen's read waiting: the tests say when they expect it.
    void awayAndBack() { host.awayAndBack(false); }
    int listed() const { return f->ListRow() - 1; }
};

// Another seat issues an invoice of one line to the trader on a connection of its own.
void anotherSeatIssues(const QString& taxCode, const QString& cCode) {
    Database seat;
    QVERIFY(seat.open(app().DbTaxFile));
    QVERIFY(seat.tryExecute(QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, "
                                           "DealDate, IssueDate, TradeDate, UserCode) VALUES (?, ?, '와셔', "
                                           "30000, 3000, '2024-05-09', '', '05-09', '')"),
                            {taxCode, cCode}));
}

} // namespace

class TestInvoiceListRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anInvoiceAnotherSeatIssuedJoinsTheReceiversList() {
        HostedInvoice h;
        test::chooseReceiver(*h.f, QStringLiteral("가나"));
        QCOMPARE(h.listed(), 2);
        h.f->grdList->SetActiveCell(1, 1); // the operator's place: the first invoice
        anotherSeatIssues(QStringLiteral("100002"), QStringLiteral("000001"));
        if (stores().dbTax.onServer()) {
            QVERIFY(QTest::qWaitFor([&h] { return h.listed() == 3; }, 5000));
        } else {
            QTest::qWait(kListRefreshMillis + 150);
            QCOMPARE(h.listed(), 2); // files tell nothing: the next activation reads
            h.awayAndBack();
            QCOMPARE(h.listed(), 3);
        }
        QCOMPARE(h.f->grdList->Text(5, 3), QStringLiteral("100002"));
        QCOMPARE(h.f->grdList->ActiveRow(), 1);
        QCOMPARE(h.f->grdList->Text(5, h.f->grdList->ActiveRow()), QStringLiteral("100000"));
    }
    void anotherReceiversInvoiceLeavesTheListAsItWas() {
        HostedInvoice h;
        test::chooseReceiver(*h.f, QStringLiteral("가나"));
        anotherSeatIssues(QStringLiteral("100002"), QStringLiteral("000002"));
        h.awayAndBack();
        QCOMPARE(h.listed(), 2);
    }
    void theLinesTypedIntoTheFormStayWhenTheListIsReadAgain() {
        HostedInvoice h;
        test::chooseReceiver(*h.f, QStringLiteral("가나"));
        h.f->pummok(0)->setFocus();
        test::typeText(h.f->pummok(0), QStringLiteral("앵글"));
        anotherSeatIssues(QStringLiteral("100002"), QStringLiteral("000001"));
        h.awayAndBack();
        QVERIFY(QTest::qWaitFor([&h] { return h.listed() == 3; }, 5000));
        QCOMPARE(h.f->pummok(0)->text(), QStringLiteral("앵글"));
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE PName = ?"), {QStringLiteral("앵글")}), 1);
    }
};

NB_TEST_MAIN(TestInvoiceListRefresh)
#include "tst_invoice_list_refresh.moc"
