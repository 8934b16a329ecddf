#pragma once
// The one-time move of an older installation's statements (dbdetail.db: DealTitle, DealList)
// into the statement store (dbBill.db: Master, Detail). Runs on the start-up road before the
// settings are read; the old file's presence triggers it and its renaming to dbDetail_bak.db
// marks it done. The whole move is one transaction: a failure or a crash half way leaves
// dbBill.db as it was and the old file in place, so the next start tries again.

#include <QString>

namespace nb {

class Database;

// How a line whose old amount cannot tell VAT-inclusive from tax free is treated.
enum class VatChoice : int { NotAsked = 0, Included = 1, TaxFree = 2 };

// One old line's amount and VAT. The plain amount is SaleKum when Quant or UnitCost is 0,
// else Quant x UnitCost. SaleKum above it means VAT added on top; otherwise the line is
// unclear and the choice decides (Included: amount = plain / 1.1 rounded, VAT the rest).
struct OldLineSplit {
    double amount = 0;
    double vat = 0;
    bool unclear = false;
};
double oldLinePlainAmount(double quant, double unitCost, double saleKum);
bool oldLineIsUnclear(double quant, double unitCost, double saleKum);
OldLineSplit splitOldLine(double quant, double unitCost, double saleKum, VatChoice choice);

// The folder of the store files as this step sees it: "db경로", or <app folder>/Dbs.
QString updateBillFolder();

// The old file attached to the statement store's connection as "old", where the conversion
// reads it. Done before the caller's transaction begins: the engine attaches no file inside one.
bool AttachOldStatements(Database& newDb, const QString& oldPath);

// The three passes of the conversion (heads, lines, the heads' totals from their lines) from an
// open old store, attached as above, into an open statement store, inside the caller's
// transaction; false when a pass could not read. Row-level failures are reported and passed over.
bool ConvertOldStatements(Database& oldDb, Database& newDb);

// The conversion. Nothing happens (and nothing is shown) without the old file.
void UpdateBill();

} // namespace nb
