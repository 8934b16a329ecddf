// The rows a list reads through SQLite's own interface: every value as Qt's SQLite driver gives
// it, the values bound, the engine's words when it refuses a statement or fails while stepping,
// a repeated text shared down the rows, the statement let go at once when asked, and a statement
// kept prepared by a search screen and run again.
#include "TestSupport.h"
#include "common/grid/SqliteRows.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <sqlite3.h>

using namespace nb;

namespace {

// A connection of its own on a fresh file, removed with the test.
struct Connection {
    QTemporaryDir dir;
    QString name = QStringLiteral("sqlite_rows_test");
    QSqlDatabase db;
    Connection() {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(dir.filePath(QStringLiteral("rows.db")));
        db.open();
    }
    ~Connection() {
        db.close();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
    }
    bool exec(const QString& sql) {
        QSqlQuery q(db);
        const bool ok = q.exec(sql);
        if (!ok) qWarning() << q.lastError().text();
        return ok;
    }
};

QList<QVariantList> readAll(GridRowSource& rows) {
    QList<QVariantList> out;
    QVariant values[16];
    while (rows.next(values, rows.width())) {
        QVariantList row;
        for (int c = 0; c < rows.width(); ++c)
            row << values[c];
        out << row;
    }
    return out;
}

QList<QVariantList> readThroughQt(QSqlDatabase& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery query(db);
    query.setForwardOnly(true);
    query.prepare(sql);
    for (const QVariant& v : values)
        query.addBindValue(v);
    [&] { QVERIFY2(query.exec(), qPrintable(query.lastError().text())); }();
    QueryRows rows(query);
    return readAll(rows);
}

} // namespace

