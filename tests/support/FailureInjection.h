#pragma once
// A store that refuses what a test wants refused, in the words of whichever engine the test runs
// on: the writes of one kind to a table fail (or pass over their rows without a word), or a
// table is taken away. What the operator then reads is the program's own box for the failure,
// the same on both engines; tests check that box, never the engine's wording.
//
// On the store files a trigger raises (RAISE(ABORT) or RAISE(IGNORE)); on the server a trigger
// function in the store's schema raises an exception or returns no row. Both stay until taken
// away again or the test's store goes.

#include <QString>
#include <utility>

namespace nb {
class Database;
}

namespace nb::test {

enum class Change { Insert, Update, Delete };
enum class Refusal {
    Fails,      // the statement fails: the store refuses the change
    PassesOver, // the statement runs and changes no row
};

struct RefusedWrite {
    RefusedWrite(QString table, Change change, Refusal refusal = Refusal::Fails, QString condition = {})
        : table(std::move(table)), change(change), refusal(refusal), condition(std::move(condition)) {}
    QString table; // as the program names it: "Detail"
    Change change;
    Refusal refusal;
    // Only rows for which this holds, in words both engines read ("new.TaxCode = '100001'");
    // empty: every row.
    QString condition;
};

// Installs the refusal under `name` on the store `db` is connected to; false, with the
// engine's words printed, when the store would not take it.
bool refuseWrites(Database& db, const RefusedWrite& what, const QString& name = QStringLiteral("refused"));
// Takes the refusal of that name away again.
bool allowWrites(Database& db, const QString& name = QStringLiteral("refused"));

// The table taken away under another name (<table>_gone), as a store that lost it: every
// statement naming it fails as on a missing table. restoreTable puts it back.
bool hideTable(Database& db, const QString& table);
bool restoreTable(Database& db, const QString& table);

// A column of a table taken away, as in a store of an older layout.
bool dropColumn(Database& db, const QString& table, const QString& column);

} // namespace nb::test
