#include "ServerDatabase.h"

#include "ServerTemplate.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/backup/ServerCopy.h"

#include <QCryptographicHash>
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

// The advisory lock class under which the template of the test databases is made.
constexpr int kTemplateLockClass = 0x6e62;

// The query goes before its connection closes: a prepared one is let go of on the server.
void runQuery(const QSqlDatabase& db, const QString& sql, const QVariantList& values, bool* ok,
              QVariant& value) {
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
        std::fprintf(stderr, "test cluster: %s: %s\n", qPrintable(sql), qPrintable(query.lastError().text()));
    } else {
        *ok = true;
        if (query.next()) value = query.value(0);
    }
    query.finish();
}

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
            runQuery(db, sql, values, ok, value);
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

// Each store's schema as a seat's first start lays it down on an empty database: the schema, the
// trigram extension where a table is searched by it, then every table's statements.
QList<std::pair<QString, QStringList>> layoutStatements() {
    QList<std::pair<QString, QStringList>> schemas;
    for (const QString& schema : storeSchemaNames()) {
        QStringList statements{QStringLiteral("CREATE SCHEMA ") + schema};
        const QList<TableDef> tables = schemaTables(schema);
        for (const TableDef& table : tables)
            if (!serverTrigramIndexes(table.name).isEmpty()) {
                statements << serverTrigramExtension();
                break;
            }
        for (const TableDef& table : tables)
            for (const QString& sql : createStatements(table, true))
                statements << serverStatement(sql, {});
        schemas.append({schema, statements});
    }
    return schemas;
}

// A session of its own on one database of the cluster (the maintenance database unless told), for
// statements that belong together: a lock held across several, a transaction.
class ClusterSession {
public:
    explicit ClusterSession(const QString& database = QStringLiteral("postgres"))
        : m_name(QStringLiteral("nb-test-session-") + QUuid::createUuid().toString(QUuid::Id128)) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_name);
        db.setDatabaseName(database);
        db.setConnectOptions(testClusterConnInfo());
        if (!db.open()) qFatal("test cluster: %s", qPrintable(db.lastError().text()));
    }
    ~ClusterSession() {
        QSqlDatabase::database(m_name, false).close();
        QSqlDatabase::removeDatabase(m_name);
    }
    QVariant value(const QString& sql, const QVariantList& values = {}) {
        QSqlQuery q(QSqlDatabase::database(m_name, false));
        // The server prepares no statement that makes or sets things: those go unprepared.
        bool ran = values.isEmpty() || q.prepare(sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        ran = ran && (values.isEmpty() ? q.exec(sql) : q.exec());
        if (!ran) qFatal("test cluster: %s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return q.next() ? q.value(0) : QVariant();
    }

private:
    QString m_name;
};

// Lays every store down on `database`, each schema in one transaction; a failure ends the test
// program.
void layDown(const QString& database) {
    ClusterSession session(database);
    for (const auto& [schema, statements] : layoutStatements()) {
        session.value(QStringLiteral("BEGIN"));
        session.value(QStringLiteral("SET LOCAL search_path TO ") + schema + QStringLiteral(", public"));
        for (const QString& sql : statements)
            session.value(sql);
        session.value(QStringLiteral("COMMIT"));
    }
}

// The database every test's database is made from, made once per cluster and layout: the first
// process of the run that needs it builds it under a lock of the cluster (the others wait), under
// a name of its own, and gives it its name when whole.
QString templateDatabase() {
    static QString made;
    if (!made.isEmpty()) return made;
    const QString name = layoutTemplateName();
    ClusterSession session;
    session.value(QStringLiteral("SELECT pg_advisory_lock(?, ?)"), {kTemplateLockClass, 1});
    if (session.value(QStringLiteral("SELECT count(*) FROM pg_database WHERE datname = ?"), {name}).toInt() ==
        0) {
        const QString building = name + QStringLiteral("_") + QString::number(::getpid());
        session.value(QStringLiteral("SET client_min_messages TO warning"));
        session.value(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(quotedName(building)));
        session.value(QStringLiteral("CREATE DATABASE ") + quotedName(building));
        layDown(building);
        session.value(
            QStringLiteral("ALTER DATABASE %1 RENAME TO %2").arg(quotedName(building), quotedName(name)));
    }
    session.value(QStringLiteral("SELECT pg_advisory_unlock(?, ?)"), {kTemplateLockClass, 1});
    made = name;
    return made;
}

} // namespace

QString layoutTemplateName() {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const auto& [schema, statements] : layoutStatements()) {
        hash.addData(schema.toUtf8());
        for (const QString& sql : statements)
            hash.addData(QByteArray(1, '\n') + sql.toUtf8());
        hash.addData(QByteArray(1, '\0'));
    }
    return QStringLiteral("nb_layout_") + QString::fromLatin1(hash.result().toHex().left(16));
}

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
    // A test about laying the stores down itself starts from an empty database instead.
    const QString made = qEnvironmentVariableIsEmpty("NUBELLA_TEST_PG_EMPTY")
                             ? QStringLiteral("CREATE DATABASE %1 TEMPLATE %2")
                                   .arg(quotedName(name), quotedName(templateDatabase()))
                             : QStringLiteral("CREATE DATABASE ") + quotedName(name);
    runOnce(made, QStringLiteral("postgres"), &ok);
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
