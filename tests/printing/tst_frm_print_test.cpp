// frmPrintTest: the picture box fills the form, and paints the registered form (or the print
// grid) through the print layer at the screen's resolution.
#include "TestSupport.h"
#include "core/Settings.h"
#include "printing/PrintSurfaces.h"
#include "printing/frmPrintTest.h"

using namespace nb;

class TestFrmPrintTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void pictureFillsTheFormOnResize() {
        test::TestHome home;
        frmPrintTest form;
        form.show();
        form.resize(640, 480);
        QCOMPARE(form.Picture1->geometry(), QRect(0, 0, 640, 480));
        form.resize(500, 700);
        QCOMPARE(form.Picture1->geometry(), QRect(0, 0, 500, 700));
    }
    void printGridShowsRowsAndTabColumns() {
        test::TestHome home;
        auto record = std::make_shared<PrintRecord>();
        PrintJob job(std::make_unique<RecordingSurface>(record));
        drawPrintGrid(job, 0, 1.5);
        QVERIFY(record->find(QStringLiteral("35")));
        QCOMPARE(record->find(QStringLiteral("35"))->y, (1.5 + 35) / 6);
        const PrintedText* tab = record->find(QStringLiteral("61"));
        QVERIFY(tab);
        QCOMPARE(tab->x, 60 * printColumnWidth(kBasePrintSize));
        QCOMPARE(tab->font.size, kBasePrintSize);
        QCOMPARE(int(record->lines.size()), 71 + 13);
    }
    void paintingRunsTheRegisteredFormAtTheTopMargin() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("TopMargin"),
                    QStringLiteral("2"));
        double seenLeft = -1, seenTop = -1;
        setPrintTestDrawer([&](PrintJob& job, double left, double top) {
            seenLeft = left;
            seenTop = top;
            job.line(0.5, 0.5, 7.75, 0.5, Qt::red);
            job.printAtTab(3, 16, QStringLiteral("거래명세표"));
        });
        frmPrintTest form;
        form.show();
        form.resize(700, 400);
        QImage shot = form.grab().toImage();
        setPrintTestDrawer({});
        QCOMPARE(seenLeft, 0.0);
        QCOMPARE(seenTop, 2.0);
        const int y = int(0.5 * form.Picture1->logicalDpiY());
        QCOMPARE(shot.pixelColor(200, y).red(), 255);
        QVERIFY(shot.pixelColor(200, y).green() < 64);
    }
    void screenShowsThePrintGrid() {
        test::TestHome home;
        frmPrintTest form;
        form.show();
        form.resize(820, 520);
        const QImage shot = form.grab().toImage();
        test::saveScreenshot(&form, QStringLiteral("frm_print_test"));
        // A grid line lies on row 6 (one inch down) and the paper around it is white.
        const int inch = form.Picture1->logicalDpiY();
        QVERIFY(shot.pixelColor(300, inch) != QColor(Qt::white));
        QCOMPARE(shot.pixelColor(300, inch + inch / 12), QColor(Qt::white));
    }
};

NB_TEST_MAIN(TestFrmPrintTest)
#include "tst_frm_print_test.moc"
