#include "storage/StoreLayout.h"

#include "core/AppState.h"
#include "storage/ChangeNotices.h"
#include "storage/StoreEngine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace nb {
namespace {

ColumnDef text(const QString& name, int size) {
    return {name, dbText, size, false};
}
ColumnDef memo(const QString& name) {
    return {name, dbMemo, 0, false};
}
ColumnDef real(const QString& name) {
    return {name, dbDouble, 0, false};
}
ColumnDef single(const QString& name) {
    return {name, dbSingle, 0, false};
}
ColumnDef longInt(const QString& name) {
    return {name, dbLong, 0, false};
}
ColumnDef shortInt(const QString& name) {
    return {name, dbInteger, 0, false};
}
ColumnDef byteInt(const QString& name) {
    return {name, dbByte, 0, false};
}
ColumnDef yesNo(const QString& name) {
    return {name, dbBoolean, 0, false};
}

// An index only for the speed of the documents' queries.
IndexDef speed(const QStringList& columns) {
    return {columns.first(), columns, false};
}

TableDef userTable() {
    return {QStringLiteral("User"),
            {text(QStringLiteral("Company"), 50),
             text(QStringLiteral("Delegate"), 30),
             {QStringLiteral("Serial"), dbText, 12, true},
             text(QStringLiteral("Post"), 7),
             text(QStringLiteral("Addr"), 100),
             text(QStringLiteral("Phone"), 20),
             text(QStringLiteral("Fax"), 20),
             text(QStringLiteral("Status"), 50),
             text(QStringLiteral("Item"), 50),
             text(QStringLiteral("Email"), 100)},
            {{QStringLiteral("PK"), {QStringLiteral("Serial")}, true}}};
}

TableDef environmentTable() {
    return {QStringLiteral("Environment"),
            {shortInt(QStringLiteral("StockProc")), byteInt(QStringLiteral("Standard")),
             shortInt(QStringLiteral("Special")), shortInt(QStringLiteral("StockManage")),
             text(QStringLiteral("Password"), 20), text(QStringLiteral("sPost"), 7),
             text(QStringLiteral("ePost"), 7)},
            {}};
}

TableDef traderTable() {
    return {QStringLiteral("Trader"),
            {text(QStringLiteral("Code"), 6),       text(QStringLiteral("C_Name"), 50),
             text(QStringLiteral("U_Name"), 30),    text(QStringLiteral("Serial"), 14),
             text(QStringLiteral("Phone"), 20),     text(QStringLiteral("Fax"), 20),
             text(QStringLiteral("HPhone"), 14),    text(QStringLiteral("DDD"), 4),
             text(QStringLiteral("Charge"), 30),    byteInt(QStringLiteral("VAT")),
             text(QStringLiteral("Addr1"), 100),    text(QStringLiteral("Addr2"), 50),
             text(QStringLiteral("Post"), 7),       text(QStringLiteral("Status"), 50),
             text(QStringLiteral("Item"), 50),      text(QStringLiteral("OpenDate"), 10),
             text(QStringLiteral("CloseDate"), 10), text(QStringLiteral("EnterDate"), 10),
             byteInt(QStringLiteral("Section")),    real(QStringLiteral("TotNoPay")),
             text(QStringLiteral("Bigo"), 255),     yesNo(QStringLiteral("bDeled")),
             text(QStringLiteral("Email"), 100)},
            {speed({QStringLiteral("Code")})}};
}

TableDef productTable() {
    return {QStringLiteral("Product"),
            {text(QStringLiteral("Code"), 6), text(QStringLiteral("PName"), 50),
             text(QStringLiteral("PNorm"), 50), real(QStringLiteral("BuyPrice")),
             real(QStringLiteral("SalePrice")), text(QStringLiteral("Unit"), 10),
             text(QStringLiteral("Bigo"), 255), real(QStringLiteral("PTax"))},
            {speed({QStringLiteral("Code")})}};
}

TableDef postTable() {
    return {QStringLiteral("Post"),
            {text(QStringLiteral("ZIPCODE"), 6), text(QStringLiteral("SIDO"), 20),
             text(QStringLiteral("GUGUN"), 30), text(QStringLiteral("DONG"), 50),
             text(QStringLiteral("BUNJI"), 50)},
            {speed({QStringLiteral("DONG")})}};
}

TableDef masterTable() {
    return {QStringLiteral("Master"),
            {text(QStringLiteral("BillNo"), 6), text(QStringLiteral("BillDate"), 10),
             text(QStringLiteral("CCode"), 6), real(QStringLiteral("TotAmount")),
             real(QStringLiteral("TotVat")), longInt(QStringLiteral("NumBill"))},
            {speed({QStringLiteral("BillNo")}), speed({QStringLiteral("BillDate")}),
             speed({QStringLiteral("CCode")})}};
}

TableDef detailTable() {
    return {QStringLiteral("Detail"),
            {text(QStringLiteral("BillNo"), 6), longInt(QStringLiteral("BillSEQ")),
             text(QStringLiteral("PName"), 50), text(QStringLiteral("Unit"), 10),
             real(QStringLiteral("Quant")), real(QStringLiteral("Price")), real(QStringLiteral("DC")),
             real(QStringLiteral("Amount")), real(QStringLiteral("VAT"))},
            {speed({QStringLiteral("BillNo"), QStringLiteral("BillSEQ")})}};
}

TableDef newAcountTable() {
    return {QStringLiteral("NewAcount"),
            {text(QStringLiteral("TaxCode"), 10), text(QStringLiteral("CCode"), 6),
             text(QStringLiteral("PName"), 50), text(QStringLiteral("PNorm"), 50),
             real(QStringLiteral("Quantity")), real(QStringLiteral("UnitCost")),
             real(QStringLiteral("TradeKum")), real(QStringLiteral("VatKum")),
             text(QStringLiteral("DealDate"), 10), memo(QStringLiteral("IssueDate")),
             text(QStringLiteral("TradeDate"), 10), text(QStringLiteral("UserCode"), 15),
             text(QStringLiteral("Receipt"), 4)},
            {speed({QStringLiteral("TaxCode")}), speed({QStringLiteral("CCode")}),
             speed({QStringLiteral("DealDate")})}};
}

QList<IndexDef> primaryAndPlain(const QStringList& columns) {
    return {{QStringLiteral("PrimaryKey"), columns, true}, {QStringLiteral("PK"), columns, false}};
}

TableDef buyTaxTable() {
    return {QStringLiteral("BuyTax"),
            {text(QStringLiteral("Serial"), 8), text(QStringLiteral("CCode"), 6),
             text(QStringLiteral("PCode"), 9), text(QStringLiteral("CName"), 40),
             text(QStringLiteral("DealDate"), 10), text(QStringLiteral("IssueDate"), 10),
             longInt(QStringLiteral("TradeKum")), longInt(QStringLiteral("VatKum")),
             longInt(QStringLiteral("Blank")), text(QStringLiteral("List"), 30),
             text(QStringLiteral("Section"), 1), text(QStringLiteral("UserCode"), 15)},
            primaryAndPlain({QStringLiteral("Serial"), QStringLiteral("CCode"), QStringLiteral("DealDate")})};
}

TableDef totalTable(const QString& name) {
    return {name,
            {text(QStringLiteral("Serial"), 8), text(QStringLiteral("CCode"), 6),
             longInt(QStringLiteral("TradeKum")), longInt(QStringLiteral("VatKum")),
             longInt(QStringLiteral("Blank")), text(QStringLiteral("CName"), 30),
             text(QStringLiteral("UserCode"), 15)},
            primaryAndPlain({QStringLiteral("Serial"), QStringLiteral("CCode")})};
}

// The record of hand-overs to the tax service: each bulk-issue file written, whether the operator
// uploaded or withdrew it, and the invoices that went into it as they were at the time.
TableDef etaxFileTable() {
    return {QStringLiteral("EtaxFile"),
            {longInt(QStringLiteral("FileNo")), text(QStringLiteral("FilePath"), 255),
             text(QStringLiteral("FromDate"), 10), text(QStringLiteral("ToDate"), 10),
             text(QStringLiteral("WrittenAt"), 19), longInt(QStringLiteral("Invoices")),
             text(QStringLiteral("UploadedDate"), 10), text(QStringLiteral("WithdrawnDate"), 10),
             text(QStringLiteral("Note"), 100)},
            {{QStringLiteral("PrimaryKey"), {QStringLiteral("FileNo")}, true},
             speed({QStringLiteral("FilePath")})}};
}

TableDef etaxHandOverTable() {
    return {QStringLiteral("EtaxHandOver"),
            {longInt(QStringLiteral("FileNo")), text(QStringLiteral("TaxCode"), 10),
             text(QStringLiteral("DealDate"), 10), text(QStringLiteral("CCode"), 6),
             text(QStringLiteral("CName"), 50), real(QStringLiteral("TradeKum")),
             real(QStringLiteral("VatKum"))},
            {speed({QStringLiteral("FileNo"), QStringLiteral("TaxCode")}), speed({QStringLiteral("TaxCode")}),
             speed({QStringLiteral("DealDate")})}};
}

TableDef estiBaseTable() {
    return {QStringLiteral("EstiBase"),
            {text(QStringLiteral("EstiCode"), 20), text(QStringLiteral("CCode"), 6),
             text(QStringLiteral("CName"), 50), text(QStringLiteral("EstiDate"), 10),
             text(QStringLiteral("DeriveDate"), 10), text(QStringLiteral("ClassName"), 100),
             real(QStringLiteral("EstiKum")), text(QStringLiteral("EstiHanKum"), 100),
             yesNo(QStringLiteral("Vat")), text(QStringLiteral("Refer"), 30),
             text(QStringLiteral("Validate"), 50), text(QStringLiteral("Section"), 50)},
            {speed({QStringLiteral("EstiCode")})}};
}

TableDef estimateTable() {
    return {QStringLiteral("Estimate"),
            {longInt(QStringLiteral("Seq")), text(QStringLiteral("Code"), 20),
             text(QStringLiteral("PCode"), 6), text(QStringLiteral("PName"), 50),
             text(QStringLiteral("PNorm"), 50), single(QStringLiteral("EAmount")),
             single(QStringLiteral("EUnitPrice")), longInt(QStringLiteral("EstiKum")),
             text(QStringLiteral("EUnit"), 10)},
            {speed({QStringLiteral("Code")}), speed({QStringLiteral("Seq")})}};
}

// Columns of a primary index may not be empty (null), as the original's required fields.
bool inPrimaryIndex(const TableDef& table, const QString& column) {
    for (const IndexDef& index : table.indexes)
        if (index.primary && index.columns.contains(column)) return true;
    return false;
}

QString columnSql(const TableDef& table, const ColumnDef& column, bool server) {
    QString sql = quoteName(column.name) + u' ' + declaredType(column.type, column.size, server);
    if (column.type == dbBoolean) return sql + QStringLiteral(" NOT NULL DEFAULT 0");
    if (column.required || inPrimaryIndex(table, column.name)) sql += QStringLiteral(" NOT NULL");
    return sql;
}

// On the server a work table's indexes lead with the seat its rows belong to: each seat's rows
// are unique by themselves, and found by their seat.
QString indexSql(const TableDef& table, const IndexDef& index, bool server) {
    QStringList columns;
    if (server && isWorkTable(table.name)) columns << kServerSeatColumn;
    for (const QString& c : index.columns)
        columns << quoteName(c);
    return QStringLiteral("CREATE ") + (index.primary ? QStringLiteral("UNIQUE ") : QString()) +
           QStringLiteral("INDEX IF NOT EXISTS ") + quoteName(storeIndexName(table.name, index.name)) +
           QStringLiteral(" ON ") + quoteName(table.name) + QStringLiteral(" (") +
           columns.join(QStringLiteral(", ")) + u')';
}

// The file was built without a flush per statement; it reaches the disk once, before it is
// moved into place.
bool flushToDisk(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && ::fsync(file.handle()) == 0;
}

} // namespace

