// The program started as an operator starts it, on an empty application folder: it lays down
// its store files, repairs its settings and stays up; a second start changes no stored data.
#include "TestSupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {

const QStringList kStoreFiles = {"dbBasic.db", "dbBill.db", "dbTax.db", "dbEstimate.db", "dbPost.db",
                                 "InOutCash.db"};

QProcessEnvironment programEnvironment(const QString& home) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("NUBELLA_HOME", home);
    env.insert("QT_QPA_PLATFORM", "offscreen");
    return env;
}

bool allStoreFilesExist(const QString& home) {
    for (const QString& f : kStoreFiles)
        if (!QFileInfo::exists(home + "/Dbs/" + f)) return false;
    return QFileInfo::exists(home + "/settings.ini");
}

// Schema and every row of every table of one store file, as text.
QString dumpOf(const QString& file) {
    QString out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "dump");
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        q.exec("SELECT type, name, sql FROM sqlite_master ORDER BY type, name");
        QStringList tables;
        while (q.next()) {
            out += q.value(0).toString() + '|' + q.value(1).toString() + '|' + q.value(2).toString() + '\n';
            if (q.value(0).toString() == "table") tables << q.value(1).toString();
        }
        for (const QString& t : tables) {
            QSqlQuery rows(db);
            rows.exec("SELECT * FROM \"" + t + "\"");
            while (rows.next())
                for (int i = 0; i < rows.record().count(); ++i) out += rows.value(i).toString() + ',';
            out += '\n';
        }
        db.close();
    }
    QSqlDatabase::removeDatabase("dump");
    return out;
}

QStringList tablesOf(const QString& file) {
    QStringList tables;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "tables");
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name", db);
        while (q.next()) tables << q.value(0).toString();
        db.close();
    }
    QSqlDatabase::removeDatabase("tables");
    return tables;
}

// Starts the program and waits until it has laid down its files and passed the splash.
bool startAndSettle(QProcess& program, const QString& home) {
    program.setProcessEnvironment(programEnvironment(home));
    program.start(QStringLiteral(NB_BINARY_DIR) + "/nubella", {});
    if (!program.waitForStarted(10000)) return false;
    for (int i = 0; i < 200 && !allStoreFilesExist(home); ++i) QTest::qWait(50);
    QTest::qWait(2500);  // past the two-second splash
    return program.state() == QProcess::Running;
}

void stop(QProcess& program) {
    program.kill();
    program.waitForFinished(5000);
}

} // namespace

class TestBlackBox : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void firstStartLaysDownTheStoreAndStaysUp() {
        QTemporaryDir home;
        QProcess program;
        QVERIFY(startAndSettle(program, home.path()));
        stop(program);
        for (const QString& f : kStoreFiles) QVERIFY2(QFileInfo::exists(home.path() + "/Dbs/" + f), qPrintable(f));
        QVERIFY(QFileInfo(home.path() + "/Rpt").isDir());
        QCOMPARE(tablesOf(home.path() + "/Dbs/dbBasic.db").filter(QRegularExpression("^(User|Environment|Trader|Product)$")).size(), 4);
        QCOMPARE(tablesOf(home.path() + "/Dbs/dbBill.db").filter(QRegularExpression("^(Master|Detail)$")).size(), 2);
        QCOMPARE(tablesOf(home.path() + "/Dbs/dbTax.db").filter(QRegularExpression("^(NewAcount|BuyTax|BuyTotal|SaleTotal)$")).size(), 4);
        QCOMPARE(tablesOf(home.path() + "/Dbs/dbEstimate.db").filter(QRegularExpression("^(EstiBase|Estimate)$")).size(), 2);
        QVERIFY(tablesOf(home.path() + "/Dbs/dbPost.db").contains("Post"));
        QFile ini(home.path() + "/settings.ini");
        QVERIFY(ini.open(QIODevice::ReadOnly));
        const QString settings = QString::fromUtf8(ini.readAll());
        QVERIFY(settings.contains("db경로=" + home.path() + "/Dbs"));
        QVERIFY(settings.contains("db기초=" + home.path() + "/Dbs/dbBasic.db"));
        QVERIFY(settings.contains("Rpt경로=" + home.path() + "/Rpt"));
        QVERIFY(settings.contains("[Backup\\DB경로]"));
    }
    void secondStartChangesNothingInTheStore() {
        QTemporaryDir home;
        QProcess first;
        QVERIFY(startAndSettle(first, home.path()));
        stop(first);
        QStringList before;
        for (const QString& f : kStoreFiles) before << dumpOf(home.path() + "/Dbs/" + f);
        QProcess second;
        QVERIFY(startAndSettle(second, home.path()));
        stop(second);
        QStringList after;
        for (const QString& f : kStoreFiles) after << dumpOf(home.path() + "/Dbs/" + f);
        QCOMPARE(after, before);
    }
    void noDisplayIsToldInOneLine() {
        QProcess run;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove("DISPLAY");
        env.remove("WAYLAND_DISPLAY");
        env.remove("QT_QPA_PLATFORM");
        run.setProcessEnvironment(env);
        run.start("bash", {QStringLiteral(NB_SOURCE_DIR) + "/scripts/run.sh", QStringLiteral(NB_BINARY_DIR) + "/nubella"});
        QVERIFY(run.waitForFinished(10000));
        QCOMPARE(run.exitCode(), 1);
        const QStringList lines = QString::fromUtf8(run.readAllStandardError()).trimmed().split('\n');
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines[0].contains("디스플레이"));
    }
};

NB_TEST_MAIN(TestBlackBox)
#include "tst_blackbox.moc"
