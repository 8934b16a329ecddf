// `nubella --print-quotation ESTICODE --pdf FILE`, run as a separate program the way an archiving
// script would run it.
#include "ProgramRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>

using nb::test::execOn;
using nb::test::pdfText;
using nb::test::runProgram;
using Run = nb::test::ProgramRun;

class TestQuotationCommand : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void missingQuotationExitsNonZeroWithOneLine() {
        nb::test::TestHome home;
        const Run run =
            runProgram(home.path(), {"--print-quotation", "209901001", "--pdf", home.path() + "/x.pdf"});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.errorText.split('\n').size(), 1);
        QVERIFY2(run.errorText.contains("209901001"), qPrintable(run.errorText));
        QVERIFY(!QFileInfo::exists(home.path() + "/x.pdf"));
    }
    void malformedCommandSaysHowToUseIt() {
        nb::test::TestHome home;
        const Run run = runProgram(home.path(), {"--print-quotation", "202405001"});
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errorText, QStringLiteral("사용법: nubella --print-quotation 견적번호 --pdf 파일"));
    }
    void storedQuotationIsWrittenToAPdf() {
        nb::test::TestHome home;
        runProgram(home.path(),
                   {"--print-quotation", "1", "--pdf", home.path() + "/none.pdf"}); // lays down the store
        execOn(home.path() + "/Dbs/dbBasic.db",
               {"INSERT INTO User (Company, Delegate, Serial, Addr) VALUES ('누벨라상사', '김대표', "
                "'123-45-67890', '서울 중구')",
                "INSERT INTO Trader (Code, C_Name, U_Name, Serial, Phone, Fax, VAT, Section, bDeled) "
                "VALUES ('000001', '한빛상회', '이사장', '211-22-33333', '02-111-2222', '02-111-3333', 1, 0, "
                "0)"});
        execOn(home.path() + "/Dbs/dbEstimate.db",
               {"INSERT INTO EstiBase VALUES ('202611001', '000001', '한빛상회', '2026-11-20', '2026-11-30', "
                "'문구류', 11000, '일금 일만일천 원정', -1, '박대리', '1개월', '현금')",
                "INSERT INTO Estimate VALUES (1, '202611001', '', '볼펜', '0.7mm', 10, 1100, 11000, 'EA')"});
        const QString pdf = home.path() + "/archive/202611001.pdf";
        QDir().mkpath(home.path() + "/archive");
        const Run run = runProgram(home.path(), {"--print-quotation", "202611001", "--pdf", pdf});
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(QFileInfo::exists(pdf), qPrintable(run.errorText));
        const QString out = pdfText(pdf);
        for (const char* word :
             {"볼펜", "한빛상회", "누벨라상사", "11,000", "부가세포함", "02-111-2222", "02-111-3333"})
            QVERIFY2(out.contains(QString::fromUtf8(word)), word);
    }
    void theTotalIsWorkedOutFromTheLinesNotTakenFromAStaleHead() {
        nb::test::TestHome home;
        runProgram(home.path(), {"--print-quotation", "1", "--pdf", home.path() + "/none.pdf"});
        execOn(home.path() + "/Dbs/dbBasic.db",
               {"INSERT INTO User (Company, Delegate, Serial, Addr) VALUES ('누벨라상사', '김대표', "
                "'123-45-67890', '서울 중구')",
                "INSERT INTO Trader (Code, C_Name, U_Name, Serial, Phone, Fax, VAT, Section, bDeled) "
                "VALUES ('000001', '한빛상회', '이사장', '211-22-33333', '', '', 1, 0, 0)"});
        // The head was saved with 0 before the lines were typed.
        execOn(home.path() + "/Dbs/dbEstimate.db",
               {"INSERT INTO EstiBase VALUES ('202611001', '000001', '한빛상회', '2026-11-20', '', "
                "'문구류', 0, '', 0, '', '', '')",
                "INSERT INTO Estimate VALUES (1, '202611001', '', '볼펜', '', 10, 1100, 11000, 'EA')",
                "INSERT INTO Estimate VALUES (2, '202611001', '', '공책', '', 1.5, 1000, 1500, 'EA')"});
        const QString pdf = home.path() + "/q.pdf";
        const Run run = runProgram(home.path(), {"--print-quotation", "202611001", "--pdf", pdf});
        QCOMPARE(run.exitCode, 0);
        const QString out = pdfText(pdf);
        QVERIFY2(out.contains(QStringLiteral("₩13,000 (일금 일만삼천 원정)")), qPrintable(out));
        QVERIFY2(!out.contains(QStringLiteral("₩0")), qPrintable(out));
        QVERIFY2(!out.contains(QStringLiteral("12,500")), qPrintable(out)); // one total on the page
    }
};

NB_TEST_MAIN(TestQuotationCommand)
#include "tst_quotation_command.moc"
