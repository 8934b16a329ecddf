#pragma once
// A test's own database on the throwaway PostgreSQL cluster of the test run. When the test
// program runs as its server twin (NUBELLA_TEST_PG holds the cluster's connection string), every
// fresh application folder gets a fresh database too, named in NUBELLA_PG for as long as it
// lives and dropped afterwards, so tests that run at the same time never see each other's books.
// Without NUBELLA_TEST_PG nothing happens and the program works on its store files.

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantList>

namespace nb::test {

// The cluster's connection string without a database; empty when the test runs on files.
QString testClusterConnInfo();
inline bool testOnServer() {
    return !testClusterConnInfo().isEmpty();
}

// Runs one statement with its bound values on the cluster's maintenance database (or on
// `database`); the first column of its first row, or an invalid value. A failure is printed
// with the server's text.
QVariant clusterScalar(const QString& sql, const QString& database = QStringLiteral("postgres"),
                       const QVariantList& values = {});

class ServerDatabase {
public:
    ServerDatabase(); // a fresh database and NUBELLA_PG naming it; a failure ends the test program
    ~ServerDatabase();
    ServerDatabase(const ServerDatabase&) = delete;
    ServerDatabase& operator=(const ServerDatabase&) = delete;

    bool active() const { return !m_name.isEmpty(); }
    QString name() const { return m_name; }
    QString connInfo() const; // the cluster's string with dbname

private:
    QString m_name;
    QByteArray m_previous; // NUBELLA_PG before this database named itself there
    bool m_hadPrevious = false;
};

} // namespace nb::test
