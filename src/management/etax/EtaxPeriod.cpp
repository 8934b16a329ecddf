#include "management/etax/EtaxPeriod.h"

namespace nb {
namespace {

const QString kDay = QStringLiteral("yyyy-MM-dd");

} // namespace

EtaxPeriod lastMonthPeriod(const QDate& today) {
    const QDate first = QDate(today.year(), today.month(), 1).addMonths(-1);
    return {first.toString(kDay), first.addDays(first.daysInMonth() - 1).toString(kDay)};
}

QDate issueDeadline(const QDate& dayInMonth) {
    const QDate next = QDate(dayInMonth.year(), dayInMonth.month(), 1).addMonths(1);
    QDate deadline(next.year(), next.month(), 10);
    // Saturday (6) and Sunday (7) move it to the Monday after.
    if (deadline.dayOfWeek() > 5) deadline = deadline.addDays(8 - deadline.dayOfWeek());
    return deadline;
}

QString dayWithWeekday(const QDate& day) {
    static const QString names = QStringLiteral("월화수목금토일");
    return day.toString(kDay) + u'(' + names.at(day.dayOfWeek() - 1) + u')';
}

QString monthName(const QDate& dayInMonth) {
    return QStringLiteral("%1년 %2월").arg(dayInMonth.year()).arg(dayInMonth.month());
}

QString deadlineText(const EtaxPeriod& period, const QDate& today) {
    const QDate from = QDate::fromString(period.from, kDay);
    const QDate to = QDate::fromString(period.to, kDay);
    if (!from.isValid() || !to.isValid() || to < from) return QString();
    const QDate deadline = issueDeadline(to);
    const bool severalMonths = from.year() != to.year() || from.month() != to.month();
    QString text = severalMonths ? QStringLiteral("발급 기한: 각 달의 다음 달 10일, %1분은 %2")
                                       .arg(monthName(to), dayWithWeekday(deadline))
                                 : QStringLiteral("발급 기한: %1 (%2분, 다음 달 10일, 주말이면 월요일)")
                                       .arg(dayWithWeekday(deadline), monthName(to));
    if (today > issueDeadline(from))
        text += severalMonths && today <= deadline ? QStringLiteral(" - 앞선 달의 기한은 지났습니다")
                                                   : QStringLiteral(" - 기한이 지났습니다");
    return text;
}

} // namespace nb