class TestSqliteRows : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyValueIsAsQtsDriverGivesIt() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n INTEGER, r REAL, t TEXT, b BLOB, any)"));
        QVERIFY(c.exec("INSERT INTO T VALUES (1, 2.5, '가나다', x'00ff10', 'x'), "
                       "(-1099511627776, 3.0, '', NULL, 7), (NULL, -0.125, 'ASCII 123', x'', 1.5), "
                       "(0, NULL, NULL, NULL, NULL), (2147483648, 1e300, '똠방각하', x'41', '2024-05-01')"));
        const QString sql = QStringLiteral("SELECT n, r, t, b, any, n + r, t || '!' FROM T ORDER BY rowid");
        const QList<QVariantList> expected = readThroughQt(c.db, sql);
        QCOMPARE(expected.size(), 5);
        SqliteRows rows(c.db, sql, {});
        QVERIFY(rows.statement()->ok());
        QCOMPARE(rows.width(), 7);
        const QList<QVariantList> got = readAll(rows);
        QCOMPARE(got.size(), expected.size());
        for (int r = 0; r < got.size(); ++r)
            for (int col = 0; col < 7; ++col) {
                const QVariant& a = got[r][col];
                const QVariant& b = expected[r][col];
                QVERIFY2(a.typeId() == b.typeId() && a.isNull() == b.isNull() && a == b,
                         qPrintable(QStringLiteral("row %1 column %2: %3 / %4")
                                        .arg(r)
                                        .arg(col)
                                        .arg(a.toString(), b.toString())));
            }
        QVERIFY(rows.statement()->ok());
    }

    void theValuesAreBoundInOrder() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (k, v)"));
        QVERIFY(c.exec("INSERT INTO T VALUES ('가', 1), (2, 2), (2.5, 3), (NULL, 4), (x'0102', 5), (1, 6)"));
        const QString sql = QStringLiteral("SELECT v FROM T WHERE k = ? OR k = ? OR k = ? OR k IS ? OR k = ? "
                                           "ORDER BY v");
        const QVariantList values{QStringLiteral("가"), 2, 2.5, QVariant(), QByteArray("\x01\x02", 2)};
        SqliteRows rows(c.db, sql, values);
        QCOMPARE(readAll(rows), readThroughQt(c.db, sql, values));
        SqliteRows again(c.db, QStringLiteral("SELECT v FROM T WHERE k = ?"), {true});
        QCOMPARE(readAll(again), (QList<QVariantList>{{QVariant(qlonglong(6))}}));
    }

    void aStatementTheEngineRefusesKeepsItsWordsAndGivesNoRows() {
        Connection c;
        SqliteRows rows(c.db, QStringLiteral("SELECT x FROM Missing"), {});
        QVERIFY(!rows.statement()->ok());
        QCOMPARE(rows.statement()->engineText(), QStringLiteral("no such table: Missing"));
        QCOMPARE(rows.statement()->engineCode(), 1); // SQLITE_ERROR
        QVariant v[1];
        QVERIFY(!rows.next(v, 1));
    }

    void aWrongNumberOfValuesIsRefused() {
        Connection c;
        SqliteRows rows(c.db, QStringLiteral("SELECT ? + ?"), {1});
        QVERIFY(!rows.statement()->ok());
        QVariant v[1];
        QVERIFY(!rows.next(v, 1));
    }

    void aFailureMetWhileSteppingEndsTheRowsAndIsKept() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n INTEGER)"));
        QVERIFY(c.exec("INSERT INTO T VALUES (1), (-9223372036854775807 - 1), (3)"));
        SqliteRows rows(c.db, QStringLiteral("SELECT abs(n) FROM T ORDER BY rowid"), {});
        QVERIFY(rows.statement()->ok());
        QVariant v[1];
        QVERIFY(rows.next(v, 1));
        QCOMPARE(v[0], QVariant(qlonglong(1)));
        QVERIFY(!rows.next(v, 1));
        QVERIFY(!rows.statement()->ok());
        QCOMPARE(rows.statement()->engineText(), QStringLiteral("integer overflow"));
        QVERIFY(!rows.next(v, 1));
    }

    void aTextRepeatedDownTheRowsIsSharedAndAChangedOneIsNot() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (d TEXT)"));
        QVERIFY(c.exec("INSERT INTO T VALUES ('2024-05-01'), ('2024-05-01'), ('2024-05-02'), ('2024-05-02'), "
                       "('2024-05-01'), (NULL), ('2024-05-01'), ('')"));
        SqliteRows rows(c.db, QStringLiteral("SELECT d FROM T ORDER BY rowid"), {});
        const QList<QVariantList> got = readAll(rows);
        QCOMPARE(got, readThroughQt(c.db, QStringLiteral("SELECT d FROM T ORDER BY rowid")));
        const auto data = [&](int r) { return got[r][0].toString().constData(); };
        QCOMPARE(data(1), data(0));
        QVERIFY(data(2) != data(1));
        QCOMPARE(data(3), data(2));
        QVERIFY(data(4) != data(3));
        QCOMPARE(got[4][0].toString(), QStringLiteral("2024-05-01"));
        QVERIFY(got[5][0].isNull());
        QCOMPARE(got[6][0].toString(), QStringLiteral("2024-05-01"));
        QVERIFY(!got[7][0].isNull());
        QCOMPARE(got[7][0].toString(), QString());
    }

    // Codes that never repeat stop being compared; the dates beside them keep being shared; the
    // values stay those of Qt's driver either way.
    void aColumnWhoseTextsSeldomRepeatStopsBeingShared() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (d TEXT, code TEXT)"));
        QSqlQuery insert(c.db);
        insert.prepare("INSERT INTO T VALUES (?, ?)");
        QVERIFY(c.db.transaction());
        for (int i = 0; i < 300; ++i) {
            insert.addBindValue(QStringLiteral("2024-05-%1").arg(1 + i / 30, 2, 10, QChar(u'0')));
            // Two rows of one code only at the end, after a long run of codes seen once.
            insert.addBindValue(QStringLiteral("C%1").arg(i < 298 ? i : 298, 5, 10, QChar(u'0')));
            QVERIFY(insert.exec());
        }
        QVERIFY(c.db.commit());
        const QString sql = QStringLiteral("SELECT d, code FROM T ORDER BY rowid");
        SqliteRows rows(c.db, sql, {});
        const QList<QVariantList> got = readAll(rows);
        QCOMPARE(got, readThroughQt(c.db, sql));
        const auto data = [&](int r, int col) { return got[r][col].toString().constData(); };
        QCOMPARE(got[298][1].toString(), got[299][1].toString());
        QVERIFY(data(298, 1) != data(299, 1)); // no longer compared: made again
        QCOMPARE(data(297, 0), data(296, 0));  // still shared
    }

    void finishLetsGoOfTheStatementSoAnAttachedFileCanGo() {
        Connection c;
        QVERIFY(c.exec("ATTACH '" + c.dir.filePath("other.db") + "' AS other"));
        QVERIFY(c.exec("CREATE TABLE other.T (n)"));
        QVERIFY(c.exec("INSERT INTO other.T VALUES (1), (2), (3)"));
        SqliteRows rows(c.db, QStringLiteral("SELECT n FROM other.T"), {});
        QVariant v[1];
        QVERIFY(rows.next(v, 1));
        QSqlQuery detach(c.db);
        QVERIFY(!detach.exec("DETACH other")); // a statement still reads it
        rows.statement()->finish();
        QVERIFY(!rows.next(v, 1));
        QVERIFY2(detach.exec("DETACH other"), qPrintable(detach.lastError().text()));
    }

    void onlyAnOpenSqliteConnectionIsSteppedDirectly() {
        Connection c;
        QVERIFY(SqliteRows::canStep(c.db));
        QVERIFY(!SqliteRows::canStep(QSqlDatabase()));
        c.db.close();
        QVERIFY(!SqliteRows::canStep(c.db));
        SqliteRows rows(c.db, QStringLiteral("SELECT 1"), {});
        QVERIFY(!rows.statement()->ok());
    }

    // A search run again binds other values to the statement prepared the first time.
    void aKeptStatementRunsAgainWithOtherValuesPreparedOnce() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n INTEGER, t TEXT)"));
        QVERIFY(c.exec("INSERT INTO T VALUES (1, '가'), (2, '나'), (3, '다'), (4, '라')"));
        KeptStatements kept;
        const QString sql = QStringLiteral("SELECT n, t FROM T WHERE n >= ? ORDER BY n");
        const auto first = kept.run(c.db, sql, {3});
        QVERIFY(first && first->ok());
        SqliteRows rows(first);
        QVariant v[2];
        QVERIFY(rows.next(v, 2));
        sqlite3_stmt* const prepared = first->row();
        QVERIFY(prepared);
        const auto second = kept.run(c.db, sql, {2}); // the list before is replaced by now
        QCOMPARE(second.get(), first.get());
        SqliteRows again(second);
        const QList<QVariantList> got = readAll(again);
        QCOMPARE(got, readThroughQt(c.db, sql, {2}));
        QCOMPARE(got.size(), 3);
        QCOMPARE(kept.size(), 1);
        SqliteRows third(kept.run(c.db, sql, {4}));
        QVERIFY(third.next(v, 2));
        QCOMPARE(third.statement()->row(), prepared);
        QCOMPARE(v[1].toString(), QStringLiteral("라"));
        QVERIFY(!third.next(v, 2));
        QVERIFY(!third.next(v, 2)); // through stays through until the next run
    }

    // Read through (or let go half read), a kept statement holds no read: the table it read can
    // be dropped on the same connection, which an unfinished statement forbids.
    void aKeptStatementThroughOrLetGoHoldsNoRead() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n)"));
        QVERIFY(c.exec("CREATE TABLE U (n)"));
        QVERIFY(c.exec("INSERT INTO T VALUES (1), (2)"));
        QVERIFY(c.exec("INSERT INTO U VALUES (1), (2)"));
        KeptStatements kept;
        SqliteRows t(kept.run(c.db, QStringLiteral("SELECT n FROM T WHERE n > ?"), {0}));
        QVariant v[1];
        QVERIFY(t.next(v, 1));
        QSqlQuery drop(c.db);
        QVERIFY(!drop.exec("DROP TABLE T")); // still reading
        QVERIFY(t.next(v, 1));
        QVERIFY(!t.next(v, 1));
        QVERIFY2(drop.exec("DROP TABLE T"), qPrintable(drop.lastError().text()));
        SqliteRows u(kept.run(c.db, QStringLiteral("SELECT n FROM U WHERE n > ?"), {0}));
        QVERIFY(u.next(v, 1));
        u.statement()->finish();
        QVERIFY(!u.next(v, 1));
        QVERIFY2(drop.exec("DROP TABLE U"), qPrintable(drop.lastError().text()));
    }

    // A statement the engine refuses, or values it cannot take, are said and not kept.
    void aRefusedStatementIsNotKept() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n)"));
        KeptStatements kept;
        const auto refused = kept.run(c.db, QStringLiteral("SELECT nothing FROM T WHERE n = ?"), {1});
        QVERIFY(refused && !refused->ok());
        QVERIFY(refused->engineText().contains(QStringLiteral("nothing")));
        const auto miscounted = kept.run(c.db, QStringLiteral("SELECT n FROM T WHERE n = ?"), {1, 2});
        QVERIFY(miscounted && !miscounted->ok());
        QCOMPARE(kept.size(), 0);
        QVERIFY(!kept.run(QSqlDatabase(), QStringLiteral("SELECT 1"), {}));
    }

    // Let go, the kept statements leave the connection free to close; kept, they would not.
    void keptStatementsLetGoLeaveTheConnectionFreeToClose() {
        for (const bool letGo : {true, false}) {
            Connection c;
            QVERIFY(c.exec("CREATE TABLE T (n)"));
            auto kept = std::make_unique<KeptStatements>();
            QVERIFY(kept->run(c.db, QStringLiteral("SELECT n FROM T WHERE n = ?"), {1})->ok());
            if (letGo) kept->clear();
            c.db.close();
            QCOMPARE(c.db.lastError().type() == QSqlError::NoError, letGo);
            kept.reset();
        }
    }

    // A list still reading a kept statement stops where it is when the statement runs again for
    // another list: it never reads the rows of the run after it.
    void aListOfAnEarlierRunEndsWhenItsStatementRunsAgain() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n INTEGER)"));
        QVERIFY(c.exec("INSERT INTO T VALUES (1), (2), (3), (4)"));
        KeptStatements kept;
        const QString sql = QStringLiteral("SELECT n FROM T WHERE n >= ? ORDER BY n");
        SqliteRows earlier(kept.run(c.db, sql, {1}));
        QVariant v[1];
        QVERIFY(earlier.next(v, 1));
        QCOMPARE(v[0].toInt(), 1);
        SqliteRows later(kept.run(c.db, sql, {3}));
        QCOMPARE(later.statement().get(), earlier.statement().get());
        QVERIFY(!earlier.next(v, 1));
        QCOMPARE(readAll(later), readThroughQt(c.db, sql, {3}));
    }

    // A list that has read the rows it counted lets go of them without stepping past the last:
    // the kept statement then holds no read (a write on the same connection after another
    // connection wrote would otherwise fail on the old state it still sees).
    void rowsLetGoOfAfterTheLastCountedRowEndTheKeptStatementsRead() {
        Connection c;
        QVERIFY(c.exec("CREATE TABLE T (n)"));
        QVERIFY(c.exec("INSERT INTO T VALUES (1), (2)"));
        KeptStatements kept;
        auto rows =
            std::make_unique<SqliteRows>(kept.run(c.db, QStringLiteral("SELECT n FROM T WHERE n > ?"), {0}));
        QVariant v[1];
        QVERIFY(rows->next(v, 1));
        QVERIFY(rows->next(v, 1)); // both counted rows read; the statement is not through yet
        QSqlQuery drop(c.db);
        QVERIFY(!drop.exec("DROP TABLE T"));
        rows.reset();
        QVERIFY2(drop.exec("DROP TABLE T"), qPrintable(drop.lastError().text()));
    }

    // A connection about to close lets go of every statement prepared on it, kept or half read:
    // it then closes (the file let go), the rows read no further, and the kept statement is
    // prepared again on the next connection.
    void statementsLetGoOfWithTheirConnectionLeaveItFreeToClose() {
        KeptStatements kept;
        const QString sql = QStringLiteral("SELECT n FROM T WHERE n >= ? ORDER BY n");
        auto c = std::make_unique<Connection>();
        QVERIFY(c->exec("CREATE TABLE T (n INTEGER)"));
        QVERIFY(c->exec("INSERT INTO T VALUES (1), (2), (3)"));
        SqliteRows halfRead(c->db, sql, {1});
        SqliteRows keptRows(kept.run(c->db, sql, {2}));
        QVariant v[1];
        QVERIFY(halfRead.next(v, 1));
        QVERIFY(keptRows.next(v, 1));
        SqliteStatement::letGoOf(c->db);
        QVERIFY(keptRows.statement()->released());
        QVERIFY(!halfRead.next(v, 1));
        QVERIFY(!keptRows.next(v, 1));
        c->db.close();
        QVERIFY2(c->db.lastError().type() == QSqlError::NoError, qPrintable(c->db.lastError().text()));
        c.reset();
        Connection next;
        QVERIFY(next.exec("CREATE TABLE T (n INTEGER)"));
        QVERIFY(next.exec("INSERT INTO T VALUES (7), (8)"));
        SqliteRows afresh(kept.run(next.db, sql, {8}));
        QVERIFY(afresh.statement()->ok());
        QVERIFY(!afresh.statement()->released());
        QVERIFY(afresh.next(v, 1));
        QCOMPARE(v[0].toInt(), 8);
        QVERIFY(!afresh.next(v, 1));
    }
};

NB_TEST_MAIN(TestSqliteRows)
#include "tst_sqlite_rows.moc"
