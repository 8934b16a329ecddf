#pragma once
// Products: the look-ups all documents share, the numbering, the save of the entry form with
// its duplicate question, and the statement of the product list with its rows.

#include "common/grid/GridRows.h"
#include "master/SearchIndex.h"

#include <QString>
#include <QStringList>
#include <QVector>
#include <array>
#include <memory>

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

// The list's one statement: the products whose name contains the text (or whose code does,
// when the first character's code is not negative and below 66 or from 122 on), those whose
// name begins with it (or found by the code) first, each part by name and code. Columns pName,
// pNorm, PTax, PBuyPrice, PSalePrice, PCode, Unit and later (0 for the first part, 1 after).
SqlPart ProductListQuery(const QString& text);

// What the list has read of the statement: rows, and how many of them were of the first part.
struct ProductListCount {
    int rows = 0;
    int first = 0;
};
// The list's rows from the statement's, as they are read: name with norm, unit, tax kind,
// price text, "", code, "" (an empty text as no value); kind chooses the price as InitForm's.
class ProductListRows : public GridRowSource {
public:
    ProductListRows(std::unique_ptr<GridRowSource> rows, int kind, std::shared_ptr<ProductListCount> count);
    int width() const override { return kProductListColumns; }
    bool next(QVariant* out, int count) override;
    static constexpr int kProductListColumns = 7;

private:
    std::unique_ptr<GridRowSource> m_rows;
    int m_price = -1; // the statement's column of the price shown, -1 for none
    std::shared_ptr<ProductListCount> m_count;
};
// The statement of the text run on the store, its rows ready for the list (stepped through the
// engine's own interface on a SQLite store); null after the failure box.
std::unique_ptr<GridRowSource> OpenProductList(Database& db, const QString& text, int kind,
                                               std::shared_ptr<ProductListCount> count);

// The list's answer from the rows of the two parts, as if each part were counted on its own
// (a product of the first part counts twice): 0 for none or one (a match inside a name only),
// 1 for two (the product both parts hold), 2 above. The first page the list reads decides it.
int ProductListResult(int firstPartRows, int rows);
// The price as the list shows it: decimals up to two when it has a fraction, "0" for zero,
// otherwise grouped digits.
QString ListPriceText(double price);

} // namespace nb
