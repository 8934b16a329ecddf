// The postcode book: the import (UTF-8 and CP949, hyphens, extra columns, progress, count),
// the search by digits or by town with its single-hit delivery, the list screen by keys, and
// the trigram index giving exactly the rows of the plain query.
#include "MasterFixture.h"
#include "common/text/Cp949.h"
#include "master/FrmPost.h"
#include "master/PostImport.h"
#include "master/PostSearch.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTableView>

using namespace nb;
using namespace nb::test;

namespace {

const QString kSmallBook = QStringLiteral("SEQ,ZIPCODE,SIDO,GUGUN,DONG,BUNJI\n"
                                          "1,135-080,서울,강남구,역삼동,1~100\n"
                                          "2,135081,서울,강남구,역삼1동,\n"
                                          "3,100-011,서울,중구,명동1가,\n"
                                          "4,612-020,부산,해운대구,우동,\"1,2번지\"\n"
                                          "5,똠123,서울,중구,햏동,\n");

QString writeBook(const TestHome& home, const QString& name, const QByteArray& bytes) {
    const QString path = home.file(name);
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
    return path;
}

QStringList zips(const QVector<QStringList>& rows) {
    QStringList out;
    for (const QStringList& r : rows)
        out << r.value(0);
    return out;
}

// The rows of the search without the index: the plain LIKE over the table.
QStringList plainZips(Database& db, const QString& text) {
    const QString column = FirstCharCode(text) >= 0 ? "ZIPCODE" : "DONG";
    QSqlQuery q(db.connection());
    q.prepare("SELECT ZIPCODE FROM Post WHERE " + column + " LIKE ? ESCAPE '\\' ORDER BY ZIPCODE, rowid");
    q.addBindValue("%" + likeLiteral(text) + "%");
    q.exec();
    QStringList out;
    while (q.next())
        out << q.value(0).toString();
    return out;
}

// Towns 역삼1동 .. 역삼<count>동 under the postcodes 135001 ...
void addManyTowns(int count) {
    QList<QStringList> rows;
    for (int i = 1; i <= count; ++i)
        rows << QStringList{QString::number(135000 + i), "서울", "강남구", QStringLiteral("역삼%1동").arg(i),
                            ""};
    addPostRows(rows);
}

} // namespace

