// The period totals without a window: the period of each search kind, the grouped read into the
// work table SaleTotal, the panel sums, the two period sums and the six values of the 합계표,
// and the 합계표 itself through the recorder and as a PDF read back with pdftotext -bbox.
#include "PdfRead.h"
#include "StoreFixture.h"
#include "common/text/ByteText.h"
#include "core/AppState.h"
#include "management/TaxTotalsReport.h"
#include "printing/PagedPreview.h"
#include "printing/PrintGrid.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

#include <QDate>

using namespace nb;

namespace {

struct Store {
    test::TestHome home;
    Store() {
        QVERIFY(test::openStores());
        QVERIFY(test::exec(stores().dbBasic,
                           "insert into User (Serial, Company, Delegate, Addr) values "
                           "('123-45-67890', '하르문상사', '홍길동', '서울시 중구 을지로 1')"));
        for (int k = 1; k <= 3; ++k)
            QVERIFY(test::exec(stores().dbBasic, "insert into Trader (Code, C_Name, Serial) values (?, ?, ?)",
                               {QStringLiteral("00000%1").arg(k), QStringLiteral("거래처%1").arg(k),
                                QStringLiteral("10%1-01-0105%1").arg(k)}));
    }
};

void addInvoice(const QString& taxCode, const QString& cCode, double supply, double tax,
                const QString& date) {
    QVERIFY(test::exec(
        stores().dbTax,
        "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, DealDate, "
        "TradeDate, UserCode) values (?, ?, '볼트', 1, ?, ?, ?, ?, ?, '123-45-67890')",
        {taxCode, cCode, supply, supply, tax, date, date.mid(5)}));
}

int saleTotalRows() {
    return test::scalar(stores().dbTax, "select count(*) from SaleTotal").toInt();
}

std::shared_ptr<PrintRecord> printedReport(const TotalsReport& report) {
    auto record = std::make_shared<PrintRecord>();
    PrintJob job(std::make_unique<RecordingSurface>(record), QStringLiteral("test"), kTotalsDocument);
    PrinterPrepare(job);
    printTotalsReport(job, report);
    job.endDoc();
    return record;
}

TotalsReport reportOfQuarter(int quarter) {
    const TotalsPeriod p = totalsPeriod(TotalsKind::Quarter, quarter, QStringLiteral("2024"), {}, {});
    const auto values =
        totalsReportValues(TotalsKind::Quarter, quarter, QStringLiteral("2024"), {}, {},
                           GetSumKum(stores().dbTax, true, p).value_or(-1),
                           GetSumVat(stores().dbTax, true, p).value_or(-1), QDate(2024, 7, 2));
    return ReadTotalsReport(values).value_or(TotalsReport());
}

// `receivers` traders numbered from 100001, each with one invoice of the second quarter.
void addReceivers(int receivers) {
    QVERIFY(test::exec(stores().dbBasic,
                       "insert into Trader (Code, C_Name, Serial) with recursive n(i) as (select 1 union "
                       "all select i + 1 from n where i < ?) select '1' || " +
                           test::digitsSql("i", 5) + ", '매출처' || i, '2' || " +
                           test::digitsSql("i % 100", 2) + " || '-00-' || " + test::digitsSql("i", 5) +
                           " from n",
                       {receivers}));
    QVERIFY(test::exec(stores().dbTax,
                       "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, "
                       "DealDate, TradeDate, UserCode) with recursive n(i) as (select 1 union all select "
                       "i + 1 from n where i < ?) select '2' || " +
                           test::digitsSql("i", 5) + ", '1' || " + test::digitsSql("i", 5) +
                           ", '볼트', 1, i * 10, i * 10, i, '2024-04-10', '04-10', '123-45-67890' from n",
                       {receivers}));
}

} // namespace

