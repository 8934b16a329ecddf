// The check digit of business registration numbers.
#include "common/text/BusinessNumber.h"

#include <QTest>

using namespace nb;

class TestBusinessNumber : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void checkDigit_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<bool>("valid");
        // 1+6+21+4+15+42+7+24+45 = 165, plus 9*5/10 = 4: 169, so the check digit is 1.
        QTest::newRow("worked example with hyphens") << "123-45-67891" << true;
        QTest::newRow("worked example plain") << "1234567891" << true;
        QTest::newRow("worked example, wrong last digit") << "123-45-67890" << false;
        // 1*1+0+1*7+... : 1,0,1,0,1,0,1,0,5 -> 1+0+7+0+3+0+1+0+25 = 37, plus 5*5/10 = 2: 39 -> 1
        QTest::newRow("ninth digit carries its tens") << "101-01-01051" << true;
        QTest::newRow("ninth digit tens ignored would give 3") << "101-01-01053" << false;
        QTest::newRow("sum a multiple of ten gives 0") << "000-00-00000" << true;
        QTest::newRow("blanks around") << " 123-45-67891 " << true;
        QTest::newRow("nine digits") << "123-45-6789" << false;
        QTest::newRow("eleven digits") << "123-45-678910" << false;
        QTest::newRow("a letter") << "123-45-6789A" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("resident number is not a business number") << "800101-1234567" << false;
    }
    void checkDigit() {
        QFETCH(QString, number);
        QFETCH(bool, valid);
        QCOMPARE(IsValidBusinessNumber(number), valid);
    }
    void everyLastDigitButOneFails() {
        int passing = 0;
        for (int last = 0; last <= 9; ++last)
            passing += IsValidBusinessNumber(QStringLiteral("220-81-6251") + QString::number(last)) ? 1 : 0;
        QCOMPARE(passing, 1);
    }
    void digitsDropHyphensAndBlanks() {
        QCOMPARE(businessNumberDigits(QStringLiteral(" 123-45-67891")), QStringLiteral("1234567891"));
    }
    void warningNamesTheNumber() {
        QCOMPARE(businessNumberWarning(QStringLiteral("123-45-67890")),
                 QStringLiteral("사업자등록번호 123-45-67890의 검증번호가 맞지 않습니다.\r\n"
                                "번호를 다시 확인하십시오. (그대로 저장할 수 있습니다)"));
    }
};

QTEST_APPLESS_MAIN(TestBusinessNumber)
#include "tst_business_number.moc"
