#include "common/grid/GridNumbers.h"

#include <QRegularExpression>
#include <charconv>
#include <cmath>

namespace nb::gridnum {

// A text of a sign, digits, a dot and digits (the plain number the program writes into a cell,
// perhaps with separators) read straight, without the general reading of a number; anything
// else is left to it.
static std::optional<double> parseDigits(const QString& text) {
    char buffer[64];
    int size = 0, digitsBefore = 0, digitsAfter = 0;
    bool dot = false;
    qsizetype i = 0, end = text.size();
    while (i < end && text.at(i) == u' ')
        ++i;
    while (end > i && text.at(end - 1) == u' ')
        --end;
    if (i < end && text.at(i) == u'-') buffer[size++] = '-', ++i;
    for (; i < end; ++i) {
        const char16_t c = text.at(i).unicode();
        if (c == u',' && !dot) continue;
        if (size >= int(sizeof buffer) - 1) return std::nullopt;
        if (c >= u'0' && c <= u'9') {
            (dot ? digitsAfter : digitsBefore)++;
        } else if (c == u'.' && !dot) {
            dot = true;
        } else {
            return std::nullopt;
        }
        buffer[size++] = char(c);
    }
    if (digitsBefore == 0 || (dot && digitsAfter == 0)) return std::nullopt;
    double value = 0;
    const auto [at, error] = std::from_chars(buffer, buffer + size, value);
    if (error != std::errc() || at != buffer + size || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<double> parse(const QString& text) {
    if (const auto plain = parseDigits(text)) return plain;
    QString cleaned = text.trimmed();
    cleaned.remove(u',');
    if (cleaned.isEmpty()) return std::nullopt;
    bool ok = false;
    const double value = cleaned.toDouble(&ok);
    if (!ok || !std::isfinite(value)) return std::nullopt;
    return value;
}

double roundAt(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    // The small nudge keeps 0.125 * 100 = 12.4999... from rounding down.
    const double scaled = std::abs(value) * scale * (1.0 + 1e-15);
    return std::copysign(std::floor(scaled + 0.5) / scale, value);
}

static QString groupThousands(const QString& digits) {
    QString out;
    const int n = int(digits.size());
    for (int i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0) out += u',';
        out += digits.at(i);
    }
    return out;
}

QString format(double value, int decimals, bool separator) {
    const double rounded = roundAt(value, decimals);
    QString text = QString::number(std::abs(rounded), 'f', decimals);
    const bool negative = rounded < 0 && text.contains(QRegularExpression(QStringLiteral("[1-9]")));
    if (separator) {
        const qsizetype dot = text.indexOf(u'.');
        const QString whole = dot < 0 ? text : text.left(dot);
        text = groupThousands(whole) + (dot < 0 ? QString() : text.mid(dot));
    }
    return negative ? u'-' + text : text;
}

QString plain(double value, int decimals) {
    QString text = QString::number(roundAt(value, decimals), 'f', decimals);
    if (text.contains(u'.')) {
        while (text.endsWith(u'0'))
            text.chop(1);
        if (text.endsWith(u'.')) text.chop(1);
    }
    if (text == QStringLiteral("-0")) text = QStringLiteral("0");
    return text;
}

bool acceptableWhileTyping(const QString& text, const CellFormat& format) {
    QString cleaned = text.trimmed();
    cleaned.remove(u',');
    if (cleaned.isEmpty() || cleaned == QStringLiteral("-")) return format.min < 0 || cleaned.isEmpty();
    const QString pattern = format.decimals > 0
                                ? QStringLiteral("^-?\\d*(\\.\\d{0,%1})?$").arg(format.decimals)
                                : QStringLiteral("^-?\\d*$");
    if (!QRegularExpression(pattern).match(cleaned).hasMatch()) return false;
    if (cleaned.startsWith(u'-') && format.min >= 0) return false;
    const auto value = parse(cleaned == QStringLiteral(".") ? QStringLiteral("0") : cleaned);
    if (!value) return cleaned == QStringLiteral("-.") || cleaned == QStringLiteral(".");
    return *value <= format.max && *value >= format.min;
}

} // namespace nb::gridnum
