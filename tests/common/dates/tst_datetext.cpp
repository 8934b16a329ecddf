// Date text: the forms a date box accepts, the one form every date is written in, weekday words.
#include "TestSupport.h"
#include "common/dates/DateText.h"

using namespace nb;

class TestDateText : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void acceptsTheStoredForm() {
        test::TestHome home;
        QVERIFY(IsDate(QStringLiteral("2004-01-01")));
        QVERIFY(IsDate(QStringLiteral("2024-12-31")));
    }
    void acceptsTheFormsAnOperatorTypes_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("one-digit month and day") << "2024-3-5"
                                                 << "2024-03-05";
        QTest::newRow("slashes") << "2024/03/05"
                                 << "2024-03-05";
        QTest::newRow("slashes, short parts") << "2024/3/5"
                                              << "2024-03-05";
        QTest::newRow("dots") << "2024.03.05"
                              << "2024-03-05";
        QTest::newRow("dots with a closing dot") << "2024. 3. 5."
                                                 << "2024-03-05";
        QTest::newRow("Korean, no blanks") << "2024년03월05일"
                                           << "2024-03-05";
        QTest::newRow("Korean, with blanks") << "2024년 3월 5일"
                                             << "2024-03-05";
        QTest::newRow("Korean, blanks everywhere") << " 2024 년 03 월 05 일 "
                                                   << "2024-03-05";
        QTest::newRow("blanks around the text") << "  2024-03-05 "
                                                << "2024-03-05";
    }
    void acceptsTheFormsAnOperatorTypes() {
        test::TestHome home;
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QVERIFY(IsDate(typed));
        QCOMPARE(NormalizeDate(typed), stored);
    }
    void refusesTextThatIsNoDate_data() {
        QTest::addColumn<QString>("typed");
        QTest::newRow("empty") << "";
        QTest::newRow("empty mask") << "    -  -  ";
        QTest::newRow("half typed") << "2024-03-";
        QTest::newRow("February 29 of a common year") << "2023-02-29";
        QTest::newRow("April 31") << "2024-04-31";
        QTest::newRow("month 13") << "2024-13-01";
        QTest::newRow("day 0") << "2024-01-00";
        QTest::newRow("mixed separators") << "2024-03/05";
        QTest::newRow("two-digit year") << "24-03-05";
        QTest::newRow("closing dot after hyphens") << "2024-03-05.";
        QTest::newRow("Korean without day word") << "2024년3월5";
        QTest::newRow("words") << "내일";
    }
    void refusesTextThatIsNoDate() {
        test::TestHome home;
        QFETCH(QString, typed);
        QVERIFY(!IsDate(typed));
        QCOMPARE(NormalizeDate(typed), QString());
    }
    void leapDayOfALeapYearIsADate() {
        test::TestHome home;
        QVERIFY(IsDate(QStringLiteral("2024-02-29")));
        QVERIFY(IsDate(QStringLiteral("2000-02-29")));
        QVERIFY(!IsDate(QStringLiteral("1900-02-29")));
    }
    void datesAreWrittenYearMonthDayWithHyphens() {
        test::TestHome home;
        QCOMPARE(DateText(QDate(2004, 1, 1)), QStringLiteral("2004-01-01"));
        QCOMPARE(HanDateText(QDate(2004, 1, 1)), QStringLiteral("2004년01월01일"));
        QCOMPARE(FirstOfMonthText(QDate(2024, 7, 19)), QStringLiteral("2024-07-01"));
        QCOMPARE(TodayText(), QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
    }
    void addingDaysCrossesMonthsAndYears() {
        test::TestHome home;
        QCOMPARE(AddDaysText(QStringLiteral("2023-12-31"), 1), QStringLiteral("2024-01-01"));
        QCOMPARE(AddDaysText(QStringLiteral("2024-03-01"), -1), QStringLiteral("2024-02-29"));
        QCOMPARE(AddDaysText(QStringLiteral("2024/3/5"), 1), QStringLiteral("2024-03-06"));
        QCOMPARE(AddDaysText(QStringLiteral("없음"), 1), QStringLiteral("없음"));
    }
    void hanWeekdayOfNewYear2004IsThursday() {
        test::TestHome home;
        QCOMPARE(GetHanWeekday(2004, 1, 1), QStringLiteral("목요일"));
        QCOMPARE(GetHanWeekday(QDate(2004, 1, 1)), QStringLiteral("목요일"));
    }
    void weekdayCountsFromSunday() {
        test::TestHome home;
        QCOMPARE(GetWeekday(2004, 1, 4), 1); // a Sunday
        QCOMPARE(GetWeekday(2004, 1, 1), 5);
        QCOMPARE(GetWeekday(2004, 1, 10), 7); // a Saturday
    }
    void weekdayWordsRunSundayToSaturday() {
        test::TestHome home;
        const QStringList words = {"일요일", "월요일", "화요일", "수요일", "목요일", "금요일", "토요일"};
        for (int n = 1; n <= 7; ++n)
            QCOMPARE(HanWeekdayWord(n), words[n - 1]);
    }
    void weekdayNumberOutsideOneToSevenGivesEmptyText() {
        test::TestHome home;
        QCOMPARE(HanWeekdayWord(0), QString());
        QCOMPARE(HanWeekdayWord(8), QString());
        QCOMPARE(GetHanWeekday(QDate()), QString());
    }
    void invoiceDatePartsJoinForTheCalendarOrGiveToday() {
        test::TestHome home;
        const QDate today(2024, 7, 19);
        QCOMPARE(JoinDateParts("2024", "3", "5", today), QStringLiteral("2024-03-05"));
        QCOMPARE(JoinDateParts("2024", "02", "30", today), QStringLiteral("2024-07-19"));
        QCOMPARE(JoinDateParts("", "", "", today), QStringLiteral("2024-07-19"));
    }
    void chosenDateGoesBackIntoThreeParts() {
        test::TestHome home;
        QCOMPARE(SplitDateParts(QStringLiteral("2024-03-05")),
                 (DateParts{QStringLiteral("2024"), QStringLiteral("03"), QStringLiteral("05")}));
        QCOMPARE(SplitDateParts(QString()), DateParts{});
    }
    void partsBeyondTheirRangeRollOver() {
        test::TestHome home;
        QCOMPARE(DateFromParts(2004, 13, 1), QDate(2005, 1, 1));
        QCOMPARE(DateFromParts(2004, 2, 30), QDate(2004, 3, 1));
        QCOMPARE(DateFromParts(2004, 3, 0), QDate(2004, 2, 29));
    }
};

NB_TEST_MAIN(TestDateText)
#include "tst_datetext.moc"
