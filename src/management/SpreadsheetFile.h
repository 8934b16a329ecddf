#pragma once
// A spreadsheet file (.xlsx) written without a spreadsheet program: one workbook, sheets by
// name, text and number cells (numbers with a display format, so the spreadsheet can sum them),
// column widths and a frozen header. Rows and columns count from 0. The file is written beside
// its target and takes the target's name only when whole; the program's own files are never
// written over.

#include "core/WholeFile.h"

#include <QHash>
#include <QString>

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

namespace nb {

inline const QString kThousandsFormat = QStringLiteral("#,##0");

class SpreadsheetFile {
public:
    explicit SpreadsheetFile(const QString& path);
    ~SpreadsheetFile(); // closes the file when close() was not called
    SpreadsheetFile(const SpreadsheetFile&) = delete;
    SpreadsheetFile& operator=(const SpreadsheetFile&) = delete;

    // False when the file could not be begun (its reason in close()).
    bool isOpen() const { return m_book != nullptr; }
    // A new sheet that the writes below go to.
    void addSheet(const QString& name);
    void writeText(int row, int col, const QString& text, bool bold = false);
    void writeNumber(int row, int col, double value, const QString& format = kThousandsFormat,
                     bool bold = false);
    // Width in characters of the sheet's default font.
    void setColumnWidth(int col, double chars);
    void freezeRows(int rows);
    // Writes the file; false with a one-line reason and the library's error number.
    bool close(QString* error = nullptr, int* errorNumber = nullptr);

private:
    lxw_format* format(const QString& numberFormat, bool bold);

    QString m_path;
    WholeOutput m_output;
    QString m_refusal; // why the file was not begun
    lxw_workbook* m_book = nullptr;
    lxw_worksheet* m_sheet = nullptr;
    QHash<QString, lxw_format*> m_formats;
    bool m_closed = false;
};

// True when the file is a workbook written to its end (a zip archive with its closing
// directory).
bool isWholeXlsx(const QString& path);

} // namespace nb
