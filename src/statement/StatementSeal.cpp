#include "statement/StatementSeal.h"

#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Settings.h"
#include "invoice/InvoiceSeal.h"

#include <QFile>

namespace nb {

StatementSeal readStatementSeal() {
    QString path = GetSetting(kAppTitle, kEnvSection, kStatementSealKey, kSealDefaultPath);
    if (path == kSealDefaultPath) path = appFolderFile(QStringLiteral("공급자도장.gif"));
    StatementSeal seal;
    if (path.isEmpty()) return seal;
    if (!QFile::exists(path)) {
        seal.keep = true;
        return seal;
    }
    seal.image = QImage(path);
    return seal;
}

void saveStatementSealSetting(const QString& path) {
    SaveSetting(kAppTitle, kEnvSection, kStatementSealKey, path);
}

QString chooseStatementSeal(QWidget* parent) {
    return fileChooser().openFile(parent, kSealDialogTitle, kSealDialogFilter, appFolder());
}

} // namespace nb
