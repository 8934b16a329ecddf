// The store on the seat's PostgreSQL server: the connection to its schema, the writer lock of
// its transactions, its failures in the files' terms, and the schema questions answered from
// the server's catalog. Database.cpp decides which engine a store is on (StoreEngine.h).
#include "storage/Database.h"
#include "storage/DatabaseServerWatch.h"
#include "storage/ServerSettings.h"
#include "storage/StoreEngine.h"
#include "storage/backup/ServerCopyHandles.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTimer>
#include <QUuid>
#include <cerrno>
#include <poll.h>

namespace nb {
namespace {

// The writers of one store take its lock (kServerWriterLockClass with the store's schema): two
// seats saving into the same store wait for each other, seats saving into different stores do
// not.
constexpr int kBusyCode = 5;         // the files' "busy", which the busy box is chosen by
constexpr int kBusySliceMillis = 50; // the window's events are handled this often while a seat waits
constexpr int kKeptStatements = 200; // statements kept prepared on one connection

thread_local int t_triesLeft = 0;      // tries after the current one, inside RetryingSave
thread_local bool t_retryable = false; // the last failure noted on this thread may be retried
thread_local bool t_retryWanted = false;

// Statements without values run unprepared: the server prepares only queries and changes of
// rows, never SET or CREATE.
bool runOn(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery q(db);
    if (values.isEmpty()) return q.exec(sql);
    if (!q.prepare(sql)) return false;
    for (const QVariant& v : values)
        q.addBindValue(v);
    return q.exec();
}

enum class LockWait { Held, Busy, Failed };

// The server's answer to the request for the lock, in the driver's terms.
QSqlError errorOf(PGconn* conn, const PGresult* result) {
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    const QString words = serverEngineWords(conn, result);
    if (!state || !*state) return QSqlError(QString(), words, QSqlError::ConnectionError);
    return QSqlError(QString(), words, QSqlError::StatementError, QString::fromLatin1(state));
}

// The wait for a store's writer lock another seat holds, inside the transaction: one request
// standing in the server's queue until the lock is let go of and passes to it. Asking again now
// and then would put the seat at the back of the queue each time, behind seats that asked after
// it, and under a steady stream of short saves it might never come to the front. The request
// goes out without waiting for its answer, and the window's events are handled a slice at a time
// while it stands there; the connection's lock_timeout (the busy wait) ends it, as the server's
// "lock timeout".
LockWait waitInQueue(const QSqlDatabase& db, const QString& schema, QSqlError* error) {
    PGconn* conn = serverEngineHandle(db);
    if (!conn) {
        *error =
            QSqlError(QString(), QStringLiteral("no connection to the server"), QSqlError::ConnectionError);
        return LockWait::Failed;
    }
    // What a query read row by row left unread would answer "another command is already in
    // progress"; the driver has let go of it, so it is taken and dropped here.
    if (PQtransactionStatus(conn) == PQTRANS_ACTIVE)
        while (PGresult* left = PQgetResult(conn))
            PQclear(left);
    const QByteArray lockClass = QByteArray::number(kServerWriterLockClass);
    const QByteArray store = schema.toUtf8();
    const char* values[] = {lockClass.constData(), store.constData()};
    if (!PQsendQueryParams(conn, "SELECT pg_advisory_xact_lock($1::integer, hashtext($2))", 2, nullptr,
                           values, nullptr, nullptr, 0)) {
        *error = errorOf(conn, nullptr);
        return LockWait::Failed;
    }
    // A server that stopped answering (its machine still there) is not waited for.
    const ServerAnswerWatch watch(conn);
    bool answered = true;
    while (answered && PQisBusy(conn)) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        pollfd socket{PQsocket(conn), POLLIN, 0};
        const int ready = socket.fd < 0 ? -1 : ::poll(&socket, 1, kBusySliceMillis);
        if (ready < 0 && errno == EINTR) continue;
        answered = ready >= 0 && PQconsumeInput(conn);
    }
    // Every result is taken, so that the connection is free for the save's statements.
    LockWait outcome = answered ? LockWait::Held : LockWait::Failed;
    if (!answered) *error = errorOf(conn, nullptr);
    while (PGresult* result = PQgetResult(conn)) {
        if (PQresultStatus(result) != PGRES_TUPLES_OK && outcome == LockWait::Held) {
            *error = errorOf(conn, result);
            outcome = error->nativeErrorCode() == QStringLiteral("55P03") ? LockWait::Busy : LockWait::Failed;
        }
        PQclear(result);
    }
    return outcome;
}

// The catalog's rows of this store's schema, first column of each.
QStringList firstColumn(QSqlQuery& q) {
    QStringList out;
    while (q.next())
        out << q.value(0).toString();
    return out;
}

} // namespace

