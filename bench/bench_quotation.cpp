// Quotations at a decade of data (100,000 quotations, 1,000,000 lines): the search list with an
// empty text and with a name, the lines of a 100-line quotation on the screen, and the next
// number and line key; each beside the same statement run by the sqlite3 program on the file. The
// lines are also shown in a bare Qt table, the floor of any program showing them. With
// NB_BENCH_PROFILE=lines only the lines are loaded, 500 times under the instruction counter
// (NB_BENCH_PLAIN as well: the bare table showing them instead).
#include "BenchBooks.h"
#include "BenchPlain.h"
#include "BenchSupport.h"
#include "NextNumberPlans.h"
#include "TestSupport.h"
#include "common/grid/Grid.h"
#include "core/AppState.h"
#include "quotation/FrmEstiList.h"
#include "quotation/FrmEstimate.h"
#include "quotation/clsEstimate.h"
#include "shell/Startup.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace nb;
using bench::cliMs;
using bench::medianMs;

namespace {

constexpr int kQuotations = 100000;
constexpr int kLines = 1000000;
const QString kBigQuotation = QStringLiteral("202406500");

void fill() {
    const int lines = bench::fillQuotations(kQuotations, kLines, kBigQuotation);
    std::printf("quotations: %d, lines: %d\n", kQuotations, lines);
}

void report(const char* what, double screenMs, double cli, int rows) {
    if (cli > 0)
        std::printf("%-34s %7d rows  screen %8.2f ms  sqlite3 %8.3f ms  ratio %5.2f\n", what, rows, screenMs,
                    cli, screenMs / cli);
    else
        std::printf("%-34s %7d rows  screen %8.2f ms  sqlite3 under its timer's reach\n", what, rows,
                    screenMs);
}

// The statement with the month written in for its two values.
QString withValues(QString sql, const QString& month) {
    return sql.replace(QStringLiteral("?"), u'\'' + month + u'\'');
}

// A statement of a few hundredths of a millisecond through the sqlite3 program, whose timer reads
// whole milliseconds: the program's wall time running it 2,000 times, less its time running it
// never, per statement (the median of three such pairs).
double cliEachMs(const QString& file, const QString& sql) {
    constexpr int kTimes = 2000;
    const auto wallMs = [&](int times) {
        QProcess p;
        QElapsedTimer t;
        t.start();
        p.start(QStringLiteral("sqlite3"), {file});
        p.write(".output /dev/null\n");
        const QByteArray statement = (sql + QStringLiteral(";\n")).toUtf8();
        for (int i = 0; i < times; ++i)
            p.write(statement);
        p.closeWriteChannel();
        p.waitForFinished(600000);
        return double(t.nsecsElapsed()) / 1e6;
    };
    std::vector<double> each;
    for (int i = 0; i < 3; ++i)
        each.push_back((wallMs(kTimes) - wallMs(0)) / kTimes);
    std::sort(each.begin(), each.end());
    return each[1];
}

// The lines of the big quotation on the screen: to the whole screen repainted, as this figure was
// first taken, and to what changed painted with the window free, beside the statement and the
// floor.
void timeLines(FrmEstimate& screen, const QString& file) {
    const double loadMs = medianMs([&] {
        screen.LoadLines();
        screen.repaint();
    });
    const double cli =
        cliMs(file, "SELECT PName, PNorm, EUnit, EAmount, EUnitPrice, EstiKum, Code, PCode, Seq "
                    "FROM Estimate WHERE Code = '" +
                        kBigQuotation + "' ORDER BY Seq");
    report("LoadLines, 100-line quotation", loadMs, cli, screen.LineCount());
    const double painted = bench::medianFirstPaintFreeMs(&screen, [&] { screen.LoadLines(); });
    report("  to what changed painted", painted, cli, screen.LineCount());
    bench::saveShot(&screen, QStringLiteral("quotation_lines"));
    bench::reportFloor("the lines", bench::shownRows(*screen.grdEstimate), painted, cli);
}

void profileLines(FrmEstimate& screen) {
    screen.LoadLines();
    QApplication::processEvents();
    if (qEnvironmentVariableIsSet("NB_BENCH_PLAIN"))
        bench::plainWidgetMs(bench::shownRows(*screen.grdEstimate), 9, true);
    else
        bench::profileRuns(&screen, [&] { screen.LoadLines(); });
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();
    OpenDb(stores().dbEstimate, nb::app().DbEstimateFile);
    fill();
    const QString file = nb::app().DbEstimateFile;
    if (qEnvironmentVariable("NB_BENCH_PROFILE") == QStringLiteral("lines")) {
        FrmEstimate screen;
        screen.show();
        screen.pnlCode->setText(kBigQuotation);
        profileLines(screen);
        return 0;
    }

    // The screens are shown; each search is timed to its first page painted and the window free.
    FrmEstiList list;
    list.show();
    for (const auto& [field, text, label] :
         {std::tuple{0, QString(), "FrmEstiList, empty search"},
          std::tuple{0, QString("다라상회12"), "FrmEstiList, name search"},
          std::tuple{0, QString("상회"), "FrmEstiList, name search (1/7)"},
          std::tuple{1, QString("2020-05"), "FrmEstiList, date search"},
          std::tuple{2, QString("2019"), "FrmEstiList, number search"},
          std::tuple{3, QString("-06-1"), "FrmEstiList, delivery date search"}}) {
        const double ms = bench::medianFirstPaintFreeMs(&list, [&] { list.InitForm(field, text); });
        const EstiListQuery q = estiListQuery(field, text);
        QString sql = q.sql;
        if (!q.values.isEmpty()) sql.replace("?", "'" + q.values.first().toString() + "'");
        report(label, ms, cliMs(file, sql), list.rowCount());
        if (qEnvironmentVariableIsSet("NB_BENCH_PARTS"))
            std::printf("   parts: search %.2f ms, paint %.2f ms\n",
                        medianMs([&] { list.InitForm(field, text); }), medianMs([&] { list.repaint(); }));
    }
    // Memory: the list with no row, then with every quotation, read through and painted.
    list.InitForm(0, QString("없는 이름"));
    const double emptyMB = bench::residentMB();
    list.InitForm(0, QString());
    const int listed = list.rowCount(); // reads every row
    list.repaint();
    const double fullMB = bench::residentMB();
    std::printf("resident size: empty list %.1f MB, %d quotations listed %.1f MB (%.1f MB more)\n", emptyMB,
                listed, fullMB, fullMB - emptyMB);

    FrmEstimate screen;
    screen.show();
    screen.pnlCode->setText(kBigQuotation);
    timeLines(screen, file);

    // A new quotation's number in a month of 833 quotations and 8,330 lines, and the line key.
    clsEstimate e;
    e.sEDate = "2024-12-15";
    QString code;
    const double codeMs = medianMs([&] { e.NextCode(code); }, 51);
    const QString month = QStringLiteral("202412");
    report(qPrintable("NextCode -> " + code), codeMs,
           cliEachMs(file, withValues(lastRunningCodeStatement(), month)), 1);
    std::printf("   the month's codes read whole, as before the index of running codes: sqlite3 %.3f ms\n",
                cliMs(file,
                      "SELECT c FROM (SELECT EstiCode AS c FROM EstiBase WHERE EstiCode >= '202412' AND "
                      "EstiCode < '202413' UNION ALL SELECT Code FROM Estimate WHERE Code >= '202412' AND "
                      "Code < '202413') AS codes WHERE ltrim(substr(c, 7), '0123456789') = '' ORDER BY "
                      "length(c) DESC, c DESC LIMIT 8"));
    qint32 seq = 0;
    const double seqMs = medianMs([&] { e.NextSeq(seq); }, 51);
    report(qPrintable("NextSeq -> " + QString::number(seq)), seqMs,
           cliEachMs(file, "SELECT Max(Seq) AS MSeq FROM Estimate"), 1);
    double load[1] = {0};
    if (::getloadavg(load, 1) == 1) std::printf("load average: %.2f\n", load[0]);
    bench::printNextNumberPlans(month);
    return 0;
}
