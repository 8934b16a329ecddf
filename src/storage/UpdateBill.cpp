#include "storage/UpdateBill.h"

#include "common/Messages.h"
#include "common/text/Rounding.h"
#include "core/AppFolder.h"
#include "core/Settings.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
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
const QString kDoneText = QStringLiteral("거래명세표 DB 업그레이드가 완료 되었습니다.");

QString newStoreMissingText() {
    return QStringLiteral("거래명세서 신버전 DB를 찾을 수 없습니다.\r\n"
                          "재설치를 하지 않은 경우 재설치를 하여 주시고,\r\n"
                          "재설치를 한 경우 [") +
           kSupportPhone + QStringLiteral("]로 문의 바랍니다.");
}

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
    // A seat on the server leaves an old statement file where it is: the move is made into the
    // store files of a seat that works on files, before its books go to the server.
    if (onServer()) return;
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
    if (!AttachOldStatements(newDb, oldPath) || !newDb.beginTransaction()) {
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
