#pragma once
// The backup file: one zip holding each store file, settings.ini and manifest.json, which
// names the program and its version, the moment the backup was taken and, per store, its
// file, size, checksum and the rows of each table.

#include "storage/backup/StoreCopy.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

struct zip;

namespace nb {

struct ManifestStore {
    QString role;  // the store's settings key ("db기초", "db명세서", ...)
    QString entry; // its name in the zip ("dbBasic.db")
    qint64 bytes = 0;
    QString sha256;
    TableRows rows;
};

struct Manifest {
    QString program; // kBackupProgram
    QString version; // "1.0.0"
    QDateTime taken; // local time
    QList<ManifestStore> stores;
    QString settingsSha256; // empty when the backup holds no settings.ini
};

inline const QString kBackupProgram = QStringLiteral("누벨라");
inline const QString kManifestEntry = QStringLiteral("manifest.json");
inline const QString kSettingsEntry = QStringLiteral("settings.ini");

QByteArray manifestJson(const Manifest& manifest);
// The manifest read back; nothing (with why) when the text is not one of this program's.
std::optional<Manifest> parseManifest(const QByteArray& json, QString* why);

// One file to put into the archive: its name there and where its bytes are now.
struct ArchiveFile {
    QString entry;
    QString path;
};
// Writes the zip `zipPath` (a new file) of the files and the manifest. False with why.
bool writeArchive(const QString& zipPath, const QList<ArchiveFile>& files, const QByteArray& manifest,
                  QString* why);
// True when the file is a complete zip holding a manifest (the last check before a rename).
bool isWholeArchive(const QString& zipPath);

// An archive opened for reading: the manifest and the entries it names.
class ArchiveReader {
public:
    explicit ArchiveReader(const QString& zipPath);
    ~ArchiveReader();
    ArchiveReader(const ArchiveReader&) = delete;
    ArchiveReader& operator=(const ArchiveReader&) = delete;

    // Empty when the file is a zip with a manifest of this program; else why not, in Korean.
    QString problem() const { return m_problem; }
    const Manifest& manifest() const { return m_manifest; }
    // Writes one entry to `target` (a new file), refusing one larger than `expectedBytes`.
    bool extract(const QString& entry, qint64 expectedBytes, const QString& target, QString* why);

private:
    std::optional<QByteArray> readEntry(const QString& entry, qint64 limit);

    ::zip* m_zip = nullptr;
    Manifest m_manifest;
    QString m_problem;
};

} // namespace nb
