#include "storage/CrossFileQueries.h"

#include "common/grid/SqliteRows.h"
#include "core/AppState.h"
#include "storage/Stores.h"

namespace nb {
bool AttachForQuery(Database& db, const QString& otherFile, const QString& alias, const QString& sql,
                    const QVariantList& values) {
    if (!db.isOpen()) {
        ReportQueryFailure(ErrNotOpened, QString(), sqlForDisplay(sql, values));
        return false;
    }
    if (!db.attach(otherFile, alias)) {
        ReportQueryFailure(-1, QStringLiteral("unable to open database: ") + otherFile,
                           sqlForDisplay(sql, values));
        return false;
    }
    return true;
}

namespace {

// Attaches the other file, runs the query into rs and lets the file go again.
bool openAcrossFiles(Database& db, const QString& otherFile, const QString& alias, Recordset& rs,
                     const QString& sql, const QVariantList& values) {
    rs.close();
    if (!AttachForQuery(db, otherFile, alias, sql, values)) return false;
    const bool ok = OpenSnapshot(db, rs, sql, values);
    db.detach(alias);
    return ok;
}

} // namespace

QString statementListSql(bool withTrader) {
    return QStringLiteral("Select master.*, trader.C_Name from master Left Join ") + kBasicAlias +
           QStringLiteral(".Trader On master.ccode = trader.code where billdate between ? and ?") +
           (withTrader ? QStringLiteral(" AND CCode = ?") : QString()) +
           QStringLiteral(" order by BillDate, billno");
}

bool OpenStatementList(Database& bill, const QString& basicFile, Recordset& rs, const QString& from,
                       const QString& to, const QString& traderCode) {
    const bool withTrader = !traderCode.isEmpty();
    QVariantList values{from, to};
    if (withTrader) values << traderCode;
    return openAcrossFiles(bill, basicFile, kBasicAlias, rs, statementListSql(withTrader), values);
}

bool OpenStatementList(Recordset& rs, const QString& from, const QString& to, const QString& traderCode) {
    return OpenStatementList(stores().dbBill, app().DbBasicFile, rs, from, to, traderCode);
}

QString statementListRowsSql(bool withTrader) {
    return QStringLiteral(
               "Select master.BillDate, trader.C_Name, master.NumBill, master.TotAmount + master.TotVat, "
               "master.BillNo, master.CCode from master Left Join ") +
           kBasicAlias +
           QStringLiteral(".Trader On master.ccode = trader.code where billdate between ? and ?") +
           (withTrader ? QStringLiteral(" AND CCode = ?") : QString()) +
           QStringLiteral(" order by BillDate, billno");
}

namespace {

// How many statements the dates (and the trader) hold, counted on the date index: the list
// makes room for them once instead of growing as they come. -1 when the count failed; it is
// only a size to make room for, the rows are what the list statement gives.
int statementCount(Database& bill, bool withTrader, const QVariantList& values) {
    SqliteStatement count(bill.connection(),
                          QStringLiteral("SELECT COUNT(*) FROM master WHERE billdate BETWEEN ? AND ?") +
                              (withTrader ? QStringLiteral(" AND CCode = ?") : QString()),
                          values);
    QVariant rows;
    return count.next(&rows, 1) ? rows.toInt() : -1;
}

} // namespace

// A SQLite store steps the statement itself: the list reads every row at once, and the values
// come straight from the engine instead of through a record per row.
bool ReadStatementListRows(Database& bill, const QString& basicFile, const QString& from, const QString& to,
                           const QString& traderCode,
                           const std::function<void(std::unique_ptr<GridRowSource>)>& read) {
    const bool withTrader = !traderCode.isEmpty();
    QVariantList values{from, to};
    if (withTrader) values << traderCode;
    const QString sql = statementListRowsSql(withTrader);
    if (!AttachForQuery(bill, basicFile, kBasicAlias, sql, values)) return false;
    bool ok = false;
    if (SqliteRows::canStep(bill.connection())) {
        auto rows = std::make_unique<SqliteRows>(bill.connection(), sql, values);
        rows->expectRows(statementCount(bill, withTrader, values));
        const std::shared_ptr<SqliteStatement> statement = rows->statement();
        if (statement->ok()) read(std::move(rows));
        statement->finish(); // whatever read left, so the file can be let go
        ok = statement->ok();
        if (!ok)
            ReportQueryFailure(errorNumberFor(statement->engineText(), statement->engineCode()),
                               statement->engineText(), sqlForDisplay(sql, values), statement->engineCode());
    } else {
        QSqlQuery query(bill.connection());
        ok = OpenForwardOnly(bill, query, sql, values);
        if (ok) read(std::make_unique<QueryRows>(query));
        query.finish();
    } // the statement has ended here
    bill.detach(kBasicAlias);
    return ok;
}

QString tradersLastDealSql(const TraderDealFilter& filter) {
    QString sql = QStringLiteral("SELECT C_Name, Phone, Fax, HPhone, Trader.Code, MAX(BillDate) as lastdate"
                                 "  FROM Trader LEFT JOIN ") +
                  kBillAlias + QStringLiteral(".Master ON trader.code = Master.ccode");
    if (filter.byName) sql += QStringLiteral(" WHERE C_Name Like ? ESCAPE '\\'");
    sql += QStringLiteral(" GROUP BY C_Name, Phone, Fax, HPhone, Trader.Code");
    if (filter.byDate) {
        sql += QStringLiteral(" HAVING MAX(BillDate) < ?");
        if (filter.withNoDeal) sql += QStringLiteral(" OR MAX(BillDate) IS NULL");
    }
    return sql + QStringLiteral(" ORDER BY C_Name");
}

QVariantList tradersLastDealValues(const TraderDealFilter& filter, const QString& nameText,
                                   const QString& date) {
    QVariantList values;
    if (filter.byName) values << u'%' + likeLiteral(nameText) + u'%';
    if (filter.byDate) values << date;
    return values;
}

bool OpenTradersLastDeal(Recordset& rs, const TraderDealFilter& filter, const QString& nameText,
                         const QString& date) {
    return openAcrossFiles(stores().dbBasic, app().DbBillFile, kBillAlias, rs, tradersLastDealSql(filter),
                           tradersLastDealValues(filter, nameText, date));
}

QString tradersNotDealtSinceSql() {
    return tradersLastDealSql({true, true, true});
}

bool OpenTradersNotDealtSince(Database& basic, const QString& billFile, Recordset& rs,
                              const QString& nameText, const QString& date) {
    const QString pattern = u'%' + likeLiteral(nameText) + u'%';
    return openAcrossFiles(basic, billFile, kBillAlias, rs, tradersNotDealtSinceSql(), {pattern, date});
}

bool OpenTradersNotDealtSince(Recordset& rs, const QString& nameText, const QString& date) {
    return OpenTradersNotDealtSince(stores().dbBasic, app().DbBillFile, rs, nameText, date);
}

} // namespace nb
