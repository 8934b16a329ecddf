// Statements in dbBill: numbering, lines saved, changed and deleted with the head's totals
// moved by the difference, statements deleted with their lines, the list and the lines read
// back, and a failure at every step of a save leaving the store as before.
#include "FailureInjection.h"
#include "StoreFixture.h"
#include "statement/StatementRecalc.h"
#include "statement/StatementStore.h"

#include <QSqlQuery>

using namespace nb;

namespace {

Database& bill() {
    return stores().dbBill;
}

NewLine newStatementLine(const QString& pName, const QString& cCode = QStringLiteral("000001")) {
    return {QString(), QStringLiteral("2024-05-10"), cCode, pName};
}

NewLine lineOf(const QString& billNo, const QString& pName) {
    return {billNo, QStringLiteral("2024-05-10"), QStringLiteral("000001"), pName};
}

// A statement of the given lines, each with its amount and VAT; its number.
QString statementWith(const QList<std::pair<double, double>>& amounts) {
    QString billNo;
    int n = 0;
    for (const auto& [amount, vat] : amounts) {
        const InsertedLine line =
            DetailInsert(bill(), lineOf(billNo, QStringLiteral("품목") + QString::number(++n)));
        if (!line.ok) return QString();
        billNo = line.billNo;
        DetailUpdate(bill(), billNo, line.billSeq, QStringLiteral("Amount"), amount);
        DetailUpdate(bill(), billNo, line.billSeq, QStringLiteral("VAT"), vat);
    }
    return billNo;
}

// Every head's totals and count as its lines sum them, and no head without lines.
bool headsAgreeWithLines() {
    return test::scalar(bill(), QStringLiteral(
                                    "SELECT count(*) FROM Master m WHERE m.NumBill <> "
                                    "(SELECT count(*) FROM Detail d WHERE d.BillNo = m.BillNo) "
                                    "OR m.TotAmount <> (SELECT coalesce(sum(Amount), 0) FROM Detail d "
                                    "WHERE d.BillNo = m.BillNo) OR m.TotVat <> (SELECT coalesce(sum(VAT), 0) "
                                    "FROM Detail d WHERE d.BillNo = m.BillNo) OR m.NumBill = 0"))
               .toInt() == 0;
}

// The store's rows as one text, to compare before and after a failed save.
QString storeText() {
    QString text;
    QSqlQuery q(bill().connection());
    q.exec(QStringLiteral("SELECT * FROM Master ORDER BY BillNo"));
    while (q.next())
        for (int i = 0; i < 6; ++i)
            text += q.value(i).toString() + u'|';
    q.exec(QStringLiteral("SELECT * FROM Detail ORDER BY BillNo, BillSEQ"));
    while (q.next())
        for (int i = 0; i < 9; ++i)
            text += q.value(i).toString() + u'|';
    return text;
}

// Makes every statement of the kind on the table fail ("fails": the store refuses it) or touch
// no row ("passes over").
void injectFailure(const QString& when, const QString& table, const QString& refusal) {
    const test::Change change = when == QLatin1String("INSERT")   ? test::Change::Insert
                                : when == QLatin1String("UPDATE") ? test::Change::Update
                                                                  : test::Change::Delete;
    QVERIFY(test::refuseWrites(bill(), {table, change,
                                        refusal == QLatin1String("passes over") ? test::Refusal::PassesOver
                                                                                : test::Refusal::Fails}));
}
void removeFailure() {
    QVERIFY(test::allowWrites(bill()));
}

// The run-time box: its headline, then the cause in the operator's words on a line of its own,
// then the engine's number and words.
QString errorText(const QString& text) {
    return text + u'\r';
}

} // namespace

