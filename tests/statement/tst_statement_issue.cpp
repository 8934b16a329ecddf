// The statement's roads to paper from the screen: the issue button with its question, the
// document's printer and margins, plain paper with the form, the preview of exactly what would
// print, the preview of the invoice with the number it would take, and the print test's form.
#include "DealListKit.h"
#include "common/text/ByteText.h"
#include "core/Settings.h"
#include "invoice/InvoiceIssue.h"
#include "printing/PrintPreview.h"
#include "printing/PrinterSetup.h"
#include "printing/frmPrintTest.h"
#include "statement/StatementIssue.h"
#include "statement/StatementScreens.h"

#include <QCheckBox>
#include <QPrintPreviewDialog>
#include <QPushButton>

using namespace nb;

namespace {

// The screen on a store with one statement of two lines.
struct Screen : test::DealScreen {
    Screen() {
        test::addDealStatement(
            QStringLiteral("000001"), QStringLiteral("2024-05-09"), QStringLiteral("000001"),
            {{QStringLiteral("볼트"), 3, 1100, 3000, 300}, {QStringLiteral("너트"), 2, 1000, 2000, 200}});
    }
    FrmDealList& openOnTheStatement() {
        FrmDealList& f = open();
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, 1);
        return f;
    }
};

QStringList textsOf(const PrintRecord& record) {
    QStringList texts;
    for (const PrintedText& t : record.texts)
        texts << QStringLiteral("%1@%2,%3,%4").arg(t.text).arg(t.x).arg(t.y).arg(t.page);
    return texts;
}

} // namespace

