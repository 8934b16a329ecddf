// A backup of the running books: each store copied through the engine, settings.ini, and the
// manifest, zipped beside the target and renamed onto it when whole. On a seat that works on
// the server the same archive is written: each store's schema is copied into a fresh store
// file, all of them read in one snapshot of the server (so the copy is of one moment while other
// seats save), so that one backup restores on either engine.
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/WholeFile.h"
#include "storage/Backup.h"
#include "storage/ServerSettings.h"
#include "storage/StoreEngine.h"
#include "storage/backup/BackupArchive.h"
#include "storage/backup/BackupParts.h"
#include "storage/backup/ServerCopy.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>

namespace nb {
namespace {

// A store the engine cannot copy whole: its bytes as they lie, for a backup before a change
// (it is what there is to keep; a restore refuses it, a person may still take it out by hand).
bool copyDamaged(const StoreRole& store, const QString& copy, QString* why) {
    QFile::remove(copy);
    if (QFile::copy(store.path, copy) && syncPath(copy)) return true;
    *why = QStringLiteral("자료 파일을 복사하지 못했습니다: %1").arg(store.path);
    return false;
}

// A store's copy in `folder` described for the manifest (its rows counted already).
bool describeCopy(const StoreRole& store, const QString& copy, ManifestStore* entry,
                  QList<ArchiveFile>* files, Manifest* manifest, QString* why) {
    entry->bytes = QFileInfo(copy).size();
    entry->sha256 = fileChecksum(copy);
    if (entry->sha256.isEmpty()) {
        *why = QStringLiteral("복사한 자료 파일을 읽을 수 없습니다: %1").arg(copy);
        return false;
    }
    files->append({store.entry, copy});
    manifest->stores.append(*entry);
    return true;
}

// One store copied into `folder` and described for the manifest. A damaged store is refused
// (and `sawDamage` set) unless `keepDamaged`.
bool takeStore(const StoreRole& store, const QString& folder, const BackupRun& run, QList<ArchiveFile>* files,
               Manifest* manifest, QString* why) {
    const QString copy = folder + u'/' + store.entry;
    ManifestStore entry{store.role, store.entry, 0, QString(), {}};
    bool damaged = false;
    if (!copyStoreFile(store.path, copy, why, &damaged) && !damaged) return false;
    // A damaged store is not backed up as a whole one: kept for days, its copy would push the
    // whole ones out.
    if (!damaged) {
        const QString problem = integrityProblem(copy, true);
        damaged = !problem.isEmpty();
        if (damaged) *why = store.path + QStringLiteral(": ") + problem;
    }
    if (damaged && run.sawDamage) *run.sawDamage = true;
    if (damaged && (!run.keepDamaged || !copyDamaged(store, copy, why))) return false;
    if (!damaged && !countTableRows(copy, &entry.rows, why)) return false;
    return describeCopy(store, copy, &entry, files, manifest, why);
}

// The server's books read as one moment left them: one transaction of its own, repeatable
// read and read only, for every store taken from it. Begun at the first store.
class ServerSnapshot {
public:
    explicit ServerSnapshot(QString connInfo) : m_connInfo(std::move(connInfo)) {}
    // The snapshot's connection, begun when first asked for; false with why (`unreachable`
    // when the server did not answer).
    bool begin(QSqlDatabase* db, bool* unreachable, QString* why) {
        if (!m_connection) {
            m_connection = std::make_unique<OwnConnection>(QStringLiteral("QPSQL"));
            m_begun = openServerConnection(*m_connection, m_connInfo, why);
            m_unreachable = !m_begun;
            m_begun =
                m_begun && runSql(m_connection->db(),
                                  QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"), why);
            if (!m_begun) m_why = *why;
        }
        *db = m_connection->db();
        *unreachable = m_unreachable;
        if (!m_begun) *why = m_why;
        return m_begun;
    }

private:
    QString m_connInfo;
    std::unique_ptr<OwnConnection> m_connection; // closing it ends the read
    bool m_begun = false;
    bool m_unreachable = false;
    QString m_why;
};

// One store of a seat on the server: its schema copied into a store file in `folder`.
bool takeServerStore(const StoreRole& store, ServerSnapshot& snapshot, const QString& folder,
                     const BackupRun& run, QList<ArchiveFile>* files, Manifest* manifest, QString* why) {
    QSqlDatabase server;
    bool unreachable = false;
    if (!snapshot.begin(&server, &unreachable, why)) {
        if (unreachable && run.sawDamage) *run.sawDamage = true;
        if (unreachable && run.serverAway) *run.serverAway = true;
        return false;
    }
    const QString copy = folder + u'/' + store.entry;
    ManifestStore entry{store.role, store.entry, 0, QString(), {}};
    if (!copySchemaToFile(server, store.schema, copy, why)) {
        *why = QStringLiteral("데이터 서버의 %1 장부를 백업하지 못했습니다: %2").arg(store.schema, *why);
        return false;
    }
    if (!countTableRows(copy, &entry.rows, why)) return false;
    return describeCopy(store, copy, &entry, files, manifest, why);
}

// settings.ini as it stands (it is only ever replaced whole, so a read sees one version).
bool takeSettings(const QString& settings, const QString& folder, QList<ArchiveFile>* files,
                  Manifest* manifest, QString* why) {
    if (!QFileInfo(settings).isFile()) return true;
    const QString copy = folder + u'/' + kSettingsEntry;
    if (!QFile::copy(settings, copy)) {
        *why = QStringLiteral("설정 파일을 복사하지 못했습니다: %1").arg(settings);
        return false;
    }
    manifest->settingsSha256 = fileChecksum(copy);
    files->append({kSettingsEntry, copy});
    return true;
}

} // namespace

QString programVersion() {
    return QStringLiteral("%1.%2.%3").arg(versionMajor()).arg(versionMinor()).arg(versionRevision());
}

QList<StoreRole> storeRoles() {
    const AppState& a = app();
    QList<StoreRole> roles{
        {QStringLiteral("db기초"), QStringLiteral("dbBasic.db"), a.DbBasicFile, {}},
        {QStringLiteral("db명세서"), QStringLiteral("dbBill.db"), a.DbBillFile, {}},
        {QStringLiteral("db계산서"), QStringLiteral("dbTax.db"), a.DbTaxFile, {}},
        {QStringLiteral("dbInOut"), QStringLiteral("InOutCash.db"), a.DbInOutFile, {}},
        {QStringLiteral("dbEstimate"), QStringLiteral("dbEstimate.db"), a.DbEstimateFile, {}},
        {QStringLiteral("dbPost"), QStringLiteral("dbPost.db"), a.DbPostFile, {}}};
    for (StoreRole& role : roles)
        role.schema = serverSchemaOf(role.path);
    return roles;
}

bool WriteBackup(const QString& zipPath, QString* why) {
    return writeBackupFile(zipPath, {}, why);
}

bool writeBackupFile(const QString& zipPath, const BackupRun& run, QString* why) {
    WholeOutput output(zipPath);
    WriteFailure failure;
    if (!output.begin(&failure)) {
        *why = QStringLiteral("백업 파일을 만들 수 없습니다: %1 - %2").arg(zipPath, failure.sentence());
        return false;
    }
    QTemporaryDir work(QDir::tempPath() + QStringLiteral("/nubella-backup-XXXXXX"));
    if (!work.isValid()) {
        *why = QStringLiteral("임시 폴더를 만들 수 없습니다: %1").arg(QDir::tempPath());
        return false;
    }
    Manifest manifest{
        kBackupProgram, programVersion(), run.taken.isValid() ? run.taken : now(), {}, QString()};
    QList<ArchiveFile> files;
    ServerSnapshot snapshot(run.stores ? run.serverConnInfo : serverConnInfo());
    for (const StoreRole& store : run.stores ? *run.stores : storeRoles()) {
        if (!store.schema.isEmpty()) {
            if (!takeServerStore(store, snapshot, work.path(), run, &files, &manifest, why)) return false;
        } else if (QFileInfo(store.path).size() > 0 &&
                   !takeStore(store, work.path(), run, &files, &manifest, why)) {
            return false;
        }
        if (run.storeTaken) run.storeTaken();
    }
    if (manifest.stores.isEmpty()) {
        *why = QStringLiteral("백업할 자료 파일이 없습니다.");
        return false;
    }
    const QString settings = run.settingsPath.isEmpty() ? appFolderFile(kSettingsEntry) : run.settingsPath;
    if (!takeSettings(settings, work.path(), &files, &manifest, why)) return false;
    if (!writeArchive(output.tempPath(), files, manifestJson(manifest), why)) return false;
    if (!output.commit(isWholeArchive, &failure)) {
        *why = QStringLiteral("백업 파일을 쓰지 못했습니다: %1 - %2").arg(zipPath, failure.sentence());
        return false;
    }
    return true;
}

} // namespace nb
