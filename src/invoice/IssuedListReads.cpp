#include "invoice/IssuedListReads.h"

#include "storage/Database.h"

#include <QSqlQuery>

namespace nb {

// The kept statement run with values; null when it could not run (its box shown).
std::shared_ptr<SqliteStatement> IssuedListReads::run(Database& dbTax, const QString& sql,
                                                      const QVariantList& values) {
    if (!dbTax.isOpen()) {
        ReportQueryFailure(ErrNotOpened, QString(), sqlForDisplay(sql, values));
        return nullptr;
    }
    std::shared_ptr<SqliteStatement> statement = m_kept.run(dbTax.connection(), sql, values);
    if (statement && !statement->ok()) {
        ReportQueryFailure(errorNumberFor(statement->engineText(), statement->engineCode()),
                           statement->engineText(), sqlForDisplay(sql, values), statement->engineCode());
        return nullptr;
    }
    return statement;
}

// The statement's one row into row (nulls when it gives none), the statement reset after it.
bool IssuedListReads::readRow(Database& dbTax, const QString& sql, const QVariantList& values, QVariant* row,
                              int width) {
    const std::shared_ptr<SqliteStatement> statement = run(dbTax, sql, values);
    if (!statement) return false;
    statement->next(row, width);
    statement->finish();
    if (statement->ok()) return true;
    ReportQueryFailure(errorNumberFor(statement->engineText(), statement->engineCode()),
                       statement->engineText(), sqlForDisplay(sql, values), statement->engineCode());
    return false;
}

std::optional<IssuedSums> IssuedListReads::customerSums(Database& dbTax, const QString& cCode) {
    if (!SqliteRows::canStep(dbTax.connection())) return ReadIssuedSums(dbTax, cCode);
    QVariant row[3];
    if (!readRow(dbTax, kIssuedSumsQuery, {cCode}, row, 3)) return std::nullopt;
    return IssuedSums{int(row[0].toDouble()), row[1].toDouble(), row[2].toDouble()};
}

std::unique_ptr<GridRowSource> IssuedListReads::invoices(Database& dbTax, const QString& cCode) {
    if (!SqliteRows::canStep(dbTax.connection())) {
        auto rows = std::make_unique<QSqlQuery>(dbTax.connection());
        if (!OpenForwardOnly(dbTax, *rows, kIssuedListQuery, {cCode})) return nullptr;
        return std::make_unique<QueryRows>(std::move(rows));
    }
    std::shared_ptr<SqliteStatement> statement = run(dbTax, kIssuedListQuery, {cCode});
    if (!statement) return nullptr;
    m_invoices = statement;
    return std::make_unique<SqliteRows>(std::move(statement));
}

void IssuedListReads::endInvoices() {
    if (m_invoices) m_invoices->finish();
    m_invoices.reset();
}

std::optional<TaxSums> IssuedListReads::periodSums(Database& dbTax, const QString& from, const QString& to) {
    if (!SqliteRows::canStep(dbTax.connection())) return ReadTaxSums(dbTax, from, to);
    QVariant row[2];
    if (!readRow(dbTax, kPeriodSumsQuery, {from, to}, row, 2)) return std::nullopt;
    return TaxSums{row[0].toDouble(), row[1].toDouble()};
}

} // namespace nb
