// The trader list's search on a server holding thousands of traders, their statistics taken as
// the server's upkeep takes them: a rare text of three characters and more comes from the
// trigram indexes, whatever the statistics say; one or two characters from the pieces, or from
// the whole table when more than 5,000 pieces hold them, in one statement; the rows and their
// order always those of the plain ILIKE statement, read past Qt's driver with the values and
// types the driver gives. Runs on the test run's PostgreSQL cluster only.
#include "MasterFixture.h"
#include "ServerDatabase.h"
#include "common/grid/GridRows.h"
#include "master/ListModel.h"
#include "master/SearchIndex.h"
#include "master/SearchRules.h"
#include "master/TraderRecords.h"
#include "storage/StoreEngine.h"
#include "storage/Stores.h"
#include "storage/backup/ServerCopyHandles.h"

#include <QFile>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <cstdio>

using namespace nb;
using namespace nb::test;

namespace {

constexpr int kTraders = 20000;

// A statement run as written, on the basic store's connection.
bool run(const QString& sql) {
    QSqlQuery q(stores().dbBasic.connection());
    if (q.exec(sql)) return true;
    qWarning("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
    return false;
}

// Many traders at once, as a shop's books moved in or typed over the years: "가나<n><kind>",
// a telephone and a last address word of digits, every tenth one without a representative,
// telephone or address; then the statistics taken.
bool addManyTraders() {
    // The pieces made first, so the traders' own trigger keeps them as they come in.
    return EnsureSearchIndex(stores().dbBasic, TraderSearchIndex()) &&
           run(QStringLiteral(
                   "INSERT INTO trader (code, c_name, u_name, phone, addr1, addr2, section, vat, totnopay, "
                   "bdeled) SELECT lpad(CAST(g AS text), 6, '0'), '가나' || g || (ARRAY['상사', '물산상회', "
                   "'유통', "
                   "'산업', '전자'])[g % 5 + 1], CASE WHEN g % 10 = 0 THEN NULL ELSE '대표' || g END, "
                   "CASE WHEN g % 10 = 0 THEN NULL ELSE '02-' || (100 + g % 900) || '-' || (1000 + g % "
                   "9000) END, CASE WHEN g % 10 = 0 THEN NULL ELSE '서울 역삼동 ' || (g % 997) END, "
                   "CASE WHEN g % 10 = 0 THEN NULL ELSE CAST(g % 997 AS text) END, 0, 0, 0, 0 FROM "
                   "generate_series(1, %1) g")
                   .arg(kTraders)) &&
           run(QStringLiteral("ANALYZE trader")) && run(QStringLiteral("ANALYZE trader_search_grams"));
}

// The list's rows as the trader list reads them, every value.
QList<QVariantList> listRows(const QString& text) {
    const SqlPart query = TraderListQuery(stores().dbBasic, text, 0);
    KeptStatements kept;
    std::unique_ptr<GridRowSource> rows = OpenListRows(stores().dbBasic, query.sql, query.values, kept);
    QList<QVariantList> out;
    if (!rows) return out;
    QVariantList row(rows->width());
    while (rows->next(row.data(), rows->width()))
        out << row;
    return out;
}

// The rows of a statement read through Qt's driver.
QList<QVariantList> driverRows(const QString& sql, const QVariantList& values) {
    Database& db = stores().dbBasic;
    QSqlQuery q(db.connection());
    q.prepare(db.statementFor(sql, values));
    db.bindValues(q, values);
    QList<QVariantList> out;
    if (!q.exec()) return out;
    while (q.next()) {
        QVariantList row;
        for (int c = 0; c < q.record().count(); ++c)
            row << q.value(c);
        out << row;
    }
    return out;
}

// The list's rows by the plain ILIKE statement, with no narrowing.
QList<QVariantList> plainRows(const QString& text) {
    const QString first = TraderSearchByPhone(text) ? QStringLiteral("Phone") : QStringLiteral("C_Name");
    return driverRows(
        QStringLiteral("SELECT C_Name, U_Name, Phone, Addr1, Code FROM Trader WHERE Section = ? AND "
                       "(%1 LIKE ? ESCAPE '\\' OR Addr2 LIKE ? ESCAPE '\\') ORDER BY C_Name NULLS "
                       "FIRST, Trader.rowid")
            .arg(first),
        {0, LikeContains(text), LikeContains(text)});
}

// The plan the server chooses for the list's statement by its own reckoning, each step that ran
// (EXPLAIN ANALYZE: a step of a branch that never ran says so).
QString stepsRun(const QString& text) {
    const SqlPart q = TraderListQuery(stores().dbBasic, text, 0);
    QSqlQuery plan(stores().dbBasic.connection());
    const bool ok = plan.exec(QStringLiteral("EXPLAIN ANALYZE ") +
                              sqlForDisplay(stores().dbBasic.statementFor(q.sql, q.values), q.values));
    QString steps;
    while (ok && plan.next()) {
        const QString line = plan.value(0).toString();
        if (!line.contains(QStringLiteral("never executed"))) steps += line + u'\n';
    }
    return ok ? steps : QStringLiteral("(no plan)");
}

bool readsEveryTrader(const QString& steps) {
    static const QRegularExpression seq(QStringLiteral("Seq Scan on trader(\\s|$)"));
    return steps.contains(seq);
}

// The exchanges with the server (each ends with a Sync or is a simple Query) while `run` runs.
int exchangesDuring(const std::function<void()>& run) {
    PGconn* conn = serverEngineHandle(stores().dbBasic.connection());
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("trace"));
    FILE* trace = std::fopen(QFile::encodeName(path).constData(), "w");
    if (!conn || !trace) return -1;
    PQtrace(conn, trace);
    PQsetTraceFlags(conn, PQTRACE_SUPPRESS_TIMESTAMPS);
    run();
    PQuntrace(conn);
    std::fclose(trace);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return -1;
    int exchanges = 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> words = line.split('\t');
        if (words.size() >= 3 && words[0] == "F" && (words[2] == "Sync" || words[2].startsWith("Query")))
            ++exchanges;
    }
    return exchanges;
}

