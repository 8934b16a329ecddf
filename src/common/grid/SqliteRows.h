#pragma once
// The rows of one statement stepped through SQLite's own interface on the handle of a Qt
// connection, for the lists that read many rows at once. Each value is made once, straight
// from the engine's row: a text from its UTF-8 bytes, an integer as qlonglong, a real as double,
// a null as a null text, a blob as bytes (the values Qt's SQLite driver gives, without its
// record and cache around every value).
//
// Only for a connection whose driver is SQLite (canStep); any other engine keeps QueryRows.

#include "common/grid/GridRows.h"

#include <QSqlDatabase>
#include <QString>
#include <QVariantList>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;
struct sqlite3_value;

namespace nb {

// One prepared statement and what became of it. The list owns the rows; whoever ran the
// statement may keep this to end it (before letting an attached file go) and to ask how it
// went after the rows were read.
class SqliteStatement {
public:
    SqliteStatement(const QSqlDatabase& db, const QString& sql, const QVariantList& values);
    // Prepared only, and kept: run by rerun, reset instead of let go when its rows are through.
    SqliteStatement(const QSqlDatabase& db, const QString& sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    // False when preparing, binding or a step failed; then the engine's code and words.
    bool ok() const { return m_code == 0; }
    int engineCode() const { return m_code; }
    QString engineText() const { return m_text; }
    // Lets go of the statement; rows not read yet are dropped. A kept one is reset instead.
    void finish();
    // A kept statement from its first row again, with these values; false when it cannot run.
    bool rerun(const QVariantList& values);
    // How many times it was run: the rows of an earlier run end when it runs again.
    int runs() const { return m_runs; }
    // Whether it was let go of with its connection (letGoOf): it gives no row, and a kept one
    // is prepared again on the connection opened after.
    bool released() const { return m_released; }
    // Lets go of every statement prepared on the connection's handle, before the connection
    // closes: a statement left prepared would keep the closed store's file open.
    static void letGoOf(const QSqlDatabase& db);

    int width() const { return m_width; }
    bool next(QVariant* out, int count);
    // The row stepped to last (next with no values asked for), for whoever reads its columns
    // through the engine's own interface; null once the rows are through.
    sqlite3_stmt* row() const { return m_through ? nullptr : m_stmt; }

private:
    bool prepare(const QString& sql);
    void release();
    void fail(int code);
    bool bind(const QVariantList& values);
    QVariant text(int column, sqlite3_value* value);

    struct LastText {
        static constexpr int kTrial = 64; // rows a column is compared on before it is judged
        std::string bytes;
        QVariant value;
        int tries = 0;
        int repeats = 0;
    };
    std::vector<LastText> m_lastTexts;

    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_stmt = nullptr;
    bool m_kept = false;
    bool m_through = false; // a kept statement's rows are through (or it failed) until rerun
    bool m_released = false;
    int m_runs = 1;
    int m_width = 0;
    int m_code = 0;
    QString m_text;
};

class SqliteRows : public GridRowSource {
public:
    // Whether the connection is SQLite's (by its driver's name) with its engine handle at hand.
    static bool canStep(const QSqlDatabase& db);

    SqliteRows(const QSqlDatabase& db, const QString& sql, const QVariantList& values);
    // The rows of a statement run already (a kept one, rerun).
    explicit SqliteRows(std::shared_ptr<SqliteStatement> statement)
        : m_statement(std::move(statement)), m_run(m_statement->runs()) {}
    // A list lets go of its rows when it has read the rows it counted, without stepping past the
    // last: a kept statement is reset then, so it holds no read of the store.
    ~SqliteRows() override;
    SqliteRows(const SqliteRows&) = delete;
    SqliteRows& operator=(const SqliteRows&) = delete;
    int width() const override { return m_statement->width(); }
    bool next(QVariant* out, int count) override {
        return m_statement->runs() == m_run && m_statement->next(out, count);
    }
    const std::shared_ptr<SqliteStatement>& statement() const { return m_statement; }
    // What a count beforehand said the statement gives, for the room the list makes.
    void expectRows(int rows) { m_expected = rows; }
    int expectedRows() const override { return m_expected; }

private:
    std::shared_ptr<SqliteStatement> m_statement;
    int m_run = 0; // the run of the statement these rows are, when kept
    int m_expected = -1;
};

// The statements a search screen runs again and again, each kept prepared on its connection
// while the screen lives: a search then binds its values and steps instead of preparing anew.
// The screen lets them go (clear, or its end); a connection that closes first lets go of them
// itself, and the next run prepares them anew. A list still reading one of them stops where it
// is when the same statement runs again.
class KeptStatements {
public:
    // The statement for sql on db (prepared the first time), run with values; check ok() (a
    // failed one is not kept). Null when db is not SQLite's.
    std::shared_ptr<SqliteStatement> run(const QSqlDatabase& db, const QString& sql,
                                         const QVariantList& values);
    void clear() { m_kept.clear(); }
    int size() const { return int(m_kept.size()); }

private:
    std::map<std::pair<sqlite3*, QString>, std::shared_ptr<SqliteStatement>> m_kept;
};

} // namespace nb
