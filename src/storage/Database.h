#pragma once
// An open store file and the results read from it, in the shape the screens are written
// against: a Database handle as the original's, a Recordset with EOF / RecordCount / MoveNext /
// Fields, and the query helpers that never throw at their caller but show a box and answer
// false. Values always travel as bound parameters, never inside the SQL text.

#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <functional>
#include <memory>
#include <vector>

namespace nb {

class GridRowSource;
class Recordset;
struct ServerAnswer;       // DatabaseServerRows.cpp
struct ServerRowStatement; // DatabaseServerRows.cpp

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
    ErrNotOpened = 91, // the store file was never opened
    ErrSyntax = 3011,  // statement not understood, or names a missing table or column
    ErrEngine = 3261,  // the file or a table is locked by another connection
};

// Booleans are stored as the original stored them.
inline constexpr int kStoredTrue = -1;
inline constexpr int kStoredFalse = 0;
inline int storedBool(bool value) {
    return value ? kStoredTrue : kStoredFalse;
}

// One index of a table as the store file holds it.
struct IndexInfo {
    QString name;
    bool unique = false;
    QString origin; // "c" created by CREATE INDEX, "pk" / "u" from the table's constraints
    QStringList columns;
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
    // True when this store is a schema of the seat's server database (StoreEngine.h).
    bool onServer() const { return m_server; }
    QString serverSchema() const { return m_schema; }
    // The seat this connection's rows of the work tables belong to on the server (StoreEngine.h:
    // isWorkTable): its own unless it works aside for another (workForSeatOf), kept across a
    // reconnection. The files have no such thing.
    QString seatKey() const { return m_seatKey; }
    // This connection reads and writes the work rows of other's seat (a refill on a connection
    // of its own for the window's); before open, or at once when open.
    void workForSeatOf(const Database& other);
    // The statement as this connection's engine takes it (the files' as written); for callers
    // that run a QSqlQuery of their own on connection().
    QString statementFor(const QString& sql, const QVariantList& values = {}) const;
    // Binds the values in order as this connection's engine takes them (the files' as given).
    void bindValues(QSqlQuery& query, const QVariantList& values) const;

    // Opens an existing file shared, read and write (exclusive: no other connection may use
    // it); false (and no box) when it is missing or no store file. A store of the seat on the
    // server opens its schema (exclusive does not apply); false when the schema is not there
    // or the server cannot be reached (lastError...() says which).
    bool open(const QString& path, bool exclusive = false);
    // Creates a new, empty store file (WAL journal) and opens it; false when it exists. Its
    // writes are not flushed one by one: whoever creates a file flushes it when complete. On
    // the server the store's schema is made; false when it exists.
    bool create(const QString& path);
    // On the server: connects to a store whose schema does not exist yet and begins the one
    // transaction that makes it, so that its commit lays the store down whole or not at all.
    // False when the schema exists or the server cannot be reached.
    bool beginNewServerStore(const QString& path);
    void close();
    // How long a save waits for another connection (another running copy) to finish its
    // write before it is refused as busy. The wait is taken in short slices with the
    // window's events handled between them, so the window stays alive.
    void setBusyTimeout(int millis);
    int busyTimeout() const { return m_busyWaitMillis; }
    static constexpr int kDefaultBusyWaitMillis = 5000;

    // Direct execution with the values bound in order. On an engine failure shows the box of
    // the query helpers and returns false; RecordsAffected() then reads 0.
    bool Execute(const QString& sql, const QVariantList& values = {});
    // The same without a box, for callers that word their own failure (lastError...()).
    bool tryExecute(const QString& sql, const QVariantList& values = {});
    // A quiet question "does the query give a row?" for checks inside a save whose own
    // statement reports the failure; false (and found false) when the query failed.
    bool tryHasRow(const QString& sql, const QVariantList& values, bool& found);
    int RecordsAffected() const { return m_recordsAffected; }
    // Number and description of the last failure (0 / empty after a success).
    int lastErrorNumber() const { return m_lastErrorNumber; }
    QString lastErrorDescription() const { return m_lastErrorDescription; }
    // The engine's own result code of the last failure (SQLITE_FULL, ...), 0 when none. A
    // server's failure reads as the file engine's code of the same cause (StoreEngine.h).
    int lastEngineCode() const { return m_lastEngineCode; }
    // The server's SQLSTATE of the last failure ("40P01"); empty on files and after a success.
    QString lastSqlState() const { return m_lastSqlState; }
    // Statements run through Execute, tryExecute and the recordset helpers since the file was
    // opened. Schema questions below and transaction control are not counted.
    int statementsRun() const { return m_statementsRun; }

