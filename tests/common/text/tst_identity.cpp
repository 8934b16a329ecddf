// Telephone numbers, business numbers and post codes put into shape; names with their
// norm (규격).
#include "TestSupport.h"
#include "common/text/Identity.h"

using namespace nb;

class TestIdentity : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void phoneTable_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("expected");
        auto row = [](const char* in, const char* out) {
            QTest::newRow(in) << QString::fromUtf8(in) << QString::fromUtf8(out);
        };
        row("0212345678", "02-1234-5678");
        row("021234567", "02-123-4567");
        row("0311234567", "031-123-4567");
        row("01012345678", "010-1234-5678");
        row("1234567", "123-4567");
        row("12345", "12345");
        row("02-123-4567", "02-123-4567");
        row("031234567", "031-23-4567");
    }
    void phoneTable() {
        QFETCH(QString, number);
        QFETCH(QString, expected);
        QCOMPARE(FormatPhone(number), expected);
    }

    void localPartIsTheNumberWithoutItsAreaCode() {
        QString local;
        QCOMPARE(FormatPhone(QStringLiteral("0311234567"), local), QStringLiteral("031-123-4567"));
        QCOMPARE(local, QStringLiteral("123-4567"));
        QCOMPARE(FormatPhone(QStringLiteral("0212345678"), local), QStringLiteral("02-1234-5678"));
        QCOMPARE(local, QStringLiteral("1234-5678"));
    }
    void localPartIsTheWholeNumberWithoutAreaCode() {
        QString local;
        QCOMPARE(FormatPhone(QStringLiteral("1234567"), local), QStringLiteral("123-4567"));
        QCOMPARE(local, QStringLiteral("123-4567"));
    }
    void tooShortNumberLeavesLocalPartAlone() {
        QString local = QStringLiteral("전");
        QCOMPARE(FormatPhone(QStringLiteral("12345"), local), QStringLiteral("12345"));
        QCOMPARE(local, QStringLiteral("전"));
        QCOMPARE(FormatPhone(QStringLiteral("abc"), local), QStringLiteral("abc"));
        QCOMPARE(local, QStringLiteral("전"));
    }
    void lettersInANumberAreDroppedAndTheDigitsFormatted() {
        QCOMPARE(FormatPhone(QStringLiteral("02)123-4567 내선")), QStringLiteral("02-123-4567"));
        QCOMPARE(FormatPhone(QStringLiteral("tel0311234567")), QStringLiteral("031-123-4567"));
        QCOMPARE(FormatPhone(QStringLiteral("010 1234 5678")), QStringLiteral("010-1234-5678"));
    }
    void numberOfOnlyLettersYieldsEmptyText() {
        QString local = QStringLiteral("전");
        QCOMPARE(FormatPhone(QStringLiteral("abcdef"), local), QString());
        QCOMPARE(local, QStringLiteral("전"));
        QCOMPARE(FormatPhone(QStringLiteral("전화번호없음")), QString());
    }
    void sevenDigitsStartingWithZeroHaveNoAreaCode() {
        QCOMPARE(FormatPhone(QStringLiteral("0123456")), QStringLiteral("012-3456"));
    }
    void eightDigitsStartingWithZeroHaveNoAreaCode() {
        QCOMPARE(FormatPhone(QStringLiteral("03123456")), QStringLiteral("0312-3456"));
    }
    void seoulNumberWithoutMiddleKeepsBothHyphens() {
        QCOMPARE(FormatPhone(QStringLiteral("021234")), QStringLiteral("02--1234"));
    }

    void nameWithNormNullGivesTheNameAlone() {
        QCOMPARE(NameWithNorm(QStringLiteral("볼트"), QVariant()), QStringLiteral("볼트"));
        QCOMPARE(NameWithNorm(QStringLiteral("볼트"), QVariant(QMetaType(QMetaType::QString))),
                 QStringLiteral("볼트"));
    }
    void nameWithNormEmptyGivesTheNameAlone() {
        QCOMPARE(NameWithNorm(QStringLiteral("볼트"), QString()), QStringLiteral("볼트"));
    }
    void nameWithNormBracketsTheNorm() {
        QCOMPARE(NameWithNorm(QStringLiteral("볼트"), QStringLiteral("M8x20")),
                 QStringLiteral("볼트(M8x20)"));
        QCOMPARE(NameWithNorm(QStringLiteral("A4 용지"), 80), QStringLiteral("A4 용지(80)"));
    }

    void businessNumberOfTenDigitsPrintsInThreeParts() {
        QCOMPARE(ShapeBusinessNo(QStringLiteral("1234567890")), QStringLiteral("123-45-67890"));
    }
    void businessNumberWithAHyphenIsLeftAlone() {
        QCOMPARE(ShapeBusinessNo(QStringLiteral("123-4567890")), QStringLiteral("123-4567890"));
        QCOMPARE(ShapeBusinessNo(QStringLiteral("-1234567890")), QStringLiteral("-1234567890"));
    }
    void businessNumberThatIsNoNumberIsLeftAlone() {
        QCOMPARE(ShapeBusinessNo(QStringLiteral("미등록")), QStringLiteral("미등록"));
        QCOMPARE(ShapeBusinessNo(QString()), QString());
    }
    void businessNumberIsNotCheckedAgainstACheckDigit() {
        QCOMPARE(ShapeBusinessNo(QStringLiteral("9999999999")), QStringLiteral("999-99-99999"));
    }
    void postCodeOfSixDigitsGetsItsHyphen() {
        QCOMPARE(ShapePostCode(QStringLiteral("135080")), QStringLiteral("135-080"));
        QCOMPARE(ShapePostCode(QStringLiteral("135-080")), QStringLiteral("135-080"));
    }
    void postCodeHyphenIsLookedForFromTheSecondCharacter() {
        // A lone leading "-" is no hyphen to this test: the text is formatted as a negative number.
        QCOMPARE(ShapePostCode(QStringLiteral("-135080")), QStringLiteral("-135-080"));
    }
    void masksAreTheFormattersMasks() {
        QCOMPARE(kBusinessNoMask, QStringLiteral("###-##-#####"));
        QCOMPARE(kPostCodeMask, QStringLiteral("###-###"));
    }
};

NB_TEST_MAIN(TestIdentity)
#include "tst_identity.moc"
