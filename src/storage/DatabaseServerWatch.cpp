#include "storage/DatabaseServerWatch.h"

#include "storage/Database.h"
#include "storage/backup/ServerCopyHandles.h"

#include <QStringList>
#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace nb {
namespace {

using Clock = std::chrono::steady_clock;

std::mutex g_timesLock;
ServerWatchTimes g_times;

// A value of a libpq connection string between single quotes, its quotes and backslashes escaped.
QByteArray quotedValue(const char* value) {
    QByteArray escaped(value ? value : "");
    escaped.replace('\\', "\\\\").replace('\'', "\\'");
    return '\'' + escaped + '\'';
}

// Whether this libpq knows a connection option (tcp_user_timeout came with version 12).
bool libpqKnows(const char* keyword) {
    PQconninfoOption* options = PQconndefaults();
    bool known = false;
    for (PQconninfoOption* o = options; o && o->keyword; ++o)
        known = known || qstrcmp(o->keyword, keyword) == 0;
    PQconninfoFree(options);
    return known;
}

// The statements waiting on a server's answer, and the thread that asks the servers of those
// that wait long whether they still answer at all.
class AnswerWatcher {
public:
    static AnswerWatcher& instance() {
        static AnswerWatcher watcher;
        return watcher;
    }

    quint64 add(PGconn* conn) {
        const int socket = PQsocket(conn);
        if (socket < 0) return 0;
        // A socket of its own on the same connection: what is shut down is this connection's
        // even if libpq closes its descriptor meanwhile and the number is given to another.
        const int own = ::dup(socket);
        if (own < 0) return 0;
        std::lock_guard lock(m_lock);
        const bool wasIdle = m_waiting.empty();
        m_waiting.push_back(Waiting{++m_lastId, own, conn, Clock::now()});
        if (!m_thread.joinable()) m_thread = std::thread([this] { run(); });
        if (wasIdle) m_wake.notify_one();
        return m_lastId;
    }

    void remove(quint64 id) {
        std::lock_guard lock(m_lock);
        for (auto it = m_waiting.begin(); it != m_waiting.end(); ++it)
            if (it->id == id) {
                ::close(it->socket);
                m_waiting.erase(it);
                return;
            }
    }

    ~AnswerWatcher() {
        {
            std::lock_guard lock(m_lock);
            m_stop = true;
        }
        m_wake.notify_one();
        if (m_thread.joinable()) m_thread.join();
    }

private:
    struct Waiting {
        quint64 id;
        int socket;
        PGconn* conn;
        Clock::time_point answered; // since when the server is known to answer
        bool cut = false;
    };

    // Where the server of conn is reached, for a question on a connection of its own. Read
    // while the statement waits: libpq changes none of these during a statement.
    static QByteArray questionOf(PGconn* conn, int connectSeconds) {
        QByteArray info = "connect_timeout=" + QByteArray::number(connectSeconds);
        const std::pair<const char*, const char*> parts[] = {
            {"host", PQhost(conn)}, {"port", PQport(conn)}, {"dbname", PQdb(conn)}, {"user", PQuser(conn)}};
        for (const auto& [keyword, value] : parts)
            if (value && *value) info += ' ' + QByteArray(keyword) + '=' + quotedValue(value);
        return info;
    }

    void run() {
        std::unique_lock lock(m_lock);
        while (!m_stop) {
            const ServerWatchTimes times = serverWatchTimes();
            const auto wait = std::chrono::milliseconds(times.answerWaitMillis);
            Waiting* due = nullptr;
            Clock::time_point next = Clock::time_point::max();
            for (Waiting& w : m_waiting) {
                if (w.cut) continue;
                if (w.answered + wait <= Clock::now()) {
                    due = &w;
                    break;
                }
                next = std::min(next, w.answered + wait);
            }
            if (!due) {
                if (next == Clock::time_point::max())
                    m_wake.wait(lock);
                else
                    m_wake.wait_until(lock, next);
                continue;
            }
            const quint64 id = due->id;
            const QByteArray question = questionOf(due->conn, times.connectSeconds);
            lock.unlock();
            const Clock::time_point asked = Clock::now();
            const PGPing ping = PQping(question.constData());
            lock.lock();
            for (Waiting& w : m_waiting)
                if (w.id == id) {
                    if (ping == PQPING_NO_RESPONSE) {
                        // The statement waiting on it fails at once, as on a connection lost.
                        ::shutdown(w.socket, SHUT_RDWR);
                        w.cut = true;
                    } else {
                        w.answered = asked;
                    }
                }
        }
    }

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::list<Waiting> m_waiting;
    quint64 m_lastId = 0;
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace

ServerWatchTimes serverWatchTimes() {
    std::lock_guard lock(g_timesLock);
    return g_times;
}

void setServerWatchTimes(const ServerWatchTimes& times) {
    std::lock_guard lock(g_timesLock);
    g_times = times;
}

QString serverConnectionOptions() {
    static const bool userTimeoutKnown = libpqKnows("tcp_user_timeout");
    const ServerWatchTimes t = serverWatchTimes();
    QStringList options{QStringLiteral("keepalives=1"),
                        QStringLiteral("keepalives_idle=%1").arg(t.keepaliveIdleSeconds),
                        QStringLiteral("keepalives_interval=%1").arg(t.keepaliveIntervalSeconds),
                        QStringLiteral("keepalives_count=%1").arg(t.keepaliveCount),
                        QStringLiteral("connect_timeout=%1").arg(t.connectSeconds)};
    if (userTimeoutKnown) options << QStringLiteral("tcp_user_timeout=%1").arg(t.unacknowledgedMillis);
    return options.join(u' ');
}

QString serverKeepaliveStatement(int serverVersion) {
    const ServerWatchTimes t = serverWatchTimes();
    QString sql = QStringLiteral("SET tcp_keepalives_idle = %1; SET tcp_keepalives_interval = %2; "
                                 "SET tcp_keepalives_count = %3")
                      .arg(t.keepaliveIdleSeconds)
                      .arg(t.keepaliveIntervalSeconds)
                      .arg(t.keepaliveCount);
    if (serverVersion >= 120000)
        sql += QStringLiteral("; SET tcp_user_timeout = %1").arg(t.unacknowledgedMillis);
    return sql;
}

ServerAnswerWatch::ServerAnswerWatch(const Database& store)
    : ServerAnswerWatch(store.onServer() ? serverEngineHandle(store.connection()) : nullptr) {}

ServerAnswerWatch::ServerAnswerWatch(PGconn* conn) {
    if (conn) m_id = AnswerWatcher::instance().add(conn);
}

ServerAnswerWatch::~ServerAnswerWatch() {
    if (m_id) AnswerWatcher::instance().remove(m_id);
}

} // namespace nb
