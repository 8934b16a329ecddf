// The quotation screen as it lives in a real window: boxes that take the focus and give it back
// later, the screen closed by its title bar and opened again from the menu, its preview and its
// width.
#include "EstimateScreenKit.h"
#include "FocusTakingBoxes.h"
#include "common/dates/DateBox.h"
#include "core/ScreenRegistry.h"
#include "invoice/InvoiceScreens.h"
#include "printing/PrinterSetup.h"
#include "quotation/QuotationScreens.h"
#include "shell/Nubella.h"
#include "statement/StatementScreens.h"

#include <QAction>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>

using namespace nb;
using test::enterHere;

namespace {

int lines() {
    return test::estimateRows(QStringLiteral("Estimate"));
}
int heads() {
    return test::estimateRows(QStringLiteral("EstiBase"));
}

// The head typed by keys up to the delivery date box, as an operator writes a new quotation.
void typeHeadUpToDeliveryDate(FrmEstimate& f) {
    test::chooseTrader(f, QStringLiteral("가나"));
    test::typeText(f.txtinput[1], QStringLiteral("사무용품"));
    enterHere();
    enterHere(); // 참조인
    enterHere(); // 견적금액
    test::typeText(f.txtinput[4], QStringLiteral("4개월"));
    enterHere();
    test::typeText(f.txtinput[5], QStringLiteral("현금"));
    enterHere();
    enterHere(); // 견적일자
    QCOMPARE(test::focused(), f.txtDate[1]);
}

// The screen in a work area as the main window holds its child screens: closing the frame
// only hides it, and the menu shows the same screen again.
struct ScreenInWorkArea {
    test::TestHome home;
    QMdiArea area;
    FrmEstimate* form = nullptr;
    QMdiSubWindow* frame = nullptr;
    ScreenInWorkArea() {
        test::fixClock();
        test::openStores();
        test::addScreenData();
        test::installStoreLookups();
        app().DecimalQty = 0;
        area.resize(1024, 700);
        test::showActive(&area);
        form = new FrmEstimate;
        frame = area.addSubWindow(form);
        frame->setAttribute(Qt::WA_DeleteOnClose, false);
        reopen();
    }
    void reopen() {
        frame->show();
        form->show();
        area.setActiveSubWindow(frame);
        QTest::qWait(10);
    }
    ~ScreenInWorkArea() { setClock({}); }
};

// The real main window with the statement and quotation screens under their menu entries.
struct MainWindow {
    test::TestHome home;
    Nubella window;
    MainWindow() {
        test::fixClock();
        clearScreenRegistry();
        registerInvoiceScreens();
        registerStatementScreens();
        registerQuotationScreens();
        window.refreshMenuState();
        QVERIFY(window.load(false));
        test::addScreenData();
        test::installStoreLookups();
        app().DecimalQty = 0;
        setSystemPrintersForTesting({}, QString()); // the PDF printer only: its box says where
        test::showActive(&window);
    }
    ~MainWindow() {
        clearScreenRegistry();
        setClock({});
    }
    QWidget* open(const QString& control) {
        window.menuAction(control)->trigger();
        QTest::qWait(30);
        return window.childScreen(control);
    }
    QWidget* inFront() const {
        QMdiSubWindow* active = window.findChild<QMdiArea*>()->activeSubWindow();
        return active ? active->widget() : nullptr;
    }
};

} // namespace

