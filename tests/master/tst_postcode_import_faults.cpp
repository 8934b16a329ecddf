// The postcode import met with bad files and a full disk: a file that gives no row, bytes that
// are not the encoding they seem, lines passed over, and a save the disk refuses. Each leaves
// the book as it was and never says it was imported; the encoding is decided per file.
//
// The full disk runs in a copy of this program (started with --import-on-full-disk FILE) whose
// files may not grow past a few bytes; the copy prints every box it showed.
#include "MasterFixture.h"
#include "common/text/Cp949.h"
#include "core/Lifecycle.h"
#include "master/PostImport.h"
#include "master/PostSearch.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>

using namespace nb;
using namespace nb::test;

namespace {

const QByteArray kHeader = "ZIPCODE,SIDO,GUGUN,DONG,BUNJI\n";

// A book of `count` rows, postcodes from `first`, each town named with its number.
QString book(int count, int first, const QString& town = QStringLiteral("역삼"),
             const QString& more = QString()) {
    QString text = QString::fromUtf8(kHeader);
    for (int i = 0; i < count; ++i)
        text += QStringLiteral("%1,서울,강남구,%2%3동,%4번지%5\n")
                    .arg(first + i)
                    .arg(town)
                    .arg(i)
                    .arg(i + 1)
                    .arg(more);
    return text;
}

QString writeFile(const TestHome& home, const QString& name, const QByteArray& bytes) {
    const QString path = home.file(name);
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
    return path;
}

int bookSize() {
    return int(SearchPostBook(QString()).size());
}

// The home with a book of `rows` rows in place, imported the ordinary way.
void withBook(const TestHome& home, int rows) {
    QVERIFY(openStores());
    script();
    QCOMPARE(ImportPostcodeFile(writeFile(home, QStringLiteral("old.csv"), book(rows, 100000).toUtf8())),
             rows);
    QCOMPARE(bookSize(), rows);
}

bool anyBoxSays(const ScriptedMessages& msgs, const QString& words) {
    for (const MessageRecord& box : msgs.boxes())
        if (box.text.contains(words)) return true;
    return false;
}

// The copy on a full disk: files may not grow past 256 KiB, and a write past it fails instead of
// ending the process. The postcode store is opened first, so its journal index is in place; the
// new book's long house numbers make its commit larger than the work files the search index is
// built in, so the disk runs out at the commit itself.
constexpr rlim_t kFullDiskBytes = 256 * 1024;
int importOnFullDisk(const QString& csv) {
    ScriptedMessages& msgs = scriptMessages();
    ReadSettings();
    Database keeper;
    if (!keeper.open(app().DbPostFile)) return 3;
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = kFullDiskBytes;
    setrlimit(RLIMIT_FSIZE, &limit);
    const int result = ImportPostcodeFile(csv);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_FSIZE, &limit);
    for (const MessageRecord& box : msgs.boxes())
        std::printf("box %s|%s\n", qPrintable(box.title), qPrintable(QString(box.text).replace(u'\r', u' ')));
    std::printf("result %d\n", result);
    std::fflush(stdout);
    return 0;
}

} // namespace