void clearRetryableFailure() {
    t_retryable = false;
}

bool quietRetryWanted() {
    if (t_triesLeft <= 0 || !t_retryable) return false;
    t_retryWanted = true;
    return true;
}

bool RetryingSave(const std::function<bool()>& save) {
    if (t_triesLeft > 0) return save(); // an inner save is retried with the outer one
    bool saved = false;
    for (int tries = kSaveTries; tries > 0; --tries) {
        t_triesLeft = tries - 1;
        t_retryWanted = false;
        t_retryable = false;
        saved = save();
        const bool again = !saved && t_retryWanted;
        t_triesLeft = 0;
        if (!again) break;
    }
    t_retryable = false;
    return saved;
}

void Database::bindValues(QSqlQuery& query, const QVariantList& values) const {
    for (const QVariant& v : values) {
        // A yes/no is bound as the files' driver binds it, as 1 / 0.
        if (m_server && v.typeId() == QMetaType::Bool && !v.isNull())
            query.addBindValue(v.toBool() ? 1 : 0);
        else
            query.addBindValue(v);
    }
}

void Database::noteServerFailure(const QSqlError& error) {
    ServerFault fault = serverFaultOf(error);
    // A failure without the server's own code did not come from the server: when the connection
    // no longer answers either, the server has gone (a restart, the network), and the seat says
    // so; the connection is made again at its next action.
    if (fault.engineCode != kServerUnreachableCode && error.nativeErrorCode().isEmpty() &&
        !connectionAnswers())
        fault = ServerFault{kServerUnreachableCode, kServerUnreachableCode, false};
    if (fault.engineCode == kServerUnreachableCode) m_connectionLost = true;
    // The server's first line, without its "ERROR:" mark; the details below it name tables
    // and keys the operator does not need.
    QString description = error.databaseText().trimmed();
    if (description.isEmpty()) description = error.text().trimmed();
    description = description.section(u'\n', 0, 0).trimmed();
    if (description.startsWith(QStringLiteral("ERROR:"))) description = description.mid(6).trimmed();
    m_lastErrorNumber = fault.errorNumber;
    m_lastErrorDescription = description;
    m_lastEngineCode = fault.engineCode;
    m_lastSqlState = error.nativeErrorCode();
    t_retryable = fault.retryable;
    if (fault.retryable && t_triesLeft > 0) t_retryWanted = true;
}

bool Database::connectionAnswers() const {
    const ServerAnswerWatch watch(*this);
    QSqlQuery q(connection());
    // Inside a transaction the server broke off, the answer is a refusal with its code.
    return q.exec(QStringLiteral("SELECT 1")) || !q.lastError().nativeErrorCode().isEmpty();
}

std::shared_ptr<QSqlQuery> Database::preparedOnServer(const QString& statement, bool forwardOnly,
                                                      bool* prepared) {
    const QString key = QString(forwardOnly ? u'f' : u'r') + statement;
    if (const auto it = m_prepared.constFind(key); it != m_prepared.cend()) {
        *prepared = true;
        return it.value();
    }
    auto query = std::make_shared<QSqlQuery>(connection());
    query->setForwardOnly(forwardOnly);
    *prepared = query->prepare(statement);
    if (!*prepared) return query;
    // A seat runs a few dozen texts; a program that made many more (a sum per column) starts
    // the keeping over rather than hold them all.
    if (m_prepared.size() >= kKeptStatements) forgetPrepared();
    m_prepared.insert(key, query);
    return query;
}

