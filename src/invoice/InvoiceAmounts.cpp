#include "invoice/InvoiceAmounts.h"

#include "common/dates/DateText.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"

#include <cmath>
#include <limits>

namespace nb {

namespace {

const double kTaxRate = 0.1;
const double kGrossFactor = 1.1;

[[noreturn]] void typeMismatch() {
    throw InvoiceArithmeticError(13, QStringLiteral("Type mismatch"));
}
[[noreturn]] void overflow() {
    throw InvoiceArithmeticError(6, QStringLiteral("Overflow"));
}

QString longText(qint32 value) {
    return QString::number(value);
}

// A 32-bit sum that reports an overflow instead of wrapping.
qint32 addLong(qint32 a, qint32 b) {
    const qint64 sum = qint64(a) + qint64(b);
    if (sum > std::numeric_limits<qint32>::max() || sum < std::numeric_limits<qint32>::min()) overflow();
    return qint32(sum);
}

void writeLine(InvoiceLine& line, const QString& supply, const QString& tax) {
    line.gonggum = supply;
    line.tax_num = tax;
}

} // namespace

QString vatModeCaption(VatMode mode) {
    switch (mode) {
    case VatMode::Separate:
        return QStringLiteral("VAT별도");
    case VatMode::Included:
        return QStringLiteral("VAT포함");
    case VatMode::Exempt:
        return QStringLiteral("면세");
    }
    return QString();
}

void InvoiceSheet::clearLines() {
    for (auto& l : lines)
        l.clear();
    sumNum.clear();
    gongCaption.clear();
}

double parseAmountText(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed == u"-" || trimmed == u".") typeMismatch();
    bool ok = false;
    const double value = NumberFromText(trimmed, &ok);
    if (!ok) typeMismatch();
    return value;
}

float parseSingle(const QString& text) {
    const double value = parseAmountText(text);
    if (std::fabs(value) > double(std::numeric_limits<float>::max())) overflow();
    return float(value);
}

qint32 roundToLong(double value) {
    if (!std::isfinite(value)) overflow();
    const double rounded = RoundHalfEven(value);
    if (rounded > double(std::numeric_limits<qint32>::max()) ||
        rounded < double(std::numeric_limits<qint32>::min()))
        overflow();
    return qint32(rounded);
}

qint32 textToLong(const QString& text) {
    return roundToLong(parseAmountText(text));
}

QString plainNumberText(double value) {
    if (value == std::trunc(value) && std::fabs(value) < 1e15) return QString::number(qint64(value));
    QString text = QString::number(value, 'f', 10);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.')) text.chop(1);
    return text;
}

void CalcLineAmount(InvoiceSheet& sheet, int i) {
    InvoiceLine& line = sheet.line(i);
    if (line.su_num.isEmpty() || line.gibon_num.isEmpty()) return;
    const double product = double(parseSingle(line.gibon_num)) * double(parseSingle(line.su_num));
    const qint32 p = roundToLong(product);
    switch (sheet.vat) {
    case VatMode::Separate:
        line.gonggum = longText(p);
        line.tax_num = longText(roundToLong(double(textToLong(line.gonggum)) * kTaxRate));
        break;
    case VatMode::Included: {
        const qint32 supply = roundToLong(double(p) / kGrossFactor);
        writeLine(line, longText(supply), longText(addLong(p, -supply)));
        break;
    }
    case VatMode::Exempt:
        writeLine(line, longText(p), QStringLiteral("0"));
        break;
    }
    SumLines(sheet);
}

void CalcLineFromSupply(InvoiceSheet& sheet, int i, bool taxOnly) {
    if (!taxOnly) {
        InvoiceLine& line = sheet.line(i);
        const double l = sheet.lastSupply;
        switch (sheet.vat) {
        case VatMode::Separate:
            writeLine(line, plainNumberText(l), longText(roundToLong(l * kTaxRate)));
            break;
        case VatMode::Included: {
            const qint32 gross = roundToLong(l);
            const qint32 supply = roundToLong(double(gross) / kGrossFactor);
            writeLine(line, longText(supply), longText(addLong(gross, -supply)));
            break;
        }
        case VatMode::Exempt:
            writeLine(line, plainNumberText(l), QStringLiteral("0"));
            break;
        }
    }
    SumLines(sheet);
}

