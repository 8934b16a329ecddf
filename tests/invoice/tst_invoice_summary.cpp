// The summary invoice line made from the statements of a customer in a period.
#include "InvoiceFixture.h"
#include "invoice/StatementSummary.h"

using namespace nb;

class TestInvoiceSummary : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void oneStatementLineGivesItsNameAlone() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"),
                                   QStringLiteral("000007"), {{QStringLiteral("볼트"), 10000, 1000}}));
        const auto s = SummarizeStatements(stores().dbBill, QStringLiteral("000007"),
                                           QStringLiteral("2024-05-01"), QStringLiteral("2024-05-31"));
        QVERIFY(s);
        QCOMPARE(s->count, 1);
        QCOMPARE(s->sum, 11000.0);
        QCOMPARE(summaryItemText(*s), QStringLiteral("볼트"));
    }
    void threeStatementLinesGiveNameOutsideTwoCases() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::addStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"), QStringLiteral("000007"),
                           {{QStringLiteral("볼트"), 1000, 100}, {QStringLiteral("볼트"), 2000, 200}});
        test::addStatement(QStringLiteral("000002"), QStringLiteral("2024-05-20"), QStringLiteral("000007"),
                           {{QStringLiteral("볼트"), 3000, 300}});
        test::addStatement(QStringLiteral("000003"), QStringLiteral("2024-06-01"), QStringLiteral("000007"),
                           {{QStringLiteral("다음달"), 9000, 900}});
        test::addStatement(QStringLiteral("000004"), QStringLiteral("2024-05-05"), QStringLiteral("000008"),
                           {{QStringLiteral("남의것"), 9000, 900}});
        const auto s = SummarizeStatements(stores().dbBill, QStringLiteral("000007"),
                                           QStringLiteral("2024-05-01"), QStringLiteral("2024-05-31"));
        QVERIFY(s);
        QCOMPARE(s->count, 3);
        QCOMPARE(s->sum, 6600.0);
        QCOMPARE(summaryItemText(*s), QStringLiteral("볼트 외 2건"));
    }
    void firstNameIsAnyRowOfTheGroup() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::addStatement(QStringLiteral("000001"), QStringLiteral("2024-05-03"), QStringLiteral("000007"),
                           {{QStringLiteral("가"), 1, 0}, {QStringLiteral("나"), 1, 0}});
        const auto s = SummarizeStatements(stores().dbBill, QStringLiteral("000007"),
                                           QStringLiteral("2024-05-01"), QStringLiteral("2024-05-31"));
        QVERIFY(s);
        QVERIFY(s->name == u"가" || s->name == u"나");
    }
    void theNameIsThatOfTheEarliestStatementsFirstLine() {
        test::TestHome home;
        QVERIFY(test::openStores());
        test::addStatement(QStringLiteral("000001"), QStringLiteral("2024-05-20"), QStringLiteral("000007"),
                           {{QStringLiteral("나중"), 1000, 100}});
        test::addStatement(QStringLiteral("000002"), QStringLiteral("2024-05-03"), QStringLiteral("000007"),
                           {{QStringLiteral("먼저"), 2000, 200}, {QStringLiteral("둘째"), 3000, 300}});
        const auto s = SummarizeStatements(stores().dbBill, QStringLiteral("000007"),
                                           QStringLiteral("2024-05-01"), QStringLiteral("2024-05-31"));
        QVERIFY(s);
        QCOMPARE(s->name, QStringLiteral("먼저"));
        QCOMPARE(s->count, 3);
        QCOMPARE(s->sum, 6600.0);
    }
    void noStatementInThePeriodGivesNothing() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(!SummarizeStatements(stores().dbBill, QStringLiteral("000007"), QStringLiteral("2024-05-01"),
                                     QStringLiteral("2024-05-31")));
    }
    void summaryLineInEachMode_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("supply");
        QTest::addColumn<QString>("tax");
        QTest::newRow("VAT별도 takes the gross as net") << 0 << "11000"
                                                        << "1100";
        QTest::newRow("VAT포함") << 1 << "10000"
                                 << "1000";
        QTest::newRow("면세") << 2 << "11000"
                              << "0";
    }
    void summaryLineInEachMode() {
        QFETCH(int, mode);
        QFETCH(QString, supply);
        QFETCH(QString, tax);
        InvoiceSheet sheet;
        sheet.vat = VatMode(mode);
        sheet.line(3).pummok = QStringLiteral("지워질 줄");
        ApplyStatementSummary(sheet, {QStringLiteral("볼트"), 1, 11000}, QStringLiteral("05-31"));
        QCOMPARE(sheet.line(0).ddyy, QStringLiteral("05-31"));
        QCOMPARE(sheet.line(0).gonggum, supply);
        QCOMPARE(sheet.line(0).tax_num, tax);
        QCOMPARE(sheet.line(0).su_num, QStringLiteral("0"));
        QCOMPARE(sheet.line(0).gibon_num, QStringLiteral("0"));
        QVERIFY(sheet.line(3).pummok.isEmpty());
        QCOMPARE(sheet.lastSupply, 11000.0);
        QCOMPARE(sheet.curLine, 1);
        QCOMPARE(sheet.sumNum, QString::number(supply.toInt() + tax.toInt()));
    }
    void vatSwitchAfterTheSummaryRecomputesFromTheSum() {
        InvoiceSheet sheet;
        sheet.vat = VatMode::Included;
        ApplyStatementSummary(sheet, {QStringLiteral("볼트"), 2, 22000}, QStringLiteral("05-31"));
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("20000"));
        ChangeVatMode(sheet, VatMode::Separate);
        QCOMPARE(sheet.line(0).gonggum, QStringLiteral("22000"));
        QCOMPARE(sheet.line(0).tax_num, QStringLiteral("2200"));
        QCOMPARE(sheet.sumNum, QStringLiteral("24200"));
    }
};

NB_TEST_MAIN(TestInvoiceSummary)
#include "tst_invoice_summary.moc"
