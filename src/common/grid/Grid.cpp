#include "common/grid/Grid.h"

#include "common/Colors.h"
#include "common/grid/GridDelegate.h"

#include <QEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <cmath>

namespace nb {

namespace {
constexpr double kDefaultColWidth = 8.0;
constexpr double kDefaultRowHeaderWidth = 4.0;
constexpr int kCellPadding = 6;

// A header whose thickness the grid fixes (the row header's width, the column header's height):
// its size hint is that thickness. The table view asks the hint at every layout of its rows,
// and the plain header works it out by measuring the label of up to two hundred sections, only
// for the view to keep the fixed thickness anyway.
class GridHeader : public QHeaderView {
public:
    GridHeader(Qt::Orientation orientation, QWidget* parent) : QHeaderView(orientation, parent) {
        setSectionsClickable(true);
        setStyle(GridHeaderStyle::shared());
    }
    QSize sizeHint() const override {
        if (orientation() == Qt::Vertical && minimumWidth() == maximumWidth())
            return {minimumWidth(), defaultSectionSize()};
        if (orientation() == Qt::Horizontal && minimumHeight() == maximumHeight())
            return {defaultSectionSize(), minimumHeight()};
        return QHeaderView::sizeHint();
    }
    // A new list in the same columns changes nothing the column header shows: its sections stay
    // as they are (the plain header keeps them through a reset too) and it is not painted again.
    // A list's row header shows the rows' numbers, so a new list of as many rows after a list
    // changes nothing on it either.
    void reset() override {
        const bool list = isListModel();
        const bool sameRows = orientation() == Qt::Vertical && list && m_numbersShown;
        m_numbersShown = list;
        if (model() && state() == NoState && (orientation() == Qt::Horizontal || sameRows) &&
            count() == (orientation() == Qt::Horizontal ? model()->columnCount(rootIndex())
                                                        : model()->rowCount(rootIndex())))
            return;
        QHeaderView::reset();
    }

protected:
    // The header repaints the sections of the old and the new current cell only to highlight
    // them; the grid's headers highlight nothing, so a cursor that moves repaints no section.
    void currentChanged(const QModelIndex& current, const QModelIndex& old) override {
        if (highlightSections()) QHeaderView::currentChanged(current, old);
    }

private:
    bool isListModel() const {
        const auto* cells = qobject_cast<const GridModel*>(model());
        return cells && cells->isList();
    }
    // Whether the row header was last laid out for a list (whose rows stay a list).
    bool m_numbersShown = false;
};
} // namespace

Grid::Grid(QWidget* parent) : QTableView(parent), m_model(new GridModel(this)), m_editor(new QLineEdit) {
    setHorizontalHeader(new GridHeader(Qt::Horizontal, this));
    setVerticalHeader(new GridHeader(Qt::Vertical, this));
    setModel(m_model);
    setItemDelegate(new GridDelegate(this));
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setShowGrid(false); // the lines are painted by paintLines
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    // The headers only report clicks; moving and selecting is the grid's own business.
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        disconnect(header, &QHeaderView::sectionPressed, this, nullptr);
        disconnect(header, &QHeaderView::sectionEntered, this, nullptr);
        header->setHighlightSections(false);
        header->setSectionResizeMode(QHeaderView::Fixed);
    }
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this,
            [this](int s) { Q_EMIT click(s + 1, 0); });
    connect(verticalHeader(), &QHeaderView::sectionClicked, this, [this](int s) { Q_EMIT click(0, s + 1); });
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &Grid::onSectionResized);
    connect(m_model, &GridModel::cellTextChanged, this, &Grid::textChanged);
    connect(m_model, &GridModel::columnsInserted, this, [this] { applyColumnLayout(); });
    connect(m_model, &GridModel::modelReset, this, &Grid::onNewList);

    m_editor->setParent(viewport());
    m_editor->setFrame(false);
    m_editor->hide();
    m_editor->installEventFilter(this);
    m_colWidths.assign(1, kDefaultRowHeaderWidth);
    setGrayAreaBackColor(m_grayAreaBackColor);
    updateRowHeight();
}

Grid::~Grid() = default;

// ---- size and position --------------------------------------------------------------------

void Grid::setMaxRows(int rows) {
    if (m_editing && rows < m_activeRow) {
        m_editing = false;
        m_editor->hide();
    }
    m_model->setMaxRows(rows);
    clampActiveCell();
    resumeEditing();
}

