#pragma once
// The application folder holds Dbs/, Rpt/, Image/ and settings.ini. It is $NUBELLA_HOME when
// that is set, else the per-user data folder of the program.

#include <QString>

namespace nb {

QString appFolder();
// appFolder() + "/" + relative.
QString appFolderFile(const QString& relative);
// The picture a user may put in Image/ (mainbg.jpg, tax_back.jpg, ...), or empty when absent.
QString userImage(const QString& fileName);

} // namespace nb
