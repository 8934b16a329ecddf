// Issuing a tax invoice: checks and question, number on paper and in the store, the rows of the
// printed lines, re-issue that stores nothing, the supplier on paper, the seal, and the print of
// a stored invoice into a PDF file.
#include "InvoiceFixture.h"
#include "core/AppFolder.h"
#include "invoice/InvoiceIssue.h"
#include "invoice/InvoiceSeal.h"
#include "invoice/InvoiceStore.h"
#include "printing/PrinterSetup.h"

#include <QFile>
#include <QProcess>

using namespace nb;

namespace {

void addParties() {
    test::addSupplier({QStringLiteral("111-11-11111"), QStringLiteral("첫공급자"), QStringLiteral("김일"),
                       QStringLiteral("서울"), QStringLiteral("02-1"), QString(), QStringLiteral("도매"),
                       QStringLiteral("철물")});
    test::addSupplier({QStringLiteral("222-22-22222"), QStringLiteral("둘째공급자"), QStringLiteral("김이"),
                       QStringLiteral("부산"), QStringLiteral("051-2"), QString(), QStringLiteral("소매"),
                       QStringLiteral("공구")});
    test::addTraderRow(QStringLiteral("000001"),
                       {QStringLiteral("333-33-33333"), QStringLiteral("가나철강"), QStringLiteral("이사장"),
                        QStringLiteral("대구 1"), QStringLiteral("053-3"), QStringLiteral("053-4"),
                        QStringLiteral("제조"), QStringLiteral("강판")});
}

InvoiceForm newForm() {
    InvoiceForm form;
    form.txtCCode = QStringLiteral("000001");
    form.writeYY = QStringLiteral("2024");
    form.writeMM = QStringLiteral("05");
    form.writeDD = QStringLiteral("10");
    form.serialUser = QStringLiteral("222-22-22222");
    form.sheet.vat = VatMode::Separate;
    form.sheet.line(0) = {QStringLiteral("05-10"), QStringLiteral("볼트"),  QStringLiteral("EA"),
                          QStringLiteral("3"),     QStringLiteral("1,000"), QStringLiteral("3,000"),
                          QStringLiteral("300")};
    return form;
}

bool onPaper(const PrintRecord& r, const QString& text) {
    return r.find(text) != nullptr;
}

} // namespace

