#pragma once
// The record of hand-overs to the tax service. Every bulk-issue file the program writes is kept
// (EtaxFile) with the invoices that went into it (EtaxHandOver), as they were when written: the
// operator marks a file uploaded once the web site has issued it, or withdraws it. An invoice
// counts as handed over while a file holding it is neither withdrawn nor replaced; it counts as
// issued electronically once such a file is marked uploaded.
//
// An invoice number can come back (the last invoice deleted, the next one takes its number), so a
// recorded invoice is the same invoice only while the invoice on file has the same date, receiver
// and totals.

#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace nb {

class Database;

// Invoices (TaxCode as the store keeps it, as text) whose date lies in fromDate..toDate
// ("YYYY-MM-DD", inclusive) and that went into a file the operator marked as uploaded and did
// not withdraw, with the day that file was marked uploaded.
QHash<QString, QDate> UploadedInvoiceDates(const QString& fromDate, const QString& toDate);
// The same on a given store; nothing when the read failed (the query box has been shown).
std::optional<QHash<QString, QDate>> UploadedInvoiceDates(Database& dbTax, const QString& fromDate,
                                                          const QString& toDate);

// The statement behind both questions above (its values: the two dates), for the benchmark.
QString standingInvoicesSql(bool uploadedOnly);

// One file of the record.
struct HandOverFile {
    int fileNo = 0;
    QString path;
    QString fromDate, toDate;
    QString writtenAt; // "YYYY-MM-DD hh:mm:ss"
    int invoices = 0;
    QString uploadedDate;  // "YYYY-MM-DD", empty while not uploaded
    QString withdrawnDate; // "YYYY-MM-DD", empty while standing
    QString note;          // why it was withdrawn, when the program did it

    bool uploaded() const { return !uploadedDate.isEmpty(); }
    bool withdrawn() const { return !withdrawnDate.isEmpty(); }
    // "업로드 2026-11-03", "철회 2026-11-04 (...)", "업로드 전".
    QString stateText() const;
};

// One invoice as it went into a file.
struct HandOverEntry {
    QString taxCode;
    QString dealDate;
    QString traderCode;
    QString receiver;
    double supply = 0;
    double tax = 0;
};

// An invoice already handed over, with the files that hold it: uploaded ones first, then the
// older before the newer.
struct HandOverMark {
    QString taxCode;
    QList<HandOverFile> files;
};

// Records one file with its invoices in one transaction: the number of the new record, or
// nothing with the reason.
std::optional<int> RecordHandOverFile(Database& dbTax, const QString& path, const QString& fromDate,
                                      const QString& toDate, const QList<HandOverEntry>& entries,
                                      QString* why);
// Takes a record back out when its file could not take its name after all; false with the reason
// in why when the store kept it.
bool ForgetHandOverFile(Database& dbTax, int fileNo, QString* why);
// Withdraws the standing, not uploaded records of a path, other than `keepFileNo`, with the note:
// the file there was overwritten by a newer one (kReplacedNote) or removed by the program.
bool RetireHandOverPath(Database& dbTax, const QString& path, const QString& note, QString* why,
                        int keepFileNo = 0);
inline const QString kReplacedNote = QStringLiteral("다시 작성하여 바뀜");

// The invoices with a date in fromDate..toDate that stand in a file neither withdrawn nor
// replaced, each with those files.
std::optional<QHash<QString, HandOverMark>> HandedOverInvoices(Database& dbTax, const QString& fromDate,
                                                               const QString& toDate);

// The files of the record, newest first; the invoices of one file by number.
std::optional<QList<HandOverFile>> ReadHandOverFiles(Database& dbTax);
std::optional<HandOverFile> ReadHandOverFile(Database& dbTax, int fileNo);
std::optional<QList<HandOverEntry>> ReadHandOverEntries(Database& dbTax, int fileNo);

// Why the file cannot be marked uploaded on that day; empty when it can (a day that is a real
// date, not before the file was written and not after today, a file standing and not uploaded).
QString uploadRefusal(const HandOverFile& file, const QString& day, const QDate& today);
// Marks the file uploaded on that day; false with the reason (the same checks, read inside the
// write).
bool MarkFileUploaded(Database& dbTax, int fileNo, const QString& day, QString* why);
// Withdraws the file today; false with the reason when it is withdrawn already or the store
// refused.
bool WithdrawFile(Database& dbTax, int fileNo, const QString& note, QString* why);

} // namespace nb
