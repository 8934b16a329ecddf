// "연결 확인" of the server settings screen against the test run's throwaway PostgreSQL cluster
// (NUBELLA_TEST_PG names it): the version that answered and whether the database holds books,
// or, in Korean, which database or user the server does not have.
#include "TestSupport.h"
#include "shell/FrmServer.h"
#include "storage/ServerSettings.h"

#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

using namespace nb;

namespace {

// The cluster's connection string as settings: "host=... port=... user=...".
ServerSettings clusterSettings() {
    ServerSettings server;
    for (const QString& part : qEnvironmentVariable("NUBELLA_TEST_PG").split(u' ', Qt::SkipEmptyParts)) {
        const QString key = part.section(u'=', 0, 0);
        const QString value = part.section(u'=', 1);
        if (key == QStringLiteral("host")) server.host = value;
        if (key == QStringLiteral("port")) server.port = value.toInt();
        if (key == QStringLiteral("user")) server.user = value;
    }
    return server;
}

// Runs statements on one database of the cluster; false (printed) on the first failure.
bool runOnCluster(const QString& database, const QStringList& statements) {
    const QString name = QUuid::createUuid().toString();
    bool ok = true;
    {
        const ServerSettings cluster = clusterSettings();
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(cluster.host);
        db.setPort(cluster.port);
        db.setUserName(cluster.user);
        db.setDatabaseName(database);
        ok = db.open();
        if (!ok) qWarning() << db.lastError().text();
        for (const QString& sql : statements) {
            if (!ok) break;
            QSqlQuery q(db);
            ok = q.exec(sql);
            if (!ok) qWarning() << sql << q.lastError().text();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}

// A fresh, empty database on the cluster for one test, dropped after it.
class FreshDatabase {
public:
    FreshDatabase()
        : m_name(QStringLiteral("frm_server_") + QUuid::createUuid().toString(QUuid::Id128).left(12)) {
        m_made = runOnCluster(QStringLiteral("postgres"), {QStringLiteral("CREATE DATABASE ") + m_name});
    }
    ~FreshDatabase() {
        if (m_made) runOnCluster(QStringLiteral("postgres"), {QStringLiteral("DROP DATABASE ") + m_name});
    }
    bool made() const { return m_made; }
    QString name() const { return m_name; }

private:
    QString m_name;
    bool m_made = false;
};

// The operator types the cluster's place and the database into the screen and asks.
QString checkedByKeys(const QString& database, const QString& user = QString()) {
    ScriptedMessages& said = test::script();
    const ServerSettings cluster = clusterSettings();
    auto* form = new FrmServer;
    test::showActive(form);
    for (auto [box, text] :
         {std::pair{form->txtHost(), cluster.host}, std::pair{form->txtPort(), QString::number(cluster.port)},
          std::pair{form->txtDatabase(), database},
          std::pair{form->txtUser(), user.isEmpty() ? cluster.user : user}}) {
        box->setFocus();
        box->selectAll();
        test::pressKey(box, Qt::Key_Delete);
        test::typeText(box, text);
    }
    test::pressKey(form->txtUser(), Qt::Key_T, Qt::AltModifier);
    QTest::qWait(250); // the button is clicked a moment after its letter
    form->close();
    return said.boxes().size() == 1 ? said.boxes().front().text : QString();
}

QString clusterVersion() {
    const ServerSettings cluster = clusterSettings();
    QString version;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("version"));
        db.setHostName(cluster.host);
        db.setPort(cluster.port);
        db.setUserName(cluster.user);
        db.setDatabaseName(QStringLiteral("postgres"));
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(QStringLiteral("SHOW server_version")) && q.next()) version = q.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("version"));
    return version;
}

} // namespace

class TestFrmServerOnServer : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY2(!clusterSettings().host.isEmpty(), "NUBELLA_TEST_PG names no cluster"); }

    void anEmptyDatabaseAnswersWithItsVersionAndNoBooks() {
        test::TestHome home;
        FreshDatabase fresh;
        QVERIFY(fresh.made());
        const QString version = clusterVersion();
        QVERIFY(!version.isEmpty());
        const QString text = checkedByKeys(fresh.name());
        QCOMPARE(text, QStringLiteral("데이터 서버에 연결했습니다.\r\n서버: PostgreSQL ") + version +
                           QStringLiteral("\r\n데이터베이스 ") + fresh.name() +
                           QStringLiteral("에는 아직 장부가 없습니다."));
        QVERIFY(!readServerSettings().use); // a check keeps nothing
    }

    void aDatabaseThatHoldsBooksIsSaidToHoldThem() {
        test::TestHome home;
        FreshDatabase fresh;
        QVERIFY(fresh.made());
        // A row in any table of a store's schema is books; an empty store (bill) and a schema
        // that is no store's (other) are not.
        QVERIFY(runOnCluster(
            fresh.name(),
            {QStringLiteral("CREATE SCHEMA tax"), QStringLiteral("CREATE TABLE tax.newacount (taxcode text)"),
             QStringLiteral("CREATE TABLE tax.saletotal (ccode text)"),
             QStringLiteral("INSERT INTO tax.saletotal VALUES ('000001')"),
             QStringLiteral("CREATE SCHEMA basic"), QStringLiteral("CREATE TABLE basic.trader (code text)"),
             QStringLiteral("INSERT INTO basic.trader VALUES ('000001')"),
             QStringLiteral("CREATE SCHEMA bill"), QStringLiteral("CREATE TABLE bill.master (billno text)"),
             QStringLiteral("CREATE SCHEMA other"), QStringLiteral("CREATE TABLE other.t (x text)"),
             QStringLiteral("INSERT INTO other.t VALUES ('x')")}));
        const QString text = checkedByKeys(fresh.name());
        QVERIFY2(text.endsWith(QStringLiteral("데이터베이스 ") + fresh.name() +
                               QStringLiteral("에는 이미 장부가 있습니다. (basic, tax)")),
                 qPrintable(text));
    }

    void storesWithoutRowsAreNoBooks() {
        test::TestHome home;
        FreshDatabase fresh;
        QVERIFY(fresh.made());
        QVERIFY(runOnCluster(fresh.name(),
                             {QStringLiteral("CREATE SCHEMA basic"), QStringLiteral("CREATE SCHEMA bill"),
                              QStringLiteral("CREATE TABLE bill.master (billno text)"),
                              QStringLiteral("CREATE TABLE bill.detail (billno text)")}));
        const QString text = checkedByKeys(fresh.name());
        QVERIFY2(text.endsWith(QStringLiteral("데이터베이스 ") + fresh.name() +
                               QStringLiteral("에는 아직 장부가 없습니다.")),
                 qPrintable(text));
    }

    void aMissingDatabaseIsNamed() {
        test::TestHome home;
        const QString text = checkedByKeys(QStringLiteral("없는장부"));
        QVERIFY2(text.startsWith(QStringLiteral("데이터 서버에 데이터베이스 없는장부이(가) 없습니다.")),
                 qPrintable(text));
    }

    void aMissingUserIsNamed() {
        test::TestHome home;
        const QString text = checkedByKeys(QStringLiteral("postgres"), QStringLiteral("nobody_here"));
        QVERIFY2(text.startsWith(QStringLiteral("데이터 서버에 사용자 nobody_here이(가) 없습니다.")),
                 qPrintable(text));
    }
};

NB_TEST_MAIN(TestFrmServerOnServer)
#include "frm_server_on_server.moc"
