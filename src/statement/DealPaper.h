#pragma once
// The look of the head of FrmDealList: a statement's paper head drawn behind the supplier and
// receiver boxes (or the picture Image/bill_back.jpg when the user put one there).

#include <QPixmap>
#include <QWidget>

namespace nb {

// Where the parts of the head lie, in pixels of the paper widget; the screen places its boxes
// by the same numbers.
namespace dealpaper {
inline constexpr int kWidth = 760;
inline constexpr int kHeight = 186;
inline constexpr int kHalf = 380;      // supplier left, receiver right
inline constexpr int kSideLabel = 22;  // the vertical "공급자" / "공급받는자" strip
inline constexpr int kLabelWidth = 62; // field captions inside a half
inline constexpr int kFieldLeft = kSideLabel + kLabelWidth + 4;
inline constexpr int kPartyTop = 44;
inline constexpr int kPartyRow = 35; // four rows: number, name, address, business
inline constexpr int kMid = 232;     // 성명 / 종목 captions inside a half
inline constexpr int kMidLabel = 40;
} // namespace dealpaper

class DealPaper : public QWidget {
    Q_OBJECT
public:
    explicit DealPaper(QWidget* parent = nullptr);
    // The user's picture instead of the drawn head; a null pixmap brings the drawing back.
    void setBackgroundPicture(const QPixmap& picture);
    bool hasBackgroundPicture() const { return !m_picture.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_picture;
};

} // namespace nb
