// The one-time move of an old statement file into the statement store: the trigger, the
// boxes, the one VAT question and its two outcomes, the totals, the renaming, and that a
// failure or a killed process half way leaves the store as it was for the next start.
#include "StoreTestKit.h"
#include "common/MessageDialogs.h"
#include "storage/Stores.h"
#include "storage/UpdateBill.h"

#include <QApplication>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSqlRecord>
#include <QThread>
#include <csignal>
#include <cstdio>

using namespace nb;

namespace {

const QString kStartText = QStringLiteral("거래명세표 DB가 업데이트 되었습니다.\r\n"
                                          "신버전으로 교체작업이 진행 될 것이며,\r\n"
                                          "등록된 자료의 양에 따라 다소 시간이 걸릴 수도 있습니다.");
const QString kMissingNew = QStringLiteral("거래명세서 신버전 DB를 찾을 수 없습니다.\r\n"
                                           "재설치를 하지 않은 경우 재설치를 하여 주시고,\r\n"
                                           "재설치를 한 경우 [1500-0000]로 문의 바랍니다.");
const QString kVatTitle = QStringLiteral("부가세 계산방법 선택");
const QString kDone = QStringLiteral("거래명세표 DB 업그레이드가 완료 되었습니다.");

QString oldPath() {
    return app().DbPath + QStringLiteral("/dbdetail.db");
}
QString backupPath() {
    return app().DbPath + QStringLiteral("/dbDetail_bak.db");
}

struct OldLine {
    QString code, name, norm;
    double quant, unitCost, saleKum, dc;
};

// The old file with its heads and lines; the new store created as the program lays it down.
void layDown(const test::TestHome& home, const QStringList& heads, const QList<OldLine>& lines,
             bool withNewStore = true) {
    test::useStoreFolder(home);
    QStringList sql{
        QStringLiteral("CREATE TABLE DealTitle (DealCode TEXT(6), DealDate TEXT(10), TraderCode TEXT(6))"),
        QStringLiteral("CREATE TABLE DealList (DealCode TEXT(6), PName TEXT(50), PNorm TEXT(50), "
                       "Quant REAL, UnitCost REAL, SaleKum REAL, DC REAL)")};
    QVERIFY(test::runRaw(oldPath(), sql));
    Database db;
    QVERIFY(db.open(oldPath()));
    for (const QString& code : heads)
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO DealTitle VALUES (?, '2019-03-04', '000001')"),
                              {code}));
    for (const OldLine& l : lines)
        QVERIFY(db.tryExecute(QStringLiteral("INSERT INTO DealList VALUES (?, ?, ?, ?, ?, ?, ?)"),
                              {l.code, l.name, l.norm, l.quant, l.unitCost, l.saleKum, l.dc}));
    db.close();
    if (withNewStore) CreateMissingStoreFiles();
}

QStringList rows(const QString& sql) {
    Database db;
    QStringList out;
    if (!db.open(app().DbBillFile)) return out;
    QSqlQuery q(db.connection());
    if (!q.exec(sql)) return out;
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i)
            cells << q.value(i).toString();
        out << cells.join(u'|');
    }
    return out;
}

int questionsAsked(const ScriptedMessages& msgs) {
    int n = 0;
    for (const MessageRecord& r : msgs.boxes())
        n += r.title == kVatTitle;
    return n;
}

// ---- the child process of the kill test: converts and stalls after a number of rows --------

class StallingMessages : public ScriptedMessages {
public:
    explicit StallingMessages(int stallAt) : m_stallAt(stallAt) {}
    void progressSet(int value) override {
        if (value < m_stallAt) return;
        std::printf("stalled %d\n", value);
        std::fflush(stdout);
        for (;;)
            QThread::sleep(1);
    }

private:
    int m_stallAt;
};

int convertAsChild(int stallAt) {
    setMessageBackend(std::make_unique<StallingMessages>(stallAt));
    UpdateBill();
    std::printf("finished\n");
    return 0;
}

} // namespace

