// The pop-up month calendar: opened under its date box, a click or Enter chooses, Escape
// leaves the date that went in.
#include "TestSupport.h"
#include "common/dates/DateBox.h"
#include "common/dates/FrmCalendar.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QPainter>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <functional>

using namespace nb;

namespace {

// A form with a date box and its calendar button, the way the document screens have them.
struct DateForm {
    QWidget window;
    DateBox* txtDate = new DateBox(&window);
    QPushButton* btnMonthView = new QPushButton(QStringLiteral("달력"), &window);

    DateForm() {
        window.setWindowTitle(QStringLiteral("날짜 입력"));
        window.setGeometry(100, 80, 360, 120);
        txtDate->setObjectName(QStringLiteral("txtDate"));
        txtDate->setGeometry(20, 30, 120, 24);
        btnMonthView->setGeometry(144, 30, 50, 24);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
    }
};

// Runs the action on the calendar once it is up, from inside its modal loop.
void whenCalendarOpens(std::function<void(FrmCalendar*)> action) {
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        auto* calendar = qobject_cast<FrmCalendar*>(QApplication::activeModalWidget());
        if (!calendar || !calendar->isVisible()) return;
        timer->stop();
        timer->deleteLater();
        calendar->activateWindow();
        QApplication::setActiveWindow(calendar);
        action(calendar);
    });
    timer->start();
}

QTableView* dayTable(FrmCalendar* calendar) {
    return calendar->MonthView1()->findChild<QTableView*>();
}

// The key goes where the operator's keyboard goes: the focus widget of the calendar.
void pressInCalendar(FrmCalendar* calendar, Qt::Key key) {
    QWidget* target = QApplication::focusWidget();
    if (!target || target->window() != calendar) target = dayTable(calendar);
    QTest::keyClick(target, key);
}

// The centre of the cell that shows the day of the month on the page.
QPoint centreOfDay(FrmCalendar* calendar, int day) {
    QTableView* view = dayTable(calendar);
    const QAbstractItemModel* model = view->model();
    for (int row = 1; row < model->rowCount(); ++row) {
        for (int col = 0; col < model->columnCount(); ++col) {
            const QModelIndex index = model->index(row, col);
            const int shown = index.data().toInt();
            const bool inMonth = (row < 3 && shown <= 14) || (row >= 3 && shown >= 15);
            if (shown == day && inMonth) return view->visualRect(index).center();
        }
    }
    return {};
}

} // namespace

