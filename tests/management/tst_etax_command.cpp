// `nubella --export-etax FROM TO --out FOLDER [--receipt 01|02]`, run as a separate program: a
// line per file written and per invoice left out, the assumed 영수/청구 said, and an exit code
// that is not zero only when nothing could be written.
#include "ProgramRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QRandomGenerator>

using nb::test::execOn;
using nb::test::runProgram;

namespace {

// A first run lays down the store; then a supplier, two traders and three invoices of May 2024:
// one written before 영수/청구 was kept, one 영수, one to a trader with a wrong number.
void fillStore(const QString& home) {
    runProgram(home, {"--export-etax", "2024-01-01", "2024-01-01", "--out", home + "/first"});
    execOn(home + "/Dbs/dbBasic.db",
           {"insert into User (Serial, Company, Delegate) values ('123-45-67891', '가나상사', '김가나')",
            "insert into Trader (Code, C_Name, U_Name, Serial) values ('000001', '다라철강', '이다라', "
            "'101-01-01051')",
            "insert into Trader (Code, C_Name, U_Name, Serial) values ('000002', '틀린번호', '박틀림', "
            "'123-45-67890')"});
    const QString row =
        "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum, "
        "DealDate, TradeDate, UserCode, Receipt) values ('%1', '%2', '볼트', 1, 1000, 1000, 100, "
        "'2024-05-10', '05-10', '123-45-67891', %3)";
    execOn(home + "/Dbs/dbTax.db",
           {row.arg("100000", "000001", "NULL"), row.arg("100001", "000001", "'영수'"),
            row.arg("100002", "000002", "'청구'")});
}

// A hundred invoices whose item names are long runs of random syllables, which no compression
// makes small: their workbook is far larger than the writes the program makes to start.
void fillLargeInvoices(const QString& home) {
    fillStore(home);
    QStringList rows{"delete from NewAcount"};
    for (int i = 0; i < 100; ++i) {
        QString name;
        for (int c = 0; c < 1500; ++c)
            name += QChar(0xAC00 + QRandomGenerator::global()->bounded(11172));
        rows << QStringLiteral(
                    "insert into NewAcount (TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, "
                    "VatKum, DealDate, TradeDate, UserCode, Receipt) values ('%1', '000001', '%2', "
                    "1, 1000, 1000, 100, '2024-05-10', '05-10', '123-45-67891', '영수')")
                    .arg(100000 + i)
                    .arg(name);
    }
    execOn(home + "/Dbs/dbTax.db", rows);
}

} // namespace

