// "Margin설정" driven by keys: the saved margins per document, Enter moving on, save and cancel.
#include "TestSupport.h"
#include "core/Settings.h"
#include "printing/FrmMargin.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace nb;

namespace {

void showForm(FrmMargin& form, int doc) {
    form.InitForm(doc);
    form.show();
    QApplication::setActiveWindow(&form);
    QApplication::processEvents();
}

QString margin(const QString& doc, const QString& key) {
    return GetSetting(kAppSection, doc, key);
}

// Types into the box that has the focus, as the operator does.
void typeHere(const QString& text) {
    test::typeText(QApplication::focusWidget(), text);
}
void pressHere(Qt::Key key) {
    test::pressKey(QApplication::focusWidget(), key);
}

} // namespace

class TestFrmMargin : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void formShowsItsCaptionsAndTheTopBoxFirst() {
        test::TestHome home;
        FrmMargin form;
        showForm(form, 0);
        QCOMPARE(form.windowTitle(), QStringLiteral("Margin설정"));
        QCOMPARE(form.lblNote->text(), QStringLiteral("마이너스(-)와 소수점 설정가능"));
        QCOMPARE(form.Cmd설정->text(), QStringLiteral("설정(&S)"));
        QCOMPARE(form.Cmd취소->text(), QStringLiteral("취소(&C)"));
        QCOMPARE(form.lblDoc->text(), QStringLiteral("세금계산서"));
        QCOMPARE(QApplication::focusWidget(), form.TxtTop);
        QCOMPARE(form.TxtTop->selectedText(), QStringLiteral("0"));
        test::saveScreenshot(&form, QStringLiteral("frm_margin"));
    }
    void keysSaveNegativeAndDecimalMarginsForTheInvoice() {
        test::TestHome home;
        FrmMargin form;
        showForm(form, 0);
        typeHere(QStringLiteral("1.5"));
        pressHere(Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), form.TxtLeft);
        QCOMPARE(form.TxtLeft->selectedText(), QStringLiteral("0"));
        typeHere(QStringLiteral("-2"));
        pressHere(Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), form.Cmd설정);
        test::saveScreenshot(&form, QStringLiteral("frm_margin_typed"));
        pressHere(Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(margin(QStringLiteral("세금계산서"), QStringLiteral("TopMargin")), QStringLiteral("1.5"));
        QCOMPARE(margin(QStringLiteral("세금계산서"), QStringLiteral("LeftMargin")), QStringLiteral("-2"));
        QCOMPARE(margin(QStringLiteral("거래명세표"), QStringLiteral("TopMargin")), QString());
    }
    void reopeningShowsTheSavedValuesAndADocumentWithNoneShowsZero() {
        test::TestHome home;
        {
            FrmMargin form;
            showForm(form, 1);
            typeHere(QStringLiteral("-0.5"));
            pressHere(Qt::Key_Down);
            typeHere(QStringLiteral("3"));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_S, Qt::AltModifier);
            QTRY_VERIFY(!form.isVisible());
        }
        resetSettings();
        FrmMargin again;
        showForm(again, 1);
        QCOMPARE(again.TxtTop->text(), QStringLiteral("-0.5"));
        QCOMPARE(again.TxtLeft->text(), QStringLiteral("3"));
        FrmMargin invoice;
        showForm(invoice, 0);
        QCOMPARE(invoice.TxtTop->text(), QStringLiteral("0"));
        QCOMPARE(invoice.TxtLeft->text(), QStringLiteral("0"));
    }
    void topMarginIsReadByTheLowerCaseKeyAndWrittenByTheMixedCaseOne() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("topmargin"),
                    QStringLiteral("2.25"));
        FrmMargin form;
        showForm(form, 0);
        QCOMPARE(form.TxtTop->text(), QStringLiteral("2.25"));
        QVERIFY(saveMarginTexts(0, MarginTexts{QStringLiteral("4"), QStringLiteral("1")}));
        QCOMPARE(margin(QStringLiteral("세금계산서"), QStringLiteral("topmargin")), QStringLiteral("4"));
        QCOMPARE(loadMarginTexts(0)->top, QStringLiteral("4"));
    }
    void upArrowMovesBackAndRightArrowStaysInTheBox() {
        test::TestHome home;
        FrmMargin form;
        showForm(form, 0);
        pressHere(Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), form.TxtLeft);
        pressHere(Qt::Key_Right);
        QCOMPARE(QApplication::focusWidget(), form.TxtLeft);
        pressHere(Qt::Key_Up);
        QCOMPARE(QApplication::focusWidget(), form.TxtTop);
    }
    void cancelClosesWithoutSaving() {
        test::TestHome home;
        FrmMargin form;
        showForm(form, 0);
        typeHere(QStringLiteral("9"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::AltModifier);
        QTRY_VERIFY(!form.isVisible()); // a mnemonic presses its button with a short animation
        QCOMPARE(margin(QStringLiteral("세금계산서"), QStringLiteral("TopMargin")), QString());
    }
    void escActsAsCancel() {
        test::TestHome home;
        FrmMargin form;
        showForm(form, 1);
        typeHere(QStringLiteral("7"));
        pressHere(Qt::Key_Escape);
        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int(QDialog::Rejected));
        QCOMPARE(margin(QStringLiteral("거래명세표"), QStringLiteral("TopMargin")), QString());
    }
    void otherDocumentsOnlyPickTheNameAndKeepTheBoxes() {
        test::TestHome home;
        SaveSetting(kAppSection, QStringLiteral("세금계산서"), QStringLiteral("TopMargin"),
                    QStringLiteral("5"));
        SaveSetting(kAppSection, QStringLiteral("DM인쇄"), QStringLiteral("TopMargin"), QStringLiteral("8"));
        FrmMargin form;
        showForm(form, 0);
        form.hide();
        showForm(form, 2);
        QCOMPARE(form.lblDoc->text(), QStringLiteral("DM인쇄"));
        QCOMPARE(form.TxtTop->text(), QStringLiteral("5"));
        typeHere(QStringLiteral("6"));
        QTest::mouseClick(form.Cmd설정, Qt::LeftButton);
        QVERIFY(!form.isVisible());
        QCOMPARE(margin(QStringLiteral("DM인쇄"), QStringLiteral("TopMargin")), QStringLiteral("8"));
        QCOMPARE(margin(QStringLiteral("세금계산서"), QStringLiteral("TopMargin")), QStringLiteral("5"));
        QVERIFY(!loadMarginTexts(3));
        QVERIFY(!saveMarginTexts(4, MarginTexts{QStringLiteral("1"), QStringLiteral("1")}));
    }
};

NB_TEST_MAIN(TestFrmMargin)
#include "tst_frm_margin.moc"
