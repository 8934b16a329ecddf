// Text edge cases beside the main text tests: amounts past fourteen characters, a sign and a
// point inside an amount, Hangul cut at the column limit, phone numbers of letters.
#include "TestSupport.h"
#include "common/text/ByteText.h"
#include "common/text/Identity.h"
#include "common/text/MoneyWords.h"

using namespace nb;

class TestTextEdgeCases : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void hanKumOfMoreThanFifteenCharactersIsEmpty() {
        QCOMPARE(GetHanKum(QStringLiteral("1234567890123456")), QString());
        QCOMPARE(GetHanKum(QStringLiteral("12345678901234567890")), QString());
    }
    void hanKumCountsTheTrimmedLengthAgainstTheLimit() {
        // Fifteen characters with the blanks, fourteen without: written out.
        QCOMPARE(GetHanKum(QStringLiteral(" 10000000000000")), QStringLiteral("일금 일십조억 원정"));
    }
    void minusSignAtTheThousandsPlaceGivesAWrongUnit() {
        // The sign stands at the 천 place with no digit word before it.
        QCOMPARE(GetHanKum(QStringLiteral("-100")), QStringLiteral("일금 천일백 원정"));
    }
    void pointRepeatsTheDigitBeforeItWithTheUnitOfItsPlace() {
        QCOMPARE(GetHanKum(QStringLiteral("5.5")), QStringLiteral("일금 오백오십오 원정"));
        QCOMPARE(GetHanKum(QStringLiteral("1.5")), QStringLiteral("일금 일백일십오 원정"));
    }

    void cutBytesReplacesAStraddlingHangulAfterALatinLetter() {
        QCOMPARE(CutBytes(QStringLiteral("A가나"), 4), QStringLiteral("A가 "));
        QCOMPARE(ByteLen(CutBytes(QStringLiteral("A가나"), 4)), 4);
    }
    void padBytesCountsHangulInMixedTextAsTwoColumns() {
        QCOMPARE(PadBytes(QStringLiteral("(주)한국"), 10), QStringLiteral("  (주)한국"));
        QCOMPARE(PadBytes(QStringLiteral("가"), 3), QStringLiteral(" 가"));
        QCOMPARE(PadBytes(QStringLiteral("A가나"), 4), QStringLiteral("A가 "));
    }

    void phoneWithLettersKeepsTheLocalPartOfItsDigits() {
        QString local;
        QCOMPARE(FormatPhone(QStringLiteral("T.031-123-4567"), local), QStringLiteral("031-123-4567"));
        QCOMPARE(local, QStringLiteral("123-4567"));
    }
    void fiveLettersAreTooShortAndComeBackAsTheyAre() {
        QCOMPARE(FormatPhone(QStringLiteral("abcde")), QStringLiteral("abcde"));
    }
    void sixLettersYieldEmptyText() { QCOMPARE(FormatPhone(QStringLiteral("abcdef")), QString()); }
};

NB_TEST_MAIN(TestTextEdgeCases)
#include "tst_text_edge_cases.moc"