QList<TableDef> basicTables() {
    return {userTable(), environmentTable(), traderTable(), productTable()};
}
QList<TableDef> billTables() {
    return {masterTable(), detailTable()};
}
QList<TableDef> taxTables() {
    return {newAcountTable(),
            buyTaxTable(),
            totalTable(QStringLiteral("BuyTotal")),
            totalTable(QStringLiteral("SaleTotal")),
            etaxFileTable(),
            etaxHandOverTable()};
}
QList<TableDef> estimateTables() {
    return {estiBaseTable(), estimateTable()};
}
QList<TableDef> postTables() {
    return {postTable()};
}

TableDef tableDef(const QString& name) {
    for (const auto& file : {basicTables(), billTables(), taxTables(), estimateTables(), postTables()})
        for (const TableDef& table : file)
            if (table.name == name) return table;
    return {};
}

namespace {

// The whole-number columns the totals and quotations are built on. The original's engine
// rounded a fraction written into such a column half to even; SQLite would keep the fraction,
// so these triggers round it on every write, whoever writes.
const QList<std::pair<QString, QStringList>>& wholeNumberColumns() {
    static const QList<std::pair<QString, QStringList>> columns = {
        {QStringLiteral("SaleTotal"),
         {QStringLiteral("TradeKum"), QStringLiteral("VatKum"), QStringLiteral("Blank")}},
        {QStringLiteral("BuyTotal"),
         {QStringLiteral("TradeKum"), QStringLiteral("VatKum"), QStringLiteral("Blank")}},
        {QStringLiteral("Estimate"), {QStringLiteral("EstiKum")}}};
    return columns;
}

// x rounded half to even, as an integer: the truncated value, one step away from zero when
// the fraction is more than a half, or exactly a half on an odd number.
QString halfEven(const QString& x) {
    const QString t = QStringLiteral("CAST(%1 AS INTEGER)").arg(x);
    return QStringLiteral("(CASE WHEN abs(%1 - %2) = 0.5 THEN %2 + (abs(%2) %% 2) * (CASE WHEN %1 > 0 THEN 1 "
                          "ELSE -1 END) "
                          "ELSE CAST(round(%1) AS INTEGER) END)")
        .arg(x, t)
        .replace(QStringLiteral("%%"), QStringLiteral("%"));
}

} // namespace

