// What a change of the grid repaints: the cells it changed, and nothing when nothing changed
// (an empty grid cleared, the same mode or size again, a fill that writes nothing), while what
// the window shows stays what the grid painted whole would show.
#include "TestSupport.h"
#include "common/grid/MduSpread.h"

#include <QApplication>
#include <QHeaderView>
#include <QPaintEvent>
#include <QScreen>
#include <QScrollBar>
#include <QTest>

using namespace nb;

namespace {

// An editable grid of a few columns in a shown window, with the paints its cells' area gets.
struct RepaintWindow : QObject {
    QWidget window;
    Grid* grid = new Grid(&window);
    QRegion painted;
    int paints = 0;

    RepaintWindow() {
        grid->setGeometry(0, 0, 430, 260);
        grid->setMaxCols(5);
        grid->setMaxRows(15);
        window.resize(430, 260);
        window.show();
        settle();
        grid->viewport()->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) {
            painted += static_cast<QPaintEvent*>(e)->region();
            ++paints;
        }
        return false;
    }
    static void settle() {
        for (int i = 0; i < 5; ++i)
            QApplication::processEvents();
    }
    // Paints what is pending and answers how many paints the cells' area got meanwhile.
    int paintsAfter(const std::function<void()>& change) {
        settle();
        painted = QRegion();
        paints = 0;
        change();
        settle();
        return paints;
    }
    // What the window shows now (its backing store), and the grid painted whole.
    QImage shown() {
        settle();
        return window.screen()->grabWindow(window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
    }
    QImage paintedWhole() { return window.grab().toImage().convertToFormat(QImage::Format_RGB32); }
    QRect cell(int col, int row) const { return grid->visualRect(grid->cells().index(row - 1, col - 1)); }
};

// The paints one widget gets while this lives.
struct HeaderPaints : QObject {
    int paints = 0;
    explicit HeaderPaints(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) ++paints;
        return false;
    }
};

// Rows of five texts: the first column a date, the second the prefix and the row's number.
QVector<QVariantList> listRows(int count, const QString& prefix) {
    QVector<QVariantList> rows;
    for (int i = 1; i <= count; ++i)
        rows << QVariantList{QStringLiteral("2024-01-%1").arg(i % 28 + 1, 2, 10, QChar(u'0')),
                             prefix + QString::number(i), QString::number(i), QStringLiteral("개"),
                             QString::number(i * 100)};
    return rows;
}

} // namespace

