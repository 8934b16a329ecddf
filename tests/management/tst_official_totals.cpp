// The official 합계표 without a window: how invoices are split between the electronic and the
// other rows and between business and resident numbers, the digit groups of an amount, the
// (갑) sheet and the (을) sheets read back from a PDF by their words' positions, and the lazy
// preview of a long form.
#include "PdfRead.h"
#include "StoreFixture.h"
#include "core/Clock.h"
#include "management/OfficialTotalsForm.h"
#include "management/TaxTotalsReport.h"
#include "management/etax/HandOverRecord.h"
#include "printing/PagedPreview.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

#include <QDate>
#include <QLabel>
#include <QSpinBox>

using namespace nb;
using namespace nb::officialform;

namespace {

struct Store {
    test::TestHome home;
    Store() {
        QVERIFY(test::openStores());
        QVERIFY(test::exec(stores().dbBasic,
                           "insert into User (Serial, Company, Delegate, Addr) values "
                           "('123-45-67891', '하르문상사', '홍길동', '서울시 중구 을지로 1')"));
    }
};

void addTrader(const QString& code, const QString& name, const QString& serial) {
    QVERIFY(test::exec(stores().dbBasic, "insert into Trader (Code, C_Name, Serial) values (?, ?, ?)",
                       {code, name, serial}));
}

void addInvoice(const QString& taxCode, const QString& cCode, double supply, double tax,
                const QString& date) {
    QVERIFY(test::exec(
        stores().dbTax,
        "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, DealDate, "
        "TradeDate, UserCode) values (?, ?, '볼트', 1, ?, ?, ?, ?, ?, '123-45-67891')",
        {taxCode, cCode, supply, supply, tax, date, date.mid(5)}));
}

InvoiceOfPeriod invoice(const QString& taxCode, const QString& cCode, const QString& serial, double supply) {
    return InvoiceOfPeriod{taxCode, cCode, serial, QStringLiteral("상사") + cCode, supply, supply / 10};
}

const TotalsPeriod kSecondQuarter{QStringLiteral("2024-04-01"), QStringLiteral("2024-06-30")};

// A file of the record of hand-overs holding one invoice, written on `written` and marked uploaded
// on `uploaded` (not marked when empty); its number, or -1.
int handOverFile(const test::TestHome& home, const QString& taxCode, const QString& cCode, double supply,
                 const QString& date, const QString& uploaded) {
    setClock([] { return QDateTime(QDate(2024, 7, 1), QTime(10, 0)); });
    QString why;
    const HandOverEntry entry{taxCode, date, cCode, QStringLiteral("상대"), supply, supply / 10};
    const int file = RecordHandOverFile(stores().dbTax, home.file(taxCode + QStringLiteral(".xlsx")),
                                        kSecondQuarter.from, kSecondQuarter.to, {entry}, &why)
                         .value_or(-1);
    setClock([] { return QDateTime(QDate(2024, 7, 20), QTime(10, 0)); });
    if (file > 0 && !uploaded.isEmpty() && !MarkFileUploaded(stores().dbTax, file, uploaded, &why)) return -1;
    setClock({});
    return file;
}

// `count` traders numbered from 000001, each with one invoice of the second quarter.
void addManyReceivers(int count) {
    QVERIFY(test::exec(stores().dbBasic,
                       "insert into Trader (Code, C_Name, Serial) with recursive n(i) as (select 1 union all "
                       "select i + 1 from n where i < ?) select " +
                           test::digitsSql("i", 6) + ", '매출처' || i, '2' || " +
                           test::digitsSql("i % 100", 2) + " || '-00-' || " + test::digitsSql("i", 5) +
                           " from n",
                       {count}));
    QVERIFY(
        test::exec(stores().dbTax,
                   "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, "
                   "DealDate, TradeDate, UserCode) with recursive n(i) as (select 1 union all select i + 1 "
                   "from n where i < ?) select '1' || " +
                       test::digitsSql("i", 5) + ", " + test::digitsSql("i", 6) +
                       ", '볼트', 1, i * 10, i * 10, i, '2024-04-10', '04-10', '123-45-67891' from n",
                   {count}));
}

void compareLines(const IssueLine& engine, const IssueLine& rules, const char* what) {
    QVERIFY2(engine.receivers == rules.receivers, what);
    QVERIFY2(engine.invoices == rules.invoices, what);
    QVERIFY2(engine.supply == rules.supply, what);
    QVERIFY2(engine.tax == rules.tax, what);
}

// What a job printed, text by text, page by page.
QStringList printedTexts(const PrintRecord& record) {
    QStringList texts;
    for (const PrintedText& t : record.texts)
        texts
            << QStringLiteral("%1|%2|%3|%4").arg(t.page).arg(t.x, 0, 'f', 4).arg(t.y, 0, 'f', 4).arg(t.text);
    return texts;
}

QString printToPdf(const QString& path, const OfficialTotals& form) {
    PrintJob job(makePdfSurface(path), kPdfPrinterName, kTotalsDocument);
    PrinterPrepare(job);
    printOfficialTotals(job, form);
    return job.endDoc() ? test::bboxOf(path) : QString();
}

bool near(double points, double inches) {
    return qAbs(points / 72 - inches) < 0.03;
}

} // namespace