class TestPostcode : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void importReadsUtf8WithHyphensAndExtraColumnsAndCounts() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString path = writeBook(home, "book.csv", "\xEF\xBB\xBF" + kSmallBook.toUtf8());
        QCOMPARE(ImportPostcodeFile(path), 4);
        QCOMPARE(msgs.last().title, kPostImportTitle);
        QCOMPARE(msgs.last().text, QStringLiteral("우편번호 4건을 가져왔습니다.\r\n우편번호가 여섯 자리가 "
                                                  "아닌 1줄은 건너뛰었습니다 (6번째 줄)."));
        QVERIFY(!msgs.progressValues().isEmpty());
        const auto rows = SearchPostBook("");
        QCOMPARE(zips(rows), (QStringList{"100011", "135080", "135081", "612020"}));
        QCOMPARE(rows[3].value(4), QStringLiteral("1,2번지"));
    }
    void importReadsCp949ByItself() {
        TestHome home;
        QVERIFY(openStores());
        script();
        const QString text = QStringLiteral("ZIPCODE,SIDO,GUGUN,DONG,BUNJI\n135-080,서울,강남구,똠방동,\n");
        const QString path = writeBook(home, "book949.csv", ToCp949(text));
        QCOMPARE(ImportPostcodeFile(path), 1);
        const auto rows = SearchPostBook("똠방");
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows[0].value(3), QStringLiteral("똠방동"));
    }
    void importReplacesTheRowsAndAMissingColumnLeavesThemAlone() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        ImportPostcodeFile(writeBook(home, "a.csv", kSmallBook.toUtf8()));
        QCOMPARE(
            ImportPostcodeFile(writeBook(home, "b.csv", "ZIPCODE,SIDO,GUGUN,DONG,BUNJI\n999999,X,Y,Z,\n")),
            1);
        QCOMPARE(SearchPostBook("").size(), 1);
        QCOMPARE(ImportPostcodeFile(writeBook(home, "c.csv", "ZIP,SIDO\n1,2\n")), -1);
        QCOMPARE(
            msgs.last().text.section("\r\n", 0, 0),
            QStringLiteral("우편번호 파일의 첫 줄에 ZIPCODE, SIDO, GUGUN, DONG, BUNJI 열이 있어야 합니다."));
        QCOMPARE(SearchPostBook("").size(), 1);
        QCOMPARE(ImportPostcodeFile(home.file("missing.csv")), -1);
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("우편번호 파일을 열 수 없습니다.")));
    }
    void importMakesAMissingPostcodeStore() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QFile::remove(app().DbPostFile);
        QCOMPARE(ImportPostcodeFile(writeBook(home, "a.csv", kSmallBook.toUtf8())), 4);
        QCOMPARE(SearchPostBook("역삼").size(), 2);
    }
    void csvFieldsMayBeQuoted() {
        QCOMPARE(SplitCsvLine("a,\"b,c\",\"d\"\"e\","), (QStringList{"a", "b,c", "d\"e", ""}));
    }

    void aNumericTextFindsPostcodesContainingItAnywhere() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""},
                     {"100135", "서울", "중구", "명동", ""},
                     {"612020", "부산", "해운대구", "우동", ""}});
        QCOMPARE(zips(SearchPostBook("135")), (QStringList{"100135", "135080"}));
    }
    // The window keeps its search prepared: a new text is bound and stepped, never prepared anew.
    void aKeptPostcodeSearchRunAgainWithAnotherTextIsNeverPreparedAgain() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""},
                     {"100011", "서울", "중구", "명동1가", ""},
                     {"612020", "부산", "해운대구", "우동", ""}});
        Database postDb;
        QVERIFY(OpenDb(postDb, app().DbPostFile, 0));
        const SqlPart first = PostSearchQuery(postDb, "역삼", postLimits());
        const SqlPart second = PostSearchQuery(postDb, "명동", postLimits());
        QCOMPARE(second.sql, first.sql);
        QVERIFY(runsKeptWithoutPreparingAgain(postDb.connection(), {first, second, first, second}));
    }
    void anExactSingleHitFillsTheFieldsWithoutAWindow() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows(
            {{"135080", "서울", "강남구", "역삼동", "1~100"}, {"100011", "서울", "중구", "명동1가", ""}});
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("역삼", result);
        QCOMPARE(result, 1);
        QCOMPARE(zip.text(), QStringLiteral("135-080"));
        QCOMPARE(addr.text(), QStringLiteral("서울 강남구 역삼동"));
        QVERIFY(!form.isVisible());
    }
    void aBlankSearchTextOpensTheFullListUnfiltered() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""}, {"100011", "서울", "중구", "명동1가", ""}});
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("", result);
        QCOMPARE(result, 2);
        QCOMPARE(form.model()->rowCount(), 2);
        QCOMPARE(zip.text(), QString());
    }
    void hangulTextSearchesOnlyTheTown() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""}, {"135090", "서울", "강남구", "강남동", ""}});
        QCOMPARE(zips(SearchPostBook("강남구")), QStringList());
        QCOMPARE(zips(SearchPostBook("강남")), (QStringList{"135090"}));
    }
    void nothingFoundAnswers0() {
        TestHome home;
        QVERIFY(openStores());
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("없는동", result);
        QCOMPARE(result, 0);
    }
    void aMissingPostcodeStoreFindsNothingWithoutAMessage() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QFile::remove(app().DbPostFile);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("역삼", result);
        QCOMPARE(result, 0);
        QCOMPARE(msgs.records().size(), size_t(0));
    }
    void theLimitsBranchesStillNarrowTheSearch() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"100011", "서울", "중구", "명동", ""},
                     {"135080", "서울", "강남구", "역삼동", ""},
                     {"612020", "부산", "해운대구", "우동", ""}});
        postLimits() = {"135000", ""};
        QCOMPARE(zips(SearchPostBook("")), (QStringList{"135080", "612020"}));
        postLimits() = {"", "135999"};
        QCOMPARE(zips(SearchPostBook("")), (QStringList{"100011", "135080"}));
        postLimits() = {"135000", "135999"};
        QCOMPARE(zips(SearchPostBook("0")), (QStringList{"135080"}));
        postLimits() = {};
    }
    void chosenPostcodesTakeTheirHyphen() {
        QCOMPARE(SingleHitZip("135080"), QStringLiteral("135-080"));
        QCOMPARE(ChosenZip("135080"), QStringLiteral("135-080"));
        QCOMPARE(ChosenZip("012345"), QStringLiteral("012-345"));
        QCOMPARE(ChosenZip("12345"), QStringLiteral("12345"));
        QCOMPARE(AddressPrefix({"135080", "서울", "강남구", "역삼동", "1~100"}),
                 QStringLiteral("서울 강남구 역삼동"));
    }
    void theListByKeysSearchesAgainAndEnterDelivers() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QCOMPARE(ImportPostcodeFile(sharedDataDir() + "/zipcode_6digit.csv") > 40000, true);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("명동", result);
        QCOMPARE(result, 2);
        showActive(&form);
        form.txtinput()->setFocus();
        QCOMPARE(form.hintPanel()->text(), QStringLiteral("읍/면/동으로 검색하세요. [전체검색 : 빈칸]"));
        typeText(form.txtinput(), "역삼");
        pressKey(form.txtinput(), Qt::Key_Return);
        QVERIFY(form.model()->rowCount() > 1);
        for (int r = 0; r < form.model()->rowCount(); ++r)
            QVERIFY(form.model()->text(r, 3).contains("역삼"));
        form.txtinput()->clear();
        pressKey(form.txtinput(), Qt::Key_Return); // an empty text leaves the list
        QVERIFY(form.model()->rowCount() > 1);
        form.grdList()->setFocus();
        saveScreenshot(&form, "frm_post");
        pressKey(form.grdList(), Qt::Key_Down);
        const QString chosen = form.activeText(1);
        pressKey(form.grdList(), Qt::Key_Return);
        QCOMPARE(zip.text(), ChosenZip(chosen));
        QVERIFY(addr.text().startsWith(QStringLiteral("서울 강남구 역삼")));
        QVERIFY(!form.isVisible());
    }
    void theLastRowOfAListLongerThanAPageIsChosenByKeys() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyTowns(300);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("역삼", result);
        QCOMPARE(result, 2);
        QCOMPARE(form.model()->rowCount(), ListModel::kFirstPage); // the rest read when seen
        QVERIFY(form.model()->isFilling());
        showActive(&form);
        form.txtinput()->setFocus();
        pressKey(form.txtinput(), Qt::Key_Down);
        pressKey(form.grdList(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(form.model()->rowCount(), 300);
        QCOMPARE(form.activeRow(), 299);
        pressKey(form.grdList(), Qt::Key_Up);
        pressKey(form.grdList(), Qt::Key_Down);
        pressKey(form.grdList(), Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(zip.text(), QStringLiteral("135-300"));
        QCOMPARE(addr.text(), QStringLiteral("서울 강남구 역삼300동"));
    }
    void theLastRowOfAListLongerThanAPageIsChosenByADoubleClick() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyTowns(300);
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("역삼", result);
        showActive(&form);
        QScrollBar* bar = form.grdList()->verticalScrollBar();
        for (int i = 0; i < 50 && (form.model()->isFilling() || bar->value() < bar->maximum()); ++i) {
            bar->setValue(bar->maximum());
            QApplication::processEvents();
        }
        QCOMPARE(form.model()->rowCount(), 300);
        const QRect last = form.grdList()->visualRect(form.grdList()->model()->index(299, 0));
        QVERIFY(form.grdList()->viewport()->rect().contains(last.center()));
        QTest::mouseDClick(form.grdList()->viewport(), Qt::LeftButton, {}, last.center());
        QVERIFY(!form.isVisible());
        QCOMPARE(zip.text(), QStringLiteral("135-300"));
        QCOMPARE(addr.text(), QStringLiteral("서울 강남구 역삼300동"));
    }
    void escClosesWithoutWriting() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows(
            {{"135080", "서울", "강남구", "역삼동", ""}, {"135090", "서울", "강남구", "역삼2동", ""}});
        QLineEdit zip, addr;
        FrmPost form;
        form.SetObject(&zip, &addr);
        int result = -1;
        form.InitForm("역삼", result);
        showActive(&form);
        pressKey(form.grdList(), Qt::Key_Escape);
        QVERIFY(!form.isVisible());
        QCOMPARE(zip.text(), QString());
    }
    void theIndexGivesExactlyThePlainRowsOverTheWholeBook() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QVERIFY(ImportPostcodeFile(sharedDataDir() + "/zipcode_6digit.csv") > 40000);
        Database post;
        QVERIFY(post.open(app().DbPostFile));
        for (const QString& text : {QStringLiteral("역삼"), QStringLiteral("역삼1동"), QStringLiteral("동"),
                                    QStringLiteral("135"), QStringLiteral("1358"), QStringLiteral("00"),
                                    QStringLiteral("가1동"), QStringLiteral("%_\\")}) {
            QCOMPARE(zips(SearchPostBook(post, text)), plainZips(post, text));
        }
        const SqlPart q = PostSearchQuery(post, "역삼1동", {});
        QVERIFY(q.sql.contains("MATCH"));
        const QString steps = queryPlan(post, q);
        QVERIFY(!steps.contains("(no plan)"));
        QVERIFY2(!steps.contains(QRegularExpression("SCAN Post(\\s|$)")), qPrintable(steps));
    }
    void theIndexFollowsEveryWrite() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""}});
        QCOMPARE(SearchPostBook("역삼동").size(), 1); // builds the index
        addPostRows({{"135090", "서울", "강남구", "역삼2동", ""}});
        Database post;
        QVERIFY(post.open(app().DbPostFile));
        exec(post, "UPDATE Post SET DONG = '논현동' WHERE ZIPCODE = '135080'");
        QCOMPARE(zips(SearchPostBook(post, "역삼2동")), (QStringList{"135090"}));
        QCOMPARE(zips(SearchPostBook(post, "논현동")), (QStringList{"135080"}));
        QCOMPARE(zips(SearchPostBook(post, "역삼동")), QStringList());
        exec(post, "DELETE FROM Post WHERE ZIPCODE = '135090'");
        QCOMPARE(zips(SearchPostBook(post, "역삼2동")), QStringList());
    }
    void anIndexOutOfStepIsBuiltAgain() {
        TestHome home;
        QVERIFY(openStores());
        addPostRows({{"135080", "서울", "강남구", "역삼동", ""}});
        Database post;
        QVERIFY(post.open(app().DbPostFile));
        QVERIFY(EnsureSearchIndex(post, PostSearchIndex()));
        exec(post, "DELETE FROM Post_search");
        QVERIFY(EnsureSearchIndex(post, PostSearchIndex()));
        QCOMPARE(scalar(post, "SELECT count(*) FROM Post_search").toInt(), 1);
    }
};

NB_TEST_MAIN(TestPostcode)
#include "tst_postcode.moc"
