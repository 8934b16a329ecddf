#include "storage/Database.h"

#include "common/Messages.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

namespace nb {
namespace {

// Maps an engine failure onto the numbers the failure boxes are chosen by.
int errorNumberFor(const QSqlError& error) {
    const QString text = error.databaseText().toLower();
    if (text.contains(QStringLiteral("syntax error")) || text.contains(QStringLiteral("no such table")) ||
        text.contains(QStringLiteral("no such column")) || text.contains(QStringLiteral("incomplete input")) ||
        text.contains(QStringLiteral("unrecognized token")))
        return ErrSyntax;
    return -1;
}

QString descriptionOf(const QSqlError& error) {
    return error.databaseText().isEmpty() ? error.text() : error.databaseText();
}

bool prepareAndRun(QSqlQuery& q, const QString& sql, const QVariantList& values) {
    if (!q.prepare(sql)) return false;
    for (const QVariant& v : values) q.addBindValue(v);
    return q.exec();
}

} // namespace

void ReportQueryFailure(int errorNumber, const QString& description, const QString& sql) {
    switch (errorNumber) {
    case ErrSyntax:
        ShowInfo(QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r") + sql, QStringLiteral("Query"));
        break;
    case ErrNotOpened:
        ShowInfo(QStringLiteral("Data Base MDB가 선언되지 않았습니다.\r") + sql, QStringLiteral("MDB 오류"));
        break;
    case ErrEngine: ShowInfo(description + u'\r' + sql, QStringLiteral("MDB 오류")); break;
    default: ShowInfo(description + u'\r' + sql, QStringLiteral("ERROR")); break;
    }
}

QString likeLiteral(const QString& text) {
    QString out;
    for (QChar c : text) {
        if (c == u'%' || c == u'_' || c == u'\\') out += u'\\';
        out += c;
    }
    return out;
}

Database::Database() = default;

Database::~Database() { close(); }

bool Database::isOpen() const {
    return !m_connection.isEmpty() && QSqlDatabase::database(m_connection, false).isOpen();
}

QSqlDatabase Database::connection() const { return QSqlDatabase::database(m_connection, false); }

bool Database::open(const QString& path) {
    close();
    if (!QFileInfo(path).isFile()) return false;
    m_connection = QStringLiteral("nb-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(path);
    if (!db.open()) {
        close();
        return false;
    }
    QSqlQuery q(db);
    q.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    q.exec(QStringLiteral("PRAGMA foreign_keys=OFF"));
    m_path = path;
    return true;
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
}

bool Database::Execute(const QString& sql, const QVariantList& values) {
    m_recordsAffected = 0;
    if (!isOpen()) {
        ReportQueryFailure(ErrNotOpened, QString(), sql);
        return false;
    }
    QSqlQuery q(connection());
    if (!prepareAndRun(q, sql, values)) {
        ReportQueryFailure(errorNumberFor(q.lastError()), descriptionOf(q.lastError()), sql);
        return false;
    }
    m_recordsAffected = q.numRowsAffected() < 0 ? 0 : q.numRowsAffected();
    return true;
}

bool Database::attach(const QString& filePath, const QString& alias) {
    QSqlQuery q(connection());
    return prepareAndRun(q, QStringLiteral("ATTACH DATABASE ? AS ") + alias, {filePath});
}

void Database::detach(const QString& alias) {
    QSqlQuery q(connection());
    q.exec(QStringLiteral("DETACH DATABASE ") + alias);
}

bool Database::beginTransaction() { return connection().transaction(); }
bool Database::commit() { return connection().commit(); }
void Database::rollback() { connection().rollback(); }

bool Database::hasTable(const QString& table) const {
    if (!isOpen()) return false;
    QSqlQuery q(connection());
    prepareAndRun(q, QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"), {});
    while (q.next())
        if (q.value(0).toString() == table) return true;
    return false;
}

QStringList Database::columns(const QString& table) const {
    QStringList out;
    if (!isOpen()) return out;
    QSqlQuery q(connection());
    prepareAndRun(q, QStringLiteral("SELECT name FROM pragma_table_info(?)"), {table});
    while (q.next()) out << q.value(0).toString();
    return out;
}

bool Database::hasColumn(const QString& table, const QString& column) const {
    return columns(table).contains(column, Qt::CaseInsensitive);
}

// ---- Recordset -------------------------------------------------------------------------

int Recordset::fieldIndex(const QString& name) const {
    for (int i = 0; i < m_names.size(); ++i)
        if (m_names[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

QVariant Recordset::field(int index) const {
    if (EOF_() || BOF_() || index < 0 || index >= m_names.size()) return {};
    return m_rows[size_t(m_row)].value(index);
}

QVariant Recordset::field(const QString& name) const { return field(fieldIndex(name)); }

bool Recordset::isNull(const QString& name) const { return field(name).isNull(); }

QString Recordset::text(const QString& name) const {
    const QVariant v = field(name);
    return v.isNull() ? QString() : v.toString();
}

double Recordset::number(const QString& name) const {
    const QVariant v = field(name);
    return v.isNull() ? 0.0 : v.toDouble();
}

int Recordset::findFirst(const QString& name, const QVariant& value) const {
    const int col = fieldIndex(name);
    if (col < 0) return -1;
    for (int r = 0; r < int(m_rows.size()); ++r)
        if (m_rows[size_t(r)].value(col).toString() == value.toString()) return r;
    return -1;
}

void Recordset::AddNew() {
    m_newNames.clear();
    m_newValues.clear();
}

void Recordset::setField(const QString& name, const QVariant& value) {
    m_newNames << name;
    m_newValues << value;
}

bool Recordset::Update() {
    if (!m_dynaset || !m_db || m_table.isEmpty()) return false;
    QStringList marks;
    for (int i = 0; i < m_newNames.size(); ++i) marks << QStringLiteral("?");
    const QString sql = QStringLiteral("INSERT INTO ") + m_table + QStringLiteral(" (") + m_newNames.join(u',') +
                        QStringLiteral(") VALUES (") + marks.join(u',') + u')';
    const bool ok = m_db->Execute(sql, m_newValues);
    m_newNames.clear();
    m_newValues.clear();
    return ok && m_db->RecordsAffected() > 0;
}

void Recordset::close() {
    m_open = false;
    m_rows.clear();
    m_names.clear();
    m_row = 0;
    m_db = nullptr;
}

namespace {
// The table a dynaset adds to: the first name after FROM.
QString tableOf(const QString& sql) {
    const QStringList words = sql.simplified().split(u' ');
    for (int i = 0; i + 1 < words.size(); ++i)
        if (words[i].compare(QStringLiteral("FROM"), Qt::CaseInsensitive) == 0)
            return QString(words[i + 1]).remove(u';');
    return sql.simplified().section(u' ', 0, 0);  // a plain table name
}
} // namespace

bool openRecordset(Database& db, Recordset& rs, const QString& sql, const QVariantList& values, bool dynaset) {
    rs.close();
    if (!db.isOpen()) {
        ReportQueryFailure(ErrNotOpened, QString(), sql);
        return false;
    }
    const bool plainTable = !sql.trimmed().contains(u' ');
    const QString statement = plainTable ? QStringLiteral("SELECT * FROM ") + sql.trimmed() : sql;
    QSqlQuery q(db.connection());
    q.setForwardOnly(true);
    if (!prepareAndRun(q, statement, values)) {
        ReportQueryFailure(errorNumberFor(q.lastError()), descriptionOf(q.lastError()), sql);
        return false;
    }
    const QSqlRecord rec = q.record();
    for (int i = 0; i < rec.count(); ++i) rs.m_names << rec.fieldName(i);
    while (q.next()) {
        QVariantList row;
        row.reserve(rec.count());
        for (int i = 0; i < rec.count(); ++i) row << q.value(i);
        rs.m_rows.push_back(std::move(row));
    }
    rs.m_open = true;
    rs.m_dynaset = dynaset;
    rs.m_db = &db;
    rs.m_table = dynaset ? tableOf(statement) : QString();
    rs.m_row = 0;
    return true;
}

bool OpenDb(Database& db, const QString& path, int /*exclusive*/) { return db.open(path); }

bool OpenDynaset(Database& db, Recordset& rs, const QString& sql, const QVariantList& values) {
    return openRecordset(db, rs, sql, values, true);
}

bool OpenSnapshot(Database& db, Recordset& rs, const QString& sql, const QVariantList& values) {
    return openRecordset(db, rs, sql, values, false);
}

void CloseRs(Recordset& rs) { rs.close(); }

} // namespace nb
