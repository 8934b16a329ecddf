// The statement on paper: every field where the layout puts it (recorder: rows, tabs, fonts,
// inches), sheets of 15 lines with "- 뒷장있음(n)-" and the total on the first sheet only, the memo
// rule, the balance and VAT fields, a missing trader, the drawn form under the values, and the
// print read back from a PDF with pdftotext -bbox.
#include "../invoice/InvoiceFixture.h"
#include "PdfRead.h"
#include "common/Messages.h"
#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "core/Settings.h"
#include "printing/PrintGrid.h"
#include "printing/PrinterSetup.h"
#include "statement/StatementFrame.h"
#include "statement/StatementIssue.h"

#include <QFile>

using namespace nb;

namespace {

struct Store {
    test::TestHome home;
    Store() {
        QVERIFY(test::openStores());
        test::addSupplier({QStringLiteral("123-45-67890"), QStringLiteral("하르문상사"),
                           QStringLiteral("홍길동"), QStringLiteral("서울시 중구 을지로 1"),
                           QStringLiteral("02-123-4567"), QStringLiteral("02-123-4568"),
                           QStringLiteral("도소매"), QStringLiteral("철물")});
        test::addTraderRow(QStringLiteral("000001"),
                           {QStringLiteral("234-56-78901"), QStringLiteral("가나철강"),
                            QStringLiteral("김철수"), QStringLiteral("부산시 동구 중앙대로 1"),
                            QStringLiteral("051-234-5678"), QString(), QStringLiteral("제조"),
                            QStringLiteral("강판")});
    }
};

StatementPrintData statementOf(int lineCount) {
    StatementPrintData data;
    data.cCode = QStringLiteral("000001");
    data.dateText = QStringLiteral("2024년05월10일");
    double gong = 0, se = 0;
    for (int i = 1; i <= lineCount; ++i) {
        StatementLine line;
        line.billNo = QStringLiteral("000001");
        line.billSeq = i;
        line.pName = QStringLiteral("품목%1").arg(i);
        line.unit = QStringLiteral("EA");
        line.quant = i;
        line.price = 1100;
        line.amount = 1000.0 * i;
        line.vat = 100.0 * i;
        gong += line.amount;
        se += line.vat;
        data.lines.append(line);
    }
    data.gong = FormatNumber(gong, kMaskSum);
    data.se = FormatNumber(se, kMaskSum);
    data.sum = FormatNumber(gong + se, kMaskSum);
    data.preMisu = QStringLiteral("5,000");
    data.misu = FormatNumber(gong + se + 5000, kMaskSum);
    return data;
}

std::shared_ptr<PrintRecord> printed(const StatementPrintData& data, bool frame = false, int left = 0,
                                     double top = 0) {
    auto record = std::make_shared<PrintRecord>();
    PrintJob job(std::make_unique<RecordingSurface>(record), QStringLiteral("test"), kStatementDocument);
    PrinterPrepare(job);
    job.setMargins(left, top);
    Print_Data_Ink1B(job, data, frame);
    job.endDoc();
    return record;
}

int countText(const PrintRecord& record, const QString& text, int page = 0) {
    int n = 0;
    for (const PrintedText& t : record.texts)
        if (t.text == text && (page == 0 || t.page == page)) ++n;
    return n;
}

const PrintedText* textOn(const PrintRecord& record, const QString& text, int page) {
    for (const PrintedText& t : record.texts)
        if (t.text == text && t.page == page) return &t;
    return nullptr;
}

} // namespace

