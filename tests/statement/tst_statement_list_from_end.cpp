// The statement list read from its end: the last statements and the sums at once, the rows
// above them as they are asked for, the same rows in the same order as the list's statement,
// a trader code held twice, statements saved after the count, and a list of ten years. A short
// list (a month's) read whole at once by one statement, its sums those of its rows.
#include "StatementListQuery.h"
#include "StoreFixture.h"
#include "statement/DealListModel.h"
#include "storage/CrossFileQueries.h"
#include "storage/StatementListFromEnd.h"

#include <QDate>
#include <QSqlQuery>
#include <cmath>

using namespace nb;

namespace {

constexpr int kStatements = 2600; // more than the first page and a later one together

QString billNo(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
}

// Statement i dated over 2015-2024 in number order with a few on one day, of trader 000001 or
// 000002, i % 4 + 1 lines totalling 1,000 + 100 VAT a line.
QString dateOf(int i, int count) {
    const QDate first(2015, 1, 1);
    return first.addDays(qint64(i - 1) * 3650 / count).toString(QStringLiteral("yyyy-MM-dd"));
}

bool addStatements(int count) {
    Database& db = stores().dbBill;
    if (!db.beginTransaction()) return false;
    for (int i = 1; i <= count; ++i) {
        const int lines = i % 4 + 1;
        if (!test::exec(
                stores().dbBill,
                QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                               "VALUES (?, ?, ?, ?, ?, ?)"),
                {billNo(i), dateOf(i, count), i % 2 ? QStringLiteral("000001") : QStringLiteral("000002"),
                 1000.0 * lines, 100.0 * lines, lines})) {
            db.rollback();
            return false;
        }
    }
    return db.commit();
}

// The statements and sums the rows of the list hold, walked from the top.
struct Walked {
    double lines = 0, total = 0;
};
Walked walk(const DealListModel& model) {
    Walked walked;
    for (int row = 1; row <= model.masterCount(); ++row) {
        walked.lines += model.listed(row).numBill;
        walked.total += model.listed(row).total;
    }
    return walked;
}

bool addTrader(const QString& code, const QString& name) {
    return test::exec(stores().dbBasic, QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                      {code, name});
}

bool listAll(DealListModel& model, const QString& from = QStringLiteral("2015-01-01"),
             const QString& to = QStringLiteral("2024-12-31")) {
    return model.masterList(stores().dbBasic.path(), from, to, false);
}

} // namespace

