// DAO_AddField: a column is added once, its statement runs once just after, a column of the
// name in any case stops it, and a failure shows the procedure's report.
#include "StoreTestKit.h"

using namespace nb;

namespace {

QString failureText(int number, const QString& description, const QString& table, const QString& field) {
    return QStringLiteral("Error ") + QString::number(number) + QStringLiteral(" (") + description +
           QStringLiteral(") in procedure DAO_AddField of Module mdlCommonHM\r\n[TABLE]: ") + table +
           QStringLiteral(",    [FIELD]: ") + field;
}

// An older basic file: Trader without HPhone, Product with the unit in PNorm.
QString oldBasicFile(const test::TestHome& home) {
    const QString path = home.file(QStringLiteral("old.db"));
    const bool ok = test::runRaw(
        path, {QStringLiteral("CREATE TABLE Trader (Code TEXT(6), C_Name TEXT(50), Phone TEXT(20))"),
               QStringLiteral("INSERT INTO Trader VALUES ('000001', '가', '02'), ('000002', '나', '031')"),
               QStringLiteral("CREATE TABLE Product (Code TEXT(6), PName TEXT(50), PNorm TEXT(50))"),
               QStringLiteral("INSERT INTO Product VALUES ('000001', '볼트', 'EA')")});
    return ok ? path : QString();
}

} // namespace

