#include "core/Settings.h"

#include "core/AppFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QTextStream>
#include <memory>

namespace nb {
namespace {

bool same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Values may hold line breaks and backslashes; they are escaped so one entry stays one line.
QString escape(const QString& v) {
    QString out;
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

} // namespace

SettingsStore::SettingsStore(QString filePath) : m_path(std::move(filePath)) {
    load();
}

void SettingsStore::load() {
    m_entries.clear();
    m_stamp = fileStamp();
    QFile f(m_path);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return;
    QTextStream in(&f);
    in.setEncoding(QStringConverter::Utf8);
    QString app, section;
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            const QString h = line.mid(1, line.size() - 2);
            const qsizetype slash = h.indexOf(u'\\');
            app = slash < 0 ? h : h.left(slash);
            section = slash < 0 ? QString() : h.mid(slash + 1);
            continue;
        }
        const qsizetype eq = line.indexOf(u'=');
        if (eq <= 0 || line.startsWith(u';')) continue;
        const QString key = unescape(line.left(eq));
        const QString value = unescape(line.mid(eq + 1));
        const int at = find(app, section, key);
        if (at >= 0)
            m_entries[at].value = value;
        else
            m_entries.push_back({app, section, key, value});
    }
}

void SettingsStore::write() const {
    QSaveFile f(m_path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Text)) return;
    QTextStream out(&f);
    out.setEncoding(QStringConverter::Utf8);
    QStringList headers;
    for (const Entry& e : m_entries) {
        const QString h = header(e.app, e.section);
        bool seen = false;
        for (const QString& s : headers)
            seen = seen || same(s, h);
        if (!seen) headers << h;
    }
    for (const QString& h : headers) {
        out << '[' << h << "]\n";
        for (const Entry& e : m_entries)
            if (same(header(e.app, e.section), h)) out << escape(e.key) << '=' << escape(e.value) << '\n';
        out << '\n';
    }
    out.flush();
    f.commit();
}

int SettingsStore::find(const QString& app, const QString& section, const QString& key) const {
    for (int i = 0; i < int(m_entries.size()); ++i) {
        const Entry& e = m_entries[i];
        if (same(e.app, app) && same(e.section, section) && same(e.key, key)) return i;
    }
    return -1;
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
// its own key: under a lock file it reads what the other copy may have written, sets the one
// value and writes the whole back.
void SettingsStore::save(const QString& app, const QString& section, const QString& key,
                         const QString& value) {
    QLockFile lock(m_path + QStringLiteral(".lock"));
    lock.setStaleLockTime(10000);
    const bool locked = lock.tryLock(5000);
    load();
    const int at = find(app, section, key);
    if (at >= 0)
        m_entries[at].value = value;
    else
        m_entries.push_back({app, section, key, value});
    write();
    m_stamp = fileStamp();
    if (locked) lock.unlock();
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

void SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value) {
    settings().save(app, section, key, value);
}

QString GetEnv(const QString& key, const QString& defaultValue) {
    return GetSetting(kAppSection, kEnvSection, key, defaultValue);
}

void SaveEnv(const QString& key, const QString& value) {
    SaveSetting(kAppSection, kEnvSection, key, value);
}

} // namespace nb
