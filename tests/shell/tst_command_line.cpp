// The program started with arguments it cannot follow: two jobs at once, an option it does not
// know. It says how it is used and ends with 2, opening no window and writing nothing.
#include "ProgramRun.h"
#include "TestSupport.h"

#include <QDir>

using nb::test::runProgram;

class TestCommandLine : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void twoJobsInOneCallAreAUsageError() {
        QTemporaryDir home;
        const auto run = runProgram(home.path(), {"--print-invoice", "100000", "--pdf",
                                                  home.path() + "/a.pdf", "--print-statement", "000001"});
        QCOMPARE(run.exitCode, 2);
        const QStringList lines = run.errorText.split(u'\n');
        QCOMPARE(lines.first(),
                 QStringLiteral("한 번에 한 가지 작업만 할 수 있습니다: --print-invoice, --print-statement"));
        QVERIFY(lines.contains(QStringLiteral("사용법: nubella --print-invoice 계산서번호 --pdf 파일")));
        QVERIFY(lines.contains(
            QStringLiteral("사용법: nubella --print-statement 거래번호 --pdf 파일 [--frame]")));
        QVERIFY(!QFileInfo::exists(home.path() + "/a.pdf"));
        QCOMPARE(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }
    void anOptionTheProgramDoesNotKnowIsAUsageError_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("problem");
        QTest::newRow("alone") << QStringList{"--bogus"} << QStringLiteral("알 수 없는 옵션입니다: --bogus");
        QTest::newRow("beside a job")
            << QStringList{"--print-quotation", "202405001", "--pdf", "q.pdf", "--pfd"}
            << QStringLiteral("알 수 없는 옵션입니다: --pfd");
        QTest::newRow("of another job")
            << QStringList{"--print-invoice", "100000", "--pdf", "a.pdf", "--out", "e"}
            << QStringLiteral("--print-invoice 에는 쓸 수 없는 옵션입니다: --out");
    }
    void anOptionTheProgramDoesNotKnowIsAUsageError() {
        QFETCH(QStringList, arguments);
        QFETCH(QString, problem);
        QTemporaryDir home;
        const auto run = runProgram(home.path(), arguments);
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errorText.split(u'\n').first(), problem);
        QVERIFY(run.errorText.contains(QStringLiteral("사용법: nubella --export-etax")));
        QCOMPARE(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }
};

NB_TEST_MAIN(TestCommandLine)
#include "tst_command_line.moc"
