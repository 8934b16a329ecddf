#include "invoice/SampleForm.h"

#include "invoice/InvoicePrint.h"
#include "printing/PrintGrid.h"

#include <QPaintDevice>
#include <QPainter>
#include <algorithm>

namespace nb {

namespace {

using namespace invoicelayout;

const QColor kFormInk(200, 40, 40);
constexpr double kCaptionSize = 7; // points
constexpr double kCornerCaptionSize = 5;
constexpr double kTitleSize = 16;
constexpr double kStripWidth = 0.22;  // the vertical "공급자" strip, inches
constexpr double kCaptionWidth = 0.6; // caption cells of the party rows on the wide side
constexpr double kHeadRows = 0.75;    // a caption row over a block
constexpr double kAbove = 0.85;       // rows of a party box over its value row
constexpr double kBelow = 1.15;       // rows of a party box from its value row down
constexpr double kGap = 0.03;         // inches between a caption cell and the first value

// Rows a text of `size` points takes: its em, in rows of six to the inch.
double emRows(double size) {
    return size / kPointsPerInch * kRowsPerInch;
}

double tabX(double tab, double size = kBaseSize) {
    return printTabX(0, tab, size);
}

double col(double size = kBaseSize) {
    return printColumnWidth(size);
}

// The rule between a field at tab `a` padded to `width` columns and the next at tab `b`:
// halfway across the gap, or half a column into the next field when they touch (the left one
// is right-aligned up to it, the right one seldom fills its first column).
double ruleBetween(int a, int width, int b, double size = kBaseSize) {
    const double end = tabX(a + width, size);
    const double start = tabX(b, size);
    return end < start ? (end + start) / 2 : start + col(size) / 2;
}

// The leftmost x and the rightmost end (at full size) an address can take on its side.
struct AddressSpan {
    double left = 1e9;
    double fullSizeEnd = 0;
};
AddressSpan addressSpan(bool receiver) {
    AddressSpan span;
    for (int chars = 0; chars <= 40; ++chars) {
        const QString addr(chars, QChar(0xAC00));
        const AddressPlace place = addressPlace(addr, receiver, kBaseSize);
        const double x = tabX(place.tab, place.size);
        span.left = std::min(span.left, x);
        if (place.size == kBaseSize)
            span.fullSizeEnd = std::max(span.fullSizeEnd, x + printColumns(addr) * col(place.size));
    }
    return span;
}

struct Frame {
    double left, right, split; // form edges and the supplier/receiver split, inches
    double userCaptionRight, traderCaptionLeft, traderCaptionRight;
    double cellsLeft, cellsRight;
};

Frame frameOf() {
    Frame f{};
    f.left = tabX(kYearTab, kBigSize) - 4 * col();
    f.right = tabX(kLineTax.tab + kLineTax.width) + col();
    const AddressSpan user = addressSpan(false);
    const AddressSpan trader = addressSpan(true);
    f.split = user.fullSizeEnd + col();
    f.userCaptionRight = std::min({user.left, tabX(kUserCompanyTab), tabX(kUserSerialTab)}) - kGap;
    f.traderCaptionLeft = f.split + kStripWidth;
    f.traderCaptionRight = std::min({trader.left, tabX(kTraderCompanyTab), tabX(kTraderSerialTab)}) - kGap;
    f.cellsLeft = digitCellsX(0) - (kCellPitch - col(kBigSize)) / 2;
    f.cellsRight = f.cellsLeft + (kSupplyCells + kTaxCells) * kCellPitch;
    return f;
}

class Boxes {
public:
    explicit Boxes(int copy) : m_base(kCopyBaseRows[copy]) {}
    double y(double row) const { return printRowY(0, m_base + row); }
    void add(const QString& field, double x1, double row1, double x2, double row2,
             const QString& caption = QString(), double captionSize = 0) {
        m_boxes.push_back({field, QRectF(QPointF(x1, y(row1)), QPointF(x2, y(row2))), caption, captionSize});
    }
    void caption(const QString& text, double x1, double row1, double x2, double row2) {
        add(QString(), x1, row1, x2, row2, text);
    }
    std::vector<SampleFormBox> take() { return std::move(m_boxes); }

private:
    int m_base;
    std::vector<SampleFormBox> m_boxes;
};

void addHead(Boxes& b, const Frame& f) {
    const double top = kSerialRow - kAbove;
    const double bottom = kSerialRow + kBelow;
    const double valueLeft = tabX(kSerialTab, kBigSize) - 2 * kGap;
    const double captionLeft = valueLeft - kCaptionWidth;
    b.caption(QStringLiteral("세 금 계 산 서"), f.left, top - 2 * kHeadRows, captionLeft, bottom);
    b.caption(QStringLiteral("책 번 호"), captionLeft, top - 2 * kHeadRows, valueLeft, top);
    b.add(QStringLiteral("book"), valueLeft, top - 2 * kHeadRows, f.right, top);
    b.caption(QStringLiteral("일련번호"), captionLeft, top, valueLeft, bottom);
    b.add(QStringLiteral("serial"), valueLeft, top, f.right, bottom);
}

struct PartySide {
    QString prefix; // "user" / "trader"
    QString strip;
    double stripLeft, captionRight, right;
    int companyTab, delegateTab, statusTab, itemTab;
};

void addParty(Boxes& b, const PartySide& s) {
    const double captionLeft = s.stripLeft + kStripWidth;
    b.caption(s.strip, s.stripLeft, kNumberRow - kAbove, captionLeft, kBusinessRow + kBelow);
    const int rows[4] = {kNumberRow, kNameRow, kAddressRow, kBusinessRow};
    const QString captions[4] = {QStringLiteral("등록번호"), QStringLiteral("상 호\n(법인명)"),
                                 QStringLiteral("사업장\n주 소"), QStringLiteral("업 태")};
    for (int i = 0; i < 4; ++i)
        b.caption(captions[i], captionLeft, rows[i] - kAbove, s.captionRight, rows[i] + kBelow);
    const double nameRule = ruleBetween(s.companyTab, kNameWidthLimit, s.delegateTab);
    const double kindRule = ruleBetween(s.statusTab, s.itemTab - s.statusTab - 1, s.itemTab);
    const auto row = [&](const QString& field, double x1, double x2, int r, const QString& corner = {}) {
        b.add(s.prefix + field, x1, r - kAbove, x2, r + kBelow, corner,
              corner.isEmpty() ? 0 : kCornerCaptionSize);
    };
    row(QStringLiteral("Serial"), s.captionRight, s.right, kNumberRow);
    row(QStringLiteral("Company"), s.captionRight, nameRule, kNameRow);
    row(QStringLiteral("Delegate"), nameRule, s.right, kNameRow, QStringLiteral("성명"));
    row(QStringLiteral("Address"), s.captionRight, s.right, kAddressRow);
    row(QStringLiteral("Status"), s.captionRight, kindRule, kBusinessRow);
    row(QStringLiteral("Item"), kindRule, s.right, kBusinessRow, QStringLiteral("종목"));
}

void addParties(Boxes& b, const Frame& f) {
    addParty(b, {QStringLiteral("user"), QStringLiteral("공\n급\n자"), f.left, f.userCaptionRight, f.split,
                 kUserCompanyTab, kUserDelegateTab, kUserStatusTab, kUserItemTab});
    addParty(b,
             {QStringLiteral("trader"), QStringLiteral("공\n급\n받\n는\n자"), f.split, f.traderCaptionRight,
              f.right, kTraderCompanyTab, kTraderDelegateTab, kTraderStatusTab, kTraderItemTab});
}

// 작성 date, 공란수, the 21 digit cells and the remark.
void addSums(Boxes& b, const Frame& f, int copy) {
    const double head = kRemarkRow - 0.05;
    const double cellsRow = digitCellsY(0, copy) * kRowsPerInch - kCopyBaseRows[copy];
    const double bottom = std::max({kDateRow + emRows(kBigSize), cellsRow + emRows(kBigSize),
                                    kRemarkRow + 1 + emRows(kBaseSize)}) +
                          0.3;
    const double top = head - kHeadRows;
    const double rules[5] = {f.left, ruleBetween(kYearTab, 4, kMonthTab, kBigSize),
                             ruleBetween(kMonthTab, 2, kDayTab, kBigSize),
                             ruleBetween(kDayTab, 2, kBlankTab, kBigSize), f.cellsLeft};
    const QString captions[4] = {QStringLiteral("작성 년"), QStringLiteral("월"), QStringLiteral("일"),
                                 QStringLiteral("공란수")};
    const QString fields[4] = {QStringLiteral("year"), QStringLiteral("month"), QStringLiteral("day"),
                               QStringLiteral("blank")};
    for (int i = 0; i < 4; ++i) {
        b.caption(captions[i], rules[i], top, rules[i + 1], head);
        b.add(fields[i], rules[i], head, rules[i + 1], bottom);
    }
    const double taxLeft = f.cellsLeft + kSupplyCells * kCellPitch;
    b.caption(QStringLiteral("공 급 가 액"), f.cellsLeft, top, taxLeft, head);
    b.caption(QStringLiteral("세 액"), taxLeft, top, f.cellsRight, head);
    for (int j = 0; j < kSupplyCells + kTaxCells; ++j) {
        const QString field = j < kSupplyCells ? QStringLiteral("supplyCell%1").arg(j)
                                               : QStringLiteral("taxCell%1").arg(j - kSupplyCells);
        b.add(field, f.cellsLeft + j * kCellPitch, head, f.cellsLeft + (j + 1) * kCellPitch, bottom);
    }
    b.caption(QStringLiteral("비 고"), f.cellsRight, top, f.right, head);
    b.add(QStringLiteral("remark"), f.cellsRight, head, f.right, bottom);
}

// The row of line i and the rules between lines: halfway between one text's foot and the next.
double lineRuleAbove(int i) {
    const double em = emRows(kBaseSize);
    if (i == 0) return invoiceLineRow(0) - 0.15;
    return (invoiceLineRow(i - 1) + em + invoiceLineRow(i)) / 2;
}

double lineRuleBelow(int i) {
    return i == kLastInvoiceLine ? invoiceLineRow(i) + emRows(kBaseSize) + 0.15 : lineRuleAbove(i + 1);
}

void addLines(Boxes& b, const Frame& f) {
    const LineColumn cols[7] = {kLineDate,  {kLineItem.tab, kLineUnit.tab - kLineItem.tab - 1},
                                kLineUnit,  kLineQty,
                                kLinePrice, kLineSupply,
                                kLineTax};
    double rules[8] = {f.left};
    for (int c = 1; c < 7; ++c)
        rules[c] = ruleBetween(cols[c - 1].tab, cols[c - 1].width, cols[c].tab);
    rules[7] = f.right;
    const QString captions[7] = {QStringLiteral("월 일"), QStringLiteral("품 목 / 규 격"),
                                 QStringLiteral("단위"),  QStringLiteral("수 량"),
                                 QStringLiteral("단 가"), QStringLiteral("공 급 가 액"),
                                 QStringLiteral("세 액")};
    const QString names[7] = {QStringLiteral("date"), QStringLiteral("item"),  QStringLiteral("unit"),
                              QStringLiteral("qty"),  QStringLiteral("price"), QStringLiteral("supply"),
                              QStringLiteral("tax")};
    const double head = lineRuleAbove(0);
    for (int c = 0; c < 7; ++c) {
        b.caption(captions[c], rules[c], head - kHeadRows, rules[c + 1], head);
        for (int i = 0; i <= kLastInvoiceLine; ++i)
            b.add(QStringLiteral("line%1.%2").arg(i).arg(names[c]), rules[c], lineRuleAbove(i), rules[c + 1],
                  lineRuleBelow(i));
    }
}

// 합계금액, the ways of payment, and "이 금액을 영수 함".
void addTotal(Boxes& b, const Frame& f) {
    const double top = kTotalRow - 0.6;
    const double bottom = kTotalRow + emRows(kBaseSize) + 0.45;
    const double youngsu = tabX(kYoungsuTab);
    const double sayLeft = youngsu - 0.8;
    b.caption(QStringLiteral("합 계 금 액"), f.left, top - kHeadRows, f.cellsLeft, top);
    b.add(QStringLiteral("total"), f.left, top, f.cellsLeft, bottom);
    const QString ways[4] = {QStringLiteral("현 금"), QStringLiteral("수 표"), QStringLiteral("어 음"),
                             QStringLiteral("외상미수금")};
    const double width = (sayLeft - f.cellsLeft) / 4;
    for (int i = 0; i < 4; ++i) {
        const double x = f.cellsLeft + i * width;
        b.caption(ways[i], x, top - kHeadRows, x + width, top);
        b.add(QString(), x, top, x + width, bottom);
    }
    b.caption(QStringLiteral("이 금액을"), sayLeft, top - kHeadRows, youngsu - kGap, bottom);
    b.add(QStringLiteral("youngsu"), youngsu - kGap, top, youngsu + 4 * col() + kGap, bottom);
    b.caption(QStringLiteral("함"), youngsu + 4 * col() + kGap, top - kHeadRows, f.right, bottom);
}

QFont formFont(QPainter& painter, double dotsPerInch, double points, bool bold = false) {
    QFont font(printFontFamily(QStringLiteral("굴림")));
    // Points of the sheet, whatever resolution the device reports.
    font.setPointSizeF(points * dotsPerInch / painter.device()->logicalDpiY());
    font.setBold(bold);
    return font;
}

QRectF toDevice(const QRectF& inches, double dpi) {
    return QRectF(inches.x() * dpi, inches.y() * dpi, inches.width() * dpi, inches.height() * dpi);
}

void drawBox(QPainter& painter, double dpi, const SampleFormBox& box, bool title) {
    const QRectF r = toDevice(box.rect, dpi);
    if (!title) painter.drawRect(r);
    if (box.caption.isEmpty()) return;
    if (box.captionSize > 0) {
        painter.setFont(formFont(painter, dpi, box.captionSize));
        painter.drawText(r.adjusted(2, 1, 0, 0), Qt::AlignLeft | Qt::AlignTop, box.caption);
        return;
    }
    painter.setFont(formFont(painter, dpi, title ? kTitleSize : kCaptionSize, title));
    painter.drawText(r, Qt::AlignCenter, box.caption);
}

} // namespace

std::vector<SampleFormBox> sampleFormBoxes(int copy) {
    const Frame f = frameOf();
    Boxes b(copy);
    addHead(b, f);
    addParties(b, f);
    addSums(b, f, copy);
    addLines(b, f);
    addTotal(b, f);
    return b.take();
}

QRectF sampleFormBox(const std::vector<SampleFormBox>& boxes, const QString& field) {
    for (const SampleFormBox& box : boxes)
        if (box.field == field) return box.rect;
    return QRectF();
}

void drawSampleForm(QPainter& painter, double dotsPerInch, int copy) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(kFormInk, 1));
    painter.setBrush(Qt::NoBrush);
    const std::vector<SampleFormBox> boxes = sampleFormBoxes(copy);
    for (const SampleFormBox& box : boxes)
        drawBox(painter, dotsPerInch, box, &box == &boxes.front());
    painter.restore();
}

} // namespace nb
