#include "links/LinkScreens.h"

#include "core/ScreenRegistry.h"
#include "links/FrmSMS.h"

namespace nb {

void registerLinkScreens() {
    registerChildScreen(QStringLiteral("mnu_SMS"), [] { return new FrmSMS(); });
}

} // namespace nb
