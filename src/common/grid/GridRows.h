#pragma once
// Where the rows of a list grid come from: one row of values at a time, in the list's order.
// A query's rows are read straight from the engine (QueryRows); tests and small lists hand
// their rows over in memory (RowsInMemory).

#include <QSqlQuery>
#include <QVariant>
#include <QVector>
#include <memory>
#include <vector>

namespace nb {

class GridRowSource {
public:
    virtual ~GridRowSource() = default;
    // How many values each row carries (the query's columns).
    virtual int width() const = 0;
    // Writes the next row's values into out[0 .. count-1] (count is at most width()); false
    // when the rows are through.
    virtual bool next(QVariant* out, int count) = 0;
    // About how many rows will come, when the source knows (-1 when not): room is made once.
    virtual int expectedRows() const { return -1; }
    // Rows the source already holds in memory: the list takes them at once instead of a page
    // now and the rest between events.
    virtual int rowsAtHand() const { return 0; }
    // Hands every row at hand over at once, already laid out as rows of `width` values (the
    // list's own width, the columns after the source's empty), by swapping them into block:
    // the list then moves no value. False when the source cannot (the list reads row by row).
    virtual bool takeRowsAtHand(std::vector<QVariant>& block, int width) {
        (void)block;
        (void)width;
        return false;
    }
    // Whether the rows may be read between events now (a source on a store in the middle of a
    // save waits for it to end).
    virtual bool canReadNow() const { return true; }
};

// The rows of an executed query, read forward as the list asks for them. Set the query
// forward-only before it runs: nothing is cached twice.
class QueryRows : public GridRowSource {
public:
    explicit QueryRows(std::unique_ptr<QSqlQuery> query);
    // A query the caller keeps: the list must be read through (finishReading) while it lives.
    explicit QueryRows(QSqlQuery& query);
    int width() const override { return m_width; }
    bool next(QVariant* out, int count) override;

private:
    std::unique_ptr<QSqlQuery> m_owned;
    QSqlQuery* m_query = nullptr;
    int m_width = 0;
};

class RowsInMemory : public GridRowSource {
public:
    explicit RowsInMemory(QVector<QVariantList> rows, int width = -1);
    int width() const override { return m_width; }
    bool next(QVariant* out, int count) override;

private:
    QVector<QVariantList> m_rows;
    int m_width = 0;
    int m_next = 0;
};

} // namespace nb
