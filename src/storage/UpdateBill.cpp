#include "storage/UpdateBill.h"

#include "common/Messages.h"
#include "common/text/Rounding.h"
#include "core/AppFolder.h"
#include "core/Settings.h"
#include "storage/Database.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

namespace nb {
namespace {

const QString kOldFile = QStringLiteral("dbdetail.db");
const QString kNewFile = QStringLiteral("dbBill.db");
const QString kDoneFile = QStringLiteral("dbDetail_bak.db");
const QString kSupportPhone = QStringLiteral("1500-0000");

const QString kStartText = QStringLiteral("거래명세표 DB가 업데이트 되었습니다.\r\n"
                                          "신버전으로 교체작업이 진행 될 것이며,\r\n"
                                          "등록된 자료의 양에 따라 다소 시간이 걸릴 수도 있습니다.");
const QString kStartTitle = QStringLiteral("거래명세표DB 업그레이드");
const QString kRowLost = QStringLiteral("DB교체 작업중 오류가 발생하여 옮기지 못한 자료가 발생했습니다.");
const QString kTotalLost =
    QStringLiteral("DB교체 작업중 오류가 발생하여 합계금액을 계산하지 못한 자료가 발생했습니다.");
const QString kDoneText = QStringLiteral("거래명세표 DB 업그레이드가 완료 되었습니다.");
const QString kVatTitle = QStringLiteral("부가세 계산방법 선택");
const QString kProgressCaption = QStringLiteral("거래명세표 자료 옮기는 중...");

QString newStoreMissingText() {
    return QStringLiteral("거래명세서 신버전 DB를 찾을 수 없습니다.\r\n"
                          "재설치를 하지 않은 경우 재설치를 하여 주시고,\r\n"
                          "재설치를 한 경우 [") +
           kSupportPhone + QStringLiteral("]로 문의 바랍니다.");
}

QString vatQuestionText() {
    return QStringLiteral("신버전에서는 저장시 부가세를 발행당시 금액 그대로 저장합니다.\r\n"
                          "하지만, 자료를 옮기는 도중 [면세]인지 [부가세 포함]인지를 알수 없는 경우가\r\n"
                          "발생하였습니다. 이경우 어떻게 처리하길 원하십니까?\r\n"
                          "부가세 포함으로 처리할까요?\r\n\r\n"
                          "[  예  ]를 선택할 경우 [부가세 포함]으로 처리\r\n"
                          "[아니오]를 선택할 경우 [면세]로 처리\r\n\r\n"
                          "※모든자료에 대해서 일괄적으로 처리되며, 부가세 별도인 경우는 제대로 처리됩니다.");
}

// A failed read of the old file shows the query helpers' box, as their snapshots do.
bool readOld(QSqlQuery& query, const QString& sql) {
    query.setForwardOnly(true);
    if (query.exec(sql)) return true;
    const QSqlError e = query.lastError();
    ReportQueryFailure(errorNumberFor(e.text(), e.nativeErrorCode().toInt()), e.text(), sql);
    return false;
}

int countOf(Database& db, const QString& table) {
    QSqlQuery q(db.connection());
    return q.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table) && q.next() ? q.value(0).toInt() : 0;
}

// A prepared statement run once per row; 0 rows affected (or a failure) answers false.
bool runRow(QSqlQuery& statement, const QVariantList& values) {
    for (int i = 0; i < values.size(); ++i)
        statement.bindValue(i, values.at(i));
    return statement.exec() && statement.numRowsAffected() > 0;
}

// The three passes over the two open files. False ends the run without renaming (the caller
// rolls back); row-level failures are reported and passed over.
class Conversion {
public:
    Conversion(Database& oldDb, Database& newDb) : m_old(oldDb), m_new(newDb) {}

    bool run() {
        Progress progress(kProgressCaption, countOf(m_old, QStringLiteral("DealTitle")) +
                                                countOf(m_old, QStringLiteral("DealList")));
        return moveHeads(progress) && moveLines(progress) && writeTotals();
    }

private:
    bool moveHeads(Progress& progress) {
        QSqlQuery heads(m_old.connection());
        if (!readOld(heads, QStringLiteral("SELECT DealCode, DealDate, TraderCode FROM DealTitle "
                                           "ORDER BY DealCode, rowid")))
            return false;
        QSqlQuery insert(m_new.connection());
        insert.prepare(
            QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                           "VALUES (?, ?, ?, 0, 0, 0)"));
        while (heads.next()) {
            if (!runRow(insert, {heads.value(0), heads.value(1), heads.value(2)})) ShowWarning(kRowLost);
            progress.step();
        }
        return true;
    }

