// The masked date box and the check made when a date box is left.
#include "TestSupport.h"
#include "common/dates/DateBox.h"

using namespace nb;

class TestDateBox : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void dateBoxShowsTheMaskWhenEmpty() {
        test::TestHome home;
        DateBox box;
        QCOMPARE(box.displayText(), QStringLiteral("____-__-__"));
        QCOMPARE(box.dateText(), QString());
    }
    void dateBoxTakesTypedDigits() {
        test::TestHome home;
        DateBox box;
        box.show();
        box.setFocus();
        box.setCursorPosition(0);
        test::typeText(&box, QStringLiteral("20240305"));
        QCOMPARE(box.displayText(), QStringLiteral("2024-03-05"));
        QCOMPARE(box.dateText(), QStringLiteral("2024-03-05"));
    }
    void dateBoxShowsADateInItsOwnForm() {
        test::TestHome home;
        DateBox plain;
        plain.setDateText(QStringLiteral("2024년 3월 5일"));
        QCOMPARE(plain.text(), QStringLiteral("2024-03-05"));
        DateBox korean(nullptr, kHanDateMask);
        korean.setDateText(QStringLiteral("2024-3-5"));
        QCOMPARE(korean.text(), QStringLiteral("2024년03월05일"));
        QCOMPARE(korean.dateText(), QStringLiteral("2024-03-05"));
    }
    void settingTextThatIsNoDateEmptiesTheBox() {
        test::TestHome home;
        DateBox box;
        box.setDateText(QStringLiteral("2024-03-05"));
        box.setDateText(QStringLiteral("2023-02-29"));
        QCOMPARE(box.dateText(), QString());
        QCOMPARE(box.displayText(), QStringLiteral("____-__-__"));
    }
    void leavingWithADateShowsNothing() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(CheckDateOnLeave(QStringLiteral("2024-03-05"), kBadDateMessage));
        QVERIFY(CheckDateOnLeave(QStringLiteral("2024년03월05일"), kBadStatementDateMessage));
        QVERIFY(msgs.records().empty());
    }
    // One row per screen and box of the leave check.
    void leavingInvoiceQuotationOrSmsDateBoxWithoutADate() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(!CheckDateOnLeave(QStringLiteral("2024-02-30"), kBadDateMessage));
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, QStringLiteral("잘못된 날짜 형식입니다.\n정확한 날짜 형식을 입력하세요."));
        QCOMPARE(msgs.last().buttons, int(MbOk));
        QCOMPARE(msgs.last().title, applicationTitle());
    }
    void leavingStatementDateBoxWithoutADate() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(!CheckDateOnLeave(QStringLiteral("2024년13월01일"), kBadStatementDateMessage));
        QCOMPARE(msgs.last().text, QStringLiteral("올바른 날짜형식이 아닙니다"));
        QCOMPARE(msgs.last().buttons, int(MbOk));
        QCOMPARE(msgs.last().title, applicationTitle());
    }
    void leavingInvoiceYearMonthDayBoxesWithoutADate() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(!CheckDateOnLeave(QStringLiteral("2023-2-29"), kBadDatePartsMessage));
        QCOMPARE(msgs.last().text, QStringLiteral("날짜가 올바르지 않습니다."));
        QCOMPARE(msgs.last().buttons, int(MbOk));
        QCOMPARE(msgs.last().title, applicationTitle());
    }
};

NB_TEST_MAIN(TestDateBox)
#include "tst_datebox.moc"
