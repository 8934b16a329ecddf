// The road of one tax invoice with the real master data screens: the receiver by Enter through
// the trader list, products by Enter through the product list, the issue with its question,
// the stored rows and the reloaded list.
#include "TaxScreenKit.h"
#include "common/grid/Grid.h"
#include "invoice/InvoiceLookups.h"
#include "master/FrmNewProduct.h"
#include "master/FrmNewTrader.h"
#include "master/FrmProductList.h"
#include "master/FrmTraderList.h"
#include "master/MasterListForm.h"
#include "printing/PrinterSetup.h"

#include <QPushButton>
#include <QTableView>
#include <QTimer>

using namespace nb;

namespace {

struct Road {
    test::TestHome home;
    std::unique_ptr<FrmTax> form;
    Road() {
        test::fixClock();
        test::openStores();
        test::addScreenData();
        setInvoiceLookups(masterLookups());
        form = std::make_unique<FrmTax>();
        test::showActive(form.get());
    }
    ~Road() { setClock({}); }
};

// Whatever list opens modally next is answered by Enter on its grid's chosen row; records its
// class.
QStringList& shownLists() {
    static QStringList names;
    return names;
}

void chooseInNextList() {
    QTimer::singleShot(100, [] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) return;
        shownLists() << QString::fromLatin1(modal->metaObject()->className());
        auto* list = qobject_cast<MasterListForm*>(modal);
        QTest::keyClick(list ? static_cast<QWidget*>(list->grdList()) : modal, Qt::Key_Return);
    });
}

void typeAndEnter(QLineEdit* box, const QString& text) {
    box->setFocus();
    test::typeText(box, text);
    chooseInNextList();
    test::pressKey(box, Qt::Key_Return);
    QTest::qWait(50);
}

} // namespace

class TestInvoiceRoad : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { shownLists().clear(); }

    void receiverByEnterComesFromTheTraderListUnseenForOneMatch() {
        Road r;
        auto& msgs = test::script();
        typeAndEnter(r.form->CName_MAE, QStringLiteral("가나"));
        QVERIFY(msgs.records().empty());
        QCOMPARE(r.form->txtCCode->text(), QStringLiteral("000001"));
        QCOMPARE(r.form->CName_MAE->text(), QStringLiteral("가나철강"));
        QCOMPARE(r.form->grdList->Text(5, 2), QStringLiteral("100001"));
        QVERIFY(!shownLists().contains(QStringLiteral("nb::FrmTraderList")));
    }
    void severalTradersShowTheListAndEnterChooses() {
        Road r;
        test::script();
        typeAndEnter(r.form->CName_MAE, QString()); // an empty search lists every trader
        QCOMPARE(shownLists(), QStringList{QStringLiteral("nb::FrmTraderList")});
        QVERIFY(!r.form->txtCCode->text().isEmpty());
        QVERIFY(!r.form->CName_MAE->text().isEmpty());
    }
    void aProductRegisteredFromTheLineFillsTheLine() {
        Road r;
        auto& msgs = test::script();
        FrmTax& f = *r.form;
        typeAndEnter(f.CName_MAE, QStringLiteral("가나"));
        msgs.answer(AnsOk); // "검색된 상품이 없습니다 ... 상품을 등록하시겠습니까?"
        bool registered = false;
        QTimer::singleShot(150, [&registered] {
            auto* form = qobject_cast<FrmNewProduct*>(QApplication::activeModalWidget());
            if (!form) return;
            registered = true;
            QLineEdit* name = form->txtinput(0);
            name->setFocus();
            name->clear();
            test::typeText(name, QStringLiteral("스패너"));
            test::pressKey(name, Qt::Key_Return);
            form->btnSave()->click();
        });
        f.pummok(0)->setFocus();
        test::typeText(f.pummok(0), QStringLiteral("스패너"));
        test::pressKey(f.pummok(0), Qt::Key_Return);
        QTest::qWait(50);
        QVERIFY(registered);
        QCOMPARE(msgs.boxes().front().text,
                 QStringLiteral("검색된 상품이 없습니다. \n\n상품을 등록하시겠습니까?    "));
        const QString code =
            test::scalar(stores().dbBasic, QStringLiteral("SELECT Code FROM Product WHERE PName = '스패너'"))
                .toString();
        QVERIFY(!code.isEmpty());
        QCOMPARE(f.txtPCode->text(), code); // the code, not the name
        QCOMPARE(f.pummok(0)->text(), QStringLiteral("스패너"));
        QCOMPARE(f.su_num(0)->text().trimmed(), QStringLiteral("1")); // the line is filled, not left empty
    }
    void aQuantityTypedAfterAPickedProductReplacesTheOne() {
        Road r;
        test::script();
        FrmTax& f = *r.form;
        typeAndEnter(f.CName_MAE, QStringLiteral("가나"));
        typeAndEnter(f.pummok(0), QStringLiteral("볼트"));
        test::typeText(f.su_num(0), QStringLiteral("3"));
        test::pressKey(f.su_num(0), Qt::Key_Return);
        QCOMPARE(f.su_num(0)->text().trimmed(), QStringLiteral("3"));
        QCOMPARE(f.gonggum(0)->text().trimmed(), QStringLiteral("2,727"));
    }
    void wholeRoadIssuesStoresAndReloads() {
        Road r;
        auto& msgs = test::script();
        FrmTax& f = *r.form;
        PrintCapture capture;
        typeAndEnter(f.CName_MAE, QStringLiteral("가나"));
        typeAndEnter(f.pummok(0), QStringLiteral("볼트"));
        QCOMPARE(f.pummok(0)->text(), QStringLiteral("볼트(M8)"));
        QCOMPARE(f.gibon_num(0)->text().trimmed(), QStringLiteral("1,000"));
        f.su_num(0)->selectAll();
        test::typeText(f.su_num(0), QStringLiteral("3"));
        test::pressKey(f.su_num(0), Qt::Key_Return);
        QCOMPARE(f.gonggum(0)->text().trimmed(), QStringLiteral("2,727"));
        QCOMPARE(f.tax_num(0)->text().trimmed(), QStringLiteral("273"));
        test::saveScreenshot(&f, QStringLiteral("frm_tax_road"));
        msgs.answer(AnsYes);
        f.vaBtn2->click();
        QCOMPARE(msgs.boxes().front().text, QStringLiteral("발행하시겠습니까?"));
        QCOMPARE(int(capture.jobs().size()), 1);
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = '100002'")), 1);
        QCOMPARE(test::scalar(stores().dbTax,
                              QStringLiteral("SELECT TradeKum FROM NewAcount WHERE TaxCode = '100002'"))
                     .toDouble(),
                 2727.0);
        QCOMPARE(f.grdList->Text(5, 3), QStringLiteral("100002"));
        QVERIFY(f.pummok(0)->text().isEmpty());
    }
};

NB_TEST_MAIN(TestInvoiceRoad)
#include "tst_invoice_road.moc"
