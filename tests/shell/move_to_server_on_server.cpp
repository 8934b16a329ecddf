// A shop moved from its store files onto an empty database of the test run's PostgreSQL cluster
// (NUBELLA_TEST_PG): it reads the same there (rows, sums, a statement's lines in their order),
// the seat is pointed at it, a database that holds books is refused, and a failure midway leaves
// the seat on its files with the database as it was found.
#include "BackupKit.h"
#include "core/AppState.h"
#include "core/Lifecycle.h"
#include "shell/MoveToServer.h"
#include "shell/Nubella.h"
#include "shell/ServerCheck.h"
#include "storage/ServerSettings.h"
#include "storage/StoreLayout.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

using namespace nb;

namespace {

ServerSettings clusterSettings() {
    ServerSettings server;
    for (const QString& part : qEnvironmentVariable("NUBELLA_TEST_PG").split(u' ', Qt::SkipEmptyParts)) {
        const QString key = part.section(u'=', 0, 0);
        const QString value = part.section(u'=', 1);
        if (key == QStringLiteral("host")) server.host = value;
        if (key == QStringLiteral("port")) server.port = value.toInt();
        if (key == QStringLiteral("user")) server.user = value;
    }
    return server;
}

// Rows of a query on one database of the cluster, each row's values joined by '|'.
QStringList rowsOnCluster(const QString& database, const QString& sql) {
    const QString name = QUuid::createUuid().toString();
    QStringList rows;
    {
        const ServerSettings cluster = clusterSettings();
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(cluster.host);
        db.setPort(cluster.port);
        db.setUserName(cluster.user);
        db.setDatabaseName(database);
        if (!db.open()) qWarning() << db.lastError().text();
        QSqlQuery q(db);
        if (!q.exec(sql)) qWarning() << sql << q.lastError().text();
        while (q.next()) {
            QStringList values;
            for (int i = 0; i < q.record().count(); ++i)
                values << q.value(i).toString();
            rows << values.join(u'|');
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

// The same query on a store file.
QStringList rowsOnFile(const QString& file, const QString& sql) {
    QStringList rows;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("file-rows"));
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        if (!q.exec(sql)) qWarning() << sql << q.lastError().text();
        while (q.next()) {
            QStringList values;
            for (int i = 0; i < q.record().count(); ++i)
                values << q.value(i).toString();
            rows << values.join(u'|');
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("file-rows"));
    return rows;
}

class FreshDatabase {
public:
    FreshDatabase() : m_name(QStringLiteral("move_") + QUuid::createUuid().toString(QUuid::Id128).left(12)) {
        rowsOnCluster(QStringLiteral("postgres"), QStringLiteral("CREATE DATABASE ") + m_name);
    }
    ~FreshDatabase() {
        rowsOnCluster(QStringLiteral("postgres"),
                      QStringLiteral("DROP DATABASE IF EXISTS ") + m_name + QStringLiteral(" WITH (FORCE)"));
    }
    QString name() const { return m_name; }
    ServerSettings settings() const {
        ServerSettings server = clusterSettings();
        server.database = m_name;
        return server;
    }

private:
    QString m_name;
};

// A shop on its files: traders, products, statements with several lines (fractions among the
// amounts), an invoice, a quotation.
void seedShop() {
    qunsetenv("NUBELLA_PG"); // the seat works on its files, whatever the test home chose
    QVERIFY(test::openStores());
    for (int i = 1; i <= 3; ++i)
        QVERIFY(test::changeEveryStore(QStringLiteral("S%1").arg(i, 5, 10, QChar(u'0'))));
    QVERIFY(test::runOn(
        app().DbBillFile,
        {QStringLiteral("INSERT INTO Master VALUES ('000777', '2024-06-01', '000001', 12345.5, 1234.55, 1)"),
         QStringLiteral(
             "INSERT INTO Detail VALUES ('000777', 2, '둘째 품목', 'EA', 1.5, 333.3, 0, 499.95, 49.995)"),
         QStringLiteral(
             "INSERT INTO Detail VALUES ('000777', 1, '첫째 품목', '박스', 3, 1000, 0, 3000, 300)"),
         QStringLiteral("INSERT INTO Detail VALUES ('000777', 3, '셋째 ''따옴표'' 품목', 'kg', 0.25, 4000, "
                        "0, 1000, 100)")}));
    resetProgramState();
    ReadSettings();
}

int storeSchemasOn(const QString& database) {
    return int(rowsOnCluster(database, QStringLiteral("SELECT nspname FROM pg_namespace WHERE nspname IN "
                                                      "('basic', 'bill', 'tax', 'estimate', 'inout')"))
                   .size());
}

// The rows of a table in the order they were written: each text told apart from a null and from
// the empty text ("v:" before a value, "NULL" for none), then each number as "v" or "NULL" and
// its value as read (0 for none).
QString rowsInOrder(const QString& table, const QStringList& texts, const QStringList& numbers = {}) {
    QStringList values;
    for (const QString& column : texts)
        values << QStringLiteral("coalesce('v:' || %1, 'NULL')").arg(column);
    for (const QString& column : numbers)
        values
            << QStringLiteral("CASE WHEN %1 IS NULL THEN 'NULL' ELSE 'v' END, coalesce(%1, 0)").arg(column);
    return QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid").arg(values.join(QStringLiteral(", ")), table);
}

// A trader whose every text is the given SQL expression (of the file's engine).
QString awkwardTrader(int n, const QString& text) {
    return QStringLiteral("INSERT INTO Trader (Code, C_Name, U_Name, Addr1, Bigo, TotNoPay) VALUES "
                          "('W%1', %2, %2, %2, %2, NULL)")
        .arg(n, 5, 10, QChar(u'0'))
        .arg(text);
}

} // namespace

class TestMoveToServer : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY2(!clusterSettings().host.isEmpty(), "NUBELLA_TEST_PG names no cluster"); }
    void cleanup() { resetProgramState(); }

