#include "core/shell/Program.h"

#include "common/Messages.h"
#include "common/UiSetup.h"
#include "common/text/frmsosu.h"
#include "core/AppState.h"
#include "core/Lifecycle.h"
#include "core/shell/Nubella.h"
#include "core/ScreenRegistry.h"
#include "core/shell/Startup.h"

#include <QApplication>
#include <cstdio>

namespace nb {

void registerShellScreens() {
    registerMenuAction(QStringLiteral("mnu_sosu"), [](QWidget* mainWindow) { (new frmsosu(mainWindow))->show(); });
}

int runProgram(int argc, char** argv) {
    QApplication application(argc, argv);
    setupApplicationUi(application);
    setApplicationTitle(kAppTitle);
    registerShellScreens();
    Nubella window;
    window.show();
    const int code = window.load() ? application.exec() : 1;
    resetProgramState();  // store handles must go before Qt's own statics do
    return code;
}

namespace {

class ConsoleMessagesBackend : public MessageBackend {
public:
    int box(const QString& text, int buttons, const QString&) override {
        say(text);
        return defaultAnswer(buttons);
    }
    void notice(const QString& text, int, int) override { say(text); }
    void floatMsg(const QString& text, int, bool, int) override { say(text); }
    void progressShow(const QString&, int) override {}
    void progressSet(int) override {}
    void progressClose() override {}

private:
    static void say(const QString& text) {
        const QString line = QString(text).replace(QStringLiteral("\r\n"), QStringLiteral(" ")).replace(u'\r', u' ');
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    }
};

} // namespace

int runHeadless(int argc, char** argv, const std::function<int(const QStringList& arguments)>& job) {
    // No window is opened, so no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    setupApplicationUi(application);
    setApplicationTitle(kAppTitle);
    setMessageBackend(std::make_unique<ConsoleMessagesBackend>());
    StartProgram();
    const int code = job(QApplication::arguments());
    resetProgramState();
    return code;
}

} // namespace nb
