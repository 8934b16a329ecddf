// The search indexes beside Trader (trigrams, and the one- and two-character pieces): the same
// rows in the same order as the plain query, kept in step with every write, rebuilt when out of
// step, and no table scan for a text of any length.
#include "MasterFixture.h"
#include "master/SearchIndex.h"
#include "master/SearchRules.h"
#include "master/TraderRecords.h"
#include "master/clsTrader.h"
#include "storage/ServerSearchPieces.h"

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

// True when the plan reads every trader (the files' "SCAN Trader", the server's "Seq Scan on trader").
bool readsEveryTrader(const QString& steps) {
    static const QRegularExpression files(QStringLiteral("SCAN Trader(\\s|$)"));
    static const QRegularExpression server(QStringLiteral("Seq Scan on trader(\\s|$)"));
    return steps.contains(stores().dbBasic.onServer() ? server : files);
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
        for (const QString& text :
             {QString("가나상사"), QString("abc"),  QString("ABC"),   QString("가나"), QString("가"),
              QString("0%할"),     QString("A_B"),  QString("02-10"), QString("105"),  QString("1"),
              QString("상사3"),    QString("Neil"), QString("상"),    QString("역"),   QString("삼동"),
              QString("A"),        QString("%"),    QString("_"),     QString("'"),    QString("없")}) {
            QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, text, 0)), plainCodes(text));
        }
    }
    // The same rows in the same order whichever engine keeps the store: names in byte order,
    // Latin letters found in either case, a Hangul character in the name or the address's last word.
    void shortSearchesGiveTheSameRowsOnEitherEngine() {
        TestHome home;
        QVERIFY(openStores());
        addTrader("000001", "가나상사", "02-555-1234");
        addTrader("000002", "나가");
        addTrader("000003", "ABC");
        addTrader("000004", "abc가");
        addTrader("000005", "다라", QString(), "서울 은평구 가좌동");
        addTrader("000006", "마바", QString(), QString(), 1); // a purchase trader: another list
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "가", 0)),
                 (QStringList{"000004", "000001", "000002", "000005"}));
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "가나", 0)), QStringList{"000001"});
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "Ab", 0)), (QStringList{"000003", "000004"}));
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "c", 0)), (QStringList{"000003", "000004"}));
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "좌동", 0)), QStringList{"000005"});
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "55", 0)), QStringList{"000001"});
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "마", 0)), QStringList());
        QCOMPARE(codesOf(TraderListQuery(stores().dbBasic, "마", 1)), QStringList{"000006"});
    }
    // The server's pieces stand under the name and column numbers the list asks the files' by,
    // folded as the lists' comparison folds: ASCII letters only.
    void theServersPiecesAreNumberedAsTheFilesPieces() {
        QStringList columns;
        for (const QString& c : TraderSearchIndex().columns)
            columns << c.toLower();
        QCOMPARE(serverPiecesColumns("Trader"), columns);
        QCOMPARE(serverPiecesTable("Trader"), (TraderSearchIndex().index + "_grams").toLower());
        QVERIFY(serverPiecesTable("Post").isEmpty());
        QVERIFY(serverPiecesStatements("Product").isEmpty());
        QCOMPARE(piecesKey("AbZ가Éz_%"), QString("abz가Éz_%"));
    }
    void threeCharactersUseTheIndexAndShorterTextsThePlainQuery() {
        TestHome home;
        QVERIFY(openStores());
        addMany();
        QVERIFY(!UsesTrigramIndex("가나"));
        QVERIFY(UsesTrigramIndex("가나상"));
        QVERIFY(!TraderListQuery(stores().dbBasic, "가나", 0).sql.contains("MATCH"));
        const SqlPart q = TraderListQuery(stores().dbBasic, "가나상", 0);
        // The files narrow by their FTS5 table; the server's ILIKE reads its trigram index itself.
        QCOMPARE(q.sql.contains("MATCH"), !stores().dbBasic.onServer());
        const QString steps = queryPlan(stores().dbBasic, q);
        QVERIFY(!steps.contains("(no plan)"));
        QVERIFY2(!readsEveryTrader(steps), qPrintable(steps));
        if (stores().dbBasic.onServer()) QVERIFY2(steps.contains("trader_c_name_trgm"), qPrintable(steps));
    }
    void oneAndTwoCharactersUseThePiecesTableAndScanNoTrader() {
        TestHome home;
        QVERIFY(openStores());
        addMany();
        for (const QString& text : {QString("가"), QString("나상"), QString("b"), QString("0%")}) {
            const SqlPart q = TraderListQuery(stores().dbBasic, text, 0);
            QVERIFY2(q.sql.contains("Trader_search_grams", Qt::CaseInsensitive), qPrintable(q.sql));
            const QString steps = queryPlan(stores().dbBasic, q);
            QVERIFY(!steps.contains("(no plan)"));
            QVERIFY2(!readsEveryTrader(steps), qPrintable(steps));
            QVERIFY2(
                steps.contains(stores().dbBasic.onServer() ? "trader_search_grams" : "Trader_search_grams"),
                qPrintable(steps));
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
    // A trigger gone (the files': one of the three; the server's: its one) leaves rows out of the
    // index: the next check builds it again from the table.
    void anIndexOutOfStepIsBuiltAgain() {
        TestHome home;
        QVERIFY(openStores());
        Database& db = stores().dbBasic;
        addTrader("000001", "가나다라");
        QVERIFY(EnsureSearchIndex(db, TraderSearchIndex()));
        QVERIFY(db.tryExecute(db.onServer() ? "DROP TRIGGER trader_search_grams_keep ON trader"
                                            : "DROP TRIGGER Trader_search_ai"));
        addTrader("000002", "가나다라마");
        QCOMPARE(codesOf(TraderListQuery(db, "마", 0)), QStringList());
        QVERIFY(EnsureSearchIndex(db, TraderSearchIndex()));
        QCOMPARE(codesOf(TraderListQuery(db, "마", 0)), QStringList{"000002"});
        QCOMPARE(codesOf(TraderListQuery(db, "다라마", 0)), QStringList{"000002"});
        if (db.onServer()) {
            QVERIFY(db.hasTrigger("trader_search_grams_keep"));
        } else {
            QCOMPARE(scalar(db, "SELECT count(*) FROM Trader_search").toInt(), 2);
            QCOMPARE(scalar(db, "SELECT count(*) FROM sqlite_master WHERE type = 'trigger' AND name LIKE "
                                "'Trader_search%'")
                         .toInt(),
                     3);
        }
        addTrader("000003", "마바");
        QCOMPARE(codesOf(TraderListQuery(db, "마", 0)), (QStringList{"000002", "000003"}));
    }
    void aFileFromBeforeThePiecesTableGainsItAtItsFirstUse() {
        TestHome home;
        QVERIFY(openStores());
        Database& db = stores().dbBasic;
        addTrader("000001", "가나다라");
        QVERIFY(EnsureSearchIndex(db, TraderSearchIndex()));
        QVERIFY(db.tryExecute("DROP TABLE Trader_search_grams"));
        QVERIFY(EnsureSearchIndex(db, TraderSearchIndex()));
        QVERIFY(scalar(db, "SELECT count(*) FROM Trader_search_grams").toInt() > 0);
        QCOMPARE(codesOf(TraderListQuery(db, "다라", 0)), QStringList{"000001"});
    }
    // A store laid down before the pieces were (on the server: made by an earlier version): the
    // first short search makes and fills them, and from then on they follow the saves.
    void aStoreWithoutPiecesGainsThemAtTheFirstShortSearch() {
        TestHome home;
        QVERIFY(openStores());
        Database& db = stores().dbBasic;
        addTrader("000001", "가나다라");
        addTrader("000002", "Abc상회");
        if (db.onServer()) {
            DropSearchIndex(db, TraderSearchIndex());
            QVERIFY(!HasSearchIndex(db, TraderSearchIndex()));
            QVERIFY(!db.hasTrigger("trader_search_grams_keep"));
        }
        QCOMPARE(codesOf(TraderListQuery(db, "b", 0)), QStringList{"000002"});
        QVERIFY(HasSearchIndex(db, TraderSearchIndex()));
        QCOMPARE(scalar(db, "SELECT count(*) FROM Trader_search_grams WHERE gram = 'ab' AND col = 0").toInt(),
                 1);
        addTrader("000003", "ABBA");
        QCOMPARE(codesOf(TraderListQuery(db, "AB", 0)), (QStringList{"000003", "000002"}));
    }
    // A search kept prepared binds its new text and steps: the engine never throws its plan away
    // and prepares it again because of the pattern bound.
    void aKeptTraderSearchRunAgainWithAnotherTextIsNeverPreparedAgain() {
        TestHome home;
        QVERIFY(openStores());
        addMany();
        Database& db = stores().dbBasic;
        const SqlPart first = TraderListQuery(db, "가나", 0);
        const SqlPart second = TraderListQuery(db, "역삼", 0);
        QCOMPARE(second.sql, first.sql);
        QCOMPARE(codesOf(first), plainCodes("가나"));
        QCOMPARE(codesOf(second), plainCodes("역삼"));
        QVERIFY(!codesOf(second).isEmpty());
        if (db.onServer()) { // the server's statements are kept by the server's own driver
            QVERIFY(!KeptStatements().run(db.connection(), first.sql, first.values));
            return;
        }
        QVERIFY(runsKeptWithoutPreparingAgain(db.connection(), {first, second, first, second}));
    }
    void ensureSearchIndexesMakesWhatTheFileHolds() {
        TestHome home;
        QVERIFY(openStores());
        Database& db = stores().dbBasic;
        EnsureSearchIndexes(db);
        QVERIFY(HasSearchIndex(db, TraderSearchIndex()));
        QVERIFY(!HasSearchIndex(db, PostSearchIndex()));
        const QString objects =
            db.onServer()
                ? "SELECT (SELECT count(*) FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON "
                  "n.oid = c.relnamespace WHERE n.nspname = 'basic') + (SELECT count(*) FROM "
                  "pg_catalog.pg_trigger)"
                : "SELECT count(*) FROM sqlite_master";
        const int before = scalar(db, objects).toInt();
        EnsureSearchIndexes(db);
        QCOMPARE(scalar(db, objects).toInt(), before);
    }
};

NB_TEST_MAIN(TestSearchIndex)
#include "tst_search_index.moc"
