// The one-time move of an old statement file of 100,000 statements and 1,000,000 lines into the
// statement store (the whole step, as at start-up) beside the bare bulk copy of the same rows by
// the sqlite3 command line: five rounds of the two, each from the same files.
#include "BenchSupport.h"
#include "TestSupport.h"
#include "core/AppState.h"
#include "storage/Database.h"
#include "storage/Stores.h"
#include "storage/UpdateBill.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <sys/resource.h>
#include <vector>

using namespace nb;

namespace {

constexpr int kTraders = 50000;

QString code(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QLatin1Char('0'));
}

QString dateFor(int n) {
    return QDate(2015, 1, 1).addDays(n % 3650).toString(u"yyyy-MM-dd");
}

void layDownOldStore(const QString& path, int statements, int lines) {
    Database old;
    old.create(path);
    old.tryExecute("CREATE TABLE DealTitle (DealCode TEXT(6), DealDate TEXT(10), TraderCode TEXT(6))");
    old.tryExecute("CREATE TABLE DealList (DealCode TEXT(6), PName TEXT(50), PNorm TEXT(50), Quant REAL, "
                   "UnitCost REAL, SaleKum REAL, DC REAL)");
    old.beginTransaction();
    QSqlQuery h(old.connection());
    h.prepare("INSERT INTO DealTitle VALUES (?, ?, ?)");
    QSqlQuery l(old.connection());
    l.prepare("INSERT INTO DealList VALUES (?, '품목', 'EA', ?, 1000, ?, 0)");
    const int perStatement = lines / statements;
    for (int s = 1; s <= statements; ++s) {
        h.addBindValue(code(s));
        h.addBindValue(dateFor(s));
        h.addBindValue(code(1 + s % kTraders));
        h.exec();
        for (int k = 0; k < perStatement; ++k) {
            l.addBindValue(code(s));
            l.addBindValue(1 + k);
            l.addBindValue((1 + k) * 1000 * (k % 2 ? 1.1 : 1.0)); // half VAT on top, half unclear
            l.exec();
        }
    }
    old.commit();
}

// Puts a fresh copy of `from` at `to`, with no journal beside it.
void freshCopy(const QString& from, const QString& to) {
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
        QFile::remove(to + suffix);
    QFile::copy(from, to);
}

// Processor time (user and system) of this process or of its ended children, in ms.
double cpuMs(int who) {
    rusage usage{};
    getrusage(who, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

struct Timing {
    double wall = 0;
    double cpu = 0;
};

Timing programMs(const QString& pristineOld, const QString& pristineBill) {
    const QString folder = nb::app().DbPath;
    QFile::remove(folder + QStringLiteral("/dbDetail_bak.db"));
    freshCopy(pristineOld, folder + QStringLiteral("/dbdetail.db"));
    freshCopy(pristineBill, nb::app().DbBillFile);
    auto& msgs = test::script();
    msgs.answer(AnsOk);
    msgs.answer(AnsYes);
    QElapsedTimer t;
    const double cpuBefore = cpuMs(RUSAGE_SELF);
    t.start();
    UpdateBill();
    const Timing ms{double(t.nsecsElapsed()) / 1e6, cpuMs(RUSAGE_SELF) - cpuBefore};
    Database check;
    check.open(nb::app().DbBillFile);
    QSqlQuery q(check.connection());
    if (!q.exec("SELECT COUNT(*) FROM Detail") || !q.next() || q.value(0).toInt() != 1000000)
        std::printf("the move did not bring every line across\n");
    return ms;
}

// The bare copy of the same rows by the command line, without line numbers or VAT split.
Timing bareMs(const QString& pristineOld, const QString& pristineBill, const QString& work) {
    freshCopy(pristineOld, work + QStringLiteral("/old.db"));
    freshCopy(pristineBill, work + QStringLiteral("/bill.db"));
    const QString script =
        QStringLiteral("ATTACH '%1' AS old; BEGIN; "
                       "INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                       "SELECT DealCode, DealDate, TraderCode, 0, 0, 0 FROM old.DealTitle ORDER BY DealCode; "
                       "INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
                       "SELECT DealCode, 1, PName, PNorm, Quant, UnitCost, DC, SaleKum, 0 FROM old.DealList "
                       "ORDER BY DealCode; COMMIT;")
            .arg(work + QStringLiteral("/old.db"));
    const double cpuBefore = cpuMs(RUSAGE_CHILDREN);
    QElapsedTimer c;
    c.start();
    QProcess p;
    p.start(QStringLiteral("sqlite3"), {work + QStringLiteral("/bill.db"), script});
    p.waitForFinished(-1);
    return {double(c.nsecsElapsed()) / 1e6, cpuMs(RUSAGE_CHILDREN) - cpuBefore};
}

// Rounds of the two, one after the other, so that both meet the same load of the machine.
void benchConversion() {
    test::TestHome home;
    ReadSettings();
    QDir().mkpath(nb::app().DbPath);
    CreateMissingStoreFiles();
    const QString pristineOld = home.file(QStringLiteral("pristine-dbdetail.db"));
    const QString pristineBill = home.file(QStringLiteral("pristine-dbBill.db"));
    layDownOldStore(pristineOld, 100000, 1000000);
    QFile::copy(nb::app().DbBillFile, pristineBill);
    std::printf("old statement file: 100000 statements, 1000000 lines\n");
    std::vector<double> ours, bare, ratios, oursCpu, bareCpu;
    for (int round = 1; round <= 5; ++round) {
        const Timing program = programMs(pristineOld, pristineBill);
        const Timing copy = bareMs(pristineOld, pristineBill, home.path());
        ours.push_back(program.wall);
        bare.push_back(copy.wall);
        ratios.push_back(program.wall / copy.wall);
        oursCpu.push_back(program.cpu);
        bareCpu.push_back(copy.cpu);
        std::printf(
            "  round %d: UpdateBill %7.0f ms (processor %6.0f), sqlite3 bare bulk copy %7.0f ms (processor "
            "%6.0f), ratio %.2f\n",
            round, program.wall, program.cpu, copy.wall, copy.cpu, ratios.back());
    }
    for (auto* v : {&ours, &bare, &ratios, &oursCpu, &bareCpu})
        std::sort(v->begin(), v->end());
    std::printf(
        "  median: UpdateBill (whole step) %.0f ms, bare %.0f ms, ratio of medians %.2f, median ratio %.2f; "
        "processor time %.0f ms against %.0f ms, ratio %.2f\n",
        ours[2], bare[2], ours[2] / bare[2], ratios[2], oursCpu[2], bareCpu[2], oursCpu[2] / bareCpu[2]);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    benchConversion();
    return 0;
}
