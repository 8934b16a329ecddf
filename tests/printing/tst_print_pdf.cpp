// A job written to a PDF file: every field where the grid puts it (checked with pdftotext -bbox),
// text that extracts cleanly, and a rendered page to look at.
#include "TestSupport.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"
#include "printing/frmPrintTest.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <tuple>

using namespace nb;

namespace {

struct PdfWord {
    QString text;
    double xMin = 0, yMin = 0, xMax = 0;
};

QString runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0) return QString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

std::vector<PdfWord> pdfWords(const QString& pdf) {
    const QString html =
        runTool(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    static const QRegularExpression word(QStringLiteral(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="[\d.]+">([^<]*)</word>)re"));
    std::vector<PdfWord> words;
    for (auto it = word.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        QString text = m.captured(4);
        text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
        words.push_back(
            PdfWord{text, m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble()});
    }
    return words;
}

const PdfWord* findWord(const std::vector<PdfWord>& words, const QString& text) {
    for (const PdfWord& w : words)
        if (w.text == text) return &w;
    return nullptr;
}

// The page descriptions of the file (its compressed streams that draw text), unpacked.
QList<QByteArray> pageStreams(const QString& pdf) {
    QFile file(pdf);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray data = file.readAll();
    QList<QByteArray> pages;
    for (qsizetype at = data.indexOf("stream"); at >= 0; at = data.indexOf("stream", at + 1)) {
        const qsizetype begin = data.indexOf('\n', at) + 1;
        const qsizetype end = data.indexOf("endstream", begin);
        if (begin <= 0 || end < 0) break;
        // qUncompress wants the size first; it grows its buffer when the guess is short.
        QByteArray packed("\x00\x10\x00\x00", 4);
        packed += data.mid(begin, end - begin);
        const QByteArray page = qUncompress(packed);
        if (page.contains("BT")) pages << page;
        at = end;
    }
    return pages;
}

constexpr double kTolerancePt = 0.5;
double points(double inches) {
    return inches * kPointsPerInch;
}

// The fields of the sample sheet: margins 2 columns and 1.5 rows.
void printSample(PrintJob& job) {
    PrinterPrepare(job);
    job.setMargins(2, 1.5);
    job.setFontSize(10);
    job.printAtTab(7, 25, QStringLiteral("(주)누벨라 상사"));
    job.printAtTab(5, 80, QStringLiteral("123-45-67890"));
    job.setFontSize(7);
    job.printAtTab(9, 35, QStringLiteral("서울특별시 중구 세종대로 110"));
    job.setFontSize(10);
    job.printAtTab(21, 22, QStringLiteral("=== 이하 여백 ==="));
    job.printAtTab(28, 12, QStringLiteral("\\1,234,567"));
    job.setFontSize(11);
    job.setFontBold(true);
    job.printAt(1.0, 2.5, QStringLiteral("7"));
    job.line(0.5, 4.0, 7.5, 4.0);
    QImage seal(70, 70, QImage::Format_RGB32);
    seal.fill(Qt::red);
    job.paintPicture(seal, 3.8, (1.5 + 6.5) / 6, 0.7, 0.7);
}

} // namespace

class TestPrintPdf : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext is not installed");
    }
    void eachFieldLandsAtItsRowAndTab() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("sample.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            printSample(job);
            QVERIFY(job.endDoc());
        }
        const auto words = pdfWords(pdf);
        const double column10 = printColumnWidth(10), column7 = printColumnWidth(7);
        struct Expected {
            QString word;
            double x, y; // inches
        };
        const std::vector<Expected> expected{
            {QStringLiteral("(주)누벨라"), (2 + 24) * column10, (1.5 + 7) / 6},
            {QStringLiteral("상사"), (2 + 24 + 11) * column10, (1.5 + 7) / 6},
            {QStringLiteral("123-45-67890"), (2 + 79) * column10, (1.5 + 5) / 6},
            {QStringLiteral("서울특별시"), (2 + 34) * column7, (1.5 + 9) / 6},
            {QStringLiteral("세종대로"), (2 + 34 + 16) * column7, (1.5 + 9) / 6},
            {QStringLiteral("110"), (2 + 34 + 25) * column7, (1.5 + 9) / 6},
            {QStringLiteral("이하"), (2 + 21 + 4) * column10, (1.5 + 21) / 6},
            {QStringLiteral("여백"), (2 + 21 + 9) * column10, (1.5 + 21) / 6},
            {QStringLiteral("7"), 1.0, 2.5},
        };
        for (const Expected& e : expected) {
            const PdfWord* w = findWord(words, e.word);
            QVERIFY2(w, qPrintable(QStringLiteral("missing word ") + e.word));
            QVERIFY2(
                std::abs(w->xMin - points(e.x)) < kTolerancePt,
                qPrintable(
                    QStringLiteral("%1: x %2 pt, expected %3").arg(e.word).arg(w->xMin).arg(points(e.x))));
            QVERIFY2(
                std::abs(w->yMin - points(e.y)) < kTolerancePt,
                qPrintable(
                    QStringLiteral("%1: y %2 pt, expected %3").arg(e.word).arg(w->yMin).arg(points(e.y))));
        }
    }
    void spacesExtractAsSpacesNotControlCharacters() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("sample.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            printSample(job);
        }
        const QString text =
            runTool(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(!text.contains(QChar(1)));
        QVERIFY(text.contains(QStringLiteral("=== 이하 여백 ===")));
        QVERIFY(text.contains(QStringLiteral("서울특별시 중구 세종대로 110")));
    }
    void wonSignTakesOneColumnBeforeTheAmount() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("sample.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            printSample(job);
        }
        const auto words = pdfWords(pdf);
        const PdfWord* amount = findWord(words, QStringLiteral("₩1,234,567"));
        QVERIFY(amount);
        const double column = points(printColumnWidth(10));
        QVERIFY(std::abs(amount->xMin - (2 + 11) * column) < kTolerancePt);
        QVERIFY(std::abs(amount->xMax - (2 + 11 + 10) * column) < kTolerancePt);
    }
    void renderedPageShowsTheSample() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("sample.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            printSample(job);
            drawPrintGrid(job, job.leftMargin(), job.topMargin());
        }
        const QString stem = test::screenshotDir() + QStringLiteral("/print_test_page");
        QFile::remove(stem + QStringLiteral(".png"));
        QProcess::execute(QStringLiteral("pdftoppm"),
                          {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("100"),
                           QStringLiteral("-singlefile"), pdf, stem});
        QImage page(stem + QStringLiteral(".png"));
        QVERIFY(!page.isNull());
        // The seal is red where it was painted: 3.8 + 0.35 inches across, (8 / 6 + 0.35) inches down.
        const QColor seal = page.pixelColor(int(4.15 * 100), int((8.0 / 6 + 0.35) * 100));
        QVERIFY(seal.red() > 240 && seal.green() < 16 && seal.blue() < 16);
        const QColor paper = page.pixelColor(int(6.5 * 100), int(10.5 * 100));
        QCOMPARE(paper, QColor(Qt::white));
    }
    void textsOfOneFontOnAPageGoAsOneRun() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("runs.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            PrinterPrepare(job);
            job.setFontSize(10);
            for (int row = 1; row <= 50; ++row) {
                job.printAtTab(row, 1, QStringLiteral("가나%1").arg(row));
                job.printAtTab(row, 20, QString::number(row * 1000));
                job.line(0.5, job.rowY(row), 7.5, job.rowY(row));
            }
            job.setFontSize(7);
            job.printAtTab(52, 1, QStringLiteral("작은글"));
            job.setFontSize(10);
            job.printAtTab(54, 1, QStringLiteral("다시큰글"));
        }
        const QList<QByteArray> pages = pageStreams(pdf);
        QCOMPARE(pages.size(), 1);
        // One run for the hundred texts of 10 pt, one for 7 pt, one for 10 pt again.
        QCOMPARE(pages.first().count("BT"), 3);
        const auto words = pdfWords(pdf);
        const double column10 = printColumnWidth(10), column7 = printColumnWidth(7);
        for (const auto& [word, x, row] : {std::tuple{QStringLiteral("가나50"), 0 * column10, 50},
                                           std::tuple{QStringLiteral("50000"), 19 * column10, 50},
                                           std::tuple{QStringLiteral("작은글"), 0 * column7, 52},
                                           std::tuple{QStringLiteral("다시큰글"), 0 * column10, 54}}) {
            const PdfWord* w = findWord(words, word);
            QVERIFY2(w, qPrintable(word));
            QVERIFY2(std::abs(w->xMin - points(x)) < kTolerancePt, qPrintable(word));
            QVERIFY2(std::abs(w->yMin - points(double(row) / 6)) < kTolerancePt, qPrintable(word));
        }
    }
    void glyphsStandOnWholeDotsOfThePdf() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("dots.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            PrinterPrepare(job);
            job.setFontSize(8); // half-width advances of 66.67 dots at 1200 dots an inch
            job.printAt(1.2345, 2.3456, QStringLiteral("123,456,789 가나다라"));
        }
        const QList<QByteArray> pages = pageStreams(pdf);
        QCOMPARE(pages.size(), 1);
        static const QRegularExpression move(QStringLiteral("(\\S+) (\\S+) Td"));
        int moves = 0;
        for (auto it = move.globalMatch(QString::fromLatin1(pages.first())); it.hasNext(); ++moves) {
            const auto m = it.next();
            QVERIFY2(!m.captured(1).contains(u'.') && !m.captured(2).contains(u'.'),
                     qPrintable(m.captured(0)));
        }
        QVERIFY(moves >= 15);
        const PdfWord* w = findWord(pdfWords(pdf), QStringLiteral("123,456,789"));
        QVERIFY(w);
        QVERIFY(std::abs(w->xMin - points(1.2345)) < 0.1);
    }
    void aFilledTextHidesWhatWasPrintedUnderIt() {
        QImage image(400, 200, QImage::Format_RGB32);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            PrintJob job(std::make_unique<PainterSurface>(painter, 96));
            job.setFontSize(20);
            job.printAt(0.5, 0.5, QStringLiteral("가나다라"));
            PrintFont cover = job.font();
            cover.transparent = false;
            job.setFont(cover);
            job.printAt(0.5, 0.5, QStringLiteral("        "));
            job.setFontTransparent(true);
            job.printAt(0.5, 1.2, QStringLiteral("가나다라"));
        }
        const auto inked = [&image](int top) {
            int dark = 0;
            for (int y = top; y < top + 30; ++y)
                for (int x = 48; x < 48 + 150; ++x)
                    dark += qGray(image.pixel(x, y)) < 128 ? 1 : 0;
            return dark;
        };
        QVERIFY(inked(int(1.2 * 96)) > 100); // the text as it prints
        QCOMPARE(inked(int(0.5 * 96)), 0);   // the same text under the filled one
    }
    void aPictureCoversTheTextPrintedBeforeIt() {
        QImage image(400, 200, QImage::Format_RGB32);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            PrintJob job(std::make_unique<PainterSurface>(painter, 96));
            job.setFontSize(20);
            job.printAt(0.5, 0.5, QStringLiteral("가나다라"));
            QImage red(10, 10, QImage::Format_RGB32);
            red.fill(Qt::red);
            job.paintPicture(red, 0.4, 0.4, 2.0, 0.6);
        }
        for (int y = 48; y < 48 + 30; ++y)
            for (int x = 48; x < 48 + 150; ++x)
                QCOMPARE(QColor(image.pixel(x, y)), QColor(Qt::red));
    }
    void pagesFollowNewPage() {
        test::TestHome home;
        const QString pdf = home.file(QStringLiteral("pages.pdf"));
        {
            PrintJob job(makePdfSurface(pdf));
            PrinterPrepare(job);
            job.printAtTab(1, 1, QStringLiteral("첫장"));
            job.newPage();
            job.printAtTab(1, 1, QStringLiteral("둘째장"));
            QCOMPARE(job.page(), 2);
        }
        const QString info = runTool(QStringLiteral("pdfinfo"), {pdf});
        QVERIFY(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+2"))));
        const QString second = runTool(QStringLiteral("pdftotext"),
                                       {QStringLiteral("-f"), QStringLiteral("2"), pdf, QStringLiteral("-")});
        QVERIFY(second.contains(QStringLiteral("둘째장")));
        QVERIFY(!second.contains(QStringLiteral("첫장")));
    }
};

NB_TEST_MAIN(TestPrintPdf)
#include "tst_print_pdf.moc"
