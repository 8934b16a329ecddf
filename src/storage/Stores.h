#pragma once
// The store files of the running program and the start-up steps on them.

#include "storage/Database.h"

namespace nb {

struct Stores {
    Database dbBasic;    // User, Environment, Trader, Product
    Database dbBill;     // Master, Detail
    Database dbTax;      // NewAcount, BuyTax, BuyTotal, SaleTotal
    Database dbEstimate; // EstiBase, Estimate (opened by the quotation screen)
};
Stores& stores();
// Closes everything (tests, and before the files are replaced).
void closeStores();

// Creates each store file named in the application state that does not exist yet or is empty
// (zero bytes), with its complete layout (tables, columns in order, indexes). A file with
// content is not touched. (Defined with the layout, storage/StoreLayout.cpp.)
void CreateMissingStoreFiles();
// Opens dbBasic, dbTax, dbBill in that order; the first failure ends with false. The start-up
// road opens them through OpenWholeStores (storage/StoreCheck.h), each file on its own.
bool OpenDatabases();
// The upgrade steps, run at every start after OpenDatabases; an up-to-date store passes with
// no statement run. UpgradeTables: BuyTax, BuyTotal, SaleTotal on dbTax when absent;
// NewAcount.UserCode with its data move; User's primary index. UpgradeColumns: Trader.HPhone
// and Product.Unit by DAO_AddField, each with its statement.
void UpgradeTables();
void UpgradeColumns();
// Both upgrade steps as the start-up road runs them: each step on the stores that opened; a
// store that did not open was named at its opening and is upgraded at the start that opens it.
// The quotation store file, which its screens open, is opened for its own step: the index of
// running codes its next number reads (runningCodeIndex, storage/StoreLayout.h); unless it is
// among the files the start's check named damaged, which are left as they are.
void UpgradeOpenStores(const QStringList& damagedFiles = {});
// On the server: every store of the seat (the estimate store too) gains what an older build did
// not lay down: the unique index of each table's row numbers, the seat column of the work
// tables, the notice triggers, the estimate store's index of running codes. Each store in one
// transaction; false (its box shown) when a store's steps failed, which leave it as it was.
// Files are left alone.
bool UpgradeServerStores();
// The same steps on two store files opened by the caller (an import builds its stores aside and
// brings them up to date by the steps the program runs on its own).
void UpgradeStoreFiles(Database& basic, Database& tax);

// The default supplier: fills rsUser() from User (the row of DefaultSerial, or all rows when
// none is set or it is gone, after saying so and emptying "기본사업자"), sets DefaultCompany
// to its Company or "하르문"; true when a supplier row is at hand.
bool LoadDefaultUser();
// The result of the last LoadDefaultUser; stays open between calls.
Recordset& rsUser();
// The placeholder company name when no supplier is at hand.
inline const QString kPlaceholderCompany = QStringLiteral("하르문");

} // namespace nb
