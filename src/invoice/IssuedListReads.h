#pragma once
// The reads of the invoice screen's issued list, run at every customer chosen and every save:
// the customer's count and sums, its invoices one row each, and the period's sums. On a SQLite
// store each statement is kept prepared on the tax store's connection while the screen lives,
// so a read binds and steps instead of preparing anew; on the server they are the store's own
// reads. A kept statement is reset as soon as its rows are through, so every read sees what was
// saved before it.

#include "common/grid/GridRows.h"
#include "common/grid/SqliteRows.h"
#include "invoice/InvoiceStore.h"

#include <memory>
#include <optional>

namespace nb {

class Database;

class IssuedListReads {
public:
    // As ReadIssuedSums; nothing when the read failed (its box shown).
    std::optional<IssuedSums> customerSums(Database& dbTax, const QString& cCode);
    // The rows of kIssuedListQuery for the list to read as it is seen; null when the statement
    // failed (its box shown). Rows of a list handed out earlier end when this runs again.
    std::unique_ptr<GridRowSource> invoices(Database& dbTax, const QString& cCode);
    // Ends the rows of the list handed out last (those not read yet are dropped), so the reads
    // after it see what was saved since it began.
    void endInvoices();
    // As ReadTaxSums.
    std::optional<TaxSums> periodSums(Database& dbTax, const QString& from, const QString& to);
    // How many statements are kept now.
    int kept() const { return m_kept.size(); }

private:
    std::shared_ptr<SqliteStatement> run(Database& dbTax, const QString& sql, const QVariantList& values);
    bool readRow(Database& dbTax, const QString& sql, const QVariantList& values, QVariant* row, int width);

    KeptStatements m_kept;
    std::shared_ptr<SqliteStatement> m_invoices; // the list's statement, while a list reads it
};

} // namespace nb
