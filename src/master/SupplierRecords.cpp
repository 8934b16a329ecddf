#include "master/SupplierRecords.h"

#include "common/Messages.h"
#include "common/text/EmailAddress.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "master/PostSearch.h"
#include "storage/Stores.h"

namespace nb {
namespace {

Database& basic() {
    return stores().dbBasic;
}

bool serialExists(const QString& serial) {
    Recordset rs;
    if (!OpenSnapshot(basic(), rs, QStringLiteral("SELECT * FROM User where Serial = ?"), {serial}))
        return false;
    return !rs.EOF_();
}

bool insertSupplier(const SupplierFields& fields) {
    Recordset rs;
    if (!OpenDynaset(basic(), rs, QStringLiteral("User"))) return false;
    rs.AddNew();
    for (int i = 0; i < kSupplierFieldCount; ++i)
        rs.setField(SupplierColumns()[size_t(i)], fields[size_t(i)]);
    return rs.Update();
}

// Steps that replace the row shown; false when the save has to stop.
bool replaceSupplierRow(SupplierFormState& state, const SupplierFields& fields) {
    if (state.HasUser && !state.IsNew) {
        basic().Execute(QStringLiteral("DELETE FROM User where Serial = ?"), {state.OldSerial});
        if (basic().RecordsAffected() == 0) {
            if (quietRetryWanted()) return false;
            MsgBox(QStringLiteral("사업자 데이터를 갱신하는 중 오류가 발생했습니다."));
            return false;
        }
    }
    state.IsNew = false;
    return insertSupplier(fields);
}

} // namespace

const std::array<QString, kSupplierFieldCount>& SupplierColumns() {
    static const std::array<QString, kSupplierFieldCount> columns{
        QStringLiteral("Company"), QStringLiteral("Delegate"), QStringLiteral("Serial"),
        QStringLiteral("Post"),    QStringLiteral("Addr"),     QStringLiteral("Phone"),
        QStringLiteral("Fax"),     QStringLiteral("Status"),   QStringLiteral("Item"),
        QStringLiteral("Email")};
    return columns;
}

bool ReadSupplier(const QString& serial, SupplierFields& fields) {
    fields = {};
    Recordset rs;
    if (!OpenSnapshot(basic(), rs, QStringLiteral("SELECT * FROM User WHERE Serial = ?"), {serial}))
        return false;
    if (rs.EOF_()) return false;
    for (int i = 0; i < kSupplierFieldCount; ++i)
        fields[size_t(i)] = rs.text(SupplierColumns()[size_t(i)]);
    return true;
}

SupplierSave SaveSupplier(SupplierFormState& state, const SupplierFields& fields, bool defaultChecked) {
    const QString serial = fields[kSerialField];
    if (serial.isEmpty()) {
        ShowInfo(QStringLiteral("사업자 번호는 필수입력사항 입니다."));
        return SupplierSave::SerialMissing;
    }
    if (const QString refused = emailRefusal(fields[kSupplierEmailField]); !refused.isEmpty()) {
        ShowWarning(refused, QStringLiteral("사업자 등록"));
        return SupplierSave::BadEmail;
    }
    if (state.IsNew && serialExists(serial)) {
        ShowInfo(
            QStringLiteral("이미 같은 사업자번호가 등록되어 있습니다.\r\n사업자번호는 중복될 수 없습니다."));
        return SupplierSave::Duplicate;
    }
    // Each try starts from the form as it was; a failed save leaves it so.
    const SupplierFormState before = state;
    const bool saved = RetryingSave([&] {
        state = before;
        if (!basic().beginTransaction()) {
            ReportSaveFailure(basic());
            return false;
        }
        if (!replaceSupplierRow(state, fields)) {
            basic().rollback();
            return false;
        }
        if (basic().commit()) return true;
        ReportSaveFailure(basic());
        return false;
    });
    if (!saved) {
        state = before;
        return SupplierSave::Failed;
    }
    state.OldSerial = serial;
    if (defaultChecked) SetDefaultSupplier(serial);
    ResetLegacySettings();
    ShowNotice(state.HasUser ? QStringLiteral("자료를 수정하였습니다.")
                             : QStringLiteral("자료를 저장하였습니다."),
               500, kNoticeColor);
    StampHandOver();
    return SupplierSave::Saved;
}

namespace {

// The one row of Environment as a new supplier leaves it, in one transaction.
bool resetLegacyRow() {
    if (!basic().beginTransaction()) {
        ReportSaveFailure(basic());
        return false;
    }
    bool ok = basic().Execute(QStringLiteral("DELETE FROM Environment;"));
    Recordset rs;
    if (ok && OpenDynaset(basic(), rs, QStringLiteral("Environment"))) {
        rs.AddNew();
        for (const char* name : {"StockProc", "Standard", "Special", "StockManage"})
            rs.setField(QLatin1String(name), 0);
        for (const char* name : {"Password", "sPost", "ePost"})
            rs.setField(QLatin1String(name), QString());
        ok = rs.Update();
    }
    if (!ok) {
        basic().rollback();
        return false;
    }
    if (basic().commit()) return true;
    ReportSaveFailure(basic());
    return false;
}

} // namespace

void ResetLegacySettings() {
    RetryingSave([] { return resetLegacyRow(); });
    postLimits() = {};
    // The password member behind "암호사용여부" has no writer: it is always 0.
    SaveEnv(QStringLiteral("암호번호"), QString());
    SaveEnv(QStringLiteral("암호사용여부"), QStringLiteral("0"));
    app().PasswordInUse = false;
    // The quantity places are lost in memory until the next start, while "chk소수점1" on disk
    // stays as it is.
    SaveEnv(QStringLiteral("chk소수점"), QString());
    app().DecimalQty = 0;
}

void StampHandOver() {
    const QString app2 = QStringLiteral("브란토2");
    if (GetSetting(app2, kEnvSection, QStringLiteral("StartYear")).isEmpty())
        SaveSetting(app2, kEnvSection, QStringLiteral("StartYear"),
                    today().toString(QStringLiteral("yyyy-MM")));
}

void SetDefaultSupplier(const QString& serial) {
    app().DefaultSerial = serial;
    SaveEnv(kDefaultSupplierKey, serial);
}

bool DeleteSupplier(const QString& serial, bool wasDefault) {
    basic().Execute(QStringLiteral("DELETE FROM User where Serial = ?"), {serial});
    if (basic().RecordsAffected() == 0) {
        MsgBox(QStringLiteral("사업자 삭제하는 중 오류가 발생했습니다."));
        return false;
    }
    if (wasDefault) SetDefaultSupplier(QString());
    return true;
}

QString NeighbourSupplier(const QString& serial, bool next) {
    Recordset rs;
    const QString sql = next ? QStringLiteral("SELECT MIN(Serial) FROM User WHERE Serial > ?")
                             : QStringLiteral("SELECT MAX(Serial) FROM User WHERE Serial < ?");
    if (!OpenSnapshot(basic(), rs, sql, {serial})) return QString();
    if (rs.EOF_() || rs.field(0).isNull()) {
        MsgBox(next ? QStringLiteral("자료의 마지막입니다.") : QStringLiteral("자료의 처음입니다."));
        return QString();
    }
    return rs.field(0).toString();
}

} // namespace nb
