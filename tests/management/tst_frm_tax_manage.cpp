// The totals screen driven as an operator works it: opened from the menu and from the invoice
// screen, a quarter chosen by keys and searched, the grid and the sums, the 합계표 printed to a PDF
// and read back, the grid exported to a file, and the electronic invoice sheet of the period.
#include "../invoice/InvoiceFixture.h"
#include "PdfRead.h"
#include "XlsxRead.h"
#include "common/FileChooser.h"
#include "common/dates/DateBox.h"
#include "common/grid/Grid.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "invoice/FrmTax.h"
#include "invoice/InvoiceScreens.h"
#include "management/FrmTaxManage.h"
#include "management/ManagementScreens.h"
#include "management/TaxTotalsReport.h"
#include "management/etax/FrmEtaxPeriod.h"
#include "printing/GridPrint.h"
#include "printing/PrinterSetup.h"
#include "shell/Nubella.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTimer>
#include <functional>

using namespace nb;

namespace {

void addInvoices() {
    test::addSupplier({QStringLiteral("123-45-67891"), QStringLiteral("하르문상사"), QStringLiteral("홍길동"),
                       QStringLiteral("서울시 중구 을지로 1"), QString(), QString(), QString(), QString()});
    test::addTraderRow(QStringLiteral("000001"), {QStringLiteral("234-56-78904"),
                                                  QStringLiteral("가나철강"),
                                                  QStringLiteral("김철수"),
                                                  {},
                                                  {},
                                                  {},
                                                  {},
                                                  {}});
    test::addTraderRow(QStringLiteral("000002"), {QStringLiteral("345-67-89013"),
                                                  QStringLiteral("다라상회"),
                                                  QStringLiteral("이영희"),
                                                  {},
                                                  {},
                                                  {},
                                                  {},
                                                  {}});
    test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("앵글"), 50000,
                        5000, QStringLiteral("2024-04-02"));
    test::addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000001"), QStringLiteral("파이프"), 120000,
                        12000, QStringLiteral("2024-05-20"));
    test::addInvoiceRow(QStringLiteral("100002"), QStringLiteral("000002"), QStringLiteral("볼트"), 8000, 800,
                        QStringLiteral("2024-06-30"));
    test::addInvoiceRow(QStringLiteral("100003"), QStringLiteral("000002"), QStringLiteral("너트"), 9000, 900,
                        QStringLiteral("2024-07-01"));
    QVERIFY(test::exec(stores().dbTax, QStringLiteral("UPDATE NewAcount SET UserCode = '123-45-67891'")));
}

struct Screen {
    test::TestHome home;
    std::unique_ptr<FrmTaxManage> form;
    Screen() {
        setClock([] { return QDateTime(QDate(2024, 8, 14), QTime(10, 0)); });
        QVERIFY(test::openStores());
        addInvoices();
        setSystemPrintersForTesting({}, QString()); // the PDF printer only
    }
    FrmTaxManage& open() {
        form = std::make_unique<FrmTaxManage>();
        test::showActive(form.get());
        return *form;
    }
    ~Screen() { setClock({}); }
};

// The second quarter of 2024, chosen by keys, and the search.
void searchSecondQuarter(FrmTaxManage& f) {
    f.CmbGubun->setFocus();
    test::pressKey(f.CmbGubun, Qt::Key_Down);
    f.CmbPeriod->setFocus();
    test::pressKey(f.CmbPeriod, Qt::Key_Down);
    f.btnSearch->click();
}

} // namespace