    // On the server: a read run through the server's own interface, past the driver, in one
    // round trip and planned for its values. Its rows come straight as values of the types the
    // driver gives (int; a bigint as qulonglong from zero up, qlonglong below; fractional amounts
    // and sums as double; QString; a null as a null of its column's type), width values a row
    // appended to rows. False when it failed: lastError...() noted, no box shown (the caller
    // shows OpenForwardOnly's). A connection the server dropped is made again and the read asked
    // once more, as for the other statements.
    bool readRowsOnServer(const QString& sql, const QVariantList& values, std::vector<QVariant>& rows,
                          int* width);
    // The same read for a list: the answer held as the server gave it, each row's values made as
    // the list takes the row, so they are made once, into the list's own room. Null when it
    // failed, as above.
    std::unique_ptr<GridRowSource> openRowsOnServer(const QString& sql, const QVariantList& values);

    // Makes another store file's tables reachable as alias.Table in this connection's
    // statements (the two cross-file queries). The file must exist. On the server every store
    // is a schema of the same database, reachable already: the path must name the store whose
    // schema is alias.
    bool attach(const QString& filePath, const QString& alias);
    void detach(const QString& alias);

    // One save that runs as several statements runs in one transaction. The outermost one
    // begins as a write (it takes the store's write lock at once, waiting while another
    // connection holds it), so every read inside it sees the store as the save leaves it.
    // Transactions nest (an inner one is a savepoint of the outer). A failed commit rolls the
    // transaction back and answers false: nothing of the save stays, nothing stays open.
    // Failures are noted in lastError...() and show no box: the caller shows the save's.
    // On the server the outermost one takes the store's writer lock (an advisory lock held to
    // the transaction's end) right after BEGIN, waiting at most the busy timeout; a statement
    // that failed inside it makes its commit fail, as the server has dropped its work.
    bool beginTransaction();
    bool commit();
    void rollback();
    bool inTransaction() const { return !m_savepoints.isEmpty(); }

