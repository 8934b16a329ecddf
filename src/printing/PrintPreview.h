#pragma once
// The print preview: what a print routine draws on a job, shown in Qt's preview window (pages,
// zoom, fit to width) on an A4 sheet, for looking and closing. Nothing reaches a printer or a
// file, nothing is asked, numbered or stored: the preview runs the same routine as the print,
// on one more end of the same job.

#include "printing/PrintJob.h"

#include <functional>

class QPrintPreviewDialog;
class QWidget;

namespace nb {

// Draws the document on the job (margins and fonts are the routine's own business).
using PrintRoutine = std::function<void(PrintJob& job)>;

// The preview window for the document, not yet shown; it runs the routine each time it paints.
QPrintPreviewDialog* makePrintPreview(QWidget* parent, const QString& document, const PrintRoutine& print);
// Shows the preview modally. While a PrintCapture lives (tests) the routine is recorded into it
// as one more job, named "<document> 미리보기", and no window opens.
void showPrintPreview(QWidget* parent, const QString& document, const PrintRoutine& print);

} // namespace nb