class TestAddField : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void addsTheColumnAndRunsItsStatementOnce() {
        test::TestHome home;
        auto& msgs = test::script();
        Database db;
        QVERIFY(db.open(oldBasicFile(home)));
        QVERIFY(DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("HPhone"), dbText, 14, true,
                             QStringLiteral("UPDATE Trader SET HPhone = ''")));
        QCOMPARE(db.columns(QStringLiteral("Trader")).last(), QStringLiteral("HPhone"));
        QCOMPARE(db.columnType(QStringLiteral("Trader"), QStringLiteral("HPhone")),
                 QStringLiteral("TEXT(14)"));
        QCOMPARE(test::texts(test::rawColumn(db.path(), QStringLiteral("SELECT HPhone FROM Trader"))),
                 (QStringList{QString(), QString()}));
        // The second call finds the column: the statement does not run again.
        QVERIFY(db.Execute(QStringLiteral("UPDATE Trader SET HPhone = ? WHERE Code = ?"),
                           {QStringLiteral("010-1"), QStringLiteral("000001")}));
        const int before = db.statementsRun();
        QVERIFY(!DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("HPhone"), dbText, 14, true,
                              QStringLiteral("UPDATE Trader SET HPhone = ''")));
        QCOMPARE(db.statementsRun(), before);
        QCOMPARE(test::rawValue(db.path(), QStringLiteral("SELECT HPhone FROM Trader WHERE Code = '000001'"))
                     .toString(),
                 QStringLiteral("010-1"));
        QVERIFY(msgs.records().empty());
    }
    void fieldNameInAnotherCaseIsFoundAndItsStatementDoesNotRun() {
        test::TestHome home;
        Database db;
        QVERIFY(db.open(oldBasicFile(home)));
        QVERIFY(db.Execute(QStringLiteral("ALTER TABLE Product ADD COLUMN unit TEXT(10)")));
        const int before = db.statementsRun();
        QVERIFY(!DAO_AddField(db, QStringLiteral("Product"), QStringLiteral("Unit"), dbText, 10, true,
                              QStringLiteral("UPDATE Product SET Unit = PNorm, PNorm = ''")));
        QCOMPARE(db.statementsRun(), before);
        QCOMPARE(test::rawValue(db.path(), QStringLiteral("SELECT PNorm FROM Product")).toString(),
                 QStringLiteral("EA"));
        QCOMPARE(db.columns(QStringLiteral("Product")).count(), 4);
    }
    void sizeZeroLeavesTheWidthToTheEngine() {
        test::TestHome home;
        Database db;
        QVERIFY(db.open(oldBasicFile(home)));
        QVERIFY(
            DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("Memo"), dbText, 0, true, QString()));
        QCOMPARE(db.columnType(QStringLiteral("Trader"), QStringLiteral("Memo")), QStringLiteral("TEXT"));
        QVERIFY(DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("Points"), dbLong, 0, false,
                             QString()));
        QCOMPARE(db.columnType(QStringLiteral("Trader"), QStringLiteral("Points")),
                 QStringLiteral("INTEGER"));
        QVERIFY(
            DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("Grade"), dbLong, 7, false, QString()));
        QCOMPARE(db.columnType(QStringLiteral("Trader"), QStringLiteral("Grade")), QStringLiteral("INTEGER"));
    }
    void allowZeroLengthDecidesWhetherEmptyTextIsAccepted() {
        test::TestHome home;
        Database db;
        QVERIFY(db.open(oldBasicFile(home)));
        auto& msgs = test::script();
        QVERIFY(DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("Strict"), dbText, 5, false,
                             QString()));
        QVERIFY(
            DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("Loose"), dbText, 5, true, QString()));
        QVERIFY(db.Execute(QStringLiteral("UPDATE Trader SET Loose = ''")));
        QVERIFY(db.Execute(QStringLiteral("UPDATE Trader SET Strict = NULL")));
        QVERIFY(msgs.records().empty());
        QVERIFY(!db.tryExecute(QStringLiteral("UPDATE Trader SET Strict = ''")));
    }
    void failingStatementShowsTheReportAndLeavesTheTableAsItWas() {
        test::TestHome home;
        Database db;
        QVERIFY(db.open(oldBasicFile(home)));
        auto& msgs = test::script();
        QVERIFY(DAO_AddField(db, QStringLiteral("Trader"), QStringLiteral("HPhone"), dbText, 14, true,
                             QStringLiteral("UPDATE Trader SET Missing = ''")));
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, failureText(3011, QStringLiteral("no such column: Missing"),
                                               QStringLiteral("Trader"), QStringLiteral("HPhone")));
        QCOMPARE(msgs.last().title, applicationTitle());
        QCOMPARE(msgs.last().buttons, int(MbOk));
        // The column went with its statement, so the next start adds both again.
        QVERIFY(!db.hasColumn(QStringLiteral("Trader"), QStringLiteral("HPhone")));
        QVERIFY(!db.inTransaction());
    }
    void missingTableShowsTheReport() {
        test::TestHome home;
        Database db;
        QVERIFY(db.open(oldBasicFile(home)));
        auto& msgs = test::script();
        QVERIFY(DAO_AddField(db, QStringLiteral("Absent"), QStringLiteral("HPhone"), dbText, 14, true,
                             QStringLiteral("UPDATE Absent SET HPhone = ''")));
        QCOMPARE(msgs.last().text, failureText(3011, QStringLiteral("no such table: Absent"),
                                               QStringLiteral("Absent"), QStringLiteral("HPhone")));
    }
    void neverOpenedStoreShowsTheReport() {
        test::TestHome home;
        Database never;
        auto& msgs = test::script();
        QVERIFY(DAO_AddField(never, QStringLiteral("Trader"), QStringLiteral("HPhone"), dbText, 14, true,
                             QStringLiteral("UPDATE Trader SET HPhone = ''")));
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text,
                 failureText(91, QStringLiteral("Object variable or With block variable not set"),
                             QStringLiteral("Trader"), QStringLiteral("HPhone")));
    }
    void declaredTypesFollowTheOriginalTypes() {
        QCOMPARE(declaredType(dbText, 6), QStringLiteral("TEXT(6)"));
        QCOMPARE(declaredType(dbText, 0), QStringLiteral("TEXT"));
        QCOMPARE(declaredType(dbMemo, 0), QStringLiteral("TEXT"));
        QCOMPARE(declaredType(dbLong, 0), QStringLiteral("INTEGER"));
        QCOMPARE(declaredType(dbDouble, 0), QStringLiteral("REAL"));
        QCOMPARE(declaredType(dbSingle, 0), QStringLiteral("REAL"));
        QCOMPARE(declaredType(dbBoolean, 0), QStringLiteral("BOOLEAN"));
        QCOMPARE(declaredType(dbByte, 0), QStringLiteral("TINYINT"));
        QCOMPARE(declaredType(dbInteger, 0), QStringLiteral("SMALLINT"));
    }
};

NB_TEST_MAIN(TestAddField)
#include "tst_add_field.moc"
