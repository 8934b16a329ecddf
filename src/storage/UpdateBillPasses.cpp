// The passes of the old statement move: each one statement over a whole table of the old file,
// attached to the statement store's connection as "old", with the program's own arithmetic
// (a line's number in its statement, its amount and VAT, a head's totals) given to the engine as
// functions. A million lines move at about the speed of the engine's own bulk copy.
#include "common/Messages.h"
#include "storage/Database.h"
#include "storage/UpdateBill.h"

#include <QSqlDriver>
#include <QSqlQuery>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <unordered_map>

namespace nb {
namespace {

const QString kRowLost = QStringLiteral("DB교체 작업중 오류가 발생하여 옮기지 못한 자료가 발생했습니다.");
const QString kTotalLost =
    QStringLiteral("DB교체 작업중 오류가 발생하여 합계금액을 계산하지 못한 자료가 발생했습니다.");
const QString kVatTitle = QStringLiteral("부가세 계산방법 선택");
const QString kProgressCaption = QStringLiteral("거래명세표 자료 옮기는 중...");

QString vatQuestionText() {
    return QStringLiteral("신버전에서는 저장시 부가세를 발행당시 금액 그대로 저장합니다.\r\n"
                          "하지만, 자료를 옮기는 도중 [면세]인지 [부가세 포함]인지를 알수 없는 경우가\r\n"
                          "발생하였습니다. 이경우 어떻게 처리하길 원하십니까?\r\n"
                          "부가세 포함으로 처리할까요?\r\n\r\n"
                          "[  예  ]를 선택할 경우 [부가세 포함]으로 처리\r\n"
                          "[아니오]를 선택할 경우 [면세]로 처리\r\n\r\n"
                          "※모든자료에 대해서 일괄적으로 처리되며, 부가세 별도인 경우는 제대로 처리됩니다.");
}

int countOf(Database& db, const QString& table) {
    QSqlQuery q(db.connection());
    return q.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table) && q.next() ? q.value(0).toInt() : 0;
}

sqlite3* engineOf(Database& db) {
    const QVariant handle = db.connection().driver()->handle();
    return handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0
               ? *static_cast<sqlite3* const*>(handle.data())
               : nullptr;
}

// A column's value as a number, as the rest of the program reads a stored value: a text through
// its C-locale reading (0 when it is none), nothing as 0.
double numberOf(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        return double(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
        return sqlite3_value_double(value);
    case SQLITE_TEXT:
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                                 sqlite3_value_bytes(value))
            .toDouble();
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char*>(sqlite3_value_blob(value)), sqlite3_value_bytes(value))
            .toDouble();
    default:
        return 0;
    }
}

// One statement run to its end on the engine; false with the query helpers' box (as their
// snapshots show it) when it fails. `firstStep` answers what its first step gave.
bool runOnEngine(sqlite3* engine, const QString& sql, int* firstStep = nullptr) {
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(engine, sql.toUtf8().constData(), -1, &statement, nullptr);
    if (rc == SQLITE_OK) rc = sqlite3_step(statement);
    if (firstStep) *firstStep = rc;
    sqlite3_finalize(statement);
    if (rc == SQLITE_DONE || (firstStep && rc == SQLITE_ROW)) return true;
    const QString text = QString::fromUtf8(sqlite3_errmsg(engine));
    ReportQueryFailure(errorNumberFor(text, sqlite3_errcode(engine)), text, sql);
    return false;
}

// The lines of one statement code as they were moved: their count and sums, added in the order
// the lines were written, as the engine's SUM adds them from the store.
struct LineGroup {
    int lines = 0;
    double amount = 0;
    double vat = 0;
    bool headed = false;
};

struct CodeHash {
    using is_transparent = void;
    size_t operator()(std::string_view code) const { return std::hash<std::string_view>{}(code); }
};

