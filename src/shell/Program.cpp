#include "shell/Program.h"

#include "common/Messages.h"
#include "common/UiSetup.h"
#include "common/text/frmsosu.h"
#include "core/AppState.h"
#include "core/CommandLine.h"
#include "core/Lifecycle.h"
#include "core/ScreenRegistry.h"
#include "shell/BackupMenu.h"
#include "shell/FrmServer.h"
#include "shell/JetImportMenu.h"
#include "shell/Nubella.h"
#include "shell/Startup.h"

#include <QApplication>
#include <cstdio>

namespace nb {

void registerShellScreens() {
    registerJetImportMenu();
    // One decimal settings form: chosen again, the open one comes forward.
    registerMenuAction(QStringLiteral("mnu_sosu"), [](QWidget* mainWindow) {
        frmsosu* form = mainWindow->findChild<frmsosu*>(QString(), Qt::FindDirectChildrenOnly);
        if (!form) form = new frmsosu(mainWindow);
        form->show();
        form->raise();
        form->activateWindow();
    });
    registerBackupMenu();
    registerServerMenu();
}

bool loadAndShow(Nubella& window, bool showSplash) {
    if (!window.load(showSplash)) return false;
    window.show();
    return true;
}

int runProgram(int argc, char** argv) {
    QApplication application(argc, argv);
    setupApplicationUi(application);
    setApplicationTitle(kAppTitle);
    registerShellScreens();
    Nubella window;
    const int code = loadAndShow(window) ? application.exec() : 1;
    resetProgramState(); // store handles must go before Qt's own statics do
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
    QString input(const QString&, const QString&, const QString&) override { return QString(); }

private:
    static void say(const QString& text) {
        const QString line =
            QString(text).replace(QStringLiteral("\r\n"), QStringLiteral(" ")).replace(u'\r', u' ');
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

int runNubella(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const CommandChoice choice = chooseCommand(arguments, commandJobs());
    switch (choice.kind) {
    case CommandChoice::Kind::Usage:
        for (const QString& line : usageLines(choice, commandJobs()))
            sayLine(line);
        return 2;
    case CommandChoice::Kind::Job:
        return runHeadless(argc, argv, choice.job->run);
    case CommandChoice::Kind::Window:
        break;
    }
    return runProgram(argc, argv);
}

} // namespace nb
