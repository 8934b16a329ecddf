#pragma once
// Registers the statement screen with the main window's menu.

namespace nb {

// "mnu_거래명세표": FrmDealList, a child screen that stays open; the print test draws the
// statement's form.
void registerStatementScreens();

} // namespace nb
