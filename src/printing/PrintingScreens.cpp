#include "printing/PrintingScreens.h"

#include "core/ScreenRegistry.h"
#include "printing/FrmSetPrinter.h"

namespace nb {

void registerPrintingScreens() {
    registerMenuAction(QStringLiteral("mnu_printer"), [](QWidget* mainWindow) {
        FrmSetPrinter form(mainWindow);
        form.InitForm(0);
        form.exec();
    });
}

} // namespace nb
