// The quotation on A4: the total line, the layout per decimal setting, every field where the
// layout puts it (recorder), pages and their numbers, the printer and margins of the document,
// the PDF read back with pdftotext -bbox, and the print from the screen with its edge cases.
#include "EstimateScreenKit.h"
#include "FailureInjection.h"
#include "PdfRead.h"
#include "common/text/ByteText.h"
#include "core/Settings.h"
#include "invoice/InvoiceSeal.h"
#include "printing/PrintGrid.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"
#include "quotation/QuotationIssue.h"

#include <QFile>
#include <QProcess>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace nb;
using test::bboxOf;
using test::pagePng;
using test::wordAt;

namespace {

void addSupplierAndTrader() {
    test::addSupplier({QStringLiteral("123-45-67890"), QStringLiteral("하르문상사"), QStringLiteral("홍길동"),
                       QStringLiteral("서울시 중구 을지로 1"), QStringLiteral("02-123-4567"),
                       QStringLiteral("02-123-4568"), QStringLiteral("도소매"), QStringLiteral("철물")});
    test::addTraderRow(QStringLiteral("000001"),
                       {QStringLiteral("234-56-78901"), QStringLiteral("가나철강"), QStringLiteral("김철수"),
                        QStringLiteral("부산시 동구 중앙대로 1"), QStringLiteral("051-234-5678"),
                        QStringLiteral("051-234-5679"), QStringLiteral("제조"), QStringLiteral("강판")});
}

// A stored quotation of `count` lines, the second at 1.5 each.
void addStoredQuotation(int count = 3) {
    QVERIFY(test::openQuotationStores());
    addSupplierAndTrader();
    QVERIFY(test::exec(
        stores().dbEstimate,
        QStringLiteral("INSERT INTO EstiBase VALUES ('202405001', '000001', '가나철강', '2024-05-10', "
                       "'2024-05-31', '사무용품 일체', 1000000, '일금 일백만 원정', 0, '김과장', "
                       "'4개월', '현금')")));
    for (int i = 1; i <= count; ++i)
        QVERIFY(test::addEstiLine(i, QStringLiteral("202405001"), QStringLiteral("품목%1").arg(i),
                                  i == 2 ? 1.5 : i, 1000, QStringLiteral("EA"),
                                  QStringLiteral("규격%1").arg(i)));
}

} // namespace

