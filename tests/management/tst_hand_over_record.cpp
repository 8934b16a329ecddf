// The record of hand-overs to the tax service: a file recorded with its invoices, marked uploaded or
// withdrawn, and which invoices of a period count as uploaded (and on which day) or as handed over.
#include "FailureInjection.h"
#include "StoreFixture.h"
#include "core/Clock.h"
#include "management/etax/HandOverRecord.h"

#include <QTemporaryDir>

using namespace nb;

namespace {

void addInvoice(const QString& taxCode, const QString& dealDate, double supply,
                const QString& cCode = QStringLiteral("000001")) {
    QVERIFY(test::exec(stores().dbTax,
                       "insert into NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, DealDate) "
                       "values (?, ?, '볼트', ?, ?, ?)",
                       {taxCode, cCode, supply, supply / 10, dealDate}));
}

HandOverEntry entry(const QString& taxCode, const QString& dealDate, double supply,
                    const QString& cCode = QStringLiteral("000001")) {
    return {taxCode, dealDate, cCode, QStringLiteral("다라철강"), supply, supply / 10};
}

struct Fixture {
    test::TestHome home;
    QDate day{2026, 11, 5};
    Fixture() {
        setClock([this] { return QDateTime(day, QTime(10, 0)); });
        test::openStores();
    }
    ~Fixture() { setClock({}); }
    int record(const QString& path, const QList<HandOverEntry>& entries) {
        QString why;
        const auto no = RecordHandOverFile(stores().dbTax, path, "2026-10-01", "2026-10-31", entries, &why);
        if (!no) qWarning() << why;
        return no.value_or(-1);
    }
};

int count(const QString& sql) {
    return test::scalar(stores().dbTax, sql).toInt();
}

} // namespace

