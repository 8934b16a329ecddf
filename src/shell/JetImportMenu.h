#pragma once
// 기초등록 → 옛 자료 가져오기: the import of a folder of the old Jet files from the window, with
// the progress form and the report of rows and sums at the end.

#include <QString>

class QWidget;

namespace nb {

inline const QString kJetImportTitle = QStringLiteral("옛 자료 가져오기");

// Puts the entry's action in the registry ("mnu_jetImport").
void registerJetImportMenu();
// The entry's work over the main window: refused while a screen is open; asks for the folder and
// a confirmation, imports, opens the stores again and shows the report or the reason.
void RunJetImport(QWidget* mainWindow);

} // namespace nb
