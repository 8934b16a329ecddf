// The form behind the sample invoice: every value the print puts on the sample lies inside the
// box drawn for it, on both copies, and the picture shows the two together.
#include "TestSupport.h"
#include "invoice/FrmPic.h"
#include "invoice/InvoicePrint.h"
#include "invoice/SampleForm.h"
#include "printing/PrintSurfaces.h"

#include <QLabel>

using namespace nb;

namespace {

constexpr double kEps = 1e-9;

std::shared_ptr<PrintRecord> printSample(int copy) {
    auto record = std::make_shared<PrintRecord>();
    PrintJob job(std::make_unique<RecordingSurface>(record));
    const InvoicePrintData data = sampleInvoiceData();
    PrintInvoiceCopy(job, data, paperSums(data.sheet), copy);
    job.endDoc();
    return record;
}

// Where a text's characters stand: from its first drawn piece to the end of its last, one em high.
QRectF inkOf(const PrintedText& t) {
    const std::vector<TextPiece> pieces = textPieces(t);
    if (pieces.empty()) return QRectF();
    const TextPiece& last = pieces.back();
    const double right = last.x + printTextWidth(last.text, t.font);
    return QRectF(QPointF(pieces.front().x, t.y), QPointF(right, t.y + t.font.size / kPointsPerInch));
}

bool inside(const QRectF& ink, const QRectF& box) {
    return !box.isEmpty() && ink.left() >= box.left() - kEps && ink.right() <= box.right() + kEps &&
           ink.top() >= box.top() - kEps && ink.bottom() <= box.bottom() + kEps;
}

QString describe(const QRectF& r) {
    return QStringLiteral("(%1, %2)-(%3, %4)")
        .arg(r.left(), 0, 'f', 3)
        .arg(r.top(), 0, 'f', 3)
        .arg(r.right(), 0, 'f', 3)
        .arg(r.bottom(), 0, 'f', 3);
}

// The recorded text equal to `text` (spaces of padding aside) on print row `row`, any row when
// negative.
const PrintedText* findText(const PrintRecord& r, const QString& text, double row) {
    for (const PrintedText& t : r.texts)
        if (t.text.trimmed() == text && (row < 0 || std::abs(t.y - printRowY(0, row)) < kEps)) return &t;
    return nullptr;
}

} // namespace

