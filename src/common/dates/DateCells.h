#pragma once
// Date widgets of the document screens: the one-cell grid used as a date box, the linked pair
// of period cells with their one-day spin, and the list of years.

#include <QDate>
#include <QString>
#include <array>

class QAbstractButton;
class QComboBox;
class QTableWidget;

namespace nb {

// Fits a grid to one cell filling the control and puts today in it ("YYYY-MM-01" when
// firstOfMonth), in bold blue at size 10, aligned left.
void InitDateCell(QTableWidget* cell, bool firstOfMonth, const QDate& today = QDate::currentDate());
QString DateCellText(const QTableWidget* cell);
void SetDateCellText(QTableWidget* cell, const QString& text);

// The statement list's period: two date cells and the box that links them.
struct DateRangeCells {
    QAbstractButton* chkChain = nullptr;
    std::array<QTableWidget*, 2> spDate{};
};

// What a change of one period cell does to the other.
enum class ChainStep { None, CopyFirstToSecond, CopySecondToFirst, CodingAlarm };
ChainStep chainStepFor(bool chained, int index);
// The programmer's alarm for an index that is neither cell.
inline const QString kCodingAlarmMessage = QStringLiteral("코딩누락");

// With the link set, the cell of the index is copied to the other one.
void ChainDate(const DateRangeCells& form, int index);
// One day up (days 1) or down (days -1) on a period cell, then ChainDate.
void SpinDate(const DateRangeCells& form, int index, int days);

// Twelve years, from the year less 5 to the year plus 6.
void FillYearList(QComboBox* list, const QString& year);

} // namespace nb
