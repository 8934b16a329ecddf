#include "ForcedConflict.h"

#include "ServerDatabase.h"
#include "storage/Database.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>
#include <cstdio>
#include <map>
#include <sqlite3.h>

namespace nb::test {
namespace {

int nextTrapNumber() {
    static std::atomic<int> count{0};
    return ++count;
}

bool fails(int reached, int after, int times) {
    return reached > after && (times < 0 || reached <= after + times);
}

// ---- files ------------------------------------------------------------------------------

struct FileTrap {
    int after = 0;
    int times = 1;
    int reached = 0;
};

std::map<int, FileTrap>& fileTraps() {
    static std::map<int, FileTrap> traps;
    return traps;
}

void fileTrapFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
    const auto trap = fileTraps().find(sqlite3_value_int(arguments[0]));
    if (trap == fileTraps().end()) {
        sqlite3_result_null(context);
        return;
    }
    FileTrap& t = trap->second;
    if (fails(++t.reached, t.after, t.times)) {
        sqlite3_result_error(context, "database is locked (a conflict forced by the test)", -1);
        sqlite3_result_error_code(context, SQLITE_BUSY);
        return;
    }
    sqlite3_result_null(context);
}

sqlite3* fileHandle(const Database& db) {
    const QVariant handle = db.connection().driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    return *static_cast<sqlite3* const*>(handle.data());
}

bool runOn(const Database& db, const QString& sql) {
    QSqlQuery q(db.connection());
    if (q.exec(sql)) return true;
    std::fprintf(stderr, "forced conflict: %s: %s\n", qPrintable(sql), qPrintable(q.lastError().text()));
    return false;
}

// ---- server -----------------------------------------------------------------------------

QString currentDatabase(const Database& db) {
    QSqlQuery q(db.connection());
    return q.exec(QStringLiteral("SELECT current_database()")) && q.next() ? q.value(0).toString()
                                                                           : QString();
}

} // namespace

ForcedConflict::ForcedConflict(Database& db, const ConflictPlan& plan) : m_db(db), m_plan(plan) {
    m_name = QStringLiteral("nb_conflict_%1").arg(nextTrapNumber());
    m_onServer = m_db.onServer();
    m_schema = m_db.serverSchema();
    m_installed = m_db.isOpen() && (m_onServer ? installOnServer() : installOnFiles());
}

bool ForcedConflict::installOnServer() {
    m_database = currentDatabase(m_db);
    const QString& db = m_database;
    if (db.isEmpty()) return false;
    const QString function = QStringLiteral("public.") + m_name;
    const QString sequence = function + QStringLiteral("_count");
    const QString body =
        QStringLiteral("CREATE FUNCTION %1() RETURNS trigger LANGUAGE plpgsql AS $$ "
                       "DECLARE n bigint := nextval('%2'); BEGIN "
                       "IF n > %3 AND (%4 < 0 OR n <= %3 + %4) THEN "
                       "RAISE EXCEPTION 'could not serialize access (a conflict forced by the test)' "
                       "USING ERRCODE = '%5'; END IF; "
                       "IF TG_OP = 'DELETE' THEN RETURN OLD; END IF; RETURN NEW; END $$")
            .arg(function, sequence)
            .arg(m_plan.after)
            .arg(m_plan.times)
            .arg(m_plan.sqlState);
    const QString trigger =
        QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3.\"%4\" FOR EACH ROW EXECUTE FUNCTION %5()")
            .arg(m_name, m_plan.change, m_schema, m_plan.table.toLower(), function);
    // A statement without rows answers no value: what was made is looked up afterwards.
    for (const QString& sql : {QStringLiteral("CREATE SEQUENCE ") + sequence, body, trigger})
        clusterScalar(sql, db);
    const QVariant made = clusterScalar(
        QStringLiteral("SELECT count(*) FROM pg_catalog.pg_trigger WHERE tgname = ?"), db, {m_name});
    return made.toInt() == 1;
}

bool ForcedConflict::installOnFiles() {
    sqlite3* handle = fileHandle(m_db);
    if (!handle || sqlite3_create_function_v2(handle, "nb_forced_conflict", 1, SQLITE_UTF8, nullptr,
                                              fileTrapFunction, nullptr, nullptr, nullptr) != SQLITE_OK)
        return false;
    m_fileTrap = int(fileTraps().size()) + 1;
    while (fileTraps().count(m_fileTrap))
        ++m_fileTrap;
    fileTraps()[m_fileTrap] = {m_plan.after, m_plan.times, 0};
    return runOn(m_db, QStringLiteral("CREATE TEMP TRIGGER %1 BEFORE %2 ON main.\"%3\" BEGIN SELECT "
                                      "nb_forced_conflict(%4); END")
                           .arg(m_name, m_plan.change, m_plan.table)
                           .arg(m_fileTrap));
}

ForcedConflict::~ForcedConflict() {
    if (!m_installed) return;
    if (m_onServer) {
        const QString& db = m_database;
        const QString function = QStringLiteral("public.") + m_name;
        clusterScalar(QStringLiteral("DROP TRIGGER IF EXISTS %1 ON %2.\"%3\"")
                          .arg(m_name, m_schema, m_plan.table.toLower()),
                      db);
        clusterScalar(QStringLiteral("DROP FUNCTION IF EXISTS ") + function + QStringLiteral("()"), db);
        clusterScalar(QStringLiteral("DROP SEQUENCE IF EXISTS ") + function + QStringLiteral("_count"), db);
    } else {
        if (m_db.isOpen()) runOn(m_db, QStringLiteral("DROP TRIGGER IF EXISTS temp.") + m_name);
        fileTraps().erase(m_fileTrap);
    }
}

int ForcedConflict::reached() const {
    if (!m_installed) return 0;
    if (!m_onServer) {
        const auto trap = fileTraps().find(m_fileTrap);
        return trap == fileTraps().end() ? 0 : trap->second.reached;
    }
    return clusterScalar(
               QStringLiteral("SELECT CASE WHEN is_called THEN last_value ELSE 0 END FROM public.") + m_name +
                   QStringLiteral("_count"),
               m_database)
        .toInt();
}

int ForcedConflict::raised() const {
    const int passed = qMax(0, reached() - m_plan.after);
    return m_plan.times < 0 ? passed : qMin(passed, m_plan.times);
}

} // namespace nb::test
