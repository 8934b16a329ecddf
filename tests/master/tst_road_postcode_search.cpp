// The road-name postcode book's search: by road, building, town or lot, by postcode digits,
// short texts through the index pieces, each address once, a region and a number narrowing;
// the list read as it is scrolled; FrmPost handing the five-digit postcode and the road-name
// address to the caller, the setting choosing the book, and a trader's address filled by keys.
#include "MasterFixture.h"
#include "RoadBookFiles.h"
#include "common/text/Identity.h"
#include "core/Settings.h"
#include "master/FrmNewTrader.h"
#include "master/FrmPost.h"
#include "master/PostImport.h"
#include "master/PostSearch.h"
#include "master/RoadImport.h"
#include "master/RoadSearch.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTableView>
#include <functional>

using namespace nb;
using namespace nb::test;

namespace {

void loadSmallBook(const TestHome& home) {
    const QString path = home.file("book.txt");
    QVERIFY(writeRoadFile(path, smallRoadBook()));
    QCOMPARE(ImportRoadBook({path}), 10);
}

// `count` addresses of one road (450: more than the list's first page).
void loadLongRoad(const TestHome& home, int count = 450) {
    QVector<RoadLine> lines;
    for (int i = 1; i <= count; ++i)
        lines << roadLine("04524", "서울특별시", "중구", "세종대로", QString::number(i), "", "태평로1가", "",
                          "명동");
    QVERIFY(writeRoadFile(home.file("long.txt"), lines));
    QCOMPARE(ImportRoadBook({home.file("long.txt")}), count);
}

// Every address a search lists, in its order: "postcode road-name address".
QStringList found(const QString& text) {
    QStringList out;
    for (const RoadAddress& a : SearchRoadBook(text, 1000000))
        out << a.zip + u' ' + RoadAddressText(a);
    return out;
}

// The same search without any index: every address whose road, building or town holds the
// text, as a set.
QStringList plainFound(const QString& text) {
    QStringList out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "plain");
        db.setConnectOptions("QSQLITE_OPEN_READONLY");
        db.setDatabaseName(RoadBookFile());
        db.open();
        QSqlQuery q(db);
        q.prepare("SELECT a.rowid FROM RoadAddr a LEFT JOIN PlaceName h ON h.id = a.HDONG_T WHERE "
                  "a.ROADNAME LIKE ? OR a.BLDG_NAME LIKE ? OR a.PLACE LIKE ? OR h.NAME LIKE ?");
        for (int i = 0; i < 4; ++i)
            q.addBindValue("%" + text + "%");
        q.exec();
        while (q.next())
            out << q.value(0).toString();
    }
    QSqlDatabase::removeDatabase("plain");
    return out;
}

QVariant traderField(const QString& code, const QString& column) {
    return scalar(stores().dbBasic, "SELECT " + column + " FROM Trader WHERE Code = ?", {code});
}

// Runs fn with the book opened as the search opens it.
SqlPart withBook(const std::function<SqlPart(QSqlDatabase&)>& fn) {
    SqlPart part;
    {
        QSqlDatabase book = QSqlDatabase::addDatabase("QSQLITE", "planned");
        book.setConnectOptions("QSQLITE_OPEN_READONLY");
        book.setDatabaseName(RoadBookFile());
        book.open();
        part = fn(book);
    }
    QSqlDatabase::removeDatabase("planned");
    return part;
}

// The steps the planner takes for the statement, one a line.
QStringList planOf(QSqlDatabase& book, const SqlPart& part) {
    QSqlQuery q(book);
    q.prepare("EXPLAIN QUERY PLAN " + part.sql);
    for (const QVariant& v : part.values)
        q.addBindValue(v);
    QStringList steps;
    if (!q.exec()) return steps;
    while (q.next())
        steps << q.value(3).toString();
    return steps;
}

QString line(const char* zip, const char* address) {
    return QString::fromUtf8(zip) + u' ' + QString::fromUtf8(address);
}

} // namespace

