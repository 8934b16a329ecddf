#pragma once
// The program's one export of a grid to a spreadsheet file: the caller's title names the sheet,
// row 1 holds the headings of the columns asked for, the grid's rows follow (number cells as
// numbers with thousands commas, the rest as text), and a total row goes under the last one.
// Any screen exports any of its grids with one call.

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

namespace nb {

class Grid;

// What is written, taken from a grid.
struct SheetContent {
    QString title;               // the sheet's name
    QStringList headings;        // row 1
    QList<QList<QVariant>> rows; // a double is a number, a QString a text
    QStringList totals;          // the total row; numeric texts ("1,234 ") go in as numbers
};
// The grid's data rows (1 to DataRowCnt) in the given columns.
SheetContent sheetContentOf(const Grid& grid, const QList<int>& columns, const QStringList& totals,
                            const QString& title);
// Writes the file; `rowWritten` runs after each data row. False with the reason and number.
bool writeSheet(const QString& path, const SheetContent& content, QString* error, int* errorNumber,
                const std::function<void(int row)>& rowWritten = {});

// ExportGrid: the empty-grid box, the file chosen in a save dialog (suggested: `fileName` in the
// user's documents folder), the progress form moving per row, the failure box, and the offer to
// open the file with the desktop's spreadsheet program. The path written, empty when none.
QString ExportGrid(QWidget* parent, const Grid& grid, const QList<int>& columns, const QStringList& totals,
                   const QString& title, const QString& fileName);

inline const QString kExportEmptyText =
    QStringLiteral("엑셀로 보낼 데이터가 없습니다.\r\n자료 검색후 엑셀로 보내세요.");
inline const QString kExportProgressText = QStringLiteral("엑셀로 내보내는 중...");

} // namespace nb
