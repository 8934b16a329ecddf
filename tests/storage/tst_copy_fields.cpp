// The fields of the rows streamed onto a server: texts with the copy's own marks escaped, amounts
// as the shortest decimal that reads back as the same double, fractions in whole-number columns
// rounded half to even.
#include "TestSupport.h"
#include "storage/backup/ServerCopyIn.h"
#include "storage/backup/ServerCopyOut.h"

#include <cstdlib>

using namespace nb;

namespace {

QByteArray text(const QByteArray& value) {
    QByteArray line;
    appendCopyText(&line, value.constData(), value.size());
    return line;
}
QByteArray fraction(double value) {
    QByteArray line;
    appendCopyFraction(&line, value);
    return line;
}
QByteArray whole(double value) {
    QByteArray line;
    appendCopyWhole(&line, value);
    return line;
}

} // namespace

class TestCopyFields : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theCopysMarksInATextAreEscaped() {
        QCOMPARE(text("a\tb"), QByteArray("a\\tb"));
        QCOMPARE(text("줄\n바꿈\r\n"), QByteArray("줄\\n바꿈\\r\\n"));
        QCOMPARE(text("역\\슬래시\\"), QByteArray("역\\\\슬래시\\\\"));
        // The text "\N" is a text, never the copy's null.
        QCOMPARE(text("\\N"), QByteArray("\\\\N"));
        QCOMPARE(text(""), QByteArray());
        QCOMPARE(text("㈜가나 똠 햏 , ; \" '"), QByteArray("㈜가나 똠 햏 , ; \" '"));
    }

    void anAmountReadsBackAsTheSameDouble() {
        const double sum = 0.1 + 0.2;
        QCOMPARE(fraction(sum), QByteArray("0.30000000000000004"));
        QCOMPARE(std::strtod(fraction(sum).constData(), nullptr), sum);
        QCOMPARE(fraction(1.0 / 3), QByteArray("0.3333333333333333"));
        QCOMPARE(std::strtod(fraction(1.0 / 3).constData(), nullptr), 1.0 / 3);
        QCOMPARE(fraction(12345.5), QByteArray("12345.5"));
        QCOMPARE(fraction(-987654321098.765), QByteArray("-987654321098.765"));
        QCOMPARE(std::strtod(fraction(123456789012345678.0).constData(), nullptr), 123456789012345678.0);
        QCOMPARE(fraction(0.0), QByteArray("0"));
    }

    void amountsWithoutAValueGoByTheServersNames() {
        QCOMPARE(fraction(std::numeric_limits<double>::quiet_NaN()), QByteArray("NaN"));
        QCOMPARE(fraction(std::numeric_limits<double>::infinity()), QByteArray("Infinity"));
        QCOMPARE(fraction(-std::numeric_limits<double>::infinity()), QByteArray("-Infinity"));
    }

    void aFractionInAWholeNumberColumnIsRoundedHalfToEven() {
        QCOMPARE(whole(2.5), QByteArray("2"));
        QCOMPARE(whole(3.5), QByteArray("4"));
        QCOMPARE(whole(-2.5), QByteArray("-2"));
        QCOMPARE(whole(-4.5), QByteArray("-4"));
        QCOMPARE(whole(7.49), QByteArray("7"));
        QCOMPARE(whole(1234567890123.0), QByteArray("1234567890123"));
        // Past the largest whole number the server's column refuses it, as it refused the bound
        // value: the digits go as they are.
        QCOMPARE(whole(1e20), QByteArray("100000000000000000000"));
    }

    void aFieldTheServerWroteReadsBackAsItsText() {
        const auto read = [](const QByteArray& field) {
            return copyFieldText(field.constData(), field.size());
        };
        QCOMPARE(read("a\\tb"), QByteArray("a\tb"));
        QCOMPARE(read("\\b\\f\\n\\r\\t\\v"), QByteArray("\b\f\n\r\t\v"));
        QCOMPARE(read("\\\\N"), QByteArray("\\N"));
        QCOMPARE(read("끝\\\\"), QByteArray("끝\\"));
        QCOMPARE(read(""), QByteArray());
        // Every text written as a field is read back as itself.
        for (const QByteArray& original : {QByteArray("탭\t줄\n캐리지\r역\\슬래시"), QByteArray("\\N"),
                                           QByteArray("\\\\t"), QByteArray(" 빈칸 "), QByteArray("\n")})
            QCOMPARE(read(text(original)), original);
    }

    void eachColumnTypeHasItsField() {
        QCOMPARE(copyColumnOf(dbText), CopyColumn::Text);
        QCOMPARE(copyColumnOf(dbMemo), CopyColumn::Text);
        QCOMPARE(copyColumnOf(dbLong), CopyColumn::Whole);
        QCOMPARE(copyColumnOf(dbBoolean), CopyColumn::Whole);
        QCOMPARE(copyColumnOf(dbByte), CopyColumn::Whole);
        QCOMPARE(copyColumnOf(dbDouble), CopyColumn::Fraction);
        QCOMPARE(copyColumnOf(dbSingle), CopyColumn::Fraction);
    }
};

NB_TEST_MAIN(TestCopyFields)
#include "tst_copy_fields.moc"
