#pragma once
// A seat never waits for ever on a server that stopped answering. The network dying silently
// under a connection is noticed by TCP itself within about half a minute (keepalives while the
// seat waits for an answer, a bound on data sent and never acknowledged), as the options of
// serverConnectionOptions ask; the server is asked the same of its side, so that the writer lock
// of a seat that vanished is let go of. A server whose machine still answers TCP but that no
// longer answers itself (stopped, hung) is noticed by ServerAnswerWatch: while a statement waits,
// the server is asked every answerWaitMillis whether it still answers a new connection, and
// when it does not, the waiting connection is cut, so that the statement fails at once and the
// seat shows the unreachable box.

#include <QString>

using PGconn = struct pg_conn;

namespace nb {

class Database;

struct ServerWatchTimes {
    int keepaliveIdleSeconds = 15;    // silence before TCP asks whether the other side is there
    int keepaliveIntervalSeconds = 5; // between those questions
    int keepaliveCount = 3;           // unanswered ones before the connection is given up
    int unacknowledgedMillis = 30000; // data sent and never acknowledged (tcp_user_timeout)
    int connectSeconds = 10;          // a new connection (or the question) answered within this
    int answerWaitMillis = 20000;     // a statement's wait before the server is asked if it is there
};

ServerWatchTimes serverWatchTimes();
// For tests, which make them short; connections made afterwards take them.
void setServerWatchTimes(const ServerWatchTimes& times);

// The libpq options of the watch (keepalives, the unacknowledged bound where this libpq knows
// it, the connect timeout), to stand before the seat's own connection string, whose own values
// of the same options win.
QString serverConnectionOptions();
// The statement that asks the server to watch its side of the connection the same way (the
// unacknowledged bound only from server version 12 on, which has it).
QString serverKeepaliveStatement(int serverVersion);

// While it lives, the statement on the store's server connection is watched: when the server no longer
// answers a new connection after answerWaitMillis, the connection is cut (its socket shut down),
// and the statement waiting on it fails as a lost connection. Does nothing on a store file.
class ServerAnswerWatch {
public:
    explicit ServerAnswerWatch(const Database& store);
    explicit ServerAnswerWatch(PGconn* conn);
    ~ServerAnswerWatch();
    ServerAnswerWatch(const ServerAnswerWatch&) = delete;
    ServerAnswerWatch& operator=(const ServerAnswerWatch&) = delete;

private:
    quint64 m_id = 0;
};

} // namespace nb
