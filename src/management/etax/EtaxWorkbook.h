#pragma once
// The bulk-issue sheet: the sheet "엑셀업로드양식", five rows of guidance, the 59 headings in
// row 6 and one invoice a row from row 7, at most 100 invoices a file.

#include "management/etax/EtaxInvoices.h"

#include <QHash>
#include <QVariant>

namespace nb {

inline constexpr int kEtaxColumns = 59;
inline constexpr int kEtaxInvoicesPerFile = 100;
inline constexpr int kEtaxHeadingRow = 6; // counted from 1, as the sheet shows it
inline const QString kEtaxSheetName = QStringLiteral("엑셀업로드양식");

// The headings of row 6, columns A to BG.
QStringList etaxHeadings();

// One row of the sheet: a QString cell goes in as text, a double as a number, an invalid
// QVariant stays empty.
QVariantList etaxRow(const EtaxInvoice& invoice, EtaxReceipt assumed);

// Writes one file; false with the reason when it could not be written. `beforeNaming`, when
// given, runs once the workbook is whole beside its target and before it takes the target's
// name; when it answers false (with its reason) the file is not written.
bool writeEtaxWorkbook(const QString& path, const QList<EtaxInvoice>& invoices, EtaxReceipt assumed,
                       const QStringList& guidance, QString* error,
                       const std::function<bool(QString* why)>& beforeNaming = {});

// "전자세금계산서_FROM-TO_N.xlsx", the dates as YYYYMMDD, N from 1.
QString etaxFileName(const QString& from, const QString& to, int number);
// The numbered files of that name in the folder whose number is above `kept`: what an earlier,
// longer export of the same period left there.
QStringList staleEtaxFiles(const QString& folder, const QString& from, const QString& to, int kept);
// True when the path is one of the numbered files of that name in the folder.
bool isEtaxFileOf(const QString& path, const QString& folder, const QString& from, const QString& to);

struct EtaxLeftOut {
    QString taxCode;
    QString dealDate;
    QString receiver;
    QStringList reasons;
};

struct EtaxExport {
    QStringList files;          // written, in order
    QList<int> invoicesPerFile; // beside files
    QList<EtaxLeftOut> leftOut; // the invoices that cannot go, with their reasons
    int assumedReceipts = 0;    // written invoices whose 영수/청구 was not on file
    QStringList failures;       // files that could not be written, with the reason
    QStringList removed;        // older numbered files of the same name taken away
    int invoicesWritten() const;
};

// How an export treats the record of hand-overs.
struct EtaxExportPlan {
    EtaxReceipt assumed = EtaxReceipt::Charged;
    // Invoices already handed over that stay off the sheet, with their reason.
    QHash<QString, QString> leaveOut;
    // When set, each file is recorded there with its invoices before it takes its name (a file
    // whose record cannot be kept is not written).
    Database* record = nullptr;
};

// The invoices that can go into files of at most 100 in `folder`, named by etaxFileName; the
// others in leftOut. Then the older numbered files of the same name above the last one written
// are removed, so that no file of an earlier run waits there to be uploaded.
EtaxExport exportEtax(const QList<EtaxInvoice>& invoices, const QString& folder, const QString& from,
                      const QString& to, const EtaxExportPlan& plan);
EtaxExport exportEtax(const QList<EtaxInvoice>& invoices, const QString& folder, const QString& from,
                      const QString& to, EtaxReceipt assumed);

} // namespace nb
