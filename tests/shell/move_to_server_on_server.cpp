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
