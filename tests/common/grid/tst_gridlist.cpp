// The grid's list mode: a query's rows read a page at a time, values formatted when shown,
// sums taken from the query and kept as the program writes, the operator's keys and clicks.
#include "TestSupport.h"
#include "common/grid/MduSpread.h"

#include <QApplication>
#include <QDialog>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace nb;

namespace {

// Rows of a statement list: date, name, count, total, number.
QVector<QVariantList> statementRows(int count) {
    QVector<QVariantList> rows;
    rows.reserve(count);
    for (int i = 1; i <= count; ++i)
        rows << QVariantList{QStringLiteral("2024-01-%1").arg(i % 28 + 1, 2, 10, QChar(u'0')),
                             QStringLiteral("거래처%1").arg(i), qlonglong(i % 7 + 1), double(i) * 1000.5,
                             QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'))};
    return rows;
}

double totalOf(const QVector<QVariantList>& rows, int column) {
    double sum = 0;
    for (const QVariantList& row : rows)
        sum += row.at(column).toDouble();
    return sum;
}

// A list grid of five columns and two hidden sum columns, in a shown window.
struct ListWindow {
    QWidget window;
    Grid* grid = new Grid(&window);

    ListWindow() {
        grid->setGeometry(0, 0, 520, 300);
        grid->setMaxCols(7);
        CommonSpreadDesign(*grid, true, true, true, true);
        SetFloatCell(*grid, 3, 0, false);
        SetFloatCell(*grid, 4, 0, false);
        grid->setColHidden(6, true);
        grid->setColHidden(7, true);
        window.resize(520, 300);
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        grid->setFocus();
    }
    void show(const QVector<QVariantList>& rows, int known = -1) {
        grid->showList(std::make_unique<RowsInMemory>(rows), known);
    }
};

// Rows in memory from a source that says how many it expects, rightly or not.
class ExpectingRows : public RowsInMemory {
public:
    ExpectingRows(QVector<QVariantList> rows, int expected)
        : RowsInMemory(std::move(rows)), m_expected(expected) {}
    int expectedRows() const override { return m_expected; }

private:
    int m_expected;
};

// The same rows last first, as a list read from its end gets them.
std::unique_ptr<RowsInMemory> lastFirst(QVector<QVariantList> rows) {
    std::reverse(rows.begin(), rows.end());
    return std::make_unique<RowsInMemory>(std::move(rows));
}

// Rows a source holds already laid out as the list's rows, which it hands over as a block; how
// many rows were asked of it one by one is counted.
class BlockRows : public GridRowSource {
public:
    BlockRows(std::vector<QVariant> block, int width, int* asked)
        : m_block(std::move(block)), m_width(width), m_asked(asked) {}
    int width() const override { return m_width; }
    bool next(QVariant* out, int count) override {
        ++*m_asked;
        if (m_next >= m_block.size()) return false;
        for (int c = 0; c < count; ++c)
            out[c] = m_block[m_next + size_t(c)];
        m_next += size_t(m_width);
        return true;
    }
    int rowsAtHand() const override { return int((m_block.size() - m_next) / size_t(m_width)); }
    bool takeRowsAtHand(std::vector<QVariant>& block, int width) override {
        if (width != m_width) return false;
        block.swap(m_block);
        m_block.clear();
        return true;
    }

private:
    std::vector<QVariant> m_block;
    int m_width;
    int* m_asked;
    size_t m_next = 0;
};

void waitForAllRows(Grid& grid) {
    QTRY_VERIFY_WITH_TIMEOUT(!grid.isReading(), 10000);
}

} // namespace

class TestGridList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aListReadFromItsEndHasItsLastPageAtOnceAndTheRestBetweenEvents() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(10000);
        w.grid->cells().showList(lastFirst(rows), 10000, true);
        QCOMPARE(w.grid->MaxRows(), 10000);
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->Text(2, 10000), QStringLiteral("거래처10000"));
        QCOMPARE(w.grid->Text(5, 10000 - GridModel::kFirstPage + 1), QStringLiteral("009801"));
        QVERIFY(w.grid->isReading()); // the last page needed no row above it
        waitForAllRows(*w.grid);
        QCOMPARE(w.grid->MaxRows(), 10000);
        QCOMPARE(w.grid->Text(2, 1), QStringLiteral("거래처1"));
        QCOMPARE(w.grid->Text(5, 5000), QStringLiteral("005000"));
        QCOMPARE(w.grid->Text(2, 10000), QStringLiteral("거래처10000"));
    }

    void ctrlHomeOnAListReadFromItsEndReachesItsFirstRow() {
        test::TestHome home;
        ListWindow w;
        w.grid->cells().setReadsAhead(false);
        w.grid->cells().showList(lastFirst(statementRows(6000)), 6000, true);
        w.grid->setMaxRows(6001); // the empty last row
        w.grid->SetActiveCell(1, 6001);
        QApplication::processEvents();
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->Text(5, 6000), QStringLiteral("006000"));
        QTest::keyClick(w.grid, Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(w.grid->ActiveRow(), 1);
        QCOMPARE(w.grid->Text(5, 1), QStringLiteral("000001"));
        QVERIFY(!w.grid->isReading());
        QCOMPARE(w.grid->Text(5, 2), QStringLiteral("000002"));
        QCOMPARE(w.grid->MaxRows(), 6001);
        QCOMPARE(w.grid->DataRowCnt(), 6000);
    }

    void scrollingToTheTopOfAListReadFromItsEndShowsItsFirstRows() {
        test::TestHome home;
        ListWindow w;
        w.grid->cells().setReadsAhead(false);
        w.grid->cells().showList(lastFirst(statementRows(5000)), 5000, true);
        w.grid->SetActiveCell(1, 5000);
        QApplication::processEvents();
        QVERIFY(w.grid->isReading());
        QScrollBar* bar = w.grid->verticalScrollBar();
        bar->setValue(bar->minimum());
        QApplication::processEvents();
        QCOMPARE(w.grid->rowAt(1), 0);
        QCOMPARE(w.grid->model()->index(0, 1).data(Qt::DisplayRole).toString(), QStringLiteral("거래처1"));
        QCOMPARE(w.grid->model()->index(4999, 4).data(Qt::DisplayRole).toString(), QStringLiteral("005000"));
    }

    void rowsASourceReadFromItsEndDidNotBringStayEmptyAtTheTop() {
        test::TestHome home;
        ListWindow w;
        w.grid->cells().showList(lastFirst(statementRows(8)), 10, true);
        QCOMPARE(w.grid->MaxRows(), 10);
        QCOMPARE(w.grid->Text(5, 10), QStringLiteral("000008"));
        QCOMPARE(w.grid->Text(5, 3), QStringLiteral("000001"));
        QCOMPARE(w.grid->Text(5, 2), QString());
        QCOMPARE(w.grid->Text(5, 1), QString());
        QVERIFY(!w.grid->isReading());
    }

    void aRowWrittenAfterAListReadFromItsEndStaysWhileTheRestIsRead() {
        test::TestHome home;
        ListWindow w;
        w.grid->cells().setReadsAhead(false);
        const auto rows = statementRows(4000);
        w.grid->cells().showList(lastFirst(rows), 4000, true);
        w.grid->setListSum(3, totalOf(rows, 2));
        w.grid->setMaxRows(4001);
        QVERIFY(w.grid->SetText(1, 4001, QStringLiteral("2024-02-01")));
        QVERIFY(w.grid->SetText(3, 4001, QStringLiteral("2")));
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->cells().columnTotal(3), totalOf(rows, 2) + 2);
        DeleteGridRow(*w.grid, 3999, false, true); // a deletion reads every row first
        QVERIFY(!w.grid->isReading());
        QCOMPARE(w.grid->Text(5, 3999), QStringLiteral("004000"));
        QCOMPARE(w.grid->Text(1, 4000), QStringLiteral("2024-02-01"));
        QCOMPARE(w.grid->Text(5, 1), QStringLiteral("000001"));
        QCOMPARE(w.grid->cells().columnTotal(3), totalOf(rows, 2) + 2 - rows[3998].at(2).toDouble());
    }

    void firstPageComesAtOnceTheRestBetweenEvents() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(10000);
        w.show(rows);
        QCOMPARE(w.grid->MaxRows(), GridModel::kFirstPage);
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->ActiveRow(), 1);
        waitForAllRows(*w.grid);
        QCOMPARE(w.grid->MaxRows(), 10000);
        QCOMPARE(w.grid->DataRowCnt(), 10000);
        QCOMPARE(w.grid->model()->rowCount(), 10000);
    }

    void countingTheDataRowsOfAListStillBeingReadReadsItThrough() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(7000));
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->DataRowCnt(), 7000); // what print and export loop to
        QVERIFY(!w.grid->isReading());
        QCOMPARE(w.grid->MaxRows(), 7000);
        QCOMPARE(w.grid->model()->rowCount(), 7000);
        QCOMPARE(w.grid->Text(5, 7000), QStringLiteral("007000"));
    }

    void valuesStayValuesAndAreFormattedByTheirColumn() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(3));
        QCOMPARE(w.grid->Text(2, 2), QStringLiteral("거래처2"));
        QCOMPARE(w.grid->Text(4, 2), QStringLiteral("2,001")); // 2001 rounded to the column's places
        QCOMPARE(w.grid->Value(4, 2), 2001.0);
        QCOMPARE(w.grid->ListValue(4, 2).typeId(), int(QMetaType::Double));
        QCOMPARE(w.grid->Text(5, 3), QStringLiteral("000003"));
        QCOMPARE(w.grid->Text(6, 1), QString()); // a column the rows do not fill
        QCOMPARE(w.grid->Text(4, 4), QString()); // outside
        QCOMPARE(w.grid->model()->index(1, 3).data(Qt::DisplayRole).toString(), QStringLiteral("2,001"));
    }

    void aCountGivenMakesEveryRowThereAtOnceAndReadsOnlyWhatIsAskedFor() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(50000);
        w.show(rows, 50000);
        QCOMPARE(w.grid->MaxRows(), 50000);
        QCOMPARE(w.grid->DataRowCnt(), 50000);
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->Text(2, 50000), QStringLiteral("거래처50000"));
        QVERIFY(!w.grid->isReading()); // the last row needed every row before it
        QCOMPARE(w.grid->Text(5, 25000), QStringLiteral("025000"));
    }

    void scrollingToTheEndReadsEveryRow() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(5000));
        QScrollBar* bar = w.grid->verticalScrollBar();
        for (int i = 0; i < 100 && (w.grid->isReading() || bar->value() < bar->maximum()); ++i) {
            bar->setValue(bar->maximum());
            QApplication::processEvents();
        }
        QCOMPARE(bar->value(), bar->maximum());
        QCOMPARE(w.grid->MaxRows(), 5000);
        bar->setValue(bar->maximum());
        QVERIFY(w.grid->rowAt(w.grid->viewport()->height() - 2) >= 4990);
    }

    void pageDownReachesTheLastRowWhileTheListIsStillBeingRead() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(3000));
        QVERIFY(w.grid->isReading());
        for (int i = 0; i < 1000 && w.grid->ActiveRow() < 3000; ++i)
            QTest::keyClick(w.grid, Qt::Key_PageDown);
        QCOMPARE(w.grid->ActiveRow(), 3000);
        QCOMPARE(w.grid->Text(5, w.grid->ActiveRow()), QStringLiteral("003000"));
        QTest::keyClick(w.grid, Qt::Key_Down);
        QCOMPARE(w.grid->ActiveRow(), 3000);
    }

    void ctrlEndGoesToTheLastRowOfAListStillBeingReadAndCtrlHomeBack() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(4500));
        QVERIFY(w.grid->isReading());
        QTest::keyClick(w.grid, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(w.grid->ActiveRow(), 4500);
        QVERIFY(!w.grid->isReading());
        QApplication::processEvents();
        QVERIFY(w.grid->rowAt(w.grid->viewport()->height() / 2) > 4400); // scrolled there
        QTest::keyClick(w.grid, Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(w.grid->ActiveRow(), 1);
    }

    void clickingTheLastRowChoosesIt() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(2500));
        waitForAllRows(*w.grid);
        w.grid->scrollToBottom();
        QApplication::processEvents();
        QSignalSpy clicks(w.grid, &Grid::click);
        QSignalSpy doubles(w.grid, &Grid::dblClick);
        const QRect last = w.grid->visualRect(w.grid->model()->index(2499, 1));
        QVERIFY(last.isValid() && w.grid->viewport()->rect().contains(last.center()));
        QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, last.center());
        QCOMPARE(w.grid->ActiveRow(), 2500);
        QCOMPARE(clicks.count(), 1);
        QCOMPARE(clicks.at(0).at(1).toInt(), 2500);
        QTest::mouseDClick(w.grid->viewport(), Qt::LeftButton, {}, last.center());
        QCOMPARE(doubles.count(), 1);
        QCOMPARE(doubles.at(0).at(1).toInt(), 2500);
        QCOMPARE(w.grid->Text(2, w.grid->ActiveRow()), QStringLiteral("거래처2500"));
    }

    void theOperatorCannotTypeIntoAList() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(5));
        w.grid->SetActiveCell(2, 2);
        QTest::keyClick(w.grid, Qt::Key_X);
        QTest::keyClick(w.grid, Qt::Key_F2);
        QVERIFY(!w.grid->EditMode());
        QCOMPARE(w.grid->Text(2, 2), QStringLiteral("거래처2"));
    }

    void escOnAListIsLeftToItsWindow() {
        test::TestHome home;
        QDialog dialog;
        auto* grid = new Grid(&dialog);
        grid->setMaxCols(2);
        grid->showList(std::make_unique<RowsInMemory>(statementRows(3)));
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
    }

    void aSumFormulaUsesTheQuerysSumWithoutReadingTheRows() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(20000);
        w.show(rows, 20000);
        w.grid->setListSum(3, totalOf(rows, 2));
        w.grid->setListSum(4, 123.0); // not the rows' sum: proves the rows were not walked
        SetSumFormula(*w.grid, 3, 6);
        SetSumFormula(*w.grid, 4, 7);
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->Value(6, 1), totalOf(rows, 2));
        QCOMPARE(w.grid->Value(7, 1), 123.0);
    }

    void sumsFollowWhatTheProgramWritesAndDeletes() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(3000);
        w.show(rows, 3000);
        const double count = totalOf(rows, 2);
        w.grid->setListSum(3, count);
        SetSumFormula(*w.grid, 3, 6);
        QSignalSpy changes(w.grid, &Grid::textChanged);
        const double before = w.grid->Value(3, 10);
        QVERIFY(w.grid->SetText(3, 10, QString::number(before + 5)));
        QCOMPARE(w.grid->Value(6, 1), count + 5);
        QVERIFY(changes.contains(QVariantList{6, 1}));
        const double last = w.grid->Value(3, 3000);
        w.grid->DeleteRows(3000, 1);
        QCOMPARE(w.grid->MaxRows(), 3000);
        QCOMPARE(w.grid->DataRowCnt(), 2999);
        QCOMPARE(w.grid->Value(6, 1), count + 5 - last);
        QVERIFY(!w.grid->SetText(3, 11, QStringLiteral("abc"))); // a number column refuses text
        QVERIFY(!w.grid->SetText(3, 11, QStringLiteral("1000000000000")));
    }

    void withoutAGivenSumTheFormulaAddsTheRows() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(2500);
        w.show(rows);
        SetSumFormula(*w.grid, 3, 6);
        QCOMPARE(w.grid->Value(6, 1), totalOf(rows, 2));
    }

    void rowsAddedAfterACountedListLeaveTheRestUnread() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(8000);
        w.show(rows, 8000);
        w.grid->setListSum(3, totalOf(rows, 2));
        w.grid->setMaxRows(8001); // the empty last row
        SetSumFormula(*w.grid, 3, 6);
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->DataRowCnt(), 8000);
        w.grid->SetActiveCell(1, 8001);
        QCOMPARE(w.grid->ActiveRow(), 8001);
        QVERIFY(w.grid->SetText(1, 8001, QStringLiteral("2024-02-01")));
        QVERIFY(w.grid->SetText(3, 8001, QStringLiteral("2")));
        QCOMPARE(w.grid->DataRowCnt(), 8001);
        QCOMPARE(w.grid->Value(6, 1), totalOf(rows, 2) + 2);
        w.grid->setMaxRows(8002);
        QCOMPARE(w.grid->Text(1, 8001), QStringLiteral("2024-02-01"));
        QCOMPARE(w.grid->Text(2, 7999), QStringLiteral("거래처7999"));
        w.grid->finishReading();
        QCOMPARE(w.grid->MaxRows(), 8002);
        QCOMPARE(w.grid->Text(1, 8001), QStringLiteral("2024-02-01"));
        QCOMPARE(w.grid->Text(2, 8000), QStringLiteral("거래처8000"));
    }

    // A list read whole at once keeps room for the row the screen adds after it: the values
    // already read stay where they are.
    void theRowAddedAfterAListReadWholeMovesNoValue() {
        GridList list(std::make_unique<RowsInMemory>(statementRows(300)), 7, 300);
        list.readPage(300);
        QVERIFY(!list.reading());
        const QVariant* first = list.peek(1, 1);
        const QVariant* last = list.peek(5, 300);
        list.resize(301);
        QCOMPARE(list.rows(), 301);
        QCOMPARE(list.peek(1, 1), first);
        QCOMPARE(list.peek(5, 300), last);
        QCOMPARE(list.peek(5, 300)->toString(), QStringLiteral("000300"));
        QVERIFY(list.peek(1, 301)->isNull());
    }

    // A source holding its rows as the list lays them out hands them over whole: the list reads
    // none of them one by one, and the values are the very ones the source held.
    void rowsAtHandLaidOutAsTheListsAreTakenWhole() {
        std::vector<QVariant> block;
        for (int i = 1; i <= 3; ++i)
            block.insert(block.end(), {QStringLiteral("2024-01-0%1").arg(i), qlonglong(i), QVariant()});
        block.reserve(block.size() + 3);
        const QVariant* firstValue = &block[0];
        int asked = 0;
        GridList list(std::make_unique<BlockRows>(std::move(block), 3, &asked), 3, 3);
        QVERIFY(!list.reading());
        QCOMPARE(asked, 0);
        QCOMPARE(list.rows(), 3);
        QCOMPARE(list.peek(1, 1), firstValue);
        QCOMPARE(list.peek(1, 3)->toString(), QStringLiteral("2024-01-03"));
        QCOMPARE(list.peek(2, 2)->toLongLong(), 2LL);
        QVERIFY(list.peek(3, 1)->isNull());
        list.resize(4);
        QCOMPARE(list.peek(1, 1), firstValue); // the row after it moved no value
    }

    // Laid out for a list of another width, the rows are read one by one as before.
    void rowsAtHandOfAnotherWidthAreReadOneByOne() {
        std::vector<QVariant> block{QStringLiteral("a"), 1, QStringLiteral("b"), 2};
        int asked = 0;
        GridList list(std::make_unique<BlockRows>(std::move(block), 2, &asked), 3, 2);
        QVERIFY(list.reading());
        QCOMPARE(list.readPage(10), 2);
        QCOMPARE(asked, 2);
        QCOMPARE(list.peek(1, 2)->toString(), QStringLiteral("b"));
        QVERIFY(list.peek(3, 2)->isNull());
    }

    // Rows after the query's handed over with the list reach the view with it, in one reset.
    void blankRowsAfterAListComeWithItInOneChange() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(30), 30);
        QSignalSpy resets(&w.grid->cells(), &QAbstractItemModel::modelReset);
        QSignalSpy inserted(&w.grid->cells(), &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(&w.grid->cells(), &QAbstractItemModel::rowsRemoved);
        w.grid->cells().showList(std::make_unique<RowsInMemory>(statementRows(20)), 20, false, 1);
        QCOMPARE(resets.count(), 1);
        QCOMPARE(inserted.count() + removed.count(), 0);
        QCOMPARE(w.grid->MaxRows(), 21);
        QCOMPARE(w.grid->Text(5, 20), QStringLiteral("000020"));
        QCOMPARE(w.grid->Text(5, 21), QString());
        QCOMPARE(w.grid->DataRowCnt(), 20);
        // From the end: the blank row follows the rows not read yet.
        w.grid->setReadsAhead(false);
        w.grid->cells().showList(lastFirst(statementRows(5000)), 5000, true, 1);
        QCOMPARE(w.grid->MaxRows(), 5001);
        QCOMPARE(w.grid->Text(5, 5000), QStringLiteral("005000"));
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->Text(5, 5001), QString());
        QCOMPARE(w.grid->Text(5, 1), QStringLiteral("000001"));
        QCOMPARE(w.grid->MaxRows(), 5001);
    }

    void deletingARowOfAPartlyReadListMovesTheRowsUp() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(4000));
        QVERIFY(w.grid->isReading());
        DeleteGridRow(*w.grid, 2, false, true);
        QCOMPARE(w.grid->MaxRows(), 3999);
        QCOMPARE(w.grid->Text(2, 2), QStringLiteral("거래처3"));
        QCOMPARE(w.grid->Text(2, 3999), QStringLiteral("거래처4000"));
        QCOMPARE(w.grid->model()->rowCount(), 3999);
    }

    void aQuerysRowsStandInTheList() {
        test::TestHome home;
        {
            QSqlDatabase db =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("gridlist"));
            db.setDatabaseName(QStringLiteral(":memory:"));
            QVERIFY(db.open());
            QSqlQuery make(db);
            QVERIFY(make.exec(QStringLiteral("CREATE TABLE t (d TEXT, n TEXT, c INTEGER, a REAL, no TEXT)")));
            QVERIFY(
                make.exec(QStringLiteral("WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM k "
                                         "WHERE i < 1200) INSERT INTO t SELECT '2024-01-01', '상회' || i, "
                                         "i % 3, i * 10.0, printf('%06d', i) FROM k")));
            auto query = std::make_unique<QSqlQuery>(db);
            query->setForwardOnly(true);
            QVERIFY(query->exec(QStringLiteral("SELECT d, n, c, a, no FROM t ORDER BY no")));
            ListWindow w;
            w.grid->showList(std::make_unique<QueryRows>(std::move(query)));
            QCOMPARE(w.grid->Text(2, 1), QStringLiteral("상회1"));
            QCOMPARE(w.grid->ListValue(3, 2).toInt(), 2);
            w.grid->finishReading();
            QCOMPARE(w.grid->DataRowCnt(), 1200);
            QCOMPARE(w.grid->Text(4, 1200), QStringLiteral("12,000"));
            QCOMPARE(w.grid->Text(5, 1200), QStringLiteral("001200"));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("gridlist"));
    }

    void aNewListStartsAtItsTopAndAnEmptyOneHasNoActiveCell() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(600));
        w.grid->SetActiveCell(1, 150);
        w.show(statementRows(2));
        QCOMPARE(w.grid->ActiveRow(), 1);
        QCOMPARE(w.grid->MaxRows(), 2);
        w.show({});
        QCOMPARE(w.grid->MaxRows(), 0);
        QCOMPARE(w.grid->ActiveRow(), 0);
        QCOMPARE(w.grid->DataRowCnt(), 0);
        QVERIFY(!w.grid->isReading());
    }

    void aValueWrittenStaysExactAndMovesTheColumnsTotal() {
        test::TestHome home;
        ListWindow w;
        const auto rows = statementRows(4000);
        w.show(rows, 4000);
        QCOMPARE(w.grid->cells().columnTotal(4), totalOf(rows, 3)); // no sum given: the values added
        QVERIFY(!w.grid->isReading());
        w.show(rows, 4000);
        w.grid->setListSum(4, 77.25);
        QVERIFY(w.grid->cells().setListValue(4, 3, 3001.75)); // was 3001.5
        QCOMPARE(w.grid->ListValue(4, 3).toDouble(), 3001.75);
        QCOMPARE(w.grid->Text(4, 3), QStringLiteral("3,002"));
        QCOMPARE(w.grid->cells().columnTotal(4), 77.5);
        QVERIFY(w.grid->isReading());
        QVERIFY(!w.grid->cells().setListValue(4, 4001, 1.0));
    }

    void aListHandedToTheCellsDirectlyPutsTheCursorOnItsFirstRow() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(300));
        w.grid->SetActiveCell(2, 250);
        w.grid->cells().showList(std::make_unique<RowsInMemory>(statementRows(40)), 40);
        QCOMPARE(w.grid->ActiveRow(), 1);
        QCOMPARE(w.grid->ActiveCol(), 1);
        QCOMPARE(w.grid->MaxRows(), 40);
    }

    void clearingAColumnTheRowsDoNotFillReadsNothing() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(9000), 9000);
        ClearGrid(*w.grid); // every column: reads every row
        QVERIFY(!w.grid->isReading());
        QCOMPARE(w.grid->DataRowCnt(), 0);
        w.show(statementRows(9000), 9000);
        w.grid->ClearRange(6, 1, 7, w.grid->MaxRows());
        QVERIFY(w.grid->isReading());
        QCOMPARE(w.grid->Text(2, 9000), QStringLiteral("거래처9000"));
    }

    // A source that says how many rows it expects only makes room: the rows are those it gives.
    void theRowsASourceExpectsAreRoomNotACount() {
        test::TestHome home;
        ListWindow w;
        for (const auto& [expected, given] : {std::pair{5, 8}, std::pair{50, 3}, std::pair{0, 2}}) {
            w.grid->showList(std::make_unique<ExpectingRows>(statementRows(given), expected), -1);
            w.grid->finishReading();
            QCOMPARE(w.grid->MaxRows(), given);
            QCOMPARE(w.grid->Text(5, given), QStringLiteral("%1").arg(given, 6, 10, QChar(u'0')));
            QCOMPARE(w.grid->Text(2, given + 1), QString());
        }
    }

    // Clearing a block drops the formulas inside it and keeps those around it.
    void clearingABlockDropsOnlyTheFormulasInsideIt() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(30), 30);
        w.grid->SetFormula(6, 1, QStringLiteral("SUM(R1C3:R30C3)"));
        w.grid->SetFormula(7, 2, QStringLiteral("SUM(R1C4:R30C4)"));
        w.grid->SetFormula(7, 20, QStringLiteral("SUM(R1C3:R2C3)"));
        w.grid->ClearRange(6, 1, 7, 10);
        QCOMPARE(w.grid->Formula(6, 1), QString());
        QCOMPARE(w.grid->Formula(7, 2), QString());
        QCOMPARE(w.grid->Text(6, 1), QString());
        QCOMPARE(w.grid->Formula(7, 20), QStringLiteral("SUM(R1C3:R2C3)"));
        QCOMPARE(w.grid->Value(7, 20), 5.0); // 2 + 3
    }

    // A long list let go when the next one comes keeps what was copied out of it, and the next
    // list holds its own rows.
    void aLongListReplacedLeavesItsCopiedValuesAndTheNewRows() {
        test::TestHome home;
        ListWindow w;
        w.show(statementRows(9000), 9000);
        w.grid->finishReading();
        const QString kept = w.grid->Text(2, 8999);
        const QVariant keptValue = w.grid->ListValue(2, 8999);
        w.show(statementRows(4), 4);
        QCOMPARE(w.grid->MaxRows(), 4);
        QCOMPARE(w.grid->Text(2, 4), QStringLiteral("거래처4"));
        QCOMPARE(kept, QStringLiteral("거래처8999"));
        QCOMPARE(keptValue.toString(), QStringLiteral("거래처8999"));
    }
};

NB_TEST_MAIN(TestGridList)
#include "tst_gridlist.moc"