void Database::forgetPrepared(const QString& statement) {
    if (statement.isEmpty()) {
        m_prepared.clear();
        m_rowStatements.clear();
        return;
    }
    m_prepared.remove(u'f' + statement);
    m_prepared.remove(u'r' + statement);
}

namespace {

// Notices sent while the connection was away are lost: the lists listening on it are told once,
// from the event loop, as if another seat had saved, so they read afresh what changed meanwhile.
void tellListenersOfTheTimeAway(QSqlDriver* driver, const QStringList& channels) {
    if (!driver || channels.isEmpty()) return;
    QPointer<QSqlDriver> guarded(driver);
    QTimer::singleShot(0, driver, [guarded, channels] {
        for (const QString& channel : channels)
            if (guarded) emit guarded->notification(channel, QSqlDriver::OtherSource, QVariant());
    });
}

} // namespace

bool Database::reconnectServer() {
    forgetPrepared(); // they belonged to the connection the server dropped
    QSqlDatabase db = connection();
    // The channels the open lists listen on (ChangeNotices.h): a new connection hears nothing
    // until it listens again, and the driver forgets them when it closes.
    const QStringList channels = db.driver() ? db.driver()->subscribedToNotifications() : QStringList();
    if (!channels.isEmpty()) m_channels = channels;
    if (db.isOpen()) db.close();
    m_savepoints.clear();
    m_failedDepth = 0;
    bool ok = db.open();
    if (!ok) {
        noteServerFailure(db.lastError());
        m_connectionLost = true;
        return false;
    }
    ok = runOn(db, QStringLiteral("SET search_path TO ") + m_schema + QStringLiteral(", public"));
    if (!ok) {
        noteServerFailure(QSqlQuery(db).lastError());
        db.close();
        m_connectionLost = true;
        return false;
    }
    applySessionSettings();
    if (!nameSeat()) {
        db.close();
        m_connectionLost = true;
        return false;
    }
    for (const QString& channel : std::as_const(m_channels))
        if (!db.driver()->subscribeToNotification(channel)) {
            noteServerFailure(db.driver()->lastError());
            db.close();
            m_connectionLost = true;
            return false;
        }
    tellListenersOfTheTimeAway(db.driver(), m_channels);
    m_channels.clear();
    m_connectionLost = false;
    return true;
}

bool Database::nameSeat() {
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT set_config('application_name', ?, false)"));
    q.addBindValue(m_seatKey);
    if (q.exec()) return true;
    noteServerFailure(q.lastError());
    return false;
}

void Database::workForSeatOf(const Database& other) {
    m_seatKey = other.m_seatKey;
    if (m_server && isOpen()) nameSeat();
}

void Database::applyLockTimeout() {
    // The wait for another seat's writer lock is bounded as the files' busy wait is; zero
    // would mean "wait for ever" to the server.
    runOn(connection(), QStringLiteral("SET lock_timeout = ") + QString::number(qMax(1, m_busyWaitMillis)));
}

void Database::applySessionSettings() {
    applyLockTimeout();
    // The server watches its side of the connection as the seat does, so that a seat whose
    // network died lets go of its writer lock within about a minute. Where the server refuses
    // (an older one), the seat works on with the system's defaults.
    if (PGconn* conn = serverEngineHandle(connection()))
        runOn(connection(), serverKeepaliveStatement(PQserverVersion(conn)));
}

