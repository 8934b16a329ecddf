// The SMS list shows the traders registered since its search, here or at another seat: its last
// search runs again when the operator comes back to the screen (both engines), and on the server
// as soon as the other seat's save is told. The operator's ticks stay on the same traders, the
// count with them, and the boxes keep what was typed into them.
#include "MdiHost.h"
#include "SmsKit.h"
#include "common/grid/Grid.h"
#include "links/FrmSMS.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>

using namespace nb;

namespace {

struct HostedSms {
    test::TestHome home;
    test::MdiHost host;
    FrmSMS* f = nullptr;
    HostedSms() {
        QVERIFY(test::openStores());
        test::addTraders({{QStringLiteral("000001"), QStringLiteral("가나상사"), QStringLiteral("02-111"),
                           QString(), QStringLiteral("010-1111")},
                          {QStringLiteral("000002"), QStringLiteral("다온상회"), QString(), QString(),
                           QStringLiteral("010-2222")},
                          {QStringLiteral("000003"), QStringLiteral("마루"), QString(), QString(),
                           QStringLiteral("010-3333")}});
        test::script();
        f = new FrmSMS;
        host.host(f, QSize(1000, 800));
    }
    void awayAndBack() { host.awayAndBack(); }
    QStringList names() const {
        QStringList out;
        for (int row = 1; row <= f->grdList->MaxRows(); ++row)
            out << f->grdList->Text(FrmSMS::ColName, row);
        return out;
    }
    bool ticked(int row) const { return f->grdList->Text(FrmSMS::ColCheck, row) == QStringLiteral("1"); }
};

void anotherSeatRegisters(const QString& code, const QString& name, const QString& mobile) {
    Database seat;
    QVERIFY(seat.open(app().DbBasicFile));
    QVERIFY(seat.tryExecute(
        QStringLiteral("INSERT INTO Trader (Code, C_Name, Phone, Fax, HPhone) VALUES (?, ?, '', "
                       "'', ?)"),
        {code, name, mobile}));
}

} // namespace

class TestSmsRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aTraderRegisteredElsewhereJoinsAndTheTicksStay() {
        HostedSms h;
        QCOMPARE(h.names(), (QStringList{QStringLiteral("가나상사"), QStringLiteral("다온상회"),
                                         QStringLiteral("마루")}));
        h.f->setTicked(1, true);
        h.f->setTicked(3, true);
        QCOMPARE(h.f->lblCountRec->text(), QStringLiteral("2"));
        h.f->txtName->setText(QStringLiteral("가")); // typed, not searched: the list stays the search's
        anotherSeatRegisters(QStringLiteral("000004"), QStringLiteral("나래"), QStringLiteral("010-4444"));
        if (stores().dbBasic.onServer()) {
            QVERIFY(QTest::qWaitFor([&h] { return h.names().size() == 4; }, 5000));
        } else {
            QTest::qWait(kListRefreshMillis + 150);
            QCOMPARE(h.names().size(), 3); // files tell nothing: the next activation reads
            h.awayAndBack();
        }
        QCOMPARE(h.names(), (QStringList{QStringLiteral("가나상사"), QStringLiteral("나래"),
                                         QStringLiteral("다온상회"), QStringLiteral("마루")}));
        QVERIFY(h.ticked(1));
        QVERIFY(!h.ticked(2));
        QVERIFY(!h.ticked(3));
        QVERIFY(h.ticked(4));
        QCOMPARE(h.f->lblCountRec->text(), QStringLiteral("2"));
        QCOMPARE(h.f->grdList->BackColor(2, 4), kTickedRowColor);
        QCOMPARE(h.f->txtName->text(), QStringLiteral("가"));
    }
    void everyTraderTickedStaysEveryTraderButTheNewOne() {
        HostedSms h;
        h.f->ChkAll->setChecked(true);
        QCOMPARE(h.f->lblCountRec->text(), QStringLiteral("3"));
        anotherSeatRegisters(QStringLiteral("000004"), QStringLiteral("바다"), QStringLiteral("010-4444"));
        h.awayAndBack();
        QCOMPARE(h.names().size(), 4);
        QCOMPARE(h.f->lblCountRec->text(), QStringLiteral("3"));
        QVERIFY(!h.ticked(4)); // nobody chose it
        QVERIFY(!h.f->ChkAll->isChecked());
    }
};

NB_TEST_MAIN(TestSmsRefresh)
#include "tst_sms_refresh.moc"
