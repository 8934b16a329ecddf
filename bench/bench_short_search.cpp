// The search the operator waits for in the big lists (the whole postcode book, 50,000 traders,
// 20,000 products), for texts of one, two and three or more characters: the screen action (the
// list's InitForm to the first page painted and the window free again) beside the same query
// through the sqlite3 program on the same file, and the floor: the same rows shown in a bare Qt
// table. With NB_BENCH_PROFILE set to "postcode:TEXT" or "traders:TEXT" that one search is run
// 500 times under the instruction counter and nothing is timed (NB_BENCH_PLAIN as well: the bare
// table showing its rows instead).
#include "BenchPlain.h"
#include "BenchSupport.h"
#include "TestSupport.h"
#include "core/AppState.h"
#include "master/FrmPost.h"
#include "master/FrmProductList.h"
#include "master/FrmTraderList.h"
#include "master/PostImport.h"
#include "master/PostSearch.h"
#include "master/ProductRecords.h"
#include "master/TraderRecords.h"
#include "shell/Startup.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <functional>

using namespace nb;

namespace {

// The statement with its values written in, for the sqlite3 program.
QString literalSql(const SqlPart& part) {
    QString sql = part.sql;
    for (const QVariant& v : part.values) {
        QString text = v.toString();
        text.replace(u'\'', QStringLiteral("''"));
        sql.replace(sql.indexOf(u'?'), 1, u'\'' + text + u'\'');
    }
    return sql;
}

// The processor time of firstPaintFreeMs, median of 9; the rest of a list is read between the
// runs, outside the time.
double medianCpuFirstPaintFreeMs(QWidget* window, const std::function<void()>& action) {
    std::vector<double> times;
    for (int i = 0; i < 9; ++i) {
        times.push_back(bench::medianCpuMs([&] { bench::firstPaintFreeMs(window, action); }, 1));
        for (int settle = 0; settle < 200; ++settle)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void report(const char* list, const QString& text, int rows, double screen, double cli) {
    std::printf("%-8s %-10s %6d rows  screen %7.2f ms  sqlite3 %7.2f ms  ratio %5.2f\n", list,
                qPrintable(text), rows, screen, cli, cli > 0 ? screen / cli : 0.0);
}

void fillTraders(int count) {
    Database& db = stores().dbBasic;
    const QStringList towns = {"역삼동", "명동", "우동", "서면", "상계동", "신림동", "부평동", "둔산동"};
    const QStringList kinds = {"상사", "물산", "유통", "산업", "전자", "기계", "상회", "무역"};
    db.beginTransaction();
    QSqlQuery q(db.connection());
    q.prepare(
        "INSERT INTO Trader (Code, C_Name, U_Name, Phone, Addr1, Addr2, Section, VAT, TotNoPay, bDeled) "
        "VALUES (?, ?, ?, ?, ?, ?, 0, 0, 0, 0)");
    for (int i = 1; i <= count; ++i) {
        const QString town = towns[i % towns.size()];
        const QString word = QString::number(i % 997) + "-" + QString::number(i % 13);
        q.addBindValue(QString("%1").arg(i, 6, 10, QChar('0')));
        q.addBindValue(QString("가나%1%2").arg(i).arg(kinds[i % kinds.size()]));
        q.addBindValue("대표" + QString::number(i));
        q.addBindValue(QString("02-%1-%2").arg(100 + i % 900).arg(1000 + i % 9000));
        q.addBindValue("서울 " + town + " " + word);
        q.addBindValue(word);
        q.exec();
    }
    db.commit();
}

void fillProducts(int count) {
    Database& db = stores().dbBasic;
    const QStringList names = {"볼트", "너트", "와셔", "앵글", "파이프", "엘보", "밸브", "호스"};
    db.beginTransaction();
    QSqlQuery q(db.connection());
    q.prepare("INSERT INTO Product (Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo, PTax) "
              "VALUES (?, ?, ?, ?, ?, 'EA', '', 1)");
    for (int i = 1; i <= count; ++i) {
        q.addBindValue(QString("%1").arg(i, 6, 10, QChar('0')));
        q.addBindValue(names[i % names.size()] + QString::number(i));
        q.addBindValue(i % 3 ? QString("M%1").arg(i % 30) : QString());
        q.addBindValue(100.0 * (i % 50));
        q.addBindValue(120.0 * (i % 50) + (i % 2 ? 0.5 : 0));
        q.exec();
    }
    db.commit();
}

// NB_BENCH_PROFILE's list ("postcode" or "traders") and text; empty when not profiling.
QPair<QString, QString> profiled() {
    const QString asked = qEnvironmentVariable("NB_BENCH_PROFILE");
    const qsizetype colon = asked.indexOf(u':');
    if (colon < 0) return {};
    return {asked.left(colon), asked.mid(colon + 1)};
}

// Runs one shown list's search as profiled asks: the program's or the bare table's.
void profile(QWidget* form, const std::function<void()>& search, const QTableView& view) {
    search();
    QCoreApplication::processEvents();
    if (qEnvironmentVariableIsSet("NB_BENCH_PLAIN"))
        bench::plainWidgetMs(bench::shownRows(view), 9, true);
    else
        bench::profileRuns(form, search);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();

    std::printf("postcode book: %d rows\n",
                ImportPostcodeFile(test::sharedDataDir() + "/zipcode_6digit.csv"));
    Database post;
    post.open(nb::app().DbPostFile);
    const QPair<QString, QString> asked = profiled();
    const QString profiledList = asked.first, profiledText = asked.second;
    if (profiledList == QStringLiteral("postcode")) {
        FrmPost form;
        form.show();
        int result = 0;
        profile(
            &form, [&] { form.InitForm(profiledText, result); }, *form.grdList());
        return 0;
    }
    for (const QString& text :
         {QString("동"), QString("신림"), QString("역삼1동"), QString("1"), QString("135")}) {
        FrmPost form;
        form.show();
        int result = 0;
        form.InitForm(text, result); // first use checks the index
        const double screen = bench::medianFirstPaintFreeMs(&form, [&] { form.InitForm(text, result); });
        const SqlPart query = PostSearchQuery(post, text, postLimits());
        const double cli = bench::cliMs(nb::app().DbPostFile, literalSql(query));
        report("postcode", text, int(SearchPostBook(post, text).size()), screen, cli);
        bench::saveShot(&form, QStringLiteral("postcode_") + text);
        bench::reportFloor("postcode", bench::shownRows(*form.grdList()), screen, cli);
    }

    fillTraders(50000);
    if (profiledList == QStringLiteral("traders")) {
        FrmTraderList form;
        form.show();
        int result = 0;
        profile(
            &form, [&] { form.InitForm(profiledText, 0, result); }, *form.grdList());
        return 0;
    }
    std::printf("traders: 50000 rows (first page painted and the window free, beside the whole query)\n");
    for (const QString& text :
         {QString("물"), QString("물산"), QString("가나4999"), QString("2"), QString("02-345"), QString()}) {
        FrmTraderList form;
        form.show();
        int result = 0;
        form.InitForm(text, 0, result);
        const double screen = bench::medianFirstPaintFreeMs(&form, [&] { form.InitForm(text, 0, result); });
        const SqlPart query = TraderListQuery(stores().dbBasic, text, 0);
        Recordset rs;
        OpenSnapshot(stores().dbBasic, rs, query.sql, query.values);
        const double cli = bench::cliMs(nb::app().DbBasicFile, literalSql(query));
        report("traders", text.isEmpty() ? QStringLiteral("(none)") : text, rs.RecordCount(), screen, cli);
        bench::saveShot(&form, QStringLiteral("traders_") + text);
        bench::reportFloor("traders", bench::shownRows(*form.grdList()), screen, cli);
    }

    fillProducts(20000);
    std::printf(
        "products: 20000 rows (first page painted and the window free, beside the list's statement)\n");
    for (const QString& text :
         {QString("볼"), QString("볼트"), QString("볼트1234"), QString("1"), QString()}) {
        FrmProductList form;
        form.show();
        int result = 0;
        form.InitForm(1, text, result);
        const double screen = bench::medianFirstPaintFreeMs(&form, [&] { form.InitForm(1, text, result); });
        const double cli = bench::cliMs(nb::app().DbBasicFile, literalSql(ProductListQuery(text)));
        report("products", text.isEmpty() ? QStringLiteral("(none)") : text, form.model()->rowCount(), screen,
               cli);
        const double cpu = medianCpuFirstPaintFreeMs(&form, [&] { form.InitForm(1, text, result); });
        const double cliCpu = bench::cliCpuMs(nb::app().DbBasicFile, literalSql(ProductListQuery(text)));
        std::printf("         processor time: screen %.2f ms, sqlite3 %.2f ms (user + system), ratio %.2f\n",
                    cpu, cliCpu, cliCpu > 0 ? cpu / cliCpu : 0.0);
    }
    {
        FrmTraderList form;
        form.show();
        int result = 0;
        form.InitForm(QStringLiteral("없는 상호"), 0, result);
        const double emptyMB = bench::residentMB();
        form.InitForm(QString(), 0, result);
        form.model()->finishFilling();
        form.repaint();
        const double fullMB = bench::residentMB();
        std::printf("resident size: empty trader list %.1f MB, every trader listed %.1f MB (%.1f MB more)\n",
                    emptyMB, fullMB, fullMB - emptyMB);
    }
    return 0;
}