class TestTaxTotals : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachSearchKindCoversItsPeriod() {
        const QString y = QStringLiteral("2024");
        QCOMPARE(totalsPeriod(TotalsKind::Dates, 0, y, "2024-02-03", "2024-02-20").from,
                 QStringLiteral("2024-02-03"));
        QCOMPARE(totalsPeriod(TotalsKind::Quarter, 1, y, {}, {}).from, QStringLiteral("2024-04-01"));
        QCOMPARE(totalsPeriod(TotalsKind::Quarter, 3, y, {}, {}).to, QStringLiteral("2024-12-31"));
        QCOMPARE(totalsPeriod(TotalsKind::Half, 0, y, {}, {}).to, QStringLiteral("2024-06-30"));
        QCOMPARE(periodRows(TotalsKind::Quarter).at(3), QStringLiteral("4. 4/4 분기"));
        QCOMPARE(periodRows(TotalsKind::Half).at(1), QStringLiteral("2. 2/2 분기"));
        QVERIFY(periodRows(TotalsKind::Dates).isEmpty());
    }

    void theSecondRowOfHalvesRunsFromJulyToTheEndOfTheYear() {
        const TotalsPeriod p = totalsPeriod(TotalsKind::Half, 1, QStringLiteral("2023"), {}, {});
        QCOMPARE(p.from, QStringLiteral("2023-07-01"));
        QCOMPARE(p.to, QStringLiteral("2023-12-31"));
    }

    void aSearchWithNoInvoicesLeavesEverythingEmptyAndThePanelsABlank() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 1000, 100, "2023-12-31");
        QVERIFY(test::exec(stores().dbTax, "insert into SaleTotal (Serial, CCode) values ('old', 'old')"));
        const auto rows = SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-01-01", "2024-03-31"});
        QVERIFY(rows);
        QVERIFY(rows->isEmpty());
        QCOMPARE(saleTotalRows(), 0);
        for (double sum : panelSums(*rows))
            QCOMPARE(panelText(sum), QStringLiteral(" "));
    }

    void aTraderWithTwoInvoicesIsOneRowWithTheirSumsAndOneOfTheirNumbers() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 1000, 100, "2024-01-05");
        addInvoice("100000", "000001", 500, 50, "2024-01-05"); // a second line of the same invoice
        addInvoice("100001", "000001", 2000, 200, "2024-02-05");
        addInvoice("100002", "000002", 123456789, 12345678, "2024-03-05");
        const auto rows = SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-01-01", "2024-03-31"});
        QCOMPARE(rows->size(), 2);
        const TraderTotal& first = rows->at(0).cCode == u"000001" ? rows->at(0) : rows->at(1);
        QCOMPARE(first.tradeKum, 3500.0);
        QCOMPARE(first.vatKum, 350.0);
        QCOMPARE(first.cName, QStringLiteral("거래처1"));
        QCOMPARE(first.gubun, QStringLiteral("1"));
        QCOMPARE(saleTotalRows(), 2);
        const QString serial =
            test::scalar(stores().dbTax, "select Serial from SaleTotal where CCode = '000001'").toString();
        QVERIFY(serial == u"100000" || serial == u"100001");
        QCOMPARE(test::scalar(stores().dbTax, "select Blank from SaleTotal where CCode = '000001'").toInt(),
                 11 - 4);
        QCOMPARE(test::scalar(stores().dbTax, "select Blank from SaleTotal where CCode = '000002'").toInt(),
                 11 - 9);
        QCOMPARE(
            test::scalar(stores().dbTax, "select CName from SaleTotal where CCode = '000002'").toString(),
            QStringLiteral("거래처2"));
        const auto sums = panelSums(*rows);
        QCOMPARE(panelText(sums[0]), QStringLiteral("123,460,289 "));
        QCOMPARE(panelText(sums[2]), QStringLiteral("135,806,317 "));
        QCOMPARE(panelText(sums[3]), QStringLiteral(" ")); // the purchase side stays empty
        QCOMPARE(test::scalar(stores().dbTax, "select count(*) from BuyTotal").toInt(), 0);
    }

    void aFractionalSumCountsTheBlanksOfItsWholePart() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 99999.6, 0, "2024-01-05"); // five digits, not 100000's six
        addInvoice("100001", "000002", -1.6, 0, "2024-01-06");
        const auto rows = SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-01-01", "2024-03-31"});
        QVERIFY(rows);
        QCOMPARE(test::scalar(stores().dbTax, "select Blank from SaleTotal where CCode = '000001'").toInt(),
                 11 - 5);
        QCOMPARE(test::scalar(stores().dbTax, "select Blank from SaleTotal where CCode = '000002'").toInt(),
                 11 - 2);
        // The whole-number column rounds the fraction half to even.
        QCOMPARE(
            test::scalar(stores().dbTax, "select TradeKum from SaleTotal where CCode = '000001'").toDouble(),
            100000.0);
    }

    void sumsPastTwoBillionStayWholeAndExact() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 1800000000, 180000000, "2024-01-05");
        addInvoice("100001", "000001", 1800000001, 180000000, "2024-02-05");
        const auto rows = SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-01-01", "2024-03-31"});
        QVERIFY(rows);
        QCOMPARE(rows->size(), 1);
        QCOMPARE(rows->at(0).tradeKum, 3600000001.0);
        QCOMPARE(test::scalar(stores().dbTax, "select TradeKum from SaleTotal").toLongLong(), 3600000001LL);
        QCOMPARE(test::scalar(stores().dbTax, "select Blank from SaleTotal").toInt(), 11 - 10);
    }

    void theTwoPeriodSumsReadSalesOrPurchases() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 1000, 100, "2024-01-05");
        addInvoice("100001", "000002", 2000, 200, "2024-04-05");
        const TotalsPeriod q1{"2024-01-01", "2024-03-31"};
        QCOMPARE(*GetSumKum(stores().dbTax, true, q1), 1000.0);
        QCOMPARE(*GetSumVat(stores().dbTax, true, q1), 100.0);
        QCOMPARE(*GetSumKum(stores().dbTax, false, q1), 0.0);
        QCOMPARE(*GetSumKum(stores().dbTax, true, {"2025-01-01", "2025-12-31"}), 0.0);
    }

    void theReportIsRunWithItsSixValues() {
        const QDate today(2024, 7, 2);
        auto v = totalsReportValues(TotalsKind::Quarter, 1, "2024", {}, {}, 1234567, 123456, today);
        QCOMPARE(v.sDate, QStringLiteral("(   2024년 2/4 기   )"));
        QCOMPARE(v.sPeriod, QStringLiteral("2024년 04월 01일 - 2024년 06월 30일"));
        QCOMPARE(v.dSumKum, QStringLiteral("1,234,567"));
        QCOMPARE(v.dSumVat, QStringLiteral("123,456"));
        QCOMPARE(v.sIssueDate, QStringLiteral("2024년 07월 02일"));
        QCOMPARE(v.selectTo, QStringLiteral("2024-06-30"));
        v = totalsReportValues(TotalsKind::Half, 0, "2024", {}, {}, 0, 0, today);
        QCOMPARE(v.sDate, QStringLiteral("(   2024년 1/2 기   )"));
        v = totalsReportValues(TotalsKind::Dates, 0, "2024", "2024-03-02", "2024-03-09", 0, 0, today);
        QCOMPARE(v.sDate, QStringLiteral("(           년          기)"));
        QCOMPARE(v.sPeriod, QStringLiteral("2024년 03월 02일 - 2024년 03월 09일"));
    }

    // The half's end once carried a stray zero ("2024-012-31") and the report selected nothing
    // under full sums; the report now lists the half's receivers, so the sheet agrees with its sums.
    void aSecondHalfReportListsTheHalfsReceivers() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 1000, 100, "2024-08-05");
        addInvoice("100001", "000002", 2000, 200, "2024-12-31");
        QVERIFY(SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-07-01", "2024-12-31"}));
        const auto v = totalsReportValues(TotalsKind::Half, 1, "2024", {}, {}, 3000, 300, QDate(2025, 1, 2));
        QCOMPARE(v.selectFrom, QStringLiteral("2024-07-01"));
        QCOMPARE(v.selectTo, QStringLiteral("2024-12-31"));
        const auto report = ReadTotalsReport(v);
        QVERIFY(report);
        QCOMPARE(report->rows.size(), 2);
        QCOMPARE(report->rows.at(1).supply, 2000.0);
        QCOMPARE(report->values.dSumKum, QStringLiteral("3,000"));
    }

    void aPrintBeforeAnySearchIsBlankWithThePeriodsSums() {
        Store s;
        test::script();
        addInvoice("100000", "000001", 1000, 100, "2024-05-05");
        const TotalsReport report = reportOfQuarter(1);
        QVERIFY(report.rows.isEmpty()); // SaleTotal holds nothing yet
        const auto record = printedReport(report);
        QVERIFY(record->find(PadBytes(QStringLiteral("1,000"), 18)));
        QVERIFY(record->find(QStringLiteral("(   2024년 2/4 기   )")));
        QCOMPARE(record->pages, 1);
    }

    void theReportListsEveryReceiverOverPagesWithTheTotalCarried() {
        Store s;
        test::script();
        for (int i = 0; i < 60; ++i) {
            const QString code = QStringLiteral("%1").arg(100 + i, 6, 10, QChar(u'0'));
            QVERIFY(test::exec(stores().dbBasic, "insert into Trader (Code, C_Name, Serial) values (?, ?, ?)",
                               {code, QStringLiteral("매출처%1").arg(i),
                                QStringLiteral("2%1-00-00000").arg(i, 2, 10, QChar(u'0'))}));
            addInvoice(QStringLiteral("2%1").arg(i, 5, 10, QChar(u'0')), code, 1000, 100, "2024-04-10");
        }
        QVERIFY(SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-04-01", "2024-06-30"}));
        const TotalsReport report = reportOfQuarter(1);
        QCOMPARE(report.rows.size(), 60);
        QCOMPARE(report.invoices(), 60);
        const auto record = printedReport(report);
        QCOMPARE(record->pages, 2);
        QVERIFY(record->find(QStringLiteral("- 1 / 2 -")));
        QVERIFY(record->find(QStringLiteral("다음 면으로 이월")));
        QVERIFY(record->find(QStringLiteral("앞 면에서 이월")));
        const PrintedText* first = record->find(QStringLiteral("매출처0"));
        QCOMPARE(first->y, printRowY(0, totalslayout::kTableTop + 1));
        QCOMPARE(first->x, printTabX(0, totalslayout::kCompany.tab, kBasePrintSize));
        const PrintedText* total =
            record->find(PadBytes(QStringLiteral("60,000"), totalslayout::kSupply.width));
        QVERIFY(total);
        QCOMPARE(total->page, 2);
        QCOMPARE(total->y, printRowY(0, totalslayout::kTotalRow));
    }

    // The preview reads the list a stretch of pages at a time (the store counts it and sums what
    // the rows before a stretch carry); every page, past the first stretch to the last, shows
    // what the print of the whole list shows, the carried totals too.
    void thePreviewReadInStretchesDrawsWhatTheWholePrintDraws() {
        Store s;
        test::script();
        setSystemPrintersForTesting({}, QString());
        const int receivers = 45 + 52 * 30 + 9; // beyond one stretch
        addReceivers(receivers);
        QVERIFY(SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-04-01", "2024-06-30"}));
        const TotalsSearch search{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}};
        PrintCapture capture;
        PrintTotalsReport(search, TotalsLayout::List);
        PreviewTotalsReport(nullptr, search, TotalsLayout::List);
        QCOMPARE(capture.jobs().size(), size_t(2));
        const PrintRecord& print = *capture.jobs().at(0);
        const PrintRecord& preview = *capture.jobs().at(1);
        QCOMPARE(print.pages, totalslayout::pagesFor(receivers));
        QCOMPARE(preview.pages, print.pages);
        QCOMPARE(preview.allTexts(), print.allTexts());
        for (size_t i = 0; i < print.texts.size(); ++i) {
            QCOMPARE(preview.texts.at(i).page, print.texts.at(i).page);
            QCOMPARE(preview.texts.at(i).y, print.texts.at(i).y);
        }
        const PrintedText* last = preview.find(QStringLiteral("매출처%1").arg(receivers));
        QVERIFY(last);
        QCOMPARE(last->page, print.pages);
        QVERIFY(preview.find(QStringLiteral("- %1 / %1 -").arg(print.pages)));
    }

    // The list's preview reads the rest of the list once, when a page beyond the first stretch is
    // asked for: paging on and the last page read nothing more.
    void theListPreviewReadsTheRestOnceWhenPagedBeyondTheFirstStretch() {
        Store s;
        test::script();
        const int receivers = 45 + 52 * 59; // 60 pages
        addReceivers(receivers);
        QVERIFY(SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-04-01", "2024-06-30"}));
        const TotalsSearch search{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}};
        const int before = totalsPreviewReads();
        std::unique_ptr<PagedPreview> preview = makeTotalsPreview(nullptr, search, TotalsLayout::List);
        QVERIFY(preview);
        QCOMPARE(preview->pages(), totalslayout::pagesFor(receivers));
        QCOMPARE(totalsPreviewReads(), before + 1);
        preview->showPage(30);
        QCOMPARE(totalsPreviewReads(), before + 2);
        preview->showPage(56);
        preview->showPage(preview->pages());
        QCOMPARE(totalsPreviewReads(), before + 2);
    }

    void theReportAsAPdfPutsItsWordsWhereTheLayoutSays() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Store s;
        test::script();
        addInvoice("100000", "000001", 1000, 100, "2024-04-10");
        addInvoice("100001", "000002", 2000, 200, "2024-05-10");
        QVERIFY(SearchTotals(stores().dbTax, stores().dbBasic.path(), {"2024-04-01", "2024-06-30"}));
        const QString pdf = s.home.path() + QStringLiteral("/report.pdf");
        {
            PrintJob job(makePdfSurface(pdf), kPdfPrinterName, kTotalsDocument);
            PrinterPrepare(job);
            printTotalsReport(job, reportOfQuarter(1));
            QVERIFY(job.endDoc());
        }
        const QString html = test::bboxOf(pdf);
        const QPointF name = test::wordAt(html, QStringLiteral("거래처2"));
        QVERIFY(qAbs(name.x() / 72 - printTabX(0, totalslayout::kCompany.tab, kBasePrintSize)) < 0.05);
        QVERIFY(qAbs(name.y() / 72 - printRowY(0, totalslayout::kTableTop + 2)) < 0.05);
        QVERIFY(test::wordAt(html, QStringLiteral("매출처별")).y() > 0);
        test::pagePng(pdf, 1, QStringLiteral("sale_tax_list_print"));
    }
};

NB_TEST_MAIN(TestTaxTotals)
#include "tst_tax_totals.moc"