bool Database::connectServer(const QString& path, const QString& schema, bool creating) {
    m_connection = QStringLiteral("nb-pg-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_server = true;
    m_schema = schema;
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_connection);
        // The watch's options first: the seat's own connection string, after them, has the last word.
        db.setConnectOptions(serverConnectionOptions() + u' ' + serverConnInfo());
        // NUMERIC (a sum of whole numbers) is read as a double; Recordset gives whole ones
        // back as integers, as the files' sums are.
        db.setNumericalPrecisionPolicy(QSql::LowPrecisionDouble);
        ok = db.open();
        if (!ok) noteServerFailure(db.lastError());
        // The store's schema first; the shared extensions (pg_trgm) live in public.
        ok = ok && runOn(db, QStringLiteral("SET search_path TO ") + schema + QStringLiteral(", public"));
    }
    if (ok) applySessionSettings();
    ok = ok && nameSeat();
    if (!ok || schemaExists() == creating) {
        const int number = m_lastErrorNumber;
        const int code = m_lastEngineCode;
        const QString description = m_lastErrorDescription;
        const QString state = m_lastSqlState;
        close();
        m_lastErrorNumber = number;
        m_lastEngineCode = code;
        m_lastErrorDescription = description;
        m_lastSqlState = state;
        return false;
    }
    m_path = path;
    m_statementsRun = 0;
    return true;
}

bool Database::schemaExists() const {
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pg_catalog.pg_namespace WHERE nspname = ?"));
    q.addBindValue(m_schema);
    return q.exec() && q.next();
}

bool Database::beginNewServerStore(const QString& path) {
    close();
    const QString schema = serverSchemaOf(path);
    if (schema.isEmpty() || !connectServer(path, schema, true)) return false;
    // Under the store's writer lock: a seat that made it meanwhile is seen here.
    if (!beginTransaction()) return false;
    if (schemaExists() || !tryExecute(QStringLiteral("CREATE SCHEMA ") + schema)) {
        rollback();
        return false;
    }
    return true;
}

bool Database::beginOnServer() {
    if (!runControl(QStringLiteral("BEGIN"), false)) return false;
    m_savepoints << QString();
    m_failedDepth = 0;
    // A free writer lock is taken at once. A taken one is waited for in the server's queue, so
    // that it passes to the waiting seats in the order they asked, the moment it is let go of;
    // the window's events are handled meanwhile, and the wait is given up when the busy wait
    // (the connection's lock_timeout) is over.
    bool failed = false;
    {
        // Prepared once per connection: a save's first word after BEGIN is one round trip. Read
        // whole at once (not row by row), so that the connection is free when it has answered.
        bool prepared = false;
        const ServerAnswerWatch watch(*this);
        const std::shared_ptr<QSqlQuery> q = preparedOnServer(
            QStringLiteral("SELECT pg_try_advisory_xact_lock(?, hashtext(?))"), false, &prepared);
        if (prepared) {
            q->addBindValue(kServerWriterLockClass);
            q->addBindValue(m_schema);
        }
        if (!prepared || !q->exec() || !q->next()) {
            noteFailure(q->lastError());
            forgetPrepared();
            failed = true;
        } else {
            const bool taken = q->value(0).toBool();
            q->finish();
            if (taken) return true;
        }
    }
    if (!failed) {
        QSqlError error;
        const LockWait wait = waitInQueue(connection(), m_schema, &error);
        if (wait == LockWait::Held) return true;
        if (wait == LockWait::Busy)
            noteFailure(ErrEngine,
                        QStringLiteral("store ") + m_schema + QStringLiteral(" is locked by another seat"),
                        kBusyCode);
        else
            noteFailure(error);
    }
    const int number = m_lastErrorNumber;
    const int code = m_lastEngineCode;
    const QString description = m_lastErrorDescription;
    const QString state = m_lastSqlState;
    rollback();
    m_lastErrorNumber = number;
    m_lastEngineCode = code;
    m_lastErrorDescription = description;
    m_lastSqlState = state;
    return false;
}

bool Database::abandonFailedTransaction() {
    // The server answers COMMIT of a failed transaction by rolling it back; say so plainly.
    const ServerAnswerWatch watch(*this);
    QSqlQuery(connection()).exec(QStringLiteral("ROLLBACK"));
    m_failedDepth = 0;
    return false;
}

// ---- Schema questions from the catalog ------------------------------------------------
// Names are compared in lower case, as the server's tables, columns, indexes are made.

