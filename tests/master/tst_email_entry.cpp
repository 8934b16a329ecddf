// The e-mail address of a trader and of a supplier: typed on their screens by keys, checked for
// its form (a wrong one refused, nothing saved), stored and shown again.
#include "MasterFixture.h"
#include "master/FrmNewTrader.h"
#include "master/FrmUser.h"
#include "master/SupplierRecords.h"

#include <QLineEdit>
#include <QPushButton>

using namespace nb;
using namespace nb::test;

namespace {

QVariant traderEmail(const QString& code) {
    return scalar(stores().dbBasic, "SELECT Email FROM Trader WHERE Code = ?", {code});
}

} // namespace

class TestEmailEntry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void traderEmailComesAfterTheClosingDateAndIsStored() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmNewTrader form;
        form.InitForm(0, "", "2026-11", "");
        showActive(&form);
        typeHere("다라철강");
        form.txtinput(14)->setFocus();
        keyHere(Qt::Key_Return);
        QCOMPARE(focused(), form.txtinput(16));
        QCOMPARE(form.hintFor(16), QStringLiteral("전자세금계산서를 받을 이메일 주소를 입력하세요."));
        typeHere("buy@dara.co.kr");
        saveScreenshot(&form, "frm_new_trader_email");
        form.btnSave()->click();
        QCOMPARE(traderEmail("000001").toString(), QStringLiteral("buy@dara.co.kr"));
    }
    void aTraderEmailOfTheWrongFormIsRefusedAndNothingIsSaved() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmNewTrader form;
        form.InitForm(0, "", "2026-11", "");
        showActive(&form);
        form.txtinput(0)->setText("다라철강");
        form.txtinput(16)->setText("buy@dara");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text,
                 QStringLiteral("이메일 주소가 올바르지 않습니다: buy@dara\r\n예) tax@example.co.kr"));
        QCOMPARE(count(stores().dbBasic, "Trader"), 0);
        QCOMPARE(focused(), form.txtinput(16));
        QVERIFY(form.isVisible());
    }
    void aChangedTraderShowsAndKeepsItsEmail() {
        TestHome home;
        QVERIFY(openStores());
        script();
        QVERIFY(
            exec(stores().dbBasic,
                 "insert into Trader (Code, C_Name, Email) values ('000001', '다라철강', 'old@dara.kr')"));
        FrmNewTrader form;
        form.InitForm(1, "다라철강", "2026-11", "000001");
        QCOMPARE(form.txtinput(16)->text(), QStringLiteral("old@dara.kr"));
        form.txtinput(16)->setText(" new@dara.kr ");
        form.btnSave()->click();
        QCOMPARE(traderEmail("000001").toString(), QStringLiteral("new@dara.kr"));
    }
    void supplierEmailIsTypedAfterTheItemAndStored() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmUser form;
        showActive(&form);
        form.txtinput(8)->setFocus();
        keyHere(Qt::Key_Return);
        QCOMPARE(focused(), form.txtinput(9));
        typeHere("tax@gana.co.kr");
        form.txtinput(0)->setText("가나상사");
        form.txtinput(2)->setText("123-45-67891");
        saveScreenshot(&form, "frm_user_email");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 저장하였습니다."));
        SupplierFields back;
        QVERIFY(ReadSupplier("123-45-67891", back));
        QCOMPARE(back[kSupplierEmailField], QStringLiteral("tax@gana.co.kr"));
    }
    void aSupplierEmailOfTheWrongFormIsRefusedAndNothingIsSaved() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmUser form;
        showActive(&form);
        form.txtinput(0)->setText("가나상사");
        form.txtinput(2)->setText("123-45-67891");
        form.txtinput(9)->setText("tax gana@co.kr");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text,
                 QStringLiteral("이메일 주소가 올바르지 않습니다: tax gana@co.kr\r\n예) tax@example.co.kr"));
        QCOMPARE(count(stores().dbBasic, "User"), 0);
        QCOMPARE(focused(), form.txtinput(9));
    }
};

QTEST_MAIN(TestEmailEntry)
#include "tst_email_entry.moc"
