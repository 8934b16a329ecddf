// The printer entry of the main window's menu opens the printer choice for the invoice, modally.
#include "TestSupport.h"

#include "shell/Nubella.h"
#include "core/ScreenRegistry.h"
#include "printing/FrmSetPrinter.h"
#include "printing/PrintingScreens.h"

#include <QAction>
#include <QApplication>
#include <QTimer>

using namespace nb;

class TestPrintingScreens : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void printerEntryOpensThePrinterChoiceForTheInvoiceModally() {
        test::TestHome home;
        test::script();
        clearScreenRegistry();
        registerPrintingScreens();
        Nubella w;
        w.refreshMenuState();
        w.show();
        QVERIFY(w.menuAction("mnu_printer")->isEnabled());
        int document = -1;
        bool modal = false;
        QTimer::singleShot(100, [&] {
            auto* form = qobject_cast<FrmSetPrinter*>(QApplication::activeModalWidget());
            if (!form) return;
            modal = true;
            document = form->document();
            form->reject();
        });
        w.menuAction("mnu_printer")->trigger();
        QVERIFY(modal);
        QCOMPARE(document, 0);
    }
};

NB_TEST_MAIN(TestPrintingScreens)
#include "tst_printing_screens.moc"
