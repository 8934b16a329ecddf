#include "common/grid/MduSpread.h"

#include "common/Messages.h"

#include <QEvent>
#include <QScrollBar>
#include <functional>

namespace nb {

namespace {

// Each step of the standard look runs by itself: a refused one is reported and the rest go on.
void designStep(const std::function<void()>& step) {
    try {
        step();
    } catch (const GridError& error) {
        ShowFailureReport(error.number(), error.description(), QStringLiteral("CommonSpreadDesign"),
                          QStringLiteral("MduSpread"));
    } catch (const std::exception& error) {
        ShowFailureReport(5, QString::fromUtf8(error.what()), QStringLiteral("CommonSpreadDesign"),
                          QStringLiteral("MduSpread"));
    }
}

int resolveCol(const Grid& grid, int col) {
    return col == kActiveCell ? grid.ActiveCol() : col;
}
int resolveRow(const Grid& grid, int row) {
    return row == kActiveCell ? grid.ActiveRow() : row;
}

CellFormat numberColumn(CellType type, int decimals, bool centerV) {
    CellFormat f;
    f.type = type;
    f.decimals = decimals;
    f.separator = true;
    f.max = kNumberCellMax;
    f.min = kNumberCellMin;
    f.vAlign = centerV ? VAlign::Center : VAlign::Top;
    return f;
}

} // namespace

void CommonSpreadDesign(Grid& grid, bool readOnly, bool zeroRows, bool userColResize, bool rowSelect) {
    if (readOnly) {
        if (rowSelect) designStep([&] { grid.setOperationMode(OperationMode::Row); });
        designStep([&] { grid.setNoBeep(true); });
        designStep([&] { grid.setCursorType(0); });
        designStep([&] { grid.setCursorStyle(2); });
        designStep([&] { grid.setSelectBlockOptions(0); });
        designStep([&] { grid.SetLock(kAllCells, kAllCells, true); });
    } else {
        designStep([&] { grid.setEditModePermanent(true); });
        designStep([&] { grid.setEditModeReplace(true); });
    }
    if (userColResize) designStep([&] { grid.setUserColAction(1); });
    designStep([&] { grid.setDAutoCellTypes(true); });
    designStep([&] { grid.setBackColorStyle(1); });
    designStep([&] { grid.setSelBackColor(kSelBackColor); });
    if (zeroRows) designStep([&] { grid.setMaxRows(0); });
    designStep([&] { grid.SetRefStyle(2); });
    designStep([&] { grid.SetOddEvenRowColor(kWhiteColor, 0, kEvenRowColor, 0); });
}

QString GetGridText(const Grid& grid, int col, int row) {
    QString text;
    if (!grid.GetText(resolveCol(grid, col), resolveRow(grid, row), text)) return {};
    return text;
}

QString GetCellText(const Grid& grid, int col, int row) {
    return grid.Text(resolveCol(grid, col), resolveRow(grid, row));
}

void ClearGrid(Grid& grid) {
    grid.ClearRange(1, 1, grid.MaxCols(), grid.MaxRows());
}

void ClearBlock(Grid& grid, int col, int row, int col2, int row2) {
    grid.ClearRange(col, row, col2, row2);
}

void ClearRangeAll(Grid& grid) {
    grid.ClearRange(1, 1, grid.MaxCols(), grid.MaxRows());
}

void PaintBlock(Grid& grid, int col, int row, int col2, int row2, int color) {
    const QRect block = grid.cells().resolveBlock(col, row, col2, row2);
    for (int r = block.top(); r <= block.bottom(); ++r)
        for (int c = block.left(); c <= block.right(); ++c)
            grid.SetBackColor(c, r, color);
}

void MoveBlock(Grid& grid, int col, int row, int col2, int row2, int destCol, int destRow) {
    grid.MoveRange(col, row, col2, row2, destCol, destRow);
}

void SetActiveCell(Grid& grid, int col, int row) {
    grid.SetActiveCell(col, row);
}

void DeleteGridRow(Grid& grid, int row, bool showDone, bool shrink) {
    grid.DeleteRows(resolveRow(grid, row), 1);
    if (shrink) grid.setMaxRows(grid.DataRowCnt());
    grid.Refresh();
    if (showDone) ShowFloatMsg(QString::fromUtf8(kRowDeletedText), 500, true, kDeletedFloatColor);
}

void SetFloatCell(Grid& grid, int col, int decPlaces, bool centerV) {
    grid.SetCellType(col, kAllCells, numberColumn(CellType::Float, decPlaces, centerV));
}

void SetCurrencyCell(Grid& grid, int col, bool centerV) {
    grid.SetCellType(col, kAllCells, numberColumn(CellType::Currency, 0, centerV));
}

void MakeTotalGrid(Grid& total, Grid& data, int labelCol) {
    total.setMaxCols(data.MaxCols());
    for (int c = 1; c <= data.MaxCols(); ++c) {
        total.setColHidden(c, data.ColHidden(c));
        if (!data.ColHidden(c)) total.setColWidth(c, data.ColWidth(c));
    }
    CommonSpreadDesign(total, true, true, true, true);
    total.setOperationMode(OperationMode::Normal);
    total.setSelectBlockOptions(0);
    // The design leaves no rows; the total lives in row 1.
    total.setMaxRows(1);
    total.SetText(labelCol, 1, QString::fromUtf8(kTotalLabel));
    total.SetBackColor(kAllCells, total.MaxRows(), kTotalBackColor);
    total.setGrayAreaBackColor(kTotalBackColor);
    total.setRowHeadersShow(data.RowHeadersShow());
    if (data.RowHeadersShow()) {
        total.setColWidth(0, data.ColWidth(0));
        total.SetText(0, 1, QStringLiteral(" "));
    }
    total.setColHeadersShow(false);
    total.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    total.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    total.setFixedHeight(total.rowHeightPixels() + 2 * total.frameWidth() + 1);
}

void SetSumFormula(Grid& grid, int srcCol, int dstCol) {
    // The formula names the last row: a list not yet counted is read through first.
    if (!grid.rowsKnown()) grid.finishReading();
    // One block: clearing cell by cell would work every formula out again after each cell.
    grid.ClearRange(dstCol, 1, dstCol, grid.MaxRows());
    grid.SetFormula(dstCol, 1, QStringLiteral("SUM(R1C%1:R%2C%1)").arg(srcCol).arg(grid.MaxRows()));
}

namespace {

// Entering the total grid leaves it without an active cell, so it never shows a cursor;
// a click on it selects nothing.
class NoCursorOnFocus : public QObject {
public:
    explicit NoCursorOnFocus(Grid* grid) : QObject(grid), m_grid(grid) {
        grid->installEventFilter(this);
        grid->viewport()->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::FocusIn) m_grid->SetActiveCell(0, 0);
        return event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick ||
               event->type() == QEvent::MouseMove;
    }

private:
    Grid* m_grid;
};

} // namespace

void LinkTotalGrid(Grid& total, Grid& data, const std::vector<std::pair<int, int>>& copies) {
    auto copyRowOne = [&total, &data, copies](int col, int row) {
        if (row != 1) return;
        for (const auto& [from, to] : copies)
            if (from == col) total.SetText(to, 1, data.Text(from, 1));
    };
    for (const auto& [from, to] : copies)
        copyRowOne(from, 1);
    QObject::connect(&data, &Grid::textChanged, &total, copyRowOne);
    QObject::connect(&data, &Grid::colWidthChange, &total, [&total, &data](int col1, int col2) {
        for (int c = col1; c <= col2; ++c)
            total.setColWidth(c, data.ColWidth(c));
    });
    QObject::connect(data.horizontalScrollBar(), &QScrollBar::valueChanged, total.horizontalScrollBar(),
                     &QScrollBar::setValue);
    new NoCursorOnFocus(&total);
    total.SetActiveCell(0, 0);
}

} // namespace nb
