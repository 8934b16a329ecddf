#pragma once
// A table of a store's schema on the server streamed into the same table of a new store file
// through the server's `COPY ... TO STDOUT`, read in the transaction the caller holds on the
// server (one snapshot for every store it copies) and written in the one it holds on the file.
// The rows keep their order and their row numbers; each value goes in as the server's driver
// read it: texts byte for byte, whole numbers as integers, amounts as the same double.

#include "storage/StoreLayout.h"

#include <QByteArray>
#include <QList>
#include <QSqlDatabase>
#include <QString>

namespace nb {

// The text of one field of COPY's text format, its escapes undone (\b \f \n \r \t \v \\, and a
// backslash before any other character stands for that character).
QByteArray copyFieldText(const char* field, qsizetype size);

// Streams the rows of the server's `schema.table` (the given columns, then the row number) into
// `table` of the open store file `file`. False with the Korean reason in `why`.
bool copyServerTableOut(QSqlDatabase server, const QString& schema, QSqlDatabase file, const TableDef& table,
                        const QList<ColumnDef>& columns, qint64* rows, QString* why);

} // namespace nb
