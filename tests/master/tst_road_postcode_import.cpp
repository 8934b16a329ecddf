// The road-name postcode book's import: the published layout read in UTF-8 or CP949, one file
// or a province a file, the book built beside its file and put in place whole; a bad file
// refused whole with its line and reason, leaving the book before it as it was.
#include "MasterFixture.h"
#include "RoadBookFiles.h"
#include "core/Settings.h"
#include "master/PostImport.h"
#include "master/RoadImport.h"
#include "master/RoadSearch.h"

#include <QDir>
#include <QFileInfo>

using namespace nb;
using namespace nb::test;

namespace {

// Every road address a search lists, in its order.
QStringList found(const QString& text) {
    QStringList out;
    for (const RoadAddress& a : SearchRoadBook(text, 100000))
        out << a.zip + u' ' + RoadAddressText(a);
    return out;
}

// The book's rows, read as the search reads it (only reading, so nothing is written beside it).
qint64 bookRows() {
    qint64 rows = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "bookRows");
        db.setConnectOptions("QSQLITE_OPEN_READONLY");
        db.setDatabaseName(RoadBookFile());
        QSqlQuery q(db);
        if (db.open() && q.exec("SELECT count(*) FROM RoadAddr") && q.next()) rows = q.value(0).toLongLong();
    }
    QSqlDatabase::removeDatabase("bookRows");
    return rows;
}

QStringList leftBeside() {
    const QFileInfo book(RoadBookFile());
    return QDir(book.absolutePath()).entryList({book.fileName() + "*"}, QDir::Files);
}

QString replaced(QString text, const QString& from, const QString& to) {
    return text.replace(from, to);
}

} // namespace

