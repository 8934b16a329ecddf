// The printer in force around a print job: the list with "PDF", the default printer, a
// document's printer and the printer put back afterwards, where the name is written and where
// it is read.
#include "TestSupport.h"
#include "core/Settings.h"
#include "printing/PrinterSetup.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

using namespace nb;

namespace {

const QString kOffice = QStringLiteral("사무실 레이저");
const QString kInk = QStringLiteral("잉크젯 B");

void twoPrinters() {
    setSystemPrintersForTesting({kOffice, kInk}, kOffice);
}

} // namespace

class TestPrinterSetup : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void documentNamesByIndex() {
        QCOMPARE(documentName(0), QStringLiteral("세금계산서"));
        QCOMPARE(documentName(1), QStringLiteral("거래명세표"));
        QCOMPARE(documentName(2), QStringLiteral("DM인쇄"));
        QCOMPARE(documentName(3), QStringLiteral("물품가격"));
        QCOMPARE(documentName(4), QStringLiteral("청구서"));
        QCOMPARE(documentName(5), QStringLiteral("견적서"));
        QCOMPARE(documentName(6), QStringLiteral("세금계산서 합계표"));
        QCOMPARE(documentName(7), QString());
    }
    void pdfPrinterIsAlwaysListedLast() {
        test::TestHome home;
        twoPrinters();
        QCOMPARE(printerNames(), (QStringList{kOffice, kInk, QStringLiteral("PDF")}));
        setSystemPrintersForTesting({}, QString());
        QCOMPARE(printerNames(), QStringList{QStringLiteral("PDF")});
    }
    void defaultPrinterIsNamedOrMissing() {
        test::TestHome home;
        twoPrinters();
        QCOMPARE(GetDefaultPrinter(), kOffice);
        setSystemPrintersForTesting({kInk}, QStringLiteral("  "));
        QCOMPARE(GetDefaultPrinter(), QStringLiteral("기본프린터가 없음"));
    }
    void withoutAnyPrinterThePdfPrinterIsCurrent() {
        test::TestHome home;
        setSystemPrintersForTesting({}, QString());
        QCOMPARE(GetDefaultPrinter(), QStringLiteral("기본프린터가 없음"));
        QCOMPARE(currentPrinterName(), QStringLiteral("PDF"));
    }
    void withNoPrinterChosenForADocumentPrintGoesToTheCurrentPrinterWhichStaysCurrent() {
        test::TestHome home;
        twoPrinters();
        setCurrentPrinter(kInk);
        PrintCapture capture;
        SelectDocPrinter(QStringLiteral("세금계산서"));
        QCOMPARE(currentPrinterName(), kInk);
        auto job = startPrintJob(QStringLiteral("세금계산서"));
        job->endDoc();
        RestorePrinter();
        QCOMPARE(capture.last().printerName, kInk);
        QCOMPARE(currentPrinterName(), kInk);
        QCOMPARE(SavedPrinterIndex(), 1);
    }
    void documentPrinterIsReadUnderTheSecondApplicationName() {
        test::TestHome home;
        twoPrinters();
        SaveSetting(QStringLiteral("브란토2"), QStringLiteral("Drive"), QStringLiteral("거래명세표"), kInk);
        PrintCapture capture;
        SelectDocPrinter(QStringLiteral("거래명세표"));
        QCOMPARE(currentPrinterName(), kInk);
        startPrintJob(QStringLiteral("거래명세표"))->endDoc();
        QCOMPARE(capture.last().printerName, kInk);
        RestorePrinter();
        QCOMPARE(currentPrinterName(), kOffice);
    }
    void printerNameIsWrittenWhereSelectDocPrinterDoesNotReadIt() {
        test::TestHome home;
        twoPrinters();
        saveDocPrinter(0, kInk);
        QCOMPARE(
            GetSetting(QStringLiteral("세금계산서"), QStringLiteral("Drive"), QStringLiteral("세금계산서")),
            kInk);
        QCOMPARE(GetSetting(QStringLiteral("브란토2"), QStringLiteral("Drive"), QStringLiteral("세금계산서")),
                 QString());
        SelectDocPrinter(QStringLiteral("세금계산서"));
        QCOMPARE(currentPrinterName(), kOffice);
    }
    void statementPrinterIsWrittenUnderItsOwnApplicationName() {
        test::TestHome home;
        saveDocPrinter(1, kInk);
        QCOMPARE(
            GetSetting(QStringLiteral("거래명세표"), QStringLiteral("Drive"), QStringLiteral("거래명세표")),
            kInk);
        QCOMPARE(savedDocPrinter(1), kInk);
        saveDocPrinter(2, kInk);
        QCOMPARE(savedDocPrinter(2), QString());
        QCOMPARE(GetSetting(QStringLiteral("DM인쇄"), QStringLiteral("Drive"), QStringLiteral("DM인쇄")),
                 QString());
    }
    void removedPrinterFailsTheMatchSilently() {
        test::TestHome home;
        twoPrinters();
        SaveSetting(QStringLiteral("브란토2"), QStringLiteral("Drive"), QStringLiteral("세금계산서"),
                    QStringLiteral("치운 프린터"));
        auto& msgs = test::script();
        SelectDocPrinter(QStringLiteral("세금계산서"));
        QCOMPARE(currentPrinterName(), kOffice);
        QVERIFY(msgs.records().empty());
    }
    void restorePrinterPutsBackThePrinterOfTheLastSelection() {
        test::TestHome home;
        twoPrinters();
        SaveSetting(QStringLiteral("브란토2"), QStringLiteral("Drive"), QStringLiteral("세금계산서"),
                    QStringLiteral("PDF"));
        setCurrentPrinter(kInk);
        SelectDocPrinter(QStringLiteral("세금계산서"));
        QCOMPARE(currentPrinterName(), QStringLiteral("PDF"));
        QCOMPARE(SavedPrinterIndex(), 1);
        RestorePrinter();
        QCOMPARE(currentPrinterName(), kInk);
    }
    void pdfPrinterWritesTheSheetUnderTheApplicationFolderAndSaysWhere() {
        test::TestHome home;
        setSystemPrintersForTesting({}, QString());
        auto& msgs = test::script();
        auto job = startPrintJob(QStringLiteral("세금계산서"));
        QVERIFY(job);
        PrinterPrepare(*job);
        job->printAtTab(3, 84, QStringLiteral("1 0 0 0 0 1"));
        QVERIFY(job->endDoc());
        const QStringList files =
            QDir(home.file(QStringLiteral("Print"))).entryList({QStringLiteral("*.pdf")});
        QCOMPARE(files.size(), 1);
        QVERIFY(files.first().startsWith(QStringLiteral("세금계산서-")));
        const QString path = home.file(QStringLiteral("Print/") + files.first());
        QVERIFY(QFileInfo(path).size() > 0);
        QCOMPARE(msgs.boxes().size(), std::size_t(1));
        QCOMPARE(msgs.last().title, QStringLiteral("PDF 인쇄"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("인쇄한 내용을 PDF 파일로 저장했습니다.\n") + QDir::toNativeSeparators(path));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
    }
    void aPrinterThatCannotBeOpenedStartsNoJobAndSaysSo() {
        test::TestHome home;
        setSystemPrintersForTesting({QStringLiteral("없는 프린터")}, QStringLiteral("없는 프린터"));
        auto& msgs = test::script();
        QVERIFY(!startPrintJob(QStringLiteral("세금계산서")));
        QCOMPARE(msgs.boxes().size(), std::size_t(1));
        QCOMPARE(msgs.last().text, QStringLiteral("프린터를 열지 못했습니다.\n없는 프린터"));
        QCOMPARE(msgs.last().title, QStringLiteral("인쇄"));
        QCOMPARE(msgs.last().buttons, int(MbExclamation));
    }
    void captureWithoutAJobHasAnEmptyLastRecord() {
        PrintCapture capture;
        QVERIFY(capture.jobs().empty());
        QVERIFY(capture.last().texts.empty());
        QVERIFY(capture.last().printerName.isEmpty());
    }
    void twoPdfPrintsInOneSecondKeepBothFiles() {
        test::TestHome home;
        setSystemPrintersForTesting({}, QString());
        test::script();
        startPrintJob(QStringLiteral("거래명세표"))->endDoc();
        startPrintJob(QStringLiteral("거래명세표"))->endDoc();
        QCOMPARE(QDir(home.file(QStringLiteral("Print"))).entryList({QStringLiteral("*.pdf")}).size(), 2);
    }
};

NB_TEST_MAIN(TestPrinterSetup)
#include "tst_printer_setup.moc"
