// Numbering and storage of tax invoices: the next number, the rows of a save, an issued
// invoice read back, the customer's list, the delete and the period sums.
#include "InvoiceFixture.h"
#include "invoice/InvoiceForm.h"
#include "invoice/InvoiceStore.h"

using namespace nb;

namespace {

InvoiceForm formReadyToSave() {
    InvoiceForm form;
    form.txtCCode = QStringLiteral("000001");
    form.writeYY = QStringLiteral("2024");
    form.writeMM = QStringLiteral("05");
    form.writeDD = QStringLiteral("10");
    form.serialUser = QStringLiteral("123-45-67890");
    InvoiceLine& line = form.sheet.line(0);
    line = {QStringLiteral("05-10"), QStringLiteral("볼트(M8)"),  QStringLiteral("EA"),   QStringLiteral("3"),
            QStringLiteral("1,000"), QStringLiteral("    2,727"), QStringLiteral("  273")};
    return form;
}

} // namespace

class TestInvoiceStore : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void firstInvoiceOfAnEmptyTableIs100000() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("100000"));
        QCOMPARE(serialFromTaxCode(QStringLiteral("100000")), QStringLiteral("100-000"));
    }
    void tableEndingWith100123GivesNext100124() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addInvoiceRow(QStringLiteral("100123"), QStringLiteral("000001"), QStringLiteral("a"),
                                    1, 0));
        QVERIFY(test::addInvoiceRow(QStringLiteral("100007"), QStringLiteral("000001"), QStringLiteral("b"),
                                    1, 0));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("100124"));
    }
    void anInvoiceWithoutANumberDoesNotHideTheHighest() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addInvoiceRow(QStringLiteral("100123"), QStringLiteral("000001"), QStringLiteral("a"),
                                    1, 0));
        QVERIFY(test::addInvoiceRow(QString(), QStringLiteral("000001"), QStringLiteral("b"), 1, 0));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("100124"));
    }
    void theInvoiceWithoutANumberIsListedFirstAndCountedOnce() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString c = QStringLiteral("000001");
        QVERIFY(test::addInvoiceRow(QStringLiteral("100001"), c, QStringLiteral("볼트"), 1000, 100));
        QVERIFY(test::addInvoiceRow(QString(), c, QStringLiteral("너트"), 2000, 200));
        QVERIFY(test::addInvoiceRow(QString(), c, QStringLiteral("와셔"), 3000, 300));
        const auto list = ReadIssuedList(stores().dbTax, c);
        QVERIFY(list);
        QCOMPARE(list->rows.size(), 2);
        QCOMPARE(list->rows[0].taxCode, QString());
        QCOMPARE(list->rows[0].item, QStringLiteral("와셔 외 1"));
        QCOMPARE(list->rows[0].supply, 5000.0);
        QCOMPARE(list->rows[1].taxCode, QStringLiteral("100001"));
        const auto sums = ReadIssuedSums(stores().dbTax, c);
        QVERIFY(sums);
        QCOMPARE(sums->invoices, 2);
        QCOMPARE(sums->supply, 6000.0);
        QCOMPARE(ReadIssuedSums(stores().dbTax, QStringLiteral("000009"))->supply, 0.0);
    }
    void pastNineHundredNinetyNineThousandTheNumberStopsGrowing() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addInvoiceRow(QStringLiteral("999999"), QStringLiteral("000001"), QStringLiteral("a"),
                                    1, 0));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("1000000"));
        QVERIFY(test::addInvoiceRow(QStringLiteral("1000000"), QStringLiteral("000001"), QStringLiteral("b"),
                                    1, 0));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("1000000"));
    }
    void serialFollowsTheNumberAndReadsZerosWhenEmpty() {
        QCOMPARE(serialFromTaxCode(QString()), QStringLiteral("000-000"));
        QCOMPARE(serialFromTaxCode(QStringLiteral("100124")), QStringLiteral("100-124"));
        QCOMPARE(serialDigits(QStringLiteral("123-456")), QStringLiteral("123456"));
        InvoiceForm form;
        form.setTaxCode(QStringLiteral("100124"));
        QCOMPARE(form.txtSeq, QStringLiteral("100-124"));
        form.manualSeq = true;
        form.txtSeq = QStringLiteral("123-456");
        form.setTaxCode(QString());
        QCOMPARE(form.txtSeq, QStringLiteral("123-456"));
    }
    void saveStoresEveryColumnOfTheLine() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        InvoiceForm form = formReadyToSave();
        form.bigo = QStringLiteral("비고 첫줄");
        const SaveResult result = SaveInvoice(form, stores().dbTax);
        QVERIFY(result.saved);
        QCOMPARE(result.taxCode, QStringLiteral("100000"));
        QCOMPARE(result.focus, FormFocus::Pummok0);
        QVERIFY(msgs.records().empty());
        QSqlQuery q(stores().dbTax.connection());
        QVERIFY(q.exec(
            QStringLiteral("SELECT TaxCode, CCode, PName, PNorm, Quantity, UnitCost, TradeKum, VatKum, "
                           "DealDate, IssueDate, TradeDate, UserCode FROM NewAcount")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("100000"));
        QCOMPARE(q.value(1).toString(), QStringLiteral("000001"));
        QCOMPARE(q.value(2).toString(), QStringLiteral("볼트(M8)"));
        QCOMPARE(q.value(3).toString(), QStringLiteral("EA"));
        QCOMPARE(q.value(4).toDouble(), 3.0);
        QCOMPARE(q.value(5).toDouble(), 1000.0);
        QCOMPARE(q.value(6).toDouble(), 2727.0);
        QCOMPARE(q.value(7).toDouble(), 273.0);
        QCOMPARE(q.value(8).toString(), QStringLiteral("2024-05-10"));
        QCOMPARE(q.value(9).toString(), QStringLiteral("비고 첫줄"));
        QCOMPARE(q.value(10).toString(), QStringLiteral("05-10"));
        QCOMPARE(q.value(11).toString(), QStringLiteral("123-45-67890"));
        QVERIFY(!q.next());
    }
    void saveRefusesAnInvoiceOnShow() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        InvoiceForm form = formReadyToSave();
        form.TaxCode = QStringLiteral("100000");
        QVERIFY(!SaveInvoice(form, stores().dbTax).saved);
        QCOMPARE(msgs.last().text, QStringLiteral("저장할 내역이 없습니다."));
        QCOMPARE(test::invoiceRows(), 0);
    }
    void saveWithoutReceiverAsksForIt() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        InvoiceForm form = formReadyToSave();
        form.txtCCode.clear();
        const SaveResult result = SaveInvoice(form, stores().dbTax);
        QVERIFY(!result.saved);
        QCOMPARE(result.focus, FormFocus::CName_MAE);
        QCOMPARE(msgs.last().text, QStringLiteral("매출처를 입력하여 주세요"));
        QCOMPARE(msgs.last().buttons, int(MbExclamation));
    }
    void saveWithoutFirstTaxHasNothingToSave() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        InvoiceForm form = formReadyToSave();
        form.sheet.line(0).tax_num.clear();
        const SaveResult result = SaveInvoice(form, stores().dbTax);
        QVERIFY(!result.saved);
        QCOMPARE(result.focus, FormFocus::Pummok0);
        QCOMPARE(msgs.last().text, QStringLiteral("저장할 내역이 없습니다."));
    }
    void saveStopsAtTheFirstLineMissingDateOrTax() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::script();
        InvoiceForm form = formReadyToSave();
        form.sheet.line(2) = form.sheet.line(0);
        form.sheet.line(2).pummok = QStringLiteral("너트");
        form.sheet.curLine = 3;
        QVERIFY(SaveInvoice(form, stores().dbTax).saved);
        QCOMPARE(test::invoiceRows(), 1);
        QCOMPARE(linesToSave(form.sheet).size(), 1);
        QCOMPARE(printableLines(form.sheet).size(), 2);
    }
    void remarkOfThreeLinesIsStoredWholeAndPrintedInTwo() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::script();
        InvoiceForm form = formReadyToSave();
        form.bigo = QStringLiteral("첫째 줄\n둘째 줄\n셋째 줄");
        QVERIFY(SaveInvoice(form, stores().dbTax).saved);
        QCOMPARE(test::scalar(stores().dbTax, QStringLiteral("SELECT IssueDate FROM NewAcount")).toString(),
                 form.bigo);
        QCOMPARE(remarkPrintLines(form.bigo),
                 QStringList({QStringLiteral("첫째 줄"), QStringLiteral("둘째 줄")}));
        QCOMPARE(remarkPrintLines(QStringLiteral("하나\r\n둘")),
                 QStringList({QStringLiteral("하나"), QStringLiteral("둘")}));
    }
    void aQuoteInANameIsStoredAndFound() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::script();
        InvoiceForm form = formReadyToSave();
        form.txtCCode = QStringLiteral("0'1");
        form.sheet.line(0).pummok = QStringLiteral("O'Neil 볼트");
        QVERIFY(SaveInvoice(form, stores().dbTax).saved);
        const auto list = ReadIssuedList(stores().dbTax, QStringLiteral("0'1"));
        QVERIFY(list);
        QCOMPARE(list->rows.size(), 1);
        QCOMPARE(list->rows.first().item, QStringLiteral("O'Neil 볼트"));
    }
    void issuedInvoiceIsReadBackOntoTheSheet() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::script();
        InvoiceForm form = formReadyToSave();
        form.sheet.line(1) = form.sheet.line(0);
        form.sheet.line(1).pummok = QStringLiteral("너트");
        form.sheet.curLine = 1;
        form.bigo = QStringLiteral("메모");
        QVERIFY(SaveInvoice(form, stores().dbTax).saved);
        const auto invoice = ReadIssuedInvoice(stores().dbTax, QStringLiteral("100000"));
        QVERIFY(invoice);
        QCOMPARE(invoice->lines.size(), 2);
        QCOMPARE(invoice->remark, QStringLiteral("메모"));
        const WritingDate date = writingDateOf(invoice->dealDate);
        QCOMPARE(date.yy + date.mm + date.dd, QStringLiteral("20240510"));
        InvoiceSheet sheet;
        sheet.curLine = 4;
        ShowIssuedInvoice(sheet, *invoice);
        QCOMPARE(sheet.curLine, 1);
        QCOMPARE(sheet.line(1).pummok, QStringLiteral("너트"));
        QCOMPARE(sheet.line(0).su_num, QStringLiteral("3"));
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("2727"));
        QCOMPARE(sheet.sumNum, QStringLiteral("6000"));
        QVERIFY(!ReadIssuedInvoice(stores().dbTax, QStringLiteral("999999")));
    }
    void issuedListFoldsOneRowPerInvoice() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString c = QStringLiteral("000001");
        test::addInvoiceRow(QStringLiteral("100001"), c, QStringLiteral("볼트"), 1000, 100,
                            QStringLiteral("2024-05-01"));
        test::addInvoiceRow(QStringLiteral("100001"), c, QStringLiteral("너트"), 2000, 200,
                            QStringLiteral("2024-05-01"));
        test::addInvoiceRow(QStringLiteral("100001"), c, QStringLiteral("와셔"), 3000, 300,
                            QStringLiteral("2024-05-01"));
        test::addInvoiceRow(QStringLiteral("100002"), QStringLiteral("000002"), QStringLiteral("남의것"), 9,
                            9);
        test::addInvoiceRow(QStringLiteral("100003"), c, QStringLiteral("못"), 500, 50,
                            QStringLiteral("2024-06-02"));
        const auto list = ReadIssuedList(stores().dbTax, c);
        QVERIFY(list);
        QCOMPARE(list->rows.size(), 2);
        QCOMPARE(list->rows[0].item, QStringLiteral("와셔 외 2"));
        QCOMPARE(list->rows[0].supply, 6000.0);
        QCOMPARE(list->rows[0].tax, 600.0);
        QCOMPARE(list->rows[0].dealDate, QStringLiteral("2024-05-01"));
        QCOMPARE(list->rows[1].item, QStringLiteral("못"));
        QCOMPARE(list->rows[1].taxCode, QStringLiteral("100003"));
        QCOMPARE(sumPanelText(list->supply, QStringLiteral("#,###,##0")), QStringLiteral("6,500 "));
        QCOMPARE(sumPanelText(list->tax, QStringLiteral("#,###,##0")), QStringLiteral("650 "));
    }
    void deletingTheLastInvoiceOfACustomerLeavesTheListEmpty() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("볼트"), 1000,
                            100);
        test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("너트"), 1000,
                            100);
        QVERIFY(DeleteInvoice(stores().dbTax, QStringLiteral("100000")));
        QCOMPARE(test::invoiceRows(), 0);
        const auto list = ReadIssuedList(stores().dbTax, QStringLiteral("000001"));
        QVERIFY(list);
        QVERIFY(list->rows.isEmpty());
    }
    void numbersAreReusedOnlyWhenTheHighestWasDeleted() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("a"), 1, 0);
        test::addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000001"), QStringLiteral("b"), 1, 0);
        DeleteInvoice(stores().dbTax, QStringLiteral("100000"));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("100002"));
        DeleteInvoice(stores().dbTax, QStringLiteral("100001"));
        QCOMPARE(NextTaxCode(stores().dbTax), QStringLiteral("100000"));
    }
    void periodSumsReadOnlyTheirDates() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("1"), QStringLiteral("a"), 1000, 100,
                            QStringLiteral("2024-02-01"));
        test::addInvoiceRow(QStringLiteral("100001"), QStringLiteral("1"), QStringLiteral("b"), 2000, 200,
                            QStringLiteral("2024-05-01"));
        const auto q1 =
            ReadTaxSums(stores().dbTax, QStringLiteral("2024-01-01"), QStringLiteral("2024-03-31"));
        QVERIFY(q1);
        QCOMPARE(q1->supply, 1000.0);
        const auto all = ReadAllTaxSums(stores().dbTax);
        QVERIFY(all);
        QCOMPARE(all->tax, 300.0);
        const auto none =
            ReadTaxSums(stores().dbTax, QStringLiteral("2023-01-01"), QStringLiteral("2023-12-31"));
        QVERIFY(none);
        QCOMPARE(sumPanelText(none->supply, QStringLiteral("#,##0")), QStringLiteral("0 "));
    }
    void periodChoicesAndTheirDates_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("1/4") << 0 << "1/4분기"
                             << "2024-01-01"
                             << "2024-03-31";
        QTest::newRow("2/4") << 0 << "2/4분기"
                             << "2024-04-01"
                             << "2024-06-30";
        QTest::newRow("3/4") << 0 << "3/4분기"
                             << "2024-07-01"
                             << "2024-09-30";
        QTest::newRow("4/4") << 0 << "4/4분기"
                             << "2024-10-01"
                             << "2024-12-31";
        QTest::newRow("1/2") << 1 << "1/2분기"
                             << "2024-01-01"
                             << "2024-06-30";
        QTest::newRow("2/2") << 1 << "2/2분기"
                             << "2024-07-01"
                             << "2024-12-31";
        QTest::newRow("year") << 2 << "한해집계"
                              << "2024-01-01"
                              << "2024-12-31";
    }
    void periodChoicesAndTheirDates() {
        QFETCH(int, kind);
        QFETCH(QString, choice);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QVERIFY(periodChoices(PeriodKind(kind)).contains(choice));
        const DateRange r = periodRange(PeriodKind(kind), choice, 2024);
        QCOMPARE(r.from, from);
        QCOMPARE(r.to, to);
    }
};

NB_TEST_MAIN(TestInvoiceStore)
#include "tst_invoice_store.moc"
