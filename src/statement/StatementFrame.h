#pragma once
// The empty form of a statement on an A4 sheet: two half-page forms, the upper in red for the
// supplier, the lower in blue for the receiver, with a cut line between them. It is the frame
// under the printed values: the issue prints on paper that already carries it, plain paper
// gets it printed with the values, and the print test draws it alone.

#include <QColor>
#include <array>

namespace nb {

class PrintJob;

namespace dealframe {
inline constexpr double kU = 0.0625;          // the grid step, 1/16 inch
inline constexpr double kHalfDistance = 5.84; // the lower half under the upper, inches
inline constexpr double kCutLine = 5.3125;    // the cut line under the upper half's top
inline constexpr double kCutLength = 7.25;
inline constexpr double kTopOffset = 0.40875; // inches added to the top margin
inline constexpr double kLeftOffset = 0.5;    // inches added to the left margin
inline const QString kFrameFont = QStringLiteral("돋움체");
} // namespace dealframe

// The grid points of one half from its base point, inches; index 0 is unused, as the form
// counts from 1: Y 1 to 23 and X 1 to 24.
std::array<double, 24> frameYs(double Y0);
std::array<double, 25> frameXs(double X0);

// Both halves and the cut line; Left in print columns, Top in print rows.
void Print_Form_DealList_A4Half(PrintJob& job, double Left, double Top);
// One half at (X0, Y0) inches in the colour; Supplier chooses the word of the copy.
void Print_Form_DealList_A4Half_Sub(PrintJob& job, double X0, double Y0, const QColor& Color, bool Supplier);

} // namespace nb
