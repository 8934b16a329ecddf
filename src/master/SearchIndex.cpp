#include "master/SearchIndex.h"

#include "core/Lifecycle.h"
#include "storage/ServerSearchPieces.h"

#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

namespace nb {
namespace {

// Files whose indexes were checked in this run, by path and index name.
QSet<QString>& readyIndexes() {
    static QSet<QString> ready;
    static const bool hooked = [] {
        registerResetHook([] { readyIndexes().clear(); });
        return true;
    }();
    Q_UNUSED(hooked);
    return ready;
}

QString readyKey(const Database& db, const SearchIndexDef& def) {
    return db.path() + u'|' + def.index;
}

bool run(Database& db, const QString& sql) {
    QSqlQuery q(db.connection());
    return q.exec(sql);
}

QString prefixed(const QString& prefix, const QStringList& columns) {
    QStringList out;
    for (const QString& c : columns)
        out << prefix + c;
    return out.join(QStringLiteral(", "));
}

QString triggerName(const SearchIndexDef& def, const char* suffix) {
    return def.index + QLatin1String(suffix);
}

// Texts of one and two characters cannot use the trigram index; every one- and two-character
// piece of each column stands in a table of its own beside it, kept by the same triggers.
QString gramsTable(const SearchIndexDef& def) {
    return def.index + QStringLiteral("_grams");
}
const QString kNumbers = QStringLiteral("nb_numbers"); // 1..255: the positions in a text

// The pieces of one column of one row (`row` is "new" in a trigger, the table in a bulk load),
// lower-cased as LIKE compares Latin letters.
QString gramsOf(const SearchIndexDef& def, int column, const QString& row, const QString& rowid) {
    const QString c = row + u'.' + def.columns.at(column);
    return QStringLiteral("SELECT lower(substr(%1, n, 1)), %2, %3 FROM %4, %5 WHERE n <= length(%1) "
                          "UNION SELECT lower(substr(%1, n, 2)), %2, %3 FROM %4, %5 WHERE n < length(%1)")
        .arg(c)
        .arg(column)
        .arg(rowid, kNumbers, row == u"new" ? QStringLiteral("(SELECT 1)") : row);
}

QString insertGrams(const SearchIndexDef& def, const QString& row, const QString& rowid) {
    QString sql;
    for (int c = 0; c < def.columns.size(); ++c)
        sql += QStringLiteral("INSERT OR IGNORE INTO %1(gram, col, rid) %2; ")
                   .arg(gramsTable(def), gramsOf(def, c, row, rowid));
    return sql;
}

QStringList gramTables(const SearchIndexDef& def) {
    QStringList statements{
        QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (n INTEGER PRIMARY KEY)").arg(kNumbers),
        QStringLiteral("INSERT OR IGNORE INTO %1(n) WITH RECURSIVE k(n) AS (SELECT 1 UNION ALL SELECT n + 1 "
                       "FROM k WHERE n < 255) SELECT n FROM k")
            .arg(kNumbers),
        QStringLiteral("CREATE TABLE %1 (gram TEXT NOT NULL, col INTEGER NOT NULL, rid INTEGER NOT NULL, "
                       "PRIMARY KEY (gram, col, rid)) WITHOUT ROWID")
            .arg(gramsTable(def)),
        QStringLiteral("CREATE INDEX %1_rid ON %1 (rid)").arg(gramsTable(def))};
    for (const QString& sql : insertGrams(def, def.table, def.table + QStringLiteral(".rowid"))
                                  .split(QStringLiteral("; "), Qt::SkipEmptyParts))
        statements << sql;
    return statements;
}

QStringList triggerStatements(const SearchIndexDef& def) {
    const QString cols = def.columns.join(QStringLiteral(", "));
    const QString insert = QStringLiteral("INSERT INTO %1(rowid, %2) VALUES (new.rowid, %3); ")
                               .arg(def.index, cols, prefixed(QStringLiteral("new."), def.columns)) +
                           insertGrams(def, QStringLiteral("new"), QStringLiteral("new.rowid"));
    const QString remove =
        QStringLiteral("DELETE FROM %1 WHERE rowid = old.rowid; DELETE FROM %2 WHERE rid = old.rowid; ")
            .arg(def.index, gramsTable(def));
    return {QStringLiteral("CREATE TRIGGER IF NOT EXISTS %1 AFTER INSERT ON %2 BEGIN %3END")
                .arg(triggerName(def, "_ai"), def.table, insert),
            QStringLiteral("CREATE TRIGGER IF NOT EXISTS %1 AFTER DELETE ON %2 BEGIN %3END")
                .arg(triggerName(def, "_ad"), def.table, remove),
            QStringLiteral("CREATE TRIGGER IF NOT EXISTS %1 AFTER UPDATE OF %2 ON %3 BEGIN %4%5END")
                .arg(triggerName(def, "_au"), cols, def.table, remove, insert)};
}

QStringList buildStatements(const SearchIndexDef& def) {
    const QString cols = def.columns.join(QStringLiteral(", "));
    QStringList statements{
        QStringLiteral("CREATE VIRTUAL TABLE %1 USING fts5(%2, tokenize = 'trigram')").arg(def.index, cols),
        QStringLiteral("INSERT INTO %1(rowid, %2) SELECT rowid, %2 FROM %3").arg(def.index, cols, def.table)};
    return statements << gramTables(def);
}

bool createIndex(Database& db, const SearchIndexDef& def) {
    QStringList statements = buildStatements(def);
    statements << triggerStatements(def);
    if (!db.beginTransaction()) return false;
    for (const QString& sql : statements) {
        if (!run(db, sql)) {
            db.rollback();
            return false;
        }
    }
    return db.commit();
}

// True when every row of the table stands in the index with the same texts, and no more.
bool indexMatchesTable(Database& db, const SearchIndexDef& def) {
    QStringList differs;
    for (const QString& c : def.columns)
        differs << QStringLiteral("s.%1 IS NOT t.%1").arg(c);
    const QString sql =
        QStringLiteral("SELECT (SELECT count(*) FROM %1) = (SELECT count(*) FROM %2) AND NOT EXISTS "
                       "(SELECT 1 FROM %1 t LEFT JOIN %2 s ON s.rowid = t.rowid WHERE s.rowid IS NULL OR %3)")
            .arg(def.table, def.index, differs.join(QStringLiteral(" OR ")));
    QSqlQuery q(db.connection());
    return q.exec(sql) && q.next() && q.value(0).toInt() == 1;
}

bool hasAllTriggers(Database& db, const SearchIndexDef& def) {
    QSqlQuery q(db.connection());
    q.prepare(
        QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'trigger' AND name IN (?, ?, ?)"));
    q.addBindValue(triggerName(def, "_ai"));
    q.addBindValue(triggerName(def, "_ad"));
    q.addBindValue(triggerName(def, "_au"));
    return q.exec() && q.next() && q.value(0).toInt() == 3;
}

QString matchPhrase(const QString& text, const QStringList& columns) {
    QString phrase = text;
    phrase.replace(u'"', QStringLiteral("\"\""));
    return u'{' + columns.join(u' ') + QStringLiteral("} : \"") + phrase + u'"';
}

// The pieces just filled vacuumed and their statistics taken, as the server's upkeep would leave
// them a minute or so later: a short text's count then reads the pieces' index alone, where on
// pages not yet marked visible to all it reads the table's rows too (5 to 10 ms of every
// search instead of about 1). Upkeep only: the pieces stand whole whether it runs or not, and
// inside a caller's transaction it cannot run.
void settleServerPieces(Database& db, const QString& pieces) {
    if (db.inTransaction()) return;
    run(db, QStringLiteral("VACUUM (ANALYZE) %1").arg(pieces));
}

// On the server: the table's pieces (ServerSearchPieces.h) made and filled at the first short
// search of the store, in one transaction begun as a write, so two seats never build them at
// once. Texts of three characters and more use the server's trigram indexes.
bool ensureServerPieces(Database& db, const SearchIndexDef& def) {
    const QString pieces = serverPiecesTable(def.table);
    if (pieces.isEmpty()) return true;
    if (db.hasTable(pieces) && db.hasTrigger(serverPiecesTrigger(def.table))) return true;
    if (!db.beginTransaction()) return false;
    // What already stands is kept without a notice to the log. The commit waits for the server's
    // log to be written even where the server does not wait by default: a vacuum marks no row
    // visible to all whose commit is not yet written.
    const QStringList statements = QStringList{QStringLiteral("SET LOCAL client_min_messages TO warning"),
                                               QStringLiteral("SET LOCAL synchronous_commit TO on")} +
                                   serverPiecesStatements(def.table) + serverPiecesFillStatements(def.table);
    for (const QString& sql : statements) {
        if (!db.tryExecute(sql)) {
            db.rollback();
            return false;
        }
    }
    if (!db.commit()) return false;
    settleServerPieces(db, pieces);
    return true;
}

} // namespace

QStringList SearchIndexBuildStatements(const SearchIndexDef& def) {
    return buildStatements(def);
}

IndexWalk SearchIndexWalk(const SearchIndexDef& def, const QString& text) {
    if (UsesTrigramIndex(text))
        return {def.index, def.index + QStringLiteral(".rowid"), def.index + QStringLiteral(" MATCH ?"),
                matchPhrase(text, {def.columns.first()})};
    // The pieces' key (gram, col, rid) hands the rows over in their order.
    return {gramsTable(def) + QStringLiteral(" g"), QStringLiteral("g.rid"),
            QStringLiteral("g.gram = lower(?) AND g.col = 0"), text};
}

const SearchIndexDef& TraderSearchIndex() {
    static const SearchIndexDef def{
        QStringLiteral("Trader"),
        QStringLiteral("Trader_search"),
        {QStringLiteral("C_Name"), QStringLiteral("Phone"), QStringLiteral("Addr2")}};
    return def;
}

const SearchIndexDef& PostSearchIndex() {
    static const SearchIndexDef def{QStringLiteral("Post"),
                                    QStringLiteral("Post_search"),
                                    {QStringLiteral("ZIPCODE"), QStringLiteral("DONG")}};
    return def;
}

bool UsesTrigramIndex(const QString& text) {
    return text.toUcs4().size() >= kTrigramMinChars;
}

bool HasSearchIndex(Database& db, const SearchIndexDef& def) {
    if (db.onServer()) {
        const QString pieces = serverPiecesTable(def.table);
        return !pieces.isEmpty() && db.hasTable(pieces);
    }
    return db.hasTable(def.index);
}

void DropSearchIndex(Database& db, const SearchIndexDef& def) {
    if (db.onServer()) {
        const QString pieces = serverPiecesTable(def.table);
        if (pieces.isEmpty()) return;
        // The trigger goes with its function.
        run(db, QStringLiteral("DROP FUNCTION IF EXISTS %1() CASCADE").arg(serverPiecesTrigger(def.table)));
        run(db, QStringLiteral("DROP TABLE IF EXISTS %1").arg(pieces));
        readyIndexes().remove(readyKey(db, def));
        return;
    }
    for (const char* suffix : {"_ai", "_ad", "_au"})
        run(db, QStringLiteral("DROP TRIGGER IF EXISTS ") + triggerName(def, suffix));
    run(db, QStringLiteral("DROP TABLE IF EXISTS ") + def.index);
    run(db, QStringLiteral("DROP TABLE IF EXISTS ") + gramsTable(def));
    readyIndexes().remove(readyKey(db, def));
}

bool EnsureSearchIndex(Database& db, const SearchIndexDef& def) {
    if (!db.isOpen() || !db.hasTable(def.table)) return false;
    if (db.onServer()) {
        if (!ensureServerPieces(db, def)) return false;
        readyIndexes().insert(readyKey(db, def));
        return true;
    }
    if (HasSearchIndex(db, def) && db.hasTable(gramsTable(def)) && hasAllTriggers(db, def) &&
        indexMatchesTable(db, def)) {
        readyIndexes().insert(readyKey(db, def));
        return true;
    }
    // Missing, or out of step (a file written without the triggers, rows renumbered by a
    // compaction): built again from the table.
    DropSearchIndex(db, def);
    if (!createIndex(db, def)) return false;
    readyIndexes().insert(readyKey(db, def));
    return true;
}

void EnsureSearchIndexes(Database& db) {
    for (const SearchIndexDef* def : {&TraderSearchIndex(), &PostSearchIndex()})
        if (db.isOpen() && db.hasTable(def->table)) EnsureSearchIndex(db, *def);
}

namespace {

// "SELECT rid FROM <pieces> WHERE gram = ? AND col IN (...)": the rows that hold the text as a
// piece of one of the columns.
QString piecesHolding(const QString& pieces, const SearchIndexDef& def, const QStringList& columns) {
    QStringList numbers;
    for (const QString& c : columns)
        numbers << QString::number(def.columns.indexOf(c));
    return QStringLiteral("SELECT rid FROM %1 WHERE gram = ? AND col IN (%2)")
        .arg(pieces, numbers.join(QStringLiteral(", ")));
}

// Past this many pieces a short text is left to the plain statement: looking that many rows up
// one by one took twice as long as reading the whole table.
constexpr int kServerPiecesLookups = 5000;

} // namespace

SqlPart SearchCandidates(Database& db, const SearchIndexDef& def, const QString& text,
                         const QStringList& columns) {
    // The server's ILIKE reads its trigram indexes by itself, and its short texts are narrowed
    // in the list's source (SearchSource).
    if (text.isEmpty() || !db.isOpen() || db.onServer()) return {};
    if (!readyIndexes().contains(readyKey(db, def)) && !EnsureSearchIndex(db, def)) return {};
    if (UsesTrigramIndex(text))
        return {QStringLiteral("%1.rowid IN (SELECT rowid FROM %2 WHERE %2 MATCH ?) AND ")
                    .arg(def.table, def.index),
                {matchPhrase(text, columns)}};
    // The key is folded here as the pieces were (ASCII letters only), so both engines bind the same.
    return {def.table + QStringLiteral(".rowid IN (") + piecesHolding(gramsTable(def), def, columns) +
                QStringLiteral(") AND "),
            {piecesKey(text)}};
}

SqlPart SearchSource(Database& db, const SearchIndexDef& def, const QString& text,
                     const QStringList& columns) {
    const SqlPart whole{def.table, {}};
    const QString pieces = serverPiecesTable(def.table);
    if (text.isEmpty() || !db.isOpen() || !db.onServer() || UsesTrigramIndex(text) || pieces.isEmpty())
        return whole;
    if (!readyIndexes().contains(readyKey(db, def)) && !EnsureSearchIndex(db, def)) return whole;
    // The server guesses few rows for any ILIKE and would read the whole table first: its rows
    // are looked up by the pieces' row numbers instead. A text many traders hold lists many rows
    // anyway, and past some thousands reading the table is quicker than looking each one up. The
    // pieces are counted in the same statement, and of its two branches the server runs only the
    // one the count opens.
    const QString holding = piecesHolding(pieces, def, columns);
    const QString sql =
        QStringLiteral("(WITH held AS (SELECT count(*) AS n FROM (%1 LIMIT %2) s) "
                       "SELECT * FROM %3 WHERE (SELECT n FROM held) > %4 UNION ALL "
                       "SELECT * FROM %3 WHERE (SELECT n FROM held) <= %4 AND rowid = ANY (ARRAY(%1))) %3")
            .arg(holding)
            .arg(kServerPiecesLookups + 1)
            .arg(def.table)
            .arg(kServerPiecesLookups);
    const QString key = piecesKey(text);
    return {sql, {key, key}};
}

} // namespace nb
