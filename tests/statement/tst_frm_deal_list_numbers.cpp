// Numbers typed into the statement screen's lines that the store cannot hold: the cell is
// refused with the overflow report, its old text comes back, and the head's totals stay equal
// to its lines; a correction afterwards moves line and head together.
#include "DealListKit.h"
#include "storage/Stores.h"

using namespace nb;

namespace {

using Screen = test::DealScreen;
using test::typeIntoCell;

bool headEqualsLines(const QString& billNo) {
    const double lines =
        test::scalar(stores().dbBill, QStringLiteral("SELECT sum(Amount) FROM Detail WHERE BillNo = ?"),
                     {billNo})
            .toDouble();
    return test::headValue(billNo, QStringLiteral("TotAmount")) == lines;
}

// A statement with one line of 볼트 (1,000 a piece, quantity 1) typed on the screen; the
// cursor waits on its quantity.
void oneLineOfBolts(FrmDealList& f) {
    test::chooseTrader(f, QStringLiteral("가나"));
    test::typeProductAndChoose(QStringLiteral("볼트"), QStringLiteral("000001"));
}

} // namespace

class TestFrmDealListNumbers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // The cells take at most twelve digits, so only quantity times price gets past the column.
    void aQuantityWhoseAmountTheStoreCannotHoldIsRefused() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        oneLineOfBolts(f);
        const QString no = QStringLiteral("000001");
        test::goToCell(f, ColPrice, 1);
        typeIntoCell(QStringLiteral("100000000000"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Price")).toDouble(), 1e11);
        msgs.clear();
        test::goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("100000000000"));
        QVERIFY(!msgs.boxes().empty());
        QVERIFY2(msgs.boxes().front().text.contains(QStringLiteral("Overflow")),
                 qPrintable(msgs.boxes().front().text));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Quant")).toDouble(), 1.0);
        QCOMPARE(f.spDetail->Text(ColQuant, 1).trimmed(), QStringLiteral("1"));
        QVERIFY(headEqualsLines(no));
        // Corrected, line and head move together.
        test::goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("2"));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Quant")).toDouble(), 2.0);
        QVERIFY(headEqualsLines(no));
    }
    void aPriceWhoseAmountTheStoreCannotHoldIsRefused() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        oneLineOfBolts(f);
        const QString no = QStringLiteral("000001");
        typeIntoCell(QStringLiteral("100000000000")); // the quantity: 1e11 x 1,000 still fits
        QVERIFY(headEqualsLines(no));
        msgs.clear();
        test::goToCell(f, ColPrice, 1);
        typeIntoCell(QStringLiteral("100000000000")); // 1e11 x 1e11 does not
        QVERIFY(!msgs.boxes().empty());
        QVERIFY2(msgs.boxes().front().text.contains(QStringLiteral("Overflow")),
                 qPrintable(msgs.boxes().front().text));
        QCOMPARE(test::lineValue(no, 1, QStringLiteral("Price")).toDouble(), 1000.0);
        QCOMPARE(f.spDetail->Text(ColPrice, 1).trimmed(), QStringLiteral("1,000"));
        QVERIFY(headEqualsLines(no));
    }
    void lettersNeverReachANumberCell() {
        Screen s;
        test::script();
        FrmDealList& f = s.open();
        oneLineOfBolts(f);
        test::goToCell(f, ColQuant, 1);
        typeIntoCell(QStringLiteral("1e200"));
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Quant")).toDouble(), 1200.0);
        QVERIFY(headEqualsLines(QStringLiteral("000001")));
    }
};

NB_TEST_MAIN(TestFrmDealListNumbers)
#include "tst_frm_deal_list_numbers.moc"
