#include "storage/StoreAside.h"

#include "storage/Database.h"

#include <QEventLoop>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <memory>

namespace nb {

void runAside(const std::function<void()>& work) {
    QEventLoop loop;
    std::unique_ptr<QThread> worker(QThread::create(work));
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    worker->start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    // The loop also ends when the application is told to quit; the work is finished either way.
    worker->wait();
}

bool readAside(const AsideRead& read, const std::function<void(const QSqlQuery& row)>& take) {
    QString unopened;
    QSqlError failure;
    runAside([&] {
        Database db;
        if (!db.open(read.file)) {
            unopened = read.file;
            return;
        }
        if (!read.otherFile.isEmpty() && !db.attach(read.otherFile, read.alias)) {
            unopened = read.otherFile;
            return;
        }
        QSqlQuery query(db.connection());
        query.setForwardOnly(true);
        bool ok = query.prepare(db.statementFor(read.sql, read.values));
        db.bindValues(query, read.values);
        ok = ok && query.exec();
        while (ok && query.next())
            take(query);
        if (!ok || query.lastError().isValid()) failure = query.lastError();
    });
    const QString shown = sqlForDisplay(read.sql, read.values);
    if (!unopened.isEmpty()) {
        ReportQueryFailure(-1, QStringLiteral("unable to open database: ") + unopened, shown);
        return false;
    }
    if (!failure.isValid()) return true;
    const int code = failure.nativeErrorCode().toInt();
    const QString text = failure.databaseText().isEmpty() ? failure.text() : failure.databaseText();
    ReportQueryFailure(errorNumberFor(failure.databaseText(), code), text, shown, code);
    return false;
}

} // namespace nb
