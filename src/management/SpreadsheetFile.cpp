#include "management/SpreadsheetFile.h"

#include <QDir>
#include <xlsxwriter.h>

namespace nb {

SpreadsheetFile::SpreadsheetFile(const QString& path) : m_path(path) {
    m_book = workbook_new(QDir::toNativeSeparators(path).toLocal8Bit().constData());
}

SpreadsheetFile::~SpreadsheetFile() {
    if (!m_closed) close();
}

void SpreadsheetFile::addSheet(const QString& name) {
    if (m_book) m_sheet = workbook_add_worksheet(m_book, name.toUtf8().constData());
}

lxw_format* SpreadsheetFile::format(const QString& numberFormat, bool bold) {
    if (numberFormat.isEmpty() && !bold) return nullptr;
    const QString key = numberFormat + (bold ? QStringLiteral("|b") : QString());
    if (lxw_format* known = m_formats.value(key)) return known;
    lxw_format* f = workbook_add_format(m_book);
    if (!numberFormat.isEmpty()) format_set_num_format(f, numberFormat.toUtf8().constData());
    if (bold) format_set_bold(f);
    m_formats.insert(key, f);
    return f;
}

void SpreadsheetFile::writeText(int row, int col, const QString& text, bool bold) {
    if (!m_sheet || text.isEmpty()) return;
    worksheet_write_string(m_sheet, lxw_row_t(row), lxw_col_t(col), text.toUtf8().constData(),
                           format(QString(), bold));
}

void SpreadsheetFile::writeNumber(int row, int col, double value, const QString& numberFormat, bool bold) {
    if (!m_sheet) return;
    worksheet_write_number(m_sheet, lxw_row_t(row), lxw_col_t(col), value, format(numberFormat, bold));
}

void SpreadsheetFile::setColumnWidth(int col, double chars) {
    if (m_sheet) worksheet_set_column(m_sheet, lxw_col_t(col), lxw_col_t(col), chars, nullptr);
}

void SpreadsheetFile::freezeRows(int rows) {
    if (m_sheet) worksheet_freeze_panes(m_sheet, lxw_row_t(rows), 0);
}

bool SpreadsheetFile::close(QString* error, int* errorNumber) {
    m_closed = true;
    if (!m_book) {
        if (error) *error = QStringLiteral("파일을 만들 수 없습니다: ") + m_path;
        if (errorNumber) *errorNumber = LXW_ERROR_CREATING_XLSX_FILE;
        return false;
    }
    const lxw_error result = workbook_close(m_book);
    m_book = nullptr;
    if (result == LXW_NO_ERROR) return true;
    if (error)
        *error = QStringLiteral("파일을 쓸 수 없습니다: ") + m_path + QStringLiteral(" (") +
                 QString::fromUtf8(lxw_strerror(result)) + u')';
    if (errorNumber) *errorNumber = int(result);
    return false;
}

} // namespace nb