QStringList wholeNumberTriggers(const QString& table) {
    for (const auto& [name, columns] : wholeNumberColumns()) {
        if (name != table) continue;
        QString body;
        for (const QString& c : columns)
            body += QStringLiteral("UPDATE %1 SET %2 = %3 WHERE rowid = new.rowid AND typeof(%2) = 'real'; ")
                        .arg(quoteName(table), quoteName(c), halfEven(quoteName(c)));
        const QString list = columns.join(QStringLiteral(", "));
        return {QStringLiteral("CREATE TRIGGER IF NOT EXISTS %1 AFTER INSERT ON %2 BEGIN %3END")
                    .arg(quoteName(table + QStringLiteral("_whole_ai")), quoteName(table), body),
                QStringLiteral("CREATE TRIGGER IF NOT EXISTS %1 AFTER UPDATE OF %2 ON %3 BEGIN %4END")
                    .arg(quoteName(table + QStringLiteral("_whole_au")), list, quoteName(table), body)};
    }
    return {};
}

namespace {
// The quotation tables and the column their codes are in.
QString runningCodeColumn(const QString& table) {
    if (table == u"EstiBase") return QStringLiteral("EstiCode");
    if (table == u"Estimate") return QStringLiteral("Code");
    return {};
}
} // namespace