    void aMovedShopReadsTheSameOnTheServer() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        const MoveReport report = moveToServer(target.settings());
        QVERIFY2(report.ok, qPrintable(report.failure));
        const AppState& a = app();
        // Counts and sums, table by table, source beside result.
        const struct {
            QString file, schema, table, figures;
        } checks[] = {
            {a.DbBasicFile, "basic", "Trader", "count(*)"},
            {a.DbBasicFile, "basic", "Product", "count(*)"},
            {a.DbBillFile, "bill", "Master", "count(*), sum(TotAmount), sum(TotVat)"},
            {a.DbBillFile, "bill", "Detail", "count(*), sum(Quant), sum(Price), sum(Amount), sum(VAT)"},
            {a.DbTaxFile, "tax", "NewAcount", "count(*)"},
            {a.DbEstimateFile, "estimate", "EstiBase", "count(*)"},
        };
        for (const auto& c : checks) {
            const QStringList onFile =
                rowsOnFile(c.file, QStringLiteral("SELECT %1 FROM %2").arg(c.figures, c.table));
            const QStringList onServer = rowsOnCluster(
                target.name(), QStringLiteral("SELECT %1 FROM %2.%3").arg(c.figures, c.schema, c.table));
            QCOMPARE(onServer, onFile);
        }
        // A statement's lines, in their order, with their texts and fractions.
        const QString lines =
            QStringLiteral("SELECT BillSEQ, PName, Unit, Quant, Price, Amount, VAT FROM %1Detail "
                           "WHERE BillNo = '000777' ORDER BY BillSEQ");
        const QStringList fileLines = rowsOnFile(a.DbBillFile, lines.arg(QString()));
        QCOMPARE(fileLines.size(), 3);
        QCOMPARE(rowsOnCluster(target.name(), lines.arg(QStringLiteral("bill."))), fileLines);
        // The rows keep the order they were written in.
        QCOMPARE(rowsOnCluster(target.name(), QStringLiteral("SELECT BillSEQ FROM bill.Detail WHERE BillNo = "
                                                             "'000777' ORDER BY rowid")),
                 (QStringList{"2", "1", "3"}));
        QVERIFY(report.rows() > 0);
        // The seat now points at the server.
        const ServerSettings seat = readServerSettings();
        QVERIFY(seat.use);
        QCOMPARE(seat.database, target.name());
        QCOMPARE(seat.host, clusterSettings().host);
        QVERIFY(onServer());
        // And the program, started again, reads the statement from the server.
        resetProgramState();
        QVERIFY(test::openStores());
        Database& bill = stores().dbBill;
        QVERIFY(bill.onServer());
        QCOMPARE(
            test::scalar(bill, QStringLiteral("SELECT count(*) FROM Detail")).toLongLong(),
            rowsOnFile(a.DbBillFile, QStringLiteral("SELECT count(*) FROM Detail")).value(0).toLongLong());
        QSqlQuery q(bill.connection());
        const QString sql = QStringLiteral("SELECT PName FROM Detail WHERE BillNo = ? ORDER BY BillSEQ");
        QVERIFY(q.prepare(bill.statementFor(sql, {QStringLiteral("000777")})));
        bill.bindValues(q, {QStringLiteral("000777")});
        QVERIFY(q.exec());
        QStringList names;
        while (q.next())
            names << q.value(0).toString();
        QCOMPARE(names, (QStringList{"첫째 품목", "둘째 품목", "셋째 '따옴표' 품목"}));
    }

    // The quotation store's index of running codes, which a new quotation's number reads, is
    // laid down on the server with the tables, also from a file made before the index.
    void aMovedQuotationStoreHasItsIndexOfRunningCodes() {
        test::TestHome home;
        seedShop();
        QVERIFY(test::runOn(app().DbEstimateFile, {QStringLiteral("DROP INDEX EstiBase_RunningCode"),
                                                   QStringLiteral("DROP INDEX Estimate_RunningCode")}));
        FreshDatabase target;
        const MoveReport report = moveToServer(target.settings());
        QVERIFY2(report.ok, qPrintable(report.failure));
        QCOMPARE(
            rowsOnCluster(target.name(), QStringLiteral("SELECT indexname FROM pg_indexes WHERE schemaname = "
                                                        "'estimate' AND indexname LIKE '%runningcode' "
                                                        "ORDER BY indexname")),
            (QStringList{"estibase_runningcode", "estimate_runningcode"}));
    }

    void aDatabaseThatHoldsBooksIsRefused() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        rowsOnCluster(target.name(), QStringLiteral("CREATE SCHEMA bill"));
        rowsOnCluster(target.name(), QStringLiteral("CREATE TABLE bill.master (billno text)"));
        rowsOnCluster(target.name(), QStringLiteral("INSERT INTO bill.master VALUES ('000001')"));
        const MoveReport report = moveToServer(target.settings());
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.contains(QStringLiteral("이미 장부가 있습니다")), qPrintable(report.failure));
        QVERIFY(report.failure.startsWith(QStringLiteral("데이터 서버로 옮기지 않았습니다.")));
        QCOMPARE(storeSchemasOn(target.name()), 1); // only what was there
        QVERIFY(!readServerSettings().use);
        QVERIFY(!onServer());
    }

    void storesLaidDownEmptyBeforeTheMoveAreNoBooks() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        // "사용" saved before the move: the seat's next start lays every store down on the
        // database, empty.
        ServerSettings seat = target.settings();
        seat.use = true;
        QVERIFY(writeServerSettings(seat));
        CreateMissingStoreFiles();
        QCOMPARE(storeSchemasOn(target.name()), 5);
        seat.use = false;
        QVERIFY(writeServerSettings(seat));
        resetProgramState();
        ReadSettings();
        const MoveReport report = moveToServer(target.settings());
        QVERIFY2(report.ok, qPrintable(report.failure));
        QCOMPARE(storeSchemasOn(target.name()), 5);
        QCOMPARE(
            rowsOnCluster(target.name(), QStringLiteral("SELECT count(*), sum(amount) FROM bill.detail")),
            rowsOnFile(app().DbBillFile, QStringLiteral("SELECT count(*), sum(Amount) FROM Detail")));
        QVERIFY(readServerSettings().use);
    }

    void aRowInAnyStoreIsBooks() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        ServerSettings seat = target.settings();
        seat.use = true;
        QVERIFY(writeServerSettings(seat));
        CreateMissingStoreFiles();
        // Another seat saved one quotation there meanwhile.
        rowsOnCluster(target.name(),
                      QStringLiteral("INSERT INTO estimate.estibase (esticode) VALUES ('E1')"));
        seat.use = false;
        QVERIFY(writeServerSettings(seat));
        resetProgramState();
        ReadSettings();
        const MoveReport report = moveToServer(target.settings());
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.contains(QStringLiteral("이미 장부가 있습니다 (estimate)")),
                 qPrintable(report.failure));
        QCOMPARE(rowsOnCluster(target.name(), QStringLiteral("SELECT esticode FROM estimate.estibase")),
                 QStringList{QStringLiteral("E1")});
        QCOMPARE(rowsOnCluster(target.name(), QStringLiteral("SELECT count(*) FROM basic.trader")),
                 QStringList{QStringLiteral("0")});
        QVERIFY(!readServerSettings().use);
    }

    void aFailureMidwayLeavesTheSeatOnItsFiles() {
        test::TestHome home;
        seedShop();
        const QStringList before = test::booksDump();
        FreshDatabase target;
        MoveOptions options;
        options.afterCopy = [](const QString& store) { return store != QStringLiteral("tax"); };
        const MoveReport report = moveToServer(target.settings(), options);
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.contains(QStringLiteral("장부는 이 컴퓨터의 자료 파일에 그대로 있습니다")),
                 qPrintable(report.failure));
        QCOMPARE(storeSchemasOn(target.name()), 0); // basic and bill, moved before, removed again
        QVERIFY(!readServerSettings().use);
        QVERIFY(!onServer());
        QCOMPARE(test::booksDump(), before);
        // The same database takes the whole move afterwards.
        const MoveReport again = moveToServer(target.settings());
        QVERIFY2(again.ok, qPrintable(again.failure));
        QCOMPARE(storeSchemasOn(target.name()), 5);
    }

    // Texts with the copy's own marks in them (tab, newline, carriage return, backslash, the text
    // "\N"), the empty text beside none, Hangul, fractions a sum leaves long, and whole amounts
    // past a double's exact digits arrive as the file holds them.
    void everyAwkwardValueArrivesAsTheFileHoldsIt() {
        test::TestHome home;
        seedShop();
        const QStringList texts = {
            QStringLiteral("'탭' || char(9) || '사이'"),
            QStringLiteral("'줄' || char(10) || '바꿈' || char(10)"),
            QStringLiteral("'캐리지' || char(13) || char(10) || '리턴'"),
            QStringLiteral("'역\\슬래시\\'"),
            QStringLiteral("'\\N'"),
            QStringLiteral("'\\t 글자 그대로 \\\\'"),
            QStringLiteral("''"),
            QStringLiteral("NULL"),
            QStringLiteral("'㈜가나다 상사 똠방각하 햏'"),
            QStringLiteral("' 앞뒤 빈칸 '"),
        };
        QStringList trader;
        for (int i = 0; i < texts.size(); ++i)
            trader << awkwardTrader(i, texts[i]);
        QVERIFY(test::runOn(app().DbBasicFile, trader));
        QVERIFY(test::runOn(
            app().DbBillFile,
            {QStringLiteral("INSERT INTO Master VALUES ('000900', '2024-07-01', 'W00000', 0.1 + 0.2, "
                            "1e15 + 0.5, 9007199254740993)"),
             QStringLiteral("INSERT INTO Detail VALUES ('000900', 1, '합', 'EA', 0.1 + 0.2, 1.0 / 3, -0.0, "
                            "123456789012345678, 9007199254740993)"),
             QStringLiteral("INSERT INTO Detail VALUES ('000900', 2, NULL, '', NULL, 4.35 * 100, 1e-7, "
                            "-987654321098.765, 2.675)")}));
        // Fractions in whole-number columns: rounded half to even on the way in, as a bound
        // fraction is rounded there (chosen so that each column's sum stays, as the check wants).
        QVERIFY(test::runOn(
            app().DbTaxFile,
            {QStringLiteral("INSERT INTO BuyTax (Serial, CCode, DealDate, TradeKum, VatKum, Blank) VALUES "
                            "('1', 'W00000', '2024-07-01', 2.5, -2.5, 0.5)"),
             QStringLiteral("INSERT INTO BuyTax (Serial, CCode, DealDate, TradeKum, VatKum, Blank) VALUES "
                            "('2', 'W00000', '2024-07-01', 3.5, -3.5, 1.5)"),
             QStringLiteral("INSERT INTO BuyTax (Serial, CCode, DealDate, TradeKum, VatKum, Blank) VALUES "
                            "('3', 'W00000', '2024-07-01', 1234567890123, 0, 0)")}));
        FreshDatabase target;
        const MoveReport report = moveToServer(target.settings());
        QVERIFY2(report.ok, qPrintable(report.failure));

        const QStringList traderTexts = {"Code", "C_Name", "U_Name", "Addr1", "Bigo"};
        const QStringList traderNumbers = {"TotNoPay", "VAT", "bDeled"};
        const QStringList fileTraders =
            rowsOnFile(app().DbBasicFile, rowsInOrder(QStringLiteral("Trader"), traderTexts, traderNumbers));
        QVERIFY(fileTraders.size() >= texts.size());
        QVERIFY(fileTraders.contains(QStringLiteral("v:W00006|v:|v:|v:|v:|NULL|0|NULL|0|v|0")));
        QVERIFY(fileTraders.contains(QStringLiteral("v:W00007|NULL|NULL|NULL|NULL|NULL|0|NULL|0|v|0")));
        QCOMPARE(rowsOnCluster(target.name(),
                               rowsInOrder(QStringLiteral("basic.Trader"), traderTexts, traderNumbers)),
                 fileTraders);
        // Read on the server by itself: the marks are the texts', not the copy's.
        QCOMPARE(rowsOnCluster(target.name(), QStringLiteral("SELECT c_name FROM basic.trader WHERE code IN "
                                                             "('W00003', 'W00004') ORDER BY code")),
                 (QStringList{QStringLiteral("역\\슬래시\\"), QStringLiteral("\\N")}));
        QCOMPARE(rowsOnCluster(target.name(), QStringLiteral("SELECT code FROM basic.trader WHERE c_name IS "
                                                             "NULL AND code LIKE 'W%'")),
                 QStringList{QStringLiteral("W00007")});
        QCOMPARE(
            rowsOnCluster(target.name(),
                          QStringLiteral("SELECT length(c_name) FROM basic.trader WHERE code = 'W00001'")),
            QStringList{QStringLiteral("5")});

        const QString master = QStringLiteral("%1Master");
        const QStringList masterTexts = {"BillNo"}, masterNumbers = {"TotAmount", "TotVat", "NumBill"};
        QCOMPARE(
            rowsOnCluster(target.name(), rowsInOrder(master.arg("bill."), masterTexts, masterNumbers)),
            rowsOnFile(app().DbBillFile, rowsInOrder(master.arg(QString()), masterTexts, masterNumbers)));
        const QString detail = QStringLiteral("%1Detail");
        const QStringList detailTexts = {"PName", "Unit"};
        const QStringList detailNumbers = {"BillSEQ", "Quant", "Price", "DC", "Amount", "VAT"};
        const QStringList fileDetail =
            rowsOnFile(app().DbBillFile, rowsInOrder(detail.arg(QString()), detailTexts, detailNumbers));
        QVERIFY(fileDetail.contains(
            QStringLiteral("NULL|v:|v|2|NULL|0|v|434.99999999999994|v|1e-07|v|-987654321098.765|v|2.675")));
        QCOMPARE(rowsOnCluster(target.name(), rowsInOrder(detail.arg("bill."), detailTexts, detailNumbers)),
                 fileDetail);
        // The same doubles to the last bit, and whole numbers past 2^53 whole.
        QCOMPARE(rowsOnCluster(target.name(),
                               QStringLiteral("SELECT count(*) FROM bill.master WHERE totamount = "
                                              "0.1::float8 + 0.2::float8 AND numbill = 9007199254740993")),
                 QStringList{QStringLiteral("1")});
        QCOMPARE(
            rowsOnCluster(target.name(), QStringLiteral("SELECT count(*) FROM bill.detail WHERE price = "
                                                        "1::float8 / 3 AND vat = 9007199254740993::float8")),
            QStringList{QStringLiteral("1")});
        QCOMPARE(rowsOnCluster(target.name(), QStringLiteral("SELECT tradekum, vatkum, blank FROM tax.buytax "
                                                             "ORDER BY rowid")),
                 (QStringList{QStringLiteral("2|-2|0"), QStringLiteral("4|-4|2"),
                              QStringLiteral("1234567890123|0|0")}));

        // And back, as a backup reads them: each schema copied into a new store file holds the
        // moved rows as the first file held them (the whole-number columns as the server rounded them).
        OwnConnection server(QStringLiteral("QPSQL"));
        QString why;
        QVERIFY2(openServerConnection(server, connInfoOf(target.settings()), &why), qPrintable(why));
        const QString back = home.file(QStringLiteral("back-%1.db"));
        for (const char* schema : {"basic", "bill", "tax"})
            QVERIFY2(copySchemaToFile(server.db(), schema, back.arg(schema), &why), qPrintable(why));
        QCOMPARE(
            rowsOnFile(back.arg("basic"), rowsInOrder(QStringLiteral("Trader"), traderTexts, traderNumbers)),
            fileTraders);
        QCOMPARE(rowsOnFile(back.arg("bill"), rowsInOrder(detail.arg(QString()), detailTexts, detailNumbers)),
                 fileDetail);
        QCOMPARE(
            rowsOnFile(back.arg("bill"), rowsInOrder(master.arg(QString()), masterTexts, masterNumbers)),
            rowsOnFile(app().DbBillFile, rowsInOrder(master.arg(QString()), masterTexts, masterNumbers)));
        QCOMPARE(rowsOnFile(back.arg("tax"),
                            QStringLiteral("SELECT TradeKum, VatKum, Blank, typeof(TradeKum) FROM "
                                           "BuyTax ORDER BY rowid")),
                 (QStringList{QStringLiteral("2|-2|0|integer"), QStringLiteral("4|-4|2|integer"),
                              QStringLiteral("1234567890123|0|0|integer")}));
    }

    // A row the server refuses (a key given twice) in the middle of a table's copy: the whole
    // move goes back, the stores moved before it too, and the operator is told in Korean with the
    // server's words beside.
    void aRefusedRowInTheMiddleOfACopyUndoesTheWholeMove() {
        test::TestHome home;
        seedShop();
        const QString rows = QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM n WHERE i < %2) INSERT INTO "
            "BuyTax "
            "(Serial, CCode, DealDate, CName, TradeKum, VatKum, Blank) SELECT printf('%08d', i), '000001', "
            "'2024-01-01', '상호 ' || i, i * 1000, i * 100, 0 FROM n");
        // The file's own unique index is gone (an old file's damage), so it holds the key twice.
        QVERIFY(test::runOn(app().DbTaxFile,
                            {QStringLiteral("DROP INDEX \"BuyTax_PrimaryKey\""), rows.arg(1).arg(3000),
                             rows.arg(1500).arg(1500), rows.arg(3001).arg(6000)}));
        const QStringList before = test::booksDump();
        FreshDatabase target;
        QVERIFY(writeServerSettings(target.settings()));
        ScriptedMessages& said = test::script();
        said.answer(AnsYes);
        Nubella window;
        RunMoveToServerMenu(&window);
        QCOMPARE(int(said.boxes().size()), 2);
        const QString box = said.boxes()[1].text;
        QVERIFY2(box.startsWith(QStringLiteral("데이터 서버로 옮기지 않았습니다. 장부는 이 컴퓨터의 자료 "
                                               "파일에 그대로 있습니다.")),
                 qPrintable(box));
        QVERIFY2(box.contains(QStringLiteral("서버에 표 BuyTax을(를) 쓰지 못했습니다: ")), qPrintable(box));
        QVERIFY2(box.contains(QStringLiteral("buytax_primarykey")), qPrintable(box));
        QCOMPARE(storeSchemasOn(target.name()), 0); // basic and bill, moved before, gone again
        QVERIFY(!readServerSettings().use);
        QVERIFY(!onServer());
        QCOMPARE(test::booksDump(), before);
    }

    void theMenuAsksMovesAndEndsTheProgram() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        QVERIFY(writeServerSettings(target.settings())); // saved on the settings screen, "사용" off
        ScriptedMessages& said = test::script();
        said.answer(AnsYes);
        Nubella window;
        RunMoveToServerMenu(&window);
        QCOMPARE(int(said.boxes().size()), 2);
        QVERIFY(said.boxes()[0].text.contains(target.name()));
        QVERIFY2(said.boxes()[1].text.startsWith(QStringLiteral("데이터 서버로 옮겼습니다.")),
                 qPrintable(said.boxes()[1].text));
        QVERIFY(said.boxes()[1].text.contains(QStringLiteral("프로그램을 끝냅니다")));
        bool progressShown = false;
        for (const MessageRecord& r : said.records())
            progressShown |= r.kind == QStringLiteral("progress");
        QVERIFY(progressShown);
        QCOMPARE(storeSchemasOn(target.name()), 5);
        QVERIFY(readServerSettings().use);
    }

    void theMenuAnsweredNoMovesNothing() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        QVERIFY(writeServerSettings(target.settings()));
        ScriptedMessages& said = test::script();
        said.answer(AnsNo);
        Nubella window;
        RunMoveToServerMenu(&window);
        QCOMPARE(int(said.boxes().size()), 1);
        QCOMPARE(storeSchemasOn(target.name()), 0);
        QVERIFY(!readServerSettings().use);
    }

    void theCommandLineMovesToTheSavedDatabase() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        QVERIFY(writeServerSettings(target.settings()));
        resetProgramState();
        QProcess program;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("NUBELLA_HOME"), home.path());
        env.remove(QStringLiteral("NUBELLA_PG"));
        program.setProcessEnvironment(env);
        program.start(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella"),
                      {QStringLiteral("--move-to-server")});
        QVERIFY(program.waitForFinished(120000));
        const QString out = QString::fromUtf8(program.readAllStandardOutput());
        QVERIFY2(program.exitCode() == 0, qPrintable(QString::fromUtf8(program.readAllStandardError())));
        QVERIFY(out.contains(QStringLiteral("데이터 서버로 옮겼습니다")));
        QCOMPARE(storeSchemasOn(target.name()), 5);
        // A second run finds the seat on the server and moves nothing.
        program.start(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella"),
                      {QStringLiteral("--move-to-server")});
        QVERIFY(program.waitForFinished(120000));
        QCOMPARE(program.exitCode(), 1);
        QVERIFY(QString::fromUtf8(program.readAllStandardError())
                    .contains(QStringLiteral("이미 데이터 서버의 장부")));
    }

    void aSeatAlreadyOnTheServerIsNotMovedAgain() {
        test::TestHome home;
        seedShop();
        FreshDatabase target;
        ServerSettings seat = target.settings();
        seat.use = true;
        QVERIFY(writeServerSettings(seat));
        const MoveReport report = moveToServer(target.settings());
        QVERIFY(!report.ok);
        QVERIFY(report.failure.contains(QStringLiteral("이미 데이터 서버의 장부를 쓰고 있습니다")));
        QCOMPARE(storeSchemasOn(target.name()), 0);
    }
};

NB_TEST_MAIN(TestMoveToServer)
#include "move_to_server_on_server.moc"
