#include "statement/StatementScreens.h"

#include "core/ScreenRegistry.h"
#include "printing/frmPrintTest.h"
#include "statement/FrmDealList.h"
#include "statement/StatementFrame.h"

namespace nb {

void registerStatementScreens() {
    registerChildScreen(QStringLiteral("mnu_거래명세표"), [] { return new FrmDealList(); });
    setPrintTestDrawer(Print_Form_DealList_A4Half); // the print test shows the statement's form
}

} // namespace nb
