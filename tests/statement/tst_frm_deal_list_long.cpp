// FrmDealList with a statement list longer than a page: the list opens on its empty row after
// the last statement, the keys and the mouse reach and choose its last statement, and the sums
// under it are the statements' own, following a deleted statement; the list read through the
// engine's own interface holds the values the query gives through Qt's SQL layer.
#include "DealListKit.h"
#include "StatementListQuery.h"
#include "common/dates/DateCells.h"
#include "common/grid/SqliteRows.h"
#include "management/ExportGrid.h"
#include "storage/CrossFileQueries.h"

#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>

using namespace nb;

namespace {

using Screen = test::DealScreen;
constexpr int kStatements = 700;

QString billNo(int i) {
    return QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
}

// kStatements statements over the first ten days of May 2024 (the screen's default range),
// alternating between the two traders; statement i has i % 3 + 1 lines of 1,000 + 100 VAT each.
void addLongList(double& count, double& total) {
    count = total = 0;
    QSqlDatabase db = stores().dbBill.connection();
    db.transaction();
    for (int i = 1; i <= kStatements; ++i) {
        QList<std::tuple<QString, double, double, double, double>> lines;
        for (int l = 0; l < i % 3 + 1; ++l)
            lines.append({QStringLiteral("품목%1").arg(l), 1, 1100, 1000, 100});
        const QString date =
            QStringLiteral("2024-05-%1").arg((i - 1) * 10 / kStatements + 1, 2, 10, QChar(u'0'));
        QVERIFY(test::addDealStatement(billNo(i), date,
                                       i % 2 ? QStringLiteral("000001") : QStringLiteral("000002"), lines));
        count += lines.size();
        total += 1100.0 * lines.size();
    }
    db.commit();
}

int visibleRows(Grid& grid) {
    return grid.viewport()->height() / grid.rowHeightPixels();
}

} // namespace

