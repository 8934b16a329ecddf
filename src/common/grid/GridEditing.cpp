// How the operator works a Grid: moving the cursor, editing cells, keys, mouse and focus,
// with the events the screens hook into.
#include "common/Colors.h"
#include "common/grid/Grid.h"
#include "common/grid/GridNumbers.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QValidator>

namespace nb {

namespace {

// Refuses keystrokes that cannot become a number within the cell's limits and places.
class NumberCellValidator : public QValidator {
public:
    NumberCellValidator(const CellFormat& format, QObject* parent) : QValidator(parent), m_format(format) {}
    State validate(QString& input, int&) const override {
        return gridnum::acceptableWhileTyping(input, m_format) ? Acceptable : Invalid;
    }

private:
    CellFormat m_format;
};

// Handlers that move the cursor themselves may nest moves; deeper than this they go quietly.
constexpr int kMaxNestedMoves = 8;

bool isEnter(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

// ---- moving -------------------------------------------------------------------------------

bool Grid::SetActiveCell(int col, int row) {
    return moveActiveCell(col, row);
}

// Ends the edit of the old cell (editModeChanged 0), asks leaveCell, then moves and, in
// permanent edit mode, begins editing the new cell. A handler that moves the cursor itself
// wins over the move that called it.
bool Grid::moveActiveCell(int col, int row) {
    const bool noCell = col == 0 && row == 0;
    if (!noCell && !m_model->contains(col, row)) return false;
    if (col == m_activeCol && row == m_activeRow) { // already there: nothing to announce
        resumeEditing();
        return true;
    }
    const int generation = ++m_moveGeneration;
    const bool announce = m_moveDepth < kMaxNestedMoves && m_activeCol > 0 && m_activeRow > 0;
    ++m_moveDepth;
    struct DepthGuard {
        int& depth;
        ~DepthGuard() { --depth; }
    } guard{m_moveDepth};

    if (m_editing) finishEdit();
    if (generation != m_moveGeneration) return false;
    if (announce) {
        bool cancel = false;
        Q_EMIT leaveCell(m_activeCol, m_activeRow, noCell ? 0 : col, noCell ? 0 : row, cancel);
        if (generation != m_moveGeneration) return false;
        if (cancel) {
            if (m_editModePermanent && gridHasFocus()) beginEdit();
            return false;
        }
    }
    if (row != m_activeRow) m_markedRow = 0;
    m_activeCol = col;
    m_activeRow = row;
    if (!noCell) {
        const QModelIndex index = m_model->index(row - 1, col - 1);
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        scrollTo(index);
    }
    viewport()->update();
    if (m_editModePermanent && gridHasFocus()) beginEdit();
    return true;
}

int Grid::nextVisibleCol(int col, int step) const {
    for (int c = col + step; c >= 1 && c <= MaxCols(); c += step)
        if (!ColHidden(c)) return c;
    return 0;
}

// ---- editing ------------------------------------------------------------------------------

bool Grid::canEdit(int col, int row) const {
    return m_operationMode == OperationMode::Normal && m_model->contains(col, row) &&
           !m_model->isLocked(col, row) && m_model->format(col, row).type != CellType::StaticText;
}

void Grid::prepareEditor(const CellFormat& format) {
    delete m_editor->validator();
    m_editor->setValidator(format.isNumber() ? new NumberCellValidator(format, m_editor) : nullptr);
    m_editor->setAlignment(format.isNumber() ? Qt::AlignRight | Qt::AlignVCenter
                                             : Qt::AlignLeft | Qt::AlignVCenter);
    m_editor->setFont(font());
    // The editor lies on the viewport, whose colour is the grey area's: give it the cell's.
    QPalette pal = m_editor->palette();
    pal.setColor(QPalette::Base, colorFromBgr(BackColor(m_activeCol, m_activeRow)));
    pal.setColor(QPalette::Text, colorFromBgr(m_model->rowForeColor(m_activeRow)));
    m_editor->setPalette(pal);
}

void Grid::beginEdit() {
    if (m_editing || !canEdit(m_activeCol, m_activeRow)) return;
    const bool focused = gridHasFocus();
    m_editing = true;
    prepareEditor(m_model->format(m_activeCol, m_activeRow));
    m_editStartText = m_model->editText(m_activeCol, m_activeRow);
    m_editor->setText(m_editStartText);
    placeEditor();
    m_editor->show();
    // While editing, focus given to the grid lands in the editor.
    setFocusProxy(m_editor);
    if (focused) m_editor->setFocus(Qt::OtherFocusReason);
    if (m_editModeReplace)
        m_editor->selectAll();
    else
        m_editor->end(false);
    viewport()->update();
    Q_EMIT editModeChanged(m_activeCol, m_activeRow, 1, false);
}

// Writes what was typed into the cell; a number cell refusing it keeps its old text.
void Grid::finishEdit() {
    if (!m_editing) return;
    m_editing = false;
    const int col = m_activeCol, row = m_activeRow;
    const QString typed = m_editor->text();
    bool changeMade = typed != m_editStartText;
    if (changeMade) changeMade = m_model->setText(col, row, typed);
    // The editor may hold the focus of a window that is not active (a box is open over it): the
    // grid takes that over too, or the window would give its focus, when it is active again,
    // to whatever follows the hidden editor, another child window perhaps.
    const bool editorHadFocus = m_editor->hasFocus() || (window() && window()->focusWidget() == m_editor);
    setFocusProxy(nullptr);
    if (editorHadFocus) focusGridQuietly();
    m_editor->hide();
    viewport()->update();
    Q_EMIT editModeChanged(col, row, 0, changeMade);
}

void Grid::revertEdit() {
    m_editor->setText(m_editStartText);
    if (m_editModeReplace) m_editor->selectAll();
}

void Grid::placeEditor() {
    if (!m_editing || !m_model->contains(m_activeCol, m_activeRow)) return;
    m_editor->setGeometry(cellRect(m_activeCol, m_activeRow).adjusted(1, 1, -1, -1));
}

void Grid::focusGridQuietly() {
    m_quietFocus = true;
    setFocus(Qt::OtherFocusReason);
    m_quietFocus = false;
}

bool Grid::gridHasFocus() const {
    const QWidget* focus = QApplication::focusWidget();
    return focus && (focus == this || focus == m_editor);
}

// ---- keys ---------------------------------------------------------------------------------

// Keys the grid does not use go on to the form (F-keys, Insert and the like).
void Grid::keyPressEvent(QKeyEvent* event) {
    if (event == m_editorKeyInFlight) {
        event->ignore();
        return;
    }
    if (handleKey(event)) return;
    if (m_editing) { // a key that reached the grid itself while its editor is open
        m_forwardingKey = true;
        QApplication::sendEvent(m_editor, event);
        m_forwardingKey = false;
        return;
    }
    event->ignore();
}

// Returns true when the key was used here; false lets the editor (or the view) have it.
bool Grid::handleKey(QKeyEvent* event) {
    int key = event->key();
    Q_EMIT keyDown(key, event->modifiers());
    if (key == 0) return true;
    if (isEnter(key)) {
        handleEnter();
        return true;
    }
    if (key == Qt::Key_Escape) {
        if (isList() && !m_editing) return false; // a list leaves Esc to its window (it closes)
        if (m_editing) m_editModePermanent ? revertEdit() : (revertEdit(), finishEdit());
        return true;
    }
    if (key == Qt::Key_F2 && !m_editing) {
        beginEdit();
        if (m_editing) m_editor->end(false);
        return true;
    }
    if (handleNavigationKey(key, event->modifiers())) return true;
    if (m_editing) return false;
    return startTypingInto(event);
}

void Grid::handleEnter() {
    const int col = m_activeCol, row = m_activeRow;
    if (m_editing && !m_editModePermanent) finishEdit();
    if (col == 0 || row == 0) return;
    switch (m_enterAction) {
    case EnterAction::None:
        return;
    case EnterAction::Down:
        if (row < MaxRows()) moveActiveCell(col, row + 1);
        return;
    case EnterAction::Right:
        if (int next = nextVisibleCol(col, 1)) moveActiveCell(next, row);
        return;
    case EnterAction::Next:
        if (int next = nextVisibleCol(col, 1))
            moveActiveCell(next, row);
        else if (row < MaxRows())
            moveActiveCell(nextVisibleCol(0, 1), row + 1);
        return;
    }
}

bool Grid::handleNavigationKey(int key, Qt::KeyboardModifiers modifiers) {
    if (m_activeCol == 0 || m_activeRow == 0) return false;
    // Ctrl+Home and Ctrl+End: the first and the last row (a list still being read is read through;
    // one that reads only what is seen reads a page more, as it may be longer than memory holds).
    if ((key == Qt::Key_Home || key == Qt::Key_End) && (modifiers & Qt::ControlModifier) && !m_editing) {
        if (key == Qt::Key_End && m_model->readsAhead())
            m_model->finishReading();
        else if (key == Qt::Key_End)
            m_model->fetchMore({});
        const int row = key == Qt::Key_Home ? 1 : MaxRows();
        m_block = QRect();
        if (row != m_activeRow) moveActiveCell(m_activeCol, row);
        viewport()->update();
        return true;
    }
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
        handleTab(key == Qt::Key_Tab ? 1 : -1);
        return true;
    }
    const bool rowMode = m_operationMode == OperationMode::Row;
    if (rowMode && (key == Qt::Key_Left || key == Qt::Key_Right)) return true;
    const bool extend = (modifiers & Qt::ShiftModifier) && m_selectBlockOptions != 0 && !rowMode;
    // Shift with the arrows moves the far corner of the block; plain arrows the cursor.
    const QPoint from = (extend && m_block.isValid()) ? m_blockEnd : QPoint(m_activeCol, m_activeRow);
    // A list still being read reads on as far as the key goes.
    if (isReading() && (key == Qt::Key_Down || key == Qt::Key_PageDown))
        m_model->readUpTo(from.y() + std::max(1, viewport()->height() / rowHeightPixels()));
    const QPoint to = stepFrom(from, key);
    if (to.isNull()) return false;
    if (extend) {
        if (!m_block.isValid()) m_blockAnchor = from;
        extendBlockTo(to.x(), to.y());
        announceBlock();
    } else {
        m_block = QRect();
        if (to != from) moveActiveCell(to.x(), to.y());
        viewport()->update();
    }
    return true;
}

// The cell an arrow or page key leads to from a cell; a null point for other keys.
QPoint Grid::stepFrom(const QPoint& from, int key) const {
    const int page = std::max(1, viewport()->height() / rowHeightPixels() - 1);
    const int col = from.x(), row = from.y();
    switch (key) {
    case Qt::Key_Up:
        return {col, std::max(1, row - 1)};
    case Qt::Key_Down:
        return {col, std::min(MaxRows(), row + 1)};
    case Qt::Key_PageUp:
        return {col, std::max(1, row - page)};
    case Qt::Key_PageDown:
        return {col, std::min(MaxRows(), row + page)};
    case Qt::Key_Left:
        return {nextVisibleCol(col, -1) ? nextVisibleCol(col, -1) : col, row};
    case Qt::Key_Right:
        return {nextVisibleCol(col, 1) ? nextVisibleCol(col, 1) : col, row};
    default:
        return {};
    }
}

// With ProcessTab, Tab and Shift+Tab walk the cells; otherwise they leave the grid.
void Grid::handleTab(int step) {
    if (m_processTab) {
        walkCells(step);
        return;
    }
    if (m_editing) finishEdit();
    focusGridQuietly();
    QAbstractScrollArea::focusNextPrevChild(step > 0);
}

// The visible columns one by one, wrapping to the next or previous row.
void Grid::walkCells(int step) {
    const int col = m_activeCol, row = m_activeRow;
    if (int next = nextVisibleCol(col, step)) {
        moveActiveCell(next, row);
    } else if (step > 0 && row < MaxRows()) {
        moveActiveCell(nextVisibleCol(0, 1), row + 1);
    } else if (step < 0 && row > 1) {
        moveActiveCell(nextVisibleCol(MaxCols() + 1, -1), row - 1);
    }
}

// A printable key on a cell not being edited begins the edit with that key, replacing the text.
bool Grid::startTypingInto(QKeyEvent* event) {
    const QString typed = event->text();
    if (typed.isEmpty() || !typed.at(0).isPrint() || (event->modifiers() & Qt::ControlModifier)) return false;
    beginEdit();
    if (!m_editing) return true;
    m_editor->clear();
    QKeyEvent copy(event->type(), event->key(), event->modifiers(), typed);
    m_forwardingKey = true;
    QApplication::sendEvent(m_editor, &copy);
    m_forwardingKey = false;
    return true;
}

// ---- mouse --------------------------------------------------------------------------------

std::pair<int, int> Grid::cellAt(const QPoint& pos) const {
    const QModelIndex index = indexAt(pos);
    if (!index.isValid()) return {0, 0};
    return {index.column() + 1, index.row() + 1};
}

void Grid::mousePressEvent(QMouseEvent* event) {
    const auto [col, row] = cellAt(event->position().toPoint());
    if (col == 0 || event->button() != Qt::LeftButton) return;
    const bool extend = (event->modifiers() & Qt::ShiftModifier) && m_selectBlockOptions != 0 &&
                        m_operationMode != OperationMode::Row;
    if (extend && m_activeCol > 0) {
        if (!m_block.isValid()) m_blockAnchor = QPoint(m_activeCol, m_activeRow);
        extendBlockTo(col, row);
        announceBlock();
    } else {
        m_block = QRect();
        if (col != m_activeCol || row != m_activeRow) moveActiveCell(col, row);
        m_blockAnchor = QPoint(m_activeCol, m_activeRow);
        m_dragging = m_selectBlockOptions != 0 && m_operationMode != OperationMode::Row;
    }
    if (!gridHasFocus()) setFocus(Qt::MouseFocusReason);
    viewport()->update();
    Q_EMIT click(col, row);
}

void Grid::mouseMoveEvent(QMouseEvent* event) {
    if (!m_dragging || !(event->buttons() & Qt::LeftButton)) return;
    const auto [col, row] = cellAt(event->position().toPoint());
    if (col == 0) return;
    extendBlockTo(col, row);
}

void Grid::mouseReleaseEvent(QMouseEvent*) {
    if (!m_dragging) return;
    m_dragging = false;
    announceBlock();
}

void Grid::mouseDoubleClickEvent(QMouseEvent* event) {
    const auto [col, row] = cellAt(event->position().toPoint());
    if (col == 0) return;
    Q_EMIT dblClick(col, row);
    if (!m_editing && col == m_activeCol && row == m_activeRow) beginEdit();
}

// A block of more than one cell is highlighted; a single cell is just the cursor.
void Grid::extendBlockTo(int col, int row) {
    m_blockEnd = QPoint(col, row);
    const QRect block = QRect(m_blockAnchor, m_blockEnd).normalized();
    m_block = (block.width() * block.height() > 1) ? block : QRect();
    if (m_block.isValid() && m_editing) finishEdit();
    viewport()->update();
}

void Grid::announceBlock() {
    if (m_block.isValid())
        Q_EMIT blockSelected(m_block.left(), m_block.top(), m_block.right(), m_block.bottom());
}

// ---- focus --------------------------------------------------------------------------------

void Grid::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    if (m_quietFocus) return;
    if (m_editModePermanent && !m_editing) beginEdit();
    viewport()->update();
}

void Grid::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    if (event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason) return;
    QWidget* next = QApplication::focusWidget();
    if (next == m_editor || next == this) return;
    leaveGrid();
}

