#include "storage/jet/JetBuild.h"

#include "storage/Database.h"

#include <QSqlDriver>
#include <QSqlQuery>
#include <QVariant>
#include <sqlite3.h>

namespace nb {
namespace {

// The kinds of Jet column the reader carries (yes/no, numbers, date, text, memo, decimal);
// pictures, binary data and replication ids are not part of the data model.
bool isCarriedJetType(int type) {
    return (type >= 0x01 && type <= 0x08) || type == 0x0a || type == 0x0c || type == 0x10;
}
const QString kRawAlias = QStringLiteral("src");

// Where a table of the layout is filled from: the source's table and the columns both have.
struct TableCopy {
    TableDef def;
    QString sourceTable;
    QStringList columns;     // the layout's spelling
    QStringList sourceNames; // the source's spelling, same order
    QList<int> sourceTypes;
};

const QList<RawColumn>* findTable(const QList<std::pair<QString, QList<RawColumn>>>& tables,
                                  const QString& name, QString* found) {
    for (const auto& [table, columns] : tables)
        if (table.compare(name, Qt::CaseInsensitive) == 0) {
            *found = table;
            return &columns;
        }
    return nullptr;
}

int findColumn(const QList<RawColumn>& columns, const QString& name) {
    for (qsizetype i = 0; i < columns.size(); ++i)
        if (columns[i].name.compare(name, Qt::CaseInsensitive) == 0) return int(i);
    return -1;
}

// Tables the start-up upgrade creates when a file lacks them.
bool isUpgradeTable(const QString& table) {
    return table == QStringLiteral("BuyTax") || table == QStringLiteral("BuyTotal") ||
           table == QStringLiteral("SaleTotal") || table == QStringLiteral("EtaxFile") ||
           table == QStringLiteral("EtaxHandOver");
}

// The layout's table as the source has it: the columns the upgrade adds stay out when the
// source lacks them, so that the upgrade steps add and fill them as on an older store.
TableCopy planCopy(const TableDef& def, const QString& sourceTable, const QList<RawColumn>& source,
                   const QString& file, QStringList& notes) {
    TableCopy copy{def, sourceTable, {}, {}, {}};
    copy.def.columns.clear();
    for (const ColumnDef& column : def.columns) {
        int at = findColumn(source, column.name);
        if (at >= 0 && !isCarriedJetType(source[at].jetType)) {
            notes << QStringLiteral("%1: %2 표의 %3 열은 읽을 수 없는 종류라 가져오지 않았습니다.")
                         .arg(file, sourceTable, source[at].name);
            at = -1;
        }
        if (at < 0 && isUpgradeColumn(def.name, column.name)) continue;
        copy.def.columns << column;
        if (at < 0) {
            notes << QStringLiteral("%1: %2 표에 %3 열이 없어 빈 값으로 두었습니다.")
                         .arg(file, def.name, column.name);
            continue;
        }
        copy.columns << column.name;
        copy.sourceNames << source[at].name;
        copy.sourceTypes << source[at].jetType;
    }
    for (const RawColumn& column : source) {
        bool known = false;
        for (const ColumnDef& c : def.columns)
            known = known || c.name.compare(column.name, Qt::CaseInsensitive) == 0;
        if (!known)
            notes << QStringLiteral("%1: %2 표의 %3 열은 자료 형식에 없는 열이라 가져오지 않았습니다.")
                         .arg(file, sourceTable, column.name);
    }
    return copy;
}

// Yes/no values come from the reader as 1 / 0 and are kept as the store keeps them (-1 / 0).
QString selectExpression(const TableCopy& copy, int i, const TableDef& def) {
    const QString name =
        kRawAlias + u'.' + quoteName(copy.sourceTable) + u'.' + quoteName(copy.sourceNames[i]);
    for (const ColumnDef& c : def.columns)
        if (c.name == copy.columns[i] && c.type == dbBoolean)
            return QStringLiteral("CASE WHEN %1 THEN %2 ELSE %3 END")
                .arg(name)
                .arg(kStoredTrue)
                .arg(kStoredFalse);
    return name;
}

QString copyStatement(const TableCopy& copy) {
    QStringList targets;
    QStringList sources;
    for (qsizetype i = 0; i < copy.columns.size(); ++i) {
        targets << quoteName(copy.columns[i]);
        sources << selectExpression(copy, int(i), copy.def);
    }
    return QStringLiteral("INSERT INTO main.%1 (%2) SELECT %3 FROM %4.%5 ORDER BY %4.%5.rowid")
        .arg(quoteName(copy.def.name), targets.join(u','), sources.join(u','), kRawAlias,
             quoteName(copy.sourceTable));
}

bool copyRows(const QString& newPath, const QString& rawPath, const QList<TableCopy>& copies, QString& why) {
    Database db;
    if (!db.open(newPath) || !db.attach(rawPath, kRawAlias)) {
        why = QStringLiteral("새 자료 파일을 열지 못했습니다.");
        return false;
    }
    bool ok = db.beginTransaction();
    for (const TableCopy& copy : copies)
        ok = ok && (copy.columns.isEmpty() || db.tryExecute(copyStatement(copy)));
    ok = ok && db.commit();
    if (!ok) {
        why =
            storeFaultText(db.lastEngineCode(), db.lastErrorDescription()) + u' ' + db.lastErrorDescription();
        db.rollback();
    }
    db.detach(kRawAlias);
    return ok;
}

// Drops the figures of tables that were not carried, and renames the rest to the layout's
// spelling.
QList<JetTableFigures> carriedFigures(const QList<JetTableFigures>& read, const QList<TableCopy>& copies) {
    QList<JetTableFigures> out;
    for (const TableCopy& copy : copies)
        for (JetTableFigures figures : read) {
            if (figures.table != copy.sourceTable) continue;
            figures.table = copy.def.name;
            for (JetColumnSum& sum : figures.sums)
                for (const ColumnDef& c : copy.def.columns)
                    if (c.name.compare(sum.column, Qt::CaseInsensitive) == 0) sum.column = c.name;
            out << figures;
        }
    return out;
}

} // namespace

bool isUpgradeColumn(const QString& table, const QString& column) {
    return (table == QStringLiteral("Trader") && column == QStringLiteral("HPhone")) ||
           ((table == QStringLiteral("Trader") || table == QStringLiteral("User")) &&
            column == QStringLiteral("Email")) ||
           (table == QStringLiteral("Product") && column == QStringLiteral("Unit")) ||
           (table == QStringLiteral("NewAcount") &&
            (column == QStringLiteral("UserCode") || column == QStringLiteral("Receipt")));
}

QList<std::pair<QString, QList<RawColumn>>> rawTables(Database& raw) {
    QList<std::pair<QString, QList<RawColumn>>> out;
    QSqlQuery q(raw.connection());
    q.exec(QStringLiteral("SELECT tbl, col, jettype FROM _columns ORDER BY rowid"));
    while (q.next()) {
        const QString table = q.value(0).toString();
        if (out.isEmpty() || out.last().first != table) out.push_back({table, {}});
        out.last().second.push_back({q.value(1).toString(), q.value(2).toInt()});
    }
    // A table without columns still counts as read.
    QSqlQuery t(raw.connection());
    t.exec(QStringLiteral("SELECT tbl FROM _figures WHERE col = '' ORDER BY rowid"));
    while (t.next()) {
        bool seen = false;
        for (const auto& entry : out)
            seen = seen || entry.first == t.value(0).toString();
        if (!seen) out.push_back({t.value(0).toString(), {}});
    }
    return out;
}

QList<JetTableFigures> readFigures(Database& raw, const QString& source) {
    QList<JetTableFigures> out;
    QSqlQuery q(raw.connection());
    q.exec(QStringLiteral("SELECT tbl, col, rows, total FROM _figures ORDER BY rowid"));
    while (q.next()) {
        const QString table = q.value(0).toString();
        if (q.value(1).toString().isEmpty()) {
            out.push_back({source, table, q.value(2).toLongLong(), 0, {}});
            continue;
        }
        if (!out.isEmpty() && out.last().table == table)
            out.last().sums.push_back({q.value(1).toString(), q.value(3).toDouble(), 0});
    }
    return out;
}

namespace {

// The engine's own handle under a connection: the figures read every value of the biggest
// tables, which the query classes would wrap one by one.
sqlite3* engineOf(Database& db) {
    const QVariant handle = db.connection().driver()->handle();
    return handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0
               ? *static_cast<sqlite3* const*>(handle.data())
               : nullptr;
}

// A stored value as a number, as the program reads one: a text through its C-locale reading.
double storedNumber(sqlite3_stmt* statement, int column) {
    if (sqlite3_column_type(statement, column) != SQLITE_TEXT)
        return sqlite3_column_double(statement, column);
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)),
                             sqlite3_column_bytes(statement, column))
        .toDouble();
}

} // namespace

