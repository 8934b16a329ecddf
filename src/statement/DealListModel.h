#pragma once
// What the statement screen shows, without a window: the statement list of the date range with
// its empty last row, the lines of the chosen statement with the pending row where a new line
// is typed, the three totals, and every save moving them as the store moved. The screen draws
// this; tests and the print read it.

#include "common/grid/GridModel.h"
#include "statement/StatementStore.h"

#include <memory>
#include <optional>

namespace nb {

// The columns of spMaster, the list of statements.
enum MasterCol : int {
    ColBillDate = 1,
    ColCName,
    ColNumBill,
    ColTotal,
    ColMasterBillNo,
    ColCCode,
    ColSumCount,
    ColSumTotal,
};

// One statement of the list as its row shows it.
struct ListedStatement {
    QString billDate;
    QString cName;
    int numBill = 0;
    double total = 0; // TotAmount + TotVat
    QString billNo;
    QString cCode;
};

// The statement the screen stands on, as the print needs it.
struct ShownStatement {
    StatementHead head; // empty number for a new statement
    QList<StatementLine> lines;
};

class DealListModel {
public:
    // Until showListIn gives it the screen's list, the model keeps the list's rows itself.
    explicit DealListModel(Database& dbBill);
    ~DealListModel();
    // The statement list lives in the cells of the grid that shows it (spMaster, columns as
    // MasterCol, one empty last row): the model fills them from the query and writes the
    // changes its saves make, so the list is held once.
    void showListIn(GridModel* rows);
    GridModel& masterRows() { return *m_rows; }

    // The trader and date the next new statement is made with.
    void setTrader(const QString& cCode, const QString& cName);
    void setDateBox(const QString& txtDate) { m_txtDate = txtDate; }
    QString traderCode() const { return m_cCode; }

    // Statements of the range (of the chosen trader when one is set and onlyTrader); stands on
    // the empty last row afterwards, so the screen is on a new statement.
    bool masterList(const QString& basicFile, const QString& from, const QString& to, bool onlyTrader);
    // The list read again as it was last read (the same range, the same trader or all), to show
    // what another seat saved meanwhile. The screen stays on its statement, found again by its
    // number, and its lines stay as they are; Gone when that statement is no longer listed
    // (deleted meanwhile): the screen then stands on the empty row with no lines.
    enum class Relisted { NotRead, Kept, Gone };
    Relisted relist();
    // The operator chooses a row of the list (1-based; the row after the last is the empty
    // one): its trader becomes the chosen one (none for the empty row) and its lines show.
    void chooseMaster(int row);
    // btnNewMaster: no trader, the empty row, no lines.
    void newMaster();
    // Statements listed, and one of them by its row (1-based; empty outside).
    int masterCount() const { return std::max(0, m_rows->maxRows() - 1); }
    ListedStatement listed(int row) const;
    int masterRowCount() const { return masterCount() + 1; } // with the empty row
    int activeMasterRow() const { return m_activeMaster; }

    // spDetail: the lines, the pending row after them when a trader is chosen, at least 15 rows.
    const QList<StatementLine>& lines() const { return m_lines; }
    int dataRowCount() const { return int(m_lines.size()) + (hasPendingRow() ? 1 : 0); }
    int detailRowCount() const { return nb::detailRowCount(int(m_lines.size())); }
    bool hasPendingRow() const { return !m_cCode.isEmpty(); }
    void setActiveDetailRow(int row) { m_activeDetail = row; }
    int activeDetailRow() const { return m_activeDetail; }

    // SelectedBillNo / SelectedBillSeq of the active rows (empty / 0 for the empty and
    // pending rows).
    QString selectedBillNo() const;
    int selectedBillSeq() const;

    double gong() const { return m_gong; }
    double se() const { return m_se; }
    double sum() const { return m_gong + m_se; }
    // The balance typed for the print (not stored; each list of lines sets it to 0) and the
    // total with it.
    void setPreMisu(double value) { m_preMisu = value; }
    double preMisu() const { return m_preMisu; }
    double misu() const { return sum() + m_preMisu; }
    // The list's two sums: lines and total of all shown statements.
    int periodCount() const;
    double periodTotal() const;

    // A product text typed on the pending row becomes a new line (and on a new statement its
    // head, which joins the list); false when the save failed (its box shown).
    bool insertLine(const QString& pName);
    // One field of the active line; the totals follow for amount and VAT.
    bool updateField(const QString& field, const QVariant& value);
    // F4 on the active line, and F4 on the active statement.
    LineDeleteOutcome deleteLine();
    StatementDeleteOutcome deleteStatement(bool skipPrompt = false);

    ShownStatement shown() const;

private:
    bool readList();
    void detailList(const QString& billNo);
    void showMasterRow(int row);
    bool onListedRow() const { return m_activeMaster >= 1 && m_activeMaster <= masterCount(); }
    // Moves the active statement's count and total as a save moved its head.
    void moveActiveHead(int numBill, double total);
    void appendHead(const QString& billNo);
    void removeActiveMaster();

    Database& m_db;
    QString m_cCode;
    QString m_cName;
    QString m_txtDate;
    // What the list was last read with (masterList), for relist.
    struct ListRead {
        QString basicFile, from, to, cCode;
    };
    std::optional<ListRead> m_listRead;
    std::unique_ptr<GridModel> m_ownRows;
    GridModel* m_rows = nullptr;
    int m_activeMaster = 1;
    QList<StatementLine> m_lines;
    int m_activeDetail = 1;
    double m_gong = 0;
    double m_se = 0;
    double m_preMisu = 0;
};

} // namespace nb
