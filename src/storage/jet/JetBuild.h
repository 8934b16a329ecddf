#pragma once
// Building one new store from a raw file the reader wrote (see JetReader.h): the tables of the
// store's layout filled with the source's rows as they were read, and the figures taken of the
// result for the check.

#include "storage/StoreLayout.h"
#include "storage/jet/JetImport.h"

#include <QString>
#include <QStringList>

namespace nb {

class Database;

// A raw file's columns of one table, as the Jet file declared them.
struct RawColumn {
    QString name;
    int jetType = 0;
};

struct BuildOutcome {
    bool ok = false;
    QString failure;
    QStringList notes;
    QList<JetTableFigures> tables; // read figures filled; written ones by takeWrittenFigures
};

// Columns the start-up upgrade adds to an older file itself; a source without them gets them
// from the upgrade steps, not from the import.
bool isUpgradeColumn(const QString& table, const QString& column);

// Creates the store file at newPath with the tables of `layout` the source needs and fills
// them from rawPath. `source` names the Jet file in notes and failures.
BuildOutcome buildStoreFromRaw(const QString& source, const QString& rawPath, const QString& newPath,
                               const QList<TableDef>& layout);

// The figures of a table in the store: rows and, for each named column, the sum of its values
// added in the rows' order (as the reader added them), over rowids [fromRowid, toRowid].
JetTableFigures tableFigures(Database& db, const QString& table, const QStringList& columns,
                             qint64 fromRowid = 1, qint64 toRowid = (qint64(1) << 62));
// Fills each table's written figures from the open store.
void takeWrittenFigures(Database& db, QList<JetTableFigures>& tables);

// The figures the reader took of each table of a raw file.
QList<JetTableFigures> readFigures(Database& raw, const QString& source);
// A raw file's tables and their columns, in reading order.
QList<std::pair<QString, QList<RawColumn>>> rawTables(Database& raw);

} // namespace nb
