#include "common/grid/GridNumbers.h"

#include <QRegularExpression>
#include <cmath>

namespace nb::gridnum {

std::optional<double> parse(const QString& text) {
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
