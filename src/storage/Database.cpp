#include "storage/Database.h"

#include "common/Messages.h"
#include "common/grid/SqliteRows.h"
#include "storage/DatabaseServerWatch.h"
#include "storage/StoreEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlRecord>
#include <QThread>
#include <QUuid>

namespace nb {
namespace {

// Engine result codes the program tells apart.
constexpr int kSqliteBusy = 5;
constexpr int kSqliteLocked = 6;
constexpr int kSqliteReadOnly = 8;
constexpr int kSqliteIoErr = 10;
constexpr int kSqliteCorrupt = 11;
constexpr int kSqliteFull = 13;
constexpr int kSqliteCantOpen = 14;
constexpr int kSqliteConstraint = 19;
constexpr int kSqliteConstraintNotNull = 19 | (5 << 8);
constexpr int kSqliteConstraintPrimaryKey = 19 | (6 << 8);
constexpr int kSqliteConstraintUnique = 19 | (8 << 8);
constexpr int kSqliteNotADb = 26;

// A busy store is asked again after this slice of waiting; between slices the window's
// events are handled.
constexpr int kBusySliceMillis = 50;

QString descriptionOf(const QSqlError& error) {
    return error.databaseText().isEmpty() ? error.text() : error.databaseText();
}

int engineCodeOf(const QSqlError& error) {
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok);
    return ok ? code : 0;
}

// Statements a connection runs for itself: answered, never counted.
bool runInternal(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery q(db);
    // The server prepares only queries and changes of rows: a statement without values runs
    // as it is.
    if (values.isEmpty()) return q.exec(sql);
    if (!q.prepare(sql)) return false;
    for (const QVariant& v : values)
        q.addBindValue(v);
    return q.exec();
}

QString newConnectionName() {
    return QStringLiteral("nb-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

// A statement that only reads: asking it again changes nothing.
bool isReadStatement(const QString& sql) {
    return sql.trimmed().left(6).compare(QStringLiteral("SELECT"), Qt::CaseInsensitive) == 0;
}

} // namespace

int errorNumberFor(const QString& engineText, int engineCode) {
    const QString text = engineText.toLower();
    static const char* const notUnderstood[] = {"syntax error",     "no such table",
                                                "no such column",   "has no column named",
                                                "incomplete input", "unrecognized token"};
    for (const char* phrase : notUnderstood)
        if (text.contains(QLatin1String(phrase))) return ErrSyntax;
    const int primary = engineCode & 0xFF;
    if (primary == kSqliteBusy || primary == kSqliteLocked || text.contains(QStringLiteral("is locked")))
        return ErrEngine;
    return engineCode != 0 ? engineCode : 1;
}

bool isBusyCode(int engineCode) {
    const int primary = engineCode & 0xFF;
    return primary == kSqliteBusy || primary == kSqliteLocked;
}

QString storeFaultText(int engineCode, const QString& engineText) {
    const QString text = engineText.toLower();
    if (engineCode == kServerUnreachableCode) return serverUnreachableText();
    switch (engineCode & 0xFF) {
    case kSqliteFull:
    case kSqliteIoErr:
        return QStringLiteral("디스크에 쓸 수 없어 저장하지 못했습니다 (디스크 공간 부족 또는 쓰기 오류). "
                              "디스크 공간을 확보한 뒤 다시 저장하십시오.");
    case kSqliteReadOnly:
        return QStringLiteral("자료 파일이 읽기 전용이라 저장하지 못했습니다. "
                              "자료 폴더와 파일의 쓰기 권한을 확인하십시오.");
    case kSqliteCorrupt:
    case kSqliteNotADb:
        return QStringLiteral(
            "자료 파일이 손상되어 저장하지 못했습니다. 백업해 둔 자료 파일로 복원하십시오.");
    case kSqliteBusy:
    case kSqliteLocked:
        return QStringLiteral("다른 프로그램(또는 다른 컴퓨터의 누벨라)이 자료 파일을 쓰고 있어 저장하지 "
                              "못했습니다. 잠시 후 다시 저장하십시오.");
    case kSqliteCantOpen:
        return QStringLiteral("자료 파일을 열 수 없어 처리하지 못했습니다. 자료 파일이 있는지, 경로 설정이 "
                              "맞는지 확인하십시오.");
    case kSqliteConstraint:
        // By the engine's extended code where it gives one (the server's always do), else by its words.
        if (engineCode == kSqliteConstraintUnique || engineCode == kSqliteConstraintPrimaryKey ||
            text.contains(QStringLiteral("unique")))
            return QStringLiteral(
                "같은 번호(코드)의 자료가 이미 있어 저장하지 못했습니다. 번호를 확인하고 다시 "
                "입력하십시오.");
        if (engineCode == kSqliteConstraintNotNull || text.contains(QStringLiteral("not null")) ||
            text.contains(QStringLiteral("not-null")))
            return QStringLiteral(
                "반드시 입력해야 할 값이 비어 있어 저장하지 못했습니다. 빈 칸을 채우고 다시 "
                "저장하십시오.");
        return QStringLiteral("입력한 값이 자료의 규칙에 맞지 않아 저장하지 못했습니다. 입력한 내용을 "
                              "확인하십시오.");
    default:
        if (text.contains(QStringLiteral("is locked"))) return storeFaultText(kSqliteBusy, engineText);
        if (text.contains(QStringLiteral("unable to open")))
            return storeFaultText(kSqliteCantOpen, engineText);
        return QStringLiteral(
            "자료를 처리하는 중 오류가 발생했습니다. 입력한 내용을 확인한 뒤 다시 하십시오.");
    }
}

void ReportQueryFailure(int errorNumber, const QString& description, const QString& sql, int engineCode) {
    if (quietRetryWanted()) return;
    switch (errorNumber) {
    case ErrSyntax:
        ShowInfo(QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r") + sql, QStringLiteral("Query"));
        break;
    case ErrNotOpened:
        ShowInfo(QStringLiteral("Data Base MDB가 선언되지 않았습니다.\r") + sql, QStringLiteral("MDB 오류"));
        break;
    case ErrEngine:
        ShowInfo(storeFaultText(kSqliteBusy, description) + u'\r' + description + u'\r' + sql,
                 QStringLiteral("MDB 오류"));
        break;
    default:
        ShowInfo(storeFaultText(engineCode ? engineCode : errorNumber, description) + u'\r' + description +
                     u'\r' + sql,
                 QStringLiteral("ERROR"));
        break;
    }
}

void ReportSaveFailure(const Database& db, const QString& headline) {
    ReportSaveFailure(db.lastEngineCode(), db.lastErrorDescription(), headline);
}

void ReportSaveFailure(int engineCode, const QString& engineText, const QString& headline) {
    if (quietRetryWanted()) return;
    const QString first = headline.isEmpty() ? QStringLiteral("자료를 저장하지 못했습니다.") : headline;
    ShowInfo(first + u'\r' + storeFaultText(engineCode, engineText) + QStringLiteral("\r\r") + engineText,
             QStringLiteral("저장 오류"));
}

namespace {
QString displayedValue(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return QStringLiteral("Null");
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toString();
    default:
        return u'\'' + value.toString() + u'\'';
    }
}
} // namespace

QString sqlForDisplay(const QString& sql, const QVariantList& values) {
    QString out;
    int next = 0;
    QChar quote;
    for (QChar c : sql) {
        if (!quote.isNull()) {
            if (c == quote) quote = QChar();
        } else if (c == u'\'' || c == u'"') {
            quote = c;
        } else if (c == u'?' && next < values.size()) {
            out += displayedValue(values[next++]);
            continue;
        }
        out += c;
    }
    return out;
}

QString likeLiteral(const QString& text) {
    QString out;
    for (QChar c : text) {
        if (c == u'%' || c == u'_' || c == u'\\') out += u'\\';
        out += c;
    }
    return out;
}

QString quoteName(const QString& name) {
    // On the server the statement's quoted names are folded to lower case as its tables and
    // columns are made (serverStatement), so a quoted and a plain name reach the same.
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

// ---- Database --------------------------------------------------------------------------

// A seat's name stands among the server's connections (at most 63 characters there).
Database::Database() : m_seatKey(QStringLiteral("nubella ") + QUuid::createUuid().toString(QUuid::Id128)) {}

Database::~Database() {
    close();
}

bool Database::isOpen() const {
    // On the server a connection that the driver closed on seeing the server go (a seat standing
    // idle with a list listening) is still this seat's store: its next action makes it again.
    return !m_connection.isEmpty() && (m_server || QSqlDatabase::database(m_connection, false).isOpen());
}

void Database::noteClosedByDriver() {
    if (m_server && !m_connectionLost && m_savepoints.isEmpty() && !connection().isOpen())
        m_connectionLost = true;
}

QSqlDatabase Database::connection() const {
    return QSqlDatabase::database(m_connection, false);
}

QString Database::statementFor(const QString& sql, const QVariantList& values) const {
    return m_server ? serverStatement(sql, values) : sql;
}

// Opens the connection on path. Reading the schema is the first real read, so a file that is
// no store fails here. A new file gets the WAL journal; an existing one is switched to it when
// it can be written (a read-only file keeps its journal and is still read).
bool Database::connect(const QString& path, bool creating) {
    m_connection = newConnectionName();
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        db.setDatabaseName(path);
        ok = db.open() && (!creating || runInternal(db, QStringLiteral("PRAGMA synchronous=OFF"))) &&
             runInternal(db, QStringLiteral("PRAGMA busy_timeout=") + QString::number(kBusySliceMillis)) &&
             runInternal(db, QStringLiteral("SELECT count(*) FROM sqlite_master"));
        const bool wal = ok && runInternal(db, QStringLiteral("PRAGMA journal_mode=WAL"));
        ok = ok && (wal || !creating) && runInternal(db, QStringLiteral("PRAGMA foreign_keys=OFF"));
    }
    if (!ok) {
        close();
        return false;
    }
    m_path = path;
    m_statementsRun = 0;
    return true;
}

bool Database::open(const QString& path, bool exclusive) {
    close();
    const QString schema = serverSchemaOf(path);
    if (!schema.isEmpty()) return connectServer(path, schema, false);
    if (!QFileInfo(path).isFile() || !connect(path, false)) return false;
    if (exclusive) runInternal(connection(), QStringLiteral("PRAGMA locking_mode=EXCLUSIVE"));
    return true;
}

bool Database::create(const QString& path) {
    close();
    const QString schema = serverSchemaOf(path);
    if (!schema.isEmpty())
        return connectServer(path, schema, true) &&
               (runInternal(connection(), QStringLiteral("CREATE SCHEMA ") + schema) || (close(), false));
    return !QFileInfo::exists(path) && connect(path, true);
}

void Database::close() {
    if (m_connection.isEmpty()) return;
    forgetPrepared();
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        // Statements a screen keeps prepared go first, or the file would stay open.
        SqliteStatement::letGoOf(db);
        if (db.isOpen()) db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
    m_path.clear();
    m_savepoints.clear();
    m_server = false;
    m_schema.clear();
    m_failedDepth = 0;
    m_connectionLost = false;
    m_channels.clear();
}

void Database::setBusyTimeout(int millis) {
    m_busyWaitMillis = qMax(0, millis);
    if (m_server && isOpen()) applyLockTimeout();
}

void clearRetryableFailure(); // DatabaseServer.cpp

void Database::noteFailure(int number, const QString& description, int engineCode) {
    clearRetryableFailure();
    m_lastErrorNumber = number;
    m_lastErrorDescription = description;
    m_lastEngineCode = engineCode;
    m_lastSqlState.clear();
}

void Database::noteFailure(const QSqlError& error) {
    if (m_server) {
        noteServerFailure(error);
        return;
    }
    const int code = engineCodeOf(error);
    noteFailure(errorNumberFor(error.databaseText(), code), descriptionOf(error), code);
}

bool Database::run(QSqlQuery& local, const QString& sql, const QVariantList& values, QSqlQuery** kept) {
    // After a failed statement the server has dropped the transaction's work: nothing more
    // runs in it, and the failure that broke it stays the one reported.
    if (m_server && m_failedDepth > 0) return false;
    noteFailure(ErrNone, QString());
    noteClosedByDriver();
    if (m_server && m_connectionLost && !inTransaction() && !reconnectServer()) return false;
    if (!isOpen()) {
        noteFailure(ErrNotOpened, QStringLiteral("Object variable or With block variable not set"));
        return false;
    }
    ++m_statementsRun;
    // Outside a transaction a statement is its own; while another copy writes it is asked
    // again until the busy wait is over. Inside one the write lock is already held.
    QElapsedTimer waited;
    waited.start();
    const QString statement = statementFor(sql, values);
    // The server prepares only queries and changes of rows: a statement without values (a
    // CREATE, an ALTER) runs as it is.
    const bool direct = m_server && values.isEmpty();
    // A read the server's absence broke off outside a transaction is asked once more on a
    // connection made again (a server restarted while the seat stood idle).
    bool askedAgain = !m_server || inTransaction() || !isReadStatement(statement);
    for (;;) {
        // A kept query stays alive while this run uses it, even if the keeping lets it go.
        std::shared_ptr<QSqlQuery> held;
        QSqlQuery* on = &local;
        bool ok = false;
        const ServerAnswerWatch watch(*this); // a server that stopped answering is not waited for
        if (direct) {
            ok = local.exec(statement);
        } else {
            if (kept && m_server) {
                held = preparedOnServer(statement, local.isForwardOnly(), &ok);
                on = held.get();
            } else {
                ok = local.prepare(statement);
            }
            if (ok) {
                bindValues(*on, values);
                ok = on->exec();
            }
        }
        if (kept) *kept = on;
        QSqlQuery& q = *on;
        if (ok) return true;
        noteFailure(q.lastError());
        // A kept statement that failed is prepared afresh next time (its table may have changed).
        if (held) forgetPrepared(statement);
        if (m_server && m_connectionLost && !askedAgain) {
            askedAgain = true;
            if (reconnectServer()) continue;
            return false;
        }
        if (m_server) {
            // The server drops the whole transaction's work at a failed statement.
            if (inTransaction() && m_failedDepth == 0) m_failedDepth = int(m_savepoints.size());
            return false;
        }
        if (inTransaction() || !isBusyCode(m_lastEngineCode) || waited.elapsed() >= m_busyWaitMillis)
            return false;
        q.finish();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(kBusySliceMillis);
    }
}

bool Database::tryExecute(const QString& sql, const QVariantList& values) {
    m_recordsAffected = 0;
    QSqlQuery local(connection());
    QSqlQuery* q = nullptr;
    if (!run(local, sql, values, &q)) return false;
    m_recordsAffected = q->numRowsAffected() < 0 ? 0 : q->numRowsAffected();
    q->finish();
    return true;
}

bool Database::tryHasRow(const QString& sql, const QVariantList& values, bool& found) {
    found = false;
    QSqlQuery local(connection());
    local.setForwardOnly(true);
    QSqlQuery* q = nullptr;
    if (!run(local, sql, values, &q)) return false;
    found = q->next();
    q->finish();
    return true;
}

bool Database::Execute(const QString& sql, const QVariantList& values) {
    if (tryExecute(sql, values)) return true;
    ReportQueryFailure(m_lastErrorNumber, m_lastErrorDescription, sqlForDisplay(sql, values),
                       m_lastEngineCode);
    return false;
}

bool Database::attach(const QString& filePath, const QString& alias) {
    if (m_server) return isOpen() && serverSchemaOf(filePath) == alias;
    if (!isOpen() || !QFileInfo(filePath).isFile()) return false;
    return runInternal(connection(), QStringLiteral("ATTACH DATABASE ? AS ") + quoteName(alias), {filePath});
}

void Database::detach(const QString& alias) {
    if (isOpen() && !m_server)
        runInternal(connection(), QStringLiteral("DETACH DATABASE ") + quoteName(alias));
}

bool Database::runControl(const QString& sql, bool waitWhileBusy) {
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        const ServerAnswerWatch watch(*this);
        QSqlQuery q(connection());
        if (q.exec(sql)) return true;
        noteFailure(q.lastError());
        if (!waitWhileBusy || !isBusyCode(m_lastEngineCode) || waited.elapsed() >= m_busyWaitMillis)
            return false;
        q.finish();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(kBusySliceMillis);
    }
}

bool Database::beginTransaction() {
    noteFailure(ErrNone, QString());
    noteClosedByDriver();
    if (m_server && m_connectionLost && m_savepoints.isEmpty() && !reconnectServer()) return false;
    if (!isOpen()) {
        noteFailure(ErrNotOpened, QStringLiteral("Object variable or With block variable not set"));
        return false;
    }
    if (m_savepoints.isEmpty()) {
        // A connection the server dropped while the seat stood idle shows at the save's first
        // word: nothing is done yet, so the save begins once more on a connection made again.
        if (m_server) return beginOnServer() || (m_connectionLost && reconnectServer() && beginOnServer());
        if (!runControl(QStringLiteral("BEGIN IMMEDIATE"), true)) return false;
        m_savepoints << QString();
        return true;
    }
    const QString name = QStringLiteral("nb_save_") + QString::number(m_savepoints.size());
    if (!runControl(QStringLiteral("SAVEPOINT ") + name, false)) return false;
    m_savepoints << name;
    return true;
}

// COMMIT can fail (a full disk, a read-only file, another copy still reading in the old
// journal mode); the save then did not happen, and the transaction must not stay open, or
// every later save would nest in it and vanish with it.
bool Database::commitOutermost() {
    m_savepoints.clear();
    if (m_failedDepth > 0) return abandonFailedTransaction();
    if (runControl(QStringLiteral("COMMIT"), !m_server)) return true;
    const int number = m_lastErrorNumber;
    const int code = m_lastEngineCode;
    const QString description = m_lastErrorDescription;
    // The engine may have rolled back already; then this answers "no transaction" harmlessly.
    {
        const ServerAnswerWatch watch(*this);
        QSqlQuery(connection()).exec(QStringLiteral("ROLLBACK"));
    }
    noteFailure(number, description, code);
    return false;
}

bool Database::commit() {
    if (!isOpen() || m_savepoints.isEmpty()) return false;
    if (m_savepoints.size() == 1) return commitOutermost();
    if (m_failedDepth > 0 && m_failedDepth >= int(m_savepoints.size())) {
        // The savepoint's work failed on the server: it is rolled back, and the outer part
        // carries on as a failed savepoint does on the files.
        const int number = m_lastErrorNumber;
        const QString description = m_lastErrorDescription;
        const int code = m_lastEngineCode;
        const QString state = m_lastSqlState;
        rollback();
        m_lastErrorNumber = number;
        m_lastErrorDescription = description;
        m_lastEngineCode = code;
        m_lastSqlState = state;
        return false;
    }
    const QString name = m_savepoints.last();
    if (runControl(QStringLiteral("RELEASE ") + name, false)) {
        m_savepoints.removeLast();
        return true;
    }
    rollback();
    return false;
}

void Database::rollback() {
    if (!isOpen() || m_savepoints.isEmpty()) return;
    const QString name = m_savepoints.takeLast();
    if (m_failedDepth > int(m_savepoints.size())) m_failedDepth = 0;
    const ServerAnswerWatch watch(*this);
    QSqlQuery q(connection());
    if (name.isEmpty()) {
        q.exec(QStringLiteral("ROLLBACK"));
        return;
    }
    q.exec(QStringLiteral("ROLLBACK TO ") + name);
    q.exec(QStringLiteral("RELEASE ") + name);
}

// ---- Schema questions ------------------------------------------------------------------

bool Database::hasTable(const QString& table) const {
    if (!isOpen()) return false;
    if (m_server) return serverHasTable(table);
    QSqlQuery q(connection());
    q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"));
    while (q.next())
        if (q.value(0).toString() == table) return true;
    return false;
}

QStringList Database::columns(const QString& table) const {
    QStringList out;
    if (!isOpen()) return out;
    if (m_server) return serverColumns(table);
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT name FROM pragma_table_info(?)"));
    q.addBindValue(table);
    q.exec();
    while (q.next())
        out << q.value(0).toString();
    return out;
}

bool Database::hasColumn(const QString& table, const QString& column) const {
    return columns(table).contains(column, Qt::CaseInsensitive);
}

QString Database::columnType(const QString& table, const QString& column) const {
    if (!isOpen()) return {};
    if (m_server) return serverDeclaredType(table, column);
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT name, type FROM pragma_table_info(?)"));
    q.addBindValue(table);
    q.exec();
    while (q.next())
        if (q.value(0).toString().compare(column, Qt::CaseInsensitive) == 0) return q.value(1).toString();
    return {};
}

QList<IndexInfo> Database::indexes(const QString& table) const {
    QList<IndexInfo> out;
    if (!isOpen()) return out;
    if (m_server) return serverIndexes(table);
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT name, \"unique\", origin FROM pragma_index_list(?)"));
    q.addBindValue(table);
    q.exec();
    while (q.next())
        out.push_back({q.value(0).toString(), q.value(1).toInt() != 0, q.value(2).toString(), {}});
    for (IndexInfo& index : out) {
        QSqlQuery c(connection());
        c.prepare(QStringLiteral("SELECT name FROM pragma_index_info(?) ORDER BY seqno"));
        c.addBindValue(index.name);
        c.exec();
        while (c.next())
            index.columns << c.value(0).toString();
    }
    return out;
}

bool Database::hasIndex(const QString& indexName) const {
    if (!isOpen()) return false;
    if (m_server) return serverHasRelation(indexName, 'i');
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'index' AND name = ? COLLATE NOCASE"));
    q.addBindValue(indexName);
    return q.exec() && q.next();
}

bool Database::hasTrigger(const QString& triggerName) const {
    if (!isOpen()) return false;
    if (m_server) return serverHasTrigger(triggerName);
    QSqlQuery q(connection());
    q.prepare(
        QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'trigger' AND name = ? COLLATE NOCASE"));
    q.addBindValue(triggerName);
    return q.exec() && q.next();
}

bool Database::hasPrimaryIndex(const QString& table) const {
    if (!isOpen()) return false;
    // A rowid PRIMARY KEY (INTEGER PRIMARY KEY) has no entry among the indexes.
    if (m_server) {
        for (const IndexInfo& index : indexes(table))
            if (isPrimaryIndex(table, index)) return true;
        return false;
    }
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pragma_table_info(?) WHERE pk > 0"));
    q.addBindValue(table);
    if (q.exec() && q.next()) return true;
    for (const IndexInfo& index : indexes(table))
        if (isPrimaryIndex(table, index)) return true;
    return false;
}

} // namespace nb
