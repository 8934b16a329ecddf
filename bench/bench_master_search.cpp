// Times of the two searches with a leading wildcard: the postcode book (the whole country)
// by town or digits, and 50,000 traders by name, telephone or last address word.
#include "TestSupport.h"
#include "core/AppState.h"
#include "core/shell/Startup.h"
#include "master/PostImport.h"
#include "master/PostSearch.h"
#include "master/TraderRecords.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <functional>

using namespace nb;

namespace {

// The median of several runs, in milliseconds.
double medianMs(const std::function<int()>& run, int& rows, int repeats = 15) {
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        QElapsedTimer t;
        t.start();
        rows = run();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
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

int traderSearch(const QString& name) {
    const SqlPart query = TraderListQuery(stores().dbBasic, name, 0);
    Recordset rs;
    OpenSnapshot(stores().dbBasic, rs, query.sql, query.values);
    return rs.RecordCount();
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    test::script();
    ReadSettings();
    QDir().mkpath(nb::app().DbPath);
    CreateMissingStoreFiles();
    OpenDatabases();

    const int imported = ImportPostcodeFile(test::sharedDataDir() + "/zipcode_6digit.csv");
    std::printf("postcode book: %d rows\n", imported);
    Database post;
    post.open(nb::app().DbPostFile);
    for (const QString& text : {QString("역삼1동"), QString("신림"), QString("1358"), QString("동")}) {
        int rows = 0;
        SearchPostBook(post, text); // first use checks the index
        const double ms = medianMs([&] { return int(SearchPostBook(post, text).size()); }, rows);
        std::printf("postcode search %-8s %6d rows  %7.2f ms%s\n", qPrintable(text), rows, ms,
                    UsesTrigramIndex(text) ? "" : "  (short text: plain query)");
    }
    {
        int rows = 0;
        const double ms = medianMs([] { return int(SearchPostBook(QString("역삼1동")).size()); }, rows);
        std::printf("postcode search with the store opened per search: %d rows  %.2f ms\n", rows, ms);
    }

    fillTraders(50000);
    traderSearch("상사가"); // first use builds the index
    std::printf("traders: 50000 rows\n");
    for (const QString& text :
         {QString("가나4999"), QString("123상사"), QString("02-345"), QString("역삼"), QString("물산")}) {
        int rows = 0;
        const double ms = medianMs([&] { return traderSearch(text); }, rows);
        std::printf("trader search %-10s %6d rows  %7.2f ms%s\n", qPrintable(text), rows, ms,
                    UsesTrigramIndex(text) ? "" : "  (short text: plain query)");
    }
    return 0;
}
