// A list's rows read from the server through libpq itself, past Qt's driver: the statement sent
// with its values in one round trip (where the driver prepares, runs and lets go of it in three),
// its values made straight from the server's answer, in the binary form where every column has
// one, into the types the driver would have given (whole numbers, amounts as doubles, texts).
// A month's list spent half its time in the driver. A list of many rows keeps the answer and
// makes each row's values as the list takes it, so they are made once, into the list's own room.
#include "common/grid/GridRows.h"
#include "storage/Database.h"
#include "storage/DatabaseServerWatch.h"
#include "storage/StoreEngine.h"
#include "storage/backup/ServerCopyHandles.h"

#include <QDate>
#include <cstring>
#include <limits>

namespace nb {

// What a read keeps of its statement between runs: the text in the server's marks, and how its
// columns came the last time.
struct ServerRowStatement {
    QByteArray text;
    std::vector<Oid> types;
    bool binary = false; // every column of a type read from the server's binary form
};

namespace {

// Type numbers of the server's catalog (pg_type), as libpq reports them.
constexpr Oid kBool = 16, kName = 19, kInt8 = 20, kInt2 = 21, kInt4 = 23, kText = 25, kFloat4 = 700,
              kFloat8 = 701, kBpchar = 1042, kVarchar = 1043, kNumeric = 1700;

constexpr int kKeptRowStatements = 50;

// The type the driver gives a column of the server's type (NUMERIC as a double, as the store's
// connection asks it to).
QMetaType metaTypeOf(Oid type) {
    switch (type) {
    case kBool:
        return QMetaType::fromType<bool>();
    case kInt2:
    case kInt4:
        return QMetaType::fromType<int>();
    case kInt8:
        return QMetaType::fromType<qlonglong>();
    case kFloat4:
    case kFloat8:
    case kNumeric:
        return QMetaType::fromType<double>();
    default:
        return QMetaType::fromType<QString>();
    }
}

// A real is read from its text, as the driver reads it: its binary float made a double would
// carry the float's error (0.1 as 0.100000001490116).
bool hasBinaryForm(Oid type) {
    switch (type) {
    case kBool:
    case kName:
    case kInt2:
    case kInt4:
    case kInt8:
    case kText:
    case kFloat8:
    case kBpchar:
    case kVarchar:
        return true;
    default:
        return false;
    }
}

// A bigint as the driver gives it: unsigned from zero up, signed below.
QVariant wholeNumber(qlonglong value) {
    return value < 0 ? QVariant(value) : QVariant(qulonglong(value));
}

quint64 bigEndian(const char* bytes, int size) {
    quint64 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | quint8(bytes[i]);
    return value;
}

QVariant fromBinary(Oid type, const char* value, int size) {
    switch (type) {
    case kBool:
        return QVariant(size > 0 && value[0] != 0);
    case kInt2:
        return QVariant(int(qint16(bigEndian(value, 2))));
    case kInt4:
        return QVariant(int(qint32(bigEndian(value, 4))));
    case kInt8:
        return wholeNumber(qlonglong(bigEndian(value, 8)));
    case kFloat8: {
        const quint64 bits = bigEndian(value, 8);
        double d;
        std::memcpy(&d, &bits, sizeof d);
        return QVariant(d);
    }
    default:
        return QVariant(QString::fromUtf8(value, size));
    }
}

double doubleFromText(const char* value) {
    if (std::strcmp(value, "Infinity") == 0) return std::numeric_limits<double>::infinity();
    if (std::strcmp(value, "-Infinity") == 0) return -std::numeric_limits<double>::infinity();
    if (std::strcmp(value, "NaN") == 0) return std::numeric_limits<double>::quiet_NaN();
    return QByteArray::fromRawData(value, int(std::strlen(value))).toDouble();
}

QVariant fromText(Oid type, const char* value, int size) {
    switch (type) {
    case kBool:
        return QVariant(value[0] == 't');
    case kInt2:
    case kInt4:
        return QVariant(QByteArray::fromRawData(value, size).toInt());
    case kInt8:
        return wholeNumber(QByteArray::fromRawData(value, size).toLongLong());
    case kFloat4:
    case kFloat8:
    case kNumeric:
        return QVariant(doubleFromText(value));
    default:
        return QVariant(QString::fromUtf8(value, size));
    }
}

// A null, or a null text, date or bytes, which the driver binds as the server's null.
bool isNullValue(const QVariant& v) {
    if (v.isNull()) return true;
    switch (v.typeId()) {
    case QMetaType::QString:
        return v.toString().isNull();
    case QMetaType::QByteArray:
        return v.toByteArray().isNull();
    case QMetaType::QDate:
        return v.toDate().isNull();
    default:
        return false;
    }
}

// A value as a text parameter, as the driver binds it (a yes/no as 1 / 0).
QByteArray parameterText(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Bool:
        return v.toBool() ? QByteArrayLiteral("1") : QByteArrayLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
        return QByteArray::number(v.toDouble(), 'g', 17);
    case QMetaType::QDate:
        return v.toDate().toString(Qt::ISODate).toUtf8();
    default:
        return v.toString().toUtf8();
    }
}

// The statement's ? marks outside texts and quoted names as the server's $1, $2, ...
QByteArray numberedMarks(const QString& statement) {
    QString out;
    out.reserve(statement.size() + 16);
    int mark = 0;
    QChar quote;
    for (const QChar c : statement) {
        if (!quote.isNull()) {
            if (c == quote) quote = QChar();
            out += c;
        } else if (c == u'\'' || c == u'"') {
            quote = c;
            out += c;
        } else if (c == u'?') {
            out += u'$' + QString::number(++mark);
        } else {
            out += c;
        }
    }
    return out.toUtf8();
}

QString stateOf(const PGresult* result) {
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    return state ? QString::fromLatin1(state) : QString();
}

QSqlError serverError(PGconn* conn, const PGresult* result) {
    const QString state = stateOf(result);
    const QString words = serverEngineWords(conn, result);
    if (state.isEmpty()) return QSqlError(QString(), words, QSqlError::ConnectionError);
    return QSqlError(QString(), words, QSqlError::StatementError, state);
}

struct Result {
    PGresult* r;
    explicit Result(PGresult* result) : r(result) {}
    ~Result() { PQclear(r); }
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;
};

// What a query read row by row left unread would answer "another command is already in
// progress"; the driver has let go of it, so it is taken and dropped here.
void dropUnreadResults(PGconn* conn) {
    if (PQtransactionStatus(conn) == PQTRANS_ACTIVE)
        while (PGresult* left = PQgetResult(conn))
            PQclear(left);
}

} // namespace

