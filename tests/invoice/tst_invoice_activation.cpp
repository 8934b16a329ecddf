// The invoice screen in the real main window from an empty store: the supplier registered on
// the screen's own request shows at once, the menu entry chosen again and a return from another
// child window bring the activation, so a supplier changed meanwhile shows.
#include "InvoiceFixture.h"
#include "common/dates/DateBox.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "invoice/FrmTax.h"
#include "invoice/InvoiceScreens.h"
#include "master/FrmUser.h"
#include "master/MasterScreens.h"
#include "shell/Nubella.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

using namespace nb;

namespace {

struct MainWindow {
    test::TestHome home;
    Nubella window;
    MainWindow() {
        clearScreenRegistry();
        registerMasterScreens();
        registerInvoiceScreens();
        registerChildScreen(QStringLiteral("mnu_SMS"), [] { return new QWidget; });
        window.refreshMenuState();
        QVERIFY(window.load(false));
        test::showActive(&window);
    }
    ~MainWindow() { clearScreenRegistry(); }
    // What the statement screen's 세금계산서 button does: the screen loaded afresh, handed a
    // trader and a day, then shown.
    FrmTax* handOver(const QString& cCode, const QString& date) {
        auto* tax = qobject_cast<FrmTax*>(loadScreen(QStringLiteral("mnu_InvoiceForm"), true));
        if (!tax) return nullptr;
        tax->txtCCode->setText(cCode);
        tax->txtDate[0]->setDateText(date);
        tax->txtDate[1]->setDateText(date);
        openScreen(QStringLiteral("mnu_InvoiceForm"));
        QTest::qWait(50);
        return tax;
    }
    // The operator switches to another program (a calculator) and back to this one. Answers how
    // often the work area named its active child meanwhile: the round trip the screen must not
    // take for an activation.
    int roundTripThroughAnotherProgram() {
        QSignalSpy named(window.mdiArea(), &QMdiArea::subWindowActivated);
        return test::roundTripThroughAnotherProgram(&window) ? int(named.count()) : -1;
    }
    FrmTax* openInvoice() {
        window.menuAction(QStringLiteral("mnu_InvoiceForm"))->trigger();
        QTest::qWait(50);
        return qobject_cast<FrmTax*>(window.childScreen(QStringLiteral("mnu_InvoiceForm")));
    }
};

void typeAndEnter(QLineEdit* box, const QString& text) {
    box->setFocus();
    test::typeText(box, text);
    test::pressKey(box, Qt::Key_Return);
}

// The operator fills the registration that opens next, saves it as the default supplier and
// closes it.
void registerSupplierInNextScreen(bool* seen) {
    QTimer::singleShot(150, [seen] {
        auto* form = qobject_cast<FrmUser*>(QApplication::activeModalWidget());
        if (!form) return;
        *seen = true;
        typeAndEnter(form->txtinput(0), QStringLiteral("가나상사"));
        typeAndEnter(form->txtinput(1), QStringLiteral("김가나"));
        typeAndEnter(form->txtinput(2), QStringLiteral("1234567891"));
        form->btnSave()->click();
        form->ChkDefault()->setFocus();
        test::pressKey(form->ChkDefault(), Qt::Key_Space);
        test::pressKey(form, Qt::Key_Escape);
    });
}

// A supplier and the trader 00001 (다라상회); with a statement of today when asked.
bool addTraderToHandOver(bool withStatement) {
    test::addSupplier({QStringLiteral("123-45-67891"), QStringLiteral("가나상사"), QStringLiteral("김가나"),
                       QString(), QString(), QString(), QString(), QString()});
    return test::addTraderRow(QStringLiteral("00001"),
                              {QStringLiteral("222-33-44444"), QStringLiteral("다라상회"), QString(),
                               QString(), QString(), QString(), QString(), QString()}) &&
           (!withStatement ||
            test::addStatement(QStringLiteral("000001"), today().toString(u"yyyy-MM-dd"),
                               QStringLiteral("00001"), {{QStringLiteral("볼트"), 5000, 500}}));
}

} // namespace

