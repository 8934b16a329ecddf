#pragma once
// Seats on one server database tell each other of their saves. Every table that holds documents
// or the records they are made of carries a trigger that sends one notice on its store's channel
// ("nubella_bill", "nubella_tax", "nubella_estimate", "nubella_basic") for each statement that
// changes it. A notice sent inside a transaction is delivered only when it commits, and the
// server delivers the same notice once per transaction however many statements sent it, so a
// save that rolls back says nothing and a save of many lines says it once. Being triggers, they
// catch every writer of the database: this program, the move onto the server, an older build.
// The work tables the program refills for itself (SaleTotal, BuyTotal) send none, or a seat
// re-reading its totals would set every other seat re-reading theirs.
//
// Open lists listen on their store's connection (watchStoreChanges). Store files have no such
// thing: there a list is read afresh when its screen comes to the front again.

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <initializer_list>

class QWidget;

namespace nb {

class Database;

// The channel a store's notices travel on: "nubella_" + its schema.
QString changeChannel(const QString& schema);
// True for the tables whose changes are told (the documents and the records they are made of).
bool tellsChanges(const QString& table);
// The statements that make a table of the server tell its changes (the store's notice function,
// made or replaced, then the table's trigger); none for the other tables.
QStringList changeNoticeStatements(const QString& table);
// The name of a table's trigger ("<table>_changed", lower case as the server's names).
QString changeTriggerName(const QString& table);

// The tables of a store on the server that do not tell their changes yet (none on files).
QStringList missingChangeNotices(Database& db);
// A store on the server made before its tables told their changes gains the triggers, all in
// one transaction; a store that has them runs nothing, and a store file is left alone. False
// (the failure box shown) when they could not be made.
bool addChangeNotices(Database& db);

// Calls changed whenever another connection commits a change to a table of the store db is on
// (a notice of this connection itself is its own save, and not told). The call comes from the
// event loop, never from inside a statement; it stops when receiver is destroyed. On store
// files, or when the store's connection cannot listen, nothing is ever told: false.
bool watchStoreChanges(Database& db, QObject* receiver, std::function<void()> changed);

// The lists of screen (registered with onListRefresh, common/ListRefresh.h) are re-read when
// another seat changes one of the stores; on files only their activation re-reads them. No
// list of the program is re-read while one of its stores is in the middle of a save.
void refreshListsOnChanges(QWidget* screen, std::initializer_list<Database*> stores);

} // namespace nb
