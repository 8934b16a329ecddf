// The totals screen with a list longer than a page: a thousand traders invoiced in a quarter,
// searched as the operator does; the list counted at once and read as it is seen, scrolled to its
// end and its last row chosen by keys and by the mouse, the sums the refill counted, the
// spreadsheet of every row, a new search over a list still being read, and a refill the store
// refuses.
#include "../invoice/InvoiceFixture.h"
#include "FailureInjection.h"
#include "XlsxRead.h"
#include "common/FileChooser.h"
#include "common/grid/Grid.h"
#include "core/Clock.h"
#include "management/FrmTaxManage.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

using namespace nb;

namespace {

constexpr int kTraders = 1000;

// Traders 000001..count, each with two invoice lines in the second quarter of 2024 (supply
// 1,000 × the trader's number, then 500, VAT a tenth), and one line outside it.
void addTradersWithInvoices(int count) {
    QVERIFY(
        test::exec(stores().dbBasic,
                   QStringLiteral("INSERT INTO Trader (Code, C_Name, Serial) WITH RECURSIVE n(i) AS "
                                  "(SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) SELECT "
                                  "substr(CAST(1000000 + i AS TEXT), 2), '거래처' || i, "
                                  "'101-01-' || substr(CAST(100000 + i AS TEXT), 2) FROM n")
                       .arg(count)));
    QVERIFY(test::exec(stores().dbTax,
                       QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, "
                                      "TradeKum, VatKum, DealDate, TradeDate, UserCode) WITH RECURSIVE n(i) "
                                      "AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < %1) SELECT "
                                      "CAST(100000 + i AS TEXT), substr(CAST(1000001 + i % %2 AS TEXT), 2), '볼트', 1, 0, "
                                      "CASE WHEN i < %2 THEN 1000 * (1 + i) ELSE 500 END, "
                                      "CASE WHEN i < %2 THEN 100 * (1 + i) ELSE 50 END, "
                                      "CASE WHEN i < 2 * %2 THEN '2024-05-10' ELSE '2024-08-01' END, "
                                      "'05-10', '' FROM n")
                           .arg(3 * count - 1)
                           .arg(count)));
}

struct Screen {
    test::TestHome home;
    std::unique_ptr<FrmTaxManage> form;
    Screen() {
        setClock([] { return QDateTime(QDate(2024, 8, 14), QTime(10, 0)); });
        QVERIFY(test::openStores());
        addTradersWithInvoices(kTraders);
    }
    FrmTaxManage& open() {
        form = std::make_unique<FrmTaxManage>();
        test::showActive(form.get());
        return *form;
    }
    ~Screen() { setClock({}); }
};

void searchSecondQuarter(FrmTaxManage& f) {
    f.CmbGubun->setCurrentIndex(1);
    f.CmbYY->setCurrentText(QStringLiteral("2024"));
    f.CmbPeriod->setCurrentIndex(1);
    f.btnSearch->click();
}

QString traderName(int i) {
    return QStringLiteral("거래처%1").arg(i);
}

// The grid's row that stands at the bottom of its window.
int lastVisibleRow(Grid& grid) {
    return grid.rowAt(grid.viewport()->height() - 2) + 1;
}

} // namespace

