#include "storage/backup/StoreCopy.h"

#include <QCryptographicHash>
#include <QFile>
#include <QThread>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace nb {
namespace {

constexpr int kBusyMillis = 10000;

// One connection of the engine's own, closed when it goes.
class RawStore {
public:
    RawStore(const QString& path, int flags) {
        m_rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db, flags, nullptr);
        if (m_db) sqlite3_busy_timeout(m_db, kBusyMillis);
    }
    ~RawStore() { sqlite3_close_v2(m_db); }
    RawStore(const RawStore&) = delete;
    RawStore& operator=(const RawStore&) = delete;

    bool opened() const { return m_rc == SQLITE_OK; }
    sqlite3* handle() const { return m_db; }
    QString error() const {
        return m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QStringLiteral("out of memory");
    }

    // The first column of each row of one statement; false when it failed.
    bool column(const QString& sql, QStringList* out) {
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK) return false;
        int rc;
        while ((rc = sqlite3_step(st)) == SQLITE_ROW)
            out->append(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0))));
        sqlite3_finalize(st);
        return rc == SQLITE_DONE;
    }

private:
    sqlite3* m_db = nullptr;
    int m_rc = SQLITE_ERROR;
};

QString quoted(const QString& name) {
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

// The whole store in one step, so that one read covers it; a store held by a writer's
// checkpoint is waited for a little.
int backupAll(sqlite3* to, sqlite3* from) {
    sqlite3_backup* backup = sqlite3_backup_init(to, "main", from, "main");
    if (!backup) return sqlite3_errcode(to);
    int rc = SQLITE_OK;
    for (int tries = 0; tries < 200; ++tries) {
        rc = sqlite3_backup_step(backup, -1);
        if (rc != SQLITE_BUSY && rc != SQLITE_LOCKED) break;
        QThread::msleep(50);
    }
    const int finished = sqlite3_backup_finish(backup);
    return rc == SQLITE_DONE ? finished : rc;
}

} // namespace

bool copyStoreFile(const QString& source, const QString& target, QString* why, bool* damaged) {
    *damaged = false;
    RawStore from(source, SQLITE_OPEN_READWRITE);
    if (!from.opened()) {
        *why = QStringLiteral("자료 파일을 열 수 없습니다: %1 (%2)").arg(source, from.error());
        return false;
    }
    {
        RawStore to(target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        const int rc = to.opened() ? backupAll(to.handle(), from.handle()) : SQLITE_CANTOPEN;
        QStringList mode;
        // The copy stands alone: no write-ahead journal beside it.
        if (rc != SQLITE_OK || !to.column(QStringLiteral("PRAGMA journal_mode=DELETE"), &mode)) {
            *damaged = (rc & 0xff) == SQLITE_CORRUPT || (rc & 0xff) == SQLITE_NOTADB;
            *why = QStringLiteral("자료 파일을 복사하지 못했습니다: %1 (%2)")
                       .arg(source, QString::fromUtf8(sqlite3_errstr(rc == SQLITE_OK ? SQLITE_ERROR : rc)));
            return false;
        }
    }
    if (!syncPath(target)) {
        *why = QStringLiteral("복사한 자료 파일을 디스크에 쓰지 못했습니다: %1").arg(target);
        return false;
    }
    return true;
}

bool countTableRows(const QString& path, TableRows* rows, QString* why) {
    RawStore store(path, SQLITE_OPEN_READONLY);
    QStringList tables;
    if (!store.opened() ||
        !store.column(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
                                     "'sqlite\\_%' ESCAPE '\\' ORDER BY name"),
                      &tables)) {
        *why = QStringLiteral("자료 파일의 표를 읽을 수 없습니다: %1 (%2)").arg(path, store.error());
        return false;
    }
    for (const QString& table : tables) {
        QStringList count;
        if (!store.column(QStringLiteral("SELECT COUNT(*) FROM ") + quoted(table), &count) ||
            count.isEmpty()) {
            *why = QStringLiteral("표 %1 의 줄 수를 셀 수 없습니다: %2 (%3)").arg(table, path, store.error());
            return false;
        }
        rows->insert(table, count.first().toLongLong());
    }
    return true;
}

QString integrityProblem(const QString& path, bool quick) {
    RawStore store(path, SQLITE_OPEN_READONLY);
    QStringList found;
    const QString check =
        quick ? QStringLiteral("PRAGMA quick_check(5)") : QStringLiteral("PRAGMA integrity_check(5)");
    if (!store.opened() || !store.column(check, &found))
        return QStringLiteral("자료 파일로 읽을 수 없습니다 (%1).").arg(store.error());
    if (found != QStringList{QStringLiteral("ok")})
        return QStringLiteral("자료 파일의 내용이 손상되었습니다 (%1).")
            .arg(found.join(QStringLiteral("; ")));
    return QString();
}

bool storeOpenElsewhere(const QString& path) {
    RawStore store(path, SQLITE_OPEN_READWRITE);
    if (!store.opened()) return false;
    sqlite3_busy_timeout(store.handle(), 500);
    QStringList out;
    // A connection in the exclusive locking mode takes the file's own lock, which every other
    // connection to a store in WAL mode holds shared while it is open.
    const bool alone = store.column(QStringLiteral("PRAGMA locking_mode=EXCLUSIVE"), &out) &&
                       store.column(QStringLiteral("BEGIN EXCLUSIVE"), &out) &&
                       store.column(QStringLiteral("SELECT count(*) FROM sqlite_master"), &out) &&
                       store.column(QStringLiteral("COMMIT"), &out);
    // A file the engine cannot read at all (a damaged store) is in nobody's use.
    const int code = sqlite3_errcode(store.handle()) & 0xff;
    return !alone && (code == SQLITE_BUSY || code == SQLITE_LOCKED);
}

QString fileChecksum(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return QString();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!hash.addData(&file)) return QString();
    return QString::fromLatin1(hash.result().toHex());
}

bool syncPath(const QString& path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

} // namespace nb
