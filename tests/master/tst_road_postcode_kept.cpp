// The road-name postcode search's statements kept prepared while the window lives: a search run
// again holds only its own rows, a search after a new import reads the new book, a kept statement
// sees what was written to the book after it was prepared, the walk of a search with a number
// chosen by the statement itself, and the list's texts made straight from the engine's rows.
#include "MasterFixture.h"
#include "RoadBookFiles.h"
#include "master/FrmPost.h"
#include "master/RoadImport.h"
#include "master/RoadSearch.h"

#include <QScrollBar>
#include <QSqlQuery>

using namespace nb;
using namespace nb::test;

namespace {

void loadBook(const TestHome& home, const QString& name, const QVector<RoadLine>& lines) {
    const QString path = home.file(name);
    QVERIFY(writeRoadFile(path, lines));
    QCOMPARE(qint64(ImportRoadBook({path})), qint64(lines.size()));
}

// `count` addresses of one road, numbered from 1.
QVector<RoadLine> longRoad(const QString& road, int count) {
    QVector<RoadLine> lines;
    for (int i = 1; i <= count; ++i)
        lines << roadLine("04524", "서울특별시", "중구", road, QString::number(i), "", "태평로1가", "",
                          "명동");
    return lines;
}

// Every address a search lists, in its order: "postcode road-name address".
QStringList found(const QString& text) {
    QStringList out;
    for (const RoadAddress& a : SearchRoadBook(text, 1000000))
        out << a.zip + u' ' + RoadAddressText(a);
    return out;
}

// The same from the rows the window's list holds (read through).
QStringList listed(FrmPost& form) {
    form.model()->finishFilling();
    QStringList out;
    for (int r = 0; r < form.model()->rowCount(); ++r)
        out << form.model()->text(r, 0) + u' ' + form.model()->text(r, 1);
    return out;
}

// Every address the rows give from here on.
QStringList readThrough(RoadRows& rows) {
    QStringList out;
    for (RoadAddress a; rows.nextAddress(a);)
        out << a.zip + u' ' + RoadAddressText(a);
    return out;
}

} // namespace

