#include "TestSupport.h"

#include "common/UiSetup.h"
#include "core/Lifecycle.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QWidget>

namespace nb::test {

TestHome::TestHome() {
    resetProgramState();
    qputenv("NUBELLA_HOME", m_dir.path().toUtf8());
}

TestHome::~TestHome() {
    resetProgramState();
}

nb::ScriptedMessages& script() {
    return nb::scriptMessages();
}

void typeText(QWidget* widget, const QString& text) {
    for (QChar ch : text) {
        if (ch.unicode() < 128) {
            QTest::keyClick(widget, ch.toLatin1());
        } else {
            QTest::sendKeyEvent(QTest::Press, widget, Qt::Key_unknown, QString(ch), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, widget, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        }
    }
}

void pressKey(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(widget, key, modifiers);
}

void showActive(QWidget* window) {
    window->show();
    window->activateWindow();
    QApplication::setActiveWindow(window);
    QTest::qWait(20);
}

bool roundTripThroughAnotherProgram(QWidget* window) {
    QWidget calculator;
    calculator.setWindowTitle(QStringLiteral("계산기"));
    calculator.resize(200, 120);
    calculator.show();
    calculator.activateWindow();
    if (!QTest::qWaitFor([&] { return QApplication::activeWindow() == &calculator; }, 2000)) return false;
    QEvent leaving(QEvent::ApplicationDeactivate);
    QCoreApplication::sendEvent(qApp, &leaving);
    window->activateWindow();
    if (!QTest::qWaitFor([&] { return QApplication::activeWindow() == window; }, 2000)) return false;
    QEvent coming(QEvent::ApplicationActivate);
    QCoreApplication::sendEvent(qApp, &coming);
    QTest::qWait(30);
    return true;
}

QWidget* focused() {
    return QApplication::focusWidget();
}

QString screenshotDir() {
    const QString dir = QStringLiteral(NB_SCREENSHOT_DIR);
    QDir().mkpath(dir);
    return dir;
}

QString saveScreenshot(QWidget* widget, const QString& name) {
    const QString path = screenshotDir() + u'/' + name + QStringLiteral(".png");
    widget->grab().save(path);
    return path;
}

QString sharedDataDir() {
    return QStringLiteral(NB_SHARED_DATA_DIR);
}

void prepareEnvironment() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QByteArray runtime = QDir::tempPath().toUtf8() + "/nubella-test-runtime";
    QDir().mkpath(QString::fromUtf8(runtime));
    QFile::setPermissions(QString::fromUtf8(runtime), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", runtime);
}

void prepareApplication(QApplication& app) {
    nb::setupApplicationUi(app);
    // Keep every test away from the operator's own folder even before a TestHome exists.
    static QTemporaryDir fallback;
    if (qEnvironmentVariableIsEmpty("NUBELLA_HOME")) qputenv("NUBELLA_HOME", fallback.path().toUtf8());
    // Likewise on the server: a database for the whole program until the first TestHome names
    // its own, so that no program copy of a server run falls back to store files.
    if (testOnServer() && qEnvironmentVariableIsEmpty("NUBELLA_PG")) {
        static ServerDatabase* programDatabase = nullptr;
        programDatabase = new ServerDatabase;
        qAddPostRoutine([] { delete programDatabase; });
    }
    nb::scriptMessages();
}

} // namespace nb::test
