// The SMS screen driven by keys and the mouse: the first search, both filters, every way of
// ticking with the colours and the count, the date box, and the transfer to a stand-in program.
#include "SmsKit.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "core/Clock.h"
#include "links/FrmSMS.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace nb;

namespace {

// Five traders; 다 and 라 last dealt before 2024-06-01, 마 after it, 가 never.
void layDownTraders() {
    QVERIFY(test::openStores());
    test::addTraders({{QStringLiteral("000001"), QStringLiteral("가나상사"), QStringLiteral("02-111"),
                       QStringLiteral("02-112"), QStringLiteral("010-1111")},
                      {QStringLiteral("000002"), QStringLiteral("다온;상회"), QStringLiteral("011-222"),
                       QString(), QString()},
                      {QStringLiteral("000003"), QStringLiteral("라임's"), QStringLiteral("031-333"),
                       QStringLiteral("031-334"), QString()},
                      {QStringLiteral("000004"), QStringLiteral("마루"), QStringLiteral("02-444"), QString(),
                       QStringLiteral("010-4444")}});
    test::addStatement(QStringLiteral("000001"), QStringLiteral("2024-01-10"), QStringLiteral("000002"));
    test::addStatement(QStringLiteral("000002"), QStringLiteral("2024-03-10"), QStringLiteral("000002"));
    test::addStatement(QStringLiteral("000003"), QStringLiteral("2024-05-31"), QStringLiteral("000003"));
    test::addStatement(QStringLiteral("000004"), QStringLiteral("2024-06-01"), QStringLiteral("000004"));
}

struct Screen {
    FrmSMS form;
    Screen() {
        test::showActive(&form);
        QTRY_VERIFY(!form.isHidden());
    }
    Grid* grid() { return form.grdList; }
    QPoint cell(int col, int row) {
        return grid()->visualRect(grid()->model()->index(row - 1, col - 1)).center();
    }
    QStringList column(int col) {
        QStringList out;
        for (int r = 1; r <= grid()->MaxRows(); ++r)
            out << grid()->Text(col, r);
        return out;
    }
    QString count() { return form.lblCountRec->text(); }
    bool ticked(int row) { return grid()->Text(1, row) == QStringLiteral("1"); }
    void click(int col, int row) {
        QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, cell(col, row));
    }
};

} // namespace

