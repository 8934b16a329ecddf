#include "master/TraderRecords.h"

#include "common/Messages.h"
#include "common/text/NumBox.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "core/AppState.h"
#include "master/SearchRules.h"
#include "storage/Stores.h"

namespace nb {
namespace {

const QString kSelectTraders = QStringLiteral("SELECT C_Name, U_Name, Phone, Addr1, Code FROM ");
const QString kOrderTraders = QStringLiteral("ORDER BY C_Name NULLS FIRST, Trader.rowid;");

// The byte conversion of the VAT kind: a number rounded half to even, 0 to 255.
bool toByte(const QString& text, quint8& out) {
    bool ok = false;
    const double value = NumberFromText(text, &ok);
    if (!ok || text.trimmed().isEmpty() || text.trimmed() == QStringLiteral("-") ||
        text.trimmed() == QStringLiteral(".")) {
        ShowTypeMismatch();
        return false;
    }
    const double rounded = RoundHalfEven(value);
    if (rounded < 0 || rounded > 255) {
        MsgBox(QStringLiteral("실행 시간 오류 '6':\r\n\r\n오버플로"), MbExclamation, kAppTitle);
        return false;
    }
    out = quint8(rounded);
    return true;
}

} // namespace

SqlPart TraderListQuery(Database& db, const QString& name, int section) {
    if (name.isEmpty()) {
        SqlPart part{kSelectTraders + QStringLiteral("Trader "), {}};
        if (section < 2) {
            part.sql += QStringLiteral("WHERE Section = ?  ");
            part.values << section;
        }
        part.sql += kOrderTraders;
        return part;
    }
    const QString first = TraderSearchByPhone(name) ? QStringLiteral("Phone") : QStringLiteral("C_Name");
    const QStringList searched{first, QStringLiteral("Addr2")};
    const SqlPart source = SearchSource(db, TraderSearchIndex(), name, searched);
    SqlPart part{kSelectTraders + source.sql + u' ', source.values};
    if (section > 1) {
        part.sql += QStringLiteral("WHERE bDeled = ? AND ");
        part.values << storedBool(false);
    } else {
        part.sql += QStringLiteral("WHERE Section = ? AND ");
        part.values << section;
    }
    const SqlPart narrow = SearchCandidates(db, TraderSearchIndex(), name, searched);
    const QString like = LikeAnywhere(db.onServer());
    part.sql += narrow.sql + u'(' + first + like + QStringLiteral(" OR Addr2") + like + QStringLiteral(") ");
    part.values << narrow.values << LikeContains(name) << LikeContains(name);
    part.sql += kOrderTraders;
    return part;
}

QString LastAddressWord(const QString& address) {
    for (int i = int(address.size()) - 1; i >= 0; --i)
        if (address.at(i) == u' ') return address.mid(i + 1);
    return address;
}

bool FillTrader(const TraderForm& form, clsTrader& t) {
    const auto& f = form.fields;
    t.bySection = quint8(form.mode);
    t.sCode = form.code;
    t.sComp = f[0];
    t.sName = f[1];
    t.sPhone = f[2];
    t.sFax = f[3];
    t.sHP = f[15];
    if (!f[4].isEmpty() && !toByte(f[4], t.byVAT)) return false;
    t.sCharge = form.charge;
    t.sSerial = f[6];
    t.sStatus = f[7];
    t.sItem = f[8];
    t.sPost = f[9];
    t.sAddr1 = f[10];
    t.sAddr2 = LastAddressWord(f[10]);
    t.sBigo = f[11];
    t.dTotNoPay = NumBoxValue(f[12]);
    t.sOpenDate = f[13];
    t.sCloseDate = f[14];
    t.sEmail = f[kTraderEmailField].trimmed();
    return true;
}

namespace {

bool deleteTraderOnce(const QString& code) {
    Stores& s = stores();
    // The trader's own row is committed last: until then a failure leaves it on the list, so
    // the operator can delete again what is left.
    struct Step {
        Database* db;
        QStringList statements;
    };
    const Step steps[] = {
        {&s.dbBill,
         {QStringLiteral("DELETE FROM Detail WHERE BillNo IN (SELECT BillNo FROM Master WHERE CCode = ?)"),
          QStringLiteral("Delete from master where CCode = ?")}},
        {&s.dbTax, {QStringLiteral("Delete from NewAcount where CCode = ?")}},
        {&s.dbBasic, {QStringLiteral("delete from Trader where Code = ?")}}};
    int begun = 0;
    bool ok = true;
    for (const Step& step : steps) {
        ok = step.db->beginTransaction();
        if (!ok) {
            ReportSaveFailure(*step.db, QStringLiteral("거래처를 삭제하지 못했습니다."));
            break;
        }
        ++begun;
        for (const QString& sql : step.statements)
            ok = ok && step.db->Execute(sql, {code});
        if (!ok) break;
    }
    for (int i = 0; i < begun; ++i) {
        Database& db = *steps[i].db;
        if (!ok) {
            db.rollback();
        } else if (!db.commit()) {
            ReportSaveFailure(db, QStringLiteral("거래처를 삭제하지 못했습니다."));
            ok = false;
        }
    }
    return ok;
}

} // namespace

bool DeleteTraderWithBusiness(const QString& code) {
    // Deletes only: a try the server broke off is run again whole.
    return RetryingSave([&] { return deleteTraderOnce(code); });
}

} // namespace nb
