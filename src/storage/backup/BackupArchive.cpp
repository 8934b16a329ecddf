#include "storage/backup/BackupArchive.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <zip.h>

namespace nb {
namespace {

constexpr qint64 kManifestLimit = 1 << 20;
// Deflate at its fastest: store pages shrink well, and a decade of books stays quick.
constexpr zip_uint32_t kCompressionLevel = 1;

QString zipError(zip_t* archive) {
    return QString::fromUtf8(zip_strerror(archive));
}

QJsonObject storeJson(const ManifestStore& store) {
    QJsonObject rows;
    for (auto it = store.rows.cbegin(); it != store.rows.cend(); ++it)
        rows.insert(it.key(), double(it.value()));
    return {{QStringLiteral("role"), store.role},
            {QStringLiteral("entry"), store.entry},
            {QStringLiteral("bytes"), double(store.bytes)},
            {QStringLiteral("sha256"), store.sha256},
            {QStringLiteral("rows"), rows}};
}

std::optional<ManifestStore> storeFrom(const QJsonObject& o) {
    ManifestStore store{o.value(QStringLiteral("role")).toString(),
                        o.value(QStringLiteral("entry")).toString(),
                        qint64(o.value(QStringLiteral("bytes")).toDouble(-1)),
                        o.value(QStringLiteral("sha256")).toString(),
                        {}};
    const QJsonObject rows = o.value(QStringLiteral("rows")).toObject();
    for (auto it = rows.constBegin(); it != rows.constEnd(); ++it)
        store.rows.insert(it.key(), qint64(it.value().toDouble()));
    // An entry name is a plain file name: nothing in the archive may point outside its folder.
    const bool plainName = !store.entry.isEmpty() && !store.entry.contains(u'/') &&
                           !store.entry.contains(u'\\') && !store.entry.startsWith(u'.');
    if (store.role.isEmpty() || !plainName || store.bytes < 0 || store.sha256.size() != 64)
        return std::nullopt;
    return store;
}

bool addFile(zip_t* archive, const ArchiveFile& file, QString* why) {
    zip_source_t* source = zip_source_file(archive, QFile::encodeName(file.path).constData(), 0, -1);
    const zip_int64_t index =
        source ? zip_file_add(archive, file.entry.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) : -1;
    if (index < 0) {
        if (source) zip_source_free(source);
        *why =
            QStringLiteral("백업 파일에 %1 을(를) 넣지 못했습니다 (%2).").arg(file.entry, zipError(archive));
        return false;
    }
    zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_DEFLATE, kCompressionLevel);
    return true;
}

bool addBytes(zip_t* archive, const QString& entry, const QByteArray& bytes, QString* why) {
    zip_source_t* source = zip_source_buffer(archive, bytes.constData(), zip_uint64_t(bytes.size()), 0);
    if (!source || zip_file_add(archive, entry.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
        if (source) zip_source_free(source);
        *why = QStringLiteral("백업 파일에 %1 을(를) 넣지 못했습니다 (%2).").arg(entry, zipError(archive));
        return false;
    }
    return true;
}

} // namespace

QByteArray manifestJson(const Manifest& manifest) {
    QJsonArray stores;
    for (const ManifestStore& store : manifest.stores)
        stores.append(storeJson(store));
    QJsonObject root{{QStringLiteral("program"), manifest.program},
                     {QStringLiteral("version"), manifest.version},
                     {QStringLiteral("taken"), manifest.taken.toString(Qt::ISODate)},
                     {QStringLiteral("stores"), stores}};
    if (!manifest.settingsSha256.isEmpty())
        root.insert(QStringLiteral("settingsSha256"), manifest.settingsSha256);
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

std::optional<Manifest> parseManifest(const QByteArray& json, QString* why) {
    const QJsonObject root = QJsonDocument::fromJson(json).object();
    if (root.value(QStringLiteral("program")).toString() != kBackupProgram) {
        *why = QStringLiteral("누벨라의 백업 파일이 아닙니다.");
        return std::nullopt;
    }
    Manifest manifest{kBackupProgram,
                      root.value(QStringLiteral("version")).toString(),
                      QDateTime::fromString(root.value(QStringLiteral("taken")).toString(), Qt::ISODate),
                      {},
                      root.value(QStringLiteral("settingsSha256")).toString()};
    for (const QJsonValue& value : root.value(QStringLiteral("stores")).toArray()) {
        const auto store = storeFrom(value.toObject());
        if (!store) {
            *why = QStringLiteral("백업 파일의 목록(manifest.json)이 손상되었습니다.");
            return std::nullopt;
        }
        manifest.stores.append(*store);
    }
    if (manifest.stores.isEmpty()) {
        *why = QStringLiteral("백업 파일에 자료 파일이 하나도 없습니다.");
        return std::nullopt;
    }
    return manifest;
}

bool writeArchive(const QString& zipPath, const QList<ArchiveFile>& files, const QByteArray& manifest,
                  QString* why) {
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive) {
        *why = QStringLiteral("백업 파일을 만들 수 없습니다: %1").arg(zipPath);
        return false;
    }
    bool ok = addBytes(archive, kManifestEntry, manifest, why);
    for (const ArchiveFile& file : files)
        ok = ok && addFile(archive, file, why);
    if (!ok) {
        zip_discard(archive);
        return false;
    }
    if (zip_close(archive) != 0) {
        *why = QStringLiteral("백업 파일을 끝까지 쓰지 못했습니다 (%1).").arg(zipError(archive));
        zip_discard(archive);
        return false;
    }
    return true;
}

bool isWholeArchive(const QString& zipPath) {
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error);
    if (!archive) return false;
    const bool whole = zip_name_locate(archive, kManifestEntry.toUtf8().constData(), 0) >= 0;
    zip_discard(archive);
    return whole;
}

