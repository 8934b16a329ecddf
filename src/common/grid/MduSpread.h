#pragma once
// The common layer over the grids of every screen: the standard look, reading cells, block
// clearing, moving and painting, number columns with their limits, and the one-row total
// grid under a list. Rows and columns count from 1; -1 means all, -2 (read helpers and
// DeleteGridRow) the active cell.

#include "common/grid/Grid.h"

#include <QString>
#include <utility>
#include <vector>

namespace nb {

inline constexpr const char* kTotalLabel = "[합 계]";
inline constexpr const char* kRowDeletedText = "자료를 삭제하였습니다.";

// The standard look. A step the grid refuses gives the failure report
// ") in procedure CommonSpreadDesign of Module MduSpread" and the next step runs.
void CommonSpreadDesign(Grid& grid, bool readOnly, bool zeroRows, bool userColResize, bool rowSelect);

// Text of a cell; empty outside the grid.
QString GetGridText(const Grid& grid, int col, int row);
QString GetCellText(const Grid& grid, int col, int row);

void ClearGrid(Grid& grid);
void ClearBlock(Grid& grid, int col, int row, int col2, int row2);
void ClearRangeAll(Grid& grid);
void PaintBlock(Grid& grid, int col, int row, int col2, int row2, int color);
void MoveBlock(Grid& grid, int col, int row, int col2, int row2, int destCol, int destRow);
void SetActiveCell(Grid& grid, int col, int row);
// Deletes one row (-2: the active one); with shrink MaxRows becomes DataRowCnt; with
// showDone the floating "자료를 삭제하였습니다." shows for half a second.
void DeleteGridRow(Grid& grid, int row, bool showDone, bool shrink);

// A whole column of numbers with thousands separators and the ±999999999999 limits.
void SetFloatCell(Grid& grid, int col, int decPlaces, bool centerV);
void SetCurrencyCell(Grid& grid, int col, bool centerV);

// Fits the one-row total grid to the data grid: columns, widths, "[합 계]" in labelCol,
// the total colour, the row header.
void MakeTotalGrid(Grid& total, Grid& data, int labelCol);
// Row 1 of dstCol sums srcCol over all rows ("SUM(R1C<src>:R<MaxRows>C<src>)"); the other
// rows of dstCol are emptied.
void SetSumFormula(Grid& grid, int srcCol, int dstCol);

// Keeps a total grid with its data grid: each (data column, total column) pair copies the
// data grid's row 1 whenever it changes (the sum formulas), column widths the operator drags
// follow, the two scroll side by side, and the total grid never shows a cursor.
void LinkTotalGrid(Grid& total, Grid& data, const std::vector<std::pair<int, int>>& copies);

} // namespace nb