JetTableFigures tableFigures(Database& db, const QString& table, const QStringList& columns, qint64 fromRowid,
                             qint64 toRowid) {
    JetTableFigures out;
    out.table = table;
    QStringList names;
    for (const QString& c : columns) {
        names << quoteName(c);
        out.sums.push_back({c, 0, 0});
    }
    const QByteArray sql = QStringLiteral("SELECT 0%1 FROM %2 WHERE rowid BETWEEN ? AND ? ORDER BY rowid")
                               .arg(names.isEmpty() ? QString() : u',' + names.join(u','), quoteName(table))
                               .toUtf8();
    sqlite3* engine = engineOf(db);
    sqlite3_stmt* statement = nullptr;
    if (!engine || sqlite3_prepare_v2(engine, sql.constData(), -1, &statement, nullptr) != SQLITE_OK) {
        out.rowsRead = -1;
        return out;
    }
    sqlite3_bind_int64(statement, 1, fromRowid);
    sqlite3_bind_int64(statement, 2, toRowid);
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
        ++out.rowsRead;
        for (qsizetype i = 0; i < out.sums.size(); ++i)
            if (sqlite3_column_type(statement, int(i) + 1) != SQLITE_NULL)
                out.sums[i].read += storedNumber(statement, int(i) + 1);
    }
    sqlite3_finalize(statement);
    if (rc != SQLITE_DONE) out.rowsRead = -1; // a read cut short is no figure
    return out;
}

