// The amount in Korean words, walk by walk, quirks included.
#include "TestSupport.h"
#include "common/text/MoneyWords.h"

using namespace nb;

class TestHanKum : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // The table of required outputs, the lost 만 and the 조억 among them.
    void requiredOutputs_data() {
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("expected");
        auto row = [](const char* in, const char* out) {
            QTest::newRow(in) << QString::fromUtf8(in) << QString::fromUtf8(out);
        };
        row("1000", "일금 일천 원정");
        row("10000", "일금 일만 원정");
        row("120000", "일금 일십이만 원정");
        row("100000000", "일금 일억 원정");
        row("100100000", "일금 일억일십만 원정");
        row("100010000", "일금 일억일 원정");
        row("100012345", "일금 일억일이천삼백사십오 원정");
        row("1000000000000", "일금 일조억 원정");
        row("10000000000000", "일금 일십조억 원정");
    }
    void requiredOutputs() {
        QFETCH(QString, amount);
        QFETCH(QString, expected);
        QCOMPARE(GetHanKum(amount), expected);
    }

    void zeroAndEmptyGiveEmptyText_data() {
        QTest::addColumn<QString>("amount");
        QTest::newRow("0") << QStringLiteral("0");
        QTest::newRow("000") << QStringLiteral("000");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << QStringLiteral("   ");
    }
    void zeroAndEmptyGiveEmptyText() {
        QFETCH(QString, amount);
        QCOMPARE(GetHanKum(amount), QString());
    }

    void fourteenCharactersAreWrittenOutFifteenAreRefused() {
        QCOMPARE(GetHanKum(QStringLiteral("12345678901234")),
                 QStringLiteral("일금 일십이조삼천사백오십육억칠천팔백구십만일천이백삼십사 원정"));
        QCOMPARE(GetHanKum(QStringLiteral("123456789012345")), QString());
        QCOMPARE(GetHanKum(QStringLiteral("100000000000000")), QString());
    }
    void blanksAroundAreTrimmedBeforeCounting() {
        QCOMPARE(GetHanKum(QStringLiteral("  1000 ")), QStringLiteral("일금 일천 원정"));
        QCOMPARE(GetHanKum(QStringLiteral(" 12345678901234 ")),
                 QStringLiteral("일금 일십이조삼천사백오십육억칠천팔백구십만일천이백삼십사 원정"));
    }
    void minusSignTakesAPlaceAndGivesNoWord() {
        // "-1000" is five characters: the sign stands at the 만 place.
        QCOMPARE(GetHanKum(QStringLiteral("-1000")), QStringLiteral("일금 만일천 원정"));
        // At the 십 place the sign repeats the word before it with the place's unit.
        QCOMPARE(GetHanKum(QStringLiteral("-5")), QStringLiteral("일금 십오 원정"));
    }
    void fractionPointRepeatsThePreviousDigitWord() {
        QCOMPARE(GetHanKum(QStringLiteral("12.5")), QStringLiteral("일금 일천이백이십오 원정"));
        QCOMPARE(GetHanKum(QStringLiteral("1000.5")), QStringLiteral("일금 일십만십오 원정"));
    }
    void digitOneIsAlwaysSpoken() {
        QCOMPARE(GetHanKum(QStringLiteral("1111")), QStringLiteral("일금 일천일백일십일 원정"));
    }
    void zeroGroupAfterEokHasNoWord() {
        QCOMPARE(GetHanKum(QStringLiteral("200000005")), QStringLiteral("일금 이억오 원정"));
        QCOMPARE(GetHanKum(QStringLiteral("230000000")), QStringLiteral("일금 이억삼천만 원정"));
    }
    void everyDigitWord() {
        QCOMPARE(GetHanKum(QStringLiteral("123456789")),
                 QStringLiteral("일금 일억이천삼백사십오만육천칠백팔십구 원정"));
    }
};

NB_TEST_MAIN(TestHanKum)
#include "tst_hankum.moc"
