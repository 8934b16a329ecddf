// The search indexes beside Trader (trigrams, and the one- and two-character pieces): the same
// rows in the same order as the plain query, kept in step with every write, rebuilt when out of
// step, and no table scan for a text of any length.
#include "MasterFixture.h"
#include "master/SearchIndex.h"
#include "master/SearchRules.h"
#include "master/TraderRecords.h"
#include "master/clsTrader.h"

#include <QRegularExpression>

using namespace nb;
using namespace nb::test;

namespace {

QStringList codesOf(const SqlPart& query) {
    Recordset rs;
    OpenSnapshot(stores().dbBasic, rs, query.sql, query.values);
    QStringList out;
    for (; !rs.EOF_(); rs.MoveNext())
        out << rs.text("Code");
    return out;
}

// The list's rows by the plain LIKE conditions, without the index.
QStringList plainCodes(const QString& name) {
    const QString first = TraderSearchByPhone(name) ? "Phone" : "C_Name";
    return codesOf({"SELECT Code FROM Trader WHERE Section = 0 AND (" + first +
                        " LIKE ? ESCAPE '\\' OR Addr2 LIKE ? "
                        "ESCAPE '\\') ORDER BY C_Name, rowid",
                    {LikeContains(name), LikeContains(name)}});
}

void addMany() {
    const QStringList names = {"가나상사", "ABC Trading", "abc무역",  "O'Neil",   "50%할인",
                               "A_B상회",  "가나상사",    "역삼물산", "대한전자", "한국기계"};
    for (int i = 0; i < 200; ++i)
        addTrader(QString("%1").arg(i + 1, 6, 10, QChar('0')),
                  names[i % names.size()] + QString::number(i % 7),
                  QString("02-%1-%2").arg(100 + i).arg(1000 + i * 3),
                  "서울 강남구 역삼동 " + QString::number(i % 11));
}

} // namespace

class TestSearchIndex : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void traderListGivesThePlainRowsInThePlainOrder() {
        TestHome home;
        QVERIFY(openStores());
        addMany();
        for (const QString& text : {QString("가나상사"), QString("abc"), QString("ABC"), QString("가나"),
                                    QString("가"), QString("0%할"), QString("A_B"), QString("02-10"),
                                    QString("105"), QString("1"), QString("상사3"), QString("Neil")}) {
            QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, text, 0)), plainCodes(text));
        }
    }
    void threeCharactersUseTheIndexAndShorterTextsThePlainQuery() {
        TestHome home;
        QVERIFY(openStores());
        addMany();
        QVERIFY(!UsesTrigramIndex("가나"));
        QVERIFY(UsesTrigramIndex("가나상"));
        QVERIFY(!TraderListQuery(stores().dbBasic, "가나", 0).sql.contains("MATCH"));
        const SqlPart q = TraderListQuery(stores().dbBasic, "가나상", 0);
        QVERIFY(q.sql.contains("MATCH"));
        const QString steps = queryPlan(stores().dbBasic, q);
        QVERIFY(!steps.contains("(no plan)"));
        QVERIFY2(!steps.contains(QRegularExpression("SCAN Trader(\\s|$)")), qPrintable(steps));
    }
    void oneAndTwoCharactersUseThePiecesTableAndScanNoTrader() {
        TestHome home;
        QVERIFY(openStores());
        addMany();
        for (const QString& text : {QString("가"), QString("나상"), QString("b"), QString("0%")}) {
            const SqlPart q = TraderListQuery(stores().dbBasic, text, 0);
            QVERIFY2(q.sql.contains("Trader_search_grams"), qPrintable(q.sql));
            const QString steps = queryPlan(stores().dbBasic, q);
            QVERIFY2(!steps.contains(QRegularExpression("SCAN Trader(\\s|$)")), qPrintable(steps));
            QCOMPARE(codesOf(q), plainCodes(text));
        }
    }
    void theIndexFollowsSavesUpdatesAndDeletes() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        QVERIFY(EnsureSearchIndex(stores().dbBasic, TraderSearchIndex()));
        clsTrader t;
        t.sCode = "000001";
        t.sComp = "가나다라상사";
        t.sAddr1 = "서울 역삼동";
        t.sAddr2 = "역삼동";
        t.SaveTrader();
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "다라상", 0)), QStringList{"000001"});
        t.sComp = "마바사상회";
        t.UpdateTrader();
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "다라상", 0)), QStringList());
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "바사상", 0)), QStringList{"000001"});
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "역삼동", 0)), QStringList{"000001"});
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "다라", 0)), QStringList());
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "바", 0)), QStringList{"000001"});
        t.DeleteTrader("000001");
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "바사상", 0)), QStringList());
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "바", 0)), QStringList());
        QCOMPARE(scalar(stores().dbBasic, "SELECT count(*) FROM Trader_search_grams").toInt(), 0);
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void anIndexOutOfStepIsBuiltAgain() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나다라");
        QVERIFY(EnsureSearchIndex(stores().dbBasic, TraderSearchIndex()));
        exec(stores().dbBasic, "DROP TRIGGER Trader_search_ai");
        addTrader("000002", "가나다라마");
        QVERIFY(EnsureSearchIndex(stores().dbBasic, TraderSearchIndex()));
        QCOMPARE(scalar(stores().dbBasic, "SELECT count(*) FROM Trader_search").toInt(), 2);
        QCOMPARE(
            scalar(stores().dbBasic,
                   "SELECT count(*) FROM sqlite_master WHERE type = 'trigger' AND name LIKE 'Trader_search%'")
                .toInt(),
            3);
    }
    void aFileFromBeforeThePiecesTableGainsItAtItsFirstUse() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나다라");
        QVERIFY(EnsureSearchIndex(stores().dbBasic, TraderSearchIndex()));
        exec(stores().dbBasic, "DROP TABLE Trader_search_grams");
        QVERIFY(EnsureSearchIndex(stores().dbBasic, TraderSearchIndex()));
        QVERIFY(scalar(stores().dbBasic, "SELECT count(*) FROM Trader_search_grams").toInt() > 0);
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "다라", 0)), QStringList{"000001"});
    }
    void ensureSearchIndexesMakesWhatTheFileHolds() {
        TestHome home;
        QVERIFY(openStores());
        EnsureSearchIndexes(stores().dbBasic);
        QVERIFY(HasSearchIndex(stores().dbBasic, TraderSearchIndex()));
        QVERIFY(!HasSearchIndex(stores().dbBasic, PostSearchIndex()));
        const int before = scalar(stores().dbBasic, "SELECT count(*) FROM sqlite_master").toInt();
        EnsureSearchIndexes(stores().dbBasic);
        QCOMPARE(scalar(stores().dbBasic, "SELECT count(*) FROM sqlite_master").toInt(), before);
    }
};

NB_TEST_MAIN(TestSearchIndex)
#include "tst_search_index.moc"
