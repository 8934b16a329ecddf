// The query helpers: opening files, the failure boxes by error number, reading and writing
// rows with bound values, transactions and the count of statements run.
#include "StoreTestKit.h"
#include "storage/StoreLayout.h"

#include <QFile>

using namespace nb;

namespace {

const QString kDeclaredText = QStringLiteral("Data Base MDB가 선언되지 않았습니다.\r");
const QString kExpressionText = QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r");

// A fresh basic store file, open.
void openFreshBasic(const test::TestHome& home, Database& db) {
    test::useStoreFolder(home);
    QVERIFY(createStoreFile(app().DbBasicFile, basicTables()));
    QVERIFY(OpenDb(db, app().DbBasicFile, 0));
}

void addTrader(Database& db, const QString& code, const QString& name) {
    QVERIFY(db.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"), {code, name}));
}

} // namespace

class TestQueryHelpers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void openDbOpensAnExistingFileWithoutABox() {
        test::TestHome home;
        auto& msgs = test::script();
        Database db;
        openFreshBasic(home, db);
        QVERIFY(db.isOpen());
        QCOMPARE(db.path(), app().DbBasicFile);
        QVERIFY(msgs.records().empty());
    }
    void openDbOnAMissingFileAnswersFalseSilentlyAndCreatesNothing() {
        test::TestHome home;
        auto& msgs = test::script();
        Database db;
        const QString path = home.file(QStringLiteral("nothing.db"));
        QVERIFY(!OpenDb(db, path, 0));
        QVERIFY(!db.isOpen());
        QVERIFY(!QFile::exists(path));
        QVERIFY(msgs.records().empty());
    }
    void openDbOnAFileThatIsNoStoreAnswersFalse() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("text.db"));
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(4096, 'x'));
        f.close();
        Database db;
        QVERIFY(!OpenDb(db, path, 0));
        QVERIFY(!db.isOpen());
    }
    void emptyResultIsNoFailure() {
        test::TestHome home;
        auto& msgs = test::script();
        Database db;
        openFreshBasic(home, db);
        Recordset rs;
        QVERIFY(OpenSnapshot(db, rs, QStringLiteral("SELECT * FROM Trader")));
        QVERIFY(rs.isOpen());
        QCOMPARE(rs.RecordCount(), 0);
        QVERIFY(rs.EOF_());
        QVERIFY(msgs.records().empty());
    }
    void queryOnANeverOpenedStoreShowsTheDeclarationBox() {
        test::TestHome home;
        auto& msgs = test::script();
        Database never;
        Recordset rs;
        const QString sql = QStringLiteral("SELECT * FROM Trader");
        QVERIFY(!OpenSnapshot(never, rs, sql));
        QVERIFY(!rs.isOpen());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, kDeclaredText + sql);
        QCOMPARE(msgs.last().title, QStringLiteral("MDB 오류"));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        QVERIFY(!OpenDynaset(never, rs, sql));
        QCOMPARE(msgs.last().text, kDeclaredText + sql);
    }
    void executeOnANeverOpenedStoreShowsTheDeclarationBox() {
        test::TestHome home;
        auto& msgs = test::script();
        Database never;
        const QString sql = QStringLiteral("DELETE FROM Trader");
        QVERIFY(!never.Execute(sql));
        QCOMPARE(never.RecordsAffected(), 0);
        QCOMPARE(never.lastErrorNumber(), int(ErrNotOpened));
        QCOMPARE(msgs.last().text, kDeclaredText + sql);
        QCOMPARE(msgs.last().title, QStringLiteral("MDB 오류"));
    }
    void statementNotUnderstoodShowsTheExpressionBox() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        auto& msgs = test::script();
        Recordset rs;
        const QString sql = QStringLiteral("SELEC * FROM Trader");
        QVERIFY(!OpenSnapshot(db, rs, sql));
        QCOMPARE(db.lastErrorNumber(), int(ErrSyntax));
        QCOMPARE(msgs.last().text, kExpressionText + sql);
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
    }
    void missingTableShowsTheExpressionBox() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        auto& msgs = test::script();
        Recordset rs;
        const QString sql = QStringLiteral("SELECT * FROM Traders");
        QVERIFY(!OpenDynaset(db, rs, sql));
        QCOMPARE(msgs.last().text, kExpressionText + sql);
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
    }
    void missingColumnShowsTheExpressionBox() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        auto& msgs = test::script();
        const QString sql = QStringLiteral("UPDATE Trader SET Mobile = ?");
        QVERIFY(!db.Execute(sql, {QStringLiteral("010")}));
        QCOMPARE(msgs.last().text, kExpressionText + QStringLiteral("UPDATE Trader SET Mobile = '010'"));
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
        const QString insert = QStringLiteral("INSERT INTO Trader (Code, Mobile) VALUES (?, ?)");
        QVERIFY(!db.Execute(insert, {QStringLiteral("000001"), QStringLiteral("010")}));
        QCOMPARE(msgs.last().text,
                 kExpressionText +
                     QStringLiteral("INSERT INTO Trader (Code, Mobile) VALUES ('000001', '010')"));
    }
    void lockedStoreShowsTheEngineDescriptionUnderMdbError() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        db.setBusyTimeout(0);
        Database other;
        QVERIFY(other.open(app().DbBasicFile));
        QVERIFY(other.beginTransaction());
        // A file is locked whole; on the server the row another seat is writing is.
        QVERIFY(other.Execute(QStringLiteral("INSERT INTO User (Serial) VALUES ('1')")));
        auto& msgs = test::script();
        const QString sql = QStringLiteral("INSERT INTO User (Serial) VALUES (?)");
        QVERIFY(!db.Execute(sql, {QStringLiteral("1")}));
        QCOMPARE(db.lastErrorNumber(), int(ErrEngine));
        QCOMPARE(msgs.last().text,
                 storeFaultText(5, QString()) + u'\r' +
                     test::engineWords("database is locked", "canceling statement due to lock timeout") +
                     QStringLiteral("\rINSERT INTO User (Serial) VALUES ('1')"));
        QCOMPARE(msgs.last().title, QStringLiteral("MDB 오류"));
        other.rollback();
    }
    void otherFailureShowsTheEngineDescriptionUnderError() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        auto& msgs = test::script();
        const QString sql = QStringLiteral("INSERT INTO User (Company) VALUES (?)");
        QVERIFY(!db.Execute(sql, {QStringLiteral("무번호")}));
        // A Korean sentence saying what happened and what to do stands above the engine's words.
        QCOMPARE(msgs.last().text,
                 QStringLiteral("반드시 입력해야 할 값이 비어 있어 저장하지 못했습니다. 빈 칸을 채우고 다시 "
                                "저장하십시오.\r") +
                     test::engineWords("NOT NULL constraint failed: User.Serial",
                                       "null value in column \"serial\" of relation \"user\" violates "
                                       "not-null constraint") +
                     QStringLiteral("\rINSERT INTO User (Company) VALUES ('무번호')"));
        QCOMPARE(msgs.last().title, QStringLiteral("ERROR"));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        QVERIFY(db.lastErrorNumber() != ErrSyntax && db.lastErrorNumber() != ErrNotOpened &&
                db.lastErrorNumber() != ErrEngine && db.lastErrorNumber() != ErrNone);
    }
    void failureBoxesByNumber_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");
        const QString q = QStringLiteral("SELECT 1");
        QTest::newRow("3011") << 3011 << kExpressionText + q << QStringLiteral("Query");
        QTest::newRow("91") << 91 << kDeclaredText + q << QStringLiteral("MDB 오류");
        QTest::newRow("3261") << 3261 << storeFaultText(5, QString()) + QStringLiteral("\r설명\r") + q
                              << QStringLiteral("MDB 오류");
        QTest::newRow("other") << 3022 << storeFaultText(3022, QString()) + QStringLiteral("\r설명\r") + q
                               << QStringLiteral("ERROR");
    }
    void failureBoxesByNumber() {
        QFETCH(int, number);
        QFETCH(QString, text);
        QFETCH(QString, title);
        test::TestHome home;
        auto& msgs = test::script();
        ReportQueryFailure(number, QStringLiteral("설명"), QStringLiteral("SELECT 1"));
        QCOMPARE(msgs.last().text, text);
        QCOMPARE(msgs.last().title, title);
        QCOMPARE(msgs.last().buttons, int(MbInformation));
    }
    void failureBoxShowsTheStatementWithItsValues() {
        QCOMPARE(sqlForDisplay(QStringLiteral("UPDATE T SET a = ?, b = ?, c = '?' WHERE d = ? AND e = ?"),
                               {QStringLiteral("it's"), 12.5, 3, QVariant()}),
                 QStringLiteral("UPDATE T SET a = 'it's', b = 12.5, c = '?' WHERE d = 3 AND e = Null"));
        QCOMPARE(sqlForDisplay(QStringLiteral("SELECT ?"), {}), QStringLiteral("SELECT ?"));
    }
    void executeReadsRecordsAffected() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        addTrader(db, QStringLiteral("000001"), QStringLiteral("가"));
        addTrader(db, QStringLiteral("000002"), QStringLiteral("나"));
        QVERIFY(db.Execute(QStringLiteral("UPDATE Trader SET Bigo = ?"), {QStringLiteral("메모")}));
        QCOMPARE(db.RecordsAffected(), 2);
        QVERIFY(db.Execute(QStringLiteral("UPDATE Trader SET Bigo = ? WHERE Code = ?"),
                           {QStringLiteral("x"), QStringLiteral("999999")}));
        QCOMPARE(db.RecordsAffected(), 0);
    }
    void nullsReadAsEmptyTextOrZero() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        addTrader(db, QStringLiteral("000001"), QStringLiteral("가"));
        Recordset rs;
        QVERIFY(OpenSnapshot(db, rs, QStringLiteral("SELECT * FROM Trader")));
        QVERIFY(rs.isNull(QStringLiteral("Phone")));
        QCOMPARE(rs.text(QStringLiteral("Phone")), QString());
        QVERIFY(!rs.text(QStringLiteral("Phone")).isNull()); // written back it stays the empty text
        QVERIFY(rs.isNull(QStringLiteral("TotNoPay")));
        QCOMPARE(rs.number(QStringLiteral("TotNoPay")), 0.0);
        QCOMPARE(rs.text(QStringLiteral("C_Name")), QStringLiteral("가"));
    }
    void columnsCompareWithoutRegardToCase() {
        test::TestHome home;
        test::useStoreFolder(home);
        QVERIFY(createStoreFile(app().DbTaxFile, taxTables()));
        Database db;
        QVERIFY(OpenDb(db, app().DbTaxFile, 0));
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO NewAcount (TaxCode, issuedate) VALUES (?, ?)"),
                           {QStringLiteral("100000"), QStringLiteral("비고\r\n둘째 줄")}));
        Recordset rs;
        QVERIFY(OpenSnapshot(db, rs, QStringLiteral("SELECT Issuedate FROM NewAcount WHERE taxcode = ?"),
                             {QStringLiteral("100000")}));
        QCOMPARE(rs.RecordCount(), 1);
        QCOMPARE(rs.text(QStringLiteral("Issuedate")), QStringLiteral("비고\r\n둘째 줄"));
        QCOMPARE(rs.text(QStringLiteral("ISSUEDATE")), QStringLiteral("비고\r\n둘째 줄"));
        QCOMPARE(rs.fieldIndex(QStringLiteral("issuedate")), 0);
    }
    void quoteBackslashBracketPercentUnderscoreAreStoredAndFoundLiterally() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        const QStringList names{QStringLiteral("O'Neil 상사"), QStringLiteral("a\\b"), QStringLiteral("x]y"),
                                QStringLiteral("50%"),         QStringLiteral("a_b"),  QStringLiteral("axb"),
                                QStringLiteral("500")};
        for (int i = 0; i < names.size(); ++i)
            addTrader(db, QStringLiteral("%1").arg(i + 1, 6, 10, QLatin1Char('0')), names[i]);
        const auto find = [&](const QString& typed) {
            Recordset rs;
            OpenSnapshot(
                db, rs,
                QStringLiteral("SELECT C_Name FROM Trader WHERE C_Name LIKE ? ESCAPE '\\' ORDER BY Code"),
                {u'%' + likeLiteral(typed) + u'%'});
            QStringList out;
            for (; !rs.EOF_(); rs.MoveNext())
                out << rs.text(QStringLiteral("C_Name"));
            return out;
        };
        QCOMPARE(find(QStringLiteral("'")), QStringList{QStringLiteral("O'Neil 상사")});
        QCOMPARE(find(QStringLiteral("\\")), QStringList{QStringLiteral("a\\b")});
        QCOMPARE(find(QStringLiteral("]")), QStringList{QStringLiteral("x]y")});
        QCOMPARE(find(QStringLiteral("%")), QStringList{QStringLiteral("50%")});
        QCOMPARE(find(QStringLiteral("_")), QStringList{QStringLiteral("a_b")});
        Recordset rs;
        QVERIFY(OpenSnapshot(db, rs, QStringLiteral("SELECT Code FROM Trader WHERE C_Name = ?"),
                             {QStringLiteral("O'Neil 상사")}));
        QCOMPARE(rs.text(QStringLiteral("Code")), QStringLiteral("000001"));
    }
    void dynasetAddNewAndUpdateAddRowToTheTableRead() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        Recordset rs;
        QVERIFY(OpenDynaset(db, rs, QStringLiteral("SELECT * FROM Trader ORDER BY Code")));
        rs.AddNew();
        rs.setField(QStringLiteral("Code"), QStringLiteral("000001"));
        rs.setField(QStringLiteral("C_Name"), QStringLiteral("한빛'상회"));
        QVERIFY(rs.Update());
        CloseRs(rs);
        QVERIFY(!rs.isOpen());
        QCOMPARE(test::rawValue(app().DbBasicFile, QStringLiteral("SELECT C_Name FROM Trader")).toString(),
                 QStringLiteral("한빛'상회"));
    }
    void plainTableNameReadsTheWholeTable() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        addTrader(db, QStringLiteral("000001"), QStringLiteral("가"));
        Recordset rs;
        QVERIFY(OpenDynaset(db, rs, QStringLiteral("Trader")));
        QCOMPARE(rs.RecordCount(), 1);
        // The server's names are in lower case; a field is found by its name in any case.
        QCOMPARE(rs.fieldName(0), test::engineWords("Code", "code"));
        QCOMPARE(rs.fieldIndex(QStringLiteral("Code")), 0);
    }
    void booleansAreStoredAsMinusOneAndZero() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        QCOMPARE(storedBool(true), -1);
        QCOMPARE(storedBool(false), 0);
        addTrader(db, QStringLiteral("000001"), QStringLiteral("기본"));
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO Trader (Code, bDeled) VALUES (?, ?)"),
                           {QStringLiteral("000002"), storedBool(true)}));
        Recordset rs;
        QVERIFY(OpenSnapshot(db, rs, QStringLiteral("SELECT bDeled FROM Trader ORDER BY Code")));
        QCOMPARE(rs.field(QStringLiteral("bDeled")).toInt(), 0); // never null: false when not set
        QVERIFY(!rs.flag(QStringLiteral("bDeled")));
        rs.MoveNext();
        QCOMPARE(rs.field(QStringLiteral("bDeled")).toInt(), -1);
        QVERIFY(rs.flag(QStringLiteral("bDeled")));
    }
    void failedMultiStatementSaveInsideATransactionLeavesTheStoreAsBefore() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        addTrader(db, QStringLiteral("000001"), QStringLiteral("원래"));
        auto& msgs = test::script();
        QVERIFY(db.beginTransaction());
        QVERIFY(db.Execute(QStringLiteral("UPDATE Trader SET C_Name = ? WHERE Code = ?"),
                           {QStringLiteral("바뀜"), QStringLiteral("000001")}));
        QVERIFY(db.Execute(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                           {QStringLiteral("000002"), QStringLiteral("새것")}));
        QVERIFY(!db.Execute(QStringLiteral("INSERT INTO Trader (Code, Nothing) VALUES (?, ?)"),
                            {QStringLiteral("000003"), QStringLiteral("x")}));
        db.rollback();
        QVERIFY(!db.inTransaction());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(test::texts(test::rawColumn(app().DbBasicFile, QStringLiteral("SELECT C_Name FROM Trader"))),
                 QStringList{QStringLiteral("원래")});
    }
    void committedTransactionKeepsEveryStatement() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        QVERIFY(db.beginTransaction());
        addTrader(db, QStringLiteral("000001"), QStringLiteral("가"));
        QVERIFY(db.beginTransaction()); // an inner save rolled back alone
        addTrader(db, QStringLiteral("000002"), QStringLiteral("나"));
        db.rollback();
        addTrader(db, QStringLiteral("000003"), QStringLiteral("다"));
        QVERIFY(db.commit());
        QCOMPARE(test::texts(test::rawColumn(app().DbBasicFile,
                                             QStringLiteral("SELECT Code FROM Trader ORDER BY Code"))),
                 (QStringList{QStringLiteral("000001"), QStringLiteral("000003")}));
    }
    void statementsRunCountsStatementsButNotSchemaQuestions() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        QCOMPARE(db.statementsRun(), 0);
        QVERIFY(db.hasTable(QStringLiteral("Trader")));
        QVERIFY(db.hasColumn(QStringLiteral("Trader"), QStringLiteral("hphone")));
        QVERIFY(db.hasPrimaryIndex(QStringLiteral("User")));
        QCOMPARE(db.statementsRun(), 0);
        addTrader(db, QStringLiteral("000001"), QStringLiteral("가"));
        Recordset rs;
        QVERIFY(OpenSnapshot(db, rs, QStringLiteral("SELECT * FROM Trader")));
        QCOMPARE(db.statementsRun(), 2);
    }
    void hasTableComparesTheNameExactly() {
        test::TestHome home;
        Database db;
        openFreshBasic(home, db);
        QVERIFY(db.hasTable(QStringLiteral("Trader")));
        // On the server a plain name and a quoted one reach the same (lower-case) table.
        QCOMPARE(db.hasTable(QStringLiteral("trader")), test::onServerEngine());
        QVERIFY(!db.hasTable(QStringLiteral("Traders")));
    }
};

NB_TEST_MAIN(TestQueryHelpers)
#include "tst_query_helpers.moc"
