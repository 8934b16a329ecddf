#include "storage/ServerSettings.h"

#include "core/Settings.h"

#include <QStringList>

namespace nb {
namespace {

const QString kUseKey = QStringLiteral("사용");
const QString kHostKey = QStringLiteral("주소");
const QString kPortKey = QStringLiteral("포트");
const QString kDatabaseKey = QStringLiteral("데이터베이스");
const QString kUserKey = QStringLiteral("사용자");

QString serverSetting(const QString& key, const QString& fallback = QString()) {
    return GetSetting(kAppSection, kServerSection, key, fallback).trimmed();
}

// A value between single quotes with its quotes and backslashes escaped, as libpq reads it.
QString connValue(const QString& value) {
    QString escaped = value;
    escaped.replace(u'\\', QStringLiteral("\\\\")).replace(u'\'', QStringLiteral("\\'"));
    return u'\'' + escaped + u'\'';
}

} // namespace

ServerSettings readServerSettings() {
    ServerSettings server;
    server.use = serverSetting(kUseKey) == QStringLiteral("1");
    server.host = serverSetting(kHostKey);
    bool ok = false;
    const int port = serverSetting(kPortKey).toInt(&ok);
    if (ok && port > 0 && port < 65536) server.port = port;
    server.database = serverSetting(kDatabaseKey);
    server.user = serverSetting(kUserKey);
    return server;
}

bool writeServerSettings(const ServerSettings& server) {
    return SaveSetting(kAppSection, kServerSection, kUseKey,
                       server.use ? QStringLiteral("1") : QStringLiteral("0")) &&
           SaveSetting(kAppSection, kServerSection, kHostKey, server.host) &&
           SaveSetting(kAppSection, kServerSection, kPortKey, QString::number(server.port)) &&
           SaveSetting(kAppSection, kServerSection, kDatabaseKey, server.database) &&
           SaveSetting(kAppSection, kServerSection, kUserKey, server.user);
}

QString connInfoOf(const ServerSettings& server) {
    if (server.database.isEmpty()) return QString();
    QStringList parts;
    if (!server.host.isEmpty()) parts << QStringLiteral("host=") + connValue(server.host);
    parts << QStringLiteral("port=") + QString::number(server.port);
    parts << QStringLiteral("dbname=") + connValue(server.database);
    if (!server.user.isEmpty()) parts << QStringLiteral("user=") + connValue(server.user);
    return parts.join(u' ');
}

QString serverConnInfo() {
    const QString fromEnvironment = qEnvironmentVariable("NUBELLA_PG").trimmed();
    if (!fromEnvironment.isEmpty()) return fromEnvironment;
    const ServerSettings server = readServerSettings();
    return server.use ? connInfoOf(server) : QString();
}

} // namespace nb
