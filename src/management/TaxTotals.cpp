#include "management/TaxTotals.h"

#include "common/text/NumberFormat.h"
#include "storage/CrossFileQueries.h"
#include "storage/Database.h"
#include "storage/StoreAside.h"
#include "storage/StoreEngine.h"

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>

namespace nb {

namespace {

const char* const kQuarterEnds[4][2] = {
    {"-01-01", "-03-31"}, {"-04-01", "-06-30"}, {"-07-01", "-09-30"}, {"-10-01", "-12-31"}};
const char* const kHalfEnds[2][2] = {{"-01-01", "-06-30"}, {"-07-01", "-12-31"}};

} // namespace

// One SaleTotal row a trader of the period: the first invoice of the trader (the lowest row,
// as the store keeps them in the order they were issued; NewAcount has no key of its own), the
// trader's sums, the blank cells before the supply value (11 minus the digits of its whole part)
// and the trader's name from the basic file. Whole sums go in as whole numbers. BIGINT, as a
// year's sums pass what a 32-bit number holds; trunc, as a cast rounds on some engines.
const QString kFillSaleTotal = QStringLiteral(
    "INSERT INTO SaleTotal (Serial, CCode, TradeKum, VatKum, Blank, CName, UserCode) "
    "SELECT f.TaxCode, g.CCode, "
    "CASE WHEN g.TradeKum = trunc(g.TradeKum) THEN CAST(g.TradeKum AS BIGINT) ELSE g.TradeKum END, "
    "CASE WHEN g.VatKum = trunc(g.VatKum) THEN CAST(g.VatKum AS BIGINT) ELSE g.VatKum END, "
    "11 - length(CAST(CAST(trunc(g.TradeKum) AS BIGINT) AS TEXT)), t.C_Name, f.UserCode FROM "
    "(SELECT CCode, MIN(rowid) AS FirstRow, SUM(TradeKum) AS TradeKum, SUM(VatKum) AS VatKum "
    "FROM NewAcount WHERE DealDate BETWEEN ? AND ? GROUP BY CCode) g "
    "JOIN NewAcount f ON f.rowid = g.FirstRow LEFT JOIN basic.Trader t ON t.Code = g.CCode "
    "ORDER BY g.CCode NULLS FIRST");

namespace {

const QString kRefillHeadline = QStringLiteral("기간 합계를 만들지 못했습니다.");

// The seat's own rows of SaleTotal (on the server every seat shares the table).
QString saleTotalRows(const Database& db) {
    return seatRows(db.onServer(), QStringLiteral("SaleTotal"), QStringLiteral("SaleTotal"));
}

// A failed step of the refill, kept to be shown on the window's thread: a statement the engine
// refused (the query box), or a transaction that could not begin or commit (the save box).
struct RefillFailure {
    enum Kind { None, Statement, Save } kind = None;
    int number = 0;
    QString description;
    int engineCode = 0;
    QString sql;

