#include "common/dates/FrmCalendar.h"

#include "common/dates/DateText.h"
#include "common/input/FormPlacement.h"

#include <QCalendarWidget>
#include <QKeyEvent>
#include <QTableView>
#include <QVBoxLayout>

namespace nb {
namespace {

bool isEnterKey(const QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<const QKeyEvent*>(event)->key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

FrmCalendar::FrmCalendar(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), m_monthView(new QCalendarWidget(this)) {
    setObjectName(QStringLiteral("FrmCalendar"));
    m_monthView->setObjectName(QStringLiteral("MonthView1"));
    m_monthView->setLocale(QLocale(QLocale::Korean, QLocale::SouthKorea));
    m_monthView->setFirstDayOfWeek(Qt::Sunday);
    m_monthView->setGridVisible(true);
    m_monthView->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(m_monthView);
    setStyleSheet(QStringLiteral("nb--FrmCalendar { border: 1px solid #808080; }"));

    connect(m_monthView, &QCalendarWidget::clicked, this, &FrmCalendar::choose);
    // Enter is taken before the calendar's own view sees it, so that it always chooses.
    if (auto* view = m_monthView->findChild<QTableView*>()) view->installEventFilter(this);
    m_monthView->installEventFilter(this);
}

void FrmCalendar::setText(const QString& text) {
    const QDate date = ToDate(text);
    if (!date.isValid()) return;
    m_chosen = DateText(date);
    m_monthView->setSelectedDate(date);
    m_monthView->setCurrentPage(date.year(), date.month());
}

bool FrmCalendar::eventFilter(QObject* watched, QEvent* event) {
    if (isEnterKey(event)) {
        choose(m_monthView->selectedDate());
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void FrmCalendar::choose(const QDate& date) {
    m_chosen = DateText(date);
    accept();
}

QString ShowCalendar(const QString& dateText, QWidget* anchor) {
    FrmCalendar form(anchor ? anchor->window() : nullptr);
    form.setText(dateText);
    PlaceFormAt(&form, anchor, AlignLeftEdges, PlaceBelow);
    form.exec();
    return form.Text();
}

} // namespace nb