// The focus went to another control: the edit ends and leaveCell says where (-1, -1).
void Grid::leaveGrid() {
    if (m_editing) finishEdit();
    if (m_activeCol == 0 || m_activeRow == 0 || gridHasFocus()) return;
    bool cancel = false;
    Q_EMIT leaveCell(m_activeCol, m_activeRow, -1, -1, cancel);
    viewport()->update();
}

bool Grid::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_editor) return QTableView::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress && !m_forwardingKey) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (handleKey(key)) return true;
        // The editor types it; a key it has no use for travels up past the grid to the form,
        // and the grid must not take it a second time on the way.
        m_editorKeyInFlight = key;
        return false;
    }
    if (event->type() != QEvent::KeyPress) m_editorKeyInFlight = nullptr;
    if (event->type() == QEvent::ShortcutOverride) {
        // Keys the grid moves by must reach it rather than the line editor's own handling.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (isEnter(key) || key == Qt::Key_Escape) event->accept();
        return false;
    }
    if (event->type() == QEvent::FocusOut) {
        auto* focus = static_cast<QFocusEvent*>(event);
        const bool windowSwitch =
            focus->reason() == Qt::ActiveWindowFocusReason || focus->reason() == Qt::PopupFocusReason;
        QWidget* next = QApplication::focusWidget();
        if (!windowSwitch && m_editing && next != this && next != m_editor) leaveGrid();
    }
    return false;
}

void Grid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    placeEditor();
}

void Grid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    placeEditor();
}

} // namespace nb
