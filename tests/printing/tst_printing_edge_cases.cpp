// Print set-up edge cases beside the main printing tests: saved margins carried through a real
// print job, and a printer chosen for one document that leaves another document's print alone.
#include "TestSupport.h"
#include "core/Settings.h"
#include "printing/FrmMargin.h"
#include "printing/PrintGrid.h"
#include "printing/PrinterSetup.h"

#include <QApplication>
#include <QLineEdit>

using namespace nb;

namespace {

const QString kOffice = QStringLiteral("사무실 레이저");
const QString kInk = QStringLiteral("잉크젯 B");

// Prints one text at the row and tab on the current printer for the document, with the
// document's saved margins, as the document prints do.
const PrintedText& printOne(PrintCapture& capture, const QString& document, double row, double tab) {
    auto job = startPrintJob(document);
    PrinterPrepare(*job);
    job->setMargins(readDocumentMargins(document));
    job->printAtTab(row, tab, QStringLiteral("공급가액"));
    job->endDoc();
    return capture.last().texts.front();
}

} // namespace

class TestPrintingEdgeCases : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void negativeLeftMarginPrintsLeftOfTheSheetOriginInAJob() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("LeftMargin"),
                    QStringLiteral("-2"));
        PrintCapture capture;
        const PrintedText& t = printOne(capture, QStringLiteral("세금계산서"), 0, 1);
        QCOMPARE(t.x, -2 * printColumnWidth(kBasePrintSize));
        QVERIFY(t.x < 0);
    }
    void topMarginOfOneAndAHalfPrintsAQuarterInchLowerInAJob() {
        test::TestHome home;
        PrintCapture capture;
        const double plainY = printOne(capture, QStringLiteral("거래명세표"), 3, 1).y;
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("TopMargin"),
                    QStringLiteral("1.5"));
        const double shiftedY = printOne(capture, QStringLiteral("거래명세표"), 3, 1).y;
        QCOMPARE(shiftedY - plainY, 0.25);
    }
    void printerOfAnotherDocumentLeavesThisDocumentOnTheCurrentPrinter() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        SaveSetting(kPrinterReadApp, kPrinterSection, QStringLiteral("세금계산서"), kInk);
        PrintCapture capture;
        SelectDocPrinter(QStringLiteral("거래명세표"));
        startPrintJob(QStringLiteral("거래명세표"))->endDoc();
        RestorePrinter();
        QCOMPARE(capture.last().printerName, kOffice);
        QCOMPARE(currentPrinterName(), kOffice);
    }
    void marginFormOfADocumentWithNoneShowsZeroAfterAnotherWasSaved() {
        test::TestHome home;
        QVERIFY(saveMarginTexts(0, MarginTexts{QStringLiteral("-1.5"), QStringLiteral("-3")}));
        FrmMargin invoice;
        invoice.InitForm(0);
        invoice.show();
        QApplication::processEvents();
        QCOMPARE(invoice.TxtTop->text(), QStringLiteral("-1.5"));
        QCOMPARE(invoice.TxtLeft->text(), QStringLiteral("-3"));
        FrmMargin statement;
        statement.InitForm(1);
        statement.show();
        QApplication::processEvents();
        QCOMPARE(statement.TxtTop->text(), QStringLiteral("0"));
        QCOMPARE(statement.TxtLeft->text(), QStringLiteral("0"));
    }
};

NB_TEST_MAIN(TestPrintingEdgeCases)
#include "tst_printing_edge_cases.moc"
