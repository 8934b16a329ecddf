#include "common/External.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace nb {
namespace {

class DesktopLauncher : public ExternalLauncher {
public:
    bool openUrl(const QString& address) override {
        const QUrl url = QFileInfo::exists(address) ? QUrl::fromLocalFile(address) : QUrl(address);
        return QDesktopServices::openUrl(url);
    }
    bool startProgram(const QString& program, const QStringList& arguments,
                      const QString& workingFolder) override {
        const QString wine =
            isWindowsProgram(program) ? QStandardPaths::findExecutable(QStringLiteral("wine")) : QString();
        if (!wine.isEmpty())
            return QProcess::startDetached(wine, QStringList{program} + arguments, workingFolder);
        return QProcess::startDetached(program, arguments, workingFolder);
    }

private:
    static bool isWindowsProgram(const QString& program) {
        QFile file(program);
        return file.open(QIODevice::ReadOnly) && file.read(2) == "MZ";
    }
};

std::unique_ptr<ExternalLauncher>& slot() {
    static std::unique_ptr<ExternalLauncher> current;
    return current;
}

} // namespace

ExternalLauncher& launcher() {
    auto& s = slot();
    if (!s) s = std::make_unique<DesktopLauncher>();
    return *s;
}

void setLauncher(std::unique_ptr<ExternalLauncher> l) { slot() = std::move(l); }

bool RecordingLauncher::openUrl(const QString& address) {
    calls.push_back({address, {}, true, {}});
    return succeed;
}

bool RecordingLauncher::startProgram(const QString& program, const QStringList& arguments,
                                     const QString& workingFolder) {
    calls.push_back({program, arguments, false, workingFolder});
    return succeed;
}

RecordingLauncher& recordLaunches() {
    auto recorder = std::make_unique<RecordingLauncher>();
    RecordingLauncher& ref = *recorder;
    setLauncher(std::move(recorder));
    return ref;
}

} // namespace nb
