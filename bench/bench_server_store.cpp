// The store's own work on a PostgreSQL server (NUBELLA_PG names an empty database): a trader
// read by its code, a trader search inside names (three characters: the trigram index; one
// character: the table read), and one save that takes the next statement number under the
// store's writer lock, each beside the same statements through psql in the same run, with the
// ratio. psql times each statement by its own timer; the program's figure is the whole call.
#include "BenchSupport.h"
#include "StoreFixture.h"
#include "TestSupport.h"
#include "core/AppState.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <cstdio>

using namespace nb;

namespace {

constexpr int kTraders = 20000;

// The statements through psql in one session on the same database, its own timer: the median
// of the times of the last statement, in ms.
double psqlMs(const QString& schema, const QStringList& statements, int repeats = 9) {
    QString script = QStringLiteral("SET search_path TO %1, public;\n\\timing on\n").arg(schema);
    for (int i = 0; i < repeats; ++i)
        script += statements.join(QStringLiteral(";\n")) + QStringLiteral(";\n");
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
    // The statements of one run add up to the run.
    const int perRun = int(statements.size());
    std::vector<double> runs;
    for (size_t i = 0; i + perRun <= all.size(); i += perRun) {
        double sum = 0;
        for (int k = 0; k < perRun; ++k)
            sum += all[i + k];
        runs.push_back(sum);
    }
    if (runs.empty()) return -1;
    std::sort(runs.begin(), runs.end());
    return runs[runs.size() / 2];
}

void report(const char* what, double program, double bare) {
    std::printf("%-34s program %7.2f ms  psql %7.2f ms  ratio %5.2f\n", what, program, bare,
                bare > 0 ? program / bare : 0.0);
}

void fillTraders() {
    Database& db = stores().dbBasic;
    db.beginTransaction();
    const QStringList kinds = {"상사", "물산", "유통", "산업", "전자", "기계", "상회", "무역"};
    for (int i = 1; i <= kTraders; ++i)
        db.tryExecute(QStringLiteral("INSERT INTO Trader (Code, C_Name, Phone) VALUES (?, ?, ?)"),
                      {QStringLiteral("%1").arg(i, 6, 10, QChar(u'0')),
                       QStringLiteral("%1%2 %3").arg(i % 997).arg(kinds[i % kinds.size()]).arg(i),
                       QStringLiteral("02-%1").arg(i)});
    db.commit();
    QSqlQuery(db.connection()).exec(QStringLiteral("ANALYZE trader"));
}

int rowsOf(const QString& sql, const QVariantList& values) {
    Recordset rs;
    OpenSnapshot(stores().dbBasic, rs, sql, values);
    return rs.RecordCount();
}

bool saveHead(int day) {
    Database& db = stores().dbBill;
    return RetryingSave([&] {
        if (!db.beginTransaction()) return false;
        Recordset rs;
        const bool read = OpenSnapshot(db, rs, QStringLiteral("SELECT MAX(BillNo) AS Last FROM Master"));
        const int last =
            read && !rs.isNull(QStringLiteral("Last")) ? rs.text(QStringLiteral("Last")).toInt() : 0;
        if (!read ||
            !db.tryExecute(QStringLiteral("INSERT INTO Master (BillNo, BillDate, NumBill) VALUES (?, ?, 0)"),
                           {QStringLiteral("%1").arg(last + 1, 6, 10, QChar(u'0')),
                            QStringLiteral("2024-03-%1").arg(day % 28 + 1, 2, 10, QChar(u'0'))})) {
            db.rollback();
            return false;
        }
        return db.commit();
    });
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    if (!onServer()) {
        std::printf("bench_server_store: NUBELLA_PG names no server database\n");
        return 1;
    }
    test::TestHome home;
    test::script();
    if (!test::openStores()) return 1;
    fillTraders();
    std::printf("store on the server: %d traders\n", rowsOf(QStringLiteral("SELECT Code FROM Trader"), {}));

    const QString byCode = QStringLiteral("SELECT * FROM Trader WHERE Code = ?");
    report(
        "trader by code", bench::medianMs([&] { rowsOf(byCode, {QStringLiteral("012345")}); }, 51),
        psqlMs(QStringLiteral("basic"), {QStringLiteral("SELECT * FROM Trader WHERE Code = '012345'")}, 51));
    const QString inside = QStringLiteral("SELECT * FROM Trader WHERE C_Name ILIKE ? ORDER BY C_Name, rowid");
    report("name holding '99상사' (trigram)", bench::medianMs([&] {
               rowsOf(QStringLiteral("SELECT * FROM Trader WHERE C_Name LIKE ? ORDER BY C_Name, rowid"),
                      {QStringLiteral("%99상사%")});
           }),
           psqlMs(QStringLiteral("basic"), {QString(inside).replace(u'?', QStringLiteral("'%99상사%'"))}));
    report("name holding '상' (whole table)", bench::medianMs([&] {
               rowsOf(QStringLiteral("SELECT * FROM Trader WHERE C_Name LIKE ? ORDER BY C_Name, rowid"),
                      {QStringLiteral("%상%")});
           }),
           psqlMs(QStringLiteral("basic"), {QString(inside).replace(u'?', QStringLiteral("'%상%'"))}));
    int day = 0;
    report("save: next number, head (locked)", bench::medianMs([&] { saveHead(++day); }, 51),
           psqlMs(QStringLiteral("bill"),
                  {QStringLiteral("BEGIN"),
                   QStringLiteral("SELECT pg_try_advisory_xact_lock(20034, hashtext('bill'))"),
                   QStringLiteral("SELECT MAX(BillNo) FROM Master"),
                   QStringLiteral("INSERT INTO Master (BillNo, BillDate, NumBill) VALUES ('x' || "
                                  "(random() * 1e9)::bigint, '2024-03-01', 0)"),
                   QStringLiteral("COMMIT")},
                  51));
    return 0;
}
