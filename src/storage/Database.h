#pragma once
// An open store file and the results read from it, in the shape the screens are written
// against: a Database handle as the original's, a Recordset with EOF / RecordCount / MoveNext /
// Fields, and the query helpers that never throw at their caller but show a box and answer
// false. Values always travel as bound parameters, never inside the SQL text.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <vector>

namespace nb {

// Column type numbers of the original's schema calls.
enum DaoType : int {
    dbBoolean = 1,
    dbByte = 2,
    dbInteger = 3,
    dbLong = 4,
    dbSingle = 6,
    dbDouble = 7,
    dbText = 10,
    dbMemo = 12,
};

// Error numbers the failure boxes are chosen by.
enum DbError : int {
    ErrNone = 0,
    ErrNotOpened = 91,      // the store file was never opened
    ErrSyntax = 3011,       // statement not understood, or names a missing table or column
    ErrEngine = 3261,
};

class Database {
public:
    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    bool isOpen() const;
    QString path() const { return m_path; }
    QSqlDatabase connection() const;

    // Opens the file shared, read and write; false (and no box) when it cannot be opened.
    bool open(const QString& path);
    void close();

    // Direct execution with the values bound in order. On an engine failure shows the box of
    // the query helpers and returns false; RecordsAffected() then reads 0.
    bool Execute(const QString& sql, const QVariantList& values = {});
    int RecordsAffected() const { return m_recordsAffected; }

    // Makes another store file's tables reachable as alias.Table in this connection's
    // statements (the two cross-file queries).
    bool attach(const QString& filePath, const QString& alias);
    void detach(const QString& alias);

    // One save that runs as several statements runs in one transaction.
    bool beginTransaction();
    bool commit();
    void rollback();

    // Schema questions, names compared without regard to case unless stated.
    bool hasTable(const QString& table) const;          // exact name, as the upgrade steps compare
    QStringList columns(const QString& table) const;
    bool hasColumn(const QString& table, const QString& column) const;

private:
    QString m_path;
    QString m_connection;
    int m_recordsAffected = 0;
};

class Recordset {
public:
    bool isOpen() const { return m_open; }
    bool EOF_() const { return !m_open || m_row >= int(m_rows.size()); }
    bool BOF_() const { return !m_open || m_row < 0; }
    int RecordCount() const { return int(m_rows.size()); }
    int AbsolutePosition() const { return m_row; }
    void MoveFirst() { m_row = 0; }
    void MoveLast() { m_row = int(m_rows.size()) - 1; }
    void MoveNext() { ++m_row; }
    void MovePrevious() { --m_row; }
    void Move(int row) { m_row = row; }

    int fieldCount() const { return int(m_names.size()); }
    QString fieldName(int i) const { return m_names.value(i); }
    int fieldIndex(const QString& name) const;  // without regard to case; -1 when absent
    // The value of the current row; an invalid QVariant for a missing field or no current row.
    QVariant field(const QString& name) const;
    QVariant field(int index) const;
    bool isNull(const QString& name) const;
    // Null read as the empty text / 0 (NullToText).
    QString text(const QString& name) const;
    double number(const QString& name) const;
    // The row index of the first row whose field equals value (text comparison), or -1.
    int findFirst(const QString& name, const QVariant& value) const;

    // Dynaset writing: AddNew, set fields, Update inserts one row into the table read.
    void AddNew();
    void setField(const QString& name, const QVariant& value);
    bool Update();

    void close();

private:
    friend bool openRecordset(Database&, Recordset&, const QString&, const QVariantList&, bool);
    bool m_open = false;
    bool m_dynaset = false;
    Database* m_db = nullptr;
    QString m_table;  // the table a dynaset adds rows to
    QStringList m_names;
    std::vector<QVariantList> m_rows;
    int m_row = 0;
    QStringList m_newNames;
    QVariantList m_newValues;
};

// The query helpers: a failure shows its box and answers false, never throws.
bool OpenDb(Database& db, const QString& path, int exclusive = 0);
bool OpenDynaset(Database& db, Recordset& rs, const QString& sql, const QVariantList& values = {});
bool OpenSnapshot(Database& db, Recordset& rs, const QString& sql, const QVariantList& values = {});
void CloseRs(Recordset& rs);
bool DAO_AddField(Database& db, const QString& table, const QString& field, int type, int size,
                  bool allowZero, const QString& sql);

// The box a failed statement shows, chosen by error number (exposed for tests).
void ReportQueryFailure(int errorNumber, const QString& description, const QString& sql);

// A LIKE pattern that matches the typed text literally (its % and _ escaped with \);
// use with "LIKE ? ESCAPE '\'".
QString likeLiteral(const QString& text);

} // namespace nb
