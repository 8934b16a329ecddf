// `nubella --print-invoice TAXCODE --pdf FILE`, run as a separate program the way an archiving
// script would run it.
#include "ProgramRun.h"
#include "TestSupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QRandomGenerator>

using nb::test::execOn;
using nb::test::pdfText;
using nb::test::runProgram;
using Run = nb::test::ProgramRun;

namespace {

// A first run lays down the store; then one invoice, 100000, of a supplier and a trader.
void storeOneInvoice(const QString& home) {
    runProgram(home, {"--print-invoice", "100000", "--pdf", home + "/none.pdf"});
    execOn(home + "/Dbs/dbBasic.db",
           {"INSERT INTO User (Company, Delegate, Serial, Addr) VALUES ('누벨라상사', '김대표', "
            "'123-45-67890', '서울 중구')",
            "INSERT INTO Trader (Code, C_Name, U_Name, Serial, VAT, Section, bDeled) "
            "VALUES ('000001', '한빛상회', '이사장', '211-22-33333', 1, 0, 0)"});
    execOn(home + "/Dbs/dbTax.db", {"INSERT INTO NewAcount (TaxCode, CCode, PName, PNorm, "
                                    "Quantity, UnitCost, TradeKum, VatKum, DealDate, "
                                    "IssueDate, TradeDate, UserCode) VALUES ('100000', '000001', "
                                    "'볼펜', '0.7mm', 10, 1100, 10000, 1000, "
                                    "'2026-11-20', '비고없음', '1120', '123-45-67890')"});
}

// A seal picture of noise, which no compression makes small: the PDF then is far larger than
// any store file, and a limit on file sizes can let the stores work while the PDF cannot be
// written.
void addLargeSeal(const QString& home) {
    QImage seal(700, 700, QImage::Format_RGB32);
    for (int y = 0; y < seal.height(); ++y)
        for (int x = 0; x < seal.width(); ++x)
            seal.setPixel(x, y, QRandomGenerator::global()->generate() & 0xffffff);
    QVERIFY(seal.save(home + "/공급자도장.gif", "PNG"));
}

constexpr rlim_t kFullDiskBytes = 256 * 1024;

QByteArray digestOf(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

// Every file of a folder, hidden ones too (a temporary file left behind would be one).
QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

} // namespace

class TestInvoiceCommand : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void missingInvoiceExitsNonZeroWithOneLine() {
        nb::test::TestHome home;
        const Run run =
            runProgram(home.path(), {"--print-invoice", "123456", "--pdf", home.path() + "/x.pdf"});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.errorText.split('\n').size(), 1);
        QVERIFY2(run.errorText.contains("123456"), qPrintable(run.errorText));
        QVERIFY(!QFileInfo::exists(home.path() + "/x.pdf"));
    }
    void malformedCommandSaysHowToUseIt() {
        nb::test::TestHome home;
        const Run run = runProgram(home.path(), {"--print-invoice", "100000"});
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errorText, QStringLiteral("사용법: nubella --print-invoice 계산서번호 --pdf 파일"));
    }
    void storedInvoiceIsWrittenToAPdf() {
        nb::test::TestHome home;
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
    void aTargetThatIsOneOfTheProgramsFilesIsRefusedAndLeftAsItWas() {
        nb::test::TestHome home;
        storeOneInvoice(home.path());
        for (const QString& target :
             {home.path() + "/Dbs/dbTax.db", home.path() + "/Dbs/dbBasic.db", home.path() + "/Dbs/archive.db",
              home.path() + "/settings.ini", home.path() + "/Dbs/../Dbs/dbBill.db"}) {
            const QByteArray before = digestOf(target);
            const Run run = runProgram(home.path(), {"--print-invoice", "100000", "--pdf", target});
            QCOMPARE(run.exitCode, 1);
            QVERIFY2(run.errorText.contains("누벨라의 자료 파일이라 그 위에 쓸 수 없습니다"),
                     qPrintable(run.errorText));
            QCOMPARE(digestOf(target), before);
        }
        // No store file was made or taken away (on the server the postcode book alone is a file).
        QCOMPARE(filesIn(home.path() + "/Dbs").filter(".db").size(), nb::test::testOnServer() ? 1 : 6);
        // The store still answers: the invoice is there to print.
        QCOMPARE(
            runProgram(home.path(), {"--print-invoice", "100000", "--pdf", home.path() + "/ok.pdf"}).exitCode,
            0);
    }
    void aPdfToAFullDeviceExitsOneWithItsReason() {
        nb::test::TestHome home;
        QTemporaryDir temp; // where the finished file waits before it is given to the device
        storeOneInvoice(home.path());
        QProcessEnvironment env;
        env.insert("TMPDIR", temp.path());
        const Run run = runProgram(home.path(), {"--print-invoice", "100000", "--pdf", "/dev/full"}, env);
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errorText.contains("디스크 공간이 부족합니다"), qPrintable(run.errorText));
        QVERIFY2(run.errorText.contains("/dev/full"), qPrintable(run.errorText));
        QCOMPARE(filesIn(temp.path()), QStringList());
    }
    void aPdfOnAFullDiskExitsOneAndLeavesNoFile() {
        nb::test::TestHome home;
        storeOneInvoice(home.path());
        addLargeSeal(home.path());
        const QString folder = home.path() + "/archive";
        QDir().mkpath(folder);
        const Run run =
            runProgram(home.path(), {"--print-invoice", "100000", "--pdf", folder + "/100000.pdf"}, {},
                       nb::test::fullDiskAt(kFullDiskBytes));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errorText.contains(folder + "/100000.pdf"), qPrintable(run.errorText));
        QCOMPARE(filesIn(folder), QStringList()); // no PDF of no bytes, no temporary file
    }
    void aPdfOverAnOldOneOnAFullDiskKeepsTheOldOne() {
        nb::test::TestHome home;
        storeOneInvoice(home.path());
        const QString pdf = home.path() + "/100000.pdf";
        QCOMPARE(runProgram(home.path(), {"--print-invoice", "100000", "--pdf", pdf}).exitCode, 0);
        const QByteArray before = digestOf(pdf);
        addLargeSeal(home.path());
        const Run run = runProgram(home.path(), {"--print-invoice", "100000", "--pdf", pdf}, {},
                                   nb::test::fullDiskAt(kFullDiskBytes));
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(digestOf(pdf), before);
    }
};

NB_TEST_MAIN(TestInvoiceCommand)
#include "tst_invoice_command.moc"
