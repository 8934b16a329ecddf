// What only a store on the server has to prove: its names folded to lower case, fractions
// written into whole-number columns rounded half to even, sums of whole numbers read back as the
// files give them, the writers of one store taking their next numbers one after the other (a
// waiting one standing in the server's queue), a deadlock met by running the save again, and
// every failure of the server told in the files' Korean boxes. Runs on the test run's
// PostgreSQL cluster only.
#include "StoreTestKit.h"
#include "storage/ServerSettings.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QProcess>
#include <QSqlError>
#include <QSqlQuery>
#include <QTimer>

using namespace nb;

namespace {

void openFreshStores(const test::TestHome& home, Database& basic, Database& bill) {
    test::useStoreFolder(home);
    CreateMissingStoreFiles();
    QVERIFY(basic.open(app().DbBasicFile));
    QVERIFY(bill.open(app().DbBillFile));
    QVERIFY(basic.onServer());
}

// The next statement number as a save reads it: inside its transaction.
QString nextBillNo(Database& db) {
    Recordset rs;
    if (!OpenSnapshot(db, rs, QStringLiteral("SELECT MAX(BillNo) AS Last FROM Master"))) return QString();
    const int last = rs.isNull(QStringLiteral("Last")) ? 0 : rs.text(QStringLiteral("Last")).toInt();
    return QStringLiteral("%1").arg(last + 1, 6, 10, QChar(u'0'));
}

bool saveStatementHead(Database& db) {
    if (!db.beginTransaction()) return false;
    const QString number = nextBillNo(db);
    if (number.isEmpty() ||
        !db.tryExecute(QStringLiteral("INSERT INTO Master (BillNo, BillDate) VALUES (?, ?)"),
                       {number, QStringLiteral("2024-03-01")})) {
        db.rollback();
        return false;
    }
    return db.commit();
}

// A statement that fails on the server with the given SQLSTATE.
QString failingWith(const char* sqlState) {
    return QStringLiteral("DO $$BEGIN RAISE EXCEPTION 'forced' USING ERRCODE = '%1'; END$$")
        .arg(QLatin1String(sqlState));
}

} // namespace

