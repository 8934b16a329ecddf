#pragma once
// The road tests' desk: a real X server (Xvfb) with a window manager (openbox) on a free
// display, the real program started on it with a fresh home folder, keys typed with xdotool,
// the stores read with sqlite3 and what the program said read from its said-log. Everything
// it starts ends with it. Waits poll with a time limit; nothing sleeps long on a guess.

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace road {

class RoadDesk {
public:
    RoadDesk();
    ~RoadDesk();
    RoadDesk(const RoadDesk&) = delete;
    RoadDesk& operator=(const RoadDesk&) = delete;

    // False (with the reason) when the X server or the window manager did not come up.
    bool ready() const { return m_why.isEmpty(); }
    QString why() const { return m_why; }
    QString display() const { return m_display; }
    QString home() const { return m_home.path(); }
    QString storeFile(const QString& name) const { return home() + QStringLiteral("/Dbs/") + name; }

    // Starts the program (its window, or a command line job) with the desk's home folder.
    bool startProgram(const QStringList& arguments = {});
    bool programRunning() const;
    // Waits for the program to end by itself; false when it still runs after `millis`.
    bool waitProgramEnded(int millis);
    // Starts another program beside it on the same desk (a clock, a calculator).
    bool startOther(const QString& program, const QStringList& arguments = {});

    // The name (title) of the active window, empty when none is active.
    QString activeWindowName() const;
    QString activeWindowId() const;
    // Waits until the active window's name matches.
    bool waitActive(const QRegularExpression& name, int millis = 15000) const;
    // Waits until some shown window's name matches; its id, or empty text.
    QString waitWindow(const QRegularExpression& name, int millis = 15000) const;
    bool activate(const QString& windowId) const;

    // Keys as xdotool names them ("alt+p", "Return", "Tab"), one after another.
    void keys(const QStringList& keyNames) const;
    void key(const QString& keyName) const { keys({keyName}); }
    // Text typed key by key (Hangul included).
    void type(const QString& text) const;

    // What the program said, one entry per box ("box<TAB>title<TAB>text").
    QStringList said() const;
    // Waits until the program has said something containing `part` more than `before` times.
    bool waitSaid(const QString& part, int before = 0, int millis = 15000) const;
    int countSaid(const QString& part) const;

    // Rows of a query on a store file through the sqlite3 shell, columns joined by '|'.
    QStringList rows(const QString& storeName, const QString& sql) const;
    // Runs a statement on a store file through the sqlite3 shell.
    bool exec(const QString& storeName, const QString& sql) const;

    // Lets the program handle what was typed (a short, bounded settle).
    void settle(int millis = 300) const;

private:
    bool startServer();
    bool serverUp(int fromDisplay);
    bool windowManagerUp();
    QString run(const QString& program, const QStringList& arguments, int millis = 10000) const;
    QProcessEnvironment deskEnvironment() const;

    QTemporaryDir m_home;
    QString m_display;
    QString m_why;
    QString m_saidLog;
    std::unique_ptr<QProcess> m_server;
    std::unique_ptr<QProcess> m_windowManager;
    std::unique_ptr<QProcess> m_program;
    std::vector<std::unique_ptr<QProcess>> m_others;
};

// The main window's title as the program gives it.
QRegularExpression mainWindowName();

} // namespace road