class TestUpdateBill : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void noOldFileShowsNothingAndChangesNothing() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        const QByteArray before = readAll(app().DbBillFile);
        auto& msgs = test::script();
        UpdateBill();
        QVERIFY(msgs.records().empty());
        QCOMPARE(readAll(app().DbBillFile), before);
        QVERIFY(!QFileInfo::exists(backupPath()));
    }

    void oldFileWithoutNewStoreWarnsAtEveryStart() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")}, {}, false);
        for (int start = 0; start < 2; ++start) {
            auto& msgs = test::script();
            UpdateBill();
            const auto boxes = msgs.boxes();
            QCOMPARE(int(boxes.size()), 2);
            QCOMPARE(boxes[0].text, kStartText);
            QCOMPARE(boxes[0].title, QStringLiteral("거래명세표DB 업그레이드"));
            QCOMPARE(boxes[0].buttons, int(MbInformation));
            QCOMPARE(boxes[1].text, kMissingNew);
            QCOMPARE(boxes[1].buttons, int(MbExclamation));
            QVERIFY(QFileInfo::exists(oldPath()));
            QVERIFY(!QFileInfo::exists(app().DbBillFile));
        }
    }

    void movesHeadsLinesAndTotalsThenRenamesTheOldFile() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000002"), QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("볼트"), QStringLiteral("EA"), 2, 100, 220, 0},
                 {QStringLiteral("000002"), QStringLiteral("작업's"), QStringLiteral("식"), 0, 0, 550, 1},
                 {QStringLiteral("000001"), QStringLiteral("너트"), QStringLiteral("개"), 3, 10, 33, 0}});
        auto& msgs = test::script();
        UpdateBill();
        QCOMPARE(rows(QStringLiteral("SELECT BillNo, BillDate, CCode, TotAmount, TotVat, NumBill FROM Master "
                                     "ORDER BY BillNo")),
                 (QStringList{QStringLiteral("000001|2019-03-04|000001|230|23|2"),
                              QStringLiteral("000002|2019-03-04|000001|500|50|1")}));
        QCOMPARE(
            rows(QStringLiteral("SELECT BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT FROM "
                                "Detail ORDER BY BillNo, BillSEQ")),
            (QStringList{
                QStringLiteral("000001|1|볼트|EA|2|100|0|200|20"),
                QStringLiteral("000001|2|너트|개|3|10|0|30|3"),
                QStringLiteral("000002|1|작업's|식|0|0|1|500|50")})); // the unclear line, Yes by default
        QVERIFY(!QFileInfo::exists(oldPath()));
        QVERIFY(QFileInfo::exists(backupPath()));
        QCOMPARE(msgs.boxes().back().text, kDone);
        QCOMPARE(msgs.boxes().back().buttons, int(MbInformation));
        QCOMPARE(msgs.records()[1].kind, QStringLiteral("progress"));
        QCOMPARE(msgs.records()[1].buttons, 5); // two heads and three lines
        QCOMPARE(msgs.progressValues().size(), 5);
        // A later start finds no old file and does nothing.
        auto& again = test::script();
        UpdateBill();
        QVERIFY(again.records().empty());
    }

    void aStartAfterTheCommitButBeforeTheRenameMovesNothingTwice() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("볼트"), QStringLiteral("EA"), 2, 100, 220, 0}});
        test::script();
        UpdateBill();
        // The program ended while the closing box stood: the old file is still in its place.
        QVERIFY(QFile::rename(backupPath(), oldPath()));
        auto& again = test::script();
        UpdateBill();
        QVERIFY(again.records().empty());
        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*) FROM Master")), QStringList{QStringLiteral("1")});
        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*) FROM Detail")), QStringList{QStringLiteral("1")});
        QVERIFY(!QFileInfo::exists(oldPath()));
        QVERIFY(QFileInfo::exists(backupPath()));
    }
    void anotherOldFileIsStillMovedAfterAnEarlierOne() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("볼트"), QStringLiteral("EA"), 2, 100, 220, 0}});
        test::script();
        UpdateBill();
        QVERIFY(QFile::remove(backupPath()));
        QVERIFY(QFile::copy(QFINDTESTDATA("tst_update_bill.cpp"), oldPath())); // a file of another size
        auto& again = test::script();
        UpdateBill();
        QVERIFY(!again.boxes().empty()); // it is tried, not taken for the one already moved
    }
    void saleKumEqualToQuantTimesPriceCountsAsUnclear() {
        QVERIFY(oldLineIsUnclear(2, 100, 200));
        QVERIFY(!oldLineIsUnclear(2, 100, 220));
        QVERIFY(oldLineIsUnclear(0, 100, 500)); // plain amount is SaleKum itself
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("볼트"), QString(), 2, 100, 200, 0}});
        auto& msgs = test::script();
        msgs.answer(AnsOk);
        msgs.answer(AnsNo);
        UpdateBill();
        QCOMPARE(questionsAsked(msgs), 1);
        QCOMPARE(rows(QStringLiteral("SELECT Amount, VAT FROM Detail")),
                 QStringList{QStringLiteral("200|0")});
    }

    void firstUnclearLineAsksOnceLaterOnesUseTheAnswer() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("가"), QString(), 1, 110, 110, 0},
                 {QStringLiteral("000001"), QStringLiteral("나"), QString(), 1, 100, 110, 0},
                 {QStringLiteral("000001"), QStringLiteral("다"), QString(), 0, 0, 220, 0},
                 {QStringLiteral("000001"), QStringLiteral("라"), QString(), 2, 105, 210, 0}});
        auto& msgs = test::script();
        msgs.answer(AnsOk);
        msgs.answer(AnsYes);
        UpdateBill();
        QCOMPARE(questionsAsked(msgs), 1);
        const auto boxes = msgs.boxes();
        const MessageRecord& question = boxes[1];
        QCOMPARE(question.title, kVatTitle);
        QCOMPARE(question.buttons, int(MbYesNo | MbQuestion));
        QVERIFY(question.text.startsWith(
            QStringLiteral("신버전에서는 저장시 부가세를 발행당시 금액 그대로 저장합니다.\r\n")));
        QVERIFY(question.text.endsWith(QStringLiteral(
            "\r\n\r\n※모든자료에 대해서 일괄적으로 처리되며, 부가세 별도인 경우는 제대로 처리됩니다.")));
        QCOMPARE(rows(QStringLiteral("SELECT PName, Amount, VAT FROM Detail ORDER BY BillSEQ")),
                 (QStringList{QStringLiteral("가|100|10"), QStringLiteral("나|100|10"),
                              QStringLiteral("다|200|20"), QStringLiteral("라|191|19")}));
    }

    void theQuestionAsTheOperatorSeesIt() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("가"), QString(), 1, 110, 110, 0}});
        auto& msgs = test::script();
        UpdateBill();
        const MessageRecord question = msgs.boxes().at(1);
        QCOMPARE(question.title, kVatTitle);
        std::unique_ptr<QMessageBox> box(
            buildMessageBox(question.text, question.buttons, question.title, nullptr));
        box->show();
        QTest::qWait(20);
        QCOMPARE(static_cast<QAbstractButton*>(box->defaultButton()), box->button(QMessageBox::Yes));
        test::saveScreenshot(box.get(), QStringLiteral("update_bill_question"));
    }

    void allLinesClearNeverAsk() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("가"), QString(), 1, 100, 110, 0},
                 {QStringLiteral("000001"), QStringLiteral("나"), QString(), 3, 10, 31, 0}});
        auto& msgs = test::script();
        UpdateBill();
        QCOMPARE(questionsAsked(msgs), 0);
        QCOMPARE(msgs.unscripted(), 2); // the opening and closing boxes only
        QCOMPARE(rows(QStringLiteral("SELECT Amount, VAT FROM Detail ORDER BY BillSEQ")),
                 (QStringList{QStringLiteral("100|10"), QStringLiteral("30|1")}));
    }

    void withYes110Gives100And10And105Gives95And10() {
        const OldLineSplit a = splitOldLine(1, 110, 110, VatChoice::Included);
        QCOMPARE(a.amount, 100.0);
        QCOMPARE(a.vat, 10.0);
        const OldLineSplit b = splitOldLine(0, 0, 105, VatChoice::Included);
        QCOMPARE(b.amount, 95.0);
        QCOMPARE(b.vat, 10.0);
        const OldLineSplit c = splitOldLine(1, 110, 110, VatChoice::TaxFree);
        QCOMPARE(c.amount, 110.0);
        QCOMPARE(c.vat, 0.0);
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")},
                {{QStringLiteral("000001"), QStringLiteral("가"), QString(), 1, 110, 110, 0},
                 {QStringLiteral("000001"), QStringLiteral("나"), QString(), 1, 105, 105, 0}});
        auto& msgs = test::script();
        msgs.answer(AnsOk);
        msgs.answer(AnsYes);
        UpdateBill();
        QCOMPARE(rows(QStringLiteral("SELECT Amount, VAT FROM Detail ORDER BY BillSEQ")),
                 (QStringList{QStringLiteral("100|10"), QStringLiteral("95|10")}));
        QCOMPARE(rows(QStringLiteral("SELECT TotAmount, TotVat, NumBill FROM Master")),
                 QStringList{QStringLiteral("195|20|2")});
    }

    // Totals taken as the heads are written add the lines in the order the store's own sums
    // add them, so amounts with fractions give the same number to the last bit.
    void headTotalsEqualTheStoresOwnSumsOfTheirLines() {
        test::TestHome home;
        QList<OldLine> lines;
        for (int i = 0; i < 40; ++i)
            lines << OldLine{i % 3 ? QStringLiteral("000001") : QStringLiteral("000002"),
                             QStringLiteral("품목"),
                             QString(),
                             4.26 + i * 0.013,
                             168.8 + i * 0.7,
                             0,
                             0};
        layDown(home, {QStringLiteral("000001"), QStringLiteral("000002")}, lines);
        auto& msgs = test::script();
        msgs.answer(AnsOk);
        msgs.answer(AnsYes);
        UpdateBill();
        const QStringList heads = rows(QStringLiteral(
            "SELECT BillNo, printf('%.17g|%.17g', TotAmount, TotVat), NumBill FROM Master ORDER BY BillNo"));
        const QStringList sums = rows(QStringLiteral("SELECT BillNo, printf('%.17g|%.17g', SUM(Amount), "
                                                     "SUM(VAT)), COUNT(*) FROM Detail GROUP BY BillNo"));
        QCOMPARE(heads.size(), 2);
        QCOMPARE(heads, sums);
        QVERIFY(heads.first().endsWith(QStringLiteral("|26")));
    }

    // A store that held statements before the move: every head with lines takes the sums of all
    // its lines in the store, the old ones and the moved ones alike.
    void aStoreWithStatementsBeforeTakesEveryHeadsTotalsFromAllItsLines() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001"), QStringLiteral("000005")},
                {{QStringLiteral("000001"), QStringLiteral("볼트"), QString(), 2, 100, 220, 0}});
        QVERIFY(test::runRaw(
            app().DbBillFile,
            {QStringLiteral("INSERT INTO Master VALUES ('000001', '2024-01-02', '000002', 999, 99, 9)"),
             QStringLiteral("INSERT INTO Master VALUES ('000007', '2024-01-03', '000002', 777, 77, 7)"),
             QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Amount, VAT) VALUES "
                            "('000001', 1, '너트', 50, 5)"),
             QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Amount, VAT) VALUES "
                            "('000007', 1, '와셔', 30, 3)")}));
        auto& msgs = test::script();
        UpdateBill();
        QCOMPARE(msgs.boxes().back().text, kDone);
        QCOMPARE(rows(QStringLiteral(
                     "SELECT BillNo, BillDate, TotAmount, TotVat, NumBill FROM Master ORDER BY rowid")),
                 (QStringList{QStringLiteral("000001|2024-01-02|250|25|2"),
                              QStringLiteral("000007|2024-01-03|30|3|1"),
                              QStringLiteral("000001|2019-03-04|250|25|2"),
                              QStringLiteral("000005|2019-03-04|0|0|0")}));
    }

    // Lines whose statement has no head are moved; each such statement is told once, as its
    // totals have nowhere to go; a head without lines keeps zeros.
    void linesWithoutAHeadAreToldOncePerStatement() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001"), QStringLiteral("000002")},
                {{QStringLiteral("000003"), QStringLiteral("가"), QString(), 1, 100, 110, 0},
                 {QStringLiteral("000001"), QStringLiteral("나"), QString(), 1, 100, 110, 0},
                 {QStringLiteral("000003"), QStringLiteral("다"), QString(), 1, 100, 110, 0},
                 {QStringLiteral("000004"), QStringLiteral("라"), QString(), 1, 100, 110, 0}});
        auto& msgs = test::script();
        UpdateBill();
        int told = 0;
        for (const MessageRecord& r : msgs.boxes())
            told +=
                r.text ==
                QStringLiteral("DB교체 작업중 오류가 발생하여 합계금액을 계산하지 못한 자료가 발생했습니다.");
        QCOMPARE(told, 2);
        QCOMPARE(msgs.boxes().back().text, kDone);
        QCOMPARE(rows(QStringLiteral("SELECT BillNo, BillSEQ FROM Detail ORDER BY rowid")),
                 (QStringList{QStringLiteral("000001|1"), QStringLiteral("000003|1"),
                              QStringLiteral("000003|2"), QStringLiteral("000004|1")}));
        QCOMPARE(
            rows(QStringLiteral("SELECT BillNo, TotAmount, TotVat, NumBill FROM Master ORDER BY BillNo")),
            (QStringList{QStringLiteral("000001|100|10|1"), QStringLiteral("000002|0|0|0")}));
    }

    void aFailedStepLeavesTheStoreAsBeforeAndTheOldFileInPlace() {
        test::TestHome home;
        layDown(home, {QStringLiteral("000001")}, {});
        QVERIFY(test::runRaw(oldPath(), {QStringLiteral("DROP TABLE DealList")}));
        auto& msgs = test::script();
        UpdateBill();
        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*) FROM Master")), QStringList{QStringLiteral("0")});
        QVERIFY(QFileInfo::exists(oldPath()));
        QVERIFY(msgs.boxes().back().text != kDone);
    }

    void killedHalfWayTheNextStartConvertsEverythingExactlyOnce() {
        test::TestHome home;
        QStringList heads;
        QList<OldLine> lines;
        for (int i = 1; i <= 200; ++i) {
            const QString code = QStringLiteral("%1").arg(i, 6, 10, QLatin1Char('0'));
            heads << code;
            lines << OldLine{code, QStringLiteral("품목"), QString(), 1, 100, 110, 0}
                  << OldLine{code, QStringLiteral("품목2"), QString(), 2, 50, 110, 0};
        }
        layDown(home, heads, lines);

        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("NB_CONVERT_CHILD_STALL_AT"), QStringLiteral("350"));
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForStarted());
        QByteArray out;
        while (!out.contains("stalled") && child.waitForReadyRead(20000))
            out += child.readAllStandardOutput();
        QVERIFY2(out.contains("stalled 350"), out.constData());
        ::kill(pid_t(child.processId()), SIGKILL);
        QVERIFY(child.waitForFinished(10000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);

        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*) FROM Master")), QStringList{QStringLiteral("0")});
        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*) FROM Detail")), QStringList{QStringLiteral("0")});
        QVERIFY(QFileInfo::exists(oldPath()));

        auto& msgs = test::script();
        UpdateBill();
        QCOMPARE(msgs.boxes().back().text, kDone);
        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*), COUNT(DISTINCT BillNo), SUM(TotAmount), SUM(TotVat), "
                                     "SUM(NumBill) FROM Master")),
                 QStringList{QStringLiteral("200|200|40000|4000|400")});
        QCOMPARE(rows(QStringLiteral("SELECT COUNT(*) FROM Detail")), QStringList{QStringLiteral("400")});
        QVERIFY(QFileInfo::exists(backupPath()));
    }

private:
    static QByteArray readAll(const QString& path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

// The kill test starts this same program as the converting child.
int main(int argc, char** argv) {
    nb::test::prepareEnvironment();
    QApplication app(argc, argv);
    nb::test::prepareApplication(app);
    const QByteArray stallAt = qgetenv("NB_CONVERT_CHILD_STALL_AT");
    if (!stallAt.isEmpty()) return convertAsChild(stallAt.toInt());
    TestUpdateBill tc;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&tc, argc, argv);
}

#include "tst_update_bill.moc"
