// The schema steps at every start: each asks whether its table, column or index exists and
// acts only when it does not, so a current store passes with no statement run.
#include "core/AppState.h"
#include "storage/ChangeNotices.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QFileInfo>
#include <QSqlQuery>

namespace nb {
namespace {

// A step on a file that could not be opened says so once, with the statement it would run.
bool storeIsOpen(const Database& db, const QString& statement) {
    if (db.isOpen()) return true;
    ReportQueryFailure(ErrNotOpened, QString(), statement);
    return false;
}

// Table steps look only at the name (exact comparison); an existing table is left as it is.
void createTableWhenAbsent(Database& db, const QString& name) {
    if (!db.hasTable(name)) createTable(db, tableDef(name));
}

// NewAcount.UserCode: every invoice on file predates the supplier column and belongs to the
// one supplier of the older version, the first row of User. The column and the move are one
// step; when the move cannot be read the column is not kept, so the next start tries again.
// Answers false when the User step must be skipped.
bool addInvoiceSupplierColumn(Database& tax, Database& basic) {
    const QString table = QStringLiteral("NewAcount");
    const QString column = QStringLiteral("UserCode");
    if (!tax.hasTable(table) || tax.hasColumn(table, column)) return true;
    if (!tax.beginTransaction()) {
        ReportSaveFailure(tax, QStringLiteral("세금계산서 자료 파일을 새 형식으로 바꾸지 못했습니다."));
        return true;
    }
    if (!tax.Execute(QStringLiteral("ALTER TABLE \"NewAcount\" ADD COLUMN \"UserCode\" ") +
                     declaredType(dbText, 15, tax.onServer()))) {
        tax.rollback();
        return true;
    }
    Recordset users;
    if (!OpenSnapshot(basic, users, QStringLiteral("select Serial from User"))) {
        tax.rollback();
        return false;
    }
    bool moved = true;
    if (!users.EOF_())
        moved = tax.Execute(QStringLiteral("Update NewAcount Set UserCode = ?"),
                            {users.text(QStringLiteral("Serial"))});
    CloseRs(users);
    if (!moved)
        tax.rollback();
    else if (!tax.commit())
        ReportSaveFailure(tax, QStringLiteral("세금계산서 자료 파일을 새 형식으로 바꾸지 못했습니다."));
    return true;
}

// The record of hand-overs to the tax service comes as two tables that only mean something
// together: both are made in one transaction, or neither.
void addHandOverRecord(Database& tax) {
    const QString files = QStringLiteral("EtaxFile");
    const QString invoices = QStringLiteral("EtaxHandOver");
    if (tax.hasTable(files) && tax.hasTable(invoices)) return;
    const QString headline = QStringLiteral("전자세금계산서 전송 기록을 만들지 못했습니다.");
    if (!tax.beginTransaction()) {
        ReportSaveFailure(tax, headline);
        return;
    }
    for (const QString& name : {files, invoices})
        if (!tax.hasTable(name) && !createTable(tax, tableDef(name))) {
            tax.rollback();
            return;
        }
    if (!tax.commit()) ReportSaveFailure(tax, headline);
}

// Older files gain a guarantee that the business number is unique; with duplicates on file
// the index cannot be made, which the query box reports.
void addSupplierPrimaryIndex(Database& basic) {
    const QString table = QStringLiteral("User");
    if (!basic.hasTable(table) || basic.hasPrimaryIndex(table)) return;
    basic.Execute(QStringLiteral("CREATE UNIQUE INDEX ") +
                  quoteName(storeIndexName(table, QStringLiteral("PK"))) +
                  QStringLiteral(" ON \"User\" (\"Serial\")"));
}

// Files from before the rounding triggers gain them; a file that has them runs nothing. The
// server's whole-number columns round by themselves.
void addWholeNumberTriggers(Database& db, const QString& table) {
    if (db.onServer() || !db.isOpen() || !db.hasTable(table) ||
        db.hasTrigger(table + QStringLiteral("_whole_au")))
        return;
    for (const QString& sql : wholeNumberTriggers(table))
        db.Execute(sql);
}

// The quotation store's index of running codes (runningCodeIndex) on each of its tables that
// has none; nothing for a store that has both.
QStringList missingRunningCodeIndexes(const Database& estimate) {
    QStringList out;
    for (const TableDef& table : estimateTables())
        if (estimate.hasTable(table.name) && !estimate.hasIndex(runningCodeIndexName(table.name)))
            out << runningCodeIndex(table.name);
    return out;
}

// A quotation store file from before the index gains it, both tables' in one transaction; a
// failure rolls back and says so, and the next start tries again. The store is opened by its
// screens only, so the step opens it itself; a damaged file passes (it was named when the files
// were checked).
void addRunningCodeIndexes(const QStringList& damagedFiles) {
    const QString path = app().DbEstimateFile;
    if (path.isEmpty() || !serverSchemaOf(path).isEmpty() || !QFileInfo(path).isFile() ||
        damagedFiles.contains(path))
        return;
    Database own;
    Database& estimate = stores().dbEstimate.isOpen() ? stores().dbEstimate : own;
    if (!estimate.isOpen() && !estimate.open(path)) return;
    if (missingRunningCodeIndexes(estimate).isEmpty()) return;
    const QString headline = QStringLiteral("견적서 자료 파일을 새 형식으로 바꾸지 못했습니다.");
    if (!estimate.beginTransaction()) {
        ReportSaveFailure(estimate, headline);
        return;
    }
    // Read again inside the write: another copy starting at once may have made them.
    for (const QString& sql : missingRunningCodeIndexes(estimate))
        if (!estimate.Execute(sql)) {
            estimate.rollback();
            return;
        }
    if (!estimate.commit()) ReportSaveFailure(estimate, headline);
}

// The table steps; with sayUnopened false a store that is not open is passed over silently.
void upgradeTables(Database& basic, Database& tax, bool sayUnopened) {
    bool runUserStep = sayUnopened || basic.isOpen();
    const bool taxOpen = sayUnopened
                             ? storeIsOpen(tax, createStatements(tableDef(QStringLiteral("BuyTax"))).first())
                             : tax.isOpen();
    if (taxOpen) {
        createTableWhenAbsent(tax, QStringLiteral("BuyTax"));
        createTableWhenAbsent(tax, QStringLiteral("BuyTotal"));
        createTableWhenAbsent(tax, QStringLiteral("SaleTotal"));
        addHandOverRecord(tax);
        if (runUserStep) runUserStep = addInvoiceSupplierColumn(tax, basic);
    }
    if (runUserStep) addSupplierPrimaryIndex(basic);
    addWholeNumberTriggers(tax, QStringLiteral("SaleTotal"));
    addWholeNumberTriggers(tax, QStringLiteral("BuyTotal"));
}

void upgradeColumns(Database& basic, Database& tax, bool sayUnopened) {
    if (sayUnopened || basic.isOpen()) {
        DAO_AddField(basic, QStringLiteral("Trader"), QStringLiteral("HPhone"), dbText, 14, true,
                     QStringLiteral("UPDATE Trader SET HPhone = ''"));
        DAO_AddField(basic, QStringLiteral("Product"), QStringLiteral("Unit"), dbText, 10, true,
                     QStringLiteral("UPDATE Product SET Unit = PNorm, PNorm = ''"));
        // Where the tax service sends an issued electronic invoice: the supplier's own address
        // and the buyer's. Older rows start empty.
        for (const QString& table : {QStringLiteral("User"), QStringLiteral("Trader")})
            if (basic.hasTable(table))
                DAO_AddField(basic, table, QStringLiteral("Email"), dbText, 100, true, QString());
    }
    // 영수/청구 of each invoice, kept from this version on for the electronic invoice sheet;
    // the invoices issued before stay null (unknown), and whoever hands them on asks.
    if (tax.isOpen() && tax.hasTable(QStringLiteral("NewAcount")))
        DAO_AddField(tax, QStringLiteral("NewAcount"), QStringLiteral("Receipt"), dbText, 4, true, QString());
}

// ---- The server's own steps ------------------------------------------------------------
// A server database laid down by an older build lacks what later ones lay down with each table:
// the unique index of the row numbers, the seat of a work table's rows, the notices and the
// index of running codes of the estimate store. Each store gains what it lacks in one transaction
// of its own under the store's writer lock (a second seat starting at once waits, then finds it
// done); a step that fails rolls the whole store's steps back and says so.

const QString kServerUpgradeHeadline = QStringLiteral("자료 서버의 표를 새 형식으로 바꾸지 못했습니다.");

QList<TableDef> layoutOf(const QString& schema) {
    if (schema == u"basic") return basicTables();
    if (schema == u"bill") return billTables();
    if (schema == u"tax") return taxTables();
    if (schema == u"estimate") return estimateTables();
    return {};
}

// The catalog's word on a column, the server's own ones included (columns() leaves them out).
bool serverHasColumn(const Database& db, const QString& table, const QString& column) {
    QSqlQuery q(db.connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_class c ON c.oid = "
                             "a.attrelid JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace WHERE "
                             "n.nspname = ? AND c.relname = ? AND a.attname = ? AND NOT a.attisdropped"));
    q.addBindValue(db.serverSchema());
    q.addBindValue(table.toLower());
    q.addBindValue(column);
    return q.exec() && q.next();
}

bool hasUniqueRowidIndex(const Database& db, const QString& table) {
    for (const IndexInfo& index : db.indexes(table))
        if (index.unique && index.columns == QStringList{QStringLiteral("rowid")}) return true;
    return false;
}

// The trigram indexes of the table that still keep new entries aside in a pending list
// (made by an older build), each with what settles it.
QStringList unsettledTrigramIndexes(const Database& db, const QString& table) {
    QStringList out;
    for (const QString& index : serverTrigramIndexNames(table)) {
        QSqlQuery q(db.connection());
        q.prepare(
            QStringLiteral("SELECT 1 FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = "
                           "c.relnamespace WHERE n.nspname = ? AND c.relname = ? AND NOT "
                           "COALESCE('fastupdate=off' = ANY (c.reloptions), false)"));
        q.addBindValue(db.serverSchema());
        q.addBindValue(index);
        if (q.exec() && q.next()) out << serverTrigramIndexSettling(index);
    }
    return out;
}

// What one store on the server lacks, as statements; none for a store that has it all.
QStringList missingServerSteps(const Database& db) {
    QStringList out;
    for (const TableDef& table : layoutOf(db.serverSchema())) {
        if (!db.hasTable(table.name)) continue;
        // An index of that name that is not the unique one gives way to it.
        if (!hasUniqueRowidIndex(db, table.name))
            out << QStringLiteral("DROP INDEX IF EXISTS %1_rowid").arg(table.name.toLower())
                << serverRowidIndex(table.name);
        if (isWorkTable(table.name) && !serverHasColumn(db, table.name, kServerSeatColumn))
            out << serverSeatUpgrade(table);
        out << unsettledTrigramIndexes(db, table.name);
    }
    if (db.serverSchema() == u"estimate") out << missingRunningCodeIndexes(db);
    return out;
}

bool needsServerSteps(Database& db) {
    return !missingServerSteps(db).isEmpty() || !missingChangeNotices(db).isEmpty();
}

// One store's steps in one transaction; false (the box shown) when they were not made.
bool upgradeServerStore(Database& db) {
    if (!db.onServer() || !db.isOpen() || !needsServerSteps(db)) return true;
    if (!db.beginTransaction()) {
        ReportSaveFailure(db, kServerUpgradeHeadline);
        return false;
    }
    // Read again under the lock: a seat that started meanwhile may have made them.
    for (const QString& sql : missingServerSteps(db))
        if (!db.Execute(sql)) {
            db.rollback();
            return false;
        }
    if (!addChangeNotices(db)) {
        db.rollback();
        return false;
    }
    if (db.commit()) return true;
    ReportSaveFailure(db, kServerUpgradeHeadline);
    return false;
}

} // namespace

