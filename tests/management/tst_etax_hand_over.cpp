// A hand-over that cannot issue twice: every exported invoice on record with its file and day,
// the question naming invoices handed over already, files of an earlier run of the same name
// removed, withdrawal, and what the sheet now takes or leaves out (resident numbers, numbers
// with blanks, days not in the month, fractions, tax-exempt invoices, e-mail addresses).
#include "FailureInjection.h"
#include "StoreFixture.h"
#include "XlsxRead.h"
#include "core/Clock.h"
#include "management/etax/EtaxExportRun.h"
#include "management/etax/FrmEtaxHandOver.h"

#include <QDir>
#include <QTemporaryDir>

using namespace nb;

namespace {

const QString kSupplier = QStringLiteral("123-45-67891");
const QString kFrom = QStringLiteral("2026-10-01");
const QString kTo = QStringLiteral("2026-10-31");

void addTrader(const QString& code, const QString& name, const QString& serial, const QString& email = {}) {
    QVERIFY(
        test::exec(stores().dbBasic,
                   "insert into Trader (Code, C_Name, U_Name, Serial, Email) values (?, ?, '이다라', ?, ?)",
                   {code, name, serial, email}));
}

void addLine(const QString& taxCode, const QString& day, double supply, double tax,
             const QString& cCode = QStringLiteral("000001"), const QString& tradeDate = {}) {
    QVERIFY(test::exec(
        stores().dbTax,
        "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, "
        "DealDate, TradeDate, UserCode, Receipt) values (?, ?, '볼트', 1, ?, ?, ?, ?, ?, ?, '청구')",
        {taxCode, cCode, supply, supply, tax, day, tradeDate.isEmpty() ? day.mid(5) : tradeDate, kSupplier}));
}

void addInvoice(const QString& taxCode, const QString& day = QStringLiteral("2026-10-05"),
                double supply = 1000) {
    addLine(taxCode, day, supply, supply / 10);
}

QString taxCodeOf(int n) {
    return QString::number(100000 + n);
}

struct Fixture {
    test::TestHome home;
    QTemporaryDir out;
    ScriptedMessages* msgs = nullptr;
    Fixture() {
        setClock([] { return QDateTime(QDate(2026, 11, 3), QTime(9, 0)); });
        test::openStores();
        msgs = &test::script();
        QVERIFY(test::exec(
            stores().dbBasic,
            "insert into User (Serial, Company, Delegate, Email) values (?, '가나상사', '김가나', ?)",
            {kSupplier, "tax@gana.co.kr"}));
        addTrader("000001", "다라철강", "101-01-01051", "buy@dara.kr");
    }
    ~Fixture() { setClock({}); }
    QList<EtaxInvoice> invoices() { return *ReadEtaxInvoices(stores().dbTax, stores().dbBasic, kFrom, kTo); }
    EtaxExport exportTo(const QString& folder) {
        EtaxExportPlan plan;
        plan.record = &stores().dbTax;
        return exportEtax(invoices(), folder, kFrom, kTo, plan);
    }
    std::optional<EtaxExport> run() {
        EtaxRunHooks hooks;
        hooks.chooseFolder = [this](QWidget*) { return out.path(); };
        hooks.showResult = false;
        return RunEtaxExport(nullptr, kFrom, kTo, hooks);
    }
    QMap<QString, test::XlsxCell> firstSheet() { return test::xlsxCells(QDir(out.path()).filePath(name(1))); }
    static QString name(int n) { return QStringLiteral("전자세금계산서_20261001-20261031_%1.xlsx").arg(n); }
};

QStringList reasonsOf(const EtaxExport& result, const QString& taxCode) {
    for (const EtaxLeftOut& left : result.leftOut)
        if (left.taxCode == taxCode) return left.reasons;
    return {};
}

int scalarInt(const QString& sql) {
    return test::scalar(stores().dbTax, sql).toInt();
}

} // namespace

