// The restore: a backup checked whole before anything changes, the current books backed up,
// then every store swapped in by a plan that a start after a kill finishes, so the books are
// always the old ones or the restored ones, never some of each. On a seat that works on the
// server the stores kept there are put back in one transaction of the server instead, each
// table checked by its rows and sums before it commits; the seat's own files (the postcode
// book) by the plan, after it.
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/WholeFile.h"
#include "storage/Backup.h"
#include "storage/ServerSettings.h"
#include "storage/StoreCheck.h"
#include "storage/StoreEngine.h"
#include "storage/Stores.h"
#include "storage/backup/BackupArchive.h"
#include "storage/backup/BackupParts.h"
#include "storage/backup/ServerCopy.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlQuery>
#include <QThread>
#include <QVersionNumber>
#include <cstdio>

namespace nb {
namespace {

const QString kBeforeRestore = QStringLiteral("복원전");

std::function<bool(const QString&)>& interruption() {
    static std::function<bool(const QString&)> hook;
    return hook;
}

bool interrupted(const QString& store, QString* why) {
    if (!interruption() || interruption()(store)) return false;
    *why = QStringLiteral("%1을(를) 복원하는 중에 멈추었습니다.").arg(store);
    return true;
}

QString targetOf(const QString& role) {
    for (const StoreRole& store : storeRoles())
        if (store.role == role) return store.path;
    return QString();
}

// The staged copy must be the store the manifest describes, whole, with the same rows.
QString stagedProblem(const ManifestStore& store, const QString& staged) {
    if (fileChecksum(staged) != store.sha256)
        return QStringLiteral("%1 의 검사합이 목록과 다릅니다 (백업 파일이 손상되었습니다).")
            .arg(store.entry);
    if (const QString damaged = integrityProblem(staged); !damaged.isEmpty())
        return store.entry + QStringLiteral(": ") + damaged;
    TableRows rows;
    QString why;
    if (!countTableRows(staged, &rows, &why)) return why;
    if (rows != store.rows) return QStringLiteral("%1 의 줄 수가 목록과 다릅니다.").arg(store.entry);
    return QString();
}

bool stageStore(ArchiveReader& reader, const ManifestStore& store, QList<SwapStep>* steps, QString* why) {
    const QString target = targetOf(store.role);
    if (target.isEmpty()) {
        *why = QStringLiteral("백업 파일에 알 수 없는 자료 파일이 있습니다: %1").arg(store.entry);
        return false;
    }
    QDir().mkpath(QFileInfo(target).absolutePath());
    const QString staged = stagedPathFor(target);
    QFile::remove(staged);
    steps->append({staged, target});
    if (!reader.extract(store.entry, store.bytes, staged, why)) return false;
    *why = stagedProblem(store, staged);
    return why->isEmpty();
}

void removeStaged(const QList<SwapStep>& steps) {
    for (const SwapStep& step : steps)
        QFile::remove(step.staged);
}

QByteArray planJson(const QList<SwapStep>& steps) {
    QJsonArray list;
    for (const SwapStep& step : steps)
        list.append(
            QJsonObject{{QStringLiteral("staged"), step.staged}, {QStringLiteral("target"), step.target}});
    return QJsonDocument(list).toJson();
}

QList<SwapStep> readPlan(const QByteArray& json) {
    QList<SwapStep> steps;
    for (const QJsonValue& value : QJsonDocument::fromJson(json).array()) {
        const QJsonObject o = value.toObject();
        steps.append(
            {o.value(QStringLiteral("staged")).toString(), o.value(QStringLiteral("target")).toString()});
    }
    return steps;
}

bool rename(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

// The first store file another running copy has open, or empty text.
QString storeInUse() {
    for (const StoreRole& store : storeRoles())
        if (store.schema.isEmpty() && QFileInfo(store.path).isFile() && storeOpenElsewhere(store.path))
            return store.path;
    return QString();
}

// The connections of other seats (other running copies) to the server's database. A copy that
// has just ended leaves the server's list a moment after it let go of its connection, so a
// count above none is asked again for a second before it stands.
bool otherSeatsConnected(QSqlDatabase server, int* others, QString* why) {
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        QSqlQuery q(server);
        if (!q.exec(QStringLiteral("SELECT count(*) FROM pg_catalog.pg_stat_activity WHERE datname = "
                                   "current_database() AND pid <> pg_backend_pid() AND backend_type = "
                                   "'client backend'")) ||
            !q.next()) {
            *why = QStringLiteral("데이터 서버에 연결된 자리를 알아보지 못했습니다: ") +
                   engineWords(q.lastError());
            return false;
        }
        *others = q.value(0).toInt();
        if (*others == 0 || waited.elapsed() >= 1000) return true;
        QThread::msleep(50);
    }
}

// The stores the server keeps, put back from their staged files in one transaction: every
// store's writer lock taken first, then each schema made anew from its file and checked. All
// or none: a failure rolls the whole back.
bool putBackOnServer(QSqlDatabase server, const QList<SwapStep>& steps, QString* why) {
    if (!server.transaction()) {
        *why = QStringLiteral("데이터 서버에서 트랜잭션을 시작하지 못했습니다: ") +
               engineWords(server.lastError());
        return false;
    }
    bool ok = runSql(server, serverTrigramExtension(), why);
    QStringList schemas;
    for (const SwapStep& step : steps)
        schemas << serverSchemaOf(step.target);
    for (const QString& schema : schemas)
        ok = ok && runSql(server, QStringLiteral("SELECT pg_advisory_xact_lock(?, hashtext(?))"), why,
                          {kServerWriterLockClass, schema});
    for (int i = 0; ok && i < steps.size(); ++i) {
        ok =
            runSql(server, QStringLiteral("DROP SCHEMA IF EXISTS ") + schemas[i] + QStringLiteral(" CASCADE"),
                   why) &&
            copyFileToSchema(steps[i].staged, schemas[i], server, nullptr, why) &&
            !interrupted(schemas[i], why);
    }
    if (ok && server.commit()) return true;
    if (ok)
        *why = QStringLiteral("데이터 서버가 복원을 확정하지 못했습니다: ") + engineWords(server.lastError());
    server.rollback();
    return false;
}

// A backup of a later version may hold a layout this program does not know.
QString versionProblem(const Manifest& manifest) {
    const QVersionNumber made = QVersionNumber::fromString(manifest.version);
    const QVersionNumber mine(versionMajor(), versionMinor(), versionRevision());
    if (made.isNull()) return QStringLiteral("백업 파일의 목록(manifest.json)에 프로그램의 판이 없습니다.");
    if (made > mine)
        return QStringLiteral(
                   "이 백업은 이 프로그램(%1)보다 새 판(%2)의 누벨라가 만든 것입니다. 그 판 이상의 "
                   "누벨라로 복원하십시오.")
            .arg(mine.toString(), made.toString());
    return QString();
}

void reopenStores() {
    const QList<DamagedStore> damaged = CheckStoreFiles();
    OpenWholeStores(damaged);
    ReportDamagedStores(damaged);
    UpgradeOpenStores(damagedPaths(damaged));
    LoadDefaultUser();
}

} // namespace

QString swapPlanPath() {
    return appFolderFile(QStringLiteral("restore-plan.json"));
}

QString stagedPathFor(const QString& target) {
    const QFileInfo info(target);
    return info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".restore-new");
}

