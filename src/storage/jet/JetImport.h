#pragma once
// The import of a shop's folder of the original's Jet files (dbBasic.mdb, dbBill.mdb, dbTax.mdb,
// dbEstimate.mdb, dbPost.mdb, InOutCash.mdb and perhaps the old dbdetail.mdb) as the program's
// stores, in one step:
// 1. each file is read by a child process of the program (see JetReader.h) into a raw file;
// 2. new stores are built aside, in a folder beside the store folder, with the values as the
//    original kept them; files of the older layout go through the start-up upgrade steps, an
//    old dbdetail.mdb through the statement conversion (into a scratch store, then appended, so
//    the shop's own statement totals are never recomputed);
// 3. every table is checked: rows and the sum of every numeric column, read beside written;
// 4. only then the new store folder takes the place of the current one in one step (the two
//    folders are exchanged by the file system), and the current stores are kept whole, as they
//    were, in a dated folder beside it.
// Anything wrong before step 4 leaves the current stores untouched; a kill at any moment leaves
// either the old stores or the new ones, never a mixture.

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace nb {

struct JetColumnSum {
    QString column;
    double read = 0;
    double written = 0;
};

// One table of a source file: what was read and what stands in the new store.
struct JetTableFigures {
    QString source; // "dbBasic.mdb"
    QString table;  // "Trader"; a converted table reads "DealList → Detail"
    qint64 rowsRead = 0;
    qint64 rowsWritten = 0;
    QList<JetColumnSum> sums;
    bool matches() const;
};

struct JetImportReport {
    bool ok = false;
    QString failure;   // why nothing changed, in Korean, naming the file when one is to blame
    QStringList notes; // what was not carried (unknown tables or columns) or kept as it was
    QList<JetTableFigures> tables;
    QString keptFolder; // where the stores from before the import now lie
};

struct JetImportOptions {
    // The program run as the reader child; empty for this program itself.
    QString readerProgram;
    int readerTimeoutMillis = 30 * 60 * 1000;
    // Told the table being built and its rows.
    std::function<void(const QString& table, qint64 rows)> progress;
};

// The reader program used when the options name none (tests name the built program); empty
// for this program itself.
void setJetReaderProgram(const QString& program);

// The import into the stores of the application state. The caller closes nothing: the live
// stores are closed right before the exchange, and the caller opens them again afterwards.
JetImportReport importJetFolder(const QString& folder, const JetImportOptions& options = {});

// The report as lines for the operator: per table rows and sums read and written, then notes.
QStringList jetReportLines(const JetImportReport& report);
// A number as the report shows it: no exponent, no trailing zeros.
QString jetFigure(double value);

} // namespace nb
