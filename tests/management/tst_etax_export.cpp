// The invoices of a period in the national tax service's bulk-issue sheet, read back from the
// written workbook: sheet, guidance rows, headings, an invoice of one and of four items in their
// columns, numbers as numbers, dates as YYYYMMDD, 100 invoices a file, and the invoices that
// cannot go listed with their reasons.
#include "StoreFixture.h"
#include "XlsxRead.h"
#include "core/Clock.h"
#include "management/etax/EtaxWorkbook.h"

#include <QTemporaryDir>
#include <cmath>

using namespace nb;

namespace {

const QString kSupplier = QStringLiteral("123-45-67891"); // passes the check digit
const QString kReceiver = QStringLiteral("101-01-01051"); // passes the check digit

struct Item {
    QString tradeDate, name, norm;
    QVariant quantity, price;
    double supply, tax;
};

void addParties() {
    QVERIFY(test::exec(
        stores().dbBasic,
        "insert into User (Serial, Company, Delegate, Addr, Status, Item) values (?, ?, ?, ?, ?, ?)",
        {kSupplier, "가나상사", "김가나", "서울 중구 1", "도매", "철물"}));
    QVERIFY(test::exec(stores().dbBasic,
                       "insert into Trader (Code, C_Name, U_Name, Serial, Addr1, Addr2, Status, Item) "
                       "values (?, ?, ?, ?, ?, ?, ?, ?)",
                       {"000001", "다라철강", "이다라", kReceiver, "대구 북구", "2층", "제조", "강판"}));
    QVERIFY(test::exec(stores().dbBasic,
                       "insert into Trader (Code, C_Name, U_Name, Serial) values (?, ?, ?, ?)",
                       {"000002", "틀린번호", "박틀림", "123-45-67890"}));
}

void addInvoice(const QString& taxCode, const QString& dealDate, const QList<Item>& items,
                const QVariant& receipt = QStringLiteral("청구"),
                const QString& cCode = QStringLiteral("000001"), const QString& remark = QString()) {
    for (const Item& item : items)
        QVERIFY(
            test::exec(stores().dbTax,
                       "insert into NewAcount (TaxCode, CCode, PName, PNorm, Quantity, UnitCost, TradeKum, "
                       "VatKum, DealDate, IssueDate, TradeDate, UserCode, Receipt) "
                       "values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                       {taxCode, cCode, item.name, item.norm, item.quantity, item.price, item.supply,
                        item.tax, dealDate, remark, item.tradeDate, kSupplier, receipt}));
}

Item item(const QString& date, const QString& name, double qty, double price) {
    return {date, name, QStringLiteral("규격"), qty, price, qty * price, std::round(qty * price / 10)};
}

QList<EtaxInvoice> period(const QString& from = "2024-01-01", const QString& to = "2024-12-31") {
    return *ReadEtaxInvoices(stores().dbTax, stores().dbBasic, from, to);
}

struct Fixture {
    test::TestHome home;
    QTemporaryDir out;
    Fixture() {
        setClock([] { return QDateTime(QDate(2024, 6, 1), QTime(9, 30)); });
        test::openStores();
        addParties();
    }
    ~Fixture() { setClock({}); }
    EtaxExport run(EtaxReceipt assumed = EtaxReceipt::Charged) {
        return exportEtax(period(), out.path(), "2024-01-01", "2024-12-31", assumed);
    }
};

} // namespace

class TestEtaxExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sheetNameGuidanceRowsAndTheHeadingsOfRowSix() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-10", "볼트", 3, 1000)});
        const EtaxExport result = f.run();
        QCOMPARE(result.files.size(), 1);
        QCOMPARE(QFileInfo(result.files.first()).fileName(),
                 QStringLiteral("전자세금계산서_20240101-20241231_1.xlsx"));
        QCOMPARE(test::xlsxSheetNames(result.files.first()), QStringList{"엑셀업로드양식"});
        const auto cells = test::xlsxCells(result.files.first());
        for (int r = 1; r <= 5; ++r)
            QVERIFY2(!cells.value(QStringLiteral("A%1").arg(r)).value.isEmpty(),
                     qPrintable(QString::number(r)));
        QCOMPARE(cells.value("A4").value, QStringLiteral("기간 2024-01-01 ~ 2024-12-31, 파일 1/1"));
        QCOMPARE(etaxHeadings().size(), 59);
        QCOMPARE(cells.value("A6").value, QStringLiteral("전자(세금)계산서 종류"));
        QCOMPARE(cells.value("B6").value, QStringLiteral("작성일자"));
        QCOMPARE(cells.value("K6").value, QStringLiteral("공급받는자 등록번호"));
        QCOMPARE(cells.value("T6").value, QStringLiteral("공급가액 합계"));
        QCOMPARE(cells.value("V6").value, QStringLiteral("비고"));
        QCOMPARE(cells.value("W6").value, QStringLiteral("일자1"));
        QCOMPARE(cells.value("AD6").value, QStringLiteral("품목비고1"));
        QCOMPARE(cells.value("AE6").value, QStringLiteral("일자2"));
        QCOMPARE(cells.value("BB6").value, QStringLiteral("품목비고4"));
        QCOMPARE(cells.value("BC6").value, QStringLiteral("현금"));
        QCOMPARE(cells.value("BF6").value, QStringLiteral("외상미수금"));
        QCOMPARE(cells.value("BG6").value, QStringLiteral("영수(01), 청구(02)"));
        QVERIFY(!cells.contains("BH6"));
    }
    void invoiceOfOneItemInItsColumnsWithDatesAsYYYYMMDD() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-09", "볼트", 3, 1000)}, "청구", "000001", "5월분");
        const auto cells = test::xlsxCells(f.run().files.first());
        const QMap<QString, QString> texts = {
            {"A7", "01"},         {"B7", "20240510"},    {"C7", "1234567891"}, {"E7", "가나상사"},
            {"F7", "김가나"},     {"G7", "서울 중구 1"}, {"H7", "도매"},       {"I7", "철물"},
            {"K7", "1010101051"}, {"M7", "다라철강"},    {"N7", "이다라"},     {"O7", "대구 북구 2층"},
            {"P7", "제조"},       {"Q7", "강판"},        {"V7", "5월분"},      {"W7", "09"},
            {"X7", "볼트"},       {"Y7", "규격"},        {"BG7", "02"}};
        for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
            QVERIFY2(!cells.value(it.key()).isNumber(), qPrintable(it.key()));
            QCOMPARE(cells.value(it.key()).value, it.value());
        }
        const QMap<QString, double> numbers = {{"T7", 3000},  {"U7", 300},   {"Z7", 3},
                                               {"AA7", 1000}, {"AB7", 3000}, {"AC7", 300}};
        for (auto it = numbers.cbegin(); it != numbers.cend(); ++it) {
            QVERIFY2(cells.value(it.key()).isNumber(), qPrintable(it.key()));
            QCOMPARE(cells.value(it.key()).value.toDouble(), it.value());
        }
        for (const char* empty : {"D7", "J7", "L7", "R7", "S7", "AE7", "AF7", "AJ7", "BC7", "BF7", "A8"})
            QVERIFY2(!cells.contains(empty), empty);
    }
    void invoiceOfFourItemsFillsTheFourItemBlocks() {
        Fixture f;
        addInvoice("100000", "2024-05-10",
                   {item("05-01", "하나", 1, 100), item("05-02", "둘", 2, 200), item("05-03", "셋", 3, 300),
                    item("05-04", "넷", 1.5, 400)});
        const auto cells = test::xlsxCells(f.run().files.first());
        QCOMPARE(cells.value("W7").value, QStringLiteral("01"));
        QCOMPARE(cells.value("AE7").value, QStringLiteral("02"));
        QCOMPARE(cells.value("AF7").value, QStringLiteral("둘"));
        QCOMPARE(cells.value("AM7").value, QStringLiteral("03"));
        QCOMPARE(cells.value("AN7").value, QStringLiteral("셋"));
        QCOMPARE(cells.value("AU7").value, QStringLiteral("04"));
        QCOMPARE(cells.value("AV7").value, QStringLiteral("넷"));
        QCOMPARE(cells.value("AX7").value.toDouble(), 1.5); // 수량4
        QCOMPARE(cells.value("AY7").value.toDouble(), 400.0);
        QCOMPARE(cells.value("AZ7").value.toDouble(), 600.0);
        QCOMPARE(cells.value("BA7").value.toDouble(), 60.0);
        QCOMPARE(cells.value("T7").value.toDouble(), 100.0 + 400 + 900 + 600);
        QCOMPARE(cells.value("U7").value.toDouble(), 10.0 + 40 + 90 + 60);
    }
    void freeTextLineWithoutQuantityLeavesItsCellsEmpty() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {{"05-10", "운반비", "", QVariant(), QVariant(), 5000, 500}});
        const auto cells = test::xlsxCells(f.run().files.first());
        QVERIFY(!cells.contains("Z7"));
        QVERIFY(!cells.contains("AA7"));
        QCOMPARE(cells.value("AB7").value.toDouble(), 5000.0);
    }
    void aPeriodOf250InvoicesMakesThreeFiles() {
        Fixture f;
        stores().dbTax.beginTransaction();
        for (int i = 0; i < 250; ++i)
            addInvoice(QString::number(100000 + i), "2024-03-15", {item("03-15", "볼트", 1, 1000)});
        stores().dbTax.commit();
        const EtaxExport result = f.run();
        QCOMPARE(result.files.size(), 3);
        QCOMPARE(result.invoicesPerFile, (QList<int>{100, 100, 50}));
        QCOMPARE(result.invoicesWritten(), 250);
        QCOMPARE(QFileInfo(result.files.at(2)).fileName(),
                 QStringLiteral("전자세금계산서_20240101-20241231_3.xlsx"));
        const auto last = test::xlsxCells(result.files.at(2));
        QVERIFY(last.contains("A56")); // rows 7..56
        QVERIFY(!last.contains("A57"));
        QCOMPARE(test::xlsxCells(result.files.at(1)).value("B106").value, QStringLiteral("20240315"));
    }
    void invoiceOfFiveItemsIsLeftOutForTheWeb() {
        Fixture f;
        addInvoice("100000", "2024-05-10",
                   {item("05-01", "a", 1, 100), item("05-01", "b", 1, 100), item("05-01", "c", 1, 100),
                    item("05-01", "d", 1, 100), item("05-01", "e", 1, 100)});
        addInvoice("100001", "2024-05-10", {item("05-10", "볼트", 1, 1000)});
        const EtaxExport result = f.run();
        QCOMPARE(result.invoicesWritten(), 1);
        QCOMPARE(result.leftOut.size(), 1);
        QCOMPARE(result.leftOut.first().taxCode, QStringLiteral("100000"));
        QCOMPARE(result.leftOut.first().reasons,
                 QStringList{"품목이 5개입니다 (한 장에 4개까지): 홈택스에서 직접 발급하십시오"});
        QCOMPARE(test::xlsxCells(result.files.first()).value("X7").value, QStringLiteral("볼트"));
    }
    void badRegistrationNumberIsLeftOut() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-10", "볼트", 1, 1000)}, "영수", "000002");
        const EtaxExport result = f.run();
        QVERIFY(result.files.isEmpty());
        QCOMPARE(result.leftOut.size(), 1);
        QCOMPARE(result.leftOut.first().receiver, QStringLiteral("틀린번호"));
        QCOMPARE(result.leftOut.first().reasons,
                 QStringList{"공급받는자 등록번호가 올바르지 않습니다 (123-45-67890)"});
    }
    void emptyCompanyOrRepresentativeIsLeftOut() {
        Fixture f;
        QVERIFY(test::exec(stores().dbBasic, "update Trader set U_Name = '' where Code = '000001'"));
        addInvoice("100000", "2024-05-10", {item("05-10", "볼트", 1, 1000)});
        QCOMPARE(f.run().leftOut.first().reasons, QStringList{"공급받는자 성명이 비어 있습니다"});
    }
    void itemDatedInAnotherMonthIsLeftOut() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-31", "a", 1, 100), item("06-01", "b", 1, 100)});
        QCOMPARE(f.run().leftOut.first().reasons, QStringList{"품목 일자 06-01이(가) 작성월과 다릅니다"});
    }
    void taxThatDoesNotAddUpIsLeftOut() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {{"05-10", "볼트", "", 1, 1000, 1000, 150}});
        QCOMPARE(f.run().leftOut.first().reasons,
                 QStringList{"세액 합계 150이(가) 공급가액 합계 1,000의 10%와 맞지 않습니다"});
    }
    void taxRoundedLineByLineStillAddsUp() {
        Fixture f;
        // 0.4 and 0.4 won rounded away on each line: 2 won short of a tenth of 1,008.
        addInvoice("100000", "2024-05-10",
                   {{"05-10", "a", "", 1, 504, 504, 50}, {"05-10", "b", "", 1, 504, 504, 50}});
        QVERIFY(f.run().leftOut.isEmpty());
    }
    void invoicesBeforeTheReceiptWasKeptTakeTheAssumedCodeAndAreCounted() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-10", "볼트", 1, 1000)}, QVariant());
        addInvoice("100001", "2024-05-11", {item("05-11", "볼트", 1, 1000)}, "청구");
        addInvoice("100002", "2024-05-12", {item("05-12", "볼트", 1, 1000)}, "영수");
        const EtaxExport result = f.run(EtaxReceipt::Paid);
        QCOMPARE(result.assumedReceipts, 1);
        const auto cells = test::xlsxCells(result.files.first());
        QCOMPARE(cells.value("BG7").value, QStringLiteral("01"));
        QCOMPARE(cells.value("BG8").value, QStringLiteral("02"));
        QCOMPARE(cells.value("BG9").value, QStringLiteral("01"));
    }
    void onlyTheInvoicesOfThePeriodGo() {
        Fixture f;
        addInvoice("100000", "2023-12-31", {item("12-31", "a", 1, 100)});
        addInvoice("100001", "2024-01-01", {item("01-01", "b", 1, 100)});
        const QList<EtaxInvoice> invoices = period("2024-01-01", "2024-03-31");
        QCOMPARE(invoices.size(), 1);
        QCOMPARE(invoices.first().taxCode, QStringLiteral("100001"));
    }
    void aQuoteMarkInANameIsWrittenAsItIs() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-10", "3'' 파이프", 1, 1000)});
        QCOMPARE(test::xlsxCells(f.run().files.first()).value("X7").value, QStringLiteral("3'' 파이프"));
    }
    void aFolderThatCannotBeWrittenIsReportedWithThePath() {
        Fixture f;
        addInvoice("100000", "2024-05-10", {item("05-10", "볼트", 1, 1000)});
        const EtaxExport result =
            exportEtax(period(), "/nonexistent/folder", "2024-01-01", "2024-12-31", EtaxReceipt::Charged);
        QVERIFY(result.files.isEmpty());
        QCOMPARE(result.failures.size(), 1);
        QVERIFY2(result.failures.first().startsWith("파일을 쓸 수 없습니다: /nonexistent/folder/"),
                 qPrintable(result.failures.first()));
    }
};

QTEST_GUILESS_MAIN(TestEtaxExport)
#include "tst_etax_export.moc"