class TestStatementListFromEnd : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theLastStatementsAndTheSumsComeWithoutReadingTheRowsAbove() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addStatements(kStatements));
        DealListModel model(stores().dbBill);
        model.masterRows().setReadsAhead(false);
        QVERIFY(listAll(model));
        QCOMPARE(model.masterCount(), kStatements);
        QCOMPARE(model.activeMasterRow(), kStatements + 1);
        QCOMPARE(model.listed(kStatements).billNo, billNo(kStatements));
        QCOMPARE(model.listed(kStatements).cName, QStringLiteral("다라상회"));
        QVERIFY(model.masterRows().isReading());
        double lines = 0;
        for (int i = 1; i <= kStatements; ++i)
            lines += i % 4 + 1;
        QCOMPARE(model.periodCount(), int(lines));
        QCOMPARE(model.periodTotal(), lines * 1100.0);
        QVERIFY(model.masterRows().isReading()); // the sums needed no row
    }

    void theSumsAreThoseOfTheRowsWalkedFromTheTop() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addStatements(kStatements));
        // A statement with a fraction of a won, of a trader that is gone.
        QVERIFY(test::exec(
            stores().dbBill,
            QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                           "VALUES ('900000', '2019-03-03', '999999', 1050.375, 105.0375, 1)")));
        DealListModel model(stores().dbBill);
        model.masterRows().setReadsAhead(false);
        QVERIFY(listAll(model));
        const int count = model.periodCount();
        const double total = model.periodTotal();
        double walkedCount = 0, walkedTotal = 0;
        for (int row = 1; row <= model.masterCount(); ++row) {
            walkedCount += model.listed(row).numBill;
            walkedTotal += model.listed(row).total;
        }
        QVERIFY(!model.masterRows().isReading());
        QCOMPARE(double(count), walkedCount);
        QCOMPARE(total, walkedTotal);
    }

    void theRowsReadFromTheEndAreTheListsRowsInItsOrder() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addStatements(kStatements));
        // Two more statements of one number and one day (an old file's): the rows of equal date
        // and number may come in any order, but all of them come.
        for (int i = 0; i < 2; ++i)
            QVERIFY(
                test::exec(stores().dbBill,
                           QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, "
                                          "NumBill) VALUES ('000700', ?, '000001', 10, 1, 1)"),
                           {dateOf(700, kStatements)}));
        DealListModel model(stores().dbBill);
        QVERIFY(listAll(model));
        const QList<QVariantList> expected =
            test::statementListThroughQt(QStringLiteral("2015-01-01"), QStringLiteral("2024-12-31"));
        QCOMPARE(model.masterCount(), int(expected.size()));
        QCOMPARE(model.masterCount(), kStatements + 2);
        double shownTotal = 0, wantedTotal = 0;
        for (int row = model.masterCount(); row >= 1; --row) {
            const ListedStatement shown = model.listed(row);
            const QVariantList& want = expected[row - 1];
            QVERIFY2(shown.billDate == want[ColBillDate - 1].toString() &&
                         shown.billNo == want[ColMasterBillNo - 1].toString(),
                     qPrintable(QStringLiteral("row %1").arg(row)));
            if (shown.billNo != QStringLiteral("000700")) {
                QCOMPARE(shown.cCode, want[ColCCode - 1].toString());
                QCOMPARE(shown.cName, want[ColCName - 1].toString());
            }
            shownTotal += shown.total;
            wantedTotal += want[ColTotal - 1].toDouble();
        }
        QCOMPARE(shownTotal, wantedTotal);
    }

    void aTraderCodeHeldTwiceListsItsStatementsTwiceAndCountsThemTwice() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사 본점")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addStatements(500));
        DealListModel model(stores().dbBill);
        QVERIFY(listAll(model));
        QCOMPARE(model.masterCount(), 750); // 250 statements of 000001, each twice
        double walked = 0;
        for (int row = 1; row <= model.masterCount(); ++row)
            walked += model.listed(row).total;
        QCOMPARE(model.periodTotal(), walked);
    }

    void aStatementSavedAfterTheCountIsNotReadAgainAsAnOlderRow() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addStatements(kStatements));
        DealListModel model(stores().dbBill);
        model.masterRows().setReadsAhead(false);
        QVERIFY(listAll(model));
        QVERIFY(model.masterRows().isReading());
        // Saved on an early day after the list was counted: it does not come among the rows
        // read later, so the rows stay as many as counted.
        QVERIFY(test::exec(
            stores().dbBill,
            QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                           "VALUES ('800000', '2015-01-02', '000001', 1, 0, 1)")));
        QCOMPARE(model.listed(1).billNo, billNo(1));
        QCOMPARE(model.masterCount(), kStatements);
        for (int row = 1; row <= model.masterCount(); ++row)
            QVERIFY(model.listed(row).billNo != QStringLiteral("800000"));
        QVERIFY(listAll(model)); // listed anew it is there
        QCOMPARE(model.masterCount(), kStatements + 1);
    }

    void choosingTheFirstRowOfATenYearListShowsTheFirstStatement() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addStatements(kStatements));
        QVERIFY(test::exec(
            stores().dbBill,
            QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, "
                           "Amount, VAT) VALUES ('000001', 1, '첫 품목', 'EA', 1, 2000, 0, 2000, 200)")));
        DealListModel model(stores().dbBill);
        model.masterRows().setReadsAhead(false);
        QVERIFY(listAll(model));
        QVERIFY(model.masterRows().isReading());
        model.chooseMaster(1);
        QVERIFY(!model.masterRows().isReading());
        QCOMPARE(model.selectedBillNo(), billNo(1));
        QCOMPARE(model.listed(1).billDate, QStringLiteral("2015-01-01"));
        QCOMPARE(model.traderCode(), QStringLiteral("000001"));
        QCOMPARE(model.lines().size(), 1);
        QCOMPARE(model.lines().first().pName, QStringLiteral("첫 품목"));
        QCOMPARE(model.sum(), 2200.0);
    }

    void aShortListIsReadWholeAtOnceInTheListsOrder() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addStatements(kStatements));
        // A year of it: more rows than the first page, fewer than a later one.
        const QString from = QStringLiteral("2019-01-01"), to = QStringLiteral("2019-12-31");
        const QList<QVariantList> expected = test::statementListThroughQt(from, to);
        QVERIFY(expected.size() > StatementListFromEnd::kFirstPage);
        QVERIFY(expected.size() < StatementListFromEnd::kLaterPage);
        StatementListFromEnd rows(stores().dbBill, stores().dbBasic.path(), from, to, QString());
        QVERIFY(rows.open());
        QVERIFY(!rows.fromEnd());
        QCOMPARE(rows.rows(), int(expected.size()));
        QCOMPARE(rows.rowsAtHand(), rows.rows());
        DealListModel model(stores().dbBill);
        model.masterRows().setReadsAhead(false);
        QVERIFY(listAll(model, from, to));
        QVERIFY(!model.masterRows().isReading()); // every row there, nothing left for later
        QCOMPARE(model.masterCount(), int(expected.size()));
        QCOMPARE(model.activeMasterRow(), model.masterCount() + 1);
        for (int row = 1; row <= model.masterCount(); ++row) {
            const ListedStatement shown = model.listed(row);
            const QVariantList& want = expected[row - 1];
            QCOMPARE(shown.billDate, want[ColBillDate - 1].toString());
            QCOMPARE(shown.billNo, want[ColMasterBillNo - 1].toString());
            QCOMPARE(shown.cName, want[ColCName - 1].toString());
            QCOMPARE(shown.total, want[ColTotal - 1].toDouble());
        }
    }

    // The short list is read into rows as wide as the list's and handed to it whole; the row
    // number that ordered them is not left in the columns after the list's six.
    void aShortListIsHandedToTheListWholeWithNothingAfterItsColumns() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addStatements(kStatements));
        const QString from = QStringLiteral("2019-01-01"), to = QStringLiteral("2019-12-31");
        StatementListFromEnd rows(stores().dbBill, stores().dbBasic.path(), from, to, QString());
        rows.setListWidth(ColSumTotal);
        QVERIFY(rows.open());
        std::vector<QVariant> block;
        QVERIFY(!rows.takeRowsAtHand(block, ColSumTotal + 1)); // not laid out for that width
        QVERIFY(rows.takeRowsAtHand(block, ColSumTotal));
        QCOMPARE(block.size(), size_t(rows.rows()) * ColSumTotal);
        QCOMPARE(rows.rowsAtHand(), 0);
        QVariant out[6];
        QVERIFY(!rows.next(out, 6)); // handed over: nothing is left to read
        const QList<QVariantList> expected = test::statementListThroughQt(from, to);
        QCOMPARE(int(expected.size()), rows.rows());
        for (int row = 0; row < rows.rows(); ++row) {
            const QVariant* got = &block[size_t(row) * ColSumTotal];
            QCOMPARE(got[ColMasterBillNo - 1].toString(), expected[row][ColMasterBillNo - 1].toString());
            QVERIFY(!got[ColSumCount - 1].isValid());
            QVERIFY(!got[ColSumTotal - 1].isValid());
        }
        DealListModel model(stores().dbBill);
        QVERIFY(listAll(model, from, to));
        QVERIFY(!model.masterRows().isReading());
        for (int row = 1; row <= model.masterCount(); ++row)
            QVERIFY(!model.masterRows().listValue(ColSumCount, row).isValid());
    }

    // The short list comes from the date index in the order the statements were written; the
    // numbers of one day are put in order after it, a missing or empty number first (in the order
    // written), and a later number written earlier on another day stays on its day.
    void aShortListOrdersTheNumbersOfADayWrittenOutOfOrder() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        const QList<QVariant> written{QStringLiteral("000900"), QStringLiteral("000300"),
                                      QStringLiteral("000100"), QVariant(),
                                      QStringLiteral("000200"), QStringLiteral("")};
        const QString day = QStringLiteral("2020-05-02");
        for (const QVariant& no : written)
            QVERIFY(test::exec(
                stores().dbBill,
                QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, "
                               "NumBill) VALUES (?, ?, '000001', 10, 1, 1)"),
                {no, no == QVariant(QStringLiteral("000900")) ? QStringLiteral("2020-05-01") : day}));
        DealListModel model(stores().dbBill);
        QVERIFY(listAll(model, QStringLiteral("2020-05-01"), QStringLiteral("2020-05-31")));
        QStringList shown;
        for (int row = 1; row <= model.masterCount(); ++row)
            shown << model.listed(row).billDate + u' ' + model.listed(row).billNo;
        QCOMPARE(shown, QStringList({QStringLiteral("2020-05-01 000900"), day + u' ', day + u' ',
                                     day + QStringLiteral(" 000100"), day + QStringLiteral(" 000200"),
                                     day + QStringLiteral(" 000300")}));
        // The missing number (written before the empty one) comes first of the two.
        QVERIFY(model.masterRows().listValue(ColMasterBillNo, 2).isNull());
        QCOMPARE(model.masterRows().listValue(ColMasterBillNo, 3).toString(), QString());
        QVERIFY(!model.masterRows().listValue(ColMasterBillNo, 3).isNull());
        const QList<QVariantList> expected =
            test::statementListThroughQt(QStringLiteral("2020-05-01"), QStringLiteral("2020-05-31"));
        QCOMPARE(model.masterCount(), int(expected.size()));
    }

    // Texts compare as their code points (UTF-8 byte order), a character beyond the basic plane
    // after every one inside it; a missing number as an empty one, before any other.
    void theListOrderComparesTextsAsTheEnginesDo() {
        const QString beyond = QString::fromUcs4(U"\U0001F600");
        std::vector<QVariant> rows;
        const auto add = [&rows](const QString& date, const QVariant& no, qlonglong rowid) {
            rows.insert(rows.end(), {date, QVariant(), 1, 1.0, no, QVariant(), rowid});
        };
        add(QStringLiteral("2020-01-01"), beyond, 1);
        add(QStringLiteral("2020-01-01"), QString(QChar(0xFF21)), 2);
        add(QStringLiteral("2020-01-01"), QStringLiteral("가"), 3);
        add(QStringLiteral("2020-01-01"), QVariant(), 5);
        add(QStringLiteral("2020-01-01"), QStringLiteral(""), 4);
        putInListOrder(rows, 7);
        QStringList order;
        for (size_t at = 0; at < rows.size(); at += 7)
            order << QString::number(rows[at + 6].toLongLong());
        QCOMPARE(order, QStringList({QStringLiteral("4"), QStringLiteral("5"), QStringLiteral("3"),
                                     QStringLiteral("2"), QStringLiteral("1")}));
    }

    void theSumsOfAMonthAndOfTenYearsAreThoseOfTheirRowsWalked() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회 지점"))); // held twice
        QVERIFY(addStatements(kStatements));
        // A fraction of a won, of a trader that is gone, in the month and in the ten years.
        QVERIFY(test::exec(
            stores().dbBill,
            QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                           "VALUES ('900000', '2019-03-03', '999999', 1050.375, 105.0375, 1)")));
        DealListModel month(stores().dbBill);
        month.masterRows().setReadsAhead(false);
        QVERIFY(listAll(month, QStringLiteral("2019-03-01"), QStringLiteral("2019-03-31")));
        QVERIFY(!month.masterRows().isReading());
        const Walked monthWalked = walk(month);
        QVERIFY(month.masterCount() > 1);
        QCOMPARE(double(month.periodCount()), monthWalked.lines);
        QCOMPARE(month.periodTotal(), monthWalked.total);
        QVERIFY(month.periodTotal() != std::floor(month.periodTotal())); // the fraction is in it

        DealListModel tenYears(stores().dbBill);
        tenYears.masterRows().setReadsAhead(false);
        QVERIFY(listAll(tenYears));
        QVERIFY(tenYears.masterRows().isReading()); // read from its end
        const int count = tenYears.periodCount();
        const double total = tenYears.periodTotal();
        const Walked tenWalked = walk(tenYears);
        QCOMPARE(tenYears.masterCount(), kStatements + 1 + kStatements / 2); // 000002 twice
        QCOMPARE(double(count), tenWalked.lines);
        QCOMPARE(total, tenWalked.total);
    }

    void aListOfOneStatementMoreThanAPageIsReadFromItsEnd() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        const int page = StatementListFromEnd::kLaterPage;
        QVERIFY(addStatements(page + 1));
        const QString from = QStringLiteral("2015-01-01"), to = QStringLiteral("2024-12-31");
        StatementListFromEnd longer(stores().dbBill, stores().dbBasic.path(), from, to, QString());
        QVERIFY(longer.open());
        QVERIFY(longer.fromEnd());
        QCOMPARE(longer.rows(), page + 1);
        QCOMPARE(longer.rowsAtHand(), 0);
        // One statement fewer in the dates: read whole.
        QVERIFY(test::exec(stores().dbBill,
                           QStringLiteral("UPDATE Master SET BillDate = '2025-01-01' WHERE "
                                          "BillNo = ?"),
                           {billNo(page + 1)}));
        StatementListFromEnd whole(stores().dbBill, stores().dbBasic.path(), from, to, QString());
        QVERIFY(whole.open());
        QVERIFY(!whole.fromEnd());
        QCOMPARE(whole.rows(), page);
    }

    void theListOfOneTraderCountsOnlyItsOwnStatementsToBeShort() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")));
        QVERIFY(addTrader(QStringLiteral("000002"), QStringLiteral("다라상회")));
        QVERIFY(addStatements(kStatements)); // 1,300 each over ten years
        DealListModel model(stores().dbBill);
        model.masterRows().setReadsAhead(false);
        model.setTrader(QStringLiteral("000002"), QStringLiteral("다라상회"));
        QVERIFY(model.masterList(stores().dbBasic.path(), QStringLiteral("2015-01-01"),
                                 QStringLiteral("2024-12-31"), true));
        QVERIFY(!model.masterRows().isReading());
        QCOMPARE(model.masterCount(), kStatements / 2);
        for (int row = 1; row <= model.masterCount(); ++row)
            QCOMPARE(model.listed(row).cCode, QStringLiteral("000002"));
        QCOMPARE(model.listed(model.masterCount()).billNo, billNo(kStatements));
        QCOMPARE(double(model.periodCount()), walk(model).lines);
    }

    void anEmptyRangeHasOnlyTheEmptyRow() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addStatements(10));
        DealListModel model(stores().dbBill);
        QVERIFY(listAll(model, QStringLiteral("1990-01-01"), QStringLiteral("1990-12-31")));
        QCOMPARE(model.masterCount(), 0);
        QCOMPARE(model.masterRowCount(), 1);
        QCOMPARE(model.periodCount(), 0);
        QCOMPARE(model.periodTotal(), 0.0);
        QVERIFY(!model.masterRows().isReading());
    }
};

QTEST_MAIN(TestStatementListFromEnd)
#include "tst_statement_list_from_end.moc"
