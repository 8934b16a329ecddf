#include "common/dates/DateCells.h"

#include "common/Messages.h"
#include "common/dates/DateText.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QTableWidget>

namespace nb {
namespace {

QTableWidgetItem* cellItem(QTableWidget* cell) {
    if (!cell->item(0, 0)) cell->setItem(0, 0, new QTableWidgetItem);
    return cell->item(0, 0);
}

void fitOneCell(QTableWidget* cell) {
    cell->setRowCount(1);
    cell->setColumnCount(1);
    cell->horizontalHeader()->hide();
    cell->verticalHeader()->hide();
    cell->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    cell->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const QSize inside = cell->contentsRect().size();
    cell->setRowHeight(0, inside.height());
    cell->setColumnWidth(0, inside.width());
}

} // namespace

void InitDateCell(QTableWidget* cell, bool firstOfMonth, const QDate& today) {
    fitOneCell(cell);
    cell->setCurrentCell(0, 0);
    QTableWidgetItem* item = cellItem(cell);
    item->setText(firstOfMonth ? FirstOfMonthText(today) : DateText(today));
    QFont font = cell->font();
    font.setPointSize(10);
    font.setBold(true);
    item->setFont(font);
    item->setForeground(QColor(0, 0, 255));
    item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

QString DateCellText(const QTableWidget* cell) {
    const QTableWidgetItem* item = cell->item(0, 0);
    return item ? item->text() : QString();
}

void SetDateCellText(QTableWidget* cell, const QString& text) {
    // An unchanged text is not written, so two linked cells do not echo each other.
    if (DateCellText(cell) != text) cellItem(cell)->setText(text);
}

ChainStep chainStepFor(bool chained, int index) {
    if (!chained) return ChainStep::None;
    if (index == 0) return ChainStep::CopyFirstToSecond;
    if (index == 1) return ChainStep::CopySecondToFirst;
    return ChainStep::CodingAlarm;
}

void ChainDate(const DateRangeCells& form, int index) {
    const bool chained = form.chkChain && form.chkChain->isChecked();
    switch (chainStepFor(chained, index)) {
    case ChainStep::CopyFirstToSecond:
        SetDateCellText(form.spDate[1], DateCellText(form.spDate[0]));
        break;
    case ChainStep::CopySecondToFirst:
        SetDateCellText(form.spDate[0], DateCellText(form.spDate[1]));
        break;
    case ChainStep::CodingAlarm:
        MsgBox(kCodingAlarmMessage);
        break;
    case ChainStep::None:
        break;
    }
}

void SpinDate(const DateRangeCells& form, int index, int days) {
    if (index == 0 || index == 1) {
        QTableWidget* cell = form.spDate[index];
        SetDateCellText(cell, AddDaysText(DateCellText(cell), days));
    }
    ChainDate(form, index);
}

void FillYearList(QComboBox* list, const QString& year) {
    const int middle = year.trimmed().toInt();
    for (int y = middle - 5; y <= middle + 6; ++y)
        list->addItem(QString::number(y));
}

} // namespace nb