    // Schema questions, names compared without regard to case unless stated.
    bool hasTable(const QString& table) const; // exact name, as the upgrade steps compare
    QStringList columns(const QString& table) const;
    bool hasColumn(const QString& table, const QString& column) const;
    // The declared type of a column as the file holds it ("TEXT(6)", "REAL"), empty if absent.
    QString columnType(const QString& table, const QString& column) const;
    QList<IndexInfo> indexes(const QString& table) const;
    bool hasIndex(const QString& indexName) const;
    bool hasTrigger(const QString& triggerName) const;
    // True when the table has a primary index (see isPrimaryIndex).
    bool hasPrimaryIndex(const QString& table) const;

private:
    friend bool openRecordset(Database&, Recordset&, const QString&, const QVariantList&, bool);
    friend bool OpenForwardOnly(Database&, QSqlQuery&, const QString&, const QVariantList&);
    bool connect(const QString& path, bool creating);
    // The server's side (DatabaseServer.cpp).
    bool connectServer(const QString& path, const QString& schema, bool creating);
    bool schemaExists() const;
    bool beginOnServer();
    bool abandonFailedTransaction();
    void applyLockTimeout();
    // The lock timeout and the server's watch of its side of the connection, on every new one.
    void applySessionSettings();
    // On the server: a connection the server dropped (a restart, the network gone and back) is
    // made again at the next action outside a transaction; false while the server is away.
    bool reconnectServer();
    // Marks the connection lost when the driver closed it outside a transaction.
    void noteClosedByDriver();
    bool connectionAnswers() const;
    // The seat's name on the server's connection (its application_name).
    bool nameSeat();
    bool serverHasTable(const QString& table) const;
    QStringList serverColumns(const QString& table) const;
    QString serverDeclaredType(const QString& table, const QString& column) const;
    QList<IndexInfo> serverIndexes(const QString& table) const;
    bool serverHasRelation(const QString& name, char kind) const;
    bool serverHasTrigger(const QString& name) const;
    // Prepares and runs one counted statement; a failure is noted in lastError...(). With kept,
    // the caller reads the answer at once and keeps nothing of it: on the server the statement
    // then runs on a query this connection prepared before, and *kept says which query holds the
    // answer (query itself otherwise).
    bool run(QSqlQuery& query, const QString& sql, const QVariantList& values, QSqlQuery** kept = nullptr);
    // On the server, the statement prepared once on this connection and kept for the next run of
    // the same text; *prepared false (the query holds the server's words) when it would not be.
    std::shared_ptr<QSqlQuery> preparedOnServer(const QString& statement, bool forwardOnly, bool* prepared);
    std::unique_ptr<ServerAnswer> answerOnServer(const QString& sql, const QVariantList& values);
    std::unique_ptr<ServerAnswer> readAnswerOnServer(const QString& statement, const QVariantList& values,
                                                     QSqlError* error);
    // Lets go of every kept statement, or of those of one text.
    void forgetPrepared(const QString& statement = QString());
    void noteFailure(int number, const QString& description, int engineCode = 0);
    void noteFailure(const QSqlError& error);
    void noteServerFailure(const QSqlError& error);
    // Runs a transaction statement, retrying while the store is busy (see setBusyTimeout).
    bool runControl(const QString& sql, bool waitWhileBusy);
    bool commitOutermost();

    QString m_path;
    QString m_connection;
    QString m_seatKey;
    // The notice channels a dropped connection listened on, until its successor listens again.
    QStringList m_channels;
    int m_recordsAffected = 0;
    int m_statementsRun = 0;
    int m_lastErrorNumber = 0;
    int m_lastEngineCode = 0;
    int m_busyWaitMillis = kDefaultBusyWaitMillis;
    QString m_lastErrorDescription;
    QString m_lastSqlState;
    QStringList m_savepoints;
    bool m_server = false;
    QString m_schema;
    // The transaction depth at which a statement failed on the server (0 when none): from
    // there up the server has dropped the work, and only a rollback to below it goes on.
    int m_failedDepth = 0;
    // The server's connection failed as an absent server's does: made again before the next
    // action outside a transaction.
    bool m_connectionLost = false;
    // Statements prepared on the server's connection, by their text (and forward-only or not):
    // run again they are one round trip instead of three (prepare, run, let go).
    QHash<QString, std::shared_ptr<QSqlQuery>> m_prepared;
    // What readRowsOnServer keeps of the statements it ran (the text in the server's marks, how
    // their columns came), by their text.
    QHash<QString, std::shared_ptr<ServerRowStatement>> m_rowStatements;
};

// Runs a whole save; when the server broke it off to settle a deadlock or a conflict of two
// seats (SQLSTATE 40P01, 40001) it is run again, quietly, up to kSaveTries times in all: the
// failure boxes of the tries before the last are not shown. On files it runs once. save
// answers whether it saved; so does this.
inline constexpr int kSaveTries = 4;
bool RetryingSave(const std::function<bool()>& save);
// True inside RetryingSave while a failure of the current try is to be met by another try
// rather than a box (the failure boxes ask it).
bool quietRetryWanted();

// The one rule for what counts as a table's primary index: the table's own PRIMARY KEY, or a
// unique index the program created as primary, named by primaryIndexName.
bool isPrimaryIndex(const QString& table, const IndexInfo& index);
// Index names are per table in the original and per file in the store: the store's name of
// the original's index on a table is table + "_" + name ("User_PK", "BuyTax_PrimaryKey").
QString storeIndexName(const QString& table, const QString& originalName);
// The names of the original's primary indexes: "PK" (User) and "PrimaryKey".
bool isPrimaryIndexName(const QString& table, const QString& storeName);

