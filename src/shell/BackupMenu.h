#pragma once
// The backup and restore entries of the 기초등록 menu.

class QWidget;

namespace nb {

// Registers "mnu_backup" and "mnu_restore".
void registerBackupMenu();
// Asks where to write a backup and writes it.
void RunBackupMenu(QWidget* mainWindow);
// Asks for a backup, confirms, restores it; after a restore the program ends so that no
// screen goes on showing the books it had read before.
void RunRestoreMenu(QWidget* mainWindow);

} // namespace nb
