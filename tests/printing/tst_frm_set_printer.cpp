// "프린트 드라이버 설정" driven by keys: the default printer, the list with "PDF", the saved name
// per document, Esc without saving.
#include "TestSupport.h"
#include "core/Settings.h"
#include "printing/FrmSetPrinter.h"
#include "printing/PrinterSetup.h"

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

using namespace nb;

namespace {

const QString kOffice = QStringLiteral("사무실 레이저");
const QString kInk = QStringLiteral("잉크젯 B");

void showForm(FrmSetPrinter& form, int doc) {
    form.InitForm(doc);
    form.show();
    QApplication::setActiveWindow(&form);
    form.List1->setFocus();
}

QString drive(const QString& app) {
    return GetSetting(app, QStringLiteral("Drive"), app);
}

} // namespace

class TestFrmSetPrinter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void showsTheDefaultPrinterAndEveryPrinter() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        FrmSetPrinter form;
        showForm(form, 0);
        QCOMPARE(form.windowTitle(), QStringLiteral("프린트 드라이버 설정"));
        QCOMPARE(form.lblDefault->text(), QStringLiteral("기본프린터"));
        QCOMPARE(form.Spn->text(), kOffice + QStringLiteral(" "));
        QCOMPARE(form.List1->count(), 3);
        QCOMPARE(form.List1->item(0)->text(), kOffice);
        QCOMPARE(form.List1->item(1)->text(), kInk);
        QCOMPARE(form.List1->item(2)->text(), QStringLiteral("PDF"));
        QCOMPARE(form.List1->currentItem()->text(), kOffice);
        test::saveScreenshot(&form, QStringLiteral("frm_set_printer"));
    }
    void withoutADefaultPrinterThePanelSaysSo() {
        test::TestHome home;
        setSystemPrintersForTesting({}, QString());
        FrmSetPrinter form;
        showForm(form, 1);
        QCOMPARE(form.Spn->text(), QStringLiteral("기본프린터가 없음 "));
        QCOMPARE(form.List1->count(), 1);
        test::saveScreenshot(&form, QStringLiteral("frm_set_printer_no_printer"));
    }
    void enterSavesTheChosenInvoicePrinterAndCloses() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        FrmSetPrinter form;
        showForm(form, 0);
        test::pressKey(form.List1, Qt::Key_Down);
        test::pressKey(form.List1, Qt::Key_Return);
        QCOMPARE(drive(QStringLiteral("세금계산서")), kInk);
        QCOMPARE(drive(QStringLiteral("거래명세표")), QString());
        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int(QDialog::Accepted));
    }
    void statementPrinterGoesUnderTheStatement() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        FrmSetPrinter form;
        showForm(form, 1);
        test::pressKey(form.List1, Qt::Key_End);
        test::pressKey(form.List1, Qt::Key_Enter);
        QCOMPARE(drive(QStringLiteral("거래명세표")), QStringLiteral("PDF"));
        QCOMPARE(drive(QStringLiteral("세금계산서")), QString());
    }
    void commandButtonTakesTheSelectedRow() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        FrmSetPrinter form;
        showForm(form, 0);
        form.List1->setCurrentRow(1);
        QTest::mouseClick(form.Command1, Qt::LeftButton);
        QCOMPARE(drive(QStringLiteral("세금계산서")), kInk);
    }
    void reopeningSelectsTheSavedPrinter() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        saveDocPrinter(1, kInk);
        FrmSetPrinter form;
        showForm(form, 1);
        QCOMPARE(form.List1->currentItem()->text(), kInk);
    }
    void escClosesWithoutSaving() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        FrmSetPrinter form;
        showForm(form, 0);
        test::pressKey(form.List1, Qt::Key_Down);
        test::pressKey(form.List1, Qt::Key_Escape);
        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int(QDialog::Rejected));
        QCOMPARE(drive(QStringLiteral("세금계산서")), QString());
    }
    void otherDocumentsSaveNoPrinter() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, kOffice);
        FrmSetPrinter form;
        showForm(form, 2);
        test::pressKey(form.List1, Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(drive(QStringLiteral("DM인쇄")), QString());
        QCOMPARE(drive(QStringLiteral("세금계산서")), QString());
    }
    void printerButtonReadsTheSavedNameOrTheDefault() {
        test::TestHome home;
        setSystemPrintersForTesting({kOffice, kInk}, QString());
        QTimer::singleShot(0, [] { test::pressKey(QApplication::activeModalWidget(), Qt::Key_Escape); });
        QCOMPARE(ChooseDocPrinter(1), QStringLiteral("기본프린터가 없음"));
        QTimer::singleShot(0, [] {
            auto* form = qobject_cast<FrmSetPrinter*>(QApplication::activeModalWidget());
            QVERIFY(form);
            QCOMPARE(form->List1->currentItem()->text(), QStringLiteral("PDF")); // the current printer
            test::pressKey(form->List1, Qt::Key_Home);
            test::pressKey(form->List1, Qt::Key_Down);
            test::pressKey(form->List1, Qt::Key_Return);
        });
        QCOMPARE(ChooseDocPrinter(1), kInk);
    }
};

NB_TEST_MAIN(TestFrmSetPrinter)
#include "tst_frm_set_printer.moc"
