// The tax invoice on its paper: head, serial, names, addresses, writing date and 공란수,
// digit cells, remark, lines, the blank rule, total, the seal, both copies; through the print
// layer's recorder.
#include "TestSupport.h"
#include "common/text/ByteText.h"
#include "invoice/InvoicePrint.h"
#include "printing/PrintSurfaces.h"

using namespace nb;

namespace {

constexpr double kEps = 1e-9;

InvoicePrintData sampleData() {
    InvoicePrintData d;
    d.txtSeq = QStringLiteral("100-124");
    d.parties.user = {QStringLiteral("1234567890"),    QStringLiteral("하르문상사"), QStringLiteral("김대표"),
                      QStringLiteral("서울시 중구 1"), QStringLiteral("도소매"),     QStringLiteral("철물"),
                      QStringLiteral("02-111-2222"),   QStringLiteral("02-111-3333")};
    d.parties.trader = {QStringLiteral("222-33-44444"), QStringLiteral("가나철강"),
                        QStringLiteral("이사장"),       QStringLiteral("부산시 1"),
                        QStringLiteral("제조"),         QStringLiteral("강판"),
                        QStringLiteral("051-123-4567"), QString()};
    d.writeYY = QStringLiteral("2024");
    d.writeMM = QStringLiteral("05");
    d.writeDD = QStringLiteral("10");
    d.youngsu = QStringLiteral("영수");
    d.sheet.vat = VatMode::Separate;
    d.sheet.line(0) = {QStringLiteral("05-10"), QStringLiteral("볼트(M8)"), QStringLiteral("EA"),
                       QStringLiteral("3"),     QStringLiteral("1,000"),    QStringLiteral("3,000"),
                       QStringLiteral("300")};
    return d;
}

struct Printed {
    std::shared_ptr<PrintRecord> record = std::make_shared<PrintRecord>();
    int lines = 0;
};

Printed printCopies(const InvoicePrintData& data, int left = 0, double top = 0,
                    const QImage& seal = QImage()) {
    Printed p;
    PrintJob job(std::make_unique<RecordingSurface>(p.record));
    job.setMargins(left, top);
    PrintInvoiceSeal(job, seal);
    p.lines = PrintInvoiceCopies(job, data);
    job.endDoc();
    return p;
}

double tabX(int left, double tab, double size) {
    return printTabX(left, tab, size);
}

// Every recorded text equal to `text`.
std::vector<PrintedText> all(const PrintRecord& r, const QString& text) {
    std::vector<PrintedText> found;
    for (const auto& t : r.texts)
        if (t.text == text) found.push_back(t);
    return found;
}

bool placed(const PrintedText& t, double row, double tab, double size, bool bold = false) {
    return std::abs(t.y - row / 6.0) < kEps && std::abs(t.x - tabX(0, tab, size)) < kEps &&
           t.font.size == size && t.font.bold == bold;
}

} // namespace

