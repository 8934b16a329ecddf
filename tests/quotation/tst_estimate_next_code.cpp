// A new quotation's number read from the month's end of the index of running codes: the same
// number as reading the whole month gives, for every kind of month; the plan that reads a few
// entries of the index on either engine; and the start-up step that lays the index down on a
// store made before it.
#include "QuotationFixture.h"
#include "invoice/InvoiceStore.h"
#include "quotation/clsEstimate.h"
#include "storage/StoreLayout.h"

#include <QSqlQuery>

using namespace nb;

namespace {

// A statement of the test's own through the store's road; its engine's words printed on failure.
bool run(Database& db, const QString& sql) {
    if (db.tryExecute(sql)) return true;
    qWarning("%s: %s", qPrintable(sql), qPrintable(db.lastErrorDescription()));
    return false;
}

const QStringList kIndexes{QStringLiteral("EstiBase_RunningCode"), QStringLiteral("Estimate_RunningCode")};

// The number as reading the whole month gives it: every code of the month, heads and lines,
// written in digits, the longest first and then the highest text; the first that is a running
// number is the month's last.
QString wholeMonthNextCode(const QString& date) {
    const QString month = date.left(4) + date.mid(5, 2);
    QSqlQuery q(stores().dbEstimate.connection());
    const QString sql =
        QStringLiteral("SELECT c FROM (SELECT EstiCode AS c FROM EstiBase UNION ALL SELECT Code FROM "
                       "Estimate) AS codes WHERE substr(c, 1, 6) = ? AND ltrim(substr(c, 7), "
                       "'0123456789') = '' ORDER BY length(c) DESC, c DESC");
    q.prepare(stores().dbEstimate.statementFor(sql, {month}));
    stores().dbEstimate.bindValues(q, {month});
    if (!q.exec()) return QStringLiteral("(failed)");
    while (q.next())
        if (runningNumberOf(q.value(0).toString()) >= 0) return nextEstimateCode(date, q.value(0).toString());
    return nextEstimateCode(date, QString());
}

bool heads(const QStringList& codes) {
    for (const QString& code : codes)
        if (!test::addEstiHead(code, QStringLiteral("000001"), QStringLiteral("가"),
                               QStringLiteral("2024-05-01")))
            return false;
    return true;
}

bool lines(const QStringList& codes) {
    static int seq = 0;
    for (const QString& code : codes)
        if (!test::addEstiLine(++seq, code, QStringLiteral("볼트"), 1, 100)) return false;
    return true;
}

// A spread of months: `count` quotations of ten lines each, twelve months of 2023, so that the
// planner sees tables where a month is a small part.
bool fillYear(int count) {
    const QString code = QStringLiteral("'2023' || %1 || %2")
                             .arg(test::digitsSql(QStringLiteral("i % 12 + 1"), 2),
                                  test::digitsSql(QStringLiteral("i / 12 + 1"), 3));
    return run(stores().dbEstimate,
               QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < "
                              "%1) INSERT INTO EstiBase (EstiCode, CName) SELECT %2, 'x' FROM n")
                   .arg(count - 1)
                   .arg(code)) &&
           run(stores().dbEstimate,
               QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < "
                              "%1) INSERT INTO Estimate (Seq, Code, PName) SELECT i + 100000, %2, 'x' FROM n")
                   .arg(count * 10 - 1)
                   .arg(QString(code)
                            .replace(QStringLiteral("i % 12"), QStringLiteral("(i / 10) % 12"))
                            .replace(QStringLiteral("i / 12"), QStringLiteral("(i / 10) / 12")))) &&
           run(stores().dbEstimate, QStringLiteral("ANALYZE"));
}

// The engine's plan of a statement with its values, one line a step.
QString planOf(Database& db, const QString& sql, const QVariantList& values) {
    QSqlQuery q(db.connection());
    QStringList out;
    if (db.onServer()) {
        // The server's EXPLAIN takes no parameters: the values go in as texts (digits only here).
        QString text = db.statementFor(sql, values);
        for (const QVariant& v : values)
            text.replace(text.indexOf(u'?'), 1, u'\'' + v.toString() + u'\'');
        if (!q.exec(QStringLiteral("EXPLAIN ") + text)) return q.lastError().text();
        while (q.next())
            out << q.value(0).toString();
    } else {
        q.prepare(QStringLiteral("EXPLAIN QUERY PLAN ") + sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        if (!q.exec()) return q.lastError().text();
        while (q.next())
            out << q.value(3).toString();
    }
    return out.join(u'\n');
}

bool dropIndexes() {
    for (const QString& name : kIndexes)
        if (!run(stores().dbEstimate, QStringLiteral("DROP INDEX ") + quoteName(name))) return false;
    return true;
}

bool hasIndexes() {
    return stores().dbEstimate.hasIndex(kIndexes[0]) && stores().dbEstimate.hasIndex(kIndexes[1]);
}

// A month with every kind of code: running numbers past 999, codes typed in that are not numbers
// or too long to be one, and a line whose head is gone.
bool fillMixedMonth() {
    return heads({QStringLiteral("202405001"), QStringLiteral("202405999"), QStringLiteral("2024051000"),
                  QStringLiteral("20240512A"), QStringLiteral("2024059999999999"), QStringLiteral("202405"),
                  QStringLiteral("202406001")}) &&
           lines({QStringLiteral("2024051000"), QStringLiteral("2024051003"), QStringLiteral("202405-01")});
}

} // namespace

