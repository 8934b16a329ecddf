#include "master/PostImport.h"

#include "common/Messages.h"
#include "common/text/Cp949.h"
#include "core/AppState.h"
#include "master/RoadImport.h"
#include "master/SearchIndex.h"
#include "storage/StoreLayout.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringDecoder>
#include <algorithm>
#include <optional>

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

// Why a statement of the save failed: the engine's code and words.
struct SaveFault {
    int engineCode = 0;
    QString engineText;
};

SaveFault faultOf(const QSqlQuery& q) {
    const QSqlError e = q.lastError();
    return {e.nativeErrorCode().toInt(), e.databaseText().isEmpty() ? e.text() : e.databaseText()};
}

std::optional<SaveFault> replaceRows(Database& db, const QVector<QStringList>& rows) {
    QSqlQuery q(db.connection());
    if (!q.exec(QStringLiteral("DELETE FROM Post"))) return faultOf(q);
    if (!q.prepare(
            QStringLiteral("INSERT INTO Post (ZIPCODE, SIDO, GUGUN, DONG, BUNJI) VALUES (?, ?, ?, ?, ?)")))
        return faultOf(q);
    const int steps = 100;
    Progress progress(kPostImportTitle, steps);
    const qsizetype perStep = std::max<qsizetype>(1, rows.size() / steps);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        for (int c = 0; c < 5; ++c)
            q.bindValue(c, rows[i].value(c));
        if (!q.exec()) return faultOf(q);
        if ((i + 1) % perStep == 0 && progress.value() < steps) {
            progress.step();
            QApplication::processEvents();
        }
    }
    return std::nullopt;
}

const QString kBookKept = QStringLiteral("기존 우편번호는 그대로 남아 있습니다.");

bool readUtf8(const QByteArray& bytes, QString* text = nullptr) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded = utf8.decode(bytes);
    if (utf8.hasError()) return false;
    if (text) *text = std::move(decoded);
    return true;
}

// The code page has no replacement character, so one in the text is a byte it could not read.
bool readCp949(const QByteArray& bytes, QString* text = nullptr) {
    QString decoded = FromCp949(bytes);
    if (decoded.contains(QChar(QChar::ReplacementCharacter))) return false;
    if (text) *text = std::move(decoded);
    return true;
}

// The lines (from 1) that cannot be read by `read`. A line feed is never part of a character
// in either encoding, so the file splits into lines before it is read.
QList<int> unreadableLines(const QList<QByteArray>& lines, bool (*read)(const QByteArray&, QString*)) {
    QList<int> bad;
    for (qsizetype i = 0; i < lines.size(); ++i)
        if (!read(lines[i], nullptr)) bad << int(i + 1);
    return bad;
}

QString refusedEncodingText(const QByteArray& body, bool utf8Only) {
    const QList<QByteArray> lines = body.split('\n');
    const QList<int> utf8Bad = unreadableLines(lines, readUtf8);
    const QList<int> cp949Bad = utf8Only ? QList<int>() : unreadableLines(lines, readCp949);
    // The file is taken for the encoding it comes nearest to, and its first bad line named.
    const bool asUtf8 = utf8Only || utf8Bad.size() <= cp949Bad.size();
    const QList<int>& bad = asUtf8 ? utf8Bad : cp949Bad;
    const QString lead = utf8Only
                             ? QStringLiteral("우편번호 파일은 UTF-8 표시(BOM)로 시작하지만 UTF-8로 읽을 수 "
                                              "없는 바이트가 있어 가져오지 않았습니다.")
                             : QStringLiteral("우편번호 파일을 UTF-8로도 CP949로도 읽을 수 없어 가져오지 "
                                              "않았습니다.");
    return lead +
           QStringLiteral("\r\n%1번째 줄에 %2 글자로 읽을 수 없는 바이트가 있습니다 (그런 줄이 모두 %3줄).")
               .arg(bad.value(0))
               .arg(asUtf8 ? QStringLiteral("UTF-8") : QStringLiteral("CP949"))
               .arg(bad.size()) +
           QStringLiteral("\r\n파일을 UTF-8이나 CP949로 다시 저장한 뒤 가져오십시오. ") + kBookKept;
}

QString lineList(const QList<int>& lines) {
    constexpr int kShown = 5;
    QStringList shown;
    for (int i = 0; i < std::min<qsizetype>(kShown, lines.size()); ++i)
        shown << QString::number(lines[i]);
    return shown.join(QStringLiteral(", ")) + QStringLiteral("번째 줄") +
           (lines.size() > kShown ? QStringLiteral(" 등") : QString());
}

} // namespace