class TestOfficialTotals : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anInvoiceUploadedByTheEleventhOfTheNextMonthCountsAsElectronic() {
        const QDate deadline = electronicDeadline(QStringLiteral("2024-06-30"));
        QCOMPARE(deadline, QDate(2024, 7, 11));
        QCOMPARE(electronicDeadline(QStringLiteral("2024-12-31")), QDate(2025, 1, 11));
        const QList<InvoiceOfPeriod> invoices{invoice("100000", "000001", "234-56-78904", 1000),
                                              invoice("100001", "000001", "234-56-78904", 2000),
                                              invoice("100002", "000002", "345-67-89013", 4000)};
        UploadedDates uploaded;
        uploaded.insert(QStringLiteral("100000"), QDate(2024, 7, 11)); // on the day: electronic
        uploaded.insert(QStringLiteral("100001"), QDate(2024, 7, 12)); // a day late: not
        const OfficialTotals form = sumOfficialTotals(invoices, uploaded, deadline);
        QCOMPARE(form.electronicBusiness.invoices, 1);
        QCOMPARE(form.electronicBusiness.supply, 1000.0);
        QCOMPARE(form.paperBusiness.invoices, 2);
        QCOMPARE(form.paperBusiness.receivers, 2);
        QCOMPARE(form.paperBusiness.supply, 6000.0);
        // A receiver with invoices on both sides stands in both parts; the 합계 adds the parts.
        QCOMPARE(form.electronicBusiness.receivers, 1);
        QCOMPARE(form.total().receivers, 3);
        QCOMPARE(form.total().invoices, 3);
        QCOMPARE(form.total().supply, 7000.0);
        QCOMPARE(form.receivers.size(), 2);
        QCOMPARE(form.receivers.at(0).supply, 2000.0); // only the late invoice of 000001 is listed
    }

    void anInvoiceNotMarkedUploadedIsOfTheOtherRows() {
        const OfficialTotals form =
            sumOfficialTotals({invoice("100000", "000001", "234-56-78904", 1000)}, {}, QDate(2024, 7, 11));
        QCOMPARE(form.electronic().invoices, 0);
        QCOMPARE(form.paper().invoices, 1);
    }

    void aResidentNumberReceiverCountsInTheResidentRowsAndIsNotListed() {
        QVERIFY(isResidentNumber(QStringLiteral("800101-1234567")));
        QVERIFY(!isResidentNumber(QStringLiteral("234-56-78904")));
        QVERIFY(!isResidentNumber(QString()));
        const QList<InvoiceOfPeriod> invoices{invoice("100000", "000001", "800101-1234567", 1000),
                                              invoice("100001", "000002", "234-56-78904", 2000),
                                              invoice("100002", "000003", "8001011234568", 3000)};
        UploadedDates uploaded;
        uploaded.insert(QStringLiteral("100002"), QDate(2024, 7, 1));
        const OfficialTotals form = sumOfficialTotals(invoices, uploaded, QDate(2024, 7, 11));
        QCOMPARE(form.paperResident.receivers, 1);
        QCOMPARE(form.paperResident.supply, 1000.0);
        QCOMPARE(form.electronicResident.receivers, 1);
        QCOMPARE(form.electronicResident.supply, 3000.0);
        QCOMPARE(form.receivers.size(), 1);
        QCOMPARE(form.receivers.at(0).serial, QStringLiteral("234-56-78904"));
    }

    void twoTraderCodesWithOneNumberAreOneReceiver() {
        const QList<InvoiceOfPeriod> invoices{invoice("100000", "000001", "234-56-78904", 1000),
                                              invoice("100001", "000002", "2345678904", 2000),
                                              invoice("100002", "000003", "", 3000),
                                              invoice("100003", "000004", "", 4000)};
        const OfficialTotals form = sumOfficialTotals(invoices, {}, QDate(2024, 7, 11));
        QCOMPARE(form.paperBusiness.receivers, 3); // a receiver without a number is its trader code
        QCOMPARE(form.receivers.size(), 3);
        QCOMPARE(form.receivers.at(0).invoices, 2);
        QCOMPARE(form.receivers.at(0).supply, 3000.0);
    }

    void amountsStandInTheirDigitGroups() {
        QCOMPARE(digitGroups(0), (QStringList{"", "", "", "", "0"}));
        QCOMPARE(digitGroups(1234567), (QStringList{"", "", "1", "234", "567"}));
        QCOMPARE(digitGroups(1000005), (QStringList{"", "", "1", "000", "005"}));
        QCOMPARE(digitGroups(-25000), (QStringList{"", "", "", "-25", "000"}));
        QCOMPARE(digitGroups(12345678901234.0), (QStringList{"12", "345", "678", "901", "234"}));
        QCOMPARE(digitGroups(999.5), (QStringList{"", "", "", "1", "000"}));
    }

    void theTermNamesTheVatTermAndTheDays() {
        QCOMPARE(officialTerm(kSecondQuarter), QStringLiteral("2024년 제1기 (4월 1일 ~ 6월 30일)"));
        QCOMPARE(officialTerm({QStringLiteral("2024-07-01"), QStringLiteral("2024-12-31")}),
                 QStringLiteral("2024년 제2기 (7월 1일 ~ 12월 31일)"));
    }

    void theSheetsAFormTakes() {
        QCOMPARE(pagesFor(0), 1);
        QCOMPARE(pagesFor(kFirstSheetRows), 1);
        QCOMPARE(pagesFor(kFirstSheetRows + 1), 2);
        QCOMPARE(pagesFor(kFirstSheetRows + kLaterSheetRows), 2);
        QCOMPARE(pagesFor(kFirstSheetRows + kLaterSheetRows + 1), 3);
        QCOMPARE(placeOfLine(kFirstSheetRows).page, 2);
        QCOMPARE(placeOfLine(kFirstSheetRows).y, kLaterBodyTop);
    }

    void theFirstSheetAsAPdfPutsEveryBlockWhereTheFormSays() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Store s;
        test::script();
        addTrader("000001", "가나철강", "234-56-78904");
        addTrader("000002", "다라상회", "345-67-89013");
        addTrader("000003", "김개인", "800101-1234567");
        addInvoice("100000", "000001", 1234567, 123456, "2024-04-02");
        addInvoice("100001", "000002", 8000, 800, "2024-06-30");
        addInvoice("100002", "000003", 5000, 500, "2024-05-05");
        addInvoice("100003", "000002", 9000, 900, "2024-07-01"); // another quarter
        const auto form = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 2));
        QVERIFY(form);
        QCOMPARE(form->total().invoices, 3);
        QCOMPARE(form->company, QStringLiteral("하르문상사"));
        const QString html = printToPdf(s.home.file(QStringLiteral("form.pdf")), *form);
        QCOMPARE(test::pdfPages(html), 1);
        QVERIFY(test::wordAt(html, QStringLiteral("세금계산서합계표(갑)")).y() > 0);
        QVERIFY(test::wordAt(html, QStringLiteral("제1기")).y() > 0);
        for (const char* word : {"제출자", "사업장", "총합계", "매출처별", "주민등록번호", "소재지"})
            QVERIFY2(test::wordAt(html, QString::fromUtf8(word)).y() > 0, word);
        QVERIFY(near(test::wordAt(html, QStringLiteral("하르문상사")).x(), 5.30 + 0.05));
        // The first receiver's line of the detail, in the order of the trader codes.
        const QPointF name = test::wordAt(html, QStringLiteral("가나철강"));
        QVERIFY(near(name.x(), kCompany.x + 0.05));
        QVERIFY(name.y() / 72 > kFirstBodyTop && name.y() / 72 < kFirstBodyTop + kFirstRowHeight);
        const QPointF second = test::wordAt(html, QStringLiteral("다라상회"));
        QVERIFY(second.y() / 72 > kFirstBodyTop + kFirstRowHeight);
        // The person stands in the resident row only.
        QCOMPARE(test::wordAt(html, QStringLiteral("김개인")).y(), -1.0);
        // 1,234,567 in its groups under 공급가액, on the receiver's line.
        const double cell = kSupply.width / 5;
        const QList<QPointF> groups = test::allWordsAt(html, QStringLiteral("234"));
        QVERIFY(std::any_of(groups.begin(), groups.end(), [&](const QPointF& p) {
            return p.x() / 72 > kSupply.x + cell * 3 && p.x() / 72 < kSupply.x + cell * 4 &&
                   qAbs(p.y() - name.y()) < 2;
        }));
        test::pagePng(s.home.file(QStringLiteral("form.pdf")), 1,
                      QStringLiteral("official_totals_first_sheet"));
    }

    void receiversBeyondTheFirstFiveContinueOnLaterSheets() {
        if (!test::havePdfTools()) QSKIP("pdftotext or pdftoppm missing");
        Store s;
        test::script();
        const int receivers = kFirstSheetRows + kLaterSheetRows + 3;
        for (int i = 0; i < receivers; ++i) {
            const QString code = QStringLiteral("%1").arg(i + 1, 6, 10, QChar(u'0'));
            addTrader(code, QStringLiteral("매출처%1").arg(i + 1),
                      QStringLiteral("2%1-00-00000").arg(i, 2, 10, QChar(u'0')));
            addInvoice(QStringLiteral("1%1").arg(i, 5, 10, QChar(u'0')), code, 1000, 100, "2024-04-10");
        }
        const auto form = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 2));
        QVERIFY(form);
        QCOMPARE(form->receivers.size(), receivers);
        const QString pdf = s.home.file(QStringLiteral("long.pdf"));
        const QString html = printToPdf(pdf, *form);
        QCOMPARE(test::pdfPages(html), 3);
        QVERIFY(test::wordAt(html, QStringLiteral("세금계산서합계표(을)"), 2).y() > 0);
        QVERIFY(test::wordAt(html, QStringLiteral("세금계산서합계표(을)"), 3).y() > 0);
        QVERIFY(near(test::wordAt(html, QStringLiteral("쪽"), 2).y(), kFooterY));
        // The sixth receiver opens the first (을) sheet, numbered on.
        const QPointF sixth = test::wordAt(html, QStringLiteral("매출처6"), 2);
        QVERIFY(near(sixth.x(), kCompany.x + 0.05));
        QVERIFY(sixth.y() / 72 > kLaterBodyTop && sixth.y() / 72 < kLaterBodyTop + kLaterRowHeight);
        const QPointF six = test::wordAt(html, QStringLiteral("6"), 2);
        QVERIFY(qAbs(six.y() - sixth.y()) < 2);
        QVERIFY(six.x() / 72 > kNumber.x && six.x() / 72 < kNumber.x + kNumber.width);
        const QPointF last = test::wordAt(html, QStringLiteral("매출처%1").arg(receivers), 3);
        QVERIFY(last.y() / 72 > kLaterBodyTop + kLaterRowHeight * 2);
        QCOMPARE(test::wordAt(html, QStringLiteral("매출처6"), 1).y(), -1.0);
        test::pagePng(pdf, 2, QStringLiteral("official_totals_later_sheet"));
    }

    void theProgressFormMovesFromTheFirstPageToTheLast() {
        Store s;
        auto& msgs = test::script();
        setSystemPrintersForTesting({}, QString());
        for (int i = 0; i < kFirstSheetRows + kLaterSheetRows + 1; ++i) {
            const QString code = QStringLiteral("%1").arg(i + 1, 6, 10, QChar(u'0'));
            addTrader(code, QStringLiteral("매출처%1").arg(i + 1),
                      QStringLiteral("2%1-00-00000").arg(i, 2, 10, QChar(u'0')));
            addInvoice(QStringLiteral("1%1").arg(i, 5, 10, QChar(u'0')), code, 1000, 100, "2024-04-10");
        }
        PrintTotalsReport(TotalsSearch{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}},
                          TotalsLayout::Official);
        const QList<int> values = msgs.progressValues();
        QVERIFY(values.size() >= 2);
        QCOMPARE(values.first(), 200);
        QCOMPARE(values.last(), 3 * 200);
        QVERIFY(std::is_sorted(values.begin(), values.end()));
        const auto shown = std::find_if(msgs.records().begin(), msgs.records().end(),
                                        [](const MessageRecord& r) { return r.kind == u"progress"; });
        QVERIFY(shown != msgs.records().end());
        QCOMPARE(shown->text, QStringLiteral("합계표를 인쇄하는 중입니다..."));
    }

    // The record of hand-overs decides the rows: a file marked uploaded by the 11th counts, one
    // uploaded later or withdrawn does not.
    void theHandOverRecordSplitsThePrintedTotals() {
        Store s;
        test::script();
        addTrader("000001", "가나철강", "234-56-78904");
        addTrader("000002", "다라상회", "345-67-89013");
        addTrader("000003", "마바상사", "456-78-90122");
        addInvoice("100000", "000001", 1000, 100, "2024-04-02");
        addInvoice("100001", "000002", 2000, 200, "2024-05-02");
        addInvoice("100002", "000003", 4000, 400, "2024-06-02");
        QDate day(2024, 7, 1); // the files are written on the first of July, marked later
        setClock([&day] { return QDateTime(day, QTime(10, 0)); });
        const std::unique_ptr<void, void (*)(void*)> clockBack(&day, [](void*) { setClock({}); });
        QString why;
        const auto fileOf = [&](const QString& taxCode, const QString& cCode, double supply,
                                const QString& date) {
            const HandOverEntry entry{taxCode, date, cCode, QStringLiteral("상대"), supply, supply / 10};
            return RecordHandOverFile(stores().dbTax, s.home.file(taxCode + QStringLiteral(".xlsx")),
                                      kSecondQuarter.from, kSecondQuarter.to, {entry}, &why)
                .value_or(-1);
        };
        const int onTime = fileOf("100000", "000001", 1000, "2024-04-02");
        const int late = fileOf("100001", "000002", 2000, "2024-05-02");
        const int withdrawn = fileOf("100002", "000003", 4000, "2024-06-02");
        QVERIFY2(onTime > 0 && late > 0 && withdrawn > 0, qPrintable(why));
        day = QDate(2024, 7, 20);
        QVERIFY2(MarkFileUploaded(stores().dbTax, onTime, "2024-07-11", &why), qPrintable(why));
        QVERIFY2(MarkFileUploaded(stores().dbTax, late, "2024-07-12", &why), qPrintable(why));
        QVERIFY2(MarkFileUploaded(stores().dbTax, withdrawn, "2024-07-01", &why), qPrintable(why));
        QVERIFY2(WithdrawFile(stores().dbTax, withdrawn, QStringLiteral("잘못 올림"), &why), qPrintable(why));
        PrintCapture capture;
        PrintTotalsReport(TotalsSearch{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}},
                          TotalsLayout::Official);
        const PrintRecord& record = capture.last();
        // Row 1 of the block: 전자 사업자등록번호 발급분; row 4: 외 사업자등록번호 발급분.
        const auto countsOn = [&](int line) {
            const double top = kTotalsBodyTop + kTotalsRowHeight * line;
            QStringList found;
            for (const PrintedText& t : record.texts)
                if (t.page == 1 && t.y > top && t.y < top + kTotalsRowHeight && t.x > kReceiversCount.x &&
                    t.x < kInvoicesCount.x + kInvoicesCount.width)
                    found << t.text;
            return found;
        };
        QCOMPARE(countsOn(1), (QStringList{"1", "1"}));
        QCOMPARE(countsOn(4), (QStringList{"2", "2"}));
        QVERIFY(record.find(QStringLiteral("가나철강")) == nullptr); // sent in time: not listed
        QVERIFY(record.find(QStringLiteral("다라상회")));
        QVERIFY(record.find(QStringLiteral("마바상사")));
    }

    void aSecondHalfFormPrintsTheHalfsReceivers() {
        Store s;
        test::script();
        addTrader("000001", "가나철강", "234-56-78904");
        addInvoice("100000", "000001", 1000, 100, "2024-08-05");
        TotalsSearch half{TotalsKind::Half, 1, QStringLiteral("2024"), {}, {}};
        const auto form = ReadOfficialTotals(half.span(), QDate(2025, 1, 2));
        QVERIFY(form);
        QCOMPARE(form->receivers.size(), 1);
        QCOMPARE(form->term, QStringLiteral("2024년 제2기 (7월 1일 ~ 12월 31일)"));
    }

    // The store sums and splits the form in one statement; it follows the rules above for every
    // kind of receiver: one number written two ways, blanks in a number, a resident number, no
    // number, a trader code the basic file does not hold, and files on time, late and withdrawn.
    void theStoresSplitFollowsTheRulesForEveryKindOfReceiver() {
        Store s;
        test::script();
        addTrader("000001", "가나철강", "234-56-78904");
        addTrader("000002", "가나철강2", "2345678904");
        addTrader("000003", "김개인", "800101-1234567");
        addTrader("000004", "번호없음", "");
        addTrader("000005", "다라상회", " 345 67 89013 ");
        addTrader("000006", "다라상회2", "345-67-89013");
        addTrader("000008", "이개인", "8001011234568");
        addInvoice("100000", "000001", 1000, 100, "2024-04-02");
        addInvoice("100001", "000001", 2000, 200, "2024-04-03");
        addInvoice("100002", "000002", 3000, 300, "2024-05-02");
        addInvoice("100003", "000003", 4000, 400, "2024-05-03");
        addInvoice("100004", "000004", 5000, 500, "2024-05-04");
        addInvoice("100005", "000004", 6000, 600, "2024-05-05");
        addInvoice("100005", "000004", 500, 50, "2024-05-05"); // a second line of one invoice
        addInvoice("100006", "000005", 7000, 700, "2024-06-06");
        addInvoice("100007", "000006", 8000, 800, "2024-06-07");
        addInvoice("100008", "000099", 9000, 900, "2024-06-08");
        addInvoice("100009", "000008", 1100, 110, "2024-06-09");
        addInvoice("100010", "000006", 1200, 120, "2024-06-10");
        addInvoice("100011", "000001", 9900, 990, "2024-07-01"); // another quarter
        QVERIFY(handOverFile(s.home, "100000", "000001", 1000, "2024-04-02", "2024-07-11") > 0); // on time
        QVERIFY(handOverFile(s.home, "100001", "000001", 2000, "2024-04-03", "2024-07-12") > 0); // late
        QVERIFY(handOverFile(s.home, "100009", "000008", 1100, "2024-06-09", "2024-07-01") > 0);
        const int withdrawn = handOverFile(s.home, "100010", "000006", 1200, "2024-06-10", "2024-07-01");
        QVERIFY(withdrawn > 0);
        QString why;
        QVERIFY2(WithdrawFile(stores().dbTax, withdrawn, QStringLiteral("잘못 올림"), &why), qPrintable(why));

        auto& msgs = test::script();
        const auto engine = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 20));
        const auto invoices = ReadInvoicesOfPeriod(kSecondQuarter);
        const auto uploaded = uploadedDatesOf(kSecondQuarter);
        QVERIFY2(engine && invoices && uploaded,
                 qPrintable(msgs.records().empty() ? QString() : msgs.last().text));
        const OfficialTotals rules =
            sumOfficialTotals(*invoices, *uploaded, electronicDeadline(kSecondQuarter.to));
        compareLines(engine->electronicBusiness, rules.electronicBusiness, "electronic, business");
        compareLines(engine->electronicResident, rules.electronicResident, "electronic, resident");
        compareLines(engine->paperBusiness, rules.paperBusiness, "other, business");
        compareLines(engine->paperResident, rules.paperResident, "other, resident");
        QCOMPARE(engine->receivers.size(), rules.receivers.size());
        for (int i = 0; i < rules.receivers.size(); ++i) {
            QCOMPARE(engine->receivers.at(i).serial, rules.receivers.at(i).serial);
            QCOMPARE(engine->receivers.at(i).company, rules.receivers.at(i).company);
            QCOMPARE(engine->receivers.at(i).invoices, rules.receivers.at(i).invoices);
            QCOMPARE(engine->receivers.at(i).supply, rules.receivers.at(i).supply);
            QCOMPARE(engine->receivers.at(i).tax, rules.receivers.at(i).tax);
        }
        // What the rules give here: the number of 000001 and 000002 is one receiver of three
        // invoices not sent in time, the blanks of 000005 do not part it from 000006, the
        // trader code without a record is a receiver of its own.
        QCOMPARE(engine->electronicBusiness.invoices, 1);
        QCOMPARE(engine->electronicResident.invoices, 1);
        QCOMPARE(engine->paperResident.receivers, 1);
        QCOMPARE(engine->paperBusiness.receivers, 4);
        QCOMPARE(engine->paperBusiness.invoices, 8);
        QCOMPARE(engine->receivers.at(0).serial, QStringLiteral("234-56-78904"));
        QCOMPARE(engine->receivers.at(0).invoices, 2);
        QCOMPARE(engine->receivers.at(1).invoices, 2);
        QCOMPARE(engine->receivers.at(1).supply, 11500.0);
        QCOMPARE(engine->receivers.at(2).serial, QStringLiteral("345 67 89013"));
        QCOMPARE(engine->receivers.at(2).supply, 16200.0);
        QCOMPARE(engine->receivers.at(3).company, QString());
        QCOMPARE(engine->total().invoices, 11);
    }

    // Invoice codes longer than the program's own, numbers written with wide and no-break
    // spaces, and a line without a trader code are summed as the one statement sums them.
    void longCodesWideBlanksAndALineWithoutATraderAreSummedAsTheRulesSay() {
        Store s;
        test::script();
        addTrader("000001", "가나철강", "234-56-78904");
        addTrader("000002", "가나철강2", QStringLiteral("234\u300056\u00a078904"));
        addTrader("000003", "긴코드", "456-78-90123");
        addInvoice("1000000001", "000003", 1000, 100, "2024-04-02");
        addInvoice("1000000001", "000003", 500, 50, "2024-04-02"); // a second line of one invoice
        addInvoice("1000000002", "000003", 700, 70, "2024-04-03");
        addInvoice("100001", "000001", 2000, 200, "2024-05-02");
        addInvoice("100002", "000002", 3000, 300, "2024-05-03");
        QVERIFY(
            test::exec(stores().dbTax,
                       "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, "
                       "DealDate, TradeDate, UserCode) values ('100003', NULL, '볼트', 1, 4000, 4000, 400, "
                       "'2024-06-01', '06-01', '123-45-67891')"));
        const auto whole = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 2));
        const auto stretch = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 2), 1, 1);
        QVERIFY(whole && stretch);
        QCOMPARE(whole->paperBusiness.receivers, 3);
        QCOMPARE(whole->paperBusiness.invoices, 5);
        QCOMPARE(whole->paperBusiness.supply, 11200.0);
        QCOMPARE(whole->paperBusiness.tax, 1120.0);
        QCOMPARE(whole->receivers.size(), 3);
        QCOMPARE(whole->receivers.at(0).serial, QString()); // the line without a trader comes first
        QCOMPARE(whole->receivers.at(0).supply, 4000.0);
        QCOMPARE(whole->receivers.at(1).serial, QStringLiteral("234-56-78904"));
        QCOMPARE(whole->receivers.at(1).company, QStringLiteral("가나철강"));
        QCOMPARE(whole->receivers.at(1).invoices, 2);
        QCOMPARE(whole->receivers.at(1).supply, 5000.0);
        QCOMPARE(whole->receivers.at(2).company, QStringLiteral("긴코드"));
        QCOMPARE(whole->receivers.at(2).invoices, 2);
        QCOMPARE(whole->receivers.at(2).supply, 2200.0);
        QCOMPARE(stretch->receivers.size(), 1);
        QCOMPARE(stretch->receiverAt(1)->company, QStringLiteral("가나철강"));
        QCOMPARE(stretch->paperBusiness.supply, 11200.0);
    }

    void aStretchOfReceiversCarriesTheWholeFormsTotals() {
        Store s;
        test::script();
        addManyReceivers(12);
        const auto whole = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 2));
        const auto stretch = ReadOfficialTotals(kSecondQuarter, QDate(2024, 7, 2), 7, 3);
        QVERIFY(whole && stretch);
        QCOMPARE(whole->receivers.size(), 12);
        QCOMPARE(stretch->firstReceiver, 7);
        QCOMPARE(stretch->receivers.size(), 3);
        QCOMPARE(stretch->listedReceivers(), 12);
        QCOMPARE(stretch->paperBusiness.supply, whole->paperBusiness.supply);
        QCOMPARE(stretch->receiverAt(7)->company, QStringLiteral("매출처8"));
        QCOMPARE(stretch->receiverAt(9)->company, QStringLiteral("매출처10"));
        QVERIFY(stretch->receiverAt(6) == nullptr);
        QVERIFY(stretch->receiverAt(10) == nullptr);
    }

    // A year's preview reads its receivers a stretch of sheets at a time; every sheet, the last
    // one too, shows what the print of the whole form shows.
    void thePreviewReadInStretchesDrawsWhatTheWholePrintDraws() {
        Store s;
        test::script();
        setSystemPrintersForTesting({}, QString());
        const int receivers = kFirstSheetRows + kLaterSheetRows * 30 + 7; // beyond one stretch
        addManyReceivers(receivers);
        const TotalsSearch search{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}};
        PrintCapture capture;
        PrintTotalsReport(search, TotalsLayout::Official);
        PreviewTotalsReport(nullptr, search, TotalsLayout::Official);
        QCOMPARE(capture.jobs().size(), size_t(2));
        const PrintRecord& print = *capture.jobs().at(0);
        const PrintRecord& preview = *capture.jobs().at(1);
        QCOMPARE(print.pages, pagesFor(receivers));
        QCOMPARE(preview.pages, print.pages);
        QCOMPARE(printedTexts(preview), printedTexts(print));
        const PrintedText* last = preview.find(QStringLiteral("매출처%1").arg(receivers));
        QVERIFY(last);
        QCOMPARE(last->page, print.pages);
    }

    // The first page comes from a first stretch of sheets; the first page asked for beyond it
    // reads every receiver from there to the end, so paging on and jumping to the end read
    // nothing more, and only a page before what was read reads again.
    void thePreviewReadsTheRestOnceWhenPagedBeyondTheFirstStretch() {
        Store s;
        test::script();
        const int receivers = kFirstSheetRows + kLaterSheetRows * 60; // 61 sheets
        addManyReceivers(receivers);
        const TotalsSearch search{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}};
        const int before = totalsPreviewReads();
        std::unique_ptr<PagedPreview> preview = makeTotalsPreview(nullptr, search, TotalsLayout::Official);
        QVERIFY(preview);
        QCOMPARE(preview->pages(), 61);
        QCOMPARE(totalsPreviewReads(), before + 1);
        preview->showPage(20);
        QCOMPARE(totalsPreviewReads(), before + 1); // inside the first stretch
        preview->showPage(27);
        QCOMPARE(totalsPreviewReads(), before + 2);
        preview->showPage(55);
        test::pressKey(preview.get(), Qt::Key_End);
        QCOMPARE(preview->page(), 61);
        QCOMPARE(totalsPreviewReads(), before + 2);
        preview->showPage(26);
        QCOMPARE(totalsPreviewReads(), before + 3);
        preview->showPage(61);
        QCOMPARE(totalsPreviewReads(), before + 3);
    }

    void thePreviewDrawsOnlyThePageItShows() {
        Store s;
        test::script();
        QList<int> drawn;
        PagedPreview preview(nullptr, kTotalsDocument, 40, [&drawn](PrintJob& job, int page) {
            drawn << page;
            job.printAt(1, 1, QStringLiteral("쪽%1").arg(page));
        });
        QCOMPARE(drawn, QList<int>{1});
        QCOMPARE(preview.lblPages->text(), QStringLiteral("/ 40 쪽"));
        QVERIFY(!preview.shownImage().isNull());
        QCOMPARE(preview.shownImage().width(), qRound(210 / 25.4 * 96));
        test::pressKey(&preview, Qt::Key_PageDown);
        test::pressKey(&preview, Qt::Key_End);
        QCOMPARE(preview.page(), 40);
        QCOMPARE(drawn, (QList<int>{1, 2, 40}));
        preview.pageBox->setValue(7);
        QCOMPARE(drawn.last(), 7);
        test::pressKey(&preview, Qt::Key_End); // already there: nothing drawn again
        test::pressKey(&preview, Qt::Key_End);
        QCOMPARE(drawn.size(), 5);
    }

    void thePreviewOfTheFormRecordsEveryPageUnderACapture() {
        Store s;
        test::script();
        for (int i = 0; i < kFirstSheetRows + 2; ++i) {
            const QString code = QStringLiteral("%1").arg(i + 1, 6, 10, QChar(u'0'));
            addTrader(code, QStringLiteral("매출처%1").arg(i + 1),
                      QStringLiteral("2%1-00-00000").arg(i, 2, 10, QChar(u'0')));
            addInvoice(QStringLiteral("1%1").arg(i, 5, 10, QChar(u'0')), code, 1000, 100, "2024-04-10");
        }
        PrintCapture capture;
        PreviewTotalsReport(nullptr, TotalsSearch{TotalsKind::Quarter, 1, QStringLiteral("2024"), {}, {}},
                            TotalsLayout::Official);
        QCOMPARE(capture.jobs().size(), size_t(1));
        QCOMPARE(capture.last().documentName, kTotalsDocument + QStringLiteral(" 미리보기"));
        QCOMPARE(capture.last().pages, 2);
        QVERIFY(capture.last().find(QStringLiteral("매출처별 세금계산서합계표(을)")));
    }
};

NB_TEST_MAIN(TestOfficialTotals)
#include "tst_official_totals.moc"