class TestPostcodeImportFaults : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aHeaderOnlyFileIsRefusedAndTheBookStays() {
        TestHome home;
        withBook(home, 50);
        auto& msgs = script();
        QCOMPARE(ImportPostcodeFile(writeFile(home, QStringLiteral("header.csv"), kHeader)), -1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().title, kPostImportTitle);
        QVERIFY2(msgs.last().text.startsWith(
                     QStringLiteral("우편번호 파일에 가져올 우편번호가 한 줄도 없어 가져오지 않았습니다. "
                                    "기존 우편번호는 그대로 남아 있습니다.")),
                 qPrintable(msgs.last().text));
        QVERIFY(!anyBoxSays(msgs, QStringLiteral("가져왔습니다")));
        QCOMPARE(bookSize(), 50);
    }
    void aFileWhoseEveryLineIsPassedOverIsRefusedAndSaysWhy() {
        TestHome home;
        withBook(home, 20);
        auto& msgs = script();
        const QByteArray bytes = kHeader + "12-34,서울,중구,명동,\n999999,서울\n";
        QCOMPARE(ImportPostcodeFile(writeFile(home, QStringLiteral("bad.csv"), bytes)), -1);
        QVERIFY(msgs.last().text.contains(
            QStringLiteral("우편번호가 여섯 자리가 아닌 1줄은 건너뛰었습니다 (2번째 줄).")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("열이 모자란 1줄은 건너뛰었습니다 (3번째 줄).")));
        QCOMPARE(bookSize(), 20);
    }
    void skippedLinesAreCountedWithTheirLinesAndReason() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QString text = book(3, 100000);
        for (int i = 0; i < 7; ++i)
            text += QStringLiteral("1-%1,서울,중구,명동,\n").arg(i);
        text += QStringLiteral("135080,서울\n");
        QCOMPARE(ImportPostcodeFile(writeFile(home, QStringLiteral("mixed.csv"), text.toUtf8())), 3);
        QCOMPARE(msgs.last().text, QStringLiteral("우편번호 3건을 가져왔습니다.\r\n"
                                                  "우편번호가 여섯 자리가 아닌 7줄은 건너뛰었습니다 "
                                                  "(5, 6, 7, 8, 9번째 줄 등).\r\n"
                                                  "열이 모자란 1줄은 건너뛰었습니다 (12번째 줄)."));
    }
    void utf8WithOneStrayByteIsRefusedNamingItsLine() {
        TestHome home;
        withBook(home, 30);
        auto& msgs = script();
        QByteArray bytes = book(40, 200000, QStringLiteral("신림")).toUtf8();
        // Line 18 (the header is line 1) gets one byte that neither encoding can read.
        const qsizetype at = bytes.indexOf(QStringLiteral("신림16동").toUtf8());
        QVERIFY(at > 0);
        bytes.insert(at + 3, '\xFF');
        QCOMPARE(ImportPostcodeFile(writeFile(home, QStringLiteral("stray.csv"), bytes)), -1);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY2(msgs.last().text.contains(QStringLiteral(
                     "18번째 줄에 UTF-8 글자로 읽을 수 없는 바이트가 있습니다 (그런 줄이 모두 1줄).")),
                 qPrintable(msgs.last().text));
        QVERIFY(msgs.last().text.contains(QStringLiteral("기존 우편번호는 그대로 남아 있습니다.")));
        QCOMPARE(bookSize(), 30);
        QCOMPARE(SearchPostBook(QStringLiteral("신림")).size(), 0);
    }
    void aFileMarkedUtf8IsNeverReadAsCp949() {
        const QByteArray cp949 =
            ToCp949(QString::fromUtf8(kHeader) + QStringLiteral("135080,서울,강남구,역삼동,\n"));
        const PostcodeText plain = DecodePostcodeBytes(cp949);
        QCOMPARE(plain.encoding, QStringLiteral("CP949"));
        const PostcodeText marked = DecodePostcodeBytes("\xEF\xBB\xBF" + cp949);
        QVERIFY(marked.encoding.isEmpty());
        QVERIFY(marked.text.isEmpty());
        QVERIFY(marked.error.contains(QStringLiteral("2번째 줄에 UTF-8 글자로 읽을 수 없는")));
    }
    void aCp949FileIsReadAsCp949AndReplacesTheBookWithoutMojibake() {
        TestHome home;
        withBook(home, 10);
        script();
        const QString text = QString::fromUtf8(kHeader) + QStringLiteral("135080,서울,강남구,똠방각하동,1~3\n"
                                                                         "612020,부산,해운대구,우동,\n");
        const QByteArray bytes = ToCp949(text);
        QCOMPARE(DecodePostcodeBytes(bytes).encoding, QStringLiteral("CP949"));
        QCOMPARE(DecodePostcodeBytes(bytes).text, text);
        QCOMPARE(ImportPostcodeFile(writeFile(home, QStringLiteral("949.csv"), bytes)), 2);
        QCOMPARE(SearchPostBook(QStringLiteral("똠방각하")).size(), 1);
        QCOMPARE(SearchPostBook(QStringLiteral("우동")).value(0).value(2), QStringLiteral("해운대구"));
    }
    void bytesValidInNeitherEncodingAreRefusedNamingTheNearestReading() {
        // A CP949 book with a broken two-byte character on line 3 is taken for CP949.
        QByteArray bytes =
            ToCp949(QString::fromUtf8(kHeader) + QStringLiteral("135080,서울,강남구,역삼동,\n"
                                                                "135081,서울,강남구,논현동,\n"));
        bytes.insert(bytes.lastIndexOf(','), "\xB0");
        const PostcodeText decoded = DecodePostcodeBytes(bytes);
        QVERIFY(decoded.encoding.isEmpty());
        QVERIFY2(decoded.error.contains(QStringLiteral("3번째 줄에 CP949 글자로 읽을 수 없는 바이트")),
                 qPrintable(decoded.error));
    }
    void aFullDiskDuringTheImportKeepsTheOldRowsAndNeverSaysImported() {
        TestHome home;
        withBook(home, 300);
        closeStores();
        // 100 rows of about 3 KB each: the save needs more than the disk has left.
        const QString csv =
            writeFile(home, QStringLiteral("new.csv"),
                      book(100, 500000, QStringLiteral("신림"), QString(1000, QChar(u'산'))).toUtf8());
        QProcess copy;
        copy.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--import-on-full-disk"), csv});
        QVERIFY(copy.waitForFinished(60000));
        const QString out = QString::fromUtf8(copy.readAllStandardOutput());
        QCOMPARE(copy.exitCode(), 0);
        QVERIFY2(out.contains(QStringLiteral("result -1")), qPrintable(out));
        QVERIFY2(!out.contains(QStringLiteral("가져왔습니다")), qPrintable(out));
        // The save's failure box: what happened, the disk named as the cause, the book kept.
        QVERIFY2(out.contains(
                     QStringLiteral("box 저장 오류|우편번호를 가져오지 못했습니다. 기존 우편번호는 그대로 "
                                    "남아 있습니다.")),
                 qPrintable(out));
        QVERIFY2(out.contains(QStringLiteral("디스크")), qPrintable(out));
        QCOMPARE(out.count(QStringLiteral("box ")), 1);
        // After the copy has gone: the old rows, all of them, and none of the new.
        QCOMPARE(bookSize(), 300);
        QCOMPARE(SearchPostBook(QStringLiteral("신림")).size(), 0);
        QCOMPARE(SearchPostBook(QStringLiteral("역삼")).size(), 300);
    }
};

int main(int argc, char** argv) {
    nb::test::prepareEnvironment();
    QApplication application(argc, argv);
    nb::test::prepareApplication(application);
    if (argc == 3 && QByteArray(argv[1]) == "--import-on-full-disk") {
        const int code = importOnFullDisk(QString::fromLocal8Bit(argv[2]));
        resetProgramState();
        return code;
    }
    TestPostcodeImportFaults tc;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&tc, argc, argv);
}
#include "tst_postcode_import_faults.moc"
