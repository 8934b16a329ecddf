#pragma once
// Products: the look-ups all documents share, the numbering, the save of the entry form with
// its duplicate question, and the two queries of the product list.

#include "master/SearchIndex.h"

#include <QString>
#include <QStringList>
#include <QVector>
#include <array>

namespace nb {

// By code, or (with an empty code) by a name pattern, or everything (all); ordered by code.
// True when the snapshot opened with rows.
bool FindProduct(Recordset& rs, const QString& code, const QString& name, bool all);
// PName, with PNorm in brackets when that is not empty; empty text for an unknown code.
QString GetProductName(const QString& code);
// The highest code plus one, "000001" on an empty table; false after a failure box when the
// highest code is no number.
bool NextProductCode(QString& code);

// PName, PNorm, BuyPrice, SalePrice, Bigo, Unit: the boxes txtinput(0..5) of the entry form.
inline constexpr int kProductFieldCount = 6;
using ProductFields = std::array<QString, kProductFieldCount>;

// A price box as stored: commas and blanks removed, converted to a 32-bit integer (half to
// even, so "1,500.75" is 1501). False after the platform's failure text for no number or an
// overflow.
bool PriceForSave(const QString& box, qint32& price);

enum class ProductSave { Inserted, Updated, NameMissing, Cancelled, Declined, Failed };
// The save of FrmNewProduct. `code` is txtPCode: a code with mode 1 updates that product;
// otherwise a product of the same name and norm is asked about (Yes updates it, No empties
// the form, Cancel goes back), and a new one takes the next code. `code` comes back as the
// code written.
ProductSave SaveProduct(const ProductFields& fields, QString& code, int mode);
// Deletes the product and says so.
void DeleteProduct(const QString& code);

// One row of the list: name with norm, unit, tax kind, price text, "", code, "".
QVector<QStringList> ProductListRows(Recordset& rs, int kind);
// The two queries of the list: names that begin with the text, names that contain it; a
// first character coded below 66 or from 122 on also searches the code.
SqlPart ProductPrefixQuery(const QString& text);
SqlPart ProductContainsQuery(const QString& text);
// The list's answer from the two counts: 0 for none or one (a match inside a name only),
// 1 for two (the product both queries found), 2 above.
int ProductListResult(int prefixCount, int containsCount);
// The price as the list shows it: decimals up to two when it has a fraction, "0" for zero,
// otherwise grouped digits.
QString ListPriceText(double price);

} // namespace nb
