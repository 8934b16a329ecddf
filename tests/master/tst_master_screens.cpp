// The menu entries of master data: each registered, each opening its screen modally over the
// main window.
#include "MasterFixture.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "master/FrmNewProduct.h"
#include "master/FrmNewTrader.h"
#include "master/FrmUser.h"
#include "master/MasterScreens.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

using namespace nb;
using namespace nb::test;

class TestMasterScreens : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { clearScreenRegistry(); }

    void theFourEntriesAreRegisteredAsModalActions() {
        registerMasterScreens();
        for (const char* name : {"mnu_user", "mnu_거래처등록", "mnu_상품등록", "mnu_postImport"}) {
            const ScreenEntry* entry = screenFor(QString::fromUtf8(name));
            QVERIFY2(entry && entry->run && !entry->createChild, name);
        }
    }
    void theTraderEntryOpensForANewTraderOfSectionZeroAndThisMonth() {
        TestHome home;
        QVERIFY(openStores());
        script();
        setClock([] { return QDateTime(QDate(2004, 5, 6), QTime(9, 0)); });
        registerMasterScreens();
        QWidget mainWindow;
        showActive(&mainWindow);
        FrmNewTrader* seen = nullptr;
        int mode = -1;
        QString month, name;
        QWidget* parent = nullptr;
        whenModalShows([&](QWidget* modal) {
            seen = qobject_cast<FrmNewTrader*>(modal);
            if (!seen) return;
            mode = seen->mode();
            month = seen->monthText();
            name = seen->txtinput(0)->text();
            parent = seen->parentWidget();
            seen->reject();
        });
        screenFor("mnu_거래처등록")->run(&mainWindow);
        QVERIFY(seen);
        QCOMPARE(mode, 0);
        QCOMPARE(month, QStringLiteral("2004-05-00"));
        QCOMPARE(name, QString());
        QCOMPARE(parent, &mainWindow);
    }
    void theSupplierAndProductEntriesOpenTheirForms() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        registerMasterScreens();
        QWidget mainWindow;
        showActive(&mainWindow);
        QString opened;
        whenModalShows([&](QWidget* modal) {
            opened = modal->objectName();
            static_cast<QDialog*>(modal)->reject();
        });
        screenFor("mnu_user")->run(&mainWindow);
        QCOMPARE(opened, QStringLiteral("FrmUser"));
        whenModalShows([&](QWidget* modal) {
            opened = modal->objectName();
            auto* form = qobject_cast<FrmNewProduct*>(modal);
            QVERIFY(form);
            QCOMPARE(form->btnSave()->text(), QStringLiteral("저장(&S)"));
            form->reject();
        });
        screenFor("mnu_상품등록")->run(&mainWindow);
        QCOMPARE(opened, QStringLiteral("FrmNewProduct"));
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void thePostcodeImportAsksForAFile() {
        TestHome home;
        QVERIFY(openStores());
        script();
        registerMasterScreens();
        QWidget mainWindow;
        showActive(&mainWindow);
        bool asked = false;
        whenModalShows([&](QWidget* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            asked = dialog != nullptr;
            if (dialog) dialog->reject();
        });
        screenFor("mnu_postImport")->run(&mainWindow);
        QVERIFY(asked);
    }
};

NB_TEST_MAIN(TestMasterScreens)
#include "tst_master_screens.moc"
