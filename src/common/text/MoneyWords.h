#pragma once
// An amount written out in Korean words, as a quotation shows it: "일금 일천 원정".

#include <QString>

namespace nb {

// The trimmed digit text in words between "일금 " and " 원정"; empty text for more than 14
// characters or when no word comes out ("0", "000", ""). The walk keeps its known quirks on
// purpose: the 만 of "100010000" is lost, "1000000000000" reads "일조억", a sign or a decimal
// point takes a place of its own.
QString GetHanKum(const QString& amount);

} // namespace nb
