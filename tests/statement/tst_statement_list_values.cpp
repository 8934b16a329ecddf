// The statement list's values as the list reads them, beside the same rows read through Qt's SQL
// driver: the same values of the same types in the same order, and the same sums, for a month
// (read whole by one statement) and for ten years (read from the end, the count and sums first);
// a missing trader's name and a missing amount stay missing, a negative fractional amount stays
// exact, a Korean name stays whole.
#include "StatementListQuery.h"
#include "StoreFixture.h"
#include "common/grid/GridList.h"
#include "statement/DealListModel.h"
#include "storage/StatementListFromEnd.h"

#include <QDate>
#include <QSqlQuery>
#include <algorithm>

using namespace nb;

namespace {

constexpr int kStatements = 2600; // ten years, more than a later page holds
constexpr int kColumns = 6;
const QString kTenYearsFrom = QStringLiteral("2015-01-01");
const QString kTenYearsTo = QStringLiteral("2024-12-31");

QString dateOf(int i) {
    return QDate(2015, 1, 1)
        .addDays(qint64(i - 1) * 3650 / kStatements)
        .toString(QStringLiteral("yyyy-MM-dd"));
}

bool addTrader(const QString& code, const QString& name) {
    return test::exec(stores().dbBasic, QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                      {code, name});
}

// Statements over ten years of traders 000001, 000002 and 000009 (no such trader), with whole
// and fractional amounts, some below zero.
bool addStatements() {
    Database& db = stores().dbBill;
    if (!db.beginTransaction()) return false;
    for (int i = 1; i <= kStatements; ++i) {
        const QString trader = i % 3 == 0   ? QStringLiteral("000009")
                               : i % 3 == 1 ? QStringLiteral("000001")
                                            : QStringLiteral("000002");
        const double amount = i % 5 == 0 ? -1000.25 * i : 1000.0 * i;
        if (!test::exec(
                stores().dbBill,
                QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                               "VALUES (?, ?, ?, ?, ?, ?)"),
                {QStringLiteral("%1").arg(i, 6, 10, QChar(u'0')), dateOf(i), trader, amount, amount / 10,
                 i % 4 + 1})) {
            db.rollback();
            return false;
        }
    }
    return db.commit();
}

bool fillStores() {
    return addTrader(QStringLiteral("000001"), QStringLiteral("가나상사")) &&
           addTrader(QStringLiteral("000002"), QStringLiteral("(주)다라상회 부산 지점")) && addStatements();
}

// Every row the list gives, in the list's order (a list read from the end is turned round).
QList<QVariantList> rowsOf(StatementListFromEnd& list) {
    QList<QVariantList> rows;
    QVariant row[kColumns];
    while (list.next(row, kColumns))
        rows << QVariantList(row, row + kColumns);
    if (list.fromEnd()) std::reverse(rows.begin(), rows.end());
    return rows;
}

// The two readings agree value by value, type and all; a message naming the first difference.
QString firstDifference(const QList<QVariantList>& read, const QList<QVariantList>& driver) {
    if (read.size() != driver.size())
        return QStringLiteral("%1 rows beside %2").arg(read.size()).arg(driver.size());
    for (qsizetype r = 0; r < read.size(); ++r)
        for (int c = 0; c < kColumns; ++c) {
            const QVariant& a = read[r][c];
            const QVariant& b = driver[r][c];
            if (a.metaType() != b.metaType() || a.isNull() != b.isNull() || a != b)
                return QStringLiteral("row %1 column %2: %3 (%4) beside %5 (%6)")
                    .arg(r + 1)
                    .arg(c + 1)
                    .arg(a.toString(), QString::fromLatin1(a.typeName()), b.toString(),
                         QString::fromLatin1(b.typeName()));
        }
    return QString();
}

void compareWithTheDriver(const QString& from, const QString& to, bool fromEnd) {
    const QList<QVariantList> driver = test::statementListThroughQt(from, to);
    QVERIFY(!driver.isEmpty());
    StatementListFromEnd list(stores().dbBill, stores().dbBasic.path(), from, to, QString());
    QVERIFY(list.open());
    QCOMPARE(list.fromEnd(), fromEnd);
    QCOMPARE(list.rows(), int(driver.size()));
    double lines = 0, total = 0;
    for (const QVariantList& row : driver) {
        lines += numberOf(row[ColNumBill - 1]);
        total += numberOf(row[ColTotal - 1]);
    }
    QCOMPARE(list.lines(), lines);
    QCOMPARE(list.total(), total);
    const QString difference = firstDifference(rowsOf(list), driver);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

} // namespace

class TestStatementListValues : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aMonthsRowsAndSumsAreThoseTheDriverReads() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(fillStores());
        compareWithTheDriver(QStringLiteral("2019-05-01"), QStringLiteral("2019-06-30"), false);
    }

    void tenYearsRowsAndSumsAreThoseTheDriverReads() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(fillStores());
        compareWithTheDriver(kTenYearsFrom, kTenYearsTo, true);
    }

    void aMissingNameAndAmountANegativeFractionalAmountAndAKoreanNameSurvive() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(addTrader(QStringLiteral("000001"), QStringLiteral("(주)똠햏 상사 · 서울")));
        const QString insert = QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, "
                                              "TotVat, NumBill) VALUES (?, ?, ?, ?, ?, ?)");
        QVERIFY(test::exec(stores().dbBill, insert,
                           {QStringLiteral("000001"), QStringLiteral("2024-05-02"), QStringLiteral("000001"),
                            -1234.5, -0.25, 3}));
        // A trader that is no more, a total never written.
        QVERIFY(test::exec(stores().dbBill, insert,
                           {QStringLiteral("000002"), QStringLiteral("2024-05-03"), QStringLiteral("000404"),
                            500.0, QVariant(QMetaType::fromType<double>()), 1}));
        StatementListFromEnd list(stores().dbBill, stores().dbBasic.path(), QStringLiteral("2024-05-01"),
                                  QStringLiteral("2024-05-31"), QString());
        QVERIFY(list.open());
        const QList<QVariantList> rows = rowsOf(list);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows[0][ColBillDate - 1].toString(), QStringLiteral("2024-05-02"));
        QCOMPARE(rows[0][ColCName - 1].toString(), QStringLiteral("(주)똠햏 상사 · 서울"));
        QCOMPARE(rows[0][ColTotal - 1].metaType(), QMetaType::fromType<double>());
        QCOMPARE(rows[0][ColTotal - 1].toDouble(), -1234.75);
        QCOMPARE(rows[0][ColNumBill - 1].toLongLong(), 3);
        const int wholeType = rows[0][ColNumBill - 1].typeId();
        QVERIFY2(wholeType == QMetaType::Int || wholeType == QMetaType::LongLong ||
                     wholeType == QMetaType::ULongLong,
                 rows[0][ColNumBill - 1].typeName());
        QVERIFY(rows[1][ColCName - 1].isNull());
        QVERIFY(rows[1][ColTotal - 1].isNull());
        QCOMPARE(rows[1][ColCCode - 1].toString(), QStringLiteral("000404"));
        QCOMPARE(list.total(), -1234.75);
        QCOMPARE(list.lines(), 4.0);
        QCOMPARE(firstDifference(rows, test::statementListThroughQt(QStringLiteral("2024-05-01"),
                                                                    QStringLiteral("2024-05-31"))),
                 QString());
    }
};

NB_TEST_MAIN(TestStatementListValues)
#include "tst_statement_list_values.moc"
