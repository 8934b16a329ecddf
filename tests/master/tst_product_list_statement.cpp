// The product list read from its one statement a page at a time: for a list of many pages the
// rows, their order, the answer, the chosen row and what an export reads are those of the two
// searches the list ran before (names that begin with the text, then those that contain it,
// merged with none twice), worked out here on their own as the yardstick.
#include "MasterFixture.h"
#include "common/grid/SqliteRows.h"
#include "common/text/Identity.h"
#include "common/text/NumberFormat.h"
#include "management/ExportGrid.h"
#include "master/FrmProductList.h"
#include "master/ProductRecords.h"
#include "master/SearchRules.h"

#include <QLineEdit>
#include <QSet>
#include <QSqlQuery>

using namespace nb;
using namespace nb::test;

namespace {

constexpr int kProducts = 900; // several pages of the list

QString code(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
}

// Names that begin with "볼", hold it inside, or neither; codes with the digits searched; some
// norms empty or missing, some products tax-free, prices whole, with a fraction or zero; a few
// names twice, so that the code decides their order.
void addManyProducts() {
    const QStringList names = {"볼트",  "육각볼트", "너트",   "볼",     "A형 와셔",
                               "z클립", "가볼트",   "앵글_1", "파이프%"};
    stores().dbBasic.beginTransaction();
    for (int i = 1; i <= kProducts; ++i) {
        const QString name = names[i % names.size()] + (i % 17 == 0 ? QString() : QString::number(i % 250));
        const QVariant norm =
            i % 5 == 0 ? QVariant() : QVariant(i % 3 ? QStringLiteral("M%1").arg(i % 12) : "");
        const QVariant tax = i % 7 == 0 ? QVariant(0) : (i % 11 == 0 ? QVariant() : QVariant(1));
        exec(stores().dbBasic,
             QStringLiteral("INSERT INTO Product (Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo, PTax) "
                            "VALUES (?, ?, ?, ?, ?, ?, '', ?)"),
             {code(kProducts + 1 - i), name, norm, 100.0 * (i % 40), i % 9 ? 1234.5 * (i % 13) : 0.0,
              i % 4 ? QStringLiteral("EA") : QString(), tax});
    }
    stores().dbBasic.commit();
}

// The two searches as the list ran them, each by name and code, and their merge.
struct TwoSearches {
    QVector<QStringList> rows;
    int prefixCount = 0;
    int containsCount = 0;
};

QVector<QStringList> searchRows(const QString& pattern, const QString& text, int kind, int& count) {
    QString sql = QStringLiteral("SELECT PName, PNorm, PTax, BuyPrice, SalePrice, Code, Unit FROM Product "
                                 "WHERE PName LIKE ? ESCAPE '\\'");
    QVariantList values{pattern};
    if (ProductSearchesCode(text)) {
        sql += QStringLiteral(" OR Code LIKE ? ESCAPE '\\'");
        values << LikeContains(text);
    }
    Recordset rs;
    [&] { QVERIFY(OpenSnapshot(stores().dbBasic, rs, sql + " ORDER BY PName, Code", values)); }();
    count = rs.RecordCount();
    QVector<QStringList> rows;
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        const QVariant tax = rs.field(2);
        QString price;
        if (kind == 0) price = ListPriceText(rs.field(3).toDouble());
        if (kind == 1 || kind == 3) price = ListPriceText(rs.field(4).toDouble());
        rows.push_back({NameWithNorm(rs.text("PName"), rs.field(1)), rs.text("Unit"),
                        QString(!tax.isNull() && tax.toDouble() == 0 ? "면세" : "과세"), price, QString(),
                        rs.text("Code"), QString()});
    }
    return rows;
}

TwoSearches twoSearches(const QString& text, int kind) {
    TwoSearches out;
    out.rows = searchRows(LikePrefix(text), text, kind, out.prefixCount);
    const QVector<QStringList> inside = searchRows(LikeContains(text), text, kind, out.containsCount);
    QSet<QString> shown;
    for (const QStringList& row : out.rows)
        shown.insert(row.value(5));
    for (const QStringList& row : inside)
        if (!shown.contains(row.value(5))) out.rows << row;
    return out;
}

