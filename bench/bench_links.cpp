// Times of the SMS screen's search in the date mode over 50,000 traders and a decade of
// statements (200,000 statements, 1,000,000 lines), from the click to the list painted, against
// the same query through the sqlite3 command line on the same files (its own timer), with the
// longest time the window stood still and the list's memory.
#include "BenchSupport.h"
#include "BenchWindow.h"
#include "TestSupport.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "core/AppState.h"
#include "links/FrmSMS.h"
#include "shell/Startup.h"
#include "storage/CrossFileQueries.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <functional>

using namespace nb;

namespace {

constexpr int kTraders = 50000;
constexpr int kStatements = 200000;
constexpr int kLinesPerStatement = 5;

QString code(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QLatin1Char('0'));
}

// A date in the ten years 2015-2024 for a statement number.
QString dateFor(int n) {
    return QDate(2015, 1, 1).addDays(n % 3650).toString(u"yyyy-MM-dd");
}

void fillStore() {
    Database& basic = stores().dbBasic;
    basic.beginTransaction();
    QSqlQuery t(basic.connection());
    t.prepare("INSERT INTO Trader (Code, C_Name, Phone, Fax, HPhone) VALUES (?, ?, ?, ?, ?)");
    for (int i = 1; i <= kTraders; ++i) {
        t.addBindValue(code(i));
        t.addBindValue(QStringLiteral("거래처%1상사").arg(i));
        t.addBindValue(QStringLiteral("02-%1-%2").arg(100 + i % 900).arg(1000 + i % 9000));
        t.addBindValue(QStringLiteral("02-%1-%2").arg(200 + i % 700).arg(1000 + i % 9000));
        t.addBindValue(QStringLiteral("010-%1-%2").arg(1000 + i % 9000).arg(1000 + i % 8000));
        t.exec();
    }
    basic.commit();
    // Every tenth trader never had a statement; every fifth stopped dealing in 2019.
    Database& bill = stores().dbBill;
    bill.beginTransaction();
    QSqlQuery m(bill.connection());
    m.prepare(
        "INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) VALUES (?, ?, ?, 0, 0, 5)");
    QSqlQuery d(bill.connection());
    d.prepare("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
              "VALUES (?, ?, '품목', 'EA', 1, 1000, 0, 1000, 100)");
    int made = 0;
    for (int n = 0; made < kStatements; ++n) {
        const int trader = 1 + n % kTraders;
        if (trader % 10 == 1) continue;
        const QString date = trader % 5 == 0 ? dateFor(n % 1500) : dateFor(n);
        const QString billNo = QString::number(++made);
        m.addBindValue(billNo);
        m.addBindValue(date);
        m.addBindValue(code(trader));
        m.exec();
        for (int l = 1; l <= kLinesPerStatement; ++l) {
            d.addBindValue(billNo);
            d.addBindValue(l);
            d.exec();
        }
    }
    bill.commit();
}

void benchSearch() {
    fillStore();
    std::printf("store: %d traders, %d statements, %d lines\n", kTraders, kStatements,
                kStatements * kLinesPerStatement);
    FrmSMS form;
    test::showActive(&form);
    const double emptyMb = bench::residentMB();
    form.optFilter[1]->click();
    form.txtDate->setText(QStringLiteral("2020-01-01"));
    form.chkNoTrade->setChecked(true);
    int rows = 0;
    double still = 0;
    const double screenMs = bench::medianPaintedWatchingStill(
        &form, [&] { form.btnSearch->click(); }, &still);
    rows = form.grdList->MaxRows();
    const double queryMs = bench::medianMs([&] {
        Recordset rs;
        OpenTradersLastDeal(rs, TraderDealFilter{false, true, true}, QString(), QStringLiteral("2020-01-01"));
    });
    const QString sql =
        QStringLiteral("ATTACH '%1' AS bill;\n"
                       "SELECT C_Name, Phone, Fax, HPhone, Trader.Code, MAX(BillDate) as lastdate"
                       "  FROM Trader LEFT JOIN bill.Master ON trader.code = Master.ccode"
                       " GROUP BY C_Name, Phone, Fax, HPhone, Trader.Code"
                       " HAVING MAX(BillDate) < '2020-01-01' OR MAX(BillDate) IS NULL"
                       " ORDER BY C_Name;")
            .arg(nb::app().DbBillFile);
    const double cliMs = bench::cliScriptMs(nb::app().DbBasicFile, sql);
    std::printf("SMS search, date mode with traders never dealt with: %d rows\n", rows);
    std::printf("  the query alone (program's own connection)   %8.1f ms\n", queryMs);
    std::printf("  screen (search clicked to the list painted)  %8.1f ms\n"
                "  sqlite3 command line (the same query)        %8.1f ms\n  ratio %.2f\n",
                screenMs, cliMs, screenMs / cliMs);
    std::printf("  the window stood still at most %.1f ms (median of the searches)\n", still);
    std::printf("  memory: the list on the screen %.1f MB more than the empty window\n",
                bench::residentMB() - emptyMb);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();
    benchSearch();
    return 0;
}
