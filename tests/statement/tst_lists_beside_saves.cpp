// A list read a page at a time keeps its rows while saves run on the same store, and a list
// read with "*" over a join shows the store's own fields, on both engines.
#include "InvoiceFixture.h"
#include "common/grid/GridRows.h"
#include "master/ProductRecords.h"
#include "storage/CrossFileQueries.h"
#include "storage/Database.h"

#include <QSqlQuery>

using namespace nb;

namespace {

constexpr int kTraders = 600;

void addTraders() {
    for (int i = 0; i < kTraders; ++i)
        QVERIFY(
            test::addTraderRow(QStringLiteral("%1").arg(i + 1, 6, 10, QChar(u'0')),
                               {QStringLiteral("123-45-%1").arg(i, 5, 10, QChar(u'0')),
                                QStringLiteral("상사%1").arg(i, 4, 10, QChar(u'0')), QStringLiteral("홍길동"),
                                QString(), QString(), QString(), QString(), QString()}));
}

// Reads up to `rows` rows from the source; how many came.
int readRows(GridRowSource& source, int rows, QStringList* firsts = nullptr) {
    QVariant values[2];
    int read = 0;
    while (read < rows && source.next(values, 2)) {
        if (firsts) *firsts << values[0].toString();
        ++read;
    }
    return read;
}

} // namespace

class TestListsBesideSaves : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aListReadAsItIsSeenKeepsItsRowsWhileAProductIsSaved() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addTraders();
        test::script();
        auto query = std::make_unique<QSqlQuery>(stores().dbBasic.connection());
        QVERIFY(OpenForwardOnly(stores().dbBasic, *query,
                                QStringLiteral("SELECT Code, C_Name FROM Trader ORDER BY Code")));
        QueryRows rows(std::move(query));
        QStringList codes;
        QCOMPARE(readRows(rows, 100, &codes), 100);
        // The operator saves a new product while the list is open on the same store.
        QString code;
        QCOMPARE(SaveProduct({QStringLiteral("볼트"), QString(), QStringLiteral("100"), QStringLiteral("200"),
                              QString(), QStringLiteral("EA")},
                             code, 0),
                 ProductSave::Inserted);
        QCOMPARE(readRows(rows, kTraders, &codes), kTraders - 100);
        QCOMPARE(codes.size(), kTraders);
        QCOMPARE(codes.last(), QStringLiteral("000600"));
        QCOMPARE(codes.at(100), QStringLiteral("000101"));
    }
    void theStatementListsJoinBringsTheStoresFieldsOnly() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(test::addStatement(QStringLiteral("000001"), QStringLiteral("2024-05-10"),
                                   QStringLiteral("000001"), {{QStringLiteral("볼트"), 1000, 100}}));
        Recordset rs;
        QVERIFY(OpenStatementList(rs, QStringLiteral("2024-01-01"), QStringLiteral("2024-12-31")));
        QStringList expected = stores().dbBill.columns(QStringLiteral("Master"));
        expected << QStringLiteral("C_Name");
        QStringList fields;
        for (int i = 0; i < rs.fieldCount(); ++i)
            fields << rs.fieldName(i).toLower();
        for (QString& name : expected)
            name = name.toLower();
        QCOMPARE(fields, expected);
        QCOMPARE(rs.RecordCount(), 1);
        QCOMPARE(rs.text(QStringLiteral("BillNo")), QStringLiteral("000001"));
    }
};

NB_TEST_MAIN(TestListsBesideSaves)
#include "tst_lists_beside_saves.moc"
