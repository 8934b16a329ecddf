#include "core/AppFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace nb {

QString appFolder() {
    const QString home = qEnvironmentVariable("NUBELLA_HOME");
    QString folder = home.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) : home;
    if (folder.isEmpty()) folder = QDir::homePath() + QStringLiteral("/.nubella");
    QDir().mkpath(folder);
    return QDir::cleanPath(folder);
}

QString appFolderFile(const QString& relative) { return appFolder() + u'/' + relative; }

QString userImage(const QString& fileName) {
    const QString path = appFolderFile(QStringLiteral("Image/") + fileName);
    return QFileInfo::exists(path) ? path : QString();
}

} // namespace nb
