#pragma once
// What every test of the program shares: a fresh application folder, scripted messages,
// typing Korean the way an operator does, and screenshots under build/screenshots/.

#include "ServerDatabase.h"
#include "common/Messages.h"

#include <QString>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

class QWidget;
class QApplication;

namespace nb::test {

// A fresh, empty application folder, set as NUBELLA_HOME for as long as it lives; the
// settings, the shared state and every open store are let go of on the way in and out. In a
// test's server run it brings a fresh database of its own as well (ServerDatabase).
class TestHome {
public:
    TestHome();
    ~TestHome();
    QString path() const { return m_dir.path(); }
    QString file(const QString& relative) const { return m_dir.path() + u'/' + relative; }

    // The database of a server run; inactive on files.
    const ServerDatabase& server() const { return m_server; }

private:
    QTemporaryDir m_dir;
    ServerDatabase m_server; // dropped after the stores were let go of
};

// Installs a fresh script for the message boxes and returns it.
nb::ScriptedMessages& script();

// Types text into the widget key by key; Hangul goes in as committed characters.
void typeText(QWidget* widget, const QString& text);
void pressKey(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
// Shows a screen as the operator has it: visible and active, so that focus moves work.
void showActive(QWidget* window);
// The operator switches to another program (a calculator) and back: another window takes the
// activation and the application is told it lost the desktop's focus and got it back; then
// `window` is the active one again. False when a window never became active.
bool roundTripThroughAnotherProgram(QWidget* window);
// The widget that has the keyboard focus.
QWidget* focused();

// Saves the widget as build/screenshots/<name>.png and returns the path.
QString saveScreenshot(QWidget* widget, const QString& name);
QString screenshotDir();
// The folder of the shared test data (the postcode book).
QString sharedDataDir();

// Called by NB_TEST_MAIN before the test object runs: fonts, translations, environment.
void prepareApplication(QApplication& app);
void prepareEnvironment();

} // namespace nb::test

// Runs the test object with a QApplication on the offscreen platform.
#define NB_TEST_MAIN(TestObject)                                                                             \
    int main(int argc, char** argv) {                                                                        \
        nb::test::prepareEnvironment();                                                                      \
        QApplication app(argc, argv);                                                                        \
        nb::test::prepareApplication(app);                                                                   \
        TestObject tc;                                                                                       \
        QTEST_SET_MAIN_SOURCE_PATH                                                                           \
        return QTest::qExec(&tc, argc, argv);                                                                \
    }
