#pragma once
// The seat's server settings as the operator types them, checked, and the "연결 확인" of the
// server settings screen: whether the server answers, which version it is, and whether the
// database already holds books, said in Korean with the server's own words only beside them.

#include "storage/ServerSettings.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace nb {

// The boxes of the settings screen as typed.
struct ServerEntry {
    bool use = false;
    QString host;
    QString port;
    QString database;
    QString user;
};

// The settings the entry stands for (texts trimmed, an empty port the server's usual 5432), or
// nothing with the Korean reason in `why`. A database is needed when the seat is to use the
// server or a connection is to be tried.
std::optional<ServerSettings> settingsOfEntry(const ServerEntry& entry, bool connecting, QString* why);

// Why a connection was not made.
enum class ServerFailure {
    None,
    NoDriver,        // the engine's connector is not installed
    Unreachable,     // nothing answers at the address and port
    Refused,         // the server refused the user or the password
    UserMissing,     // the server has no such user
    DatabaseMissing, // the server answers, the database is not there
    Other,
};

struct ServerCheck {
    ServerFailure failure = ServerFailure::None;
    QString version;          // the server's version, when connected
    QStringList storeSchemas; // the stores' schemas the database holds already
    // Those of them with a row in any table: the books. Schemas without rows (laid down by a
    // seat that started on the database, or by saving the settings) are no books.
    QStringList schemasWithBooks;
    QString engineText; // the server's or the connector's own words on a failure
    bool connected() const { return failure == ServerFailure::None; }
    bool holdsBooks() const { return !schemasWithBooks.isEmpty(); }
};

// The failure the connector's words name, when they name one (English or Korean); None when
// they say nothing this knows.
ServerFailure failureOfText(const QString& engineText);

// Connects with the settings (password from ~/.pgpass or PGPASSFILE), asks the version, the
// stores' schemas and whether they hold rows, and lets go. When the words of a failure name no cause, the
// cause is found by asking: does anything listen at the address, and does the maintenance database take the
// same user.
ServerCheck checkServer(const ServerSettings& server);

// What the operator reads after "연결 확인".
QString serverCheckText(const ServerSettings& server, const ServerCheck& check);

} // namespace nb
