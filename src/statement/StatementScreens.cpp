#include "statement/StatementScreens.h"

#include "core/ScreenRegistry.h"
#include "statement/FrmDealList.h"

namespace nb {

void registerStatementScreens() {
    registerChildScreen(QStringLiteral("mnu_거래명세표"), [] { return new FrmDealList(); });
}

} // namespace nb
