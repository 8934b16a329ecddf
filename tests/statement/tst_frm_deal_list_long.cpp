// FrmDealList with a statement list longer than a page: the list opens on its empty row after
// the last statement, the keys and the mouse reach and choose its last statement, and the sums
// under it are the statements' own, following a deleted statement.
#include "DealListKit.h"

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
};

NB_TEST_MAIN(TestFrmDealListLong)
#include "tst_frm_deal_list_long.moc"
