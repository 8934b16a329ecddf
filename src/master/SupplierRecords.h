#pragma once
// The suppliers in the table User and what a supplier save does besides: the replace of the
// row shown, the duplicate check, the default supplier, the reset of the legacy settings and
// the hand-over stamp. The screen FrmUser holds the state; these functions do the work.

#include <QString>
#include <array>

namespace nb {

// Company, Delegate, Serial, Post, Addr, Phone, Fax, Status, Item, Email: the boxes
// txtinput(0..9).
inline constexpr int kSupplierFieldCount = 10;
inline constexpr int kSerialField = 2;
inline constexpr int kSupplierEmailField = 9;
using SupplierFields = std::array<QString, kSupplierFieldCount>;
const std::array<QString, kSupplierFieldCount>& SupplierColumns();

// The setting that names the default supplier.
inline const QString kDefaultSupplierKey = QStringLiteral("기본사업자");

// The row of a supplier; false when there is none (the fields are then empty).
bool ReadSupplier(const QString& serial, SupplierFields& fields);

struct SupplierFormState {
    bool HasUser = false; // the last LoadDefaultUser at load or at the default check box
    bool IsNew = false;   // set by cmdNew, cleared by a save
    QString OldSerial;    // Serial of the row shown
};

enum class SupplierSave { Saved, SerialMissing, Duplicate, BadEmail, Failed };
// The save of FrmUser: replace (or add), default supplier, legacy settings, notice, stamp.
// Deleting the row shown and adding its replacement run in one transaction, so a refused row
// leaves the old one in place.
SupplierSave SaveSupplier(SupplierFormState& state, const SupplierFields& fields, bool defaultChecked);
// Environment rewritten with its one row of zeros and empty texts, the postcode limits
// emptied, the password and decimal keys written as a supplier save leaves them.
void ResetLegacySettings();
// "StartYear" under "브란토2"/"환경설정": today's "YYYY-MM" when it is empty.
void StampHandOver();

// Makes the supplier the default one ("기본사업자").
void SetDefaultSupplier(const QString& serial);
// Deletes every row with the serial; false (after its box) when none was there. A deleted
// default supplier empties "기본사업자".
bool DeleteSupplier(const QString& serial, bool wasDefault);
// The next (or previous) serial in text order; empty after the box at either end.
QString NeighbourSupplier(const QString& serial, bool next);

} // namespace nb