class TestStatementPrint : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aProductNameLongerThanItsColumnIsCutToItByPrintedWidth() {
        Store store;
        StatementPrintData data = statementOf(2);
        // 1 + 2 x 30 columns with its 규격: far wider than the 45 columns before the unit.
        data.lines[0].pName = u'A' + QString(30, QChar(0xAC00)) + QStringLiteral("(규격이아주긴상품)");
        data.lines[1].pName = QStringLiteral("짧은이름");
        const auto r = printed(data);
        const double unitX = printTabX(0, deallayout::kUnit.tab, deallayout::kHeadSize);
        const QString cut = u'A' + QString(21, QChar(0xAC00)) + u' '; // the straddling Hangul a blank
        QCOMPARE(ByteLen(cut), 44);
        QCOMPARE(countText(*r, cut), 2); // both copies
        for (const PrintedText& t : r->texts) {
            if (!t.text.startsWith(u'A')) continue;
            QVERIFY2(t.x + printTextWidth(t.text, t.font) < unitX, qPrintable(t.text));
        }
        QCOMPARE(countText(*r, QStringLiteral("짧은이름")), 2); // a short name stays whole
        QCOMPARE(countText(*r, CutBytes(QStringLiteral("EA"), 6)), 4);
    }

    void eachFieldOfTheHeadAndALineLandsOnItsRowAndTab() {
        Store s;
        test::script();
        StatementPrintData data = statementOf(1);
        data.printPhone = true;
        data.memo = QStringLiteral("5월분");
        const auto record = printed(data, false, 2, 1.5);
        struct Expect {
            QString text;
            double row;
            int tab;
            double size;
            bool bold;
        };
        const Expect expected[] = {
            {QStringLiteral("2024년05월10일"), 3, 16, 10, false},
            {QStringLiteral("[공급받는자T:051-234-5678]"), 1, 9, 10, false},
            {QStringLiteral("[공급자T:02-123-4567 F:02-123-4568]"), 36, 9, 10, false},
            {QStringLiteral("5월분"), 1, 51, 10, false},
            {QStringLiteral("123-45-67890"), 5, 20, 11, true},
            {QStringLiteral("234-56-78901"), 5, 65, 11, true},
            {QStringLiteral("하르문상사"), 7, 15, 10, false},
            {QStringLiteral("홍길동"), 7, 45, 10, false},
            {QStringLiteral("가나철강"), 7, 63, 10, false},
            {QStringLiteral("김철수"), 7, 95, 10, false},
            {QStringLiteral("서울시 중구 을지로 1"), 9, 15, 10, false},
            {QStringLiteral("부산시 동구 중앙대로 1"), 9, 63, 10, false},
            {QStringLiteral("도소매"), 11, 15, 10, false},
            {QStringLiteral("철물"), 11, 39, 10, false},
            {QStringLiteral("제조"), 11, 63, 10, false},
            {QStringLiteral("강판"), 11, 87, 10, false},
            {QStringLiteral("품목1"), 15, 9, 10, false},
            {QStringLiteral("EA"), 15, 54, 10, false},
            {PadBytes(QStringLiteral("1"), 10), 15, 60, 10, false},
            {PadBytes(QStringLiteral("1,100"), 11), 15, 71, 10, false},
            {PadBytes(QStringLiteral("1,000"), 12), 15, 85, 10, false},
            {PadBytes(QStringLiteral("100"), 12), 15, 99, 10, false},
        };
        for (const Expect& e : expected) {
            const PrintedText* t = record->find(e.text);
            QVERIFY2(t, qPrintable(e.text));
            QCOMPARE(t->font.size, e.size);
            QCOMPARE(t->font.bold, e.bold);
            QVERIFY2(qAbs(t->y - printRowY(1.5, e.row)) < 1e-9, qPrintable(e.text));
            QVERIFY2(qAbs(t->x - printTabX(2, e.tab, e.size)) < 1e-9, qPrintable(e.text));
        }
        QCOMPARE(record->pages, 1);
    }

    void theSealStandsTwiceAtItsOwnTwoRows() {
        Store s;
        test::script();
        StatementPrintData data = statementOf(1);
        data.seal = QImage(20, 20, QImage::Format_RGB32);
        const auto record = printed(data, false, 6, 2.7);
        QCOMPARE(record->pictures.size(), size_t(2));
        QCOMPARE(record->pictures[0].rect, QRectF(6 / 12.0 + 3.5, (2 + 5.5) / 6, 0.7, 0.7));
        QCOMPARE(record->pictures[1].rect, QRectF(6 / 12.0 + 3.5, (2 + 40.6) / 6, 0.7, 0.7));
    }

    void fifteenLinesAreOneSheetWithTheTotal() {
        Store s;
        test::script();
        const auto record = printed(statementOf(15));
        QCOMPARE(record->pages, 1);
        QCOMPARE(countText(*record, QStringLiteral("- 뒷장있음(1)-")), 0);
        QVERIFY(textOn(*record, QStringLiteral("품목15"), 1));
        QCOMPARE(textOn(*record, QStringLiteral("품목15"), 1)->y, printRowY(0, 29));
        const QString gong = PadBytes(QStringLiteral("\\120,000"), 13);
        QCOMPARE(countText(*record, gong), 2);
        const PrintedText* total = record->find(gong);
        QCOMPARE(total->x, 0.5 + 0.6);
        QCOMPARE(total->y, printRowY(0, 30));
        QCOMPARE(total->font.size, 11.0);
        QVERIFY(total->font.bold);
    }

    void aSixteenthLineOpensASecondSheetAndTheFirstSaysThereIsMore() {
        Store s;
        test::script();
        const auto record = printed(statementOf(16));
        QCOMPARE(record->pages, 2);
        QCOMPARE(countText(*record, QStringLiteral("- 뒷장있음(1)-"), 1), 2);
        const PrintedText* more = textOn(*record, QStringLiteral("- 뒷장있음(1)-"), 1);
        QCOMPARE(more->y, printRowY(0, 1));
        QCOMPARE(more->x, printTabX(0, 70, 10));
        QCOMPARE(textOn(*record, QStringLiteral("품목16"), 2)->y, printRowY(0, 15));
        QVERIFY(textOn(*record, QStringLiteral("하르문상사"), 2)); // the head again on the new sheet
    }

    void thirtyOneLinesAreThreeSheetsWithTheTotalOnTheFirstOnly() {
        Store s;
        test::script();
        const auto record = printed(statementOf(31));
        QCOMPARE(record->pages, 3);
        const QString gong = PadBytes(QStringLiteral("\\496,000"), 13);
        QCOMPARE(countText(*record, gong, 1), 2);
        QCOMPARE(countText(*record, gong), 2);
        QCOMPARE(countText(*record, QStringLiteral("- 뒷장있음(2)-"), 2), 2);
        QVERIFY(textOn(*record, QStringLiteral("품목31"), 3));
    }

    void theHeadIsPrintedOnceForEveryLine() {
        Store s;
        test::script();
        const auto record = printed(statementOf(3));
        QCOMPARE(countText(*record, QStringLiteral("하르문상사")), 3 * 2);
    }

    void aMemoLongerThanTwentyEightColumnsSuppressesTheMoreSheetsNote() {
        Store s;
        test::script();
        StatementPrintData data = statementOf(31);
        data.memo = QStringLiteral("이번 달 납품분은 월말에 한꺼번에 정산합니다");
        QVERIFY(ByteLen(data.memo) > 28);
        const auto record = printed(data);
        QCOMPARE(record->pages, 3);
        QCOMPARE(countText(*record, QStringLiteral("- 뒷장있음(1)-")), 0);
        QCOMPARE(countText(*record, QStringLiteral("- 뒷장있음(2)-")), 0);
    }

    void withTheBalanceCheckOffTheTwoBalanceFieldsPrintNothing() {
        Store s;
        test::script();
        StatementPrintData data = statementOf(2);
        QList<TotalField> fields = totalFields(data, 0);
        QCOMPARE(fields[3].text, PadBytes(QStringLiteral("\\5,000"), 15));
        data.printBalance = false;
        fields = totalFields(data, 0);
        QVERIFY(fields[3].text.isEmpty());
        QVERIFY(fields[4].text.isEmpty());
        QCOMPARE(fields[4].x, 0.5 + 6.0);
    }

    void aVatOfZeroPrintsAnEmptyVatFieldInTheTotal() {
        Store s;
        test::script();
        StatementPrintData data = statementOf(1);
        data.se = QStringLiteral("0");
        const QList<TotalField> fields = totalFields(data, 12);
        QCOMPARE(fields[1].text, QString(14, u' '));
        QCOMPARE(fields[1].x, 1.0 + 0.5 + 2.0);
        data.lines[0].vat = 0;
        QCOMPARE(lineFields(data, data.lines[0], 15)[5].text, QString(12, u' ')); // "#,###" prints no 0
    }

    void withNoTraderRecordThePrintStopsWithTheRunTimeBox() {
        Store s;
        auto& msgs = test::script();
        StatementPrintData data = statementOf(2);
        data.cCode = QStringLiteral("999999");
        auto record = std::make_shared<PrintRecord>();
        PrintJob job(std::make_unique<RecordingSurface>(record), QStringLiteral("test"), kStatementDocument);
        QVERIFY(!Print_Data_Ink1B(job, data, false));
        QCOMPARE(
            msgs.last().text,
            QStringLiteral(
                "Error 3021 (No current record.) in procedure Print_Data_Ink1B_Head of Form FrmDealList"));
        QVERIFY(record->texts.empty());
    }

    void withMarginsZeroTheFormBeginsHalfAnInchInAndTheSecondHalfIsFiveEightyFourLower() {
        Store s;
        test::script();
        auto record = std::make_shared<PrintRecord>();
        PrintJob job(std::make_unique<RecordingSurface>(record), QStringLiteral("test"), kStatementDocument);
        Print_Form_DealList_A4Half(job, 0, 0);
        job.endDoc();
        double left = 99, top = 99;
        for (const PrintedLine& l : record->lines) {
            left = qMin(left, qMin(l.x1, l.x2));
            top = qMin(top, qMin(l.y1, l.y2));
        }
        QCOMPARE(left, 0.5);
        QCOMPARE(top, 0.40875);
        const PrintedText* upper = record->find(QStringLiteral("(공급자 보관용)"));
        const PrintedText* lower = record->find(QStringLiteral("(공급받는자 보관용)"));
        QVERIFY(upper && lower);
        QVERIFY(qAbs(lower->y - upper->y - 5.84) < 1e-9);
        QCOMPARE(upper->font.color, QColor(Qt::red));
        QCOMPARE(lower->font.color, QColor(Qt::blue));
        // Margins move both halves alike.
        auto moved = std::make_shared<PrintRecord>();
        PrintJob job2(std::make_unique<RecordingSurface>(moved), QStringLiteral("test"), kStatementDocument);
        Print_Form_DealList_A4Half(job2, 6, 3);
        job2.endDoc();
        const PrintedText* upper2 = moved->find(QStringLiteral("(공급자 보관용)"));
        const PrintedText* lower2 = moved->find(QStringLiteral("(공급받는자 보관용)"));
        QVERIFY(qAbs(lower2->y - upper2->y - 5.84) < 1e-9);
        QVERIFY(qAbs(upper2->y - upper->y - 0.5) < 1e-9);
        QVERIFY(qAbs(upper2->x - upper->x - 0.5) < 1e-9);
    }

    void theFormsGridPointsFollowTheirTable() {
        const auto y = frameYs(1.0);
        const auto x = frameXs(0.5);
        QCOMPARE(y[2], 1.0 + 5.5 * 0.0625);
        QCOMPARE(y[8], 1.0 + 2.08 + 0.166);
        QCOMPARE(y[22], 1.0 + 2.08 + 0.166 * 15);
        QCOMPARE(y[23], 1.0 + 4 + 14 * 0.0625);
        QCOMPARE(x[16], 0.5 + 4.5);
        QCOMPARE(x[22], x[23]); // two names for one point, as the form has them
        QCOMPARE(x[24], 0.5 + 7 + 4 * 0.0625);
    }

    void aStoredStatementPrintsToAPdfWhoseWordsStandWhereTheLayoutPutsThem() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Store s;
        test::script();
        app().DefaultSerial.clear();
        QList<std::tuple<QString, double, double>> lines;
        for (int i = 1; i <= 17; ++i)
            lines.append({QStringLiteral("품목%1").arg(i), 1000.0 * i, 100.0 * i});
        QVERIFY(test::addStatement(QStringLiteral("000007"), QStringLiteral("2024-04-30"),
                                   QStringLiteral("000001"), lines));
        const QString pdf = s.home.path() + QStringLiteral("/statement.pdf");
        QString reason;
        QCOMPARE(PrintStoredStatementToPdf(QStringLiteral("000007"), pdf, false, &reason), 0);
        const QString html = test::bboxOf(pdf);
        QCOMPARE(test::pdfPages(html), 2);
        const QPointF date = test::allWordsAt(html, QStringLiteral("2024년04월30일")).value(0);
        QVERIFY(qAbs(date.y() / 72 - printRowY(0, 3)) < 0.05);
        QVERIFY(qAbs(date.x() / 72 - printTabX(0, 16, 10)) < 0.05);
        const QPointF first = test::allWordsAt(html, QStringLiteral("품목1")).value(0);
        QVERIFY(qAbs(first.y() / 72 - printRowY(0, 15)) < 0.05);
        QVERIFY(qAbs(first.x() / 72 - printTabX(0, 9, 10)) < 0.05);
        const QPointF lower = test::allWordsAt(html, QStringLiteral("가나철강")).value(1);
        QVERIFY(qAbs(lower.y() / 72 - printRowY(0, 7 + 35)) < 0.05);
        QVERIFY(test::wordAt(html, QStringLiteral("품목16"), 2).y() > 0);
        QVERIFY(test::wordAt(html, QStringLiteral("뒷장있음(1)-")).y() > 0); // "- 뒷장있음(1)-"
        test::pagePng(pdf, 1, QStringLiteral("statement_print"));
        test::pagePng(pdf, 2, QStringLiteral("statement_print_page2"));
        QVERIFY(QFile::exists(test::screenshotDir() + QStringLiteral("/statement_print.png")));
    }

    void everyWordOfTheFormsTotalRowSitsInsideItsCell() {
        // The labels of the total row, each with the cell (X from, X to) it belongs in: 공급가액,
        // 세액 and 합계 before their values, 전미수 and 미수금 before the balance values.
        struct Label {
            QString text;
            int x1, x2;
        };
        const QList<Label> labels = {{QStringLiteral("공급"), 1, 3},     {QStringLiteral("가액"), 1, 3},
                                     {QStringLiteral("세"), 5, 6},       {QStringLiteral("액"), 5, 6},
                                     {QStringLiteral("합"), 9, 11},      {QStringLiteral("계"), 9, 11},
                                     {QStringLiteral("전미수"), 16, 17}, {QStringLiteral("미수금"), 21, 22}};
        for (const auto& [left, top] : {std::pair{0, 0.0}, std::pair{3, 1.5}}) {
            auto record = std::make_shared<PrintRecord>();
            {
                PrintJob job(std::make_unique<RecordingSurface>(record));
                Print_Form_DealList_A4Half(job, left, top);
                job.endDoc();
            }
            for (int half = 0; half < 2; ++half) {
                const double Y0 = top / 6 + dealframe::kTopOffset + half * dealframe::kHalfDistance;
                const auto y = frameYs(Y0);
                const auto x = frameXs(left / 12.0 + dealframe::kLeftOffset);
                const double rule = 3 / 96.0 / 2; // half a rule of weight 3
                for (const Label& label : labels) {
                    const PrintedText* found = nullptr;
                    for (const PrintedText& t : record->texts)
                        if (t.text == label.text && t.y > y[22] - 0.01 && t.y < y[23])
                            if (!found || (half == 1) == (t.y > found->y)) found = &t;
                    QVERIFY2(found, qPrintable(label.text));
                    const double height = found->font.size * 1.2 / 72;
                    const double width = printTextWidth(found->text, found->font);
                    QVERIFY2(found->x >= x[size_t(label.x1)] + rule, qPrintable(label.text));
                    QVERIFY2(found->x + width <= x[size_t(label.x2)] - rule, qPrintable(label.text));
                    QVERIFY2(found->y >= y[22] + rule, qPrintable(label.text));
                    QVERIFY2(found->y + height <= y[23] - rule, qPrintable(label.text));
                }
                // No rule of the row crosses a word: the row's vertical rules stand between the cells.
                for (const PrintedText& t : record->texts) {
                    if (t.y < y[22] - 0.01 || t.y > y[23]) continue;
                    const double width = printTextWidth(t.text, t.font);
                    for (const PrintedLine& l : record->lines)
                        if (l.x1 == l.x2 && l.y1 <= t.y && l.y2 >= t.y)
                            QVERIFY2(l.x1 <= t.x || l.x1 >= t.x + width, qPrintable(t.text));
                }
            }
        }
        if (!test::havePdfTools()) return;
        Store s;
        const QString pdf = s.home.path() + QStringLiteral("/total-row.pdf");
        {
            PrintJob job(makePdfSurface(pdf), QStringLiteral("PDF"), kStatementDocument);
            PrinterPrepare(job);
            QVERIFY(Print_Data_Ink1B(job, statementOf(2), true));
            job.endDoc();
        }
        // The row with its values, as the operator sees it on plain paper.
        test::regionPng(pdf, 1, QStringLiteral("statement_frame_total_row"), 0.45, 4.9, 7.4, 0.45);
    }

    void onPlainPaperTheValuesStandInsideTheDrawnForm() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Store s;
        test::script();
        QVERIFY(test::addStatement(
            QStringLiteral("000008"), QStringLiteral("2024-05-02"), QStringLiteral("000001"),
            {{QStringLiteral("볼트"), 3000, 300}, {QStringLiteral("너트"), 2000, 200}}));
        const QString pdf = s.home.path() + QStringLiteral("/frame.pdf");
        QString reason;
        QCOMPARE(PrintStoredStatementToPdf(QStringLiteral("000008"), pdf, true, &reason), 0);
        test::pagePng(pdf, 1, QStringLiteral("statement_print_frame"));
        const QString html = test::bboxOf(pdf);
        const auto y = frameYs(0.40875);
        const auto x = frameXs(0.5);
        // The first line stands in the first line row of the form, the product under "품목".
        const QPointF bolt = test::allWordsAt(html, QStringLiteral("볼트")).value(0);
        QVERIFY2(bolt.y() / 72 > y[7] - 0.05 && bolt.y() / 72 < y[9],
                 qPrintable(QString::number(bolt.y() / 72)));
        QVERIFY(bolt.x() / 72 > x[1] && bolt.x() / 72 < x[9]);
        // The receiver's number in the receiver's half, on the number row.
        const QList<QPointF> serials = test::allWordsAt(html, QStringLiteral("234-56-78901"));
        QCOMPARE(serials.size(), 2);
        const QPointF trader = serials.first();
        QVERIFY(qAbs(serials.last().y() - trader.y() - 35 * 12.0) < 0.5); // the copies 35 rows apart
        QVERIFY(trader.x() / 72 > x[14] && trader.x() / 72 < x[24]);
        QVERIFY2(trader.y() / 72 > y[2] && trader.y() / 72 < y[3],
                 qPrintable(QStringLiteral("%1 %2 %3").arg(trader.y() / 72).arg(y[2]).arg(y[3])));
        QVERIFY(test::wordAt(html, QStringLiteral("(공급받는자")).y() / 72 > 5.84);
    }
};

NB_TEST_MAIN(TestStatementPrint)
#include "tst_statement_print.moc"
