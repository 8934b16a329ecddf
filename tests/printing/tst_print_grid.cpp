// The print grid: rows, tab columns, margins as the print reads them, the print font.
#include "TestSupport.h"
#include "core/Settings.h"
#include "printing/PrintGrid.h"
#include "printing/PrintJob.h"

#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>

using namespace nb;

class TestPrintGrid : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sixRowsToTheInch() {
        QCOMPARE(printRowY(0, 0), 0.0);
        QCOMPARE(printRowY(0, 6), 1.0);
        QCOMPARE(printRowY(0, 36), 6.0);
        QCOMPARE(printRowY(2, 4), 1.0);
    }
    void oneColumnIsHalfTheFontSizeInPoints() {
        QCOMPARE(printColumnWidth(9.75), 4.875 / 72.0);
        QCOMPARE(printColumnWidth(10), 5.0 / 72.0);
        QCOMPARE(printColumnWidth(7), 3.5 / 72.0);
    }
    void tabOneIsTheLeftEdge() {
        QCOMPARE(printTabX(0, 1, 10), 0.0);
        QCOMPARE(printTabX(0, 25, 10), 24 * 5.0 / 72.0);
        QCOMPARE(printTabX(3, 25, 10), 27 * 5.0 / 72.0);
    }
    void smallerFontHasNarrowerColumns() {
        QVERIFY(printTabX(0, 35, 7) < printTabX(0, 35, 10));
        QCOMPARE(printTabX(0, 35, 7), 34 * 3.5 / 72.0);
    }
    void negativeLeftMarginMovesPrintLeftOfTheOriginByThatManyColumns() {
        QCOMPARE(printTabX(-2, 1, 9.75), -2 * 4.875 / 72.0);
        QCOMPARE(printTabX(-2, 10, 9.75) - printTabX(0, 10, 9.75), -2 * printColumnWidth(9.75));
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("LeftMargin"),
                    QStringLiteral("-3"));
        const DocumentMargins margins = readDocumentMargins(QStringLiteral("세금계산서"));
        QCOMPARE(margins.left, qint16(-3));
        QCOMPARE(printTabX(margins.left, 1, kBasePrintSize), -3 * printColumnWidth(kBasePrintSize));
    }
    void topMarginOfOneAndAHalfMovesPrintDownAQuarterInch() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("거래명세표"), QStringLiteral("TopMargin"),
                    QStringLiteral("1.5"));
        const DocumentMargins margins = readDocumentMargins(QStringLiteral("거래명세표"));
        QCOMPARE(margins.top, 1.5);
        QCOMPARE(printRowY(margins.top, 3) - printRowY(0, 3), 0.25);
    }
    void marginsDefaultToZero() {
        test::TestHome home;
        const DocumentMargins margins = readDocumentMargins(QStringLiteral("세금계산서"));
        QCOMPARE(margins.left, qint16(0));
        QCOMPARE(margins.top, 0.0);
    }
    void leftMarginIsAWholeNumberRoundedHalfToEven() {
        QCOMPARE(marginColumnsFromText(QStringLiteral("1.5")), qint16(2));
        QCOMPARE(marginColumnsFromText(QStringLiteral("2.5")), qint16(2));
        QCOMPARE(marginColumnsFromText(QStringLiteral("-1.4")), qint16(-1));
        QCOMPARE(marginColumnsFromText(QStringLiteral(" 7 ")), qint16(7));
        QCOMPARE(marginColumnsFromText(QStringLiteral("글자")), qint16(0));
        QCOMPARE(marginColumnsFromText(QStringLiteral("99999")), qint16(32767));
    }
    void topMarginKeepsItsFraction() {
        QCOMPARE(marginRowsFromText(QStringLiteral("-0.5")), -0.5);
        QCOMPARE(marginRowsFromText(QStringLiteral("")), 0.0);
        QCOMPARE(marginRowsFromText(QStringLiteral("x")), 0.0);
    }
    void hangulTakesTwoColumnsLatinOne() {
        QCOMPARE(printColumns(QStringLiteral("ABC")), 3);
        QCOMPARE(printColumns(QStringLiteral("가나")), 4);
        QCOMPARE(printColumns(QStringLiteral("(주)누벨라 1")), 12);
        QCOMPARE(printColumns(QStringLiteral("\\1,000")), 6);
    }
    void baseFontFallsBackToTheFixedPitchKoreanFont() {
        QCOMPARE(printFontFamily(QStringLiteral("굴림체")), QStringLiteral("NanumGothicCoding"));
        QCOMPARE(printFontFamily(QStringLiteral("돋움체")), QStringLiteral("NanumGothicCoding"));
        QCOMPARE(printFontFamily(QStringLiteral("굴림")), QStringLiteral("NanumGothic"));
        QVERIFY(isFixedPitchPrintFont(kBasePrintSize > 0 ? kBasePrintFont : QString()));
        QVERIFY(!isFixedPitchPrintFont(QStringLiteral("굴림")));
        QFont font(printFontFamily(kBasePrintFont));
        QCOMPARE(QFontInfo(font).family(), QStringLiteral("NanumGothicCoding"));
    }
    void fallbackFontKeepsTheColumnRule() {
        // At a large pixel size hinting does not matter: "A" is half of "가", the em.
        QFont font(printFontFamily(kBasePrintFont));
        font.setPixelSize(1000);
        const QFontMetricsF metrics(font);
        QCOMPARE(metrics.horizontalAdvance(QStringLiteral("A")), 500.0);
        QCOMPARE(metrics.horizontalAdvance(QStringLiteral("가")), 1000.0);
        // The won sign is an em wide, which is why it is drawn condensed into one column.
        QCOMPARE(metrics.horizontalAdvance(QString(QChar(0x20A9))), 1000.0);
        font.setStretch(50);
        QCOMPARE(QFontMetricsF(font).horizontalAdvance(QString(QChar(0x20A9))), 500.0);
    }
    void textIsCutAtSpacesEachPieceAtItsOwnColumn() {
        PrintedText text{QStringLiteral("=== 이하  여백 ==="), PrintFont{}, 1.0, 2.0, 1};
        const auto pieces = textPieces(text);
        QCOMPARE(int(pieces.size()), 4);
        const double column = printColumnWidth(kBasePrintSize);
        QCOMPARE(pieces[0].text, QStringLiteral("==="));
        QCOMPARE(pieces[0].x, 1.0);
        QCOMPARE(pieces[1].text, QStringLiteral("이하"));
        QCOMPARE(pieces[1].x, 1.0 + 4 * column);
        QCOMPARE(pieces[2].text, QStringLiteral("여백"));
        QCOMPARE(pieces[2].x, 1.0 + 10 * column);
        QCOMPARE(pieces[3].x, 1.0 + 15 * column);
    }
    void backslashPrintsAsTheWonSignInItsOwnColumn() {
        PrintedText text{QStringLiteral("  \\1,234"), PrintFont{}, 0.0, 0.0, 1};
        const auto pieces = textPieces(text);
        QCOMPARE(int(pieces.size()), 2);
        QCOMPARE(pieces[0].text, QString(QChar(0x20A9)));
        QCOMPARE(pieces[0].x, 2 * printColumnWidth(kBasePrintSize));
        QVERIFY(pieces[0].condensed);
        QVERIFY(!pieces[1].condensed);
        QCOMPARE(pieces[1].text, QStringLiteral("1,234"));
        QCOMPARE(pieces[1].x, 3 * printColumnWidth(kBasePrintSize));
    }
};

NB_TEST_MAIN(TestPrintGrid)
#include "tst_print_grid.moc"
