#pragma once
// What the official 매출처별 세금계산서합계표 is made of: the submitter, the period, the totals
// split by how each invoice reached the tax service (its electronic file uploaded by the 11th of
// the month after the period, or not) and by the receiver's number (business or resident), and
// the receivers of the invoices that were not sent electronically, one line each.

#include "management/TaxTotals.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace nb {

// TaxCode -> the day its electronic file was marked uploaded.
using UploadedDates = QHash<QString, QDate>;

// One line of the totals block: receivers, invoices, supply value, VAT.
struct IssueLine {
    int receivers = 0;
    int invoices = 0;
    double supply = 0;
    double tax = 0;
    IssueLine& operator+=(const IssueLine& other);
};

// The receivers of the invoices not sent electronically that carry a business number.
struct ReceiverLine {
    QString serial; // as the trader's record holds it
    QString company;
    int invoices = 0;
    double supply = 0;
    double tax = 0;
};

struct OfficialTotals {
    // The submitter (the default supplier).
    QString serial, company, delegate, address;
    TotalsPeriod period;
    QString term;      // "2024년 제1기 (4월 1일 ~ 6월 30일)"
    QString issueDate; // "2024년 7월 2일"
    QDate deadline;    // the last day an upload counts as electronic
    IssueLine electronicBusiness, electronicResident, paperBusiness, paperResident;
    // The receivers of paperBusiness, in the order of their first trader codes: every one, or a
    // stretch of them beginning with the one numbered firstReceiver + 1.
    QList<ReceiverLine> receivers;
    int firstReceiver = 0;

    // How many receivers the form lists over all its sheets.
    int listedReceivers() const { return paperBusiness.receivers; }
    // The receiver numbered index + 1, or null when it is not among those read.
    const ReceiverLine* receiverAt(int index) const;
    IssueLine electronic() const;
    IssueLine paper() const;
    IssueLine total() const; // the two subtotals added, column by column
};

// A 13-digit number (hyphens and blanks aside) is a person's resident number; anything else
// counts as a business number.
bool isResidentNumber(const QString& serial);
// The 11th of the month after the period's last day.
QDate electronicDeadline(const QString& periodTo);
// "2024년 제1기 (4월 1일 ~ 6월 30일)": the VAT term the period starts in (January to June the
// first, July to December the second), and the period's days.
QString officialTerm(const TotalsPeriod& period);

// One invoice of the period as the form counts it.
struct InvoiceOfPeriod {
    QString taxCode;
    QString cCode;
    QString serial;
    QString company;
    double supply = 0;
    double tax = 0;
};
// The invoices summed up into the form: each in the electronic or the other rows by its upload
// day, in the resident rows by its receiver's number. A receiver is its number's digits (two
// trader codes with one number are one receiver), or its trader code when it has no number.
// These are the rules the store's own statement (ReadOfficialTotals) follows; it is checked
// against them.
OfficialTotals sumOfficialTotals(const QList<InvoiceOfPeriod>& invoices, const UploadedDates& uploaded,
                                 const QDate& deadline);

// The invoices of the period (DealDate between from and to) with their receivers' numbers and
// names, one per TaxCode and trader, in the order of the trader codes; nothing when the read failed (its box
// shown).
std::optional<QList<InvoiceOfPeriod>> ReadInvoicesOfPeriod(const TotalsPeriod& period);

// The invoices of the period whose electronic files were marked uploaded and not withdrawn,
// with the day, from the record of hand-overs; nothing when the read failed (its box shown).
std::optional<UploadedDates> uploadedDatesOf(const TotalsPeriod& period);

// The form of a period with the default supplier, summed and split by the store in one statement
// (the record of hand-overs decides what was sent in time): the totals block, and the listed
// receivers from the one numbered first + 1, at most `count` of them (every one from there when
// count is negative). Nothing when the read failed (its box shown).
std::optional<OfficialTotals> ReadOfficialTotals(const TotalsPeriod& period, const QDate& today,
                                                 int first = 0, int count = -1);

} // namespace nb
