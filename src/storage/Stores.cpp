#include "storage/Stores.h"

#include "core/AppState.h"
#include "core/Lifecycle.h"

namespace nb {

Stores& stores() {
    static Stores s;
    static const bool hooked = (registerResetHook(closeStores), true);
    Q_UNUSED(hooked);
    return s;
}

void closeStores() {
    Stores& s = stores();
    s.dbBasic.close();
    s.dbBill.close();
    s.dbTax.close();
    s.dbEstimate.close();
    rsUser().close();
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

} // namespace nb