QString runningCodeIndexName(const QString& table) {
    return runningCodeColumn(table).isEmpty() ? QString()
                                              : storeIndexName(table, QStringLiteral("RunningCode"));
}

QString runningCodeIndex(const QString& table) {
    const QString column = runningCodeColumn(table);
    if (column.isEmpty()) return {};
    // The expressions are written as the number's statement writes them, or no engine would
    // match the index to it.
    return QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON %2 (substr(%3, 1, 6), length(%3), %3)")
        .arg(quoteName(runningCodeIndexName(table)), quoteName(table), column);
}

QStringList createStatements(const TableDef& table, bool server) {
    QStringList columns;
    for (const ColumnDef& column : table.columns)
        columns << columnSql(table, column, server);
    if (server && isWorkTable(table.name)) columns << serverSeatColumn();
    if (server) columns << QStringLiteral("rowid bigint GENERATED BY DEFAULT AS IDENTITY");
    QStringList out{QStringLiteral("CREATE TABLE IF NOT EXISTS ") + quoteName(table.name) +
                    QStringLiteral(" (") + columns.join(QStringLiteral(", ")) + u')'};
    for (const IndexDef& index : table.indexes)
        out << indexSql(table, index, server);
    if (!runningCodeIndex(table.name).isEmpty()) out << runningCodeIndex(table.name);
    if (server)
        out << serverRowidIndex(table.name) << serverTrigramIndexes(table.name)
            << changeNoticeStatements(table.name);
    else
        out << wholeNumberTriggers(table.name);
    return out;
}