class TestFrmTaxManage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theScreenOpensOnTheDatesWithTheYearsAroundThisOne() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        QCOMPARE(f.windowTitle(), QStringLiteral("매입ㆍ매출 계산서 관리"));
        QCOMPARE(f.CmbGubun->itemText(2), QStringLiteral("3. 분기별 검색(2/2분기)!"));
        QCOMPARE(f.CmbYY->count(), 12);
        QCOMPARE(f.CmbYY->itemText(0), QStringLiteral("2019"));
        QCOMPARE(f.CmbYY->currentText(), QStringLiteral("2024"));
        QCOMPARE(f.txtDate[0]->text(), QStringLiteral("2024-08-14"));
        QCOMPARE(f.pnlDisp->currentIndex(), 0);
        QCOMPARE(f.grdList->Text(9, 0), QStringLiteral("코드"));
        QCOMPARE(f.grdList->Text(10, 0), QStringLiteral("거래처코드"));
        QCOMPARE(f.btnExcel->text(), QStringLiteral("Excel변환(&E)"));
    }

    void aQuarterChosenByKeysTotalsEachTraderWithTheSums() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QCOMPARE(f.pnlDisp->currentIndex(), 1);
        QCOMPARE(f.CmbPeriod->currentText(), QStringLiteral("2. 2/4 분기"));
        QCOMPARE(f.period().from, QStringLiteral("2024-04-01"));
        QCOMPARE(f.grdList->DataRowCnt(), 2);
        int kana = f.grdList->Text(ColCode, 1) == u"000001" ? 1 : 2;
        QCOMPARE(f.grdList->Text(ColTraderName, kana), QStringLiteral("가나철강"));
        QCOMPARE(f.grdList->Value(ColSale, kana), 170000.0);
        QCOMPARE(f.grdList->Value(ColSaleSum, kana), 187000.0);
        QVERIFY(f.grdList->Text(ColBuy, kana).isEmpty());
        QVERIFY(f.grdList->Text(ColDay, kana).isEmpty());
        QCOMPARE(f.grdList->Text(ColGubun, kana), QStringLiteral("1"));
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral("178,000 "));
        QCOMPARE(f.pnlSum[1]->text(), QStringLiteral("17,800 "));
        QCOMPARE(f.pnlSum[2]->text(), QStringLiteral("195,800 "));
        QCOMPARE(f.pnlSum[3]->text(), QStringLiteral(" "));
        test::saveScreenshot(&f, QStringLiteral("frm_tax_manage"));
    }

    void theReportOfTheQuarterPrintsToAPdfAsTheListWhenChosen() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Screen s;
        auto& msgs = test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        f.CmbLayout->setCurrentIndex(int(TotalsLayout::List));
        f.btnPrint->click();
        const QStringList pdfs =
            QDir(s.home.file(QStringLiteral("Print"))).entryList({QStringLiteral("*.pdf")});
        QCOMPARE(pdfs.size(), 1);
        QVERIFY(pdfs.first().startsWith(QStringLiteral("세금계산서 합계표-")));
        QVERIFY(msgs.last().text.contains(pdfs.first())); // the PDF printer says where the file is
        const QString html = test::bboxOf(s.home.file(QStringLiteral("Print/") + pdfs.first()));
        QVERIFY(test::wordAt(html, QStringLiteral("다라상회")).y() > 0);
        QVERIFY(test::wordAt(html, QStringLiteral("178,000")).y() > 0);
        QVERIFY(test::wordAt(html, QStringLiteral("2024년")).y() > 0);
    }

    void theOfficialFormIsTheFirstChoiceAndTheChoiceIsKept() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Screen s;
        auto& msgs = test::script();
        {
            FrmTaxManage& f = s.open();
            QCOMPARE(f.CmbLayout->currentIndex(), int(TotalsLayout::Official));
            QCOMPARE(f.CmbLayout->itemText(0), QStringLiteral("공식 서식(갑·을)"));
            searchSecondQuarter(f);
            f.btnPrint->click();
            // The progress form went up to the last page's steps and closed.
            QVERIFY(!msgs.progressValues().isEmpty());
            QCOMPARE(msgs.progressValues().last(), 200);
            const QStringList pdfs =
                QDir(s.home.file(QStringLiteral("Print"))).entryList({QStringLiteral("*.pdf")});
            QCOMPARE(pdfs.size(), 1);
            const QString pdf = s.home.file(QStringLiteral("Print/") + pdfs.first());
            const QString html = test::bboxOf(pdf);
            QVERIFY(test::wordAt(html, QStringLiteral("세금계산서합계표(갑)")).y() > 0);
            QVERIFY(test::wordAt(html, QStringLiteral("가나철강")).y() > 0);
            test::pagePng(pdf, 1, QStringLiteral("frm_tax_manage_official_print"));
            f.CmbLayout->setCurrentIndex(int(TotalsLayout::List));
        }
        FrmTaxManage& again = s.open();
        QCOMPARE(again.CmbLayout->currentIndex(), int(TotalsLayout::List));
    }

    // Changing the period after a search and printing without a new one prints the search that
    // fills the table, head and all.
    void aPrintAfterThePeriodChangedPrintsTheLastSearch() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        f.CmbPeriod->setCurrentIndex(2); // the third quarter, not searched
        QCOMPARE(f.searchToPrint().span().from, QStringLiteral("2024-04-01"));
        PrintCapture capture;
        f.btnPrint->click();
        QVERIFY(capture.last().find(QStringLiteral("2024년 제1기 (4월 1일 ~ 6월 30일)")));
        QVERIFY(capture.last().find(QStringLiteral("가나철강")));
        f.CmbLayout->setCurrentIndex(int(TotalsLayout::List));
        f.btnPrint->click();
        QVERIFY(capture.last().find(QStringLiteral("(   2024년 2/4 기   )")));
        QVERIFY(capture.last().find(QStringLiteral("가나철강")));
        f.btnSearch->click();
        f.btnPrint->click();
        QVERIFY(capture.last().find(QStringLiteral("(   2024년 3/4 기   )")));
    }

    void aPrintBeforeAnySearchTakesThePeriodOnTheScreen() {
        Screen s;
        test::script();
        FrmTaxManage& f = s.open();
        f.CmbGubun->setCurrentIndex(1);
        f.CmbPeriod->setCurrentIndex(1);
        PrintCapture capture;
        f.btnPrint->click();
        QVERIFY(capture.last().find(QStringLiteral("2024년 제1기 (4월 1일 ~ 6월 30일)")));
        QVERIFY(capture.last().find(QStringLiteral("다라상회")));
    }

    void theGridGoesToASpreadsheetFileWithItsTotalRow() {
        Screen s;
        auto& msgs = test::script();
        auto& chooser = scriptFileChooser();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        const QString path = s.home.file(QStringLiteral("totals.xlsx"));
        chooser.answers << path;
        msgs.answer(AnsNo);
        f.btnExcel->click();
        QVERIFY(chooser.suggested.first().endsWith(
            QStringLiteral("매입ㆍ매출 계산서 관리_20240401-20240630.xlsx")));
        QCOMPARE(test::xlsxSheetNames(path), QStringList{QStringLiteral("매입ㆍ매출 계산서 관리")});
        const auto cells = test::xlsxCells(path);
        QCOMPARE(cells.value("A1").value, QStringLiteral("거래처명"));
        QCOMPARE(cells.value("A4").value, QStringLiteral("< 합 계 >"));
        QCOMPARE(cells.value("B4").value, QStringLiteral("178000"));
        QVERIFY(cells.value("B4").isNumber());
        QCOMPARE(cells.value("D4").value, QStringLiteral("195800"));
    }

    void theElectronicInvoiceButtonWritesTheSheetOfThePeriod() {
        Screen s;
        auto& msgs = test::script();
        auto& chooser = scriptFileChooser();
        FrmTaxManage& f = s.open();
        searchSecondQuarter(f);
        QTemporaryDir out;
        chooser.answers << out.path();
        msgs.answer(AnsYes); // older invoices say neither 영수 nor 청구: take 영수
        QString shown, first;
        // Each window is waited for (every 20 ms, a loaded machine may be slow to show it); the
        // period window comes first, offering the month just ended, and the screen's quarter is
        // chosen there; then the result window is closed.
        std::function<void(int)> closeReport = [&shown, &closeReport](int triesLeft) {
            QWidget* report = QApplication::activeModalWidget();
            if (report && report->objectName() != QStringLiteral("FrmEtaxPeriod")) {
                shown = report->objectName();
                report->close();
            } else if (triesLeft > 0)
                QTimer::singleShot(20, [&closeReport, triesLeft] { closeReport(triesLeft - 1); });
        };
        std::function<void(int)> choosePeriod = [&](int triesLeft) {
            auto* period = qobject_cast<FrmEtaxPeriod*>(QApplication::activeModalWidget());
            if (!period) {
                if (triesLeft > 0)
                    QTimer::singleShot(20, [&choosePeriod, triesLeft] { choosePeriod(triesLeft - 1); });
                return;
            }
            first = period->objectName();
            period->optScreen->setChecked(true);
            QTimer::singleShot(20, [&closeReport] { closeReport(500); });
            period->btnWrite->click();
        };
        QTimer::singleShot(20, [&choosePeriod] { choosePeriod(500); });
        f.btnEtax->click();
        QCOMPARE(first, QStringLiteral("FrmEtaxPeriod"));
        QCOMPARE(chooser.kinds, QStringList{QStringLiteral("folder")});
        QCOMPARE(chooser.titles.first(), QStringLiteral("전자세금계산서 엑셀 저장 폴더"));
        QCOMPARE(QDir(out.path()).entryList({QStringLiteral("*.xlsx")}),
                 QStringList{QStringLiteral("전자세금계산서_20240401-20240630_1.xlsx")});
        QVERIFY(!shown.isEmpty());
    }

    void aDateBoxLeftWithoutADateSaysSoAndTakesToday() {
        Screen s;
        auto& msgs = test::script();
        FrmTaxManage& f = s.open();
        f.txtDate[0]->setFocus();
        f.txtDate[0]->setText(QStringLiteral("2024-13-45"));
        f.txtDate[1]->setFocus();
        QCOMPARE(msgs.last().text, kBadDateMessage);
        QCOMPARE(f.txtDate[0]->text(), QStringLiteral("2024-08-14"));
    }

    void aListLeftOutOfTheSheetPrintsAsATable() {
        Screen s;
        test::script();
        PrintCapture capture;
        Grid grid;
        grid.setMaxCols(2);
        grid.setMaxRows(3);
        grid.SetText(1, 0, QStringLiteral("번호"));
        grid.SetText(2, 0, QStringLiteral("사유"));
        grid.SetText(1, 1, QStringLiteral("100000"));
        grid.SetText(2, 1, QStringLiteral("공급받는자 등록번호가 올바르지 않습니다"));
        PrintGridList(grid, QStringLiteral("전자세금계산서에서 빠진 세금계산서"));
        QVERIFY(capture.last().find(QStringLiteral("전자세금계산서에서 빠진 세금계산서")));
        QVERIFY(capture.last().find(QStringLiteral("공급받는자 등록번호가 올바르지 않습니다")));
        QVERIFY(capture.last().find(QStringLiteral("- 1 -")));
    }

    void theMenuAndTheInvoicesTotalButtonOpenTheScreen() {
        test::TestHome home;
        test::script();
        clearScreenRegistry();
        registerInvoiceScreens();
        registerManagementScreens();
        {
            Nubella window;
            window.refreshMenuState();
            QVERIFY(window.load(false));
            test::addSupplier(
                {QStringLiteral("123-45-67890"), QStringLiteral("하르문상사"), {}, {}, {}, {}, {}, {}});
            test::showActive(&window);
            QVERIFY(window.menuAction(QStringLiteral("mnu_InvoiceTotal"))->isEnabled());
            window.menuAction(QStringLiteral("mnu_InvoiceForm"))->trigger();
            QTest::qWait(30);
            auto* tax = qobject_cast<FrmTax*>(window.childScreen(QStringLiteral("mnu_InvoiceForm")));
            QVERIFY(tax);
            tax->btnTotal->click();
            QTest::qWait(30);
            auto* totals =
                qobject_cast<FrmTaxManage*>(window.childScreen(QStringLiteral("mnu_InvoiceTotal")));
            QVERIFY(totals);
            QVERIFY(totals->isVisible());
        }
        clearScreenRegistry();
    }
};

NB_TEST_MAIN(TestFrmTaxManage)
#include "tst_frm_tax_manage.moc"
