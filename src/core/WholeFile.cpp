#include "core/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nb {
namespace {

QByteArray local(const QString& path) {
    return QFile::encodeName(path);
}

WriteFailure lastFailure() {
    return WriteFailure::fromErrno(errno);
}

// Every byte, or false: a short write is retried, a failed one is the answer.
bool writeAll(int fd, const char* data, qint64 size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= n;
    }
    return true;
}

// The folder is flushed too, so that the new name survives a power cut.
void syncFolder(const QString& path) {
    const int fd = ::open(local(QFileInfo(path).absolutePath()).constData(), O_RDONLY | O_DIRECTORY);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

// A fresh, hidden file beside the target: ".name.XXXXXX".
int makeTempBeside(const QString& target, QString* temp) {
    const QFileInfo info(target);
    QByteArray pattern = local(info.absolutePath() + QStringLiteral("/.") + info.fileName()) + ".XXXXXX";
    const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd >= 0) *temp = QFile::decodeName(pattern);
    return fd;
}

// The new file takes the old one's permissions, or those a new file usually gets (the
// temporary file is made private).
bool giveUsualMode(int fd, const QString& target) {
    struct stat old {};
    if (::stat(local(target).constData(), &old) == 0) return ::fchmod(fd, old.st_mode & 07777) == 0;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return ::fchmod(fd, 0666 & ~mask) == 0;
}

bool isDevice(const QString& path) {
    struct stat st {};
    return ::stat(local(path).constData(), &st) == 0 && !S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode);
}

bool isFolder(const QString& path) {
    struct stat st {};
    return ::stat(local(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The temporary file, complete, flushed and closed, takes the target's name.
bool moveOnto(const QString& temp, const QString& target, WriteFailure* failure) {
    const int fd = ::open(local(temp).constData(), O_RDONLY | O_CLOEXEC);
    const bool synced = fd >= 0 && ::fsync(fd) == 0;
    const WriteFailure syncFailure = synced ? WriteFailure() : lastFailure();
    if (fd >= 0) ::close(fd);
    if (!synced || ::rename(local(temp).constData(), local(target).constData()) != 0) {
        if (failure) *failure = synced ? lastFailure() : syncFailure;
        ::unlink(local(temp).constData());
        return false;
    }
    syncFolder(target);
    return true;
}

} // namespace

WriteFailure WriteFailure::fromErrno(int error) {
    WriteFailure f;
    f.systemWords = QString::fromLocal8Bit(std::strerror(error));
    switch (error) {
    case EROFS:
    case EACCES:
    case EPERM:
        f.cause = Cause::ReadOnly;
        break;
    case ENOSPC:
    case EFBIG:
    case EDQUOT:
        f.cause = Cause::DiskFull;
        break;
    case EISDIR:
        f.cause = Cause::NotAFile;
        break;
    case ENOENT:
    case ENOTDIR:
        f.cause = Cause::NoFolder;
        break;
    default:
        f.cause = Cause::Other;
    }
    return f;
}

QString WriteFailure::sentence() const {
    QString words;
    switch (cause) {
    case Cause::None:
        return QString();
    case Cause::ReadOnly:
        words = QStringLiteral("쓰기가 금지된 곳입니다(읽기 전용).");
        break;
    case Cause::DiskFull:
        words = QStringLiteral("디스크 공간이 부족합니다.");
        break;
    case Cause::NotAFile:
        words = QStringLiteral("파일이 아니라 폴더입니다.");
        break;
    case Cause::NoFolder:
        words = QStringLiteral("그런 폴더가 없습니다.");
        break;
    case Cause::Incomplete:
        words = QStringLiteral("파일을 끝까지 쓰지 못했습니다(디스크가 가득 찼을 수 있습니다).");
        break;
    case Cause::Other:
        words = QStringLiteral("쓰기에 실패했습니다.");
        break;
    }
    return systemWords.isEmpty() ? words : words + QStringLiteral(" (") + systemWords + u')';
}

bool writeWholeFile(const QString& target, const QByteArray& bytes, WriteFailure* failure) {
    QString temp;
    const int fd = makeTempBeside(target, &temp);
    if (fd < 0) {
        if (failure) *failure = lastFailure();
        return false;
    }
    bool ok = writeAll(fd, bytes.constData(), bytes.size());
    WriteFailure f = ok ? WriteFailure() : lastFailure();
    if (ok && !giveUsualMode(fd, target)) ok = false, f = lastFailure();
    if (::close(fd) != 0 && ok) ok = false, f = lastFailure();
    if (ok && QFileInfo(temp).size() != bytes.size()) ok = false, f.cause = WriteFailure::Cause::Incomplete;
    if (!ok) {
        ::unlink(local(temp).constData());
        if (failure) *failure = f;
        return false;
    }
    return moveOnto(temp, target, failure);
}

QString resolvedPath(const QString& path) {
    const QFileInfo info(path);
    // A pipe behind /dev/stdout has no name to resolve to; it is written by the name given.
    if (info.exists()) {
        const QString canonical = info.canonicalFilePath();
        return canonical.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : canonical;
    }
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : folder + u'/' + info.fileName();
}

WholeOutput::WholeOutput(QString target) : m_target(resolvedPath(target)) {}

WholeOutput::~WholeOutput() {
    if (!m_temp.isEmpty()) ::unlink(local(m_temp).constData());
}

bool WholeOutput::begin(WriteFailure* failure) {
    if (isFolder(m_target)) {
        if (failure) *failure = WriteFailure::fromErrno(EISDIR);
        return false;
    }
    m_toDevice = isDevice(m_target);
    const QString beside = m_toDevice ? QDir::tempPath() + QStringLiteral("/nubella-output") : m_target;
    const int fd = makeTempBeside(beside, &m_temp);
    if (fd < 0) {
        if (failure) *failure = lastFailure();
        return false;
    }
    if (!m_toDevice) giveUsualMode(fd, m_target);
    ::close(fd);
    return true;
}

bool WholeOutput::commit(const std::function<bool(const QString& path)>& isWhole, WriteFailure* failure) {
    if (m_temp.isEmpty()) return false;
    if (!isWhole(m_temp)) {
        if (failure) failure->cause = WriteFailure::Cause::Incomplete;
        return false;
    }
    if (m_toDevice) return copyToDevice(failure);
    const bool moved = moveOnto(m_temp, m_target, failure);
    m_temp.clear(); // moved, or removed by the failed move
    return moved;
}

bool WholeOutput::copyToDevice(WriteFailure* failure) {
    QFile whole(m_temp);
    if (!whole.open(QIODevice::ReadOnly)) {
        if (failure) failure->cause = WriteFailure::Cause::Other;
        return false;
    }
    const QByteArray bytes = whole.readAll();
    const int fd = ::open(local(m_target).constData(), O_WRONLY | O_CLOEXEC);
    bool ok = fd >= 0 && writeAll(fd, bytes.constData(), bytes.size());
    WriteFailure f = ok ? WriteFailure() : lastFailure();
    if (fd >= 0 && ::close(fd) != 0 && ok) ok = false, f = lastFailure();
    if (!ok && failure) *failure = f;
    return ok;
}

} // namespace nb
