#pragma once
// Enlarging a copy of a Jet 4 file for the benchmarks, as no program on this machine writes Jet
// files: the data pages of a table copied again and again, at the end of the file, with the
// numbered text key of every copied row renumbered in its own bytes (same width, so every row
// keeps its length), then the table's page map rewritten as a list of bitmap pages that covers
// the new pages and its row count raised. The rest of the file stays as it was: the indexes
// still describe the first rows only, which readers that walk the table's pages never consult.
//
// Page layout as the published format notes describe it: 4 KB pages; a data page (type 0x01)
// holds the owning table's definition page at 4, its row count at 0x0c and the rows' offsets
// from 0x0e, each row running to the previous row's start (the first to the page's end); a row
// ends in its null mask, before it the count of variable columns and their offsets in reverse
// order, and the end of the variable data before those. A table definition page (0x02) holds
// the row count at 0x10 and at 0x37 the pointer (row byte, then page) to the page map row.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstring>
#include <functional>
#include <mdbtools.h>
#include <stdexcept>
#include <vector>

namespace nb::bench {

class JetGrower {
public:
    static constexpr int kPage = 4096;

    explicit JetGrower(const QString& path) : m_path(path) {
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly)) fail("cannot read " + path);
        m_bytes = f.readAll();
        if (m_bytes.size() % kPage != 0 || m_bytes.size() < 4 * kPage) fail("not whole pages: " + path);
        if (byte(0, 0x14) != 0x01) fail("not a Jet 4 file: " + path);
    }

    // Appends `copies` copies of the table's rows; `renumber(number, copy)` gives the key of
    // copy 1, 2, ... of a row whose key column holds `number`. Answers the rows added.
    qint64 grow(const QString& table, const QString& keyColumn, int copies,
                const std::function<qint64(qint64 number, int copy)>& renumber) {
        const TableShape shape = tableShape(table, keyColumn);
        const std::vector<int> pages = tablePages(shape);
        std::vector<int> owned = pages;
        qint64 added = 0;
        for (int copy = 1; copy <= copies; ++copy)
            for (int source : pages) {
                QByteArray page = m_bytes.mid(qsizetype(source) * kPage, kPage);
                added += renumberRows(page, shape, [&](qint64 n) { return renumber(n, copy); });
                owned.push_back(pageCount());
                m_bytes.append(page);
            }
        writePageMap(shape, owned);
        put32(shape.tdefPage, 0x10, get32(shape.tdefPage, 0x10) + quint32(added));
        return added;
    }

    // The enlarged file, written whole beside its name and renamed over it.
    void save() {
        QFile f(m_path + QStringLiteral(".part"));
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(m_bytes) != m_bytes.size())
            fail("cannot write " + m_path);
        f.close();
        QFile::remove(m_path);
        if (!QFile::rename(f.fileName(), m_path)) fail("cannot rename " + m_path);
    }