void applySwap(const QList<SwapStep>& steps) {
    for (const SwapStep& step : steps) {
        if (!QFileInfo::exists(step.staged)) continue; // moved before the kill
        // The old journals belong to the old file: left beside the new one they would be
        // read into it.
        for (const char* side : {"-wal", "-shm", "-journal"})
            QFile::remove(step.target + QLatin1String(side));
        rename(step.staged, step.target);
        syncPath(QFileInfo(step.target).absolutePath());
    }
    QFile::remove(swapPlanPath());
    syncPath(appFolder());
}

bool finishPendingRestore() {
    QFile plan(swapPlanPath());
    if (plan.open(QIODevice::ReadOnly)) {
        applySwap(readPlan(plan.readAll()));
        return true;
    }
    for (const StoreRole& store : storeRoles())
        if (!store.path.isEmpty()) QFile::remove(stagedPathFor(store.path));
    return false;
}

void setRestoreInterruption(std::function<bool(const QString& store)> hook) {
    interruption() = std::move(hook);
}

namespace {

// What a refused restore leaves: no staged file, no plan, the stores open again.
bool giveUp(const QList<SwapStep>& steps, bool closed) {
    removeStaged(steps);
    if (closed) reopenStores();
    return false;
}

} // namespace

bool RestoreBackup(const QString& zipPath, QString* why) {
    ArchiveReader reader(zipPath);
    if (!reader.problem().isEmpty()) {
        *why = reader.problem();
        return false;
    }
    if (*why = versionProblem(reader.manifest()); !why->isEmpty()) return false;
    QList<SwapStep> steps;
    QList<SwapStep> serverSteps; // of the steps, those whose store the server keeps
    QList<SwapStep> fileSteps;
    for (const ManifestStore& store : reader.manifest().stores) {
        if (!stageStore(reader, store, &steps, why)) return giveUp(steps, false);
        const bool kept = !serverSchemaOf(steps.last().target).isEmpty();
        (kept ? serverSteps : fileSteps) << steps.last();
        if (!kept && interrupted(store.entry, why)) return giveUp(steps, false);
    }
    if (!backupBeforeChange(kBeforeRestore)) {
        removeStaged(steps);
        *why = QStringLiteral("지금의 자료를 먼저 백업하지 못해 복원하지 않았습니다.");
        return false;
    }
    closeStores();
    if (const QString inUse = storeInUse(); !inUse.isEmpty()) {
        *why = QStringLiteral("다른 곳에서 실행 중인 누벨라가 자료 파일을 쓰고 있습니다: %1\r\n"
                              "다른 누벨라를 모두 끝낸 뒤 다시 복원하십시오.")
                   .arg(inUse);
        return giveUp(steps, true);
    }
    OwnConnection server(QStringLiteral("QPSQL"));
    if (!serverSteps.isEmpty()) {
        int others = 0;
        if (!openServerConnection(server, serverConnInfo(), why) ||
            !runSql(server.db(), QStringLiteral("SET lock_timeout = 10000"), why) ||
            !otherSeatsConnected(server.db(), &others, why))
            return giveUp(steps, true);
        if (others > 0) {
            *why = QStringLiteral("다른 자리의 누벨라 %1개가 데이터 서버의 장부를 쓰고 있습니다.\r\n"
                                  "다른 자리의 누벨라를 모두 끝낸 뒤 다시 복원하십시오.")
                       .arg(others);
            return giveUp(steps, true);
        }
    }
    WriteFailure failure;
    if (!fileSteps.isEmpty() && !writeWholeFile(swapPlanPath(), planJson(fileSteps), &failure)) {
        *why = QStringLiteral("복원 계획을 쓰지 못해 복원하지 않았습니다: %1").arg(failure.sentence());
        return giveUp(steps, true);
    }
    if (!serverSteps.isEmpty() && !putBackOnServer(server.db(), serverSteps, why)) {
        QFile::remove(swapPlanPath());
        return giveUp(steps, true);
    }
    removeStaged(serverSteps);
    if (!fileSteps.isEmpty()) applySwap(fileSteps);
    reopenStores();
    return true;
}

} // namespace nb
