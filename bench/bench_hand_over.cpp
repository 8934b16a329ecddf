// The record of hand-overs at a busy shop's year: 50,000 invoices of two lines each, every one
// written into one of 500 files of 100 and half of the files marked uploaded. Timed: the
// uploaded invoices of the year with their day (what the 합계표 asks) and the invoices handed over
// (what an export asks), beside the same statement through the sqlite3 command line on the same
// file; and the record of one file of 100 invoices, one transaction.
#include "BenchSupport.h"
#include "BenchWindow.h"
#include "management/etax/HandOverRecord.h"

#include <QApplication>
#include <QSqlQuery>
#include <cstdio>

using namespace nb;

namespace {

constexpr int kInvoices = 50000;

bool run(const QString& sql) {
    QSqlQuery q(stores().dbTax.connection());
    if (q.exec(sql)) return true;
    std::fprintf(stderr, "%s\n", qPrintable(q.lastError().text()));
    return false;
}

void fill() {
    // Two lines an invoice, spread over 2025.
    run(QStringLiteral(
            "INSERT INTO NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, "
            "DealDate, TradeDate, UserCode) WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 "
            "FROM n WHERE i < %1) SELECT printf('%06d', 100000 + i / 2), printf('%06d', 1 + (i / 2) "
            "% 5000), '품목', 1, 10000, 10000, 1000, date('2025-01-01', '+' || ((i / 2) * 365 / %2) "
            "|| ' days'), '', '123-45-67891' FROM n")
            .arg(2 * kInvoices - 1)
            .arg(kInvoices));
    run(QStringLiteral("INSERT INTO EtaxFile (FileNo, FilePath, FromDate, ToDate, WrittenAt, Invoices, "
                       "UploadedDate, WithdrawnDate, Note) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT "
                       "i + 1 FROM n WHERE i < %1) SELECT i, '/tmp/전자세금계산서_' || i || '.xlsx', "
                       "'2025-01-01', '2025-12-31', '2026-01-05 10:00:00', 100, CASE WHEN i % 2 = 0 THEN "
                       "'2026-01-06' ELSE '' END, '', '' FROM n")
            .arg(kInvoices / 100));
    run(QStringLiteral("INSERT INTO EtaxHandOver (FileNo, TaxCode, DealDate, CCode, CName, TradeKum, VatKum) "
                       "SELECT 1 + (CAST(TaxCode AS INTEGER) - 100000) / 100, TaxCode, MIN(DealDate), "
                       "MIN(CCode), '가나상사', TOTAL(TradeKum), TOTAL(VatKum) FROM NewAcount GROUP BY "
                       "TaxCode"));
    run(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
}

void report(const char* what, int rows, double ms, double cli) {
    std::printf("%-44s %6d rows  program %8.2f ms  sqlite3 %8.2f ms  ratio %5.2f\n", what, rows, ms, cli,
                cli > 0 ? ms / cli : 0.0);
    std::fflush(stdout);
}

// The statement the record runs, with the year's dates in place of its parameters.
QString standingSql(bool uploadedOnly) {
    return sqlForDisplay(standingInvoicesSql(uploadedOnly),
                         {QStringLiteral("2025-01-01"), QStringLiteral("2025-12-31")});
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    test::TestHome home;
    bench::openFreshStore();
    fill();
    int uploaded = 0, handed = 0;
    const double uploadedMs = bench::medianMs([&] {
        uploaded =
            int(UploadedInvoiceDates(QStringLiteral("2025-01-01"), QStringLiteral("2025-12-31")).size());
    });
    report("UploadedInvoiceDates, a year", uploaded, uploadedMs,
           bench::cliMs(stores().dbTax.path(), standingSql(true)));
    const double handedMs = bench::medianMs([&] {
        handed =
            int(HandedOverInvoices(stores().dbTax, QStringLiteral("2025-01-01"), QStringLiteral("2025-12-31"))
                    ->size());
    });
    report("HandedOverInvoices, a year", handed, handedMs,
           bench::cliMs(stores().dbTax.path(), standingSql(false)));
    QList<HandOverEntry> entries;
    for (int i = 0; i < 100; ++i)
        entries << HandOverEntry{QString::number(200000 + i),
                                 QStringLiteral("2026-01-05"),
                                 QStringLiteral("000001"),
                                 QStringLiteral("가나상사"),
                                 10000,
                                 1000};
    const double recordMs = bench::medianMs([&] {
        RecordHandOverFile(stores().dbTax, QStringLiteral("/tmp/bench.xlsx"), QStringLiteral("2026-01-01"),
                           QStringLiteral("2026-01-31"), entries, nullptr);
    });
    QString inserts = QStringLiteral("BEGIN IMMEDIATE; INSERT INTO EtaxFile (FileNo, FilePath) SELECT "
                                     "MAX(FileNo) + 1, 'x' FROM EtaxFile;");
    for (int i = 0; i < 100; ++i)
        inserts +=
            QStringLiteral("INSERT INTO EtaxHandOver (FileNo, TaxCode, DealDate, CCode, CName, TradeKum, "
                           "VatKum) SELECT MAX(FileNo), '%1', '2026-01-05', '000001', '가나상사', 10000, "
                           "1000 FROM EtaxFile;")
                .arg(300000 + i);
    inserts += QStringLiteral("COMMIT");
    report("RecordHandOverFile, one file of 100", 100, recordMs,
           bench::cliScriptMs(stores().dbTax.path(), inserts + QStringLiteral(";")));
    return 0;
}