class TestFrmDealListLong : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aLongListOpensOnTheEmptyRowAfterItsLastStatement() {
        Screen s;
        test::script();
        double count = 0, total = 0;
        addLongList(count, total);
        FrmDealList& f = s.open();
        QVERIFY(kStatements > 5 * visibleRows(*f.spMaster));
        QCOMPARE(f.spMaster->MaxRows(), kStatements + 1);
        QCOMPARE(f.spMaster->ActiveRow(), kStatements + 1);
        QCOMPARE(f.spMaster->Text(ColMasterBillNo, kStatements), billNo(kStatements));
        QApplication::processEvents();
        const QRect emptyRow = f.spMaster->visualRect(f.spMaster->model()->index(kStatements, 0));
        QVERIFY(f.spMaster->viewport()->rect().contains(emptyRow.center()));
        QVERIFY(f.SelectedBillNo().isEmpty());
    }

    void pageUpToTheTopAndPageDownToTheEndChooseTheFirstAndTheLastStatement() {
        Screen s;
        test::script();
        double count = 0, total = 0;
        addLongList(count, total);
        FrmDealList& f = s.open();
        f.spMaster->setFocus();
        for (int i = 0; i < 200 && f.spMaster->ActiveRow() > 1; ++i)
            test::pressKey(f.spMaster, Qt::Key_PageUp);
        QCOMPARE(f.spMaster->ActiveRow(), 1);
        QCOMPARE(f.SelectedBillNo(), billNo(1));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000001"));
        for (int i = 0; i < 200 && f.spMaster->ActiveRow() < kStatements; ++i)
            test::pressKey(f.spMaster, Qt::Key_PageDown);
        QVERIFY(f.spMaster->ActiveRow() >= kStatements);
        if (f.spMaster->ActiveRow() > kStatements) test::pressKey(f.spMaster, Qt::Key_Up);
        QCOMPARE(f.spMaster->ActiveRow(), kStatements);
        QCOMPARE(f.SelectedBillNo(), billNo(kStatements));
        QCOMPARE(f.txtCCode->text(), QStringLiteral("000002"));
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("품목0"));
        QCOMPARE(f.gong->text(), QStringLiteral("2,000")); // 700 % 3 + 1 lines
    }

    void clickingTheLastStatementChoosesIt() {
        Screen s;
        test::script();
        double count = 0, total = 0;
        addLongList(count, total);
        FrmDealList& f = s.open();
        f.spMaster->SetActiveCell(ColBillDate, 1); // to the top, then scrolled back by the bar
        QScrollBar* bar = f.spMaster->verticalScrollBar();
        bar->setValue(bar->maximum());
        QApplication::processEvents();
        const QRect last = f.spMaster->visualRect(f.spMaster->model()->index(kStatements - 1, 1));
        QVERIFY(f.spMaster->viewport()->rect().contains(last.center()));
        QTest::mouseClick(f.spMaster->viewport(), Qt::LeftButton, {}, last.center());
        QCOMPARE(f.spMaster->ActiveRow(), kStatements);
        QCOMPARE(f.SelectedBillNo(), billNo(kStatements));
        QCOMPARE(f.CName2->text(), QStringLiteral("다라상회"));
        QCOMPARE(f.sum->text(), QStringLiteral("2,200"));
    }

    void theSumsUnderALongListAreItsStatementsAndFollowADeletedOne() {
        Screen s;
        auto& msgs = test::script();
        double count = 0, total = 0;
        addLongList(count, total);
        FrmDealList& f = s.open();
        QCOMPARE(f.spTotal->Value(ColNumBill, 1), count);
        QCOMPARE(f.spTotal->Value(ColTotal, 1), total);
        QCOMPARE(f.spTotal->Text(ColTotal, 1), QStringLiteral("1,540,000"));
        f.spMaster->setFocus();
        f.spMaster->SetActiveCell(ColBillDate, kStatements);
        msgs.answer(AnsYes);
        test::pressKey(f.spMaster, Qt::Key_F4);
        QCOMPARE(test::masterRows(), kStatements - 1);
        QCOMPARE(f.spMaster->MaxRows(), kStatements);
        QCOMPARE(f.spTotal->Value(ColNumBill, 1), count - 2);
        QCOMPARE(f.spTotal->Value(ColTotal, 1), total - 2200);
        QCOMPARE(f.spMaster->Text(ColMasterBillNo, kStatements - 1), billNo(kStatements - 1));
    }

    void theListHoldsTheQueryValuesItsSumsChoiceAndExportFollowThem() {
        Screen s;
        test::script();
        double count = 0, total = 0;
        addLongList(count, total);
        // A trader that is gone (no name) and amounts with a fraction of a won.
        QVERIFY(test::addDealStatement(billNo(kStatements + 1), QStringLiteral("2024-05-04"),
                                       QStringLiteral("999999"),
                                       {{QStringLiteral("반제품"), 1.5, 700.25, 1050.375, 105.0375}}));
        FrmDealList& f = s.open();
        // A store file is stepped through the engine's own interface; the server's rows come whole.
        QCOMPARE(SqliteRows::canStep(stores().dbBill.connection()), !stores().dbBill.onServer());
        const QList<QVariantList> expected =
            test::statementListThroughQt(DateCellText(f.spDate[0]), DateCellText(f.spDate[1]));
        QCOMPARE(expected.size(), kStatements + 1);
        QCOMPARE(f.spMaster->MaxRows(), kStatements + 2);
        double sumCount = 0, sumTotal = 0;
        int goneRow = 0;
        for (int r = 1; r <= expected.size(); ++r) {
            for (int c = ColBillDate; c <= ColCCode; ++c) {
                const QVariant shown = f.spMaster->ListValue(c, r);
                const QVariant& want = expected[r - 1][c - 1];
                QVERIFY2(shown.typeId() == want.typeId() && shown.isNull() == want.isNull() && shown == want,
                         qPrintable(QStringLiteral("row %1 column %2").arg(r).arg(c)));
            }
            sumCount += expected[r - 1][ColNumBill - 1].toDouble();
            sumTotal += expected[r - 1][ColTotal - 1].toDouble();
            if (expected[r - 1][ColMasterBillNo - 1].toString() == billNo(kStatements + 1)) goneRow = r;
        }
        QVERIFY(goneRow > 0);
        QCOMPARE(f.spMaster->Text(ColCName, goneRow), QString());
        QCOMPARE(f.spMaster->Text(ColTotal, goneRow), QStringLiteral("1,155"));
        QCOMPARE(f.spTotal->Value(ColNumBill, 1), sumCount);
        QCOMPARE(f.spMaster->cells().columnTotal(ColTotal), sumTotal);
        QCOMPARE(f.spTotal->Text(ColTotal, 1), QStringLiteral("1,541,155"));
        QCOMPARE(sumCount, count + 1);
        // The chosen row: the statement of the gone trader and one deep in the list.
        f.spMaster->SetActiveCell(ColBillDate, goneRow);
        QCOMPARE(f.SelectedBillNo(), billNo(kStatements + 1));
        QCOMPARE(f.spDetail->Text(ColPName, 1), QStringLiteral("반제품"));
        f.spMaster->SetActiveCell(ColBillDate, 450);
        QCOMPARE(f.SelectedBillNo(), expected[449][ColMasterBillNo - 1].toString());
        QCOMPARE(f.txtCCode->text(), expected[449][ColCCode - 1].toString());
        // What an export of the list writes: every statement, numbers as numbers.
        const SheetContent sheet =
            sheetContentOf(*f.spMaster, {1, 2, 3, 4, 5, 6}, {}, QStringLiteral("목록"));
        QCOMPARE(sheet.rows.size(), expected.size());
        for (int r = 0; r < sheet.rows.size(); ++r) {
            QCOMPARE(sheet.rows[r][0].toString(), expected[r][0].toString());
            QCOMPARE(sheet.rows[r][1].toString(), expected[r][1].toString());
            QCOMPARE(sheet.rows[r][2].toDouble(), expected[r][2].toDouble());
            QCOMPARE(sheet.rows[r][3].toDouble(), expected[r][3].toDouble());
            QCOMPARE(sheet.rows[r][4].toString(), expected[r][4].toString());
        }
    }
};

NB_TEST_MAIN(TestFrmDealListLong)
#include "tst_frm_deal_list_long.moc"