// The server's answer to a read, kept as it came, with how its columns are read.
struct ServerAnswer {
    PGresult* result = nullptr;
    std::vector<Oid> types;
    std::vector<QMetaType> nullTypes;
    bool binary = false;

    ServerAnswer(PGresult* answer, std::vector<Oid> columnTypes, bool binaryForm)
        : result(answer), types(std::move(columnTypes)), binary(binaryForm) {
        for (const Oid type : types)
            nullTypes.push_back(metaTypeOf(type));
    }
    ~ServerAnswer() { PQclear(result); }
    ServerAnswer(const ServerAnswer&) = delete;
    ServerAnswer& operator=(const ServerAnswer&) = delete;

    int width() const { return int(types.size()); }
    int rows() const { return PQntuples(result); }
    QVariant value(int r, int c) const {
        if (PQgetisnull(result, r, c)) return QVariant(nullTypes[size_t(c)], nullptr);
        const Oid type = types[size_t(c)];
        return binary ? fromBinary(type, PQgetvalue(result, r, c), PQgetlength(result, r, c))
                      : fromText(type, PQgetvalue(result, r, c), PQgetlength(result, r, c));
    }
    void appendTo(std::vector<QVariant>& out) const {
        const int count = rows();
        const int columns = width();
        out.reserve(out.size() + size_t(count) * size_t(columns));
        for (int r = 0; r < count; ++r)
            for (int c = 0; c < columns; ++c)
                out.push_back(value(r, c));
    }
};

namespace {

// A list's rows from the server's answer, each row's values made as the list takes it; the
// answer let go of once the last row is taken.
class ServerAnswerRows : public GridRowSource {
public:
    explicit ServerAnswerRows(std::unique_ptr<ServerAnswer> answer)
        : m_answer(std::move(answer)), m_width(m_answer->width()), m_rows(m_answer->rows()) {}
    int width() const override { return m_width; }
    int expectedRows() const override { return m_rows; }
    bool next(QVariant* out, int count) override {
        if (!m_answer || m_next >= m_rows) {
            m_answer.reset();
            return false;
        }
        for (int c = 0; c < count && c < m_width; ++c)
            out[c] = m_answer->value(m_next, c);
        ++m_next;
        return true;
    }

private:
    std::unique_ptr<ServerAnswer> m_answer;
    int m_width = 0;
    int m_rows = 0;
    int m_next = 0;
};

} // namespace

