#pragma once
// For tests that run the program itself as a separate process (the command-line prints): its
// exit code and error text, and statements put straight into a store beforehand (its file, or its
// schema on the server when the test runs on the test run's cluster).

#include "ServerDatabase.h"
#include "storage/StoreEngine.h"

#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSqlDatabase>
#include <QSqlError>
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

// The schema on the server of a store named by its file, for a test on the server: the seat the
// program runs as keeps that store there (NUBELLA_PG), not in the file.
inline QString serverSchemaOfFile(const QString& file) {
    if (!testOnServer() || qEnvironmentVariableIsEmpty("NUBELLA_PG")) return QString();
    const QString name = QFileInfo(file).fileName();
    for (const auto& [stem, schema] : {std::pair{"dbBasic.db", "basic"}, std::pair{"dbBill.db", "bill"},
                                       std::pair{"dbTax.db", "tax"}, std::pair{"dbEstimate.db", "estimate"}})
        if (name.compare(QLatin1String(stem), Qt::CaseInsensitive) == 0) return QLatin1String(schema);
    return QString();
}

// Runs each statement on the store; the test fails on the first that fails. A store the seat
// keeps on the server takes the statements in the server's words, as the program's own do.
inline void execOn(const QString& file, const QStringList& statements) {
    const QString schema = serverSchemaOfFile(file);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(schema.isEmpty() ? "QSQLITE" : "QPSQL", "fill");
        if (schema.isEmpty())
            db.setDatabaseName(file);
        else
            db.setConnectOptions(qEnvironmentVariable("NUBELLA_PG"));
        QVERIFY2(db.open(), qPrintable(file));
        if (!schema.isEmpty())
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("SET search_path TO ") + schema +
                                       QStringLiteral(", public")));
        for (const QString& sql : statements) {
            QSqlQuery q(db);
            const QString words = schema.isEmpty() ? sql : nb::serverStatement(sql, {});
            QVERIFY2(q.exec(words), qPrintable(words + QStringLiteral(": ") + q.lastError().text()));
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
