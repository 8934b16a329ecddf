#include "storage/jet/JetSwap.h"

#include "storage/Database.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nb {
namespace {

const QString kBuilding = QStringLiteral("building");
const QString kReady = QStringLiteral("ready");
const QString kWorkInfix = QStringLiteral(".import-");
const QString kKeptInfix = QStringLiteral(".before-import-");

QByteArray native(const QString& path) {
    return QFile::encodeName(path);
}

bool flushPath(const QString& path) {
    const int fd = ::open(native(path).constData(), O_RDONLY);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

bool flushFolder(const QString& folder) {
    bool ok = true;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files))
        ok = flushPath(file.absoluteFilePath()) && ok;
    return flushPath(folder) && ok;
}

ino_t inodeOf(const QString& path) {
    struct stat st {};
    return ::stat(native(path).constData(), &st) == 0 ? st.st_ino : 0;
}

bool writeMark(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    const bool ok = file.write(content) == content.size() && file.flush() && ::fsync(file.handle()) == 0;
    file.close();
    return ok;
}

QString parentOf(const QString& storeFolder) {
    return QFileInfo(storeFolder).absolutePath();
}

QString baseOf(const QString& storeFolder) {
    return QFileInfo(storeFolder).fileName();
}

QString keptFolderFor(const QString& work, const QString& storeFolder) {
    const QString stamp = QFileInfo(work).fileName().section(kWorkInfix, 1);
    return parentOf(storeFolder) + u'/' + baseOf(storeFolder) + kKeptInfix + stamp;
}

bool isJournal(const QString& name) {
    return name.endsWith(QStringLiteral("-wal")) || name.endsWith(QStringLiteral("-shm")) ||
           name.endsWith(QStringLiteral("-journal"));
}

// A store is copied by the engine, so that what is in its journal comes along.
bool copyStore(const QString& from, const QString& to) {
    Database db;
    if (!db.open(from)) return false;
    return db.tryExecute(QStringLiteral("VACUUM INTO ?"), {to});
}

bool isStoreFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(16) == QByteArray("SQLite format 3\0", 16);
}

} // namespace

void recoverInterruptedImports(const QString& storeFolder) {
    const QDir parent(parentOf(storeFolder));
    const QStringList works =
        parent.entryList({baseOf(storeFolder) + kWorkInfix + u'*'}, QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : works) {
        const QString work = parent.filePath(name);
        const QString inner = newStoreFolder(work, storeFolder);
        QFile ready(work + u'/' + kReady);
        const bool exchanged = !QFileInfo::exists(work + u'/' + kBuilding) && QFileInfo(inner).isDir() &&
                               ready.open(QIODevice::ReadOnly) &&
                               ready.readAll().trimmed() != QByteArray::number(qulonglong(inodeOf(inner)));
        if (exchanged) QDir().rename(inner, keptFolderFor(work, storeFolder));
        QDir(work).removeRecursively();
    }
}

QString beginImportFolder(const QString& storeFolder) {
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    const QString work = parentOf(storeFolder) + u'/' + baseOf(storeFolder) + kWorkInfix + stamp;
    if (!QDir().mkpath(work) || !writeMark(work + u'/' + kBuilding, QByteArray())) return {};
    flushPath(parentOf(storeFolder));
    return work;
}

QString newStoreFolder(const QString& work, const QString& storeFolder) {
    return work + u'/' + baseOf(storeFolder);
}

bool carryCurrentFiles(const QString& storeFolder, const QString& newFolder, QStringList& notes,
                       QString& why) {
    const QDir current(storeFolder);
    for (const QFileInfo& file : current.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString target = newFolder + u'/' + file.fileName();
        if (QFileInfo::exists(target) || isJournal(file.fileName())) continue;
        if (file.isDir()) {
            notes << QStringLiteral(
                         "자료 폴더 안의 %1 폴더는 옮기지 않았습니다 (이전 자료 폴더에 남아 있습니다).")
                         .arg(file.fileName());
            continue;
        }
        const bool ok = isStoreFile(file.absoluteFilePath()) ? copyStore(file.absoluteFilePath(), target)
                                                             : QFile::copy(file.absoluteFilePath(), target);
        if (!ok) {
            why = QStringLiteral("지금의 %1 파일을 새 자료 폴더로 옮기지 못했습니다.").arg(file.fileName());
            return false;
        }
    }
    return true;
}

QString exchangeStoreFolder(const QString& work, const QString& storeFolder, QString& why) {
    const QString inner = newStoreFolder(work, storeFolder);
    if (!flushFolder(inner) ||
        !writeMark(work + u'/' + kReady, QByteArray::number(qulonglong(inodeOf(inner)))) ||
        !QFile::remove(work + u'/' + kBuilding) || !flushPath(work)) {
        why = QStringLiteral("새 자료 파일을 디스크에 기록하지 못했습니다.");
        return {};
    }
    if (::renameat2(AT_FDCWD, native(inner).constData(), AT_FDCWD, native(storeFolder).constData(),
                    RENAME_EXCHANGE) != 0) {
        why = QStringLiteral("자료 폴더를 새 자료로 바꾸지 못했습니다 (%1).")
                  .arg(QString::fromLocal8Bit(std::strerror(errno)));
        return {};
    }
    flushPath(work);
    flushPath(parentOf(storeFolder));
    // From here the new stores are in place; the old folder is only set aside.
    const QString kept = keptFolderFor(work, storeFolder);
    if (!QDir().rename(inner, kept)) return inner; // the old stores stay where they are
    QDir(work).removeRecursively();
    flushPath(parentOf(storeFolder));
    return kept;
}

} // namespace nb
