// The two queries across store files: the statement list with the traders' names, and the
// traders not dealt with since a date.
#include "StoreTestKit.h"
#include "storage/CrossFileQueries.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QFile>

using namespace nb;

namespace {

void addTrader(const QString& code, const QString& name) {
    QVERIFY(
        stores().dbBasic.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name, Phone) VALUES (?, ?, ?)"),
                                 {code, name, QStringLiteral("02-") + code}));
}

void addStatement(const QString& billNo, const QString& date, const QString& trader) {
    QVERIFY(stores().dbBill.Execute(
        QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode) VALUES (?, ?, ?)"),
        {billNo, date, trader}));
    QVERIFY(stores().dbBill.Execute(
        QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName) VALUES (?, 1, ?)"),
        {billNo, QStringLiteral("품목")}));
}

void openStores(const test::TestHome& home) {
    test::useStoreFolder(home);
    CreateMissingStoreFiles();
    QVERIFY(OpenDatabases());
}

// Three traders: 가나상사 dealt on 01-10, 다라상회 on 03-01, 마바 never.
void layDownTraders(const test::TestHome& home) {
    openStores(home);
    addTrader(QStringLiteral("000001"), QStringLiteral("가나상사"));
    addTrader(QStringLiteral("000002"), QStringLiteral("다라상회"));
    addTrader(QStringLiteral("000003"), QStringLiteral("마바"));
    addStatement(QStringLiteral("000001"), QStringLiteral("2024-01-05"), QStringLiteral("000001"));
    addStatement(QStringLiteral("000002"), QStringLiteral("2024-01-10"), QStringLiteral("000001"));
    addStatement(QStringLiteral("000003"), QStringLiteral("2024-03-01"), QStringLiteral("000002"));
}

QStringList rowsOf(Recordset& rs, const QStringList& fields) {
    QStringList out;
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        QStringList row;
        for (const QString& f : fields)
            row << rs.text(f);
        out << row.join(u'|');
    }
    return out;
}

const QStringList kStatementFields{QStringLiteral("BillNo"), QStringLiteral("BillDate"),
                                   QStringLiteral("C_Name")};
const QStringList kIdleFields{QStringLiteral("C_Name"), QStringLiteral("Code"), QStringLiteral("lastdate")};

} // namespace

