#pragma once
// What the master data tests share: a test home with every store file created and opened,
// and quick ways to put rows in place.

#include "StoreFixture.h"
#include "common/grid/SqliteRows.h"
#include "master/SearchIndex.h"
#include "storage/StoreLayout.h"

#include <sqlite3.h>

namespace nb::test {

// Runs each query in turn on one kept statement (they share one text, only their values differ),
// each giving a row: false when a run fails, finds nothing, or made the engine prepare the
// statement again because of the values bound.
inline bool runsKeptWithoutPreparingAgain(const QSqlDatabase& db, const QList<SqlPart>& queries) {
    KeptStatements kept;
    for (const SqlPart& q : queries) {
        const std::shared_ptr<SqliteStatement> s = kept.run(db, q.sql, q.values);
        if (!s || !s->ok() || !s->next(nullptr, 0)) return false;
        if (sqlite3_stmt_status(s->row(), SQLITE_STMTSTATUS_REPREPARE, 0) != 0) return false;
        s->finish();
    }
    return kept.size() == 1;
}

// The steps SQLite's planner chooses for a query, one per line.
// On the server: the plan it would choose were reading a table whole the dearest of all, so a
// plan that still reads one whole has no index to read instead; the steps that ran, as a branch
// the statement itself leaves out (a one-time condition found false) never ran. The server
// prepares no EXPLAIN: the values stand in its text as the failure boxes write them.
inline QString serverQueryPlan(Database& db, const SqlPart& query) {
    QSqlQuery plan(db.connection());
    plan.exec(QStringLiteral("SET enable_seqscan = off"));
    const bool ok = plan.exec(QStringLiteral("EXPLAIN ANALYZE ") +
                              sqlForDisplay(db.statementFor(query.sql, query.values), query.values));
    QString steps;
    while (ok && plan.next())
        if (!plan.value(0).toString().contains(QStringLiteral("never executed")))
            steps += plan.value(0).toString() + "\n";
    plan.exec(QStringLiteral("RESET enable_seqscan"));
    return ok ? steps : QStringLiteral("(no plan)");
}

// The engine's plan of the query, a step a line (SQLite: "SCAN Trader", the server: "Seq Scan on
// trader" where a table is read whole).
inline QString queryPlan(Database& db, const SqlPart& query) {
    if (db.onServer()) return serverQueryPlan(db, query);
    QSqlQuery plan(db.connection());
    plan.prepare("EXPLAIN QUERY PLAN " + query.sql);
    for (const QVariant& v : query.values)
        plan.addBindValue(v);
    if (!plan.exec()) return QStringLiteral("(no plan)");
    QString steps;
    while (plan.next())
        steps += plan.value(3).toString() + "\n";
    return steps;
}

inline int count(Database& db, const QString& table) {
    return scalar(db, QStringLiteral("SELECT count(*) FROM ") + table).toInt();
}

// A trader row with the columns the lists read.
inline void addTrader(const QString& code, const QString& name, const QString& phone = QString(),
                      const QString& addr1 = QString(), int section = 0, const QString& addr2 = QString()) {
    const QString word = addr2.isEmpty() ? addr1.section(u' ', -1) : addr2;
    exec(stores().dbBasic,
         QStringLiteral(
             "INSERT INTO Trader (Code, C_Name, U_Name, Phone, Addr1, Addr2, Section, VAT, TotNoPay, bDeled) "
             "VALUES (?, ?, ?, ?, ?, ?, ?, 0, 0, 0)"),
         {code, name, QStringLiteral("대표") + code, phone, addr1, word, section});
}

inline void addProduct(const QString& code, const QString& name, const QString& norm = QString(),
                       double buy = 0, double sale = 0, const QString& unit = QString()) {
    exec(stores().dbBasic,
         QStringLiteral("INSERT INTO Product (Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo, PTax) "
                        "VALUES (?, ?, ?, ?, ?, ?, '', 0)"),
         {code, name, norm, buy, sale, unit});
}

inline void addUser(const QString& serial, const QString& company = QStringLiteral("가나상사"),
                    const QString& phone = QString()) {
    exec(stores().dbBasic,
         QStringLiteral("INSERT INTO User (Company, Delegate, Serial, Post, Addr, Phone, Fax, Status, Item) "
                        "VALUES (?, '대표', ?, '', '', ?, '', '', '')"),
         {company, serial, phone});
}

} // namespace nb::test

#include <QApplication>
#include <QTimer>
#include <functional>

namespace nb::test {

// Types into whatever box has the focus, then presses a key there.
inline void typeHere(const QString& text) {
    typeText(focused(), text);
}
inline void keyHere(Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
    pressKey(focused(), key, mods);
}

// Runs the action on the next modal window once it is up (a list shown by exec()).
inline void whenModalShows(std::function<void(QWidget*)> action, int tries = 100) {
    QTimer::singleShot(20, [action, tries] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible()) {
            QApplication::setActiveWindow(modal);
            action(modal);
        } else if (tries > 0) {
            whenModalShows(action, tries - 1);
        }
    });
}

} // namespace nb::test

namespace nb::test {

// A few rows straight into the postcode book of the test home.
inline void addPostRows(const QList<QStringList>& rows) {
    Database post;
    if (!post.open(app().DbPostFile)) return;
    for (const QStringList& r : rows)
        exec(post,
             QStringLiteral("INSERT INTO Post (ZIPCODE, SIDO, GUGUN, DONG, BUNJI) VALUES (?, ?, ?, ?, ?)"),
             {r.value(0), r.value(1), r.value(2), r.value(3), r.value(4)});
}

} // namespace nb::test
