#pragma once
// The period an electronic invoice export offers first, and the day by which the invoices of a
// month must be issued: the 10th of the following month, moved to the Monday after when it
// falls on a Saturday or a Sunday.

#include <QDate>
#include <QString>

namespace nb {

struct EtaxPeriod {
    QString from; // "YYYY-MM-DD"
    QString to;
};

// The month before the month of `today`, first day to last.
EtaxPeriod lastMonthPeriod(const QDate& today);
// The last day to issue the invoices of the month `dayInMonth` lies in.
QDate issueDeadline(const QDate& dayInMonth);
// "2026-11-10(화)".
QString dayWithWeekday(const QDate& day);
// The deadline line of the period window: the deadline of the period's last month (with
// "각 달" when the period covers several), and whether it has passed today.
QString deadlineText(const EtaxPeriod& period, const QDate& today);
// "2026년 10월".
QString monthName(const QDate& dayInMonth);

} // namespace nb