class TestInvoicePrint : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anItemLongerThanItsColumnIsCutToItByPrintedWidth() {
        InvoicePrintData data = sampleData();
        data.sheet.line(0).pummok = QStringLiteral("아주아주긴품목이름입니다정말로길어요(규격포함)");
        const Printed p = printCopies(data);
        const QString cut = CutBytes(data.sheet.line(0).pummok, 26);
        QCOMPARE(ByteLen(cut), 26);
        const auto found = all(*p.record, cut);
        QCOMPARE(int(found.size()), 2);
        for (const PrintedText& t : found)
            QVERIFY(t.x + printTextWidth(t.text, t.font) <
                    tabX(0, invoicelayout::kLineUnit.tab, t.font.size));
        QVERIFY(all(*p.record, data.sheet.line(0).pummok).empty());
    }

    void headOfBothCopiesStandsOnItsRowsAndTabs_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("tab");
        QTest::addColumn<double>("size");
        QTest::addColumn<bool>("bold");
        QTest::newRow("serial") << "1 0 0 1 2 4" << 3 << 84 << 11.0 << true;
        QTest::newRow("user serial") << "123-45-67890" << 5 << 30 << 10.0 << false;
        QTest::newRow("trader serial") << "222-33-44444" << 5 << 80 << 10.0 << false;
        QTest::newRow("company") << "하르문상사" << 7 << 25 << 10.0 << false;
        QTest::newRow("delegate") << "김대표" << 7 << 48 << 10.0 << false;
        QTest::newRow("trader name") << "가나철강" << 7 << 73 << 10.0 << false;
        QTest::newRow("trader person") << "이사장" << 7 << 97 << 10.0 << false;
        QTest::newRow("user addr") << "서울시 중구 1" << 9 << 25 << 10.0 << false;
        QTest::newRow("trader addr") << "부산시 1" << 9 << 73 << 10.0 << false;
        QTest::newRow("user status") << "도소매" << 11 << 25 << 10.0 << false;
        QTest::newRow("user item") << "철물" << 11 << 42 << 10.0 << false;
        QTest::newRow("trader status") << "제조" << 11 << 73 << 10.0 << false;
        QTest::newRow("trader item") << "강판" << 11 << 90 << 10.0 << false;
        QTest::newRow("year") << "2024" << 15 << 11 << 11.0 << true;
        QTest::newRow("month") << "05" << 15 << 16 << 11.0 << true;
        QTest::newRow("day") << "10" << 15 << 20 << 11.0 << true;
        QTest::newRow("blank count") << "7" << 15 << 26 << 11.0 << true;
        QTest::newRow("youngsu") << "영수" << 28 << 100 << 10.0 << false;
    }
    void headOfBothCopiesStandsOnItsRowsAndTabs() {
        QFETCH(QString, text);
        QFETCH(int, row);
        QFETCH(int, tab);
        QFETCH(double, size);
        QFETCH(bool, bold);
        const Printed p = printCopies(sampleData());
        const auto found = all(*p.record, text);
        QCOMPARE(int(found.size()), 2);
        QVERIFY(placed(found[0], 1 + row, tab, size, bold));
        QVERIFY(placed(found[1], 36 + row, tab, size, bold));
    }
    void marginsMoveEverythingByRowsAndColumns() {
        const Printed p = printCopies(sampleData(), 3, 1.5);
        const PrintedText* t = p.record->find(QStringLiteral("하르문상사"));
        QVERIFY(t);
        QVERIFY(std::abs(t->y - (1.5 + 8) / 6.0) < kEps);
        QVERIFY(std::abs(t->x - tabX(3, 25, 10)) < kEps);
    }
    void longNamesPrintSmaller() {
        InvoicePrintData d = sampleData();
        d.parties.user.company = QStringLiteral("아주긴이름의주식회사상호명"); // 13 Hangul: 26 columns
        d.parties.trader.company = QStringLiteral("열한글자로된거래처상호");   // 11 Hangul: 22 columns
        const Printed p = printCopies(d);
        QCOMPARE(p.record->find(d.parties.user.company)->font.size, 8.0);
        QVERIFY(placed(*p.record->find(d.parties.user.company), 8, 25, 8));
        QCOMPARE(p.record->find(d.parties.trader.company)->font.size, 10.0);
        QCOMPARE(p.record->find(QStringLiteral("김대표"))->font.size, 10.0);
    }
    void addressRuleBySizeAndTab_data() {
        QTest::addColumn<int>("chars");
        QTest::addColumn<bool>("receiver");
        QTest::addColumn<double>("size");
        QTest::addColumn<int>("tab");
        QTest::newRow("18 supplier") << 18 << false << 10.0 << 25;
        QTest::newRow("18 receiver") << 18 << true << 10.0 << 73;
        QTest::newRow("19 supplier") << 19 << false << 8.0 << 30;
        QTest::newRow("23 receiver") << 23 << true << 8.0 << 90;
        QTest::newRow("24 supplier") << 24 << false << 7.0 << 35;
        QTest::newRow("24 receiver") << 24 << true << 7.0 << 102;
    }
    void addressRuleBySizeAndTab() {
        QFETCH(int, chars);
        QFETCH(bool, receiver);
        QFETCH(double, size);
        QFETCH(int, tab);
        const AddressPlace place = addressPlace(QStringLiteral("a").repeated(chars), receiver);
        QCOMPARE(place.size, size);
        QCOMPARE(place.tab, tab);
    }
    void twentyFourCharacterSupplierAddressPrintsAtSizeSevenFromTab35() {
        InvoicePrintData d = sampleData();
        d.parties.user.addr = QStringLiteral("서울특별시중구을지로일가일번지하르문빌딩삼층사호");
        QCOMPARE(d.parties.user.addr.size(), 24);
        const Printed p = printCopies(d);
        const auto found = all(*p.record, d.parties.user.addr);
        QCOMPARE(int(found.size()), 2);
        QVERIFY(placed(found[0], 10, 35, 7));
        // The size returns to 10 after the address.
        QCOMPARE(p.record->find(QStringLiteral("도소매"))->font.size, 10.0);
    }
    void withoutDatePrintingNoWritingDateNoLineDatesButTheBlankCount() {
        InvoicePrintData d = sampleData();
        d.printDate = false;
        const Printed p = printCopies(d);
        QVERIFY(all(*p.record, QStringLiteral("2024")).empty());
        QVERIFY(all(*p.record, QStringLiteral("05-10")).empty());
        QCOMPARE(int(all(*p.record, QStringLiteral("7")).size()), 2);
        d.printDate = true;
        QCOMPARE(int(all(*printCopies(d).record, QStringLiteral("05-10")).size()), 2);
    }
    void phoneNoteNamesTheOtherPartyAndLeavesOutAnEmptyFax() {
        InvoicePrintData d = sampleData();
        d.printPhone = true;
        QCOMPARE(phoneNote(d, 0), QStringLiteral("[공급받는자T:051-123-4567]"));
        QCOMPARE(phoneNote(d, 1), QStringLiteral("[공급자T:02-111-2222 F:02-111-3333]"));
        const Printed p = printCopies(d);
        QVERIFY(placed(*p.record->find(phoneNote(d, 0)), 0, 60, 10));
        QVERIFY(placed(*p.record->find(phoneNote(d, 1)), 35, 60, 10));
        d.printPhone = false;
        QVERIFY(!printCopies(d).record->find(phoneNote(d, 0)));
    }
    void supplyOf1234567LeavesFourBlankCellsAndFillsFromTheFifth() {
        InvoicePrintData d = sampleData();
        d.sheet.line(0).gonggum = QStringLiteral("1,234,567");
        d.sheet.line(0).tax_num = QStringLiteral("123,456");
        const PaperSums sums = paperSums(d.sheet);
        QCOMPARE(sums.blank(), 4);
        QCOMPARE(sums.taxBlank(), 4);
        const Printed p = printCopies(d);
        const double x0 = 1 / 12.0 + 0.75 + 1.52;
        const double y0 = 0.33 + 2.34;
        const auto ones = all(*p.record, QStringLiteral("1"));
        // Supply's first digit in the fifth cell, tax's first in cell 11 + 4 + 1; then copy 1.
        QVERIFY(std::any_of(ones.begin(), ones.end(), [&](const PrintedText& t) {
            return std::abs(t.x - (x0 + 4 * 0.167)) < kEps && std::abs(t.y - y0) < kEps && t.font.bold &&
                   t.font.size == 11;
        }));
        QVERIFY(std::any_of(ones.begin(), ones.end(), [&](const PrintedText& t) {
            return std::abs(t.x - (x0 + 15 * 0.167)) < kEps && std::abs(t.y - y0) < kEps;
        }));
        QVERIFY(std::any_of(ones.begin(), ones.end(), [&](const PrintedText& t) {
            return std::abs(t.x - (x0 + 4 * 0.167)) < kEps && std::abs(t.y - (y0 + 5.813)) < kEps;
        }));
        QVERIFY(placed(*p.record->find(QStringLiteral("4")), 16, 26, 11, true));
        QVERIFY(placed(*p.record->find(QStringLiteral("\\1,358,023")), 29, 12 + 4, 10));
    }
    void exemptModeLeavesTheTaxColumnEmptyWhileTheCellsShowZero() {
        InvoicePrintData d = sampleData();
        d.sheet.vat = VatMode::Exempt;
        d.sheet.line(0).tax_num = QStringLiteral("0");
        const Printed p = printCopies(d);
        for (const auto& t : p.record->texts)
            QVERIFY(std::abs(t.x - tabX(0, 95, 10)) > kEps);
        const double x0 = 1 / 12.0 + 0.75 + 1.52;
        const auto zeros = all(*p.record, QStringLiteral("0"));
        QVERIFY(std::any_of(zeros.begin(), zeros.end(),
                            [&](const PrintedText& t) { return std::abs(t.x - (x0 + 20 * 0.167)) < kEps; }));
    }
    void lineCellsHaveTheirWidthsAndMasks() {
        InvoicePrintData d = sampleData();
        d.sheet.line(0).gonggum = QStringLiteral("1,234,567");
        d.sheet.line(0).tax_num = QStringLiteral("123,456");
        const Printed p = printCopies(d);
        const double row = 1 + 18;
        QVERIFY(placed(*p.record->find(QStringLiteral("05-10")), row, 12, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("볼트(M8)")), row, 20, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("  EA")), row, 47, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("        3")), row, 52, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("        1,000")), row, 61, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("    1,234,567")), row, 77, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("     123,456")), row, 95, 10));
    }
    void decimalSettingsChooseTheMasksAndAnUnknownOnePrintsNoLine() {
        InvoicePrintData d = sampleData();
        d.sheet.line(0).su_num = QStringLiteral("2.5");
        d.decimalQty = 1;
        d.decimalPrice = 2;
        Printed p = printCopies(d);
        QVERIFY(p.record->find(QStringLiteral("      2.5")));
        QVERIFY(p.record->find(QStringLiteral("     1,000.00")));
        d.decimalQty = 3;
        p = printCopies(d);
        QVERIFY(!p.record->find(QStringLiteral("볼트(M8)")));
        QVERIFY(p.record->find(QStringLiteral("=== 이하 여백 ===")));
    }
    void zeroQuantityAndPriceLeaveTheirCellsBlank() {
        InvoicePrintData d = sampleData();
        d.sheet.line(0).su_num = QStringLiteral("0");
        d.sheet.line(0).gibon_num = QStringLiteral("  0");
        const Printed p = printCopies(d);
        QVERIFY(placed(*p.record->find(QStringLiteral("         ")), 19, 52, 10));
        QVERIFY(p.record->find(QStringLiteral("             ")));
    }
    void linesGoOnRows18_19_21_22_23() {
        InvoicePrintData d = sampleData();
        for (int i = 1; i < 5; ++i) {
            d.sheet.line(i) = d.sheet.line(0);
            d.sheet.line(i).pummok = QStringLiteral("품목%1").arg(i);
        }
        d.sheet.curLine = 4;
        const Printed p = printCopies(d);
        QCOMPARE(p.lines, 10);
        const int rows[] = {18, 19, 21, 22, 23};
        for (int i = 1; i < 5; ++i) {
            const auto found = all(*p.record, QStringLiteral("품목%1").arg(i));
            QVERIFY(placed(found[0], 1 + rows[i], 20, 10));
            QVERIFY(placed(found[1], 36 + rows[i], 20, 10));
        }
    }
    void fiveLinesFilledPrintNoBlankRule() {
        InvoicePrintData d = sampleData();
        for (int i = 1; i < 5; ++i)
            d.sheet.line(i) = d.sheet.line(0);
        d.sheet.curLine = 4;
        QVERIFY(!printCopies(d).record->find(QStringLiteral("=== 이하 여백 ===")));
    }
    void blankRuleFollowsCurLineNotTheLineRows() {
        InvoicePrintData d = sampleData();
        Printed p = printCopies(d);
        auto rules = all(*p.record, QStringLiteral("=== 이하 여백 ==="));
        QCOMPARE(int(rules.size()), 2);
        QVERIFY(placed(rules[0], 1 + 19, 22, 10));
        QVERIFY(placed(rules[1], 36 + 19, 22, 10));
        d.sheet.line(1) = d.sheet.line(0);
        d.sheet.curLine = 1;
        p = printCopies(d);
        QVERIFY(placed(all(*p.record, QStringLiteral("=== 이하 여백 ==="))[0], 1 + 21, 22, 10));
        QCOMPARE(blankRuleRow(3), 25);
    }
    void aGapLineIsSkippedAndThePrintGoesOn() {
        InvoicePrintData d = sampleData();
        d.sheet.line(2) = d.sheet.line(0);
        d.sheet.line(2).pummok = QStringLiteral("너트");
        d.sheet.curLine = 2;
        const Printed p = printCopies(d);
        QCOMPARE(p.lines, 4);
        QVERIFY(placed(*p.record->find(QStringLiteral("너트")), 1 + 21, 20, 10));
    }
    void remarkShowsItsFirstTwoLines() {
        InvoicePrintData d = sampleData();
        d.bigo = QStringLiteral("첫째 줄\n둘째 줄\n셋째 줄");
        const Printed p = printCopies(d);
        QVERIFY(placed(*p.record->find(QStringLiteral("첫째 줄")), 15, 85, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("둘째 줄")), 16, 85, 10));
        QVERIFY(!p.record->find(QStringLiteral("셋째 줄")));
    }
    void sealIsPaintedTwiceAtItsPlaces() {
        QImage seal(20, 20, QImage::Format_ARGB32);
        seal.fill(Qt::red);
        const Printed p = printCopies(sampleData(), 2, 1, seal);
        QCOMPARE(int(p.record->pictures.size()), 2);
        const QRectF a = p.record->pictures[0].rect;
        QVERIFY(std::abs(a.x() - (2 / 12.0 + 3.8)) < kEps);
        QVERIFY(std::abs(a.y() - (1 + 6.5) / 6) < kEps);
        QVERIFY(std::abs(a.width() - 0.7) < kEps && std::abs(a.height() - 0.7) < kEps);
        QVERIFY(std::abs(p.record->pictures[1].rect.y() - (1 + 41.4) / 6) < kEps);
        QVERIFY(printCopies(sampleData()).record->pictures.empty());
    }
    void totalAndYoungsuAtRow28() {
        InvoicePrintData d = sampleData();
        d.youngsu = QStringLiteral("청구");
        const Printed p = printCopies(d);
        QVERIFY(placed(*p.record->find(QStringLiteral("\\3,300")), 29, 12 + 7, 10));
        QVERIFY(placed(*p.record->find(QStringLiteral("청구")), 29, 100, 10));
        QVERIFY(p.record->texts.front().font.transparent);
    }
};

NB_TEST_MAIN(TestInvoicePrint)
#include "tst_invoice_print.moc"
