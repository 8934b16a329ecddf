// Corners of the invoice screen that the operator reaches by the keyboard or the mouse: leaving
// the last line by Tab and by Enter, a click into a line below CurLine, coming back to the window inside the
// main window, and Sum_num before and after the totals ran.
#include "TaxScreenKit.h"
#include "invoice/InvoiceAmounts.h"

#include <QComboBox>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QRadioButton>

using namespace nb;

namespace {

struct Screen {
    test::TestHome home;
    Screen() {
        test::fixClock();
        test::openStores();
        test::addScreenData();
        test::installStoreLookups();
    }
    ~Screen() { setClock({}); }
};

using test::chooseReceiver;
using test::enter;
using test::focused;

// A line typed as a supply amount: the amount, then Enter in gonggum.
void typeSupply(FrmTax& f, int i, const QString& amount) {
    f.gonggum(i)->setFocus();
    f.gonggum(i)->selectAll();
    test::typeText(f.gonggum(i), amount);
    enter(f.gonggum(i));
}

} // namespace

class TestInvoiceEdgeCases : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void tabOutOfTheLastLinesSupplyKeepsCurLineAtFour() {
        Screen s;
        test::script();
        FrmTax form;
        test::showActive(&form);
        chooseReceiver(form, QStringLiteral("가나"));
        form.vat_gubun[0]->click(); // VAT별도
        for (int i = 0; i < 4; ++i)
            typeSupply(form, i, QString::number((i + 1) * 1000));
        QCOMPARE(form.CurLine(), 4);
        form.gonggum(4)->setFocus();
        test::typeText(form.gonggum(4), QStringLiteral("5000"));
        test::pressKey(form.gonggum(4), Qt::Key_Tab); // Tab only moves on: nothing computed
        QCOMPARE(form.CurLine(), 4);
        QCOMPARE(focused(), form.write_yy);
        QVERIFY(form.tax_num(4)->text().isEmpty());
        form.gonggum(4)->setFocus();
        enter(form.gonggum(4)); // finishing the last line does not raise CurLine past it
        QCOMPARE(form.CurLine(), 4);
        QCOMPARE(form.tax_num(4)->text().trimmed(), QStringLiteral("500"));
        QCOMPARE(focused(), form.write_yy);
        test::saveScreenshot(&form, QStringLiteral("frm_tax_tab_last_line"));
    }

    void typingIntoAQuantityBelowCurLineLandsInCurLinesQuantity() {
        Screen s;
        test::script();
        FrmTax form;
        test::showActive(&form);
        chooseReceiver(form, QStringLiteral("가나"));
        typeSupply(form, 0, QStringLiteral("1000"));
        QCOMPARE(form.CurLine(), 1);
        QTest::mouseClick(form.su_num(2), Qt::LeftButton);
        QCOMPARE(focused(), form.su_num(1));
        form.su_num(1)->selectAll();
        test::typeText(focused(), QStringLiteral("7"));
        QCOMPARE(form.su_num(1)->text().trimmed(), QStringLiteral("7"));
        QVERIFY(form.su_num(2)->text().trimmed().isEmpty());
    }

    void comingBackToTheWindowInTheMainWindowResetsThePeriodListToQuarters() {
        Screen s;
        test::script();
        QMdiArea area;
        auto* form = new FrmTax;
        QMdiSubWindow* taxWindow = area.addSubWindow(form);
        auto* other = new QLabel(QStringLiteral("다른 화면"));
        QMdiSubWindow* otherWindow = area.addSubWindow(other);
        area.resize(1200, 900);
        test::showActive(&area);
        area.setActiveSubWindow(taxWindow);
        form->gubun2[2]->click();
        QCOMPARE(form->CmbTerm->currentText(), QStringLiteral("한해집계"));
        area.setActiveSubWindow(otherWindow);
        area.setActiveSubWindow(taxWindow);
        QCOMPARE(form->CmbTerm->count(), 4);
        QCOMPARE(form->CmbTerm->currentText(), QStringLiteral("1/4분기"));
        QVERIFY(form->gubun2[2]->isChecked());
    }

    void sumNumStaysEmptyUntilTheTotalsRunAndThenShowsZero() {
        InvoiceSheet sheet;
        sheet.vat = VatMode::Separate;
        QVERIFY(sheet.sumNum.isEmpty());
        sheet.line(1).ddyy = QStringLiteral("05-01"); // a date alone is no amount
        QVERIFY(sheet.sumNum.isEmpty());
        SumLines(sheet);
        QCOMPARE(sheet.sumNum, QStringLiteral("0"));
    }

    void emptyLinesBetweenFilledOnesAddNothing() {
        InvoiceSheet sheet;
        sheet.vat = VatMode::Separate;
        sheet.line(0).gonggum = QStringLiteral("1000");
        sheet.line(0).tax_num = QStringLiteral("100");
        sheet.line(2).gonggum = QStringLiteral("2000");
        sheet.line(2).tax_num = QStringLiteral("200");
        SumLines(sheet);
        QCOMPARE(sheet.sumNum, QStringLiteral("3300"));
    }
};

NB_TEST_MAIN(TestInvoiceEdgeCases)
#include "tst_invoice_edge_cases.moc"