class TestQuotationPrint : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void totalLineJoinsWonSignTotalWordsAndVatRemark() {
        QCOMPARE(totEstiKumText(QStringLiteral("1,000,000 "), QStringLiteral(" 일금 일백만 원정"), false),
                 QStringLiteral("\\1,000,000 (일금 일백만 원정) 부가세별도"));
        QCOMPARE(totEstiKumText(QStringLiteral("2,000"), QStringLiteral(" 일금 이천 원정"), true),
                 QStringLiteral("\\2,000(일금 이천 원정) 부가세포함"));
    }
    void layoutFollowsTheFirstDecimalSetting() {
        QCOMPARE(quotationLayout(0), 0);
        QCOMPARE(quotationLayout(1), 1);
        QCOMPARE(quotationLayout(2), 2);
        QCOMPARE(quotationLayout(7), 2);
        QCOMPARE(quotationNumber(1.5, 0), QStringLiteral("2"));
        QCOMPARE(quotationNumber(1.5, 1), QStringLiteral("1.5"));
        QCOMPARE(quotationNumber(1234.5, 2), QStringLiteral("1,234.50"));
    }
    void linesRunOverAsManyPagesAsTheyNeed() {
        QCOMPARE(quotationPageCount(0), 1);
        QCOMPARE(quotationPageCount(quotationlayout::kFirstPageLines), 1);
        QCOMPARE(quotationPageCount(quotationlayout::kFirstPageLines + 1), 2);
        QCOMPARE(quotationPageCount(quotationlayout::kFirstPageLines + quotationlayout::kNextPageLines + 1),
                 3);
        QuotationPrintData data;
        for (int i = 0; i < 60; ++i)
            data.lines.append({QStringLiteral("품목"), QString(), QStringLiteral("EA"), 1, 100, 100});
        const auto pages = quotationPages(data);
        QCOMPARE(int(pages.size()), 2);
        auto hasText = [](const QuotationPage& page, const QString& text) {
            return std::any_of(page.fields.begin(), page.fields.end(),
                               [&](const QuotationField& f) { return f.text == text; });
        };
        QVERIFY(hasText(pages[0], QStringLiteral("- 1 / 2 -")));
        QVERIFY(hasText(pages[1], QStringLiteral("- 2 / 2 -")));
        QVERIFY(!hasText(pages[1], QStringLiteral("6,000"))); // no sum row under the lines
        QVERIFY(hasText(pages[0], QStringLiteral("견 적 서")));
        QVERIFY(!hasText(pages[1], QStringLiteral("견 적 서")));
    }
    void aNameOrNormLongerThanItsColumnIsCutToItByPrintedWidth() {
        QuotationPrintData data;
        data.lines.append({QStringLiteral("아주아주긴상품명입니다정말로길고긴이름이에요"),
                           QStringLiteral("규격이무척길어요123456"), QStringLiteral("BOX"), 1, 100, 100});
        auto record = std::make_shared<PrintRecord>();
        {
            PrintJob job(std::make_unique<RecordingSurface>(record));
            PrintQuotation(job, data, QImage());
            job.endDoc();
        }
        using namespace quotationlayout;
        const QString name = CutBytes(data.lines[0].name, kNameWidth - 2);
        const QString norm = CutBytes(data.lines[0].norm, kNormWidth - 2);
        QVERIFY(name.size() < data.lines[0].name.size());
        QVERIFY(norm.size() < data.lines[0].norm.size());
        const PrintedText* n = record->find(name);
        const PrintedText* m = record->find(norm);
        QVERIFY(n && m);
        QVERIFY(n->x + printTextWidth(n->text, n->font) < printTabX(0, kNormTab, kBasePrintSize));
        QVERIFY(m->x + printTextWidth(m->text, m->font) < printTabX(0, kUnitTab, kBasePrintSize));
        QVERIFY(!record->find(data.lines[0].name));
    }
    void thePageStatesOneTotalWorkedOutFromTheLines() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addStoredQuotation(2); // 1 x 1,000 and 1.5 x 1,000: the lines hold 2,500, the total is 3,000
        // A head saved with 0 before its lines were typed.
        QVERIFY(test::exec(stores().dbEstimate,
                           QStringLiteral("UPDATE EstiBase SET EstiKum = 0, EstiHanKum = '', Vat = -1")));
        app().DecimalQty = 1;
        const auto data = ReadQuotationPrintData(QStringLiteral("202405001"));
        QVERIFY(data);
        QCOMPARE(data->TotEstiKum, QStringLiteral("\\3,000 (일금 삼천 원정) 부가세포함"));
        PrintCapture capture;
        QVERIFY(PrintQuotationJob(*data));
        const PrintRecord& r = capture.last();
        QVERIFY(r.find(data->TotEstiKum));
        QVERIFY(r.find(QStringLiteral("1,500")));  // the line's own amount
        QVERIFY(!r.find(QStringLiteral("2,500"))); // no sum of the line amounts beside the total
        QVERIFY(!r.find(QStringLiteral("합    계")));
        for (const PrintedText& t : r.texts)
            QVERIFY2(!t.text.startsWith(QStringLiteral("\\0")), qPrintable(t.text));
    }
    void recorderHasEveryFieldAtItsRowTabAndFontUnderTheDocumentsMargins() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addStoredQuotation();
        app().DecimalQty = 1;
        SaveSetting(kAppSection, kQuotationDocument, QStringLiteral("LeftMargin"), QStringLiteral("2"));
        SaveSetting(kAppSection, kQuotationDocument, QStringLiteral("TopMargin"), QStringLiteral("1.5"));
        const auto data = ReadQuotationPrintData(QStringLiteral("202405001"));
        QVERIFY(data);
        // Worked out from the lines (1,000 + 1.5 rounded to 2 at 1,000 + 3,000), not the stored
        // 1,000,000 of the head.
        QCOMPARE(data->TotEstiKum, QStringLiteral("\\6,000 (일금 육천 원정) 부가세별도"));
        QCOMPARE(data->Phone, QStringLiteral("051-234-5678"));
        QCOMPARE(data->ClientFax, QStringLiteral("051-234-5679"));
        QCOMPARE(data->supplier.company, QStringLiteral("하르문상사"));
        PrintCapture capture;
        QVERIFY(PrintQuotationJob(*data));
        const PrintRecord& r = capture.last();
        QCOMPARE(r.documentName, QStringLiteral("견적서"));
        QVERIFY(r.finished);
        const auto at = [&](const QString& text) { return r.find(text); };
        const auto expectAt = [&](const QString& text, double row, double tab, double size, bool bold) {
            const PrintedText* t = at(text);
            QVERIFY2(t, qPrintable(text));
            QCOMPARE(t->font.size, size);
            QCOMPARE(t->font.bold, bold);
            QVERIFY2(std::abs(t->y - (1.5 + row) / 6) < 1e-9, qPrintable(text));
            QVERIFY2(std::abs(t->x - printTabX(2, tab, kBasePrintSize)) < 1e-9, qPrintable(text));
        };
        expectAt(QStringLiteral("아래와 같이 견적합니다."), 21, 6, kBasePrintSize, false);
        expectAt(data->TotEstiKum, 23, 22, 11, true);
        expectAt(QStringLiteral("견적번호 : 202405001"), 8, 6, kBasePrintSize, false);
        expectAt(QStringLiteral("가나철강"), 11.5, 6, 14, true);
        expectAt(QStringLiteral("귀하"), 11.5, 44, 14, true);
        expectAt(QStringLiteral("참    조 : 김과장"), 14.5, 6, kBasePrintSize, false);
        expectAt(QStringLiteral("전    화 : 051-234-5678"), 16, 6, kBasePrintSize, false);
        expectAt(QStringLiteral("123-45-67890"), 7.5, 72, kBasePrintSize, false);
        expectAt(QStringLiteral("홍길동"), 11.5, 72, kBasePrintSize, false);
        expectAt(QStringLiteral("품목1"), 27, 7, kBasePrintSize, false);
        expectAt(QStringLiteral("규격2"), 28, 43, kBasePrintSize, false);
        expectAt(QStringLiteral("납품예정일 : 2024년 05월 31일"), 57, 8, kBasePrintSize, false);
        expectAt(QStringLiteral("유효기간 : 4개월"), 58.5, 8, kBasePrintSize, false);
        expectAt(QStringLiteral("지불조건 : 현금"), 60, 8, kBasePrintSize, false);
        // Numbers stand right-aligned in their columns: the quantity 1.5 ends where its column ends.
        const PrintedText* qty = at(QStringLiteral("1.5"));
        QVERIFY(qty);
        const double right =
            printTabX(2, quotationlayout::kQtyTab + quotationlayout::kQtyWidth - 1, kBasePrintSize);
        QVERIFY(std::abs(qty->x + printTextWidth(QStringLiteral("1.5"), qty->font) - right) < 1e-9);
        QVERIFY(at(QStringLiteral("- 1 / 1 -")));
        QVERIFY(!r.lines.empty());
    }
    void quotationPrintsOnItsOwnPrinterAndThePreviousOneComesBack() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addStoredQuotation();
        setSystemPrintersForTesting({QStringLiteral("사무실"), QStringLiteral("견적용")},
                                    QStringLiteral("사무실"));
        SaveSetting(kPrinterReadApp, kPrinterSection, kQuotationDocument, QStringLiteral("견적용"));
        PrintCapture capture;
        QVERIFY(PrintQuotationJob(*ReadQuotationPrintData(QStringLiteral("202405001"))));
        QCOMPARE(capture.last().printerName, QStringLiteral("견적용"));
        QCOMPARE(currentPrinterName(), QStringLiteral("사무실"));
        QCOMPARE(documentName(5), kQuotationDocument);
    }
    void sealStandsBesideTheRepresentative() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addStoredQuotation();
        QImage seal(40, 40, QImage::Format_RGB32);
        seal.fill(Qt::red);
        QVERIFY(seal.save(home.file(QStringLiteral("seal.png"))));
        saveSealSetting(home.file(QStringLiteral("seal.png")));
        PrintCapture capture;
        QVERIFY(PrintQuotationJob(*ReadQuotationPrintData(QStringLiteral("202405001"))));
        QCOMPARE(int(capture.last().pictures.size()), 1);
    }
    void threeLayoutsToPdfReadBackByPosition() {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()) QSKIP("pdftotext missing");
        const char* expected[] = {"2", "1.5", "1.50"};
        for (int layout = 0; layout < 3; ++layout) {
            test::TestHome home;
            QVERIFY(test::openStores());
            addStoredQuotation();
            SaveEnv(QStringLiteral("chk소수점1"), QString::number(layout));
            const QString pdf = home.file(QStringLiteral("q.pdf"));
            QString reason;
            QCOMPARE(PrintStoredQuotationToPdf(QStringLiteral("202405001"), pdf, &reason), 0);
            const QString html = bboxOf(pdf);
            for (const char* word :
                 {"견", "적", "서", "귀하", "하르문상사", "아래와", "품목1", "규격3", "4개월", "현금"})
                QVERIFY2(html.contains(QString::fromUtf8(word)), word);
            // The quantity of line 2 in the layout's places, right-aligned in its column on row 28.
            const QPointF qty = wordAt(html, QString::fromUtf8(expected[layout]));
            QVERIFY2(qty.x() > 0, expected[layout]);
            QVERIFY2(std::abs(qty.y() - 28 / 6.0 * 72) < 0.6, qPrintable(QString::number(qty.y())));
            // 품목1 at Tab 7 of row 27: 6 columns of 4.875 points.
            const QPointF name = wordAt(html, QStringLiteral("품목1"));
            QVERIFY(std::abs(name.x() - 6 * 4.875) < 0.6);
            QVERIFY(std::abs(name.y() - 27 / 6.0 * 72) < 0.6);
            pagePng(pdf, 1, QStringLiteral("quotation_print_%1").arg(layout));
            QVERIFY(
                QFile::exists(test::screenshotDir() + QStringLiteral("/quotation_print_%1.png").arg(layout)));
        }
    }
    void secondPageCarriesTheRestOfTheLinesAndItsNumber() {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()) QSKIP("pdftotext missing");
        test::TestHome home;
        QVERIFY(test::openStores());
        addStoredQuotation(40);
        const QString pdf = home.file(QStringLiteral("q.pdf"));
        QString reason;
        QCOMPARE(PrintStoredQuotationToPdf(QStringLiteral("202405001"), pdf, &reason), 0);
        const QString html = bboxOf(pdf);
        QCOMPARE(html.count(QStringLiteral("<page ")), 2);
        QVERIFY(wordAt(html, QStringLiteral("품목26"), 1).x() > 0);
        QVERIFY(wordAt(html, QStringLiteral("품목27"), 2).x() > 0);
        QVERIFY(std::abs(wordAt(html, QStringLiteral("품목27"), 2).y() - 8 / 6.0 * 72) < 0.6);
        QVERIFY(wordAt(html, QStringLiteral("2"), 2).x() > 0);
        pagePng(pdf, 2, QStringLiteral("quotation_print_page2"));
    }
    void missingQuotationGivesAReasonAndNoFile() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString pdf = home.file(QStringLiteral("none.pdf"));
        QString reason;
        QVERIFY(PrintStoredQuotationToPdf(QStringLiteral("209901001"), pdf, &reason) != 0);
        QVERIFY(reason.contains(QStringLiteral("209901001")));
        QVERIFY(!reason.contains(u'\n'));
        QVERIFY(!QFile::exists(pdf));
    }
    void withTraderButNoLineStepTwoMessageShowsAndNothingPrints() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        test::chooseTrader(f, QStringLiteral("가나"));
        PrintCapture capture;
        f.txtinput[1]->setFocus();
        test::keyHere(Qt::Key_F10);
        QCOMPARE(s.last().text,
                 QStringLiteral("등록된 견적 내역이 없습니다. 견적 내역을 등록하신 후 인쇄를 하십시요."));
        QVERIFY(capture.jobs().empty());
    }
    void linesWhoseHeadWasNeverStoredPrintWithTheHeadOnTheScreen() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        test::chooseTrader(f, QStringLiteral("가나"));
        s.answer(AnsNo); // 입력하신 내용을 저장하시겠습니까?
        s.answer(AnsNo); // 새로운 거래처로 등록하시겠습니까?
        f.grdEstimate->setFocus();
        f.grdEstimate->SetActiveCell(ColPName, 1);
        test::lookupLog().chooseOnShow = QStringLiteral("000001");
        test::enterHere();
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase")), 0);
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate")), 1);
        PrintCapture capture;
        f.btnPrint_Click();
        QVERIFY(capture.last().find(QStringLiteral("볼트")));
        QVERIFY(capture.last().find(QStringLiteral("가나철강")));
        QVERIFY(capture.last().find(QStringLiteral("하르문상사")));
    }
    void withoutTraderPrintDoesNothing() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        PrintCapture capture;
        f.btnPrint_Click();
        QVERIFY(capture.jobs().empty());
        QVERIFY(s.records().empty());
    }
    void failedTraderQueryShowsTheQueryBoxAndStopsThePrintOnly() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        test::chooseTrader(f, QStringLiteral("가나"));
        QVERIFY(test::hideTable(stores().dbBasic, QStringLiteral("Trader")));
        PrintCapture capture;
        f.btnPrint_Click();
        QCOMPARE(int(s.boxes().size()), 1);
        QVERIFY(capture.jobs().empty());
        QVERIFY(f.isVisible());
    }
    void printFromTheScreenByKeysInEachLayout_data() {
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("typed"); // a quantity box of 0 places takes no decimal point
        QTest::addColumn<QString>("quantity");
        QTest::addColumn<QString>("price");
        QTest::newRow("0 places") << 0 << QStringLiteral("2") << QStringLiteral("2")
                                  << QStringLiteral("1,000");
        QTest::newRow("1 place") << 1 << QStringLiteral("1.5") << QStringLiteral("1.5")
                                 << QStringLiteral("1,000.0");
        QTest::newRow("2 places") << 2 << QStringLiteral("1.5") << QStringLiteral("1.50")
                                  << QStringLiteral("1,000.00");
    }
    void printFromTheScreenByKeysInEachLayout() {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()) QSKIP("pdftotext missing");
        QFETCH(int, decimals);
        QFETCH(QString, typed);
        QFETCH(QString, quantity);
        QFETCH(QString, price);
        test::EstimateScreen screen(decimals);
        setSystemPrintersForTesting({}, QString()); // the PDF printer only
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        test::chooseTrader(f, QStringLiteral("가나"));
        s.answer(AnsYes);
        f.grdEstimate->setFocus();
        test::lookupLog().chooseOnShow = QStringLiteral("000001");
        test::enterHere();
        test::enterHere();
        test::typeCell(f.grdEstimate, typed);
        QCOMPARE(f.txtinput[3]->text(), QStringLiteral("2,000 "));
        f.OptVat[0]->setChecked(true);
        s.clear();
        test::keyHere(Qt::Key_F10);
        QCOMPARE(s.last().title, QStringLiteral("PDF 인쇄"));
        const QString path = s.last().text.section(u'\n', 1);
        QVERIFY2(path.contains(QStringLiteral("견적서")), qPrintable(path));
        const QString html = bboxOf(path);
        // The screen's total line, the quantity and price of line 1 on row 27 in the layout's places.
        // The backslash of the total prints as the won sign, at Tab 22 of row 23.
        const QPointF total = wordAt(html, QStringLiteral("₩2,000"));
        QVERIFY(std::abs(total.x() - 21 * 4.875) < 0.6);
        QVERIFY(std::abs(total.y() - 23 / 6.0 * 72) < 0.6);
        QVERIFY(wordAt(html, QStringLiteral("(일금")).x() > total.x());
        QVERIFY(html.contains(QStringLiteral("부가세포함")));
        const QPointF qty = wordAt(html, quantity);
        QVERIFY2(std::abs(qty.y() - 27 / 6.0 * 72) < 0.6, qPrintable(quantity));
        const QPointF unitPrice = wordAt(html, price);
        QVERIFY2(std::abs(unitPrice.y() - 27 / 6.0 * 72) < 0.6, qPrintable(price));
        QVERIFY(unitPrice.x() > qty.x());
        QCOMPARE(f.grdEstimate->ActiveRow(), 1);
        QVERIFY(f.grdEstimate->EditModePermanent());
    }
};

NB_TEST_MAIN(TestQuotationPrint)
#include "tst_quotation_print.moc"
