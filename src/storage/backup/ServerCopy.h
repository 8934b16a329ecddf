#pragma once
// A store's rows carried between a store file and the store's schema on a PostgreSQL server,
// either way, inside a transaction the caller holds on the server, and checked source beside
// result (the rows of every table and the sum of every number column) before the caller
// commits. The move of a seat onto the server, the backup of a seat on the server and its
// restore are made of these.

#include "storage/StoreLayout.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QVariantList>

class QSqlError;

namespace nb {

// A connection of its own (any driver), let go of when it goes.
class OwnConnection {
public:
    explicit OwnConnection(const QString& driver);
    ~OwnConnection();
    OwnConnection(const OwnConnection&) = delete;
    OwnConnection& operator=(const OwnConnection&) = delete;
    QSqlDatabase db() const;

private:
    QString m_name;
};

// Opens `server` (a QPSQL connection of its own) by a libpq connection string, numbers read as
// doubles; false with the reason in Korean.
bool openServerConnection(const OwnConnection& server, const QString& connInfo, QString* why);

// The engine's own words of a failure (the server's first, else the connector's).
QString engineWords(const QSqlError& error);

// Runs one statement with its values bound (without values unprepared: the server prepares no
// SET or CREATE); false with the engine's words in `why`.
bool runSql(QSqlDatabase db, const QString& sql, QString* why, const QVariantList& values = {});

// The layout's tables of the store a schema keeps (none for "inout").
QList<TableDef> schemaTables(const QString& schema);

// Whether the schema exists on the server, and whether any of its tables holds a row.
struct SchemaContent {
    bool exists = false;
    bool holdsRows = false;
};
bool schemaContent(QSqlDatabase server, const QString& schema, SchemaContent* content, QString* why);

// One table carried over, with its rows.
struct CopiedTable {
    QString store; // the schema
    QString table;
    qint64 rows = 0;
};

// Makes `schema` on the server (it must not exist) with the layout's tables, copies the rows
// of the store file into it with their row numbers, and checks each table. Runs in the
// caller's transaction on `server`, which must be open.
bool copyFileToSchema(const QString& file, const QString& schema, QSqlDatabase server,
                      QList<CopiedTable>* copied, QString* why);

// Lays the layout's tables of `schema` down in the new store file `file` and copies the
// schema's rows into it with their row numbers, then checks each table. Reads in the caller's
// transaction on `server` (begun as one snapshot for all the stores it copies); a schema that is
// not there gives a store with empty tables.
bool copySchemaToFile(QSqlDatabase server, const QString& schema, const QString& file, QString* why);

} // namespace nb
