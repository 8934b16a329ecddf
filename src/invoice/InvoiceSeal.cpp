#include "invoice/InvoiceSeal.h"

#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Settings.h"

#include <QFile>

namespace nb {

QString sealSetting() {
    return GetSetting(kAppTitle, kEnvSection, kSealPathKey, kSealDefaultPath);
}

void saveSealSetting(const QString& path) {
    SaveSetting(kAppTitle, kEnvSection, kSealPathKey, path);
}

QString sealFilePath() {
    QString path = sealSetting();
    if (path == kSealDefaultPath) path = appFolderFile(QStringLiteral("공급자도장.gif"));
    if (path.isEmpty() || !QFile::exists(path)) return QString();
    return path;
}

QImage loadSealImage() {
    const QString path = sealFilePath();
    return path.isEmpty() ? QImage() : QImage(path);
}

} // namespace nb
