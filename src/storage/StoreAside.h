#pragma once
// Store work that takes longer than a window may stand still (a work table refilled from a
// decade of invoices, a list grouped over every statement) runs on a connection of its own in
// a worker thread. The caller waits for it as for a modal box: meanwhile the window repaints
// and its timers run; a key or click made in that time is handled as soon as the work is done,
// so nothing the operator does can act on a half-finished search.

#include <QString>
#include <QVariantList>
#include <functional>

class QSqlQuery;

namespace nb {

// Runs work on a worker thread and returns when it has finished, handling the calling thread's
// events (all but the operator's input) in the meantime. work must touch no widget and none of
// the caller's connections: it opens a Database of its own and hands back what it found through
// its captures.
void runAside(const std::function<void()>& work);

// A read beside the window: file opened on a connection of its own (otherFile attached as
// alias when given), sql run with the values bound, and each row handed to take on the worker
// thread, in order. False when the file could not be opened or the statement failed: the same
// box as the query helpers', shown on return.
struct AsideRead {
    QString file;
    QString otherFile;
    QString alias;
    QString sql;
    QVariantList values;
};
bool readAside(const AsideRead& read, const std::function<void(const QSqlQuery& row)>& take);

} // namespace nb
