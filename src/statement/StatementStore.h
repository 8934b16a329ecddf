#pragma once
// Transaction statements in dbBill: one head row in Master and one row per line in Detail.
// A statement is written while it is typed: its head comes with the first line, each later
// edit of a line moves the head's totals by the difference (never by summing the lines again),
// and the head goes with its last line. Every save here is one transaction: a failed step
// shows its box and leaves the store as it was before the save.

#include <QList>
#include <QString>
#include <QVariant>
#include <optional>

namespace nb {

class Database;

inline const QString kFirstBillNo = QStringLiteral("000001");

// A statement's head as the list shows it.
struct StatementHead {
    QString billNo;
    QString billDate; // YYYY-MM-DD
    QString cCode;
    QString cName; // empty when the trader is gone
    double totAmount = 0;
    double totVat = 0;
    int numBill = 0;
    double total() const { return totAmount + totVat; }
};

// One line of a statement.
struct StatementLine {
    QString billNo;
    int billSeq = 0;
    QString pName;
    QString unit;
    double quant = 0;
    double price = 0;
    double amount = 0;
    double vat = 0;
};

// The number after the highest one over all of Master, six digits zero padded; "000001" for an
// empty table. Nothing when the read failed (the query box has been shown).
std::optional<QString> NextBillNo(Database& dbBill);
// The date box's text as stored: "년" and "월" become "-", "일" goes.
QString billDateFromBox(const QString& txtDate);

// What DetailInsert needs: the statement the line joins (empty number: a new statement whose
// head is made from the date and trader), and the product text.
struct NewLine {
    QString billNo;
    QString billDate;
    QString cCode;
    QString pName;
};
struct InsertedLine {
    bool ok = false;
    bool newHead = false; // the line began a new statement
    QString billNo;
    int billSeq = -1;
};
// A new line, born empty but for its text; on a new statement its head first (totals 0, one
// line). Its sequence is the highest of the statement plus one (1 for the first).
InsertedLine DetailInsert(Database& dbBill, const NewLine& line);

// The columns of Detail an edit may change.
bool isLineField(const QString& field);
struct UpdatedLine {
    bool ok = false;
    QString field;   // upper case
    double diff = 0; // stored minus new value of AMOUNT or VAT (0 for other fields)
};
// One field of one line changed; for AMOUNT and VAT the head's total moves by the difference
// (no head statement when the value stays).
UpdatedLine DetailUpdate(Database& dbBill, const QString& billNo, int billSeq, const QString& field,
                         const QVariant& value);

// The outcome of a line delete.
enum class LineDeleteOutcome { NothingChosen, Declined, WholeStatement, Deleted, NotFound, Failed };
struct DeletedLine {
    LineDeleteOutcome outcome = LineDeleteOutcome::Failed;
    double amount = 0;
    double vat = 0;
};
// Asks, then removes the line and moves the head's totals and count; the only line of a
// statement takes its head along without the statement's own prompt (WholeStatement).
DeletedLine DeleteLine(Database& dbBill, const QString& billNo, int billSeq);

enum class StatementDeleteOutcome { NothingChosen, Declined, Deleted, Failed };
// The head and its lines go, after the prompt unless skipPrompt.
StatementDeleteOutcome DeleteStatement(Database& dbBill, const QString& billNo, bool skipPrompt);

// Statements with BillDate between from and to (both included), of one trader when cCode is
// not empty, ordered by date and number; the trader's name read from the basic store file.
std::optional<QList<StatementHead>> ReadStatementList(Database& dbBill, const QString& basicFile,
                                                      const QString& from, const QString& to,
                                                      const QString& cCode = QString());
// The lines of one statement in sequence order; an empty number reads none.
std::optional<QList<StatementLine>> ReadStatementLines(Database& dbBill, const QString& billNo);

// The sum of every statement (all traders) dated between from and to, as the period total
// shows it: "#,##0" and one blank behind, "0 " when there is none. Nothing when the read failed
// (its box shown).
std::optional<QString> PeriodTotalText(Database& dbBill, const QString& from, const QString& to);

// Rows spDetail offers for a statement of lineCount lines: at least 15, else one more.
int detailRowCount(int lineCount);

} // namespace nb
