#pragma once
// The record class of quotations: one head field set (EstiBase) and one line field set
// (Estimate) at a time. The screen fills the fields it needs and calls one operation; each
// operation writes through the quotation store with bound values and shows its own message when
// the write changes no row. A new head or line is one transaction with its number check; on the
// server a write another seat's save broke off is run again quietly (RetryingSave).

#include <QString>
#include <QVariantList>
#include <QtGlobal>

namespace nb {

class Database;
class Recordset;

class clsEstimate {
public:
    // All statements go to this store (dbEstimate unless a test gives another).
    clsEstimate();
    explicit clsEstimate(Database& db);

    QString sCode;         // quotation number: EstiBase.EstiCode, Estimate.Code
    qint32 lSeq = 0;       // line key, Estimate.Seq
    QString sEDate;        // quotation date "YYYY-MM-DD"
    QString sClass;        // what is quoted, ClassName
    QString sCCode;        // trader code
    QString sCName;        // trader name
    QString sPCode;        // product code of the line
    QString sPName;        // product name of the line
    QString sPNorm;        // 규격 (norm) of the line
    QString sUnit;         // unit of the line, EUnit
    float siEAmount = 0;   // quantity
    float siEUnitCost = 0; // unit price
    double dETotKum = 0;   // total of the quotation
    QString sETotHanKum;   // the total in Korean words
    QString sDeriveDate;   // planned delivery date
    bool bVAT = false;     // true: prices include VAT
    qint32 lEstiKum = 0;   // amount of the line
    QString sRefer;        // contact person
    QString sValidate;     // period of validity
    QString sSection;      // terms of payment

    void SaveInitEstimate();
    void SaveEstimate();
    void UpdateEstiBase();
    void UpdateEstimate();
    void UpdateTotKum();
    void UpdateVat();
    void UpdateUnit();
    void UpdateDeriveDate();
    void Update_Trader_Name();
    void DeleteEstimate();
    void DeleteDetail();
    // Highest Seq of all lines plus 1; 1 for none; 0 when the read failed.
    void NextSeq(qint32& seq);
    // Year, month of sEDate and the month's running number "000"; empty when the read failed.
    void NextCode(QString& code);
    // The head row of sCode into rs (left open); found when it has a row.
    void FindEstiHead(Recordset& rs, bool& found);

private:
    // One try of SaveInitEstimate / SaveEstimate: true when committed.
    bool saveHeadOnce();
    bool saveLineOnce();
    // True when the statement finds a row for the keys (or the read failed).
    bool codeTaken(const QString& sql, const QVariantList& keys);
    // The line's quantity and price fit their columns, else the overflow report.
    bool lineFits() const;
    // Runs one write; false (after the operation's message) when no row changed.
    bool write(const QString& sql, const QVariantList& values, const QString& failure,
               const QString& title = QString(), bool warning = false);
    Database& m_db;
};

// The number after `lastCode` in the month of `date` ("YYYY-MM-DD"): the running number after
// the year and month plus 1 through "000", or 001 when there is none.
QString nextEstimateCode(const QString& date, const QString& lastCode);

// The running number of a quotation code (what follows its year and month), or -1 when that is
// not a number.
int runningNumberOf(const QString& code);

// The statement NextCode reads the month's last codes by, bound to the month's six characters
// ("202405") twice: the first few codes of the month, heads' and lines', in the order whose first
// running number is the month's last (columns n, the length, and c, the code).
const QString& lastRunningCodeStatement();

} // namespace nb
