#include "storage/Database.h"

#include "common/Messages.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlRecord>
#include <QUuid>

namespace nb {
namespace {

// Engine result codes that mean another connection holds a lock.
constexpr int kSqliteBusy = 5;
constexpr int kSqliteLocked = 6;

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
    if (!q.prepare(sql)) return false;
    for (const QVariant& v : values)
        q.addBindValue(v);
    return q.exec();
}

QString newConnectionName() {
    return QStringLiteral("nb-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
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

void ReportQueryFailure(int errorNumber, const QString& description, const QString& sql) {
    switch (errorNumber) {
    case ErrSyntax:
        ShowInfo(QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r") + sql, QStringLiteral("Query"));
        break;
    case ErrNotOpened:
        ShowInfo(QStringLiteral("Data Base MDB가 선언되지 않았습니다.\r") + sql, QStringLiteral("MDB 오류"));
        break;
    case ErrEngine:
        ShowInfo(description + u'\r' + sql, QStringLiteral("MDB 오류"));
        break;
    default:
        ShowInfo(description + u'\r' + sql, QStringLiteral("ERROR"));
        break;
    }
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
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

// ---- Database --------------------------------------------------------------------------

Database::Database() = default;

Database::~Database() {
    close();
}

bool Database::isOpen() const {
    return !m_connection.isEmpty() && QSqlDatabase::database(m_connection, false).isOpen();
}

QSqlDatabase Database::connection() const {
    return QSqlDatabase::database(m_connection, false);
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
    if (!QFileInfo(path).isFile() || !connect(path, false)) return false;
    if (exclusive) runInternal(connection(), QStringLiteral("PRAGMA locking_mode=EXCLUSIVE"));
    return true;
}

bool Database::create(const QString& path) {
    close();
    return !QFileInfo::exists(path) && connect(path, true);
}

void Database::close() {
    if (m_connection.isEmpty()) return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        if (db.isOpen()) db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
    m_path.clear();
    m_savepoints.clear();
}

void Database::setBusyTimeout(int millis) {
    if (isOpen()) runInternal(connection(), QStringLiteral("PRAGMA busy_timeout=") + QString::number(millis));
}

void Database::noteFailure(int number, const QString& description) {
    m_lastErrorNumber = number;
    m_lastErrorDescription = description;
}

bool Database::run(QSqlQuery& q, const QString& sql, const QVariantList& values) {
    noteFailure(ErrNone, QString());
    if (!isOpen()) {
        noteFailure(ErrNotOpened, QStringLiteral("Object variable or With block variable not set"));
        return false;
    }
    ++m_statementsRun;
    bool ok = q.prepare(sql);
    if (ok) {
        for (const QVariant& v : values)
            q.addBindValue(v);
        ok = q.exec();
    }
    if (!ok) {
        const QSqlError error = q.lastError();
        noteFailure(errorNumberFor(error.databaseText(), engineCodeOf(error)), descriptionOf(error));
    }
    return ok;
}

bool Database::tryExecute(const QString& sql, const QVariantList& values) {
    m_recordsAffected = 0;
    QSqlQuery q(connection());
    if (!run(q, sql, values)) return false;
    m_recordsAffected = q.numRowsAffected() < 0 ? 0 : q.numRowsAffected();
    return true;
}

bool Database::Execute(const QString& sql, const QVariantList& values) {
    if (tryExecute(sql, values)) return true;
    ReportQueryFailure(m_lastErrorNumber, m_lastErrorDescription, sqlForDisplay(sql, values));
    return false;
}

bool Database::attach(const QString& filePath, const QString& alias) {
    if (!isOpen() || !QFileInfo(filePath).isFile()) return false;
    return runInternal(connection(), QStringLiteral("ATTACH DATABASE ? AS ") + quoteName(alias), {filePath});
}

void Database::detach(const QString& alias) {
    if (isOpen()) runInternal(connection(), QStringLiteral("DETACH DATABASE ") + quoteName(alias));
}

bool Database::beginTransaction() {
    if (!isOpen()) return false;
    const QString name = QStringLiteral("nb_save_") + QString::number(m_savepoints.size());
    if (!runInternal(connection(), QStringLiteral("SAVEPOINT ") + name)) return false;
    m_savepoints << name;
    return true;
}

bool Database::commit() {
    if (!isOpen() || m_savepoints.isEmpty()) return false;
    const bool ok = runInternal(connection(), QStringLiteral("RELEASE ") + m_savepoints.last());
    if (ok) m_savepoints.removeLast();
    return ok;
}

void Database::rollback() {
    if (!isOpen() || m_savepoints.isEmpty()) return;
    const QString name = m_savepoints.takeLast();
    runInternal(connection(), QStringLiteral("ROLLBACK TO ") + name);
    runInternal(connection(), QStringLiteral("RELEASE ") + name);
}

// ---- Schema questions ------------------------------------------------------------------

bool Database::hasTable(const QString& table) const {
    if (!isOpen()) return false;
    QSqlQuery q(connection());
    q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"));
    while (q.next())
        if (q.value(0).toString() == table) return true;
    return false;
}

QStringList Database::columns(const QString& table) const {
    QStringList out;
    if (!isOpen()) return out;
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
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'index' AND name = ? COLLATE NOCASE"));
    q.addBindValue(indexName);
    return q.exec() && q.next();
}

bool Database::hasTrigger(const QString& triggerName) const {
    if (!isOpen()) return false;
    QSqlQuery q(connection());
    q.prepare(
        QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'trigger' AND name = ? COLLATE NOCASE"));
    q.addBindValue(triggerName);
    return q.exec() && q.next();
}

bool Database::hasPrimaryIndex(const QString& table) const {
    if (!isOpen()) return false;
    // A rowid PRIMARY KEY (INTEGER PRIMARY KEY) has no entry among the indexes.
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("SELECT 1 FROM pragma_table_info(?) WHERE pk > 0"));
    q.addBindValue(table);
    if (q.exec() && q.next()) return true;
    for (const IndexInfo& index : indexes(table))
        if (isPrimaryIndex(table, index)) return true;
    return false;
}

} // namespace nb
