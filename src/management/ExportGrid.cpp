#include "management/ExportGrid.h"

#include "common/External.h"
#include "common/FileChooser.h"
#include "common/Messages.h"
#include "common/grid/Grid.h"
#include "common/text/NumberFormat.h"
#include "management/SpreadsheetFile.h"

#include <QDir>
#include <QStandardPaths>
#include <QVariant>

namespace nb {

namespace {

constexpr double kMaxColumnWidth = 60;

// The width a column needs: its longest text, Hangul counting two.
double widthOf(const QString& text) {
    double width = 0;
    for (QChar c : text)
        width += c.unicode() < 0x80 ? 1 : 2;
    return width;
}

void writeValue(SpreadsheetFile& file, int row, int col, const QVariant& value, bool bold = false) {
    if (value.typeId() == QMetaType::Double)
        file.writeNumber(row, col, value.toDouble(), kThousandsFormat, bold);
    else
        file.writeText(row, col, value.toString(), bold);
}

QVariant totalValue(const QString& text) {
    const QString trimmed = text.trimmed();
    if (!trimmed.isEmpty() && IsNumericText(trimmed) && trimmed != u"-" && trimmed != u".")
        return NumberFromText(trimmed);
    return trimmed;
}

QString failureText(int number, const QString& reason) {
    return QStringLiteral("오류번호 : ") + QString::number(number) + QStringLiteral("\r\n오류내용 : ") +
           reason +
           QStringLiteral("\r\n정상적으로 수행할 수 없습니다.\r\n파일을 쓸 수 있는 곳인지 확인하세요.");
}

} // namespace

SheetContent sheetContentOf(const Grid& grid, const QList<int>& columns, const QStringList& totals,
                            const QString& title) {
    SheetContent content;
    content.title = title;
    content.totals = totals;
    for (int col : columns)
        content.headings << grid.Text(col, 0);
    for (int row = 1; row <= grid.DataRowCnt(); ++row) {
        QList<QVariant> cells;
        for (int col : columns) {
            const QString text = grid.Text(col, row);
            if (grid.cellFormat(col, row).isNumber() && !text.isEmpty())
                cells << QVariant(grid.Value(col, row));
            else
                cells << QVariant(text);
        }
        content.rows << cells;
    }
    return content;
}

bool writeSheet(const QString& path, const SheetContent& content, QString* error, int* errorNumber,
                const std::function<void(int row)>& rowWritten) {
    SpreadsheetFile file(path);
    file.addSheet(content.title);
    QList<double> widths;
    for (int c = 0; c < content.headings.size(); ++c) {
        file.writeText(0, c, content.headings.at(c), true);
        widths << widthOf(content.headings.at(c));
    }
    for (int r = 0; r < content.rows.size(); ++r) {
        const QList<QVariant>& cells = content.rows.at(r);
        for (int c = 0; c < cells.size(); ++c) {
            writeValue(file, r + 1, c, cells.at(c));
            const QVariant& v = cells.at(c);
            const double w = v.typeId() == QMetaType::Double ? widthOf(FormatNumber(v.toDouble(), kMaskSum))
                                                             : widthOf(v.toString());
            if (c < widths.size()) widths[c] = qMax(widths[c], w);
        }
        if (rowWritten) rowWritten(r + 1);
    }
    const int totalRow = int(content.rows.size()) + 1;
    for (int c = 0; c < content.totals.size(); ++c) {
        const QVariant v = totalValue(content.totals.at(c));
        writeValue(file, totalRow, c, v, true);
        if (c < widths.size()) widths[c] = qMax(widths[c], widthOf(content.totals.at(c)));
    }
    for (int c = 0; c < widths.size(); ++c)
        file.setColumnWidth(c, qMin(kMaxColumnWidth, widths.at(c) + 2));
    file.freezeRows(1);
    return file.close(error, errorNumber);
}

QString ExportGrid(QWidget* parent, const Grid& grid, const QList<int>& columns, const QStringList& totals,
                   const QString& title, const QString& fileName) {
    if (grid.DataRowCnt() == 0) {
        MsgBox(kExportEmptyText, MbInformation);
        return QString();
    }
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path = fileChooser().saveFile(parent, title, QDir(documents).filePath(fileName),
                                                QStringLiteral("Excel 통합 문서 (*.xlsx)|*.xlsx"));
    if (path.isEmpty()) return QString();
    const SheetContent content = sheetContentOf(grid, columns, totals, title);
    QString reason;
    int number = 0;
    bool written = false;
    {
        Progress progress(kExportProgressText, int(content.rows.size()));
        written = writeSheet(path, content, &reason, &number, [&progress](int) { progress.step(); });
    }
    if (!written) {
        MsgBox(failureText(number, reason), MbOk | MbExclamation, QStringLiteral("오류"));
        return QString();
    }
    if (AskYesNo(QStringLiteral("엑셀 파일을 만들었습니다.\r\n") + path +
                     QStringLiteral("\r\n\r\n지금 여시겠습니까?"),
                 title) == AnsYes)
        launcher().openUrl(path);
    return path;
}

} // namespace nb
