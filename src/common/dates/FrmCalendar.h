#pragma once
// The month calendar that pops up under a date box: a click or Enter chooses a date, Escape
// leaves the date that came in.

#include <QDialog>
#include <QString>

class QCalendarWidget;
class QWidget;

namespace nb {

class FrmCalendar : public QDialog {
    Q_OBJECT
public:
    explicit FrmCalendar(QWidget* parent = nullptr);

    // The chosen date, "YYYY-MM-DD", or empty text when none was chosen and none came in.
    QString Text() const { return m_chosen; }
    // A date (any accepted form) becomes the chosen date and the calendar shows it; other
    // text changes nothing.
    void setText(const QString& text);

    QCalendarWidget* MonthView1() const { return m_monthView; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void choose(const QDate& date);

    QCalendarWidget* m_monthView;
    QString m_chosen;
};

// Opens the calendar under the anchor, modally, with the date text; answers the chosen date,
// or what went in (empty text if that was no date) when the calendar was left with Escape.
QString ShowCalendar(const QString& dateText, QWidget* anchor);

} // namespace nb
