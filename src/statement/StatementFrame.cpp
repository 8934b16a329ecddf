#include "statement/StatementFrame.h"

#include "common/Messages.h"
#include "printing/PrintJob.h"

#include <QStringList>
#include <algorithm>

namespace nb {

namespace {

using namespace dealframe;

// A rule of the form between two grid points, in the weight of its line.
struct Rule {
    int x1, y1, x2, y2;
    int weight;
};

// The rules of one half, as the form is drawn: the boxes first, the rows and columns after.
const Rule kRules[] = {
    {1, 2, 24, 23, 5},                                           // outer box of the form (drawn as a box)
    {1, 1, 8, 2, 5},                                             // date box above the form (box)
    {19, 1, 24, 2, 5},                                           // signature box above the form (box)
    {2, 2, 2, 6, 3},                                             // side label of the supplier block
    {3, 1, 3, 6, 3},                                             // label column of the supplier block
    {4, 5, 4, 6, 3},     {5, 5, 5, 6, 3},                        // item label
    {7, 3, 7, 4, 3},     {8, 3, 8, 4, 3},                        // name label
    {12, 2, 12, 6, 3},                                           // left side of the receiver block
    {13, 2, 13, 22, 3},                                          // long vertical through head and lines
    {14, 2, 14, 6, 3},                                           // label column of the receiver block
    {18, 5, 18, 6, 3},   {19, 5, 19, 6, 3},                      // item label
    {20, 3, 20, 4, 3},   {21, 3, 21, 4, 3},                      // name label
    {2, 3, 12, 3, 3},    {2, 4, 12, 4, 3},    {2, 5, 12, 5, 3},  // supplier rows
    {13, 3, 24, 3, 3},   {13, 4, 24, 4, 3},   {13, 5, 24, 5, 3}, // receiver rows
    {1, 6, 24, 6, 5},                                            // top of the heading row
    {1, 7, 24, 7, 5},    {1, 7, 24, 7, 3},                       // bottom of the heading row
    {1, 22, 24, 22, 3},                                          // bottom of the line rows
    {9, 6, 9, 22, 3},    {13, 6, 13, 22, 3},  {15, 6, 15, 22, 3},  {19, 6, 19, 22, 3},  {23, 6, 23, 22, 3},
    {3, 22, 3, 23, 3},   {5, 22, 5, 23, 3},   {6, 22, 6, 23, 3},   {9, 22, 9, 23, 3},   {11, 22, 11, 23, 3},
    {16, 22, 16, 23, 3}, {17, 22, 17, 23, 3}, {21, 22, 21, 23, 3}, {22, 22, 22, 23, 3},
};
constexpr int kBoxRules = 3; // the first three rules are boxes

// A printed word of the form, its lines one under another, anchored at a grid point and moved
// by a few grid steps.
struct Word {
    QStringList lines;
    double size;
    int x, y;
    double dx, dy; // in grid steps
};

// A word of the total row, which is too low for two lines at the size of the heading words: it
// is fitted into its cell between two grid points, centred, at the largest size up to its own
// at which every line stays clear of the cell's rules.
struct CellWord {
    QStringList lines;
    double size;
    int x1, x2; // the cell's rules, X indexes; the row is Y 22 to Y 23
};

const CellWord kTotalRowWords[] = {
    {{QStringLiteral("공급"), QStringLiteral("가액")}, 10, 1, 3},
    {{QStringLiteral("세"), QStringLiteral("액")}, 10, 5, 6},
    {{QStringLiteral("합"), QStringLiteral("계")}, 10, 9, 11},
    {{QStringLiteral("전미수")}, 8, 16, 17},
    {{QStringLiteral("미수금")}, 9, 21, 22},
};
constexpr double kTotalRuleWeight = 3;
constexpr double kCellPadding = 0.01; // inches between a word and the inner edge of a rule
constexpr double kSmallestSize = 5;

QList<Word> words(bool supplier) {
    return {
        {{QStringLiteral("거 래 명 세 표")}, 20, 8, 1, 4, -0.8},
        {{supplier ? QStringLiteral("(공급자 보관용)") : QStringLiteral("(공급받는자 보관용)")},
         10,
         22,
         1,
         -2,
         -2.5},
        {{QStringLiteral("일자")}, 10, 1, 1, 1.5, 1.5},
        {{QStringLiteral("인수자")}, 10, 19, 1, 0.5, 1.5},
        {{QStringLiteral("공")}, 10, 1, 3, 0.5, 0.5},
        {{QStringLiteral("급")}, 10, 1, 4, 0.5, 0.5},
        {{QStringLiteral("자")}, 10, 1, 5, 0.5, 0.5},
        {{QStringLiteral("등록"), QStringLiteral("번호")}, 8, 2, 2, 0.5, 0.5},
        {{QStringLiteral("상호")}, 8, 2, 3, 0.5, 1},
        {{QStringLiteral("주소")}, 8, 2, 4, 0.5, 1},
        {{QStringLiteral("업태")}, 8, 2, 5, 0.5, 1},
        {{QStringLiteral("성"), QStringLiteral("명")}, 8, 7, 3, 0.5, 0.5},
        {{QStringLiteral("종"), QStringLiteral("목")}, 8, 4, 5, 0.5, 0.5},
        {{QStringLiteral("공"), QStringLiteral("급"), QStringLiteral("받"), QStringLiteral("는"),
          QStringLiteral("자")},
         10,
         12,
         2,
         0.3,
         0.5},
        {{QStringLiteral("등록"), QStringLiteral("번호")}, 8, 13, 2, 0.5, 0.5},
        {{QStringLiteral("상호")}, 8, 13, 3, 0.5, 1},
        {{QStringLiteral("주소")}, 8, 13, 4, 0.5, 1},
        {{QStringLiteral("업태")}, 8, 13, 5, 0.5, 1},
        {{QStringLiteral("성"), QStringLiteral("명")}, 8, 20, 3, 0.5, 0.5},
        {{QStringLiteral("종"), QStringLiteral("목")}, 8, 18, 5, 0.5, 0.5},
        {{QStringLiteral("품  목  (규  격)")}, 10, 1, 6, 8, 1.5},
        {{QStringLiteral("단 위")}, 10, 9, 6, 0.6, 1.5},
        {{QStringLiteral("수 량")}, 10, 13, 6, 0.5, 1.5},
        {{QStringLiteral("단 가")}, 10, 16, 6, 0.5, 1.5},
        {{QStringLiteral("금 액")}, 10, 19, 6, 3, 1.5},
        {{QStringLiteral("세 액")}, 10, 23, 6, 3, 1.5},
    };
}

double widestLine(const PrintJob& job, const QStringList& lines) {
    double widest = 0;
    for (const QString& line : lines)
        widest = std::max(widest, job.textWidth(line));
    return widest;
}

// Prints the word centred in its cell of the total row (the job's font is left at its size).
void printInCell(PrintJob& job, const CellWord& w, double left, double right, double top, double bottom) {
    const double inset = kTotalRuleWeight / 96 / 2 + kCellPadding;
    const double room = right - left - 2 * inset;
    const double height = bottom - top - 2 * inset;
    double size = w.size;
    for (;; size -= 0.5) {
        job.setFontSize(size);
        if (size <= kSmallestSize ||
            (widestLine(job, w.lines) <= room && job.lineHeight() * w.lines.size() <= height))
            break;
    }
    double y = top + (bottom - top - job.lineHeight() * w.lines.size()) / 2;
    for (const QString& line : w.lines) {
        job.printAt(left + (right - left - job.textWidth(line)) / 2, y, line);
        y += job.lineHeight();
    }
}

} // namespace

std::array<double, 24> frameYs(double Y0) {
    std::array<double, 24> y{};
    y[1] = Y0;
    y[2] = Y0 + 5.5 * kU;
    y[3] = Y0 + 11 * kU;
    y[4] = Y0 + 1;
    y[5] = Y0 + 1 + 5.5 * kU;
    y[6] = Y0 + 1 + 10.5 * kU;
    y[7] = Y0 + 2 + kU;
    for (int i = 1; i <= 15; ++i)
        y[size_t(7 + i)] = Y0 + 2.08 + 0.166 * i;
    y[23] = Y0 + 4 + 14 * kU;
    return y;
}

std::array<double, 25> frameXs(double X0) {
    // Whole inches and grid steps of each point; X 22 and X 23 are the same point.
    const double inches[25] = {0, 0, 0, 0, 1, 1, 1, 2, 2, 3, 3, 3, 3, 3, 3, 4, 4.5, 4, 5, 5, 5, 5, 6, 6, 7};
    const double steps[25] = {0, 0,  3, 7, 9,  12, 15, 5,  8,  2, 3, 5, 6,
                              9, 13, 6, 0, 14, 1,  4,  11, 14, 4, 4, 4};
    std::array<double, 25> x{};
    for (int i = 1; i <= 24; ++i)
        x[size_t(i)] = X0 + inches[i] + steps[i] * kU;
    return x;
}

void Print_Form_DealList_A4Half_Sub(PrintJob& job, double X0, double Y0, const QColor& Color, bool Supplier) {
    const std::array<double, 24> y = frameYs(Y0);
    const std::array<double, 25> x = frameXs(X0);
    int index = 0;
    for (const Rule& r : kRules) {
        job.setDrawWidth(r.weight);
        if (index++ < kBoxRules)
            job.box(x[size_t(r.x1)], y[size_t(r.y1)], x[size_t(r.x2)], y[size_t(r.y2)], Color);
        else
            job.line(x[size_t(r.x1)], y[size_t(r.y1)], x[size_t(r.x2)], y[size_t(r.y2)], Color);
    }
    for (int i = 1; i <= 15; ++i) { // one rule per line row
        job.setDrawWidth(3);
        job.line(x[1], y[size_t(7 + i)], x[24], y[size_t(7 + i)], Color);
    }
    job.setDrawWidth(1);
    job.setForeColor(Color);
    job.setFontBold(true);
    for (const Word& w : words(Supplier)) {
        job.setFontSize(w.size);
        const double left = x[size_t(w.x)] + w.dx * kU;
        double top = y[size_t(w.y)] + w.dy * kU;
        for (const QString& line : w.lines) {
            job.printAt(left, top, line);
            top += job.lineHeight();
        }
    }
    for (const CellWord& w : kTotalRowWords)
        printInCell(job, w, x[size_t(w.x1)], x[size_t(w.x2)], y[22], y[23]);
    job.setFontBold(false);
}

void Print_Form_DealList_A4Half(PrintJob& job, double Left, double Top) {
    const PrintFont before = job.font();
    job.setFontName(kFrameFont);
    job.setFontTransparent(true);
    const double Y0 = Top / 6 + kTopOffset;
    const double X0 = Left / 12 + kLeftOffset;
    Print_Form_DealList_A4Half_Sub(job, X0, Y0, Qt::red, true);
    job.setDrawWidth(1);
    job.line(X0, Y0 + kCutLine, X0 + kCutLength, Y0 + kCutLine, Qt::black);
    Print_Form_DealList_A4Half_Sub(job, X0, Y0 + kHalfDistance, Qt::blue, false);
    job.setFont(before);
    job.setForeColor(Qt::black);
}

} // namespace nb