class TestHandOverRecord : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void uploadedInvoicesOfThePeriodWithTheDayTheirFileWasMarked() {
        Fixture f;
        f.day = QDate(2026, 11, 1);
        addInvoice("100000", "2026-10-05", 1000);
        addInvoice("100001", "2026-10-20", 2000);
        addInvoice("100002", "2026-09-30", 3000);
        const int first = f.record("/tmp/a_1.xlsx",
                                   {entry("100000", "2026-10-05", 1000), entry("100001", "2026-10-20", 2000),
                                    entry("100002", "2026-09-30", 3000)});
        QVERIFY(first > 0);
        // Written, not yet uploaded: nothing counts as issued.
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").isEmpty());
        QString why;
        f.day = QDate(2026, 11, 5);
        QVERIFY2(MarkFileUploaded(stores().dbTax, first, "2026-11-03", &why), qPrintable(why));
        const auto dates = UploadedInvoiceDates("2026-10-01", "2026-10-31");
        QCOMPARE(dates.size(), 2); // 100002 lies before the period
        QCOMPARE(dates.value("100000"), QDate(2026, 11, 3));
        QCOMPARE(dates.value("100001"), QDate(2026, 11, 3));
        QCOMPARE(UploadedInvoiceDates("2026-09-30", "2026-09-30").keys(), QStringList{"100002"});
    }
    void aWithdrawnFileCountsNoMore() {
        Fixture f;
        f.day = QDate(2026, 11, 1);
        addInvoice("100000", "2026-10-05", 1000);
        const int no = f.record("/tmp/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        f.day = QDate(2026, 11, 5);
        QVERIFY(MarkFileUploaded(stores().dbTax, no, "2026-11-04", nullptr));
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").contains("100000"));
        QVERIFY(WithdrawFile(stores().dbTax, no, QString(), nullptr));
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").isEmpty());
        QVERIFY(HandedOverInvoices(stores().dbTax, "2026-10-01", "2026-10-31")->isEmpty());
        QString why;
        QVERIFY(!WithdrawFile(stores().dbTax, no, QString(), &why));
        QCOMPARE(why, QStringLiteral("이미 철회한 파일입니다."));
    }
    void anInvoiceInTwoUploadedFilesTakesTheEarlierDay() {
        Fixture f;
        f.day = QDate(2026, 11, 1);
        addInvoice("100000", "2026-10-05", 1000);
        const int a = f.record("/tmp/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        const int b = f.record("/tmp/b_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        f.day = QDate(2026, 11, 5);
        QVERIFY(MarkFileUploaded(stores().dbTax, b, "2026-11-02", nullptr));
        QVERIFY(MarkFileUploaded(stores().dbTax, a, "2026-11-04", nullptr));
        QCOMPARE(UploadedInvoiceDates("2026-10-01", "2026-10-31").value("100000"), QDate(2026, 11, 2));
    }
    void aNumberTakenAgainByAnotherInvoiceIsNotThatInvoice() {
        Fixture f;
        f.day = QDate(2026, 11, 1);
        addInvoice("100000", "2026-10-05", 1000);
        const int no = f.record("/tmp/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        f.day = QDate(2026, 11, 5);
        QVERIFY(MarkFileUploaded(stores().dbTax, no, "2026-11-03", nullptr));
        // The invoice is deleted and the next issue takes its number for another receiver.
        QVERIFY(test::exec(stores().dbTax, "delete from NewAcount"));
        addInvoice("100000", "2026-10-05", 1000, "000002");
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").isEmpty());
        QVERIFY(test::exec(stores().dbTax, "delete from NewAcount"));
        addInvoice("100000", "2026-10-05", 1500);
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").isEmpty());
    }
    void aNewerFileOfTheSameNameRetiresTheOlderRecordUnlessUploaded() {
        Fixture f;
        addInvoice("100000", "2026-10-05", 1000);
        addInvoice("100001", "2026-10-06", 1000);
        const int old = f.record("/tmp/x/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        const int uploaded = f.record("/tmp/x/a_2.xlsx", {entry("100001", "2026-10-06", 1000)});
        QVERIFY(MarkFileUploaded(stores().dbTax, uploaded, "2026-11-05", nullptr));
        const int newer = f.record("/tmp/x/../x/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        QVERIFY(RetireHandOverPath(stores().dbTax, "/tmp/x/a_1.xlsx", kReplacedNote, nullptr, newer));
        const int newest = f.record("/tmp/x/a_2.xlsx", {});
        QVERIFY(RetireHandOverPath(stores().dbTax, "/tmp/x/a_2.xlsx", kReplacedNote, nullptr, newest));
        QVERIFY(!ReadHandOverFile(stores().dbTax, newer)->withdrawn());
        QCOMPARE(ReadHandOverFile(stores().dbTax, old)->note, QStringLiteral("다시 작성하여 바뀜"));
        QCOMPARE(ReadHandOverFile(stores().dbTax, old)->withdrawnDate, QStringLiteral("2026-11-05"));
        QVERIFY(!ReadHandOverFile(stores().dbTax, uploaded)->withdrawn());
        QCOMPARE(ReadHandOverFiles(stores().dbTax)->size(), 4);
        QCOMPARE(ReadHandOverFiles(stores().dbTax)->first().fileNo, 4);
    }
    void handedOverNamesAnUploadedFileBeforeOneWaiting() {
        Fixture f;
        addInvoice("100000", "2026-10-05", 1000);
        f.record("/tmp/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        const int up = f.record("/tmp/b_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        QCOMPARE(HandedOverInvoices(stores().dbTax, "2026-10-01", "2026-10-31")
                     ->value("100000")
                     .files.first()
                     .fileNo,
                 1);
        QVERIFY(MarkFileUploaded(stores().dbTax, up, "2026-11-05", nullptr));
        const HandOverMark mark =
            HandedOverInvoices(stores().dbTax, "2026-10-01", "2026-10-31")->value("100000");
        QCOMPARE(mark.files.size(), 2);
        QCOMPARE(mark.files.first().fileNo, up);
        QCOMPARE(mark.files.first().stateText(), QStringLiteral("업로드 2026-11-05"));
        QCOMPARE(mark.files.last().stateText(), QStringLiteral("업로드 전"));
    }
    void theUploadDayIsCheckedAndChangesNothingWhenRefused() {
        Fixture f;
        addInvoice("100000", "2026-10-05", 1000);
        const int no = f.record("/tmp/a_1.xlsx", {entry("100000", "2026-10-05", 1000)});
        QString why;
        QVERIFY(!MarkFileUploaded(stores().dbTax, no, "2026-11-06", &why));
        QCOMPARE(why, QStringLiteral("업로드한 날짜 2026-11-06이(가) 오늘보다 뒤입니다."));
        QVERIFY(!MarkFileUploaded(stores().dbTax, no, "2026-11-04", &why));
        QCOMPARE(why,
                 QStringLiteral("업로드한 날짜 2026-11-04이(가) 파일을 작성한 날(2026-11-05)보다 앞입니다."));
        QVERIFY(!MarkFileUploaded(stores().dbTax, no, "2026-02-30", &why));
        QCOMPARE(why, QStringLiteral("업로드한 날짜가 올바르지 않습니다: 2026-02-30 (YYYY-MM-DD)"));
        QVERIFY(!MarkFileUploaded(stores().dbTax, 99, "2026-11-05", &why));
        QCOMPARE(why, QStringLiteral("전송 기록에 99번 파일이 없습니다."));
        QCOMPARE(count("select count(*) from EtaxFile where UploadedDate <> ''"), 0);
        QVERIFY(MarkFileUploaded(stores().dbTax, no, "2026-11-05", &why));
        QVERIFY(!MarkFileUploaded(stores().dbTax, no, "2026-11-05", &why));
        QCOMPARE(why, QStringLiteral("이미 2026-11-05에 업로드한 파일로 표시되어 있습니다."));
        QVERIFY(WithdrawFile(stores().dbTax, no, QString(), nullptr));
        QVERIFY(!MarkFileUploaded(stores().dbTax, no, "2026-11-05", &why));
        QCOMPARE(why, QStringLiteral("철회한 파일은 업로드로 표시할 수 없습니다."));
    }
    void aRecordTheStoreRefusesLeavesNothingAndSaysWhy() {
        Fixture f;
        // A trigger stands in for a store that refuses the second invoice row half way.
        QVERIFY(test::refuseWrites(stores().dbTax,
                                   {QStringLiteral("EtaxHandOver"), test::Change::Insert,
                                    test::Refusal::Fails, QStringLiteral("new.TaxCode = '100001'")}));
        QString why;
        const auto no = RecordHandOverFile(
            stores().dbTax, "/tmp/a_1.xlsx", "2026-10-01", "2026-10-31",
            {entry("100000", "2026-10-05", 1000), entry("100001", "2026-10-06", 1000)}, &why);
        QVERIFY(!no);
        QVERIFY(why.startsWith(QStringLiteral("전자세금계산서 전송 기록을 남기지 못했습니다.")));
        QCOMPARE(count("select count(*) from EtaxFile"), 0);
        QCOMPARE(count("select count(*) from EtaxHandOver"), 0);
        QVERIFY(!stores().dbTax.inTransaction());
    }
    void aRecordTheStoreWillNotForgetIsKeptWholeAndSaysWhy() {
        Fixture f;
        QString why;
        const auto no = RecordHandOverFile(stores().dbTax, "/tmp/a_1.xlsx", "2026-10-01", "2026-10-31",
                                           {entry("100000", "2026-10-05", 1000)}, &why);
        QVERIFY(no);
        QVERIFY(test::refuseWrites(stores().dbTax, {QStringLiteral("EtaxFile"), test::Change::Delete}));
        QVERIFY(!ForgetHandOverFile(stores().dbTax, *no, &why));
        QVERIFY(why.startsWith(
            QStringLiteral("작성하지 못한 파일의 전송 기록(%1번)을 지우지 못했습니다.").arg(*no)));
        QCOMPARE(count("select count(*) from EtaxFile"), 1);
        QCOMPARE(count("select count(*) from EtaxHandOver"), 1);
        QVERIFY(!stores().dbTax.inTransaction());
        QVERIFY(test::allowWrites(stores().dbTax));
        QVERIFY(ForgetHandOverFile(stores().dbTax, *no, &why));
        QCOMPARE(count("select count(*) from EtaxFile"), 0);
        QCOMPARE(count("select count(*) from EtaxHandOver"), 0);
    }
    void aFailedReadGivesNoDatesAndSaysSo() {
        Fixture f;
        QVERIFY(test::hideTable(stores().dbTax, QStringLiteral("EtaxHandOver")));
        auto& msgs = test::script();
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").isEmpty());
        QVERIFY(!UploadedInvoiceDates(stores().dbTax, "2026-10-01", "2026-10-31"));
        QVERIFY(!msgs.records().empty());
    }
};

QTEST_MAIN(TestHandOverRecord)
#include "tst_hand_over_record.moc"
