#include "common/text/MoneyWords.h"

#include <optional>

namespace nb {
namespace {

// The word of a digit; none for a character that is no digit (the previous word stays).
std::optional<QString> digitWord(QChar c) {
    static const QString words[] = {QString(),
                                    QStringLiteral("일"),
                                    QStringLiteral("이"),
                                    QStringLiteral("삼"),
                                    QStringLiteral("사"),
                                    QStringLiteral("오"),
                                    QStringLiteral("육"),
                                    QStringLiteral("칠"),
                                    QStringLiteral("팔"),
                                    QStringLiteral("구")};
    if (c < u'0' || c > u'9') return std::nullopt;
    return words[c.unicode() - u'0'];
}

// 십, 백 or 천 by the place within its group of four; empty at the group's lowest place.
QString smallUnit(qsizetype pos) {
    switch (pos % 4) {
    case 2:
        return QStringLiteral("십");
    case 3:
        return QStringLiteral("백");
    case 0:
        return QStringLiteral("천");
    default:
        return QString();
    }
}

// The walk's state between characters.
struct Walk {
    QString digitWord;
    bool skipMan = false;
};

// 만, 억 or 조 at the lowest place of a group; 만 is left out while skipMan holds.
QString bigUnit(qsizetype pos, Walk& walk) {
    if (pos == 5) {
        if (walk.skipMan) {
            walk.skipMan = false;
            return QString();
        }
        return QStringLiteral("만");
    }
    if (pos == 9 || pos == 13) {
        walk.skipMan = true;
        return pos == 9 ? QStringLiteral("억") : QStringLiteral("조");
    }
    return QString();
}

} // namespace

QString GetHanKum(const QString& amount) {
    const QString text = amount.trimmed();
    const qsizetype n = text.size();
    if (n > 14) return QString();
    Walk walk;
    QString result;
    for (qsizetype i = 0; i < n; ++i) {
        const qsizetype pos = n - i;
        const QChar c = text.at(i);
        const QString big = bigUnit(pos, walk);
        QString small;
        if (c != u'0' && pos % 4 != 1) {
            small = smallUnit(pos);
            walk.skipMan = false;
        }
        if (const auto word = digitWord(c)) walk.digitWord = *word;
        result += walk.digitWord + small + big;
    }
    if (result.isEmpty()) return QString();
    return QStringLiteral("일금 ") + result + QStringLiteral(" 원정");
}

} // namespace nb
