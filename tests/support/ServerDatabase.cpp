#include "ServerDatabase.h"

#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <atomic>
#include <cstdio>
#include <unistd.h>

namespace nb::test {
namespace {

// Opens a connection of its own for one statement, so that resetting the program's state (which
// lets go of every store connection) never touches it.
QVariant runOnce(const QString& sql, const QString& database, bool* ok, const QVariantList& values = {}) {
    const QString connection =
        QStringLiteral("nb-test-cluster-") + QUuid::createUuid().toString(QUuid::Id128);
    QVariant value;
    *ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
        // QPSQL appends its connect options to the string it builds: the cluster's own string.
        db.setDatabaseName(database);
        db.setConnectOptions(testClusterConnInfo());
        if (!db.open()) {
            std::fprintf(stderr, "test cluster: %s\n", qPrintable(db.lastError().text()));
        } else {
            QSqlQuery query(db);
            bool ran = false;
            if (values.isEmpty()) {
                ran = query.exec(sql);
            } else if (query.prepare(sql)) {
                for (const QVariant& v : values)
                    query.addBindValue(v);
                ran = query.exec();
            }
            if (!ran) {
                std::fprintf(stderr, "test cluster: %s: %s\n", qPrintable(sql),
                             qPrintable(query.lastError().text()));
            } else {
                *ok = true;
                if (query.next()) value = query.value(0);
            }
            query.finish();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return value;
}

QString quotedName(const QString& name) {
    return u'"' + name + u'"';
}

// Unique across the processes of one run: the process, a count within it and a random part (a
// process id may come again after a crashed program left its database behind).
QString freshName() {
    static std::atomic<int> count{0};
    return QStringLiteral("nb_%1_%2_%3")
        .arg(::getpid())
        .arg(++count)
        .arg(QRandomGenerator::global()->generate() & 0xffffff, 6, 16, QChar(u'0'));
}

} // namespace

QString testClusterConnInfo() {
    return qEnvironmentVariable("NUBELLA_TEST_PG").trimmed();
}

QVariant clusterScalar(const QString& sql, const QString& database, const QVariantList& values) {
    bool ok = false;
    return runOnce(sql, database, &ok, values);
}

ServerDatabase::ServerDatabase() {
    if (!testOnServer()) return;
    const QString name = freshName();
    bool ok = false;
    runOnce(QStringLiteral("CREATE DATABASE ") + quotedName(name), QStringLiteral("postgres"), &ok);
    if (!ok)
        qFatal("test cluster: the database %s could not be created (%s)", qPrintable(name),
               qPrintable(testClusterConnInfo()));
    m_name = name;
    m_hadPrevious = qEnvironmentVariableIsSet("NUBELLA_PG");
    m_previous = qgetenv("NUBELLA_PG");
    qputenv("NUBELLA_PG", connInfo().toUtf8());
}

ServerDatabase::~ServerDatabase() {
    if (!active()) return;
    if (m_hadPrevious) {
        qputenv("NUBELLA_PG", m_previous);
    } else {
        qunsetenv("NUBELLA_PG");
    }
    // FORCE ends what a program copy the test killed may still hold open.
    bool ok = false;
    runOnce(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(quotedName(m_name)),
            QStringLiteral("postgres"), &ok);
}

QString ServerDatabase::connInfo() const {
    return active() ? testClusterConnInfo() + QStringLiteral(" dbname=") + m_name : QString();
}

} // namespace nb::test
