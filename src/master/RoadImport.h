#pragma once
// Loading the road-name postcode book: one file of the whole country, or one file per province
// chosen together. The book is built in a file of its own beside the store file and takes its
// name only when it is whole, so a refused file, a failed write or a killed program leaves the
// book before it as it was. A file is refused whole, with its name, line and reason, when a line
// cannot be read in its encoding (decided by its first line: UTF-8, else CP949) or does not
// follow the published layout.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace nb {

struct SearchIndexDef;

// The tables of the built book and the indexes their names are searched by.
const SearchIndexDef& RoadNameIndex();
const SearchIndexDef& BuildingNameIndex();
const SearchIndexDef& PlaceNameIndex();

// True when the file's first line is that of a road-name postcode file.
bool IsRoadBookFile(const QString& path);

// Builds the book from the files and puts it in place of the one before; says how many
// addresses came in and answers that number, or says why nothing changed and answers -1.
// The setting then chooses the road-name book.
qint64 ImportRoadBook(const QStringList& paths);

} // namespace nb
