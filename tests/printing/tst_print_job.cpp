// A print job as the recorder sees it: text at rows and tabs in the font in force, CurrentX and
// CurrentY, pictures, lines and pages, in inches.
#include "TestSupport.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

using namespace nb;

namespace {

struct RecordedJob {
    std::shared_ptr<PrintRecord> record = std::make_shared<PrintRecord>();
    PrintJob job{std::make_unique<RecordingSurface>(record)};
};

} // namespace

class TestPrintJob : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void printerPrepareSetsTheBaseFont() {
        RecordedJob r;
        r.job.setFontName(QStringLiteral("돋움체"));
        r.job.setFontSize(14);
        r.job.setForeColor(Qt::red);
        PrinterPrepare(r.job, true);
        QCOMPARE(r.job.font().name, QStringLiteral("굴림체"));
        QCOMPARE(r.job.font().size, 9.75);
        QCOMPARE(r.job.font().color, QColor(Qt::black));
    }
    void setPrintRowPutsCurrentYAtTheRowUnderTheTopMargin() {
        RecordedJob r;
        r.job.setMargins(0, 2);
        SetPrintRow(r.job, 10);
        QCOMPARE(r.job.currentY(), 2.0);
        r.job.setMargins(0, -0.5);
        SetPrintRow(r.job, 1);
        QCOMPARE(r.job.currentY(), 0.5 / 6);
    }
    void textAtRowAndTabCarriesItsFontAndPosition() {
        RecordedJob r;
        PrinterPrepare(r.job);
        r.job.setMargins(3, 1);
        r.job.setFontSize(11);
        r.job.setFontBold(true);
        r.job.setForeColor(QColor(0, 0, 255));
        r.job.printAtTab(3, 84, QStringLiteral("1 0 0 0 0 1"));
        QCOMPARE(int(r.record->texts.size()), 1);
        const PrintedText& t = r.record->texts.front();
        QCOMPARE(t.text, QStringLiteral("1 0 0 0 0 1"));
        QCOMPARE(t.font.name, QStringLiteral("굴림체"));
        QCOMPARE(t.font.size, 11.0);
        QVERIFY(t.font.bold);
        QCOMPARE(t.font.color, QColor(0, 0, 255));
        QCOMPARE(t.x, (3 + 84 - 1) * 5.5 / 72);
        QCOMPARE(t.y, (1 + 3) / 6.0);
        QCOMPARE(t.page, 1);
    }
    void tabFollowsTheFontSizeInForce() {
        RecordedJob r;
        PrinterPrepare(r.job);
        r.job.setFontSize(7);
        r.job.printAtTab(9, 35, QStringLiteral("주소"));
        r.job.setFontSize(10);
        r.job.printAtTab(9, 25, QStringLiteral("주소"));
        QCOMPARE(r.record->texts[0].x, 34 * 3.5 / 72);
        QCOMPARE(r.record->texts[1].x, 24 * 5.0 / 72);
        QCOMPARE(r.record->textsOnRow(0, 9).size(), std::size_t(2));
    }
    void printAtUsesInchesAndLeavesCurrentXPastTheText() {
        RecordedJob r;
        PrinterPrepare(r.job);
        r.job.setFontSize(10);
        r.job.printAt(1.25, 2.5, QStringLiteral("가A"));
        QCOMPARE(r.record->texts.front().x, 1.25);
        QCOMPARE(r.record->texts.front().y, 2.5);
        QCOMPARE(r.job.currentX(), 1.25 + 3 * 5.0 / 72);
        QCOMPARE(r.job.currentY(), 2.5);
    }
    void barePrintGoesToTheStartOfTheNextLine() {
        RecordedJob r;
        PrinterPrepare(r.job);
        r.job.setFontSize(10);
        r.job.printAt(2, 1, QStringLiteral("x"));
        r.job.print(QString());
        QCOMPARE(r.job.currentX(), 0.0);
        QCOMPARE(r.job.currentY(), 1 + 12.0 / 72);
        QCOMPARE(int(r.record->texts.size()), 1);
    }
    void printTabUsesTheCurrentRow() {
        RecordedJob r;
        PrinterPrepare(r.job);
        r.job.setRow(18);
        r.job.printTab(12, QStringLiteral("01/02"));
        r.job.printTab(20, QStringLiteral("품목"));
        QCOMPARE(r.record->texts[1].y, 3.0);
        QCOMPARE(r.record->texts[1].x, 19 * 4.875 / 72);
    }
    void transparencyIsKeptWithEachText() {
        RecordedJob r;
        r.job.setFontTransparent(false);
        r.job.printAt(0, 0, QStringLiteral("a"));
        r.job.setFontTransparent(true);
        r.job.printAt(0, 0, QStringLiteral("b"));
        QVERIFY(!r.record->texts[0].font.transparent);
        QVERIFY(r.record->texts[1].font.transparent);
    }
    void picturesAndLinesAreRecordedInInches() {
        RecordedJob r;
        QImage seal(10, 20, QImage::Format_RGB32);
        seal.fill(Qt::red);
        r.job.paintPicture(seal, 3.8, 1.25, 0.7, 0.7);
        r.job.setDrawWidth(2);
        r.job.line(0.5, 5.3125, 7.75, 5.3125, Qt::blue);
        r.job.paintPicture(QImage(), 0, 0, 1, 1); // an empty picture prints nothing
        QCOMPARE(int(r.record->pictures.size()), 1);
        QCOMPARE(r.record->pictures[0].rect, QRectF(3.8, 1.25, 0.7, 0.7));
        QCOMPARE(r.record->pictures[0].image.size(), QSize(10, 20));
        QCOMPARE(int(r.record->lines.size()), 1);
        const PrintedLine& l = r.record->lines[0];
        QCOMPARE(QRectF(QPointF(l.x1, l.y1), QPointF(l.x2, l.y2)),
                 QRectF(QPointF(0.5, 5.3125), QPointF(7.75, 5.3125)));
        QCOMPARE(l.color, QColor(Qt::blue));
        QCOMPARE(l.width, 2);
    }
    void boxIsFourLines() {
        RecordedJob r;
        r.job.box(1, 1, 2, 3);
        QCOMPARE(int(r.record->lines.size()), 4);
        QCOMPARE(r.record->lines[2].x1, 2.0);
        QCOMPARE(r.record->lines[2].y1, 3.0);
    }
    void newPageCountsPagesAndEndDocEndsOnce() {
        RecordedJob r;
        r.job.printAtTab(1, 70, QStringLiteral("- 뒷장있음(1)-"));
        r.job.newPage();
        r.job.printAtTab(1, 1, QStringLiteral("둘째"));
        QCOMPARE(r.record->pages, 2);
        QCOMPARE(r.record->texts[1].page, 2);
        QVERIFY(r.job.endDoc());
        QVERIFY(r.record->finished);
        r.job.printAtTab(2, 1, QStringLiteral("끝난 뒤"));
        QCOMPARE(int(r.record->texts.size()), 2);
    }
    void aJobLeftOpenEndsWhenItGoes() {
        auto record = std::make_shared<PrintRecord>();
        { PrintJob job(std::make_unique<RecordingSurface>(record)); }
        QVERIFY(record->finished);
    }
    void capturedJobsKnowTheirPrinterAndDocument() {
        test::TestHome home;
        setSystemPrintersForTesting({QStringLiteral("사무실 프린터")}, QStringLiteral("사무실 프린터"));
        PrintCapture capture;
        auto job = startPrintJob(QStringLiteral("세금계산서"));
        QVERIFY(job);
        job->printAtTab(5, 30, QStringLiteral("123-45-67890"));
        job->endDoc();
        QCOMPARE(int(capture.jobs().size()), 1);
        QCOMPARE(capture.last().printerName, QStringLiteral("사무실 프린터"));
        QCOMPARE(capture.last().documentName, QStringLiteral("세금계산서"));
        QCOMPARE(capture.last().allTexts(), QStringList{QStringLiteral("123-45-67890")});
    }
};

NB_TEST_MAIN(TestPrintJob)
#include "tst_print_job.moc"