class TestEtaxHandOver : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachExportedInvoiceIsRecordedWithItsFileAndDay() {
        Fixture f;
        addInvoice("100000");
        addInvoice("100001", "2026-10-20", 2000);
        const EtaxExport result = f.exportTo(f.out.path());
        QCOMPARE(result.files.size(), 1);
        const auto files = *ReadHandOverFiles(stores().dbTax);
        QCOMPARE(files.size(), 1);
        QCOMPARE(files.first().path, QDir::cleanPath(QDir(f.out.path()).filePath(Fixture::name(1))));
        QCOMPARE(files.first().writtenAt, QStringLiteral("2026-11-03 09:00:00"));
        QCOMPARE(files.first().invoices, 2);
        QCOMPARE(files.first().stateText(), QStringLiteral("업로드 전"));
        const auto entries = *ReadHandOverEntries(stores().dbTax, files.first().fileNo);
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries.last().taxCode, QStringLiteral("100001"));
        QCOMPARE(entries.last().receiver, QStringLiteral("다라철강"));
        QCOMPARE(entries.last().supply, 2000.0);
        // Once marked uploaded the invoices count as issued electronically, from that day.
        QVERIFY(MarkFileUploaded(stores().dbTax, files.first().fileNo, "2026-11-03", nullptr));
        QCOMPARE(UploadedInvoiceDates(kFrom, kTo).value("100001"), QDate(2026, 11, 3));
    }
    void invoicesLeftOutAreNotOnRecord() {
        Fixture f;
        addInvoice("100000");
        addLine("100001", "2026-10-06", 1000, 0); // tax-exempt
        f.exportTo(f.out.path());
        QCOMPARE(scalarInt("select count(*) from EtaxHandOver"), 1);
        QCOMPARE(scalarInt("select count(*) from EtaxHandOver where TaxCode = '100001'"), 0);
    }
    void anExportOfHandedOverInvoicesAsksFirstAndNamesThem() {
        Fixture f;
        addInvoice("100000");
        QVERIFY(f.run());
        // The file was uploaded; a later export of the same period into another folder.
        QVERIFY(MarkFileUploaded(stores().dbTax, 1, "2026-11-03", nullptr));
        addInvoice("100001", "2026-10-07");
        QTemporaryDir other;
        f.msgs->clear();
        f.msgs->answer(AnsNo);
        EtaxRunHooks hooks;
        hooks.chooseFolder = [&other](QWidget*) { return other.path(); };
        hooks.showResult = false;
        const auto result = RunEtaxExport(nullptr, kFrom, kTo, hooks);
        QCOMPARE(f.msgs->boxes().size(), size_t(1));
        QCOMPARE(f.msgs->last().text,
                 QStringLiteral(
                     "이미 전자세금계산서 파일에 넣은 세금계산서가 1건 있습니다.\r\n\r\n"
                     "100000 2026-10-05 다라철강 - 전자세금계산서_20261001-20261031_1.xlsx (업로드 "
                     "2026-11-03)\r\n\r\n예: 다시 넣습니다. (업로드한 것은 홈택스에서 두 번 발급됩니다)\r\n"
                     "아니요: 빼고 작성합니다.\r\n취소: 작성하지 않습니다."));
        QCOMPARE(f.msgs->last().buttons, int(MbYesNoCancel | MbQuestion | MbDefaultButton2));
        // No: the new invoice goes, the one handed over stays out with its reason.
        QCOMPARE(result->invoicesWritten(), 1);
        QCOMPARE(reasonsOf(*result, "100000"),
                 QStringList{
                     "이미 전자세금계산서 파일에 넣었습니다: 전자세금계산서_20261001-20261031_1.xlsx (업로드 "
                     "2026-11-03)"});
    }
    void answeringYesPutsThemInAgainAndCancelWritesNothing() {
        Fixture f;
        addInvoice("100000");
        QVERIFY(f.run());
        QVERIFY(MarkFileUploaded(stores().dbTax, 1, "2026-11-03", nullptr));
        QTemporaryDir other;
        EtaxRunHooks hooks;
        hooks.chooseFolder = [&other](QWidget*) { return other.path(); };
        hooks.showResult = false;
        f.msgs->answer(AnsCancel);
        QVERIFY(!RunEtaxExport(nullptr, kFrom, kTo, hooks));
        QVERIFY(QDir(other.path()).isEmpty());
        QCOMPARE(scalarInt("select count(*) from EtaxFile"), 1);
        f.msgs->answer(AnsYes);
        const auto result = RunEtaxExport(nullptr, kFrom, kTo, hooks);
        QCOMPARE(result->invoicesWritten(), 1);
        QCOMPARE(scalarInt("select count(*) from EtaxFile"), 2);
    }
    void aFileThisExportReplacesAsksNothing() {
        Fixture f;
        addInvoice("100000");
        QVERIFY(f.run());
        // Not uploaded, same folder, same name: the new run overwrites it, so nothing to ask.
        f.msgs->clear();
        const auto result = f.run();
        QVERIFY(f.msgs->boxes().empty());
        QCOMPARE(result->invoicesWritten(), 1);
        const auto files = *ReadHandOverFiles(stores().dbTax);
        QCOMPARE(files.size(), 2);
        QCOMPARE(files.last().note, kReplacedNote); // the older record
        QVERIFY(!files.first().withdrawn());
        QCOMPARE(HandedOverInvoices(stores().dbTax, kFrom, kTo)->value("100000").files.size(), 1);
    }
    void reExportIntoTheSameFolderRemovesOlderNumberedFiles() {
        Fixture f;
        for (int n = 0; n < 250; ++n)
            addInvoice(taxCodeOf(n), "2026-10-05");
        QCOMPARE(f.exportTo(f.out.path()).files.size(), 3);
        QVERIFY(MarkFileUploaded(stores().dbTax, 3, "2026-11-03", nullptr));
        // Another shop's file and a file of another period stay where they are.
        QFile foreign(QDir(f.out.path()).filePath("전자세금계산서_20260901-20260930_4.xlsx"));
        QVERIFY(foreign.open(QIODevice::WriteOnly));
        foreign.close();
        // 120 invoices deleted; the rest go again in two files.
        QVERIFY(test::exec(stores().dbTax, "delete from NewAcount where TaxCode >= '100130'"));
        const EtaxExport again = f.exportTo(f.out.path());
        QCOMPARE(again.files.size(), 2);
        QCOMPARE(again.removed, QStringList{QDir(f.out.path()).filePath(Fixture::name(3))});
        QVERIFY(again.failures.isEmpty());
        QVERIFY(!QFileInfo::exists(QDir(f.out.path()).filePath(Fixture::name(3))));
        QVERIFY(QFileInfo::exists(foreign.fileName()));
        QCOMPARE(QDir(f.out.path()).entryList(QDir::Files).size(), 3);
        // The uploaded file's record stands: its invoices were issued.
        QCOMPARE(ReadHandOverFile(stores().dbTax, 3)->stateText(), QStringLiteral("업로드 2026-11-03"));
    }
    void aRemovedFileOfAnEarlierRunIsRetiredOnRecord() {
        Fixture f;
        for (int n = 0; n < 150; ++n)
            addInvoice(taxCodeOf(n), "2026-10-05");
        QCOMPARE(f.exportTo(f.out.path()).files.size(), 2);
        QVERIFY(test::exec(stores().dbTax, "delete from NewAcount where TaxCode >= '100100'"));
        const EtaxExport again = f.exportTo(f.out.path());
        QCOMPARE(again.files.size(), 1);
        QCOMPARE(again.removed.size(), 1);
        QCOMPARE(ReadHandOverFile(stores().dbTax, 2)->note, QStringLiteral("다시 작성할 때 지움"));
        QCOMPARE(ReadHandOverFile(stores().dbTax, 1)->note, kReplacedNote);
        QVERIFY(!ReadHandOverFile(stores().dbTax, 3)->withdrawn());
    }
    void aFileWhoseRecordCannotBeKeptIsNotWritten() {
        Fixture f;
        addInvoice("100000");
        QVERIFY(test::refuseWrites(stores().dbTax, {QStringLiteral("EtaxFile"), test::Change::Insert}));
        const EtaxExport result = f.exportTo(f.out.path());
        QVERIFY(result.files.isEmpty());
        QCOMPARE(result.failures.size(), 1);
        QVERIFY(result.failures.first().contains(
            QStringLiteral("전자세금계산서 전송 기록을 남기지 못했습니다.")));
        QVERIFY(QDir(f.out.path()).isEmpty());
    }
    void withdrawRemovesTheWaitingFileAndFreesItsInvoices() {
        Fixture f;
        addInvoice("100000");
        const EtaxExport result = f.exportTo(f.out.path());
        const HandOverFile file = *ReadHandOverFile(stores().dbTax, 1);
        QString why;
        QVERIFY2(WithdrawHandOver(stores().dbTax, file, &why), qPrintable(why));
        QVERIFY(!QFileInfo::exists(result.files.first()));
        QCOMPARE(ReadHandOverFile(stores().dbTax, 1)->stateText(), QStringLiteral("철회 2026-11-03 (철회)"));
        QVERIFY(HandedOverInvoices(stores().dbTax, kFrom, kTo)->isEmpty());
    }
    void withdrawingAnUploadedFileKeepsItButItCountsNoMore() {
        Fixture f;
        addInvoice("100000");
        const EtaxExport result = f.exportTo(f.out.path());
        QVERIFY(MarkFileUploaded(stores().dbTax, 1, "2026-11-03", nullptr));
        QVERIFY(WithdrawHandOver(stores().dbTax, *ReadHandOverFile(stores().dbTax, 1), nullptr));
        QVERIFY(QFileInfo::exists(result.files.first()));
        QVERIFY(UploadedInvoiceDates(kFrom, kTo).isEmpty());
        QCOMPARE(ReadHandOverFile(stores().dbTax, 1)->note, QStringLiteral("업로드 후 철회"));
    }
    void aFileThatCannotBeRemovedIsNotWithdrawn() {
        Fixture f;
        addInvoice("100000");
        const QString path = f.exportTo(f.out.path()).files.first();
        // A folder of files has taken the file's place: no one can remove it as a file.
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path + "/inside"));
        QString why;
        QVERIFY(!WithdrawHandOver(stores().dbTax, *ReadHandOverFile(stores().dbTax, 1), &why));
        QVERIFY2(why.startsWith(QStringLiteral("파일을 지우지 못해 철회하지 않았습니다")), qPrintable(why));
        QVERIFY(!ReadHandOverFile(stores().dbTax, 1)->withdrawn());
    }
    void receiverWithAResidentNumberGoesOnTheSheet() {
        Fixture f;
        addTrader("000002", "홍길동", "800101-1234567");
        addLine("100000", "2026-10-05", 1000, 100, "000002");
        const EtaxExport result = f.exportTo(f.out.path());
        QVERIFY(result.leftOut.isEmpty());
        QCOMPARE(f.firstSheet().value("K7").value, QStringLiteral("8001011234567"));
        // Twelve digits are neither.
        addTrader("000003", "틀린번호", "800101-123456");
        addLine("100001", "2026-10-05", 1000, 100, "000003");
        QCOMPARE(reasonsOf(f.exportTo(f.out.path()), "100001"),
                 QStringList{"공급받는자 등록번호가 올바르지 않습니다 (800101-123456)"});
    }
    void aSupplierWithAResidentNumberIsNotTaken() {
        EtaxInvoice invoice;
        invoice.supplier = {"8001011234567", "가나", "김", {}, {}, {}, {}};
        invoice.receiver = {"101-01-01051", "다라", "이", {}, {}, {}, {}};
        invoice.items << EtaxItem{"10-05", "볼트", {}, 1.0, 1000.0, 1000, 100};
        invoice.dealDate = "2026-10-05";
        QCOMPARE(etaxProblems(invoice), QStringList{"공급자 등록번호가 올바르지 않습니다 (8001011234567)"});
    }
    void businessNumberWithBlanksIsWrittenAsItsTenDigits() {
        Fixture f;
        addTrader("000002", "마바전자", "124 81 00998");
        addLine("100000", "2026-10-05", 1000, 100, "000002");
        const EtaxExport result = f.exportTo(f.out.path());
        QVERIFY(result.leftOut.isEmpty());
        QCOMPARE(f.firstSheet().value("K7").value, QStringLiteral("1248100998"));
        QCOMPARE(f.firstSheet().value("C7").value, QStringLiteral("1234567891"));
    }
    void itemDayNotInTheMonthIsLeftOutWithItsReason() {
        Fixture f;
        addLine("100000", "2026-10-05", 1000, 100, "000001", "10-32");
        addLine("100001", "2026-09-05", 1000, 100, "000001", "09-31");
        addLine("100002", "2026-10-05", 1000, 100, "000001", "10-31");
        QVERIFY(test::exec(stores().dbTax,
                           "update NewAcount set DealDate = '2026-10-05' where TaxCode = '100001'"));
        QVERIFY(
            test::exec(stores().dbTax, "update NewAcount set TradeDate = '10-00' where TaxCode = '100001'"));
        const EtaxExport result = f.exportTo(f.out.path());
        QCOMPARE(reasonsOf(result, "100000"), QStringList{"품목 일자 10-32은(는) 10월에 없는 날입니다"});
        QCOMPARE(reasonsOf(result, "100001"), QStringList{"품목 일자 10-00은(는) 10월에 없는 날입니다"});
        QCOMPARE(result.invoicesWritten(), 1); // 10-31 is a day of October
    }
    void februaryThirtiethIsNotADay() {
        EtaxInvoice invoice;
        invoice.supplier = {kSupplier, "가나", "김", {}, {}, {}, {}};
        invoice.receiver = {"101-01-01051", "다라", "이", {}, {}, {}, {}};
        invoice.dealDate = "2024-02-10";
        invoice.items << EtaxItem{"02-29", "볼트", {}, 1.0, 1000.0, 1000, 100};
        QVERIFY(etaxProblems(invoice).isEmpty()); // 2024 is a leap year
        invoice.items.first().tradeDate = "02-30";
        QCOMPARE(etaxProblems(invoice), QStringList{"품목 일자 02-30은(는) 2월에 없는 날입니다"});
    }
    void amountWithAFractionIsLeftOutWithItsReason() {
        Fixture f;
        addLine("100000", "2026-10-05", 1000.5, 100);
        addLine("100001", "2026-10-05", 1000, 100.25);
        addInvoice("100002");
        const EtaxExport result = f.exportTo(f.out.path());
        QCOMPARE(reasonsOf(result, "100000"),
                 QStringList{"금액에 원 미만이 있습니다 (볼트: 공급가액 1000.50, 세액 100.00)"});
        QCOMPARE(reasonsOf(result, "100001"),
                 QStringList{"금액에 원 미만이 있습니다 (볼트: 공급가액 1000.00, 세액 100.25)"});
        QCOMPARE(result.invoicesWritten(), 1);
    }
    void taxExemptInvoiceIsLeftOutWithTheReasonTaxExempt() {
        Fixture f;
        addLine("100000", "2026-10-05", 50000, 0);
        addLine("100000", "2026-10-05", 20000, 0);
        const EtaxExport result = f.exportTo(f.out.path());
        QCOMPARE(reasonsOf(result, "100000"), QStringList{"면세"});
        // A tax typed over on a taxed invoice is still the mismatch it was.
        addLine("100001", "2026-10-06", 10000, 500);
        QCOMPARE(reasonsOf(f.exportTo(f.out.path()), "100001"),
                 QStringList{"세액 합계 500이(가) 공급가액 합계 10,000의 10%와 맞지 않습니다"});
    }
    void emailsGoIntoTheSupplierAndReceiverColumns() {
        Fixture f;
        addInvoice("100000");
        f.exportTo(f.out.path());
        const auto cells = f.firstSheet();
        QCOMPARE(cells.value("J7").value, QStringLiteral("tax@gana.co.kr"));
        QCOMPARE(cells.value("R7").value, QStringLiteral("buy@dara.kr"));
        QVERIFY(!cells.contains("S7"));
    }
    void aBadEmailOnFileLeavesTheInvoiceOutWithItsReason() {
        Fixture f;
        addTrader("000002", "마바전자", "101-01-01051", "buy@mabar");
        addLine("100000", "2026-10-05", 1000, 100, "000002");
        QCOMPARE(reasonsOf(f.exportTo(f.out.path()), "100000"),
                 QStringList{"공급받는자 이메일 주소가 올바르지 않습니다 (buy@mabar)"});
    }
};

QTEST_MAIN(TestEtaxHandOver)
#include "tst_etax_hand_over.moc"
