#include "common/text/NumberFormat.h"

#include "common/Messages.h"

#include <QRegularExpression>
#include <cmath>
#include <limits>

namespace nb {
namespace {

// A number as decimal digits: the integer part without leading zeros ("" for none) and the
// fraction part.
struct DecimalDigits {
    bool negative = false;
    QString whole;
    QString fraction;
};

QString zeros(qsizetype count) {
    return QString(qMax<qsizetype>(count, 0), u'0');
}

QString withoutLeadingZeros(const QString& digits) {
    qsizetype i = 0;
    while (i < digits.size() && digits.at(i) == u'0')
        ++i;
    return digits.mid(i);
}

// The 15 significant digits of a float, as the platform formats one.
DecimalDigits digitsOfDouble(double value) {
    DecimalDigits d;
    if (!std::isfinite(value) || value == 0) return d;
    d.negative = value < 0;
    const QString e = QString::number(std::abs(value), 'e', 14); // d.ddddddddddddddde+XX
    const QString mantissa = e.left(1) + e.mid(2, 14);
    const int wholeCount = e.mid(e.indexOf(u'e') + 1).toInt() + 1;
    if (wholeCount <= 0) {
        d.fraction = zeros(-wholeCount) + mantissa;
    } else if (wholeCount >= mantissa.size()) {
        d.whole = mantissa + zeros(wholeCount - mantissa.size());
    } else {
        d.whole = mantissa.left(wholeCount);
        d.fraction = mantissa.mid(wholeCount);
    }
    d.whole = withoutLeadingZeros(d.whole);
    return d;
}

DecimalDigits digitsOfInteger(qint64 value) {
    DecimalDigits d;
    d.negative = value < 0;
    const QString text = QString::number(value);
    d.whole = withoutLeadingZeros(d.negative ? text.mid(1) : text);
    return d;
}

// Plain decimal text ("-1,234.50"): its digits exactly; false for other forms.
bool digitsOfPlainText(const QString& text, DecimalDigits& d) {
    static const QRegularExpression plain(QStringLiteral("^([+-]?)([0-9,]*)(?:\\.([0-9]*))?$"));
    const auto match = plain.match(text.trimmed());
    if (!match.hasMatch()) return false;
    d.negative = match.captured(1) == u"-";
    d.whole = withoutLeadingZeros(match.captured(2).remove(u','));
    d.fraction = match.captured(3);
    return !(d.whole.isEmpty() && d.fraction.isEmpty() && !match.captured(2).contains(u'0'));
}

// Adds one unit in the last place of a digit string; a carry out of the front adds a digit.
QString incremented(QString digits) {
    for (qsizetype i = digits.size() - 1; i >= 0; --i) {
        if (digits[i] != u'9') {
            digits[i] = QChar(digits[i].unicode() + 1);
            return digits;
        }
        digits[i] = u'0';
    }
    return u'1' + digits;
}

// Exactly `places` fraction digits, rounding half away from zero on the digit that follows.
DecimalDigits roundedTo(DecimalDigits d, qsizetype places) {
    if (d.fraction.size() <= places) {
        d.fraction += zeros(places - d.fraction.size());
        return d;
    }
    const bool up = d.fraction.at(places) >= u'5';
    d.fraction.truncate(places);
    if (!up) return d;
    const QString all = incremented(d.whole + d.fraction);
    d.whole = withoutLeadingZeros(all.left(all.size() - places));
    d.fraction = all.right(places);
    return d;
}

bool isPlaceholder(QChar c) {
    return c == u'#' || c == u'0';
}

qsizetype placeholderCount(const QString& mask) {
    return std::count_if(mask.begin(), mask.end(), isPlaceholder);
}

// The fraction through its mask: "0" always prints, "#" only where a later digit matters.
QString formatFraction(const QString& fraction, const QString& mask) {
    qsizetype lastShown = -1;
    for (qsizetype i = 0, k = 0; i < mask.size(); ++i) {
        if (!isPlaceholder(mask[i])) continue;
        if (mask[i] == u'0' || fraction.at(k) != u'0') lastShown = k;
        ++k;
    }
    QString out;
    for (qsizetype i = 0, k = 0; i < mask.size(); ++i) {
        if (!isPlaceholder(mask[i])) {
            out += mask[i];
            continue;
        }
        if (k <= lastShown) out += fraction.at(k);
        ++k;
    }
    return out;
}

// Digits grouped by three, at least as many as the mask's "0" places demand.
QString formatGrouped(const QString& whole, const QString& mask) {
    const qsizetype first = std::find_if(mask.begin(), mask.end(), isPlaceholder) - mask.begin();
    qsizetype last = mask.size() - 1;
    while (last >= 0 && !isPlaceholder(mask[last]))
        --last;
    const qsizetype firstZero = mask.indexOf(u'0');
    const qsizetype minimum = firstZero < 0 ? 0 : placeholderCount(mask.mid(firstZero));
    const QString digits = zeros(minimum - whole.size()) + whole;
    QString grouped;
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) grouped += u',';
        grouped += digits[i];
    }
    QString prefix = mask.left(first), suffix = mask.mid(last + 1);
    return prefix.remove(u',') + grouped + suffix.remove(u',');
}