    void noteStatement(const Database& db, const QString& statement, const QVariantList& values = {}) {
        *this = {Statement, db.lastErrorNumber(), db.lastErrorDescription(), db.lastEngineCode(),
                 sqlForDisplay(statement, values)};
    }
    void noteSave(const Database& db) {
        *this = {Save, db.lastErrorNumber(), db.lastErrorDescription(), db.lastEngineCode(), QString()};
    }
    void report() const {
        if (kind == Statement) ReportQueryFailure(number, description, sql, engineCode);
        if (kind == Save) ReportSaveFailure(engineCode, description, kRefillHeadline);
    }
};

// The work tables emptied, SaleTotal filled, its rows counted and summed, in one transaction.
// Shows nothing: a failure is noted for the caller to show.
std::optional<TotalsRefill> refillOnce(Database& dbTax, const TotalsPeriod& period, RefillFailure& failure) {
    if (!dbTax.beginTransaction()) {
        failure.noteSave(dbTax);
        return std::nullopt;
    }
    const QStringList clear = clearTotalsStatements(dbTax.onServer());
    const std::pair<QString, QVariantList> steps[] = {
        {clear[0], {}}, {clear[1], {}}, {kFillSaleTotal, {period.from, period.to}}};
    for (const auto& [sql, values] : steps) {
        if (!dbTax.tryExecute(sql, values)) {
            failure.noteStatement(dbTax, sql, values);
            dbTax.rollback();
            return std::nullopt;
        }
    }
    TotalsRefill refill;
    {
        QSqlQuery count(dbTax.connection());
        const QString countSql = totalsCountQuery(dbTax.onServer());
        if (!count.exec(countSql) || !count.next()) {
            const QSqlError error = count.lastError();
            const int code = error.nativeErrorCode().toInt();
            failure = {RefillFailure::Statement, errorNumberFor(error.databaseText(), code),
                       error.databaseText().isEmpty() ? error.text() : error.databaseText(), code, countSql};
            count.finish();
            dbTax.rollback();
            return std::nullopt;
        }
        refill = {count.value(0).toInt(), count.value(1).toDouble(), count.value(2).toDouble()};
    }
    if (!dbTax.commit()) {
        failure.noteSave(dbTax);
        return std::nullopt;
    }
    return refill;
}

// The same, run again quietly while another seat's save on the server breaks it off: only the
// last try's failure is kept to be shown.
std::optional<TotalsRefill> refillWorkTables(Database& dbTax, const TotalsPeriod& period,
                                             RefillFailure& failure) {
    std::optional<TotalsRefill> refill;
    RetryingSave([&] {
        failure = RefillFailure();
        refill = refillOnce(dbTax, period, failure);
        return refill.has_value();
    });
    return refill;
}

// The rows of SaleTotal as the grid shows them.
std::optional<QList<TraderTotal>> readSaleTotal(Database& dbTax) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs,
                      QStringLiteral("SELECT * FROM ") + saleTotalRows(dbTax) +
                          QStringLiteral(" ORDER BY rowid")))
        return std::nullopt;
    QList<TraderTotal> rows;
    rows.reserve(rs.RecordCount());
    for (; !rs.EOF_(); rs.MoveNext()) {
        TraderTotal row;
        row.cCode = rs.text(QStringLiteral("CCode"));
        row.cName = rs.text(QStringLiteral("CName"));
        row.taxCode = rs.text(QStringLiteral("Serial"));
        row.userCode = rs.text(QStringLiteral("UserCode"));
        row.tradeKum = rs.number(QStringLiteral("TradeKum"));
        row.vatKum = rs.number(QStringLiteral("VatKum"));
        rows.append(row);
    }
    CloseRs(rs);
    return rows;
}

void reportUnopened(const QString& file) {
    ReportQueryFailure(-1, QStringLiteral("unable to open database: ") + file, kFillSaleTotal);
}

// "2024년 01월 01일" of "2024-01-01".
QString koreanDate(const QString& isoDate) {
    return isoDate.left(4) + QStringLiteral("년 ") + isoDate.mid(5, 2) + QStringLiteral("월 ") +
           isoDate.mid(8, 2) + QStringLiteral("일");
}

std::optional<double> sumOf(Database& db, const QString& column, bool sales, const TotalsPeriod& period) {
    Recordset rs;
    const QString table = sales ? QStringLiteral("NewAcount") : QStringLiteral("BuyTax");
    if (!OpenSnapshot(
            db, rs,
            QStringLiteral("SELECT SUM(%1) FROM %2 WHERE DealDate BETWEEN ? AND ?").arg(column, table),
            {period.from, period.to}))
        return std::nullopt;
    const double sum = rs.EOF_() ? 0 : rs.field(0).toDouble();
    CloseRs(rs);
    return sum;
}

} // namespace

TotalsPeriod totalsPeriod(TotalsKind kind, int period, const QString& year, const QString& date0,
                          const QString& date1) {
    if (kind == TotalsKind::Quarter) {
        const int q = qBound(0, period, 3);
        return {year + QLatin1String(kQuarterEnds[q][0]), year + QLatin1String(kQuarterEnds[q][1])};
    }
    if (kind == TotalsKind::Half) {
        const int h = qBound(0, period, 1);
        return {year + QLatin1String(kHalfEnds[h][0]), year + QLatin1String(kHalfEnds[h][1])};
    }
    return {date0, date1};
}

QStringList periodRows(TotalsKind kind) {
    if (kind == TotalsKind::Quarter)
        return {QStringLiteral("1. 1/4 분기"), QStringLiteral("2. 2/4 분기"), QStringLiteral("3. 3/4 분기"),
                QStringLiteral("4. 4/4 분기")};
    if (kind == TotalsKind::Half) return {QStringLiteral("1. 1/2 분기"), QStringLiteral("2. 2/2 분기")};
    return {};
}

std::optional<QList<TraderTotal>> SearchTotals(Database& dbTax, const QString& basicFile,
                                               const TotalsPeriod& period) {
    if (!dbTax.attach(basicFile, kBasicAlias)) {
        reportUnopened(basicFile);
        return std::nullopt;
    }
    RefillFailure failure;
    const std::optional<TotalsRefill> refill = refillWorkTables(dbTax, period, failure);
    dbTax.detach(kBasicAlias);
    failure.report();
    if (!refill) return std::nullopt;
    return readSaleTotal(dbTax);
}