QString digitCellsText(qint32 sum, int cells) {
    const QString digits = QString::number(sum);
    QString text;
    for (QChar ch : digits)
        text += u' ' + QString(ch);
    return QStringLiteral(" *").repeated(qMax(0, cells - int(digits.size()))) + text;
}

void SumLines(InvoiceSheet& sheet) {
    qint32 supply = 0;
    qint32 tax = 0;
    qint32 total = 0;
    for (const InvoiceLine& line : sheet.lines) {
        if (line.gonggum.isEmpty()) continue;
        const qint32 lineSupply = textToLong(line.gonggum);
        const qint32 lineTax = textToLong(line.tax_num);
        supply = addLong(supply, lineSupply);
        tax = addLong(tax, lineTax);
        total = addLong(addLong(total, lineSupply), lineTax);
    }
    sheet.gongCaption = digitCellsText(supply, 11) + digitCellsText(tax, 10);
    sheet.sumNum = longText(total);
}

void QuantityEntered(InvoiceSheet& sheet, int i) {
    if (!sheet.line(i).gibon_num.isEmpty()) CalcLineAmount(sheet, i);
}

void PriceEntered(InvoiceSheet& sheet, int i) {
    CalcLineAmount(sheet, i);
    const QString supply = sheet.line(i).gonggum;
    sheet.lastSupply = supply.trimmed().isEmpty() ? 0.0 : parseAmountText(supply);
}

bool SupplyTyped(InvoiceSheet& sheet, int i) {
    InvoiceLine& line = sheet.line(i);
    if (line.gonggum.isEmpty()) return false;
    const qint32 typed = textToLong(line.gonggum);
    if (double(typed) != sheet.lastSupply) {
        sheet.lastSupply = typed;
        line.su_num = QStringLiteral("0");
        line.gibon_num = QStringLiteral("0");
        CalcLineFromSupply(sheet, i, false);
        SumLines(sheet);
    }
    sheet.raiseCurLine();
    return true;
}

bool TaxTyped(InvoiceSheet& sheet, int i) {
    const InvoiceLine& line = sheet.line(i);
    if (line.tax_num.isEmpty()) return false;
    const qint32 typed = textToLong(line.tax_num);
    if (double(typed) != sheet.lastTax) {
        sheet.lastTax = typed;
        SumLines(sheet);
    }
    sheet.raiseCurLine();
    return true;
}

void ChangeVatMode(InvoiceSheet& sheet, VatMode mode) {
    sheet.vat = mode;
    for (int i = 0; i <= sheet.curLine; ++i) {
        if (sheet.line(i).isTypedAmount())
            CalcLineFromSupply(sheet, i, false);
        else
            CalcLineAmount(sheet, i);
    }
}

std::pair<QString, QString> pickedProductSplit(VatMode mode, double salePrice) {
    switch (mode) {
    case VatMode::Separate:
        return {plainNumberText(salePrice), longText(roundToLong(salePrice / 10.0))};
    case VatMode::Included: {
        const qint32 supply = roundToLong(salePrice / kGrossFactor);
        return {longText(supply), longText(roundToLong(salePrice - double(supply)))};
    }
    case VatMode::Exempt:
        return {plainNumberText(salePrice), QStringLiteral("0")};
    }
    return {};
}

void ApplyPickedProduct(InvoiceSheet& sheet, int i, double salePrice) {
    InvoiceLine& line = sheet.line(i);
    line.su_num = QStringLiteral("1");
    line.gibon_num = plainNumberText(salePrice);
    const auto [supply, tax] = pickedProductSplit(sheet.vat, salePrice);
    writeLine(line, supply, tax);
    CalcLineAmount(sheet, i);
}

void DeleteLine(InvoiceSheet& sheet, int i, const QString& writeMmDd) {
    for (int k = i; k < kLastInvoiceLine; ++k)
        sheet.line(k) = sheet.line(k + 1);
    sheet.line(kLastInvoiceLine).clear();
    if (sheet.curLine > 0)
        --sheet.curLine;
    else
        sheet.line(0).ddyy = writeMmDd;
    SumLines(sheet);
}

std::optional<QString> checkedTradeDate(const QString& writeYear, const QString& text) {
    QString date = text;
    if (date.size() == 4) date = date.left(2) + u'-' + date.mid(2);
    if (!IsDate(writeYear + u'-' + date)) return std::nullopt;
    return date;
}

} // namespace nb
