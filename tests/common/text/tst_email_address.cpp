// The form of an e-mail address, as the trader and supplier screens check it.
#include "common/text/EmailAddress.h"

#include <QTest>

using namespace nb;

class TestEmailAddress : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void form_data() {
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("valid");
        QTest::newRow("plain") << "tax@example.co.kr" << true;
        QTest::newRow("dots, plus and digits in the name") << "kim.ga-na+tax2@mail.example.com" << true;
        QTest::newRow("hyphen inside a label") << "a@my-shop.kr" << true;
        QTest::newRow("no at") << "tax.example.co.kr" << false;
        QTest::newRow("two ats") << "tax@@example.kr" << false;
        QTest::newRow("empty name") << "@example.kr" << false;
        QTest::newRow("domain of one label") << "tax@localhost" << false;
        QTest::newRow("blank inside") << "ta x@example.kr" << false;
        QTest::newRow("dot at the start of the name") << ".tax@example.kr" << false;
        QTest::newRow("two dots in a row") << "ta..x@example.kr" << false;
        QTest::newRow("label starting with a hyphen") << "tax@-example.kr" << false;
        QTest::newRow("empty label") << "tax@example..kr" << false;
        QTest::newRow("last label of digits") << "tax@example.123" << false;
        QTest::newRow("last label of one letter") << "tax@example.k" << false;
        QTest::newRow("Hangul in the name") << "세금@example.kr" << false;
        QTest::newRow("comma for a dot") << "tax@example,kr" << false;
    }
    void form() {
        QFETCH(QString, address);
        QFETCH(bool, valid);
        QCOMPARE(IsValidEmail(address), valid);
    }
    void refusalNamesTheAddressAndIsEmptyForNoneOrAGoodOne() {
        QCOMPARE(emailRefusal(QString()), QString());
        QCOMPARE(emailRefusal(QStringLiteral("  ")), QString());
        QCOMPARE(emailRefusal(QStringLiteral(" tax@example.kr ")), QString());
        QCOMPARE(emailRefusal(QStringLiteral("tax@example")),
                 QStringLiteral("이메일 주소가 올바르지 않습니다: tax@example\r\n예) tax@example.co.kr"));
    }
};

QTEST_MAIN(TestEmailAddress)
#include "tst_email_address.moc"
