// Date edge cases beside the main date tests: a calendar opened on an impossible date, and the
// period cells left apart when their link is off.
#include "TestSupport.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateCells.h"
#include "common/dates/FrmCalendar.h"

#include <QApplication>
#include <QCheckBox>
#include <QTableWidget>
#include <QTimer>

using namespace nb;

namespace {

// Presses Escape in the calendar as soon as it is up, from inside its modal loop.
void escapeWhenCalendarOpens() {
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer] {
        auto* calendar = qobject_cast<FrmCalendar*>(QApplication::activeModalWidget());
        if (!calendar || !calendar->isVisible()) return;
        timer->stop();
        timer->deleteLater();
        QWidget* target = QApplication::focusWidget();
        QTest::keyClick(target && target->window() == calendar ? target : calendar, Qt::Key_Escape);
    });
    timer->start();
}

struct DateForm {
    QWidget window;
    DateBox* txtDate = new DateBox(&window);
    DateForm() {
        window.setGeometry(100, 80, 300, 100);
        txtDate->setGeometry(20, 30, 120, 24);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
    }
};

struct PeriodCells {
    QWidget window;
    QCheckBox* chkChain = new QCheckBox(&window);
    QTableWidget* first = new QTableWidget(&window);
    QTableWidget* second = new QTableWidget(&window);
    DateRangeCells cells() const { return {chkChain, {first, second}}; }
    PeriodCells() {
        first->setGeometry(10, 10, 110, 24);
        second->setGeometry(130, 10, 110, 24);
        InitDateCell(first, true, QDate(2024, 3, 15));
        InitDateCell(second, false, QDate(2024, 3, 15));
        chkChain->setChecked(false);
    }
};

} // namespace

class TestDateEdgeCases : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void calendarOnAnImpossibleDateClosedWithEscapeGivesEmptyText() {
        test::TestHome home;
        DateForm form;
        escapeWhenCalendarOpens();
        QCOMPARE(ShowCalendar(QStringLiteral("2024-02-30"), form.txtDate), QString());
        escapeWhenCalendarOpens();
        QCOMPARE(ShowCalendar(QStringLiteral("날짜아님"), form.txtDate), QString());
    }
    void calendarOnALeapDayClosedWithEscapeGivesThatDay() {
        test::TestHome home;
        DateForm form;
        escapeWhenCalendarOpens();
        QCOMPARE(ShowCalendar(QStringLiteral("2024-02-29"), form.txtDate), QStringLiteral("2024-02-29"));
    }
    void withChainUnsetASpinOfTheFirstLeavesTheSecondAlone() {
        test::TestHome home;
        auto& msgs = test::script();
        PeriodCells form;
        SpinDate(form.cells(), 0, 1);
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-03-02"));
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-03-15"));
        QVERIFY(msgs.records().empty());
    }
    void withChainUnsetAChangeOfTheSecondLeavesTheFirstAlone() {
        test::TestHome home;
        PeriodCells form;
        SetDateCellText(form.second, QStringLiteral("2024-04-30"));
        ChainDate(form.cells(), 1);
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-03-01"));
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-04-30"));
    }
    void unsettingTheChainStopsTheCopyThatItMadeBefore() {
        test::TestHome home;
        PeriodCells form;
        form.chkChain->setChecked(true);
        SetDateCellText(form.first, QStringLiteral("2024-05-01"));
        ChainDate(form.cells(), 0);
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-05-01"));
        form.chkChain->setChecked(false);
        SetDateCellText(form.first, QStringLiteral("2024-06-01"));
        ChainDate(form.cells(), 0);
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-05-01"));
    }
};

NB_TEST_MAIN(TestDateEdgeCases)
#include "tst_date_edge_cases.moc"