class TestRoadPostcodeKept : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aSearchRunAgainOnItsKeptStatementHoldsOnlyItsOwnRows() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadBook(home, "book.txt", smallRoadBook());
        RoadBookConnection book;
        KeptStatements kept;
        {
            RoadRows first(book.database(), &kept);
            QVERIFY(first.search("새문안로"));
            RoadAddress a;
            QVERIFY(first.nextAddress(a)); // left part read
            RoadRows second(book.database(), &kept);
            QVERIFY(second.search("누리대로")); // the same statement, run again
            QCOMPARE(readThrough(second), found("누리대로"));
        }
        RoadRows third(book.database(), &kept);
        QVERIFY(third.search("새문안로"));
        QCOMPARE(readThrough(third), found("새문안로"));
        QCOMPARE(found("새문안로").size(), 3);
        QCOMPARE(kept.size(), 1); // prepared once for the three searches
    }
    void aWindowsSearchRunAgainListsOnlyItsOwnRows() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QVector<RoadLine> lines = longRoad("세종대로", 450);
        lines << longRoad("종대로", 30);
        loadBook(home, "long.txt", lines);
        FrmPost form;
        int result = -1;
        form.InitForm("세종대로", result);
        QCOMPARE(form.model()->rowCount(), ListModel::kFirstPage);
        QVERIFY(form.model()->isFilling()); // the statement stands in the middle of its rows
        form.InitForm("종대로", result);    // the same statement with another text
        QCOMPARE(result, 2);
        const QStringList both = listed(form);
        QCOMPARE(both.size(), 480);
        QCOMPARE(both, found("종대로"));
        form.InitForm("세종대로", result);
        QCOMPARE(listed(form), found("세종대로"));
        QCOMPARE(form.model()->rowCount(), 450);
    }
    void aSearchAfterTheBookIsReplacedReadsTheNewBook() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadBook(home, "book.txt", smallRoadBook());
        FrmPost form;
        int result = -1;
        form.InitForm("새문안로", result);
        QCOMPARE(form.model()->rowCount(), 3);
        loadBook(home, "long.txt", longRoad("세종대로", 20)); // imported over the open book
        form.InitForm("세종대로", result);
        QCOMPARE(result, 2);
        QCOMPARE(form.model()->rowCount(), 20);
        QCOMPARE(form.model()->text(19, 1), QStringLiteral("서울특별시 중구 세종대로 20"));
        form.InitForm("새문안로", result);
        QCOMPARE(result, 0);
        QCOMPARE(form.model()->rowCount(), 0);
    }
    void aKeptStatementFindsARowSavedAfterItWasPrepared() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadBook(home, "book.txt", smallRoadBook());
        RoadBookConnection book;
        KeptStatements kept;
        {
            RoadRows rows(book.database(), &kept);
            QVERIFY(rows.search("0317"));
            QCOMPARE(readThrough(rows).size(), 3);
        }
        {
            QSqlDatabase writer = QSqlDatabase::addDatabase("QSQLITE", "writer");
            writer.setDatabaseName(RoadBookFile());
            QVERIFY(writer.open());
            QSqlQuery q(writer);
            QVERIFY(q.exec("INSERT INTO RoadZip VALUES ('03171')"));
            QVERIFY(
                q.exec("INSERT INTO RoadAddr (ZIPCODE, SIDO, SIGUNGU, EUPMYEON, ROADNAME, UNDERGROUND, "
                       "BLDG_MAIN, BLDG_SUB, BLDG_NAME, DONG, RI, PLACE, SAN, JIBUN_MAIN, JIBUN_SUB) VALUES "
                       "('03171', '서울특별시', '종로구', '', '새문안로', 0, 4, 0, '', '신문로1가', '', "
                       "'신문로1가', 0, 9, 0)"));
            writer.close();
        }
        QSqlDatabase::removeDatabase("writer");
        RoadRows rows(book.database(), &kept);
        QVERIFY(rows.search("0317"));
        QCOMPARE(readThrough(rows),
                 (QStringList{"03170 서울특별시 종로구 새문안로 3", "03171 서울특별시 종로구 새문안로 4",
                              "03172 서울특별시 종로구 새문안로 5-1", "03172 서울특별시 종로구 새문안로 7"}));
        QCOMPARE(kept.size(), 1);
    }
    void theStatementWalksTheNumberFirstWhenManyNamesHoldTheText() {
        TestHome home;
        QVERIFY(openStores());
        script();
        // Two roads held by few names ("가하"), the first of the book numbered 50-2, the last 50-1,
        // among more than kManyNames roads that hold "가".
        QVector<RoadLine> lines = {
            roadLine("04500", "서울특별시", "중구", "가하나로", "50-2", "", "명동", "", "명동")};
        for (int i = 0; i < kManyNames; ++i)
            lines << roadLine("04524", "서울특별시", "중구", QString("가%1로").arg(i),
                              QString::number(i % 60 + 1), "", "명동", "", "명동");
        lines << roadLine("04599", "서울특별시", "중구", "가하다로", "50-1", "", "명동", "", "명동");
        loadBook(home, "many.txt", lines);
        // Few names: by name, each road's addresses together.
        QCOMPARE(found("가하 50"),
                 (QStringList{"04500 서울특별시 중구 가하나로 50-2", "04599 서울특별시 중구 가하다로 50-1"}));
        // Many names: by number, the sub-numbers in order whatever the road.
        const QStringList many = found("가 50");
        int withFifty = 0;
        for (int i = 0; i < kManyNames; ++i)
            withFifty += i % 60 + 1 == 50 ? 1 : 0;
        QCOMPARE(many.size(), withFifty + 2);
        QCOMPARE(many.mid(many.size() - 2),
                 (QStringList{"04599 서울특별시 중구 가하다로 50-1", "04500 서울특별시 중구 가하나로 50-2"}));
    }
    void theListsTextsAreTheAddressesTexts() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadBook(home, "book.txt", smallRoadBook());
        FrmPost form;
        QVERIFY(form.searchesRoadBook());
        int result = -1;
        form.InitForm("", result);
        const QVector<RoadAddress> book = SearchRoadBook("", 100);
        QCOMPARE(form.model()->rowCount(), 10);
        QCOMPARE(book.size(), 10);
        for (int r = 0; r < book.size(); ++r) {
            const RoadAddress& a = book[r];
            QCOMPARE(form.model()->text(r, 0), a.zip);
            QCOMPARE(form.model()->text(r, 1), RoadAddressText(a));
            QCOMPARE(form.model()->text(r, 2), LotAddressText(a));
            QCOMPARE(form.model()->text(r, 3), a.buildingName);
        }
        // The basement, the mountain lot and the township with its village among them.
        QVERIFY(listed(form).contains("06237 서울특별시 강남구 역삼로 지하 22"));
        QCOMPARE(form.model()->text(8, 2), QStringLiteral("충청북도 청주시 청원구 오창읍 중신리 산 12"));
    }
};

NB_TEST_MAIN(TestRoadPostcodeKept)
#include "tst_road_postcode_kept.moc"