class TestTotalsList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aListLongerThanAPageIsCountedAtOnceAndReadAsItIsSeen() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QCOMPARE(f.grdList->MaxRows(), kTraders);
        QVERIFY(f.grdList->isList());
        QVERIFY(f.grdList->isReading()); // the rows after the first page wait for the window's events
        QCOMPARE(f.grdList->Text(ColTraderName, 1), traderName(1));
        QCOMPARE(f.grdList->Value(ColSaleSum, 1), 1650.0); // 1,000 + 500 and their VAT
        QTRY_VERIFY(!f.grdList->isReading());
        QCOMPARE(f.grdList->DataRowCnt(), kTraders);
        QCOMPARE(f.grdList->Text(ColCode, kTraders), QStringLiteral("001000"));
    }

    void scrollingToTheEndShowsTheLastTrader() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QApplication::processEvents(); // the list painted: its scroll bar knows every row
        f.grdList->verticalScrollBar()->setValue(f.grdList->verticalScrollBar()->maximum());
        QApplication::processEvents();
        QCOMPARE(lastVisibleRow(*f.grdList), kTraders);
        QCOMPARE(f.grdList->Text(ColTraderName, kTraders), traderName(kTraders));
        QCOMPARE(f.grdList->Text(ColSale, kTraders), QStringLiteral("1,000,500"));
        QCOMPARE(f.grdList->Text(ColSaleVat, kTraders), QStringLiteral("100,050"));
        QVERIFY(f.grdList->Text(ColBuy, kTraders).isEmpty());
        test::saveScreenshot(&f, QStringLiteral("frm_tax_manage_list_end"));
    }

    void theLastRowIsChosenByKeysAndByTheMouse() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        f.grdList->setFocus();
        f.grdList->SetActiveCell(ColTraderName, 1);
        for (int k = 0; k < kTraders && f.grdList->ActiveRow() < kTraders; ++k)
            test::pressKey(f.grdList, Qt::Key_PageDown);
        QCOMPARE(f.grdList->ActiveRow(), kTraders);
        QCOMPARE(f.grdList->Text(ColTraderName, f.grdList->ActiveRow()), traderName(kTraders));
        QCOMPARE(lastVisibleRow(*f.grdList), kTraders);

        f.grdList->SetActiveCell(ColTraderName, 1);
        f.grdList->verticalScrollBar()->setValue(f.grdList->verticalScrollBar()->maximum());
        QApplication::processEvents();
        const QRect cell = f.grdList->visualRect(f.grdList->model()->index(kTraders - 1, ColTraderName));
        QVERIFY(cell.isValid());
        QTest::mouseClick(f.grdList->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(f.grdList->ActiveRow(), kTraders);
    }

    void theSumsAreTheRefillsAndAgreeWithEveryRow() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        // Each trader i: 1,000 i + 500 supply, a tenth of it VAT.
        const double supply = 1000.0 * kTraders * (kTraders + 1) / 2 + 500.0 * kTraders;
        QCOMPARE(f.pnlSum[0]->text(), panelText(supply));
        QCOMPARE(f.pnlSum[1]->text(), panelText(supply / 10));
        QCOMPARE(f.pnlSum[2]->text(), panelText(supply * 1.1));
        QCOMPARE(f.pnlSum[3]->text(), QStringLiteral(" "));
        double walked = 0;
        for (int r = 1; r <= f.grdList->DataRowCnt(); ++r)
            walked += f.grdList->Value(ColSale, r);
        QCOMPARE(walked, supply);
        QCOMPARE(test::scalar(stores().dbTax, "SELECT SUM(TradeKum) FROM SaleTotal").toDouble(), supply);
    }

    void theSpreadsheetOfALongListHasEveryRowAndTheTotalUnderTheLast() {
        Screen s;
        auto& msgs = test::script();
        auto& chooser = scriptFileChooser();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QVERIFY(f.grdList->isReading());
        const QString path = s.home.file(QStringLiteral("totals.xlsx"));
        chooser.answers << path;
        msgs.answer(AnsNo);
        f.btnExcel->click();
        const auto cells = test::xlsxCells(path);
        QCOMPARE(cells.value("A2").value, traderName(1));
        QCOMPARE(cells.value(QStringLiteral("A%1").arg(kTraders + 1)).value, traderName(kTraders));
        QCOMPARE(cells.value(QStringLiteral("B%1").arg(kTraders + 1)).value, QStringLiteral("1000500"));
        QCOMPARE(cells.value(QStringLiteral("A%1").arg(kTraders + 2)).value, QStringLiteral("< 합 계 >"));
        QCOMPARE(cells.value(QStringLiteral("B%1").arg(kTraders + 2)).value, QStringLiteral("501000000"));
        QVERIFY(!cells.contains(QStringLiteral("A%1").arg(kTraders + 3)));
    }

    void aNewSearchOverAListStillBeingReadShowsOnlyItsOwnRows() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QVERIFY(f.grdList->isReading());
        f.CmbPeriod->setCurrentIndex(2); // the third quarter: the thousand lines of August
        f.btnSearch->click();
        QCOMPARE(f.grdList->DataRowCnt(), kTraders);
        QCOMPARE(f.grdList->Value(ColSale, 7), 500.0);
        QCOMPARE(f.pnlSum[0]->text(), panelText(500.0 * kTraders));
        f.CmbGubun->setCurrentIndex(0);
        f.btnSearch->click(); // today alone: no invoice
        QCOMPARE(f.grdList->DataRowCnt(), 0);
        QCOMPARE(f.grdList->MaxRows(), 18);
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral(" "));
        QCOMPARE(test::scalar(stores().dbTax, "SELECT count(*) FROM SaleTotal").toInt(), 0);
    }

    void aRefillTheStoreRefusesShowsItsBoxAndLeavesTheWorkTableAsItWas() {
        Screen s;
        auto& msgs = test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QVERIFY(test::hideTable(stores().dbBasic, QStringLiteral("Trader")));
        f.btnSearch->click();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("Jet Data Base Engine의 식을 확인하세요.")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("'2024-04-01'")));
        QCOMPARE(f.grdList->DataRowCnt(), 0);
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral(" "));
        QCOMPARE(test::scalar(stores().dbTax, "SELECT count(*) FROM SaleTotal").toInt(), kTraders);
    }
};

NB_TEST_MAIN(TestTotalsList)
#include "tst_totals_list.moc"
