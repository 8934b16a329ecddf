#include "links/LinkScreens.h"

#include "core/AppState.h"
#include "core/ScreenRegistry.h"
#include "links/ExternalLinks.h"
#include "links/FrmSMS.h"
#include "links/HelpForms.h"

namespace nb {

void registerLinkScreens() {
    registerChildScreen(QStringLiteral("mnu_SMS"), [] { return new FrmSMS(); });
    registerMenuAction(QStringLiteral("mnuSchedule"), [](QWidget*) { RunSchedule(app().DbPath); });
    registerMenuAction(QStringLiteral("mnuPaperOrder"), [](QWidget* main) {
        FrmPaperOrder form(main);
        form.exec();
    });
    registerMenuAction(QStringLiteral("mnuSignInfo"), [](QWidget* main) {
        FrmSignInfo form(main);
        form.exec();
    });
}

} // namespace nb