ArchiveReader::ArchiveReader(const QString& zipPath) {
    int error = 0;
    m_zip = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error);
    if (!m_zip) {
        m_problem = QStringLiteral("백업 파일(zip)로 읽을 수 없습니다. 손상되었거나 다른 종류의 파일입니다.");
        return;
    }
    const auto json = readEntry(kManifestEntry, kManifestLimit);
    if (!json) {
        m_problem = QStringLiteral("누벨라의 백업 파일이 아닙니다 (목록 manifest.json 이 없습니다).");
        return;
    }
    if (auto manifest = parseManifest(*json, &m_problem)) m_manifest = *manifest;
}

ArchiveReader::~ArchiveReader() {
    if (m_zip) zip_discard(m_zip);
}

std::optional<QByteArray> ArchiveReader::readEntry(const QString& entry, qint64 limit) {
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat(m_zip, entry.toUtf8().constData(), 0, &st) != 0 || !(st.valid & ZIP_STAT_SIZE) ||
        qint64(st.size) > limit)
        return std::nullopt;
    zip_file_t* file = zip_fopen(m_zip, entry.toUtf8().constData(), 0);
    if (!file) return std::nullopt;
    QByteArray bytes(qsizetype(st.size), Qt::Uninitialized);
    const zip_int64_t read = zip_fread(file, bytes.data(), st.size);
    zip_fclose(file);
    if (read != zip_int64_t(st.size)) return std::nullopt;
    return bytes;
}

bool ArchiveReader::extract(const QString& entry, qint64 expectedBytes, const QString& target, QString* why) {
    const QByteArray name = entry.toUtf8();
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat(m_zip, name.constData(), 0, &st) != 0 || !(st.valid & ZIP_STAT_SIZE) ||
        qint64(st.size) != expectedBytes) {
        *why = QStringLiteral("백업 파일에 %1 이(가) 없거나 크기가 목록과 다릅니다.").arg(entry);
        return false;
    }
    zip_file_t* file = zip_fopen(m_zip, name.constData(), 0);
    QFile out(target);
    if (!file || !out.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        if (file) zip_fclose(file);
        *why = QStringLiteral("%1 을(를) 꺼낼 수 없습니다: %2").arg(entry, target);
        return false;
    }
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    qint64 total = 0;
    zip_int64_t n = 0;
    bool written = true;
    while (written && (n = zip_fread(file, buffer.data(), zip_uint64_t(buffer.size()))) > 0) {
        written = out.write(buffer.constData(), n) == n;
        total += n;
    }
    zip_fclose(file);
    out.close();
    if (n < 0 || !written || total != expectedBytes || out.error() != QFileDevice::NoError) {
        *why = QStringLiteral(
                   "%1 을(를) 끝까지 꺼내지 못했습니다 (백업 파일이 손상되었거나 디스크가 가득 찼습니다).")
                   .arg(entry);
        return false;
    }
    if (!syncPath(target)) {
        *why = QStringLiteral("%1 을(를) 디스크에 쓰지 못했습니다: %2").arg(entry, target);
        return false;
    }
    return true;
}

} // namespace nb