void Grid::setMaxCols(int cols) {
    if (m_editing && cols < m_activeCol) {
        m_editing = false;
        m_editor->hide();
    }
    m_model->setMaxCols(cols);
    m_colWidths.resize(size_t(cols) + 1, kDefaultColWidth);
    applyColumnLayout();
    clampActiveCell();
}

// No rows or columns leave no active cell; a new first row makes cell (1, 1) active.
void Grid::clampActiveCell() {
    const int oldCol = m_activeCol, oldRow = m_activeRow;
    if (MaxRows() == 0 || MaxCols() == 0) {
        m_activeCol = m_activeRow = 0;
    } else {
        m_activeCol = std::clamp(m_activeCol == 0 ? 1 : m_activeCol, 1, MaxCols());
        m_activeRow = std::clamp(m_activeRow == 0 ? 1 : m_activeRow, 1, MaxRows());
    }
    // The rows and columns added or taken away repaint themselves; the cursor, where it moved.
    if (oldCol != m_activeCol || oldRow != m_activeRow) viewport()->update();
}

// ---- cells --------------------------------------------------------------------------------

bool Grid::GetText(int col, int row, QString& text) const {
    text.clear();
    if (row == 0 && col >= 1 && col <= MaxCols()) {
        text = m_model->colHeaderText(col);
        return true;
    }
    if (col == 0 && row >= 1 && row <= MaxRows()) {
        text = m_model->rowHeaderText(row);
        return true;
    }
    if (!m_model->contains(col, row)) return false;
    text = m_model->text(col, row);
    return true;
}

QString Grid::Text(int col, int row) const {
    QString text;
    GetText(col, row, text);
    return text;
}

bool Grid::SetText(int col, int row, const QString& text) {
    if (row == 0 && col >= 1 && col <= MaxCols()) {
        m_model->setColHeaderText(col, text);
        return true;
    }
    if (col == 0 && row >= 1 && row <= MaxRows()) {
        m_model->setRowHeaderText(row, text);
        return true;
    }
    const bool ok = m_model->setText(col, row, text);
    if (ok && m_editing && col == m_activeCol && row == m_activeRow) {
        m_editor->setText(m_model->editText(col, row));
        m_editStartText = m_editor->text();
        if (m_editModeReplace) m_editor->selectAll();
    }
    return ok;
}

void Grid::SetFormula(int col, int row, const QString& formula) {
    m_model->setFormula(col, row, formula);
}

void Grid::SetLock(int col, int row, bool locked) {
    m_model->setLock(col, row, locked);
    if (m_editing && locked && m_model->isLocked(m_activeCol, m_activeRow)) finishEdit();
    resumeEditing();
}

// In permanent edit mode a focused grid edits its active cell whenever that cell allows it.
void Grid::resumeEditing() {
    if (m_editModePermanent && !m_editing && gridHasFocus()) beginEdit();
}

void Grid::SetCellType(int col, int row, const CellFormat& format) {
    if (format.decimals < 0 || format.decimals > 9 || format.min > format.max) throw invalidPropertyValue();
    m_model->setFormat(col, row, format);
    if (m_editing) {
        prepareEditor(m_model->format(m_activeCol, m_activeRow));
        m_editor->setText(m_model->editText(m_activeCol, m_activeRow));
        m_editStartText = m_editor->text();
        if (m_editModeReplace) m_editor->selectAll();
    }
}

int Grid::BackColor(int col, int row) const {
    return m_model->backColor(col, row).value_or(m_model->rowBackColor(row));
}

void Grid::SetBackColor(int col, int row, int bgr) {
    m_model->setBackColor(col, row, bgr);
}

void Grid::SetOddEvenRowColor(int oddBack, int oddFore, int evenBack, int evenFore) {
    for (int c : {oddBack, oddFore, evenBack, evenFore})
        if (c < 0 || c > 0xFFFFFF) throw invalidPropertyValue();
    m_model->setOddEvenRowColor(oddBack, oddFore, evenBack, evenFore);
}

// ---- blocks and rows ----------------------------------------------------------------------

void Grid::ClearRange(int col, int row, int col2, int row2) {
    m_model->clearBlock(col, row, col2, row2);
    if (m_editing) {
        m_editor->setText(m_model->editText(m_activeCol, m_activeRow));
        m_editStartText = m_editor->text();
    }
}

void Grid::MoveRange(int col, int row, int col2, int row2, int destCol, int destRow) {
    m_model->moveBlock(col, row, col2, row2, destCol, destRow);
}

