#include "management/SpreadsheetFile.h"

#include "core/CommandLine.h"

#include <QDir>
#include <QFile>
#include <QXmlStreamReader>
#include <xlsxwriter.h>
#include <zlib.h>

namespace nb {

SpreadsheetFile::SpreadsheetFile(const QString& path) : m_path(path), m_output(path) {
    m_refusal = ownFileRefusal(path);
    WriteFailure why;
    if (m_refusal.isEmpty() && !m_output.begin(&why))
        m_refusal = QStringLiteral("파일을 쓸 수 없습니다: %1 - %2").arg(path, why.sentence());
    if (m_refusal.isEmpty())
        m_book = workbook_new(QDir::toNativeSeparators(m_output.tempPath()).toLocal8Bit().constData());
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
        if (error)
            *error = m_refusal.isEmpty() ? QStringLiteral("파일을 만들 수 없습니다: ") + m_path : m_refusal;
        if (errorNumber) *errorNumber = LXW_ERROR_CREATING_XLSX_FILE;
        return false;
    }
    const lxw_error result = workbook_close(m_book);
    m_book = nullptr;
    WriteFailure why;
    if (result == LXW_NO_ERROR && m_output.commit(isWholeXlsx, &why)) return true;
    if (error)
        *error = result != LXW_NO_ERROR
                     ? QStringLiteral("파일을 쓸 수 없습니다: ") + m_path + QStringLiteral(" (") +
                           QString::fromUtf8(lxw_strerror(result)) + u')'
                     : QStringLiteral("파일을 쓸 수 없습니다: %1 - %2").arg(m_path, why.sentence());
    if (errorNumber) *errorNumber = int(result != LXW_NO_ERROR ? result : LXW_ERROR_CREATING_XLSX_FILE);
    return false;
}

namespace {

quint32 number(const QByteArray& bytes, qsizetype at, int size) {
    quint32 value = 0;
    for (int i = size - 1; i >= 0; --i)
        value = (value << 8) | quint8(bytes.at(at + i));
    return value;
}

// The part's bytes as stored, inflated; empty with `ok` false when they do not inflate whole.
QByteArray inflated(const QByteArray& stored, int method, qsizetype size, bool* ok) {
    *ok = method == 0;
    if (method == 0) return stored;
    if (method != 8) return {};
    QByteArray out(size, Qt::Uninitialized);
    z_stream z{};
    if (inflateInit2(&z, -MAX_WBITS) != Z_OK) return {};
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stored.constData()));
    z.avail_in = uInt(stored.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = uInt(out.size());
    *ok = inflate(&z, Z_FINISH) == Z_STREAM_END && z.total_out == uLong(size);
    inflateEnd(&z);
    return out;
}

bool wellFormed(const QByteArray& xml) {
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

} // namespace

// The library writes each part to a scratch file before it packs it, and a scratch file that
// met a full disk is packed cut short without a word: every part is therefore unpacked again,
// its checksum compared and its XML read to the end.
bool isWholeXlsx(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    const QByteArray zip = file.readAll();
    const qsizetype end = zip.lastIndexOf(QByteArray("PK\x05\x06", 4));
    if (!zip.startsWith(QByteArray("PK\x03\x04", 4)) || end < 0 || end + 22 > zip.size()) return false;
    const int entries = int(number(zip, end + 10, 2));
    qsizetype at = number(zip, end + 16, 4);
    for (int i = 0; i < entries; ++i) {
        if (at + 46 > zip.size() || zip.mid(at, 4) != QByteArray("PK\x01\x02", 4)) return false;
        const int method = int(number(zip, at + 10, 2));
        const quint32 crc = number(zip, at + 16, 4);
        const qsizetype packed = number(zip, at + 20, 4), size = number(zip, at + 24, 4);
        const int nameLength = int(number(zip, at + 28, 2));
        const qsizetype local = number(zip, at + 42, 4);
        const QString name = QString::fromUtf8(zip.mid(at + 46, nameLength));
        at += 46 + nameLength + number(zip, at + 30, 2) + number(zip, at + 32, 2);
        if (local + 30 > zip.size()) return false;
        const qsizetype data = local + 30 + number(zip, local + 26, 2) + number(zip, local + 28, 2);
        if (data + packed > zip.size()) return false;
        bool ok = false;
        const QByteArray part = inflated(zip.mid(data, packed), method, size, &ok);
        if (!ok || crc32(0, reinterpret_cast<const Bytef*>(part.constData()), uInt(part.size())) != crc)
            return false;
        if ((name.endsWith(QStringLiteral(".xml")) || name.endsWith(QStringLiteral(".rels"))) &&
            !wellFormed(part))
            return false;
    }
    return entries > 0;
}

} // namespace nb
