#pragma once
// A store file taken through the engine itself: a consistent copy of a store another
// connection (this program or a second copy) may be writing, and the checks a copy must pass
// before it is trusted (the engine's integrity check, the rows of each table, a checksum).

#include <QMap>
#include <QString>

namespace nb {

// The rows of each table of a store file, by table name.
using TableRows = QMap<QString, qint64>;

// Copies the store `source` into the new file `target` through the engine's online backup:
// one read of the store as one moment left it, whatever is written meanwhile. The copy keeps
// no journal beside it and is flushed to the disk. False with the reason in Korean; `damaged`
// tells whether the engine found the store damaged (not a store, or pages it cannot read).
bool copyStoreFile(const QString& source, const QString& target, QString* why, bool* damaged);

// The rows of every table of a store file; false with the reason.
bool countTableRows(const QString& path, TableRows* rows, QString* why);

// Empty when the engine finds the file whole; else what it found, in Korean. `quick` checks the
// pages and their links but not that each index agrees with its table.
QString integrityProblem(const QString& path, bool quick = false);

// True when another connection (a second running copy) has the store open: the engine then
// refuses this one the file to itself.
bool storeOpenElsewhere(const QString& path);

// The SHA-256 of a file's bytes in hex, empty when it cannot be read.
QString fileChecksum(const QString& path);

// Flushes a file (or a folder's entries) to the disk.
bool syncPath(const QString& path);

} // namespace nb
