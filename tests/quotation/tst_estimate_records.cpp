// The quotation record class: numbering of quotations and lines, every write with its message
// when it changes nothing, and names with quote marks stored as typed.
#include "FailureInjection.h"
#include "QuotationFixture.h"
#include "core/Clock.h"
#include "quotation/clsEstimate.h"

using namespace nb;

namespace {

clsEstimate headOf(const QString& code, const QString& date,
                   const QString& name = QStringLiteral("대한상사")) {
    clsEstimate e;
    e.sCode = code;
    e.sEDate = date;
    e.sCCode = QStringLiteral("000001");
    e.sCName = name;
    e.sClass = QStringLiteral("사무용품");
    e.dETotKum = 1000;
    e.sETotHanKum = QStringLiteral("일금 일천 원정");
    return e;
}

qint32 nextSeq() {
    clsEstimate e;
    qint32 seq = -1;
    e.NextSeq(seq);
    return seq;
}

} // namespace

class TestEstimateRecords : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void newInstanceIsEmpty() {
        clsEstimate e;
        QVERIFY(e.sCode.isEmpty() && e.sEDate.isEmpty() && e.sRefer.isEmpty() && e.sSection.isEmpty());
        QCOMPARE(e.lSeq, 0);
        QCOMPARE(e.siEAmount, 0.0f);
        QCOMPARE(e.dETotKum, 0.0);
        QVERIFY(!e.bVAT);
    }
    void firstLineOfEmptyStoreGetsSeqOneAndFirstQuotationOfMonthGets001() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QCOMPARE(nextSeq(), 1);
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-10")), QStringLiteral("202405001"));
    }
    void twoQuotationsInOneMonthNumberInSequence() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        clsEstimate first =
            headOf(test::nextCode(QStringLiteral("2024-05-10")), QStringLiteral("2024-05-10"));
        first.SaveInitEstimate();
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405002"));
    }
    void quotationDatedInAnotherMonthNumbersInThatMonthWhateverToday() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        setClock([] { return QDateTime(QDate(2024, 5, 10), QTime(9, 0)); });
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("000001"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-10")));
        QVERIFY(test::addEstiHead(QStringLiteral("202403004"), QStringLiteral("000001"), QStringLiteral("b"),
                                  QStringLiteral("2024-03-02")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-03-20")), QStringLiteral("202403005"));
        QCOMPARE(test::nextCode(QStringLiteral("2023-12-01")), QStringLiteral("202312001"));
        setClock({});
    }
    void deletingHighestQuotationOfMonthFreesItsNumber() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("1"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-01")));
        QVERIFY(test::addEstiHead(QStringLiteral("202405002"), QStringLiteral("1"), QStringLiteral("b"),
                                  QStringLiteral("2024-05-02")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-03")), QStringLiteral("202405003"));
        QVERIFY(test::exec(stores().dbEstimate,
                           QStringLiteral("DELETE FROM EstiBase WHERE EstiCode = '202405002'")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-03")), QStringLiteral("202405002"));
    }
    // The 1000th quotation of a month is numbered 1000; the one after it 1001, not 001 again,
    // which the month's first quotation holds.
    void afterNineHundredNinetyNineTheNumberGrowsToFourDigitsAndNeverWrapsToOne() {
        QCOMPARE(nextEstimateCode(QStringLiteral("2024-05-10"), QStringLiteral("202405999")),
                 QStringLiteral("2024051000"));
        QCOMPARE(nextEstimateCode(QStringLiteral("2024-05-10"), QStringLiteral("2024051000")),
                 QStringLiteral("2024051001"));
        QCOMPARE(nextEstimateCode(QStringLiteral("2024-05-10"), QString()), QStringLiteral("202405001"));
        QCOMPARE(runningNumberOf(QStringLiteral("20240512x")), -1);
        QCOMPARE(runningNumberOf(QStringLiteral("2024059999999999")), -1);
    }
    void theNextNumberInTheStoreFollowsTheLongestCodeNotTheHighestText() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405999"), QStringLiteral("1"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-30")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("2024051000"));
        QVERIFY(test::addEstiHead(QStringLiteral("2024051000"), QStringLiteral("1"), QStringLiteral("b"),
                                  QStringLiteral("2024-05-31")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("2024051001"));
        // A code that is not a number, typed into an older store, is passed over.
        QVERIFY(test::addEstiHead(QStringLiteral("20240512A"), QStringLiteral("1"), QStringLiteral("c"),
                                  QStringLiteral("2024-05-31")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("2024051001"));
    }
    void aMonthWhoseHighestCodesAreAllTooLongForANumberStillGoesOnFromItsLastNumber() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405007"), QStringLiteral("1"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-02")));
        // More long typed numbers than the first codes read, all above the running numbers.
        for (int i = 0; i < 12; ++i)
            QVERIFY(test::addEstiHead(QStringLiteral("20240599999999999%1").arg(i, 2, 10, QChar(u'0')),
                                      QStringLiteral("1"), QStringLiteral("b"),
                                      QStringLiteral("2024-05-03")));
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-31")), QStringLiteral("202405008"));
    }
    void aQuotationSavedPastTheThousandthOfAMonthNeverTakesATakenNumber() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("1"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-01")));
        QVERIFY(test::addEstiHead(QStringLiteral("202405999"), QStringLiteral("1"), QStringLiteral("b"),
                                  QStringLiteral("2024-05-30")));
        QVERIFY(test::addEstiHead(QStringLiteral("2024051000"), QStringLiteral("1"), QStringLiteral("c"),
                                  QStringLiteral("2024-05-31")));
        // The number shown was read before another copy stored the 1000th.
        clsEstimate e = headOf(QStringLiteral("2024051000"), QStringLiteral("2024-05-31"));
        e.SaveInitEstimate();
        QCOMPARE(e.sCode, QStringLiteral("2024051001"));
        QCOMPARE(test::scalar(
                     stores().dbEstimate,
                     QStringLiteral("SELECT count(*) FROM (SELECT EstiCode FROM EstiBase GROUP BY EstiCode "
                                    "HAVING count(*) > 1) AS twice"))
                     .toInt(),
                 0);
        QCOMPARE(test::scalar(stores().dbEstimate, QStringLiteral("SELECT count(*) FROM EstiBase")).toInt(),
                 4);
    }
    void lineKeyRunsOverAllQuotationsAndAFreedHighestIsReused() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiLine(1, QStringLiteral("202405001"), QStringLiteral("a"), 1, 1));
        QVERIFY(test::addEstiLine(7, QStringLiteral("202406001"), QStringLiteral("b"), 1, 1));
        QCOMPARE(nextSeq(), 8);
        clsEstimate e;
        e.lSeq = 7;
        e.DeleteDetail();
        QCOMPARE(nextSeq(), 2);
    }
    void failedReadsLeaveTheirOutputsAsStated() {
        test::TestHome home;
        QVERIFY(test::openStores()); // the quotation store stays closed
        auto& s = test::script();
        QCOMPARE(nextSeq(), 0);
        QCOMPARE(test::nextCode(QStringLiteral("2024-05-10")), QString());
        clsEstimate e;
        e.sCode = QStringLiteral("202405001");
        Recordset rs;
        bool found = true;
        e.FindEstiHead(rs, found);
        QVERIFY(!found);
        QCOMPARE(int(s.boxes().size()), 3); // the query helper's box for each
    }
    void headSavedIsFoundWithEveryField() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        clsEstimate e = headOf(QStringLiteral("202405001"), QStringLiteral("2024-05-10"));
        e.sDeriveDate = QStringLiteral("2024-05-20");
        e.bVAT = true;
        e.sRefer = QStringLiteral("김과장");
        e.sValidate = QStringLiteral("4개월");
        e.sSection = QStringLiteral("현금");
        e.SaveInitEstimate();
        clsEstimate find;
        find.sCode = QStringLiteral("202405001");
        Recordset rs;
        bool found = false;
        find.FindEstiHead(rs, found);
        QVERIFY(found);
        QCOMPARE(rs.text(QStringLiteral("CName")), QStringLiteral("대한상사"));
        QCOMPARE(rs.text(QStringLiteral("DeriveDate")), QStringLiteral("2024-05-20"));
        QVERIFY(rs.flag(QStringLiteral("Vat")));
        QCOMPARE(rs.text(QStringLiteral("Refer")), QStringLiteral("김과장"));
        QCOMPARE(rs.text(QStringLiteral("Validate")), QStringLiteral("4개월"));
        QCOMPARE(rs.text(QStringLiteral("Section")), QStringLiteral("현금"));
        QCOMPARE(rs.number(QStringLiteral("EstiKum")), 1000.0);
        QCOMPARE(rs.text(QStringLiteral("EstiHanKum")), QStringLiteral("일금 일천 원정"));
    }
    void apostropheInTraderAndProductNamesStoresInsteadOfFailing() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        auto& s = test::script();
        clsEstimate e =
            headOf(QStringLiteral("202405001"), QStringLiteral("2024-05-10"), QStringLiteral("O'Neil 상사"));
        e.SaveInitEstimate();
        e.sCName = QStringLiteral("Kim's");
        e.UpdateEstiBase();
        e.lSeq = 1;
        e.sPName = QStringLiteral("3/4\" 볼트 'A'");
        e.sUnit = QStringLiteral("EA");
        e.SaveEstimate();
        QCOMPARE(int(s.boxes().size()), 0);
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase"), QStringLiteral("WHERE CName = ?"),
                                    {QStringLiteral("Kim's")}),
                 1);
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate"), QStringLiteral("WHERE PName = ?"),
                                    {QStringLiteral("3/4\" 볼트 'A'")}),
                 1);
    }
    void eachWriteThatChangesNothingShowsItsMessageAndTitle() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        auto& s = test::script();
        clsEstimate e;
        e.sCode = QStringLiteral("nothing");
        e.lSeq = 99;
        struct Case {
            std::function<void()> run;
            QString text;
            QString title;
        };
        const QList<Case> cases{
            {[&] { e.UpdateEstiBase(); }, QStringLiteral("견적내역을 갱신하는 중 오류가 발생했습니다."),
             applicationTitle()},
            {[&] { e.UpdateEstimate(); }, QStringLiteral("견적서 자료를 갱신하는 중 오류가 발생했습니다."),
             applicationTitle()},
            {[&] { e.UpdateTotKum(); }, QStringLiteral("견적금액을 갱신하는 중 오류가 발생했습니다."),
             QStringLiteral("견적내역 갱신")},
            {[&] { e.UpdateVat(); }, QStringLiteral("견적내역을 갱신하는 중 오류가 발생했습니다."),
             QStringLiteral("견적내역 갱신오류")},
            {[&] { e.UpdateUnit(); }, QStringLiteral("견적내역을 갱신하는 중 오류가 발생했습니다."),
             QStringLiteral("견적내역 갱신 오류")},
            {[&] { e.UpdateDeriveDate(); },
             QStringLiteral("견적서의 납품예정일을 변경하는 중 오류가 발생했습니다."), applicationTitle()},
            {[&] { e.DeleteDetail(); }, QStringLiteral("견적서 자료를 삭제하는 중 오류가 발생했습니다."),
             applicationTitle()},
        };
        for (const Case& c : cases) {
            s.clear();
            c.run();
            QCOMPARE(int(s.boxes().size()), 1);
            QCOMPARE(s.last().text, c.text);
            QCOMPARE(s.last().title, c.title);
        }
        s.clear();
        e.Update_Trader_Name(); // a trader without quotations: no message
        QCOMPARE(int(s.boxes().size()), 0);
    }
    void failedHeadInsertShowsNumberDescriptionAndCheckLine() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::hideTable(stores().dbEstimate, QStringLiteral("EstiBase")));
        auto& s = test::script();
        headOf(QStringLiteral("202405001"), QStringLiteral("2024-05-10")).SaveInitEstimate();
        QCOMPARE(int(s.boxes().size()), 1);
        const QStringList lines = s.last().text.split(u'\n');
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0], QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
        QCOMPARE(lines[1], QStringLiteral("오류번호 : 3011"));
        QVERIFY(lines[2].startsWith(QStringLiteral("오류내용 : ")));
        QCOMPARE(lines[3], QStringLiteral("입력하신 내용을 다시 한번 확인하여 주십시요."));
    }
    void deleteEstimateKeepsItsColumnSpellingAndDeletesNothing() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("1"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-01")));
        QVERIFY(test::addEstiLine(1, QStringLiteral("202405001"), QStringLiteral("a"), 1, 1));
        auto& s = test::script();
        clsEstimate e;
        e.sCode = QStringLiteral("202405001");
        e.DeleteEstimate();
        QCOMPARE(s.last().text, QStringLiteral("견적서 자료를 삭제하는 중 오류가 발생했습니다."));
        QCOMPARE(s.last().title, QStringLiteral("견적내역 삭제"));
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase")), 1);
        QCOMPARE(test::estimateRows(QStringLiteral("Estimate")), 1);
    }
    void traderRenameReachesAllItsQuotations() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiHead(QStringLiteral("202405001"), QStringLiteral("000001"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-01")));
        QVERIFY(test::addEstiHead(QStringLiteral("202405002"), QStringLiteral("000001"), QStringLiteral("a"),
                                  QStringLiteral("2024-05-02")));
        clsEstimate e;
        e.sCCode = QStringLiteral("000001");
        e.sCName = QStringLiteral("새이름");
        e.Update_Trader_Name();
        QCOMPARE(test::estimateRows(QStringLiteral("EstiBase"), QStringLiteral("WHERE CName = '새이름'")), 2);
    }
    void lineUpdatesRewriteQuantityPriceAmountAndUnit() {
        test::TestHome home;
        QVERIFY(test::openQuotationStores());
        QVERIFY(test::addEstiLine(3, QStringLiteral("202405001"), QStringLiteral("a"), 1, 1));
        clsEstimate e;
        e.lSeq = 3;
        e.siEAmount = 1.5f;
        e.siEUnitCost = 1000;
        e.lEstiKum = 1500;
        e.UpdateEstimate();
        e.sUnit = QStringLiteral("BOX");
        e.UpdateUnit();
        QCOMPARE(test::scalar(stores().dbEstimate, QStringLiteral("SELECT EAmount FROM Estimate")).toDouble(),
                 1.5);
        QCOMPARE(test::scalar(stores().dbEstimate, QStringLiteral("SELECT EstiKum FROM Estimate")).toInt(),
                 1500);
        QCOMPARE(test::scalar(stores().dbEstimate, QStringLiteral("SELECT EUnit FROM Estimate")).toString(),
                 QStringLiteral("BOX"));
    }
};

NB_TEST_MAIN(TestEstimateRecords)
#include "tst_estimate_records.moc"
