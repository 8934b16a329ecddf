// The one-row total grid under a list: fitted to the data grid's columns, labelled
// "[합 계]", coloured, and fed by the sum formulas of the data grid as the operator types.
#include "TestSupport.h"
#include "common/Colors.h"
#include "common/grid/MduSpread.h"

#include <QApplication>
#include <QHeaderView>
#include <QVBoxLayout>

using namespace nb;

namespace {

// A line grid like the statement's: item, unit, quantity, price, amount, VAT, and two
// hidden columns holding the sums of amount and VAT; the total grid under it.
struct LinesWithTotal {
    QWidget window;
    Grid* data = new Grid;
    Grid* total = new Grid;

    LinesWithTotal() {
        auto* layout = new QVBoxLayout(&window);
        layout->setSpacing(0);
        layout->addWidget(data);
        layout->addWidget(total);
        data->setMaxCols(8);
        data->setMaxRows(6);
        CommonSpreadDesign(*data, false, false, true, false);
        const QStringList heads{QStringLiteral("품목"),     QStringLiteral("단위"),    QStringLiteral("수량"),
                                QStringLiteral("단가"),     QStringLiteral("금액"),    QStringLiteral("세액"),
                                QStringLiteral("합계금액"), QStringLiteral("합계세액")};
        const double widths[] = {22, 6, 9, 11, 13, 11, 10, 10};
        for (int c = 1; c <= 8; ++c) {
            data->SetText(c, 0, heads[c - 1]);
            data->setColWidth(c, widths[c - 1]);
        }
        data->setColHidden(7, true);
        data->setColHidden(8, true);
        SetFloatCell(*data, 3, 2, true);
        SetFloatCell(*data, 4, 0, true);
        SetCurrencyCell(*data, 5, true);
        SetCurrencyCell(*data, 6, true);
        SetSumFormula(*data, 5, 7);
        SetSumFormula(*data, 6, 8);
        MakeTotalGrid(*total, *data, 1);
        SetCurrencyCell(*total, 5, true);
        SetCurrencyCell(*total, 6, true);
        LinkTotalGrid(*total, *data, {{7, 5}, {8, 6}});
        window.resize(720, 260);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        data->setFocus();
    }
    void line(int row, const QString& item, const QString& unit, const QString& qty, const QString& price,
              const QString& amount, const QString& vat) const {
        const QStringList values{item, unit, qty, price, amount, vat};
        for (int c = 1; c <= 6; ++c)
            data->SetText(c, row, values[c - 1]);
    }
    void type(const QString& text) const {
        for (QChar ch : text)
            test::typeText(QApplication::focusWidget(), QString(ch));
    }
    void press(Qt::Key key) const { test::pressKey(QApplication::focusWidget(), key); }
};

} // namespace

