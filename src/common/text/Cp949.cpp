#include "common/text/Cp949.h"

#include <cerrno>
#include <cstdint>
#include <iconv.h>

namespace nb {
namespace {

// One conversion handle per thread and direction: iconv handles keep shift state and are not
// shared between threads.
class Converter {
public:
    Converter(const char* to, const char* from) : m_handle(iconv_open(to, from)) {}
    ~Converter() {
        if (valid()) iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool valid() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    // Converts the whole input; false when any of it could not be converted.
    bool convert(const QByteArray& input, QByteArray& output) {
        output.clear();
        if (!valid()) return false;
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        QByteArray buffer(input.size() * 4 + 16, '\0');
        char* in = const_cast<char*>(input.constData());
        size_t inLeft = size_t(input.size());
        char* out = buffer.data();
        size_t outLeft = size_t(buffer.size());
        const size_t result = iconv(m_handle, &in, &inLeft, &out, &outLeft);
        if (result == size_t(-1) || inLeft != 0) return false;
        output = buffer.left(buffer.size() - qsizetype(outLeft));
        return true;
    }

private:
    iconv_t m_handle;
};

Converter& toCp949() {
    thread_local Converter converter("CP949", "UTF-8");
    return converter;
}

Converter& fromCp949() {
    thread_local Converter converter("UTF-8", "CP949");
    return converter;
}

const QByteArray kUnknownByte("?");

} // namespace

QByteArray Cp949Bytes(QChar ch) {
    if (ch.unicode() < 0x80) return QByteArray(1, char(ch.unicode()));
    if (ch.isSurrogate()) return kUnknownByte;
    QByteArray bytes;
    if (!toCp949().convert(QString(ch).toUtf8(), bytes) || bytes.isEmpty()) return kUnknownByte;
    return bytes;
}

QByteArray ToCp949(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size() * 2);
    for (QChar ch : text)
        bytes += Cp949Bytes(ch);
    return bytes;
}

QString FromCp949(const QByteArray& bytes) {
    QByteArray utf8;
    if (fromCp949().convert(bytes, utf8)) return QString::fromUtf8(utf8);
    // Some bytes are no character: convert piece by piece, the pieces that fail as U+FFFD.
    QString text;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = uchar(bytes.at(i));
        if (byte < 0x80) {
            text += QChar(byte);
            continue;
        }
        if (i + 1 < bytes.size() && fromCp949().convert(bytes.mid(i, 2), utf8)) {
            text += QString::fromUtf8(utf8);
            ++i;
        } else {
            text += QChar(QChar::ReplacementCharacter);
        }
    }
    return text;
}

bool IsDoubleByte(QChar ch) {
    return Cp949Bytes(ch).size() == 2;
}

int AscCode(QChar ch) {
    const QByteArray bytes = Cp949Bytes(ch);
    if (bytes.size() == 2) return int(int16_t(uint16_t(uchar(bytes[0]) << 8 | uchar(bytes[1]))));
    return uchar(bytes[0]);
}

int FirstCharCode(const QString& text) {
    return text.isEmpty() ? 0 : AscCode(text.front());
}

} // namespace nb
