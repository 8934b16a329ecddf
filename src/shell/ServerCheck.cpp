#include "shell/ServerCheck.h"

#include "storage/StoreEngine.h"
#include "storage/backup/ServerCopy.h"

#include <QLocalSocket>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTcpSocket>
#include <QUuid>

namespace nb {
namespace {

constexpr int kDefaultPort = 5432;
constexpr int kConnectSeconds = 5;
constexpr int kProbeMillis = kConnectSeconds * 1000;
// Where the connector looks for the server's socket when no address is given (Debian's place).
const QString kDefaultSocketFolder = QStringLiteral("/var/run/postgresql");
const QString kMaintenanceDatabase = QStringLiteral("postgres");

bool mentions(const QString& text, std::initializer_list<const char*> words) {
    for (const char* word : words)
        if (text.contains(QString::fromUtf8(word), Qt::CaseInsensitive)) return true;
    return false;
}

// One connection of the check's own, let go of when it goes.
class CheckConnection {
public:
    CheckConnection(const ServerSettings& server, const QString& database)
        : m_name(QStringLiteral("server-check-") + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_name);
        if (!server.host.isEmpty()) db.setHostName(server.host);
        db.setPort(server.port);
        db.setDatabaseName(database);
        if (!server.user.isEmpty()) db.setUserName(server.user);
        db.setConnectOptions(QStringLiteral("connect_timeout=%1").arg(kConnectSeconds));
    }
    ~CheckConnection() {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            if (db.isOpen()) db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    CheckConnection(const CheckConnection&) = delete;
    CheckConnection& operator=(const CheckConnection&) = delete;

    bool open(QString* engineText) {
        QSqlDatabase db = QSqlDatabase::database(m_name, false);
        if (db.open()) return true;
        *engineText = db.lastError().databaseText().trimmed();
        if (engineText->isEmpty()) *engineText = db.lastError().text().trimmed();
        return false;
    }
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }

private:
    QString m_name;
};

// Anything listening where the settings point: the socket in a folder, or a port on a host.
bool somethingListens(const ServerSettings& server) {
    const QString host = server.host.section(u',', 0, 0).trimmed();
    if (host.isEmpty() || host.startsWith(u'/')) {
        const QString folder = host.isEmpty() ? kDefaultSocketFolder : host;
        QLocalSocket socket;
        socket.connectToServer(folder + QStringLiteral("/.s.PGSQL.") + QString::number(server.port));
        return socket.waitForConnected(kProbeMillis);
    }
    QTcpSocket socket;
    socket.connectToHost(host, quint16(server.port));
    return socket.waitForConnected(kProbeMillis);
}

QString versionOf(QSqlDatabase db) {
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SHOW server_version")) && q.next()) return q.value(0).toString().trimmed();
    return QString();
}

// The stores' schemas the database holds, and those with a row in any table.
void storeSchemasOf(QSqlDatabase db, ServerCheck* check) {
    for (const QString& schema : storeSchemaNames()) {
        SchemaContent content;
        QString why;
        if (!schemaContent(db, schema, &content, &why)) {
            // Not readable by this user: taken for books, so that nothing is moved over them.
            check->storeSchemas << schema;
            check->schemasWithBooks << schema;
            continue;
        }
        if (content.exists) check->storeSchemas << schema;
        if (content.holdsRows) check->schemasWithBooks << schema;
    }
}

} // namespace

std::optional<ServerSettings> settingsOfEntry(const ServerEntry& entry, bool connecting, QString* why) {
    ServerSettings server;
    server.use = entry.use;
    server.host = entry.host.trimmed();
    server.database = entry.database.trimmed();
    server.user = entry.user.trimmed();
    const QString port = entry.port.trimmed();
    if (port.isEmpty()) {
        server.port = kDefaultPort;
    } else {
        bool ok = false;
        const int value = port.toInt(&ok);
        if (!ok || value < 1 || value > 65535) {
            *why = QStringLiteral("포트는 1부터 65535까지의 숫자로 입력하십시오. (입력한 값: %1)").arg(port);
            return std::nullopt;
        }
        server.port = value;
    }
    if (server.database.isEmpty() && (connecting || server.use)) {
        *why = connecting ? QStringLiteral("연결할 데이터베이스의 이름을 입력하십시오.")
                          : QStringLiteral("데이터 서버를 사용하려면 데이터베이스의 이름을 입력하십시오.");
        return std::nullopt;
    }
    return server;
}

