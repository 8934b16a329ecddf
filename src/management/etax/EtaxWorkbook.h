#pragma once
// The bulk-issue sheet: the sheet "엑셀업로드양식", five rows of guidance, the 59 headings in
// row 6 and one invoice a row from row 7, at most 100 invoices a file.

#include "management/etax/EtaxInvoices.h"

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

// Writes one file; false with the reason when it could not be written.
bool writeEtaxWorkbook(const QString& path, const QList<EtaxInvoice>& invoices, EtaxReceipt assumed,
                       const QStringList& guidance, QString* error);

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
    int invoicesWritten() const;
};

// The invoices that can go into files of at most 100 in `folder`, named
// "전자세금계산서_FROM-TO_N.xlsx" (dates as YYYYMMDD, N from 1); the others in leftOut.
EtaxExport exportEtax(const QList<EtaxInvoice>& invoices, const QString& folder, const QString& from,
                      const QString& to, EtaxReceipt assumed);

} // namespace nb