std::unique_ptr<ServerAnswer> Database::readAnswerOnServer(const QString& statement,
                                                           const QVariantList& values, QSqlError* error) {
    PGconn* conn = serverEngineHandle(connection());
    if (!conn) {
        *error =
            QSqlError(QString(), QStringLiteral("no connection to the server"), QSqlError::ConnectionError);
        return nullptr;
    }
    dropUnreadResults(conn);
    std::vector<QByteArray> texts;
    std::vector<const char*> parameters;
    for (const QVariant& v : values)
        texts.push_back(parameterText(v));
    for (size_t i = 0; i < texts.size(); ++i)
        parameters.push_back(isNullValue(values[qsizetype(i)]) ? nullptr : texts[i].constData());
    if (m_rowStatements.size() >= kKeptRowStatements && !m_rowStatements.contains(statement))
        m_rowStatements.clear(); // a program that read many more texts starts the keeping over
    std::shared_ptr<ServerRowStatement>& kept = m_rowStatements[statement];
    if (!kept) {
        kept = std::make_shared<ServerRowStatement>();
        kept->text = numberedMarks(statement);
    }
    const std::shared_ptr<ServerRowStatement> held = kept;
    for (;;) {
        const bool binary = held->binary;
        const ServerAnswerWatch watch(conn);
        // Unnamed, so that the server plans it for these very values (a kept plan for any dates
        // would read ten years as it reads a month); still one round trip.
        Result result(PQexecParams(conn, held->text.constData(), int(parameters.size()), nullptr,
                                   parameters.data(), nullptr, nullptr, binary ? 1 : 0));
        if (PQresultStatus(result.r) != PGRES_TUPLES_OK) {
            *error = serverError(conn, result.r);
            return nullptr;
        }
        const int columns = PQnfields(result.r);
        std::vector<Oid> types(static_cast<size_t>(columns));
        bool binaryForm = true;
        for (int c = 0; c < columns; ++c) {
            types[size_t(c)] = PQftype(result.r, c);
            binaryForm = binaryForm && hasBinaryForm(types[size_t(c)]);
        }
        // Read in the binary form only as the columns were when it was chosen; else once more
        // as texts, which every type has.
        const bool asTold = !binary || types == held->types;
        held->types = types;
        held->binary = binary ? asTold : binaryForm;
        if (!asTold) continue;
        PGresult* answer = result.r;
        result.r = nullptr;
        return std::make_unique<ServerAnswer>(answer, std::move(types), binary);
    }
}

std::unique_ptr<ServerAnswer> Database::answerOnServer(const QString& sql, const QVariantList& values) {
    // After a failed statement the server has dropped the transaction's work (see run).
    if (m_failedDepth > 0) return nullptr;
    noteFailure(ErrNone, QString());
    noteClosedByDriver();
    if (m_connectionLost && !inTransaction() && !reconnectServer()) return nullptr;
    if (!isOpen() || !m_server) {
        noteFailure(ErrNotOpened, QStringLiteral("Object variable or With block variable not set"));
        return nullptr;
    }
    ++m_statementsRun;
    const QString statement = statementFor(sql, values);
    // A read the server's absence broke off outside a transaction is asked once more on a
    // connection made again (a server restarted while the seat stood idle).
    bool askedAgain = inTransaction();
    for (;;) {
        QSqlError error;
        if (std::unique_ptr<ServerAnswer> answer = readAnswerOnServer(statement, values, &error))
            return answer;
        noteFailure(error);
        if (m_connectionLost && !askedAgain) {
            askedAgain = true;
            if (reconnectServer()) continue;
            return nullptr;
        }
        if (inTransaction() && m_failedDepth == 0) m_failedDepth = int(m_savepoints.size());
        return nullptr;
    }
}

bool Database::readRowsOnServer(const QString& sql, const QVariantList& values, std::vector<QVariant>& rows,
                                int* width) {
    *width = 0;
    const std::unique_ptr<ServerAnswer> answer = answerOnServer(sql, values);
    if (!answer) return false;
    *width = answer->width();
    answer->appendTo(rows);
    return true;
}

std::unique_ptr<GridRowSource> Database::openRowsOnServer(const QString& sql, const QVariantList& values) {
    std::unique_ptr<ServerAnswer> answer = answerOnServer(sql, values);
    if (!answer) return nullptr;
    return std::make_unique<ServerAnswerRows>(std::move(answer));
}

} // namespace nb