class TestInvoiceIssue : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void issueWithoutReceiverAsksForIt() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.txtCCode.clear();
        const IssueResult r = IssueInvoice(form, QImage());
        QCOMPARE(r.focus, FormFocus::CName_MAE);
        QCOMPARE(msgs.last().text, QStringLiteral("매출처를 입력하여 주세요"));
        QVERIFY(capture.jobs().empty());
    }
    void issueWithoutFirstTaxAsksToCheckTheData() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.sheet.line(0).tax_num.clear();
        QCOMPARE(IssueInvoice(form, QImage()).focus, FormFocus::Pummok0);
        QCOMPARE(msgs.last().text, QStringLiteral("출력할 자료를 확인해 주세요"));
        QVERIFY(capture.jobs().empty());
    }
    void answeringNoPrintsAndStoresNothing() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        msgs.answer(AnsNo);
        PrintCapture capture;
        InvoiceForm form = newForm();
        QVERIFY(!IssueInvoice(form, QImage()).printed);
        QCOMPARE(msgs.last().text, QStringLiteral("발행하시겠습니까?"));
        QCOMPARE(msgs.last().title, QStringLiteral("세금계산서 발행"));
        QCOMPARE(msgs.last().buttons, int(MbYesNo | MbQuestion));
        QVERIFY(capture.jobs().empty());
        QCOMPARE(test::invoiceRows(), 0);
        QCOMPARE(form.sheet.line(0).pummok, QStringLiteral("볼트"));
    }
    void firstInvoiceIsNumbered100000AndShownAs100_000OnPaper() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::script().answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        const IssueResult r = IssueInvoice(form, QImage());
        QVERIFY(r.printed);
        QCOMPARE(r.storedTaxCode, QStringLiteral("100000"));
        QCOMPARE(form.txtSeq, QStringLiteral("100-000"));
        QCOMPARE(capture.last().documentName, QStringLiteral("세금계산서"));
        QVERIFY(capture.last().finished);
        QCOMPARE(int(std::count_if(capture.last().texts.begin(), capture.last().texts.end(),
                                   [](const PrintedText& t) { return t.text == u"1 0 0 0 0 0"; })),
                 2);
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = '100000'")), 1);
        // clear_input ran; the receiver and TaxCode stay.
        QVERIFY(form.sheet.line(0).pummok.isEmpty());
        QCOMPARE(form.txtCCode, QStringLiteral("000001"));
        QVERIFY(form.TaxCode.isEmpty());
    }
    void manualNumberGoesOnPaperWhileTheStoredNumberIsComputed() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::addInvoiceRow(QStringLiteral("100123"), QStringLiteral("000009"), QStringLiteral("a"), 1, 0);
        test::script().answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.manualSeq = true;
        form.txtSeq = QStringLiteral("123-456");
        const IssueResult r = IssueInvoice(form, QImage());
        QCOMPARE(r.storedTaxCode, QStringLiteral("100124"));
        QCOMPARE(form.txtSeq, QStringLiteral("123-456"));
        QVERIFY(onPaper(capture.last(), QStringLiteral("1 2 3 4 5 6")));
        QVERIFY(!onPaper(capture.last(), QStringLiteral("1 0 0 1 2 4")));
    }
    void issueStoresTheLinesItPrintedAcrossAGap() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::script().answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.sheet.line(2) = form.sheet.line(0);
        form.sheet.line(2).pummok = QStringLiteral("너트");
        form.sheet.curLine = 2;
        const IssueResult r = IssueInvoice(form, QImage());
        QCOMPARE(r.linesPrinted, 4);
        QCOMPARE(test::invoiceRows(), 2);
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE PName = ?"), {QStringLiteral("너트")}), 1);
    }
    void issueKeepsWhetherTheInvoiceIsAReceiptOrACharge() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        msgs.answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.youngsu = QStringLiteral("청구");
        QVERIFY(IssueInvoice(form, QImage()).printed);
        form.sheet.line(0) = newForm().sheet.line(0);
        form.youngsu = QStringLiteral("영수");
        QVERIFY(IssueInvoice(form, QImage()).printed);
        QCOMPARE(ReadIssuedInvoice(stores().dbTax, QStringLiteral("100000"))->receipt,
                 QStringLiteral("청구"));
        QCOMPARE(ReadIssuedInvoice(stores().dbTax, QStringLiteral("100001"))->receipt,
                 QStringLiteral("영수"));
    }
    void reissueOfAnInvoiceOnShowStoresNothingAndShowsTheNextFreeNumber() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("볼트"), 3000,
                            300);
        test::script().answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.setTaxCode(QStringLiteral("100000"));
        QCOMPARE(form.txtSeq, QStringLiteral("100-000"));
        const IssueResult r = IssueInvoice(form, QImage());
        QVERIFY(r.printed);
        QVERIFY(r.storedTaxCode.isEmpty());
        QCOMPARE(form.txtSeq, QStringLiteral("100-001"));
        QVERIFY(onPaper(capture.last(), QStringLiteral("1 0 0 0 0 1")));
        QCOMPARE(test::invoiceRows(), 1);
    }
    void taxCodeStaysAfterReissueSoTheNextInvoiceStoresNothing() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("볼트"), 3000,
                            300);
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        msgs.answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        form.setTaxCode(QStringLiteral("100000"));
        IssueInvoice(form, QImage());
        QCOMPARE(form.TaxCode, QStringLiteral("100000"));
        // A new invoice typed straight after it counts as a re-issue.
        form.sheet = newForm().sheet;
        QVERIFY(IssueInvoice(form, QImage()).storedTaxCode.isEmpty());
        QCOMPARE(test::invoiceRows(), 1);
        QCOMPARE(int(capture.jobs().size()), 2);
    }
    void paperSupplierFollowsUserSerialWhileTheRowsKeepTheScreensSupplier() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::script().answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        IssueInvoice(form, QImage());
        QVERIFY(onPaper(capture.last(), QStringLiteral("첫공급자")));
        QVERIFY(!onPaper(capture.last(), QStringLiteral("둘째공급자")));
        QCOMPARE(test::scalar(stores().dbTax, QStringLiteral("SELECT UserCode FROM NewAcount")).toString(),
                 QStringLiteral("222-22-22222"));
        test::script().answer(AnsYes);
        InvoiceForm other = newForm();
        other.userSerial = QStringLiteral("222-22-22222");
        IssueInvoice(other, QImage());
        QVERIFY(onPaper(capture.last(), QStringLiteral("둘째공급자")));
    }
    void removedSealFileLeavesTheSealOutWithoutAWord() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        const QString path = home.file(QStringLiteral("도장.png"));
        QImage seal(10, 10, QImage::Format_ARGB32);
        seal.fill(Qt::red);
        QVERIFY(seal.save(path));
        saveSealSetting(path);
        QVERIFY(!loadSealImage().isNull());
        QFile::remove(path);
        QVERIFY(sealFilePath().isEmpty());
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        PrintCapture capture;
        InvoiceForm form = newForm();
        IssueInvoice(form, loadSealImage());
        QVERIFY(capture.last().pictures.empty());
        QCOMPARE(int(msgs.records().size()), 1); // only the question
    }
    void defaultSealIsTheGifInTheApplicationFolder() {
        test::TestHome home;
        QCOMPARE(sealSetting(), QStringLiteral("DefaultPath"));
        QVERIFY(sealFilePath().isEmpty());
        QImage seal(10, 10, QImage::Format_ARGB32);
        seal.fill(Qt::red);
        QVERIFY(seal.save(appFolderFile(QStringLiteral("공급자도장.gif")), "PNG"));
        QCOMPARE(sealFilePath(), appFolderFile(QStringLiteral("공급자도장.gif")));
        saveSealSetting(QString());
        QVERIFY(loadSealImage().isNull());
    }
    void sealIsPrintedOnBothCopies() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::script().answer(AnsYes);
        PrintCapture capture;
        QImage seal(10, 10, QImage::Format_ARGB32);
        seal.fill(Qt::red);
        InvoiceForm form = newForm();
        IssueInvoice(form, seal);
        QCOMPARE(int(capture.last().pictures.size()), 2);
    }
    void storedChargeInvoicePrintsItsOwnKind() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::addInvoiceRow(QStringLiteral("100007"), QStringLiteral("000001"), QStringLiteral("볼트"), 3000,
                            300, QStringLiteral("2024-05-10"), QStringLiteral("비고"));
        QVERIFY(test::exec(stores().dbTax, QStringLiteral("update NewAcount set Receipt = '청구'")));
        const QString pdf = home.file(QStringLiteral("invoice.pdf"));
        QCOMPARE(PrintStoredInvoiceToPdf(QStringLiteral("100007"), pdf, nullptr), 0);
        QProcess text;
        text.start(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")});
        QVERIFY(text.waitForFinished(20000));
        const QString printed = QString::fromUtf8(text.readAllStandardOutput());
        QVERIFY(printed.contains(QStringLiteral("청구")));
        QVERIFY(!printed.contains(QStringLiteral("영수")));
    }
    void storedInvoicePrintsToAPdfWithItsOwnNumberAndDate() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addParties();
        test::addInvoiceRow(QStringLiteral("100007"), QStringLiteral("000001"), QStringLiteral("볼트"), 3000,
                            300, QStringLiteral("2024-05-10"), QStringLiteral("비고입니다"));
        const QString pdf = home.file(QStringLiteral("invoice.pdf"));
        QString reason;
        QCOMPARE(PrintStoredInvoiceToPdf(QStringLiteral("100007"), pdf, &reason), 0);
        QVERIFY(QFile::exists(pdf));
        QProcess bbox;
        bbox.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
        QVERIFY(bbox.waitForFinished(20000));
        const QString html = QString::fromUtf8(bbox.readAllStandardOutput());
        for (const char* word :
             {"첫공급자", "가나철강", "볼트", "비고입니다", "2024", "05-10", "3,000", "300", "영수"})
            QVERIFY2(html.contains(QString::fromUtf8(word)), word);
        QVERIFY(!html.contains(QStringLiteral("청구"))); // an older invoice without its kind prints 영수
        // The serial "1 0 0 0 0 7" is drawn digit by digit: its "7" at Tab 84 of size 11, row 4.
        const QRegularExpression seven(
            QStringLiteral("<word xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\"[^>]*>7</word>"));
        auto it = seven.globalMatch(html);
        bool found = false;
        const double expectX = (84 - 1 + 10) * 11 / 2.0; // points: "1 0 0 0 0 " is 10 columns
        const double expectY = 4 / 6.0 * 72;
        while (it.hasNext()) {
            const auto m = it.next();
            if (std::abs(m.captured(1).toDouble() - expectX) < 0.5 &&
                std::abs(m.captured(2).toDouble() - expectY) < 0.5)
                found = true;
        }
        QVERIFY2(found, qPrintable(html.left(4000)));
        QDir().mkpath(test::screenshotDir());
        QProcess png;
        png.start(QStringLiteral("pdftoppm"), {QStringLiteral("-png"), QStringLiteral("-r"),
                                               QStringLiteral("80"), QStringLiteral("-singlefile"), pdf,
                                               test::screenshotDir() + QStringLiteral("/invoice_print")});
        QVERIFY(png.waitForFinished(20000));
        QVERIFY(QFile::exists(test::screenshotDir() + QStringLiteral("/invoice_print.png")));
    }
    void missingInvoiceGivesAReasonAndNoFile() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString pdf = home.file(QStringLiteral("none.pdf"));
        QString reason;
        QVERIFY(PrintStoredInvoiceToPdf(QStringLiteral("123456"), pdf, &reason) != 0);
        QVERIFY(reason.contains(QStringLiteral("123456")));
        QVERIFY(!reason.contains(u'\n'));
        QVERIFY(!QFile::exists(pdf));
    }
};

NB_TEST_MAIN(TestInvoiceIssue)
#include "tst_invoice_issue.moc"
