#pragma once
// The reads every save's next number stands on, with the engine's plan of each: the quotation's
// number and line key, the invoice's and the statement's numbers and a statement's line number,
// the trader's and the product's codes, the hand-over file's number. Each should read the end of
// an index (a few entries), never the table: the saves take these inside their transaction,
// under the store's writer lock.

#include "invoice/InvoiceStore.h"
#include "quotation/clsEstimate.h"
#include "storage/Stores.h"

#include <QSqlQuery>
#include <QString>
#include <QVariantList>
#include <cstdio>
#include <vector>

namespace nb::bench {

struct NextNumberRead {
    const char* what;
    Database* store;
    QString sql;
    QVariantList values;
};

// The statements as the program writes them (the month and the statement named are those the
// benchmarks' books hold).
inline std::vector<NextNumberRead> nextNumberReads(const QString& month) {
    Stores& s = stores();
    return {{"quotation number (NextCode)", &s.dbEstimate, lastRunningCodeStatement(), {month, month}},
            {"quotation line key (NextSeq)",
             &s.dbEstimate,
             QStringLiteral("SELECT Max(Seq) AS MSeq FROM Estimate"),
             {}},
            {"invoice number (TaxCode)", &s.dbTax, nextTaxCodeStatement(), {}},
            {"statement number (BillNo)",
             &s.dbBill,
             QStringLiteral(
                 "SELECT MAX(last) AS last FROM (SELECT MAX(BillNo) AS last FROM Master UNION ALL SELECT "
                 "MAX(BillNo) FROM Detail) AS numbers"),
             {}},
            {"statement line (BillSEQ)",
             &s.dbBill,
             QStringLiteral("SELECT MAX(BillSEQ) AS seq FROM Detail WHERE BillNo = ?"),
             {QStringLiteral("000777")}},
            {"trader code (clsTrader::NextCode)",
             &s.dbBasic,
             QStringLiteral("SELECT Max(Code) AS MCode FROM Trader;"),
             {}},
            {"product code (NextProductCode)",
             &s.dbBasic,
             QStringLiteral("Select Code from Product order by Code desc LIMIT 1"),
             {}},
            {"hand-over file (FileNo)",
             &s.dbTax,
             QStringLiteral("SELECT MAX(FileNo) AS Last FROM EtaxFile"),
             {}}};
}

// The plan of each read, a line a step: EXPLAIN QUERY PLAN on the files, EXPLAIN ANALYZE on the
// server (its values written in, as its EXPLAIN takes no parameters; the server's own time of
// the statement is its last line).
inline void printNextNumberPlans(const QString& month) {
    for (const NextNumberRead& read : nextNumberReads(month)) {
        std::printf("plan of the %s:\n", read.what);
        QSqlQuery q(read.store->connection());
        if (read.store->onServer()) {
            QString text = read.store->statementFor(read.sql, read.values);
            for (const QVariant& v : read.values)
                text.replace(text.indexOf(u'?'), 1, u'\'' + v.toString() + u'\'');
            q.exec(QStringLiteral("EXPLAIN (ANALYZE, COSTS OFF) ") + text);
            while (q.next())
                std::printf("  %s\n", qPrintable(q.value(0).toString()));
        } else {
            q.prepare(QStringLiteral("EXPLAIN QUERY PLAN ") + read.sql);
            for (const QVariant& v : read.values)
                q.addBindValue(v);
            q.exec();
            while (q.next())
                std::printf("  %s\n", qPrintable(q.value(3).toString()));
        }
    }
    std::fflush(stdout);
}

} // namespace nb::bench
