#pragma once
// The quotation on A4, drawn by the program: title, number and date, the receiver, the supplier
// with its seal, the sentence, the total line (TotEstiKum, the one total the page states), the
// lines over as many pages as they need with the page numbers, and the footer with delivery
// date, validity and terms of payment. One layout per decimal setting: quantities and prices with
// 0, 1 or 2 places. Each page is a table of fields (row, tab, text, width, alignment, font) drawn
// on the job.

#include "invoice/InvoicePrint.h"

#include <QList>
#include <QString>
#include <optional>
#include <vector>

namespace nb {

class PrintJob;

struct QuotationLine {
    QString name;
    QString norm;
    QString unit;
    double quantity = 0;
    double price = 0;
    double amount = 0;
};

struct QuotationPrintData {
    QString code;
    QString date;       // "YYYY-MM-DD"
    QString deriveDate; // delivery date, may be empty
    QString className;  // what is quoted
    QString receiver;   // the trader's name as entered
    QString refer;      // contact person
    QString validate;
    QString section;    // terms of payment
    QString TotEstiKum; // "\1,000,000 (일금 일백만 원정) 부가세별도"
    QString Phone;      // the trader's telephone
    QString ClientFax;  // the trader's fax
    PrintParty supplier;
    QList<QuotationLine> lines;
    int decimals = 0; // the layout: 0, 1 (one place) or any other value (two places)
    // The lines' total passes 32 bits: the page is not to be printed.
    bool totalOverflow = false;
};

// The total line: a backslash (the won sign of the Korean code page), the total box as it
// stands, "(", the words trimmed, ") " and the VAT remark.
QString totEstiKumText(const QString& totalBox, const QString& hanKumPanel, bool vatIncluded);
// The total line of the lines, worked out as the screen works out its total (the 32-bit sum of
// rounded quantity times rounded price), never the stored total, which may be stale. Nothing when
// that total passes 32 bits.
std::optional<QString> linesTotEstiKum(const QList<QuotationLine>& lines, bool vatIncluded);
// The layout of a decimal setting: 0, 1, or 2 for any other value.
int quotationLayout(int decimalSetting);

enum class FieldAlign { Left, Right, Center };

// One printed field: at print row `row` and Tab `tab` of its font, `width` columns wide (the room
// a right or centred text is placed in).
struct QuotationField {
    double row = 0;
    double tab = 0;
    QString text;
    int width = 0;
    FieldAlign align = FieldAlign::Left;
    double size = 9.75;
    bool bold = false;
};

// A ruled line or box of the form, in rows and tabs of the base font.
struct QuotationRule {
    double row1 = 0, tab1 = 0, row2 = 0, tab2 = 0;
    bool box = false;
};

struct QuotationPage {
    std::vector<QuotationField> fields;
    std::vector<QuotationRule> rules;
    bool seal = false; // the seal beside the representative
};

namespace quotationlayout {
inline constexpr int kFirstPageLines = 26;
inline constexpr int kNextPageLines = 48;
inline constexpr double kLineHeadRow = 25;    // first page
inline constexpr double kNextLineHeadRow = 6; // later pages
inline constexpr double kPageNumberRow = 64;
inline constexpr double kFooterRow = 57;
// Columns of the lines: tab and width.
inline constexpr int kNameTab = 6, kNameWidth = 36;
inline constexpr int kNormTab = 42, kNormWidth = 20;
inline constexpr int kUnitTab = 62, kUnitWidth = 8;
inline constexpr int kQtyTab = 70, kQtyWidth = 12;
inline constexpr int kPriceTab = 82, kPriceWidth = 16;
inline constexpr int kAmountTab = 98, kAmountWidth = 18;
inline constexpr int kRightTab = 116;
inline constexpr double kSealX = 7.05; // inches from the left margin's origin
} // namespace quotationlayout

// The pages of a quotation; at least one, also for a quotation without lines.
std::vector<QuotationPage> quotationPages(const QuotationPrintData& data);
// The number of pages for a count of lines.
int quotationPageCount(int lines);
// A quantity or price as the layout shows it.
QString quotationNumber(double value, int layout);

// Draws the pages on the job (margins and seal as given).
void PrintQuotation(PrintJob& job, const QuotationPrintData& data, const QImage& seal);

} // namespace nb
