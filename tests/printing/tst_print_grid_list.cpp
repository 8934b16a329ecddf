// A list printed as a table while its rows are still being read: every row is on paper.
#include "TestSupport.h"
#include "common/grid/Grid.h"
#include "printing/GridPrint.h"
#include "printing/PrinterSetup.h"

using namespace nb;

class TestPrintGridList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aListLongerThanAPageStillBeingReadPrintsEveryRow() {
        test::TestHome home;
        test::script();
        PrintCapture capture;
        Grid grid;
        grid.setMaxCols(2);
        grid.SetText(1, 0, QStringLiteral("코드"));
        grid.SetText(2, 0, QStringLiteral("상호"));
        QVector<QVariantList> rows;
        for (int i = 1; i <= 1500; ++i)
            rows << QVariantList{QStringLiteral("%1").arg(i, 6, 10, QChar(u'0')),
                                 QStringLiteral("상회%1").arg(i)};
        grid.showList(std::make_unique<RowsInMemory>(rows));
        QVERIFY(grid.isReading());
        PrintGridList(grid, QStringLiteral("거래처 목록"));
        QVERIFY(capture.last().find(QStringLiteral("상회1")));
        QVERIFY(capture.last().find(QStringLiteral("001500")));
        QVERIFY(capture.last().find(QStringLiteral("상회1500")));
        QVERIFY(!grid.isReading());
    }
};

NB_TEST_MAIN(TestPrintGridList)
#include "tst_print_grid_list.moc"