class TestRoadPostcodeImport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void importReadsThePublishedLayoutCountsAndChoosesTheRoadBook() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QVERIFY(!UsesRoadBook());
        const QString path = home.file("서울특별시.txt");
        QVERIFY(writeRoadFile(path, smallRoadBook()));
        QVERIFY(IsRoadBookFile(path));
        QCOMPARE(ImportRoadBook({path}), 10);
        QCOMPARE(msgs.last().title, kPostImportTitle);
        QCOMPARE(
            msgs.last().text,
            QStringLiteral("도로명 우편번호 10건을 가져왔습니다. 우편번호 검색은 도로명 주소로 합니다."));
        QVERIFY(!msgs.progressValues().isEmpty());
        QCOMPARE(msgs.progressValues().last(), 100);
        QCOMPARE(bookRows(), 10);
        QVERIFY(UsesRoadBook());
        QCOMPARE(GetEnv(kRoadBookSetting), QStringLiteral("도로명"));
        QCOMPARE(found("새문안로 5-1"), QStringList{"03172 서울특별시 종로구 새문안로 5-1"});
        QCOMPARE(leftBeside(), QStringList{QFileInfo(RoadBookFile()).fileName()});
    }
    void importReadsCp949ByItsFirstLine() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString path = home.file("충청북도.txt");
        QVERIFY(writeRoadFile(path, smallRoadBook(), true));
        const qint64 rows = ImportRoadBook({path});
        if (rows < 0) qWarning() << msgs.last().text;
        QCOMPARE(rows, 10);
        QCOMPARE(found("중신리 산 12"), QStringList{"28116 충청북도 청주시 청원구 오창읍 중신길 8"});
    }
    void provinceFilesChosenTogetherMakeOneBook() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QVector<RoadLine> all = smallRoadBook();
        const QString seoul = home.file("서울특별시.txt");
        const QString chungbuk = home.file("충청북도.txt");
        QVERIFY(writeRoadFile(seoul, all.mid(0, 8)));
        QVERIFY(writeRoadFile(chungbuk, all.mid(8), true));
        QVERIFY(ImportPostcodeFiles({seoul, chungbuk}));
        QCOMPARE(bookRows(), 10);
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("도로명 우편번호 10건을")));
    }
    void aSecondImportReplacesTheBookWhole() {
        TestHome home;
        QVERIFY(openStores());
        script();
        const QString path = home.file("book.txt");
        QVERIFY(writeRoadFile(path, smallRoadBook()));
        QCOMPARE(ImportRoadBook({path}), 10);
        QVERIFY(writeRoadFile(path, smallRoadBook().mid(0, 3)));
        QCOMPARE(ImportRoadBook({path}), 3);
        QCOMPARE(bookRows(), 3);
        QVERIFY(found("역삼").isEmpty());
    }

    // ---- refused files: nothing changes ----
    void aPostcodeNotOfFiveDigitsRefusesTheFileWholeAndKeepsTheBook() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString good = home.file("good.txt");
        QVERIFY(writeRoadFile(good, smallRoadBook()));
        QCOMPARE(ImportRoadBook({good}), 10);
        QVector<RoadLine> lines = smallRoadBook();
        lines[2].zip = "0317"; // the fourth line of the file
        const QString bad = home.file("bad.txt");
        QVERIFY(writeRoadFile(bad, lines));
        QCOMPARE(ImportRoadBook({bad}), -1);
        QCOMPARE(msgs.last().title, kPostImportTitle);
        QCOMPARE(msgs.last().text,
                 QStringLiteral(
                     "도로명 우편번호 파일 bad.txt의 4번째 줄을 읽을 수 없어 가져오지 않았습니다: "
                     "우편번호 \"0317\"이(가) 다섯 자리 숫자가 아닙니다.\r\n기존 우편번호는 그대로 남아 "
                     "있습니다.\r\n") +
                     bad);
        QCOMPARE(bookRows(), 10);
        QCOMPARE(found("새문안로").size(), 3);
        QCOMPARE(leftBeside(), QStringList{QFileInfo(RoadBookFile()).fileName()});
    }
    void aBadLineInTheSecondProvinceRefusesBoth() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString seoul = home.file("seoul.txt");
        const QString other = home.file("other.txt");
        QVERIFY(writeRoadFile(seoul, smallRoadBook()));
        QVERIFY(writeBytes(
            other, (roadFileText(smallRoadBook().mid(0, 2)) + "03170|서울특별시|짧은 줄\r\n").toUtf8()));
        QCOMPARE(ImportRoadBook({seoul, other}), -1);
        QVERIFY(msgs.last().text.contains(QStringLiteral("other.txt의 4번째 줄")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("열이 26개여야 하는데 3개입니다")));
        QVERIFY(!QFileInfo::exists(RoadBookFile()));
        QVERIFY(leftBeside().isEmpty());
        QVERIFY(!UsesRoadBook());
    }
    void aHeaderWithoutTheRoadColumnsIsRefused() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString path = home.file("foreign.txt");
        const QString text = replaced(roadFileText(smallRoadBook()), "|도로명|", "|길이름|");
        QVERIFY(writeBytes(path, text.toUtf8()));
        QCOMPARE(ImportRoadBook({path}), -1);
        QVERIFY(msgs.last().text.contains(QStringLiteral("1번째 줄")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("열 도로명이(가) 없습니다")));
        QVERIFY(!QFileInfo::exists(RoadBookFile()));
    }
    void bytesUnreadableInTheFilesEncodingAreRefusedWithTheirLine() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QByteArray bytes = ToCp949(roadFileText(smallRoadBook()));
        // Line 6 gets a byte pair that is no CP949 character.
        qsizetype at = 0;
        for (int line = 0; line < 5; ++line)
            at = bytes.indexOf('\n', at) + 1;
        bytes.insert(at + 6, QByteArray("\xFF\xFF"));
        const QString path = home.file("broken.txt");
        QVERIFY(writeBytes(path, bytes));
        QCOMPARE(ImportRoadBook({path}), -1);
        QVERIFY(msgs.last().text.contains(QStringLiteral("6번째 줄")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("CP949 글자로 읽을 수 없는 바이트")));
        QVERIFY(!QFileInfo::exists(RoadBookFile()));
    }
    void aBuildingNumberThatIsNoNumberIsRefused() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QVector<RoadLine> lines = smallRoadBook();
        lines[0].building = "3가";
        const QString path = home.file("book.txt");
        QVERIFY(writeRoadFile(path, lines));
        QCOMPARE(ImportRoadBook({path}), -1);
        QVERIFY(msgs.last().text.contains(QStringLiteral("2번째 줄")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("건물번호가 다섯 자리 이하의 숫자가 아닙니다")));
    }
    void aFileWithTheHeaderAloneIsRefused() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString path = home.file("empty.txt");
        QVERIFY(writeRoadFile(path, {}));
        QCOMPARE(ImportRoadBook({path}), -1);
        QVERIFY(
            msgs.last().text.startsWith(QStringLiteral("도로명 우편번호 파일에 가져올 주소가 한 줄도 없어")));
        QVERIFY(!QFileInfo::exists(RoadBookFile()));
    }
    void aBookThatCannotBeWrittenSaysWhyAndKeepsTheOldOne() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString path = home.file("book.txt");
        QVERIFY(writeRoadFile(path, smallRoadBook()));
        QCOMPARE(ImportRoadBook({path}), 10);
        // Where the new book is built stands a folder nobody may replace.
        const QString aside = RoadBookFile() + ".building";
        QVERIFY(QDir().mkpath(aside + "/keep"));
        QVERIFY(writeRoadFile(path, smallRoadBook().mid(0, 2)));
        QCOMPARE(ImportRoadBook({path}), -1);
        QCOMPARE(msgs.last().title, QStringLiteral("저장 오류"));
        QVERIFY(
            msgs.last().text.contains(QStringLiteral("도로명 우편번호를 가져오지 못했습니다. 기존 우편번호는 "
                                                     "그대로 남아 있습니다.")));
        QCOMPARE(bookRows(), 10);
        QDir(aside).removeRecursively();
    }
    void whatAKilledImportLeftIsClearedByTheNext() {
        TestHome home;
        QVERIFY(openStores());
        script();
        const QString aside = RoadBookFile() + ".building";
        QVERIFY(writeBytes(aside, "half a book"));
        QVERIFY(writeBytes(aside + "-journal", "x"));
        const QString path = home.file("book.txt");
        QVERIFY(writeRoadFile(path, smallRoadBook()));
        QCOMPARE(ImportRoadBook({path}), 10);
        QCOMPARE(leftBeside(), QStringList{QFileInfo(RoadBookFile()).fileName()});
    }

    // ---- the menu's choice of files ----
    void theMenuTellsTheTwoBooksApartByTheirFirstLine() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        const QString old = home.file("old.csv");
        QVERIFY(writeBytes(
            old, QStringLiteral("ZIPCODE,SIDO,GUGUN,DONG,BUNJI\n135-080,서울,강남구,역삼동,\n").toUtf8()));
        QVERIFY(!IsRoadBookFile(old));
        QVERIFY(ImportPostcodeFiles({old}));
        QCOMPARE(msgs.last().text, QStringLiteral("우편번호 1건을 가져왔습니다."));
        QVERIFY(!QFileInfo::exists(RoadBookFile()));
        const QString road = home.file("road.txt");
        QVERIFY(writeRoadFile(road, smallRoadBook()));
        QVERIFY(!ImportPostcodeFiles({old, road}));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("여러 파일은 도로명 우편번호 파일")));
        QVERIFY(!QFileInfo::exists(RoadBookFile()));
    }
};

NB_TEST_MAIN(TestRoadPostcodeImport)
#include "tst_road_postcode_import.moc"
