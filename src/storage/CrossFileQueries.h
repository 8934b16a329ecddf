#pragma once
// The two queries that join tables of two store files. The other file is attached to the
// connection for the query and let go of afterwards; both keep the rows of the left table
// that have no partner, and the last date of a trader with no statement reads as empty.
//
// Each comes as its statement text (values bound in the order given) and as an opener that
// fills a snapshot Recordset through the query helpers (a failure shows the query box and
// answers false). The openers with a Database take the file to attach; the short ones use
// the program's open stores and paths.

#include "common/grid/GridRows.h"
#include "storage/Database.h"

#include <functional>
#include <memory>

namespace nb {

// Attaches the other file for the query about to run; false (the query's box shown, with the
// statement) when the store is not open or the file cannot be attached.
bool AttachForQuery(Database& db, const QString& otherFile, const QString& alias, const QString& sql,
                    const QVariantList& values);

// Aliases the other file is attached under.
inline const QString kBasicAlias = QStringLiteral("basic");
inline const QString kBillAlias = QStringLiteral("bill");

// Statement list, on dbBill: every Master row with BillDate between from and to (text
// comparison, both ends included), and with CCode = code when a trader is chosen, plus the
// trader's C_Name (null when the trader is gone), ordered by BillDate, BillNo.
// Bound values: from, to[, code].
QString statementListSql(bool withTrader);
bool OpenStatementList(Database& bill, const QString& basicFile, Recordset& rs, const QString& from,
                       const QString& to, const QString& traderCode = QString());
bool OpenStatementList(Recordset& rs, const QString& from, const QString& to,
                       const QString& traderCode = QString());
// The same rows in the columns of the list on the screen (BillDate, C_Name, NumBill,
// TotAmount + TotVat, BillNo, CCode), run with the basic file attached. read gets them as a row
// source (on a SQLite store stepped through the engine's own interface, else the forward-only
// query) and reads what it needs before it returns; then the statement ends and the file is
// let go. False when the query failed (its box shown; read is not called when it could not
// start, and a failure met while reading is shown after it).
QString statementListRowsSql(bool withTrader);
bool ReadStatementListRows(Database& bill, const QString& basicFile, const QString& from, const QString& to,
                           const QString& traderCode,
                           const std::function<void(std::unique_ptr<GridRowSource>)>& read);

// Traders not dealt with since a date, on dbBasic: C_Name, Phone, Fax, HPhone, Code and
// lastdate (MAX(BillDate), empty for a trader with no statement) of the traders whose C_Name
// contains the text literally and whose last statement is before the date or who have none,
// ordered by C_Name. Bound values: the LIKE pattern ("%" + likeLiteral(text) + "%"), date.
QString tradersNotDealtSinceSql();
bool OpenTradersNotDealtSince(Database& basic, const QString& billFile, Recordset& rs,
                              const QString& nameText, const QString& date);
bool OpenTradersNotDealtSince(Recordset& rs, const QString& nameText, const QString& date);

// The traders with the date of their last statement (lastdate, null when none), ordered by
// C_Name: byName keeps the names that contain the text literally; byDate keeps those whose
// last statement is before the date, and withNoDeal those with none as well. Bound values:
// the LIKE pattern when byName, then the date when byDate.
struct TraderDealFilter {
    bool byName = false;
    bool byDate = false;
    bool withNoDeal = false;
};
QString tradersLastDealSql(const TraderDealFilter& filter);
QVariantList tradersLastDealValues(const TraderDealFilter& filter, const QString& nameText,
                                   const QString& date);
bool OpenTradersLastDeal(Recordset& rs, const TraderDealFilter& filter, const QString& nameText,
                         const QString& date);

} // namespace nb