class TestEstimateNextCode : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { closeStores(); }

    void anEmptyMonthStartsAtOneWhateverItsNeighboursHold() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(heads({QStringLiteral("202404999"), QStringLiteral("202406001"), QStringLiteral("20240")}));
        QVERIFY(lines({QStringLiteral("202406002")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-10")), QStringLiteral("202405001"));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-10")),
                 wholeMonthNextCode(QStringLiteral("2024-05-10")));
    }
    void pastNineHundredNinetyNineTheMonthGoesOnWithFourDigits() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(
            heads({QStringLiteral("202405001"), QStringLiteral("202405998"), QStringLiteral("202405999")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("2024051000"));
        QVERIFY(heads({QStringLiteral("2024051000")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("2024051001"));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")),
                 wholeMonthNextCode(QStringLiteral("2024-05-31")));
    }
    void codesThatAreNotRunningNumbersArePassedOver() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        // Above 202405012 in the index's order, each for its own reason: a letter, too many
        // digits to be a number, a sign, a blank, nothing after the month.
        QVERIFY(
            heads({QStringLiteral("202405012"), QStringLiteral("20240512A"),
                   QStringLiteral("2024059999999999"), QStringLiteral("202405+99"),
                   QStringLiteral("202405 99"), QStringLiteral("202405"), QStringLiteral("202405１２３")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405013"));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")),
                 wholeMonthNextCode(QStringLiteral("2024-05-31")));
    }
    // Zeros in front count as digits of the code's length, as the month's order has always had it.
    void aLongCodeOfLeadingZerosIsARunningNumberOfItsValue() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(heads({QStringLiteral("202405500"), QStringLiteral("2024050000000000012")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405013"));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")),
                 wholeMonthNextCode(QStringLiteral("2024-05-31")));
    }
    void aLineWithoutItsHeadCountsItsCode() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(heads({QStringLiteral("202405003")}));
        QVERIFY(lines({QStringLiteral("202405007"), QStringLiteral("202405003")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405008"));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")),
                 wholeMonthNextCode(QStringLiteral("2024-05-31")));
    }
    void aMonthWhoseFirstManyCodesAreNotNumbersStillFindsItsLastNumber() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QStringList typed;
        for (int i = 0; i < 40; ++i)
            typed << QStringLiteral("20240599999999999%1").arg(i, 2, 10, QChar(u'0'))
                  << QStringLiteral("202405ZZ%1").arg(i, 2, 10, QChar(u'0'));
        QVERIFY(heads(typed));
        QVERIFY(lines(typed));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405001"));
        QVERIFY(lines({QStringLiteral("202405041")}));
        QVERIFY(heads({QStringLiteral("202405040")}));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405042"));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")),
                 wholeMonthNextCode(QStringLiteral("2024-05-31")));
    }
    void theNumberIsReadFromTheIndexOfRunningCodesNotFromTheMonth() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(fillYear(2400));
        QCOMPARE(test::nextCode(QStringLiteral("2023-05-20")), QStringLiteral("202305201"));
        const QString plan = planOf(stores().dbEstimate, lastRunningCodeStatement(),
                                    {QStringLiteral("202305"), QStringLiteral("202305")});
        if (stores().dbEstimate.onServer()) {
            // Each table's index walked backwards from the month's end, the two merged: no table read
            // and no sort of the month.
            QVERIFY2(plan.contains(QStringLiteral("Backward using estibase_runningcode")), qPrintable(plan));
            QVERIFY2(plan.contains(QStringLiteral("Backward using estimate_runningcode")), qPrintable(plan));
            QVERIFY2(!plan.contains(QStringLiteral("Seq Scan")) && !plan.contains(QStringLiteral("->  Sort")),
                     qPrintable(plan));
        } else {
            QVERIFY2(
                plan.contains(QStringLiteral("SEARCH EstiBase USING COVERING INDEX EstiBase_RunningCode")),
                qPrintable(plan));
            QVERIFY2(
                plan.contains(QStringLiteral("SEARCH Estimate USING COVERING INDEX Estimate_RunningCode")),
                qPrintable(plan));
            QVERIFY2(!plan.contains(QStringLiteral("SCAN EstiBase")) &&
                         !plan.contains(QStringLiteral("SCAN Estimate")),
                     qPrintable(plan));
        }
    }
    void theNextInvoiceNumberIsReadFromTheEndOfItsIndex() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(run(stores().dbTax,
                    QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < "
                                   "2999) INSERT INTO NewAcount (TaxCode, CCode) SELECT CAST(100000 + i / 3 "
                                   "AS TEXT), '000001' FROM n")));
        QVERIFY(run(stores().dbTax, QStringLiteral("ANALYZE")));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("101000"));
        const QString plan = planOf(stores().dbTax, nextTaxCodeStatement(), {});
        if (stores().dbTax.onServer())
            QVERIFY2(plan.contains(QStringLiteral("Backward using newacount_taxcode")) &&
                         !plan.contains(QStringLiteral("Seq Scan")),
                     qPrintable(plan));
        else
            // The highest number found in the index (whether any row is there stops at the first).
            QVERIFY2(plan.contains(QStringLiteral("SEARCH NewAcount USING COVERING INDEX NewAcount_TaxCode")),
                     qPrintable(plan));
    }
    // Rows without a number count only when no row has one, as the number has always been read.
    void invoicesWithoutANumberOnlyGiveTheNumberAfterNone() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(run(stores().dbTax, QStringLiteral("INSERT INTO NewAcount (CCode) VALUES ('000001')")));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("1"));
    }

    void aStoreMadeBeforeTheIndexGainsItAtStartWithTheSameNextNumber() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(fillMixedMonth());
        QVERIFY(dropIndexes());
        QVERIFY(!stores().dbEstimate.hasIndex(kIndexes[0]) && !stores().dbEstimate.hasIndex(kIndexes[1]));
        const QString before = test::nextCode(QStringLiteral("2024-05-20"));
        QCOMPARE(before, QStringLiteral("2024051004"));
        auto& said = test::script();
        UpgradeOpenStores();
        QVERIFY(hasIndexes());
        QCOMPARE(int(said.boxes().size()), 0);
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-20")), before);
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-20")),
                 wholeMonthNextCode(QStringLiteral("2024-05-20")));
    }
    void aStoreWithTheIndexPassesTheStepWithNoStatementRun() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(dropIndexes());
        UpgradeOpenStores();
        QVERIFY(hasIndexes());
        const int statements = stores().dbEstimate.statementsRun();
        UpgradeOpenStores();
        UpgradeOpenStores();
        QCOMPARE(stores().dbEstimate.statementsRun(), statements);
        QVERIFY(hasIndexes());
    }
    // The quotation store the screens have not opened is opened by the step itself.
    void theStepReachesAStoreNoScreenHasOpened() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(dropIndexes());
        stores().dbEstimate.close();
        UpgradeOpenStores();
        QVERIFY(OpenDb(stores().dbEstimate, app().DbEstimateFile));
        QVERIFY(hasIndexes());
    }
    // A quotation file the start's check named damaged is left as it is (a server's store is never
    // a file of the seat, and is not named so).
    void aQuotationFileNamedDamagedIsLeftAlone() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(dropIndexes());
        UpgradeOpenStores({app().DbEstimateFile});
        QCOMPARE(hasIndexes(), stores().dbEstimate.onServer());
    }
    void aNewStoreHasTheIndexFromItsFirstDay() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(hasIndexes());
        for (const QString& table : {QStringLiteral("EstiBase"), QStringLiteral("Estimate")})
            QVERIFY(createStatements(tableDef(table), stores().dbEstimate.onServer())
                        .contains(runningCodeIndex(table)));
    }
    void anIndexThatCannotBeMadeLeavesNeitherAndSaysSo() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(dropIndexes());
        // The second index cannot be made: on the files a view holds its name, on the server the
        // database refuses it.
        if (stores().dbEstimate.onServer()) {
            QVERIFY(run(stores().dbEstimate,
                        QStringLiteral("CREATE FUNCTION estimate.refuse() RETURNS event_trigger LANGUAGE "
                                       "plpgsql AS $$BEGIN IF EXISTS (SELECT 1 FROM "
                                       "pg_event_trigger_ddl_commands() WHERE object_identity LIKE "
                                       "'%estimate_runningcode') THEN RAISE EXCEPTION 'blocked'; END IF; "
                                       "END$$")));
            QVERIFY(run(stores().dbEstimate,
                        QStringLiteral("CREATE EVENT TRIGGER refuse ON ddl_command_end WHEN TAG IN ('CREATE "
                                       "INDEX') EXECUTE FUNCTION estimate.refuse()")));
        } else {
            QVERIFY(run(stores().dbEstimate,
                        QStringLiteral("CREATE VIEW Estimate_RunningCode AS SELECT 1 AS x")));
        }
        auto& said = test::script();
        UpgradeOpenStores();
        QVERIFY(!said.boxes().empty());
        QVERIFY(!stores().dbEstimate.inTransaction());
        QVERIFY(!stores().dbEstimate.hasIndex(kIndexes[0]));
        QVERIFY(!stores().dbEstimate.hasIndex(kIndexes[1]));
        // The number is still read, the slow way.
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-20")), QStringLiteral("202405001"));
        if (stores().dbEstimate.onServer())
            QVERIFY(run(stores().dbEstimate, QStringLiteral("DROP EVENT TRIGGER refuse")));
    }
};

NB_TEST_MAIN(TestEstimateNextCode)
#include "tst_estimate_next_code.moc"
