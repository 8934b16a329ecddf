#include "statement/DealListModel.h"

#include "storage/CrossFileQueries.h"
#include "storage/StatementListFromEnd.h"

namespace nb {

namespace {

// The list's own rows when no grid shows them: the columns and number types of spMaster.
std::unique_ptr<GridModel> ownListRows() {
    auto rows = std::make_unique<GridModel>();
    rows->setMaxCols(ColSumTotal);
    CellFormat number;
    number.type = CellType::Float;
    number.separator = true;
    rows->setFormat(ColNumBill, kAllCells, number);
    rows->setFormat(ColTotal, kAllCells, number);
    return rows;
}

} // namespace

DealListModel::DealListModel(Database& dbBill) : m_db(dbBill), m_ownRows(ownListRows()) {
    showListIn(nullptr);
}

DealListModel::~DealListModel() = default;

void DealListModel::showListIn(GridModel* rows) {
    m_rows = rows ? rows : m_ownRows.get();
    if (!m_rows->isList()) {
        m_rows->showList(nullptr, 0);
        m_rows->setMaxRows(1);
    }
}

void DealListModel::setTrader(const QString& cCode, const QString& cName) {
    m_cCode = cCode;
    m_cName = cName;
}

// The list stands on the empty row after the last statement: a short list is read whole at
// once; a longer one from the end, the last page at once and the rest between events (or as
// soon as something asks for a row above), with the sums under it from the query's count.
bool DealListModel::masterList(const QString& basicFile, const QString& from, const QString& to,
                               bool onlyTrader) {
    m_listRead = ListRead{basicFile, from, to, onlyTrader ? m_cCode : QString()};
    const bool ok = readList();
    showMasterRow(masterRowCount());
    return ok;
}

bool DealListModel::readList() {
    const ListRead& read = *m_listRead;
    auto rows = std::make_unique<StatementListFromEnd>(m_db, read.basicFile, read.from, read.to, read.cCode);
    rows->setListWidth(m_rows->maxCols());
    const bool ok = rows->open();
    if (ok) {
        const int count = rows->rows();
        const double lines = rows->lines(), total = rows->total();
        const bool fromEnd = rows->fromEnd();
        m_rows->showList(std::move(rows), count, fromEnd, 1); // with the empty last row
        m_rows->setListSum(ColNumBill, lines);
        m_rows->setListSum(ColTotal, total);
    } else {
        m_rows->showList(nullptr, 0, false, 1);
    }
    return ok;
}

DealListModel::Relisted DealListModel::relist() {
    if (!m_listRead) return Relisted::NotRead;
    const QString billNo = selectedBillNo();
    readList();
    m_activeMaster = masterRowCount();
    if (billNo.isEmpty()) return Relisted::Kept; // it stood on the empty row, and stays there
    // From the end, where the list was read first and the screen mostly stands.
    for (int row = masterCount(); row >= 1; --row)
        if (m_rows->text(ColMasterBillNo, row) == billNo) {
            m_activeMaster = row;
            return Relisted::Kept;
        }
    detailList(QString());
    return Relisted::Gone;
}

ListedStatement DealListModel::listed(int row) const {
    ListedStatement head;
    if (row < 1 || row > masterCount()) return head;
    const GridModel& rows = *m_rows;
    head.billDate = rows.text(ColBillDate, row);
    head.cName = rows.text(ColCName, row);
    head.numBill = int(rows.value(ColNumBill, row));
    head.total = rows.value(ColTotal, row);
    head.billNo = rows.text(ColMasterBillNo, row);
    head.cCode = rows.text(ColCCode, row);
    return head;
}

void DealListModel::showMasterRow(int row) {
    m_activeMaster = qBound(1, row, masterRowCount());
    detailList(selectedBillNo());
}

void DealListModel::chooseMaster(int row) {
    m_activeMaster = qBound(1, row, masterRowCount());
    const ListedStatement head = listed(m_activeMaster);
    if (head.cCode != m_cCode) setTrader(head.cCode, head.cName);
    detailList(selectedBillNo());
}

void DealListModel::newMaster() {
    setTrader(QString(), QString());
    showMasterRow(masterRowCount());
}

// The empty row after the last statement (no number) has no lines: nothing is read for it.
void DealListModel::detailList(const QString& billNo) {
    m_lines = billNo.isEmpty() ? QList<StatementLine>()
                               : ReadStatementLines(m_db, billNo).value_or(QList<StatementLine>());
    m_gong = 0;
    m_se = 0;
    m_preMisu = 0;
    for (const StatementLine& line : m_lines) {
        m_gong += line.amount;
        m_se += line.vat;
    }
    m_activeDetail = int(m_lines.size()) + 1;
}

QString DealListModel::selectedBillNo() const {
    return onListedRow() ? m_rows->text(ColMasterBillNo, m_activeMaster) : QString();
}

void DealListModel::moveActiveHead(int numBill, double total) {
    if (!onListedRow()) return;
    m_rows->setListValue(ColNumBill, m_activeMaster, m_rows->value(ColNumBill, m_activeMaster) + numBill);
    m_rows->setListValue(ColTotal, m_activeMaster, m_rows->value(ColTotal, m_activeMaster) + total);
}

// A new statement takes the empty last row, and a new empty row follows it.
void DealListModel::appendHead(const QString& billNo) {
    const int row = masterRowCount();
    m_rows->setText(ColBillDate, row, billDateFromBox(m_txtDate));
    m_rows->setText(ColCName, row, m_cName);
    m_rows->setText(ColNumBill, row, QStringLiteral("0"));
    m_rows->setText(ColTotal, row, QStringLiteral("0"));
    m_rows->setText(ColMasterBillNo, row, billNo);
    m_rows->setText(ColCCode, row, m_cCode);
    m_rows->setMaxRows(row + 1);
    m_activeMaster = row;
}

int DealListModel::selectedBillSeq() const {
    return m_activeDetail >= 1 && m_activeDetail <= m_lines.size() ? m_lines[m_activeDetail - 1].billSeq : 0;
}

int DealListModel::periodCount() const {
    return int(m_rows->columnTotal(ColNumBill));
}

double DealListModel::periodTotal() const {
    return m_rows->columnTotal(ColTotal);
}

bool DealListModel::insertLine(const QString& pName) {
    const InsertedLine saved =
        DetailInsert(m_db, {selectedBillNo(), billDateFromBox(m_txtDate), m_cCode, pName});
    if (!saved.ok) return false;
    if (saved.newHead) appendHead(saved.billNo);
    moveActiveHead(1, 0);
    StatementLine line;
    line.billNo = saved.billNo;
    line.billSeq = saved.billSeq;
    line.pName = pName;
    m_lines.append(line);
    m_activeDetail = int(m_lines.size());
    return true;
}

bool DealListModel::updateField(const QString& field, const QVariant& value) {
    if (m_activeDetail < 1 || m_activeDetail > m_lines.size()) return false;
    StatementLine& line = m_lines[m_activeDetail - 1];
    const UpdatedLine saved = DetailUpdate(m_db, line.billNo, line.billSeq, field, value);
    if (!saved.ok) return false;
    if (saved.field == QLatin1String("PNAME"))
        line.pName = value.toString();
    else if (saved.field == QLatin1String("UNIT"))
        line.unit = value.toString();
    else if (saved.field == QLatin1String("QUANT"))
        line.quant = value.toDouble();
    else if (saved.field == QLatin1String("PRICE"))
        line.price = value.toDouble();
    else if (saved.field == QLatin1String("AMOUNT")) {
        line.amount = value.toDouble();
        m_gong -= saved.diff;
        moveActiveHead(0, -saved.diff);
    } else if (saved.field == QLatin1String("VAT")) {
        line.vat = value.toDouble();
        m_se -= saved.diff;
        moveActiveHead(0, -saved.diff);
    }
    return true;
}

LineDeleteOutcome DealListModel::deleteLine() {
    const DeletedLine gone = DeleteLine(m_db, selectedBillNo(), selectedBillSeq());
    if (gone.outcome == LineDeleteOutcome::WholeStatement) {
        removeActiveMaster();
    } else if (gone.outcome == LineDeleteOutcome::Deleted) {
        m_lines.removeAt(m_activeDetail - 1);
        m_gong -= gone.amount;
        m_se -= gone.vat;
        moveActiveHead(-1, -(gone.amount + gone.vat));
    }
    return gone.outcome;
}

StatementDeleteOutcome DealListModel::deleteStatement(bool skipPrompt) {
    const StatementDeleteOutcome outcome = DeleteStatement(m_db, selectedBillNo(), skipPrompt);
    if (outcome == StatementDeleteOutcome::Deleted) removeActiveMaster();
    return outcome;
}

// The screen moves to the row that takes the removed one's place and to its trader (none for
// the empty row).
void DealListModel::removeActiveMaster() {
    m_rows->deleteRows(m_activeMaster, 1);
    m_rows->setMaxRows(m_rows->dataRowCnt());
    m_rows->setMaxRows(m_rows->maxRows() + 1); // the empty last row stands again
    chooseMaster(m_activeMaster);
}

ShownStatement DealListModel::shown() const {
    ShownStatement statement;
    if (onListedRow()) {
        const ListedStatement row = listed(m_activeMaster);
        statement.head.billNo = row.billNo;
        statement.head.billDate = row.billDate;
        statement.head.cCode = row.cCode;
        statement.head.cName = row.cName;
        statement.head.numBill = row.numBill;
        // The head's totals are its lines' (a save moves both in one transaction).
        statement.head.totAmount = m_gong;
        statement.head.totVat = m_se;
    }
    statement.lines = m_lines;
    return statement;
}

} // namespace nb
