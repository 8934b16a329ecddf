#pragma once
// The menu entries that lead out of the program: the separate scheduler (HMAgenda.exe), web
// pages and files handed to the desktop, and the support site.

#include <QString>

class QWidget;

namespace nb {

inline const QString kScheduleProgramFile = QStringLiteral("HMAgenda.exe");
// The order page of the maker's site.
QString paperOrderAddress();

// Starts the scheduler with the data folder: found beside the program, else through its own
// "AppPath" setting (a folder that is gone is replaced by the program's own and saved back).
// True when it was started.
bool RunSchedule(const QString& dataPath);
// Hands a web address or a file to the desktop; true when something took it.
bool OpenDocument(QWidget* form, const QString& target);
// Asks, and opens the support site on Yes.
void GoHomePage();

} // namespace nb
