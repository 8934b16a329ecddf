// Working the grid the way an operator does: typing, Enter and the arrows, mouse clicks,
// locked cells, number cells, and the events the screens hook into.
#include "TestSupport.h"
#include "common/Colors.h"
#include "common/grid/MduSpread.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace nb;

namespace {

struct EditEvent {
    int col, row, mode;
    bool changeMade;
    QString text;
};

// A window holding one grid of 4 columns and 5 rows, the grid focused.
struct GridWindow {
    QWidget window;
    QLineEdit other; // somewhere for the focus to go
    Grid* grid = new Grid;
    std::vector<EditEvent> edits;
    std::vector<QList<int>> leaves;

    explicit GridWindow(bool editable = true) {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(grid);
        other.setParent(&window);
        layout->addWidget(&other);
        window.resize(520, 260);
        grid->setMaxCols(4);
        grid->setMaxRows(5);
        for (int c = 1; c <= 4; ++c)
            grid->setColWidth(c, 12);
        CommonSpreadDesign(*grid, !editable, false, true, false);
        QObject::connect(grid, &Grid::editModeChanged, grid, [this](int c, int r, int mode, bool changed) {
            edits.push_back({c, r, mode, changed, grid->Text(c, r)});
        });
        QObject::connect(grid, &Grid::leaveCell, grid, [this](int c, int r, int nc, int nr, bool&) {
            leaves.push_back({c, r, nc, nr});
        });
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        grid->setFocus();
    }
    QWidget* typingTarget() const { return QApplication::focusWidget(); }
    // Each key goes where the focus is at that moment, as on a keyboard.
    void type(const QString& text) const {
        for (QChar ch : text)
            test::typeText(typingTarget(), QString(ch));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier) const {
        test::pressKey(typingTarget(), key, mods);
    }
    QPoint cellCentre(int col, int row) const {
        return grid->visualRect(grid->model()->index(row - 1, col - 1)).center();
    }
    void clickCell(int col, int row, Qt::KeyboardModifiers mods = Qt::NoModifier) const {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, mods, cellCentre(col, row));
    }
    QPoint active() const { return {grid->ActiveCol(), grid->ActiveRow()}; }
};

} // namespace

