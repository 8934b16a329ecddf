#pragma once
// The spreadsheet-like grid every list and line entry stands in. Rows and columns count from
// 1, column 0 is the row header and row 0 the column header; -1 means all rows or columns.
// Property and method names follow the grid control the screens were written against
// (MaxRows, DataRowCnt, SetText, ...); events are Qt signals.
//
// A list of a query stands in the same grid in list mode. The screen runs its statement
// forward-only and hands the rows over:
//
//     grid->showList(std::make_unique<QueryRows>(std::move(query)), countOrMinus1);
//     grid->setListSum(3, sumOfColumn3FromTheQuery);   // when a formula sums the column
//
// and from then on reads and moves through the list with the usual calls (Text, Value,
// ActiveRow, SetActiveCell, DataRowCnt, click and dblClick, the keys). Values stay as the query
// gave them and are formatted by their column's type when painted. The first rows are read at
// once, the rest a page at a time between events, when the view scrolls to them, or when a cell
// of an unread row is asked for. Given the count, MaxRows is right at once; without it MaxRows
// grows as rows arrive; DataRowCnt() reads the rest first, so print and export, which loop to
// it, see every row (anything else that needs every row calls finishReading()). The list is read-only to the
// operator; the program may still write cells (kept as values), add rows after the query's and delete rows
// (these read every row first). A sum formula over a whole column the screen gave a sum for is that sum, kept
// as cells are written and rows deleted, so it never walks the rows.

#include "common/grid/GridModel.h"
#include "common/grid/GridTypes.h"

#include <QTableView>
#include <functional>

class QLineEdit;

namespace nb {

class Grid : public QTableView {
    Q_OBJECT
public:
    explicit Grid(QWidget* parent = nullptr);
    ~Grid() override;

    GridModel& cells() { return *m_model; }
    const GridModel& cells() const { return *m_model; }

    // ---- size and position --------------------------------------------------------------
    int MaxRows() const { return m_model->maxRows(); }
    void setMaxRows(int rows);
    int MaxCols() const { return m_model->maxCols(); }
    void setMaxCols(int cols);
    // The last row holding anything; a list not yet counted is read through first.
    int DataRowCnt() const {
        if (!m_model->rowsKnown()) m_model->finishReading();
        return m_model->dataRowCnt();
    }
    // 0 when no cell is active (no rows, or set so on purpose).
    int ActiveCol() const { return m_activeCol; }
    int ActiveRow() const { return m_activeRow; }
    // Makes a cell active, ending the edit of the old one and announcing leaveCell first.
    // Returns false when a handler cancelled or redirected the move.
    bool SetActiveCell(int col, int row);

    // ---- cells --------------------------------------------------------------------------
    // False outside the grid; row 0 and column 0 read the headers.
    bool GetText(int col, int row, QString& text) const;
    QString Text(int col, int row) const;
    // False when refused: outside the grid, or a number cell given a non-number or a value
    // beyond its limits. Row 0 writes a column header, column 0 a row header.
    bool SetText(int col, int row, const QString& text);
    double Value(int col, int row) const { return m_model->value(col, row); }
    QString Formula(int col, int row) const { return m_model->formula(col, row); }
    void SetFormula(int col, int row, const QString& formula);

    bool Lock(int col, int row) const { return m_model->isLocked(col, row); }
    void SetLock(int col, int row, bool locked);
    CellFormat cellFormat(int col, int row) const { return m_model->format(col, row); }
    // Cell type of a cell, a row or column (-1) or all; row -1 makes it the column's type.
    void SetCellType(int col, int row, const CellFormat& format);
    // Background of a cell (BGR integer); the row's colour when none was painted.
    int BackColor(int col, int row) const;
    void SetBackColor(int col, int row, int bgr);
    void SetOddEvenRowColor(int oddBack, int oddFore, int evenBack, int evenFore);

    // ---- blocks and rows ----------------------------------------------------------------
    void ClearRange(int col, int row, int col2, int row2);
    void MoveRange(int col, int row, int col2, int row2, int destCol, int destRow);
    // Removes rows and adds blank ones at the bottom: MaxRows stays.
    void DeleteRows(int row, int count);
    void InsertRows(int row, int count);
    // Runs fill (a list written row by row) with the cell-by-cell announcements held back, then
    // tells the view once which of the grid's cells changed. textChanged is not sent for what fill
    // wrote, and formulas are worked out once at the end.
    void fillQuietly(const std::function<void()>& fill);
    // The block the operator selected; an empty rectangle when none.
    QRect SelectedBlock() const { return m_block; }
    void Refresh();

