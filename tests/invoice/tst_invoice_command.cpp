// `nubella --print-invoice TAXCODE --pdf FILE`, run as a separate program the way an archiving
// script would run it.
#include "ProgramRun.h"
#include "TestSupport.h"

using nb::test::execOn;
using nb::test::pdfText;
using nb::test::runProgram;
using Run = nb::test::ProgramRun;

class TestInvoiceCommand : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void missingInvoiceExitsNonZeroWithOneLine() {
        QTemporaryDir home;
        const Run run =
            runProgram(home.path(), {"--print-invoice", "123456", "--pdf", home.path() + "/x.pdf"});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.errorText.split('\n').size(), 1);
        QVERIFY2(run.errorText.contains("123456"), qPrintable(run.errorText));
        QVERIFY(!QFileInfo::exists(home.path() + "/x.pdf"));
    }
    void malformedCommandSaysHowToUseIt() {
        QTemporaryDir home;
        const Run run = runProgram(home.path(), {"--print-invoice", "100000"});
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errorText, QStringLiteral("사용법: nubella --print-invoice 계산서번호 --pdf 파일"));
    }
    void storedInvoiceIsWrittenToAPdf() {
        QTemporaryDir home;
        runProgram(home.path(),
                   {"--print-invoice", "100000", "--pdf", home.path() + "/none.pdf"}); // lays down the store
        execOn(home.path() + "/Dbs/dbBasic.db",
               {"INSERT INTO User (Company, Delegate, Serial, Addr) VALUES ('누벨라상사', '김대표', "
                "'123-45-67890', '서울 중구')",
                "INSERT INTO Trader (Code, C_Name, U_Name, Serial, VAT, Section, bDeled) "
                "VALUES ('000001', '한빛상회', '이사장', '211-22-33333', 1, 0, 0)"});
        execOn(home.path() + "/Dbs/dbTax.db", {"INSERT INTO NewAcount (TaxCode, CCode, PName, PNorm, "
                                               "Quantity, UnitCost, TradeKum, VatKum, DealDate, "
                                               "IssueDate, TradeDate, UserCode) VALUES ('100000', '000001', "
                                               "'볼펜', '0.7mm', 10, 1100, 10000, 1000, "
                                               "'2026-11-20', '비고없음', '1120', '123-45-67890')"});
        const QString pdf = home.path() + "/archive/100000.pdf";
        QDir().mkpath(home.path() + "/archive");
        const Run run = runProgram(home.path(), {"--print-invoice", "100000", "--pdf", pdf});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(QFileInfo::exists(pdf));
        const QString text = pdfText(pdf);
        QVERIFY2(text.contains("볼펜"), qPrintable(text));
        QVERIFY(text.contains("한빛상회"));
        QVERIFY(text.contains("10,000"));
    }
};

NB_TEST_MAIN(TestInvoiceCommand)
#include "tst_invoice_command.moc"
