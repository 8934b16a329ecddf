#pragma once
// Text measured and cut by its printed width: the print surface counts in columns, one for a
// Latin character and two for a Hangul one, which is the character's byte count in CP949.

#include <QString>
#include <QVariant>

namespace nb {

// Printed width in columns: the character count plus one for each character whose code-page
// code is below 1 (every double-byte character).
int ByteLen(const QString& text);
// Bytes of the text in CP949.
int AnsiLenB(const QString& text);
// The text cut to exactly `width` columns; a double-byte character that would straddle the
// limit is replaced by a blank. A shorter text comes back whole.
QString CutBytes(const QString& text, int width);
// The longest head of whole characters that fits in `width` bytes, not padded.
QString CutAnsi(const QString& text, int width);
// The value right aligned in exactly `width` columns (cut when it is as wide or wider);
// empty text, an invalid or a null value give `width` blanks.
QString PadBytes(const QVariant& value, int width);

// A value as text, empty for a database null (and for an invalid variant).
QString NullToText(const QVariant& value);

} // namespace nb
