#include "management/etax/HandOverRecord.h"

#include "common/dates/DateText.h"
#include "core/Clock.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <algorithm>

namespace nb {
namespace {

const QString kDay = QStringLiteral("yyyy-MM-dd");

const QString kFileColumns = QStringLiteral(
    "FileNo, FilePath, FromDate, ToDate, WrittenAt, Invoices, UploadedDate, WithdrawnDate, Note");

// An uploaded file before one that is not, the earlier upload first, then the older file.
bool comesFirst(const HandOverFile& a, const HandOverFile& b) {
    if (a.uploaded() != b.uploaded()) return a.uploaded();
    if (a.uploadedDate != b.uploadedDate) return a.uploadedDate < b.uploadedDate;
    return a.fileNo < b.fileNo;
}

HandOverFile fileFromRow(const Recordset& rs) {
    HandOverFile file;
    file.fileNo = int(rs.number(QStringLiteral("FileNo")));
    file.path = rs.text(QStringLiteral("FilePath"));
    file.fromDate = rs.text(QStringLiteral("FromDate"));
    file.toDate = rs.text(QStringLiteral("ToDate"));
    file.writtenAt = rs.text(QStringLiteral("WrittenAt"));
    file.invoices = int(rs.number(QStringLiteral("Invoices")));
    file.uploadedDate = rs.text(QStringLiteral("UploadedDate")).trimmed();
    file.withdrawnDate = rs.text(QStringLiteral("WithdrawnDate")).trimmed();
    file.note = rs.text(QStringLiteral("Note"));
    return file;
}

QString faultOf(const Database& db) {
    return storeFaultText(db.lastEngineCode(), db.lastErrorDescription());
}

bool fail(QString* why, const QString& text) {
    if (why) *why = text;
    return false;
}

// Ends a write that went wrong: rolls it back and words why.
bool abandon(Database& db, QString* why, const QString& headline) {
    const QString cause = faultOf(db);
    db.rollback();
    return fail(why, headline + u' ' + cause);
}

// The file row read inside a write, so that the change depends on what is on file now.
std::optional<HandOverFile> readFileRow(Database& db, int fileNo) {
    Recordset rs;
    if (!OpenSnapshot(db, rs, QStringLiteral("SELECT %1 FROM EtaxFile WHERE FileNo = ?").arg(kFileColumns),
                      {fileNo}))
        return std::nullopt;
    std::optional<HandOverFile> file;
    if (!rs.EOF_()) file = fileFromRow(rs);
    CloseRs(rs);
    return file;
}

QString cleanPath(const QString& path) {
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

QString HandOverFile::stateText() const {
    if (withdrawn())
        return QStringLiteral("철회 ") + withdrawnDate +
               (note.isEmpty() ? QString() : QStringLiteral(" (") + note + u')');
    if (uploaded()) return QStringLiteral("업로드 ") + uploadedDate;
    return QStringLiteral("업로드 전");
}

QHash<QString, QDate> UploadedInvoiceDates(const QString& fromDate, const QString& toDate) {
    return UploadedInvoiceDates(stores().dbTax, fromDate, toDate).value_or(QHash<QString, QDate>{});
}

QString standingInvoicesSql(bool uploadedOnly) {
    // The record's rows of the period come first (by their date), each file by its number, and
    // each invoice on file by its number: the plan does not depend on what the engine guesses
    // of the tables' sizes.
    return QStringLiteral("SELECT h.TaxCode, ") +
           (uploadedOnly ? QStringLiteral("f.UploadedDate")
                         : QStringLiteral("f.") +
                               kFileColumns.split(QStringLiteral(", ")).join(QStringLiteral(", f."))) +
           QStringLiteral(" FROM EtaxHandOver h CROSS JOIN EtaxFile f "
                          "WHERE h.DealDate BETWEEN ? AND ? AND f.FileNo = h.FileNo AND "
                          "COALESCE(f.WithdrawnDate, '') = '' ") +
           (uploadedOnly ? QStringLiteral("AND COALESCE(f.UploadedDate, '') <> '' ") : QString()) +
           QStringLiteral(
               "AND (SELECT MIN(n.DealDate) = h.DealDate AND MIN(COALESCE(n.CCode, '')) = "
               "COALESCE(h.CCode, '') AND abs(COALESCE(SUM(n.TradeKum), 0.0) - h.TradeKum) < 0.005 "
               "AND abs(COALESCE(SUM(n.VatKum), 0.0) - h.VatKum) < 0.005 FROM NewAcount n WHERE n.TaxCode = "
               "h.TaxCode)");
}

std::optional<QHash<QString, QDate>> UploadedInvoiceDates(Database& dbTax, const QString& fromDate,
                                                          const QString& toDate) {
    QSqlQuery q(dbTax.connection());
    if (!OpenForwardOnly(dbTax, q, standingInvoicesSql(true), {fromDate, toDate})) return std::nullopt;
    QHash<QString, QDate> dates;
    QHash<QString, QDate> days; // a few upload days for many invoices: each read once
    while (q.next()) {
        const QString text = q.value(1).toString();
        auto parsed = days.constFind(text);
        if (parsed == days.constEnd()) parsed = days.insert(text, QDate::fromString(text.trimmed(), kDay));
        const QDate day = parsed.value();
        if (!day.isValid()) continue;
        // An invoice in two uploaded files was issued on the earlier day.
        const QString taxCode = q.value(0).toString();
        auto it = dates.find(taxCode);
        if (it == dates.end())
            dates.insert(taxCode, day);
        else if (day < it.value())
            it.value() = day;
    }
    return dates;
}

std::optional<QHash<QString, HandOverMark>> HandedOverInvoices(Database& dbTax, const QString& fromDate,
                                                               const QString& toDate) {
    QSqlQuery q(dbTax.connection());
    if (!OpenForwardOnly(dbTax, q, standingInvoicesSql(false), {fromDate, toDate})) return std::nullopt;
    // Files are read once each; the invoices of one file share it.
    QHash<int, HandOverFile> files;
    QHash<QString, HandOverMark> marks;
    while (q.next()) {
        const int fileNo = q.value(1).toInt();
        auto file = files.find(fileNo);
        if (file == files.end())
            file = files.insert(fileNo, HandOverFile{fileNo, q.value(2).toString(), q.value(3).toString(),
                                                     q.value(4).toString(), q.value(5).toString(),
                                                     q.value(6).toInt(), q.value(7).toString().trimmed(),
                                                     q.value(8).toString().trimmed(), q.value(9).toString()});
        const QString taxCode = q.value(0).toString();
        HandOverMark& mark = marks[taxCode];
        mark.taxCode = taxCode;
        mark.files << file.value();
    }
    for (HandOverMark& mark : marks)
        std::sort(mark.files.begin(), mark.files.end(), comesFirst);
    return marks;
}

std::optional<int> RecordHandOverFile(Database& dbTax, const QString& path, const QString& fromDate,
                                      const QString& toDate, const QList<HandOverEntry>& entries,
                                      QString* why) {
    const QString headline = QStringLiteral("전자세금계산서 전송 기록을 남기지 못했습니다.");
    // Each try takes the next number anew inside its own transaction.
    std::optional<int> stored;
    RetryingSave([&] {
        stored.reset();
        if (!dbTax.beginTransaction()) {
            fail(why, headline + u' ' + faultOf(dbTax));
            return false;
        }
        // The next number is read inside the write, so two running copies never share one.
        Recordset last;
        if (!OpenSnapshot(dbTax, last, QStringLiteral("SELECT MAX(FileNo) AS Last FROM EtaxFile"))) {
            abandon(dbTax, why, headline);
            return false;
        }
        const int fileNo = int(last.number(QStringLiteral("Last"))) + 1;
        CloseRs(last);
        bool ok =
            dbTax.tryExecute(QStringLiteral("INSERT INTO EtaxFile (%1) VALUES (?, ?, ?, ?, ?, ?, '', '', '')")
                                 .arg(kFileColumns),
                             {fileNo, cleanPath(path), fromDate, toDate,
                              now().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")), int(entries.size())});
        for (const HandOverEntry& e : entries) {
            if (!ok) break;
            ok = dbTax.tryExecute(
                QStringLiteral("INSERT INTO EtaxHandOver (FileNo, TaxCode, DealDate, CCode, CName, "
                               "TradeKum, VatKum) VALUES (?, ?, ?, ?, ?, ?, ?)"),
                {fileNo, e.taxCode, e.dealDate, e.traderCode, e.receiver, e.supply, e.tax});
        }
        if (!ok) {
            abandon(dbTax, why, headline);
            return false;
        }
        if (!dbTax.commit()) {
            fail(why, headline + u' ' + faultOf(dbTax));
            return false;
        }
        stored = fileNo;
        return true;
    });
    return stored;
}

bool ForgetHandOverFile(Database& dbTax, int fileNo, QString* why) {
    const QString headline =
        QStringLiteral(
            "작성하지 못한 파일의 전송 기록(%1번)을 지우지 못했습니다. 전송 기록에서 철회하십시오.")
            .arg(fileNo);
    return RetryingSave([&] {
        if (!dbTax.beginTransaction()) return fail(why, headline + u' ' + faultOf(dbTax));
        if (!dbTax.tryExecute(QStringLiteral("DELETE FROM EtaxHandOver WHERE FileNo = ?"), {fileNo}) ||
            !dbTax.tryExecute(QStringLiteral("DELETE FROM EtaxFile WHERE FileNo = ?"), {fileNo}))
            return abandon(dbTax, why, headline);
        if (!dbTax.commit()) return fail(why, headline + u' ' + faultOf(dbTax));
        return true;
    });
}

bool RetireHandOverPath(Database& dbTax, const QString& path, const QString& note, QString* why,
                        int keepFileNo) {
    const QString headline = QStringLiteral("전자세금계산서 전송 기록을 고치지 못했습니다.");
    return RetryingSave([&] {
        if (!dbTax.beginTransaction()) return fail(why, headline + u' ' + faultOf(dbTax));
        if (!dbTax.tryExecute(
                QStringLiteral("UPDATE EtaxFile SET WithdrawnDate = ?, Note = ? WHERE FilePath = ? "
                               "AND FileNo <> ? AND COALESCE(UploadedDate, '') = '' AND "
                               "COALESCE(WithdrawnDate, '') = ''"),
                {today().toString(kDay), note, cleanPath(path), keepFileNo}))
            return abandon(dbTax, why, headline);
        if (!dbTax.commit()) return fail(why, headline + u' ' + faultOf(dbTax));
        return true;
    });
}

std::optional<QList<HandOverFile>> ReadHandOverFiles(Database& dbTax) {
    Recordset rs;
    if (!OpenSnapshot(dbTax, rs,
                      QStringLiteral("SELECT %1 FROM EtaxFile ORDER BY FileNo DESC").arg(kFileColumns)))
        return std::nullopt;
    QList<HandOverFile> files;
    for (; !rs.EOF_(); rs.MoveNext())
        files << fileFromRow(rs);
    CloseRs(rs);
    return files;
}

std::optional<HandOverFile> ReadHandOverFile(Database& dbTax, int fileNo) {
    return readFileRow(dbTax, fileNo);
}

std::optional<QList<HandOverEntry>> ReadHandOverEntries(Database& dbTax, int fileNo) {
    Recordset rs;
    if (!OpenSnapshot(
            dbTax, rs,
            QStringLiteral("SELECT TaxCode, DealDate, CCode, CName, TradeKum, VatKum FROM EtaxHandOver "
                           "WHERE FileNo = ? ORDER BY TaxCode NULLS FIRST"),
            {fileNo}))
        return std::nullopt;
    QList<HandOverEntry> entries;
    for (; !rs.EOF_(); rs.MoveNext())
        entries << HandOverEntry{rs.text(QStringLiteral("TaxCode")),    rs.text(QStringLiteral("DealDate")),
                                 rs.text(QStringLiteral("CCode")),      rs.text(QStringLiteral("CName")),
                                 rs.number(QStringLiteral("TradeKum")), rs.number(QStringLiteral("VatKum"))};
    CloseRs(rs);
    return entries;
}

QString uploadRefusal(const HandOverFile& file, const QString& day, const QDate& today) {
    if (file.withdrawn()) return QStringLiteral("철회한 파일은 업로드로 표시할 수 없습니다.");
    if (file.uploaded())
        return QStringLiteral("이미 %1에 업로드한 파일로 표시되어 있습니다.").arg(file.uploadedDate);
    const QDate date = QDate::fromString(day, kDay);
    if (day.size() != 10 || !date.isValid() || !IsDate(day))
        return QStringLiteral("업로드한 날짜가 올바르지 않습니다: %1 (YYYY-MM-DD)").arg(day);
    if (date > today) return QStringLiteral("업로드한 날짜 %1이(가) 오늘보다 뒤입니다.").arg(day);
    if (day < file.writtenAt.left(10))
        return QStringLiteral("업로드한 날짜 %1이(가) 파일을 작성한 날(%2)보다 앞입니다.")
            .arg(day, file.writtenAt.left(10));
    return QString();
}

bool MarkFileUploaded(Database& dbTax, int fileNo, const QString& day, QString* why) {
    const QString headline = QStringLiteral("업로드 표시를 저장하지 못했습니다.");
    return RetryingSave([&] {
        if (!dbTax.beginTransaction()) return fail(why, headline + u' ' + faultOf(dbTax));
        const auto file = readFileRow(dbTax, fileNo);
        if (!file) {
            dbTax.rollback();
            return fail(why, QStringLiteral("전송 기록에 %1번 파일이 없습니다.").arg(fileNo));
        }
        if (const QString refused = uploadRefusal(*file, day, today()); !refused.isEmpty()) {
            dbTax.rollback();
            return fail(why, refused);
        }
        if (!dbTax.tryExecute(QStringLiteral("UPDATE EtaxFile SET UploadedDate = ? WHERE FileNo = ?"),
                              {day, fileNo}))
            return abandon(dbTax, why, headline);
        if (!dbTax.commit()) return fail(why, headline + u' ' + faultOf(dbTax));
        return true;
    });
}

bool WithdrawFile(Database& dbTax, int fileNo, const QString& note, QString* why) {
    const QString headline = QStringLiteral("철회를 저장하지 못했습니다.");
    return RetryingSave([&] {
        if (!dbTax.beginTransaction()) return fail(why, headline + u' ' + faultOf(dbTax));
        const auto file = readFileRow(dbTax, fileNo);
        if (!file || file->withdrawn()) {
            dbTax.rollback();
            return fail(why, file ? QStringLiteral("이미 철회한 파일입니다.")
                                  : QStringLiteral("전송 기록에 %1번 파일이 없습니다.").arg(fileNo));
        }
        if (!dbTax.tryExecute(
                QStringLiteral("UPDATE EtaxFile SET WithdrawnDate = ?, Note = ? WHERE FileNo = ?"),
                {today().toString(kDay), note, fileNo}))
            return abandon(dbTax, why, headline);
        if (!dbTax.commit()) return fail(why, headline + u' ' + faultOf(dbTax));
        return true;
    });
}

} // namespace nb