class TestSampleForm : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachPrintedFieldOfTheSampleLiesInsideItsBox_data() {
        using namespace invoicelayout;
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("row"); // print row of the upper copy; -1: the text is unique
        const auto add = [](const char* field, const QString& text, double row = -1) {
            QTest::newRow(field) << QString::fromLatin1(field) << text << row;
        };
        add("serial", QStringLiteral("1 0 0 0 0 1"));
        add("userSerial", QStringLiteral("123-45-67890"));
        add("traderSerial", QStringLiteral("234-56-78901"));
        add("userCompany", QStringLiteral("하르문상사"));
        add("userDelegate", QStringLiteral("홍길동"));
        add("traderCompany", QStringLiteral("가나철강"));
        add("traderDelegate", QStringLiteral("김철수"));
        add("userAddress", QStringLiteral("서울시 중구 을지로 1"));
        add("traderAddress", QStringLiteral("부산시 동구 1"));
        add("userStatus", QStringLiteral("도소매"));
        add("userItem", QStringLiteral("철물"));
        add("traderStatus", QStringLiteral("제조"));
        add("traderItem", QStringLiteral("강판"));
        add("year", QStringLiteral("2024"));
        add("month", QStringLiteral("05"));
        add("day", QStringLiteral("10"));
        add("blank", QStringLiteral("6"), kCopyBaseRows[0] + kDateRow);
        add("remark", QStringLiteral("견본"));
        add("total", QStringLiteral("\\22,000"));
        add("youngsu", QStringLiteral("영수"));
        const QStringList lines[2] = {{"05-10", "볼트(M8)", "EA", "100", "150", "15,000", "1,500"},
                                      {"05-10", "너트(M8)", "EA", "100", "50", "5,000", "500"}};
        const char* names[7] = {"date", "item", "unit", "qty", "price", "supply", "tax"};
        for (int i = 0; i < 2; ++i)
            for (int c = 0; c < 7; ++c) {
                const QByteArray field = QStringLiteral("line%1.%2").arg(i).arg(names[c]).toLatin1();
                add(field.constData(), lines[i].at(c), kCopyBaseRows[0] + invoiceLineRow(i));
            }
    }
    void eachPrintedFieldOfTheSampleLiesInsideItsBox() {
        QFETCH(QString, field);
        QFETCH(QString, text);
        QFETCH(double, row);
        test::TestHome home;
        const auto record = printSample(0);
        const PrintedText* printed = findText(*record, text, row);
        QVERIFY2(printed, qPrintable(text));
        const QRectF box = sampleFormBox(sampleFormBoxes(0), field);
        QVERIFY2(!box.isEmpty(), qPrintable(field));
        QVERIFY2(inside(inkOf(*printed), box),
                 qPrintable(
                     QStringLiteral("%1 %2 outside %3").arg(text, describe(inkOf(*printed)), describe(box))));
    }
    void supplyAndTaxDigitsStandOneToACellAfterTheBlankCells() {
        test::TestHome home;
        const auto record = printSample(0);
        const std::vector<SampleFormBox> boxes = sampleFormBoxes(0);
        const InvoicePrintData data = sampleInvoiceData();
        const PaperSums sums = paperSums(data.sheet);
        const QString supply = QString::number(sums.supply);
        const QString tax = QString::number(sums.tax);
        const double y = invoicelayout::digitCellsY(0, 0);
        std::vector<const PrintedText*> digits;
        for (const PrintedText& t : record->texts)
            if (std::abs(t.y - y) < kEps) digits.push_back(&t);
        QCOMPARE(int(digits.size()), int(supply.size() + tax.size()));
        for (int j = 0; j < supply.size(); ++j) {
            const QRectF cell = sampleFormBox(boxes, QStringLiteral("supplyCell%1").arg(sums.blank() + j));
            QCOMPARE(digits[j]->text, supply.mid(j, 1));
            QVERIFY2(inside(inkOf(*digits[j]), cell),
                     qPrintable(describe(inkOf(*digits[j])) + describe(cell)));
        }
        for (int j = 0; j < tax.size(); ++j) {
            const PrintedText* digit = digits[supply.size() + j];
            const QRectF cell = sampleFormBox(boxes, QStringLiteral("taxCell%1").arg(sums.taxBlank() + j));
            QCOMPARE(digit->text, tax.mid(j, 1));
            QVERIFY2(inside(inkOf(*digit), cell), qPrintable(describe(inkOf(*digit)) + describe(cell)));
        }
    }
    void everyTextOfEitherCopyFallsInsideABoxOfThatCopy() {
        test::TestHome home;
        for (int copy = 0; copy < 2; ++copy) {
            const auto record = printSample(copy);
            const std::vector<SampleFormBox> boxes = sampleFormBoxes(copy);
            QVERIFY(record->texts.size() > 40);
            for (const PrintedText& t : record->texts) {
                const QRectF ink = inkOf(t);
                const bool held = std::any_of(boxes.begin(), boxes.end(), [&](const SampleFormBox& b) {
                    return !b.field.isEmpty() && inside(ink, b.rect);
                });
                QVERIFY2(held, qPrintable(
                                   QStringLiteral("copy %1: %2 at %3").arg(copy).arg(t.text, describe(ink))));
            }
        }
    }
    void valueBoxesDoNotOverlap() {
        const std::vector<SampleFormBox> boxes = sampleFormBoxes(0);
        for (size_t a = 0; a < boxes.size(); ++a)
            for (size_t b = a + 1; b < boxes.size(); ++b) {
                if (boxes[a].field.isEmpty() || boxes[b].field.isEmpty()) continue;
                const QRectF common = boxes[a].rect.intersected(boxes[b].rect);
                QVERIFY2(common.width() < kEps || common.height() < kEps,
                         qPrintable(boxes[a].field + QStringLiteral(" / ") + boxes[b].field));
            }
    }
    void sampleWindowShowsTheFormUnderTheValues() {
        test::TestHome home;
        test::script();
        FrmPic pic;
        const QPixmap shown = pic.picture()->pixmap();
        QVERIFY(!shown.isNull());
        const QImage image = shown.toImage();
        // The rule over the first line row is drawn in the form's ink.
        const QRectF line = sampleFormBox(sampleFormBoxes(0), QStringLiteral("line0.item"));
        const double dpi = image.width() / 8.27; // the picture is as wide as an A4 sheet
        const int x = int(line.center().x() * dpi);
        const int y = int(line.top() * dpi);
        bool ruled = false;
        for (int dy = -1; dy <= 1; ++dy) {
            const QColor c = image.pixelColor(x, y + dy);
            ruled = ruled || (c.red() > 150 && c.green() < 100);
        }
        QVERIFY(ruled);
        test::saveScreenshot(&pic, QStringLiteral("frm_tax_sample"));
    }
};

NB_TEST_MAIN(TestSampleForm)
#include "tst_sample_form.moc"
