// `nubella --print-statement BILLNO --pdf FILE [--frame]` run as its own process: a missing
// statement, a malformed command, and a stored statement on its own date, with and without the form.
#include "ProgramRun.h"
#include "TestSupport.h"

#include <QFile>
#include <QStandardPaths>

using nb::test::runProgram;

namespace {

// A store with a supplier, a trader and one statement of two lines, made by a first start.
void prepareStore(const QString& home) {
    QCOMPARE(runProgram(home, {"--print-statement", "999999", "--pdf", home + "/none.pdf"}).exitCode, 1);
    nb::test::execOn(
        home + "/Dbs/dbBasic.db",
        {"INSERT INTO User (Company, Delegate, Serial) VALUES ('하르문상사', '홍길동', '123-45-67890')",
         "INSERT INTO Trader (Code, C_Name, Serial) VALUES ('000001', '가나철강', '234-56-78901')"});
    nb::test::execOn(home + "/Dbs/dbBill.db",
                     {"INSERT INTO Master VALUES ('000003', '2024-04-30', '000001', 5000, 500, 2)",
                      "INSERT INTO Detail VALUES ('000003', 1, '볼트', 'EA', 3, 1000, 0, 3000, 300)",
                      "INSERT INTO Detail VALUES ('000003', 2, '너트', 'EA', 2, 1000, 0, 2000, 200)"});
}

} // namespace

class TestStatementCommand : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aMissingStatementExitsWithAOneLineReason() {
        nb::test::TestHome home;
        const auto run =
            runProgram(home.path(), {"--print-statement", "999999", "--pdf", home.path() + "/x.pdf"});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.errorText, QStringLiteral("거래명세표 999999 이(가) 없습니다."));
        QVERIFY(!QFile::exists(home.path() + "/x.pdf"));
    }

    void theStatementStoreAsTargetIsRefusedAndLeftAsItWas() {
        nb::test::TestHome home;
        prepareStore(home.path());
        // The store's file path is refused on either engine; on the server no file is there, and
        // none is made.
        const QString store = home.path() + "/Dbs/dbBill.db";
        QCOMPARE(QFile::exists(store), !nb::test::testOnServer());
        const auto contents = [&store] {
            QFile file(store);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        const QByteArray before = contents();
        const auto run = runProgram(home.path(), {"--print-statement", "000003", "--pdf", store, "--frame"});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errorText.contains(QStringLiteral("자료 파일")), qPrintable(run.errorText));
        QCOMPARE(QFile::exists(store), !nb::test::testOnServer());
        QCOMPARE(contents(), before);
    }

    void aMalformedCommandSaysHowToUseIt() {
        nb::test::TestHome home;
        const auto run = runProgram(home.path(), {"--print-statement", "000001"});
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errorText,
                 QStringLiteral("사용법: nubella --print-statement 거래번호 --pdf 파일 [--frame]"));
    }

    void aStoredStatementPrintsWithItsOwnDateAndTheFormWhenAsked() {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()) QSKIP("pdftotext missing");
        nb::test::TestHome home;
        prepareStore(home.path());
        const QString plain = home.path() + "/plain.pdf";
        QCOMPARE(runProgram(home.path(), {"--print-statement", "000003", "--pdf", plain}).exitCode, 0);
        const QString text = nb::test::pdfText(plain);
        QVERIFY(text.contains(QStringLiteral("2024년04월30일")));
        QVERIFY(text.contains(QStringLiteral("볼트")));
        QVERIFY(!text.contains(QStringLiteral("거 래 명 세 표")));
        const QString framed = home.path() + "/framed.pdf";
        QCOMPARE(
            runProgram(home.path(), {"--print-statement", "000003", "--pdf", framed, "--frame"}).exitCode, 0);
        QVERIFY(nb::test::pdfText(framed).contains(QStringLiteral("(공급자 보관용)")));
    }
};

NB_TEST_MAIN(TestStatementCommand)
#include "tst_statement_command.moc"
