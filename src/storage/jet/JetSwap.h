#pragma once
// Putting a whole new store folder in place of the current one. The new folder is built in a
// work folder beside the store folder ("Dbs.import-<time>/Dbs"), and the two folders are
// exchanged by one rename of the file system (renameat2 with RENAME_EXCHANGE), so that at every
// moment the store folder holds either all the old stores or all the new ones. Afterwards the
// old folder, untouched, is kept beside as "Dbs.before-import-<time>".
//
// The work folder says how far it got: the file "building" while it is being filled, the file
// "ready" (naming the new folder's inode) from the moment it may be exchanged. An import that
// was ended half way is cleared up by the next one: a work folder still building, or ready but
// never exchanged, is removed; one exchanged but not yet renamed becomes the kept folder.

#include <QString>
#include <QStringList>

namespace nb {

void recoverInterruptedImports(const QString& storeFolder);
// A fresh work folder beside the store folder, marked as building; empty when it cannot be made.
QString beginImportFolder(const QString& storeFolder);
// The folder inside the work folder that becomes the store folder.
QString newStoreFolder(const QString& work, const QString& storeFolder);
// Copies into the new folder every file of the store folder it does not hold yet: the stores
// consistently through the engine (VACUUM INTO), other files as they are. Journals stay behind.
bool carryCurrentFiles(const QString& storeFolder, const QString& newFolder, QStringList& notes,
                       QString& why);
// Flushes the new folder, exchanges it with the store folder and keeps the old one beside;
// answers the kept folder, or empty (with why) when nothing changed.
QString exchangeStoreFolder(const QString& work, const QString& storeFolder, QString& why);

} // namespace nb