// Digits placed from the right into the mask's places; digits beyond them all go to the
// leftmost place, and the other mask characters print where they stand.
QString formatPlaced(const QString& whole, const QString& mask) {
    qsizetype remaining = placeholderCount(mask);
    if (remaining == 0) return mask + whole;
    qsizetype next = whole.size(); // digits not yet placed are whole.left(next)
    QString out;
    for (qsizetype i = mask.size() - 1; i >= 0; --i) {
        const QChar c = mask[i];
        if (!isPlaceholder(c)) {
            out.prepend(c);
            continue;
        }
        --remaining;
        if (remaining == 0 && next > 0) {
            out.prepend(whole.left(next));
            next = 0;
        } else if (next > 0) {
            out.prepend(whole.at(--next));
        } else if (c == u'0') {
            out.prepend(u'0');
        }
    }
    return out;
}

QString formatDigits(const DecimalDigits& value, const QString& mask) {
    const qsizetype point = mask.indexOf(u'.');
    const QString wholeMask = point < 0 ? mask : mask.left(point);
    const QString fractionMask = point < 0 ? QString() : mask.mid(point + 1);
    const DecimalDigits d = roundedTo(value, placeholderCount(fractionMask));
    const bool grouped = wholeMask.contains(u',');
    QString out = grouped ? formatGrouped(d.whole, wholeMask) : formatPlaced(d.whole, wholeMask);
    if (point >= 0) out += u'.' + formatFraction(d.fraction, fractionMask);
    const bool zero = d.whole.isEmpty() && withoutLeadingZeros(d.fraction).isEmpty();
    return d.negative && !zero ? u'-' + out : out;
}

} // namespace

QString FormatNumber(double value, const QString& mask) {
    // A whole number below 10^15 is its integer's digits exactly (the float's fifteen digits have
    // no fraction to give): most amounts and quantities, printed without the float's text.
    if (std::abs(value) < 1e15 && value == std::trunc(value))
        return formatDigits(digitsOfInteger(qint64(value)), mask);
    return formatDigits(digitsOfDouble(value), mask);
}

QString FormatNumber(qint64 value, const QString& mask) {
    return formatDigits(digitsOfInteger(value), mask);
}

QString FormatText(const QString& text, const QString& mask) {
    const QString trimmed = text.trimmed();
    if (!IsNumericText(trimmed) || trimmed == u"-" || trimmed == u".") return text;
    DecimalDigits d;
    if (digitsOfPlainText(trimmed, d)) return formatDigits(d, mask);
    return FormatNumber(NumberFromText(trimmed), mask);
}

bool IsNumericText(const QString& text) {
    static const QRegularExpression numeric(QStringLiteral("^[+-]?[0-9,]*(\\.[0-9]*)?([eE][+-]?[0-9]+)?$"));
    const QString trimmed = text.trimmed();
    if (trimmed == u"-" || trimmed == u".") return true;
    if (!numeric.match(trimmed).hasMatch()) return false;
    const qsizetype exponent = trimmed.indexOf(QRegularExpression(QStringLiteral("[eE]")));
    const QString mantissa = exponent < 0 ? trimmed : trimmed.left(exponent);
    return std::any_of(mantissa.begin(), mantissa.end(), [](QChar c) { return c.isDigit(); });
}

double NumberFromText(const QString& text, bool* ok) {
    bool converted = IsNumericText(text);
    double value = 0;
    if (converted) value = QString(text.trimmed()).remove(u',').toDouble(&converted);
    if (ok) *ok = converted;
    return converted ? value : 0;
}

QString GetDecFormat(int decPlaces, bool useComma, bool zeroFill) {
    if (decPlaces < std::numeric_limits<qint16>::min() || decPlaces > std::numeric_limits<qint16>::max()) {
        ShowFailureReport(6, QStringLiteral("Overflow"), QStringLiteral("GetDecFormat"),
                          QStringLiteral("mdlCommonHM"));
        return QString();
    }
    QString mask = zeroFill ? QStringLiteral("0") : QStringLiteral("#");
    if (useComma) mask.prepend(QStringLiteral("#,##"));
    if (decPlaces > 0) mask += u'.' + zeros(decPlaces);
    return mask;
}

} // namespace nb
