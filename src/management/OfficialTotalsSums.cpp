#include "management/OfficialTotalsSums.h"

#include "common/grid/SqliteRows.h"
#include "storage/Database.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <sqlite3.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace nb {

namespace {

// A code of up to eight bytes (the trader and invoice codes the program writes) held in one
// number with its length, so that a year's lines are told apart without making a text each.
struct Packed {
    quint64 bytes = 0;
    quint32 size = 0;
    bool operator==(const Packed&) const = default;
    bool operator<(const Packed& other) const {
        return bytes != other.bytes ? bytes < other.bytes : size < other.size;
    }
};

bool pack(const char* text, int size, Packed& out) {
    if (size > 8) return false;
    out = Packed{};
    if (size > 0) std::memcpy(&out.bytes, text, size_t(size));
    out.size = quint32(size);
    return true;
}

const char* textAt(sqlite3_stmt* row, int column, int& size) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    size = sqlite3_column_bytes(row, column);
    return text ? text : "";
}

// Trader codes to their places in a list: short codes in an open table of numbers, longer ones
// by their text.
class CodeIndex {
public:
    // The place of the code, or -1 when it has none.
    int find(const char* text, int size) const {
        Packed key;
        if (!pack(text, size, key)) {
            const auto at = m_long.find(std::string(text, size_t(size)));
            return at == m_long.end() ? -1 : at->second;
        }
        if (m_slots.empty()) return -1;
        for (size_t i = slotOf(key);; i = (i + 1) & (m_slots.size() - 1)) {
            if (m_slots[i].place < 0) return -1;
            if (m_slots[i].key == key) return m_slots[i].place;
        }
    }
    // The place of the code; a new code is given `next`.
    int place(const char* text, int size, int next) {
        Packed key;
        if (!pack(text, size, key))
            return m_long.try_emplace(std::string(text, size_t(size)), next).first->second;
        if ((m_used + 1) * 2 > m_slots.size()) grow();
        size_t i = slotOf(key);
        for (; m_slots[i].place >= 0; i = (i + 1) & (m_slots.size() - 1))
            if (m_slots[i].key == key) return m_slots[i].place;
        m_slots[i] = Slot{key, next};
        ++m_used;
        return next;
    }

private:
    struct Slot {
        Packed key;
        int place = -1;
    };
    size_t slotOf(const Packed& key) const {
        quint64 h = (key.bytes ^ (quint64(key.size) << 59)) * 0x9E3779B97F4A7C15ull;
        h ^= h >> 29;
        return size_t(h) & (m_slots.size() - 1);
    }
    void grow() {
        std::vector<Slot> old;
        old.swap(m_slots);
        m_slots.assign(old.empty() ? 1024 : old.size() * 2, Slot{});
        for (const Slot& slot : old) {
            if (slot.place < 0) continue;
            size_t i = slotOf(slot.key);
            while (m_slots[i].place >= 0)
                i = (i + 1) & (m_slots.size() - 1);
            m_slots[i] = slot;
        }
    }
    std::vector<Slot> m_slots;
    size_t m_used = 0;
    std::unordered_map<std::string, int> m_long;
};

// A trader's lines in one of the two parts (sent in time, not).
struct PartSums {
    bool seen = false;
    // Its invoices' codes, a repeat of the line before left out.
    std::vector<Packed> shortCodes;
    std::vector<std::string> longCodes;
    double supply = 0;
    double tax = 0;

    void addCode(const char* text, int size) {
        Packed code;
        if (!pack(text, size, code))
            longCodes.emplace_back(text, size_t(size));
        else if (shortCodes.empty() || !(shortCodes.back() == code))
            shortCodes.push_back(code);
    }
    int invoices() {
        std::sort(shortCodes.begin(), shortCodes.end());
        std::sort(longCodes.begin(), longCodes.end());
        return int(std::unique(shortCodes.begin(), shortCodes.end()) - shortCodes.begin()) +
               int(std::unique(longCodes.begin(), longCodes.end()) - longCodes.begin());
    }
};

// A trader record's number worked down to its digits: hyphens, blanks, tabs, wide and
// no-break spaces left out; its length counted in characters.
struct Number {
    std::string digits;
    int length = 0;
};

Number numberOf(const char* text, int size) {
    Number number;
    number.digits.reserve(size_t(size));
    for (int i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '-' || byte == ' ' || byte == '\t') continue;
        if (byte == 0xC2 && i + 1 < size && static_cast<unsigned char>(text[i + 1]) == 0xA0) {
            ++i;
            continue;
        }
        if (byte == 0xE3 && i + 2 < size && static_cast<unsigned char>(text[i + 1]) == 0x80 &&
            static_cast<unsigned char>(text[i + 2]) == 0x80) {
            i += 2;
            continue;
        }
        number.digits += char(byte);
        if ((byte & 0xC0) != 0x80) ++number.length;
    }
    return number;
}

