// The statement screen in the real main window: opened from the menu and from the invoice
// screen with its trader, and the road on to the invoice (the trader of the last line saved,
// the one-day period and the writing date) and to the quotations.
#include "DealListKit.h"
#include "common/dates/DateBox.h"
#include "core/ScreenRegistry.h"
#include "shell/Nubella.h"
#include "invoice/InvoiceScreens.h"
#include "statement/StatementScreens.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QPushButton>

using namespace nb;

namespace {

struct MainWindow {
    test::TestHome home;
    Nubella window;
    MainWindow() {
        test::fixClock();
        clearScreenRegistry();
        registerInvoiceScreens();
        registerStatementScreens();
        registerChildScreen(QStringLiteral("mnu_Estimate"), [] {
            auto* w = new QWidget;
            w->setObjectName(QStringLiteral("FrmEstimate"));
            return w;
        });
        window.refreshMenuState();
        QVERIFY(window.load(false));
        test::addScreenData();
        test::installStoreLookups();
        test::showActive(&window);
    }
    ~MainWindow() {
        clearScreenRegistry();
        setClock({});
    }
    template <class Screen> Screen* open(const QString& control) {
        window.menuAction(control)->trigger();
        QTest::qWait(30);
        return qobject_cast<Screen*>(window.childScreen(control));
    }
    FrmTax* invoice() const {
        return qobject_cast<FrmTax*>(window.childScreen(QStringLiteral("mnu_InvoiceForm")));
    }
};

const QString kStatements = QStringLiteral("mnu_거래명세표");
const QString kInvoice = QStringLiteral("mnu_InvoiceForm");

} // namespace

class TestDealListRoad : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theMenuOpensTheStatementScreen() {
        MainWindow w;
        test::script();
        QVERIFY(w.window.menuAction(kStatements)->isEnabled());
        auto* f = w.open<FrmDealList>(kStatements);
        QVERIFY(f);
        QCOMPARE(f->CName1->text(), QStringLiteral("하르문상사"));
        QCOMPARE(f->windowTitle(), QStringLiteral("거래명세표 발행"));
    }

    void theInvoiceScreensStatementButtonHandsOverItsTrader() {
        MainWindow w;
        test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 1100, 1000, 100}});
        test::addDealStatement(QStringLiteral("000002"), QStringLiteral("2024-05-04"),
                               QStringLiteral("000002"), {{QStringLiteral("앵글"), 1, 11000, 10000, 1000}});
        FrmTax* tax = w.open<FrmTax>(kInvoice);
        test::chooseReceiver(*tax, QStringLiteral("다라"));
        QCOMPARE(tax->txtCCode->text(), QStringLiteral("000002"));
        QVERIFY(tax->vaBtn6->isEnabled());
        tax->vaBtn6->click();
        QTest::qWait(30);
        auto* f = qobject_cast<FrmDealList*>(w.window.childScreen(kStatements));
        QVERIFY(f);
        QCOMPARE(f->txtCCode->text(), QStringLiteral("000002"));
        QCOMPARE(f->CName2->text(), QStringLiteral("다라상회"));
        QCOMPARE(f->spMaster->MaxRows(), 2); // only that trader's statements
        QCOMPARE(f->spMaster->Text(ColMasterBillNo, 1), QStringLiteral("000002"));
    }

    void choosingAnOldStatementAndGoingToTheInvoiceOpensAnEmptyInvoice() {
        MainWindow w;
        test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 1, 1100, 1000, 100}});
        auto* f = w.open<FrmDealList>(kStatements);
        f->spMaster->setFocus();
        f->spMaster->SetActiveCell(ColBillDate, 1);
        QCOMPARE(f->txtCCode->text(), QStringLiteral("000001"));
        f->btnGoTax->click();
        QTest::qWait(30);
        FrmTax* tax = w.invoice();
        QVERIFY(tax);
        QVERIFY(tax->txtCCode->text().isEmpty());
        QVERIFY(tax->CName_MAE->text().isEmpty());
        QCOMPARE(w.window.findChild<QMdiArea*>()->activeSubWindow()->widget(), tax);
    }

    void theTraderOfTheLastSavedLineGoesToTheInvoiceNotTheOneChosenAfter() {
        MainWindow w;
        test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"),
                               QStringLiteral("000002"), {{QStringLiteral("앵글"), 1, 11000, 10000, 1000}});
        auto* f = w.open<FrmDealList>(kStatements);
        test::chooseTrader(*f, QStringLiteral("가나"));
        test::typeProductAndChoose(QStringLiteral("볼트"), QStringLiteral("000001"));
        QCOMPARE(f->LastSavedCCode(), QStringLiteral("000001"));
        f->btnNewMaster->click(); // no trader: the list shows every trader's statements
        f->cmdMaster->click();
        f->spMaster->setFocus();
        f->spMaster->SetActiveCell(ColBillDate, 1); // the other trader's statement
        QCOMPARE(f->txtCCode->text(), QStringLiteral("000002"));
        f->btnGoTax->click();
        QTest::qWait(30);
        FrmTax* tax = w.invoice();
        QCOMPARE(tax->txtCCode->text(), QStringLiteral("000001"));
        QCOMPARE(tax->CName_MAE->text(), QStringLiteral("가나철강"));
        QCOMPARE(tax->txtDate[0]->text(), QStringLiteral("2024-05-10"));
        QCOMPARE(tax->txtDate[1]->text(), QStringLiteral("2024-05-10"));
        QCOMPARE(tax->write_yy->text() + tax->write_mm->text() + tax->write_dd->text(),
                 QStringLiteral("20240510"));
        // The activation ran the summary of that day's statements into the first line.
        QCOMPARE(tax->gonggum(0)->text().trimmed(), QStringLiteral("909"));
        test::saveScreenshot(&w.window, QStringLiteral("frm_tax_from_statement"));
    }

    void anInvoiceWithUnsavedInputIsDiscardedWithoutAQuestion() {
        MainWindow w;
        auto& msgs = test::script();
        QPointer<FrmTax> before = w.open<FrmTax>(kInvoice);
        before->pummok(0)->setText(QStringLiteral("적다 만 품목"));
        auto* f = w.open<FrmDealList>(kStatements);
        msgs.clear();
        f->btnGoTax->click();
        QTest::qWait(30);
        QVERIFY(before.isNull());
        FrmTax* tax = w.invoice();
        QVERIFY(tax);
        QVERIFY(tax->pummok(0)->text().isEmpty());
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }

    void theQuotationButtonOpensTheQuotationScreen() {
        MainWindow w;
        test::script();
        auto* f = w.open<FrmDealList>(kStatements);
        f->vaBtnEstimate->click();
        QTest::qWait(30);
        QWidget* estimate = w.window.childScreen(QStringLiteral("mnu_Estimate"));
        QVERIFY(estimate);
        QVERIFY(estimate->isVisible());
    }
};

NB_TEST_MAIN(TestDealListRoad)
#include "tst_deal_list_road.moc"
