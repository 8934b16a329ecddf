#pragma once
// Numbers that identify a party, put into shape (never verified): telephone numbers,
// business numbers, post codes; and a product shown with its norm (규격).

#include <QString>
#include <QVariant>

namespace nb {

// A business number typed without hyphens: 3, 2 and 5 digits ("1234567890" ->
// "123-45-67890").
inline const QString kBusinessNoMask = QStringLiteral("###-##-#####");
// A post code typed without its hyphen: 3 and 3 digits.
inline const QString kPostCodeMask = QStringLiteral("###-###");

// The number with its hyphens: the area code ("02", or three digits starting with "0" when
// there are 9 digits or more), the middle, and the last four. Text of fewer than 6 characters
// comes back as it is and `localPart` is left alone; otherwise only the digits are used, and
// `localPart` receives the number without its area code.
QString FormatPhone(const QString& number, QString& localPart);
QString FormatPhone(const QString& number);

// The name, with its norm (규격) in brackets unless it is null or empty: "볼트(M8)".
QString NameWithNorm(const QString& name, const QVariant& norm);

// The business number box when it is left: formatted with kBusinessNoMask unless the text
// holds a "-" anywhere.
QString ShapeBusinessNo(const QString& text);
// The post code box: formatted with kPostCodeMask unless a "-" stands from the second
// character on; five digits (today's postcodes) stay as they are.
QString ShapePostCode(const QString& text);

} // namespace nb
