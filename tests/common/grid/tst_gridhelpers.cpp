// The shared grid helpers: the standard look, reading cells, block actions, row deletion,
// number columns and their limits, sum formulas.
#include "TestSupport.h"
#include "common/Colors.h"
#include "common/grid/GridNumbers.h"
#include "common/grid/MduSpread.h"

#include <QSignalSpy>
#include <cmath>
#include <cstring>

using namespace nb;

namespace {

// A grid whose selection colour cannot be set, to see a refused design step reported.
class RefusingGrid : public Grid {
public:
    void setSelBackColor(int) override { throw invalidPropertyValue(); }
};

void fill(Grid& grid, int cols, int rows) {
    grid.setMaxCols(cols);
    grid.setMaxRows(rows);
    for (int r = 1; r <= rows; ++r)
        for (int c = 1; c <= cols; ++c)
            grid.SetText(c, r, QStringLiteral("%1-%2").arg(c).arg(r));
}

} // namespace

class TestGridHelpers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // A number cell reads a text as it always has (trimmed, separators dropped, then the general
    // number reading), to the last bit, the sign of a zero included; the plain digits the program
    // writes are read straight.
    void aNumberTextReadsAsTheGeneralReadingReadsIt() {
        const auto reference = [](const QString& text) -> std::optional<double> {
            QString cleaned = text.trimmed();
            cleaned.remove(u',');
            bool ok = false;
            const double value = cleaned.toDouble(&ok);
            if (cleaned.isEmpty() || !ok || !std::isfinite(value)) return std::nullopt;
            return value;
        };
        QStringList texts = {"0",
                             "-0",
                             "12",
                             "-12",
                             "0.1",
                             "1234567.891",
                             "1,234,567",
                             " 42 ",
                             "\t7",
                             "1.",
                             ".5",
                             "-.5",
                             "1e3",
                             "+5",
                             "1.2.3",
                             "1.2,5",
                             "abc",
                             "",
                             "-",
                             "1,",
                             "007",
                             "99999999999999999999999",
                             "0.30000000000000004",
                             "123456789012345678901234567890",
                             QString(400, u'9'),
                             "1 2",
                             "１２",
                             "-0.0",
                             "5.000"};
        quint64 seed = 12345;
        for (int i = 0; i < 3000; ++i) {
            seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
            const double value = double(qint64(seed >> 11) % 100000000000LL) / std::pow(10.0, int(seed % 9)) *
                                 ((seed >> 5) % 2 ? 1 : -1);
            texts << gridnum::plain(value, int(seed % 10)) << gridnum::format(value, int(seed % 4), true)
                  << QString::number(value, 'g', 17);
        }
        for (const QString& text : texts) {
            const auto got = gridnum::parse(text), expected = reference(text);
            QVERIFY2(got.has_value() == expected.has_value(), qPrintable(text));
            if (got) QVERIFY2(std::memcmp(&*got, &*expected, sizeof(double)) == 0, qPrintable(text));
        }
    }

    void readOnlyDesignLocksEveryCellAndSelectsWholeRows() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 4);
        CommonSpreadDesign(grid, true, false, false, true);
        QCOMPARE(grid.operationMode(), OperationMode::Row);
        QVERIFY(grid.NoBeep());
        QCOMPARE(grid.CursorType(), 0);
        QCOMPARE(grid.CursorStyle(), 2);
        QCOMPARE(grid.SelectBlockOptions(), 0);
        for (int r = 1; r <= 4; ++r)
            for (int c = 1; c <= 3; ++c)
                QVERIFY(grid.Lock(c, r));
        QVERIFY(!grid.EditModePermanent());
        QCOMPARE(grid.MaxRows(), 4);
    }
    void readOnlyDesignWithoutRowSelectKeepsCellMode() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        CommonSpreadDesign(grid, true, false, false, false);
        QCOMPARE(grid.operationMode(), OperationMode::Normal);
        QVERIFY(grid.Lock(1, 1));
    }
    void editableDesignIsPermanentEditWithReplace() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        CommonSpreadDesign(grid, false, false, false, false);
        QVERIFY(grid.EditModePermanent());
        QVERIFY(grid.EditModeReplace());
        QVERIFY(!grid.Lock(1, 1));
        QCOMPARE(grid.UserColAction(), 0);
    }
    void designSetsColoursReferenceStyleAndColumnResize() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 3);
        CommonSpreadDesign(grid, false, false, true, false);
        QCOMPARE(grid.UserColAction(), 1);
        QVERIFY(grid.DAutoCellTypes());
        QCOMPARE(grid.BackColorStyle(), 1);
        QCOMPARE(grid.SelBackColor(), 12254974);
        QCOMPARE(grid.RefStyle(), 2);
        QCOMPARE(grid.BackColor(1, 1), 0xFFFFFF);
        QCOMPARE(colorFromBgr(grid.BackColor(2, 2)), QColor(245, 245, 245));
        QCOMPARE(grid.BackColor(2, 3), 0xFFFFFF);
        QCOMPARE(grid.cells().rowForeColor(2), 0);
        QCOMPARE(grid.cells().rowForeColor(1), 0);
    }
    void zeroRowsDesignLeavesNoRows() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 5);
        CommonSpreadDesign(grid, true, true, false, false);
        QCOMPARE(grid.MaxRows(), 0);
        QCOMPARE(grid.ActiveRow(), 0);
    }
    void refusedDesignStepIsReportedAndTheRestStillRuns() {
        test::TestHome home;
        auto& msgs = test::script();
        RefusingGrid grid;
        fill(grid, 2, 4);
        CommonSpreadDesign(grid, false, true, false, false);
        QCOMPARE(int(msgs.boxes().size()), 1);
        QCOMPARE(
            msgs.last().text,
            QStringLiteral(
                "Error 380 (Invalid property value) in procedure CommonSpreadDesign of Module MduSpread"));
        QCOMPARE(msgs.last().buttons, int(MbOk));
        QCOMPARE(grid.MaxRows(), 0);
        QCOMPARE(grid.RefStyle(), 2);
        QCOMPARE(grid.cells().rowBackColor(2), kEvenRowColor);
    }

    void getGridTextOutsideTheGridIsEmpty() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 3);
        QCOMPARE(GetGridText(grid, 4, 1), QString());
        QCOMPARE(GetGridText(grid, 1, 4), QString());
        QCOMPARE(GetGridText(grid, 99, 99), QString());
        QCOMPARE(GetGridText(grid, -5, 1), QString());
        QCOMPARE(GetCellText(grid, 1, 9), QString());
        QCOMPARE(GetGridText(grid, 3, 3), QStringLiteral("3-3"));
    }
    void minusTwoReadsTheActiveCell() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 3);
        SetActiveCell(grid, 2, 3);
        QCOMPARE(grid.ActiveCol(), 2);
        QCOMPARE(grid.ActiveRow(), 3);
        QCOMPARE(GetGridText(grid, kActiveCell, kActiveCell), QStringLiteral("2-3"));
        QCOMPARE(GetCellText(grid, kActiveCell, 1), QStringLiteral("2-1"));
        QCOMPARE(GetCellText(grid, 1, kActiveCell), QStringLiteral("1-3"));
    }
    void rowZeroAndColumnZeroReadTheHeaders() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        grid.SetText(1, 0, QStringLiteral("품목"));
        QCOMPARE(GetGridText(grid, 1, 0), QStringLiteral("품목"));
        QCOMPARE(GetGridText(grid, 2, 0), QStringLiteral("B"));
        QCOMPARE(GetGridText(grid, 0, 2), QStringLiteral("2"));
    }

    void clearGridEmptiesEveryCellAndKeepsTheRows() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 4);
        ClearGrid(grid);
        QCOMPARE(grid.MaxRows(), 4);
        QCOMPARE(grid.DataRowCnt(), 0);
        QCOMPARE(GetGridText(grid, 3, 4), QString());
    }
    void clearBlockEmptiesOnlyTheBlock() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 4);
        ClearBlock(grid, 2, 2, 3, 3);
        QCOMPARE(GetGridText(grid, 2, 2), QString());
        QCOMPARE(GetGridText(grid, 3, 3), QString());
        QCOMPARE(GetGridText(grid, 1, 2), QStringLiteral("1-2"));
        QCOMPARE(GetGridText(grid, 2, 4), QStringLiteral("2-4"));
        QCOMPARE(GetGridText(grid, 2, 1), QStringLiteral("2-1"));
    }
    void clearBlockWithMinusOneTakesAllColumns() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 4);
        ClearBlock(grid, kAllCells, 2, kAllCells, 2);
        for (int c = 1; c <= 3; ++c)
            QCOMPARE(GetGridText(grid, c, 2), QString());
        QCOMPARE(GetGridText(grid, 1, 3), QStringLiteral("1-3"));
        QCOMPARE(grid.DataRowCnt(), 4);
    }
    void clearRangeAllEmptiesTheWholeGrid() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 3);
        ClearRangeAll(grid);
        QCOMPARE(grid.DataRowCnt(), 0);
        QCOMPARE(grid.MaxRows(), 3);
    }
    void clearingKeepsColumnTypesAndLocks() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        SetFloatCell(grid, 2, 2, false);
        grid.SetLock(1, 1, true);
        ClearGrid(grid);
        QCOMPARE(grid.cellFormat(2, 1).type, CellType::Float);
        QVERIFY(grid.Lock(1, 1));
    }
    void paintBlockColoursTheBlock() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 3);
        PaintBlock(grid, 1, 2, 3, 2, 12632319);
        for (int c = 1; c <= 3; ++c)
            QCOMPARE(grid.BackColor(c, 2), 12632319);
        QCOMPARE(grid.BackColor(1, 1), 0xFFFFFF);
        PaintBlock(grid, kAllCells, 2, kAllCells, 2, 0xFFFFFF);
        QCOMPARE(grid.BackColor(2, 2), 0xFFFFFF);
    }
    void moveBlockClosesTheGapOfADeletedLine() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 5);
        ClearBlock(grid, 1, 2, 3, 2);
        MoveBlock(grid, 1, 3, 3, 5, 1, 2);
        QCOMPARE(GetGridText(grid, 1, 2), QStringLiteral("1-3"));
        QCOMPARE(GetGridText(grid, 3, 4), QStringLiteral("3-5"));
        QCOMPARE(GetGridText(grid, 1, 5), QString());
        QCOMPARE(grid.DataRowCnt(), 4);
    }
    void moveBlockToTheRightLeavesTheSourceEmpty() {
        test::TestHome home;
        Grid grid;
        fill(grid, 4, 2);
        ClearBlock(grid, 3, 1, 4, 2);
        MoveBlock(grid, 1, 1, 2, 1, 3, 1);
        QCOMPARE(GetGridText(grid, 3, 1), QStringLiteral("1-1"));
        QCOMPARE(GetGridText(grid, 4, 1), QStringLiteral("2-1"));
        QCOMPARE(GetGridText(grid, 1, 1), QString());
        QCOMPARE(GetGridText(grid, 1, 2), QStringLiteral("1-2"));
    }
    void setActiveCellOutsideTheGridIsRefused() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        SetActiveCell(grid, 2, 2);
        SetActiveCell(grid, 3, 9);
        QCOMPARE(grid.ActiveCol(), 2);
        QCOMPARE(grid.ActiveRow(), 2);
    }

    void deleteGridRowWithoutShrinkLeavesMaxRowsAsItWas() {
        test::TestHome home;
        auto& msgs = test::script();
        Grid grid;
        fill(grid, 2, 6);
        ClearBlock(grid, 1, 5, 2, 6);
        DeleteGridRow(grid, 2, false, false);
        QCOMPARE(grid.MaxRows(), 6);
        QCOMPARE(GetGridText(grid, 1, 2), QStringLiteral("1-3"));
        QCOMPARE(GetGridText(grid, 2, 3), QStringLiteral("2-4"));
        QCOMPARE(grid.DataRowCnt(), 3);
        QVERIFY(msgs.records().empty());
    }
    void deleteGridRowWithShrinkCutsMaxRowsToTheDataRows() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 6);
        ClearBlock(grid, 1, 5, 2, 6);
        DeleteGridRow(grid, 1, false, true);
        QCOMPARE(grid.MaxRows(), 3);
        QCOMPARE(GetGridText(grid, 1, 1), QStringLiteral("1-2"));
    }
    void deleteGridRowMinusTwoDeletesTheActiveRowAndSaysSo() {
        test::TestHome home;
        auto& msgs = test::script();
        Grid grid;
        fill(grid, 2, 4);
        SetActiveCell(grid, 1, 3);
        DeleteGridRow(grid, kActiveCell, true, false);
        QCOMPARE(GetGridText(grid, 1, 3), QStringLiteral("1-4"));
        QCOMPARE(GetGridText(grid, 1, 4), QString());
        QCOMPARE(msgs.last().kind, QStringLiteral("float"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 삭제하였습니다."));
        QCOMPARE(msgs.last().buttons, 500);
        QVERIFY(msgs.last().modal);
        QCOMPARE(msgs.last().color, 16776960);
    }
    void deletedRowTakesItsLockAndPaintAlong() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 4);
        grid.SetLock(kAllCells, kAllCells, true);
        grid.SetLock(kAllCells, 3, false);
        PaintBlock(grid, 1, 3, 2, 3, 255);
        DeleteGridRow(grid, 2, false, false);
        QVERIFY(!grid.Lock(1, 2));
        QCOMPARE(grid.BackColor(1, 2), 255);
        QVERIFY(grid.Lock(1, 4));
    }

    void floatColumnShowsItsPlacesAndSeparator() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 3);
        SetFloatCell(grid, 3, 2, true);
        QVERIFY(grid.SetText(3, 1, QStringLiteral("1234567.5")));
        QCOMPARE(GetGridText(grid, 3, 1), QStringLiteral("1,234,567.50"));
        QCOMPARE(grid.Value(3, 1), 1234567.5);
        QVERIFY(grid.SetText(3, 2, QStringLiteral("-3,765")));
        QCOMPARE(GetGridText(grid, 3, 2), QStringLiteral("-3,765.00"));
        QVERIFY(grid.SetText(3, 3, QStringLiteral("0.125")));
        QCOMPARE(GetGridText(grid, 3, 3), QStringLiteral("0.13"));
        const CellFormat f = grid.cellFormat(3, 2);
        QCOMPARE(f.type, CellType::Float);
        QCOMPARE(f.decimals, 2);
        QVERIFY(f.separator);
        QCOMPARE(f.max, 999999999999.0);
        QCOMPARE(f.min, -999999999999.0);
        QCOMPARE(f.vAlign, VAlign::Center);
        QCOMPARE(grid.cellFormat(3, 2).vAlign, VAlign::Center);
    }
    void floatColumnRefusesNumbersBeyond999999999999() {
        test::TestHome home;
        Grid grid;
        fill(grid, 1, 2);
        SetFloatCell(grid, 1, 0, false);
        QVERIFY(grid.SetText(1, 1, QStringLiteral("999999999999")));
        QCOMPARE(GetGridText(grid, 1, 1), QStringLiteral("999,999,999,999"));
        QVERIFY(!grid.SetText(1, 1, QStringLiteral("1000000000000")));
        QCOMPARE(GetGridText(grid, 1, 1), QStringLiteral("999,999,999,999"));
        QVERIFY(grid.SetText(1, 2, QStringLiteral("-999999999999")));
        QVERIFY(!grid.SetText(1, 2, QStringLiteral("-1000000000000")));
        QCOMPARE(grid.Value(1, 2), -999999999999.0);
        QVERIFY(!grid.SetText(1, 2, QStringLiteral("abc")));
        QCOMPARE(grid.cellFormat(1, 1).vAlign, VAlign::Top);
    }
    void floatColumnTurnsTextIntoNumbersOrEmpties() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        grid.SetText(2, 1, QStringLiteral("12"));
        SetFloatCell(grid, 2, 1, false);
        QCOMPARE(GetGridText(grid, 2, 1), QStringLiteral("12.0"));
        QCOMPARE(GetGridText(grid, 2, 2), QString());
    }
    void currencyColumnHasNoSymbolNoPlacesAndSeparators() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        SetCurrencyCell(grid, 2, false);
        QVERIFY(grid.SetText(2, 1, QStringLiteral("3422.72")));
        QCOMPARE(GetGridText(grid, 2, 1), QStringLiteral("3,423"));
        QVERIFY(grid.SetText(2, 2, QStringLiteral("-2.5")));
        QCOMPARE(GetGridText(grid, 2, 2), QStringLiteral("-3"));
        QVERIFY(!grid.SetText(2, 2, QStringLiteral("1000000000000")));
        const CellFormat f = grid.cellFormat(2, 1);
        QCOMPARE(f.type, CellType::Currency);
        QCOMPARE(f.decimals, 0);
        QCOMPARE(f.max, 999999999999.0);
    }
    void numberColumnsFollowNewRows() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 1);
        SetCurrencyCell(grid, 2, true);
        grid.setMaxRows(3);
        QCOMPARE(grid.cellFormat(2, 3).type, CellType::Currency);
        QCOMPARE(grid.cellFormat(1, 3).type, CellType::Text);
    }

    void sumFormulaTotalsTheColumnInRowOne() {
        test::TestHome home;
        Grid grid;
        fill(grid, 4, 5);
        for (int r = 1; r <= 5; ++r)
            grid.SetText(3, r, QString::number(r * 100));
        SetSumFormula(grid, 3, 4);
        QCOMPARE(grid.Formula(4, 1), QStringLiteral("SUM(R1C3:R5C3)"));
        QCOMPARE(GetGridText(grid, 4, 1), QStringLiteral("1500"));
        for (int r = 2; r <= 5; ++r)
            QCOMPARE(GetGridText(grid, 4, r), QString());
        grid.SetText(3, 2, QStringLiteral("1,000"));
        QCOMPARE(GetGridText(grid, 4, 1), QStringLiteral("2300"));
    }
    void aColumnTypeSetWhileTheGridHasNoRowsIsKeptForTheRowsAddedLater() {
        test::TestHome home;
        Grid grid;
        grid.setMaxCols(3);
        grid.setMaxRows(0);
        SetFloatCell(grid, 2, 0, false);
        grid.setMaxRows(2);
        QVERIFY(grid.cellFormat(2, 2).isNumber());
        QVERIFY(grid.SetText(2, 1, QStringLiteral("1234567")));
        QCOMPARE(grid.cells().data(grid.cells().index(0, 1), Qt::DisplayRole).toString(),
                 QStringLiteral("1,234,567"));
    }
    void aQuietFillAnnouncesNothingCellByCellAndLeavesTheFormulasRight() {
        test::TestHome home;
        Grid grid;
        fill(grid, 4, 5);
        SetSumFormula(grid, 3, 4);
        QSignalSpy texts(&grid, &Grid::textChanged);
        QSignalSpy view(&grid.cells(), &GridModel::dataChanged);
        grid.fillQuietly([&grid] {
            for (int r = 1; r <= 5; ++r)
                grid.SetText(3, r, QString::number(r * 10));
        });
        QCOMPARE(texts.count(), 0);
        QCOMPARE(view.count(), 1);
        QCOMPARE(GetGridText(grid, 3, 5), QStringLiteral("50"));
        QCOMPARE(GetGridText(grid, 4, 1), QStringLiteral("150"));
    }
    void sumFormulaReachesOnlyTheRowsThereWereWhenItWasSet() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 2);
        grid.SetText(1, 1, QStringLiteral("5"));
        grid.SetText(1, 2, QStringLiteral("7"));
        SetSumFormula(grid, 1, 2);
        grid.setMaxRows(3);
        grid.SetText(1, 3, QStringLiteral("100"));
        QCOMPARE(GetGridText(grid, 2, 1), QStringLiteral("12"));
        SetSumFormula(grid, 1, 2);
        QCOMPARE(GetGridText(grid, 2, 1), QStringLiteral("112"));
    }
    void sumIntoANumberColumnShowsItsFormat() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 3);
        SetCurrencyCell(grid, 1, false);
        SetCurrencyCell(grid, 2, false);
        grid.SetText(1, 1, QStringLiteral("1500000"));
        grid.SetText(1, 2, QStringLiteral("250000"));
        grid.SetText(1, 3, QString());
        SetSumFormula(grid, 1, 2);
        QCOMPARE(GetGridText(grid, 2, 1), QStringLiteral("1,750,000"));
        QCOMPARE(grid.Value(2, 1), 1750000.0);
    }
    void maxRowsZeroClearsTheGridAndOneGivesABlankRow() {
        test::TestHome home;
        Grid grid;
        fill(grid, 3, 4);
        SetActiveCell(grid, 2, 4);
        grid.setMaxRows(0);
        QCOMPARE(grid.ActiveRow(), 0);
        QCOMPARE(grid.ActiveCol(), 0);
        grid.setMaxRows(1);
        QCOMPARE(GetGridText(grid, 1, 1), QString());
        QCOMPARE(grid.DataRowCnt(), 0);
        QCOMPARE(grid.ActiveRow(), 1);
        QCOMPARE(grid.ActiveCol(), 1);
    }
    void fewerRowsMoveTheActiveCellUp() {
        test::TestHome home;
        Grid grid;
        fill(grid, 2, 6);
        SetActiveCell(grid, 2, 6);
        grid.setMaxRows(3);
        QCOMPARE(grid.ActiveRow(), 3);
        QCOMPARE(grid.ActiveCol(), 2);
    }
    void dataRowCntCountsTheLastRowWithAnyText() {
        test::TestHome home;
        Grid grid;
        grid.setMaxCols(8);
        grid.setMaxRows(15);
        QCOMPARE(grid.DataRowCnt(), 0);
        grid.setColHidden(8, true);
        grid.SetText(8, 4, QStringLiteral("0"));
        QCOMPARE(grid.DataRowCnt(), 4);
        grid.SetText(8, 4, QString());
        QCOMPARE(grid.DataRowCnt(), 0);
    }
};

NB_TEST_MAIN(TestGridHelpers)
#include "tst_gridhelpers.moc"
