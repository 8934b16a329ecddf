// The short date format forced at start-up.
#include "TestSupport.h"
#include "common/dates/ShortDate.h"

using namespace nb;

namespace {

// A store that counts what is written to it.
class CountingStore : public ShortDateStore {
public:
    CountingStore(QString format, QStringList* writes, bool refuse = false)
        : m_format(std::move(format)), m_writes(writes), m_refuse(refuse) {}
    QString read() const override { return m_format; }
    bool write(const QString& format) override {
        m_writes->append(format);
        if (m_refuse) return false;
        m_format = format;
        return true;
    }

private:
    QString m_format;
    QStringList* m_writes;
    bool m_refuse;
};

} // namespace

class TestShortDate : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void formatAlreadyYearMonthDayIsNotWritten() {
        test::TestHome home;
        QStringList writes;
        setShortDateStore(std::make_unique<CountingStore>(QStringLiteral("yyyy-MM-dd"), &writes));
        ForceDateFormat(0);
        QVERIFY(writes.isEmpty());
        QCOMPARE(OldShortDate(), QStringLiteral("yyyy-MM-dd"));
    }
    void anotherFormatIsForcedToYearMonthDay() {
        test::TestHome home;
        QStringList writes;
        setShortDateStore(std::make_unique<CountingStore>(QStringLiteral("yy. M. d."), &writes));
        ForceDateFormat(0);
        QCOMPARE(writes, QStringList{QStringLiteral("yyyy-MM-dd")});
        QCOMPARE(GetShortDate(), QStringLiteral("yyyy-MM-dd"));
        QCOMPARE(OldShortDate(), QStringLiteral("yy. M. d."));
    }
    void modeOnePutsTheOldFormatBack() {
        test::TestHome home;
        QStringList writes;
        setShortDateStore(std::make_unique<CountingStore>(QStringLiteral("M/d/yyyy"), &writes));
        ForceDateFormat(0);
        ForceDateFormat(1);
        QCOMPARE(GetShortDate(), QStringLiteral("M/d/yyyy"));
    }
    void otherModesDoNothing() {
        test::TestHome home;
        QStringList writes;
        setShortDateStore(std::make_unique<CountingStore>(QStringLiteral("M/d/yyyy"), &writes));
        ForceDateFormat(2);
        ForceDateFormat(-1);
        QVERIFY(writes.isEmpty());
        QCOMPARE(GetShortDate(), QStringLiteral("M/d/yyyy"));
    }
    void aRefusedFormatIsPassedOver() {
        test::TestHome home;
        QStringList writes;
        setShortDateStore(std::make_unique<CountingStore>(QStringLiteral("M/d/yyyy"), &writes, true));
        ForceDateFormat(0);
        QCOMPARE(writes.size(), 1);
        QCOMPARE(GetShortDate(), QStringLiteral("M/d/yyyy"));
    }
    void setShortDateKeepsThePresentFormatFirst() {
        test::TestHome home;
        QStringList writes;
        setShortDateStore(std::make_unique<CountingStore>(QStringLiteral("yy-M-d"), &writes));
        QVERIFY(SetShortDate(QStringLiteral("yyyy-MM-dd")));
        QCOMPARE(OldShortDate(), QStringLiteral("yy-M-d"));
    }
    void theProgramsOwnFormatEndsAsYearMonthDay() {
        test::TestHome home;
        ForceDateFormat(0);
        QCOMPARE(GetShortDate(), QStringLiteral("yyyy-MM-dd"));
    }
};

NB_TEST_MAIN(TestShortDate)
#include "tst_shortdate.moc"
