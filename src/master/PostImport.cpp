#include "master/PostImport.h"

#include "common/Messages.h"
#include "common/text/Cp949.h"
#include "core/AppState.h"
#include "master/SearchIndex.h"
#include "storage/StoreLayout.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QSqlQuery>
#include <QStringDecoder>

namespace nb {
namespace {

const QStringList kColumns = {QStringLiteral("ZIPCODE"), QStringLiteral("SIDO"), QStringLiteral("GUGUN"),
                              QStringLiteral("DONG"), QStringLiteral("BUNJI")};

// Where each wanted column stands in the header, or an empty list when one is missing.
QList<int> columnPositions(const QStringList& header) {
    QList<int> positions;
    for (const QString& wanted : kColumns) {
        int found = -1;
        for (int i = 0; i < header.size(); ++i)
            if (header[i].trimmed().compare(wanted, Qt::CaseInsensitive) == 0) found = i;
        if (found < 0) return {};
        positions << found;
    }
    return positions;
}

QString zipDigits(const QString& text) {
    QString zip = text.trimmed();
    zip.remove(u'-');
    if (zip.size() != 6) return QString();
    for (QChar c : zip)
        if (!c.isDigit()) return QString();
    return zip;
}

bool openPostStore(Database& db) {
    const QString path = app().DbPostFile;
    if (path.isEmpty()) return false;
    if (!QFileInfo::exists(path) && !createStoreFile(path, postTables())) return false;
    if (!db.open(path)) return false;
    return db.hasTable(QStringLiteral("Post")) || createTable(db, tableDef(QStringLiteral("Post")));
}

bool replaceRows(Database& db, const QVector<QStringList>& rows) {
    QSqlQuery q(db.connection());
    if (!q.exec(QStringLiteral("DELETE FROM Post"))) return false;
    if (!q.prepare(
            QStringLiteral("INSERT INTO Post (ZIPCODE, SIDO, GUGUN, DONG, BUNJI) VALUES (?, ?, ?, ?, ?)")))
        return false;
    const int steps = 100;
    Progress progress(kPostImportTitle, steps);
    const qsizetype perStep = std::max<qsizetype>(1, rows.size() / steps);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        for (int c = 0; c < 5; ++c)
            q.bindValue(c, rows[i].value(c));
        if (!q.exec()) return false;
        if ((i + 1) % perStep == 0 && progress.value() < steps) {
            progress.step();
            QApplication::processEvents();
        }
    }
    return true;
}

} // namespace

QString DecodePostcodeBytes(const QByteArray& bytes) {
    QByteArray body = bytes;
    if (body.startsWith("\xEF\xBB\xBF")) body.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(body);
    if (!utf8.hasError()) return text;
    return FromCp949(body);
}

QStringList SplitCsvLine(const QString& line) {
    QStringList fields;
    QString current;
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (quoted && c == u'"' && i + 1 < line.size() && line.at(i + 1) == u'"') {
            current += u'"';
            ++i;
        } else if (c == u'"') {
            quoted = !quoted;
        } else if (c == u',' && !quoted) {
            fields << current;
            current.clear();
        } else {
            current += c;
        }
    }
    fields << current;
    return fields;
}

PostcodeBook ReadPostcodeBook(const QString& path) {
    PostcodeBook book;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        book.error = QStringLiteral("우편번호 파일을 열 수 없습니다.\r\n") + path;
        return book;
    }
    const QStringList lines = DecodePostcodeBytes(file.readAll()).split(u'\n');
    const QList<int> positions =
        lines.isEmpty() ? QList<int>() : columnPositions(SplitCsvLine(lines.first().trimmed()));
    if (positions.isEmpty()) {
        book.error =
            QStringLiteral(
                "우편번호 파일의 첫 줄에 ZIPCODE, SIDO, GUGUN, DONG, BUNJI 열이 있어야 합니다.\r\n") +
            path;
        return book;
    }
    book.rows.reserve(lines.size());
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QString line = QString(lines[i]).remove(u'\r');
        if (line.trimmed().isEmpty()) continue;
        const QStringList fields = SplitCsvLine(line);
        const QString zip = zipDigits(fields.value(positions[0]));
        if (zip.isEmpty()) {
            ++book.skipped;
            continue;
        }
        book.rows.push_back({zip, fields.value(positions[1]).trimmed(), fields.value(positions[2]).trimmed(),
                             fields.value(positions[3]).trimmed(), fields.value(positions[4]).trimmed()});
    }
    return book;
}

int ImportPostcodeFile(const QString& path) {
    const PostcodeBook book = ReadPostcodeBook(path);
    if (!book.error.isEmpty()) {
        ShowWarning(book.error, kPostImportTitle);
        return -1;
    }
    Database db;
    if (!openPostStore(db)) {
        ShowWarning(QStringLiteral("우편번호 데이터베이스를 열 수 없습니다.\r\n") + app().DbPostFile,
                    kPostImportTitle);
        return -1;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    db.beginTransaction();
    DropSearchIndex(db, PostSearchIndex());
    const bool ok = replaceRows(db, book.rows) && EnsureSearchIndex(db, PostSearchIndex());
    ok ? (void)db.commit() : db.rollback();
    QApplication::restoreOverrideCursor();
    if (!ok) {
        ShowWarning(
            QStringLiteral(
                "우편번호를 가져오는 중 오류가 발생했습니다.\r\n기존 우편번호는 그대로 남아 있습니다."),
            kPostImportTitle);
        return -1;
    }
    QString text = QStringLiteral("우편번호 %1건을 가져왔습니다.").arg(book.rows.size());
    if (book.skipped > 0)
        text += QStringLiteral("\r\n우편번호가 여섯 자리가 아닌 %1줄은 건너뛰었습니다.").arg(book.skipped);
    ShowInfo(text, kPostImportTitle);
    return int(book.rows.size());
}

void RunPostcodeImport(QWidget* parent) {
    const QString path = QFileDialog::getOpenFileName(parent, QStringLiteral("우편번호 파일 선택"), QString(),
                                                      QStringLiteral("우편번호 파일 (*.csv);;모든 파일 (*)"));
    if (!path.isEmpty()) ImportPostcodeFile(path);
}

} // namespace nb
