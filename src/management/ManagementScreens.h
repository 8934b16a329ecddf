#pragma once
// Registers the invoice management screen with the main window's menu.

namespace nb {

// "mnu_InvoiceTotal": FrmTaxManage, a child screen that stays open.
void registerManagementScreens();

} // namespace nb