void Grid::DeleteRows(int row, int count) {
    m_model->deleteRows(row, count);
}
void Grid::InsertRows(int row, int count) {
    m_model->insertRows(row, count);
}

void Grid::showList(std::unique_ptr<GridRowSource> rows, int knownRows) {
    m_model->showList(std::move(rows), knownRows);
}

// A new list (whoever handed it to the cells) starts with the cursor on its first row, as a
// grid emptied and filled again does.
void Grid::onNewList() {
    if (m_editing) {
        m_editing = false;
        m_editor->hide();
    }
    m_block = QRect();
    m_markedRow = 0;
    m_activeCol = m_activeRow = 0;
    clampActiveCell();
    scrollToTop();
    // Laid out now (the view and its row header, which its length lays out), not while the rows
    // are painted: the row header is then painted in the same frame as the rows, not a frame after.
    executeDelayedItemsLayout();
    verticalHeader()->length();
}

void Grid::fillQuietly(const std::function<void()>& fill) {
    const int rows = m_model->maxRows(), cols = m_model->maxCols();
    m_model->startTouching();
    {
        const QSignalBlocker quiet(m_model);
        fill();
    }
    // The cells fill wrote are told once; nothing written (a statement without lines) repaints
    // nothing. A grid that changed its size meanwhile is told whole.
    if (rows != m_model->maxRows() || cols != m_model->maxCols())
        m_model->refreshAll();
    else
        m_model->refreshTouched();
}

void Grid::Refresh() {
    viewport()->update();
    horizontalHeader()->viewport()->update();
    verticalHeader()->viewport()->update();
}

// ---- columns ------------------------------------------------------------------------------

int Grid::charsToPixels(double chars) const {
    return int(std::lround(chars * fontMetrics().horizontalAdvance(u'0'))) + kCellPadding;
}

int Grid::rowHeightPixels() const {
    return fontMetrics().height() + kCellPadding;
}

double Grid::ColWidth(int col) const {
    return (col >= 0 && col < int(m_colWidths.size())) ? m_colWidths[size_t(col)] : 0.0;
}

void Grid::setColWidth(int col, double chars) {
    if (chars < 0) throw invalidPropertyValue();
    if (col == kAllCells) {
        for (int c = 1; c <= MaxCols(); ++c)
            setColWidth(c, chars);
        return;
    }
    if (col < 0 || col >= int(m_colWidths.size())) return;
    m_colWidths[size_t(col)] = chars;
    applyColumnLayout();
}

void Grid::setColHidden(int col, bool hidden) {
    m_model->setColHidden(col, hidden);
    applyColumnLayout();
}

void Grid::applyColumnLayout() {
    m_layingOut = true;
    m_colWidths.resize(size_t(MaxCols()) + 1, kDefaultColWidth);
    for (int c = 1; c <= MaxCols(); ++c) {
        horizontalHeader()->resizeSection(c - 1, charsToPixels(m_colWidths[size_t(c)]));
        setColumnHidden(c - 1, m_model->isColHidden(c));
    }
    verticalHeader()->setFixedWidth(charsToPixels(m_colWidths[0]));
    verticalHeader()->setVisible(m_rowHeadersShow);
    horizontalHeader()->setVisible(m_colHeadersShow);
    m_layingOut = false;
    placeEditor();
}

void Grid::onSectionResized(int section, int, int newSize) {
    if (m_layingOut) return;
    const int col = section + 1;
    if (col >= int(m_colWidths.size()) || newSize == 0) return;
    m_colWidths[size_t(col)] = double(newSize - kCellPadding) / fontMetrics().horizontalAdvance(u'0');
    placeEditor();
    Q_EMIT colWidthChange(col, col);
}

void Grid::setRowHeadersShow(bool show) {
    m_rowHeadersShow = show;
    applyColumnLayout();
}

void Grid::setColHeadersShow(bool show) {
    m_colHeadersShow = show;
    applyColumnLayout();
}

void Grid::updateRowHeight() {
    verticalHeader()->setDefaultSectionSize(rowHeightPixels());
    horizontalHeader()->setFixedHeight(rowHeightPixels());
    applyColumnLayout();
}

void Grid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    // The lines paintLines draws are placed for left-to-right; the other way the view draws them.
    if (event->type() == QEvent::LayoutDirectionChange) setShowGrid(isRightToLeft());
    if (event->type() == QEvent::FontChange) {
        m_editor->setFont(font());
        updateRowHeight();
    }
}

// ---- lines --------------------------------------------------------------------------------