class TestEtaxCommand : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void writesTheFileAndSaysWhatItLeftOutAndAssumed() {
        nb::test::TestHome home;
        fillStore(home.path());
        const QString out = home.path() + "/etax";
        const auto run = runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", out});
        QCOMPARE(run.exitCode, 0);
        const QString file = out + "/전자세금계산서_20240501-20240531_1.xlsx";
        QVERIFY(QFileInfo::exists(file));
        QCOMPARE(
            run.out,
            (QStringList{
                "작성: " + file + " (2건)",
                "제외: 100002 2024-05-10 틀린번호 - 공급받는자 등록번호가 올바르지 않습니다 (123-45-67890)",
                "영수/청구가 기록되지 않은 계산서 1건은 청구(02)로 작성했습니다."}));
    }
    void receiptOptionChoosesWhatIsAssumed() {
        nb::test::TestHome home;
        fillStore(home.path());
        const auto run = runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out",
                                                  home.path() + "/etax", "--receipt", "01"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out.last(),
                 QStringLiteral("영수/청구가 기록되지 않은 계산서 1건은 영수(01)로 작성했습니다."));
    }
    void aPeriodWithoutInvoicesWritesNothingAndFails() {
        nb::test::TestHome home;
        fillStore(home.path());
        const auto run = runProgram(
            home.path(), {"--export-etax", "2024-06-01", "2024-06-30", "--out", home.path() + "/e"});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.errorText,
                 QStringLiteral("2024-06-01 ~ 2024-06-30 기간에 발행한 세금계산서가 없습니다."));
        QVERIFY(!QFileInfo::exists(home.path() + "/e"));
    }
    void onlyInvoicesThatCannotGoFailWithTheirLines() {
        nb::test::TestHome home;
        fillStore(home.path());
        execOn(home.path() + "/Dbs/dbTax.db", {"delete from NewAcount where CCode = '000001'"});
        const auto run = runProgram(
            home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", home.path() + "/e"});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out.size(), 1);
        QVERIFY(run.out.first().startsWith("제외: 100002"));
        QCOMPARE(run.errorText, QStringLiteral("파일로 보낼 수 있는 세금계산서가 없습니다."));
    }
    void theFolderIsNotMadeWhenNothingIsExported() {
        nb::test::TestHome home;
        fillStore(home.path());
        execOn(home.path() + "/Dbs/dbTax.db", {"delete from NewAcount where CCode = '000001'"});
        const QString out = home.path() + "/etax/2024";
        const auto run = runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", out});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(!QFileInfo::exists(out));
        QVERIFY(!QFileInfo::exists(home.path() + "/etax"));
    }
    void aFullDiskExitsOneAndLeavesNoEmptyWorkbook() {
        nb::test::TestHome home;
        QTemporaryDir temp; // the library's own scratch files
        fillLargeInvoices(home.path());
        const QString out = home.path() + "/etax";
        QProcessEnvironment env;
        env.insert("TMPDIR", temp.path());
        const auto run = runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", out},
                                    env, nb::test::fullDiskAt(64 * 1024));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errorText.contains("전자세금계산서_20240501-20240531_1.xlsx"),
                 qPrintable(run.errorText));
        QCOMPARE(QDir(out).entryList(QDir::Files | QDir::Hidden), QStringList());
        // With room again the same command writes the workbook whole.
        const auto again =
            runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", out});
        QCOMPARE(again.exitCode, 0);
        QCOMPARE(QDir(out).entryList(QDir::Files | QDir::Hidden),
                 QStringList{"전자세금계산서_20240501-20240531_1.xlsx"});
    }
    void malformedCommandsAreTold_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no dates") << QStringList{"--export-etax", "--out", "x"};
        QTest::newRow("bad date") << QStringList{"--export-etax", "2024-13-01", "2024-12-31", "--out", "x"};
        QTest::newRow("no folder") << QStringList{"--export-etax", "2024-01-01", "2024-12-31"};
        QTest::newRow("bad receipt") << QStringList{"--export-etax", "2024-01-01", "2024-12-31", "--out", "x",
                                                    "--receipt",     "03"};
    }
    void malformedCommandsAreTold() {
        QFETCH(QStringList, arguments);
        nb::test::TestHome home;
        const auto run = runProgram(home.path(), arguments);
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errorText,
                 QStringLiteral("사용법: nubella --export-etax 시작일 종료일 --out 폴더 "
                                "[--receipt 01|02] [--again] (날짜는 YYYY-MM-DD; --again: 이미 "
                                "파일에 넣은 세금계산서도 다시 넣음)"));
    }
    void aSecondExportElsewhereLeavesOutWhatTheFirstHandedOver() {
        nb::test::TestHome home;
        fillStore(home.path());
        QCOMPARE(runProgram(home.path(),
                            {"--export-etax", "2024-05-01", "2024-05-31", "--out", home.path() + "/a"})
                     .exitCode,
                 0);
        const auto run = runProgram(
            home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", home.path() + "/b"});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(!QFileInfo::exists(home.path() + "/b"));
        QVERIFY(run.out.contains("제외: 100000 2024-05-10 다라철강 - 이미 전자세금계산서 파일에 넣었습니다: "
                                 "전자세금계산서_20240501-20240531_1.xlsx (업로드 전)"));
        QCOMPARE(run.errorText, QStringLiteral("파일로 보낼 수 있는 세금계산서가 없습니다."));
    }
    void againPutsHandedOverInvoicesInOnceMore() {
        nb::test::TestHome home;
        fillStore(home.path());
        runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", home.path() + "/a"});
        const auto run = runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out",
                                                  home.path() + "/b", "--again"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out.first(), QStringLiteral("다시 넣음: 100000 - 이미 전자세금계산서 파일에 넣었습니다: "
                                                 "전자세금계산서_20240501-20240531_1.xlsx (업로드 전)"));
        QVERIFY(
            run.out.contains("작성: " + home.path() + "/b/전자세금계산서_20240501-20240531_1.xlsx (2건)"));
    }
    void theSameFolderAgainReplacesTheFileAndRemovesAnOlderNumberedOne() {
        nb::test::TestHome home;
        fillStore(home.path());
        const QString out = home.path() + "/etax";
        QDir().mkpath(out);
        const QString stale = out + "/전자세금계산서_20240501-20240531_2.xlsx";
        QFile file(stale);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        const auto first =
            runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", out});
        QVERIFY(first.out.contains("지움: " + stale + " (지난번에 만든 같은 이름의 파일)"));
        QVERIFY(!QFileInfo::exists(stale));
        // Run again: the file of the first run is replaced, nothing asked or left out for it.
        const auto run = runProgram(home.path(), {"--export-etax", "2024-05-01", "2024-05-31", "--out", out});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.contains("작성: " + out + "/전자세금계산서_20240501-20240531_1.xlsx (2건)"));
        QVERIFY(!QFileInfo::exists(stale));
        QCOMPARE(QDir(out).entryList(QDir::Files), QStringList{"전자세금계산서_20240501-20240531_1.xlsx"});
    }
};

QTEST_GUILESS_MAIN(TestEtaxCommand)
#include "tst_etax_command.moc"
