// Products: numbering, the save with its duplicate question and whole-number prices, the
// shared look-ups, the two-query list with its answer, and both screens driven by keys.
#include "FailureInjection.h"
#include "MasterFixture.h"
#include "master/FrmNewProduct.h"
#include "master/FrmProductList.h"
#include "master/ProductRecords.h"
#include "master/SearchRules.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

using namespace nb;
using namespace nb::test;

namespace {

QVariant productField(const QString& code, const QString& column) {
    return scalar(stores().dbBasic, "SELECT " + column + " FROM Product WHERE Code = ?", {code});
}

ProductFields product(const QString& name, const QString& norm = QString(), const QString& buy = "100",
                      const QString& sale = "200") {
    return {name, norm, buy, sale, "비고", "EA"};
}

QStringList listCodes(FrmProductList& list) {
    QStringList out;
    for (int r = 0; r < list.model()->rowCount(); ++r)
        out << list.model()->text(r, 5);
    return out;
}

} // namespace

class TestProducts : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void onAnEmptyTableTheFirstCodeIs000001() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QString code;
        QCOMPARE(SaveProduct(product("볼트"), code, 0), ProductSave::Inserted);
        QCOMPARE(code, QStringLiteral("000001"));
        QCOMPARE(productField("000001", "PName").toString(), QStringLiteral("볼트"));
        QCOMPARE(productField("000001", "Unit").toString(), QStringLiteral("EA"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 저장되었습니다."));
        QCOMPARE(msgs.last().buttons, 700);
        QCOMPARE(msgs.last().color, 0xFFC0C0);
    }
    void withTheHighestOf000123DeletedTheNextNewProductReusesItsCode() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addProduct("000122", "너트");
        addProduct("000123", "볼트");
        DeleteProduct("000123");
        QString code;
        QCOMPARE(SaveProduct(product("와셔"), code, 0), ProductSave::Inserted);
        QCOMPARE(code, QStringLiteral("000123"));
    }
    void aProductNamedAsOneOnFileWithAnotherNormIsANewProduct() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트", "M8");
        QString code;
        QCOMPARE(SaveProduct(product("볼트", "M10"), code, 0), ProductSave::Inserted);
        QCOMPARE(code, QStringLiteral("000002"));
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void theSameNameAndNormAsksYesNoCancel() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트", "M8", 10, 20);
        QString code;
        msgs.answer(AnsCancel);
        QCOMPARE(SaveProduct(product("볼트", "M8", "11", "22"), code, 0), ProductSave::Cancelled);
        QCOMPARE(msgs.last().title, QStringLiteral("상품명 중복"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("(볼트)는 이미 등록된 상품입니다.\r\n수정하시겠습니까?\r\n"
                                "[예] - 수정함.\r\n[아니오] - 등록하지 않고 종료\r\n[취소] - 다시 입력함."));
        QCOMPARE(msgs.last().buttons, int(MbYesNoCancel | MbQuestion));
        msgs.answer(AnsNo);
        QCOMPARE(SaveProduct(product("볼트", "M8", "11", "22"), code, 0), ProductSave::Declined);
        QCOMPARE(productField("000001", "SalePrice").toDouble(), 20.0);
        msgs.answer(AnsYes);
        QCOMPARE(SaveProduct(product("볼트", "M8", "11", "22"), code, 0), ProductSave::Updated);
        QCOMPARE(code, QStringLiteral("000001"));
        QCOMPARE(productField("000001", "SalePrice").toDouble(), 22.0);
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 수정되었습니다."));
        QCOMPARE(count(stores().dbBasic, "Product"), 1);
    }
    void aCodeInChangeModeUpdatesWithoutAQuestion() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트", "M8", 10, 20);
        QString code = "000001";
        QCOMPARE(SaveProduct(product("볼트2", "M8", "", ""), code, 1), ProductSave::Updated);
        QCOMPARE(productField("000001", "PName").toString(), QStringLiteral("볼트2"));
        QCOMPARE(productField("000001", "BuyPrice").toDouble(), 0.0);
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void aMissingNameIsRefused() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QString code;
        QCOMPARE(SaveProduct(product(""), code, 0), ProductSave::NameMissing);
        QCOMPARE(msgs.last().text, QStringLiteral("상품명은 필수입력사항입니다."));
        QCOMPARE(msgs.last().buttons, int(MbOk));
    }
    void salePriceEnteredAs1500_75IsStoredAs1501() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QString code;
        SaveProduct(product("볼트", "", "  2,000.5", "1,500.75"), code, 0);
        QCOMPARE(productField("000001", "SalePrice").toDouble(), 1501.0);
        QCOMPARE(productField("000001", "BuyPrice").toDouble(), 2000.0); // half to even
    }
    void aPriceThatIsNoNumberFailsClearly() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QString code;
        QCOMPARE(SaveProduct(product("볼트", "", "abc", "1"), code, 0), ProductSave::Failed);
        QCOMPARE(msgs.last().text, QStringLiteral("실행 시간 오류 '13':\r\n\r\n형식이 일치하지 않습니다."));
        QCOMPARE(SaveProduct(product("볼트", "", "9999999999", "1"), code, 0), ProductSave::Failed);
        QCOMPARE(msgs.last().text, QStringLiteral("실행 시간 오류 '6':\r\n\r\n오버플로"));
        QCOMPARE(count(stores().dbBasic, "Product"), 0);
    }
    void quotesTypedIntoTheFormAreStoredAsTyped() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QString code;
        SaveProduct(product("O'Neil \\ [50%]_", "1/2\""), code, 0);
        QCOMPARE(productField("000001", "PName").toString(), QStringLiteral("O'Neil \\ [50%]_"));
        QCOMPARE(GetProductName("000001"), QStringLiteral("O'Neil \\ [50%]_(1/2\")"));
    }
    void aNameOf300CharactersIsStoredWhole() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QString code;
        const QString name(300, QChar(u'볼'));
        SaveProduct(product(name), code, 0);
        QCOMPARE(productField("000001", "PName").toString(), name);
    }
    void backslashBracketAndQuoteAreRemovedOnlyFromANamePassedInByACaller() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmNewProduct form;
        form.InitForm("볼'트\\]", "", 0, "");
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("볼트"));
        showActive(&form);
        form.txtinput(0)->setFocus();
        form.txtinput(0)->clear();
        typeHere("볼'트\\]");
        form.btnSave()->click();
        QCOMPARE(productField("000001", "PName").toString(), QStringLiteral("볼'트\\]"));
    }
    void getProductNameShowsTheNormInBrackets() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000001", "볼트", "M8");
        addProduct("000002", "너트", "");
        exec(stores().dbBasic, "INSERT INTO Product (Code, PName, PNorm) VALUES ('000003', '와셔', NULL)");
        QCOMPARE(GetProductName("000001"), QStringLiteral("볼트(M8)"));
        QCOMPARE(GetProductName("000002"), QStringLiteral("너트"));
        QCOMPARE(GetProductName("000003"), QStringLiteral("와셔"));
        QCOMPARE(GetProductName("000404"), QString());
    }
    void getProductNameReportsAFailureWithItsProcedure() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QVERIFY(hideTable(stores().dbBasic, QStringLiteral("Product")));
        QCOMPARE(GetProductName("000001"), QString());
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("Error 3011 (")));
        QVERIFY(
            msgs.last().text.endsWith(QStringLiteral(") in procedure GetProductName of Module ModModule")));
    }
    void findProductByCodeByNameOrAll() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000002", "볼트");
        addProduct("000001", "너트");
        Recordset rs;
        QVERIFY(FindProduct(rs, "000002", "", false));
        QCOMPARE(rs.text("PName"), QStringLiteral("볼트"));
        QVERIFY(FindProduct(rs, "", "너트", false));
        QCOMPARE(rs.text("Code"), QStringLiteral("000001"));
        QVERIFY(!FindProduct(rs, "", "너", false));
        QVERIFY(FindProduct(rs, "", "", true));
        QCOMPARE(rs.RecordCount(), 2);
        QCOMPARE(rs.text("Code"), QStringLiteral("000001"));
    }

    // ---- the list ----
    void typingPartOfANameThatOccursOnlyInsideOneProductReturns0Not1() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000001", "육각볼트");
        QLineEdit target;
        FrmProductList list;
        list.SetObject(&target, "000009");
        int result = -1;
        list.InitForm(1, "볼트", result);
        QCOMPARE(result, 0);
        QCOMPARE(list.model()->rowCount(), 1);
        QCOMPARE(target.text(), QString());
        QVERIFY(list.calledByAnotherForm());
        QCOMPARE(list.callerText(), QStringLiteral("000009"));
    }
    void oneProductFoundByBothQueriesAnswers1AndIsDelivered() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000001", "볼트", "M8");
        QLineEdit target;
        FrmProductList list;
        list.SetObject(&target);
        int result = -1;
        list.InitForm(1, "볼", result);
        QCOMPARE(result, 1);
        QCOMPARE(target.text(), QStringLiteral("000001"));
    }
    void noMatchAnswers0AndSeveralAnswer2() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000001", "볼트");
        addProduct("000002", "볼트너트");
        QLineEdit target;
        FrmProductList list;
        list.SetObject(&target);
        int result = -1;
        list.InitForm(1, "와셔", result);
        QCOMPARE(result, 0);
        list.InitForm(1, "볼트", result);
        QCOMPARE(result, 2);
        QCOMPARE(target.text(), QString());
    }
    void prefixMatchesComeFirstAndNoneTwice() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000001", "육각볼트");
        addProduct("000002", "볼트", "M8", 1500, 2500.5, "EA");
        addProduct("000003", "와셔");
        addProduct("000004", "가볼트");
        FrmProductList list;
        int result = 0;
        list.InitForm(1, "볼트", result);
        QCOMPARE(listCodes(list), (QStringList{"000002", "000004", "000001"}));
        QCOMPARE(list.model()->text(0, 0), QStringLiteral("볼트(M8)"));
        QCOMPARE(list.model()->text(0, 1), QStringLiteral("EA"));
        QCOMPARE(list.model()->text(0, 2), QStringLiteral("면세"));
        QCOMPARE(list.model()->text(0, 3), QStringLiteral("2,500.5"));
        QCOMPARE(list.model()->headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(),
                 QStringLiteral("매출가"));
        list.InitForm(0, "볼트", result);
        QCOMPARE(list.model()->text(0, 3), QStringLiteral("1,500"));
        QCOMPARE(list.model()->headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(),
                 QStringLiteral("매입가"));
        list.InitForm(4, "볼트", result);
        QCOMPARE(list.model()->text(0, 3), QString());
        QCOMPARE(list.activeRow(), 0);
    }
    void digitsAndTheEdgeLettersSearchTheCodeToo() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000012", "볼트");
        addProduct("000120", "너트12");
        addProduct("000300", "A형 와셔");
        FrmProductList list;
        int result = 0;
        list.InitForm(1, "12", result);
        QCOMPARE(listCodes(list), (QStringList{"000120", "000012"}));
        QVERIFY(ProductSearchesCode("A"));
        QVERIFY(ProductSearchesCode("z"));
        QVERIFY(!ProductSearchesCode("B"));
        QVERIFY(!ProductSearchesCode("볼"));
    }
    void anEmptyTextAsksForEverything() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000001", "볼트");
        addProduct("000002", "너트");
        FrmProductList list;
        int result = 0;
        list.InitForm(1, "", result);
        QCOMPARE(result, 2);
        QCOMPARE(listCodes(list), (QStringList{"000002", "000001"}));
    }
    void listKeysEnterChoosesF3ChangesF4DeletesEscCloses() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트", "M8", 1000, 1200, "EA");
        addProduct("000002", "볼트너트", "", 500, 700, "SET");
        addProduct("000003", "육각볼트", "M10", 300, 450.5, "EA");
        QLineEdit target;
        FrmProductList list;
        list.SetObject(&target);
        int result = 0;
        list.InitForm(1, "볼트", result);
        QCOMPARE(result, 2);
        showActive(&list);
        list.grdList()->setFocus();
        saveScreenshot(&list, "frm_product_list");
        pressKey(list.grdList(), Qt::Key_Down);
        QCOMPARE(list.activeText(6), QStringLiteral("000002"));
        // F3: the entry form in change mode, then the list again.
        int mode = -1;
        whenModalShows([&](QWidget* modal) {
            auto* form = qobject_cast<FrmNewProduct*>(modal);
            QVERIFY(form);
            mode = form->mode();
            QCOMPARE(form->btnSave()->text(), QStringLiteral("수정(&S)"));
            QCOMPARE(form->txtinput(0)->text(), QStringLiteral("볼트너트"));
            form->txtinput(5)->setText("BOX");
            form->btnSave()->click();
        });
        pressKey(list.grdList(), Qt::Key_F3);
        QCOMPARE(mode, 1);
        QCOMPARE(productField("000002", "Unit").toString(), QStringLiteral("BOX"));
        QCOMPARE(list.model()->text(1, 1), QStringLiteral("BOX"));
        // F4: asks OK/Cancel.
        list.selectRow(1);
        msgs.answer(AnsCancel);
        pressKey(list.grdList(), Qt::Key_F4);
        QCOMPARE(msgs.last().title, QStringLiteral("상품삭제"));
        QCOMPARE(msgs.last().text, QStringLiteral("선택하신 상품을 삭제하시겠습니까?"));
        QCOMPARE(msgs.last().buttons, 1);
        QCOMPARE(count(stores().dbBasic, "Product"), 3);
        msgs.answer(AnsOk);
        pressKey(list.grdList(), Qt::Key_F4);
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 삭제되었습니다."));
        QCOMPARE(listCodes(list), (QStringList{"000001", "000003"}));
        // Enter chooses.
        pressKey(list.grdList(), Qt::Key_Down);
        pressKey(list.grdList(), Qt::Key_Return);
        QCOMPARE(target.text(), QStringLiteral("000003"));
        QVERIFY(!list.isVisible());
    }
    void enterInTheListBoxLooksForTheWholeName() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트");
        addProduct("000002", "볼트너트");
        FrmProductList list;
        int result = 0;
        list.InitForm(1, "볼", result);
        showActive(&list);
        list.txtinput()->setFocus();
        QCOMPARE(list.hintPanel()->text(), QStringLiteral("상품명을 검색하세요.  [검색:Enter]"));
        QCOMPARE(list.txtinput()->text(), QStringLiteral("볼"));
        list.txtinput()->clear();
        typeText(list.txtinput(), "볼트너트");
        QCOMPARE(list.hintPanel()->text(), QString());
        pressKey(list.txtinput(), Qt::Key_Return);
        QCOMPARE(list.activeText(6), QStringLiteral("000002"));
        list.txtinput()->clear();
        typeText(list.txtinput(), "볼");
        pressKey(list.txtinput(), Qt::Key_Return);
        QCOMPARE(msgs.last().text, QStringLiteral("검색한 상품명이 없습니다."));
        pressKey(list.txtinput(), Qt::Key_Escape);
        QVERIFY(!list.isVisible());
    }
    void newFromTheListRegistersAndRefills() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addProduct("000001", "볼트");
        FrmProductList list;
        int result = 0;
        list.InitForm(1, "볼", result);
        showActive(&list);
        list.txtinput()->setText("볼트너트");
        whenModalShows([](QWidget* modal) {
            auto* form = qobject_cast<FrmNewProduct*>(modal);
            QVERIFY(form);
            QCOMPARE(form->btnSave()->text(), QStringLiteral("저장(&S)"));
            QCOMPARE(form->txtinput(0)->text(), QStringLiteral("볼트너트"));
            form->btnSave()->click();
            if (form->isVisible()) form->reject();
        });
        list.btnNew()->click();
        QCOMPARE(listCodes(list), (QStringList{"000001", "000002"}));
    }

    // ---- the entry form ----
    void entryFormByKeysWithHintsAndZeroPrices() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmNewProduct form;
        form.InitForm("", "", 0, "");
        QCOMPARE(form.btnSave()->text(), QStringLiteral("저장(&S)"));
        showActive(&form);
        QCOMPARE(focused(), form.txtinput(0));
        QCOMPARE(form.SSPanel1()->text(), QStringLiteral("상품명을 입력하세요."));
        typeHere("볼트");
        keyHere(Qt::Key_Return);
        QCOMPARE(form.SSPanel1()->text(), QStringLiteral("규격을 입력하세요."));
        typeHere("M8");
        keyHere(Qt::Key_Return);
        QCOMPARE(form.SSPanel1()->text(), QStringLiteral("매입가를 입력하세요."));
        keyHere(Qt::Key_Return); // an empty price becomes 0 on leaving
        QCOMPARE(form.txtinput(2)->text().trimmed(), QStringLiteral("0"));
        QCOMPARE(form.SSPanel1()->text(), QStringLiteral("매출가를 입력하세요."));
        typeHere("1500");
        QCOMPARE(form.txtinput(3)->text().trimmed(), QStringLiteral("1,500"));
        keyHere(Qt::Key_Return);
        QCOMPARE(form.SSPanel1()->text(), QStringLiteral("비고사항을 입력하세요."));
        keyHere(Qt::Key_Return);
        QCOMPARE(form.SSPanel1()->text(), QStringLiteral("단위를 입력하세요."));
        typeHere("EA");
        keyHere(Qt::Key_Up);
        QCOMPARE(focused(), form.txtinput(4));
        saveScreenshot(&form, "frm_new_product");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 저장되었습니다."));
        QCOMPARE(productField("000001", "SalePrice").toDouble(), 1500.0);
        QCOMPARE(productField("000001", "Unit").toString(), QStringLiteral("EA"));
        QCOMPARE(form.txtinput(0)->text(), QString()); // ready for the next one
        QVERIFY(form.isVisible());
    }
    void aSaveCalledByAnotherScreenWritesTheNameAndCloses() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QLineEdit target;
        FrmNewProduct form;
        form.SetObject(&target);
        form.InitForm("너트", "", 0, "");
        showActive(&form);
        form.btnSave()->click();
        QCOMPARE(target.text(), QStringLiteral("너트"));
        QVERIFY(!form.isVisible());
    }
    void f3SearchesAndF4DeletesWhatTheSearchBrought() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트", "M8", 1000, 1200, "EA");
        FrmNewProduct form;
        form.InitForm("", "", 0, "");
        showActive(&form);
        keyHere(Qt::Key_F4); // nothing searched yet
        QCOMPARE(msgs.records().size(), size_t(0));
        typeHere("와셔");
        keyHere(Qt::Key_F3);
        QCOMPARE(msgs.last().text, QStringLiteral("검색된 상품이 없습니다."));
        form.txtinput(0)->clear();
        typeHere("볼");
        keyHere(Qt::Key_F3);
        QVERIFY(form.searched());
        QCOMPARE(form.txtinput(1)->text(), QStringLiteral("M8"));
        QCOMPARE(form.txtPCode()->text(), QStringLiteral("000001"));
        msgs.answer(AnsCancel);
        keyHere(Qt::Key_F4);
        QCOMPARE(msgs.last().title, QStringLiteral("상품삭제"));
        QCOMPARE(msgs.last().text, QStringLiteral("검색하신 상품을 삭제하시겠습니까?"));
        QCOMPARE(count(stores().dbBasic, "Product"), 1);
        msgs.answer(AnsOk);
        keyHere(Qt::Key_F4);
        QCOMPARE(count(stores().dbBasic, "Product"), 0);
        QCOMPARE(msgs.last().text, QStringLiteral("자료가 삭제되었습니다."));
        QCOMPARE(form.txtinput(0)->text(), QString());
    }
};

NB_TEST_MAIN(TestProducts)
#include "tst_products.moc"