class TestCalendar : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void textThatIsNoDateClosedWithEscapeGivesEmptyText() {
        test::TestHome home;
        DateForm form;
        whenCalendarOpens([](FrmCalendar* calendar) { pressInCalendar(calendar, Qt::Key_Escape); });
        QCOMPARE(ShowCalendar(QStringLiteral("____-__-__"), form.txtDate), QString());
    }
    void validDateClosedWithEscapeGivesThatDate() {
        test::TestHome home;
        DateForm form;
        whenCalendarOpens([](FrmCalendar* calendar) {
            pressInCalendar(calendar, Qt::Key_Right);
            pressInCalendar(calendar, Qt::Key_Escape);
        });
        QCOMPARE(ShowCalendar(QStringLiteral("2024-03-10"), form.txtDate), QStringLiteral("2024-03-10"));
    }
    void calendarOpensOnTheDateThatWentIn() {
        test::TestHome home;
        DateForm form;
        QDate shown;
        whenCalendarOpens([&shown](FrmCalendar* calendar) {
            shown = calendar->MonthView1()->selectedDate();
            pressInCalendar(calendar, Qt::Key_Escape);
        });
        ShowCalendar(QStringLiteral("2004년 1월 1일"), form.txtDate);
        QCOMPARE(shown, QDate(2004, 1, 1));
    }
    void clickOnADayChoosesIt() {
        test::TestHome home;
        DateForm form;
        whenCalendarOpens([](FrmCalendar* calendar) {
            QTest::mouseClick(dayTable(calendar)->viewport(), Qt::LeftButton, {}, centreOfDay(calendar, 21));
        });
        QCOMPARE(ShowCalendar(QStringLiteral("2024-03-10"), form.txtDate), QStringLiteral("2024-03-21"));
    }
    void enterChoosesTheDayTheArrowsMovedTo() {
        test::TestHome home;
        DateForm form;
        whenCalendarOpens([](FrmCalendar* calendar) {
            pressInCalendar(calendar, Qt::Key_Right);
            pressInCalendar(calendar, Qt::Key_Down);
            pressInCalendar(calendar, Qt::Key_Return);
        });
        QCOMPARE(ShowCalendar(QStringLiteral("2024-02-28"), form.txtDate), QStringLiteral("2024-03-07"));
    }
    void enterWithNoDateGivenChoosesToday() {
        test::TestHome home;
        DateForm form;
        whenCalendarOpens([](FrmCalendar* calendar) { pressInCalendar(calendar, Qt::Key_Enter); });
        QCOMPARE(ShowCalendar(QString(), form.txtDate),
                 QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
    }
    void closingOtherwiseGivesWhatTheCalendarHolds() {
        test::TestHome home;
        DateForm form;
        whenCalendarOpens([](FrmCalendar* calendar) { calendar->close(); });
        QCOMPARE(ShowCalendar(QStringLiteral("2024/5/6"), form.txtDate), QStringLiteral("2024-05-06"));
    }
    void textWriteOfNoDateChangesNothing() {
        test::TestHome home;
        FrmCalendar calendar;
        calendar.setText(QStringLiteral("2024-03-10"));
        calendar.setText(QStringLiteral("2023-02-29"));
        QCOMPARE(calendar.Text(), QStringLiteral("2024-03-10"));
        QCOMPARE(calendar.MonthView1()->selectedDate(), QDate(2024, 3, 10));
        FrmCalendar fresh;
        fresh.setText(QStringLiteral("내일"));
        QCOMPARE(fresh.Text(), QString());
        QCOMPARE(fresh.MonthView1()->selectedDate(), QDate::currentDate());
    }
    void calendarOpensUnderItsDateBoxWithLeftEdgesTogether() {
        test::TestHome home;
        DateForm form;
        QRect placed;
        whenCalendarOpens([&placed](FrmCalendar* calendar) {
            placed = calendar->geometry();
            pressInCalendar(calendar, Qt::Key_Escape);
        });
        ShowCalendar(QStringLiteral("2024-03-10"), form.txtDate);
        const QPoint boxTopLeft = form.txtDate->mapToGlobal(QPoint(0, 0));
        QCOMPARE(placed.left(), boxTopLeft.x());
        QCOMPARE(placed.top(), boxTopLeft.y() + form.txtDate->height());
    }
    void buttonWritesTheChosenDateBackToItsBox() {
        test::TestHome home;
        DateForm form;
        form.txtDate->setDateText(QStringLiteral("2024-03-10"));
        QObject::connect(form.btnMonthView, &QPushButton::clicked, [&form] {
            const QString chosen = ShowCalendar(form.txtDate->text(), form.txtDate);
            if (!chosen.isEmpty()) form.txtDate->setDateText(chosen);
            form.txtDate->setFocus();
        });
        whenCalendarOpens([&form](FrmCalendar* calendar) {
            pressInCalendar(calendar, Qt::Key_Left);
            // The picture: the calendar as it stands under its date box.
            const QRect windowRect = form.window.geometry();
            const QRect both = windowRect.united(calendar->geometry());
            QPixmap picture(both.size());
            picture.fill(Qt::darkGray);
            QPainter painter(&picture);
            painter.drawPixmap(windowRect.topLeft() - both.topLeft(), form.window.grab());
            painter.drawPixmap(calendar->pos() - both.topLeft(), calendar->grab());
            painter.end();
            picture.save(test::screenshotDir() + QStringLiteral("/calendar.png"));
            pressInCalendar(calendar, Qt::Key_Return);
        });
        QTest::mouseClick(form.btnMonthView, Qt::LeftButton);
        QCOMPARE(form.txtDate->dateText(), QStringLiteral("2024-03-09"));
        QCOMPARE(form.window.focusWidget(), static_cast<QWidget*>(form.txtDate));
    }
};

NB_TEST_MAIN(TestCalendar)
#include "tst_calendar.moc"