void takeWrittenFigures(Database& db, QList<JetTableFigures>& tables) {
    for (JetTableFigures& t : tables) {
        QStringList columns;
        for (const JetColumnSum& s : t.sums)
            columns << s.column;
        const JetTableFigures now = tableFigures(db, t.table, columns);
        t.rowsWritten = now.rowsRead;
        for (qsizetype i = 0; i < t.sums.size(); ++i)
            t.sums[i].written = now.sums[i].read;
    }
}

BuildOutcome buildStoreFromRaw(const QString& source, const QString& rawPath, const QString& newPath,
                               const QList<TableDef>& layout) {
    BuildOutcome out;
    Database raw;
    if (!raw.open(rawPath)) {
        out.failure = QStringLiteral("%1 파일에서 읽은 자료를 열지 못했습니다.").arg(source);
        return out;
    }
    const auto tables = rawTables(raw);
    QList<TableDef> defs;
    QList<TableCopy> copies;
    QStringList matched;
    for (const TableDef& def : layout) {
        QString found;
        const QList<RawColumn>* columns = findTable(tables, def.name, &found);
        if (!columns) {
            if (!isUpgradeTable(def.name)) {
                defs << def;
                out.notes << QStringLiteral("%1: %2 표가 없어 빈 표로 만들었습니다.").arg(source, def.name);
            }
            continue;
        }
        matched << found;
        copies << planCopy(def, found, *columns, source, out.notes);
        defs << copies.last().def;
    }
    for (const auto& [table, columns] : tables)
        if (!matched.contains(table))
            out.notes << QStringLiteral("%1: %2 표는 자료 형식에 없는 표라 가져오지 않았습니다.")
                             .arg(source, table);
    out.tables = carriedFigures(readFigures(raw, source), copies);
    raw.close();
    if (!createStoreFile(newPath, defs)) {
        out.failure = QStringLiteral("%1 파일의 자료를 담을 새 자료 파일을 만들지 못했습니다.").arg(source);
        return out;
    }
    QString why;
    if (!copyRows(newPath, rawPath, copies, why)) {
        out.failure =
            QStringLiteral("%1 파일의 자료를 새 자료 파일에 옮기지 못했습니다. %2").arg(source, why);
        return out;
    }
    out.ok = true;
    return out;
}

} // namespace nb
