#include "storage/Database.h"

#include <QSqlField>
#include <QSqlRecord>
#include <cmath>

namespace nb {
namespace {

// The table a dynaset adds to: the first name after FROM.
QString tableOf(const QString& sql) {
    const QStringList words = sql.simplified().split(u' ');
    for (int i = 0; i + 1 < words.size(); ++i)
        if (words[i].compare(QStringLiteral("FROM"), Qt::CaseInsensitive) == 0)
            return QString(words[i + 1]).remove(u';');
    return sql.simplified().section(u' ', 0, 0); // a plain table name
}

// The server's NUMERIC (what a sum of whole numbers comes back as): the columns to read back
// as the files' sums are, whole ones as integers.
constexpr int kServerNumericType = 1700;

QList<int> numericColumns(const Database& db, const QSqlRecord& rec) {
    QList<int> out;
    if (!db.onServer()) return out;
    for (int i = 0; i < rec.count(); ++i)
        if (rec.field(i).typeID() == kServerNumericType) out << i;
    return out;
}

// A server table's row number stands last among its columns, where the files keep it unseen:
// a "*" brings it along (a "master.*" of a join in the middle of the row), and the recordset
// leaves it out so that its fields are the files'; so is a work table's seat. The columns shown,
// by their place in rec.
QList<int> shownColumns(const Database& db, const QString& sql, const QSqlRecord& rec) {
    const bool hideRowNumbers = db.onServer() && sql.contains(u'*');
    QList<int> shown;
    for (int i = 0; i < rec.count(); ++i)
        if (!hideRowNumbers ||
            (rec.fieldName(i) != QLatin1String("rowid") && rec.fieldName(i) != QLatin1String("seat")))
            shown << i;
    return shown;
}

QVariant asStoredNumber(const QVariant& value) {
    if (value.isNull()) return value;
    const double d = value.toDouble();
    if (d == double(qint64(d)) && std::abs(d) < 9.0e15) return QVariant(qint64(d));
    return value;
}

} // namespace

int Recordset::fieldIndex(const QString& name) const {
    for (int i = 0; i < m_names.size(); ++i)
        if (m_names[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

QVariant Recordset::field(int index) const {
    if (EOF_() || BOF_() || index < 0 || index >= m_names.size()) return {};
    return m_rows[size_t(m_row)].value(index);
}

QVariant Recordset::field(const QString& name) const {
    return field(fieldIndex(name));
}

bool Recordset::isNull(const QString& name) const {
    return field(name).isNull();
}

QString Recordset::text(const QString& name) const {
    return text(fieldIndex(name));
}

QString Recordset::text(int index) const {
    const QVariant v = field(index);
    // The empty text, not a null one: written back, it stays the empty text.
    return v.isNull() ? QStringLiteral("") : v.toString();
}

double Recordset::number(const QString& name) const {
    return number(fieldIndex(name));
}

double Recordset::number(int index) const {
    const QVariant v = field(index);
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
    QStringList names, marks;
    for (const QString& name : m_newNames) {
        names << quoteName(name);
        marks << QStringLiteral("?");
    }
    const QString sql = QStringLiteral("INSERT INTO ") + m_table + QStringLiteral(" (") + names.join(u',') +
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
    m_table.clear();
}

bool openRecordset(Database& db, Recordset& rs, const QString& sql, const QVariantList& values,
                   bool dynaset) {
    rs.close();
    const bool plainTable = !sql.trimmed().contains(u' ');
    const QString statement = plainTable ? QStringLiteral("SELECT * FROM ") + sql.trimmed() : sql;
    QSqlQuery local(db.connection());
    local.setForwardOnly(true);
    QSqlQuery* answer = nullptr;
    if (!db.run(local, statement, values, &answer)) {
        ReportQueryFailure(db.lastErrorNumber(), db.lastErrorDescription(), sqlForDisplay(sql, values),
                           db.lastEngineCode());
        return false;
    }
    QSqlQuery& q = *answer;
    const QSqlRecord rec = q.record();
    const QList<int> shown = shownColumns(db, statement, rec);
    QList<bool> numeric(rec.count(), false);
    for (int i : numericColumns(db, rec))
        numeric[i] = true;
    for (int i : shown)
        rs.m_names << rec.fieldName(i);
    while (q.next()) {
        QVariantList row;
        row.reserve(shown.size());
        for (int i : shown)
            row << (numeric[i] ? asStoredNumber(q.value(i)) : q.value(i));
        rs.m_rows.push_back(std::move(row));
    }
    q.finish();
    rs.m_open = true;
    rs.m_dynaset = dynaset;
    rs.m_db = &db;
    rs.m_table = dynaset ? tableOf(statement) : QString();
    rs.m_row = 0;
    return true;
}

bool OpenDb(Database& db, const QString& path, int exclusive) {
    return db.open(path, exclusive != 0);
}

bool OpenDynaset(Database& db, Recordset& rs, const QString& sql, const QVariantList& values) {
    return openRecordset(db, rs, sql, values, true);
}

bool OpenForwardOnly(Database& db, QSqlQuery& query, const QString& sql, const QVariantList& values) {
    // On the server the whole result comes in one answer and is read from there: a forward-only
    // query would stream its rows over the store's one connection, and the first statement run
    // on it meanwhile (a save while the list is open) would drop the rows not read yet.
    query.setForwardOnly(!db.onServer());
    if (db.run(query, sql, values)) return true;
    ReportQueryFailure(db.lastErrorNumber(), db.lastErrorDescription(), sqlForDisplay(sql, values),
                       db.lastEngineCode());
    return false;
}

bool OpenSnapshot(Database& db, Recordset& rs, const QString& sql, const QVariantList& values) {
    return openRecordset(db, rs, sql, values, false);
}

void CloseRs(Recordset& rs) {
    rs.close();
}

} // namespace nb