struct TraderSums {
    std::string code; // empty with hasCode false: the lines without a trader code
    bool hasCode = false;
    PartSums parts[2]; // the invoices sent in time, the others
    // The numbers of the trader records with this code (a code on several records counts on
    // each, as a join with the trader table does).
    std::vector<Number> numbers;
};

// One receiver of one of the four parts, with the trader of its least code (null when it has
// none: the lines without a trader code).
struct ReceiverSums {
    int part = 0;
    const TraderSums* first = nullptr;
    int invoices = 0;
    double supply = 0;
    double tax = 0;
};

struct Traders {
    std::vector<TraderSums> list;
    CodeIndex index;
    int noCode = -1;
};

void reportFailure(const SqliteStatement& statement, const QString& sql, const QVariantList& values) {
    ReportQueryFailure(errorNumberFor(statement.engineText(), statement.engineCode()), statement.engineText(),
                       sqlForDisplay(sql, values), statement.engineCode());
}

TraderSums& traderOf(Traders& traders, sqlite3_stmt* row) {
    int at = traders.noCode;
    if (sqlite3_column_type(row, 0) != SQLITE_NULL) {
        int size = 0;
        const char* code = textAt(row, 0, size);
        at = traders.index.place(code, size, int(traders.list.size()));
        if (at == int(traders.list.size())) {
            traders.list.emplace_back();
            traders.list.back().code.assign(code, size_t(size));
            traders.list.back().hasCode = true;
        }
    } else if (at < 0) {
        at = traders.noCode = int(traders.list.size());
        traders.list.emplace_back();
    }
    return traders.list[size_t(at)];
}

// Every line of the period added to its trader's part.
bool readLines(SqliteStatement& lines, const FormLineReads& reads, Traders& traders) {
    while (lines.ok() && lines.next(nullptr, 0)) {
        sqlite3_stmt* row = lines.row();
        TraderSums& trader = traderOf(traders, row);
        PartSums& part = trader.parts[sqlite3_column_int(row, 2) == 0 ? 0 : 1];
        part.seen = true;
        if (sqlite3_column_type(row, 1) != SQLITE_NULL) {
            int size = 0;
            const char* code = textAt(row, 1, size);
            part.addCode(code, size);
        }
        part.supply += sqlite3_column_double(row, 3);
        part.tax += sqlite3_column_double(row, 4);
    }
    if (lines.ok()) return true;
    reportFailure(lines, reads.linesSql, reads.lineValues);
    return false;
}

// The numbers of the traders that have lines.
bool readNumbers(Database& store, const FormLineReads& reads, Traders& traders) {
    SqliteStatement records(store.connection(), reads.tradersSql, {});
    while (records.ok() && records.next(nullptr, 0)) {
        sqlite3_stmt* row = records.row();
        if (sqlite3_column_type(row, 0) == SQLITE_NULL) continue;
        int size = 0;
        const char* code = textAt(row, 0, size);
        const int at = traders.index.find(code, size);
        if (at < 0) continue;
        const char* serial = textAt(row, 1, size);
        traders.list[size_t(at)].numbers.push_back(numberOf(serial, size));
    }
    if (records.ok()) return true;
    reportFailure(records, reads.tradersSql, {});
    return false;
}

// A trader's parts under their receivers: its number's digits when it has ten or more, else its
// own code; a resident number's receivers one part further.
void addToReceivers(TraderSums& trader, std::unordered_map<std::string, ReceiverSums>& receivers) {
    static const Number kNoNumber;
    std::string key;
    for (int p = 0; p < 2; ++p) {
        PartSums& sums = trader.parts[p];
        if (!sums.seen) continue;
        const int invoices = sums.invoices();
        const auto addFor = [&](const Number& number) {
            const int part = p * 2 + (number.length == 13 ? 1 : 0);
            key.assign(1, char('0' + part));
            if (number.length >= 10) {
                key += '#';
                key += number.digits;
            } else if (trader.hasCode) {
                key += '@';
                key += trader.code;
            }
            ReceiverSums& receiver = receivers[key];
            receiver.part = part;
            if (trader.hasCode && (!receiver.first || trader.code < receiver.first->code))
                receiver.first = &trader;
            receiver.invoices += invoices;
            receiver.supply += sums.supply;
            receiver.tax += sums.tax;
        };
        if (trader.numbers.empty())
            addFor(kNoNumber);
        else
            for (const Number& number : trader.numbers)
                addFor(number);
    }
}

QString textOf(sqlite3_stmt* row, int column) {
    if (sqlite3_column_type(row, column) == SQLITE_NULL) return QString();
    int size = 0;
    const char* text = textAt(row, column, size);
    return QString::fromUtf8(text, size);
}

