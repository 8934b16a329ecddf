#include "common/dates/DateText.h"

#include <QRegularExpression>
#include <array>

namespace nb {
namespace {

// Year, month and day with one separator used twice; the dotted form may end in a dot.
const QRegularExpression& separatedForm() {
    static const QRegularExpression re(
        QStringLiteral(R"(^\s*(\d{4})\s*([-/.])\s*(\d{1,2})\s*\2\s*(\d{1,2})\s*(\.?)\s*$)"));
    return re;
}

// "2004년 1월 1일", blanks anywhere between the parts.
const QRegularExpression& koreanForm() {
    static const QRegularExpression re(
        QStringLiteral(R"(^\s*(\d{4})\s*년\s*(\d{1,2})\s*월\s*(\d{1,2})\s*일\s*$)"));
    return re;
}

QDate dateOfParts(const QString& year, const QString& month, const QString& day) {
    return QDate(year.toInt(), month.toInt(), day.toInt());
}

} // namespace

QDate ToDate(const QString& text) {
    if (const auto m = separatedForm().match(text); m.hasMatch()) {
        const bool strayDot = !m.captured(5).isEmpty() && m.captured(2) != u'.';
        return strayDot ? QDate() : dateOfParts(m.captured(1), m.captured(3), m.captured(4));
    }
    if (const auto m = koreanForm().match(text); m.hasMatch())
        return dateOfParts(m.captured(1), m.captured(2), m.captured(3));
    return QDate();
}

bool IsDate(const QString& text) {
    return ToDate(text).isValid();
}

QString NormalizeDate(const QString& text) {
    const QDate date = ToDate(text);
    return date.isValid() ? DateText(date) : QString();
}

QString DateText(const QDate& date) {
    return date.toString(kDateFormat);
}
QString HanDateText(const QDate& date) {
    return date.toString(kHanDateFormat);
}
QString TodayText() {
    return DateText(QDate::currentDate());
}

QString FirstOfMonthText(const QDate& date) {
    return date.toString(QStringLiteral("yyyy-MM-01"));
}

QString AddDaysText(const QString& text, int days) {
    const QDate date = ToDate(text);
    return date.isValid() ? DateText(date.addDays(days)) : text;
}

QString JoinDateParts(const QString& year, const QString& month, const QString& day, const QDate& today) {
    const QString joined = year.trimmed() + u'-' + month.trimmed() + u'-' + day.trimmed();
    return IsDate(joined) ? NormalizeDate(joined) : DateText(today);
}

DateParts SplitDateParts(const QString& text) {
    const QDate date = ToDate(text);
    if (!date.isValid()) return {};
    return {date.toString(QStringLiteral("yyyy")), date.toString(QStringLiteral("MM")),
            date.toString(QStringLiteral("dd"))};
}

QDate DateFromParts(int year, int month, int day) {
    const QDate januaryFirst(year, 1, 1);
    if (!januaryFirst.isValid()) return QDate();
    return januaryFirst.addMonths(month - 1).addDays(day - 1);
}

int GetWeekday(int year, int month, int day) {
    const QDate date = DateFromParts(year, month, day);
    // Qt counts Monday 1 to Sunday 7; the weekday here starts on Sunday.
    return date.isValid() ? date.dayOfWeek() % 7 + 1 : 0;
}

QString HanWeekdayWord(int weekday) {
    static const std::array<QString, 7> words = {QStringLiteral("일요일"), QStringLiteral("월요일"),
                                                 QStringLiteral("화요일"), QStringLiteral("수요일"),
                                                 QStringLiteral("목요일"), QStringLiteral("금요일"),
                                                 QStringLiteral("토요일")};
    return weekday >= 1 && weekday <= 7 ? words[weekday - 1] : QString();
}

QString GetHanWeekday(int year, int month, int day) {
    return HanWeekdayWord(GetWeekday(year, month, day));
}

QString GetHanWeekday(const QDate& date) {
    return GetHanWeekday(date.year(), date.month(), date.day());
}

} // namespace nb
