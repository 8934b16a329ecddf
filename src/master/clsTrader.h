#pragma once
// The record class of the table Trader: one object holds one trader's fields and carries the
// operations on the table. It keeps no cursor: each operation opens, uses and closes what it
// needs, and reports its failures by its own messages, not to its caller.

#include "storage/Database.h"

#include <QString>

namespace nb {

class clsTrader {
public:
    QString sCode;
    QString sComp;
    QString sName;
    QString sSerial;
    QString sPhone;
    QString sFax;
    QString sHP;
    QString sDDD;
    QString sCharge;
    quint8 byVAT = 0;
    QString sAddr1;
    QString sAddr2;
    QString sPost;
    QString sStatus;
    QString sItem;
    QString sOpenDate;
    QString sCloseDate;
    QString sEnterDate;
    quint8 bySection = 0;
    double dTotNoPay = 0;
    QString sBigo;
    bool bDeled = false;
    QString sEmail; // where the tax service sends the trader's electronic invoices

    // Adds a row from the members (bDeled keeps the column's default) and says so.
    void SaveTrader();
    // Rewrites the name, person, numbers, address, postcode, business kind and remark of the
    // row sCode; VAT, person in charge, balance, last address word and dates stay as stored.
    void UpdateTrader();
    void Update_Charge();
    // Traders not marked deleted, by name.
    void TraderList(Recordset& rs, bool& found);
    // By code, or (with an empty code) by the other texts; that branch names its order with
    // a misspelt word ("ORDERY"), so the engine refuses it and the failure box shows.
    void FindTrader(Recordset& rs, const QString& code, const QString& comp, const QString& name,
                    const QString& phone, const QString& addr, bool& found);
    void DeleteTrader(const QString& code);
    // VAT of the row sCode; 3 (unknown) when there is no such row.
    void TraderTax(quint8& kind);
    // The highest code plus one, "000001" on an empty table. False (after a failure box) when
    // the highest code is no number.
    bool NextCode(QString& code);
    // Moves the balance of sCode by newAmount - oldAmount.
    void UpdateNoPay(double oldAmount, double newAmount);
    void CurTotNoPay(const QString& code, double& amount);
    // The duplicate check of the entry screen: the exact name within the section.
    void CheckField(quint8 section, const QString& comp, bool& found);
    void initNonKum(double& amount);
    // Adds the mobile telephone column to a store that lacks it.
    void CheckHPField();
    // The person in charge carried into the monthly store files of an older version, from
    // this month backwards until a month's file is missing.
    void charge_trade(const QString& charge, const QString& code);

private:
    Database& db() const;
};

// 0 "계산안함", 1 "부가세포함", 2 "부가세별도"; anything else the empty text.
QString VatKindText(int kind);
// C_Name of the trader, or the empty text (no row, a null, a failed query).
QString GetTraderName(const QString& code);

// The entry form's hint for the VAT kind.
inline const QString kVatKindHint = QStringLiteral("부가세 계산방법. 0:계산안함  1:단가/1.1  2:단가*0.1");

} // namespace nb
