#pragma once
// Dates are text "YYYY-MM-DD" in tables, boxes and SQL. These routines test what an operator
// typed, bring every accepted form to that one form, and give the weekday words.

#include <QDate>
#include <QString>

namespace nb {

// The one form every date is written in, and the forms the statement screen shows.
inline const QString kDateFormat = QStringLiteral("yyyy-MM-dd");
inline const QString kHanDateFormat = QStringLiteral("yyyy년MM월dd일");

// The date test of a date box. Accepts "YYYY-MM-DD", "YYYY-M-D", "YYYY/MM/DD", "YYYY.MM.DD"
// and "YYYY년MM월DD일" (blanks allowed around the parts); refuses dates that do not exist.
bool IsDate(const QString& text);
// The date the text stands for; an invalid QDate when it is no date.
QDate ToDate(const QString& text);
// Any accepted form as "YYYY-MM-DD"; empty text when it is no date.
QString NormalizeDate(const QString& text);

// "YYYY-MM-DD" of a date, and "YYYY년MM월DD일".
QString DateText(const QDate& date);
QString HanDateText(const QDate& date);
QString TodayText();
// The first day of the date's month, "YYYY-MM-01".
QString FirstOfMonthText(const QDate& date);
// The date moved by some days, as "YYYY-MM-DD"; text that is no date comes back as it was.
QString AddDaysText(const QString& text, int days);

// The invoice's year, month and day boxes joined with "-" for the calendar: the joined text when
// it is a date ("YYYY-MM-DD"), else today.
QString JoinDateParts(const QString& year, const QString& month, const QString& day,
                      const QDate& today = QDate::currentDate());
// A date back into the three boxes: "yyyy", "MM", "dd"; three empty texts when it is no date.
struct DateParts {
    QString year, month, day;
    bool operator==(const DateParts&) const = default;
};
DateParts SplitDateParts(const QString& text);

// The date of year, month and day the way the three-part date routine builds it: a month or
// day beyond its range rolls over into the next month or year (month 13 is January).
QDate DateFromParts(int year, int month, int day);
// 1 for Sunday to 7 for Saturday; 0 when the parts make no date.
int GetWeekday(int year, int month, int day);
// "일요일" to "토요일" for 1 to 7; empty text for any other number.
QString HanWeekdayWord(int weekday);
QString GetHanWeekday(int year, int month, int day);
QString GetHanWeekday(const QDate& date);

} // namespace nb