bool earlier(const ReceiverSums* a, const ReceiverSums* b) {
    if (!a->first || !b->first) return !a->first && b->first;
    return a->first->code < b->first->code;
}

// The business-number receivers of the invoices not sent in time, in the order of their first
// trader codes (none first), each with the records of that code, from the one numbered first + 1.
bool listReceivers(Database& store, const FormLineReads& reads,
                   const std::unordered_map<std::string, ReceiverSums>& receivers, OfficialTotals& form,
                   int first, int count) {
    std::vector<const ReceiverSums*> listed;
    bool oneRecordEach = true;
    for (const auto& [key, receiver] : receivers) {
        if (receiver.part != 2) continue;
        listed.push_back(&receiver);
        if (receiver.first && receiver.first->numbers.size() > 1) oneRecordEach = false;
    }
    const qint64 end = count < 0 ? std::numeric_limits<qint64>::max() : qint64(first) + count;
    // With one record a code, the receivers numbered up to the last asked for are all that need
    // their order.
    if (oneRecordEach && end < qint64(listed.size()))
        std::partial_sort(listed.begin(), listed.begin() + end, listed.end(), earlier);
    else
        std::sort(listed.begin(), listed.end(), earlier);
    SqliteStatement record(store.connection(), reads.recordSql, {QString()});
    qint64 line = 0;
    for (const ReceiverSums* receiver : listed) {
        if (line >= end || !record.ok()) break;
        const ReceiverLine sums{QString(), QString(), receiver->invoices, receiver->supply, receiver->tax};
        const qint64 before = line;
        if (receiver->first) {
            const std::string& code = receiver->first->code;
            sqlite3_stmt* lookup = record.row();
            sqlite3_reset(lookup);
            sqlite3_bind_text(lookup, 1, code.data(), int(code.size()), SQLITE_TRANSIENT);
            int step = SQLITE_ROW;
            while ((step = sqlite3_step(lookup)) == SQLITE_ROW) {
                if (line >= first && line < end) {
                    ReceiverLine named = sums;
                    named.serial = textOf(lookup, 0).trimmed();
                    named.company = textOf(lookup, 1);
                    form.receivers.append(named);
                }
                ++line;
            }
            if (step != SQLITE_DONE) {
                const QString words = QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(lookup)));
                ReportQueryFailure(errorNumberFor(words, step), words,
                                   sqlForDisplay(reads.recordSql, {QString::fromStdString(code)}), step);
                return false;
            }
        }
        if (line == before) { // no record of the code: the line without number or name
            if (line >= first && line < end) form.receivers.append(sums);
            ++line;
        }
    }
    if (record.ok()) return true;
    reportFailure(record, reads.recordSql, {QString()});
    return false;
}

// A read transaction around the form's statements, so that they see one state of the store;
// none when the connection is in a transaction already.
class ReadTogether {
public:
    ReadTogether() = default;
    void begin(sqlite3* db) {
        m_db = db;
        m_began = db && sqlite3_get_autocommit(db) &&
                  sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    ~ReadTogether() {
        if (m_began) sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    ReadTogether(const ReadTogether&) = delete;
    ReadTogether& operator=(const ReadTogether&) = delete;

private:
    sqlite3* m_db = nullptr;
    bool m_began = false;
};

} // namespace

bool canSumFormFromLines(Database& store) {
    return SqliteRows::canStep(store.connection());
}

bool sumFormFromLines(Database& store, const FormLineReads& reads, OfficialTotals& form, int first,
                      int count) {
    ReadTogether together; // ends after every statement of the form
    SqliteStatement lines(store.connection(), reads.linesSql, reads.lineValues);
    if (!lines.ok()) {
        reportFailure(lines, reads.linesSql, reads.lineValues);
        return false;
    }
    together.begin(sqlite3_db_handle(lines.row()));
    Traders traders;
    if (!readLines(lines, reads, traders) || !readNumbers(store, reads, traders)) return false;
    std::unordered_map<std::string, ReceiverSums> receivers;
    receivers.reserve(traders.list.size());
    for (TraderSums& trader : traders.list)
        addToReceivers(trader, receivers);
    IssueLine* parts[4] = {&form.electronicBusiness, &form.electronicResident, &form.paperBusiness,
                           &form.paperResident};
    for (const auto& [key, receiver] : receivers) {
        IssueLine& line = *parts[receiver.part];
        ++line.receivers;
        line.invoices += receiver.invoices;
        line.supply += receiver.supply;
        line.tax += receiver.tax;
    }
    return listReceivers(store, reads, receivers, form, qMax(0, first), count);
}

} // namespace nb