    // ---- list mode (see the top of this file) ----------------------------------------------
    void showList(std::unique_ptr<GridRowSource> rows, int knownRows = -1);
    // See GridModel::setReadsAhead; for the lists shown after it.
    void setReadsAhead(bool on) { m_model->setReadsAhead(on); }
    bool isList() const { return m_model->isList(); }
    // Whether rows of the list are still to be read.
    bool isReading() const { return m_model->isReading(); }
    void finishReading() { m_model->finishReading(); }
    // Whether MaxRows already counts every row (a list given its count, or read through).
    bool rowsKnown() const { return m_model->rowsKnown(); }
    void setListSum(int col, double sum) { m_model->setListSum(col, sum); }
    // The value of a cell of the list as the query gave it.
    QVariant ListValue(int col, int row) const { return m_model->listValue(col, row); }

    // ---- columns ------------------------------------------------------------------------
    // Widths are in characters of the grid's font, as the original counts them; column 0
    // is the row header.
    double ColWidth(int col) const;
    void setColWidth(int col, double chars);
    bool ColHidden(int col) const { return m_model->isColHidden(col); }
    void setColHidden(int col, bool hidden);
    // The identifier a column carries (the field name its edits go to).
    QString ColID(int col) const { return m_model->colId(col); }
    void setColID(int col, const QString& id) { m_model->setColId(col, id); }
    int ColByID(const QString& id) const { return m_model->colById(id); }
    bool RowHeadersShow() const { return m_rowHeadersShow; }
    void setRowHeadersShow(bool show);
    bool ColHeadersShow() const { return m_colHeadersShow; }
    void setColHeadersShow(bool show);

    // ---- behaviour and look -------------------------------------------------------------
    OperationMode operationMode() const { return m_operationMode; }
    virtual void setOperationMode(OperationMode mode);
    bool EditModePermanent() const { return m_editModePermanent; }
    virtual void setEditModePermanent(bool on);
    bool EditModeReplace() const { return m_editModeReplace; }
    virtual void setEditModeReplace(bool on) { m_editModeReplace = on; }
    // Whether the active cell is being edited; setting it starts or ends the edit.
    bool EditMode() const { return m_editing; }
    void setEditMode(bool on);
    // Whether Tab moves between cells (true) or on to the next control (false).
    bool ProcessTab() const { return m_processTab; }
    void setProcessTab(bool on) { m_processTab = on; }
    EnterAction enterAction() const { return m_enterAction; }
    void setEnterAction(EnterAction action) { m_enterAction = action; }
    int SelBackColor() const { return m_selBackColor; }
    virtual void setSelBackColor(int bgr);
    int GrayAreaBackColor() const { return m_grayAreaBackColor; }
    virtual void setGrayAreaBackColor(int bgr);
    // 0: the operator may not select blocks; any other value: blocks by mouse drag or
    // Shift with the arrows.
    int SelectBlockOptions() const { return m_selectBlockOptions; }
    virtual void setSelectBlockOptions(int options);
    // 1: the operator may resize columns by dragging the header; 0: widths stay.
    int UserColAction() const { return m_userColAction; }
    virtual void setUserColAction(int action);
    // Kept for the screens that set them; this grid never beeps and has one cursor look.
    bool NoBeep() const { return m_noBeep; }
    virtual void setNoBeep(bool on) { m_noBeep = on; }
    int CursorType() const { return m_cursorType; }
    virtual void setCursorType(int type) { m_cursorType = type; }
    int CursorStyle() const { return m_cursorStyle; }
    virtual void setCursorStyle(int style) { m_cursorStyle = style; }
    bool DAutoCellTypes() const { return m_dAutoCellTypes; }
    virtual void setDAutoCellTypes(bool on) { m_dAutoCellTypes = on; }
    int BackColorStyle() const { return m_backColorStyle; }
    virtual void setBackColorStyle(int style) { m_backColorStyle = style; }
    // 2 is the R1C1 style, the only one this grid's formulas read.
    int RefStyle() const { return m_refStyle; }
    virtual void SetRefStyle(int style) { m_refStyle = style; }

