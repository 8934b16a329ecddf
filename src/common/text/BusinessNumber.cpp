#include "common/text/BusinessNumber.h"

#include "common/Messages.h"

#include <array>

namespace nb {

QString businessNumberDigits(const QString& text) {
    QString digits;
    for (const QChar c : text)
        if (c != u'-' && !c.isSpace()) digits.append(c);
    return digits;
}

bool IsValidBusinessNumber(const QString& text) {
    static constexpr std::array<int, 9> weights = {1, 3, 7, 1, 3, 7, 1, 3, 5};
    const QString digits = businessNumberDigits(text);
    if (digits.size() != 10) return false;
    for (const QChar c : digits)
        if (c < u'0' || c > u'9') return false;
    int sum = 0;
    for (int i = 0; i < 9; ++i)
        sum += digits[i].digitValue() * weights[i];
    sum += digits[8].digitValue() * 5 / 10;
    return (10 - sum % 10) % 10 == digits[9].digitValue();
}

QString businessNumberWarning(const QString& text) {
    return QStringLiteral("사업자등록번호 ") + text +
           QStringLiteral(
               "의 검증번호가 맞지 않습니다.\r\n번호를 다시 확인하십시오. (그대로 저장할 수 있습니다)");
}

bool WarnOnBadBusinessNumber(const QString& text, bool residentNumberAllowed) {
    const QString digits = businessNumberDigits(text);
    if (digits.isEmpty() || IsValidBusinessNumber(digits)) return false;
    if (residentNumberAllowed && digits.size() == 13) return false;
    ShowFloatMsg(businessNumberWarning(text.trimmed()), 2500, false, kNoticeColor);
    return true;
}

} // namespace nb
