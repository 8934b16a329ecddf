#pragma once
// The roads of a statement to paper: the issue button (a question, the document's own printer
// and margins, every sheet), the preview of exactly that print, and a stored statement printed
// to a PDF file as the issue would print it right after its lines were listed.

#include "statement/StatementPrint.h"

class QWidget;

namespace nb {

// "양식 포함 인쇄": plain paper gets the form printed under the values.
inline const QString kPrintFrameKey = QStringLiteral("명세서양식포함인쇄");
bool printFrameSetting();
void savePrintFrameSetting(bool on);

// btnPrint. dataRowCount is that of spDetail (the lines and the pending row). True when the
// statement was printed.
bool IssueStatement(const StatementPrintData& data, int dataRowCount, bool printFrame);
// The preview of what btnPrint would print now, on the same document's margins.
void PreviewStatement(QWidget* parent, const StatementPrintData& data, bool printFrame);
// The print data of a stored statement as the screen shows it after listing its lines: its own
// date, no memo, no previous balance; the supplier and the two checks from the settings.
// Nothing when the statement or its lines cannot be read (reason, when given, says which).
std::optional<StatementPrintData> storedStatementPrintData(const QString& billNo, QString* reason = nullptr);
// `--print-statement`: 0, or 1 with a one-line reason.
int PrintStoredStatementToPdf(const QString& billNo, const QString& pdfPath, bool printFrame,
                              QString* reason);

} // namespace nb
