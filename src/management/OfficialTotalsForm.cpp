#include "management/OfficialTotalsForm.h"

#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"
#include "printing/PrintJob.h"

#include <QRegularExpression>
#include <cmath>

namespace nb {

using namespace officialform;

namespace {

const QString kFormId = QStringLiteral("■ 부가가치세법 시행규칙 [별지 제38호서식(%1)]");
const QString kFirstTitle = QStringLiteral("매출처별 세금계산서합계표(갑)");
const QString kLaterTitle = QStringLiteral("매출처별 세금계산서합계표(을)");
const QString kDetailHeading =
    QStringLiteral("3. 과세기간 종료일 다음 달 11일까지 전송된 전자세금계산서 외 발급분 매출처별 명세"
                   "(합계금액으로 적음)");
const QStringList kGroupNames{QStringLiteral("조"), QStringLiteral("십억"), QStringLiteral("백만"),
                              QStringLiteral("천"), QStringLiteral("일")};
constexpr double kLabelSize = 8.5;
constexpr double kHeadRowHeight = 0.30;
constexpr double kGroupRowHeight = 0.24;
constexpr double kPad = 0.05;

// Draws on one sheet, every position shifted by the document's margins.
class Sheet {
public:
    explicit Sheet(PrintJob& job) : m_job(job), m_dx(job.tabX(1)), m_dy(job.rowY(0)) {}

    void font(double size, bool bold = false) {
        m_job.setFontSize(size);
        m_job.setFontBold(bold);
    }
    double textHeight() const { return m_job.font().size * 1.15 / 72.0; }
    double width(const QString& text) const { return m_job.textWidth(text); }

    void text(double x, double y, const QString& text) {
        if (!text.isEmpty()) m_job.printAt(m_dx + x, m_dy + y, text);
    }
    // In a cell of that top and height, vertically centred.
    void left(const Column& c, double top, double h, const QString& s) {
        text(c.x + kPad, middle(top, h), s);
    }
    void right(const Column& c, double top, double h, const QString& s) {
        text(c.x + c.width - kPad - width(s), middle(top, h), s);
    }
    void centre(const Column& c, double top, double h, const QString& s) {
        text(c.x + (c.width - width(s)) / 2, middle(top, h), s);
    }
    // Lines of text centred one under the other in the cell.
    void centreLines(const Column& c, double top, double h, const QStringList& lines) {
        const double step = textHeight() * 1.05;
        double y = top + (h - step * double(lines.size())) / 2;
        for (const QString& line : lines) {
            text(c.x + (c.width - width(line)) / 2, y, line);
            y += step;
        }
    }
    void hline(double x1, double x2, double y) { m_job.line(m_dx + x1, m_dy + y, m_dx + x2, m_dy + y); }
    void vline(double x, double y1, double y2) { m_job.line(m_dx + x, m_dy + y1, m_dx + x, m_dy + y2); }
    void box(double x1, double y1, double x2, double y2) {
        m_job.box(m_dx + x1, m_dy + y1, m_dx + x2, m_dy + y2);
    }

    // An amount in its five digit cells.
    void amount(const Column& c, double top, double h, double value) {
        const QStringList groups = digitGroups(value);
        const double cell = c.width / 5;
        for (int k = 0; k < 5; ++k)
            right(Column{c.x + cell * k, cell}, top, h, groups.at(k));
    }
    // The five group names under an amount's caption, and their dividers down to `bottom`.
    void groupHeads(const Column& c, double top, double bottom) {
        const double cell = c.width / 5;
        font(7);
        for (int k = 0; k < 5; ++k) {
            centre(Column{c.x + cell * k, cell}, top, kGroupRowHeight, kGroupNames.at(k));
            if (k > 0) vline(c.x + cell * k, top, bottom);
        }
        hline(c.x, c.x + c.width, top);
    }

private:
    double middle(double top, double h) const { return top + (h - textHeight()) / 2; }