// The cells' right and bottom lines, on the pixels the table view's own grid lines take, as
// solid one-pixel rectangles: the view draws each line pixel by pixel, which cost a list as much
// as its texts. With setShowGrid(true) the view draws them itself (the same picture).
void Grid::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (!showGrid()) paintLines(event->region());
}

void Grid::paintLines(const QRegion& region) {
    const QHeaderView* rows = verticalHeader();
    const QHeaderView* cols = horizontalHeader();
    if (rows->count() == 0 || cols->count() == 0) return;
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QColor color = QColor::fromRgba(
        static_cast<QRgb>(style()->styleHint(QStyle::SH_Table_GridLineColor, &option, this)));
    const int lastX = cols->length() - cols->offset() - 1;
    const int lastY = rows->length() - rows->offset() - 1;
    QPainter painter(viewport());
    for (QRect dirty : region) {
        dirty.setBottom(std::min(dirty.bottom(), lastY));
        dirty.setRight(std::min(dirty.right(), lastX));
        if (!dirty.isValid()) continue;
        int left = cols->visualIndexAt(dirty.left()), right = cols->visualIndexAt(dirty.right());
        int top = rows->visualIndexAt(dirty.top()), bottom = rows->visualIndexAt(dirty.bottom());
        if (left == -1) left = 0;
        if (right == -1) right = cols->count() - 1;
        if (bottom == -1) bottom = rows->count() - 1;
        if (top == -1 || top > bottom) continue;
        for (int v = top; v <= bottom; ++v) {
            const int row = rows->logicalIndex(v);
            if (rows->isSectionHidden(row)) continue;
            const int y = rowViewportPosition(row) + rowHeight(row) - 1;
            painter.fillRect(QRect(dirty.left(), y, dirty.width(), 1), color);
        }
        for (int h = left; h <= right; ++h) {
            const int col = cols->logicalIndex(h);
            if (cols->isSectionHidden(col)) continue;
            const int x = columnViewportPosition(col) + columnWidth(col) - 1;
            painter.fillRect(QRect(x, dirty.top(), 1, dirty.height()), color);
        }
    }
}

QRect Grid::cellRect(int col, int row) const {
    const QRect r = visualRect(m_model->index(row - 1, col - 1));
    return showGrid() ? r : r.adjusted(0, 0, -1, -1);
}

// ---- behaviour and look -------------------------------------------------------------------

void Grid::setOperationMode(OperationMode mode) {
    const bool changed = mode != m_operationMode;
    m_operationMode = mode;
    if (mode != OperationMode::Normal && m_editing) finishEdit();
    if (mode == OperationMode::Normal && m_editModePermanent && gridHasFocus()) beginEdit();
    if (changed) viewport()->update(); // the same mode again looks the same
}

void Grid::setEditModePermanent(bool on) {
    m_editModePermanent = on;
    if (!on && m_editing) finishEdit();
    if (on && !m_editing && gridHasFocus()) beginEdit();
}

void Grid::setEditMode(bool on) {
    if (on && !m_editing) beginEdit();
    if (!on && m_editing) finishEdit();
}

void Grid::setSelBackColor(int bgr) {
    if (bgr < 0 || bgr > 0xFFFFFF) throw invalidPropertyValue();
    m_selBackColor = bgr;
    viewport()->update();
}

void Grid::setGrayAreaBackColor(int bgr) {
    if (bgr < 0 || bgr > 0xFFFFFF) throw invalidPropertyValue();
    m_grayAreaBackColor = bgr;
    QPalette pal = viewport()->palette();
    pal.setColor(QPalette::Base, colorFromBgr(bgr));
    pal.setColor(QPalette::Window, colorFromBgr(bgr));
    viewport()->setPalette(pal);
    viewport()->setAutoFillBackground(true);
}

void Grid::setSelectBlockOptions(int options) {
    m_selectBlockOptions = options;
    if (options == 0) m_block = QRect();
    viewport()->update();
}

void Grid::setUserColAction(int action) {
    m_userColAction = action;
    horizontalHeader()->setSectionResizeMode(action == 1 ? QHeaderView::Interactive : QHeaderView::Fixed);
}

void Grid::markRow(int row) {
    m_markedRow = row;
    viewport()->update();
}

bool Grid::isHighlighted(int col, int row) const {
    if (m_operationMode == OperationMode::Row && row == m_activeRow) return true;
    if (m_markedRow > 0 && row == m_markedRow) return true;
    return m_block.isValid() && m_block.contains(col, row);
}

} // namespace nb