// The connector's words in English and in the Korean of its translation.
ServerFailure failureOfText(const QString& text) {
    if (mentions(text, {"password authentication failed", "no password supplied", "fe_sendauth",
                        "authentication failed", "pg_hba.conf", "비밀번호 인증을 실패", "인증을 실패",
                        "비밀번호가 필요", "암호 인증"}))
        return ServerFailure::Refused;
    if (mentions(text, {"role \""}) && mentions(text, {"does not exist"})) return ServerFailure::UserMissing;
    if (mentions(text, {"database \""}) && mentions(text, {"does not exist"}))
        return ServerFailure::DatabaseMissing;
    if (mentions(text, {"could not connect", "connection refused", "no such file or directory",
                        "could not translate host name", "timeout expired", "is the server running",
                        "network is unreachable", "no route to host", "서버에 접속할 수 없", "연결할 수 없",
                        "연결을 거부"}))
        return ServerFailure::Unreachable;
    return ServerFailure::Other;
}

ServerCheck checkServer(const ServerSettings& server) {
    ServerCheck check;
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"))) {
        check.failure = ServerFailure::NoDriver;
        return check;
    }
    {
        CheckConnection connection(server, server.database);
        if (connection.open(&check.engineText)) {
            check.version = versionOf(connection.db());
            storeSchemasOf(connection.db(), &check);
            return check;
        }
    }
    check.failure = failureOfText(check.engineText);
    if (check.failure != ServerFailure::Other) return check;
    // Words this does not know (another language, another version): the cause is asked for.
    if (!somethingListens(server)) {
        check.failure = ServerFailure::Unreachable;
        return check;
    }
    if (server.database == kMaintenanceDatabase) {
        check.failure = ServerFailure::Refused;
        return check;
    }
    QString again;
    CheckConnection maintenance(server, kMaintenanceDatabase);
    check.failure = maintenance.open(&again) ? ServerFailure::DatabaseMissing : ServerFailure::Refused;
    return check;
}

QString serverCheckText(const ServerSettings& server, const ServerCheck& check) {
    const QString where = server.host.isEmpty() ? QStringLiteral("이 컴퓨터") : server.host;
    const QString user = server.user.isEmpty() ? QStringLiteral("(로그인 사용자)") : server.user;
    QString text;
    switch (check.failure) {
    case ServerFailure::None:
        text = QStringLiteral("데이터 서버에 연결했습니다.\r\n서버: PostgreSQL %1\r\n").arg(check.version);
        if (check.holdsBooks())
            text += QStringLiteral("데이터베이스 %1에는 이미 장부가 있습니다. (%2)")
                        .arg(server.database, check.schemasWithBooks.join(QStringLiteral(", ")));
        else
            text += QStringLiteral("데이터베이스 %1에는 아직 장부가 없습니다.").arg(server.database);
        return text;
    case ServerFailure::NoDriver:
        return QStringLiteral("이 컴퓨터에는 PostgreSQL에 연결하는 부품이 설치되어 있지 않습니다.\r\n"
                              "libqt6sql6-psql 패키지를 설치한 뒤 다시 확인하십시오.");
    case ServerFailure::Unreachable:
        text = QStringLiteral("데이터 서버에 연결하지 못했습니다.\r\n%1의 포트 %2에서 응답하는 서버가 "
                              "없습니다. 서버가 켜져 있는지, 주소와 포트가 맞는지 확인하십시오.")
                   .arg(where)
                   .arg(server.port);
        break;
    case ServerFailure::Refused:
        text = QStringLiteral("데이터 서버가 사용자 %1의 접속을 거절했습니다.\r\n비밀번호가 틀렸거나, "
                              "~/.pgpass 파일(또는 PGPASSFILE이 가리키는 파일)에 이 서버의 비밀번호가 "
                              "없거나, 서버가 이 컴퓨터의 접속을 허락하지 않습니다.")
                   .arg(user);
        break;
    case ServerFailure::UserMissing:
        text = QStringLiteral("데이터 서버에 사용자 %1이(가) 없습니다.\r\n사용자 이름을 확인하십시오.")
                   .arg(user);
        break;
    case ServerFailure::DatabaseMissing:
        text = QStringLiteral("데이터 서버에 데이터베이스 %1이(가) 없습니다.\r\n이름을 확인하거나, 서버 "
                              "관리자에게 빈 데이터베이스를 만들어 달라고 하십시오.")
                   .arg(server.database);
        break;
    case ServerFailure::Other:
        text = QStringLiteral("데이터 서버에 연결하지 못했습니다.");
        break;
    }
    if (!check.engineText.isEmpty()) text += QStringLiteral("\r\n\r\n서버의 답: ") + check.engineText;
    return text;
}

} // namespace nb