bool UpgradeServerStores() {
    bool upgraded = true;
    for (Database* db : {&stores().dbBasic, &stores().dbBill, &stores().dbTax})
        upgraded = upgradeServerStore(*db) && upgraded;
    // The estimate store is opened by its screens only; its steps are taken at start all the same
    // (on the screens' connection when one is open).
    if (serverSchemaOf(app().DbEstimateFile).isEmpty()) return upgraded;
    Database own;
    Database& estimate = stores().dbEstimate.isOpen() ? stores().dbEstimate : own;
    if (estimate.isOpen() || estimate.open(app().DbEstimateFile))
        upgraded = upgradeServerStore(estimate) && upgraded;
    return upgraded;
}

void UpgradeTables() {
    upgradeTables(stores().dbBasic, stores().dbTax, true);
}

void UpgradeColumns() {
    upgradeColumns(stores().dbBasic, stores().dbTax, true);
}

void UpgradeOpenStores(const QStringList& damagedFiles) {
    upgradeTables(stores().dbBasic, stores().dbTax, false);
    upgradeColumns(stores().dbBasic, stores().dbTax, false);
    addRunningCodeIndexes(damagedFiles);
    // A server database laid down by an older build gains what later builds lay down.
    UpgradeServerStores();
}

void UpgradeStoreFiles(Database& basic, Database& tax) {
    upgradeTables(basic, tax, false);
    upgradeColumns(basic, tax, false);
}

} // namespace nb
