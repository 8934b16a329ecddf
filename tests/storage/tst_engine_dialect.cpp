// The few words a statement changes on its way to the server, and nothing else: LIKE compares
// without regard to ASCII case as on the files, INSERT OR IGNORE becomes ON CONFLICT DO NOTHING,
// the table User is quoted, quoted names are folded as the server makes them, a fractional value
// is bound as double precision; texts between quotes are left as written. The server's column
// types and its failures in the files' terms.
#include "StoreTestKit.h"
#include "storage/StoreEngine.h"

#include <QSqlError>

using namespace nb;

class TestEngineDialect : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void statementsChangeOnlyWhereTheEnginesDiffer_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<QString>("server");
        const auto row = [](const char* name, const char* sql, const QVariantList& values,
                            const char* server) {
            QTest::newRow(name) << QString::fromUtf8(sql) << values << QString::fromUtf8(server);
        };
        row("plain", "SELECT Code FROM Trader WHERE Code = ?", {QStringLiteral("1")},
            "SELECT Code FROM Trader WHERE Code = ?");
        row("like", "SELECT * FROM Trader WHERE C_Name LIKE ? ESCAPE '\\'", {QStringLiteral("%가%")},
            "SELECT * FROM Trader WHERE C_Name ILIKE ? ESCAPE '\\'");
        row("not like", "SELECT * FROM Trader WHERE C_Name not like ?", {QStringLiteral("a")},
            "SELECT * FROM Trader WHERE C_Name not ILIKE ?");
        row("like in a text", "SELECT 'LIKE User' FROM Trader", {}, "SELECT 'LIKE User' FROM Trader");
        row("a word holding like", "SELECT Liked, unlike FROM Trader", {},
            "SELECT Liked, unlike FROM Trader");
        row("user", "SELECT * FROM User WHERE Serial = ?", {QStringLiteral("1")},
            "SELECT * FROM \"user\" WHERE Serial = ?");
        row("quoted user", "SELECT * FROM \"User\"", {}, "SELECT * FROM \"user\"");
        row("quoted names", "CREATE INDEX \"Trader_Code\" ON \"Trader\" (\"Code\")", {},
            "CREATE INDEX \"trader_code\" ON \"trader\" (\"code\")");
        row("basic.User", "SELECT u.Company FROM basic.User u", {}, "SELECT u.Company FROM basic.\"user\" u");
        row("or ignore", "INSERT OR IGNORE INTO Numbers(n) VALUES (?);", {1},
            "INSERT INTO Numbers(n) VALUES (?) ON CONFLICT DO NOTHING");
        row("fraction", "UPDATE Master SET TotAmount = ?, NumBill = ? WHERE BillNo = ?",
            {2.5, 3, QStringLiteral("000001")},
            "UPDATE Master SET TotAmount = CAST(? AS double precision), NumBill = ? WHERE BillNo = ?");
        row("question mark in a text", "SELECT '?' || ? FROM Master", {1.5},
            "SELECT '?' || CAST(? AS double precision) FROM Master");
        row("null fraction", "UPDATE Master SET TotAmount = ?", {QVariant(QMetaType(QMetaType::Double))},
            "UPDATE Master SET TotAmount = ?");
        row("hangul text", "SELECT * FROM Trader WHERE C_Name = '가나 LIKE'", {},
            "SELECT * FROM Trader WHERE C_Name = '가나 LIKE'");
        row("escaped quote", "SELECT 'it''s LIKE' FROM Trader", {}, "SELECT 'it''s LIKE' FROM Trader");
    }
    void statementsChangeOnlyWhereTheEnginesDiffer() {
        QFETCH(QString, sql);
        QFETCH(QVariantList, values);
        QFETCH(QString, server);
        QCOMPARE(serverStatement(sql, values), server);
    }
    void filesTakeTheStatementAsWritten() {
        test::TestHome home;
        Database db;
        QCOMPARE(
            db.statementFor(QStringLiteral("SELECT * FROM User WHERE Company LIKE ?"), {QStringLiteral("a")}),
            QStringLiteral("SELECT * FROM User WHERE Company LIKE ?"));
    }
    void serverColumnTypesKeepTheFilesValuesAndOrder_data() {
        QTest::addColumn<int>("daoType");
        QTest::addColumn<QString>("type");
        QTest::newRow("text") << int(dbText) << QStringLiteral("text COLLATE ucs_basic");
        QTest::newRow("memo") << int(dbMemo) << QStringLiteral("text COLLATE ucs_basic");
        QTest::newRow("yes/no") << int(dbBoolean) << QStringLiteral("smallint");
        QTest::newRow("byte") << int(dbByte) << QStringLiteral("smallint");
        QTest::newRow("integer") << int(dbInteger) << QStringLiteral("integer");
        QTest::newRow("long") << int(dbLong) << QStringLiteral("bigint");
        QTest::newRow("single") << int(dbSingle) << QStringLiteral("double precision");
        QTest::newRow("double") << int(dbDouble) << QStringLiteral("double precision");
    }
    void serverColumnTypesKeepTheFilesValuesAndOrder() {
        QFETCH(int, daoType);
        QFETCH(QString, type);
        QCOMPARE(serverColumnType(daoType), type);
        QCOMPARE(declaredType(daoType, 6, true), type);
    }
    void serverFailuresReadAsTheFilesCauses_data() {
        QTest::addColumn<QString>("sqlState");
        QTest::addColumn<int>("engineCode");
        QTest::addColumn<int>("errorNumber");
        QTest::addColumn<bool>("retryable");
        const auto row = [](const char* state, int code, int number, bool retry) {
            QTest::newRow(state) << QString::fromLatin1(state) << code << number << retry;
        };
        row("23505", 19 | (8 << 8), 19 | (8 << 8), false);
        row("23502", 19 | (5 << 8), 19 | (5 << 8), false);
        row("23503", 19, 19, false);
        row("53100", 13, 13, false);
        row("25006", 8, 8, false);
        row("55P03", 5, int(ErrEngine), false);
        row("40P01", 5, int(ErrEngine), true);
        row("40001", 5, int(ErrEngine), true);
        row("42P01", 1, int(ErrSyntax), false);
        row("42703", 1, int(ErrSyntax), false);
        row("42601", 1, int(ErrSyntax), false);
        row("08006", kServerUnreachableCode, kServerUnreachableCode, false);
        row("57P01", kServerUnreachableCode, kServerUnreachableCode, false);
    }
    void serverFailuresReadAsTheFilesCauses() {
        QFETCH(QString, sqlState);
        QFETCH(int, engineCode);
        QFETCH(int, errorNumber);
        QFETCH(bool, retryable);
        const ServerFault fault =
            serverFaultOf(QSqlError(QString(), QStringLiteral("words"), QSqlError::StatementError, sqlState));
        QCOMPARE(fault.engineCode, engineCode);
        QCOMPARE(fault.errorNumber, errorNumber);
        QCOMPARE(fault.retryable, retryable);
    }
    void aConnectionThatFailedWithoutAStateIsUnreachable() {
        const ServerFault fault = serverFaultOf(
            QSqlError(QStringLiteral("connection refused"), QString(), QSqlError::ConnectionError));
        QCOMPARE(fault.engineCode, kServerUnreachableCode);
        QCOMPARE(storeFaultText(fault.engineCode, QStringLiteral("connection refused")),
                 serverUnreachableText());
    }
    void theUnreachableServerIsToldInKorean() {
        const QString text = serverUnreachableText();
        QVERIFY(text.startsWith(QStringLiteral("자료 서버에 연결할 수 없어")));
        QVERIFY(text.contains(QStringLiteral("서버 설정")));
    }
};

NB_TEST_MAIN(TestEngineDialect)
#include "tst_engine_dialect.moc"
