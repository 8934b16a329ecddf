#include "common/text/ByteText.h"

#include "common/text/Cp949.h"

namespace nb {
namespace {

int columnsOf(QChar ch) {
    return IsDoubleByte(ch) ? 2 : 1;
}

bool isBlankValue(const QVariant& value) {
    return !value.isValid() || value.isNull() || NullToText(value).isEmpty();
}

} // namespace

QString NullToText(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return QString();
    // Floating values read as the platform's text of a number: at most 15 significant digits.
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return QString::number(value.toDouble(), 'g', 15);
    return value.toString();
}

int ByteLen(const QString& text) {
    int length = 0;
    for (QChar ch : text)
        length += AscCode(ch) < 1 ? 2 : 1;
    return length;
}

int AnsiLenB(const QString& text) {
    return int(ToCp949(text).size());
}

QString CutBytes(const QString& text, int width) {
    int sum = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        sum += columnsOf(text.at(i));
        if (sum < width) continue;
        const QString part = text.left(i + 1);
        if (AnsiLenB(part) <= width) return part;
        return part.left(i) + u' ';
    }
    return text;
}

QString CutAnsi(const QString& text, int width) {
    QString result;
    int bytes = 0;
    for (QChar ch : text) {
        const int next = int(Cp949Bytes(ch).size());
        if (bytes + next > width) break;
        result += ch;
        bytes += next;
    }
    return result;
}

QString PadBytes(const QVariant& value, int width) {
    if (isBlankValue(value)) return QString(qMax(width, 0), u' ');
    const QString text = NullToText(value);
    const int length = ByteLen(text);
    if (length >= width) return CutBytes(text, width);
    return QString(width - length, u' ') + text;
}

} // namespace nb
