#include "quotation/QuotationPrint.h"

#include "common/dates/DateText.h"
#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "printing/PrintGrid.h"
#include "printing/PrintJob.h"
#include "quotation/EstimateRules.h"

#include <algorithm>

namespace nb {

using namespace quotationlayout;

namespace {

constexpr int kLeftTab = kNameTab;
constexpr int kSupplierTab = 60;
constexpr int kSupplierLabelTab = 62;
constexpr int kSupplierValueTab = 72;
constexpr double kSupplierTop = 7;
constexpr double kSupplierRowStep = 2;
constexpr double kTitleSize = 24;
constexpr double kReceiverSize = 14;
constexpr double kTotalSize = 11;
constexpr double kSmallSize = 9;

QString dateWords(const QString& date) {
    const QDate d = ToDate(date);
    return d.isValid()
               ? HanDateText(d).replace(u'년', QStringLiteral("년 ")).replace(u'월', QStringLiteral("월 "))
               : date;
}

void addField(QuotationPage& page, double row, double tab, const QString& text, int width = 0,
              FieldAlign align = FieldAlign::Left, double size = kBasePrintSize, bool bold = false) {
    page.fields.push_back({row, tab, text, width, align, size, bold});
}

void addRule(QuotationPage& page, double row1, double tab1, double row2, double tab2, bool box = false) {
    page.rules.push_back({row1, tab1, row2, tab2, box});
}

void addTitle(QuotationPage& page) {
    addField(page, 2, kLeftTab, QStringLiteral("견 적 서"), kRightTab - kLeftTab, FieldAlign::Center,
             kTitleSize, true);
    addRule(page, 5, 40, 5, 80);
}

void addReceiver(QuotationPage& page, const QuotationPrintData& d) {
    addField(page, 8, kLeftTab, QStringLiteral("견적번호 : ") + d.code);
    addField(page, 9.5, kLeftTab, QStringLiteral("견적일자 : ") + dateWords(d.date));
    addField(page, 11.5, kLeftTab, d.receiver, 0, FieldAlign::Left, kReceiverSize, true);
    addField(page, 11.5, 44, QStringLiteral("귀하"), 0, FieldAlign::Left, kReceiverSize, true);
    addRule(page, 13.5, kLeftTab, 13.5, 54);
    addField(page, 14.5, kLeftTab, QStringLiteral("참    조 : ") + d.refer);
    addField(page, 16, kLeftTab, QStringLiteral("전    화 : ") + d.Phone);
    addField(page, 17.5, kLeftTab, QStringLiteral("팩    스 : ") + d.ClientFax);
    addField(page, 19, kLeftTab, QStringLiteral("견적내용 : ") + d.className);
}

void addSupplier(QuotationPage& page, const PrintParty& s) {
    const double bottom = kSupplierTop + 6 * kSupplierRowStep;
    addRule(page, kSupplierTop, kSupplierTab, bottom, kRightTab, true);
    addRule(page, kSupplierTop, kSupplierValueTab - 1, bottom, kSupplierValueTab - 1);
    addField(page, kSupplierTop - 1.2, kSupplierTab, QStringLiteral("공 급 자"), 0, FieldAlign::Left,
             kSmallSize, true);
    const QString labels[] = {QStringLiteral("등록번호"), QStringLiteral("상    호"),
                              QStringLiteral("대 표 자"), QStringLiteral("주    소"),
                              QStringLiteral("업    태"), QStringLiteral("전화번호")};
    const QString values[] = {s.serial, s.company, s.delegate, s.addr, s.status, s.phone};
    for (int i = 0; i < 6; ++i) {
        const double row = kSupplierTop + i * kSupplierRowStep;
        if (i > 0) addRule(page, row, kSupplierTab, row, kRightTab);
        addField(page, row + 0.5, kSupplierLabelTab, labels[i]);
        const bool small = printColumns(values[i]) > kRightTab - kSupplierValueTab - 1;
        addField(page, row + 0.5, kSupplierValueTab, values[i], 0, FieldAlign::Left,
                 small ? kSmallSize - 1.5 : kBasePrintSize);
    }
    const double itemRow = kSupplierTop + 4 * kSupplierRowStep + 0.5;
    addField(page, itemRow, 92, QStringLiteral("종목"));
    addField(page, itemRow, 98, s.item);
    addField(page, kSupplierTop + 2 * kSupplierRowStep + 0.5, 104, QStringLiteral("(인)"));
    page.seal = true;
}

void addTotal(QuotationPage& page, const QuotationPrintData& d) {
    addField(page, 21, kLeftTab, QStringLiteral("아래와 같이 견적합니다."));
    addRule(page, 22.5, kLeftTab, 24.5, kRightTab, true);
    addField(page, 23, kLeftTab + 2, QStringLiteral("합계금액"), 0, FieldAlign::Left, kTotalSize, true);
    addField(page, 23, kLeftTab + 16, d.TotEstiKum, 0, FieldAlign::Left, kTotalSize, true);
}

struct Column {
    int tab;
    int width;
    const char16_t* heading;
};
constexpr Column kColumns[] = {{kNameTab, kNameWidth, u"품    명"}, {kNormTab, kNormWidth, u"규  격"},
                               {kUnitTab, kUnitWidth, u"단위"},     {kQtyTab, kQtyWidth, u"수  량"},
                               {kPriceTab, kPriceWidth, u"단  가"}, {kAmountTab, kAmountWidth, u"금    액"}};

void addLineHead(QuotationPage& page, double row) {
    addRule(page, row, kNameTab, row + 1.5, kRightTab, true);
    for (const Column& c : kColumns)
        addField(page, row + 0.25, c.tab, QString::fromUtf16(c.heading), c.width, FieldAlign::Center,
                 kBasePrintSize, true);
}

void addColumnRules(QuotationPage& page, double top, double bottom) {
    addRule(page, top, kNameTab, bottom, kRightTab, true);
    for (size_t i = 1; i < std::size(kColumns); ++i)
        addRule(page, top, kColumns[i].tab, bottom, kColumns[i].tab);
}

// A text that is longer than its column is cut to it by printed width, keeping clear of the
// column's rules: it never runs into the next column.
void addLine(QuotationPage& page, double row, const QuotationLine& line, int layout) {
    addField(page, row, kNameTab + 1, CutBytes(line.name, kNameWidth - 2));
    addField(page, row, kNormTab + 1, CutBytes(line.norm, kNormWidth - 2));
    addField(page, row, kUnitTab, CutBytes(line.unit, kUnitWidth - 1), kUnitWidth, FieldAlign::Center);
    addField(page, row, kQtyTab, quotationNumber(line.quantity, layout), kQtyWidth - 1, FieldAlign::Right);
    addField(page, row, kPriceTab, quotationNumber(line.price, layout), kPriceWidth - 1, FieldAlign::Right);
    addField(page, row, kAmountTab, FormatNumber(line.amount, kMaskSum), kAmountWidth - 1, FieldAlign::Right);
}

void addFooter(QuotationPage& page, const QuotationPrintData& d) {
    addRule(page, kFooterRow - 0.5, kLeftTab, kFooterRow + 5, kRightTab, true);
    addField(page, kFooterRow, kLeftTab + 2, QStringLiteral("납품예정일 : ") + dateWords(d.deriveDate));
    addField(page, kFooterRow + 1.5, kLeftTab + 2, QStringLiteral("유효기간 : ") + d.validate);
    addField(page, kFooterRow + 3, kLeftTab + 2, QStringLiteral("지불조건 : ") + d.section);
}

void addPageNumber(QuotationPage& page, int number, int count) {
    addField(page, kPageNumberRow, kLeftTab, QStringLiteral("- %1 / %2 -").arg(number).arg(count),
             kRightTab - kLeftTab, FieldAlign::Center);
}

double fieldX(const PrintJob& job, const QuotationField& f, const PrintFont& font) {
    const double left = printTabX(job.leftMargin(), f.tab, kBasePrintSize);
    if (f.align == FieldAlign::Left) return left;
    const double room = printTabX(job.leftMargin(), f.tab + f.width, kBasePrintSize) - left;
    const double width = printTextWidth(f.text, font);
    return f.align == FieldAlign::Right ? left + room - width : left + (room - width) / 2;
}

} // namespace

QString totEstiKumText(const QString& totalBox, const QString& hanKumPanel, bool vatIncluded) {
    return u'\\' + totalBox + u'(' + hanKumPanel.trimmed() + QStringLiteral(") ") +
           (vatIncluded ? QStringLiteral("부가세포함") : QStringLiteral("부가세별도"));
}

std::optional<QString> linesTotEstiKum(const QList<QuotationLine>& lines, bool vatIncluded) {
    QList<TotalLine> totalLines;
    for (const QuotationLine& line : lines)
        totalLines.append({line.name, line.quantity, line.price});
    const std::optional<qint32> total = linesTotal(totalLines);
    if (!total) return std::nullopt;
    const QString box = totalBoxText(*total); // as txtinput(3) shows it, its blank included
    return totEstiKumText(box, hanKumPanelText(box), vatIncluded);
}

int quotationLayout(int decimalSetting) {
    return decimalSetting == 0 ? 0 : decimalSetting == 1 ? 1 : 2;
}

QString quotationNumber(double value, int layout) {
    switch (quotationLayout(layout)) {
    case 0:
        return FormatNumber(value, kMaskSum);
    case 1:
        return FormatNumber(value, QStringLiteral("#,##0.0"));
    default:
        return FormatNumber(value, QStringLiteral("#,##0.00"));
    }
}

int quotationPageCount(int lines) {
    if (lines <= kFirstPageLines) return 1;
    return 1 + (lines - kFirstPageLines + kNextPageLines - 1) / kNextPageLines;
}

std::vector<QuotationPage> quotationPages(const QuotationPrintData& data) {
    const int count = quotationPageCount(int(data.lines.size()));
    const int layout = quotationLayout(data.decimals);
    std::vector<QuotationPage> pages(static_cast<size_t>(count));
    int next = 0;
    for (int p = 0; p < count; ++p) {
        QuotationPage& page = pages[size_t(p)];
        double head = kNextLineHeadRow;
        int room = kNextPageLines;
        if (p == 0) {
            addTitle(page);
            addReceiver(page, data);
            addSupplier(page, data.supplier);
            addTotal(page, data);
            head = kLineHeadRow;
            room = kFirstPageLines;
        } else {
            addField(page, 3, kLeftTab,
                     QStringLiteral("견적번호 : %1   %2 귀하 (계속)").arg(data.code, data.receiver));
        }
        addLineHead(page, head);
        double row = head + 2;
        const int last = std::min(int(data.lines.size()), next + room);
        for (; next < last; ++next, ++row)
            addLine(page, row, data.lines.at(next), layout);
        if (p == count - 1) {
            // No sum row under the lines: the total line above is the page's one total, and a
            // sum of the line amounts would differ from it for fractional quantities.
            addColumnRules(page, head + 1.5, std::max(row, head + 3));
            addFooter(page, data);
        } else {
            addColumnRules(page, head + 1.5, row);
        }
        addPageNumber(page, p + 1, count);
    }
    return pages;
}

void PrintQuotation(PrintJob& job, const QuotationPrintData& data, const QImage& seal) {
    const std::vector<QuotationPage> pages = quotationPages(data);
    for (size_t p = 0; p < pages.size(); ++p) {
        if (p > 0) job.newPage();
        const QuotationPage& page = pages[p];
        for (const QuotationRule& r : page.rules) {
            const double x1 = printTabX(job.leftMargin(), r.tab1, kBasePrintSize);
            const double x2 = printTabX(job.leftMargin(), r.tab2, kBasePrintSize);
            const double y1 = job.rowY(r.row1), y2 = job.rowY(r.row2);
            if (r.box)
                job.box(x1, y1, x2, y2);
            else
                job.line(x1, y1, x2, y2);
        }
        if (page.seal && !seal.isNull())
            job.paintPicture(seal, job.leftMargin() * printColumnWidth(kBasePrintSize) + kSealX,
                             job.rowY(kSupplierTop + 2 * kSupplierRowStep - 0.8), 0.6, 0.6);
        for (const QuotationField& f : page.fields) {
            if (f.text.isEmpty()) continue;
            PrintFont font = job.font();
            font.size = f.size;
            font.bold = f.bold;
            job.setFont(font);
            job.printAt(fieldX(job, f, font), job.rowY(f.row), f.text);
        }
        PrintFont base = job.font();
        base.size = kBasePrintSize;
        base.bold = false;
        job.setFont(base);
    }
}

} // namespace nb
