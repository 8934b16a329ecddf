// Text by printed width: CP949 byte counts, cutting, padding, and the character code that the
// list screens test.
#include "TestSupport.h"
#include "common/text/ByteText.h"
#include "common/text/Cp949.h"

using namespace nb;

class TestByteText : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void asciiCodesAreTheirBytes() {
        QCOMPARE(AscCode(u'A'), 65);
        QCOMPARE(AscCode(u'Z'), 90);
        QCOMPARE(AscCode(u'a'), 97);
        QCOMPARE(AscCode(u'z'), 122);
        QCOMPARE(AscCode(u'0'), 48);
        QCOMPARE(AscCode(u'9'), 57);
        QCOMPARE(AscCode(u' '), 32);
    }
    void hangulCodesAreNegativeDoubleBytes() {
        QCOMPARE(AscCode(QChar(u'가')), -20319); // B0A1
        QCOMPARE(AscCode(QChar(u'힣')), -14766); // C652
        QCOMPARE(AscCode(QChar(u'똠')), -29597); // 8C63, outside the older Korean set
        QCOMPARE(AscCode(QChar(u'ㄱ')), -23391);
        QCOMPARE(AscCode(QChar(u'一')), -4887);
        QVERIFY(AscCode(QChar(u'햏')) < 0);
    }
    void firstCharCodeChoosesBetweenLettersAndHangul() {
        QCOMPARE(FirstCharCode(QStringLiteral("Apple")), 65);
        QCOMPARE(FirstCharCode(QStringLiteral("zeta")), 122);
        QCOMPARE(FirstCharCode(QStringLiteral("123")), 49);
        QCOMPARE(FirstCharCode(QStringLiteral("한국상사")), AscCode(QChar(u'한')));
        QVERIFY(FirstCharCode(QStringLiteral("한국상사")) < 0);
    }
    void firstCharCodeOfEmptyTextIsZero() { QCOMPARE(FirstCharCode(QString()), 0); }
    void characterOutsideTheCodePageIsOneQuestionMark() {
        const QChar thai(0x0E01);
        QCOMPARE(Cp949Bytes(thai), QByteArray("?"));
        QCOMPARE(AscCode(thai), 63);
        QCOMPARE(AnsiLenB(QString(thai)), 1);
        QCOMPARE(ByteLen(QString(thai)), 1);
        // A character beyond 16 bits is two halves, each one "?".
        const QString emoji = QString::fromUcs4(U"\U0001F600");
        QCOMPARE(ToCp949(emoji), QByteArray("??"));
        QCOMPARE(CutBytes(QStringLiteral("A") + thai + QStringLiteral("B"), 2), QStringLiteral("A") + thai);
    }
    void codePageRoundTripsRareSyllables() {
        const QString text = QStringLiteral("똠햏 가A1");
        QCOMPARE(ToCp949(text).size(), 9);
        QCOMPARE(FromCp949(ToCp949(text)), text);
        QCOMPARE(FromCp949(QByteArray("\xb0\xa1", 2)), QStringLiteral("가"));
    }

    void byteLenCountsHangulAsTwo() {
        QCOMPARE(ByteLen(QString()), 0);
        QCOMPARE(ByteLen(QStringLiteral("ABC")), 3);
        QCOMPARE(ByteLen(QStringLiteral("가나다")), 6);
        QCOMPARE(ByteLen(QStringLiteral("가A나1")), 6);
        QCOMPARE(ByteLen(QStringLiteral("(주)한국")), 8);
    }
    void byteLenCountsANullCharacterAsTwo() {
        // Its code, 0, is below 1 like a double-byte one.
        QCOMPARE(ByteLen(QString(QChar(0))), 2);
        QCOMPARE(AnsiLenB(QString(QChar(0))), 1);
    }
    void ansiLenBCountsCodePageBytes() {
        QCOMPARE(AnsiLenB(QString()), 0);
        QCOMPARE(AnsiLenB(QStringLiteral("abc")), 3);
        QCOMPARE(AnsiLenB(QStringLiteral("세금계산서")), 10);
        QCOMPARE(AnsiLenB(QStringLiteral("A가")), 3);
    }

    void cutBytesCutsToTheExactWidth() {
        QCOMPARE(CutBytes(QStringLiteral("ABCDEF"), 4), QStringLiteral("ABCD"));
        QCOMPARE(CutBytes(QStringLiteral("가나다라"), 4), QStringLiteral("가나"));
        QCOMPARE(CutBytes(QStringLiteral("A가나"), 3), QStringLiteral("A가"));
    }
    void hangulStraddlingTheLimitIsReplacedByABlank() {
        QCOMPARE(CutBytes(QStringLiteral("가나다"), 5), QStringLiteral("가나 "));
        QCOMPARE(CutBytes(QStringLiteral("A가"), 2), QStringLiteral("A "));
        QCOMPARE(AnsiLenB(CutBytes(QStringLiteral("A가나다"), 6)), 6);
    }
    void cutBytesReturnsShorterTextWhole() {
        QCOMPARE(CutBytes(QStringLiteral("가A"), 10), QStringLiteral("가A"));
        QCOMPARE(CutBytes(QString(), 3), QString());
    }

    void cutAnsiKeepsWholeCharactersAndDoesNotPad() {
        QCOMPARE(CutAnsi(QStringLiteral("가나다"), 5), QStringLiteral("가나"));
        QCOMPARE(CutAnsi(QStringLiteral("가나다"), 6), QStringLiteral("가나다"));
        QCOMPARE(CutAnsi(QStringLiteral("A가"), 2), QStringLiteral("A"));
        QCOMPARE(CutAnsi(QStringLiteral("가A"), 1), QString());
        QCOMPARE(CutAnsi(QStringLiteral("ABC"), 0), QString());
    }

    void padBytesRightAlignsInColumns() {
        QCOMPARE(PadBytes(QStringLiteral("123"), 6), QStringLiteral("   123"));
        QCOMPARE(PadBytes(1234.5, 10), QStringLiteral("    1234.5"));
        QCOMPARE(PadBytes(qint64(1234567), 4), QStringLiteral("1234"));
    }
    void padBytesCountsHangulAsTwoColumns() {
        QCOMPARE(PadBytes(QStringLiteral("가나"), 6), QStringLiteral("  가나"));
        QCOMPARE(PadBytes(QStringLiteral("개"), 4), QStringLiteral("  개"));
        QCOMPARE(PadBytes(QStringLiteral("가나다"), 5), QStringLiteral("가나 "));
        QCOMPARE(PadBytes(QStringLiteral("가나다"), 6), QStringLiteral("가나다"));
    }
    void padBytesGivesBlanksForEmptyNullAndInvalid() {
        QCOMPARE(PadBytes(QString(), 4), QStringLiteral("    "));
        QCOMPARE(PadBytes(QVariant(), 3), QStringLiteral("   "));
        QCOMPARE(PadBytes(QVariant(QMetaType(QMetaType::QString)), 2), QStringLiteral("  "));
    }

    void nullToTextGivesEmptyForNull() {
        QCOMPARE(NullToText(QVariant()), QString());
        QCOMPARE(NullToText(QVariant(QMetaType(QMetaType::Int))), QString());
        QCOMPARE(NullToText(QStringLiteral("거래처")), QStringLiteral("거래처"));
        QCOMPARE(NullToText(42), QStringLiteral("42"));
        QCOMPARE(NullToText(100.0), QStringLiteral("100"));
        QCOMPARE(NullToText(0.1 + 0.2), QStringLiteral("0.3"));
    }
};

NB_TEST_MAIN(TestByteText)
#include "tst_bytetext.moc"