    PrintJob& m_job;
    double m_dx;
    double m_dy;
};

// "2024년 4월 1일" of "2024-04-01"; a text that is not a date as it is.
QString koreanDay(const QString& isoDate) {
    const QDate day = QDate::fromString(isoDate, QStringLiteral("yyyy-MM-dd"));
    return day.isValid() ? day.toString(QStringLiteral("yyyy년 M월 d일")) : isoDate;
}

QString count(int n) {
    return QString::number(n);
}

void printSheetHead(Sheet& s, bool first, const OfficialTotals& form, int page, int pages) {
    s.font(7.5);
    s.text(kLeft, 0.40, kFormId.arg(first ? 1 : 2));
    s.font(15, true);
    const QString title = first ? kFirstTitle : kLaterTitle;
    s.text((kLeft + kRight - s.width(title)) / 2, 0.62, title);
    s.font(10);
    s.text((kLeft + kRight - s.width(form.term)) / 2, 0.98, form.term);
    s.font(8);
    const QString sheet = QStringLiteral("%1 / %2 쪽").arg(page).arg(pages);
    s.text(kRight - s.width(sheet), kFooterY, sheet);
}

// 1. 제출자 인적사항.
void printSubmitter(Sheet& s, const OfficialTotals& form) {
    s.font(9, true);
    s.text(kLeft, 1.25, QStringLiteral("1. 제출자 인적사항"));
    const double top = 1.45, h = 0.36;
    const Column label1{0.55, 1.15}, value1{1.70, 2.45}, label2{4.15, 1.15}, value2{5.30, 2.42};
    const QString period = koreanDay(form.period.from) + QStringLiteral(" ~ ") + koreanDay(form.period.to);
    const QString rows[3][4] = {
        {QStringLiteral("① 사업자등록번호"), form.serial, QStringLiteral("② 상호(법인명)"), form.company},
        {QStringLiteral("③ 성명(대표자)"), form.delegate, QStringLiteral("④ 사업장 소재지"), form.address},
        {QStringLiteral("⑤ 거래기간"), period, QStringLiteral("⑥ 작성일자"), form.issueDate}};
    for (int r = 0; r < 3; ++r) {
        const double y = top + h * r;
        s.font(kLabelSize);
        s.left(label1, y, h, rows[r][0]);
        s.left(label2, y, h, rows[r][2]);
        s.font(9);
        s.left(value1, y, h, CutBytes(rows[r][1], 42));
        s.left(value2, y, h, CutBytes(rows[r][3], 42));
        s.hline(kLeft, kRight, y);
    }
    s.box(kLeft, top, kRight, top + h * 3);
    for (double x : {value1.x, label2.x, value2.x})
        s.vline(x, top, top + h * 3);
}

void printIssueLine(Sheet& s, double y, const IssueLine& line, bool bold) {
    const double h = kTotalsRowHeight;
    s.font(kDetailFontSize + 0.5, bold);
    s.right(kReceiversCount, y, h, count(line.receivers));
    s.right(kInvoicesCount, y, h, count(line.invoices));
    s.amount(kTotalSupply, y, h, line.supply);
    s.amount(kTotalTax, y, h, line.tax);
}

// 2. 매출세금계산서 총합계.
void printTotals(Sheet& s, const OfficialTotals& form) {
    s.font(9, true);
    s.text(kLeft, 2.75, QStringLiteral("2. 매출세금계산서 총합계"));
    const double top = kTotalsBodyTop - kHeadRowHeight - kGroupRowHeight;
    const double bottom = kTotalsBodyTop + kTotalsRowHeight * 7;
    const double headH = kHeadRowHeight + kGroupRowHeight;
    s.font(kLabelSize);
    s.centre(Column{kKind.x, kKind.width + kSubKind.width}, top, headH, QStringLiteral("구      분"));
    s.centre(kReceiversCount, top, headH, QStringLiteral("⑦ 매출처수"));
    s.centre(kInvoicesCount, top, headH, QStringLiteral("⑧ 매수"));
    s.centre(kTotalSupply, top, kHeadRowHeight, QStringLiteral("⑨ 공급가액"));
    s.centre(kTotalTax, top, kHeadRowHeight, QStringLiteral("⑩ 세액"));
    s.groupHeads(kTotalSupply, top + kHeadRowHeight, bottom);
    s.groupHeads(kTotalTax, top + kHeadRowHeight, bottom);

    const double h = kTotalsRowHeight;
    s.font(kLabelSize, true);
    s.centre(Column{kKind.x, kKind.width + kSubKind.width}, kTotalsBodyTop, h, QStringLiteral("합      계"));
    printIssueLine(s, kTotalsBodyTop, form.total(), true);
    const IssueLine parts[2][3] = {{form.electronicBusiness, form.electronicResident, form.electronic()},
                                   {form.paperBusiness, form.paperResident, form.paper()}};
    const QStringList kinds[2] = {{QStringLiteral("과세기간 종료일"), QStringLiteral("다음 달 11일까지"),
                                   QStringLiteral("전송된 전자세금계산서"), QStringLiteral("발급분")},
                                  {QStringLiteral("위 전자세금계산서"), QStringLiteral("외의 발급분")}};
    const QString subKinds[3] = {QStringLiteral("사업자등록번호 발급분"),
                                 QStringLiteral("주민등록번호 발급분"), QStringLiteral("소      계")};
    for (int part = 0; part < 2; ++part) {
        const double partTop = kTotalsBodyTop + h * (1 + 3 * part);
        s.font(kLabelSize);
        s.centreLines(kKind, partTop, h * 3, kinds[part]);
        for (int k = 0; k < 3; ++k) {
            const double y = partTop + h * k;
            s.font(kLabelSize);
            s.centre(kSubKind, y, h, subKinds[k]);
            printIssueLine(s, y, parts[part][k], false);
            s.hline(k == 0 ? kKind.x : kSubKind.x, kRight, y);
        }
    }
    s.hline(kLeft, kRight, kTotalsBodyTop);
    s.box(kLeft, top, kRight, bottom);
    s.vline(kSubKind.x, kTotalsBodyTop + h, bottom);
    for (double x : {kReceiversCount.x, kInvoicesCount.x, kTotalSupply.x, kTotalTax.x})
        s.vline(x, top, bottom);
}

// The receivers' table: its captions, its lines and its rules from `headTop` to `bottom`.
void printDetailHead(Sheet& s, double headTop, double bottom) {
    const double headH = kHeadRowHeight + kGroupRowHeight;
    s.font(kLabelSize);
    s.centre(kNumber, headTop, headH, QStringLiteral("⑪ 번호"));
    s.centreLines(kSerial, headTop, headH, {QStringLiteral("⑫ 사업자"), QStringLiteral("등록번호")});
    s.centre(kCompany, headTop, headH, QStringLiteral("⑬ 상호(법인명)"));
    s.centre(kInvoices, headTop, headH, QStringLiteral("⑭ 매수"));
    s.centre(kSupply, headTop, kHeadRowHeight, QStringLiteral("⑮ 공급가액"));
    s.centre(kTax, headTop, kHeadRowHeight, QStringLiteral("⑯ 세액"));
    s.centre(kRemark, headTop, headH, QStringLiteral("비 고"));
    s.groupHeads(kSupply, headTop + kHeadRowHeight, bottom);
    s.groupHeads(kTax, headTop + kHeadRowHeight, bottom);
    s.box(kLeft, headTop, kRight, bottom);
    s.hline(kLeft, kRight, headTop + headH);
    for (double x : {kSerial.x, kCompany.x, kInvoices.x, kSupply.x, kTax.x, kRemark.x})
        s.vline(x, headTop, bottom);
}

QString shownSerial(const QString& serial) {
    static const QRegularExpression tenDigits(QStringLiteral("^[0-9]{10}$"));
    if (tenDigits.match(serial).hasMatch())
        return serial.left(3) + u'-' + serial.mid(3, 2) + u'-' + serial.mid(5);
    return serial;
}

void printReceivers(Sheet& s, const OfficialTotals& form, int first, int rows, double top, double h) {
    const double columnWidth = printColumnWidth(kDetailFontSize);
    const int companyColumns = int((kCompany.width - 2 * kPad) / columnWidth);
    const int serialColumns = int((kSerial.width - 2 * kPad) / columnWidth);
    s.font(kDetailFontSize);
    for (int r = 0; r < rows; ++r) {
        const double y = top + h * r;
        if (r > 0) s.hline(kLeft, kRight, y);
        const int index = first + r;
        const ReceiverLine* read = form.receiverAt(index);
        if (!read) continue;
        const ReceiverLine& line = *read;
        s.right(kNumber, y, h, count(index + 1));
        s.left(kSerial, y, h, CutBytes(shownSerial(line.serial), serialColumns));
        s.left(kCompany, y, h, CutBytes(line.company, companyColumns));
        s.right(kInvoices, y, h, count(line.invoices));
        s.amount(kSupply, y, h, line.supply);
        s.amount(kTax, y, h, line.tax);
    }
}

void printFirstSheet(Sheet& s, const OfficialTotals& form) {
    printSubmitter(s, form);
    printTotals(s, form);
    s.font(9, true);
    s.text(kLeft, 6.10, kDetailHeading);
    const double headTop = kFirstBodyTop - kHeadRowHeight - kGroupRowHeight;
    const double bottom = kFirstBodyTop + kFirstRowHeight * kFirstSheetRows;
    printDetailHead(s, headTop, bottom);
    printReceivers(s, form, 0, kFirstSheetRows, kFirstBodyTop, kFirstRowHeight);
    s.font(8);
    const QString deadline = form.deadline.isValid()
                                 ? form.deadline.toString(QStringLiteral("yyyy년 M월 d일"))
                                 : QStringLiteral("-");
    s.text(kLeft, bottom + 0.25,
           QStringLiteral("※ 전자세금계산서 발급분: %1까지 국세청에 전송(업로드)한 것으로 표시된 세금계산서")
               .arg(deadline));
    s.text(kLeft, bottom + 0.45,
           QStringLiteral("※ 주민등록번호를 적어 발급한 세금계산서는 총합계의 주민등록번호 발급분에만 "
                          "적고 매출처별 명세에는 적지 않습니다."));
}

void printLaterSheet(Sheet& s, const OfficialTotals& form, int page) {
    const double top = 1.25, h = 0.32;
    const Column label1{0.55, 1.20}, value1{1.75, 2.20}, label2{3.95, 1.20}, value2{5.15, 2.57};
    s.font(kLabelSize);
    s.left(label1, top, h, QStringLiteral("① 사업자등록번호"));
    s.left(label2, top, h, QStringLiteral("② 상호(법인명)"));
    s.font(9);
    s.left(value1, top, h, form.serial);
    s.left(value2, top, h, CutBytes(form.company, 44));
    s.box(kLeft, top, kRight, top + h);
    for (double x : {value1.x, label2.x, value2.x})
        s.vline(x, top, top + h);
    s.font(9, true);
    s.text(kLeft, 1.75, kDetailHeading.mid(3)); // without the block's number
    const double headTop = kLaterBodyTop - kHeadRowHeight - kGroupRowHeight;
    const double bottom = kLaterBodyTop + kLaterRowHeight * kLaterSheetRows;
    printDetailHead(s, headTop, bottom);
    printReceivers(s, form, linesOfSheet(page).first, kLaterSheetRows, kLaterBodyTop, kLaterRowHeight);
}

} // namespace

int officialform::pagesFor(int receivers) {
    const int later = receivers - kFirstSheetRows;
    return 1 + (later > 0 ? (later + kLaterSheetRows - 1) / kLaterSheetRows : 0);
}

officialform::LinePlace officialform::placeOfLine(int index) {
    if (index < kFirstSheetRows) return {1, kFirstBodyTop + kFirstRowHeight * index};
    const int later = index - kFirstSheetRows;
    return {2 + later / kLaterSheetRows, kLaterBodyTop + kLaterRowHeight * (later % kLaterSheetRows)};
}

officialform::SheetLines officialform::linesOfSheet(int page) {
    if (page <= 1) return {0, kFirstSheetRows};
    return {kFirstSheetRows + (page - 2) * kLaterSheetRows, kLaterSheetRows};
}

QStringList officialform::digitGroups(double amount) {
    const double rounded = std::round(amount);
    const bool negative = rounded < 0;
    qint64 rest = qint64(std::fabs(rounded));
    QStringList groups;
    for (int k = 0; k < 4; ++k) {
        groups.prepend(QString::number(rest % 1000));
        rest /= 1000;
    }
    groups.prepend(QString::number(rest)); // 조: whatever is left
    int firstDigit = 0;
    while (firstDigit < 4 && groups.at(firstDigit) == u"0")
        groups[firstDigit++].clear();
    for (int k = firstDigit + 1; k < 5; ++k)
        groups[k] = groups.at(k).rightJustified(3, u'0');
    if (negative) groups[firstDigit].prepend(u'-');
    return groups;
}

void printOfficialTotalsPage(PrintJob& job, const OfficialTotals& form, int page, int pages) {
    Sheet sheet(job);
    printSheetHead(sheet, page == 1, form, page, pages);
    if (page == 1)
        printFirstSheet(sheet, form);
    else
        printLaterSheet(sheet, form, page);
}

void printOfficialTotals(PrintJob& job, const OfficialTotals& form,
                         const std::function<void(int page, int pages)>& pageDone) {
    const int pages = pagesFor(form.listedReceivers());
    for (int page = 1; page <= pages; ++page) {
        if (page > 1) job.newPage();
        printOfficialTotalsPage(job, form, page, pages);
        if (pageDone) pageDone(page, pages);
    }
}

} // namespace nb
