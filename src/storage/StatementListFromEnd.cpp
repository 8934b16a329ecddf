#include "storage/StatementListFromEnd.h"

#include "common/grid/GridList.h"
#include "common/grid/SqliteRows.h"
#include "storage/CrossFileQueries.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <algorithm>
#include <utility>

namespace nb {
namespace {

QString traderCondition(const QString& traderCode, const QString& table) {
    return traderCode.isEmpty() ? QString() : QStringLiteral(" AND ") + table + QStringLiteral(".CCode = ?");
}

// Two texts in the order of their characters' code points, which is the order of their UTF-8
// bytes, as both engines compare texts: UTF-16 units above the surrogates move below them.
int compareCodePoints(QStringView a, QStringView b) {
    const qsizetype n = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        char16_t x = a[i].unicode(), y = b[i].unicode();
        if (x == y) continue;
        if (x >= 0xD800) x = char16_t(x >= 0xE000 ? x - 0x800 : x + 0x2000);
        if (y >= 0xD800) y = char16_t(y >= 0xE000 ? y - 0x800 : y + 0x2000);
        return x < y ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

// Two values as texts (a null one empty), read in place when they are texts already.
int compareTexts(const QVariant& a, const QVariant& b) {
    if (a.typeId() == QMetaType::QString && b.typeId() == QMetaType::QString) {
        const auto& x = *static_cast<const QString*>(a.constData());
        const auto& y = *static_cast<const QString*>(b.constData());
        // The dates of a day down the list share one text: nothing to compare.
        if (x.constData() == y.constData() && x.size() == y.size()) return 0;
        return compareCodePoints(x, y);
    }
    return compareCodePoints(a.toString(), b.toString());
}

// A statement number as the list orders it: a missing one as an empty text, a text before any
// bytes (which only a foreign writer could leave in the column).
int compareBillNos(const QVariant& a, const QVariant& b) {
    const bool aBytes = a.typeId() == QMetaType::QByteArray, bBytes = b.typeId() == QMetaType::QByteArray;
    if (aBytes != bBytes) return aBytes ? 1 : -1;
    if (aBytes) {
        const QByteArray x = a.toByteArray(), y = b.toByteArray();
        return x == y ? 0 : (x < y ? -1 : 1);
    }
    return compareTexts(a, b);
}

// Rows of `width` values packed one after the other, moved apart to `stride` values a row (from
// the last, so no row is written over before it moved); the values between stay empty.
void spreadRows(std::vector<QVariant>& rows, size_t width, size_t stride) {
    if (width == 0 || stride <= width) return;
    const size_t count = rows.size() / width;
    rows.resize(count * stride);
    for (size_t r = count; r-- > 1;)
        for (size_t c = width; c-- > 0;)
            rows[r * stride + c] = std::exchange(rows[r * width + c], QVariant());
}

} // namespace

// Rows of `width` values (BillDate, C_Name, NumBill, total, BillNo, CCode, row number) into the
// list's order: by date, number (a missing one first) and row number. Rows already in that order
// (the usual case: numbers are given as statements are written) are only looked through.
void putInListOrder(std::vector<QVariant>& rows, size_t width) {
    if (width > 0) putInListOrder(rows, width, width - 1);
}

void putInListOrder(std::vector<QVariant>& rows, size_t width, size_t rowColumn) {
    const size_t count = width ? rows.size() / width : 0;
    const auto before = [&rows, width, rowColumn](size_t a, size_t b) {
        const QVariant* x = &rows[a * width];
        const QVariant* y = &rows[b * width];
        if (const int date = compareTexts(x[0], y[0])) return date < 0;
        if (const int number = compareBillNos(x[4], y[4])) return number < 0;
        return x[rowColumn].toLongLong() < y[rowColumn].toLongLong();
    };
    bool ordered = true;
    for (size_t i = 1; i < count && ordered; ++i)
        ordered = !before(i, i - 1);
    if (ordered) return;
    std::vector<size_t> order(count);
    for (size_t i = 0; i < count; ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), before);
    std::vector<QVariant> sorted;
    sorted.reserve(rows.size());
    for (const size_t row : order)
        for (size_t c = 0; c < width; ++c)
            sorted.push_back(std::move(rows[row * width + c]));
    rows.swap(sorted);
}

StatementListFromEnd::StatementListFromEnd(Database& bill, const QString& basicFile, const QString& from,
                                           const QString& to, const QString& traderCode)
    : m_bill(bill), m_basicFile(basicFile), m_from(from), m_to(to), m_traderCode(traderCode) {}

QString StatementListFromEnd::dateAndTraderCondition(const QString& table) const {
    return table + QStringLiteral(".billdate BETWEEN ? AND ?") + traderCondition(m_traderCode, table);
}

// The rows, their count and their sums, whichever way the list is read (the basic file attached
// once for both); false when a query failed (its box shown).
bool StatementListFromEnd::open() {
    const QString sql = shortListSql();
    const QVariantList values = shortListValues();
    if (!attachBasic(sql, values)) return false;
    bool isShort = false;
    const bool ok = readShortList(sql, values, &isShort) && (isShort || countFromEnd());
    m_bill.detach(kBasicAlias);
    return ok;
}

// A list of no more statements than a later page holds is read whole at once by one statement,
// the list's own, in its order: the count and sums are those of the rows read, so the screen
// needs no second statement. The statement gives no row when the dates hold more statements
// (told by counting, on the date index, no further than one more than that): the longer road
// follows then, and for an empty range too, which it answers at once.
//
// The files' engine walks the date index, which holds the rows of one day in the order they were
// written: ordered by date and row number it gives them without sorting, and putInListOrder puts
// the numbers of a day in order afterwards (mostly they are already). The server sorts them
// itself.
QString StatementListFromEnd::shortListSql() const {
    return QStringLiteral("SELECT m.BillDate, trader.C_Name, m.NumBill, m.TotAmount + m.TotVat, m.BillNo, "
                          "m.CCode, m.rowid FROM master m LEFT JOIN ") +
           kBasicAlias + QStringLiteral(".Trader ON m.ccode = trader.code WHERE ") +
           dateAndTraderCondition(QStringLiteral("m")) +
           QStringLiteral(" AND (SELECT COUNT(*) FROM (SELECT 1 FROM master few WHERE ") +
           dateAndTraderCondition(QStringLiteral("few")) + QStringLiteral(" LIMIT ?) counted) <= ? ") +
           (m_bill.onServer() ? QStringLiteral("ORDER BY m.BillDate, COALESCE(m.BillNo, ''), m.rowid")
                              : QStringLiteral("ORDER BY m.BillDate, m.rowid"));
}

QVariantList StatementListFromEnd::shortListValues() const {
    QVariantList values;
    for (int i = 0; i < 2; ++i) {
        values << m_from << m_to;
        if (!m_traderCode.isEmpty()) values << m_traderCode;
    }
    return values << kLaterPage + 1 << kLaterPage;
}

// The short list's rows are as wide as the list's (when it is wider than the statement's), so
// the list can take them as they are; the row number, needed only to order them, is let go of.
size_t StatementListFromEnd::shortStride() const {
    return size_t(std::max(kShortWidth, m_listWidth));
}

bool StatementListFromEnd::readShortList(const QString& sql, const QVariantList& values, bool* isShort) {
    const size_t stride = shortStride();
    if (!runStatement(sql, values, stride)) return false;
    const int count = int(m_page.size() / stride);
    *isShort = count > 0;
    if (!*isShort) return true;
    m_whole = true;
    m_rows = m_left = count;
    for (size_t at = 0; at < m_page.size(); at += stride) {
        m_lines += numberOf(m_page[at + 2]);
        m_total += numberOf(m_page[at + 3]);
    }
    putInListOrder(m_page, stride, kColumns);
    for (size_t at = kColumns; at < m_page.size(); at += stride)
        m_page[at] = QVariant();
    return true;
}

bool StatementListFromEnd::takeRowsAtHand(std::vector<QVariant>& block, int width) {
    if (!m_whole || m_over || m_next != 0 || size_t(width) != shortStride()) return false;
    // Room for the row the screen adds after the list, so adding it moves no value.
    if (m_page.capacity() < m_page.size() + size_t(width)) m_page.reserve(m_page.size() + size_t(width));
    block.swap(m_page);
    m_page.clear();
    m_left = 0;
    m_over = true;
    return true;
}

// The count and sums over the same join as the rows, so that a trader code held twice counts
// its statements as often as the list shows them; then the last page (the basic file attached
// by the caller).
bool StatementListFromEnd::countFromEnd() {
    const QString sql = QStringLiteral("SELECT COUNT(*), SUM(m.NumBill), SUM(m.TotAmount + m.TotVat), "
                                       "MAX(m.rowid) FROM master m LEFT JOIN ") +
                        kBasicAlias + QStringLiteral(".Trader ON m.ccode = trader.code WHERE ") +
                        dateAndTraderCondition(QStringLiteral("m"));
    QVariantList values{m_from, m_to};
    if (!m_traderCode.isEmpty()) values << m_traderCode;
    if (!runStatement(sql, values) || m_page.size() < 4) return false;
    m_rows = int(numberOf(m_page[0]));
    m_lines = numberOf(m_page[1]);
    m_total = numberOf(m_page[2]);
    m_lastRowNumber = m_page[3];
    m_left = m_rows;
    m_over = m_rows == 0;
    m_page.clear();
    m_next = 0;
    return m_over || readPage(m_rows <= kLaterPage ? kLaterPage : kFirstPage);
}

// The rows below the last one read (after), ordered from the end; BillNo is ordered as a text
// with a missing one first, the same on both engines.
QString StatementListFromEnd::pageSql(bool after) const {
    QString inner =
        QStringLiteral("SELECT BillDate, BillNo, CCode, NumBill, TotAmount, TotVat, rowid AS rid, "
                       "COALESCE(BillNo, '') AS bno FROM master WHERE billdate BETWEEN ? AND ?") +
        traderCondition(m_traderCode, QStringLiteral("master")) + QStringLiteral(" AND rowid <= ?");
    if (after)
        inner += QStringLiteral(" AND (BillDate < ? OR (BillDate = ? AND (COALESCE(BillNo, '') < ? OR "
                                "(COALESCE(BillNo, '') = ? AND rowid < ?))))");
    inner += QStringLiteral(" ORDER BY BillDate DESC, bno DESC, rid DESC LIMIT ?");
    return QStringLiteral("SELECT m.BillDate, trader.C_Name, m.NumBill, m.TotAmount + m.TotVat, m.BillNo, "
                          "m.CCode, m.rid, m.bno FROM (") +
           inner + QStringLiteral(") m LEFT JOIN ") + kBasicAlias +
           QStringLiteral(
               ".Trader ON m.CCode = trader.code ORDER BY m.BillDate DESC, m.bno DESC, m.rid DESC");
}

QVariantList StatementListFromEnd::pageValues(bool after, int limit) const {
    // Below the last date read the page needs no later dates: the date index starts there.
    QVariantList values{m_from, after ? m_keyDate : QVariant(m_to)};
    if (!m_traderCode.isEmpty()) values << m_traderCode;
    values << m_lastRowNumber;
    if (after) values << m_keyDate << m_keyDate << m_keyBillNo << m_keyBillNo << m_keyRow;
    values << limit;
    return values;
}

bool StatementListFromEnd::attachBasic(const QString& sql, const QVariantList& values) {
    return AttachForQuery(m_bill, m_basicFile, kBasicAlias, sql, values);
}

// Runs one statement (the basic file attached), its rows into m_page, each `stride` values apart
// (the statement's width when 0 or narrower; the values after a row's own stay empty).
bool StatementListFromEnd::runStatement(const QString& sql, const QVariantList& values, size_t stride) {
    m_page.clear();
    m_next = 0;
    bool ok = false;
    if (SqliteRows::canStep(m_bill.connection())) {
        SqliteStatement statement(m_bill.connection(), sql, values);
        const int width = statement.width();
        stride = std::max(stride, size_t(std::max(width, 1)));
        // The short list is at most a later page and one row more: room made once.
        if (stride > size_t(width)) m_page.reserve(size_t(kLaterPage + 2) * stride);
        // Each row stepped straight into its place.
        while (statement.ok()) {
            const size_t base = m_page.size();
            m_page.resize(base + stride);
            if (!statement.next(&m_page[base], width)) {
                m_page.resize(base);
                break;
            }
        }
        statement.finish();
        ok = statement.ok();
        if (!ok)
            ReportQueryFailure(errorNumberFor(statement.engineText(), statement.engineCode()),
                               statement.engineText(), sqlForDisplay(sql, values), statement.engineCode());
    } else if (m_bill.onServer()) {
        // Straight from the server's answer, in one round trip, past the driver.
        int width = 0;
        ok = m_bill.readRowsOnServer(sql, values, m_page, &width);
        if (ok) spreadRows(m_page, size_t(width), stride);
        if (!ok)
            ReportQueryFailure(m_bill.lastErrorNumber(), m_bill.lastErrorDescription(),
                               sqlForDisplay(sql, values), m_bill.lastEngineCode());
    } else {
        QSqlQuery query(m_bill.connection());
        ok = OpenForwardOnly(m_bill, query, sql, values);
        const int width = ok ? query.record().count() : 0;
        while (ok && query.next()) {
            for (int c = 0; c < width; ++c)
                m_page.push_back(query.value(c));
            for (size_t c = size_t(width); c < stride; ++c)
                m_page.emplace_back();
        }
        query.finish();
    } // the statement has ended here
    return ok;
}

// The next page from the end (the basic file attached by the caller): its rows into m_page and
// where the page after it starts.
bool StatementListFromEnd::readPage(int limit) {
    if (!runStatement(pageSql(m_hasKey), pageValues(m_hasKey, limit))) return false;
    constexpr size_t rowWidth = kColumns + kKeyColumns;
    if (m_page.size() < rowWidth) { // the rows counted went meanwhile
        m_page.clear();
        m_over = true;
        return true;
    }
    const size_t last = m_page.size() - rowWidth;
    m_keyDate = m_page[last];
    m_keyBillNo = m_page[last + kColumns + 1];
    m_keyRow = m_page[last + kColumns];
    m_hasKey = true;
    return true;
}

bool StatementListFromEnd::readLaterPage() {
    const QString sql = pageSql(true);
    const QVariantList values = pageValues(true, kLaterPage);
    if (!attachBasic(sql, values)) return false;
    const bool ok = readPage(kLaterPage);
    m_bill.detach(kBasicAlias);
    return ok;
}

bool StatementListFromEnd::next(QVariant* out, int count) {
    const size_t rowWidth = m_whole ? shortStride() : kColumns + kKeyColumns;
    if (m_next >= m_page.size() && !m_over && m_left > 0 && !readLaterPage())
        m_over = true; // a failure was shown; the rows not read stay empty
    if (m_over || m_left <= 0 || m_next >= m_page.size()) {
        m_page.clear();
        m_over = true;
        return false;
    }
    for (int c = 0; c < count && c < kColumns; ++c)
        out[c] = std::move(m_page[m_next + size_t(c)]);
    m_next += rowWidth;
    --m_left;
    return true;
}

} // namespace nb