QStringList serverSeatUpgrade(const TableDef& table) {
    if (!isWorkTable(table.name)) return {};
    QStringList out{QStringLiteral("ALTER TABLE %1 ADD COLUMN IF NOT EXISTS %2")
                        .arg(quoteName(table.name), serverSeatColumn())};
    for (const IndexDef& index : table.indexes)
        out << QStringLiteral("DROP INDEX IF EXISTS ") + quoteName(storeIndexName(table.name, index.name))
            << indexSql(table, index, true);
    return out;
}

bool createTable(Database& db, const TableDef& table) {
    if (!db.beginTransaction()) {
        ReportSaveFailure(db, QStringLiteral("자료 파일에 표를 만들지 못했습니다."));
        return false;
    }
    for (const QString& sql : createStatements(table, db.onServer())) {
        if (!db.Execute(sql)) {
            db.rollback();
            return false;
        }
    }
    if (db.commit()) return true;
    ReportSaveFailure(db, QStringLiteral("자료 파일에 표를 만들지 못했습니다."));
    return false;
}

bool isEmptyStoreFile(const QString& path) {
    const QFileInfo file(path);
    const QFileInfo journal(path + QStringLiteral("-wal"));
    return file.isFile() && file.size() == 0 && (!journal.exists() || journal.size() == 0);
}

namespace {
bool createServerStore(const QString& path, const QList<TableDef>& tables) {
    Database db;
    if (!db.beginNewServerStore(path)) return false;
    const bool searched = std::any_of(tables.begin(), tables.end(), [](const TableDef& table) {
        return !serverTrigramIndexes(table.name).isEmpty();
    });
    if (searched && !db.Execute(serverTrigramExtension())) {
        db.rollback();
        return false;
    }
    for (const TableDef& table : tables)
        if (!createTable(db, table)) {
            db.rollback();
            return false;
        }
    return db.commit();
}
} // namespace

bool createStoreFile(const QString& path, const QList<TableDef>& tables) {
    if (!serverSchemaOf(path).isEmpty()) return createServerStore(path, tables);
    const bool replacing = isEmptyStoreFile(path);
    if (QFileInfo::exists(path) && !replacing) return false;
    QDir().mkpath(QFileInfo(path).absolutePath());
    // Built beside its place and moved in when complete, so that a half-made file never
    // passes for a store.
    const QString building = path + QStringLiteral(".building");
    QFile::remove(building);
    bool ok = false;
    {
        Database db;
        ok = db.create(building) && db.beginTransaction();
        for (const TableDef& table : tables)
            ok = ok && createTable(db, table);
        ok = ok && db.commit();
    }
    // rename(2) puts the new file in place of an empty one in one step; the empty journal
    // files an empty store may have beside it belong to nothing and go.
    ok = ok && flushToDisk(building) &&
         ::rename(QFile::encodeName(building).constData(), QFile::encodeName(path).constData()) == 0;
    if (!ok) {
        QFile::remove(building);
        return false;
    }
    if (replacing)
        for (const char* suffix : {"-wal", "-shm"})
            if (QFileInfo(path + QLatin1String(suffix)).size() == 0)
                QFile::remove(path + QLatin1String(suffix));
    return true;
}

void CreateMissingStoreFiles() {
    const AppState& a = app();
    const std::pair<QString, QList<TableDef>> files[] = {
        {a.DbBasicFile, basicTables()},       {a.DbBillFile, billTables()},
        {a.DbTaxFile, taxTables()},           {a.DbInOutFile, {}},
        {a.DbEstimateFile, estimateTables()}, {a.DbPostFile, postTables()},
    };
    for (const auto& [path, tables] : files) {
        if (path.isEmpty()) continue;
        if (!serverSchemaOf(path).isEmpty()) {
            // On the server a store is missing when its schema is (an unreachable server is
            // not laid down here: its opening says so).
            Database probe;
            if (!probe.open(path) && probe.lastEngineCode() != kServerUnreachableCode)
                createStoreFile(path, tables);
        } else if (!QFileInfo::exists(path) || isEmptyStoreFile(path)) {
            createStoreFile(path, tables);
        }
    }
}

} // namespace nb