class TestGridRepaint : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void clearingAnEmptyGridRepaintsNothing() {
        RepaintWindow w;
        QCOMPARE(w.paintsAfter([&] { ClearGrid(*w.grid); }), 0);
    }

    void clearingRepaintsTheCellsThatHeldATextAndShowsThemEmpty() {
        RepaintWindow w;
        const QImage empty = w.shown();
        w.grid->SetText(2, 3, QStringLiteral("볼트"));
        w.grid->SetText(3, 4, QStringLiteral("12,000"));
        QVERIFY(w.shown() != empty);
        QVERIFY(w.paintsAfter([&] { ClearGrid(*w.grid); }) > 0);
        QVERIFY(w.painted.contains(w.cell(2, 3)) && w.painted.contains(w.cell(3, 4)));
        QVERIFY(!w.painted.intersects(w.cell(1, 10)));
        QCOMPARE(w.shown(), empty);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    void theSameModeOrSizeAgainRepaintsNothing() {
        RepaintWindow w;
        w.grid->setOperationMode(OperationMode::Normal);
        QCOMPARE(w.paintsAfter([&] { w.grid->setOperationMode(OperationMode::Normal); }), 0);
        QCOMPARE(w.paintsAfter([&] { w.grid->setMaxRows(15); }), 0);
        QVERIFY(w.paintsAfter([&] { w.grid->setOperationMode(OperationMode::Row); }) > 0);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    void aFillThatWritesNothingRepaintsNothing() {
        RepaintWindow w;
        QCOMPARE(w.paintsAfter([&] { w.grid->fillQuietly([] {}); }), 0);
    }

    void aFillRepaintsTheCellsItWroteAndShowsThem() {
        RepaintWindow w;
        QVERIFY(w.paintsAfter([&] {
            w.grid->fillQuietly([&] {
                w.grid->SetText(1, 2, QStringLiteral("가나상사"));
                w.grid->SetText(4, 6, QStringLiteral("3"));
            });
        }) > 0);
        QVERIFY(w.painted.contains(w.cell(1, 2)) && w.painted.contains(w.cell(4, 6)));
        QVERIFY(!w.painted.intersects(w.cell(1, 12)));
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // A new list in the same columns leaves the column header as it is: nothing about it
    // changed, and what the window shows is still what a whole paint would show.
    void aNewListInTheSameColumnsRepaintsNoColumnHeader() {
        RepaintWindow w;
        for (int c = 1; c <= 5; ++c)
            w.grid->SetText(c, 0, QStringLiteral("열%1").arg(c));
        w.grid->showList(std::make_unique<RowsInMemory>(listRows(40, QStringLiteral("가"))), 40);
        RepaintWindow::settle();
        HeaderPaints header(w.grid->horizontalHeader()->viewport());
        QCOMPARE(w.paintsAfter([&] {
            w.grid->showList(std::make_unique<RowsInMemory>(listRows(25, QStringLiteral("나"))), 25);
            w.grid->SetActiveCell(1, 25);
        }) > 0,
                 true);
        QCOMPARE(header.paints, 0);
        QCOMPARE(w.grid->Text(2, 25), QStringLiteral("나25"));
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // A new list's rows and row header are painted in the same frame: nothing of the grid is
    // left to paint once the window has painted what was asked of it.
    void aNewListPaintsItsRowsAndRowHeaderInOneFrame() {
        RepaintWindow w;
        w.grid->showList(std::make_unique<RowsInMemory>(listRows(200, QStringLiteral("가"))), -1);
        w.grid->verticalScrollBar()->setValue(150);
        RepaintWindow::settle();
        HeaderPaints rows(w.grid->verticalHeader()->viewport());
        HeaderPaints cells(w.grid->viewport());
        w.grid->showList(std::make_unique<RowsInMemory>(listRows(120, QStringLiteral("나"))), -1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
        QCOMPARE(cells.paints, 1);
        QCOMPARE(rows.paints, 1);
        RepaintWindow::settle();
        QCOMPARE(cells.paints + rows.paints, 2);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // A new list of as many rows as the list before shows the same row numbers: the row header
    // is not painted again, and the window still shows what a whole paint would show.
    void aNewListOfAsManyRowsRepaintsNoRowHeader() {
        RepaintWindow w;
        w.grid->showList(std::make_unique<RowsInMemory>(listRows(11, QStringLiteral("가"))), 11);
        RepaintWindow::settle();
        HeaderPaints rows(w.grid->verticalHeader()->viewport());
        QVERIFY(w.paintsAfter([&] {
            w.grid->showList(std::make_unique<RowsInMemory>(listRows(11, QStringLiteral("나"))), 11);
        }) > 0);
        QCOMPARE(rows.paints, 0);
        QCOMPARE(w.grid->verticalHeader()->count(), 11);
        QCOMPARE(w.grid->Text(2, 11), QStringLiteral("나11"));
        QCOMPARE(w.shown(), w.paintedWhole());
        QVERIFY(w.paintsAfter([&] {
            w.grid->showList(std::make_unique<RowsInMemory>(listRows(7, QStringLiteral("다"))), 7);
        }) > 0);
        QVERIFY(rows.paints > 0);
        QCOMPARE(w.grid->verticalHeader()->count(), 7);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // A list after rows with labels of their own shows its numbers, however many rows it has.
    void aListAfterLabelledRowsRepaintsTheRowHeader() {
        RepaintWindow w;
        w.grid->SetText(0, 3, QStringLiteral("합계"));
        RepaintWindow::settle();
        const QImage labelled = w.shown();
        HeaderPaints rows(w.grid->verticalHeader()->viewport());
        w.paintsAfter([&] {
            w.grid->showList(std::make_unique<RowsInMemory>(listRows(15, QStringLiteral("가"))), 15);
        });
        QVERIFY(rows.paints > 0);
        QCOMPARE(w.grid->Text(0, 3), QStringLiteral("3"));
        QVERIFY(w.shown() != labelled);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // A list in other columns lays the column header out again.
    void aListInOtherColumnsRepaintsTheColumnHeader() {
        RepaintWindow w;
        w.grid->showList(std::make_unique<RowsInMemory>(listRows(10, QStringLiteral("가"))), 10);
        RepaintWindow::settle();
        HeaderPaints header(w.grid->horizontalHeader()->viewport());
        w.paintsAfter([&] { w.grid->setMaxCols(3); });
        QVERIFY(header.paints > 0);
        QCOMPARE(w.grid->horizontalHeader()->count(), 3);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // The headers highlight no section, so the cursor moving repaints neither of them.
    void movingTheCursorRepaintsNoHeader() {
        RepaintWindow w;
        w.grid->SetActiveCell(1, 1);
        RepaintWindow::settle();
        HeaderPaints columns(w.grid->horizontalHeader()->viewport());
        HeaderPaints rows(w.grid->verticalHeader()->viewport());
        QVERIFY(w.paintsAfter([&] {
            w.grid->SetActiveCell(3, 4);
            w.grid->SetActiveCell(2, 7);
        }) > 0);
        QCOMPARE(columns.paints + rows.paints, 0);
        QCOMPARE(w.shown(), w.paintedWhole());
    }

    // A fill that changes the grid's size meanwhile is told whole.
    void aFillThatAddsRowsShowsThemAll() {
        RepaintWindow w;
        w.grid->fillQuietly([&] {
            w.grid->setMaxRows(20);
            w.grid->SetText(2, 18, QStringLiteral("끝"));
        });
        QCOMPARE(w.grid->Text(2, 18), QStringLiteral("끝"));
        QCOMPARE(w.shown(), w.paintedWhole());
    }
};

NB_TEST_MAIN(TestGridRepaint)
#include "tst_grid_repaint.moc"
