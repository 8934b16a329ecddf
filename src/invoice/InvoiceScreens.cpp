#include "invoice/InvoiceScreens.h"

#include "core/ScreenRegistry.h"
#include "invoice/FrmTax.h"

namespace nb {

void registerInvoiceScreens() {
    registerChildScreen(QStringLiteral("mnu_InvoiceForm"), [] { return new FrmTax(); });
}

} // namespace nb
