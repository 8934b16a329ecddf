#pragma once
// The store files of the running program and the start-up steps on them.

#include "storage/Database.h"

namespace nb {

struct Stores {
    Database dbBasic;     // User, Environment, Trader, Product
    Database dbBill;      // Master, Detail
    Database dbTax;       // NewAcount, BuyTax, BuyTotal, SaleTotal
    Database dbEstimate;  // EstiBase, Estimate (opened by the quotation screen)
};
Stores& stores();
// Closes everything (tests, and before the files are replaced).
void closeStores();

// Creates each store file named in the application state that does not exist yet, with its
// complete layout (tables, columns in order, indexes). An existing file is not touched.
void CreateMissingStoreFiles();
// Opens dbBasic, dbTax, dbBill in that order; the first failure ends with false.
bool OpenDatabases();
// The upgrade steps, run at every start; an up-to-date store passes with no statement run.
void UpgradeTables();
void UpgradeColumns();

// The default supplier: fills rsUser(), sets DefaultCompany; true when a supplier is at hand.
bool LoadDefaultUser();
Recordset& rsUser();

} // namespace nb
