#pragma once
// The choice of printer around a print job. The program keeps one current printer, as the
// printer object of the system does; SelectDocPrinter puts a document's own printer in its
// place and RestorePrinter puts the previous one back. Besides the system's printers there is
// always the printer "PDF", which writes the sheet to a file under the application folder, so
// that a machine with no printer can print.

#include "printing/PrintJob.h"
#include "printing/PrintSurfaces.h"

#include <QString>
#include <QStringList>
#include <memory>

namespace nb {

inline const QString kPdfPrinterName = QStringLiteral("PDF");
inline const QString kNoDefaultPrinter = QStringLiteral("기본프린터가 없음");
// The application under which SelectDocPrinter reads a document's printer; FrmSetPrinter
// writes under kAppSection, so the two never meet.
inline const QString kPrinterReadApp = QStringLiteral("브란토2");
inline const QString kPrinterSection = QStringLiteral("Drive");

// Document names by the index that FrmSetPrinter and FrmMargin receive: 0 "세금계산서",
// 1 "거래명세표", 2 "DM인쇄", 3 "물품가격", 4 "청구서", 5 "견적서", 6 "세금계산서 합계표"; empty for
// any other.
QString documentName(int index);

// Device names of the system's printers in the system's order, then "PDF".
QStringList printerNames();
// The default printer's name, or "기본프린터가 없음" when the system has none.
QString GetDefaultPrinter();

// The current printer: the system's default at first, "PDF" on a machine without one.
QString currentPrinterName();
void setCurrentPrinter(const QString& name);
// Position of the current printer in printerNames() when SelectDocPrinter last ran.
int SavedPrinterIndex();
// Makes the document's printer current when one of that device name exists; otherwise the
// current printer stays. The name is read under "브란토2", "Drive", `document`.
void SelectDocPrinter(const QString& document);
// Puts back the printer that was current before SelectDocPrinter.
void RestorePrinter();

// The name FrmSetPrinter saved for a document index (0 or 1), under "세금계산서", "Drive".
QString savedDocPrinter(int documentIndex);
void saveDocPrinter(int documentIndex, const QString& printerName);

// Starts a job on the current printer for the named document. "PDF" writes
// <appFolder>/Print/<document>-<yyyyMMdd-HHmmss>.pdf and names the file in a box when the job
// ends. Null, after a warning box, when the printer cannot be opened.
std::unique_ptr<PrintJob> startPrintJob(const QString& document);
// Where a PDF print of the document started now would go.
QString pdfPrintPath(const QString& document);

// PrinterPrepare: inches, base font "굴림체" at 9.75, black. `Inches` only mattered on a print
// path that is never taken.
void PrinterPrepare(PrintJob& job, bool Inches = false);
// SetPrintRow: CurrentY of the row, (PrintTopMargin + Row) / 6 inches.
void SetPrintRow(PrintJob& job, qint16 Row);

// While it lives, every job started by startPrintJob is recorded instead of printed (tests).
class PrintCapture {
public:
    PrintCapture();
    ~PrintCapture();
    PrintCapture(const PrintCapture&) = delete;
    PrintCapture& operator=(const PrintCapture&) = delete;
    const std::vector<std::shared_ptr<PrintRecord>>& jobs() const { return m_jobs; }
    // The last job; an empty record (no printer, no texts) when none was started.
    const PrintRecord& last() const;
    std::unique_ptr<PrintJob> start(const QString& printer, const QString& document);

private:
    std::vector<std::shared_ptr<PrintRecord>> m_jobs;
};

// A job recorded into the PrintCapture that lives, or null when none does (tests).
std::unique_ptr<PrintJob> recordedJobForTesting(const QString& document);

// Stands in for the system's printer list until the program's state is reset (tests).
void setSystemPrintersForTesting(const QStringList& names, const QString& defaultName);

} // namespace nb
