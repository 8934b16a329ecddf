// The period totals and the record of hand-overs when another seat's save broke their write off:
// on the server the write is run again quietly, each try taking its number anew; on the store
// files it is tried once, as ever.
#include "ForcedConflict.h"
#include "StoreFixture.h"
#include "core/Clock.h"
#include "management/TaxTotals.h"
#include "management/etax/HandOverRecord.h"
#include "storage/Database.h"

using namespace nb;

namespace {

Database& tax() {
    return stores().dbTax;
}

bool onServer() {
    return tax().onServer();
}

int count(const QString& sql) {
    return test::scalar(tax(), sql).toInt();
}

HandOverEntry entry(const QString& taxCode, double supply) {
    return {taxCode,
            QStringLiteral("2026-10-05"),
            QStringLiteral("000001"),
            QStringLiteral("다라철강"),
            supply,
            supply / 10};
}

void addInvoice(const QString& taxCode, const QString& cCode, double supply) {
    QVERIFY(
        test::exec(tax(),
                   QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, DealDate) "
                                  "VALUES (?, ?, '볼트', ?, ?, '2024-02-10')"),
                   {taxCode, cCode, supply, supply / 10}));
}

struct Fixture {
    test::TestHome home;
    Fixture() {
        setClock([] { return QDateTime(QDate(2026, 11, 5), QTime(10, 0)); });
        test::openStores();
    }
    ~Fixture() { setClock({}); }
};

} // namespace

class TestManagementRetry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aHandOverRecordBrokenOffOnceIsKeptWholeUnderOneNumber() {
        Fixture f;
        auto& msgs = test::script();
        // The file's row and its first invoice are written, then the second meets the conflict.
        test::ForcedConflict conflict(tax(),
                                      {QStringLiteral("EtaxHandOver"), QStringLiteral("INSERT"), 1, 1});
        QVERIFY(conflict.installed());
        QString why;
        const std::optional<int> fileNo = RecordHandOverFile(
            tax(), QStringLiteral("/tmp/a_1.xlsx"), QStringLiteral("2026-10-01"),
            QStringLiteral("2026-10-31"), {entry("100000", 1000), entry("100001", 2000)}, &why);
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(msgs.records().empty());
        QVERIFY(!tax().inTransaction());
        if (!onServer()) {
            QVERIFY(!fileNo);
            QVERIFY(why.startsWith(QStringLiteral("전자세금계산서 전송 기록을 남기지 못했습니다.")));
            QCOMPARE(count(QStringLiteral("SELECT count(*) FROM EtaxFile")), 0);
            QCOMPARE(count(QStringLiteral("SELECT count(*) FROM EtaxHandOver")), 0);
            return;
        }
        QCOMPARE(fileNo, 1);
        QCOMPARE(count(QStringLiteral("SELECT count(*) FROM EtaxFile")), 1);
        QCOMPARE(count(QStringLiteral("SELECT count(*) FROM EtaxHandOver WHERE FileNo = 1")), 2);
        QCOMPARE(count(QStringLiteral("SELECT Invoices FROM EtaxFile WHERE FileNo = 1")), 2);
    }
    void aHandOverRecordWhoseConflictStaysIsRefusedWithItsReason() {
        Fixture f;
        auto& msgs = test::script();
        test::ForcedConflict conflict(tax(), {QStringLiteral("EtaxFile"), QStringLiteral("INSERT"), 0, -1});
        QVERIFY(conflict.installed());
        QString why;
        QVERIFY(!RecordHandOverFile(tax(), QStringLiteral("/tmp/a_1.xlsx"), QStringLiteral("2026-10-01"),
                                    QStringLiteral("2026-10-31"), {entry("100000", 1000)}, &why));
        QCOMPARE(conflict.raised(), onServer() ? kSaveTries : 1);
        QCOMPARE(why, QStringLiteral("전자세금계산서 전송 기록을 남기지 못했습니다. ") +
                          storeFaultText(5, QString()));
        QVERIFY(msgs.records().empty());
        QCOMPARE(count(QStringLiteral("SELECT count(*) FROM EtaxFile")), 0);
    }
    void anUploadMarkBrokenOffOnceIsSavedOnce() {
        Fixture f;
        QString why;
        const std::optional<int> fileNo =
            RecordHandOverFile(tax(), QStringLiteral("/tmp/a_1.xlsx"), QStringLiteral("2026-10-01"),
                               QStringLiteral("2026-10-31"), {entry("100000", 1000)}, &why);
        QVERIFY(fileNo);
        test::ForcedConflict conflict(tax(), {QStringLiteral("EtaxFile"), QStringLiteral("UPDATE"), 0, 1});
        QVERIFY(conflict.installed());
        const bool marked = MarkFileUploaded(tax(), *fileNo, QStringLiteral("2026-11-05"), &why);
        QCOMPARE(conflict.raised(), 1);
        QCOMPARE(marked, onServer());
        const std::optional<HandOverFile> file = ReadHandOverFile(tax(), *fileNo);
        QVERIFY(file);
        QCOMPARE(file->uploadedDate, onServer() ? QStringLiteral("2026-11-05") : QString());
    }
    void aTotalsRefillBrokenOffOnceFillsTheTotalsOnce() {
        Fixture f;
        addInvoice(QStringLiteral("100000"), QStringLiteral("000001"), 1000);
        addInvoice(QStringLiteral("100001"), QStringLiteral("000002"), 2000);
        auto& msgs = test::script();
        // The first trader's total is written, then the second meets the conflict.
        test::ForcedConflict conflict(tax(), {QStringLiteral("SaleTotal"), QStringLiteral("INSERT"), 1, 1});
        QVERIFY(conflict.installed());
        const auto rows = SearchTotals(tax(), stores().dbBasic.path(),
                                       {QStringLiteral("2024-01-01"), QStringLiteral("2024-03-31")});
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(!tax().inTransaction());
        if (!onServer()) {
            QVERIFY(!rows);
            QCOMPARE(msgs.boxes().size(), size_t(1));
            QVERIFY(msgs.last().text.contains(storeFaultText(5, QString())));
            return;
        }
        QVERIFY(rows);
        QCOMPARE(rows->size(), 2);
        QVERIFY(msgs.records().empty());
        QCOMPARE(count(QStringLiteral("SELECT count(*) FROM SaleTotal")), 2);
        QCOMPARE(test::scalar(tax(), QStringLiteral("SELECT SUM(TradeKum) FROM SaleTotal")).toDouble(),
                 3000.0);
    }
};

NB_TEST_MAIN(TestManagementRetry)
#include "tst_management_retry.moc"
