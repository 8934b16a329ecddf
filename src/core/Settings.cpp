#include "core/Settings.h"

#include "core/AppFolder.h"
#include "core/WholeFile.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <QThread>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <unistd.h>

namespace nb {
namespace {

std::function<void(const QString&)>& troubleReporter() {
    static std::function<void(const QString&)> reporter;
    return reporter;
}

void tell(const QString& text) {
    if (troubleReporter())
        troubleReporter()(text);
    else
        std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

// Values may hold line breaks and backslashes; they are escaped so one entry stays one line.
QString escape(const QString& v) {
    QString out;
    out.reserve(v.size());
    for (QChar c : v) {
        if (c == u'\\')
            out += QStringLiteral("\\\\");
        else if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c == u'\r')
            out += QStringLiteral("\\r");
        else
            out += c;
    }
    return out;
}

QString unescape(const QString& v) {
    if (!v.contains(u'\\')) return v;
    QString out;
    for (int i = 0; i < v.size(); ++i) {
        if (v[i] == u'\\' && i + 1 < v.size()) {
            const QChar n = v[++i];
            out += n == u'n' ? QChar(u'\n') : n == u'r' ? QChar(u'\r') : n;
        } else {
            out += v[i];
        }
    }
    return out;
}

// "[app\section]" headers: a backslash joins the two, as in the registry path of the original.
QString header(const QString& app, const QString& section) {
    return app + u'\\' + section;
}

// One address, folded, so that a lookup is one hash probe whatever the case of its parts.
QString addressOf(const QString& app, const QString& section, const QString& key) {
    return (app + QChar(0x1f) + section + QChar(0x1f) + key).toCaseFolded();
}

// The lock two running copies take before they read, change and write the file: an advisory
// lock on "settings.ini.lock", let go of by the system when a copy ends, even when killed.
class FileLock {
public:
    explicit FileLock(const QString& path)
        : m_fd(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
        if (m_fd < 0) m_error = errno;
    }
    ~FileLock() {
        if (m_fd >= 0) ::close(m_fd); // closing lets go of the lock
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Short tries, so that the other copy's quick saves never keep this one out for long.
    bool acquire(int waitMillis) {
        if (m_fd < 0) return false;
        const QDeadlineTimer deadline(waitMillis);
        for (;;) {
            if (::flock(m_fd, LOCK_EX | LOCK_NB) == 0) return true;
            if (errno != EWOULDBLOCK && errno != EINTR) return m_error = errno, false;
            if (deadline.hasExpired()) return false;
            QThread::usleep(500);
        }
    }
    // The system's error when the lock file could not be opened or locked, else 0 (busy).
    int error() const { return m_error; }

private:
    int m_fd = -1;
    int m_error = 0;
};

} // namespace

SettingsStore::SettingsStore(QString filePath) : m_path(std::move(filePath)) {
    load();
}

void SettingsStore::set(const Entry& entry) {
    const QString address = addressOf(entry.app, entry.section, entry.key);
    const auto at = m_index.constFind(address);
    if (at != m_index.cend()) {
        m_entries[*at].value = entry.value;
        return;
    }
    m_index.insert(address, int(m_entries.size()));
    m_entries.push_back(entry);
}

void SettingsStore::load() {
    m_entries.clear();
    m_index.clear();
    m_stamp = fileStamp();
    QFile f(m_path);
    if (f.open(QIODevice::ReadOnly | QIODevice::Text)) {
        QTextStream in(&f);
        in.setEncoding(QStringConverter::Utf8);
        QString app, section;
        QString line;
        while (in.readLineInto(&line)) {
            if (line.startsWith(u'[') && line.endsWith(u']')) {
                const QString h = line.mid(1, line.size() - 2);
                const qsizetype slash = h.indexOf(u'\\');
                app = slash < 0 ? h : h.left(slash);
                section = slash < 0 ? QString() : h.mid(slash + 1);
                continue;
            }
            const qsizetype eq = line.indexOf(u'=');
            if (eq <= 0 || line.startsWith(u';')) continue;
            set({app, section, unescape(line.left(eq)), unescape(line.mid(eq + 1))});
        }
    }
    for (const Entry& e : m_unsaved)
        set(e);
}

// Entries under their headers, the headers in the order first met.
QByteArray SettingsStore::contents() const {
    QHash<QString, int> groupOf;
    std::vector<std::vector<int>> groups;
    for (int i = 0; i < int(m_entries.size()); ++i) {
        const Entry& e = m_entries[i];
        const QString h = header(e.app, e.section).toCaseFolded();
        auto at = groupOf.constFind(h);
        if (at == groupOf.cend()) {
            at = groupOf.insert(h, int(groups.size()));
            groups.emplace_back();
        }
        groups[*at].push_back(i);
    }
    QString text;
    for (const std::vector<int>& group : groups) {
        const Entry& first = m_entries[group.front()];
        text += u'[' + header(first.app, first.section) + QStringLiteral("]\n");
        for (int i : group)
            text += escape(m_entries[i].key) + u'=' + escape(m_entries[i].value) + u'\n';
        text += u'\n';
    }
    return text.toUtf8();
}

int SettingsStore::find(const QString& app, const QString& section, const QString& key) const {
    return m_index.value(addressOf(app, section, key), -1);
}

QString SettingsStore::get(const QString& app, const QString& section, const QString& key,
                           const QString& defaultValue) const {
    refresh();
    const int at = find(app, section, key);
    return at < 0 ? defaultValue : m_entries[at].value;
}

bool SettingsStore::contains(const QString& app, const QString& section, const QString& key) const {
    refresh();
    return find(app, section, key) >= 0;
}

// Two copies of the program may run on one application folder. A save therefore changes only
// its own key: under the lock it reads what the other copy may have written, sets the one
// value and writes the whole back beside the file, renaming it over the old one when complete.
bool SettingsStore::save(const QString& app, const QString& section, const QString& key,
                         const QString& value) {
    const Entry entry{app, section, key, value};
    m_unsaved.push_back(entry);
    set(entry);
    FileLock lock(m_path + QStringLiteral(".lock"));
    if (!lock.acquire(m_lockWaitMillis)) {
        if (lock.error() == 0)
            return fail(Trouble::Busy,
                        QStringLiteral("다른 누벨라가 설정 파일을 쓰고 있어 설정을 저장하지 못했습니다."));
        const WriteFailure why = WriteFailure::fromErrno(lock.error());
        return fail(why.cause == WriteFailure::Cause::ReadOnly ? Trouble::ReadOnly : Trouble::Other,
                    QStringLiteral("설정을 저장하지 못했습니다: ") + why.sentence());
    }
    load();
    if (QFileInfo::exists(m_path) && !QFileInfo(m_path).isWritable())
        return fail(Trouble::ReadOnly,
                    QStringLiteral("설정 파일이 읽기 전용이라 설정을 저장할 수 없습니다."));
    WriteFailure why;
    if (!writeWholeFile(m_path, contents(), &why)) {
        const Trouble trouble = why.cause == WriteFailure::Cause::ReadOnly   ? Trouble::ReadOnly
                                : why.cause == WriteFailure::Cause::DiskFull ? Trouble::DiskFull
                                                                             : Trouble::Other;
        return fail(trouble, QStringLiteral("설정을 저장하지 못했습니다: ") + why.sentence());
    }
    m_unsaved.clear();
    m_stamp = fileStamp();
    m_said = Trouble::None;
    return true;
}

// One box for one trouble: a read-only folder is told at the first save, not at each.
bool SettingsStore::fail(Trouble trouble, const QString& text) {
    if (trouble == m_said) return false;
    m_said = trouble;
    QString hint;
    if (trouble == Trouble::ReadOnly)
        hint = QStringLiteral("\r\n응용 프로그램 폴더와 설정 파일에 쓰기 권한이 있는지 확인하십시오.");
    tell(text + QStringLiteral("\r\n설정 파일은 그대로이며, 바꾼 설정은 이번 실행 동안만 쓰입니다.\r\n") +
         m_path + hint);
    return false;
}

// What the file looked like when last read or written; a read after the other copy saved
// reads the file again.
SettingsStore::Stamp SettingsStore::fileStamp() const {
    const QFileInfo info(m_path);
    return {info.exists() ? info.lastModified() : QDateTime(), info.exists() ? info.size() : -1};
}

void SettingsStore::refresh() const {
    if (fileStamp() == m_stamp) return;
    const_cast<SettingsStore*>(this)->load();
}

void setSettingsTroubleReporter(std::function<void(const QString& text)> reporter) {
    troubleReporter() = std::move(reporter);
}

namespace {
std::unique_ptr<SettingsStore>& current() {
    static std::unique_ptr<SettingsStore> store;
    return store;
}
} // namespace

SettingsStore& settings() {
    auto& s = current();
    const QString path = appFolderFile(QStringLiteral("settings.ini"));
    if (!s || s->filePath() != path) s = std::make_unique<SettingsStore>(path);
    return *s;
}

void resetSettings() {
    current().reset();
}

QString GetSetting(const QString& app, const QString& section, const QString& key,
                   const QString& defaultValue) {
    return settings().get(app, section, key, defaultValue);
}

bool SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value) {
    return settings().save(app, section, key, value);
}

QString GetEnv(const QString& key, const QString& defaultValue) {
    return GetSetting(kAppSection, kEnvSection, key, defaultValue);
}

bool SaveEnv(const QString& key, const QString& value) {
    return SaveSetting(kAppSection, kEnvSection, key, value);
}

} // namespace nb
