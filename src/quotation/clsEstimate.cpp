#include "quotation/clsEstimate.h"

#include "common/Messages.h"
#include "common/text/NumberFormat.h"
#include "common/text/StoredNumber.h"
#include "storage/Database.h"
#include "storage/Stores.h"

namespace nb {

namespace {

const QString kDeleteTitle = QStringLiteral("견적내역 삭제");
const QString kUpdateFailure = QStringLiteral("견적내역을 갱신하는 중 오류가 발생했습니다.");

// Running numbers from here on are not taken as numbers (nothing types them), so that the
// next one always fits.
constexpr int kRunningNumberEnd = 1000000000;

QString headInsertFailure(int number, const QString& description) {
    return QStringLiteral("자료를 저장하는 중 오류가 발생했습니다.\n오류번호 : %1\n오류내용 : %2\n"
                          "입력하신 내용을 다시 한번 확인하여 주십시요.")
        .arg(number)
        .arg(description);
}

} // namespace

// Past 999 a month's number goes on with four digits (1000, 1001, ...) rather than back to
// 001: the quotations of that month already hold 001, and a number is never given twice.
QString nextEstimateCode(const QString& date, const QString& lastCode) {
    const QString yearMonth = date.left(4) + date.mid(5, 2);
    const int n = qMax(0, runningNumberOf(lastCode)) + 1;
    return yearMonth + FormatNumber(n, QStringLiteral("000"));
}

int runningNumberOf(const QString& code) {
    bool digits = false;
    const int n = code.mid(6).toInt(&digits);
    return digits && n >= 0 && n < kRunningNumberEnd ? n : -1;
}

clsEstimate::clsEstimate() : m_db(stores().dbEstimate) {}

clsEstimate::clsEstimate(Database& db) : m_db(db) {}

bool clsEstimate::write(const QString& sql, const QVariantList& values, const QString& failure,
                        const QString& title, bool warning) {
    const auto once = [&] {
        if (m_db.tryExecute(sql, values) && m_db.RecordsAffected() > 0) return true;
        if (quietRetryWanted()) return false;
        if (warning)
            ShowWarning(failure, title);
        else
            MsgBox(failure, MbOk, title);
        return false;
    };
    // Inside a transaction it runs once, with the save it belongs to; on its own it is a save
    // of one statement.
    return m_db.inTransaction() ? once() : RetryingSave(once);
}

// A failed check counts as free: the insert that follows fails the same way and shows the
// save's one box, with its number and description.
bool clsEstimate::codeTaken(const QString& sql, const QVariantList& keys) {
    bool taken = false;
    return m_db.tryHasRow(sql, keys, taken) && taken;
}

void clsEstimate::SaveInitEstimate() {
    if (!checkStoredNumber(dETotKum, NumberColumn::Amount, QStringLiteral("SaveInitEstimate"),
                           QStringLiteral("clsEstimate")))
        return;
    // Every try starts from the number shown; only a committed try's number stays in sCode.
    const QString shown = sCode;
    const bool saved = RetryingSave([&] {
        sCode = shown;
        return saveHeadOnce();
    });
    if (!saved) sCode = shown;
}

bool clsEstimate::saveHeadOnce() {
    static const QString sql = QStringLiteral(
        "INSERT INTO EstiBase (EstiCode, CCode, CName, EstiDate, DeriveDate, ClassName, EstiKum, "
        "EstiHanKum, Vat, Refer, Validate, Section) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    // The number shown was read before; inside the save, begun as a write, it is taken anew
    // when another running copy stored it meanwhile (or lines of it remain).
    if (!m_db.beginTransaction()) {
        ReportSaveFailure(m_db, QStringLiteral("견적서를 저장하지 못했습니다."));
        return false;
    }
    if (codeTaken(QStringLiteral("SELECT 1 FROM EstiBase WHERE EstiCode = ? UNION ALL "
                                 "SELECT 1 FROM Estimate WHERE Code = ? LIMIT 1"),
                  {sCode, sCode}))
        NextCode(sCode);
    const QVariantList values{sCode,    sCCode,      sCName,           sEDate, sDeriveDate, sClass,
                              dETotKum, sETotHanKum, storedBool(bVAT), sRefer, sValidate,   sSection};
    if (!sCode.isEmpty() && m_db.tryExecute(sql, values) && m_db.RecordsAffected() > 0) {
        if (m_db.commit()) return true;
        ReportSaveFailure(m_db, QStringLiteral("견적서를 저장하지 못했습니다."));
        return false;
    }
    const int number = m_db.lastErrorNumber() ? m_db.lastErrorNumber() : int(ErrNotOpened);
    const QString description = m_db.lastErrorDescription();
    m_db.rollback();
    if (!quietRetryWanted()) MsgBox(headInsertFailure(number, description), MbOk | MbExclamation);
    return false;
}

bool clsEstimate::lineFits() const {
    return checkStoredNumber(siEAmount, NumberColumn::Single, QStringLiteral("SaveEstimate"),
                             QStringLiteral("clsEstimate")) &&
           checkStoredNumber(siEUnitCost, NumberColumn::Single, QStringLiteral("SaveEstimate"),
                             QStringLiteral("clsEstimate"));
}

void clsEstimate::SaveEstimate() {
    if (!lineFits()) return;
    // Every try starts from the line key shown; only a committed try's key stays in lSeq.
    const qint32 shown = lSeq;
    const bool saved = RetryingSave([&] {
        lSeq = shown;
        return saveLineOnce();
    });
    if (!saved) lSeq = shown;
}

bool clsEstimate::saveLineOnce() {
    // The line key is checked inside the save: another running copy may have taken it.
    if (!m_db.beginTransaction()) {
        ReportSaveFailure(m_db, QStringLiteral("견적내역을 저장하지 못했습니다."));
        return false;
    }
    if (codeTaken(QStringLiteral("SELECT 1 FROM Estimate WHERE Seq = ?"), {lSeq})) NextSeq(lSeq);
    if (!write(QStringLiteral(
                   "INSERT INTO Estimate (Seq, Code, PCode, PName, PNorm, EAmount, EUnitPrice, EstiKum, "
                   "EUnit) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
               {lSeq, sCode, sPCode, sPName, sPNorm, double(siEAmount), double(siEUnitCost), lEstiKum, sUnit},
               QStringLiteral("견적내역을 저장하는 중 오류가 발생했습니다."))) {
        m_db.rollback();
        return false;
    }
    if (m_db.commit()) return true;
    ReportSaveFailure(m_db, QStringLiteral("견적내역을 저장하지 못했습니다."));
    return false;
}

void clsEstimate::UpdateEstiBase() {
    write(QStringLiteral("UPDATE EstiBase SET CCode = ?, CName = ?, EstiDate = ?, DeriveDate = ?, "
                         "ClassName = ?, EstiKum = ?, EstiHanKum = ?, Vat = ?, Refer = ?, Validate = ?, "
                         "Section = ? WHERE EstiCode = ?"),
          {sCCode, sCName, sEDate, sDeriveDate, sClass, dETotKum, sETotHanKum, storedBool(bVAT), sRefer,
           sValidate, sSection, sCode},
          kUpdateFailure);
}

void clsEstimate::UpdateEstimate() {
    if (!lineFits()) return;
    write(QStringLiteral("UPDATE Estimate SET EAmount = ?, EUnitPrice = ?, EstiKum = ? WHERE Seq = ?"),
          {double(siEAmount), double(siEUnitCost), lEstiKum, lSeq},
          QStringLiteral("견적서 자료를 갱신하는 중 오류가 발생했습니다."));
}

void clsEstimate::UpdateTotKum() {
    if (!checkStoredNumber(dETotKum, NumberColumn::Amount, QStringLiteral("UpdateTotKum"),
                           QStringLiteral("clsEstimate")))
        return;
    write(QStringLiteral("UPDATE EstiBase SET EstiKum = ?, EstiHanKum = ? WHERE EstiCode = ?"),
          {dETotKum, sETotHanKum, sCode}, QStringLiteral("견적금액을 갱신하는 중 오류가 발생했습니다."),
          QStringLiteral("견적내역 갱신"), true);
}

void clsEstimate::UpdateVat() {
    write(QStringLiteral("UPDATE EstiBase SET Vat = ? WHERE EstiCode = ?"), {storedBool(bVAT), sCode},
          kUpdateFailure, QStringLiteral("견적내역 갱신오류"));
}

void clsEstimate::UpdateUnit() {
    write(QStringLiteral("UPDATE Estimate SET EUnit = ? WHERE Seq = ?"), {sUnit, lSeq}, kUpdateFailure,
          QStringLiteral("견적내역 갱신 오류"));
}

void clsEstimate::UpdateDeriveDate() {
    write(QStringLiteral("UPDATE EstiBase SET DeriveDate = ? WHERE EstiCode = ?"), {sDeriveDate, sCode},
          QStringLiteral("견적서의 납품예정일을 변경하는 중 오류가 발생했습니다."));
}

void clsEstimate::Update_Trader_Name() {
    // A trader may have no quotation: no row changed is no failure, and errors pass unseen.
    m_db.tryExecute(QStringLiteral("UPDATE EstiBase SET CName = ? WHERE CCode = ?"), {sCName, sCCode});
}

void clsEstimate::DeleteEstimate() {
    // The head is looked for by the column name "Code", which the head table does not have; the
    // screen deletes with statements of its own and never calls this.
    RetryingSave([&] {
        if (!m_db.beginTransaction()) {
            ReportSaveFailure(m_db, QStringLiteral("견적서 자료를 삭제하지 못했습니다."));
            return false;
        }
        if (!write(QStringLiteral("DELETE FROM EstiBase WHERE Code = ?"), {sCode},
                   QStringLiteral("견적서 자료를 삭제하는 중 오류가 발생했습니다."), kDeleteTitle, true) ||
            !write(QStringLiteral("DELETE FROM Estimate WHERE Code = ?"), {sCode},
                   QStringLiteral("견적내역을 삭제하는 중 오류가 발생했습니다."), kDeleteTitle, true)) {
            m_db.rollback();
            return false;
        }
        if (m_db.commit()) return true;
        ReportSaveFailure(m_db, QStringLiteral("견적서 자료를 삭제하지 못했습니다."));
        return false;
    });
}

void clsEstimate::DeleteDetail() {
    write(QStringLiteral("DELETE FROM Estimate WHERE Seq = ?"), {lSeq},
          QStringLiteral("견적서 자료를 삭제하는 중 오류가 발생했습니다."));
}

void clsEstimate::NextSeq(qint32& seq) {
    Recordset rs;
    if (!OpenSnapshot(m_db, rs, QStringLiteral("SELECT Max(Seq) AS MSeq FROM Estimate"))) {
        seq = 0;
        return;
    }
    seq = (!rs.EOF_() && !rs.isNull(QStringLiteral("MSeq"))) ? qint32(rs.number(QStringLiteral("MSeq"))) + 1
                                                             : 1;
    CloseRs(rs);
}

namespace {

// The month's codes of one table, the longest first and then the highest text ("2024051000"
// comes after "202405999" though it sorts below it as text): the order of the table's index of
// running codes (storage/StoreLayout.h), walked from the month's end.
QString monthCodesOf(const QString& table, const QString& column, const QString& limit) {
    return QStringLiteral(
               "SELECT length(%2) AS n, %2 AS c FROM %1 WHERE substr(%2, 1, 6) = ? AND length(%2) > 6 "
               "ORDER BY length(%2) DESC, %2 DESC%3")
        .arg(table, column, limit);
}

// The heads' and the lines' codes of the month merged in that order: the lines count too, as
// lines left without their head never join a new quotation.
QString monthCodes(const QString& limit) {
    return QStringLiteral(
               "SELECT n, c FROM (%1) AS heads UNION ALL SELECT n, c FROM (%2) AS lines ORDER BY n "
               "DESC, c DESC%3")
        .arg(monthCodesOf(QStringLiteral("EstiBase"), QStringLiteral("EstiCode"), limit),
             monthCodesOf(QStringLiteral("Estimate"), QStringLiteral("Code"), limit), limit);
}

// The first few codes are read; a month whose first few are all codes typed in that are not
// running numbers is read whole. No engine is asked to tell a running number from the rest: told
// that most codes are not, it would rather sort the month than walk its end.
constexpr int kCodesReadFirst = 8;

// The month's last running code (empty when it has none) into `last`; false when the read failed.
bool lastRunningCode(Database& db, const QString& month, bool whole, QString& last) {
    Recordset rs;
    const QString& sql = whole ? monthCodes(QString()) : lastRunningCodeStatement();
    if (!OpenSnapshot(db, rs, sql, {month, month})) return false;
    int rows = 0;
    last.clear();
    for (; !rs.EOF_() && last.isEmpty(); rs.MoveNext(), ++rows)
        if (runningNumberOf(rs.text(QStringLiteral("c"))) >= 0) last = rs.text(QStringLiteral("c"));
    CloseRs(rs);
    return !whole && last.isEmpty() && rows >= kCodesReadFirst ? lastRunningCode(db, month, true, last)
                                                               : true;
}

} // namespace

const QString& lastRunningCodeStatement() {
    static const QString sql = monthCodes(QStringLiteral(" LIMIT %1").arg(kCodesReadFirst));
    return sql;
}

void clsEstimate::NextCode(QString& code) {
    const QString month = sEDate.left(4) + sEDate.mid(5, 2);
    QString last;
    if (!lastRunningCode(m_db, month, false, last)) {
        code.clear();
        return;
    }
    code = nextEstimateCode(sEDate, last);
}

void clsEstimate::FindEstiHead(Recordset& rs, bool& found) {
    found = OpenSnapshot(m_db, rs, QStringLiteral("SELECT * FROM EstiBase WHERE EstiCode = ?"), {sCode}) &&
            rs.RecordCount() > 0;
}

} // namespace nb
