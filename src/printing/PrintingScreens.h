#pragma once
// Registers the print set-up screens with the main window's menu.

namespace nb {

// "mnu_printer": FrmSetPrinter, modal, for the invoice (document 0).
void registerPrintingScreens();

} // namespace nb