class TestRoadPostcodeSearch : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // ---- the search ----
    void aRoadListsItsBuildingsByNumber() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("새문안로"), (QStringList{line("03170", "서울특별시 종로구 새문안로 3"),
                                                 line("03172", "서울특별시 종로구 새문안로 5-1"),
                                                 line("03172", "서울특별시 종로구 새문안로 7")}));
    }
    void eachDistrictsRoadOfOneNameComesInTheBooksOrder() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("누리대로"), (QStringList{line("03188", "서울특별시 종로구 누리대로 209"),
                                                 line("06236", "서울특별시 강남구 누리대로 12"),
                                                 line("48058", "부산광역시 해운대구 누리대로 12")}));
    }
    void aRegionWordNarrowsToItsProvinceOrDistrict() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("부산 누리대로"), QStringList{line("48058", "부산광역시 해운대구 누리대로 12")});
        QCOMPARE(found("강남구 누리대로 12"), QStringList{line("06236", "서울특별시 강남구 누리대로 12")});
    }
    void aNumberAfterARoadIsTheBuildingNumber() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("새문안로 5-1"), QStringList{line("03172", "서울특별시 종로구 새문안로 5-1")});
        QCOMPARE(found("새문안로 5"), QStringList{line("03172", "서울특별시 종로구 새문안로 5-1")});
        QVERIFY(found("새문안로 5-2").isEmpty());
        QCOMPARE(found("역삼로 22"), QStringList{line("06237", "서울특별시 강남구 역삼로 지하 22")});
    }
    void aBuildingNameFindsItsAddress() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("가나빌딩"), QStringList{line("03172", "서울특별시 종로구 새문안로 5-1")});
        QCOMPARE(found("마을회관"), QStringList{line("28116", "충청북도 청주시 청원구 오창읍 중신길 10")});
    }
    void aTownAndALotNumberFindTheLotAddress() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("역삼동 123-4"), QStringList{line("06236", "서울특별시 강남구 누리대로 12")});
        QCOMPARE(found("중신리"), (QStringList{line("28116", "충청북도 청주시 청원구 오창읍 중신길 10"),
                                               line("28116", "충청북도 청주시 청원구 오창읍 중신길 8")}));
        QCOMPARE(found("중신리 산 12"), QStringList{line("28116", "충청북도 청주시 청원구 오창읍 중신길 8")});
        QCOMPARE(found("오창읍 산12"), QStringList{line("28116", "충청북도 청주시 청원구 오창읍 중신길 8")});
    }
    void anAdministrativeTownFindsItsAddresses() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("사직동").size(), 3);
        QCOMPARE(found("우1동"), QStringList{line("48058", "부산광역시 해운대구 누리대로 12")});
    }
    void anAddressFoundByTwoNamesIsListedOnce() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        // "역삼" is in a road, a building, a legal and an administrative town.
        QCOMPARE(found("역삼"), (QStringList{line("06236", "서울특별시 강남구 역삼로 20"),
                                             line("06237", "서울특별시 강남구 역삼로 지하 22"),
                                             line("06236", "서울특별시 강남구 누리대로 12")}));
        QCOMPARE(found("누리"), found("누리대로"));
    }
    void shortAndLongTextsFindWhatThePlainSearchFinds() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        for (const char* text : {"로", "동", "역", "삼", "누리", "신문", "중신", "대로", "빌딩", "새문안",
                                 "중신마을", "없는길"}) {
            RoadBookConnection book;
            RoadRows rows(book.database());
            QVERIFY(rows.search(QString::fromUtf8(text)));
            int count = 0;
            for (RoadAddress a; rows.nextAddress(a);)
                ++count;
            QCOMPARE(count, int(plainFound(QString::fromUtf8(text)).size()));
        }
        QCOMPARE(found("로").size(), 8); // all but the two of 중신길
    }
    void aNumericTextFindsPostcodesContainingIt() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("0317"), (QStringList{line("03170", "서울특별시 종로구 새문안로 3"),
                                             line("03172", "서울특별시 종로구 새문안로 5-1"),
                                             line("03172", "서울특별시 종로구 새문안로 7")}));
        QCOMPARE(found("237"), QStringList{line("06237", "서울특별시 강남구 역삼로 지하 22")});
        QVERIFY(found("99999").isEmpty());
    }
    void aBlankTextListsTheWholeBook() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QCOMPARE(found("").size(), 10);
        QCOMPARE(found("").first(), line("03170", "서울특별시 종로구 새문안로 3"));
    }
    void everyPartOfTheSearchWalksAnIndexWithoutSorting() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        for (const char* text : {"새문안로 5", "역", "누리", "역삼동 123-4", "0317", ""}) {
            QStringList steps;
            const SqlPart query = withBook([&](QSqlDatabase& book) {
                const SqlPart part = RoadSearchQuery(QString::fromUtf8(text));
                steps = planOf(book, part);
                return part;
            });
            QVERIFY2(!steps.isEmpty(), text);
            QVERIFY2(!steps.join('\n').contains("TEMP B-TREE"), qPrintable(steps.join('\n')));
            if (*text) QVERIFY2(!steps.contains("SCAN a"), qPrintable(steps.join('\n')));
            QVERIFY(query.sql.contains("CROSS JOIN") || !*text);
        }
    }
    void aNumberWithANameManyNamesHoldWalksTheNumberFirst() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QVector<RoadLine> lines;
        int withFifty = 0;
        for (int i = 0; i < kManyNames + 10; ++i) {
            const QString number = QString::number(i % 50 + 1);
            lines << roadLine("04524", "서울특별시", "중구", QString("가%1로").arg(i), number,
                              i % 3 ? QString() : QString("다%1빌딩").arg(i), QString("나%1동").arg(i),
                              number, "명동");
            withFifty += i % 50 + 1 == 50 ? 1 : 0;
        }
        QVERIFY(writeRoadFile(home.file("many.txt"), lines));
        QCOMPARE(ImportRoadBook({home.file("many.txt")}), kManyNames + 10);
        // The statement holds both walks and takes one (tst_road_postcode_kept tells which by the
        // order); neither sorts.
        for (const char* text : {"가 50", "나 50"}) {
            withBook([&](QSqlDatabase& book) {
                const SqlPart part = RoadSearchQuery(QString::fromUtf8(text));
                const QStringList steps = planOf(book, part);
                [&] {
                    QVERIFY2(!steps.isEmpty(), text);
                    QVERIFY2(!steps.join('\n').contains("TEMP B-TREE"), qPrintable(steps.join('\n')));
                }();
                return part;
            });
        }
        QCOMPARE(found("가 50").size(), withFifty);
        // Found by the town number first: the addresses without a building name stay in.
        QCOMPARE(found("나 50").size(), withFifty);
        QCOMPARE(found("가49로 50"), QStringList{line("04524", "서울특별시 중구 가49로 50")});
        QCOMPARE(found("나49동 50"), QStringList{line("04524", "서울특별시 중구 가49로 50")});
    }
    void theListReadsItsRowsAsTheyAreScrolledTo() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadLongRoad(home);
        FrmPost form;
        QVERIFY(form.searchesRoadBook());
        int result = -1;
        form.InitForm("세종대로", result);
        QCOMPARE(result, 2);
        QCOMPARE(form.model()->rowCount(), ListModel::kFirstPage);
        QVERIFY(form.model()->isFilling());
        showActive(&form);
        for (int i = 0; i < 20; ++i)
            QApplication::processEvents();
        QCOMPARE(form.model()->rowCount(), ListModel::kFirstPage); // nothing read that is not seen
        QScrollBar* bar = form.grdList()->verticalScrollBar();
        for (int i = 0; i < 50 && form.model()->isFilling(); ++i) {
            bar->setValue(bar->maximum());
            QApplication::processEvents();
        }
        QCOMPARE(form.model()->rowCount(), 450);
        QVERIFY(!form.model()->isFilling());
        QCOMPARE(form.model()->text(449, 1), QStringLiteral("서울특별시 중구 세종대로 450"));
    }
    void theLastRowOfAListLongerThanAPageIsChosenByKeys() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadLongRoad(home);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("세종대로", result);
        QCOMPARE(result, 2);
        showActive(&form);
        form.txtinput()->setFocus();
        pressKey(form.txtinput(), Qt::Key_Down);
        QCOMPARE(focused(), form.grdList());
        pressKey(form.grdList(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(form.activeRow(), 449);
        pressKey(form.grdList(), Qt::Key_Up);
        pressKey(form.grdList(), Qt::Key_Down);
        pressKey(form.grdList(), Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(zip.text(), QStringLiteral("04524"));
        QCOMPARE(addr.text(), QStringLiteral("서울특별시 중구 세종대로 450"));
    }
    // The whole book is millions of addresses: Ctrl+End goes a page of rows further each time
    // instead of reading them all.
    void ctrlEndReadsAPageMoreEachTime() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadLongRoad(home, 6000);
        FrmPost form;
        int result = -1;
        form.InitForm("세종대로", result);
        showActive(&form);
        form.grdList()->setFocus();
        pressKey(form.grdList(), Qt::Key_End, Qt::ControlModifier);
        QVERIFY(form.model()->isFilling());
        QVERIFY(form.model()->rowCount() < 6000);
        QVERIFY(form.activeRow() >= ListModel::kFirstPage + GridModel::kPage - 1);
        for (int i = 0; i < 10 && form.model()->isFilling(); ++i)
            pressKey(form.grdList(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(form.model()->rowCount(), 6000);
        QCOMPARE(form.activeRow(), 5999);
        QCOMPARE(form.model()->text(5999, 1), QStringLiteral("서울특별시 중구 세종대로 6000"));
    }
    void theLastRowOfAListLongerThanAPageIsChosenByADoubleClick() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadLongRoad(home);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("세종대로", result);
        showActive(&form);
        QScrollBar* bar = form.grdList()->verticalScrollBar();
        for (int i = 0; i < 50 && (form.model()->isFilling() || bar->value() < bar->maximum()); ++i) {
            bar->setValue(bar->maximum());
            QApplication::processEvents();
        }
        QCOMPARE(form.model()->rowCount(), 450);
        const QRect last = form.grdList()->visualRect(form.grdList()->model()->index(449, 0));
        QVERIFY(form.grdList()->viewport()->rect().contains(last.center()));
        QTest::mouseDClick(form.grdList()->viewport(), Qt::LeftButton, {}, last.center());
        QVERIFY(!form.isVisible());
        QCOMPARE(zip.text(), QStringLiteral("04524"));
        QCOMPARE(addr.text(), QStringLiteral("서울특별시 중구 세종대로 450"));
    }

    // ---- the screen ----
    void anExactSingleHitFillsTheBoxesWithoutAWindow() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("새문안로 5-1", result);
        QCOMPARE(result, 1);
        QCOMPARE(zip.text(), QStringLiteral("03172"));
        QCOMPARE(addr.text(), QStringLiteral("서울특별시 종로구 새문안로 5-1"));
        form.InitForm("없는길", result);
        QCOMPARE(result, 0);
    }
    void theListChosenByKeysHandsOverThePostcodeAndTheRoadAddress() {
        TestHome home;
        QVERIFY(openStores());
        script();
        loadSmallBook(home);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("", result);
        QCOMPARE(result, 2);
        showActive(&form);
        form.txtinput()->setFocus();
        typeText(form.txtinput(), "누리대로");
        pressKey(form.txtinput(), Qt::Key_Return);
        QCOMPARE(form.model()->rowCount(), 3);
        QCOMPARE(form.model()->headerData(1, Qt::Horizontal), QVariant(QStringLiteral("도로명 주소")));
        QCOMPARE(form.hintPanel()->text(),
                 QStringLiteral("도로명, 건물명, 읍/면/동이나 지번으로 검색하세요. [전체검색 : 빈칸]"));
        saveScreenshot(&form, "frm_post_road");
        QVERIFY(form.grdList()->isVisible());
        pressKey(form.txtinput(), Qt::Key_Down);
        QCOMPARE(focused(), form.grdList());
        pressKey(form.grdList(), Qt::Key_Down);
        pressKey(form.grdList(), Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(zip.text(), QStringLiteral("06236"));
        QCOMPARE(addr.text(), QStringLiteral("서울특별시 강남구 누리대로 12"));
    }
    void theSettingChoosesTheBookAndTheBoxChangesIt() {
        TestHome home;
        QVERIFY(openStores());
        script();
        ImportPostcodeFile([&] {
            const QString path = home.file("old.csv");
            writeBytes(
                path,
                QStringLiteral("ZIPCODE,SIDO,GUGUN,DONG,BUNJI\n135-080,서울,강남구,역삼동,\n").toUtf8());
            return path;
        }());
        loadSmallBook(home);
        SaveEnv(kRoadBookSetting, "지번");
        QLineEdit zip, addr;
        {
            FrmPost form;
            QVERIFY(!form.searchesRoadBook());
            QVERIFY(!form.chkRoadBook()->isChecked());
            form.SetObject(&zip, &addr);
            int result = -1;
            form.InitForm("역삼", result);
            QCOMPARE(result, 1);
            QCOMPARE(zip.text(), QStringLiteral("135-080"));
            QCOMPARE(addr.text(), QStringLiteral("서울 강남구 역삼동"));
            form.chkRoadBook()->setChecked(true);
            QCOMPARE(GetEnv(kRoadBookSetting), QStringLiteral("도로명"));
            QCOMPARE(form.model()->columnCount(), RoadRows::kRoadColumns);
            QCOMPARE(form.model()->headerData(0, Qt::Horizontal), QVariant(QStringLiteral("우편번호")));
        }
        FrmPost again;
        QVERIFY(again.searchesRoadBook());
        QVERIFY(again.chkRoadBook()->isChecked());
    }
    void theRoadBookChosenBeforeAnyWasLoadedSaysWhereOneComesFrom() {
        TestHome home;
        QVERIFY(openStores());
        script();
        SaveEnv(kRoadBookSetting, "도로명");
        QLineEdit zip, addr;
        FrmPost form;
        QVERIFY(form.searchesRoadBook());
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("새문안로", result);
        QCOMPARE(result, 0);
        QCOMPARE(form.hintPanel()->text(),
                 QStringLiteral("도로명 우편번호가 없습니다. 기초등록 → 우편번호 가져오기로 가져오십시오."));
        QVERIFY(zip.text().isEmpty());
    }
    void aFiveDigitPostcodeKeepsItsShapeWhenLeft() {
        QCOMPARE(ShapePostCode("03172"), QStringLiteral("03172"));
        QCOMPARE(ShapePostCode("135080"), QStringLiteral("135-080"));
    }
    void aRoadNameAddressFillsATradersAddressByKeys() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        loadSmallBook(home);
        FrmNewTrader form;
        form.InitForm(0, "", "2026-11", "");
        showActive(&form);
        typeText(focused(), "가나상사");
        pressKey(focused(), Qt::Key_Return);
        form.txtinput(9)->setFocus();
        typeText(form.txtinput(9), "새문안로 5-1");
        pressKey(form.txtinput(9), Qt::Key_Return);
        QCOMPARE(form.txtinput(9)->text(), QStringLiteral("03172"));
        QCOMPARE(focused(), form.txtinput(10));
        QTRY_COMPARE(form.txtinput(10)->cursorPosition(), int(form.txtinput(10)->text().size()));
        typeText(form.txtinput(10), "3층");
        QCOMPARE(form.txtinput(10)->text(), QStringLiteral("서울특별시 종로구 새문안로 5-1 3층"));
        pressKey(form.txtinput(10), Qt::Key_Return);
        saveScreenshot(&form, "frm_new_trader_road_address");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 저장되었습니다."));
        QCOMPARE(traderField("000001", "Post").toString(), QStringLiteral("03172"));
        QCOMPARE(traderField("000001", "Addr1").toString(),
                 QStringLiteral("서울특별시 종로구 새문안로 5-1 3층"));
    }
};

NB_TEST_MAIN(TestRoadPostcodeSearch)
#include "tst_road_postcode_search.moc"
