#include "management/ManagementScreens.h"

#include "core/ScreenRegistry.h"
#include "management/FrmTaxManage.h"

namespace nb {

void registerManagementScreens() {
    registerChildScreen(QStringLiteral("mnu_InvoiceTotal"), [] { return new FrmTaxManage(); });
}

} // namespace nb
