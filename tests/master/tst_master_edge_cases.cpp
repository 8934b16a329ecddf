// Corners of the supplier records: a changed registration number leaves the issued documents on
// the old number, and a registration number already holding a hyphen is kept in any shape.
#include "MasterFixture.h"
#include "core/Settings.h"
#include "master/FrmUser.h"
#include "master/SupplierRecords.h"

#include <QLineEdit>

using namespace nb;
using namespace nb::test;

namespace {

SupplierFields supplier(const QString& serial) {
    return {"가나상사",    "홍길동",      serial,   "135-080", "서울 강남구",
            "02-123-4567", "02-123-4568", "도소매", "문구"};
}

} // namespace

class TestMasterEdgeCases : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void changingTheSerialLeavesIssuedInvoicesOnTheOldNumber() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111");
        exec(stores().dbTax,
             "INSERT INTO NewAcount (TaxCode, CCode, PName, UserCode) VALUES ('100000', '000001', '볼트', "
             "'111-11-11111')");
        SupplierFormState state{true, false, "111-11-11111"};
        QCOMPARE(SaveSupplier(state, supplier("222-22-22222"), false), SupplierSave::Saved);
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 수정하였습니다."));
        QCOMPARE(scalar(stores().dbTax, "SELECT UserCode FROM NewAcount WHERE TaxCode = '100000'").toString(),
                 QStringLiteral("111-11-11111"));
        QCOMPARE(scalar(stores().dbBasic, "SELECT count(*) FROM User WHERE Serial = '111-11-11111'").toInt(),
                 0);
    }

    void aSerialHoldingAHyphenInAnyShapeIsKeptAsTyped_data() {
        QTest::addColumn<QString>("typed");
        QTest::newRow("one hyphen at the end") << "1234567890-";
        QTest::newRow("hyphen alone") << "-";
        QTest::newRow("short with hyphen") << "1-2";
        QTest::newRow("hyphens in odd places") << "1-2345-67890";
    }
    void aSerialHoldingAHyphenInAnyShapeIsKeptAsTyped() {
        QFETCH(QString, typed);
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmUser form;
        showActive(&form);
        form.txtinput(2)->setFocus();
        typeHere(typed);
        keyHere(Qt::Key_Return);
        QCOMPARE(form.txtinput(2)->text(), typed);
        QCOMPARE(focused(), form.txtinput(3));
    }
};

NB_TEST_MAIN(TestMasterEdgeCases)
#include "tst_master_edge_cases.moc"