PostcodeText DecodePostcodeBytes(const QByteArray& bytes) {
    const bool marked = bytes.startsWith("\xEF\xBB\xBF");
    const QByteArray body = marked ? bytes.mid(3) : bytes;
    PostcodeText out;
    if (readUtf8(body, &out.text)) {
        out.encoding = QStringLiteral("UTF-8");
    } else if (!marked && readCp949(body, &out.text)) {
        out.encoding = QStringLiteral("CP949");
    } else {
        out.text.clear();
        out.error = refusedEncodingText(body, marked);
    }
    return out;
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

QString skippedLinesText(const SkippedLines& skipped) {
    QString text;
    if (!skipped.badPostcode.isEmpty())
        text += QStringLiteral("\r\n우편번호가 여섯 자리가 아닌 %1줄은 건너뛰었습니다 (%2).")
                    .arg(skipped.badPostcode.size())
                    .arg(lineList(skipped.badPostcode));
    if (!skipped.shortLine.isEmpty())
        text += QStringLiteral("\r\n열이 모자란 %1줄은 건너뛰었습니다 (%2).")
                    .arg(skipped.shortLine.size())
                    .arg(lineList(skipped.shortLine));
    return text;
}

PostcodeBook ReadPostcodeBook(const QString& path) {
    PostcodeBook book;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        book.error = QStringLiteral("우편번호 파일을 열 수 없습니다.\r\n") + path;
        return book;
    }
    const PostcodeText decoded = DecodePostcodeBytes(file.readAll());
    if (!decoded.error.isEmpty()) {
        book.error = decoded.error + QStringLiteral("\r\n") + path;
        return book;
    }
    const QStringList lines = decoded.text.split(u'\n');
    const QList<int> positions =
        lines.isEmpty() ? QList<int>() : columnPositions(SplitCsvLine(lines.first().trimmed()));
    if (positions.isEmpty()) {
        book.error =
            QStringLiteral(
                "우편번호 파일의 첫 줄에 ZIPCODE, SIDO, GUGUN, DONG, BUNJI 열이 있어야 합니다.\r\n") +
            path;
        return book;
    }
    const int fieldsNeeded = *std::max_element(positions.begin(), positions.end()) + 1;
    book.rows.reserve(lines.size());
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QString line = QString(lines[i]).remove(u'\r');
        if (line.trimmed().isEmpty()) continue;
        const QStringList fields = SplitCsvLine(line);
        if (fields.size() < fieldsNeeded) {
            book.skipped.shortLine << int(i + 1);
            continue;
        }
        const QString zip = zipDigits(fields.value(positions[0]));
        if (zip.isEmpty()) {
            book.skipped.badPostcode << int(i + 1);
            continue;
        }
        book.rows.push_back({zip, fields.value(positions[1]).trimmed(), fields.value(positions[2]).trimmed(),
                             fields.value(positions[3]).trimmed(), fields.value(positions[4]).trimmed()});
    }
    if (book.rows.isEmpty())
        book.error = QStringLiteral("우편번호 파일에 가져올 우편번호가 한 줄도 없어 가져오지 않았습니다. ") +
                     kBookKept + skippedLinesText(book.skipped) + QStringLiteral("\r\n") + path;
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
    const QString failed = QStringLiteral("우편번호를 가져오지 못했습니다. ") + kBookKept;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    if (!db.beginTransaction()) {
        QApplication::restoreOverrideCursor();
        ReportSaveFailure(db, failed);
        return -1;
    }
    DropSearchIndex(db, PostSearchIndex());
    std::optional<SaveFault> fault = replaceRows(db, book.rows);
    if (!fault && !EnsureSearchIndex(db, PostSearchIndex()))
        fault = SaveFault{db.lastEngineCode(), db.lastErrorDescription()};
    if (fault) {
        db.rollback();
    } else if (!db.commit()) { // rolled back: the old rows stay
        fault = SaveFault{db.lastEngineCode(), db.lastErrorDescription()};
    }
    QApplication::restoreOverrideCursor();
    if (fault) {
        ReportSaveFailure(fault->engineCode, fault->engineText, failed);
        return -1;
    }
    ShowInfo(QStringLiteral("우편번호 %1건을 가져왔습니다.").arg(book.rows.size()) +
                 skippedLinesText(book.skipped),
             kPostImportTitle);
    return int(book.rows.size());
}

bool ImportPostcodeFiles(const QStringList& paths) {
    if (paths.isEmpty()) return false;
    int roadFiles = 0;
    for (const QString& path : paths)
        roadFiles += IsRoadBookFile(path) ? 1 : 0;
    if (roadFiles == paths.size()) return ImportRoadBook(paths) >= 0;
    if (paths.size() == 1) return ImportPostcodeFile(paths.first()) >= 0;
    ShowWarning(
        QStringLiteral("여러 파일은 도로명 우편번호 파일(시도별 파일)일 때만 함께 가져올 수 있습니다. "
                       "아무것도 가져오지 않았습니다."),
        kPostImportTitle);
    return false;
}

void RunPostcodeImport(QWidget* parent) {
    const QStringList paths =
        QFileDialog::getOpenFileNames(parent, QStringLiteral("우편번호 파일 선택"), QString(),
                                      QStringLiteral("우편번호 파일 (*.csv *.txt);;모든 파일 (*)"));
    ImportPostcodeFiles(paths);
}

} // namespace nb
