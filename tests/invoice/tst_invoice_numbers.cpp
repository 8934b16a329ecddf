// A new invoice takes its number inside the save that stores its rows; an amount the store
// cannot hold is refused; a trader deleted with its business leaves no row under a number.
#include "InvoiceFixture.h"
#include "invoice/InvoiceStore.h"
#include "master/TraderRecords.h"

using namespace nb;

namespace {

InvoiceHead headOf(const QString& cCode) {
    return {cCode, QStringLiteral("2024-05-10"), QString(), QStringLiteral("123-45-67890"),
            QStringLiteral("영수")};
}

QList<InvoiceLine> oneLine(const QString& quantity = QStringLiteral("3")) {
    return {{QStringLiteral("05-10"), QStringLiteral("볼트"), QStringLiteral("EA"), quantity,
             QStringLiteral("1,000"), QStringLiteral("2,727"), QStringLiteral("273")}};
}

} // namespace

class TestInvoiceNumbers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aNewInvoiceTakesTheNumberAfterTheHighestInsideItsSave() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        QVERIFY(test::addInvoiceRow(QStringLiteral("100004"), QStringLiteral("000009"), QStringLiteral("a"),
                                    1, 0));
        QCOMPARE(StoreNewInvoice(stores().dbTax, headOf(QStringLiteral("000001")), oneLine()),
                 QStringLiteral("100005"));
        QCOMPARE(StoreNewInvoice(stores().dbTax, headOf(QStringLiteral("000002")), oneLine()),
                 QStringLiteral("100006"));
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = '100006' AND CCode = '000002'")), 1);
        QVERIFY(!stores().dbTax.inTransaction());
        QVERIFY(msgs.boxes().empty());
    }
    void anAmountTheStoreCannotHoldIsRefusedAndNothingStored() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        QVERIFY(!StoreNewInvoice(stores().dbTax, headOf(QStringLiteral("000001")),
                                 oneLine(QStringLiteral("1e300"))));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("Error 6 (Overflow)")));
        QCOMPARE(test::invoiceRows(), 0);
        QVERIFY(!stores().dbTax.inTransaction());
    }
    void aDeletedTradersNumberHoldsOnlyTheNextInvoicesRows() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::script();
        QVERIFY(
            test::exec(stores().dbBasic,
                       QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES ('000001', '가나상사')")));
        QCOMPARE(StoreNewInvoice(stores().dbTax, headOf(QStringLiteral("000001")), oneLine()),
                 QStringLiteral("100000"));
        QVERIFY(DeleteTraderWithBusiness(QStringLiteral("000001")));
        // The invoice is its rows: with them gone its number is free and nothing of it remains.
        QCOMPARE(StoreNewInvoice(stores().dbTax, headOf(QStringLiteral("000002")), oneLine()),
                 QStringLiteral("100000"));
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = '100000'")), 1);
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE CCode = '000001'")), 0);
    }
};

NB_TEST_MAIN(TestInvoiceNumbers)
#include "tst_invoice_numbers.moc"
