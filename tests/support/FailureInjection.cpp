#include "FailureInjection.h"

#include "storage/Database.h"

#include <cstdio>

namespace nb::test {
namespace {

const char* changeWord(Change change) {
    switch (change) {
    case Change::Insert:
        return "INSERT";
    case Change::Update:
        return "UPDATE";
    case Change::Delete:
        return "DELETE";
    }
    return "INSERT";
}

// Statements without values run as they are on both engines (the server prepares none of
// these); a refusal prints the engine's words for the test's log.
bool runAll(Database& db, const QStringList& statements) {
    for (const QString& sql : statements) {
        if (db.tryExecute(sql)) continue;
        std::fprintf(stderr, "failure injection: %s: %s\n", qPrintable(sql),
                     qPrintable(db.lastErrorDescription()));
        return false;
    }
    return true;
}

QString functionOf(const QString& name) {
    return QStringLiteral("nb_refuse_") + name;
}

QStringList onFiles(const RefusedWrite& what, const QString& name) {
    const QString when =
        what.condition.isEmpty() ? QString() : QStringLiteral(" WHEN (") + what.condition + u')';
    const QString raise = what.refusal == Refusal::Fails ? QStringLiteral("RAISE(ABORT, 'refused')")
                                                         : QStringLiteral("RAISE(IGNORE)");
    return {QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3%4 BEGIN SELECT %5; END")
                .arg(name, QLatin1String(changeWord(what.change)), what.table, when, raise)};
}

// A row trigger that returns no row makes the server pass over the row, as RAISE(IGNORE) does.
QStringList onServer(const RefusedWrite& what, const QString& name) {
    const QString when =
        what.condition.isEmpty() ? QString() : QStringLiteral(" WHEN (") + what.condition + u')';
    const QString body = what.refusal == Refusal::Fails ? QStringLiteral("RAISE EXCEPTION 'refused'")
                                                        : QStringLiteral("RETURN NULL");
    return {QStringLiteral("CREATE FUNCTION %1() RETURNS trigger LANGUAGE plpgsql AS $$BEGIN %2; END$$")
                .arg(functionOf(name), body),
            QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3 FOR EACH ROW%4 EXECUTE FUNCTION %5()")
                .arg(name, QLatin1String(changeWord(what.change)), what.table, when, functionOf(name))};
}

} // namespace

bool refuseWrites(Database& db, const RefusedWrite& what, const QString& name) {
    return runAll(db, db.onServer() ? onServer(what, name) : onFiles(what, name));
}

bool allowWrites(Database& db, const QString& name) {
    // The server's trigger goes with its function.
    return runAll(db, {db.onServer() ? QStringLiteral("DROP FUNCTION %1() CASCADE").arg(functionOf(name))
                                     : QStringLiteral("DROP TRIGGER %1").arg(name)});
}

bool hideTable(Database& db, const QString& table) {
    return runAll(db, {QStringLiteral("ALTER TABLE %1 RENAME TO %1_gone").arg(table)});
}

bool restoreTable(Database& db, const QString& table) {
    return runAll(db, {QStringLiteral("ALTER TABLE %1_gone RENAME TO %1").arg(table)});
}

bool dropColumn(Database& db, const QString& table, const QString& column) {
    return runAll(db, {QStringLiteral("ALTER TABLE %1 DROP COLUMN %2").arg(table, column)});
}

} // namespace nb::test