class TestInvoiceActivation : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theFirstSupplierRegisteredOnTheScreensRequestShowsAtOnce() {
        MainWindow w;
        auto& msgs = test::script();
        bool registrationShown = false;
        registerSupplierInNextScreen(&registrationShown);
        FrmTax* tax = w.openInvoice();
        QVERIFY(registrationShown);
        QCOMPARE(msgs.boxes().front().text, QStringLiteral("사용자등록을 먼저하셔야 합니다"));
        QCOMPARE(tax->CName_user->text(), QStringLiteral("가나상사"));
        QCOMPARE(tax->Serial_user->text(), QStringLiteral("123-45-67891"));
        int asked = 0;
        for (const MessageRecord& box : msgs.boxes())
            asked += box.text == u"사용자등록을 먼저하셔야 합니다" ? 1 : 0;
        QCOMPARE(asked, 1);
    }
    void theMenuEntryChosenAgainShowsASupplierChangedMeanwhile() {
        MainWindow w;
        test::script();
        test::addSupplier({QStringLiteral("123-45-67891"), QStringLiteral("가나상사"),
                           QStringLiteral("김가나"), QString(), QString(), QString(), QString(), QString()});
        FrmTax* tax = w.openInvoice();
        QCOMPARE(tax->CName_user->text(), QStringLiteral("가나상사"));
        QVERIFY(test::exec(stores().dbBasic, QStringLiteral("update User set Company = '가나물산'")));
        QCOMPARE(w.openInvoice(), tax); // the one open screen
        QCOMPARE(tax->CName_user->text(), QStringLiteral("가나물산"));
    }
    void comingBackFromAnotherChildWindowShowsASupplierChangedMeanwhile() {
        MainWindow w;
        test::script();
        test::addSupplier({QStringLiteral("123-45-67891"), QStringLiteral("가나상사"),
                           QStringLiteral("김가나"), QString(), QString(), QString(), QString(), QString()});
        FrmTax* tax = w.openInvoice();
        w.window.menuAction(QStringLiteral("mnu_SMS"))->trigger();
        QVERIFY(w.window.mdiArea()->activeSubWindow() != tax->parentWidget());
        QVERIFY(test::exec(stores().dbBasic, QStringLiteral("update User set Company = '가나물산'")));
        // Ctrl+Tab goes to the next child window, as a click on it would.
        test::pressKey(test::focused() ? test::focused() : &w.window, Qt::Key_Tab, Qt::ControlModifier);
        QTest::qWait(50);
        QCOMPARE(w.window.mdiArea()->activeSubWindow(), tax->parentWidget());
        QCOMPARE(tax->CName_user->text(), QStringLiteral("가나물산"));
    }
    void comingBackFromAnotherProgramKeepsTheLineTypedOverTheSummary() {
        MainWindow w;
        test::script();
        QVERIFY(addTraderToHandOver(true));
        const QString day = today().toString(u"yyyy-MM-dd");
        FrmTax* tax = w.handOver(QStringLiteral("00001"), day);
        QVERIFY(tax);
        QCOMPARE(tax->pummok(0)->text(), QStringLiteral("볼트"));
        tax->pummok(0)->setFocus();
        tax->pummok(0)->selectAll();
        test::typeText(tax->pummok(0), QStringLiteral("손으로 쓴 품목"));
        QVERIFY(w.roundTripThroughAnotherProgram() > 0);
        QCOMPARE(tax->pummok(0)->text(), QStringLiteral("손으로 쓴 품목"));
    }
    void comingBackFromAnotherProgramAsksNothingWhenNothingWasSummed() {
        MainWindow w;
        auto& msgs = test::script();
        QVERIFY(addTraderToHandOver(false));
        QVERIFY(w.handOver(QStringLiteral("00001"), today().toString(u"yyyy-MM-dd")));
        const auto nothingSummed = [&] {
            int n = 0;
            for (const MessageRecord& box : msgs.boxes())
                n += box.text == u"집계내역이 존재하지 않습니다." ? 1 : 0;
            return n;
        };
        QCOMPARE(nothingSummed(), 1);
        QVERIFY(w.roundTripThroughAnotherProgram() > 0);
        QVERIFY(w.roundTripThroughAnotherProgram() > 0);
        QCOMPARE(nothingSummed(), 1);
    }
    void theMenuEntryChosenAgainAfterAHandOverKeepsTheTypedLine() {
        MainWindow w;
        test::script();
        QVERIFY(addTraderToHandOver(true));
        const QString day = today().toString(u"yyyy-MM-dd");
        FrmTax* tax = w.handOver(QStringLiteral("00001"), day);
        QVERIFY(tax);
        tax->pummok(0)->setText(QStringLiteral("손으로 쓴 품목"));
        QCOMPARE(w.openInvoice(), tax);
        QCOMPARE(tax->pummok(0)->text(), QStringLiteral("손으로 쓴 품목"));
    }
};

NB_TEST_MAIN(TestInvoiceActivation)
#include "tst_invoice_activation.moc"