QVector<QStringList> listRows(FrmProductList& list, int upTo = -1) {
    QVector<QStringList> rows;
    const int count = upTo < 0 ? list.model()->rowCount() : upTo;
    for (int r = 0; r < count; ++r) {
        QStringList row;
        for (int c = 0; c < 7; ++c)
            row << list.model()->text(r, c);
        rows << row;
    }
    return rows;
}

} // namespace

class TestProductListStatement : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theListsRowsOrderAndAnswerAreThoseOfTheTwoSearchesForEveryText() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyProducts();
        // A store file is stepped through the engine's own interface; the server's rows come whole.
        QCOMPARE(SqliteRows::canStep(stores().dbBasic.connection()), !stores().dbBasic.onServer());
        const QStringList texts = {"볼", "볼트", "트",    "1",        "12", "A", "a",
                                   "z",  "",     "볼트1", "없는상품", "_",  "%", "00090"};
        for (const QString& text : texts) {
            for (int kind : {0, 1, 2, 4}) {
                const TwoSearches expected = twoSearches(text, kind);
                FrmProductList list;
                QLineEdit target;
                list.SetObject(&target);
                int result = -1;
                list.InitForm(kind, text, result);
                list.model()->finishFilling();
                QCOMPARE(listRows(list), expected.rows);
                QCOMPARE(result, ProductListResult(expected.prefixCount, expected.containsCount));
                QCOMPARE(target.text(), result == 1 ? expected.rows.value(0).value(5) : QString());
                if (!expected.rows.isEmpty()) QCOMPARE(list.activeRow(), 0);
            }
        }
    }

    void theFirstPageShowsAtOnceAndTheRestFollowsBetweenEvents() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyProducts();
        const TwoSearches expected = twoSearches(QString(), 1);
        QCOMPARE(expected.rows.size(), kProducts);
        FrmProductList list;
        int result = 0;
        list.InitForm(1, QString(), result);
        QCOMPARE(result, 2);
        QVERIFY(list.model()->isFilling());
        const int firstPage = list.model()->rowCount();
        QVERIFY(firstPage >= GridModel::kFirstPage && firstPage < kProducts);
        QCOMPARE(listRows(list, firstPage), expected.rows.mid(0, firstPage));
        for (int i = 0; i < 100 && list.model()->isFilling(); ++i)
            QApplication::processEvents();
        QVERIFY(!list.model()->isFilling());
        QCOMPARE(listRows(list), expected.rows);
    }

    void ctrlEndChoosesTheLastProductOfALongList() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyProducts();
        const TwoSearches expected = twoSearches(QStringLiteral("1"), 0);
        QVERIFY(expected.rows.size() > GridModel::kFirstPage);
        FrmProductList list;
        QLineEdit target;
        list.SetObject(&target);
        int result = 0;
        list.InitForm(0, QStringLiteral("1"), result);
        QCOMPARE(result, 2);
        list.show();
        list.grdList()->setFocus();
        QTest::keyClick(list.grdList(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(list.activeRow(), int(expected.rows.size()) - 1);
        QCOMPARE(list.activeText(4), expected.rows.last().value(3));
        QTest::keyClick(list.grdList(), Qt::Key_Return);
        QCOMPARE(target.text(), expected.rows.last().value(5));
    }

    void anExportOfTheListReadsEveryRowAsTheTwoSearchesGaveThem() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyProducts();
        const TwoSearches expected = twoSearches(QStringLiteral("볼"), 1);
        FrmProductList list;
        int result = 0;
        list.InitForm(1, QStringLiteral("볼"), result);
        QVERIFY(list.model()->isFilling());
        const SheetContent sheet = sheetContentOf(*list.grdList(), {1, 2, 3, 4, 5, 6, 7}, {}, "상품");
        QCOMPARE(sheet.rows.size(), expected.rows.size());
        for (int r = 0; r < sheet.rows.size(); ++r)
            for (int c : {0, 1, 2, 5})
                QCOMPARE(sheet.rows[r][c].toString(), expected.rows[r][c]);
    }

    // Another engine's rows come through Qt's SQL layer: the list makes the same rows of them.
    void theRowsThroughQtsLayerAreTheRowsSteppedDirectly() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addManyProducts();
        for (const QString& text : {QStringLiteral("볼"), QStringLiteral("1"), QString()}) {
            for (int kind : {0, 1, 4}) {
                const SqlPart query = ProductListQuery(text);
                auto viaQt = std::make_unique<QSqlQuery>(stores().dbBasic.connection());
                QVERIFY(OpenForwardOnly(stores().dbBasic, *viaQt, query.sql, query.values));
                auto qtCount = std::make_shared<ProductListCount>();
                ProductListRows throughQt(std::make_unique<QueryRows>(std::move(viaQt)), kind, qtCount);
                auto count = std::make_shared<ProductListCount>();
                std::unique_ptr<GridRowSource> stepped = OpenProductList(stores().dbBasic, text, kind, count);
                QVERIFY(stepped);
                QVariant a[7], b[7];
                int rows = 0;
                for (;;) {
                    const bool more = throughQt.next(a, 7);
                    QCOMPARE(stepped->next(b, 7), more);
                    if (!more) break;
                    ++rows;
                    for (int c = 0; c < 7; ++c) {
                        QCOMPARE(a[c].isNull(), b[c].isNull());
                        QCOMPARE(a[c].toString(), b[c].toString());
                    }
                }
                QCOMPARE(rows, twoSearches(text, kind).rows.size());
                QCOMPARE(qtCount->rows, count->rows);
                QCOMPARE(qtCount->first, count->first);
            }
        }
    }

    // The list writes whole prices itself, the common case: as the amount mask writes them.
    void aWholePriceIsWrittenAsTheAmountMaskWritesIt() {
        QCOMPARE(ListPriceText(1234567), QStringLiteral("1,234,567"));
        QCOMPARE(ListPriceText(100), QStringLiteral("100"));
        QCOMPARE(ListPriceText(0), QStringLiteral("0"));
        QCOMPARE(ListPriceText(1234.5), QStringLiteral("1,234.5"));
        QList<double> prices;
        for (double p = 1; p < 1e13; p = p * 10 + 7)
            prices << p << p - 1 << p + 1 << std::floor(p / 3);
        for (int p = 1; p <= 30000; p += 7)
            prices << p;
        prices << 999999999999.0 << 1e12 << 1e12 + 1 << -1 << -1234567;
        for (double p : prices) {
            if (p == 0) continue;
            QCOMPARE(ListPriceText(p), FormatNumber(p, kMaskAmount));
        }
    }

    // Names are merged as they begin with the text, not by their codes: an old book's two
    // products under one code are both shown.
    void twoProductsUnderOneCodeFromAnOldBookAreBothListed() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addProduct("000007", "볼트");
        addProduct("000007", "육각볼트");
        FrmProductList list;
        int result = 0;
        list.InitForm(1, QStringLiteral("볼트"), result);
        QCOMPARE(list.model()->rowCount(), 2);
        QCOMPARE(list.model()->text(0, 0), QStringLiteral("볼트"));
        QCOMPARE(list.model()->text(1, 0), QStringLiteral("육각볼트"));
        QCOMPARE(result, 2);
    }

    void aStatementTheEngineRefusesShowsItsBoxAndAnEmptyList() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addProduct("000001", "볼트");
        QVERIFY(stores().dbBasic.tryExecute(
            QStringLiteral("ALTER TABLE Product RENAME COLUMN PTax TO PTaxGone")));
        FrmProductList list;
        QLineEdit target;
        list.SetObject(&target);
        int result = -1;
        list.InitForm(1, QStringLiteral("볼"), result);
        QCOMPARE(result, 0);
        QCOMPARE(list.model()->rowCount(), 0);
        QCOMPARE(target.text(), QString());
        // The engine's "no such column" is the query box of a statement not understood.
        const SqlPart query = ProductListQuery(QStringLiteral("볼"));
        QCOMPARE(msgs.last().title, QStringLiteral("Query"));
        QCOMPARE(msgs.last().text, QStringLiteral("Jet Data Base Engine의 식을 확인하세요.\r") +
                                       sqlForDisplay(query.sql, query.values));
    }
};

NB_TEST_MAIN(TestProductListStatement)
#include "tst_product_list_statement.moc"