class TestStatementIssue : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theIssueOfAnEmptyStatementSaysThereIsNothingToIssue() {
        Screen s;
        auto& msgs = test::script();
        PrintCapture capture;
        FrmDealList& f = s.open();
        f.btnPrint->click();
        QCOMPARE(msgs.last().text, QStringLiteral("발행할 내역이 없습니다."));
        QVERIFY(capture.jobs().empty());
    }

    void theIssueAsksAndPrintsOnTheStatementsOwnMargins() {
        Screen s;
        auto& msgs = test::script();
        PrintCapture capture;
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("LeftMargin"),
                    QStringLiteral("4"));
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("TopMargin"),
                    QStringLiteral("1.5"));
        FrmDealList& f = s.openOnTheStatement();
        msgs.answer(AnsNo);
        f.btnPrint->click();
        QCOMPARE(msgs.last().title, QStringLiteral("거래명세표 발행"));
        QCOMPARE(msgs.last().text, QStringLiteral("발행하시겠습니까?"));
        QVERIFY(capture.jobs().empty());
        msgs.answer(AnsYes);
        f.btnPrint->click();
        QCOMPARE(capture.jobs().size(), size_t(1));
        const PrintRecord& job = capture.last();
        QCOMPARE(job.documentName, QStringLiteral("거래명세표"));
        QVERIFY(job.finished);
        const PrintedText* bolt = job.find(QStringLiteral("볼트"));
        QVERIFY(bolt);
        QCOMPARE(bolt->y, printRowY(1.5, 15));
        QCOMPARE(bolt->x, printTabX(4, 9, 10));
        QVERIFY(job.lines.empty()); // the issue prints on paper that carries the form
        QVERIFY(job.find(PadBytes(QStringLiteral("\\5,500"), 14)));
    }

    void plainPaperPrintsTheFormWithTheValuesAndTheCheckIsKept() {
        Screen s;
        auto& msgs = test::script();
        PrintCapture capture;
        FrmDealList& f = s.openOnTheStatement();
        QVERIFY(!f.chkPrintFrame->isChecked());
        f.chkPrintFrame->click();
        QCOMPARE(GetSetting(kAppSection, kEnvSection, kPrintFrameKey), QStringLiteral("1"));
        msgs.answer(AnsYes);
        f.btnPrint->click();
        QVERIFY(!capture.last().lines.empty());
        QVERIFY(capture.last().find(QStringLiteral("거 래 명 세 표")));
        s.form.reset();
        QVERIFY(s.open().chkPrintFrame->isChecked());
    }

    void thePreviewShowsExactlyWhatTheIssueWouldPrintAndAsksNothing() {
        Screen s;
        auto& msgs = test::script();
        PrintCapture capture;
        FrmDealList& f = s.openOnTheStatement();
        msgs.clear();
        f.btnPreview->click();
        QCOMPARE(msgs.records().size(), size_t(0));
        QCOMPARE(capture.jobs().size(), size_t(1));
        QCOMPARE(capture.last().documentName, QStringLiteral("거래명세표 미리보기"));
        const QStringList preview = textsOf(capture.last());
        msgs.answer(AnsYes);
        f.btnPrint->click();
        QCOMPARE(textsOf(capture.last()), preview);
        QVERIFY(!preview.isEmpty());
    }

    void thePreviewWindowPagesThroughTheStatement() {
        Screen s;
        test::script();
        FrmDealList& f = s.openOnTheStatement();
        const StatementPrintData data = f.printData();
        std::unique_ptr<QPrintPreviewDialog> preview(
            makePrintPreview(&f, kStatementDocument, [data](PrintJob& job) {
                PrinterPrepare(job);
                Print_Data_Ink1B(job, data, true);
            }));
        preview->resize(900, 700);
        preview->show();
        QTest::qWait(100);
        QCOMPARE(preview->windowTitle(), QStringLiteral("거래명세표 미리보기"));
        test::saveScreenshot(preview.get(), QStringLiteral("print_preview"));
        preview->close();
    }

    void theInvoicePreviewShowsTheNumberItWouldTakeAndStoresNothing() {
        Screen s;
        auto& msgs = test::script();
        PrintCapture capture;
        test::addInvoiceRow(QStringLiteral("100005"), QStringLiteral("000001"), QStringLiteral("앵글"), 50000,
                            5000);
        FrmTax tax;
        test::showActive(&tax);
        test::chooseReceiver(tax, QStringLiteral("가나"));
        tax.pummok(0)->setFocus();
        test::typeText(tax.pummok(0), QStringLiteral("볼트"));
        test::enter(tax.pummok(0));
        const int rowsBefore = test::invoiceRows();
        msgs.clear();
        tax.btnPreview->click();
        QCOMPARE(msgs.boxes().size(), size_t(0));
        QCOMPARE(capture.last().documentName, QStringLiteral("세금계산서 미리보기"));
        QVERIFY(capture.last().find(QStringLiteral("1 0 0 0 0 6")));
        QCOMPARE(test::invoiceRows(), rowsBefore);
        QCOMPARE(tax.txtSeq->text(), QStringLiteral("000-000")); // the screen keeps its own
        QVERIFY(!tax.pummok(0)->text().isEmpty());
    }

    void thePrintTestDrawsTheStatementsForm() {
        test::TestHome home;
        test::script();
        registerStatementScreens();
        frmPrintTest form;
        form.resize(800, 1100);
        form.show();
        QTest::qWait(50);
        const QImage shot = form.grab().toImage();
        int red = 0, blue = 0;
        for (int y = 0; y < shot.height(); y += 2)
            for (int x = 0; x < shot.width(); x += 2) {
                const QColor c = shot.pixelColor(x, y);
                if (c.red() > 200 && c.green() < 80 && c.blue() < 80) ++red;
                if (c.blue() > 200 && c.red() < 80 && c.green() < 80) ++blue;
            }
        QVERIFY(red > 100);
        QVERIFY(blue > 100);
        test::saveScreenshot(&form, QStringLiteral("print_test_statement_form"));
        setPrintTestDrawer({});
    }
};

NB_TEST_MAIN(TestStatementIssue)
#include "tst_statement_issue.moc"
