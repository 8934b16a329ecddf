#pragma once
// A store file's table streamed into the same table of its schema on the server through the
// server's `COPY ... FROM STDIN`, on the server connection's own handle, inside the transaction
// the caller holds there. The rows go in the order they were written, with their row numbers,
// each value as the bound INSERTs wrote it: texts byte for byte, whole numbers as digits, amounts
// as the shortest decimal that reads back as the same double.

#include "storage/StoreLayout.h"

#include <QByteArray>
#include <QList>
#include <QSqlDatabase>
#include <QString>

namespace nb {

// How a value is written for a column of the server's table.
enum class CopyColumn { Text, Whole, Fraction };
CopyColumn copyColumnOf(int daoType);

// The text format's field of a text: backslash, tab, newline and carriage return escaped.
void appendCopyText(QByteArray* line, const char* bytes, qsizetype size);
// The field of an amount (the shortest exact decimal; Infinity, -Infinity, NaN by their names).
void appendCopyFraction(QByteArray* line, double value);
// The field of a whole number written as a fraction: rounded half to even, as the server rounds
// a fraction bound into a whole-number column.
void appendCopyWhole(QByteArray* line, double value);

// Streams the rows of `table` of the open store file `file` (the given columns, then its row
// number) into the server's `schema.table`. False with the Korean reason and the server's words
// in `why`; the server's transaction is then broken off and the caller rolls it back.
bool copyFileTableIn(QSqlDatabase file, QSqlDatabase server, const QString& schema, const TableDef& table,
                     const QList<ColumnDef>& columns, qint64* rows, QString* why);

} // namespace nb