class TestStatementStore : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void emptyStoreGivesFirstNumber000001ThenNext000002() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QCOMPARE(NextBillNo(bill()), QStringLiteral("000001"));
        const InsertedLine first = DetailInsert(bill(), newStatementLine(QStringLiteral("볼트")));
        QVERIFY(first.ok && first.newHead);
        QCOMPARE(first.billNo, QStringLiteral("000001"));
        QCOMPARE(first.billSeq, 1);
        const InsertedLine second = DetailInsert(bill(), newStatementLine(QStringLiteral("너트")));
        QCOMPARE(second.billNo, QStringLiteral("000002"));
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT BillDate FROM Master WHERE BillNo = '000001'"))
                     .toString(),
                 QStringLiteral("2024-05-10"));
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT NumBill FROM Master WHERE BillNo = '000002'"))
                     .toInt(),
                 1);
    }
    void after009999Comes010000() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::exec(
            bill(), QStringLiteral("INSERT INTO Master VALUES ('009999', '2024-01-01', '000001', 0, 0, 1)")));
        QCOMPARE(NextBillNo(bill()), QStringLiteral("010000"));
    }
    void dateBoxTextBecomesStoredDate() {
        QCOMPARE(billDateFromBox(QStringLiteral("2024년05월10일")), QStringLiteral("2024-05-10"));
    }
    void deletingHighestSeqGivesItAgainAndMiddleGapStays() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}, {200, 20}, {300, 30}});
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        QCOMPARE(DeleteLine(bill(), no, 3).outcome, LineDeleteOutcome::Deleted);
        QCOMPARE(DetailInsert(bill(), lineOf(no, QStringLiteral("새"))).billSeq, 3);
        msgs.answer(AnsYes);
        QCOMPARE(DeleteLine(bill(), no, 2).outcome, LineDeleteOutcome::Deleted);
        QCOMPARE(DetailInsert(bill(), lineOf(no, QStringLiteral("또"))).billSeq, 4);
        QList<int> seqs;
        const QList<StatementLine> lines = ReadStatementLines(bill(), no).value_or(QList<StatementLine>());
        for (const StatementLine& line : lines)
            seqs << line.billSeq;
        QCOMPARE(seqs, (QList<int>{1, 3, 4}));
        QVERIFY(headsAgreeWithLines());
    }
    void fourteenLinesShowFifteenRowsAndFifteenShowSixteen() {
        QCOMPARE(detailRowCount(0), 15);
        QCOMPARE(detailRowCount(14), 15);
        QCOMPARE(detailRowCount(15), 16);
        test::TestHome home;
        QVERIFY(test::openStores());
        QList<std::pair<double, double>> amounts(15, {1000, 100});
        const QString no = statementWith(amounts);
        QCOMPARE(ReadStatementLines(bill(), no)->size(), 15);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotAmount FROM Master")).toDouble(), 15000.0);
    }
    void quantityChangeWithSameAmountIssuesNoMasterUpdate() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{5000, 500}});
        injectFailure(QStringLiteral("UPDATE"), QStringLiteral("Master"), QStringLiteral("fails"));
        auto& msgs = test::script();
        QVERIFY(DetailUpdate(bill(), no, 1, QStringLiteral("Quant"), 5.0).ok);
        const UpdatedLine same = DetailUpdate(bill(), no, 1, QStringLiteral("Amount"), 5000.0);
        QVERIFY(same.ok);
        QCOMPARE(same.diff, 0.0);
        QVERIFY(msgs.records().empty());
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT Quant FROM Detail")).toDouble(), 5.0);
    }
    void amountChangeMovesHeadByDifferenceWithDoubleSign() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{5000, 500}, {1000, 100}});
        const UpdatedLine up = DetailUpdate(bill(), no, 1, QStringLiteral("amount"), 10000.0);
        QVERIFY(up.ok);
        QCOMPARE(up.field, QStringLiteral("AMOUNT"));
        QCOMPARE(up.diff, -5000.0);
        QCOMPARE(DetailUpdate(bill(), no, 2, QStringLiteral("VAT"), 40.0).diff, 60.0);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotAmount FROM Master")).toDouble(), 11000.0);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotVat FROM Master")).toDouble(), 540.0);
        QVERIFY(headsAgreeWithLines());
    }
    void updateOfUndefinedOrMissingLineSaysSo() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        QVERIFY(
            !DetailUpdate(bill(), QStringLiteral("000001"), -1, QStringLiteral("Unit"), QStringLiteral("EA"))
                 .ok);
        QCOMPARE(msgs.last().text, QStringLiteral("내역순번 정의 오류입니다."));
        QVERIFY(
            !DetailUpdate(bill(), QStringLiteral("000001"), 7, QStringLiteral("Unit"), QStringLiteral("EA"))
                 .ok);
        QCOMPARE(msgs.last().text, QStringLiteral("코드[000001_7]에 해당하는 자료를 찾을 수 없습니다."));
    }
    void quoteMarkInProductTextIsStoredAndReadBack() {
        test::TestHome home;
        QVERIFY(test::openStores());
        auto& msgs = test::script();
        const InsertedLine line = DetailInsert(bill(), newStatementLine(QStringLiteral("3/4\" 볼트's")));
        QVERIFY(line.ok);
        QVERIFY(msgs.records().empty());
        QCOMPARE(ReadStatementLines(bill(), line.billNo)->first().pName, QStringLiteral("3/4\" 볼트's"));
        QVERIFY(headsAgreeWithLines());
    }
    void f4OnPendingRowAsksToChooseFirst() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}});
        auto& msgs = test::script();
        QCOMPARE(DeleteLine(bill(), no, 0).outcome, LineDeleteOutcome::NothingChosen);
        QCOMPARE(DeleteLine(bill(), QString(), 0).outcome, LineDeleteOutcome::NothingChosen);
        QCOMPARE(msgs.last().text, QStringLiteral("삭제할 행을 먼저 선택하세요."));
        QCOMPARE(DeleteStatement(bill(), QString(), false), StatementDeleteOutcome::NothingChosen);
        QCOMPARE(msgs.boxes().size(), size_t(3));
    }
    void f4OnOnlyLineRemovesStatementWithoutSecondPrompt() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}});
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        QCOMPARE(DeleteLine(bill(), no, 1).outcome, LineDeleteOutcome::WholeStatement);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.boxes()[0].title, QStringLiteral("거래내역 삭제"));
        QCOMPARE(msgs.boxes()[0].text, QStringLiteral("선택된 거래내역을 삭제하시겠습니까?"));
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT count(*) FROM Master")).toInt(), 0);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT count(*) FROM Detail")).toInt(), 0);
    }
    void lineDeleteDeclinedKeepsTheLine() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}, {200, 20}});
        auto& msgs = test::script();
        msgs.answer(AnsNo);
        QCOMPARE(DeleteLine(bill(), no, 2).outcome, LineDeleteOutcome::Declined);
        QCOMPARE(msgs.last().buttons, 292);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT count(*) FROM Detail")).toInt(), 2);
    }
    void lineDeleteMovesTotalsAndCount() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}, {200, 20}});
        test::script().answer(AnsYes);
        const DeletedLine gone = DeleteLine(bill(), no, 2);
        QCOMPARE(gone.outcome, LineDeleteOutcome::Deleted);
        QCOMPARE(gone.amount, 200.0);
        QCOMPARE(gone.vat, 20.0);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT NumBill FROM Master")).toInt(), 1);
        QVERIFY(headsAgreeWithLines());
    }
    void statementDeleteAsksAndTakesItsLines() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}, {200, 20}});
        auto& msgs = test::script();
        msgs.answer(AnsNo);
        QCOMPARE(DeleteStatement(bill(), no, false), StatementDeleteOutcome::Declined);
        QCOMPARE(msgs.last().title, QStringLiteral("기존발행전표 삭제"));
        QCOMPARE(msgs.last().text, QStringLiteral("선택된 전표를 삭제하시겠습니까?"));
        msgs.answer(AnsYes);
        QCOMPARE(DeleteStatement(bill(), no, false), StatementDeleteOutcome::Deleted);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT count(*) FROM Detail")).toInt(), 0);
    }
    void numberGivenAgainFindsNoOldLines() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}, {200, 20}});
        test::script();
        QCOMPARE(DeleteStatement(bill(), no, true), StatementDeleteOutcome::Deleted);
        const InsertedLine again = DetailInsert(bill(), newStatementLine(QStringLiteral("새 명세")));
        QCOMPARE(again.billNo, no);
        QCOMPARE(again.billSeq, 1);
        QCOMPARE(ReadStatementLines(bill(), no)->size(), 1);
    }
    void listKeepsStatementsOfTradersGoneAndFiltersByTrader() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::exec(stores().dbBasic,
                           QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                           {QStringLiteral("000001"), QStringLiteral("가나상사")}));
        statementWith({{100, 10}});
        DetailInsert(bill(), newStatementLine(QStringLiteral("x"), QStringLiteral("000009")));
        const auto all = ReadStatementList(bill(), stores().dbBasic.path(), QStringLiteral("2024-05-01"),
                                           QStringLiteral("2024-05-31"));
        QVERIFY(all);
        QCOMPARE(all->size(), 2);
        QCOMPARE(all->at(0).cName, QStringLiteral("가나상사"));
        QCOMPARE(all->at(0).total(), 110.0);
        QCOMPARE(all->at(1).cName, QString());
        const auto one = ReadStatementList(bill(), stores().dbBasic.path(), QStringLiteral("2024-05-01"),
                                           QStringLiteral("2024-05-31"), QStringLiteral("000009"));
        QCOMPARE(one->size(), 1);
        QCOMPARE(ReadStatementList(bill(), stores().dbBasic.path(), QStringLiteral("2024-06-01"),
                                   QStringLiteral("2024-06-30"))
                     ->size(),
                 0);
    }

    void vatModeChangeRecalculatesEveryLineAndTheHead() {
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{0, 0}, {0, 0}});
        DetailUpdate(bill(), no, 1, QStringLiteral("Quant"), 1.0);
        DetailUpdate(bill(), no, 1, QStringLiteral("Price"), 11000.0);
        DetailUpdate(bill(), no, 2, QStringLiteral("Quant"), 3.0);
        DetailUpdate(bill(), no, 2, QStringLiteral("Price"), 1255.0);
        const auto lines = ReadStatementLines(bill(), no).value_or(QList<StatementLine>());
        const QList<StatementLine> included = RecalculateLines(bill(), lines, VatMode::Included);
        QCOMPARE(included[0].amount, 10000.0);
        QCOMPARE(included[1].vat, 342.0);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotAmount FROM Master")).toDouble(), 13423.0);
        QVERIFY(headsAgreeWithLines());
        const int before = bill().statementsRun();
        RecalculateLines(bill(), included, VatMode::Included);
        QCOMPARE(bill().statementsRun(), before);
        const QList<StatementLine> exempt = RecalculateLines(bill(), {included[1]}, VatMode::Exempt);
        QCOMPARE(exempt[0].amount, 3765.0);
        QCOMPARE(test::scalar(bill(), QStringLiteral("SELECT TotVat FROM Master")).toDouble(), 1000.0);
        QVERIFY(headsAgreeWithLines());
    }

    // A failure at any step of a save leaves the store as before, with the step's own box.
    void insertFailureAtEveryStepLeavesStoreAsBefore_data() {
        QTest::addColumn<bool>("firstLine");
        QTest::addColumn<QString>("when");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QString>("message");
        const QString runTime = errorText(QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
        QTest::newRow("head not inserted")
            << true << "INSERT"
            << "Master"
            << "passes over" << QStringLiteral("자료 저장중 Master에서 오류가 발생했습니다.");
        QTest::newRow("head insert fails") << true << "INSERT"
                                           << "Master"
                                           << "fails" << runTime;
        QTest::newRow("first line not inserted")
            << true << "INSERT"
            << "Detail"
            << "passes over" << QStringLiteral("자료 저장중 Detail에서 오류가 발생했습니다.");
        QTest::newRow("first line insert fails") << true << "INSERT"
                                                 << "Detail"
                                                 << "fails" << runTime;
        QTest::newRow("first count not raised")
            << true << "UPDATE"
            << "Master"
            << "passes over" << QStringLiteral("자료 저장중 Master의 거래건수에서 오류가 발생했습니다.");
        QTest::newRow("first count fails") << true << "UPDATE"
                                           << "Master"
                                           << "fails" << runTime;
        QTest::newRow("line not inserted")
            << false << "INSERT"
            << "Detail"
            << "passes over" << QStringLiteral("자료 저장중 Detail에서 오류가 발생했습니다.");
        QTest::newRow("count not raised")
            << false << "UPDATE"
            << "Master"
            << "passes over" << QStringLiteral("자료 저장중 Master의 거래건수에서 오류가 발생했습니다.");
        QTest::newRow("count fails") << false << "UPDATE"
                                     << "Master"
                                     << "fails" << runTime;
    }
    void insertFailureAtEveryStepLeavesStoreAsBefore() {
        QFETCH(bool, firstLine);
        QFETCH(QString, when);
        QFETCH(QString, table);
        QFETCH(QString, refusal);
        QFETCH(QString, message);
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}});
        const QString before = storeText();
        injectFailure(when, table, refusal);
        auto& msgs = test::script();
        const InsertedLine line = DetailInsert(bill(), firstLine ? newStatementLine(QStringLiteral("a"))
                                                                 : lineOf(no, QStringLiteral("a")));
        QVERIFY(!line.ok);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY2(msgs.last().text.startsWith(message), qPrintable(msgs.last().text));
        removeFailure();
        QCOMPARE(storeText(), before);
        QVERIFY(headsAgreeWithLines());
        QVERIFY(!bill().inTransaction());
    }
    void updateFailureAtEveryStepLeavesStoreAsBefore_data() {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("head not moved") << "Master"
                                        << "passes over";
        QTest::newRow("head move fails") << "Master"
                                         << "fails";
        QTest::newRow("line not changed") << "Detail"
                                          << "passes over";
        QTest::newRow("line change fails") << "Detail"
                                           << "fails";
    }
    void updateFailureAtEveryStepLeavesStoreAsBefore() {
        QFETCH(QString, table);
        QFETCH(QString, refusal);
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}});
        const QString before = storeText();
        injectFailure(QStringLiteral("UPDATE"), table, refusal);
        auto& msgs = test::script();
        QVERIFY(!DetailUpdate(bill(), no, 1, QStringLiteral("Amount"), 900.0).ok);
        QVERIFY(msgs.last().text.startsWith(
            errorText(QStringLiteral("자료를 수정하는 중 오류가 발생했습니다."))));
        QCOMPARE(msgs.last().title, QStringLiteral("오류"));
        removeFailure();
        QCOMPARE(storeText(), before);
    }
    void deleteFailureAtEveryStepLeavesStoreAsBefore_data() {
        QTest::addColumn<bool>("wholeStatement");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("line not deleted") << false << "Detail"
                                          << "passes over";
        QTest::newRow("line delete fails") << false << "Detail"
                                           << "fails";
        QTest::newRow("head not moved") << false << "Master"
                                        << "passes over";
        QTest::newRow("head move fails") << false << "Master"
                                         << "fails";
        QTest::newRow("head not deleted") << true << "Master"
                                          << "passes over";
        QTest::newRow("head delete fails") << true << "Master"
                                           << "fails";
        QTest::newRow("lines delete fails") << true << "Detail"
                                            << "fails";
    }
    void deleteFailureAtEveryStepLeavesStoreAsBefore() {
        QFETCH(bool, wholeStatement);
        QFETCH(QString, table);
        QFETCH(QString, refusal);
        test::TestHome home;
        QVERIFY(test::openStores());
        const QString no = statementWith({{100, 10}, {200, 20}});
        const QString before = storeText();
        const bool headStep = table == QLatin1String("Master") && !wholeStatement;
        injectFailure(headStep ? QStringLiteral("UPDATE") : QStringLiteral("DELETE"), table, refusal);
        auto& msgs = test::script();
        if (wholeStatement) {
            QCOMPARE(DeleteStatement(bill(), no, true), StatementDeleteOutcome::Failed);
        } else {
            msgs.answer(AnsYes);
            QCOMPARE(DeleteLine(bill(), no, 2).outcome, LineDeleteOutcome::Failed);
        }
        QCOMPARE(msgs.last().text, QStringLiteral("삭제도중 오류가 발생했습니다."));
        removeFailure();
        QCOMPARE(storeText(), before);
        QVERIFY(headsAgreeWithLines());
    }

    // The lines are read by the place of each field, found once by name: every field comes out
    // as reading it by name gives it, a null text as the empty one and a null number as 0.
    void linesReadByPositionEqualThoseReadByNameForEveryField() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(bill().Execute(QStringLiteral(
            "INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) VALUES "
            "('000777', 1, '볼트', 'EA', 3.5, 1200, 9, 4200, 420), "
            "('000777', 2, NULL, NULL, NULL, NULL, NULL, NULL, NULL), "
            "('000777', 3, '너트', '상자', -2, 0.25, 0, -0.5, -0.05)")));
        const QList<StatementLine> lines = ReadStatementLines(bill(), QStringLiteral("000777")).value();
        Recordset rs;
        QVERIFY(OpenSnapshot(
            bill(), rs, QStringLiteral("SELECT * FROM Detail WHERE BillNo = '000777' ORDER BY BillSEQ")));
        QCOMPARE(lines.size(), rs.RecordCount());
        for (const StatementLine& line : lines) {
            QCOMPARE(line.billNo, rs.text(QStringLiteral("BillNo")));
            QCOMPARE(line.billSeq, int(rs.number(QStringLiteral("BillSEQ"))));
            QCOMPARE(line.pName, rs.text(QStringLiteral("PName")));
            QCOMPARE(line.unit, rs.text(QStringLiteral("Unit")));
            QCOMPARE(line.quant, rs.number(QStringLiteral("Quant")));
            QCOMPARE(line.price, rs.number(QStringLiteral("Price")));
            QCOMPARE(line.amount, rs.number(QStringLiteral("Amount")));
            QCOMPARE(line.vat, rs.number(QStringLiteral("VAT")));
            rs.MoveNext();
        }
        const StatementLine& first = lines.first();
        QCOMPARE(first.pName, QStringLiteral("볼트"));
        QCOMPARE(first.unit, QStringLiteral("EA"));
        QCOMPARE(first.quant, 3.5);
        QCOMPARE(first.price, 1200.0);
        QCOMPARE(first.amount, 4200.0);
        QCOMPARE(first.vat, 420.0);
        QVERIFY(lines.at(1).pName.isEmpty() && !lines.at(1).pName.isNull());
        QCOMPARE(lines.at(1).quant, 0.0);
        QCOMPARE(lines.at(2).billSeq, 3);
        QCOMPARE(lines.at(2).vat, -0.05);
    }

    // A store whose Detail holds its columns in another order (a file laid down by another
    // build) gives each field from its own column.
    void linesReadFromColumnsInAnotherOrder() {
        test::TestHome home;
        QVERIFY(test::openStores());
        if (bill().onServer()) QSKIP("the server's tables are laid down by the program alone");
        QSqlQuery q(bill().connection());
        QVERIFY(q.exec(QStringLiteral("DROP TABLE Detail")));
        QVERIFY(q.exec(QStringLiteral(
            "CREATE TABLE Detail (VAT REAL, Amount REAL, DC REAL, Price REAL, Quant REAL, Unit TEXT(10), "
            "PName TEXT(50), BillSEQ INTEGER, BillNo TEXT(6))")));
        QVERIFY(q.exec(
            QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, "
                           "VAT) VALUES ('000778', 4, '와셔', 'KG', 7, 300, 1, 2100, 210)")));
        const QList<StatementLine> lines = ReadStatementLines(bill(), QStringLiteral("000778")).value();
        QCOMPARE(lines.size(), 1);
        const StatementLine& line = lines.first();
        QCOMPARE(line.billNo, QStringLiteral("000778"));
        QCOMPARE(line.billSeq, 4);
        QCOMPARE(line.pName, QStringLiteral("와셔"));
        QCOMPARE(line.unit, QStringLiteral("KG"));
        QCOMPARE(line.quant, 7.0);
        QCOMPARE(line.price, 300.0);
        QCOMPARE(line.amount, 2100.0);
        QCOMPARE(line.vat, 210.0);
    }
};

NB_TEST_MAIN(TestStatementStore)
#include "tst_statement_store.moc"
