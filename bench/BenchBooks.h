#pragma once
// A decade of books laid into the open stores for the benchmarks: traders and statements with
// their lines, each in one transaction.

#include "storage/Stores.h"

#include <QDate>
#include <QSqlQuery>
#include <QString>

namespace nb::bench {

// The six-digit code of number i, as traders and statements are numbered.
inline QString code(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
}

inline void fillTraders(int count) {
    Database& db = stores().dbBasic;
    db.beginTransaction();
    QSqlQuery q(db.connection());
    q.prepare(QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"));
    for (int i = 1; i <= count; ++i) {
        q.addBindValue(code(i));
        q.addBindValue(QStringLiteral("가나상사%1").arg(i));
        q.exec();
    }
    db.commit();
}

// Statements spread evenly over 2015-2024, lines / statements lines each; the last one has
// lastLines when that is given.
inline void fillStatements(int statements, int lines, int lastLines = 0) {
    Database& db = stores().dbBill;
    db.beginTransaction();
    QSqlQuery head(db.connection());
    head.prepare(QStringLiteral("INSERT INTO Master VALUES (?, ?, ?, ?, ?, ?)"));
    QSqlQuery line(db.connection());
    line.prepare(QStringLiteral("INSERT INTO Detail VALUES (?, ?, ?, 'EA', 2, 5000, 0, 10000, 1000)"));
    const QDate first(2015, 1, 1);
    const int days = int(first.daysTo(QDate(2024, 12, 31))) + 1;
    const int perStatement = lines / statements;
    for (int i = 1; i <= statements; ++i) {
        const int count = i == statements && lastLines > 0 ? lastLines : perStatement;
        const QString no = code(i);
        head.addBindValue(no);
        head.addBindValue(first.addDays(qint64(i - 1) * days / statements).toString(Qt::ISODate));
        head.addBindValue(code(1 + i % 50000));
        head.addBindValue(10000.0 * count);
        head.addBindValue(1000.0 * count);
        head.addBindValue(count);
        head.exec();
        for (int s = 1; s <= count; ++s) {
            line.addBindValue(no);
            line.addBindValue(s);
            line.addBindValue(QStringLiteral("품목%1").arg(s));
            line.exec();
        }
    }
    db.commit();
}

} // namespace nb::bench
