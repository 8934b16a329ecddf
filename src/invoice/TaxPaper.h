#pragma once
// The look of FrmTax: the paper tax invoice drawn behind the entry fields (or the picture
// Image/tax_back.jpg when the user put one there), and the digit cells of supply and tax.

#include <QLabel>
#include <QPixmap>
#include <QRect>
#include <QWidget>

namespace nb {

// Where the parts of the paper lie, in pixels of the paper widget; the screen places its
// fields by the same numbers.
namespace paper {
inline constexpr int kWidth = 750;
inline constexpr int kHeight = 500;
inline constexpr int kHalf = 375;      // supplier left, receiver right
inline constexpr int kSideLabel = 22;  // the vertical "공급자" / "공급받는자" strip
inline constexpr int kLabelWidth = 62; // field captions inside a half
inline constexpr int kPartyTop = 56;
inline constexpr int kPartyRow = 34; // four rows: number, name, address, business
inline constexpr int kDateTop = 198; // 작성 / 공급가액 / 세액 / 비고
inline constexpr int kDateHead = 18;
inline constexpr int kDateRow = 40;
inline constexpr int kCellsLeft = 150; // the 21 digit cells
inline constexpr int kCellWidth = 18;
inline constexpr int kRemarkLeft = kCellsLeft + 21 * kCellWidth;
inline constexpr int kLinesTop = 262;
inline constexpr int kLineHead = 20;
inline constexpr int kLineRow = 30;
inline constexpr int kTotalTop = kLinesTop + kLineHead + 5 * kLineRow + 4;
inline constexpr int kTotalRow = 44;
// Columns of an item line: 월일, 품목/규격, 단위, 수량, 단가, 공급가액, 세액.
inline constexpr int kLineCols[8] = {4, 60, 300, 360, 430, 520, 630, 746};
} // namespace paper

class TaxPaper : public QWidget {
    Q_OBJECT
public:
    explicit TaxPaper(QWidget* parent = nullptr);
    // The user's picture instead of the drawn form; a null pixmap brings the drawing back.
    void setBackgroundPicture(const QPixmap& picture);
    bool hasBackgroundPicture() const { return !m_picture.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_picture;
};

// gong_num: the caption " * * 1 2 ..." (a blank and a character per cell) drawn one
// character to a cell, 11 cells of supply and 10 of tax.
class DigitCells : public QLabel {
    Q_OBJECT
public:
    explicit DigitCells(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// Draws the paper tax invoice into a rectangle: frame, the two parties, the date and sum
// row, the line header and the total row. The screen and the sample picture both use it.
void drawTaxPaper(class QPainter& painter, const QRect& area);

} // namespace nb