bool Database::serverHasTable(const QString& table) const {
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pg_catalog.pg_tables WHERE schemaname = ? AND tablename = ?"));
    q.addBindValue(m_schema);
    q.addBindValue(table.toLower());
    return q.exec() && q.next();
}

namespace {
// The columns of a table in order, without the row number every server table ends with and the
// seat a work table's rows belong to (the server's own columns).
const char* const kColumnsSql =
    "SELECT a.attname, format_type(a.atttypid, a.atttypmod) || "
    "CASE WHEN co.collname = 'ucs_basic' THEN ' COLLATE ucs_basic' ELSE '' END "
    "FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_class c ON c.oid = a.attrelid "
    "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
    "LEFT JOIN pg_catalog.pg_collation co ON co.oid = a.attcollation "
    "WHERE n.nspname = ? AND c.relname = ? AND c.relkind = 'r' AND a.attnum > 0 AND NOT a.attisdropped "
    "AND a.attname NOT IN ('rowid', 'seat') ORDER BY a.attnum";
} // namespace

QStringList Database::serverColumns(const QString& table) const {
    QSqlQuery q(connection());
    q.prepare(QLatin1String(kColumnsSql));
    q.addBindValue(m_schema);
    q.addBindValue(table.toLower());
    if (!q.exec()) return {};
    return firstColumn(q);
}

QString Database::serverDeclaredType(const QString& table, const QString& column) const {
    QSqlQuery q(connection());
    q.prepare(QLatin1String(kColumnsSql));
    q.addBindValue(m_schema);
    q.addBindValue(table.toLower());
    if (!q.exec()) return {};
    while (q.next())
        if (q.value(0).toString().compare(column, Qt::CaseInsensitive) == 0) return q.value(1).toString();
    return {};
}

QList<IndexInfo> Database::serverIndexes(const QString& table) const {
    QList<IndexInfo> out;
    QSqlQuery q(connection());
    q.prepare(QStringLiteral(
        "SELECT i.relname, x.indisunique, CASE WHEN x.indisprimary THEN 'pk' WHEN EXISTS (SELECT 1 FROM "
        "pg_catalog.pg_constraint k WHERE k.conindid = x.indexrelid AND k.contype = 'u') THEN 'u' ELSE 'c' "
        "END, "
        "array_to_string(ARRAY(SELECT a.attname FROM unnest(x.indkey::int2[]) WITH ORDINALITY k(num, ord) "
        "JOIN pg_catalog.pg_attribute a ON a.attrelid = x.indrelid AND a.attnum = k.num WHERE a.attname <> "
        "'seat' "
        "ORDER BY k.ord), "
        "',') "
        "FROM pg_catalog.pg_index x JOIN pg_catalog.pg_class t ON t.oid = x.indrelid "
        "JOIN pg_catalog.pg_class i ON i.oid = x.indexrelid "
        "JOIN pg_catalog.pg_namespace n ON n.oid = t.relnamespace "
        "WHERE n.nspname = ? AND t.relname = ? ORDER BY i.relname"));
    q.addBindValue(m_schema);
    q.addBindValue(table.toLower());
    if (!q.exec()) return out;
    while (q.next())
        out.push_back({q.value(0).toString(), q.value(1).toBool(), q.value(2).toString(),
                       q.value(3).toString().split(u',', Qt::SkipEmptyParts)});
    return out;
}

bool Database::serverHasRelation(const QString& name, char kind) const {
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = "
                             "c.relnamespace WHERE n.nspname = ? AND c.relname = ? AND c.relkind::text = ?"));
    q.addBindValue(m_schema);
    q.addBindValue(name.toLower());
    q.addBindValue(QString(QLatin1Char(kind)));
    return q.exec() && q.next();
}

bool Database::serverHasTrigger(const QString& name) const {
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pg_catalog.pg_trigger t JOIN pg_catalog.pg_class c ON c.oid = "
                             "t.tgrelid JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
                             "WHERE n.nspname = ? AND t.tgname = ?"));
    q.addBindValue(m_schema);
    q.addBindValue(name.toLower());
    return q.exec() && q.next();
}

} // namespace nb
