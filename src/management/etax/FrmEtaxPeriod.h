#pragma once
// The first window of the electronic invoice export: which invoices go. It offers the month just
// ended, the period of the totals screen (a quarter, a half or its dates) and dates of the
// operator's own, and shows the deadline to issue them; from here the record of earlier
// hand-overs opens as well.

#include "management/etax/EtaxPeriod.h"

#include <QDialog>
#include <functional>

class QLabel;
class QPushButton;
class QRadioButton;

namespace nb {

class DateBox;

class FrmEtaxPeriod : public QDialog {
    Q_OBJECT
public:
    // `screenPeriod` is the period the totals screen stands on.
    FrmEtaxPeriod(const EtaxPeriod& screenPeriod, QWidget* parent = nullptr);

    // The period chosen; the dates checked (a real day each, the first not after the second).
    EtaxPeriod chosen() const;
    // Why the chosen dates cannot be used; empty when they can.
    QString refusal() const;
    // The record window, opened by btnRecord.
    void onRecord(std::function<void()> open) { m_openRecord = std::move(open); }

    QRadioButton *optLastMonth, *optScreen, *optDates;
    DateBox *txtFrom, *txtTo;
    QLabel* pnlDeadline;
    QPushButton *btnWrite, *btnRecord, *btnCancel;

private:
    void showDeadline();
    void write();

    EtaxPeriod m_lastMonth;
    EtaxPeriod m_screen;
    std::function<void()> m_openRecord;
};

} // namespace nb
