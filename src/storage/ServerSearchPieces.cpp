#include "storage/ServerSearchPieces.h"

namespace nb {
namespace {

bool isTrader(const QString& table) {
    return table.compare(QStringLiteral("Trader"), Qt::CaseInsensitive) == 0;
}

// The pieces of the rows `source` gives as (rid, col, v): each one- and two-character cut of v,
// once a row and column. lower() under the byte-order collation folds ASCII letters only, as
// the lists' ILIKE on those columns does.
QString piecesOf(const QString& source) {
    return QStringLiteral(
               "SELECT DISTINCT lower(substr(t.v, n.n, w.k) COLLATE ucs_basic), t.col, t.rid FROM %1 "
               "CROSS JOIN LATERAL generate_series(1, length(t.v)) AS n(n) "
               "CROSS JOIN (VALUES (1), (2)) AS w(k) WHERE n.n + w.k - 1 <= length(t.v)")
        .arg(source);
}

} // namespace

QString serverPiecesTable(const QString& table) {
    return isTrader(table) ? QStringLiteral("trader_search_grams") : QString();
}

QString serverPiecesTrigger(const QString& table) {
    return isTrader(table) ? serverPiecesTable(table) + QStringLiteral("_keep") : QString();
}

QStringList serverPiecesColumns(const QString& table) {
    if (!isTrader(table)) return {};
    return {QStringLiteral("c_name"), QStringLiteral("phone"), QStringLiteral("addr2")};
}

QStringList serverPiecesStatements(const QString& table) {
    const QString pieces = serverPiecesTable(table);
    if (pieces.isEmpty()) return {};
    const QStringList columns = serverPiecesColumns(table);
    const QString name = table.toLower();
    QStringList newValues;
    for (int c = 0; c < columns.size(); ++c)
        newValues << QStringLiteral("(NEW.rowid, %1, NEW.%2)").arg(c).arg(columns[c]);
    const QString newRows =
        QStringLiteral("(VALUES %1) AS t(rid, col, v)").arg(newValues.join(QStringLiteral(", ")));
    // The function keeps the store's search path of its making, so a statement of another
    // store's connection that changes a trader keeps this store's pieces.
    const QString body =
        QStringLiteral(
            "BEGIN IF TG_OP <> 'INSERT' THEN DELETE FROM %1 WHERE rid = OLD.rowid; END IF; "
            "IF TG_OP <> 'DELETE' THEN INSERT INTO %1 (gram, col, rid) %2; END IF; RETURN NULL; END")
            .arg(pieces, piecesOf(newRows));
    return {
        QStringLiteral(
            "CREATE TABLE IF NOT EXISTS %1 (gram text COLLATE ucs_basic NOT NULL, col smallint NOT "
            "NULL, rid bigint NOT NULL, PRIMARY KEY (gram, col, rid))")
            .arg(pieces),
        QStringLiteral("CREATE INDEX IF NOT EXISTS %1_rid ON %1 (rid)").arg(pieces),
        QStringLiteral("CREATE INDEX IF NOT EXISTS %1_rowid ON %1 (rowid)").arg(name),
        QStringLiteral(
            "CREATE OR REPLACE FUNCTION %1() RETURNS trigger LANGUAGE plpgsql SET search_path FROM "
            "CURRENT AS $$%2$$")
            .arg(serverPiecesTrigger(table), body),
        QStringLiteral(
            "CREATE OR REPLACE TRIGGER %1 AFTER INSERT OR DELETE OR UPDATE OF %2 ON %3 FOR EACH ROW EXECUTE "
            "FUNCTION %1()")
            .arg(serverPiecesTrigger(table), columns.join(QStringLiteral(", ")), name)};
}

QStringList serverPiecesFillStatements(const QString& table) {
    const QString pieces = serverPiecesTable(table);
    if (pieces.isEmpty()) return {};
    const QStringList columns = serverPiecesColumns(table);
    QStringList rows;
    for (int c = 0; c < columns.size(); ++c)
        rows << QStringLiteral("SELECT rowid, %1, %2 FROM %3").arg(c).arg(columns[c], table.toLower());
    const QString source =
        u'(' + rows.join(QStringLiteral(" UNION ALL ")) + QStringLiteral(") AS t(rid, col, v)");
    return {QStringLiteral("DELETE FROM %1").arg(pieces),
            QStringLiteral("INSERT INTO %1 (gram, col, rid) %2").arg(pieces, piecesOf(source))};
}

QString piecesKey(const QString& text) {
    QString out = text;
    for (QChar& c : out)
        if (c >= u'A' && c <= u'Z') c = QChar(c.unicode() + (u'a' - u'A'));
    return out;
}

} // namespace nb
