#include "common/text/EmailAddress.h"

#include <QStringList>

namespace nb {
namespace {

bool isAsciiLetterOrDigit(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

bool isLocalChar(QChar c) {
    static const QString signs = QStringLiteral("!#$%&'*+/=?^_`{|}~-.");
    return isAsciiLetterOrDigit(c) || signs.contains(c);
}

bool isValidLocal(const QString& local) {
    if (local.isEmpty() || local.size() > 64) return false;
    if (local.startsWith(u'.') || local.endsWith(u'.') || local.contains(QStringLiteral(".."))) return false;
    for (const QChar c : local)
        if (!isLocalChar(c)) return false;
    return true;
}

bool isValidLabel(const QString& label) {
    if (label.isEmpty() || label.size() > 63 || label.startsWith(u'-') || label.endsWith(u'-')) return false;
    for (const QChar c : label)
        if (!isAsciiLetterOrDigit(c) && c != u'-') return false;
    return true;
}

bool isValidDomain(const QString& domain) {
    const QStringList labels = domain.split(u'.');
    if (labels.size() < 2) return false;
    for (const QString& label : labels)
        if (!isValidLabel(label)) return false;
    const QString top = labels.last();
    if (top.size() < 2) return false;
    for (const QChar c : top)
        if (!(c >= u'a' && c <= u'z') && !(c >= u'A' && c <= u'Z')) return false;
    return true;
}

} // namespace

bool IsValidEmail(const QString& address) {
    if (address.size() > 254 || address.count(u'@') != 1) return false;
    const qsizetype at = address.indexOf(u'@');
    return isValidLocal(address.left(at)) && isValidDomain(address.mid(at + 1));
}

QString emailRefusal(const QString& address) {
    const QString text = address.trimmed();
    if (text.isEmpty() || IsValidEmail(text)) return QString();
    return QStringLiteral("이메일 주소가 올바르지 않습니다: %1\r\n예) tax@example.co.kr").arg(text);
}

} // namespace nb
