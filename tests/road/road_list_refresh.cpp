// Two running copies on one folder, in a real window: while the operator is in another program,
// the other copy saves a statement and deletes the one this copy's statement screen stands on.
// Coming back, the screen's list is read afresh: the statement typed next is a new one, numbered
// after the other copy's, and nothing is written under the number that is gone.
#include "RoadSteps.h"

#include <QTest>

using namespace road;

namespace {

const QRegularExpression kProductList(QStringLiteral("상품명 검색"));

void typeAndEnter(const RoadDesk& desk, const QString& text) {
    desk.type(text);
    desk.key(QStringLiteral("Return"));
}

// 볼트 typed into the product cell, chosen in its list, the quantity typed over the 1.
void typeALine(const RoadDesk& desk, const QString& quantity) {
    typeAndEnter(desk, QStringLiteral("볼트"));
    QVERIFY2(desk.waitActive(kProductList), seen(desk));
    desk.key(QStringLiteral("alt+s"));
    QVERIFY2(desk.waitActive(mainWindowName()), seen(desk));
    typeAndEnter(desk, quantity);
}

QStringList statements(const RoadDesk& desk) {
    return desk.rows(
        QStringLiteral("dbBill.db"),
        QStringLiteral("SELECT m.BillNo, m.NumBill, d.PName, d.Quant FROM Master m LEFT JOIN Detail d "
                       "ON d.BillNo = m.BillNo ORDER BY m.BillNo, d.BillSEQ"));
}

} // namespace

class RoadListRefresh : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theOtherCopysSavesShowWhenTheOperatorComesBack() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), qPrintable(desk.why()));
        QVERIFY(seedParties(desk));
        const QString mainId = desk.activeWindowId();
        desk.keys({QStringLiteral("alt"), QStringLiteral("Right"), QStringLiteral("m")}); // 출력 → 거래명세표
        desk.settle(1500);
        typeAndEnter(desk, QStringLiteral("다라")); // the one trader it matches
        typeALine(desk, QStringLiteral("3"));
        if (QTest::currentTestFailed()) return;
        QTRY_COMPARE_WITH_TIMEOUT(statements(desk), QStringList{QStringLiteral("000001|1|볼트(M10)|3.0")},
                                  5000);

        // The operator goes to another program; meanwhile the other copy saves statement 000002
        // and deletes 000001, the one this screen stands on.
        QVERIFY(desk.startOther(QStringLiteral("xcalc")));
        const QString calculator = desk.waitWindow(QRegularExpression(QStringLiteral("^Calculator$")));
        QVERIFY(!calculator.isEmpty());
        QVERIFY2(desk.activate(calculator), seen(desk));
        desk.settle(300);
        QVERIFY(desk.exec(
            QStringLiteral("dbBill.db"),
            QStringLiteral("BEGIN; INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                           "SELECT '000002', BillDate, CCode, 1000, 100, 1 FROM Master WHERE BillNo = "
                           "'000001'; INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, "
                           "Amount, VAT) VALUES ('000002', 1, '너트', '개', 1, 1100, 0, 1000, 100); "
                           "DELETE FROM Detail WHERE BillNo = '000001'; DELETE FROM Master WHERE BillNo = "
                           "'000001'; COMMIT;")));
        QVERIFY(desk.activate(mainId));
        desk.settle(1000);

        // Back in the program the list was read afresh: the screen stands on a new statement of the
        // same trader, and the line typed now makes it.
        typeALine(desk, QStringLiteral("2"));
        if (QTest::currentTestFailed()) return;
        QTRY_COMPARE_WITH_TIMEOUT(
            statements(desk),
            (QStringList{QStringLiteral("000002|1|너트|1.0"), QStringLiteral("000003|1|볼트(M10)|2.0")}),
            5000);
        QVERIFY2(desk.programRunning(), seen(desk));
    }
};

QTEST_GUILESS_MAIN(RoadListRefresh)
#include "road_list_refresh.moc"
