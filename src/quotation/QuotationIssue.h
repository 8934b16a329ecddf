#pragma once
// Printing a quotation: its data read from the store (head, lines, the default supplier, the
// trader's telephone and fax), the job on the quotation's own printer with its own margins, and
// the print of a stored quotation to a PDF file without a window.

#include "quotation/QuotationPrint.h"

#include <optional>

class QWidget;

namespace nb {

// The document name the printer and margins of quotations are kept under.
inline const QString kQuotationDocument = QStringLiteral("견적서");

struct TraderNumbers {
    QString phone;
    QString fax;
};
// "select phone,fax from trader where code = ?": each empty when null or no row; nothing when
// the statement failed (its box has been shown).
std::optional<TraderNumbers> ReadTraderNumbers(const QString& code);

// The stored quotation: head, lines in Seq order, the default supplier; TotEstiKum worked out from
// the lines and the stored VAT flag; the decimal setting in force. Nothing when there is no head.
std::optional<QuotationPrintData> ReadQuotationPrintData(const QString& code);

// TotEstiKum (and totalOverflow) from the data's lines and the VAT choice.
void setLinesTotal(QuotationPrintData& data, bool vatIncluded);

// The stored lines of a quotation in Seq order (nothing added when the read fails).
void ReadQuotationLines(const QString& code, QList<QuotationLine>& lines);

// On the quotation's printer (SelectDocPrinter / RestorePrinter around it) with its margins;
// false when no job could be started.
bool PrintQuotationJob(const QuotationPrintData& data);

// The print preview of the quotation, as PrintQuotationJob would print it.
void PreviewQuotation(QWidget* parent, const QuotationPrintData& data);

// `nubella --print-quotation`: 0 on success, otherwise non-zero and a one-line reason.
int PrintStoredQuotationToPdf(const QString& code, const QString& pdfPath, QString* reason);

} // namespace nb
