#include "master/MasterScreens.h"

#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "master/FrmNewProduct.h"
#include "master/FrmNewTrader.h"
#include "master/FrmUser.h"
#include "master/PostImport.h"

namespace nb {

void registerMasterScreens() {
    registerMenuAction(QStringLiteral("mnu_user"), [](QWidget* mainWindow) {
        FrmUser form(mainWindow);
        form.exec();
    });
    registerMenuAction(QStringLiteral("mnu_거래처등록"), [](QWidget* mainWindow) {
        FrmNewTrader form(mainWindow);
        form.InitForm(0, QString(), today().toString(QStringLiteral("yyyy-MM")), QString());
        form.exec();
    });
    registerMenuAction(QStringLiteral("mnu_상품등록"), [](QWidget* mainWindow) {
        FrmNewProduct form(mainWindow);
        form.InitForm(QString(), QString(), 0, QString());
        form.exec();
    });
    registerMenuAction(QStringLiteral("mnu_postImport"),
                       [](QWidget* mainWindow) { RunPostcodeImport(mainWindow); });
}

} // namespace nb