std::optional<TotalsRefill> RefillTotalsAside(Database& dbTax, const QString& basicFile,
                                              const TotalsPeriod& period) {
    if (!dbTax.isOpen()) {
        // The box a statement on a store never opened shows.
        dbTax.Execute(kFillSaleTotal, {period.from, period.to});
        return std::nullopt;
    }
    const QString taxFile = dbTax.path();
    QString unopened;
    RefillFailure failure;
    std::optional<TotalsRefill> refill;
    runAside([&] {
        Database aside;
        aside.workForSeatOf(dbTax); // the window reads the rows it leaves
        if (!aside.open(taxFile))
            unopened = taxFile;
        else if (!aside.attach(basicFile, kBasicAlias))
            unopened = basicFile;
        else
            refill = refillWorkTables(aside, period, failure);
    });
    if (!unopened.isEmpty()) reportUnopened(unopened);
    failure.report();
    return refill;
}

QStringList clearTotalsStatements(bool server) {
    return {clearSeatRows(server, QStringLiteral("BuyTotal")),
            clearSeatRows(server, QStringLiteral("SaleTotal"))};
}

QString totalsCountQuery(bool server) {
    return QStringLiteral("SELECT COUNT(*), COALESCE(SUM(TradeKum), 0.0), COALESCE(SUM(VatKum), 0.0) FROM ") +
           seatRows(server, QStringLiteral("SaleTotal"), QStringLiteral("SaleTotal"));
}

QString totalsListQuery(bool server) {
    return QStringLiteral(
               "SELECT '', CName, TradeKum, VatKum, TradeKum + VatKum, NULL, NULL, NULL, CCode, Serial, "
               "'1' FROM ") +
           seatRows(server, QStringLiteral("SaleTotal"), QStringLiteral("SaleTotal")) +
           QStringLiteral(" ORDER BY rowid");
}

std::array<double, 6> panelSums(const QList<TraderTotal>& rows) {
    std::array<double, 6> sums{};
    for (const TraderTotal& row : rows) {
        const int side = row.gubun == u"0" ? 3 : 0;
        sums[size_t(side)] += row.tradeKum;
        sums[size_t(side + 1)] += row.vatKum;
        sums[size_t(side + 2)] += row.sumKum();
    }
    return sums;
}

std::array<double, 6> panelSums(const TotalsRefill& refill) {
    return {refill.tradeKum, refill.vatKum, refill.tradeKum + refill.vatKum, 0, 0, 0};
}

QString panelText(double sum) {
    return FormatNumber(sum, kMaskAmount) + u' ';
}

std::optional<double> GetSumKum(Database& dbTax, bool sales, const TotalsPeriod& period) {
    return sumOf(dbTax, QStringLiteral("TradeKum"), sales, period);
}

std::optional<double> GetSumVat(Database& dbTax, bool sales, const TotalsPeriod& period) {
    return sumOf(dbTax, QStringLiteral("VatKum"), sales, period);
}

TotalsReportValues totalsReportValues(TotalsKind kind, int period, const QString& year, const QString& date0,
                                      const QString& date1, double sumKum, double sumVat,
                                      const QDate& today) {
    TotalsReportValues v;
    const TotalsPeriod p = totalsPeriod(kind, period, year, date0, date1);
    if (kind == TotalsKind::Dates)
        v.sDate = QStringLiteral("(           년          기)");
    else
        v.sDate = QStringLiteral("(   ") + year + QStringLiteral("년 ") + QString::number(period + 1) +
                  (kind == TotalsKind::Quarter ? QStringLiteral("/4 기   )") : QStringLiteral("/2 기   )"));
    v.sPeriod = koreanDate(p.from) + QStringLiteral(" - ") + koreanDate(p.to);
    v.selectFrom = p.from;
    // The second half's report once ended its selection at "YYYY-012-31", which as text sorts
    // before the half begins, so it printed an empty table under the half's full sums. A 합계표
    // that leaves out half a year's receivers does not keep the books whole: it selects the half.
    v.selectTo = p.to;
    v.dSumKum = FormatNumber(sumKum, kMaskSum).remove(u' ');
    v.dSumVat = FormatNumber(sumVat, kMaskSum).remove(u' ');
    v.sIssueDate = today.toString(QStringLiteral("yyyy년 MM월 dd일"));
    return v;
}

} // namespace nb
