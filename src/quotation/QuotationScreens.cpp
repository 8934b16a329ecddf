#include "quotation/QuotationScreens.h"

#include "core/ScreenRegistry.h"
#include "quotation/FrmEstimate.h"

namespace nb {

void registerQuotationScreens() {
    registerChildScreen(QStringLiteral("mnu_Estimate"), [] { return new FrmEstimate(); });
}

} // namespace nb
