// The road behind the electronic invoice button: an empty period, the one question about
// 영수/청구 for older invoices with its three answers, a cancelled folder, and the files.
#include "StoreFixture.h"
#include "management/etax/EtaxExportRun.h"

#include <QTemporaryDir>

using namespace nb;

namespace {

void addInvoice(const QString& taxCode, const QVariant& receipt) {
    QVERIFY(test::exec(
        stores().dbTax,
        "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, DealDate, "
        "TradeDate, UserCode, Receipt) values (?, '000001', '볼트', 1, 1000, 1000, 100, '2024-05-10', "
        "'05-10', '123-45-67891', ?)",
        {taxCode, receipt}));
}

struct Fixture {
    test::TestHome home;
    QTemporaryDir out;
    ScriptedMessages* msgs = nullptr;
    QStringList folderAsked;
    Fixture() {
        test::openStores();
        msgs = &test::script();
        QVERIFY(
            test::exec(stores().dbBasic,
                       "insert into User (Serial, Company, Delegate) values ('123-45-67891', '가나', '김')"));
        QVERIFY(test::exec(stores().dbBasic, "insert into Trader (Code, C_Name, U_Name, Serial) values "
                                             "('000001', '다라', '이', '101-01-01051')"));
    }
    std::optional<EtaxExport> run(const QString& folder) {
        EtaxRunHooks hooks;
        hooks.chooseFolder = [this, folder](QWidget*) {
            folderAsked << folder;
            return folder;
        };
        hooks.showResult = false;
        return RunEtaxExport(nullptr, "2024-05-01", "2024-05-31", hooks);
    }
};

} // namespace

class TestEtaxExportRun : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEmptyPeriodSaysSoAndAsksForNoFolder() {
        Fixture f;
        QVERIFY(!f.run(f.out.path()));
        QCOMPARE(f.msgs->last().text,
                 QStringLiteral("2024-05-01 ~ 2024-05-31 기간에 발행한 세금계산서가 없습니다."));
        QCOMPARE(f.msgs->last().title, QStringLiteral("전자세금계산서 엑셀"));
        QVERIFY(f.folderAsked.isEmpty());
    }
    void invoicesThatSayTheirKindAskNothing() {
        Fixture f;
        addInvoice("100000", "영수");
        const auto result = f.run(f.out.path());
        QVERIFY(result);
        QVERIFY(f.msgs->boxes().empty());
        QCOMPARE(result->invoicesWritten(), 1);
        QCOMPARE(result->assumedReceipts, 0);
    }
    void olderInvoicesAskOnceAndYesMeansReceipt() {
        Fixture f;
        addInvoice("100000", QVariant());
        addInvoice("100001", QVariant());
        f.msgs->answer(AnsYes);
        const auto result = f.run(f.out.path());
        QCOMPARE(f.msgs->boxes().size(), size_t(1));
        QCOMPARE(f.msgs->last().text,
                 QStringLiteral("영수/청구가 기록되지 않은 세금계산서가 2건 있습니다.\r\n\r\n"
                                "예: 영수(01)로 작성합니다.\r\n아니요: 청구(02)로 작성합니다."));
        QCOMPARE(f.msgs->last().buttons, int(MbYesNoCancel | MbQuestion));
        QCOMPARE(result->assumedReceipts, 2);
        QVERIFY(QFileInfo::exists(result->files.first()));
    }
    void noMeansChargeAndCancelStopsBeforeTheFolder() {
        Fixture f;
        addInvoice("100000", QVariant());
        f.msgs->answer(AnsCancel);
        QVERIFY(!f.run(f.out.path()));
        QVERIFY(f.folderAsked.isEmpty());
        QCOMPARE(AskAssumedReceipt(1), std::optional<EtaxReceipt>(EtaxReceipt::Paid)); // unscripted: 예
        f.msgs->answer(AnsNo);
        QCOMPARE(AskAssumedReceipt(1), std::optional<EtaxReceipt>(EtaxReceipt::Charged));
    }
    void aCancelledFolderWritesNothing() {
        Fixture f;
        addInvoice("100000", "청구");
        QVERIFY(!f.run(QString()));
        QCOMPARE(QDir(f.out.path()).entryList(QDir::Files).size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestEtaxExportRun)
#include "tst_etax_export_run.moc"
