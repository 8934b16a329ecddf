#pragma once
// The statement list of a date range read from its end, for the screen that stands on the empty
// row after the last statement. A short list (no more statements than a later page holds) is
// read whole by one statement in the list's order, its count and sums added up from the rows
// read. A longer one: one statement counts the rows and adds up their statements' lines and
// totals, then the rows come last first, a page at a time, each page a statement of its own
// (the basic file attached only while it runs, so nothing stays open on the store between
// pages). Rows written after the count (a statement saved meanwhile) are not read; the screen
// shows its own new ones itself.
//
// The rows and their order are those of statementListRowsSql (BillDate, BillNo, and the order
// the rows were written where those are equal), the columns BillDate, C_Name, NumBill,
// TotAmount + TotVat, BillNo, CCode.

#include "common/grid/GridRows.h"
#include "storage/Database.h"

#include <vector>

namespace nb {

// Rows of `width` values (the list's six columns, the row number at rowColumn, by default the
// last) into the list's order: by BillDate, BillNo (a missing one first, as an empty one) and row
// number.
void putInListOrder(std::vector<QVariant>& rows, size_t width);
void putInListOrder(std::vector<QVariant>& rows, size_t width, size_t rowColumn);

class StatementListFromEnd : public GridRowSource {
public:
    StatementListFromEnd(Database& bill, const QString& basicFile, const QString& from, const QString& to,
                         const QString& traderCode);
    // How many values a row of the list that takes these rows holds (before open): a short list
    // is read straight into rows of that width and handed over whole (takeRowsAtHand).
    void setListWidth(int width) { m_listWidth = width; }

    // The count and the sums; false when the query failed (its box shown).
    bool open();
    int rows() const { return m_rows; }
    // Whether the rows come last first (a long list), or in the list's order (a short one, read).
    bool fromEnd() const { return !m_whole; }
    double lines() const { return m_lines; }
    double total() const { return m_total; }

    int width() const override { return kColumns; }
    bool next(QVariant* out, int count) override;
    int rowsAtHand() const override { return m_whole ? m_left : 0; }
    bool takeRowsAtHand(std::vector<QVariant>& block, int width) override;
    // Not in the middle of a save on the store: its files cannot be attached then.
    bool canReadNow() const override { return !m_bill.inTransaction(); }

    // Rows a page holds: the first, which the screen shows at once, and the later ones (a list
    // of no more than one of those comes whole at once).
    static constexpr int kFirstPage = 200;
    static constexpr int kLaterPage = 2000;

private:
    static constexpr int kColumns = 6;
    static constexpr int kShortWidth = kColumns + 1; // the short list's rows carry their row number
    static constexpr int kKeyColumns = 2;            // the row's number and its BillNo as ordered
    bool attachBasic(const QString& sql, const QVariantList& values);
    QString shortListSql() const;
    QVariantList shortListValues() const;
    bool readShortList(const QString& sql, const QVariantList& values, bool* isShort);
    bool countFromEnd();
    QString dateAndTraderCondition(const QString& table) const;
    bool runStatement(const QString& sql, const QVariantList& values, size_t stride = 0);
    size_t shortStride() const;
    bool readPage(int limit);
    bool readLaterPage();
    QString pageSql(bool after) const;
    QVariantList pageValues(bool after, int limit) const;

    Database& m_bill;
    QString m_basicFile, m_from, m_to, m_traderCode;
    int m_listWidth = 0;
    int m_rows = 0;
    double m_lines = 0;
    double m_total = 0;
    QVariant m_lastRowNumber; // the highest row number counted: rows written later are not read
    int m_left = 0;           // rows the count promised and the pages have not brought yet
    bool m_over = false;
    bool m_whole = false; // the short list, read whole in its order
    // The page read and not handed out yet, kColumns + kKeyColumns values a row (shortStride()
    // for the short list).
    std::vector<QVariant> m_page;
    size_t m_next = 0;
    // Where the next page starts: below this BillDate, ordered BillNo and row number.
    QVariant m_keyDate, m_keyBillNo, m_keyRow;
    bool m_hasKey = false;
};

} // namespace nb