class TestFrmSms : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theFirstActivationSearchesAllTradersWithTheirMobiles() {
        test::TestHome home;
        layDownTraders();
        auto& msgs = test::script();
        Screen s;
        QCOMPARE(s.form.windowTitle(), QStringLiteral("문자,음성,팩스 전송(SMS)"));
        QCOMPARE(s.form.txtDate->dateText(), today().toString(u"yyyy-MM-dd"));
        QCOMPARE(s.column(2), (QStringList{QStringLiteral("가나상사"), QStringLiteral("다온;상회"),
                                           QStringLiteral("라임's"), QStringLiteral("마루")}));
        QCOMPARE(s.column(3), (QStringList{QStringLiteral("010-1111"), QStringLiteral("011-222"), QString(),
                                           QStringLiteral("010-4444")}));
        QCOMPARE(s.grid()->Text(4, 0), QStringLiteral("비 고"));
        QCOMPARE(s.column(4), (QStringList{QString(), QString(), QString(), QString()}));
        QCOMPARE(msgs.records().at(0).kind, QStringLiteral("progress"));
        QCOMPARE(msgs.records().at(0).text, QStringLiteral("자료 검색중..."));
        QCOMPARE(msgs.records().at(0).buttons, 4);
        QCOMPARE(msgs.progressValues(), (QList<int>{1, 2, 3, 4}));
        QVERIFY(!s.form.txtDate->isEnabled());
        // Coming back to the screen does not search again.
        s.form.grdList->setMaxRows(0);
        test::showActive(&s.form);
        QCOMPARE(s.grid()->MaxRows(), 0);
    }

    void searchByNameAndByNumberTypes() {
        test::TestHome home;
        layDownTraders();
        test::script();
        Screen s;
        s.form.txtName->setFocus();
        test::typeText(s.form.txtName, QStringLiteral("'s"));
        s.form.chkPhoneType[0]->setChecked(false);
        s.form.chkPhoneType[1]->setChecked(true);
        s.form.chkPhoneType[2]->setChecked(true);
        QTest::mouseClick(s.form.btnSearch, Qt::LeftButton);
        QCOMPARE(s.column(2), QStringList{QStringLiteral("라임's")});
        QCOMPARE(s.column(3), QStringList{QStringLiteral("031-333,031-334")});
    }

    void aTraderWithNoStatementShowsInTheDateModeOnlyWithNoTradeTicked() {
        test::TestHome home;
        layDownTraders();
        test::script();
        Screen s;
        QTest::mouseClick(s.form.optFilter[1], Qt::LeftButton);
        QCOMPARE(s.grid()->MaxRows(), 0);
        QCOMPARE(s.grid()->Text(4, 0), QStringLiteral("최종거래일"));
        QVERIFY(s.form.txtDate->isEnabled() && s.form.chkNoTrade->isEnabled() &&
                !s.form.txtName->isEnabled());
        s.form.txtDate->setDateText(QStringLiteral("2024-06-01"));
        s.form.btnSearch->click();
        QCOMPARE(s.column(2), (QStringList{QStringLiteral("다온;상회"), QStringLiteral("라임's")}));
        QCOMPARE(s.column(4), (QStringList{QStringLiteral("2024-03-10"), QStringLiteral("2024-05-31")}));
        QTest::mouseClick(s.form.chkNoTrade, Qt::LeftButton); // searches again by itself
        QCOMPARE(s.column(2), (QStringList{QStringLiteral("가나상사"), QStringLiteral("다온;상회"),
                                           QStringLiteral("라임's")}));
        QCOMPARE(s.column(4),
                 (QStringList{QString(), QStringLiteral("2024-03-10"), QStringLiteral("2024-05-31")}));
        s.click(1, 2);
        test::saveScreenshot(&s.form, QStringLiteral("frm_sms"));
    }

    void everyWayOfTickingPaintsTheRowAndCounts() {
        test::TestHome home;
        layDownTraders();
        test::script();
        Screen s;
        s.click(1, 1); // the tick cell itself
        QVERIFY(s.ticked(1));
        QCOMPARE(s.count(), QStringLiteral("1"));
        QCOMPARE(s.grid()->BackColor(2, 1), kTickedRowColor);
        s.click(2, 2); // another column: no tick
        QVERIFY(!s.ticked(2));
        QTest::mouseDClick(s.grid()->viewport(), Qt::LeftButton, {}, s.cell(3, 2)); // double click
        QVERIFY(s.ticked(2));
        QCOMPARE(s.count(), QStringLiteral("2"));
        test::pressKey(s.grid(), Qt::Key_Space); // the active row is 2
        QVERIFY(!s.ticked(2));
        QCOMPARE(s.grid()->BackColor(2, 2), kWhiteColor);
        test::pressKey(s.grid(), Qt::Key_Down);
        test::pressKey(s.grid(), Qt::Key_Return);
        QVERIFY(s.ticked(3));
        QCOMPARE(s.count(), QStringLiteral("2"));
        // A block dragged over rows 2 to 4 flips each of them.
        QTest::mousePress(s.grid()->viewport(), Qt::LeftButton, {}, s.cell(2, 2));
        QMouseEvent move(QEvent::MouseMove, s.cell(3, 4), s.grid()->viewport()->mapToGlobal(s.cell(3, 4)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(s.grid()->viewport(), &move);
        QTest::mouseRelease(s.grid()->viewport(), Qt::LeftButton, {}, s.cell(3, 4));
        QCOMPARE((QList<bool>{s.ticked(1), s.ticked(2), s.ticked(3), s.ticked(4)}),
                 (QList<bool>{true, true, false, true}));
        QCOMPARE(s.count(), QStringLiteral("3"));
        QCOMPARE(s.grid()->ActiveRow(), 2);
        QCOMPARE(s.grid()->ActiveCol(), 2);
        QTest::mouseClick(s.form.ChkAll, Qt::LeftButton);
        QCOMPARE(s.count(), QStringLiteral("4"));
        QVERIFY(s.ticked(3));
        test::pressKey(s.grid(), Qt::Key_A, Qt::ControlModifier);
        QVERIFY(!s.form.ChkAll->isChecked());
        QCOMPARE(s.count(), QStringLiteral("0"));
        QCOMPARE(s.grid()->BackColor(2, 4), kWhiteColor);
        test::pressKey(s.grid(), Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(s.count(), QStringLiteral("4"));
        // A new search starts with nothing ticked.
        s.form.btnSearch->click();
        QCOMPARE(s.count(), QStringLiteral("0"));
        QVERIFY(!s.form.ChkAll->isChecked());
    }

    void theDateBoxRefusesABadDateAndKeepsTheFocus() {
        test::TestHome home;
        layDownTraders();
        auto& msgs = test::script();
        Screen s;
        QTest::mouseClick(s.form.optFilter[1], Qt::LeftButton);
        s.form.txtDate->setFocus();
        QTest::qWait(20); // the box selects its text once it has the focus
        test::typeText(s.form.txtDate, QStringLiteral("20241340"));
        test::pressKey(s.form.txtDate, Qt::Key_Return);
        QTRY_COMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.boxes()[0].text,
                 QStringLiteral("잘못된 날짜 형식입니다.\n정확한 날짜 형식을 입력하세요."));
        QTRY_COMPARE(test::focused(), static_cast<QWidget*>(s.form.txtDate));
        s.form.txtDate->setDateText(QStringLiteral("2024-06-01"));
        test::pressKey(s.form.txtDate, Qt::Key_Return);
        QTest::qWait(20);
        QCOMPARE(msgs.boxes().size(), size_t(1));
    }

    void transferHandsTheTickedRowsToTheSendingProgram() {
        test::TestHome home;
        layDownTraders();
        test::SendProgramFolder own;
        auto& msgs = test::script();
        Screen s;
        s.form.chkPhoneType[2]->setChecked(true);
        s.form.btnSearch->click();
        s.click(1, 1);
        s.click(1, 2);
        test::pressKey(test::focused(), Qt::Key_T, Qt::AltModifier);
        QTRY_VERIFY(own.started());
        QCOMPARE(own.argument(), own.path() + QStringLiteral("/ExternTelNo.txt"));
        QCOMPARE(own.numberFile(),
                 ToCp949(QStringLiteral("가나상사,010-1111\r\n가나상사,02-112\r\n다온상회,011-222\r\n")));
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
};

NB_TEST_MAIN(TestFrmSms)
#include "tst_frm_sms.moc"
