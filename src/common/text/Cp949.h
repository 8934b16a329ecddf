#pragma once
// The Korean multi-byte code page (CP949) as the program sees text: Hangul and the other
// double-byte characters take two bytes, ASCII one, and a character the code page cannot hold
// becomes one "?" byte, the way the platform's conversion treats it.

#include <QByteArray>
#include <QChar>
#include <QString>

namespace nb {

// The bytes of one character in CP949; "?" when the code page has no such character.
QByteArray Cp949Bytes(QChar ch);
// The whole text in CP949, character by character ("?" for each character it cannot hold).
QByteArray ToCp949(const QString& text);
// CP949 bytes back to text; bytes that are no CP949 character become U+FFFD.
QString FromCp949(const QByteArray& bytes);

// True when the character takes two bytes in CP949.
bool IsDoubleByte(QChar ch);

// The character's code in the code page: the byte for a single-byte character, the 16-bit
// signed value of the two bytes for a double-byte one (so every Hangul syllable is negative),
// 63 ("?") for a character the code page cannot hold.
int AscCode(QChar ch);
// AscCode of the first character; 0 for an empty text.
int FirstCharCode(const QString& text);

} // namespace nb
