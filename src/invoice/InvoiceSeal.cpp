#include "invoice/InvoiceSeal.h"

#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Lifecycle.h"
#include "core/Settings.h"

#include <QFile>
#include <QFileDialog>

namespace nb {

namespace {

class DialogFileChooser : public FileChooser {
public:
    QString openFile(QWidget* parent, const QString& title, const QString& filter) override {
        return QFileDialog::getOpenFileName(parent, title, QString(), qtFileFilter(filter));
    }
};

std::unique_ptr<FileChooser>& chooserSlot() {
    static std::unique_ptr<FileChooser> slot;
    static const bool hooked = [] {
        registerResetHook([] { chooserSlot().reset(); });
        return true;
    }();
    Q_UNUSED(hooked);
    return slot;
}

} // namespace

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

FileChooser& fileChooser() {
    auto& slot = chooserSlot();
    if (!slot) slot = std::make_unique<DialogFileChooser>();
    return *slot;
}

void setFileChooser(std::unique_ptr<FileChooser> chooser) {
    chooserSlot() = std::move(chooser);
}

QString ScriptedFileChooser::openFile(QWidget*, const QString& title, const QString& filter) {
    titles << title;
    filters << filter;
    return answers.isEmpty() ? QString() : answers.takeFirst();
}

ScriptedFileChooser& scriptFileChooser() {
    auto chooser = std::make_unique<ScriptedFileChooser>();
    ScriptedFileChooser& ref = *chooser;
    setFileChooser(std::move(chooser));
    return ref;
}

QString qtFileFilter(const QString& filter) {
    const QString description = filter.section(u'|', 0, 0);
    const QString patterns = filter.section(u'|', 1, 1);
    if (patterns.isEmpty()) return description;
    return description.section(u'(', 0, 0).trimmed() + QStringLiteral(" (") +
           QString(patterns).replace(u';', u' ') + u')';
}

} // namespace nb