class TestGridEditing : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aMarkedRowIsHighlightedWhileTheGridStaysEditableUntilTheCursorLeavesIt() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetActiveCell(1, 2);
        w.grid->markRow(2);
        QVERIFY(w.grid->isHighlighted(3, 2));
        QVERIFY(!w.grid->isHighlighted(3, 1));
        QVERIFY(w.grid->EditMode());
        w.type(QStringLiteral("ab"));
        w.press(Qt::Key_Return); // on to the next cell of the same row: still marked
        QCOMPARE(w.grid->Text(1, 2), QStringLiteral("ab"));
        QVERIFY(w.grid->isHighlighted(3, 2));
        w.grid->SetActiveCell(1, 3);
        QVERIFY(!w.grid->isHighlighted(3, 2));
        QCOMPARE(w.grid->markedRow(), 0);
    }
    void aCellLeftWhileABoxHasTheFocusLeavesTheWindowsFocusWithTheGrid() {
        test::TestHome home;
        GridWindow w;
        QVERIFY(w.grid->EditMode());
        QCOMPARE(w.window.focusWidget(), w.typingTarget()); // the editor
        QApplication::setActiveWindow(nullptr);             // a box is active over the window
        w.grid->SetActiveCell(2, 3);                        // the program moves the cursor meanwhile
        QApplication::setActiveWindow(&w.window);           // the box has gone
        QVERIFY(w.grid->isAncestorOf(QApplication::focusWidget()) || QApplication::focusWidget() == w.grid);
        QVERIFY(QApplication::focusWidget() != &w.other);
    }
    void typingHangulReplacesTheCellAndEnterMovesRight() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetText(1, 1, QStringLiteral("옛 품목"));
        QVERIFY(w.grid->EditMode());
        QCOMPARE(w.edits.back().mode, 1);
        w.type(QStringLiteral("볼트"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("볼트"));
        QCOMPARE(w.active(), QPoint(2, 1));
        const EditEvent& end = w.edits[w.edits.size() - 2];
        QCOMPARE(end.mode, 0);
        QVERIFY(end.changeMade);
        QCOMPARE(end.col, 1);
        QCOMPARE(end.text, QStringLiteral("볼트"));
        QCOMPARE(w.edits.back().mode, 1);
        QCOMPARE(w.edits.back().col, 2);
        test::saveScreenshot(&w.window, QStringLiteral("grid_typing"));
    }
    void enterWithoutTypingEndsTheEditWithNoChange() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetText(1, 1, QStringLiteral("그대로"));
        w.press(Qt::Key_Return);
        const EditEvent& end = w.edits[w.edits.size() - 2];
        QCOMPARE(end.mode, 0);
        QVERIFY(!end.changeMade);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("그대로"));
    }
    void enterOnTheLastVisibleColumnGoesToTheNextRow() {
        test::TestHome home;
        GridWindow w;
        w.grid->setColHidden(4, true);
        w.grid->SetActiveCell(3, 1);
        w.press(Qt::Key_Return);
        QCOMPARE(w.active(), QPoint(1, 2));
    }
    void arrowKeysMoveBetweenCellsAndStopAtTheEdges() {
        test::TestHome home;
        GridWindow w;
        w.press(Qt::Key_Up);
        QCOMPARE(w.active(), QPoint(1, 1));
        w.press(Qt::Key_Down);
        w.press(Qt::Key_Down);
        w.press(Qt::Key_Right);
        QCOMPARE(w.active(), QPoint(2, 3));
        w.press(Qt::Key_Left);
        w.press(Qt::Key_Left);
        QCOMPARE(w.active(), QPoint(1, 3));
        QCOMPARE(w.leaves.back(), (QList<int>{2, 3, 1, 3}));
    }
    void escapeGivesTheOldTextBack() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetText(1, 1, QStringLiteral("원래"));
        w.type(QStringLiteral("새것"));
        w.press(Qt::Key_Escape);
        w.press(Qt::Key_Down);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("원래"));
        QVERIFY(!w.edits[w.edits.size() - 2].changeMade);
    }
    void cancelInLeaveCellKeepsTheCursorAndTheEditGoesOn() {
        test::TestHome home;
        GridWindow w;
        QObject::connect(w.grid, &Grid::leaveCell, w.grid, [](int, int, int, int newRow, bool& cancel) {
            if (newRow == 2) cancel = true;
        });
        w.type(QStringLiteral("12"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.active(), QPoint(1, 1));
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("12"));
        QVERIFY(w.grid->EditMode());
        QCOMPARE(w.edits.back().mode, 1);
        w.press(Qt::Key_Right);
        QCOMPARE(w.active(), QPoint(2, 1));
    }
    void leaveCellHandlerMayRedirectTheCursor() {
        test::TestHome home;
        GridWindow w;
        // Enter on column 3 goes on to column 1 of the next row, as the statement lines do.
        QObject::connect(w.grid, &Grid::leaveCell, w.grid,
                         [&w](int col, int row, int, int newRow, bool& cancel) {
                             if (col == 3 && newRow == row) {
                                 cancel = true;
                                 w.grid->SetActiveCell(1, row + 1);
                             }
                         });
        w.grid->SetActiveCell(3, 2);
        w.type(QStringLiteral("5"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.active(), QPoint(1, 3));
        QCOMPARE(w.grid->Text(3, 2), QStringLiteral("5"));
        QVERIFY(w.grid->EditMode());
    }
    void editEndHandlerThatMovesTheCursorWinsOverTheMove() {
        test::TestHome home;
        auto& msgs = test::script();
        GridWindow w;
        QObject::connect(w.grid, &Grid::editModeChanged, w.grid,
                         [&w](int col, int row, int mode, bool changed) {
                             if (mode == 0 && changed && col != 1) {
                                 ShowInfo(QStringLiteral("품목을 먼저 입력하세요."));
                                 w.grid->SetActiveCell(1, row);
                             }
                         });
        w.grid->SetActiveCell(2, 3);
        w.type(QStringLiteral("7"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.active(), QPoint(1, 3));
        QCOMPARE(w.grid->Text(2, 3), QStringLiteral("7"));
        QCOMPARE(msgs.last().text, QStringLiteral("품목을 먼저 입력하세요."));
    }
    void lockedCellsTakeNoTyping() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetLock(kAllCells, kAllCells, true);
        w.grid->SetLock(kAllCells, 2, false);
        w.grid->SetText(1, 1, QStringLiteral("잠김"));
        w.grid->SetActiveCell(1, 1);
        QVERIFY(!w.grid->EditMode());
        w.type(QStringLiteral("xy"));
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("잠김"));
        w.press(Qt::Key_Down);
        QVERIFY(w.grid->EditMode());
        w.type(QStringLiteral("열림"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.grid->Text(1, 2), QStringLiteral("열림"));
        QVERIFY(w.grid->Lock(1, 3));
    }
    void staticCellIsShownButNeverEdited() {
        test::TestHome home;
        GridWindow w;
        CellFormat label;
        label.type = CellType::StaticText;
        w.grid->SetCellType(2, 1, label);
        w.grid->SetText(2, 1, QStringLiteral("고정"));
        w.press(Qt::Key_Right);
        QCOMPARE(w.active(), QPoint(2, 1));
        QVERIFY(!w.grid->EditMode());
        w.type(QStringLiteral("바꿈"));
        QCOMPARE(w.grid->Text(2, 1), QStringLiteral("고정"));
        w.press(Qt::Key_Right);
        QVERIFY(w.grid->EditMode());
    }
    void unlockingTheActiveRowStartsItsEdit() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetLock(kAllCells, kAllCells, true);
        QVERIFY(!w.grid->EditMode());
        w.grid->SetLock(kAllCells, 1, false);
        QVERIFY(w.grid->EditMode());
        QCOMPARE(w.edits.back().mode, 1);
        w.type(QStringLiteral("새 줄"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("새 줄"));
    }
    void floatCellRefusesLettersExtraPlacesAndTheThirteenthDigit() {
        test::TestHome home;
        GridWindow w;
        SetFloatCell(*w.grid, 1, 2, true);
        w.type(QStringLiteral("12a.345"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("12.34"));
        w.type(QStringLiteral("1234567890123"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.grid->Text(1, 2), QStringLiteral("123,456,789,012.00"));
        w.type(QStringLiteral("-999999999999"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.grid->Text(1, 3), QStringLiteral("-999,999,999,999.00"));
    }
    void editingANumberShowsItWithoutSeparators() {
        test::TestHome home;
        GridWindow w;
        SetCurrencyCell(*w.grid, 1, false);
        w.grid->SetText(1, 2, QStringLiteral("1234567"));
        w.press(Qt::Key_Down);
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        QVERIFY(editor);
        QCOMPARE(editor->text(), QStringLiteral("1234567"));
        QCOMPARE(editor->selectedText(), QStringLiteral("1234567"));
    }
    void keyDownSeesKeysAndMaySwallowThem() {
        test::TestHome home;
        GridWindow w;
        QList<int> keys;
        QObject::connect(w.grid, &Grid::keyDown, w.grid, [&keys](int& key, Qt::KeyboardModifiers) {
            keys << key;
            if (key == Qt::Key_Return || key == Qt::Key_F4) key = 0;
        });
        w.press(Qt::Key_F4);
        w.press(Qt::Key_Return);
        QCOMPARE(w.active(), QPoint(1, 1));
        w.press(Qt::Key_Down);
        QCOMPARE(keys, (QList<int>{Qt::Key_F4, Qt::Key_Return, Qt::Key_Down}));
        QCOMPARE(w.active(), QPoint(1, 2));
    }
    void keysTheGridDoesNotUseReachTheForm() {
        test::TestHome home;
        GridWindow w;
        struct Catcher : QObject {
            QList<int> keys;
            bool eventFilter(QObject*, QEvent* e) override {
                if (e->type() == QEvent::KeyPress) keys << static_cast<QKeyEvent*>(e)->key();
                return false;
            }
        } catcher;
        w.window.installEventFilter(&catcher);
        w.press(Qt::Key_F3);
        QVERIFY(w.grid->EditMode());
        QCOMPARE(catcher.keys, QList<int>{Qt::Key_F3});
    }
    void enterActionNoneLeavesEnterToTheScreen() {
        test::TestHome home;
        GridWindow w;
        w.grid->setEnterAction(EnterAction::None);
        w.type(QStringLiteral("9"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.active(), QPoint(1, 1));
        w.grid->setEnterAction(EnterAction::Down);
        w.press(Qt::Key_Return);
        QCOMPARE(w.active(), QPoint(1, 2));
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("9"));
    }
    void tabLeavesTheGridUnlessItProcessesTab() {
        test::TestHome home;
        GridWindow w;
        w.type(QStringLiteral("탭"));
        w.press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), &w.other);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("탭"));
        QCOMPARE(w.leaves.back(), (QList<int>{1, 1, -1, -1}));
        QVERIFY(!w.grid->EditMode());
        w.grid->setFocus();
        w.grid->setProcessTab(true);
        QVERIFY(w.grid->EditMode());
        w.press(Qt::Key_Tab);
        QCOMPARE(w.active(), QPoint(2, 1));
        w.press(Qt::Key_Backtab);
        QCOMPARE(w.active(), QPoint(1, 1));
    }
    void focusLeavingTheGridSavesTheTypedText() {
        test::TestHome home;
        GridWindow w;
        w.type(QStringLiteral("저장"));
        w.other.setFocus();
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("저장"));
        QCOMPARE(w.edits.back().mode, 0);
        QVERIFY(w.edits.back().changeMade);
        QCOMPARE(w.leaves.back(), (QList<int>{1, 1, -1, -1}));
    }

    void clickMovesTheCursorAndReportsTheCell() {
        test::TestHome home;
        GridWindow w;
        QList<QPoint> clicks;
        QObject::connect(w.grid, &Grid::click, w.grid, [&clicks](int c, int r) { clicks << QPoint(c, r); });
        w.clickCell(3, 4);
        QCOMPARE(w.active(), QPoint(3, 4));
        QCOMPARE(clicks, QList<QPoint>{QPoint(3, 4)});
        QVERIFY(w.grid->EditMode());
        QCOMPARE(w.leaves.back(), (QList<int>{1, 1, 3, 4}));
    }
    void doubleClickIsReported() {
        test::TestHome home;
        GridWindow w(false);
        QList<QPoint> doubles;
        QObject::connect(w.grid, &Grid::dblClick, w.grid,
                         [&doubles](int c, int r) { doubles << QPoint(c, r); });
        QTest::mouseDClick(w.grid->viewport(), Qt::LeftButton, {}, w.cellCentre(2, 3));
        QCOMPARE(doubles, QList<QPoint>{QPoint(2, 3)});
        QVERIFY(!w.grid->EditMode());
    }
    void headerClicksReportRowOrColumnZero() {
        test::TestHome home;
        GridWindow w;
        QList<QPoint> clicks;
        QObject::connect(w.grid, &Grid::click, w.grid, [&clicks](int c, int r) { clicks << QPoint(c, r); });
        auto* top = w.grid->horizontalHeader();
        QTest::mouseClick(top->viewport(), Qt::LeftButton, {},
                          QPoint(top->sectionViewportPosition(1) + 10, top->height() / 2));
        QCOMPARE(clicks, QList<QPoint>{QPoint(2, 0)});
        QCOMPARE(w.active(), QPoint(1, 1));
    }
    void draggingTheMouseSelectsABlock() {
        test::TestHome home;
        GridWindow w;
        QList<QRect> blocks;
        QObject::connect(w.grid, &Grid::blockSelected, w.grid, [&blocks](int c, int r, int c2, int r2) {
            blocks << QRect(QPoint(c, r), QPoint(c2, r2));
        });
        QTest::mousePress(w.grid->viewport(), Qt::LeftButton, {}, w.cellCentre(1, 2));
        QMouseEvent move(QEvent::MouseMove, w.cellCentre(3, 4),
                         w.grid->viewport()->mapToGlobal(w.cellCentre(3, 4)), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(w.grid->viewport(), &move);
        QTest::mouseRelease(w.grid->viewport(), Qt::LeftButton, {}, w.cellCentre(3, 4));
        QCOMPARE(blocks, QList<QRect>{QRect(QPoint(1, 2), QPoint(3, 4))});
        QVERIFY(w.grid->isHighlighted(2, 3));
        QVERIFY(!w.grid->isHighlighted(4, 3));
        w.clickCell(4, 5);
        QVERIFY(!w.grid->isHighlighted(2, 3));
    }
    void shiftArrowsSelectABlockOnlyWhenBlocksAreAllowed() {
        test::TestHome home;
        GridWindow w;
        QList<QRect> blocks;
        QObject::connect(w.grid, &Grid::blockSelected, w.grid, [&blocks](int c, int r, int c2, int r2) {
            blocks << QRect(QPoint(c, r), QPoint(c2, r2));
        });
        w.press(Qt::Key_Down, Qt::ShiftModifier);
        w.press(Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(blocks.back(), QRect(QPoint(1, 1), QPoint(2, 2)));
        w.grid->setSelectBlockOptions(0);
        w.grid->setFocus();
        w.press(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(blocks.size(), 2);
        QCOMPARE(w.active(), QPoint(1, 2));
    }
    void draggingAColumnBorderReportsTheNewWidth() {
        test::TestHome home;
        GridWindow w;
        QList<QPoint> changes;
        QObject::connect(w.grid, &Grid::colWidthChange, w.grid,
                         [&changes](int a, int b) { changes << QPoint(a, b); });
        auto* top = w.grid->horizontalHeader();
        const int border = top->sectionViewportPosition(1) + top->sectionSize(1) - 1;
        const QPoint from(border, top->height() / 2), to(border + 40, top->height() / 2);
        QTest::mousePress(top->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, top->viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(top->viewport(), &move);
        QTest::mouseRelease(top->viewport(), Qt::LeftButton, {}, to);
        QVERIFY(!changes.isEmpty());
        QCOMPARE(changes.back(), QPoint(2, 2));
        QVERIFY(w.grid->ColWidth(2) > 12.0);
        QCOMPARE(w.grid->ColWidth(1), 12.0);
    }
    void columnWidthsSetByTheProgramAreQuiet() {
        test::TestHome home;
        GridWindow w;
        int changes = 0;
        QObject::connect(w.grid, &Grid::colWidthChange, w.grid, [&changes](int, int) { ++changes; });
        w.grid->setColWidth(2, 20);
        QCOMPARE(changes, 0);
        QCOMPARE(w.grid->ColWidth(2), 20.0);
        QCOMPARE(w.grid->columnWidth(1), w.grid->charsToPixels(20));
    }
    void rowModeMovesWholeRowsAndPaintsThemInTheSelectionColour() {
        test::TestHome home;
        GridWindow w(false);
        w.grid->setOperationMode(OperationMode::Row);
        w.press(Qt::Key_Down);
        w.press(Qt::Key_Right);
        QCOMPARE(w.active(), QPoint(1, 2));
        QVERIFY(w.grid->isHighlighted(4, 2));
        QVERIFY(!w.grid->isHighlighted(4, 1));
        const QImage shot = w.grid->viewport()->grab().toImage();
        const QRect cell = w.grid->visualRect(w.grid->model()->index(1, 3));
        QCOMPARE(shot.pixelColor(cell.center()), colorFromBgr(12254974));
        const QRect other = w.grid->visualRect(w.grid->model()->index(2, 3));
        QCOMPARE(shot.pixelColor(other.center()), QColor(Qt::white));
    }
    void readOnlyGridTakesNoTyping() {
        test::TestHome home;
        GridWindow w(false);
        w.grid->SetText(2, 2, QStringLiteral("목록"));
        w.clickCell(2, 2);
        w.type(QStringLiteral("abc"));
        w.press(Qt::Key_F2);
        QCOMPARE(w.grid->Text(2, 2), QStringLiteral("목록"));
        QVERIFY(w.edits.empty());
    }
    void gridWithoutPermanentEditBeginsOnTypingAndEndsOnEnter() {
        test::TestHome home;
        GridWindow w;
        w.grid->setEditModePermanent(false);
        QVERIFY(!w.grid->EditMode());
        w.type(QStringLiteral("a가"));
        QVERIFY(w.grid->EditMode());
        w.press(Qt::Key_Return);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("a가"));
        QCOMPARE(w.active(), QPoint(2, 1));
        QVERIFY(!w.grid->EditMode());
        QCOMPARE(w.edits.back().mode, 0);
        QVERIFY(w.edits.back().changeMade);
    }
    void setActiveCellByTheProgramEndsTheEditFirst() {
        test::TestHome home;
        GridWindow w;
        w.type(QStringLiteral("먼저"));
        w.grid->SetActiveCell(2, 4);
        QCOMPARE(w.grid->Text(1, 1), QStringLiteral("먼저"));
        QCOMPARE(w.leaves.back(), (QList<int>{1, 1, 2, 4}));
        QCOMPARE(w.edits.back().col, 2);
        QCOMPARE(w.edits.back().mode, 1);
    }
    void setActiveCellOnTheActiveCellAnnouncesNothing() {
        test::TestHome home;
        GridWindow w;
        w.grid->SetActiveCell(2, 2);
        const size_t leaves = w.leaves.size(), edits = w.edits.size();
        QVERIFY(w.grid->SetActiveCell(2, 2));
        QCOMPARE(w.leaves.size(), leaves);
        QCOMPARE(w.edits.size(), edits);
        QVERIFY(w.grid->EditMode());
    }
    void textChangedFollowsEditsAndTheProgram() {
        test::TestHome home;
        GridWindow w;
        QList<QPoint> changed;
        QObject::connect(w.grid, &Grid::textChanged, w.grid,
                         [&changed](int c, int r) { changed << QPoint(c, r); });
        w.type(QStringLiteral("1"));
        w.press(Qt::Key_Return);
        w.grid->SetText(3, 3, QStringLiteral("x"));
        QCOMPARE(changed, (QList<QPoint>{QPoint(1, 1), QPoint(3, 3)}));
    }
};

NB_TEST_MAIN(TestGridEditing)
#include "tst_gridediting.moc"
