#pragma once
// The vocabulary of the grid: cell types with their limits, the reserved row and column
// numbers, the colours of the standard look, and the error a grid raises on a bad value.

#include "core/RuntimeError.h"
#include <QString>

namespace nb {

// Rows and columns count from 1; 0 is the header row or the row-header column.
inline constexpr int kAllCells = -1;   // every row or every column
inline constexpr int kActiveCell = -2; // the active row or column (read helpers)

// Colours of the standard look, as blue * 65536 + green * 256 + red.
inline constexpr int kSelBackColor = 12254974;
inline constexpr int kTotalBackColor = 14741728;
inline constexpr int kWhiteColor = 16777215;
inline constexpr int kEvenRowColor = 245 * 65536 + 245 * 256 + 245;
inline constexpr int kDeletedFloatColor = 16776960;

// Limits of number cells.
inline constexpr double kNumberCellMax = 999999999999.0;
inline constexpr double kNumberCellMin = -999999999999.0;

enum class CellType { Text, Float, Currency, StaticText };

// Vertical alignment codes of the original control: 0 top, 1 bottom, 2 centre.
enum class VAlign { Top = 0, Bottom = 1, Center = 2 };

// How the operator moves and selects: cell by cell, or a whole row at a time.
enum class OperationMode { Normal = 0, Read = 1, Row = 2 };

// Where Enter takes the cursor after an edit.
enum class EnterAction { None, Down, Right, Next };

struct CellFormat {
    CellType type = CellType::Text;
    int decimals = 0;
    bool separator = false;
    double min = kNumberCellMin;
    double max = kNumberCellMax;
    VAlign vAlign = VAlign::Top;

    bool isNumber() const { return type == CellType::Float || type == CellType::Currency; }
};

// A refused property value or action, with the number and words of the original's run-time
// errors (380 "Invalid property value").
class GridError : public RuntimeError {
public:
    using RuntimeError::RuntimeError;
};

inline GridError invalidPropertyValue() {
    return GridError(380, QStringLiteral("Invalid property value"));
}

} // namespace nb
