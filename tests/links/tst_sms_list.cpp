// The SMS screen with a list longer than a page: six hundred traders counted at once, scrolled to
// the end, the last one ticked by keys and by the mouse, every row ticked at once, and the number
// file of every ticked row.
#include "SmsKit.h"
#include "common/grid/Grid.h"
#include "links/FrmSMS.h"

#include <QCheckBox>
#include <QLabel>
#include <QScrollBar>

using namespace nb;

namespace {

constexpr int kTraders = 600;

// Traders 거래처0001..0600 with the mobile numbers 010-0001..010-0600.
void addManyTraders() {
    QVERIFY(test::openStores());
    QVERIFY(test::exec(
        stores().dbBasic,
        QStringLiteral("INSERT INTO Trader (Code, C_Name, Phone, Fax, HPhone) WITH RECURSIVE "
                       "n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) SELECT "
                       "%2, '거래처' || %3, '', '', '010-' || %3 FROM n")
            .arg(kTraders)
            .arg(test::digitsSql(QStringLiteral("i"), 6), test::digitsSql(QStringLiteral("i"), 4))));
}

struct Screen {
    FrmSMS form;
    Screen() {
        test::showActive(&form); // the first activation searches
        QTRY_VERIFY(form.grdList->MaxRows() > 0);
    }
    Grid* grid() { return form.grdList; }
    bool ticked(int row) { return grid()->Text(FrmSMS::ColCheck, row) == QStringLiteral("1"); }
    void scrollToTheEnd() {
        QApplication::processEvents(); // the list painted: its scroll bar knows every row
        grid()->verticalScrollBar()->setValue(grid()->verticalScrollBar()->maximum());
        QApplication::processEvents();
    }
};

QString lastName() {
    return QStringLiteral("거래처%1").arg(kTraders, 4, 10, QChar(u'0'));
}

} // namespace

class TestSmsList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aLongListIsCountedAtOnceWithEveryTradersNumber() {
        test::TestHome home;
        addManyTraders();
        test::script();
        Screen s;
        QVERIFY(s.grid()->isList());
        QCOMPARE(s.grid()->MaxRows(), kTraders);
        QCOMPARE(s.grid()->Text(FrmSMS::ColName, 1), QStringLiteral("거래처0001"));
        QCOMPARE(s.grid()->Text(FrmSMS::ColTel, kTraders), QStringLiteral("010-0600"));
        QCOMPARE(s.grid()->DataRowCnt(), kTraders);
        QCOMPARE(s.form.lblCountRec->text(), QStringLiteral("0"));
    }

    void scrollingToTheEndShowsTheLastTrader() {
        test::TestHome home;
        addManyTraders();
        test::script();
        Screen s;
        s.scrollToTheEnd();
        QCOMPARE(s.grid()->rowAt(s.grid()->viewport()->height() - 2) + 1, kTraders);
        QCOMPARE(s.grid()->Text(FrmSMS::ColName, kTraders), lastName());
    }

    void theLastRowIsTickedByKeysAndByTheMouse() {
        test::TestHome home;
        addManyTraders();
        test::script();
        Screen s;
        s.grid()->setFocus();
        s.grid()->SetActiveCell(FrmSMS::ColName, 1);
        for (int k = 0; k < kTraders && s.grid()->ActiveRow() < kTraders; ++k)
            test::pressKey(s.grid(), Qt::Key_PageDown);
        QCOMPARE(s.grid()->ActiveRow(), kTraders);
        test::pressKey(s.grid(), Qt::Key_Space);
        QVERIFY(s.ticked(kTraders));
        QCOMPARE(s.grid()->BackColor(FrmSMS::ColName, kTraders), kTickedRowColor);
        QCOMPARE(s.form.lblCountRec->text(), QStringLiteral("1"));

        s.scrollToTheEnd();
        const QRect tick = s.grid()->visualRect(s.grid()->model()->index(kTraders - 1, FrmSMS::ColCheck - 1));
        QVERIFY(tick.isValid());
        QTest::mouseClick(s.grid()->viewport(), Qt::LeftButton, {}, tick.center());
        QVERIFY(!s.ticked(kTraders));
        QCOMPARE(s.form.lblCountRec->text(), QStringLiteral("0"));
    }

    void everyRowTickedAtOnceGoesIntoTheNumberFile() {
        test::TestHome home;
        addManyTraders();
        test::SendProgramFolder own;
        test::script();
        Screen s;
        s.form.ChkAll->setChecked(true);
        QCOMPARE(s.form.lblCountRec->text(), QString::number(kTraders));
        QVERIFY(s.ticked(kTraders));
        QVERIFY(TransFromSpread(*s.grid(), FrmSMS::ColCheck, FrmSMS::ColName, FrmSMS::ColTel));
        QTRY_VERIFY(own.started());
        const QStringList lines =
            FromCp949(own.numberFile()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), kTraders);
        QCOMPARE(lines.first(), QStringLiteral("거래처0001,010-0001"));
        QCOMPARE(lines.last(), lastName() + QStringLiteral(",010-0600"));
    }
};

NB_TEST_MAIN(TestSmsList)
#include "tst_sms_list.moc"
