#include "common/text/Identity.h"

#include "common/text/ByteText.h"
#include "common/text/NumberFormat.h"

#include <algorithm>

namespace nb {
namespace {

QString digitsOf(const QString& text) {
    QString digits;
    for (QChar c : text)
        if (c >= u'0' && c <= u'9') digits += c;
    return digits;
}

int areaCodeLength(const QString& digits) {
    if (digits.startsWith(QStringLiteral("02"))) return 2;
    if (digits.startsWith(u'0') && digits.size() >= 9) return 3;
    return 0;
}

// Everything but the last four, "-", the last four; a shorter middle is just empty.
QString middleAndLastFour(const QString& digits, qsizetype from) {
    const qsizetype lastFour = qMax<qsizetype>(digits.size() - 4, from);
    return digits.mid(from, lastFour - from) + u'-' + digits.mid(lastFour);
}

} // namespace

QString FormatPhone(const QString& number, QString& localPart) {
    if (number.size() < 6) return number;
    const QString digits = IsNumericText(number) ? number : digitsOf(number);
    if (!IsNumericText(digits)) return digits;
    const int area = areaCodeLength(digits);
    if (area == 0) {
        localPart = middleAndLastFour(digits, 0);
        return localPart;
    }
    const QString result = digits.left(area) + u'-' + middleAndLastFour(digits, area);
    localPart = result.mid(result.indexOf(u'-') + 1);
    return result;
}

QString FormatPhone(const QString& number) {
    QString localPart;
    return FormatPhone(number, localPart);
}

QString NameWithNorm(const QString& name, const QVariant& norm) {
    const QString text = NullToText(norm);
    if (text.isEmpty()) return name;
    return name + u'(' + text + u')';
}

QString ShapeBusinessNo(const QString& text) {
    if (text.contains(u'-')) return text;
    return FormatText(text, kBusinessNoMask);
}

QString ShapePostCode(const QString& text) {
    if (text.indexOf(u'-', 1) >= 0) return text;
    // Today's postcodes have five digits and no hyphen.
    const QString digits = text.trimmed();
    if (digits.size() == 5 && std::all_of(digits.begin(), digits.end(), [](QChar c) { return c.isDigit(); }))
        return digits;
    return FormatText(text, kPostCodeMask);
}

} // namespace nb
