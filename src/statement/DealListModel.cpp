#include "statement/DealListModel.h"

namespace nb {

void DealListModel::setTrader(const QString& cCode, const QString& cName) {
    m_cCode = cCode;
    m_cName = cName;
}

bool DealListModel::masterList(const QString& basicFile, const QString& from, const QString& to,
                               bool onlyTrader) {
    const auto heads = ReadStatementList(m_db, basicFile, from, to, onlyTrader ? m_cCode : QString());
    m_masters = heads.value_or(QList<StatementHead>());
    showMasterRow(int(m_masters.size()) + 1);
    return heads.has_value();
}

void DealListModel::showMasterRow(int row) {
    m_activeMaster = qBound(1, row, masterRowCount());
    detailList(selectedBillNo());
}

void DealListModel::chooseMaster(int row) {
    m_activeMaster = qBound(1, row, masterRowCount());
    const StatementHead* head = activeHead();
    const QString cCode = head ? head->cCode : QString();
    if (cCode != m_cCode) setTrader(cCode, head ? head->cName : QString());
    detailList(selectedBillNo());
}

void DealListModel::newMaster() {
    setTrader(QString(), QString());
    showMasterRow(masterRowCount());
}

void DealListModel::detailList(const QString& billNo) {
    m_lines = ReadStatementLines(m_db, billNo).value_or(QList<StatementLine>());
    m_gong = 0;
    m_se = 0;
    m_preMisu = 0;
    for (const StatementLine& line : m_lines) {
        m_gong += line.amount;
        m_se += line.vat;
    }
    m_activeDetail = int(m_lines.size()) + 1;
}

StatementHead* DealListModel::activeHead() {
    return m_activeMaster <= m_masters.size() ? &m_masters[m_activeMaster - 1] : nullptr;
}

QString DealListModel::selectedBillNo() const {
    return m_activeMaster <= m_masters.size() ? m_masters[m_activeMaster - 1].billNo : QString();
}

int DealListModel::selectedBillSeq() const {
    return m_activeDetail >= 1 && m_activeDetail <= m_lines.size() ? m_lines[m_activeDetail - 1].billSeq : 0;
}

int DealListModel::periodCount() const {
    int count = 0;
    for (const StatementHead& head : m_masters)
        count += head.numBill;
    return count;
}

double DealListModel::periodTotal() const {
    double total = 0;
    for (const StatementHead& head : m_masters)
        total += head.total();
    return total;
}

bool DealListModel::insertLine(const QString& pName) {
    const InsertedLine saved =
        DetailInsert(m_db, {selectedBillNo(), billDateFromBox(m_txtDate), m_cCode, pName});
    if (!saved.ok) return false;
    if (saved.newHead) {
        m_masters.append({saved.billNo, billDateFromBox(m_txtDate), m_cCode, m_cName, 0, 0, 0});
        m_activeMaster = int(m_masters.size());
    }
    activeHead()->numBill += 1;
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
        activeHead()->totAmount -= saved.diff;
    } else if (saved.field == QLatin1String("VAT")) {
        line.vat = value.toDouble();
        m_se -= saved.diff;
        activeHead()->totVat -= saved.diff;
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
        StatementHead* head = activeHead();
        head->totAmount -= gone.amount;
        head->totVat -= gone.vat;
        head->numBill -= 1;
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
    m_masters.removeAt(m_activeMaster - 1);
    chooseMaster(m_activeMaster);
}

ShownStatement DealListModel::shown() const {
    ShownStatement statement;
    if (m_activeMaster <= m_masters.size()) statement.head = m_masters[m_activeMaster - 1];
    statement.lines = m_lines;
    return statement;
}

} // namespace nb
