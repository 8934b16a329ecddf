// The grid's row headers: their width is the grid's own, so a new list does not have them
// measure its row numbers.
#include "TestSupport.h"
#include "common/grid/Grid.h"

#include <QHeaderView>

using namespace nb;

namespace {

QVector<QVariantList> numberedRows(int count) {
    QVector<QVariantList> rows;
    for (int i = 1; i <= count; ++i)
        rows << QVariantList{QStringLiteral("행 %1").arg(i)};
    return rows;
}

} // namespace

class TestGridRowHeaders : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aLongListKeepsTheRowHeadersWidthWithoutMeasuringTheirNumbers() {
        QWidget window;
        Grid grid(&window);
        grid.setGeometry(0, 0, 300, 200);
        grid.setMaxCols(1);
        grid.setRowHeadersShow(true);
        window.show();
        const int width = grid.verticalHeader()->width();
        QVERIFY(width > 0);
        grid.showList(std::make_unique<RowsInMemory>(numberedRows(100000), 1), 100000);
        grid.SetActiveCell(1, 100000);
        QCoreApplication::processEvents();
        QCOMPARE(grid.verticalHeader()->width(), width);
        // A header that measured its sections would want the width of "100000" and its margins.
        QCOMPARE(grid.verticalHeader()->sizeHint().width(), width);
        QVERIFY(grid.verticalHeader()->isVisible());
    }
};

QTEST_MAIN(TestGridRowHeaders)
#include "tst_grid_row_headers.moc"
