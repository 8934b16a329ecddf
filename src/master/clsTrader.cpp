#include "master/clsTrader.h"

#include "common/Messages.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "storage/Stores.h"

namespace nb {
namespace {

const QString kNotPayErrorText = QStringLiteral("현재미수금 데이터를 갱신하는 중 오류가 발생했습니다.");
const QString kNotPaySaveHeadline = QStringLiteral("현재미수금을 저장하지 못했습니다.");

QString saveFailureText(int number, const QString& description) {
    return QStringLiteral("자료를 저장하는 중 오류가 발생했습니다.\r\n\r\n오류번호 : ") +
           QString::number(number) + QStringLiteral("\r\n오류내용 : ") + description +
           QStringLiteral("\r\n\r\n입력하신 내용을 다시 한번 확인하여 주십시요.");
}

QString codeText(qint64 value) {
    return QStringLiteral("%1").arg(value, 6, 10, QLatin1Char('0'));
}

// One statement on a trader's row as a whole save: run again quietly while another seat's save
// on the server breaks it off, its failure box (when showBox) shown for the last try only. The
// rows it changed; 0 when it failed.
int runAsSave(Database& db, const QString& sql, const QVariantList& values, bool showBox = true) {
    int changed = 0;
    RetryingSave([&] {
        const bool ran = showBox ? db.Execute(sql, values) : db.tryExecute(sql, values);
        changed = ran ? db.RecordsAffected() : 0;
        return ran;
    });
    return changed;
}

} // namespace

Database& clsTrader::db() const {
    return stores().dbBasic;
}

void clsTrader::SaveTrader() {
    Recordset rs;
    // The dynaset only names the table the new row goes to; no rows need reading.
    if (!OpenDynaset(db(), rs, QStringLiteral("SELECT * FROM Trader ORDER BY Code LIMIT 0"))) return;
    const QVariantList values{sCode, sComp,     sName,      sSerial,    sPhone,         sFax,      sHP,
                              sDDD,  sCharge,   int(byVAT), sAddr1,     sAddr2,         sPost,     sStatus,
                              sItem, sOpenDate, sCloseDate, sEnterDate, int(bySection), dTotNoPay, sBigo,
                              sEmail};
    const QString sql =
        QStringLiteral("INSERT INTO Trader (Code, C_Name, U_Name, Serial, Phone, Fax, HPhone, DDD, Charge, "
                       "VAT, Addr1, Addr2, "
                       "Post, Status, Item, OpenDate, CloseDate, EnterDate, Section, TotNoPay, Bigo, Email) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    rs.close();
    if (runAsSave(db(), sql, values, false) == 0) {
        MsgBox(saveFailureText(db().lastErrorNumber(), db().lastErrorDescription()));
        return;
    }
    ShowNotice(QStringLiteral("자료가 저장되었습니다."), 700);
}

void clsTrader::UpdateTrader() {
    const int changed = runAsSave(
        db(),
        QStringLiteral(
            "UPDATE Trader SET C_Name = ?, U_Name = ?, Serial = ?, Phone = ?, Fax = ?, "
            "HPhone = ?, Addr1 = ?, Post = ?, Status = ?, Item = ?, Bigo = ?, Email = ? WHERE Code = ?"),
        {sComp, sName, sSerial, sPhone, sFax, sHP, sAddr1, sPost, sStatus, sItem, sBigo, sEmail, sCode});
    // The notice comes first and the count is read only after it, as the operator has
    // always seen it: a code that is gone shows both.
    ShowNotice(QStringLiteral("자료가 갱신되었습니다."), 700);
    if (changed == 0) MsgBox(QStringLiteral("데이터를 갱신하는 중 오류가 발생했습니다."));
}

void clsTrader::Update_Charge() {
    if (runAsSave(db(), QStringLiteral("UPDATE Trader SET Charge = ? WHERE Code = ?;"), {sCharge, sCode}) ==
        0)
        MsgBox(QStringLiteral("거래처 담당자를 변경하는 중 오류가 발생했습니다."));
}

void clsTrader::TraderList(Recordset& rs, bool& found) {
    const bool opened = OpenSnapshot(
        db(), rs, QStringLiteral("SELECT * FROM Trader WHERE bDeled = ? ORDER BY C_Name NULLS FIRST;"),
        {storedBool(false)});
    found = opened && rs.RecordCount() > 0;
}

void clsTrader::FindTrader(Recordset& rs, const QString& code, const QString& comp, const QString& name,
                           const QString& phone, const QString& addr, bool& found) {
    bool opened = false;
    if (!code.isEmpty()) {
        opened = OpenSnapshot(db(), rs, QStringLiteral("SELECT * FROM Trader WHERE Code = ? ORDER BY Code;"),
                              {code});
    } else {
        const QString like = QStringLiteral(" LIKE ?") + QStringLiteral(" ESCAPE '\\'");
        opened = OpenSnapshot(db(), rs,
                              QStringLiteral("SELECT * FROM Trader WHERE C_Name") + like +
                                  QStringLiteral(" OR U_Name") + like + QStringLiteral(" OR Phone") + like +
                                  QStringLiteral(" OR Addr2") + like + QStringLiteral(" ORDERY BY Code;"),
                              {u'%' + likeLiteral(comp) + u'%', u'%' + likeLiteral(name) + u'%',
                               u'%' + likeLiteral(phone) + u'%', u'%' + likeLiteral(addr) + u'%'});
    }
    found = opened && rs.RecordCount() > 0;
}

void clsTrader::DeleteTrader(const QString& code) {
    if (runAsSave(db(), QStringLiteral("DELETE FROM Trader WHERE Code = ?"), {code}) == 0)
        MsgBox(QStringLiteral("자료를 삭제하는 중 오류가 발생했습니다."));
}

void clsTrader::TraderTax(quint8& kind) {
    Recordset rs;
    if (!OpenSnapshot(db(), rs, QStringLiteral("SELECT VAT FROM Trader WHERE Code = ?;"), {sCode})) return;
    kind = rs.EOF_() ? 3 : quint8(rs.number(QStringLiteral("VAT")));
    CloseRs(rs);
}

bool clsTrader::NextCode(QString& code) {
    Recordset rs;
    if (!OpenSnapshot(db(), rs, QStringLiteral("SELECT Max(Code) AS MCode FROM Trader;"))) return false;
    if (rs.RecordCount() == 0 || rs.isNull(QStringLiteral("MCode"))) {
        code = QStringLiteral("000001");
        return true;
    }
    bool ok = false;
    const qint64 highest = rs.text(QStringLiteral("MCode")).trimmed().toLongLong(&ok);
    if (!ok) {
        ShowFailureReport(13, QStringLiteral("형식이 일치하지 않습니다."), QStringLiteral("NextCode"),
                          QStringLiteral("clsTrader"));
        return false;
    }
    code = codeText(highest + 1);
    return true;
}

void clsTrader::CurTotNoPay(const QString& code, double& amount) {
    Recordset rs;
    amount = 0;
    if (!OpenSnapshot(db(), rs, QStringLiteral("SELECT TotNoPay FROM Trader WHERE Code = ?"), {code})) return;
    if (!rs.EOF_()) amount = rs.number(QStringLiteral("TotNoPay"));
}

// The balance is read and written in one transaction begun as a write, so a seat moving it at the
// same moment waits instead of losing the other's move; a try the server broke off reads it anew.
void clsTrader::UpdateNoPay(double oldAmount, double newAmount) {
    enum class Moved { Yes, NoRow, Failed } moved = Moved::Failed; // Failed: its box was shown
    RetryingSave([&] {
        moved = Moved::Failed;
        if (!db().beginTransaction()) {
            ReportSaveFailure(db(), kNotPaySaveHeadline);
            return false;
        }
        Recordset rs;
        if (!OpenSnapshot(db(), rs, QStringLiteral("SELECT TotNoPay FROM Trader WHERE Code = ?"), {sCode})) {
            db().rollback();
            return false;
        }
        const double current = rs.EOF_() ? 0 : rs.number(QStringLiteral("TotNoPay"));
        CloseRs(rs);
        if (!db().Execute(QStringLiteral("UPDATE Trader SET TotNoPay = ? WHERE Code = ?"),
                          {current - oldAmount + newAmount, sCode})) {
            db().rollback();
            return false;
        }
        const bool changed = db().RecordsAffected() > 0;
        if (!db().commit()) {
            ReportSaveFailure(db(), kNotPaySaveHeadline);
            return false;
        }
        moved = changed ? Moved::Yes : Moved::NoRow;
        return true;
    });
    if (moved == Moved::NoRow) MsgBox(kNotPayErrorText);
}

void clsTrader::CheckField(quint8 section, const QString& comp, bool& found) {
    Recordset rs;
    found = false;
    if (!OpenSnapshot(db(), rs, QStringLiteral("SELECT * FROM Trader WHERE C_Name = ? AND Section = ?;"),
                      {comp, int(section)}))
        return;
    found = rs.RecordCount() > 0;
}

void clsTrader::initNonKum(double& amount) {
    Recordset rs;
    amount = 0;
    if (!OpenSnapshot(db(), rs, QStringLiteral("SELECT TotNoPay FROM Trader WHERE Code = ?;"), {sCode}))
        return;
    if (!rs.EOF_()) amount = rs.number(QStringLiteral("TotNoPay"));
}

void clsTrader::CheckHPField() {
    if (db().hasColumn(QStringLiteral("Trader"), QStringLiteral("HPhone"))) return;
    db().Execute(QStringLiteral("ALTER TABLE Trader ADD COLUMN HPhone ") +
                 declaredType(dbText, 14, db().onServer()));
}

void clsTrader::charge_trade(const QString& charge, const QString& code) {
    const QString table = bySection == 1 ? QStringLiteral("sale") : QStringLiteral("purchase");
    QDate month = today();
    for (;;) {
        // The monthly files lie beside the stores, named without a separator before "db".
        const QString path = app().DbPath + QStringLiteral("db") + month.toString(QStringLiteral("yyyyMM")) +
                             QStringLiteral(".mdb");
        Database monthDb;
        if (!OpenDb(monthDb, path, 0)) return;
        monthDb.Execute(QStringLiteral("update ") + table + QStringLiteral(" set charge = ? where CCode = ?"),
                        {charge, code});
        month = month.addMonths(-1);
    }
}

QString VatKindText(int kind) {
    switch (kind) {
    case 0:
        return QStringLiteral("계산안함");
    case 1:
        return QStringLiteral("부가세포함");
    case 2:
        return QStringLiteral("부가세별도");
    default:
        return QString();
    }
}

QString GetTraderName(const QString& code) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("SELECT * FROM Trader WHERE Code = ?"), {code}))
        return QString();
    return rs.EOF_() ? QString() : rs.text(QStringLiteral("C_Name"));
}

} // namespace nb