class TestTotalGrid : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void totalGridTakesTheColumnsWidthsAndHiddenColumnsOfTheData() {
        test::TestHome home;
        LinesWithTotal s;
        QCOMPARE(s.total->MaxCols(), 8);
        QCOMPARE(s.total->MaxRows(), 1);
        for (int c = 1; c <= 6; ++c) {
            QCOMPARE(s.total->ColWidth(c), s.data->ColWidth(c));
            QCOMPARE(s.total->columnWidth(c - 1), s.data->columnWidth(c - 1));
            QVERIFY(!s.total->ColHidden(c));
        }
        QVERIFY(s.total->ColHidden(7));
        QVERIFY(s.total->ColHidden(8));
    }
    void totalRowCarriesTheLabelAndTheTotalColour() {
        test::TestHome home;
        LinesWithTotal s;
        QCOMPARE(s.total->Text(1, 1), QStringLiteral("[합 계]"));
        for (int c = 1; c <= 8; ++c)
            QCOMPARE(s.total->BackColor(c, 1), 14741728);
        QCOMPARE(s.total->GrayAreaBackColor(), 14741728);
        QCOMPARE(s.total->operationMode(), OperationMode::Normal);
        QCOMPARE(s.total->SelectBlockOptions(), 0);
        QVERIFY(s.total->Lock(1, 1));
        QVERIFY(s.total->Lock(5, 1));
    }
    void rowHeaderOfTheTotalIsABlankCellAsWideAsTheData() {
        test::TestHome home;
        LinesWithTotal s;
        QVERIFY(s.total->RowHeadersShow());
        QCOMPARE(s.total->ColWidth(0), s.data->ColWidth(0));
        QCOMPARE(s.total->verticalHeader()->width(), s.data->verticalHeader()->width());
        QCOMPARE(s.total->Text(0, 1), QStringLiteral(" "));
    }
    void totalGridWithoutRowHeadersWhenTheDataHasNone() {
        test::TestHome home;
        Grid data, total;
        data.setMaxCols(3);
        data.setMaxRows(2);
        data.setRowHeadersShow(false);
        MakeTotalGrid(total, data, 2);
        QVERIFY(!total.RowHeadersShow());
        QCOMPARE(total.Text(2, 1), QStringLiteral("[합 계]"));
        QCOMPARE(total.Text(0, 1), QStringLiteral("1"));
    }
    void typedAmountsReachTheTotalThroughTheSumFormulas() {
        test::TestHome home;
        LinesWithTotal s;
        s.data->SetActiveCell(5, 1);
        s.type(QStringLiteral("3765"));
        s.press(Qt::Key_Return);
        s.type(QStringLiteral("376"));
        s.press(Qt::Key_Down);
        QCOMPARE(s.data->Text(5, 1), QStringLiteral("3,765"));
        QCOMPARE(s.total->Text(5, 1), QStringLiteral("3,765"));
        QCOMPARE(s.total->Text(6, 1), QStringLiteral("376"));
        s.data->SetActiveCell(5, 2);
        s.type(QStringLiteral("1000000"));
        s.press(Qt::Key_Down);
        QCOMPARE(s.total->Text(5, 1), QStringLiteral("1,003,765"));
    }
    void deletingALineTakesItOutOfTheTotal() {
        test::TestHome home;
        LinesWithTotal s;
        s.line(1, QStringLiteral("볼트(M8)"), QStringLiteral("개"), QStringLiteral("3"),
               QStringLiteral("1255"), QStringLiteral("3765"), QStringLiteral("376"));
        s.line(2, QStringLiteral("너트"), QStringLiteral("개"), QStringLiteral("10"), QStringLiteral("100"),
               QStringLiteral("1000"), QStringLiteral("100"));
        QCOMPARE(s.total->Text(5, 1), QStringLiteral("4,765"));
        DeleteGridRow(*s.data, 2, false, false);
        QCOMPARE(s.total->Text(5, 1), QStringLiteral("3,765"));
        QCOMPARE(s.total->Text(6, 1), QStringLiteral("376"));
    }
    void statementListSumsColumnsThreeAndFourIntoSevenAndEight() {
        test::TestHome home;
        Grid master, total;
        master.setMaxCols(8);
        master.setMaxRows(3);
        CommonSpreadDesign(master, true, false, true, true);
        master.SetText(3, 1, QStringLiteral("2"));
        master.SetText(4, 1, QStringLiteral("110000"));
        master.SetText(3, 2, QStringLiteral("1"));
        master.SetText(4, 2, QStringLiteral("55000"));
        SetSumFormula(master, 3, 7);
        SetSumFormula(master, 4, 8);
        MakeTotalGrid(total, master, 2);
        SetCurrencyCell(total, 3, true);
        SetCurrencyCell(total, 4, true);
        LinkTotalGrid(total, master, {{7, 3}, {8, 4}});
        QCOMPARE(total.Text(3, 1), QStringLiteral("3"));
        QCOMPARE(total.Text(4, 1), QStringLiteral("165,000"));
        master.SetText(4, 2, QStringLiteral("0"));
        QCOMPARE(total.Text(4, 1), QStringLiteral("110,000"));
    }
    void columnWidthDraggedInTheDataFollowsInTheTotal() {
        test::TestHome home;
        LinesWithTotal s;
        auto* top = s.data->horizontalHeader();
        const int border = top->sectionViewportPosition(0) + top->sectionSize(0) - 1;
        const QPoint from(border, top->height() / 2), to(border - 30, top->height() / 2);
        QTest::mousePress(top->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, top->viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(top->viewport(), &move);
        QTest::mouseRelease(top->viewport(), Qt::LeftButton, {}, to);
        QVERIFY(s.data->ColWidth(1) < 22.0);
        QCOMPARE(s.total->ColWidth(1), s.data->ColWidth(1));
        QCOMPARE(s.total->columnWidth(0), s.data->columnWidth(0));
    }
    void enteringTheTotalGridShowsNoCursor() {
        test::TestHome home;
        LinesWithTotal s;
        const QRect cell = s.total->visualRect(s.total->model()->index(0, 4));
        QTest::mouseClick(s.total->viewport(), Qt::LeftButton, {}, cell.center());
        s.total->setFocus();
        QCOMPARE(s.total->ActiveCol(), 0);
        QCOMPARE(s.total->ActiveRow(), 0);
        test::pressKey(s.total, Qt::Key_Down);
        QCOMPARE(s.total->ActiveRow(), 0);
        QVERIFY(!s.total->EditMode());
    }
    void screenshotOfLinesWithTheirTotal() {
        test::TestHome home;
        LinesWithTotal s;
        s.line(1, QStringLiteral("볼트(M8) 스테인리스"), QStringLiteral("개"), QStringLiteral("3"),
               QStringLiteral("1255"), QStringLiteral("3765"), QStringLiteral("376"));
        s.line(2, QStringLiteral("육각너트 M10"), QStringLiteral("박스"), QStringLiteral("12.5"),
               QStringLiteral("48000"), QStringLiteral("600000"), QStringLiteral("60000"));
        s.line(3, QStringLiteral("평와셔"), QStringLiteral("EA"), QStringLiteral("1500"),
               QStringLiteral("35"), QStringLiteral("52500"), QStringLiteral("5250"));
        s.data->SetActiveCell(1, 4);
        s.type(QStringLiteral("스프링와셔"));
        s.press(Qt::Key_Return);
        QCOMPARE(s.data->Text(1, 4), QStringLiteral("스프링와셔"));
        QCOMPARE(s.total->Text(5, 1), QStringLiteral("656,265"));
        QCOMPARE(s.total->Text(6, 1), QStringLiteral("65,626"));
        // Odd rows white, even rows grey 245, the total row its own colour.
        const QImage lines = s.data->viewport()->grab().toImage();
        const auto centre = [&s](int col, int row) {
            return s.data->visualRect(s.data->model()->index(row - 1, col - 1)).center();
        };
        QCOMPARE(lines.pixelColor(centre(2, 5)), QColor(Qt::white));
        QCOMPARE(lines.pixelColor(centre(2, 6)), QColor(245, 245, 245));
        const QImage totals = s.total->viewport()->grab().toImage();
        QCOMPARE(totals.pixelColor(s.total->visualRect(s.total->model()->index(0, 2)).center()),
                 colorFromBgr(14741728));
        const QString path = test::saveScreenshot(&s.window, QStringLiteral("grid"));
        QVERIFY(QImage(path).width() > 0);
    }
};

NB_TEST_MAIN(TestTotalGrid)
#include "tst_totalgrid.moc"
