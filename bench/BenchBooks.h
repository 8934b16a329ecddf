#pragma once
// A decade of books laid into the open stores for the benchmarks: traders, statements with
// their lines, quotations with theirs and invoice lines, each in one transaction.

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

// Quotations spread over the 120 months of 2015-2024 (833 a month), ten lines each and
// bigLines for the one numbered bigCode, until `lines` lines are written; the lines written.
inline int fillQuotations(int quotations, int lines, const QString& bigCode, int bigLines = 100) {
    Database& db = stores().dbEstimate;
    const QStringList names = {QStringLiteral("가나철강"), QStringLiteral("다라상회"),
                               QStringLiteral("마바유통"), QStringLiteral("사아전자"),
                               QStringLiteral("자차기계"), QStringLiteral("카타물산"),
                               QStringLiteral("파하상사")};
    db.beginTransaction();
    QSqlQuery head(db.connection());
    head.prepare(
        QStringLiteral("INSERT INTO EstiBase VALUES (?, ?, ?, ?, ?, '사무용품', ?, '', 0, '', '', '')"));
    QSqlQuery line(db.connection());
    line.prepare(
        QStringLiteral("INSERT INTO Estimate VALUES (?, ?, '000001', ?, 'M8', 1, 1000, 1000, 'EA')"));
    int seq = 0;
    for (int i = 0; i < quotations; ++i) {
        const int month = i / 833;
        const QDate date = QDate(2015, 1, 1).addMonths(month).addDays(i % 28);
        const QString code = date.toString(QStringLiteral("yyyyMM")) +
                             QStringLiteral("%1").arg(i % 833 + 1, 3, 10, QChar(u'0'));
        head.addBindValue(code);
        head.addBindValue(QStringLiteral("%1").arg(i % 5000 + 1, 6, 10, QChar(u'0')));
        head.addBindValue(names[i % names.size()] + QString::number(i % 5000));
        head.addBindValue(date.toString(QStringLiteral("yyyy-MM-dd")));
        head.addBindValue(date.addDays(20).toString(QStringLiteral("yyyy-MM-dd")));
        head.addBindValue(10000.0);
        head.exec();
        const int count = code == bigCode ? bigLines : 10;
        for (int j = 0; j < count && seq < lines; ++j) {
            line.addBindValue(++seq);
            line.addBindValue(code);
            line.addBindValue(QStringLiteral("품목%1").arg(j));
            line.exec();
        }
    }
    db.commit();
    return seq;
}

// Invoice lines spread evenly over 2015-2024, two to an invoice, their customers spread over
// `traders` traders, in one statement of the files' engine.
inline void fillInvoiceLines(int traders, int lines) {
    QSqlQuery(stores().dbTax.connection())
        .exec(QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, "
                             "VatKum, DealDate, "
                             "TradeDate, UserCode) WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 "
                             "FROM n WHERE i < %1) "
                             "SELECT printf('%08d', 100000 + i / 2), printf('%06d', 1 + (i * 7919) % %2), "
                             "'품목', 1, 10000, "
                             "10000, 1000, date('2015-01-01', '+' || (i * 3652 / %3) || ' days'), "
                             "strftime('%m-%d', date('2015-01-01', '+' || (i * 3652 / %3) || ' days')), "
                             "'123-45-67891' FROM n")
                  .arg(lines - 1)
                  .arg(traders)
                  .arg(lines));
    QSqlQuery(stores().dbTax.connection()).exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
}

} // namespace nb::bench