class TestCrossFileQueries : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void statementListBringsTheTraderName() {
        test::TestHome home;
        layDownTraders(home);
        Recordset rs;
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-01-01"), QStringLiteral("2024-12-31")));
        QCOMPARE(rowsOf(rs, kStatementFields), (QStringList{QStringLiteral("000001|2024-01-05|가나상사"),
                                                            QStringLiteral("000002|2024-01-10|가나상사"),
                                                            QStringLiteral("000003|2024-03-01|다라상회")}));
        QCOMPARE(rs.fieldIndex(QStringLiteral("TotAmount")) >= 0, true); // every Master column comes along
    }
    void statementListKeepsAStatementWhoseTraderIsGone() {
        test::TestHome home;
        layDownTraders(home);
        addStatement(QStringLiteral("000004"), QStringLiteral("2024-02-01"), QStringLiteral("000099"));
        Recordset rs;
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-02-01"), QStringLiteral("2024-02-01")));
        QCOMPARE(rs.RecordCount(), 1);
        QVERIFY(rs.isNull(QStringLiteral("C_Name")));
        QCOMPARE(rs.text(QStringLiteral("C_Name")), QString());
    }
    void statementListOfOneTrader() {
        test::TestHome home;
        layDownTraders(home);
        Recordset rs;
        QVERIFY(OpenStatementList(stores().dbBill, app().DbBasicFile, rs, QStringLiteral("2024-01-01"),
                                  QStringLiteral("2024-12-31"), QStringLiteral("000002")));
        QCOMPARE(rowsOf(rs, kStatementFields), QStringList{QStringLiteral("000003|2024-03-01|다라상회")});
    }
    void datesCompareAsText() {
        test::TestHome home;
        layDownTraders(home);
        addStatement(QStringLiteral("000004"), QStringLiteral("2024-1-20"), QStringLiteral("000001"));
        Recordset rs;
        // Without its leading zero a January date falls outside January ...
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-01-01"), QStringLiteral("2024-01-31")));
        QCOMPARE(rowsOf(rs, kStatementFields), (QStringList{QStringLiteral("000001|2024-01-05|가나상사"),
                                                            QStringLiteral("000002|2024-01-10|가나상사")}));
        // ... and sorts after March.
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-01-01"), QStringLiteral("2024-12-31")));
        QCOMPARE(rowsOf(rs, kStatementFields).last(), QStringLiteral("000004|2024-1-20|가나상사"));
    }
    void tradersNotDealtWithSinceADate() {
        test::TestHome home;
        layDownTraders(home);
        Recordset rs;
        QVERIFY(OpenTradersNotDealtSince(rs, QString(), QStringLiteral("2024-02-01")));
        QCOMPARE(rowsOf(rs, kIdleFields),
                 (QStringList{QStringLiteral("가나상사|000001|2024-01-10"), QStringLiteral("마바|000003|")}));
        QCOMPARE(rs.fieldName(4), test::engineWords("Code", "code")); // the server's names are lower case
        QVERIFY(rs.fieldIndex(QStringLiteral("HPhone")) >= 0);
    }
    void traderWithNoStatementAppearsWithEmptyLastDate_data() {
        QTest::addColumn<QString>("date");
        QTest::newRow("earliest") << QStringLiteral("0000-00-00");
        QTest::newRow("ordinary") << QStringLiteral("2024-02-01");
        QTest::newRow("latest") << QStringLiteral("9999-12-31");
        QTest::newRow("empty") << QString();
    }
    void traderWithNoStatementAppearsWithEmptyLastDate() {
        QFETCH(QString, date);
        test::TestHome home;
        layDownTraders(home);
        Recordset rs;
        QVERIFY(OpenTradersNotDealtSince(rs, QStringLiteral("마바"), date));
        QCOMPARE(rs.RecordCount(), 1);
        QVERIFY(rs.isNull(QStringLiteral("lastdate")));
        QCOMPARE(rs.text(QStringLiteral("lastdate")), QString());
    }
    void traderNameMatchesTheTypedTextLiterally() {
        test::TestHome home;
        openStores(home);
        addTrader(QStringLiteral("000001"), QStringLiteral("100% 상사"));
        addTrader(QStringLiteral("000002"), QStringLiteral("1000 상사"));
        addTrader(QStringLiteral("000003"), QStringLiteral("O'Neil_1"));
        addTrader(QStringLiteral("000004"), QStringLiteral("O'NeilX1"));
        Recordset rs;
        QVERIFY(OpenTradersNotDealtSince(rs, QStringLiteral("0%"), QStringLiteral("2024-01-01")));
        QCOMPARE(rowsOf(rs, {QStringLiteral("C_Name")}), QStringList{QStringLiteral("100% 상사")});
        QVERIFY(OpenTradersNotDealtSince(rs, QStringLiteral("'Neil_"), QStringLiteral("2024-01-01")));
        QCOMPARE(rowsOf(rs, {QStringLiteral("C_Name")}), QStringList{QStringLiteral("O'Neil_1")});
    }
    void deletingATraderLeavesTheDetailRowsOfItsStatements() {
        test::TestHome home;
        layDownTraders(home);
        // What the trader screen runs on delete: its statements' heads and its invoices go.
        QVERIFY(stores().dbBill.Execute(QStringLiteral("DELETE FROM Master WHERE CCode = ?"),
                                        {QStringLiteral("000001")}));
        QVERIFY(stores().dbTax.Execute(QStringLiteral("DELETE FROM NewAcount WHERE CCode = ?"),
                                       {QStringLiteral("000001")}));
        QVERIFY(stores().dbBasic.Execute(QStringLiteral("DELETE FROM Trader WHERE Code = ?"),
                                         {QStringLiteral("000001")}));
        QCOMPARE(test::texts(test::rawColumn(app().DbBillFile,
                                             QStringLiteral("SELECT BillNo FROM Detail ORDER BY BillNo"))),
                 (QStringList{QStringLiteral("000001"), QStringLiteral("000002"), QStringLiteral("000003")}));
        QCOMPARE(test::texts(test::rawColumn(app().DbBillFile, QStringLiteral("SELECT BillNo FROM Master"))),
                 QStringList{QStringLiteral("000003")});
    }
    void otherFileIsLetGoAfterTheQuery() {
        test::TestHome home;
        layDownTraders(home);
        Recordset rs;
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-01-01"), QStringLiteral("2024-12-31")));
        if (test::onServerEngine()) {
            // Every store is a schema of the one database: nothing is attached, and an alias
            // must name the store it stands for.
            QVERIFY(stores().dbBill.attach(app().DbBasicFile, kBasicAlias));
            QVERIFY(!stores().dbBill.attach(app().DbTaxFile, kBasicAlias));
        } else {
            QSqlQuery q(stores().dbBill.connection());
            QVERIFY(q.exec(QStringLiteral("PRAGMA database_list")));
            QStringList names;
            while (q.next())
                names << q.value(1).toString();
            QCOMPARE(names, QStringList{QStringLiteral("main")});
        }
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-01-01"), QStringLiteral("2024-12-31")));
        QCOMPARE(rs.RecordCount(), 3);
    }
    void missingOtherFileShowsABoxAndCreatesNothing() {
        test::TestHome home;
        layDownTraders(home);
        const QString gone = home.file(QStringLiteral("Dbs/none.db"));
        auto& msgs = test::script();
        Recordset rs;
        QVERIFY(!OpenStatementList(stores().dbBill, gone, rs, QStringLiteral("2024-01-01"),
                                   QStringLiteral("2024-12-31")));
        QCOMPARE(msgs.last().text,
                 storeFaultText(14, QString()) + QStringLiteral("\runable to open database: ") + gone +
                     u'\r' +
                     sqlForDisplay(statementListSql(false),
                                   {QStringLiteral("2024-01-01"), QStringLiteral("2024-12-31")}));
        QCOMPARE(msgs.last().title, QStringLiteral("ERROR"));
        QVERIFY(!QFile::exists(gone));
        QVERIFY(!rs.isOpen());
    }
    void neverOpenedStoreShowsTheDeclarationBox() {
        test::TestHome home;
        test::useStoreFolder(home);
        auto& msgs = test::script();
        Recordset rs;
        QVERIFY(!OpenTradersNotDealtSince(rs, QStringLiteral("가"), QStringLiteral("2024-01-01")));
        QVERIFY(msgs.last().text.startsWith(
            QStringLiteral("Data Base MDB가 선언되지 않았습니다.\rSELECT C_Name")));
        QCOMPARE(msgs.last().title, QStringLiteral("MDB 오류"));
    }
};

NB_TEST_MAIN(TestCrossFileQueries)
#include "tst_cross_file_queries.moc"
