// The invoice screen's list of a customer's issued invoices at a decade of data (1,000,000 invoice
// lines over ten years, 50,000 traders) for a large customer (10,000 invoices of two lines) and an
// ordinary one: from choosing the customer to the list's first page painted, with the customer's
// sums and the period's, beside the same statements through the sqlite3 command line on the same
// file, with the longest time the window stood still, and the floor: the ordinary customer's rows
// shown in a bare Qt table. With NB_BENCH_PROFILE set, the ordinary customer's list is run 500
// times under the instruction counter and nothing is timed (NB_BENCH_PLAIN as well: the bare
// table showing its rows instead).
#include "BenchPlain.h"
#include "BenchSupport.h"
#include "BenchWindow.h"
#include "common/grid/Grid.h"
#include "invoice/FrmTax.h"
#include "invoice/InvoiceStore.h"

#include <QApplication>
#include <QSqlQuery>
#include <cstdio>

using namespace nb;

namespace {

constexpr int kTraders = 50000;
constexpr int kLines = 1000000;
const QString kLargeCustomer = QStringLiteral("099999");

void fill() {
    Database& basic = stores().dbBasic;
    basic.beginTransaction();
    QSqlQuery t(basic.connection());
    t.prepare(QStringLiteral("INSERT INTO Trader (Code, C_Name, Serial) VALUES (?, ?, ?)"));
    for (int i = 1; i <= kTraders; ++i) {
        t.addBindValue(QStringLiteral("%1").arg(i, 6, 10, QChar(u'0')));
        t.addBindValue(QStringLiteral("가나상사%1").arg(i));
        t.addBindValue(QStringLiteral("101-01-%1").arg(i, 5, 10, QChar(u'0')));
        t.exec();
    }
    QSqlQuery(basic.connection())
        .exec(QStringLiteral("INSERT INTO User (Company, Serial) VALUES ('하르문상사', '123-45-67891')"));
    basic.commit();
    // Two lines an invoice, spread evenly over 2015-2024; then the large customer's 10,000.
    QSqlQuery(stores().dbTax.connection())
        .exec(QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, "
                             "VatKum, DealDate, TradeDate, UserCode) WITH RECURSIVE n(i) AS (SELECT 0 UNION "
                             "ALL SELECT i + 1 FROM n WHERE i < %1) SELECT printf('%08d', 100000 + i / 2), "
                             "printf('%06d', 1 + ((i / 2) * 7919) % %2), '품목' || (i % 2), 1, 10000, 10000, "
                             "1000, date('2015-01-01', '+' || (i * 3652 / %1) || ' days'), '01-01', "
                             "'123-45-67891' FROM n")
                  .arg(kLines - 1)
                  .arg(kTraders));
    QSqlQuery(stores().dbTax.connection())
        .exec(
            QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, "
                           "VatKum, DealDate, TradeDate, UserCode) WITH RECURSIVE n(i) AS (SELECT 0 UNION "
                           "ALL SELECT i + 1 FROM n WHERE i < 19999) SELECT printf('%08d', 700000 + i / 2), "
                           "'%1', '대량품목' || (i % 2), 1, 5000, 5000, 500, date('2015-01-01', '+' || "
                           "(i * 3652 / 20000) || ' days'), '01-01', '123-45-67891' FROM n")
                .arg(kLargeCustomer));
    QSqlQuery(stores().dbTax.connection()).exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
}

const QString kOrdinaryCustomer = QStringLiteral("000001");

void profileOrdinary(FrmTax& screen) {
    screen.LoadIssuedList(kOrdinaryCustomer);
    QApplication::processEvents();
    if (qEnvironmentVariableIsSet("NB_BENCH_PLAIN"))
        bench::plainWidgetMs(bench::shownRows(*screen.grdList), 9, true);
    else
        bench::profileRuns(&screen, [&] { screen.LoadIssuedList(kOrdinaryCustomer); });
}

// Answers the program's figure and the bare statements'.
std::pair<double, double> timeList(FrmTax& screen, const char* what, const QString& code) {
    double still = 0;
    const double ms = bench::medianPaintedWatchingStill(
        &screen, [&] { screen.LoadIssuedList(code); }, &still);
    // The list, the customer's sums and the period's (the first quarter of this year, as the
    // screen opens), as the screen reads them.
    const QString quoted = u'\'' + code + u'\'';
    const QString year = QDate::currentDate().toString(QStringLiteral("yyyy"));
    const QString script = QString(kIssuedListQuery).replace(u'?', quoted) + QStringLiteral(";\n") +
                           QString(kIssuedSumsQuery).replace(u'?', quoted) + QStringLiteral(";\n") +
                           QStringLiteral("Select Sum(TradeKum) , Sum(VatKum) from NewAcount Where DealDate "
                                          "Between '%1-01-01' and '%1-03-31';")
                               .arg(year);
    const double cli = bench::cliScriptMs(stores().dbTax.path(), script, 3, 20);
    std::printf(
        "%-34s %6d rows  program %8.2f ms  sqlite3 %7.2f ms  ratio %5.2f  window still at most %.1f ms\n",
        what, screen.grdList->DataRowCnt(), ms, cli, cli > 0 ? ms / cli : 0.0, still);
    std::fflush(stdout);
    return {ms, cli};
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();
    fill();
    std::printf("store: %d traders, %d invoice lines over 2015-2024; customer %s with 10,000 invoices\n",
                kTraders, kLines + 20000, qPrintable(kLargeCustomer));
    std::fflush(stdout);
    FrmTax screen;
    screen.show();
    QApplication::processEvents();
    const double emptyMb = bench::residentMB();
    if (qEnvironmentVariableIsSet("NB_BENCH_PROFILE")) {
        profileOrdinary(screen);
        return 0;
    }
    const auto [ordinary, ordinaryBare] =
        timeList(screen, "issued list, an ordinary customer", kOrdinaryCustomer);
    screen.LoadIssuedList(kOrdinaryCustomer);
    QApplication::processEvents();
    bench::saveShot(&screen, QStringLiteral("issued_ordinary"));
    bench::reportFloor("the ordinary customer", bench::shownRows(*screen.grdList), ordinary, ordinaryBare);
    timeList(screen, "issued list, the large customer", kLargeCustomer);
    std::printf("memory: the large customer's list on the screen %.1f MB more than the empty list\n",
                bench::residentMB() - emptyMb);
    return 0;
}