// Lines first, then heads, then the heads' totals. A head takes the sums of its lines as it is
// written when the store held no statement before (what the sums of the store's lines would
// give); otherwise every head with lines takes their sums from the store afterwards, as always.
class Conversion {
public:
    Conversion(Database& oldDb, Database& newDb) : m_old(oldDb), m_engine(engineOf(newDb)) {}
    ~Conversion() {
        for (const char* name : kFunctions)
            if (m_engine)
                sqlite3_create_function_v2(m_engine, name, -1, SQLITE_UTF8, nullptr, nullptr, nullptr,
                                           nullptr, nullptr);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    bool run() {
        if (!m_engine) return false;
        Progress progress(kProgressCaption, countOf(m_old, QStringLiteral("DealTitle")) +
                                                countOf(m_old, QStringLiteral("DealList")));
        m_progress = &progress;
        defineFunctions();
        int found = SQLITE_DONE;
        m_sumsAtWriting =
            runOnEngine(m_engine,
                        QStringLiteral("SELECT 1 FROM Master UNION ALL SELECT 1 FROM Detail LIMIT 1"),
                        &found) &&
            found == SQLITE_DONE;
        const bool ok = moveLines() && moveHeads() && writeTotals();
        m_progress = nullptr;
        return ok;
    }

private:
    static constexpr const char* kFunctions[] = {"nb_counted",    "nb_line_no",   "nb_unclear",
                                                 "nb_old_amount", "nb_old_vat",   "nb_head_amount",
                                                 "nb_head_vat",   "nb_head_lines"};
    using Callback = void (*)(sqlite3_context*, int, sqlite3_value**);

    void defineFunctions() {
        const std::pair<int, Callback> callbacks[] = {{0, &counted},   {1, &lineNo},   {3, &unclear},
                                                      {5, &oldAmount}, {5, &oldVat},   {1, &headAmount},
                                                      {1, &headVat},   {1, &headLines}};
        for (size_t i = 0; i < std::size(kFunctions); ++i)
            sqlite3_create_function_v2(m_engine, kFunctions[i], callbacks[i].first, SQLITE_UTF8, this,
                                       callbacks[i].second, nullptr, nullptr, nullptr);
    }
    static Conversion& self(sqlite3_context* context) {
        return *static_cast<Conversion*>(sqlite3_user_data(context));
    }

    // The lines of a statement code as the store keeps the code in a text column; all lines
    // without a code are one group, which no head can take.
    LineGroup& groupOf(sqlite3_value* code) {
        if (sqlite3_value_type(code) == SQLITE_NULL) return m_uncoded;
        const std::string_view text(reinterpret_cast<const char*>(sqlite3_value_text(code)),
                                    size_t(sqlite3_value_bytes(code)));
        if (m_last && m_last->first == text) return m_last->second; // a statement's lines come together
        auto it = m_groups.find(text);
        if (it == m_groups.end()) it = m_groups.emplace(std::string(text), LineGroup{}).first;
        m_last = &*it;
        return it->second;
    }

    // In a WHERE clause: each row read steps the progress once.
    static void counted(sqlite3_context* context, int, sqlite3_value**) {
        Conversion& c = self(context);
        if (c.m_progress) c.m_progress->step();
        ++c.m_rowsRead;
        sqlite3_result_int(context, 1);
    }
    // The engine hands the lines of one statement over in the order they were written (the
    // table's order, before the sort and after it alike), so the count so far is the number.
    // Each line read steps the progress once, here, where every line passes once.
    static void lineNo(sqlite3_context* context, int, sqlite3_value** v) {
        Conversion& c = self(context);
        if (c.m_progress) c.m_progress->step();
        ++c.m_rowsRead;
        sqlite3_result_int(context, ++c.groupOf(v[0]).lines);
    }
    static void unclear(sqlite3_context* context, int, sqlite3_value** v) {
        sqlite3_result_int(context, oldLineIsUnclear(numberOf(v[0]), numberOf(v[1]), numberOf(v[2])));
    }
    // A line's amount and VAT and its statement's lines, found once for its row (v[0] its rowid,
    // v[1] its code).
    const OldLineSplit& split(sqlite3_value** v) {
        const sqlite3_int64 row = sqlite3_value_int64(v[0]);
        if (!m_splitRow || *m_splitRow != row) {
            m_split = splitOldLine(numberOf(v[2]), numberOf(v[3]), numberOf(v[4]), m_choice);
            m_splitGroup = &groupOf(v[1]);
            m_splitRow = row;
        }
        return m_split;
    }
    static void oldAmount(sqlite3_context* context, int, sqlite3_value** v) {
        Conversion& c = self(context);
        const double amount = c.split(v).amount;
        c.m_splitGroup->amount += amount;
        sqlite3_result_double(context, amount);
    }
    static void oldVat(sqlite3_context* context, int, sqlite3_value** v) {
        Conversion& c = self(context);
        const double vat = c.split(v).vat;
        c.m_splitGroup->vat += vat;
        sqlite3_result_double(context, vat);
    }
    // A head's totals as it is written: its lines' sums, or the zeros of a head without lines.
    LineGroup* linesOfHead(sqlite3_value* code) {
        if (!m_sumsAtWriting || sqlite3_value_type(code) == SQLITE_NULL) return nullptr;
        LineGroup& group = groupOf(code);
        group.headed = true;
        return group.lines > 0 ? &group : nullptr;
    }
    static void headAmount(sqlite3_context* context, int, sqlite3_value** v) {
        const LineGroup* group = self(context).linesOfHead(v[0]);
        group ? sqlite3_result_double(context, group->amount) : sqlite3_result_int(context, 0);
    }
    static void headVat(sqlite3_context* context, int, sqlite3_value** v) {
        const LineGroup* group = self(context).linesOfHead(v[0]);
        group ? sqlite3_result_double(context, group->vat) : sqlite3_result_int(context, 0);
    }
    static void headLines(sqlite3_context* context, int, sqlite3_value** v) {
        const LineGroup* group = self(context).linesOfHead(v[0]);
        sqlite3_result_int(context, group ? group->lines : 0);
    }

    // One statement over a whole table; rows the store refuses are passed over, each told.
    bool moveAll(const QString& sql) {
        m_rowsRead = 0;
        if (!runOnEngine(m_engine, sql)) return false;
        const qint64 lost = m_rowsRead - sqlite3_changes64(m_engine);
        for (qint64 i = 0; i < lost; ++i)
            ShowWarning(kRowLost);
        if (lost > 0) m_sumsAtWriting = false;
        return true;
    }

    // Lines keep the order they were written in within their statement and are numbered from 1
    // in it. A line that cannot tell VAT-inclusive from tax free asks once, before any is moved.
    bool moveLines() {
        int found = SQLITE_DONE;
        if (!runOnEngine(m_engine,
                         QStringLiteral(
                             "SELECT 1 FROM old.DealList WHERE nb_unclear(Quant, UnitCost, SaleKum) LIMIT 1"),
                         &found))
            return false;
        if (found == SQLITE_ROW)
            m_choice =
                AskYesNo(vatQuestionText(), kVatTitle) == AnsYes ? VatChoice::Included : VatChoice::TaxFree;
        return moveAll(QStringLiteral(
            "INSERT OR IGNORE INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
            "SELECT DealCode, nb_line_no(DealCode), PName, PNorm, Quant, UnitCost, DC, "
            "nb_old_amount(rowid, DealCode, Quant, UnitCost, SaleKum), "
            "nb_old_vat(rowid, DealCode, Quant, UnitCost, SaleKum) FROM old.DealList ORDER BY DealCode, "
            "rowid"));
    }

    bool moveHeads() {
        return moveAll(
            QStringLiteral("INSERT OR IGNORE INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, "
                           "NumBill) SELECT DealCode, DealDate, TraderCode, nb_head_amount(DealCode), "
                           "nb_head_vat(DealCode), nb_head_lines(DealCode) FROM old.DealTitle "
                           "WHERE nb_counted() ORDER BY DealCode, rowid"));
    }

    // Each group of lines without a head is told, as its totals have nowhere to go.
    bool writeTotals() {
        qint64 headless = 0;
        if (m_sumsAtWriting) {
            for (const auto& [code, group] : m_groups)
                headless += !group.headed;
            headless += m_uncoded.lines > 0;
        } else if (!sumsFromStore(headless)) {
            return false;
        }
        for (qint64 i = 0; i < headless; ++i)
            ShowWarning(kTotalLost);
        return true;
    }

    bool sumsFromStore(qint64& headless) {
        if (!runOnEngine(
                m_engine,
                QStringLiteral("UPDATE Master SET TotAmount = s.a, TotVat = s.v, NumBill = s.n FROM "
                               "(SELECT BillNo, SUM(Amount) AS a, SUM(VAT) AS v, COUNT(*) AS n FROM Detail "
                               "GROUP BY BillNo) AS s WHERE Master.BillNo = s.BillNo")))
            return false;
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(m_engine,
                               "SELECT COUNT(*) FROM (SELECT BillNo FROM Detail GROUP BY BillNo) AS s "
                               "WHERE NOT EXISTS (SELECT 1 FROM Master WHERE Master.BillNo = s.BillNo)",
                               -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW)
            headless = sqlite3_column_int64(statement, 0);
        sqlite3_finalize(statement);
        return true;
    }

    Database& m_old;
    sqlite3* m_engine;
    Progress* m_progress = nullptr;
    qint64 m_rowsRead = 0;
    bool m_sumsAtWriting = false;
    std::unordered_map<std::string, LineGroup, CodeHash, std::equal_to<>> m_groups;
    std::pair<const std::string, LineGroup>* m_last = nullptr;
    LineGroup m_uncoded;
    VatChoice m_choice = VatChoice::NotAsked;
    std::optional<sqlite3_int64> m_splitRow;
    OldLineSplit m_split;
    LineGroup* m_splitGroup = nullptr;
};

} // namespace

bool AttachOldStatements(Database& newDb, const QString& oldPath) {
    sqlite3* engine = engineOf(newDb);
    sqlite3_stmt* statement = nullptr;
    if (!engine ||
        sqlite3_prepare_v2(engine, "ATTACH DATABASE ? AS old", -1, &statement, nullptr) != SQLITE_OK)
        return false;
    const QByteArray path = oldPath.toUtf8();
    sqlite3_bind_text(statement, 1, path.constData(), int(path.size()), SQLITE_TRANSIENT);
    const bool attached = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    return attached;
}

bool ConvertOldStatements(Database& oldDb, Database& newDb) {
    return Conversion(oldDb, newDb).run();
}

} // namespace nb