// Maps an engine failure onto the original's error numbers: 3011 for a statement that is not
// understood or names a missing table or column, 3261 for a lock, else the engine's own code.
int errorNumberFor(const QString& engineText, int engineCode);

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
    int fieldIndex(const QString& name) const; // without regard to case; -1 when absent
    // The value of the current row; an invalid QVariant for a missing field or no current row.
    QVariant field(const QString& name) const;
    QVariant field(int index) const;
    bool isNull(const QString& name) const;
    // Null read as the empty text / 0 (NullToText).
    QString text(const QString& name) const;
    double number(const QString& name) const;
    // The same by position (fieldIndex found once for many rows): no name is compared per value.
    QString text(int index) const;
    double number(int index) const;
    // A stored boolean (-1 / 0); null reads as false.
    bool flag(const QString& name) const { return number(name) != 0.0; }
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
    QString m_table; // the table a dynaset adds rows to
    QStringList m_names;
    std::vector<QVariantList> m_rows;
    int m_row = 0;
    QStringList m_newNames;
    QVariantList m_newValues;
};

// The query helpers: a failure shows its box and answers false, never throws.
// OpenDb shows nothing; a plain table name as sql reads the whole table.
bool OpenDb(Database& db, const QString& path, int exclusive = 0);
bool OpenDynaset(Database& db, Recordset& rs, const QString& sql, const QVariantList& values = {});
bool OpenSnapshot(Database& db, Recordset& rs, const QString& sql, const QVariantList& values = {});
void CloseRs(Recordset& rs);
// The statement run for reading row by row (a long list filled a page at a time); the same
// failure boxes as OpenSnapshot.
bool OpenForwardOnly(Database& db, QSqlQuery& query, const QString& sql, const QVariantList& values = {});
// Adds a column unless one of that name (any case) exists, then runs sql once (both in one
// transaction). False when the column was there; true otherwise, also after a failure, which
// shows the failure report of the procedure and leaves the table as it was. size 0 leaves
// the width to the engine; allowZero false makes a text column refuse the empty text.
bool DAO_AddField(Database& db, const QString& table, const QString& field, int type, int size,
                  bool allowZero, const QString& sql);
// The declared column text DAO_AddField and the store layout use for a type and size; on the
// server its type (StoreEngine.h), where the width is not declared.
QString declaredType(int type, int size, bool server = false);

// The box a failed statement shows, chosen by error number (exposed for tests). Above the
// engine's own words stands a Korean sentence saying what happened and what to do.
void ReportQueryFailure(int errorNumber, const QString& description, const QString& sql, int engineCode = 0);

// Why the store refused a write, in the operator's words: what happened and what to do
// (disk full, store read-only, store damaged, store busy, a duplicate or missing value).
QString storeFaultText(int engineCode, const QString& engineText);
// True when the engine's code says another connection holds the store.
bool isBusyCode(int engineCode);
// The failure box of a save that did not happen: the headline, the cause in Korean, and the
// engine's words under them.
void ReportSaveFailure(const Database& db, const QString& headline = QString());
// The same for a failure met outside the Database's own statements (a prepared statement run
// for many rows): the engine's code and words as the statement gave them.
void ReportSaveFailure(int engineCode, const QString& engineText, const QString& headline);
// The statement as a failure box shows it: each ? outside quotes replaced by its value, text
// between single quotes, numbers plain, a missing value as Null. For the eye only, never run.
QString sqlForDisplay(const QString& sql, const QVariantList& values);

// A LIKE pattern that matches the typed text literally (its %, _ and \ escaped with \);
// use with "LIKE ? ESCAPE '\'".
QString likeLiteral(const QString& text);
// Identifier between double quotes, for names built into statements (the server folds it to
// lower case, as it makes its names: see serverStatement).
QString quoteName(const QString& name);

} // namespace nb
