#include "links/LinkPaths.h"

#include <QCoreApplication>

namespace nb {
namespace {
QString& folderOverride() {
    static QString folder;
    return folder;
}
} // namespace

QString programFolder() {
    return folderOverride().isEmpty() ? QCoreApplication::applicationDirPath() : folderOverride();
}

void setProgramFolder(const QString& folder) {
    folderOverride() = folder;
}

QString withoutTrailingSeparator(const QString& folder) {
    return folder.endsWith(u'\\') || folder.endsWith(u'/') ? folder.chopped(1) : folder;
}

} // namespace nb