class TestEstimateWindow : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void headIsSavedWhenTheGridGetsTheFocusBackFromTheDeliveryDateBox() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::scriptFocusTakingBoxes();
        typeHeadUpToDeliveryDate(f);
        s.answer(AnsOk);  // 견적서의 납품예정일을 변경하는 중 오류가 발생했습니다.
        s.answer(AnsYes); // 입력하신 내용을 저장하시겠습니까?
        enterHere();
        test::settleFocus();
        QVERIFY(s.focusTaken() >= 1);
        QCOMPARE(s.boxes().at(0).text,
                 QStringLiteral("견적서의 납품예정일을 변경하는 중 오류가 발생했습니다."));
        QCOMPARE(int(s.boxes().size()), 2);
        QCOMPARE(s.boxes().at(1).text, QStringLiteral("입력하신 내용을 저장하시겠습니까?"));
        QCOMPARE(heads(), 1);
        QCOMPARE(
            test::scalar(stores().dbEstimate, QStringLiteral("SELECT Validate FROM EstiBase")).toString(),
            QStringLiteral("4개월"));
        QVERIFY(test::focused() == f.grdEstimate || f.grdEstimate->isAncestorOf(test::focused()));
        // The first line is stored under a head that exists.
        test::lookupLog().chooseOnShow = QStringLiteral("000001");
        enterHere();
        test::settleFocus();
        QCOMPARE(lines(), 1);
        QCOMPARE(heads(), 1);
    }

    void aBoxBorrowingTheFocusFromTheGridIsNoNewEntry() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        test::chooseTrader(f, QStringLiteral("가나"));
        s.answer(AnsYes);
        f.grdEstimate->setFocus();
        QCOMPARE(heads(), 1);
        f.grdEstimate->SetActiveCell(ColUnit, 3);
        // Another window takes the focus and gives it back: the cursor stays where it was and
        // nothing is asked or written again.
        test::takeFocusAway();
        test::settleFocus();
        QVERIFY(f.grdEstimate->isAncestorOf(test::focused()) || test::focused() == f.grdEstimate);
        QCOMPARE(int(s.boxes().size()), 1);
        QCOMPARE(f.grdEstimate->ActiveRow(), 3); // not sent back to the row after the last line
        QCOMPARE(f.grdEstimate->ActiveCol(), int(ColPName));
    }

    void closedByTheTitleBarTheScreenOpensAgainWithItsStore() {
        ScreenInWorkArea w;
        auto& s = test::script();
        QVERIFY(stores().dbEstimate.isOpen());
        w.frame->close(); // the title bar's X
        QVERIFY(!w.frame->isVisible());
        w.reopen();
        QVERIFY(stores().dbEstimate.isOpen());
        QCOMPARE(w.form->pnlCode->text(), QStringLiteral("202405001"));
        // Searches and saves work again.
        test::chooseTrader(*w.form, QStringLiteral("가나"));
        s.answer(AnsYes);
        w.form->grdEstimate->setFocus();
        QCOMPARE(heads(), 1);
        for (const MessageRecord& box : s.boxes())
            QVERIFY2(!box.text.contains(QStringLiteral("MDB")), qPrintable(box.text));
    }

    void afterExitAndReopeningTheTermsDoNotCarryOver() {
        ScreenInWorkArea w;
        auto& s = test::script();
        FrmEstimate& f = *w.form;
        test::chooseTrader(f, QStringLiteral("가나"));
        f.txtinput[4]->setText(QStringLiteral("4개월"));
        f.txtinput[5]->setText(QStringLiteral("현금"));
        f.txtFind->setText(QStringLiteral("가나"));
        s.answer(AnsYes);
        f.grdEstimate->setFocus();
        f.txtinput[1]->setFocus();
        test::pressKey(f.txtinput[1], Qt::Key_Escape); // 종료
        QVERIFY(!w.frame->isVisible());
        w.reopen();
        for (int i = 0; i < 6; ++i)
            QCOMPARE(f.txtinput[size_t(i)]->text(), QString());
        QCOMPARE(f.txtFind->text(), QString());
        QCOMPARE(f.txtCCode->text(), QString());
        QCOMPARE(f.pnlCode->text(), QStringLiteral("202405002"));
        QVERIFY(f.OptVat[1]->isChecked());
    }
    void thePreviewShowsWhatThePrintWouldPrintAndStoresNothing() {
        test::EstimateScreen screen;
        FrmEstimate& f = screen.open();
        auto& s = test::script();
        setSystemPrintersForTesting({}, QString());
        test::chooseTrader(f, QStringLiteral("가나"));
        s.answer(AnsYes);
        f.grdEstimate->setFocus();
        test::lookupLog().chooseOnShow = QStringLiteral("000001");
        enterHere();
        QCOMPARE(f.btnPreview->text(), QStringLiteral("미리보기(&V)"));
        const int storedLines = lines();
        PrintCapture capture;
        s.clear();
        f.btnPreview->click();
        QCOMPARE(int(s.records().size()), 0);
        QCOMPARE(capture.jobs().size(), size_t(1));
        QCOMPARE(capture.last().documentName, QStringLiteral("견적서 미리보기"));
        const QStringList preview = capture.last().allTexts();
        QVERIFY(preview.contains(QStringLiteral("볼트")));
        QCOMPARE(lines(), storedLines);
        f.btnPrint->click();
        QCOMPARE(capture.jobs().size(), size_t(2));
        QCOMPARE(capture.last().documentName, QStringLiteral("견적서"));
        QCOMPARE(capture.last().allTexts(), preview);
    }

    void afterF10PrintsTheQuotationStaysInFront() {
        MainWindow w;
        QWidget* deals = w.open(QStringLiteral("mnu_거래명세표"));
        QVERIFY(deals);
        auto* toQuotations = deals->findChild<QPushButton*>(QStringLiteral("vaBtnEstimate"));
        QVERIFY(toQuotations);
        toQuotations->click(); // the quotations, from the statement screen
        QTest::qWait(30);
        auto* f = qobject_cast<FrmEstimate*>(w.window.childScreen(QStringLiteral("mnu_Estimate")));
        QVERIFY(f);
        QCOMPARE(w.inFront(), f);
        auto& s = test::scriptFocusTakingBoxes();
        test::chooseTrader(*f, QStringLiteral("가나"));
        s.answer(AnsYes); // 입력하신 내용을 저장하시겠습니까?
        f->grdEstimate->setFocus();
        test::settleFocus();
        test::lookupLog().chooseOnShow = QStringLiteral("000001");
        enterHere();
        test::settleFocus();
        QCOMPARE(lines(), 1);
        QCOMPARE(w.inFront(), f);
        s.clear();
        test::keyHere(Qt::Key_F10);
        test::settleFocus();
        QVERIFY(!s.boxes().empty());
        QCOMPARE(s.boxes().back().title, QStringLiteral("PDF 인쇄"));
        QCOMPARE(w.inFront(), f);
        QVERIFY(f->isAncestorOf(test::focused()));
    }

    void theWindowOpensWideEnoughToShowTheAmountColumn() {
        ScreenInWorkArea w;
        Grid* grid = w.form->grdEstimate;
        QTest::qWait(20);
        const int right = grid->columnViewportPosition(ColKum - 1) + grid->columnWidth(ColKum - 1);
        QVERIFY(grid->columnViewportPosition(ColKum - 1) >= 0);
        QVERIFY2(right <= grid->viewport()->width(),
                 qPrintable(QStringLiteral("%1 > %2").arg(right).arg(grid->viewport()->width())));
        // The whole frame fits in the work area of the main window.
        QVERIFY(w.frame->geometry().right() <= w.area.viewport()->width());
        test::saveScreenshot(w.frame, QStringLiteral("estimate_window_in_work_area"));
    }
};

NB_TEST_MAIN(TestEstimateWindow)
#include "tst_estimate_window.moc"
