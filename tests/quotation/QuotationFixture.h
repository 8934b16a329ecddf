#pragma once
// What the quotation tests share: every store file created, the shared ones and the quotation
// store opened, and quick ways to put quotations and their lines in place.

#include "StoreFixture.h"
#include "quotation/clsEstimate.h"
#include "storage/Stores.h"

namespace nb::test {

// The stores of openStores() and dbEstimate, which the quotation screen opens for itself.
inline bool openQuotationStores() {
    return openStores() && OpenDb(stores().dbEstimate, app().DbEstimateFile);
}

inline int estimateRows(const QString& table, const QString& where = QString(),
                        const QVariantList& values = {}) {
    return scalar(stores().dbEstimate, QStringLiteral("SELECT count(*) FROM ") + table + u' ' + where, values)
        .toInt();
}

inline bool addEstiHead(const QString& code, const QString& cCode, const QString& name, const QString& date,
                        double total = 0, bool vat = false, const QString& derive = QString()) {
    return exec(
        stores().dbEstimate,
        QStringLiteral("INSERT INTO EstiBase (EstiCode, CCode, CName, EstiDate, DeriveDate, ClassName, "
                       "EstiKum, EstiHanKum, Vat, Refer, Validate, Section) "
                       "VALUES (?, ?, ?, ?, ?, '', ?, '', ?, '', '', '')"),
        {code, cCode, name, date, derive, total, vat ? -1 : 0});
}

inline bool addEstiLine(int seq, const QString& code, const QString& name, double qty, double price,
                        const QString& unit = QStringLiteral("EA"), const QString& norm = QString()) {
    return exec(stores().dbEstimate,
                QStringLiteral("INSERT INTO Estimate (Seq, Code, PCode, PName, PNorm, EAmount, EUnitPrice, "
                               "EstiKum, EUnit) VALUES (?, ?, '', ?, ?, ?, ?, ?, ?)"),
                {seq, code, name, norm, qty, price, qint64(qty * price), unit});
}

// The number a new quotation of that date would get ("unset" when none was given).
inline QString nextCode(const QString& date) {
    clsEstimate e;
    e.sEDate = date;
    QString code = QStringLiteral("unset");
    e.NextCode(code);
    return code;
}

} // namespace nb::test