class TestServerEngine : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY2(onServer(), "this test runs on the test run's PostgreSQL cluster only"); }
    void namesAreFoldedSoQuotedAndPlainNamesReachTheSameTable() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        QVERIFY(basic.Execute(QStringLiteral("INSERT INTO \"Trader\" (\"Code\", \"C_Name\") VALUES (?, ?)"),
                              {QStringLiteral("000001"), QStringLiteral("가나상사")}));
        Recordset rs;
        QVERIFY(OpenSnapshot(basic, rs, QStringLiteral("SELECT Code, C_Name FROM Trader")));
        QCOMPARE(rs.RecordCount(), 1);
        QCOMPARE(rs.fieldName(1), QStringLiteral("c_name"));
        QCOMPARE(rs.text(QStringLiteral("C_Name")), QStringLiteral("가나상사"));
        QCOMPARE(
            test::rawValue(app().DbBasicFile, QStringLiteral("SELECT \"C_NAME\" FROM trader")).toString(),
            QStringLiteral("가나상사"));
        QVERIFY(basic.hasColumn(QStringLiteral("Trader"), QStringLiteral("C_Name")));
        QVERIFY(basic.hasIndex(QStringLiteral("Trader_Code")));
        // The table named User, a word of the server's own, is reached written plainly.
        QVERIFY(basic.Execute(QStringLiteral("INSERT INTO User (Serial) VALUES (?)"), {QStringLiteral("1")}));
        QCOMPARE(test::rawValue(app().DbBasicFile, QStringLiteral("SELECT count(*) FROM User")).toInt(), 1);
    }
    void fractionsWrittenIntoWholeNumberColumnsRoundHalfToEven() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        QVERIFY(bill.Execute(QStringLiteral("INSERT INTO Master (BillNo, NumBill) VALUES (?, ?)"),
                             {QStringLiteral("000001"), 2.5}));
        QVERIFY(bill.Execute(QStringLiteral("INSERT INTO Master (BillNo, NumBill) VALUES (?, ?)"),
                             {QStringLiteral("000002"), 3.5}));
        QVERIFY(bill.Execute(QStringLiteral("INSERT INTO Master (BillNo, NumBill) VALUES (?, ?)"),
                             {QStringLiteral("000003"), -2.5}));
        QCOMPARE(test::texts(test::rawColumn(app().DbBillFile,
                                             QStringLiteral("SELECT NumBill FROM Master ORDER BY BillNo"))),
                 (QStringList{QStringLiteral("2"), QStringLiteral("4"), QStringLiteral("-2")}));
        // A changed value the same way.
        QVERIFY(bill.Execute(QStringLiteral("UPDATE Master SET NumBill = ? WHERE BillNo = ?"),
                             {0.5, QStringLiteral("000001")}));
        QCOMPARE(test::rawValue(app().DbBillFile,
                                QStringLiteral("SELECT NumBill FROM Master WHERE BillNo = '000001'"))
                     .toInt(),
                 0);
    }
    void sumsOfWholeNumbersComeBackAsTheFilesGiveThem() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        for (int i = 1; i <= 3; ++i)
            QVERIFY(bill.Execute(
                QStringLiteral("INSERT INTO Master (BillNo, NumBill, TotAmount) VALUES (?, ?, ?)"),
                {QStringLiteral("00000%1").arg(i), i * 1000000000LL, 0.5 * i}));
        Recordset rs;
        QVERIFY(OpenSnapshot(bill, rs,
                             QStringLiteral("SELECT SUM(NumBill) AS Whole, SUM(TotAmount) AS Amount, "
                                            "AVG(NumBill) AS Mean, COUNT(*) AS Rows FROM Master")));
        // The server's SUM of whole numbers is NUMERIC: read back as a whole number, as the files' is.
        QCOMPARE(rs.field(QStringLiteral("Whole")).typeId(), int(QMetaType::LongLong));
        QCOMPARE(rs.field(QStringLiteral("Whole")).toLongLong(), 6000000000LL);
        QCOMPARE(rs.field(QStringLiteral("Whole")).toString(), QStringLiteral("6000000000"));
        QCOMPARE(rs.field(QStringLiteral("Amount")).toDouble(), 3.0);
        QCOMPARE(rs.field(QStringLiteral("Mean")).toLongLong(), 2000000000LL);
        QCOMPARE(rs.field(QStringLiteral("Rows")).toInt(), 3);
        QVERIFY(OpenSnapshot(bill, rs, QStringLiteral("SELECT SUM(NumBill) / 4 AS Part FROM Master")));
        QCOMPARE(rs.field(QStringLiteral("Part")).toDouble(), 1500000000.0);
        QVERIFY(OpenSnapshot(bill, rs, QStringLiteral("SELECT SUM(NumBill) / 7 AS Part FROM Master")));
        QCOMPARE(rs.field(QStringLiteral("Part")).typeId(), int(QMetaType::Double));
        // An empty sum is empty on both engines.
        QVERIFY(
            OpenSnapshot(bill, rs, QStringLiteral("SELECT SUM(NumBill) AS Whole FROM Master WHERE 1 = 0")));
        QVERIFY(rs.isNull(QStringLiteral("Whole")));
    }
    void rowsReadPastTheDriverHaveTheDriversValuesAndTypes() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        const QString sql = QStringLiteral(
            "SELECT CAST(? AS smallint), CAST(? AS integer), CAST(? AS bigint), CAST(? AS bigint), "
            "CAST(? AS double precision), CAST(? AS numeric) * 2, CAST(? AS integer) <> 0, CAST(? AS text), "
            "CAST(NULL AS bigint), CAST(NULL AS double precision), CAST(NULL AS text), CAST(NULL AS "
            "numeric), "
            "CAST(? AS real)");
        const QVariantList values{-7,
                                  123456,
                                  -9000000000LL,
                                  9000000000LL,
                                  -1234.75,
                                  QStringLiteral("0.1"),
                                  true,
                                  QStringLiteral("한글 '따옴표' ?"),
                                  0.1};
        // Twice: the first read learns how the columns come, the second reads their binary form.
        for (int run = 0; run < 2; ++run) {
            std::vector<QVariant> rows;
            int width = 0;
            QVERIFY(bill.readRowsOnServer(sql, values, rows, &width));
            QCOMPARE(width, 13);
            QCOMPARE(int(rows.size()), 13);
            QSqlQuery driver(bill.connection());
            QVERIFY(driver.prepare(bill.statementFor(sql, values)));
            bill.bindValues(driver, values);
            QVERIFY2(driver.exec() && driver.next(), qPrintable(driver.lastError().text()));
            for (int c = 0; c < width; ++c) {
                const QVariant& mine = rows[size_t(c)];
                const QVariant theirs = driver.value(c);
                QVERIFY2(mine.metaType() == theirs.metaType() && mine.isNull() == theirs.isNull() &&
                             mine == theirs,
                         qPrintable(QStringLiteral("run %1 column %2: %3 (%4) beside %5 (%6)")
                                        .arg(run)
                                        .arg(c)
                                        .arg(mine.toString(), QString::fromLatin1(mine.typeName()),
                                             theirs.toString(), QString::fromLatin1(theirs.typeName()))));
            }
            QCOMPARE(rows[4].toDouble(), -1234.75);
            QCOMPARE(rows[7].toString(), QStringLiteral("한글 '따옴표' ?"));
        }
    }
    void aColumnThatChangedItsTypeIsReadInItsNewType() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        QVERIFY(
            bill.Execute(QStringLiteral("INSERT INTO Master (BillNo, TotAmount) VALUES ('000001', 2.5)")));
        const QString sql = QStringLiteral("SELECT TotAmount FROM Master WHERE BillNo = ?");
        std::vector<QVariant> rows;
        int width = 0;
        for (int run = 0; run < 2; ++run) // read as the server's double, the second time in binary
            QVERIFY(bill.readRowsOnServer(sql, {QStringLiteral("000001")}, rows, &width));
        QCOMPARE(rows.back(), QVariant(2.5));
        // A column of another type now: read as its texts say, not as the bytes of a double.
        QVERIFY(bill.Execute(QStringLiteral("ALTER TABLE master ALTER COLUMN totamount TYPE text")));
        rows.clear();
        QVERIFY(bill.readRowsOnServer(sql, {QStringLiteral("000001")}, rows, &width));
        QCOMPARE(int(rows.size()), 1);
        QCOMPARE(rows[0], QVariant(QStringLiteral("2.5")));
        QVERIFY(bill.Execute(QStringLiteral("ALTER TABLE master ALTER COLUMN totamount TYPE numeric USING "
                                            "totamount::numeric")));
        rows.clear();
        QVERIFY(bill.readRowsOnServer(sql, {QStringLiteral("000001")}, rows, &width));
        QCOMPARE(rows[0], QVariant(2.5));
    }
    void aFailedReadPastTheDriverShowsNoBoxAndNamesItsCause() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        auto& msgs = test::script();
        std::vector<QVariant> rows{QVariant(1)};
        int width = 0;
        QVERIFY(!bill.readRowsOnServer(QStringLiteral("SELECT Nothing FROM Master"), {}, rows, &width));
        QCOMPARE(bill.lastErrorNumber(), int(ErrSyntax));
        QCOMPARE(bill.lastSqlState(), QStringLiteral("42703"));
        QCOMPARE(int(rows.size()), 1); // what the caller held before stays as it was
        QCOMPARE(int(msgs.boxes().size()), 0);
        // The connection goes on.
        QVERIFY(bill.readRowsOnServer(QStringLiteral("SELECT COUNT(*) FROM Master"), {}, rows, &width));
        QCOMPARE(int(rows.size()), 2);
    }
    void writersOfOneStoreTakeTheirNextNumbersOneAfterTheOther() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        Database other;
        QVERIFY(other.open(app().DbBillFile));
        other.setBusyTimeout(300);
        // The first seat reads its next number inside its save and holds the store's writer lock.
        QVERIFY(bill.beginTransaction());
        QCOMPARE(nextBillNo(bill), QStringLiteral("000001"));
        // The second seat's save waits for it, and is refused as busy when the wait is over.
        QVERIFY(!other.beginTransaction());
        QCOMPARE(other.lastEngineCode(), 5);
        QVERIFY(!other.inTransaction());
        // A save into another store is not held up.
        Database tax;
        QVERIFY(tax.open(app().DbTaxFile));
        QVERIFY(tax.beginTransaction());
        tax.rollback();
        QVERIFY(bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"),
                                {QStringLiteral("000001")}));
        QVERIFY(bill.commit());
        // Now the second seat's save reads the number after the first one's.
        QVERIFY(saveStatementHead(other));
        QCOMPARE(test::texts(test::rawColumn(app().DbBillFile,
                                             QStringLiteral("SELECT BillNo FROM Master ORDER BY BillNo"))),
                 (QStringList{QStringLiteral("000001"), QStringLiteral("000002")}));
    }
    void aSaveWaitsForAnotherSeatsSaveToEnd() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        Database other;
        QVERIFY(other.open(app().DbBillFile));
        other.setBusyTimeout(5000);
        QVERIFY(bill.beginTransaction());
        QVERIFY(
            bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"), {nextBillNo(bill)}));
        // The first seat ends its save while the second waits (the window's events run meanwhile).
        QTimer::singleShot(200, [&bill] { bill.commit(); });
        QVERIFY(saveStatementHead(other));
        QCOMPARE(test::texts(test::rawColumn(app().DbBillFile,
                                             QStringLiteral("SELECT BillNo FROM Master ORDER BY BillNo"))),
                 (QStringList{QStringLiteral("000001"), QStringLiteral("000002")}));
    }
    void aWaitingSeatStandsInTheServersQueueForTheLock() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        Database other;
        QVERIFY(other.open(app().DbBillFile));
        other.setBusyTimeout(5000);
        QVERIFY(bill.beginTransaction());
        QVERIFY(
            bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"), {nextBillNo(bill)}));
        // Someone outside looks at the server's locks of this database now and then while the
        // second seat waits: a seat that only asked again and again would never be seen waiting.
        QString script;
        for (int i = 0; i < 10; ++i)
            script += QStringLiteral(
                "SELECT pg_sleep(0.1);\nSELECT 'waiting ' || count(*) FROM pg_locks WHERE locktype = "
                "'advisory' AND NOT granted AND database = (SELECT oid FROM pg_database WHERE datname = "
                "current_database());\n");
        QProcess watcher;
        watcher.start(QStringLiteral("psql"),
                      {QStringLiteral("-X"), QStringLiteral("-A"), QStringLiteral("-t"), QStringLiteral("-q"),
                       QStringLiteral("-d"), home.server().connInfo()});
        QVERIFY(watcher.waitForStarted());
        watcher.write(script.toUtf8());
        watcher.closeWriteChannel();
        QTimer::singleShot(1500, [&bill] { bill.commit(); });
        QVERIFY(saveStatementHead(other));
        // It may have finished while the save waited.
        QVERIFY(watcher.state() == QProcess::NotRunning || watcher.waitForFinished(20000));
        const QString seen = QString::fromUtf8(watcher.readAllStandardOutput());
        QVERIFY2(seen.contains(QStringLiteral("waiting 1")), qPrintable(seen));
        QCOMPARE(test::texts(test::rawColumn(app().DbBillFile,
                                             QStringLiteral("SELECT BillNo FROM Master ORDER BY BillNo"))),
                 (QStringList{QStringLiteral("000001"), QStringLiteral("000002")}));
    }
    void aDeadlockIsRunAgainQuietly() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        auto& msgs = test::script();
        int tries = 0;
        const bool saved = RetryingSave([&] {
            ++tries;
            if (!bill.beginTransaction()) return false;
            const QString number = nextBillNo(bill);
            // The first try is chosen by the server to break a deadlock.
            const bool ok =
                tries == 1 ? bill.Execute(failingWith("40P01"))
                           : bill.Execute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"), {number});
            if (!ok) {
                bill.rollback();
                return false;
            }
            return bill.commit();
        });
        QVERIFY(saved);
        QCOMPARE(tries, 2);
        QVERIFY(msgs.records().empty());
        QCOMPARE(test::rawValue(app().DbBillFile, QStringLiteral("SELECT count(*) FROM Master")).toInt(), 1);
    }
    void aConflictThatStaysIsToldOnceAfterTheLastTry() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        auto& msgs = test::script();
        int tries = 0;
        const bool saved = RetryingSave([&] {
            ++tries;
            if (!bill.beginTransaction()) return false;
            if (!bill.Execute(failingWith("40001"))) {
                bill.rollback();
                return false;
            }
            return bill.commit();
        });
        QVERIFY(!saved);
        QCOMPARE(tries, kSaveTries);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.startsWith(storeFaultText(5, QString())));
        QVERIFY(!bill.inTransaction());
    }
    void aFailureThatIsNoConflictIsNotTriedAgain() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        auto& msgs = test::script();
        int tries = 0;
        QVERIFY(!RetryingSave([&] {
            ++tries;
            return bill.Execute(failingWith("23505"));
        }));
        QCOMPARE(tries, 1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
    }
    void eachFailureOfTheServerIsToldInItsKoreanBox_data() {
        QTest::addColumn<QString>("sqlState");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char* state, const QString& sentence) {
            QTest::newRow(state) << QString::fromLatin1(state) << sentence;
        };
        row("23505",
            QStringLiteral("같은 번호(코드)의 자료가 이미 있어 저장하지 못했습니다. 번호를 확인하고 다시 "
                           "입력하십시오."));
        row("53100",
            QStringLiteral("디스크에 쓸 수 없어 저장하지 못했습니다 (디스크 공간 부족 또는 쓰기 오류). "
                           "디스크 공간을 확보한 뒤 다시 저장하십시오."));
        row("25006", QStringLiteral("자료 파일이 읽기 전용이라 저장하지 못했습니다. "
                                    "자료 폴더와 파일의 쓰기 권한을 확인하십시오."));
        row("55P03",
            QStringLiteral("다른 프로그램(또는 다른 컴퓨터의 누벨라)이 자료 파일을 쓰고 있어 저장하지 "
                           "못했습니다. 잠시 후 다시 저장하십시오."));
        row("40P01",
            QStringLiteral("다른 프로그램(또는 다른 컴퓨터의 누벨라)이 자료 파일을 쓰고 있어 저장하지 "
                           "못했습니다. 잠시 후 다시 저장하십시오."));
        row("08006", serverUnreachableText());
    }
    void eachFailureOfTheServerIsToldInItsKoreanBox() {
        QFETCH(QString, sqlState);
        QFETCH(QString, sentence);
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        auto& msgs = test::script();
        QVERIFY(bill.beginTransaction());
        QVERIFY(!bill.tryExecute(failingWith(sqlState.toLatin1().constData())));
        QCOMPARE(bill.lastSqlState(), sqlState);
        bill.rollback();
        ReportSaveFailure(bill, QStringLiteral("거래명세표를 저장하지 못했습니다."));
        const QStringList lines = msgs.last().text.split(u'\r');
        QCOMPARE(lines.at(0), QStringLiteral("거래명세표를 저장하지 못했습니다."));
        QCOMPARE(lines.at(1), sentence);
        QCOMPARE(lines.last(), QStringLiteral("forced")); // the server's words below, never alone
        QCOMPARE(msgs.last().title, QStringLiteral("저장 오류"));
    }
    void aMissingTableOrColumnShowsTheQueryBox_data() {
        QTest::addColumn<QString>("sql");
        QTest::newRow("table 42P01") << QStringLiteral("SELECT * FROM Nothing");
        QTest::newRow("column 42703") << QStringLiteral("SELECT Nothing FROM Master");
    }
    void aMissingTableOrColumnShowsTheQueryBox() {
        QFETCH(QString, sql);
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        auto& msgs = test::script();
        Recordset rs;
        QVERIFY(!OpenSnapshot(bill, rs, sql));
        QCOMPARE(bill.lastErrorNumber(), int(ErrSyntax));
        QCOMPARE(msgs.last().text, QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r") + sql);
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
    }
    void aServerThatCannotBeReachedIsSaidInKorean() {
        test::TestHome home;
        test::useStoreFolder(home);
        // A port nobody listens on.
        qputenv("NUBELLA_PG", "host=127.0.0.1 port=1 dbname=none user=nobody connect_timeout=2");
        Database db;
        QVERIFY(!db.open(app().DbBasicFile));
        QCOMPARE(db.lastEngineCode(), kServerUnreachableCode);
        auto& msgs = test::script();
        ReportSaveFailure(db, QString());
        const QStringList lines = msgs.last().text.split(u'\r');
        QCOMPARE(lines.at(1), serverUnreachableText());
        QVERIFY(!lines.last().isEmpty()); // the connection's own words below
        QVERIFY(!OpenDatabases());
        qputenv("NUBELLA_PG", home.server().connInfo().toUtf8());
    }
    void commitOfABrokenSaveRollsItBackAndSaysSo() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        QVERIFY(bill.beginTransaction());
        QVERIFY(bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"),
                                {QStringLiteral("000001")}));
        QVERIFY(!bill.tryExecute(QStringLiteral("INSERT INTO Nothing VALUES (1)")));
        // The statement after the failure does not run: the server dropped the save's work.
        QVERIFY(!bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"),
                                 {QStringLiteral("000002")}));
        QVERIFY(!bill.commit());
        QVERIFY(!bill.inTransaction());
        QCOMPARE(bill.lastSqlState(), QStringLiteral("42P01"));
        QCOMPARE(test::rawValue(app().DbBillFile, QStringLiteral("SELECT count(*) FROM Master")).toInt(), 0);
        // The next save is one of its own.
        QVERIFY(saveStatementHead(bill));
    }
    void aFailedSavepointLeavesTheOuterSaveGoingOn() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        QVERIFY(bill.beginTransaction());
        QVERIFY(bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"),
                                {QStringLiteral("000001")}));
        QVERIFY(bill.beginTransaction());
        QVERIFY(!bill.tryExecute(QStringLiteral("INSERT INTO Nothing VALUES (1)")));
        QVERIFY(!bill.commit()); // the inner part is rolled back
        QVERIFY(bill.inTransaction());
        QVERIFY(bill.tryExecute(QStringLiteral("INSERT INTO Master (BillNo) VALUES (?)"),
                                {QStringLiteral("000002")}));
        QVERIFY(bill.commit());
        QCOMPARE(test::rawValue(app().DbBillFile, QStringLiteral("SELECT count(*) FROM Master")).toInt(), 2);
    }
    void aStarBringsTheFieldsOfTheFilesAndRowsKeepTheirOrder() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        for (const char* code : {"000003", "000001", "000002"})
            QVERIFY(
                basic.Execute(QStringLiteral("INSERT INTO Trader VALUES (?)"), {QString::fromLatin1(code)}));
        Recordset rs;
        QVERIFY(OpenSnapshot(basic, rs, QStringLiteral("SELECT * FROM Trader ORDER BY rowid")));
        QCOMPARE(rs.fieldCount(), int(tableDef(QStringLiteral("Trader")).columns.size()));
        QCOMPARE(rs.fieldName(rs.fieldCount() - 1), QStringLiteral("email"));
        QStringList codes;
        for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
            codes << rs.text(QStringLiteral("Code"));
        QCOMPARE(codes,
                 (QStringList{QStringLiteral("000003"), QStringLiteral("000001"), QStringLiteral("000002")}));
        QVERIFY(!basic.hasColumn(QStringLiteral("Trader"), QStringLiteral("rowid")));
    }
    void everyTableFindsARowByItsNumberThroughAnIndex() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        const QString tables = QStringLiteral(
            "SELECT count(*) FROM pg_catalog.pg_tables t WHERE t.schemaname IN ('basic', 'bill', 'tax', "
            "'estimate', 'inout')");
        QVERIFY(test::rawValue(app().DbBasicFile, tables).toInt() > 10);
        QCOMPARE(
            test::rawColumn(app().DbBasicFile,
                            QString(tables).replace(QStringLiteral("count(*)"),
                                                    QStringLiteral("t.schemaname || '.' || t.tablename")) +
                                QStringLiteral(" AND NOT EXISTS (SELECT 1 FROM pg_catalog.pg_indexes i "
                                               "WHERE i.schemaname = t.schemaname AND i.tablename = "
                                               "t.tablename AND i.indexdef LIKE 'CREATE UNIQUE INDEX % "
                                               "(rowid)')")),
            QVariantList());
        // A trader's first invoice joined back to its row by number reads that row only.
        Database tax;
        QVERIFY(tax.open(app().DbTaxFile));
        QSqlQuery plan(tax.connection());
        QVERIFY(plan.exec(QStringLiteral("SET enable_seqscan = off")));
        QVERIFY(plan.exec(QStringLiteral("EXPLAIN SELECT f.TaxCode FROM (SELECT MIN(rowid) AS FirstRow FROM "
                                         "NewAcount) g JOIN NewAcount f ON f.rowid = g.FirstRow")));
        QStringList steps;
        while (plan.next())
            steps << plan.value(0).toString();
        QVERIFY(!steps.isEmpty());
        QVERIFY2(!steps.join(u'\n').contains(QStringLiteral("Seq Scan")), qPrintable(steps.join(u'\n')));
    }
    void traderNamesAreSearchedThroughTrigramIndexes() {
        test::TestHome home;
        Database basic, bill;
        openFreshStores(home, basic, bill);
        QCOMPARE(
            test::rawValue(app().DbBasicFile,
                           QStringLiteral("SELECT count(*) FROM pg_catalog.pg_indexes WHERE schemaname = "
                                          "'basic' AND indexname LIKE 'trader_%_trgm'"))
                .toInt(),
            3);
        QVERIFY(basic.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                              {QStringLiteral("000001"), QStringLiteral("Abc 가나다상사")}));
        // LIKE compares without regard to ASCII case, as on the files; Hangul as it is.
        Recordset rs;
        QVERIFY(OpenSnapshot(basic, rs, QStringLiteral("SELECT Code FROM Trader WHERE C_Name LIKE ?"),
                             {QStringLiteral("%aBC 가나%")}));
        QCOMPARE(rs.RecordCount(), 1);
        QVERIFY(OpenSnapshot(basic, rs, QStringLiteral("SELECT Code FROM Trader WHERE C_Name LIKE ?"),
                             {QStringLiteral("%다상%")}));
        QCOMPARE(rs.RecordCount(), 1);
    }
};

NB_TEST_MAIN(TestServerEngine)
#include "server_engine.moc"
