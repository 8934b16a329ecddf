// The trader and product lists searched by typed text: the rows a text finds, with "%", "_" and
// "\" taken literally, and no failure box on the way.
#include "MasterFixture.h"

#include "master/FrmProductList.h"
#include "master/FrmTraderList.h"

#include <QLineEdit>

using namespace nb;

namespace {

int traderSearch(const QString& text, QLineEdit* target) {
    FrmTraderList list;
    list.SetObject(target);
    int result = -1;
    list.InitForm(text, 0, result);
    return result;
}

int productSearch(const QString& text, QLineEdit* target) {
    FrmProductList list;
    list.SetObject(target);
    int result = -1;
    list.InitForm(1, text, result);
    return result;
}

} // namespace

class TestListSearch : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void shortHangulTextFindsItsOneTraderWithoutABox() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(test::openStores());
        test::addTrader("000001", "가나철강");
        test::addTrader("000002", "다라상회");
        QLineEdit target;
        QCOMPARE(traderSearch("가나", &target), 1);
        QCOMPARE(target.text(), QStringLiteral("000001"));
        QVERIFY(msgs.records().empty());
    }
    void percentAndUnderscoreInATraderSearchAreLiteral() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(test::openStores());
        // A text that begins with a digit searches the telephone, so these begin with Hangul.
        test::addTrader("000001", "세일50%마트");
        test::addTrader("000002", "세일500마트");
        test::addTrader("000003", "특_상사");
        test::addTrader("000004", "특X상사");
        QLineEdit first;
        QCOMPARE(traderSearch("세일50%", &first), 1);
        QCOMPARE(first.text(), QStringLiteral("000001"));
        QLineEdit second;
        QCOMPARE(traderSearch("특_", &second), 1);
        QCOMPARE(second.text(), QStringLiteral("000003"));
        QVERIFY(msgs.records().empty());
    }
    void longTextGoesThroughTheIndexWithTheSameRows() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(test::openStores());
        test::addTrader("000001", "가나철강상사");
        test::addTrader("000002", "대한가나철강");
        test::addTrader("000003", "다라상회");
        QLineEdit target;
        QCOMPARE(traderSearch("가나철강", &target), 2);
        QVERIFY(msgs.records().empty());
    }
    void underscoreInAProductSearchIsLiteral() {
        test::TestHome home;
        auto& msgs = test::script();
        QVERIFY(test::openStores());
        test::addProduct("000001", "볼_트");
        test::addProduct("000002", "볼트");
        QLineEdit target;
        QCOMPARE(productSearch("볼_", &target), 1);
        QCOMPARE(target.text(), QStringLiteral("000001"));
        QVERIFY(msgs.records().empty());
    }
};

NB_TEST_MAIN(TestListSearch)
#include "tst_list_search.moc"
