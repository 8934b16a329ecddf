#pragma once
// The cells behind a Grid: texts, formulas, cell types, locks and colours, addressed the way
// the screens address them (rows and columns from 1, -1 for all). The Qt model side turns
// them into display text, alignment and colours for the view.
//
// In list mode (showList) the rows are a query's values instead of cells: read-only, formatted
// by their column's type when shown, read a page at a time (see GridList and Grid::showList).

#include "common/grid/GridList.h"
#include "common/grid/GridTypes.h"

#include <QAbstractTableModel>
#include <QPoint>
#include <QRect>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

namespace nb {

class GridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit GridModel(QObject* parent = nullptr);
    ~GridModel() override;

    int maxRows() const { return m_list ? m_list->rows() : int(m_rows.size()); }
    int maxCols() const { return int(m_cols.size()); }
    // Fewer rows or columns drop what stood in them; more are blank, with the column types.
    void setMaxRows(int rows);
    void setMaxCols(int cols);
    bool contains(int col, int row) const;
    // The last row that holds any text or formula; 0 for none.
    int dataRowCnt() const;

    // The text as shown (a number cell with its places and separator); empty outside.
    QString text(int col, int row) const;
    // False when a number cell refuses the text (not a number, beyond its limits).
    bool setText(int col, int row, const QString& text);
    // The numeric value of a cell; 0 for empty or non-numeric text.
    double value(int col, int row) const;
    // The text as the operator edits it: numbers without separators.
    QString editText(int col, int row) const;

    QString formula(int col, int row) const;
    void setFormula(int col, int row, const QString& formula);

    bool isLocked(int col, int row) const;
    void setLock(int col, int row, bool locked);

    CellFormat format(int col, int row) const;
    CellFormat columnFormat(int col) const;
    void setFormat(int col, int row, const CellFormat& format);

    std::optional<int> backColor(int col, int row) const;
    void setBackColor(int col, int row, int bgr);
    void setOddEvenRowColor(int oddBack, int oddFore, int evenBack, int evenFore);
    int rowBackColor(int row) const;
    int rowForeColor(int row) const;

    bool isColHidden(int col) const;
    void setColHidden(int col, bool hidden);
    QString colId(int col) const;
    void setColId(int col, const QString& id);
    int colById(const QString& id) const;
    QString colHeaderText(int col) const;
    void setColHeaderText(int col, const QString& text);
    QString rowHeaderText(int row) const;
    void setRowHeaderText(int row, const QString& text);

    // Block actions; a block is columns col..col2 and rows row..row2, -1 meaning all.
    void clearBlock(int col, int row, int col2, int row2);
    // Formulas worked out and every cell announced to the view as changed (after a quiet fill).
    void refreshAll();
    // Cells announced since startTouching (written, cleared, recoloured), as one block; the
    // formulas worked out again and that block told to the view by refreshTouched.
    void startTouching() { m_touched = QRect(); }
    void refreshTouched();
    void moveBlock(int col, int row, int col2, int row2, int destCol, int destRow);
    // Removes rows and adds as many blank ones at the bottom: the row count stays.
    void deleteRows(int row, int count);
    void insertRows(int row, int count);
    // The block with -1 and reversed bounds resolved, clipped to the grid; empty when outside.
    QRect resolveBlock(int col, int row, int col2, int row2) const;

    // ---- list mode (GridModelList.cpp) --------------------------------------------------------
    bool isList() const { return m_list != nullptr; }
    // The rows of source become the grid's rows, the first page read at once and the rest a page
    // at a time between events (or sooner, when a cell of an unread row is asked for).
    // knownRows, when the screen counted them, gives MaxRows at once; -1 lets MaxRows grow as
    // the rows come. fromEnd (with knownRows): the source gives the rows last first, and the rows
    // above the last page are read as they are needed or between events.
    // blankRowsAfter (with knownRows): empty rows after the query's, as setMaxRows adds them.
    void showList(std::unique_ptr<GridRowSource> source, int knownRows, bool fromEnd = false,
                  int blankRowsAfter = 0);
    // Whether the rows after the first page are also read between events (the default), or
    // only as the view scrolls to them or a cell asks: for a list that may hold more rows than
    // memory should.
    void setReadsAhead(bool on) { m_readsAhead = on; }
    bool readsAhead() const { return m_readsAhead; }
    bool isReading() const { return m_list && m_list->reading(); }
    // Whether maxRows() already counts every row (always outside list mode).
    bool rowsKnown() const { return !m_list || m_list->countKnown(); }
    // Reads every row that is left now.
    void finishReading();
    // Reads on until the row exists; false when the list has fewer rows.
    bool readUpTo(int row);
    // The sum of a column as the query worked it out; formulas summing the whole column use it
    // (kept as cells are written and rows deleted) instead of reading every row.
    void setListSum(int col, double sum);
    // The value of a list cell as the query gave it (null outside or in cell mode).
    QVariant listValue(int col, int row) const;
    // Writes a list cell's value as it is (a number stays exact); false outside the list.
    bool setListValue(int col, int row, const QVariant& value);
    // The sum of a column over every row: the query's sum when one was given, else the values
    // added up (every row read first). In cell mode the cells' values.
    double columnTotal(int col);
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    static constexpr int kFirstPage = 200;
    static constexpr int kPage = 2000;

    // Qt model side.
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    // The shown text of a cell changed, by the program, an edit or a formula.
    void cellTextChanged(int col, int row);

private:
    struct Cell {
        QString text; // numbers in their plain form
        QString formula;
        std::optional<int> back;
        std::optional<CellFormat> format;
        bool locked = false;
    };
    struct Row {
        std::vector<Cell> cells;
        std::optional<QString> header;
    };
    struct Column {
        CellFormat format;
        bool locked = false;
        bool hidden = false;
        QString id;
        std::optional<QString> header;
    };

    Cell* cell(int col, int row);
    const Cell* cell(int col, int row) const;
    Row blankRow() const;
    Cell blankCell(int col) const;
    QString storedText(const Cell& c, const CellFormat& f, const QString& text, bool* ok) const;
    void changed(int col, int row);
    void changedBlock(const QRect& block);
    void recalcFormulas(bool placesChanged = true);
    std::optional<double> evaluate(const QString& formula) const;

    // List mode.
    void readListPage(int count);
    void syncListRows();
    void listSetMaxRows(int rows);
    void listSetMaxCols(int cols);
    int listDataRowCnt() const;
    QString listText(int col, int row) const;
    QString listEditText(int col, int row) const;
    bool listSetText(int col, int row, const QString& text);
    void listSetFormula(int col, int row, const QString& formula);
    std::optional<double> listSum(const QRect& block) const;
    void listRecalc();
    void listClearBlock(const QRect& block);
    void listMoveBlock(const QRect& source, int destCol, int destRow);
    void listDeleteRows(int row, int count);
    void listInsertRows(int row, int count);

    std::vector<Row> m_rows;
    std::vector<Column> m_cols;
    bool m_lockAll = false;
    int m_oddBack = kWhiteColor, m_oddFore = 0, m_evenBack = kWhiteColor, m_evenFore = 0;
    bool m_recalculating = false;
    QRect m_touched; // the cells changed since startTouching
    std::vector<QPoint> m_formulaCells;
    std::unique_ptr<GridList> m_list;
    int m_viewRows = 0; // the rows the view has been told of, in list mode
    QTimer* m_pager = nullptr;
    bool m_readsAhead = true;
};

} // namespace nb
