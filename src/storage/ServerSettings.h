#pragma once
// Where this seat keeps its books: the store files in the application folder (the default,
// nothing to set up) or one PostgreSQL database shared by several seats. The seat's choice is
// in its own settings.ini (section "서버"); the password never is: libpq reads it from
// ~/.pgpass or PGPASSFILE. NUBELLA_PG (a libpq connection string) overrides the settings, for
// tests and scripts.

#include <QString>

namespace nb {

inline const QString kServerSection = QStringLiteral("서버");

struct ServerSettings {
    bool use = false; // "사용": 1 when the seat works on the server
    QString host;     // "주소": a host name, an address or a socket folder
    int port = 5432;  // "포트"
    QString database; // "데이터베이스"
    QString user;     // "사용자"
};

ServerSettings readServerSettings();
bool writeServerSettings(const ServerSettings& server);

// The libpq connection string of the settings (keywords quoted as libpq wants them); empty
// when the database is not named.
QString connInfoOf(const ServerSettings& server);

// The connection string the stores are opened with: NUBELLA_PG when set, else the settings'
// when "사용" is on; empty when the seat works on its store files.
QString serverConnInfo();
inline bool onServer() {
    return !serverConnInfo().isEmpty();
}

} // namespace nb
