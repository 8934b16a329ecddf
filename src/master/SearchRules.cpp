#include "master/SearchRules.h"

#include "common/text/Cp949.h"
#include "storage/Database.h"

namespace nb {

QString StripSearchText(const QString& text) {
    QString out = text;
    out.remove(u'\'');
    out.remove(u'\\');
    out.remove(u']');
    return out;
}

QString LikePrefix(const QString& text) {
    return likeLiteral(text) + u'%';
}

QString LikeContains(const QString& text) {
    return u'%' + likeLiteral(text) + u'%';
}

bool IsDigitCode(int code) {
    return code >= 48 && code <= 57;
}

bool IsOutsideLetterBands(int code) {
    return code >= 0 && !(code >= 66 && code <= 89) && !(code >= 98 && code <= 121);
}

UserSearch UserSearchFor(const QString& text) {
    const int code = FirstCharCode(text);
    if (!IsOutsideLetterBands(code)) return UserSearch::CompanyPrefix;
    return IsDigitCode(code) ? UserSearch::PhoneAnywhere : UserSearch::CompanyAnywhere;
}

bool TraderSearchByPhone(const QString& text) {
    const int code = FirstCharCode(text);
    return IsOutsideLetterBands(code) && IsDigitCode(code);
}

bool ProductSearchesCode(const QString& text) {
    const int code = FirstCharCode(text);
    return code >= 0 && (code < 66 || code >= 122);
}

bool PostSearchByZip(const QString& text) {
    return FirstCharCode(text) >= 0;
}

} // namespace nb
