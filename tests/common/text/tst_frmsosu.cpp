// The decimal settings screen "소수점 설정", driven by mouse and keys.
#include "TestSupport.h"
#include "common/text/DecimalSettings.h"
#include "common/text/frmsosu.h"
#include "core/AppState.h"
#include "core/Settings.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>

using namespace nb;

namespace {

QPointer<frmsosu> openForm() {
    auto* form = new frmsosu;
    form->show();
    form->activateWindow();
    QApplication::setActiveWindow(form);
    return form;
}

int checkedIndex(const frmsosu& form, std::initializer_list<int> group) {
    for (int i : group)
        if (form.gubun(i)->isChecked()) return i;
    return -1;
}

void click(QWidget* widget) {
    QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
}

} // namespace

class TestFrmSosu : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // One row per settings value: which option of each group it switches on.
    void valueSwitchesOnItsOption_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("qtyIndex");
        QTest::addColumn<int>("priceIndex");
        QTest::newRow("0") << QStringLiteral("0") << 0 << 4;
        QTest::newRow("1") << QStringLiteral("1") << 1 << 3;
        QTest::newRow("2") << QStringLiteral("2") << 2 << 5;
    }
    void valueSwitchesOnItsOption() {
        test::TestHome home;
        QFETCH(QString, stored);
        QFETCH(int, qtyIndex);
        QFETCH(int, priceIndex);
        const int places = stored.toInt();
        QCOMPARE(QtyOptionIndex(places), qtyIndex);
        QCOMPARE(PriceOptionIndex(places), priceIndex);
        SaveEnv(QStringLiteral("chk소수점1"), stored);
        SaveEnv(QStringLiteral("chk소수점2"), stored);
        QPointer<frmsosu> form = openForm();
        QCOMPARE(checkedIndex(*form, {0, 1, 2}), qtyIndex);
        QCOMPARE(checkedIndex(*form, {3, 4, 5}), priceIndex);
        delete form;
    }
    void optionsGiveBackTheirValues() {
        QCOMPARE(SettingsFromOptions({true, false, false, false, true, false}).qty, 0);
        QCOMPARE(SettingsFromOptions({true, false, false, false, true, false}).price, 0);
        QCOMPARE(SettingsFromOptions({false, true, false, true, false, false}).qty, 1);
        QCOMPARE(SettingsFromOptions({false, true, false, true, false, false}).price, 1);
        QCOMPARE(SettingsFromOptions({false, false, true, false, false, true}).qty, 2);
        QCOMPARE(SettingsFromOptions({false, false, true, false, false, true}).price, 2);
        QCOMPARE(SettingsFromOptions({}).qty, 2);
    }
    void absentKeysReadAsZero() {
        test::TestHome home;
        QCOMPARE(ReadDecimalSettings().qty, 0);
        QCOMPARE(ReadDecimalSettings().price, 0);
        QPointer<frmsosu> form = openForm();
        QVERIFY(form->gubun(0)->isChecked());
        QVERIFY(form->gubun(4)->isChecked());
        delete form;
    }
    void storedSevenShowsTwoPlacesAndSavesTwo() {
        test::TestHome home;
        auto& msgs = test::script();
        SaveEnv(QStringLiteral("chk소수점1"), QStringLiteral("7"));
        SaveEnv(QStringLiteral("chk소수점2"), QStringLiteral("7"));
        QPointer<frmsosu> form = openForm();
        QVERIFY(form->gubun(2)->isChecked());
        QVERIFY(form->gubun(5)->isChecked());
        click(form->vaBtn1());
        QCOMPARE(GetEnv(QStringLiteral("chk소수점1")), QStringLiteral("2"));
        QCOMPARE(GetEnv(QStringLiteral("chk소수점2")), QStringLiteral("2"));
        QCOMPARE(app().DecimalQty, 2);
        QCOMPARE(app().DecimalPrice, 2);
        QCOMPARE(msgs.last().kind, QStringLiteral("notice"));
        QTRY_VERIFY(form.isNull());
    }
    void textThatIsNoNumberShowsTwoPlaces() {
        test::TestHome home;
        SaveEnv(QStringLiteral("chk소수점1"), QStringLiteral("abc"));
        QPointer<frmsosu> form = openForm();
        QVERIFY(form->gubun(2)->isChecked());
        QVERIFY(form->gubun(4)->isChecked());
        delete form;
    }
    void openingReadsTheKeysIntoTheSharedState() {
        test::TestHome home;
        app().DecimalQty = 0;
        SaveEnv(QStringLiteral("chk소수점1"), QStringLiteral("1"));
        SaveEnv(QStringLiteral("chk소수점2"), QStringLiteral("2"));
        QPointer<frmsosu> form = openForm();
        QCOMPARE(app().DecimalQty, 1);
        QCOMPARE(app().DecimalPrice, 2);
        delete form;
    }
    void screenShowsItsTitleCaptionsAndAllSixOptions() {
        test::TestHome home;
        QPointer<frmsosu> form = openForm();
        QCOMPARE(form->windowTitle(), QStringLiteral("소수점 설정"));
        QVERIFY(!form->isModal());
        const QString captions[6] = {QStringLiteral("소수점적용안함"), QStringLiteral("소수점한자리"),
                                     QStringLiteral("소수점두자리"),   QStringLiteral("소수점한자리"),
                                     QStringLiteral("소수점적용안함"), QStringLiteral("소수점두자리")};
        for (int i = 0; i < 6; ++i) {
            QCOMPARE(form->gubun(i)->text(), captions[i]);
            QVERIFY(form->gubun(i)->isVisible());
            QCOMPARE(form->gubun(i)->objectName(), QStringLiteral("gubun_%1").arg(i));
        }
        // In the unit price group the options stand none, one, two from the top: 4, 3, 5.
        QVERIFY(form->gubun(4)->y() < form->gubun(3)->y());
        QVERIFY(form->gubun(3)->y() < form->gubun(5)->y());
        QCOMPARE(form->findChild<QPushButton*>(QStringLiteral("vaBtn1")), form->vaBtn1());
        QCOMPARE(form->findChild<QPushButton*>(QStringLiteral("vaBtn2")), form->vaBtn2());
        delete form;
    }
    void operatorChoosesByMouseAndKeysAndSaves() {
        test::TestHome home;
        auto& msgs = test::script();
        QPointer<frmsosu> form = openForm();
        click(form->gubun(1));
        QVERIFY(form->gubun(1)->isChecked());
        QVERIFY(!form->gubun(0)->isChecked());
        form->gubun(4)->setFocus();
        QVERIFY(form->gubun(4)->hasFocus());
        test::pressKey(form->gubun(4), Qt::Key_Down);
        QVERIFY(form->gubun(3)->isChecked());
        test::saveScreenshot(form, QStringLiteral("frmsosu"));
        form->vaBtn1()->setFocus();
        test::pressKey(form->vaBtn1(), Qt::Key_Space);
        QCOMPARE(GetEnv(QStringLiteral("chk소수점1")), QStringLiteral("1"));
        QCOMPARE(GetEnv(QStringLiteral("chk소수점2")), QStringLiteral("1"));
        QCOMPARE(app().DecimalQty, 1);
        QCOMPARE(app().DecimalPrice, 1);
        QCOMPARE(msgs.records().size(), size_t(1));
        QCOMPARE(msgs.last().kind, QStringLiteral("notice"));
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 저장하였습니다."));
        QCOMPARE(msgs.last().buttons, 500);
        QCOMPARE(msgs.last().color, 16760000);
        QTRY_VERIFY(form.isNull());
    }
    void closeButtonLeavesTheSettingsAsTheyWere() {
        test::TestHome home;
        auto& msgs = test::script();
        SaveEnv(QStringLiteral("chk소수점1"), QStringLiteral("1"));
        QPointer<frmsosu> form = openForm();
        click(form->gubun(2));
        click(form->gubun(5));
        click(form->vaBtn2());
        QTRY_VERIFY(form.isNull());
        QCOMPARE(GetEnv(QStringLiteral("chk소수점1")), QStringLiteral("1"));
        QVERIFY(!settings().contains(kAppSection, kEnvSection, QStringLiteral("chk소수점2")));
        QCOMPARE(app().DecimalQty, 1);
        QCOMPARE(app().DecimalPrice, 0);
        QCOMPARE(msgs.records().size(), size_t(0));
    }
    void escapeClosesWithoutSaving() {
        test::TestHome home;
        auto& msgs = test::script();
        QPointer<frmsosu> form = openForm();
        click(form->gubun(2));
        test::pressKey(form->gubun(2), Qt::Key_Escape);
        QTRY_VERIFY(form.isNull());
        QVERIFY(!settings().contains(kAppSection, kEnvSection, QStringLiteral("chk소수점1")));
        QCOMPARE(msgs.records().size(), size_t(0));
    }
    void savedValuesAreDecimalText() {
        test::TestHome home;
        test::script();
        SaveDecimalSettings({1, 2});
        resetSettings();
        QCOMPARE(GetEnv(QStringLiteral("chk소수점1")), QStringLiteral("1"));
        QCOMPARE(GetEnv(QStringLiteral("chk소수점2")), QStringLiteral("2"));
    }
};

NB_TEST_MAIN(TestFrmSosu)
#include "tst_frmsosu.moc"
