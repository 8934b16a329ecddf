#pragma once
// The invoice library's entries in the main window's menus.

namespace nb {

// "mnu_InvoiceForm": FrmTax as a child screen.
void registerInvoiceScreens();

} // namespace nb
