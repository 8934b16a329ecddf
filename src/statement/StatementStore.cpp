#include "statement/StatementStore.h"

#include "common/Messages.h"
#include "common/text/NumberFormat.h"
#include "common/text/StoredNumber.h"
#include "storage/CrossFileQueries.h"
#include "storage/Database.h"

namespace nb {

namespace {

// The icon of a box that reports a failure of the store.
constexpr int kErrorBox = 16;

// A box of a try the server broke off, to be run again, is not shown (RetryingSave).
void errorBox(const QString& text) {
    if (quietRetryWanted()) return;
    MsgBox(text, kErrorBox);
}

// One save in one transaction: rolled back unless committed.
class SaveTransaction {
public:
    explicit SaveTransaction(Database& db) : m_db(db), m_open(db.beginTransaction()) {}
    ~SaveTransaction() {
        if (m_open) m_db.rollback();
    }
    bool started() const { return m_open; }
    // A failed commit has rolled the save back already.
    bool commit() {
        if (!m_open) return false;
        m_open = false;
        return m_db.commit();
    }

private:
    Database& m_db;
    bool m_open;
};

// A write that must touch exactly the rows it names: false when the engine failed
// (engineFailed set) or when no row was touched.
bool touches(Database& db, const QString& sql, const QVariantList& values, bool& engineFailed) {
    engineFailed = !db.tryExecute(sql, values);
    return !engineFailed && db.RecordsAffected() > 0;
}

// The run-time box of a failed save: the headline, the cause in the operator's words, then
// the engine's number and words.
void showRunTimeFailure(Database& db, const QString& text) {
    if (quietRetryWanted()) return;
    ShowError(text + u'\r' + storeFaultText(db.lastEngineCode(), db.lastErrorDescription()),
              db.lastErrorNumber(), db.lastErrorDescription());
}

// The highest BillSEQ of a statement plus one (1 for none); nothing when the read failed.
std::optional<int> nextBillSeq(Database& dbBill, const QString& billNo) {
    Recordset rs;
    if (!OpenSnapshot(dbBill, rs, QStringLiteral("SELECT MAX(BillSEQ) AS seq FROM Detail WHERE BillNo = ?"),
                      {billNo}))
        return std::nullopt;
    const int seq = rs.isNull(QStringLiteral("seq")) ? 1 : int(rs.number(QStringLiteral("seq"))) + 1;
    CloseRs(rs);
    return seq;
}

bool insertHead(Database& dbBill, const NewLine& line, const QString& billNo) {
    bool engineFailed = false;
    if (touches(dbBill,
                QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                               "VALUES (?, ?, ?, 0, 0, 0)"),
                {billNo, line.billDate, line.cCode}, engineFailed))
        return true;
    if (engineFailed)
        showRunTimeFailure(dbBill, QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
    else
        errorBox(QStringLiteral("자료 저장중 Master에서 오류가 발생했습니다."));
    return false;
}

bool insertLineRow(Database& dbBill, const QString& billNo, int seq, const QString& pName) {
    bool engineFailed = false;
    if (touches(
            dbBill,
            QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
                           "VALUES (?, ?, ?, '', 0, 0, 0, 0, 0)"),
            {billNo, seq, pName}, engineFailed))
        return true;
    if (engineFailed)
        showRunTimeFailure(dbBill, QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
    else
        errorBox(QStringLiteral("자료 저장중 Detail에서 오류가 발생했습니다."));
    return false;
}

bool countLine(Database& dbBill, const QString& billNo) {
    bool engineFailed = false;
    if (touches(dbBill, QStringLiteral("UPDATE Master SET NumBill = NumBill + 1 WHERE BillNo = ?"), {billNo},
                engineFailed))
        return true;
    if (engineFailed)
        showRunTimeFailure(dbBill, QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
    else
        errorBox(QStringLiteral("자료 저장중 Master의 거래건수에서 오류가 발생했습니다."));
    return false;
}

// Where each field of a line stands in the rows read, found once by name for all the rows.
struct LineColumns {
    explicit LineColumns(const Recordset& rs)
        : billNo(rs.fieldIndex(QStringLiteral("BillNo"))), billSeq(rs.fieldIndex(QStringLiteral("BillSEQ"))),
          pName(rs.fieldIndex(QStringLiteral("PName"))), unit(rs.fieldIndex(QStringLiteral("Unit"))),
          quant(rs.fieldIndex(QStringLiteral("Quant"))), price(rs.fieldIndex(QStringLiteral("Price"))),
          amount(rs.fieldIndex(QStringLiteral("Amount"))), vat(rs.fieldIndex(QStringLiteral("VAT"))) {}
    int billNo, billSeq, pName, unit, quant, price, amount, vat;
};

StatementLine lineFromRow(const Recordset& rs, const LineColumns& at) {
    StatementLine line;
    line.billNo = rs.text(at.billNo);
    line.billSeq = int(rs.number(at.billSeq));
    line.pName = rs.text(at.pName);
    line.unit = rs.text(at.unit);
    line.quant = rs.number(at.quant);
    line.price = rs.number(at.price);
    line.amount = rs.number(at.amount);
    line.vat = rs.number(at.vat);
    return line;
}

StatementHead headFromRow(const Recordset& rs) {
    StatementHead head;
    head.billNo = rs.text(QStringLiteral("BillNo"));
    head.billDate = rs.text(QStringLiteral("BillDate"));
    head.cCode = rs.text(QStringLiteral("CCode"));
    head.cName = rs.text(QStringLiteral("C_Name"));
    head.totAmount = rs.number(QStringLiteral("TotAmount"));
    head.totVat = rs.number(QStringLiteral("TotVat"));
    head.numBill = int(rs.number(QStringLiteral("NumBill")));
    return head;
}

// The head's total column a line field feeds, empty for the others.
QString headTotalOf(const QString& upperField) {
    if (upperField == QLatin1String("AMOUNT")) return QStringLiteral("TotAmount");
    if (upperField == QLatin1String("VAT")) return QStringLiteral("TotVat");
    return QString();
}

bool deleteLineRows(Database& dbBill, const QString& billNo, int billSeq, const DeletedLine& line) {
    bool engineFailed = false;
    if (!touches(dbBill, QStringLiteral("DELETE FROM Detail WHERE BillNo = ? AND BillSEQ = ?"),
                 {billNo, billSeq}, engineFailed))
        return false;
    return touches(dbBill,
                   QStringLiteral("UPDATE Master SET TotAmount = TotAmount - ?, TotVat = TotVat - ?, "
                                  "NumBill = NumBill - 1 WHERE BillNo = ?"),
                   {line.amount, line.vat, billNo}, engineFailed);
}

bool nothingChosen(const QString& billNo) {
    return NumberFromText(billNo) == 0;
}

} // namespace

std::optional<QString> NextBillNo(Database& dbBill) {
    Recordset rs;
    // Above every line's number too: a line whose head is gone must never join a new statement.
    if (!OpenSnapshot(dbBill, rs,
                      QStringLiteral("SELECT MAX(last) AS last FROM (SELECT MAX(BillNo) AS last FROM Master "
                                     "UNION ALL SELECT MAX(BillNo) FROM Detail) AS numbers")))
        return std::nullopt;
    QString next = kFirstBillNo;
    if (!rs.isNull(QStringLiteral("last")))
        next = FormatNumber(qint64(NumberFromText(rs.text(QStringLiteral("last")))) + 1,
                            QStringLiteral("000000"));
    CloseRs(rs);
    return next;
}

QString billDateFromBox(const QString& txtDate) {
    QString date = txtDate;
    return date.replace(QStringLiteral("년"), QStringLiteral("-"))
        .replace(QStringLiteral("월"), QStringLiteral("-"))
        .remove(QStringLiteral("일"));
}

namespace {

InsertedLine insertLineOnce(Database& dbBill, const NewLine& line) {
    InsertedLine result;
    SaveTransaction save(dbBill);
    if (!save.started()) {
        showRunTimeFailure(dbBill, QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
        return result;
    }
    result.billNo = line.billNo;
    if (result.billNo.isEmpty()) {
        const std::optional<QString> number = NextBillNo(dbBill);
        if (!number) return result;
        result.billNo = *number;
        if (!insertHead(dbBill, line, result.billNo)) return result;
        result.newHead = true;
    }
    const std::optional<int> seq = nextBillSeq(dbBill, result.billNo);
    if (!seq) return result;
    if (!insertLineRow(dbBill, result.billNo, *seq, line.pName)) return result;
    if (!countLine(dbBill, result.billNo)) return result;
    if (!save.commit()) {
        showRunTimeFailure(dbBill, QStringLiteral("자료를 저장하는 중 오류가 발생했습니다."));
        return result;
    }
    result.billSeq = *seq;
    result.ok = true;
    return result;
}

} // namespace

InsertedLine DetailInsert(Database& dbBill, const NewLine& line) {
    // A try the server broke off leaves nothing: the next try takes its numbers anew.
    InsertedLine result;
    RetryingSave([&] {
        result = insertLineOnce(dbBill, line);
        return result.ok;
    });
    return result;
}

bool isLineField(const QString& field) {
    static const QStringList fields{QStringLiteral("PNAME"),  QStringLiteral("UNIT"),
                                    QStringLiteral("QUANT"),  QStringLiteral("PRICE"),
                                    QStringLiteral("AMOUNT"), QStringLiteral("VAT")};
    return fields.contains(field.toUpper());
}

namespace {

// The stored value of a line's field, read inside the save's transaction; nothing (its box
// shown) when the line is not there or the read failed.
std::optional<double> storedLineValue(Database& dbBill, const QString& billNo, int billSeq,
                                      const QString& upperField) {
    Recordset rs;
    if (!OpenSnapshot(dbBill, rs, QStringLiteral("SELECT * FROM Detail WHERE BillNo = ? AND BillSEQ = ?"),
                      {billNo, billSeq}))
        return std::nullopt;
    if (rs.EOF_()) {
        CloseRs(rs);
        errorBox(QStringLiteral("코드[") + billNo + u'_' + QString::number(billSeq) +
                 QStringLiteral("]에 해당하는 자료를 찾을 수 없습니다."));
        return std::nullopt;
    }
    const double value = isLineField(upperField) ? rs.number(upperField) : 0.0;
    CloseRs(rs);
    return value;
}

// A head total after it moves by -diff still fits its column.
bool headTotalFits(Database& dbBill, const QString& billNo, const QString& total, double diff) {
    Recordset rs;
    if (!OpenSnapshot(dbBill, rs,
                      QStringLiteral("SELECT ") + total +
                          QStringLiteral(" AS t FROM Master WHERE BillNo = ?"),
                      {billNo}))
        return false;
    const double moved = rs.number(QStringLiteral("t")) - diff;
    CloseRs(rs);
    return checkStoredNumber(moved, NumberColumn::Amount, QStringLiteral("DetailUpdate"),
                             QStringLiteral("FrmDealList"), ReportOwner::Form);
}

bool isNumberField(const QString& upperField) {
    return upperField == u"QUANT" || upperField == u"PRICE" || upperField == u"AMOUNT" ||
           upperField == u"VAT";
}

UpdatedLine updateLineOnce(Database& dbBill, const QString& billNo, int billSeq, const QString& upperField,
                           const QVariant& value);

} // namespace

UpdatedLine DetailUpdate(Database& dbBill, const QString& billNo, int billSeq, const QString& field,
                         const QVariant& value) {
    const QString upperField = field.toUpper();
    UpdatedLine result;
    result.field = upperField;
    if (billSeq == -1) {
        errorBox(QStringLiteral("내역순번 정의 오류입니다."));
        return result;
    }
    if (isNumberField(result.field) &&
        !checkStoredNumber(value.toDouble(), NumberColumn::Amount, QStringLiteral("DetailUpdate"),
                           QStringLiteral("FrmDealList"), ReportOwner::Form))
        return result;
    RetryingSave([&] {
        result = updateLineOnce(dbBill, billNo, billSeq, upperField, value);
        return result.ok;
    });
    return result;
}

namespace {

UpdatedLine updateLineOnce(Database& dbBill, const QString& billNo, int billSeq, const QString& upperField,
                           const QVariant& value) {
    UpdatedLine result;
    result.field = upperField;
    // The old value and the head's total are read inside the save, begun as a write, so another
    // running copy cannot change the line between the read and the move.
    SaveTransaction save(dbBill);
    if (!save.started()) {
        showRunTimeFailure(dbBill, QStringLiteral("자료를 수정하는 중 오류가 발생했습니다."));
        return result;
    }
    const std::optional<double> stored = storedLineValue(dbBill, billNo, billSeq, result.field);
    if (!stored) return result;
    if (!isLineField(result.field)) {
        errorBox(QStringLiteral("자료를 수정하는 중 오류가 발생했습니다."));
        return result;
    }
    const QString total = headTotalOf(result.field);
    const double diff = total.isEmpty() ? 0.0 : *stored - value.toDouble();
    if (diff != 0.0 && !headTotalFits(dbBill, billNo, total, diff)) return result;
    bool engineFailed = false;
    const bool headMoved =
        diff == 0.0 || touches(dbBill,
                               QStringLiteral("UPDATE Master SET ") + total + QStringLiteral(" = ") + total +
                                   QStringLiteral(" - ? WHERE BillNo = ?"),
                               {diff, billNo}, engineFailed);
    const bool lineChanged =
        headMoved && touches(dbBill,
                             QStringLiteral("UPDATE Detail SET ") + quoteName(result.field) +
                                 QStringLiteral(" = ? WHERE BillNo = ? AND BillSEQ = ?"),
                             {value, billNo, billSeq}, engineFailed);
    if (!lineChanged || !save.commit()) {
        showRunTimeFailure(dbBill, QStringLiteral("자료를 수정하는 중 오류가 발생했습니다."));
        return result;
    }
    result.diff = diff;
    result.ok = true;
    return result;
}

} // namespace

namespace {

StatementDeleteOutcome deleteStatementOnce(Database& dbBill, const QString& billNo) {
    SaveTransaction save(dbBill);
    bool engineFailed = false;
    const bool gone =
        save.started() &&
        touches(dbBill, QStringLiteral("DELETE FROM Master WHERE BillNo = ?"), {billNo}, engineFailed) &&
        dbBill.tryExecute(QStringLiteral("DELETE FROM Detail WHERE BillNo = ?"), {billNo});
    if (!gone) {
        errorBox(QStringLiteral("삭제도중 오류가 발생했습니다."));
        return StatementDeleteOutcome::Failed;
    }
    if (!save.commit()) {
        showRunTimeFailure(dbBill, QStringLiteral("삭제도중 오류가 발생했습니다."));
        return StatementDeleteOutcome::Failed;
    }
    return StatementDeleteOutcome::Deleted;
}

DeletedLine deleteLineOnce(Database& dbBill, const QString& billNo, int billSeq) {
    DeletedLine result;
    // What the delete moves is read inside its transaction, begun as a write.
    SaveTransaction save(dbBill);
    if (!save.started()) {
        showRunTimeFailure(dbBill, QStringLiteral("삭제도중 오류가 발생했습니다."));
        return result;
    }
    Recordset rs;
    if (!OpenSnapshot(dbBill, rs, QStringLiteral("SELECT count(*) AS lines FROM Detail WHERE BillNo = ?"),
                      {billNo}))
        return result;
    const int lines = int(rs.number(QStringLiteral("lines")));
    CloseRs(rs);
    if (lines == 1) {
        const bool gone = deleteStatementOnce(dbBill, billNo) == StatementDeleteOutcome::Deleted;
        if (gone && !save.commit()) {
            showRunTimeFailure(dbBill, QStringLiteral("삭제도중 오류가 발생했습니다."));
            return result;
        }
        result.outcome = gone ? LineDeleteOutcome::WholeStatement : LineDeleteOutcome::Failed;
        return result;
    }
    if (!OpenSnapshot(dbBill, rs,
                      QStringLiteral("SELECT Amount, VAT FROM Detail WHERE BillNo = ? AND BillSEQ = ?"),
                      {billNo, billSeq}))
        return result;
    if (rs.EOF_()) {
        CloseRs(rs);
        result.outcome = LineDeleteOutcome::NotFound;
        errorBox(QStringLiteral("거래자료를 찾을 수 없습니다.") + billNo + u'_' + QString::number(billSeq));
        return result;
    }
    result.amount = rs.number(QStringLiteral("Amount"));
    result.vat = rs.number(QStringLiteral("VAT"));
    CloseRs(rs);
    if (!deleteLineRows(dbBill, billNo, billSeq, result)) {
        errorBox(QStringLiteral("삭제도중 오류가 발생했습니다."));
        return result;
    }
    if (!save.commit()) {
        showRunTimeFailure(dbBill, QStringLiteral("삭제도중 오류가 발생했습니다."));
        return result;
    }
    result.outcome = LineDeleteOutcome::Deleted;
    return result;
}

} // namespace

DeletedLine DeleteLine(Database& dbBill, const QString& billNo, int billSeq) {
    DeletedLine result;
    if (nothingChosen(billNo) || billSeq == 0) {
        result.outcome = LineDeleteOutcome::NothingChosen;
        ShowWarning(QStringLiteral("삭제할 행을 먼저 선택하세요."));
        return result;
    }
    if (AskYesNo(QStringLiteral("선택된 거래내역을 삭제하시겠습니까?"), QStringLiteral("거래내역 삭제"),
                 false) != AnsYes) {
        result.outcome = LineDeleteOutcome::Declined;
        return result;
    }
    // Asked once; a try the server broke off is run again without asking.
    RetryingSave([&] {
        result = deleteLineOnce(dbBill, billNo, billSeq);
        return result.outcome == LineDeleteOutcome::Deleted ||
               result.outcome == LineDeleteOutcome::WholeStatement;
    });
    return result;
}

StatementDeleteOutcome DeleteStatement(Database& dbBill, const QString& billNo, bool skipPrompt) {
    if (nothingChosen(billNo)) {
        ShowWarning(QStringLiteral("삭제할 행을 먼저 선택하세요."));
        return StatementDeleteOutcome::NothingChosen;
    }
    if (!skipPrompt && AskYesNo(QStringLiteral("선택된 전표를 삭제하시겠습니까?"),
                                QStringLiteral("기존발행전표 삭제"), false) != AnsYes)
        return StatementDeleteOutcome::Declined;
    StatementDeleteOutcome outcome = StatementDeleteOutcome::Failed;
    RetryingSave([&] {
        outcome = deleteStatementOnce(dbBill, billNo);
        return outcome == StatementDeleteOutcome::Deleted;
    });
    return outcome;
}

std::optional<QList<StatementHead>> ReadStatementList(Database& dbBill, const QString& basicFile,
                                                      const QString& from, const QString& to,
                                                      const QString& cCode) {
    Recordset rs;
    if (!OpenStatementList(dbBill, basicFile, rs, from, to, cCode)) return std::nullopt;
    QList<StatementHead> heads;
    heads.reserve(rs.RecordCount());
    for (; !rs.EOF_(); rs.MoveNext())
        heads.append(headFromRow(rs));
    CloseRs(rs);
    return heads;
}

std::optional<QList<StatementLine>> ReadStatementLines(Database& dbBill, const QString& billNo) {
    Recordset rs;
    if (!OpenSnapshot(dbBill, rs, QStringLiteral("SELECT * FROM Detail WHERE BillNo = ? ORDER BY BillSEQ"),
                      {billNo}))
        return std::nullopt;
    QList<StatementLine> lines;
    lines.reserve(rs.RecordCount());
    const LineColumns columns(rs);
    for (; !rs.EOF_(); rs.MoveNext())
        lines.append(lineFromRow(rs, columns));
    CloseRs(rs);
    return lines;
}

int detailRowCount(int lineCount) {
    return lineCount < 15 ? 15 : lineCount + 1;
}

std::optional<QString> PeriodTotalText(Database& dbBill, const QString& from, const QString& to) {
    Recordset rs;
    if (!OpenSnapshot(
            dbBill, rs,
            QStringLiteral("Select Sum(totamount+totvat) from master Where billdate Between ? and ?"),
            {from, to}))
        return std::nullopt;
    const QVariant total = rs.EOF_() ? QVariant() : rs.field(0);
    CloseRs(rs);
    if (total.isNull()) return QStringLiteral("0 ");
    return FormatNumber(total.toDouble(), kMaskSum) + u' ';
}

} // namespace nb
