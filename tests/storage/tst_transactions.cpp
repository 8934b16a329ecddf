// Transactions of a store: a failed commit rolls the save back and leaves nothing open, a save
// begins as a write and waits for another connection while the window stays alive, and the
// failure box names the cause in Korean above the engine's words.
#include "StoreTestKit.h"
#include "storage/StoreLayout.h"

#include <QElapsedTimer>
#include <QTimer>

using namespace nb;

namespace {

void openFreshBasic(const test::TestHome& home, Database& db) {
    test::useStoreFolder(home);
    QVERIFY(createStoreFile(app().DbBasicFile, basicTables()));
    QVERIFY(OpenDb(db, app().DbBasicFile, 0));
}

// A table whose rows need a parent by the end of the transaction: a commit with an orphan row
// fails at COMMIT itself, as a full disk does.
void addDeferredCheck(Database& db) {
    QVERIFY(db.tryExecute(QStringLiteral("CREATE TABLE Parent (Id INTEGER PRIMARY KEY)")));
    QVERIFY(db.tryExecute(QStringLiteral(
        "CREATE TABLE Child (ParentId INTEGER REFERENCES Parent(Id) DEFERRABLE INITIALLY DEFERRED)")));
    if (!test::onServerEngine()) QVERIFY(db.tryExecute(QStringLiteral("PRAGMA foreign_keys=ON")));
}

int childRows(const QString& path) {
    return test::rawValue(path, QStringLiteral("SELECT count(*) FROM Child")).toInt();
}

} // namespace

class TestTransactions : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void failedCommitRollsBackAndLeavesNoTransactionOpen() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        addDeferredCheck(db);
        QVERIFY(db.beginTransaction());
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO Child VALUES (7)")));
        QVERIFY(!db.commit());
        QVERIFY(!db.inTransaction());
        QVERIFY(db.lastErrorDescription().contains(QStringLiteral("FOREIGN KEY"), Qt::CaseInsensitive));
        QCOMPARE(childRows(app().DbBasicFile), 0);
        // The next save is a save of its own: another connection sees it at once.
        QVERIFY(db.beginTransaction());
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO Parent VALUES (1)")));
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO Child VALUES (1)")));
        QVERIFY(db.commit());
        QVERIFY(!db.inTransaction());
        QCOMPARE(childRows(app().DbBasicFile), 1);
    }
    void failedInnerCommitKeepsTheOuterOpen() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        QVERIFY(db.beginTransaction());
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO Trader (Code) VALUES ('000001')")));
        QVERIFY(db.beginTransaction());
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO Trader (Code) VALUES ('000002')")));
        db.rollback();
        QVERIFY(db.inTransaction());
        QVERIFY(db.commit());
        QCOMPARE(test::texts(test::rawColumn(app().DbBasicFile, QStringLiteral("SELECT Code FROM Trader"))),
                 QStringList{QStringLiteral("000001")});
    }
    void aSaveBeginsAsAWriteAndIsRefusedAfterTheBusyWait() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction()); // holds the write lock without having written
        db.setBusyTimeout(400);
        QElapsedTimer waited;
        waited.start();
        QVERIFY(!db.beginTransaction());
        QVERIFY(waited.elapsed() >= 400);
        QVERIFY(isBusyCode(db.lastEngineCode()));
        QVERIFY(!db.inTransaction());
        other.rollback();
        QVERIFY(db.beginTransaction());
        QVERIFY(db.commit());
    }
    void aBusyStoreIsWaitedForWithTheWindowAlive() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction());
        QVERIFY(other.tryExecute(QStringLiteral("INSERT INTO Trader (Code) VALUES ('000001')")));
        // The other copy finishes while this one waits: only a handled event can commit it.
        QTimer::singleShot(300, [&other] { QVERIFY(other.commit()); });
        QVERIFY(db.beginTransaction());
        QCOMPARE(test::rawValue(app().DbBasicFile, QStringLiteral("SELECT count(*) FROM Trader")).toInt(), 1);
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO Trader (Code) VALUES ('000002')")));
        QVERIFY(db.commit());
    }
    void aPlainStatementWaitsForABusyStoreToo() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction());
        QTimer::singleShot(300, [&other] { other.rollback(); });
        auto& msgs = test::script();
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO Trader (Code) VALUES ('000001')")));
        QVERIFY(msgs.records().empty());
    }
    void theFailureBoxNamesTheCauseInKoreanAboveTheEngineWords_data() {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("engine");
        QTest::addColumn<QString>("cause");
        QTest::newRow("full") << 13 << QStringLiteral("database or disk is full") << QStringLiteral("디스크");
        QTest::newRow("write") << 778 << QStringLiteral("disk I/O error") << QStringLiteral("디스크");
        QTest::newRow("read-only") << 8 << QStringLiteral("attempt to write a readonly database")
                                   << QStringLiteral("읽기 전용");
        QTest::newRow("damaged") << 11 << QStringLiteral("database disk image is malformed")
                                 << QStringLiteral("손상");
        QTest::newRow("not a store") << 26 << QStringLiteral("file is not a database")
                                     << QStringLiteral("손상");
        QTest::newRow("busy") << 5 << QStringLiteral("database is locked") << QStringLiteral("다른 프로그램");
        QTest::newRow("duplicate") << 2067 << QStringLiteral("UNIQUE constraint failed: User.Serial")
                                   << QStringLiteral("이미 있어");
    }
    void theFailureBoxNamesTheCauseInKoreanAboveTheEngineWords() {
        QFETCH(int, code);
        QFETCH(QString, engine);
        QFETCH(QString, cause);
        const QString text = storeFaultText(code, engine);
        QVERIFY2(text.contains(cause), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("하십시오")));
    }
    void aFailedCommitShowsItsCauseAndTheEngineWords() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        addDeferredCheck(db);
        QVERIFY(db.beginTransaction());
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO Child VALUES (7)")));
        QVERIFY(!db.commit());
        auto& msgs = test::script();
        ReportSaveFailure(db, QStringLiteral("세금계산서를 저장하지 못했습니다."));
        const QStringList lines = msgs.last().text.split(u'\r');
        QCOMPARE(lines.first(), QStringLiteral("세금계산서를 저장하지 못했습니다."));
        QVERIFY(lines.at(1).contains(QStringLiteral("저장하지 못했습니다")));
        QCOMPARE(lines.last(), test::engineWords("FOREIGN KEY constraint failed",
                                                 "insert or update on table \"child\" violates foreign key "
                                                 "constraint \"child_parentid_fkey\""));
    }
    void anEngineTextNeverStandsAloneInTheQueryBox() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO User (Serial, Company) VALUES ('1', '가')")));
        auto& msgs = test::script();
        QVERIFY(!db.Execute(QStringLiteral("INSERT INTO User (Serial, Company) VALUES ('1', '나')")));
        const QStringList lines = msgs.last().text.split(u'\r');
        QVERIFY(lines.first().contains(QStringLiteral("같은 번호(코드)의 자료가 이미 있어")));
        QCOMPARE(lines.at(1),
                 test::engineWords("UNIQUE constraint failed: User.Serial",
                                   "duplicate key value violates unique constraint \"user_pk\""));
    }
};

NB_TEST_MAIN(TestTransactions)
#include "tst_transactions.moc"