private:
    struct TableShape {
        int tdefPage = 0;
        int keyVarIndex = -1; // the key's place among the variable columns
        int keyNullBit = -1;  // its bit in the null mask
    };

    [[noreturn]] static void fail(const QString& why) { throw std::runtime_error(why.toStdString()); }

    int pageCount() const { return int(m_bytes.size() / kPage); }
    quint8 byte(int page, int at) const { return quint8(m_bytes[qsizetype(page) * kPage + at]); }
    quint32 get32(int page, int at) const {
        quint32 v;
        std::memcpy(&v, m_bytes.constData() + qsizetype(page) * kPage + at, 4);
        return v;
    }
    void put32(int page, int at, quint32 v) {
        std::memcpy(m_bytes.data() + qsizetype(page) * kPage + at, &v, 4);
    }
    static quint16 get16(const QByteArray& page, int at) {
        return quint16(quint8(page[at]) | quint8(page[at + 1]) << 8);
    }

    // The table's definition page and where its key lies in a row, as libmdb reads the catalog.
    TableShape tableShape(const QString& table, const QString& keyColumn) const {
        TableShape shape;
        MdbHandle* mdb = mdb_open(m_path.toLocal8Bit().constData(), MDB_NOFLAGS);
        if (!mdb) fail("libmdb cannot open " + m_path);
        mdb_read_catalog(mdb, MDB_TABLE);
        for (unsigned i = 0; i < mdb->num_catalog && shape.tdefPage == 0; ++i) {
            auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
            if (entry->object_type != MDB_TABLE || table != QString::fromUtf8(entry->object_name)) continue;
            MdbTableDef* def = mdb_read_table(entry);
            mdb_read_columns(def);
            for (unsigned c = 0; c < def->num_cols; ++c) {
                auto* col = static_cast<MdbColumn*>(g_ptr_array_index(def->columns, c));
                if (keyColumn != QString::fromUtf8(col->name)) continue;
                if (col->is_fixed || col->col_type != MDB_TEXT) fail("the key is not a text column");
                shape.keyVarIndex = int(col->var_col_num);
                shape.keyNullBit = col->row_col_num;
            }
            shape.tdefPage = int(entry->table_pg);
            mdb_free_tabledef(def);
        }
        mdb_close(mdb);
        if (shape.tdefPage == 0 || shape.keyVarIndex < 0) fail("no table " + table + "." + keyColumn);
        if (byte(shape.tdefPage, 0) != 0x02 || get32(shape.tdefPage, 4) != 0)
            fail("unexpected definition page");
        return shape;
    }

    // Where a row lies on a page: [start, end); false for a deleted row.
    static bool rowSpan(const QByteArray& page, int row, int& start, int& end) {
        const quint16 at = get16(page, 0x0e + 2 * row);
        if (at & 0x4000) fail("a row moved to another page");
        start = at & 0x1fff;
        end = row == 0 ? kPage : get16(page, 0x0e + 2 * (row - 1)) & 0x1fff;
        return !(at & 0x8000);
    }

    // The map row the definition page points to, as a span of the file's bytes.
    std::pair<qsizetype, int> mapRow(const TableShape& shape) const {
        const quint32 pointer = get32(shape.tdefPage, 0x37);
        const int page = int(pointer >> 8);
        const QByteArray p = m_bytes.mid(qsizetype(page) * kPage, kPage);
        int start = 0, end = 0;
        if (!rowSpan(p, int(pointer & 0xff), start, end)) fail("the page map row is deleted");
        return {qsizetype(page) * kPage + start, end - start};
    }

    std::vector<int> tablePages(const TableShape& shape) const {
        const auto [at, length] = mapRow(shape);
        const auto* map = reinterpret_cast<const quint8*>(m_bytes.constData() + at);
        std::vector<int> pages;
        auto keep = [&](int page) {
            if (page < pageCount() && byte(page, 0) == 0x01 && get32(page, 4) == quint32(shape.tdefPage))
                pages.push_back(page);
        };
        if (map[0] == 0) {
            quint32 first;
            std::memcpy(&first, map + 1, 4);
            for (int bit = 0; bit < (length - 5) * 8; ++bit)
                if (map[5 + bit / 8] & (1 << (bit % 8))) keep(int(first) + bit);
        } else {
            for (int i = 0; i < (length - 1) / 4; ++i) {
                quint32 mapPage;
                std::memcpy(&mapPage, map + 1 + 4 * i, 4);
                if (mapPage == 0) continue;
                for (int bit = 0; bit < (kPage - 4) * 8; ++bit)
                    if (byte(int(mapPage), 4 + bit / 8) & (1 << (bit % 8))) keep(i * (kPage - 4) * 8 + bit);
            }
        }
        if (pages.empty()) fail("the table has no data pages");
        return pages;
    }

    // Renumbers the key of every live row of a copied page; answers the live rows.
    static int renumberRows(QByteArray& page, const TableShape& shape,
                            const std::function<qint64(qint64)>& renumber) {
        int live = 0;
        for (int row = 0; row < get16(page, 0x0c); ++row) {
            int start = 0, end = 0;
            if (!rowSpan(page, row, start, end)) continue;
            ++live;
            const int columns = get16(page, start);
            const int maskAt = end - (columns + 7) / 8;
            if (!(quint8(page[maskAt + shape.keyNullBit / 8]) & (1 << (shape.keyNullBit % 8)))) continue;
            const int varCount = get16(page, maskAt - 2);
            if (shape.keyVarIndex >= varCount) continue;
            const int from = start + get16(page, maskAt - 2 - 2 * (shape.keyVarIndex + 1));
            const int to = start + get16(page, maskAt - 2 - 2 * (shape.keyVarIndex + 2));
            renumberText(page, from, to, renumber);
        }
        return live;
    }

    // A text of digits, stored compressed (FF FE, then a byte a character) or as UTF-16.
    static void renumberText(QByteArray& page, int from, int to,
                             const std::function<qint64(qint64)>& renumber) {
        const bool compressed =
            to - from >= 2 && quint8(page[from]) == 0xff && quint8(page[from + 1]) == 0xfe;
        const int first = compressed ? from + 2 : from;
        const int step = compressed ? 1 : 2;
        QByteArray digits;
        for (int at = first; at < to; at += step) {
            if (page[at] < '0' || page[at] > '9' || (!compressed && page[at + 1] != 0))
                fail("a key not of digits");
            digits.append(page[at]);
        }
        const QByteArray renumbered =
            QByteArray::number(renumber(digits.toLongLong())).rightJustified(digits.size(), '0');
        if (renumbered.size() != digits.size()) fail("a renumbered key is wider than its row");
        for (int i = 0; i < renumbered.size(); ++i)
            page[first + i * step] = renumbered[i];
    }

    // The map row becomes a list of bitmap pages (type 0x05), appended, covering every page.
    void writePageMap(const TableShape& shape, const std::vector<int>& owned) {
        const auto [at, length] = mapRow(shape);
        constexpr int perMapPage = (kPage - 4) * 8;
        const int slotCount = (length - 1) / 4;
        std::vector<QByteArray> mapPages;
        for (int page : owned) {
            const int slot = page / perMapPage;
            if (slot >= slotCount) fail("the file outgrows its page map");
            if (int(mapPages.size()) <= slot) mapPages.resize(slot + 1);
            if (mapPages[slot].isEmpty()) {
                mapPages[slot] = QByteArray(kPage, '\0');
                mapPages[slot][0] = 0x05;
                mapPages[slot][1] = 0x01;
            }
            const int bit = page % perMapPage;
            mapPages[slot][4 + bit / 8] = char(quint8(mapPages[slot][4 + bit / 8]) | (1 << (bit % 8)));
        }
        QByteArray row(length, '\0');
        row[0] = 0x01;
        for (int slot = 0; slot < int(mapPages.size()); ++slot) {
            if (mapPages[slot].isEmpty()) continue;
            const quint32 page = quint32(pageCount());
            std::memcpy(row.data() + 1 + 4 * slot, &page, 4);
            m_bytes.append(mapPages[slot]);
        }
        std::memcpy(m_bytes.data() + at, row.constData(), size_t(length));
    }

    QString m_path;
    QByteArray m_bytes;
};

} // namespace nb::bench
