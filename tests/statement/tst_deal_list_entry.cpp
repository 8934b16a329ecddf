// FrmDealList where an operator's work could be lost or turned: a list or entry form closed
// without a choice, the VAT question answered 아니오 on a row without a line, the first start
// without a supplier under boxes that take the focus, typing over a number, the seal's dialog.
#include "DealListKit.h"
#include "FocusTakingBoxes.h"
#include "common/FileChooser.h"
#include "common/dates/DateBox.h"
#include "core/AppFolder.h"
#include "statement/LineAmounts.h"

#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>

using namespace nb;

namespace {

using Screen = test::DealScreen;
using test::focused;
using test::goToCell;
using test::pressKey;

void keepOnlyTheFirstProduct() {
    QVERIFY(test::exec(stores().dbBasic, QStringLiteral("DELETE FROM Product WHERE Code <> '000001'")));
}

int detailRows() {
    return test::scalar(stores().dbBill, QStringLiteral("SELECT count(*) FROM Detail")).toInt();
}

} // namespace

class TestDealListEntry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void closingTheListOfTheOneProductWithoutAChoicePutsTheOldTextBackAndStoresNothing() {
        Screen s;
        test::script();
        keepOnlyTheFirstProduct();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        // Enter in the empty product cell: the list of all products shows; 닫기 chooses nothing.
        test::lookupLog().chooseOnShow.clear();
        pressKey(focused(), Qt::Key_Return);
        QCOMPARE(test::lookupLog().shownBelow.size(), 1);
        QCOMPARE(test::masterRows(), 0);
        QCOMPARE(detailRows(), 0);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QString());
        QCOMPARE(f.spDetail->Text(ColBillSeq, 1), QStringLiteral("0")); // still the pending row
        // The same with the product's name typed: the old text comes back.
        goToCell(f, ColPName, 1);
        test::typeIntoCell(QStringLiteral("볼"));
        QCOMPARE(test::lookupLog().shownBelow.size(), 2);
        QCOMPARE(test::masterRows(), 0);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QString());
        // Chosen in the list, it is stored.
        goToCell(f, ColPName, 1);
        test::typeProductAndChoose(QStringLiteral("볼"), QStringLiteral("000001"));
        QCOMPARE(detailRows(), 1);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("볼트(M8)"));
    }

    void closingTheNewProductFormWithoutSavingStoresNothing() {
        Screen s;
        auto& msgs = test::script();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        test::lookupLog().newCode.clear(); // the form closed without a product
        msgs.answer(AnsOk);                // 상품을 등록하시겠습니까?
        test::typeIntoCell(QStringLiteral("없는상품"));
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("newProduct:없는상품:2024년05월10일")));
        QCOMPARE(test::masterRows(), 0);
        QCOMPARE(f.spDetail->Text(ColPName, 1), QString());
    }

    void answeringNoOnARowWithoutALineKeepsTheHighlightAndTheGridEditable() {
        Screen s;
        auto& msgs = test::script();
        test::addDealStatement(QStringLiteral("000001"), QStringLiteral("2024-05-02"),
                               QStringLiteral("000001"), {{QStringLiteral("볼트"), 3, 1100, 3000, 300}});
        FrmDealList& f = s.open();
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, 1);
        goToCell(f, ColPName, 2); // the pending row
        msgs.answer(AnsNo);
        msgs.answer(AnsOk);
        f.gubun[2]->click();
        QCOMPARE(msgs.last().text, noLineToRecalculateText());
        QVERIFY(f.spDetail->isHighlighted(ColUnit, 2));
        QCOMPARE(f.spDetail->operationMode(), OperationMode::Normal);
        // The operator goes on typing: a new line on the pending row.
        goToCell(f, ColPName, 2);
        QVERIFY(f.spDetail->EditMode());
        test::typeProductAndChoose(QStringLiteral("너트"), QStringLiteral("000002"));
        QCOMPARE(test::detailRows(QStringLiteral("000001")), 2);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 2, QStringLiteral("PName")).toString(),
                 QStringLiteral("너트"));
        QVERIFY(!f.spDetail->isHighlighted(ColUnit, 3)); // the highlight went with the move
    }

    void withNoSupplierOnlyTheRegistrationBoxShows() {
        test::TestHome home;
        test::fixClock();
        test::openStores();
        test::installStoreLookups();
        auto& msgs = test::scriptFocusTakingBoxes();
        // In the main window's work area, which has the focus when the screen opens.
        QMdiArea area;
        area.resize(1200, 800);
        test::showActive(&area);
        QPointer<FrmDealList> f = new FrmDealList();
        QMdiSubWindow* frame = area.addSubWindow(f.data());
        frame->show();
        area.setActiveSubWindow(frame);
        test::settleFocus();
        QTRY_VERIFY(f.isNull());
        test::settleFocus();
        QVERIFY(msgs.focusTaken() >= 1);
        QCOMPARE(int(msgs.boxes().size()), 1);
        QCOMPARE(msgs.boxes().at(0).text, QStringLiteral("사용자등록을 먼저하셔야 합니다"));
        QVERIFY(test::lookupLog().calls.contains(QStringLiteral("userEntry")));
        setClock({});
    }

    void aBadDateIsStillRefusedWhenLeftForAnotherBox() {
        Screen s;
        auto& msgs = test::scriptFocusTakingBoxes();
        FrmDealList& f = s.open();
        f.txtDate->setFocus();
        f.txtDate->setText(QStringLiteral("2024년13월40일"));
        test::takeFocusAway(); // another program: no check yet
        test::settleFocus();
        QCOMPARE(int(msgs.boxes().size()), 0);
        f.CName1->setFocus();
        test::settleFocus();
        QCOMPARE(msgs.boxes().at(0).text, QStringLiteral("올바른 날짜형식이 아닙니다"));
    }

    void typingIntoTheQuantityAfterAProductReplacesItsOne() {
        Screen s;
        test::script();
        FrmDealList& f = s.open();
        test::chooseTrader(f, QStringLiteral("가나"));
        test::typeProductAndChoose(QStringLiteral("볼트"), QStringLiteral("000001"));
        QCOMPARE(f.spDetail->ActiveCol(), int(ColQuant));
        QCOMPARE(f.spDetail->Text(ColQuant, 1), QStringLiteral("1"));
        // No selecting by the test: the cell entered by keys has its text selected already.
        auto* editor = qobject_cast<QLineEdit*>(focused());
        QVERIFY(editor);
        QCOMPARE(editor->selectedText(), QStringLiteral("1"));
        test::typeText(editor, QStringLiteral("3"));
        pressKey(focused(), Qt::Key_Return);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Quant")).toDouble(), 3.0);
        QCOMPARE(test::lineValue(QStringLiteral("000001"), 1, QStringLiteral("Amount")).toDouble(), 2727.0);
    }

    void theSealDialogOpensInTheApplicationFolder() {
        Screen s;
        test::script();
        auto& chooser = scriptFileChooser();
        FrmDealList& f = s.open();
        f.cmdSeal->click();
        QCOMPARE(chooser.kinds, QStringList{QStringLiteral("open")});
        QCOMPARE(chooser.starts, QStringList{appFolder()});
        QCOMPARE(chooser.titles.first(), QStringLiteral("공급자도장 이미지(그림) 선택"));
    }
};

NB_TEST_MAIN(TestDealListEntry)
#include "tst_deal_list_entry.moc"
