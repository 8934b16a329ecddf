#include "common/FileChooser.h"

#include "core/Lifecycle.h"

#include <QFileDialog>

namespace nb {

namespace {

class DialogFileChooser : public FileChooser {
public:
    QString openFile(QWidget* parent, const QString& title, const QString& filter,
                     const QString& start) override {
        return QFileDialog::getOpenFileName(parent, title, start, qtFileFilter(filter));
    }
    QString saveFile(QWidget* parent, const QString& title, const QString& suggested,
                     const QString& filter) override {
        return QFileDialog::getSaveFileName(parent, title, suggested, qtFileFilter(filter));
    }
    QString chooseFolder(QWidget* parent, const QString& title, const QString& start) override {
        return QFileDialog::getExistingDirectory(parent, title, start);
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

FileChooser& fileChooser() {
    auto& slot = chooserSlot();
    if (!slot) slot = std::make_unique<DialogFileChooser>();
    return *slot;
}

void setFileChooser(std::unique_ptr<FileChooser> chooser) {
    chooserSlot() = std::move(chooser);
}

QString ScriptedFileChooser::next(const QString& kind, const QString& title) {
    kinds << kind;
    titles << title;
    return answers.isEmpty() ? QString() : answers.takeFirst();
}

QString ScriptedFileChooser::openFile(QWidget*, const QString& title, const QString& filter,
                                      const QString& start) {
    filters << filter;
    starts << start;
    return next(QStringLiteral("open"), title);
}

QString ScriptedFileChooser::saveFile(QWidget*, const QString& title, const QString& path,
                                      const QString& filter) {
    filters << filter;
    suggested << path;
    return next(QStringLiteral("save"), title);
}

QString ScriptedFileChooser::chooseFolder(QWidget*, const QString& title, const QString& start) {
    suggested << start;
    return next(QStringLiteral("folder"), title);
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
