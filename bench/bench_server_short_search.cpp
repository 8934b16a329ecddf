// The trader list's search on a PostgreSQL server (NUBELLA_PG names an empty database), 50,000
// traders as the files' search benchmark lays them down: each text as the list asks it (one and
// two characters through the table of pieces, three and more through the trigram indexes),
// every row read, beside the same statement through psql in the same run (psql's own timer),
// with the ratio, and beside the statement without the pieces (every trader read) through psql.
#include "BenchSupport.h"
#include "StoreFixture.h"
#include "TestSupport.h"
#include "master/SearchIndex.h"
#include "master/SearchRules.h"
#include "master/TraderRecords.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <cstdio>

using namespace nb;

namespace {

constexpr int kTraders = 50000;

// One statement run `repeats` times through psql in one session, its own timer: the median, ms.
double psqlMs(const QString& statement, int repeats = 9) {
    QString script = QStringLiteral("SET search_path TO basic, public;\n\\timing on\n");
    for (int i = 0; i < repeats; ++i)
        script += statement + QStringLiteral(";\n");
    QProcess p;
    p.start(QStringLiteral("psql"), {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-o"),
                                     QStringLiteral("/dev/null"), serverConnInfo()});
    p.write(script.toUtf8());
    p.closeWriteChannel();
    p.waitForFinished(300000);
    const QRegularExpression time(QStringLiteral("Time: ([0-9.]+) ms"));
    std::vector<double> all;
    for (auto it = time.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); it.hasNext();)
        all.push_back(it.next().captured(1).toDouble());
    if (all.empty()) return -1;
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

// The statement as the server runs it, its values written in (psql takes no bound values).
QString asText(const SqlPart& query) {
    QString sql = sqlForDisplay(stores().dbBasic.statementFor(query.sql, query.values), query.values);
    while (sql.endsWith(u';'))
        sql.chop(1);
    return sql;
}

void fillTraders() {
    Database& db = stores().dbBasic;
    const QStringList towns = {"역삼동", "명동", "우동", "서면", "상계동", "신림동", "부평동", "둔산동"};
    const QStringList kinds = {"상사", "물산", "유통", "산업", "전자", "기계", "상회", "무역"};
    db.beginTransaction();
    for (int i = 1; i <= kTraders; ++i) {
        const QString town = towns[i % towns.size()];
        const QString word = QString::number(i % 997) + "-" + QString::number(i % 13);
        db.tryExecute(
            QStringLiteral(
                "INSERT INTO Trader (Code, C_Name, U_Name, Phone, Addr1, Addr2, Section, VAT, TotNoPay, "
                "bDeled) VALUES (?, ?, ?, ?, ?, ?, 0, 0, 0, 0)"),
            {QString("%1").arg(i, 6, 10, QChar('0')), QString("가나%1%2").arg(i).arg(kinds[i % kinds.size()]),
             "대표" + QString::number(i), QString("02-%1-%2").arg(100 + i % 900).arg(1000 + i % 9000),
             "서울 " + town + " " + word, word});
    }
    db.commit();
    QSqlQuery(db.connection()).exec(QStringLiteral("ANALYZE trader"));
    QSqlQuery(db.connection()).exec(QStringLiteral("ANALYZE trader_search_grams"));
}

int rowsOf(const SqlPart& query) {
    Recordset rs;
    OpenSnapshot(stores().dbBasic, rs, query.sql, query.values);
    return rs.RecordCount();
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    if (!onServer()) {
        std::printf("bench_server_short_search: NUBELLA_PG names no server database\n");
        return 1;
    }
    test::TestHome home;
    test::script();
    if (!test::openStores()) return 1;
    QElapsedTimer filling;
    filling.start();
    fillTraders();
    std::printf("store on the server: %d traders (laid down with their pieces in %.1f s)\n", kTraders,
                double(filling.elapsed()) / 1000);
    std::printf("%-10s %6s  %10s  %10s  %5s  %s\n", "text", "rows", "program", "psql", "ratio",
                "psql, every trader read");
    for (const QString& text :
         {QStringLiteral("물"), QStringLiteral("없"), QStringLiteral("9물"), QStringLiteral("물산"),
          QStringLiteral("7"), QStringLiteral("12"), QStringLiteral("가나4999")}) {
        const SqlPart query = TraderListQuery(stores().dbBasic, text, 0);
        const int rows = rowsOf(query);
        const double program = bench::medianMs([&] { rowsOf(TraderListQuery(stores().dbBasic, text, 0)); });
        const double bare = psqlMs(asText(query));
        // The same list without the pieces: what one and two characters cost before them.
        const QString column = TraderSearchByPhone(text) ? QStringLiteral("Phone") : QStringLiteral("C_Name");
        const SqlPart whole{
            QStringLiteral("SELECT C_Name, U_Name, Phone, Addr1, Code FROM Trader WHERE Section = ? "
                           "AND (%1 LIKE ? ESCAPE '\\' OR Addr2 LIKE ? ESCAPE '\\') ORDER BY "
                           "C_Name NULLS FIRST, Trader.rowid")
                .arg(column),
            {0, LikeContains(text), LikeContains(text)}};
        const QString before = UsesTrigramIndex(text) ? QStringLiteral("(the same statement)")
                                                      : QString::asprintf("%7.2f ms", psqlMs(asText(whole)));
        std::printf("%-10s %6d  %7.2f ms  %7.2f ms  %5.2f  %s\n", qPrintable(text), rows, program, bare,
                    bare > 0 ? program / bare : 0.0, qPrintable(before));
    }
    return 0;
}