    // Pixel width of a width in characters, for placing other controls beside the grid.
    int charsToPixels(double chars) const;
    int rowHeightPixels() const;
    // Whether the cell is painted in the selection colour.
    bool isHighlighted(int col, int row) const;
    // Paints a row in the selection colour as row highlighting does, while the grid stays in its
    // operation mode and editable; 0 takes it off, and so does a move of the cursor to another row.
    void markRow(int row);
    int markedRow() const { return m_markedRow; }

Q_SIGNALS:
    // mode 1 when editing of a cell begins, 0 when it ends; changeMade when the text changed.
    void editModeChanged(int col, int row, int mode, bool changeMade);
    // The active cell is about to move; newCol and newRow are -1 when the focus leaves the
    // grid. Setting cancel keeps the cursor where it is.
    void leaveCell(int col, int row, int newCol, int newRow, bool& cancel);
    void click(int col, int row);
    void dblClick(int col, int row);
    // Before the grid acts on a key; setting keyCode to 0 swallows the key.
    void keyDown(int& keyCode, Qt::KeyboardModifiers modifiers);
    void blockSelected(int col, int row, int col2, int row2);
    // The operator dragged a column border.
    void colWidthChange(int col1, int col2);
    // The shown text of a cell changed, whoever changed it (edits, the program, formulas).
    void textChanged(int col, int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    friend class GridKeys;
    bool moveActiveCell(int col, int row);
    bool handleKey(QKeyEvent* event);
    bool handleNavigationKey(int key, Qt::KeyboardModifiers modifiers);
    QPoint stepFrom(const QPoint& from, int key) const;
    void handleEnter();
    void handleTab(int step);
    void walkCells(int step);
    bool startTypingInto(QKeyEvent* event);
    bool canEdit(int col, int row) const;
    void beginEdit();
    void resumeEditing();
    void finishEdit();
    void revertEdit();
    void placeEditor();
    void prepareEditor(const CellFormat& format);
    void focusGridQuietly();
    bool gridHasFocus() const;
    void leaveGrid();
    int nextVisibleCol(int col, int step) const;
    std::pair<int, int> cellAt(const QPoint& pos) const;
    void extendBlockTo(int col, int row);
    void announceBlock();
    void clampActiveCell();
    void onNewList();
    void applyColumnLayout();
    void onSectionResized(int section, int oldSize, int newSize);
    void onRowHeaderResized(int oldSize, int newSize);
    void updateRowHeight();
    void paintLines(const QRegion& region);
    // The cell's own rectangle in the viewport, inside its right and bottom line.
    QRect cellRect(int col, int row) const;

    GridModel* m_model;
    QLineEdit* m_editor;
    int m_activeCol = 0;
    int m_activeRow = 0;
    bool m_editing = false;
    QString m_editStartText;
    int m_moveGeneration = 0;
    int m_moveDepth = 0;
    bool m_quietFocus = false;
    bool m_forwardingKey = false;
    bool m_processTab = false;
    const QKeyEvent* m_editorKeyInFlight = nullptr;
    bool m_layingOut = false;
    QRect m_block;
    QPoint m_blockAnchor;
    QPoint m_blockEnd;
    bool m_dragging = false;
    std::vector<double> m_colWidths; // index 0: the row header
    bool m_rowHeadersShow = true;
    bool m_colHeadersShow = true;
    OperationMode m_operationMode = OperationMode::Normal;
    bool m_editModePermanent = false;
    bool m_editModeReplace = false;
    EnterAction m_enterAction = EnterAction::Next;
    int m_selBackColor = kSelBackColor;
    int m_grayAreaBackColor = 12632256;
    int m_selectBlockOptions = 15;
    int m_userColAction = 0;
    bool m_noBeep = false;
    int m_cursorType = 0;
    int m_cursorStyle = 0;
    bool m_dAutoCellTypes = false;
    int m_backColorStyle = 0;
    int m_refStyle = 2;
    int m_markedRow = 0;
};

} // namespace nb
