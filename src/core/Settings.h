#pragma once
// The per-user settings store: values addressed by application section, section and key,
// kept in settings.ini in the application folder. Every part of the address compares
// without regard to case, so "TopMargin" and "topmargin" are one key.

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace nb {

// The application section and section that most keys live under.
inline const QString kAppSection = QStringLiteral("세금계산서");
inline const QString kEnvSection = QStringLiteral("환경설정");

class SettingsStore {
public:
    explicit SettingsStore(QString filePath);

    QString get(const QString& app, const QString& section, const QString& key,
                const QString& defaultValue = QString()) const;
    // True when the value is in the file. A save that fails (the lock not had, the folder
    // read-only, the disk full) leaves the file byte for byte as it was, says why once, and
    // keeps the value for this run; the next save that succeeds writes it too.
    bool save(const QString& app, const QString& section, const QString& key, const QString& value);
    bool contains(const QString& app, const QString& section, const QString& key) const;
    QString filePath() const { return m_path; }
    // How long a save waits for the other copy's lock (ten seconds unless a test says less).
    void setLockWait(int millis) { m_lockWaitMillis = millis; }

private:
    struct Entry {
        QString app, section, key, value;
    };
    struct Stamp {
        QDateTime modified;
        qint64 size = -1;
        bool operator==(const Stamp&) const = default;
    };
    enum class Trouble { None, Busy, ReadOnly, DiskFull, Other };
    int find(const QString& app, const QString& section, const QString& key) const;
    void set(const Entry& entry);
    void load();
    QByteArray contents() const;
    Stamp fileStamp() const;
    void refresh() const;
    bool fail(Trouble trouble, const QString& text);

    QString m_path;
    std::vector<Entry> m_entries;
    QHash<QString, int> m_index;  // the folded address of each entry
    std::vector<Entry> m_unsaved; // values whose save failed, kept for this run
    Stamp m_stamp;
    Trouble m_said = Trouble::None; // the trouble last told, not told again until a save succeeds
    int m_lockWaitMillis = 10000;
};

// How the settings store tells the operator of trouble: core shows no box, so the message
// service installs itself here. Without one the words go to the error stream.
void setSettingsTroubleReporter(std::function<void(const QString& text)> reporter);

// The store of the running program, in the current application folder.
SettingsStore& settings();
// Forgets the open store so that the next call opens the one of the current application folder.
void resetSettings();

// GetSetting / SaveSetting of the original, with the usual sections as defaults.
QString GetSetting(const QString& app, const QString& section, const QString& key,
                   const QString& defaultValue = QString());
bool SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value);
// Shorthands for keys under "세금계산서" / "환경설정".
QString GetEnv(const QString& key, const QString& defaultValue = QString());
bool SaveEnv(const QString& key, const QString& value);

} // namespace nb
