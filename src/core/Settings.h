#pragma once
// The per-user settings store: values addressed by application section, section and key,
// kept in settings.ini in the application folder. Every part of the address compares
// without regard to case, so "TopMargin" and "topmargin" are one key.

#include <QDateTime>
#include <QString>
#include <QStringList>
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
    void save(const QString& app, const QString& section, const QString& key, const QString& value);
    bool contains(const QString& app, const QString& section, const QString& key) const;
    QString filePath() const { return m_path; }

private:
    struct Entry {
        QString app, section, key, value;
    };
    struct Stamp {
        QDateTime modified;
        qint64 size = -1;
        bool operator==(const Stamp&) const = default;
    };
    int find(const QString& app, const QString& section, const QString& key) const;
    void load();
    void write() const;
    Stamp fileStamp() const;
    void refresh() const;

    QString m_path;
    std::vector<Entry> m_entries;
    Stamp m_stamp;
};

// The store of the running program, in the current application folder.
SettingsStore& settings();
// Forgets the open store so that the next call opens the one of the current application folder.
void resetSettings();

// GetSetting / SaveSetting of the original, with the usual sections as defaults.
QString GetSetting(const QString& app, const QString& section, const QString& key,
                   const QString& defaultValue = QString());
void SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value);
// Shorthands for keys under "세금계산서" / "환경설정".
QString GetEnv(const QString& key, const QString& defaultValue = QString());
void SaveEnv(const QString& key, const QString& value);

} // namespace nb
