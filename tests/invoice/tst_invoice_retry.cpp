// An invoice save that another seat's save broke off: on the server it is run again quietly,
// with its number read anew, until it is whole or the tries are spent; on the store files it
// is tried once, as ever.
#include "ForcedConflict.h"
#include "InvoiceFixture.h"
#include "invoice/InvoiceStore.h"
#include "storage/Database.h"

using namespace nb;

namespace {

const InvoiceHead kHead{QStringLiteral("000001"), QStringLiteral("2024-05-10"), QString(),
                        QStringLiteral("123-45-67890"), QStringLiteral("영수")};

QList<InvoiceLine> twoLines() {
    return {{QStringLiteral("05-10"), QStringLiteral("볼트"), QStringLiteral("EA"), QStringLiteral("3"),
             QStringLiteral("1,000"), QStringLiteral("3,000"), QStringLiteral("300")},
            {QStringLiteral("05-10"), QStringLiteral("너트"), QStringLiteral("EA"), QStringLiteral("2"),
             QStringLiteral("500"), QStringLiteral("1,000"), QStringLiteral("100")}};
}

bool onServer() {
    return stores().dbTax.onServer();
}

// The second line of each try meets the conflict: a try leaves a written line behind unless
// its rollback takes it.
test::ConflictPlan secondLineConflicts(int times) {
    return {QStringLiteral("NewAcount"), QStringLiteral("INSERT"), 1, times};
}

// What the busy store's box begins with, on both engines.
QString busySentence() {
    return storeFaultText(5, QString());
}

} // namespace

class TestInvoiceRetry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aNewInvoiceBrokenOffOnceIsSavedWholeUnderOneNumber() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addInvoiceRow(QStringLiteral("100006"), QStringLiteral("000002"), QStringLiteral("a"),
                                    1, 0));
        auto& msgs = test::script();
        test::ForcedConflict conflict(stores().dbTax,
                                      {QStringLiteral("NewAcount"), QStringLiteral("INSERT"), 1, 1});
        QVERIFY(conflict.installed());
        const std::optional<QString> code = StoreNewInvoice(stores().dbTax, kHead, twoLines());
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(!stores().dbTax.inTransaction());
        if (!onServer()) {
            // The files know no crossing seats: the one try's failure is told and nothing is kept.
            QVERIFY(!code);
            QCOMPARE(conflict.reached(), 2);
            QCOMPARE(msgs.boxes().size(), size_t(1));
            QVERIFY(msgs.last().text.startsWith(busySentence()));
            QCOMPARE(test::invoiceRows(QStringLiteral("WHERE CCode = '000001'")), 0);
            return;
        }
        QCOMPARE(code, QStringLiteral("100007"));
        QCOMPARE(conflict.reached(), 4); // two lines a try, the first try broken off at its second
        QVERIFY(msgs.records().empty());
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE CCode = '000001'")), 2);
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = '100007'")), 2);
        QCOMPARE(test::scalar(stores().dbTax, QStringLiteral("SELECT SUM(TradeKum) FROM NewAcount WHERE "
                                                             "TaxCode = '100007'"))
                     .toDouble(),
                 4000.0);
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("100008"));
    }
    void aConflictThatStaysEndsInOneBoxAndNothingSaved() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        test::ForcedConflict conflict(stores().dbTax, secondLineConflicts(-1));
        QVERIFY(conflict.installed());
        QVERIFY(!StoreNewInvoice(stores().dbTax, kHead, twoLines()));
        // Four tries on the server, the first broken off at its second line, the others at their
        // first; one try on the files.
        QCOMPARE(conflict.raised(), onServer() ? kSaveTries : 1);
        QCOMPARE(conflict.reached(), onServer() ? 1 + kSaveTries : 2);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.startsWith(busySentence()));
        QCOMPARE(test::invoiceRows(), 0);
        QVERIFY(!stores().dbTax.inTransaction());
        QCOMPARE(NextTaxCode(stores().dbTax), kFirstTaxCode);
    }
    void theRowsOfAGivenNumberBrokenOffOnceAreSavedOnce() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        test::ForcedConflict conflict(stores().dbTax, secondLineConflicts(1));
        QVERIFY(conflict.installed());
        const bool saved = InsertInvoiceRows(stores().dbTax, QStringLiteral("100050"), kHead, twoLines());
        QCOMPARE(saved, onServer());
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = '100050'")), onServer() ? 2 : 0);
        QCOMPARE(msgs.boxes().size(), size_t(onServer() ? 0 : 1));
        QCOMPARE(conflict.reached(), onServer() ? 4 : 2);
    }
    void aDeleteBrokenOffOnceDeletesEveryRowWithoutABox() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000001"), QStringLiteral("a"),
                                    1, 0));
        QVERIFY(test::addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000001"), QStringLiteral("b"),
                                    1, 0));
        auto& msgs = test::script();
        test::ForcedConflict conflict(stores().dbTax,
                                      {QStringLiteral("NewAcount"), QStringLiteral("DELETE"), 1, 1});
        QVERIFY(conflict.installed());
        // The files ask a busy statement again within their busy wait; the server runs the save again.
        QVERIFY(DeleteInvoice(stores().dbTax, QStringLiteral("100001")));
        QCOMPARE(test::invoiceRows(), 0);
        QVERIFY(msgs.records().empty());
        QCOMPARE(conflict.raised(), 1);
        QCOMPARE(conflict.reached(), 4); // each row of each try
    }
};

NB_TEST_MAIN(TestInvoiceRetry)
#include "tst_invoice_retry.moc"