bool trigramIndexesWriteStraightIn(Database& db) {
    for (const QString& index : serverTrigramIndexNames(QStringLiteral("Trader"))) {
        const QVariant options =
            scalar(db,
                   QStringLiteral("SELECT array_to_string(c.reloptions, ',') FROM pg_class c "
                                  "JOIN pg_namespace n ON n.oid = c.relnamespace WHERE "
                                  "n.nspname = ? AND c.relname = ?"),
                   {db.serverSchema(), index});
        if (!options.toString().contains(QStringLiteral("fastupdate=off"))) return false;
    }
    return true;
}

} // namespace

class TestServerTraderSearch : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY2(testOnServer(), "this test runs on the test run's cluster only"); }
    void cleanup() { closeStores(); }

    // Once the statistics are taken, the server would read every trader for a text eleven hold if
    // the index kept its new entries aside: here it walks the trigram index.
    void aRareTextComesFromTheTrigramIndexAfterTheStatisticsAreTaken() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        for (const QString& text :
             {QStringLiteral("가나1999"), QStringLiteral("가나12346물"), QStringLiteral("02-345-")}) {
            const QString steps = stepsRun(text);
            QVERIFY2(!steps.contains(QStringLiteral("(no plan)")), qPrintable(text));
            QVERIFY2(!readsEveryTrader(steps), qPrintable(text + u'\n' + steps));
            QVERIFY2(steps.contains(QStringLiteral("_trgm")), qPrintable(text + u'\n' + steps));
        }
    }
    // Every fifth trader is a "물산상회": "물산상" still comes from the index.
    void aTextEveryFifthTraderHoldsComesFromTheTrigramIndexToo() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        const QString steps = stepsRun(QStringLiteral("물산상"));
        QVERIFY2(!readsEveryTrader(steps), qPrintable(steps));
        QVERIFY2(steps.contains(QStringLiteral("trader_c_name_trgm")), qPrintable(steps));
        QCOMPARE(listRows(QStringLiteral("물산상")).size(), kTraders / 5);
    }
    void rareAndCommonTextsGiveThePlainStatementsRowsInItsOrder() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        for (const QString& text :
             {QStringLiteral("가나1999"), QStringLiteral("물산상"), QStringLiteral("가나1"),
              QStringLiteral("물산"), QStringLiteral("물"), QStringLiteral("산"), QStringLiteral("나1"),
              QStringLiteral("7"), QStringLiteral("4999"), QStringLiteral("02-1"), QStringLiteral("없"),
              QStringLiteral("없는말"), QStringLiteral("%"), QStringLiteral("동 1")}) {
            const QList<QVariantList> plain = plainRows(text);
            QCOMPARE(listRows(text), plain);
        }
        QCOMPARE(plainRows(QStringLiteral("가나1999")).size(), 11); // 가나1999, 가나19990 to 가나19999
        QCOMPARE(plainRows(QStringLiteral("없")).size(), 0);
        QVERIFY(plainRows(QStringLiteral("산")).size() > 5000);
    }
    // More than 5,000 pieces hold "산" (물산상회, 산업): the table is read; "물" is held by 4,000:
    // those rows are looked up by their numbers and no trader else is read.
    void aShortTextHeldByMoreThan5000PiecesReadsTheTableAndFewerAreLookedUp() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        const QString wide = stepsRun(QStringLiteral("산"));
        QVERIFY2(readsEveryTrader(wide), qPrintable(wide));
        QVERIFY2(!wide.contains(QStringLiteral("trader_rowid")), qPrintable(wide));
        const QString narrow = stepsRun(QStringLiteral("물"));
        QVERIFY2(!readsEveryTrader(narrow), qPrintable(narrow));
        QVERIFY2(narrow.contains(QStringLiteral("trader_rowid")), qPrintable(narrow));
        QVERIFY2(narrow.contains(QStringLiteral("trader_search_grams")), qPrintable(narrow));
    }
    // The pieces laid down from every trader at the store's first short search are vacuumed at
    // once: a short text's count reads their index alone, not the rows beside it.
    void piecesLaidDownFromManyTradersAreCountedFromTheirIndexAlone() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        Database& db = stores().dbBasic;
        DropSearchIndex(db, TraderSearchIndex());
        QVERIFY(EnsureSearchIndex(db, TraderSearchIndex()));
        const QString pieces = QStringLiteral(
            "FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace WHERE n.nspname = ? AND "
            "c.relname = 'trader_search_grams'");
        // The pages the table has, and of them the ones its last vacuum marked visible to all.
        const int pages =
            scalar(db,
                   QStringLiteral("SELECT pg_relation_size(c.oid) / current_setting('block_size')::int ") +
                       pieces,
                   {db.serverSchema()})
                .toInt();
        QVERIFY(pages > 100);
        QCOMPARE(scalar(db, QStringLiteral("SELECT c.relallvisible ") + pieces, {db.serverSchema()}).toInt(),
                 pages);
        const QString steps = stepsRun(QStringLiteral("7"));
        QVERIFY2(steps.contains(QStringLiteral("Index Only Scan using trader_search_grams_pkey")),
                 qPrintable(steps));
        static const QRegularExpression fetched(QStringLiteral("Heap Fetches: [1-9]"));
        QVERIFY2(!steps.contains(fetched), qPrintable(steps));
    }
    // The pieces counted and the rows read in one exchange with the server.
    void aShortTextIsOneExchangeWithTheServer() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        listRows(QStringLiteral("가")); // the pieces made ready
        for (const QString& text :
             {QStringLiteral("없"), QStringLiteral("물"), QStringLiteral("산"), QStringLiteral("가나1999")})
            QCOMPARE(exchangesDuring([&] { listRows(text); }), 1);
    }
    // Past the driver, every column comes as the driver gives it: texts, Korean, NULLs of their
    // type.
    void rowsReadPastTheDriverEqualTheDriversForEveryColumn() {
        TestHome home;
        QVERIFY(openStores());
        QVERIFY(addManyTraders());
        int nulls = 0;
        for (const QString& text : {QStringLiteral("가나10"), QStringLiteral("물")}) {
            const SqlPart query = TraderListQuery(stores().dbBasic, text, 0);
            const QList<QVariantList> driver = driverRows(query.sql, query.values);
            const QList<QVariantList> past = listRows(text);
            QCOMPARE(past.size(), driver.size());
            for (int r = 0; r < driver.size(); ++r)
                for (int c = 0; c < driver[r].size(); ++c) {
                    const QVariant& d = driver[r][c];
                    const QVariant& p = past[r][c];
                    QCOMPARE(p.typeId(), d.typeId());
                    QCOMPARE(p.isNull(), d.isNull());
                    QCOMPARE(p, d);
                    nulls += d.isNull() ? 1 : 0;
                }
            QVERIFY(driver.first().first().toString().startsWith(QStringLiteral("가나")));
        }
        QVERIFY(nulls > 0);
    }
    // A list statement the server refuses shows the failure box and gives the list no rows; the
    // searches after it read as before.
    void aListStatementTheServerRefusesShowsItsBoxAndNoRows() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        KeptStatements kept;
        QVERIFY(!OpenListRows(stores().dbBasic, QStringLiteral("SELECT Nothing FROM Trader"), {}, kept));
        QCOMPARE(msgs.boxes().size(), size_t(1));
        // The connection goes on: the next search reads its rows.
        addTrader(QStringLiteral("000001"), QStringLiteral("가나상사"));
        QCOMPARE(listRows(QStringLiteral("가나")).size(), 1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
    }
    // A database laid down by an older build kept the trigram indexes' new entries aside: the
    // start has them written straight in, and a second start changes nothing.
    void anOlderDatabasesTrigramIndexesAreSettledAtStart() {
        TestHome home;
        QVERIFY(openStores());
        Database& db = stores().dbBasic;
        QVERIFY(trigramIndexesWriteStraightIn(db));
        for (const QString& index : serverTrigramIndexNames(QStringLiteral("Trader")))
            QVERIFY(run(QStringLiteral("ALTER INDEX %1 SET (fastupdate = on)").arg(index)));
        QVERIFY(addManyTraders());
        QVERIFY(!trigramIndexesWriteStraightIn(db));
        auto& msgs = script();
        QVERIFY(UpgradeServerStores());
        QVERIFY(trigramIndexesWriteStraightIn(db));
        const QString steps = stepsRun(QStringLiteral("가나1999"));
        QVERIFY2(!readsEveryTrader(steps), qPrintable(steps));
        const QVariant before = scalar(
            db, QStringLiteral(
                    "SELECT array_to_string(array_agg(CAST(reloptions AS text) ORDER BY relname), ';') FROM "
                    "pg_class WHERE relname LIKE 'trader_%_trgm'"));
        QVERIFY(UpgradeServerStores());
        QCOMPARE(scalar(db, QStringLiteral("SELECT array_to_string(array_agg(CAST(reloptions AS text) ORDER "
                                           "BY relname), ';') FROM pg_class "
                                           "WHERE relname LIKE 'trader_%_trgm'")),
                 before);
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
};

NB_TEST_MAIN(TestServerTraderSearch)
#include "server_trader_search.moc"
