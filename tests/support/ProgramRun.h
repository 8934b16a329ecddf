#pragma once
// For tests that run the program itself as a separate process (the command-line prints): its
// exit code and error text, and statements put straight into a store file beforehand.

#include <QProcess>
#include <QProcessEnvironment>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <functional>
#include <sys/resource.h>

namespace nb::test {

struct ProgramRun {
    int exitCode = -1;
    QString errorText;
    QStringList out; // the lines on the standard output stream
};

// Runs build/nubella with the arguments, its application folder `home`, without a display.
// `extraEnv` is added to its environment; `childSetup` runs in the child before the program
// starts (a limit on the size of the files it may write).
inline ProgramRun runProgram(const QString& home, const QStringList& arguments,
                             const QProcessEnvironment& extraEnv = {},
                             const std::function<void()>& childSetup = {}) {
    QProcess program;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(extraEnv);
    if (childSetup) program.setChildProcessModifier(childSetup);
    env.insert("NUBELLA_HOME", home);
    env.remove("QT_QPA_PLATFORM"); // the command needs no display
    env.remove("DISPLAY");
    static QTemporaryDir runtime; // a private runtime folder keeps Qt's warning off the error stream
    env.insert("XDG_RUNTIME_DIR", runtime.path());
    program.setProcessEnvironment(env);
    program.start(QStringLiteral(NB_BINARY_DIR) + "/nubella", arguments);
    program.waitForFinished(60000);
    const QString out = QString::fromUtf8(program.readAllStandardOutput()).trimmed();
    return {program.exitCode(), QString::fromUtf8(program.readAllStandardError()).trimmed(),
            out.isEmpty() ? QStringList() : out.split(u'\n')};
}

// For runProgram's childSetup: no file may grow past `bytes`, as on a full disk; a write past it
// fails instead of ending the program.
inline std::function<void()> fullDiskAt(rlim_t bytes) {
    return [bytes] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    };
}

// Runs each statement on the store file; the test fails on the first that fails.
inline void execOn(const QString& file, const QStringList& statements) {
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "fill");
        db.setDatabaseName(file);
        QVERIFY(db.open());
        for (const QString& sql : statements) {
            QSqlQuery q(db);
            QVERIFY2(q.exec(sql), qPrintable(sql));
        }
        db.close();
    }
    QSqlDatabase::removeDatabase("fill");
}

// The text of a PDF as pdftotext lays it out.
inline QString pdfText(const QString& pdf) {
    QProcess text;
    text.start("pdftotext", {"-layout", pdf, "-"});
    text.waitForFinished(20000);
    return QString::fromUtf8(text.readAllStandardOutput());
}

} // namespace nb::test