    bool moveLines(Progress& progress) {
        QSqlQuery lines(m_old.connection());
        // Lines keep the order they were written in within their statement.
        if (!readOld(lines, QStringLiteral("SELECT DealCode, PName, PNorm, Quant, UnitCost, SaleKum, DC "
                                           "FROM DealList ORDER BY DealCode, rowid")))
            return false;
        QSqlQuery insert(m_new.connection());
        insert.prepare(QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, "
                                      "Amount, VAT) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        QString lastCode;
        int lineNo = 0;
        bool first = true;
        while (lines.next()) {
            const QString code = lines.value(0).toString();
            lineNo = (first || code != lastCode) ? 1 : lineNo + 1;
            lastCode = code;
            first = false;
            const OldLineSplit split = splitLine(lines);
            if (!runRow(insert, {lines.value(0), lineNo, lines.value(1), lines.value(2), lines.value(3),
                                 lines.value(4), lines.value(6), split.amount, split.vat}))
                ShowWarning(kRowLost);
            progress.step();
        }
        return true;
    }

    OldLineSplit splitLine(const QSqlQuery& line) {
        const double quant = line.value(3).toDouble();
        const double unitCost = line.value(4).toDouble();
        const double saleKum = line.value(5).toDouble();
        if (m_choice == VatChoice::NotAsked && oldLineIsUnclear(quant, unitCost, saleKum))
            m_choice =
                AskYesNo(vatQuestionText(), kVatTitle) == AnsYes ? VatChoice::Included : VatChoice::TaxFree;
        return splitOldLine(quant, unitCost, saleKum, m_choice);
    }

    bool writeTotals() {
        QSqlQuery sums(m_new.connection());
        sums.setForwardOnly(true);
        const QString sql =
            QStringLiteral("SELECT BillNo, SUM(Amount), SUM(VAT), COUNT(*) FROM Detail GROUP BY BillNo");
        if (!sums.exec(sql)) {
            ReportQueryFailure(
                errorNumberFor(sums.lastError().text(), sums.lastError().nativeErrorCode().toInt()),
                sums.lastError().text(), sql);
            return false;
        }
        QSqlQuery update(m_new.connection());
        update.prepare(
            QStringLiteral("UPDATE Master SET TotAmount = ?, TotVat = ?, NumBill = ? WHERE BillNo = ?"));
        while (sums.next())
            if (!runRow(update, {sums.value(1), sums.value(2), sums.value(3), sums.value(0)}))
                ShowWarning(kTotalLost);
        return true;
    }

    Database& m_old;
    Database& m_new;
    VatChoice m_choice = VatChoice::NotAsked;
};

} // namespace

double oldLinePlainAmount(double quant, double unitCost, double saleKum) {
    return quant == 0 || unitCost == 0 ? saleKum : quant * unitCost;
}

bool oldLineIsUnclear(double quant, double unitCost, double saleKum) {
    return !(saleKum > oldLinePlainAmount(quant, unitCost, saleKum));
}

OldLineSplit splitOldLine(double quant, double unitCost, double saleKum, VatChoice choice) {
    const double plain = oldLinePlainAmount(quant, unitCost, saleKum);
    if (!oldLineIsUnclear(quant, unitCost, saleKum)) return {plain, saleKum - plain, false};
    if (choice == VatChoice::Included) {
        const double amount = RoundAt(plain / 1.1, 0);
        return {amount, plain - amount, true};
    }
    return {plain, 0, true};
}

bool ConvertOldStatements(Database& oldDb, Database& newDb) {
    return Conversion(oldDb, newDb).run();
}

QString updateBillFolder() {
    const QString stored = GetEnv(QStringLiteral("db경로"));
    return stored.isEmpty() ? appFolderFile(QStringLiteral("Dbs")) : stored;
}

namespace {

// The old file as the store remembers it once its statements are in: its size and time. The
// mark is written in the conversion's own transaction, so a start that finds the old file still
// there after the commit (the program ended while the closing box stood) only renames it.
const QString kMarkTable = QStringLiteral("ConvertedDetail");

QVariantList oldFileMark(const QString& oldPath) {
    const QFileInfo info(oldPath);
    return {info.size(), info.lastModified().toUTC().toString(Qt::ISODateWithMs)};
}

bool writeMark(Database& newDb, const QString& oldPath) {
    return newDb.Execute(QStringLiteral(
               "CREATE TABLE IF NOT EXISTS ConvertedDetail (FileSize INTEGER, FileTime TEXT)")) &&
           newDb.Execute(QStringLiteral("INSERT INTO ConvertedDetail (FileSize, FileTime) VALUES (?, ?)"),
                         oldFileMark(oldPath));
}

bool alreadyConverted(const QString& newPath, const QString& oldPath) {
    Database newDb;
    if (!newDb.open(newPath) || !newDb.hasTable(kMarkTable)) return false;
    QSqlQuery q(newDb.connection());
    q.prepare(QStringLiteral("SELECT count(*) FROM ConvertedDetail WHERE FileSize = ? AND FileTime = ?"));
    for (const QVariant& v : oldFileMark(oldPath))
        q.addBindValue(v);
    return q.exec() && q.next() && q.value(0).toInt() > 0;
}

} // namespace

void UpdateBill() {
    const QString folder = updateBillFolder();
    const QString oldPath = folder + u'/' + kOldFile;
    if (!QFileInfo(oldPath).isFile()) return;
    if (alreadyConverted(folder + u'/' + kNewFile, oldPath)) {
        QFile::rename(oldPath, folder + u'/' + kDoneFile);
        return;
    }
    ShowInfo(kStartText, kStartTitle);
    const QString newPath = folder + u'/' + kNewFile;
    if (!QFileInfo(newPath).isFile()) {
        ShowWarning(newStoreMissingText());
        return;
    }
    Database oldDb;
    Database newDb;
    if (!OpenDb(oldDb, oldPath) || !OpenDb(newDb, newPath)) return;
    if (!newDb.beginTransaction()) {
        ShowFailureReport(newDb.lastErrorNumber(), newDb.lastErrorDescription(), QStringLiteral("UpdateBill"),
                          QStringLiteral("ModModule"));
        return;
    }
    if (!ConvertOldStatements(oldDb, newDb) || !writeMark(newDb, oldPath)) {
        newDb.rollback();
        return;
    }
    if (!newDb.commit()) {
        ShowFailureReport(newDb.lastErrorNumber(), newDb.lastErrorDescription(), QStringLiteral("UpdateBill"),
                          QStringLiteral("ModModule"));
        newDb.rollback();
        return;
    }
    oldDb.close();
    newDb.close();
    ShowInfo(kDoneText);
    QFile::rename(oldPath, folder + u'/' + kDoneFile);
}

} // namespace nb
