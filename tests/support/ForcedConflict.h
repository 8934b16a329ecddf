#pragma once
// A store that breaks off a save the way the server does when two seats' saves cross: the rows
// of one kind of change on one table fail, the first `times` of them after `after` have passed,
// with the server's "serialization failure" (40001) or "deadlock" (40P01). The count outlives
// the rollbacks of the saves it broke off, so a test can tell how many tries a save took.
//
// On the server a trigger function raises the SQLSTATE and counts in a sequence, which a
// rollback does not take back. On the store files, where no save is ever tried twice, a
// temporary trigger on the program's own connection calls a function of the test that fails
// the row as a busy store does (SQLITE_BUSY), so both engines give the same box.

#include <QString>
#include <memory>

namespace nb {
class Database;
}

namespace nb::test {

struct ConflictPlan {
    QString table;                              // as the program names it: "NewAcount"
    QString change = QStringLiteral("INSERT");  // INSERT, UPDATE or DELETE
    int after = 0;                              // rows let through first
    int times = 1;                              // then this many fail; -1: every one after
    QString sqlState = QStringLiteral("40001"); // on the server: 40001 or 40P01 (or any other)
};

class ForcedConflict {
public:
    // Installed on the store `db` is connected to (its schema on the server); removed again by
    // the destructor. A failure to install ends the test with QFAIL-like output (installed()).
    ForcedConflict(Database& db, const ConflictPlan& plan);
    ~ForcedConflict();
    ForcedConflict(const ForcedConflict&) = delete;
    ForcedConflict& operator=(const ForcedConflict&) = delete;

    bool installed() const { return m_installed; }
    // Rows that came to the trap, failed or let through.
    int reached() const;
    // Rows the trap failed.
    int raised() const;

private:
    bool installOnServer();
    bool installOnFiles();
    Database& m_db;
    ConflictPlan m_plan;
    QString m_name; // the trigger's (and on the server its function's and sequence's) name
    bool m_onServer = false;
    QString m_schema;   // the store's schema on the server
    QString m_database; // the test's database on the server
    int m_fileTrap = -1;
    bool m_installed = false;
};

} // namespace nb::test
