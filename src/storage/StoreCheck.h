#pragma once
// Each store file met at start-up on its own. A file is checked by reading it only: the
// engine's quick check, then the tables the program cannot do without. A damaged file is left
// exactly as found (a backup is what repairs it), the operator is told once which files they
// are and what to do, and every other store opens and works as usual.

#include <QList>
#include <QString>
#include <QStringList>

namespace nb {

struct TableDef;

// One store file of the application state: its path, what it holds in the operator's words,
// and the tables it cannot be without.
struct StoreFile {
    QString path;
    QString contents;
    QStringList requiredTables;
};
// Every store file named in the application state: basic, bill, tax, in-out, quotation, postcode.
QList<StoreFile> storeFiles();
// The tables of a layout a file must have: all but those the start-up upgrade adds to an older
// file by itself (BuyTax, BuyTotal, SaleTotal).
QStringList requiredTables(const QList<TableDef>& tables);

// Why the file cannot be used, in Korean; empty when it is whole (or missing: a missing file
// is laid down or reported by whoever needs it).
QString CheckStoreFile(const QString& path, const QStringList& requiredTables);

struct DamagedStore {
    QString path;
    QString contents;
    QString why;
};
// Every existing store file checked on its own.
QList<DamagedStore> CheckStoreFiles();
bool isDamaged(const QList<DamagedStore>& damaged, const QString& path);
// Their paths alone.
QStringList damagedPaths(const QList<DamagedStore>& damaged);

// Opens dbBasic, dbTax and dbBill, each on its own: a damaged one stays unopened, the others
// open all the same. False when any of the three did not open.
bool OpenWholeStores(const QList<DamagedStore>& damaged);
// The one box naming the damaged files with what to do; nothing when there are none.
QString damagedStoresText(const QList<DamagedStore>& damaged, const QString& storeFolder);
void ReportDamagedStores(const QList<DamagedStore>& damaged);
inline const QString kDamagedStoresTitle = QStringLiteral("자료 파일 손상");

} // namespace nb
