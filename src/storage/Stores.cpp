#include "storage/Stores.h"

#include "common/Messages.h"
#include "core/AppState.h"
#include "core/Lifecycle.h"
#include "core/Settings.h"

namespace nb {
namespace {

const QString kDefaultSupplierKey = QStringLiteral("기본사업자");

void forgetMissingDefaultSupplier() {
    ShowInfo(QStringLiteral("기본으로 설정된 유저를 찾을 수 없습니다.\r\n유저등록에서 재설정 하세요."));
    app().DefaultSerial.clear();
    SaveEnv(kDefaultSupplierKey, QString());
}

bool openAllUsers() {
    return OpenSnapshot(stores().dbBasic, rsUser(), QStringLiteral("SELECT * FROM User"));
}

} // namespace

Stores& stores() {
    static Stores s;
    static const bool hooked = (registerResetHook(closeStores), true);
    Q_UNUSED(hooked);
    return s;
}

void closeStores() {
    Stores& s = stores();
    rsUser().close();
    s.dbBasic.close();
    s.dbBill.close();
    s.dbTax.close();
    s.dbEstimate.close();
}

bool OpenDatabases() {
    Stores& s = stores();
    if (!OpenDb(s.dbBasic, app().DbBasicFile, 0)) return false;
    if (!OpenDb(s.dbTax, app().DbTaxFile, 0)) return false;
    if (!OpenDb(s.dbBill, app().DbBillFile, 0)) return false;
    return true;
}

Recordset& rsUser() {
    static Recordset rs;
    return rs;
}

bool LoadDefaultUser() {
    AppState& a = app();
    const bool byDefault = !a.DefaultSerial.isEmpty();
    const bool opened =
        byDefault ? OpenSnapshot(stores().dbBasic, rsUser(),
                                 QStringLiteral("SELECT * FROM User WHERE Serial = ?"), {a.DefaultSerial})
                  : openAllUsers();
    if (!opened) return false;
    if (byDefault && rsUser().RecordCount() == 0) {
        forgetMissingDefaultSupplier();
        if (!openAllUsers()) return false;
    }
    if (!rsUser().EOF_()) {
        a.DefaultCompany = rsUser().isNull(QStringLiteral("Company"))
                               ? kPlaceholderCompany
                               : rsUser().text(QStringLiteral("Company"));
        return true;
    }
    a.DefaultCompany = kPlaceholderCompany;
    if (!a.DefaultSerial.isEmpty()) forgetMissingDefaultSupplier();
    return false;
}

} // namespace nb
