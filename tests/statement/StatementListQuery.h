#pragma once
// The statement list's rows as its one statement gives them, through Qt's SQL layer with the
// basic file attached: what the list tests compare the list's own reading with.

#include "storage/CrossFileQueries.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QList>
#include <QSqlQuery>
#include <QVariantList>

namespace nb::test {

inline QList<QVariantList> statementListThroughQt(const QString& from, const QString& to) {
    Database& bill = stores().dbBill;
    QList<QVariantList> rows;
    if (!bill.attach(stores().dbBasic.path(), kBasicAlias)) return rows;
    {
        QSqlQuery q(bill.connection());
        q.setForwardOnly(true);
        q.prepare(statementListRowsSql(false));
        q.addBindValue(from);
        q.addBindValue(to);
        if (q.exec())
            while (q.next()) {
                QVariantList row;
                for (int c = 0; c < 6; ++c)
                    row << q.value(c);
                rows << row;
            }
    }
    bill.detach(kBasicAlias);
    return rows;
}

} // namespace nb::test
