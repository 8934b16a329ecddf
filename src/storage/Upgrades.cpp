// The schema steps at every start: each asks whether its table, column or index exists and
// acts only when it does not, so a current store passes with no statement run.
#include "storage/ChangeNotices.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

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

} // namespace

void UpgradeTables() {
    upgradeTables(stores().dbBasic, stores().dbTax, true);
}

void UpgradeColumns() {
    upgradeColumns(stores().dbBasic, stores().dbTax, true);
}

void UpgradeOpenStores() {
    upgradeTables(stores().dbBasic, stores().dbTax, false);
    upgradeColumns(stores().dbBasic, stores().dbTax, false);
    // A server database laid down by an older build gains the notices its lists listen for.
    for (Database* db : {&stores().dbBasic, &stores().dbBill, &stores().dbTax})
        addChangeNotices(*db);
}

void UpgradeStoreFiles(Database& basic, Database& tax) {
    upgradeTables(basic, tax, false);
    upgradeColumns(basic, tax, false);
}

} // namespace nb
