// The period the electronic invoice export offers: the month just ended, the 10th-of-next-month
// deadline moved off a weekend, and the period window's choices and checks.
#include "StoreFixture.h"
#include "common/dates/DateBox.h"
#include "core/Clock.h"
#include "management/etax/FrmEtaxPeriod.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

using namespace nb;

class TestEtaxPeriod : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void lastMonthIsTheMonthBeforeToday() {
        QCOMPARE(lastMonthPeriod(QDate(2026, 11, 24)).from, QStringLiteral("2026-10-01"));
        QCOMPARE(lastMonthPeriod(QDate(2026, 11, 24)).to, QStringLiteral("2026-10-31"));
        QCOMPARE(lastMonthPeriod(QDate(2026, 1, 1)).from, QStringLiteral("2025-12-01"));
        QCOMPARE(lastMonthPeriod(QDate(2026, 1, 1)).to, QStringLiteral("2025-12-31"));
        QCOMPARE(lastMonthPeriod(QDate(2024, 3, 31)).to, QStringLiteral("2024-02-29"));
    }
    void deadlineIsTheTenthOfTheNextMonthOnAWeekday() {
        // 2026-11-10 is a Tuesday.
        QCOMPARE(issueDeadline(QDate(2026, 10, 5)), QDate(2026, 11, 10));
        // 2026-10-10 is a Saturday, 2026-05-10 a Sunday: both move to the Monday after.
        QCOMPARE(issueDeadline(QDate(2026, 9, 30)), QDate(2026, 10, 12));
        QCOMPARE(issueDeadline(QDate(2026, 4, 1)), QDate(2026, 5, 11));
        // December's invoices: the 10th of January of the next year (2027-01-10 is a Sunday).
        QCOMPARE(issueDeadline(QDate(2026, 12, 31)), QDate(2027, 1, 11));
        QCOMPARE(dayWithWeekday(QDate(2026, 11, 10)), QStringLiteral("2026-11-10(화)"));
    }
    void deadlineLineForAMonthAQuarterAndOnePassed() {
        QCOMPARE(deadlineText({"2026-10-01", "2026-10-31"}, QDate(2026, 11, 2)),
                 QStringLiteral("발급 기한: 2026-11-10(화) (2026년 10월분, 다음 달 10일, 주말이면 월요일)"));
        QCOMPARE(deadlineText({"2026-10-01", "2026-10-31"}, QDate(2026, 11, 11)),
                 QStringLiteral(
                     "발급 기한: 2026-11-10(화) (2026년 10월분, 다음 달 10일, 주말이면 월요일) - 기한이 "
                     "지났습니다"));
        QCOMPARE(deadlineText({"2026-07-01", "2026-09-30"}, QDate(2026, 10, 1)),
                 QStringLiteral(
                     "발급 기한: 각 달의 다음 달 10일, 2026년 9월분은 2026-10-12(월) - 앞선 달의 기한은 "
                     "지났습니다"));
        QCOMPARE(deadlineText({"2026-07-01", "2026-06-30"}, QDate(2026, 10, 1)), QString());
    }
    void windowOffersTheMonthJustEndedFirst() {
        test::TestHome home;
        setClock([] { return QDateTime(QDate(2026, 11, 3), QTime(9, 0)); });
        FrmEtaxPeriod form({"2026-07-01", "2026-09-30"});
        QVERIFY(form.optLastMonth->isChecked());
        QCOMPARE(form.optLastMonth->text(),
                 QStringLiteral("지난달(&M) 2026년 10월 (2026-10-01 ~ 2026-10-31)"));
        QCOMPARE(form.chosen().from, QStringLiteral("2026-10-01"));
        QCOMPARE(form.chosen().to, QStringLiteral("2026-10-31"));
        QVERIFY(form.pnlDeadline->text().startsWith(QStringLiteral("발급 기한: 2026-11-10(화)")));
        QVERIFY(!form.txtFrom->isEnabled());
        test::saveScreenshot(&form, QStringLiteral("etax_period"));
        setClock({});
    }
    void theScreensQuarterAndFreeDatesStay() {
        test::TestHome home;
        setClock([] { return QDateTime(QDate(2026, 11, 3), QTime(9, 0)); });
        FrmEtaxPeriod form({"2026-07-01", "2026-09-30"});
        form.optScreen->setChecked(true);
        QCOMPARE(form.chosen().from, QStringLiteral("2026-07-01"));
        QCOMPARE(form.chosen().to, QStringLiteral("2026-09-30"));
        form.optDates->setChecked(true);
        QVERIFY(form.txtFrom->isEnabled());
        form.txtFrom->setDateText("2026-08-05");
        form.txtTo->setDateText("2026-08-20");
        QCOMPARE(form.chosen().from, QStringLiteral("2026-08-05"));
        QCOMPARE(form.refusal(), QString());
        setClock({});
    }
    void freeDatesOutOfOrderAreRefusedWithAKoreanReason() {
        test::TestHome home;
        auto& msgs = test::script();
        FrmEtaxPeriod form({"2026-07-01", "2026-09-30"});
        form.optDates->setChecked(true);
        form.txtFrom->setDateText("2026-08-20");
        form.txtTo->setDateText("2026-08-05");
        form.btnWrite->click();
        QCOMPARE(form.result(), int(QDialog::Rejected));
        QCOMPARE(msgs.records().size(), size_t(1));
        QCOMPARE(msgs.records().front().text,
                 QStringLiteral("기간의 시작일이 종료일보다 뒤입니다: 2026-08-20 ~ 2026-08-05"));
    }
};

QTEST_MAIN(TestEtaxPeriod)
#include "tst_etax_period.moc"
